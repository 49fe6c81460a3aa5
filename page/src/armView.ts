import { api } from "./api";
import { element, replace } from "./dom";
import type { Geometry, Item } from "./model";
import type { Watched } from "./plant";
import { texts } from "./texts";
import { oncePerFrame } from "./view";

/** What arm.ts, a file of its own, offers: only a page that shows an arm loads it. */
export interface ArmDrawing {
    readonly canvas: HTMLCanvasElement;
    pose(degrees: number[]): void;
    close(): void;
}

const axes = ["S", "L", "U", "R", "B", "T"];

/** The arm of a controller whose geometry is known; nothing at all for any other. */
export class ArmView {
    readonly root = element("section", { class: "panel arm", hidden: true });
    readonly redraw = oncePerFrame(() => this.draw());

    private readonly note = element("p", { class: "note", hidden: true }, texts.arm.unknown);
    private drawing: ArmDrawing | null = null;
    private geometry: Geometry | null = null;
    private isClosed = false;

    constructor(
        private readonly name: string,
        private readonly watched: Watched,
    ) {
        void this.load();
    }

    close(): void {
        this.isClosed = true;
        this.drawing?.close();
        this.drawing = null;
    }

    private async load(): Promise<void> {
        const isKnown = await api.controller(this.name).then(
            ({ hasGeometry }) => hasGeometry === true,
            () => false,
        );
        const geometry = isKnown ? await api.geometry(this.name).catch(() => null) : null;
        if (geometry === null || this.isClosed) {
            return;
        }
        this.root.hidden = false;
        replace(this.root, element("h2", {}, texts.arm.title), element("p", { class: "note" }, texts.arm.loading));
        const module = (await import("./arm.js" as string)) as { drawArm(geometry: Geometry, label: string): ArmDrawing };
        if (this.isClosed) {
            return;
        }
        this.geometry = geometry;
        this.drawing = module.drawArm(geometry, texts.arm.label(this.name));
        replace(this.root, element("h2", {}, texts.arm.title), this.note, this.drawing.canvas);
        this.draw();
    }

    private draw(): void {
        const angles = this.angles();
        this.note.hidden = angles !== null;
        if (this.drawing === null || document.hidden) {
            return;
        }
        const { canvas } = this.drawing;
        canvas.classList.toggle("past", angles === null);
        if (angles !== null) {
            this.drawing.pose(angles);
        }
        canvas.hidden = canvas.dataset["pose"] === undefined; // a pose that it never had would be made up
    }

    private angles(): number[] | null {
        const pulses = axes.map((axis, index) => this.latestPulses(axis, index));
        const perDegree = this.geometry?.pulsesPerDegree;
        return perDegree === undefined || pulses.some((value) => value === null)
            ? null
            : pulses.map((value, index) => value! / (perDegree[index] || 1));
    }

    private latestPulses(axis: string, index: number): number | null {
        const isAxis = (item: Item) =>
            item.what === "position" &&
            item.coordinate === "pulse" &&
            item.group === this.geometry?.group &&
            (item.axis === axis || item.axis === String(index + 1));
        const item = [...this.watched.items.values()].find(isAxis);
        const value = item === undefined ? undefined : this.watched.latest.get(item.id);
        return typeof value?.[2] === "number" ? value[2] : null;
    }
}
