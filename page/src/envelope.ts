import type { Points } from "./joined";
import type { Series } from "./model";

/**
 * The line of a series out of a recording: a value holds until the next, the last one to the end of the range. Where one
 * point stands for several values, their extremes follow it within its part of the range, so that no peak is lost.
 */
export function lineOf(series: Series, to: number): Points {
    const times: number[] = [];
    const values: (number | null)[] = [];
    const put = (time: number, value: number | null) => {
        times.push(time);
        values.push(value);
    };
    series.times.forEach((time, index) => {
        const last = series.last[index] ?? null;
        const low = series.low[index] ?? null;
        const high = series.high[index] ?? null;
        const before = values.at(-1);
        if (last === null && before !== undefined && before !== null && times.at(-1)! < time - 1) {
            put(time - 1, before); // it held until the gap
        }
        const part = (series.times[index + 1] ?? to) - time;
        put(time, last);
        if (low !== high && part > 3) {
            put(time + part / 4, low);
            put(time + part / 2, high);
            put(time + (part * 3) / 4, last);
        }
    });
    const end = values.at(-1);
    if (end !== undefined && end !== null && times.at(-1)! < to) {
        put(to, end);
    }
    return { times, values };
}
