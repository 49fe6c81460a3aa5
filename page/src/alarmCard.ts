import { api } from "./api";
import { element, printable, replace } from "./dom";
import type { Alarm, Card } from "./model";
import { texts } from "./texts";

/** The alarm that is active, with what it means and what to do. */
export class AlarmCard {
    readonly root = element("section", { class: "panel alarm-card", "aria-live": "polite" });
    private shown = "";

    show(alarm: Alarm | null): void {
        const key = alarm === null ? "none" : `${alarm.code} ${alarm.subcode} ${alarm.text}`;
        if (key === this.shown) {
            return;
        }
        this.shown = key;
        this.root.classList.toggle("active", alarm !== null);
        if (alarm === null) {
            replace(this.root, element("h2", {}, texts.alarms), element("p", { class: "note" }, texts.noAlarm));
            return;
        }
        const body = element("div");
        const heading = texts.alarm(alarm.code, alarm.subcode, printable(alarm.text));
        replace(this.root, element("h2", {}, texts.alarms), element("p", { class: "alarm-line" }, `▲ ${heading}`), body);
        api.card(alarm.code, alarm.subcode).then(
            (card) => this.shown === key && showCard(body, card),
            () => this.shown === key && replace(body, element("p", { class: "note" }, texts.card.missing)),
        );
    }
}

function showCard(body: HTMLElement, card: Card): void {
    replace(
        body,
        element("p", {}, element("strong", {}, card.title)),
        element("h3", {}, texts.card.meaning),
        element("p", {}, card.meaning),
        element("h3", {}, texts.card.action),
        element("p", { class: "action" }, card.action),
    );
}
