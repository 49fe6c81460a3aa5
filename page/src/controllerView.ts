import { AlarmCard } from "./alarmCard";
import { api } from "./api";
import { ArmView } from "./armView";
import { backfill } from "./backfill";
import { element, printable, replace, setAttribute, setText } from "./dom";
import { showEvents } from "./eventList";
import { clock, duration, reading } from "./format";
import { knobsOf } from "./knobs";
import type { Live } from "./live";
import type { Item, LinkQuality, Summary, Value } from "./model";
import { Watched, type Plant } from "./plant";
import { firstItems, isPlottable, PlotPanel, secondItems } from "./plotPanel";
import { isAnswering, shapeOf, stateOf } from "./severity";
import { texts } from "./texts";
import { jobOf } from "./tile";
import { pathItems, ToolPath } from "./toolPath";
import { Bag, oncePerFrame, type View } from "./view";

const clockPeriod = 200; // ms, how often a plot moves on though no value changed
const linkPeriod = 5000; // ms
const mostEvents = 50;
const eventsFor = 3_600_000; // ms

type Fact = keyof typeof texts.facts;

/** One controller: what it is doing now, and the last minutes of what is polled. */
export class ControllerView implements View {
    readonly title: string;
    readonly root = element("div", { class: "controller" });

    private readonly heading = element("p", { class: "headline" });
    private readonly facts = new Map<Fact, HTMLElement>();
    private readonly alarm = new AlarmCard();
    private readonly plots = element("div", { class: "plots" });
    private readonly path = element("section", { class: "panel" });
    private readonly values = element("tbody");
    private readonly events = element("div");
    private readonly cells = new Map<number, { value: HTMLElement; quality: HTMLElement; time: HTMLElement }>();
    private readonly bag = new Bag();
    private panels: PlotPanel[] = [];
    private shownItems: string | null = null;
    private toolPath: ToolPath | null = null;
    private arm: ArmView | null = null;
    private quality: LinkQuality = {};
    private readonly knobs = element("div");
    private readonly showValues = oncePerFrame(() => this.drawValues());

    constructor(
        private readonly name: string,
        private readonly plant: Plant,
        live: Live,
    ) {
        this.title = printable(name);
        live.watch([name]);
        this.bag.add(() => live.watch([]));
        this.bag.add(() => plant.watched.delete(name));
        if (!plant.watched.has(name)) {
            plant.watched.set(name, new Watched());
        }
        this.build();
        this.bag.add(plant.summaryChanges.add((names) => (names === null || names.has(name)) && this.showSummary()));
        this.bag.add(plant.itemChanges.add((changed) => changed === name && this.showItems()));
        this.bag.add(plant.valueChanges.add((changed) => changed === name && this.valuesCame()));
        this.bag.add(plant.eventChanges.add(() => this.showEvents()));
        const timer = window.setInterval(() => this.tick(), clockPeriod);
        this.bag.add(() => window.clearInterval(timer));
        const linkTimer = window.setInterval(() => void this.askLink(), linkPeriod);
        this.bag.add(() => window.clearInterval(linkTimer));
        this.watched.addEvents(plant.events.filter((event) => event.controller === name));
        this.showSummary();
        this.showItems();
        this.showEvents();
    }

    close(): void {
        this.bag.empty();
        this.closePanels();
        this.arm?.close();
    }

    private get watched(): Watched {
        return this.plant.watched.get(this.name) ?? new Watched();
    }

    private build(): void {
        const list = element("dl", { class: "facts" });
        for (const fact of Object.keys(texts.facts) as Fact[]) {
            const value = element("dd");
            this.facts.set(fact, value);
            list.append(element("div", {}, element("dt", {}, texts.facts[fact]), value));
        }
        const table = element(
            "table",
            {},
            element(
                "thead",
                {},
                element("tr", {}, element("th", { scope: "col" }, texts.item), element("th", { scope: "col" }, texts.value), element("th", { scope: "col" }, texts.since)),
            ),
            this.values,
        );
        this.arm = new ArmView(this.name, this.watched);
        this.root.append(
            element("section", { class: "panel" }, element("div", { class: "title-line" }, element("h1", {}, this.title), this.heading), list),
            this.alarm.root,
            element(
                "div",
                { class: "title-line" },
                element("h2", {}, texts.plots),
                element("p", { class: "note" }, texts.plot.keys),
                element("button", { type: "button", class: "last", click: () => this.addPlot([]) }, texts.plot.add),
            ),
            this.plots,
            element("div", { class: "drawings" }, this.arm.root, this.path),
            this.knobs,
            element(
                "div",
                { class: "columns" },
                element("section", { class: "panel" }, element("h2", {}, texts.events), this.events),
                element("section", { class: "panel" }, element("h2", {}, texts.values), element("div", { class: "scroll", tabindex: 0, role: "region", "aria-label": texts.values }, table)),
            ),
        );
    }

    private showSummary(): void {
        const controller = this.plant.controllers.get(this.name);
        this.root.classList.toggle("unknown", controller === undefined);
        if (controller === undefined) {
            setAttribute(this.heading, "data-state", null);
            setText(this.heading, this.plant.isKnown ? texts.unknownController(this.title) : texts.connection.connecting);
            return;
        }
        const state = stateOf(controller);
        setAttribute(this.heading, "data-state", state);
        setText(this.heading, `${shapeOf(state)} ${texts.states[state]}`);
        this.alarm.show(controller.alarm, isAnswering(controller));
        this.showFacts(controller);
        if (controller.virtual && this.plant.simulated && this.knobs.firstChild === null) {
            this.knobs.append(knobsOf(this.name));
        }
    }

