// A uPlot with what all our plots share: a scale and an axis for each unit, events as marks, keys for cursor and zoom.
import uPlot from "uplot";
import { alarmCodeOf } from "./eventList";
import type { Joined } from "./joined";
import { reading } from "./format";
import type { PlantEvent } from "./model";
import { texts } from "./texts";

export interface Line {
    name: string;
    unit: string;
    isStepped: boolean;
}

export interface PlotHooks {
    /** The user chose a range, in milliseconds. */
    zoomed(from: number, to: number): void;
    unzoomed(): void;
    paused(): void;
}

// Eight colours that differ in brightness too; the dashes tell the lines apart without colour.
const colours = ["#2f7ed8", "#d9731a", "#3a9d4a", "#b0459b", "#8a6d1f", "#1595a3", "#c23b3b", "#6c6fd0"];
const dashes = [[], [8, 4], [2, 3], [10, 3, 2, 3], [5, 5], [1, 2], [12, 4], [4, 2, 1, 2]];

// Marks in a plot. What happens all the time, a job that calls another, stands in the list only.
const marked = new Set(["alarm-raised", "servo-off", "servo-on", "silent", "online", "mode", "model-changed", "gap"]);

const date = "{YYYY}-{MM}-{DD}";
const noLabel = null;
/** Labels by the distance of the ticks in seconds: the usual one, then those where a year, month, day, hour, minute begins. */
const timeLabels: uPlot.Axis.DynamicValues[] | (string | number | null)[][] = [
    [86400, date, noLabel, noLabel, noLabel, noLabel, noLabel, noLabel, 1],
    [60, "{HH}:{mm}", `\n${date}`, noLabel, `\n${date}`, noLabel, noLabel, noLabel, 1],
    [1, "{HH}:{mm}:{ss}", `\n${date}`, noLabel, `\n${date}`, noLabel, noLabel, noLabel, 1],
    [0.001, "{ss}.{fff}", `\n${date} {HH}:{mm}`, noLabel, `\n${date} {HH}:{mm}`, noLabel, "\n{HH}:{mm}", noLabel, 1],
];

const cssColour = (name: string) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

export class Plot {
    private chart: uPlot | null = null;
    private events: PlantEvent[] = [];
    private readonly observer: ResizeObserver;

    constructor(
        private readonly place: HTMLElement,
        private readonly lines: Line[],
        private readonly hooks: PlotHooks,
        private readonly height = 260,
    ) {
        this.chart = new uPlot(this.options(), [[]] as unknown as uPlot.AlignedData, place);
        Object.assign(place, { chart: this.chart }); // for the console, and for whoever wants the numbers
        this.observer = new ResizeObserver(() => this.resize());
        this.observer.observe(place);
        place.tabIndex = 0;
        place.addEventListener("keydown", this.keys);
    }

    set(data: Joined, from: number, to: number, events: PlantEvent[]): void {
        this.events = events;
        this.chart?.batch(() => {
            this.chart!.setData(data as uPlot.AlignedData, false);
            this.chart!.setScale("x", { min: from / 1000, max: to / 1000 });
            for (const unit of this.units()) {
                this.chart!.setScale(unit, this.rangeOf(data, unit));
            }
        });
    }

    destroy(): void {
        this.observer.disconnect();
        this.place.removeEventListener("keydown", this.keys);
        this.chart?.destroy();
        this.chart = null;
    }

    private units(): string[] {
        return [...new Set(this.lines.map((line) => scaleOf(line)))];
    }

    private rangeOf(data: Joined, unit: string): { min: number; max: number } {
        let least = Infinity;
        let most = -Infinity;
        this.lines.forEach((line, index) => {
            if (scaleOf(line) === unit) {
                for (const value of data[index + 1] ?? []) {
                    if (typeof value === "number") {
                        least = Math.min(least, value);
                        most = Math.max(most, value);
                    }
                }
            }
        });
        if (least > most) {
            return { min: 0, max: 1 };
        }
        const margin = (most - least) * 0.08 || Math.max(Math.abs(most) * 0.05, 0.5);
        return { min: least - margin, max: most + margin };
    }

    private options(): uPlot.Options {
        const text = cssColour("--text");
        const grid = { stroke: cssColour("--grid"), width: 1 };
        const axis = { stroke: text, grid, ticks: grid };
        const axes: uPlot.Axis[] = [{ ...axis, values: timeLabels as uPlot.Axis.Values, space: 72 }];
        const scales: uPlot.Scales = { x: { time: true, auto: false } };
        this.units().forEach((unit, index) => {
            scales[unit] = { auto: false };
            axes.push({ ...axis, scale: unit, label: unit.trim(), side: index % 2 === 0 ? 3 : 1, size: 64, ...(index > 0 ? { grid: { show: false } } : {}) });
        });
        return {
            width: Math.max(200, this.place.clientWidth),
            height: this.height,
            scales,
            axes,
            series: [{ label: texts.plot.time, value: "{HH}:{mm}:{ss}.{fff}" }, ...this.lines.map((line, index) => seriesOf(line, index))],
            cursor: { drag: { x: true, y: false, setScale: false }, focus: { prox: 16 } },
            legend: { live: true },
            hooks: {
                setSelect: [(chart) => this.selected(chart)],
                draw: [(chart) => this.drawEvents(chart)],
                ready: [(chart) => chart.over.addEventListener("dblclick", () => this.hooks.unzoomed())],
            },
        };
    }

