import { element, setAttribute, setText } from "./dom";
import type { Plant } from "./plant";
import { byName, passes, rankOf, type Filter } from "./severity";
import { texts } from "./texts";
import { Tile } from "./tile";
import { Bag, oncePerFrame, type View } from "./view";

const agePeriod = 1000;
const filters = Object.keys(texts.filters) as Filter[];

/** All controllers, worst first. */
export class Overview implements View {
    readonly title = texts.overview;
    readonly root = element("div", { class: "overview" });

    private readonly list = element("ul", { class: "tiles", "aria-label": texts.overview, role: "list" });
    private readonly note = element("p", { class: "note", role: "status" });
    private readonly search = element("input", {
        type: "search",
        id: "search",
        placeholder: texts.searchHint,
        "aria-label": texts.search,
        autocomplete: "off",
    });
    private readonly counts = new Map<Filter, HTMLElement>();
    private readonly tiles = new Map<string, Tile>();
    private readonly bag = new Bag();
    private filter: Filter = "all";
    private dirty: Set<string> | null = null;
    private readonly schedule = oncePerFrame(() => this.draw());

    constructor(private readonly plant: Plant) {
        this.root.append(element("h1", { class: "unseen" }, texts.overview), this.bar(), this.note, this.list);
        this.list.addEventListener("keydown", (event) => this.moveFocus(event));
        this.search.addEventListener("input", () => this.arrange());
        this.bag.add(plant.summaryChanges.add((names) => this.changed(names)));
        const timer = window.setInterval(() => this.updateAges(), agePeriod);
        this.bag.add(() => window.clearInterval(timer));
        this.rebuild();
    }

    close(): void {
        this.bag.empty();
    }

    focusSearch(): void {
        this.search.focus();
    }

    private bar(): HTMLElement {
        const group = element("div", { class: "filters", role: "group", "aria-label": texts.show });
        for (const filter of filters) {
            const count = element("span", { class: "count" });
            const button = element(
                "button",
                {
                    type: "button",
                    "data-filter": filter,
                    "aria-pressed": String(filter === this.filter),
                    click: () => this.choose(filter),
                },
                `${texts.filters[filter]} `,
                count,
            );
            this.counts.set(filter, count);
            group.append(button);
        }
        return element("div", { class: "bar" }, this.search, group);
    }

    private choose(filter: Filter): void {
        this.filter = filter;
        for (const button of this.root.querySelectorAll("[data-filter]")) {
            setAttribute(button, "aria-pressed", String(button.getAttribute("data-filter") === filter));
        }
        this.arrange();
    }

    private changed(names: Set<string> | null): void {
        if (names === null) {
            this.rebuild();
            return;
        }
        this.dirty = this.dirty === null ? names : new Set([...this.dirty, ...names]);
        this.schedule();
    }

    private rebuild(): void {
        this.dirty = null;
        for (const name of [...this.tiles.keys()].filter((each) => !this.plant.controllers.has(each))) {
            this.tiles.get(name)!.root.remove();
            this.tiles.delete(name);
        }
        const now = this.plant.now();
        for (const name of [...this.plant.controllers.keys()].sort(byName)) {
            const controller = this.plant.controllers.get(name)!;
            const tile = this.tiles.get(name) ?? new Tile(controller);
            this.tiles.delete(name); // and behind those before it: the tiles stand by name
            this.tiles.set(name, tile);
            tile.update(controller, now);
        }
        this.arrange();
    }

    private draw(): void {
        const now = this.plant.now();
        let isOrderNew = false;
        for (const name of this.dirty ?? []) {
            const tile = this.tiles.get(name);
            const controller = this.plant.controllers.get(name);
            if (tile !== undefined && controller !== undefined) {
                const before = tile.state;
                tile.update(controller, now);
                isOrderNew ||= before !== tile.state;
            }
        }
        this.dirty = null;
        if (isOrderNew) {
            this.arrange();
        }
    }

    /** Puts the tiles that pass into order. A tile that stands right is not moved, so that it keeps the focus. */
    private arrange(): void {
        const wanted = this.search.value.trim().toLowerCase();
        const all = [...this.tiles.values()].sort((a, b) => rankOf(a.state) - rankOf(b.state)); // stable: by name within a state
        let place = this.list.firstElementChild;
        let shown = 0;
        const focused = document.activeElement;
        for (const tile of all) {
            if (!passes(this.filter, tile.state) || !tile.text.includes(wanted)) {
                if (tile.root === place) {
                    place = place.nextElementSibling;
                }
                tile.root.remove();
                continue;
            }
            shown += 1;
            if (tile.root === place) {
                place = place.nextElementSibling;
            } else {
                this.list.insertBefore(tile.root, place);
            }
        }
        if (focused instanceof HTMLElement && focused !== document.activeElement && focused.isConnected) {
            focused.focus();
        }
        for (const [filter, count] of this.counts) {
            setText(count, String(all.filter((tile) => passes(filter, tile.state)).length));
        }
        setText(this.note, this.noteFor(all.length, shown));
    }

    private noteFor(all: number, shown: number): string {
        if (!this.plant.isKnown) {
            return texts.connection.connecting;
        }
        return all === 0 ? texts.noControllers : shown === 0 ? texts.none : "";
    }

    private updateAges(): void {
        if (!document.hidden) {
            const now = this.plant.now();
            for (const tile of this.tiles.values()) {
                tile.updateAge(now);
            }
        }
    }

    /** Arrow keys go from tile to tile as they are seen, row by row. */
    private moveFocus(event: KeyboardEvent): void {
        const links = [...this.list.querySelectorAll<HTMLAnchorElement>("a.tile")];
        const at = links.indexOf(document.activeElement as HTMLAnchorElement);
        if (at < 0) {
            return;
        }
        const top = links[0]!.offsetTop;
        const columns = Math.max(1, links.findIndex((link) => link.offsetTop !== top));
        const steps: Record<string, number> = {
            ArrowLeft: -1,
            ArrowRight: 1,
            ArrowUp: -columns,
            ArrowDown: columns,
            Home: -at,
            End: links.length - 1 - at,
        };
        const step = steps[event.key];
        const next = step === undefined ? undefined : links[at + step];
        if (next !== undefined) {
            event.preventDefault();
            next.focus();
        }
    }
}
