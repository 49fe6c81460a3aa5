// What is known of the controllers, put together from the gateway's messages.
import { distinct } from "./eventList";
import { Listeners } from "./listeners";
import type { Item, PlantEvent, ServerMessage, Summary, Value } from "./model";
import { Track } from "./track";

const mostEvents = 1000;
const mostOwnEvents = 300;

/** The items of a watched controller, each with its recent past. */
export class Watched {
    readonly items = new Map<number, Item>();
    readonly tracks = new Map<number, Track>();
    readonly latest = new Map<number, Value>();
    events: PlantEvent[] = []; // newest first

    addEvents(events: PlantEvent[]): void {
        if (events.length > 0) {
            this.events = distinct([...events, ...this.events]).slice(0, mostOwnEvents);
        }
    }

    setItems(items: Item[]): void {
        const gone = new Set(this.items.keys());
        for (const item of items) {
            const before = this.items.get(item.id);
            gone.delete(item.id);
            this.items.set(item.id, item);
            if (before === undefined || before.name !== item.name) {
                this.tracks.set(item.id, new Track(item.period));
                this.latest.delete(item.id);
            }
        }
        for (const id of gone) {
            this.items.delete(id);
            this.tracks.delete(id);
            this.latest.delete(id);
        }
    }

    take(values: Value[]): void {
        for (const value of values) {
            const [id, time, read, quality] = value;
            this.latest.set(id, value);
            const number = typeof read === "boolean" ? Number(read) : read;
            this.tracks.get(id)?.add(time, quality === "good" && typeof number === "number" ? number : null);
        }
    }

    /** Nothing was heard in between: no line is drawn across. */
    interrupt(time: number): void {
        for (const track of this.tracks.values()) {
            track.add(time, null);
        }
    }
}

export class Plant {
    readonly controllers = new Map<string, Summary>();
    readonly watched = new Map<string, Watched>();
    events: PlantEvent[] = []; // newest first
    gateway = "";
    version = "";
    simulated = false;
    hasHistory = false;
    isKnown = false;

    /** The names that changed; null for all of them. */
    readonly summaryChanges = new Listeners<[Set<string> | null]>();
    readonly valueChanges = new Listeners<[string]>();
    readonly itemChanges = new Listeners<[string]>();
    readonly eventChanges = new Listeners<[PlantEvent[]]>();

    /** When the connection was lost, by the gateway's time; 0 while nothing is missing. */
    lostAt = 0;

    private clockOffset = 0;

    /** The gateway's time, which all other times are compared with. */
    now(): number {
        return Date.now() + this.clockOffset;
    }

    take(message: ServerMessage): void {
        switch (message.type) {
            case "hello":
                this.takeHello(message);
                break;
            case "delta":
                this.takeDelta(message);
                break;
            case "items":
                this.watch(message.controller).setItems(message.items);
                this.watch(message.controller).take(message.values);
                this.itemChanges.tell(message.controller);
                this.valueChanges.tell(message.controller);
                break;
            case "values":
                this.watched.get(message.controller)?.take(message.values);
                this.valueChanges.tell(message.controller);
                break;
            case "error":
                console.warn(message.text);
                break;
        }
    }

    /** The connection is lost: what is known ends here, until it is there again. */
    interrupt(): void {
        this.lostAt = this.now();
        for (const each of this.watched.values()) {
            each.interrupt(this.lostAt);
        }
    }

    private watch(name: string): Watched {
        let found = this.watched.get(name);
        if (found === undefined) {
            found = new Watched();
            this.watched.set(name, found);
        }
        return found;
    }

    private takeHello(message: ServerMessage & { type: "hello" }): void {
        this.gateway = message.gateway;
        this.version = message.version;
        this.simulated = message.simulated;
        this.hasHistory = message.history;
        this.clockOffset = message.time - Date.now();
        this.controllers.clear();
        for (const controller of message.controllers) {
            this.controllers.set(controller.name, controller);
        }
        this.isKnown = true;
        this.events = [];
        this.addEvents(message.events);
        this.summaryChanges.tell(null);
    }

    private takeDelta(message: ServerMessage & { type: "delta" }): void {
        this.clockOffset = message.time - Date.now();
        const changed = new Set<string>();
        let isMembershipNew = false;
        for (const change of message.changed) {
            const before = this.controllers.get(change.name);
            isMembershipNew ||= before === undefined;
            this.controllers.set(change.name, { ...(before ?? unknown(change.name)), ...change });
            changed.add(change.name);
            if (change.link === "silent" && before?.link !== "silent") {
                this.watched.get(change.name)?.interrupt(message.time);
            }
        }
        for (const name of message.removed ?? []) {
            this.controllers.delete(name);
            this.watched.delete(name);
            isMembershipNew = true;
        }
        this.addEvents(message.events ?? []);
        this.summaryChanges.tell(isMembershipNew ? null : changed);
    }

    private addEvents(events: PlantEvent[]): void {
        if (events.length > 0) {
            this.events = [...events, ...this.events].sort((a, b) => b.time - a.time || b.id - a.id).slice(0, mostEvents);
            for (const [name, watched] of this.watched) {
                watched.addEvents(events.filter((event) => event.controller === name));
            }
            this.eventChanges.tell(events);
        }
    }
}

function unknown(name: string): Summary {
    return {
        name,
        host: "",
        link: "connecting",
        mode: null,
        servo: null,
        running: null,
        hold: null,
        alarm: null,
        job: null,
        answered: null,
        roundTrip: null,
        virtual: false,
    };
}
