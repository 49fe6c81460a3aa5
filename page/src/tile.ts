import { element, printable, setAttribute, setText } from "./dom";
import { duration } from "./format";
import type { Summary } from "./model";
import { shapeOf, stateOf, type State } from "./severity";
import { texts } from "./texts";

const fresh = 2000; // ms: a younger value is as good as now, and a wall of counting tenths would be restless

/** One controller in the overview. Its nodes live as long as the controller; only what changed is touched. */
export class Tile {
    readonly root: HTMLLIElement;
    readonly link: HTMLAnchorElement;
    state: State = "connecting";

    private readonly shape = element("span", { class: "shape", "aria-hidden": "true" });
    private readonly stateText = element("span", { class: "state" });
    private readonly age = element("span", { class: "age" });
    private readonly modes = element("span", { class: "modes" });
    private readonly job = element("span", { class: "job" });
    private readonly alarm = element("span", { class: "alarm-text" });

    constructor(private controller: Summary) {
        this.link = element(
            "a",
            { class: "tile", href: `#/controller/${encodeURIComponent(controller.name)}` },
            element("span", { class: "name", title: printable(controller.name) }, printable(controller.name)),
            element("span", { class: "line" }, this.shape, this.stateText, this.age),
            this.modes,
            this.job,
            this.alarm,
        );
        this.root = element("li", {}, this.link);
        this.update(controller, Date.now());
    }

    update(controller: Summary, now: number): void {
        this.controller = controller;
        this.state = stateOf(controller);
        setAttribute(this.link, "data-state", this.state);
        setText(this.shape, shapeOf(this.state));
        setText(this.stateText, texts.states[this.state]);
        const isAway = controller.link === "silent" || controller.link === "refused";
        setText(this.modes, isAway ? texts.noAnswer : modesOf(controller));
        setText(this.job, isAway ? "" : jobOf(controller));
        setText(this.alarm, alarmOf(controller));
        this.updateAge(now);
    }

    updateAge(now: number): void {
        const { answered } = this.controller;
        setText(this.age, answered === null ? texts.never : now - answered < fresh ? texts.now : texts.age(duration(now - answered)));
    }

    get text(): string {
        const { name, host } = this.controller;
        return `${name} ${host} ${this.job.textContent} ${this.alarm.textContent}`.toLowerCase();
    }
}

export function modesOf(controller: Summary): string {
    const mode = controller.mode === null ? null : texts.mode[controller.mode];
    const servo = controller.servo === null ? null : controller.servo ? texts.servo.on : texts.servo.off;
    return [mode, servo].filter((text) => text !== null).join(" · ") || texts.notKnown;
}

export function jobOf(controller: Summary): string {
    if (controller.job === null) {
        return texts.notKnown;
    }
    return controller.job.name === "" ? texts.noJob : texts.job(printable(controller.job.name), controller.job.line);
}

export function alarmOf(controller: Summary): string {
    if (controller.alarm === null) {
        return "";
    }
    const { code, subcode, text, count } = controller.alarm;
    const more = count > 1 ? ` ${texts.moreAlarms(count - 1)}` : "";
    return texts.alarm(code, subcode, printable(text)) + more;
}
