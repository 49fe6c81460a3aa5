import { api } from "./api";
import { element, printable, replace } from "./dom";
import type { Alarm, Card } from "./model";
import { texts } from "./texts";

/** The alarm that is active, with what it means and what to do. */
export class AlarmCard {
    readonly root = element("section", { class: "panel alarm-card", "aria-live": "polite" });
    private shown = "";

    /** `isKnown`: whether the controller answers, so that no alarm means that there is none. */
    show(alarm: Alarm | null, isKnown: boolean): void {
        const key = alarm === null ? `none ${isKnown}` : `${alarm.code} ${alarm.subcode} ${alarm.count} ${alarm.text}`;
        if (key === this.shown) {
            return;
        }
        this.shown = key;
        this.root.classList.toggle("active", alarm !== null);
        if (alarm === null) {
            replace(this.root, element("h2", { class: "unseen" }, texts.alarms), element("p", { class: "note" }, isKnown ? texts.noAlarm : texts.alarmUnknown));
            return;
        }
        const body = element("div", { class: "card" });
        const heading = texts.alarm(alarm.code, alarm.subcode, printable(alarm.text));
        const more = alarm.count > 1 ? ` ${texts.moreAlarms(alarm.count - 1)}` : "";
        replace(this.root, element("h2", { class: "unseen" }, texts.alarms), element("p", { class: "alarm-line" }, `▲ ${heading}${more}`), body);
        api.card(alarm.code, alarm.subcode).then(
            (card) => this.shown === key && showCard(body, card),
            () => this.shown === key && replace(body, element("p", { class: "note" }, texts.card.missing)),
        );
    }
}

function showCard(body: HTMLElement, card: Card): void {
    replace(
        body,
        element("p", { class: "title" }, card.title),
        element("div", {}, element("h3", {}, texts.card.meaning), element("p", {}, card.meaning)),
        element("div", {}, element("h3", {}, texts.card.action), element("p", { class: "action" }, card.action)),
    );
}
