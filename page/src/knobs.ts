import { api } from "./api";
import { element, setText } from "./dom";
import { texts } from "./texts";

/** What only virtual controllers have: the gateway that serves them holds them in its own process. */
export function knobsOf(name: string): HTMLElement {
    const answer = element("p", { class: "note", role: "status" });
    const press = async (command: Record<string, unknown>) => {
        try {
            await api.knob(name, command);
            setText(answer, texts.knobs.done);
        } catch (error) {
            setText(answer, texts.failed(error instanceof Error ? error.message : String(error)));
        }
    };
    const button = (text: string, command: () => Record<string, unknown>) =>
        element("button", { type: "button", click: () => void press(command()) }, text);
    const code = element("input", { type: "number", min: 1, max: 9999, value: 4107, "aria-label": texts.knobs.code });
    const signal = element("input", { type: "number", min: 10, value: 20010, "aria-label": texts.knobs.signal });
    const fault = element("select", { "aria-label": texts.knobs.fault });
    for (const [plan, text] of Object.entries(texts.knobs.faults)) {
        fault.append(element("option", { value: plan }, text));
    }
    const row = (name: string, ...children: HTMLElement[]) =>
        element("div", { class: "knob", role: "group", "aria-label": name }, element("span", { "aria-hidden": "true" }, name), ...children);
    return element(
        "section",
        { class: "panel knobs" },
        element("div", { class: "title-line" }, element("h2", {}, texts.knobs.title), answer),
        row(
            texts.alarms,
            code,
            button(texts.knobs.alarm, () => ({ alarm: Number(code.value) })),
            button(texts.knobs.reset, () => ({ reset: true })),
        ),
        row(
            texts.facts.motion,
            button(texts.knobs.hold, () => ({ hold: true })),
            button(texts.knobs.release, () => ({ hold: false })),
            button(texts.servo.on, () => ({ servo: true })),
            button(texts.servo.off, () => ({ servo: false })),
        ),
        row(
            texts.knobs.signal,
            signal,
            button(texts.knobs.on, () => ({ signal: [Number(signal.value), true] })),
            button(texts.knobs.off, () => ({ signal: [Number(signal.value), false] })),
        ),
        row(
            texts.knobs.fault,
            fault,
            button(texts.knobs.start, () => ({ fault: fault.value })),
            button(texts.knobs.end, () => ({ fault: "" })),
        ),
    );
}
