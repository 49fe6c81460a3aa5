// The broker that the gateway publishes to, and for how long its store lasts while the broker is away.
import { api } from "./api";
import { element, setAttribute, setText } from "./dom";
import { duration } from "./format";
import type { Live } from "./live";
import type { Figure } from "./model";
import { texts } from "./texts";

const period = 15_000; // ms

export function brokerStatus(live: Live): HTMLElement {
    const root = element("span", { class: "broker", role: "status", hidden: true });
    const refresh = async () => {
        if (document.hidden || live.state !== "live") {
            return;
        }
        const figures = await api.status().then(
            (status) => status.figures,
            () => [],
        );
        show(root, figures);
    };
    window.setInterval(() => void refresh(), period);
    document.addEventListener("visibilitychange", () => void refresh());
    live.changes.add(() => void refresh());
    return root;
}

function show(root: HTMLElement, figures: Figure[]): void {
    const valueOf = (name: string) => figures.find((figure) => figure.name === `harvlink_mqtt_${name}`)?.value;
    const connected = valueOf("connected");
    const waiting = valueOf("store_waiting_samples") ?? 0;
    /** 0 while it is not known. */
    const lasts = valueOf("store_lasts_seconds");
    root.hidden = connected === undefined;
    setAttribute(root, "data-state", connected ? "connected" : "away");
    if (connected) {
        setText(root, waiting > 0 ? texts.broker.catchingUp(waiting) : texts.broker.connected);
    } else {
        setText(root, lasts ? texts.broker.awayFor(duration(1000 * lasts)) : texts.broker.away);
    }
}
