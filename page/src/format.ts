import type { Reading } from "./model";

const two = (value: number) => String(value).padStart(2, "0");

/** Local time of day; with the date where it is not today. */
export function clock(ms: number, now = Date.now()): string {
    const time = new Date(ms);
    const today = new Date(now);
    const hours = `${two(time.getHours())}:${two(time.getMinutes())}:${two(time.getSeconds())}`;
    return time.toDateString() === today.toDateString() ? hours : `${day(ms)} ${hours}`;
}

export function day(ms: number): string {
    const time = new Date(ms);
    return `${time.getFullYear()}-${two(time.getMonth() + 1)}-${two(time.getDate())}`;
}

/** For an input of type datetime-local. */
export function localInput(ms: number): string {
    return `${day(ms)}T${new Date(ms).toTimeString().slice(0, 8)}`;
}

export function duration(ms: number): string {
    const seconds = Math.max(0, ms) / 1000;
    if (seconds < 10) {
        return `${seconds.toFixed(1)} s`;
    }
    if (seconds < 120) {
        return `${Math.floor(seconds)} s`;
    }
    if (seconds < 7200) {
        return `${Math.floor(seconds / 60)} min`;
    }
    return seconds < 172800 ? `${Math.floor(seconds / 3600)} h` : `${Math.floor(seconds / 86400)} d`;
}

export function reading(value: Reading, unit = ""): string {
    if (value === null) {
        return "–";
    }
    if (typeof value === "boolean") {
        return value ? "on" : "off";
    }
    if (typeof value === "string") {
        return value;
    }
    const digits = Number.isInteger(value) ? String(value) : value.toFixed(Math.abs(value) < 10 ? 4 : 3);
    return unit ? `${digits} ${unit}` : digits;
}

export function bytes(count: number): string {
    const units = ["B", "kB", "MB", "GB"];
    let size = count;
    let unit = 0;
    while (size >= 1000 && unit < units.length - 1) {
        size /= 1000;
        unit += 1;
    }
    return `${unit === 0 ? size : size.toFixed(1)} ${units[unit]}`;
}
