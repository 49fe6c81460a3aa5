import { element } from "./dom";
import type { Item } from "./model";
import type { Plant, Watched } from "./plant";
import { texts } from "./texts";
import { oncePerFrame } from "./view";

const shownFor = 60_000; // ms
const margin = 12; // pixels around the path

type Point = [number, number, number];

/** X, Y and Z of the first polled position in base or robot coordinates. */
export function pathItems(watched: Watched): Item[] | null {
    const positions = [...watched.items.values()].filter(
        (item) => item.what === "position" && (item.coordinate === "base" || item.coordinate === "robot"),
    );
    const first = positions[0];
    const axes = ["X", "Y", "Z"].map((axis) =>
        positions.find((item) => item.axis === axis && item.group === first?.group && item.coordinate === first?.coordinate),
    );
    return axes.every((item) => item !== undefined) ? (axes as Item[]) : null;
}

/** The path of the tool over the last minute, seen from above and from the side. */
export class ToolPath {
    readonly root: HTMLElement;
    readonly redraw = oncePerFrame(() => this.draw());

    private readonly canvases: { canvas: HTMLCanvasElement; across: 0 | 1 | 2; up: 0 | 1 | 2 }[];

    constructor(
        private readonly plant: Plant,
        private readonly watched: Watched,
        private readonly items: Item[],
    ) {
        this.canvases = [
            { canvas: canvasFor(texts.path.top), across: 0, up: 1 },
            { canvas: canvasFor(texts.path.side), across: 0, up: 2 },
        ];
        this.root = element(
            "div",
            { class: "paths" },
            ...this.canvases.map(({ canvas }, index) =>
                element("figure", {}, canvas, element("figcaption", {}, index === 0 ? texts.path.top : texts.path.side)),
            ),
        );
        this.draw();
    }

    private draw(): void {
        if (document.hidden) {
            return;
        }
        const points = this.points();
        for (const { canvas, across, up } of this.canvases) {
            drawPath(canvas, points, across, up);
        }
    }

    /** Values of one read carry one time; where an axis did not change its last value still holds. */
    private points(): (Point | null)[] {
        const to = this.plant.now();
        const axes = this.items.map((item) => this.watched.tracks.get(item.id)?.slice(to - shownFor, to) ?? { times: [], values: [] });
        const times = [...new Set(axes.flatMap((axis) => axis.times))].sort((a, b) => a - b);
        const places = axes.map(() => 0);
        return times.map((time) => {
            const point = axes.map((axis, index) => {
                while (places[index]! + 1 < axis.times.length && axis.times[places[index]! + 1]! <= time) {
                    places[index]! += 1;
                }
                return axis.times[places[index]!]! <= time ? (axis.values[places[index]!] ?? null) : null;
            });
            return point.every((value) => value !== null) ? (point as Point) : null;
        });
    }
}

function canvasFor(label: string): HTMLCanvasElement {
    return element("canvas", { width: 640, height: 480, role: "img", "aria-label": label });
}

function drawPath(canvas: HTMLCanvasElement, points: (Point | null)[], across: number, up: number): void {
    const context = canvas.getContext("2d");
    if (context === null) {
        return;
    }
    const style = getComputedStyle(canvas);
    context.clearRect(0, 0, canvas.width, canvas.height);
    const known = points.filter((point) => point !== null);
    if (known.length === 0) {
        return;
    }
    const bounds = (axis: number) => {
        let least = Infinity;
        let most = -Infinity;
        for (const point of known) {
            least = Math.min(least, point[axis]!);
            most = Math.max(most, point[axis]!);
        }
        return { least, most };
    };
    const x = bounds(across);
    const y = bounds(up);
    // One scale for both directions, so that a circle stays a circle; a resting tool is shown within 100 mm.
    const span = Math.max((x.most - x.least) / (canvas.width - 2 * margin), (y.most - y.least) / (canvas.height - 2 * margin), 100 / canvas.height);
    const place = (point: Point): [number, number] => [
        canvas.width / 2 + (point[across]! - (x.least + x.most) / 2) / span,
        canvas.height / 2 - (point[up]! - (y.least + y.most) / 2) / span,
    ];
    context.lineWidth = 2;
    context.strokeStyle = style.getPropertyValue("--accent");
    context.beginPath();
    let isDrawing = false;
    for (const point of points) {
        if (point === null) {
            isDrawing = false;
        } else if (isDrawing) {
            context.lineTo(...place(point));
        } else {
            context.moveTo(...place(point));
            isDrawing = true;
        }
    }
    context.stroke();
    const last = points.at(-1);
    if (last) {
        context.fillStyle = style.getPropertyValue("--text");
        context.beginPath();
        context.arc(...place(last), 5, 0, 2 * Math.PI);
        context.fill();
    }
    scaleBar(context, canvas, span, style.getPropertyValue("--text"));
}

/** A bar of a round length, so that distances can be read. */
function scaleBar(context: CanvasRenderingContext2D, canvas: HTMLCanvasElement, span: number, colour: string): void {
    const wanted = 120 * span;
    const power = 10 ** Math.floor(Math.log10(wanted));
    const length = [5, 2, 1].map((factor) => factor * power).find((candidate) => candidate <= wanted) ?? power;
    const y = canvas.height - 8;
    context.strokeStyle = context.fillStyle = colour;
    context.beginPath();
    context.moveTo(8, y);
    context.lineTo(8 + length / span, y);
    context.stroke();
    context.font = "18px sans-serif";
    context.fillText(`${length} ${texts.path.unit}`, 8, y - 6);
}
