import { api } from "./api";
import { element, printable, replace, setAttribute, setText } from "./dom";
import { distinct, showEvents } from "./eventList";
import { bytes, clock, localInput } from "./format";
import { lineOf } from "./envelope";
import { join } from "./joined";
import type { History, Incident, Item, PlantEvent } from "./model";
import type { Plant } from "./plant";
import { Plot } from "./plot";
import { firstItems, isPlottable } from "./plotPanel";
import { texts } from "./texts";
import { Bag, type View } from "./view";

const points = 1000;
const mostEvents = 300;
const firstSpan = 600_000;
const reloadPeriod = 2_000; // milliseconds

interface Choice {
    controller: string;
    items: string;
    from: number;
    to: number;
    kind: string;
}

/** The recording: a range of time of one controller, its events and incidents. The address of the page says which. */
export class HistoryView implements View {
    readonly title = texts.history;
    readonly root = element("div", { class: "history" });

    private readonly place = element("div", { class: "plot" });
    private readonly note = element("p", { class: "note", role: "status" });
    private readonly events = element("div");
    private readonly incidents = element("div");
    private readonly itemChoices = element("div", { class: "choices" });
    private readonly controller = element("select", { "aria-label": texts.record.controller, change: () => this.go({ items: "" }) });
    private readonly kind = element("select", { "aria-label": texts.record.kinds, change: () => this.go({}) });
    private readonly from = element("input", { type: "datetime-local", step: 1, "aria-label": texts.record.from });
    private readonly to = element("input", { type: "datetime-local", step: 1, "aria-label": texts.record.to });
    private readonly bag = new Bag();
    private readonly asked = new AbortController();
    private plot: Plot | null = null;
    private items: Item[] = [];
    private readonly choice: Choice;
    private shownIncidents = "";
    private reload = 0;

    constructor(
        query: URLSearchParams,
        private readonly plant: Plant,
    ) {
        const to = Number(query.get("to")) || Math.round(plant.now());
        this.choice = {
            controller: query.get("controller") ?? "",
            items: query.get("items") ?? "",
            from: Number(query.get("from")) || to - firstSpan,
            to,
            kind: query.get("kind") ?? "",
        };
        this.build();
        if (plant.isKnown) {
            this.start();
        } else {
            this.bag.add(plant.summaryChanges.add(() => plant.isKnown && this.items.length === 0 && this.start()));
        }
    }

    close(): void {
        this.asked.abort();
        window.clearTimeout(this.reload);
        this.bag.empty();
        this.plot?.destroy();
    }

    private build(): void {
        const lasts = Object.entries(texts.record.lastChoices).map(([seconds, text]) =>
            element("button", { type: "button", "aria-label": `${texts.record.last} ${text}`, click: () => this.last(Number(seconds) * 1000) }, text),
        );
        this.kind.append(element("option", { value: "" }, texts.record.everyKind));
        for (const [kind, text] of Object.entries(texts.event)) {
            this.kind.append(element("option", { value: kind }, text));
        }
        this.kind.value = this.choice.kind;
        this.from.value = localInput(this.choice.from);
        this.to.value = localInput(this.choice.to);
        const button = (text: string, click: () => void) => element("button", { type: "button", click }, text);
        this.root.append(
            element(
                "section",
                { class: "panel" },
                element("h1", {}, texts.history),
                element(
                    "div",
                    { class: "bar" },
                    this.controller,
                    this.from,
                    this.to,
                    button(texts.record.show, () => this.goTo(Date.parse(this.from.value), Date.parse(this.to.value))),
                    button(texts.record.earlier, () => this.shift(-1)),
                    button(texts.record.later, () => this.shift(1)),
                    element("span", { class: "filters last", role: "group", "aria-label": texts.record.last }, texts.record.last, ...lasts),
                ),
                element("details", { class: "items" }, element("summary", {}, texts.plot.items), this.itemChoices),
                this.note,
                this.place,
            ),
            element("section", { class: "panel" }, element("h2", {}, texts.events), element("div", { class: "bar" }, this.kind), this.events),
            element("section", { class: "panel" }, element("h2", {}, texts.record.incidents), this.incidents),
        );
    }

    private start(): void {
        if (!this.plant.hasHistory) {
            setText(this.note, texts.record.off);
            return;
        }
        const names = [...this.plant.controllers.keys()].sort(new Intl.Collator("en", { numeric: true }).compare);
        this.controller.replaceChildren(...names.map((name) => element("option", { value: name }, printable(name))));
        this.choice.controller ||= names[0] ?? "";
        this.controller.value = this.choice.controller;
        void this.load();
    }

    private async load(): Promise<void> {
        setText(this.note, texts.record.loading);
        try {
            await Promise.all([this.loadPlot(), this.loadIncidents()]);
            setText(this.note, "");
        } catch (error) {
            if (!this.asked.signal.aborted) {
                setText(this.note, texts.failed(error instanceof Error ? error.message : String(error)));
            }
        }
    }

