import { element, printable, replace } from "./dom";
import { clock } from "./format";
import type { PlantEvent } from "./model";
import { texts } from "./texts";

const minute = 60_000;
const after = 10_000;

const isOneAlarm = 2000; // ms

/**
 * Each event once, newest first. A controller whose state and alarms are both polled reports an alarm twice: the one without a
 * code says nothing more.
 */
export function distinct(events: PlantEvent[]): PlantEvent[] {
    const all = [...new Map(events.map((event) => [`${event.id}/${event.time}/${event.kind}`, event])).values()];
    const coded = all.filter((event) => event.code);
    const isSaid = (event: PlantEvent) =>
        event.kind.startsWith("alarm-") &&
        !event.code &&
        coded.some((each) => each.controller === event.controller && each.kind === event.kind && Math.abs(each.time - event.time) < isOneAlarm);
    return all.filter((event) => !isSaid(event)).sort((a, b) => b.time - a.time || b.id - a.id);
}

/** Events, newest first. Each links to the minute before it where there is a recording. */
export function eventList(events: PlantEvent[], hasHistory: boolean, isOfMany: boolean): HTMLElement {
    if (events.length === 0) {
        return element("p", { class: "note" }, texts.noEvents);
    }
    const list = element("ol", { class: "events", role: "list", tabindex: 0, "aria-label": texts.events });
    for (const event of events) {
        list.append(eventLine(event, hasHistory, isOfMany));
    }
    return list;
}

/** Of an alarm; the code of any other event is a status of the library, which says no more than the kind. */
export function alarmCodeOf(event: PlantEvent): string {
    const isAlarm = event.kind.startsWith("alarm-") && event.code;
    return isAlarm ? ` ${event.code}${event.subcode ? `[${event.subcode}]` : ""}` : "";
}

function eventLine(event: PlantEvent, hasHistory: boolean, isOfMany: boolean): HTMLElement {
    const line = element(
        "li",
        { "data-kind": event.kind },
        element("time", { datetime: new Date(event.time).toISOString() }, clock(event.time)),
        isOfMany && element("span", { class: "name" }, printable(event.controller)),
        element("span", { class: "kind" }, `${texts.event[event.kind] ?? printable(event.kind)}${alarmCodeOf(event)}`),
        element("span", { class: "text" }, printable(event.text ?? "")),
    );
    if (hasHistory) {
        line.append(element("a", { href: minuteBefore(event) }, texts.minuteBefore));
    }
    return line;
}

export function minuteBefore(event: PlantEvent): string {
    const query = new URLSearchParams({
        controller: event.controller,
        from: String(event.time - minute),
        to: String(event.time + after),
    });
    return `#/history?${query}`;
}

/** Leaves a list that is already there alone: a link must not vanish under the pointer. */
export function showEvents(place: HTMLElement, all: PlantEvent[], hasHistory: boolean, isOfMany: boolean): void {
    const events = distinct(all);
    const shown = `${hasHistory} ${events.map((event) => `${event.id}/${event.time}`).join(" ")}`;
    if (place.dataset["shown"] !== shown) {
        place.dataset["shown"] = shown;
        replace(place, eventList(events, hasHistory, isOfMany));
    }
}
