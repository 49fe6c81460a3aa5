// What the recording knows of the time in which the page did not look.
import { api } from "./api";
import type { Plant } from "./plant";

const longest = 600_000; // ms, the widest window of a live plot
const points = 600;
const mostItems = 24; // in one request

/** Fills the tracks of a controller from the recording, from `from` on. Without a recording they stay as they are. */
export async function backfill(plant: Plant, name: string, from: number): Promise<void> {
    const watched = plant.watched.get(name);
    if (!plant.hasHistory || watched === undefined) {
        return;
    }
    const to = plant.now();
    const range = { controller: name, from: Math.round(Math.max(from, to - longest)), to: Math.round(to), points };
    const ids = [...watched.items.values()].filter((item) => item.kind !== "text").map((item) => item.id);
    for (let i = 0; i < ids.length; i += mostItems) {
        const history = await api.history({ ...range, items: ids.slice(i, i + mostItems).join(",") });
        for (const series of history.series) {
            const last = series.times.at(-1);
            if (last !== undefined) {
                watched.tracks.get(series.id)?.replace(range.from, last, series.times, series.last);
            }
        }
    }
    plant.valueChanges.tell(name);
}