    private async loadPlot(): Promise<void> {
        const { controller, from, to } = this.choice;
        if (!(from < to)) {
            setText(this.note, texts.record.badRange);
            return;
        }
        this.items = (await api.controller(controller)).items.filter(isPlottable);
        this.choice.items ||= firstItems(this.items).join(",");
        this.offerItems();
        const [history, events] = await Promise.all([
            this.choice.items === ""
                ? Promise.resolve({ from, to, series: [] } as History)
                : api.history({ controller, items: this.choice.items, from, to, points }, this.asked.signal),
            api.events({ from, to, controller, kind: this.choice.kind, limit: mostEvents }),
        ]);
        if (!this.asked.signal.aborted) {
            this.draw(history, events);
            showEvents(this.events, events, true, false);
        }
    }

    private draw(history: History, events: PlantEvent[]): void {
        this.plot?.destroy();
        this.plot = null;
        this.place.replaceChildren();
        if (history.series.every((series) => series.times.length === 0)) {
            replace(this.place, element("p", { class: "note empty" }, this.choice.items === "" ? texts.plot.empty : texts.record.nothing));
            return;
        }
        setAttribute(this.place, "role", "group");
        setAttribute(this.place, "aria-label", texts.plot.label(history.series.map((series) => printable(series.name)).join(", ")));
        this.plot = new Plot(
            this.place,
            history.series.map((series) => ({ name: printable(series.name), unit: series.unit, isStepped: true })),
            {
                zoomed: (from, to) => this.goTo(from, to),
                unzoomed: () => history.from < history.to && this.goTo(history.from - (history.to - history.from) / 2, history.to + (history.to - history.from) / 2),
                paused: () => undefined,
            },
            340,
        );
        this.plot.set(join(history.series.map((series) => lineOf(series, history.to))), history.from, history.to, distinct(events));
    }

    private offerItems(): void {
        const chosen = new Set(this.choice.items.split(",").map(Number));
        this.itemChoices.replaceChildren(
            ...this.items.map((item) => {
                const box = element("input", {
                    type: "checkbox",
                    checked: chosen.has(item.id),
                    change: () => {
                        if (box.checked) {
                            chosen.add(item.id);
                        } else {
                            chosen.delete(item.id);
                        }
                        this.go({ items: [...chosen].filter((id) => id > 0).join(",") });
                    },
                });
                return element("label", {}, box, printable(item.name), item.unit ? ` (${item.unit})` : "");
            }),
        );
    }

    /** Again and again while one is still being written: it gets its last name when it is complete. */
    private async loadIncidents(): Promise<void> {
        const incidents = await api.incidents().catch(() => [] as Incident[]);
        if (this.asked.signal.aborted) {
            return;
        }
        const shown = JSON.stringify(incidents);
        if (shown !== this.shownIncidents) {
            this.shownIncidents = shown;
            replace(this.incidents, incidents.length === 0 ? element("p", { class: "note" }, texts.record.noIncidents) : incidentTable(incidents));
        }
        if (incidents.some((incident) => !incident.complete)) {
            this.reload = window.setTimeout(() => void this.loadIncidents(), reloadPeriod);
        }
    }

    private shift(direction: number): void {
        const span = (this.choice.to - this.choice.from) / 2;
        this.goTo(this.choice.from + direction * span, this.choice.to + direction * span);
    }

    private last(span: number): void {
        const to = this.plant.now();
        this.goTo(to - span, to);
    }

    private goTo(from: number, to: number): void {
        if (!(from < to)) {
            setText(this.note, texts.record.badRange);
            return;
        }
        this.go({ from: Math.round(from), to: Math.round(to) });
    }

    private go(change: Partial<Choice>): void {
        const { from, to, items } = { ...this.choice, ...change };
        const query = new URLSearchParams({ controller: this.controller.value, from: String(from), to: String(to) });
        if (items) {
            query.set("items", items);
        }
        if (this.kind.value) {
            query.set("kind", this.kind.value);
        }
        location.hash = `#/history?${query}`;
    }
}

function downloads({ file }: Incident): HTMLElement[] {
    return [
        element("a", { href: api.incidentLink(file), download: file }, texts.record.download),
        element("a", { href: api.incidentLink(file, "csv"), download: `${file}.csv` }, texts.record.downloadTable),
    ];
}

function incidentTable(incidents: Incident[]): HTMLElement {
    const rows = incidents.map((incident) =>
        element(
            "li",
            {},
            element("time", { datetime: new Date(incident.time).toISOString() }, clock(incident.time)),
            element("span", { class: "name" }, printable(incident.controller)),
            element("span", { class: "kind" }, texts.event[incident.kind] ?? printable(texts.record.incident(incident.kind))),
            element("span", { class: "text" }, bytes(incident.bytes)),
            ...(incident.complete ? downloads(incident) : [element("span", { class: "note" }, texts.record.beingWritten)]),
        ),
    );
    return element("ol", { class: "events", role: "list", tabindex: 0, "aria-label": texts.record.incidents }, ...rows);
}
