// The script of a page that "harvlink recording plot" writes, with app.css: it shows the data that stands in the same file.
import { element, printable } from "./dom";
import { distinct, showEvents } from "./eventList";
import { clock } from "./format";
import { lineOf } from "./envelope";
import { join } from "./joined";
import type { History, PlantEvent } from "./model";
import { Plot } from "./plot";
import { texts } from "./texts";

interface Content extends History {
    title: string;
    events: PlantEvent[];
}

function show(content: Content): void {
    const marks = distinct(content.events);
    const place = element("div", { class: "plot", role: "group", "aria-label": texts.plots });
    const events = element("div");
    document.title = printable(content.title);
    document.body.append(
        element(
            "main",
            {},
            element(
                "section",
                { class: "panel" },
                element("h1", {}, printable(content.title)),
                element("p", {}, `${clock(content.from)} – ${clock(content.to)}`),
                element("p", { class: "note" }, texts.plot.keys),
                place,
            ),
            element("section", { class: "panel" }, element("h2", {}, texts.events), events),
        ),
    );
    const data = join(content.series.map((series) => lineOf(series, content.to)));
    const plot = new Plot(
        place,
        content.series.map((series) => ({ name: printable(series.name), unit: series.unit, isStepped: true })),
        {
            zoomed: (from, to) => plot.set(data, from, to, marks),
            unzoomed: () => plot.set(data, content.from, content.to, marks),
            paused: () => undefined,
        },
        420,
    );
    plot.set(data, content.from, content.to, marks);
    showEvents(events, content.events, false, true);
}

show(JSON.parse(document.getElementById("content")?.textContent ?? "{}") as Content);
