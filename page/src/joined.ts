// Several series on one axis of time, as the plots want them: one list of times, a value or a gap for each series.

export interface Points {
    times: number[];
    values: (number | null)[];
}

/** Seconds, then one row for each series: null is a gap, undefined only a time of another series. */
export type Joined = [number[], ...(number | null | undefined)[][]];

export function join(series: Points[]): Joined {
    const times = [...new Set(series.flatMap((each) => each.times))].sort((a, b) => a - b);
    const places = new Map(times.map((time, index) => [time, index]));
    const rows = series.map((each) => {
        const row = new Array<number | null | undefined>(times.length).fill(undefined);
        each.times.forEach((time, index) => {
            row[places.get(time)!] = each.values[index];
        });
        return row;
    });
    return [times.map((time) => time / 1000), ...rows];
}
