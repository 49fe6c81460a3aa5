import "uplot/dist/uPlot.min.css";
import "./style.css";
import { brokerStatus } from "./broker";
import { ControllerView } from "./controllerView";
import { element, setAttribute, setText } from "./dom";
import { clock } from "./format";
import { HistoryView } from "./historyView";
import { Live } from "./live";
import { Overview } from "./overview";
import { Plant } from "./plant";
import { stateOf } from "./severity";
import { texts } from "./texts";
import { themeChoice } from "./theme";
import type { View } from "./view";

const scheme = location.protocol === "https:" ? "wss:" : "ws:";
const live = new Live(`${scheme}//${location.host}${location.pathname.replace(/[^/]*$/, "")}api/live`);
const plant = new Plant();

const main = element("main", { id: "main", tabindex: -1 });
const banner = element("p", { class: "banner", role: "alert", hidden: true });
const connection = element("span", { class: "connection", role: "status" });
const gateway = element("span", { class: "gateway" });
const links = {
    overview: element("a", { href: "#/" }, texts.overview),
    history: element("a", { href: "#/history" }, texts.history),
};
let view: View | null = null;

function route(): View {
    const [path = "", query = ""] = location.hash.replace(/^#/, "").split("?");
    const parts = path.split("/").filter((part) => part !== "");
    if (parts[0] === "controller" && parts[1] !== undefined) {
        return new ControllerView(decoded(parts[1]), plant, live);
    }
    if (parts[0] === "history") {
        return new HistoryView(new URLSearchParams(query), plant);
    }
    return new Overview(plant);
}

function decoded(text: string): string {
    try {
        return decodeURIComponent(text);
    } catch {
        return text;
    }
}

function show(): void {
    const isFirst = view === null;
    view?.close();
    view = route();
    main.replaceChildren(view.root);
    setAttribute(links.overview, "aria-current", view instanceof Overview ? "page" : null);
    setAttribute(links.history, "aria-current", view instanceof HistoryView ? "page" : null);
    if (!isFirst) {
        window.scrollTo(0, 0);
        main.focus({ preventScroll: true });
    }
    showTitle();
}

/** A tab in the background tells by its title that something stopped. */
function showTitle(): void {
    const alarms = [...plant.controllers.values()].filter((each) => stateOf(each) === "alarm").length;
    const title = `${alarms > 0 ? `(${alarms}) ` : ""}${view?.title ?? ""} – ${plant.gateway || texts.title}`;
    if (document.title !== title) {
        document.title = title;
    }
}

function showConnection(): void {
    const isLost = live.state === "lost";
    setText(connection, live.state === "live" ? texts.connection.live : texts.connection.connecting);
    connection.dataset["state"] = live.state;
    banner.hidden = !isLost || !plant.isKnown;
    setText(banner, isLost ? texts.connection.lost(clock(live.lostSince)) : "");
    document.body.classList.toggle("old", isLost);
    if (isLost) {
        plant.interrupt();
    }
}

function showGateway(): void {
    setText(gateway, plant.gateway + (plant.simulated ? ` · ${texts.simulated}` : ""));
    showTitle();
}

document.body.append(
    element("a", { class: "skip", href: "#main", click: (event: Event) => (event.preventDefault(), main.focus()) }, texts.skip),
    element(
        "header",
        {},
        element("a", { class: "brand", href: "#/" }, texts.title),
        element("nav", { "aria-label": texts.title }, links.overview, links.history),
        gateway,
        brokerStatus(live),
        connection,
        themeChoice(),
    ),
    banner,
    main,
);
live.messages.add((message) => plant.take(message));
live.changes.add(showConnection);
plant.summaryChanges.add((names) => (names === null ? showGateway() : showTitle()));
window.addEventListener("hashchange", show);
document.addEventListener("visibilitychange", () => document.hidden && plant.interrupt());
document.addEventListener("keydown", (event) => {
    const isTyping = event.target instanceof HTMLInputElement || event.target instanceof HTMLSelectElement;
    if (event.key === "/" && !isTyping && view instanceof Overview) {
        event.preventDefault();
        view.focusSearch();
    }
});
showConnection();
show();
