import { element, printable, replace, setAttribute, setText } from "./dom";
import { join } from "./joined";
import type { Item } from "./model";
import type { Plant, Watched } from "./plant";
import { Plot } from "./plot";
import { texts } from "./texts";
import { oncePerFrame } from "./view";

const windows = [10, 60, 300, 600];

export const isPlottable = (item: Item) => item.kind !== "text";

const firstPlot = 3; // items
const secondPlot = 6;

/** What a plot begins with: where the tool is says most at first sight; otherwise the first items there are. */
export function firstItems(items: Item[]): number[] {
    const position = items.filter((item) => item.what === "position" && item.coordinate !== "pulse");
    return (position.length > 0 ? position : items).slice(0, firstPlot).map((item) => item.id);
}

/** And what stands beside it: how hard the axes work for it, if that is polled. */
export const secondItems = (items: Item[]) => items.filter((item) => item.what === "torque").slice(0, secondPlot).map((item) => item.id);

/** One live plot: chosen items of a controller over the last seconds, or a range that was paused or zoomed to. */
export class PlotPanel {
    readonly root = element("section", { class: "panel plot-panel" });

    private readonly place = element("div", { class: "plot" });
    private readonly pauseButton = element("button", { type: "button", click: () => this.togglePause() });
    private readonly windowChoice = element("select", { "aria-label": texts.plot.window, change: () => this.live() });
    private readonly historyLink = element("a", { class: "button", hidden: true }, texts.plot.openHistory);
    private plot: Plot | null = null;
    private range: { from: number; to: number } | null = null; // null while live
    readonly redraw = oncePerFrame(() => this.draw());

    constructor(
        private readonly plant: Plant,
        private readonly controller: string,
        private readonly watched: Watched,
        private chosen: number[],
        private readonly removed: (panel: PlotPanel) => void,
    ) {
        for (const seconds of windows) {
            this.windowChoice.append(element("option", { value: seconds }, texts.plot.windows[seconds]!));
        }
        this.windowChoice.value = "60";
        this.root.append(this.bar(), this.place);
        this.rebuild();
    }

    close(): void {
        this.plot?.destroy();
        this.plot = null;
    }

    private bar(): HTMLElement {
        const choices = element("div", { class: "choices" });
        for (const item of [...this.watched.items.values()].filter(isPlottable)) {
            const box = element("input", {
                type: "checkbox",
                checked: this.chosen.includes(item.id),
                change: () => this.choose(item.id, box.checked),
            });
            choices.append(element("label", {}, box, printable(item.name), item.unit ? ` (${item.unit})` : ""));
        }
        return element(
            "div",
            { class: "bar" },
            this.windowChoice,
            this.pauseButton,
            this.historyLink,
            element("button", { type: "button", class: "last", click: () => this.removed(this) }, texts.plot.remove),
            element("details", { class: "items" }, element("summary", {}, texts.plot.items), choices),
        );
    }

    private choose(id: number, isChosen: boolean): void {
        this.chosen = isChosen ? [...this.chosen, id] : this.chosen.filter((each) => each !== id);
        this.rebuild();
    }

    private rebuild(): void {
        this.close();
        const items = this.chosen.map((id) => this.watched.items.get(id)).filter((item) => item !== undefined);
        if (items.length === 0) {
            replace(this.place, element("p", { class: "note" }, texts.plot.empty));
        } else {
            this.place.replaceChildren();
            setAttribute(this.place, "role", "group");
            setAttribute(this.place, "aria-label", texts.plot.label(items.map((item) => printable(item.name)).join(", ")));
            this.plot = new Plot(
                this.place,
                items.map((item) => ({ name: printable(item.name), unit: item.unit, isStepped: item.kind === "boolean" })),
                {
                    zoomed: (from, to) => this.hold(from, to),
                    unzoomed: () => this.live(),
                    paused: () => this.togglePause(),
                },
            );
        }
        this.showState();
        this.draw();
    }

    private togglePause(): void {
        if (this.range === null) {
            const { from, to } = this.shown();
            this.hold(from, to);
        } else {
            this.live();
        }
    }

    private hold(from: number, to: number): void {
        this.range = { from, to };
        this.showState();
        this.draw();
    }

    private live(): void {
        this.range = null;
        this.showState();
        this.draw();
    }

    private shown(): { from: number; to: number } {
        const to = this.plant.now();
        return this.range ?? { from: to - Number(this.windowChoice.value) * 1000, to };
    }

    private showState(): void {
        const isHeld = this.range !== null;
        setText(this.pauseButton, isHeld ? texts.plot.live : texts.plot.pause);
        setAttribute(this.pauseButton, "aria-pressed", String(isHeld));
        this.historyLink.hidden = !isHeld || !this.plant.hasHistory;
        if (this.range !== null) {
            const { from, to } = this.range;
            const items = this.chosen.join(",");
            const query = new URLSearchParams({
                controller: this.controller,
                items,
                from: String(Math.round(from)),
                to: String(Math.round(to)),
            });
            this.historyLink.href = `#/history?${query}`;
        }
    }

    private draw(): void {
        if (this.plot === null || document.hidden) {
            return;
        }
        const { from, to } = this.shown();
        const tracks = this.chosen.map((id) => this.watched.tracks.get(id)).filter((track) => track !== undefined);
        const data = join(tracks.map((track) => track.slice(from, to)));
        const events = this.watched.events.filter((event) => event.time >= from && event.time <= to);
        this.plot.set(data, from, to, events);
    }
}
