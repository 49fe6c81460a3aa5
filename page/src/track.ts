// The recent past of one item: a ring of times and values. A value holds until the next one; null begins a gap.

import type { Points } from "./joined";

const capacity = 8192;

export class Track {
    private readonly times = new Float64Array(capacity);
    private readonly values = new Float64Array(capacity); // NaN is a gap
    private start = 0;
    private count = 0;

    /** `period` is how often the item is read, in milliseconds: a value that comes later than that was unchanged before. */
    constructor(private readonly period: number) {}

    add(time: number, value: number | null): void {
        this.put(time, value ?? NaN, this.period);
    }

    private put(time: number, number: number, period: number): void {
        if (this.count > 0) {
            const lastTime = this.timeAt(this.count - 1);
            const lastValue = this.valueAt(this.count - 1);
            if (time < lastTime || (Number.isNaN(number) && Number.isNaN(lastValue))) {
                return;
            }
            const held = time - period;
            if (!Number.isNaN(lastValue) && held > lastTime + period) {
                this.push(held, lastValue);
            }
        }
        this.push(time, number);
    }

    /** The points from `from` to `to`, with the one before it, and the last value carried on to `to`. */
    slice(from: number, to: number): { times: number[]; values: (number | null)[] } {
        const times: number[] = [];
        const values: (number | null)[] = [];
        for (let i = Math.max(0, this.firstAfter(from) - 1); i < this.count && this.timeAt(i) <= to; ++i) {
            const value = this.valueAt(i);
            times.push(this.timeAt(i));
            values.push(Number.isNaN(value) ? null : value);
        }
        const last = values.at(-1);
        if (last !== undefined && last !== null && times.at(-1)! < to && this.timeAt(this.count - 1) <= to) {
            times.push(to);
            values.push(last);
        }
        return { times, values };
    }

    /** Puts what was recorded between two times, a point for each `spacing` at most, in place of what is known of them. */
    replace(from: number, to: number, recorded: Points, spacing: number): void {
        const kept: [number, number][] = [];
        for (let i = 0; i < this.count; ++i) {
            if (this.timeAt(i) < from || this.timeAt(i) > to) {
                kept.push([this.timeAt(i), this.valueAt(i)]);
            }
        }
        const all = kept.concat(recorded.times.map((time, index) => [time, recorded.values[index] ?? NaN]));
        all.sort((a, b) => a[0] - b[0]);
        this.start = 0;
        this.count = 0;
        for (const [time, value] of all) {
            this.put(time, value, time <= to ? Math.max(this.period, spacing) : this.period);
        }
    }

    private push(time: number, value: number): void {
        const place = (this.start + this.count) % capacity;
        this.times[place] = time;
        this.values[place] = value;
        if (this.count < capacity) {
            this.count += 1;
        } else {
            this.start = (this.start + 1) % capacity;
        }
    }

    private firstAfter(time: number): number {
        let low = 0;
        let high = this.count;
        while (low < high) {
            const middle = (low + high) >> 1;
            if (this.timeAt(middle) <= time) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        return low;
    }

    private timeAt(index: number): number {
        return this.times[(this.start + index) % capacity]!;
    }

    private valueAt(index: number): number {
        return this.values[(this.start + index) % capacity]!;
    }
}
