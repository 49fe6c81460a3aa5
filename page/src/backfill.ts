// What the recording knows of the time in which the page did not look.
import { api } from "./api";
import type { Plant } from "./plant";

// What the widest window of a live plot shows, in two parts: a point every tenth of a second for the last minute, before it one
// every second.
const parts = [
    { from: 600_000, to: 60_000, points: 540 },
    { from: 60_000, to: 0, points: 600 },
]; // ms before now
const mostItems = 24; // in one request

/** Fills the tracks of a controller from the recording, from `from` on. Without a recording they stay as they are. */
export async function backfill(plant: Plant, name: string, from: number): Promise<void> {
    const watched = plant.watched.get(name);
    if (!plant.hasHistory || watched === undefined) {
        return;
    }
    const now = plant.now();
    const ids = [...watched.items.values()].filter((item) => item.kind !== "text").map((item) => item.id);
    for (const part of parts) {
        const range = { controller: name, from: Math.round(Math.max(from, now - part.from)), to: Math.round(now - part.to) };
        for (let i = 0; i < ids.length && range.from < range.to; i += mostItems) {
            const history = await api.history({ ...range, points: part.points, items: ids.slice(i, i + mostItems).join(",") });
            for (const series of history.series) {
                const last = series.times.at(-1);
                if (last !== undefined) {
                    const recorded = { times: series.times, values: series.last };
                    watched.tracks.get(series.id)?.replace(range.from, last, recorded, (range.to - range.from) / part.points);
                }
            }
        }
        plant.valueChanges.tell(name);
    }
}
