// How bad a controller is: one order for the tiles, the filters and the title of the tab.
import type { Summary } from "./model";
import { texts } from "./texts";

export type State = Exclude<keyof typeof texts.states, never>;

/** Worst first. */
const order: State[] = [
    "alarm",
    "silent",
    "refused",
    "late",
    "connecting",
    "hold",
    "servoOff",
    "stopped",
    "unknown",
    "running",
];

/** A shape of its own for each, so that colour is never the only sign. */
const shapes: Record<State, string> = {
    alarm: "▲",
    silent: "✖",
    refused: "⊘",
    late: "◆",
    connecting: "◌",
    hold: "❚❚",
    servoOff: "○",
    stopped: "■",
    unknown: "?",
    running: "▶",
};

export function stateOf(controller: Summary): State {
    if (controller.link === "silent" || controller.link === "refused") {
        return controller.link;
    }
    if (controller.alarm !== null) {
        return "alarm";
    }
    if (controller.link !== "online") {
        return controller.link;
    }
    if (controller.running === null && controller.servo === null) {
        return "unknown";
    }
    if (controller.hold) {
        return "hold";
    }
    if (controller.running) {
        return "running";
    }
    return controller.servo === false ? "servoOff" : "stopped";
}

export const isAnswering = (controller: Summary) => controller.link === "online" || controller.link === "late";

export const shapeOf = (state: State) => shapes[state];

const names = new Intl.Collator("en", { numeric: true });

export const byName = names.compare;

/** The worst has the lowest. */
export const rankOf = (state: State) => order.indexOf(state);

export type Filter = keyof typeof texts.filters;

export function passes(filter: Filter, state: State): boolean {
    switch (filter) {
        case "all":
            return true;
        case "alarm":
        case "running":
            return state === filter;
        case "silent":
            return state === "silent" || state === "refused" || state === "late" || state === "connecting";
        case "stopped":
            return state === "stopped" || state === "servoOff" || state === "hold";
    }
}