    private selected(chart: uPlot): void {
        const { left, width } = chart.select;
        if (width > 4) {
            this.hooks.zoomed(chart.posToVal(left, "x") * 1000, chart.posToVal(left + width, "x") * 1000);
            chart.setSelect({ left: 0, top: 0, width: 0, height: 0 }, false);
        }
    }

    private drawEvents(chart: uPlot): void {
        const { ctx, bbox } = chart;
        ctx.save();
        ctx.font = `${11 * devicePixelRatio}px sans-serif`;
        const taken: { from: number; to: number }[] = []; // by labels
        const isAlarm = (event: PlantEvent) => Number(event.kind === "alarm-raised");
        const events = this.events.filter((each) => marked.has(each.kind));
        // Alarms first: where labels would overlap, theirs stays.
        for (const event of events.sort((left, right) => isAlarm(right) - isAlarm(left) || left.time - right.time)) {
            const x = chart.valToPos(event.time / 1000, "x", true);
            if (x < bbox.left || x > bbox.left + bbox.width) {
                continue;
            }
            ctx.strokeStyle = ctx.fillStyle = cssColour(event.kind === "alarm-raised" ? "--alarm" : "--mark");
            ctx.setLineDash(event.kind === "alarm-raised" ? [] : [4, 4]);
            ctx.beginPath();
            ctx.moveTo(x, bbox.top);
            ctx.lineTo(x, bbox.top + bbox.height);
            ctx.stroke();
            const name = texts.event[event.kind] ?? event.kind;
            const label = name + alarmCodeOf(event);
            const width = ctx.measureText(label).width + 8;
            const from = x + width > bbox.left + bbox.width ? x - width : x;
            const room = { from, to: from + width };
            if (!taken.some((each) => room.from < each.to && each.from < room.to)) {
                ctx.textAlign = "left";
                ctx.fillText(label, from + 4, bbox.top + 12 * devicePixelRatio);
                taken.push(room);
            }
        }
        ctx.restore();
    }

    private resize(): void {
        const width = this.place.clientWidth;
        if (width > 0 && this.chart !== null && width !== this.chart.width) {
            this.chart.setSize({ width, height: this.height });
        }
    }

    private readonly keys = (event: KeyboardEvent): void => {
        const chart = this.chart;
        if (chart === null || event.target !== this.place) {
            return;
        }
        const { min, max } = chart.scales["x"] as { min: number; max: number };
        const middle = chart.cursor.left !== undefined && chart.cursor.left >= 0 ? chart.posToVal(chart.cursor.left, "x") : (min + max) / 2;
        const zoom = (factor: number) =>
            this.hooks.zoomed((middle - (middle - min) * factor) * 1000, (middle + (max - middle) * factor) * 1000);
        const step = (pixels: number) => {
            const width = chart.over.clientWidth;
            const at = chart.cursor.left !== undefined && chart.cursor.left >= 0 ? chart.cursor.left : width / 2;
            chart.setCursor({ left: Math.min(width, Math.max(0, at + pixels)), top: chart.over.clientHeight / 2 });
        };
        const actions: Record<string, () => void> = {
            ArrowLeft: () => step(-8),
            ArrowRight: () => step(8),
            "+": () => zoom(0.5),
            "=": () => zoom(0.5),
            "-": () => zoom(2),
            "0": () => this.hooks.unzoomed(),
            " ": () => this.hooks.paused(),
        };
        const action = actions[event.key];
        if (action !== undefined) {
            event.preventDefault();
            action();
        }
    };
}

/** Items of one unit share a scale; those without a unit do too. uPlot wants a name that is not empty. */
const scaleOf = (line: Line) => line.unit || " ";

function seriesOf(line: Line, index: number): uPlot.Series {
    return {
        label: line.unit ? `${line.name} (${line.unit})` : line.name,
        scale: scaleOf(line),
        stroke: colours[index % colours.length]!,
        dash: dashes[index % dashes.length]!,
        width: 1.5,
        spanGaps: false,
        points: { show: false },
        value: (_chart, value) => reading(value),
        ...(line.isStepped ? { paths: uPlot.paths.stepped!({ align: 1 }) } : {}),
    };
}