    private async askLink(): Promise<void> {
        if (!document.hidden && this.plant.controllers.has(this.name)) {
            this.quality = await api.controller(this.name).then(
                ({ link }) => link,
                () => ({}),
            ); // the banner says that the gateway is away
        }
    }

    private showFacts(controller: Summary): void {
        const { answered, roundTrip } = controller;
        const { exchanges, timeouts = 0, groups = [] } = this.quality;
        const sum = (of: "rounds" | "overruns") => groups.reduce((all, group) => all + group[of], 0);
        const motion = controller.hold ? "hold" : controller.running ? "running" : "stopped";
        const shown: Record<Fact, string> = {
            address: controller.host,
            model: printable(controller.model ?? "") || "–",
            software: printable(controller.software ?? "") || "–",
            link: controller.link === "online" ? texts.online : texts.states[controller.link],
            mode: controller.mode === null ? "–" : texts.mode[controller.mode],
            servo: controller.servo === null ? "–" : controller.servo ? texts.servo.on : texts.servo.off,
            motion: controller.running === null ? "–" : texts.motion[motion],
            job: jobOf(controller),
            roundTrip: roundTrip === null ? "–" : texts.microseconds(roundTrip),
            lost: exchanges === undefined ? texts.notKnown : texts.share(timeouts, exchanges),
            overruns: exchanges === undefined ? texts.notKnown : texts.share(sum("overruns"), sum("rounds")),
            answered: answered === null ? texts.never : texts.age(duration(this.plant.now() - answered)),
        };
        for (const [fact, node] of this.facts) {
            setText(node, shown[fact]);
        }
    }

    /** The items of the controller are known, or others than before: the plots start again with them. */
    private showItems(): void {
        const { items } = this.watched;
        void backfill(this.plant, this.name, this.plant.lostAt).catch(() => undefined); // without it plots begin now
        void this.askEvents();
        void this.askLink();
        this.plant.lostAt = 0;
        const shown = [...items.values()].map((item) => `${item.id} ${item.name}`).join("\n");
        if (shown === this.shownItems) {
            return; // the same after a reconnect: plots keep their choice, zoom and pause
        }
        this.shownItems = shown;
        this.closePanels();
        this.plots.replaceChildren();
        this.cells.clear();
        this.values.replaceChildren();
        for (const item of items.values()) {
            this.addRow(item);
        }
        this.drawValues();
        const plottable = [...items.values()].filter(isPlottable);
        if (items.size > 0 && plottable.length === 0) {
            replace(this.plots, element("p", { class: "note" }, texts.plot.nothing));
        } else if (plottable.length > 0) {
            this.addPlot(firstItems(plottable));
            const second = secondItems(plottable);
            if (second.length > 0) {
                this.addPlot(second);
            }
        }
        const axes = pathItems(this.watched);
        this.toolPath = axes === null ? null : new ToolPath(this.plant, this.watched, axes);
        replace(this.path, element("h2", {}, texts.path.title), this.toolPath?.root ?? element("p", { class: "note" }, texts.path.missing));
    }

    private addRow(item: Item): void {
        const cells = { value: element("td"), quality: element("span", { class: "quality" }), time: element("td") };
        this.cells.set(item.id, cells);
        this.values.append(
            element("tr", {}, element("th", { scope: "row" }, printable(item.name), " ", cells.quality), cells.value, cells.time),
        );
    }

    private addPlot(items: number[]): void {
        const panel = new PlotPanel(this.plant, this.name, this.watched, items, (removed) => this.removePlot(removed));
        this.panels.push(panel);
        this.plots.append(panel.root);
    }

    private removePlot(panel: PlotPanel): void {
        this.panels = this.panels.filter((each) => each !== panel);
        panel.close();
        panel.root.remove();
    }

    private closePanels(): void {
        for (const panel of this.panels.splice(0)) {
            panel.close();
        }
    }

    private valuesCame(): void {
        this.showValues();
        this.toolPath?.redraw();
        this.arm?.redraw();
    }

    private drawValues(): void {
        for (const [id, cells] of this.cells) {
            const item = this.watched.items.get(id);
            const latest = this.watched.latest.get(id);
            if (item !== undefined && latest !== undefined) {
                const [, time, value, quality] = latest;
                setText(cells.value, shownValue(item, value));
                setText(cells.quality, quality === "good" ? "" : texts.quality[quality]);
                setText(cells.time, clock(time));
            }
        }
    }

    private tick(): void {
        if (!document.hidden) {
            for (const panel of this.panels) {
                panel.redraw();
            }
            const controller = this.plant.controllers.get(this.name);
            if (controller !== undefined) {
                this.showFacts(controller);
            }
        }
    }

    /** What came before the page, or while it did not look. */
    private async askEvents(): Promise<void> {
        const to = Math.round(this.plant.now()) + linkPeriod; // clocks differ a little
        const past = await api.events({ from: to - eventsFor, to, controller: this.name, limit: mostEvents }).catch(() => []);
        this.watched.addEvents(past);
        this.showEvents();
    }

    private showEvents(): void {
        showEvents(this.events, this.watched.events.slice(0, mostEvents), this.plant.hasHistory, false);
    }
}

/** Mode and cycle are numbers on the wire. */
function shownValue(item: Item, value: Value[2]): string {
    const numbers: Record<string, readonly string[]> = { "state mode": texts.modeNumbers, "state cycle": texts.cycleNumbers };
    const word = typeof value === "number" ? numbers[item.name]?.[value] : undefined;
    return word ?? (typeof value === "string" ? printable(value) : reading(value, item.unit));
}
