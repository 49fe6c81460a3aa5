// The HTTP side of the gateway. Everything is read, apart from the knobs of virtual controllers.
import type { Card, Figure, Geometry, History, Incident, Item, LinkQuality, PlantEvent } from "./model";

export class ApiError extends Error {
    constructor(
        readonly status: number,
        text: string,
    ) {
        super(text);
    }
}

async function read(response: Response): Promise<unknown> {
    const body = await response.text();
    let content: unknown = null;
    try {
        content = body ? JSON.parse(body) : null;
    } catch {
        throw new ApiError(response.status, "the answer is not JSON");
    }
    if (!response.ok) {
        const text = (content as { error?: unknown } | null)?.error;
        throw new ApiError(response.status, typeof text === "string" ? text : response.statusText);
    }
    return content;
}

function query(parameters: Record<string, string | number | undefined>): string {
    const given = Object.entries(parameters).filter(([, value]) => value !== undefined && value !== "");
    return given.length ? `?${new URLSearchParams(given.map(([name, value]) => [name, String(value)]))}` : "";
}

async function get<T>(path: string, signal?: AbortSignal): Promise<T> {
    return (await read(await fetch(`api/${path}`, { signal: signal ?? null }))) as T;
}

const controllerPath = (name: string) => `controllers/${encodeURIComponent(name)}`;

export const api = {
    geometry: (name: string) => get<Geometry>(`${controllerPath(name)}/geometry`),
    controller: (name: string) => get<{ items: Item[]; link: LinkQuality; hasGeometry?: boolean }>(controllerPath(name)),
    card: (code: number, subcode: number) => get<Card>(`cards/${code}${query({ subcode })}`),
    events: (range: { from: number; to: number; controller?: string; kind?: string; limit?: number }) =>
        get<PlantEvent[]>(`events${query(range)}`),
    history: (
        range: { controller: string; items: string; from: number; to: number; points: number },
        signal?: AbortSignal,
    ) => get<History>(`history${query(range)}`, signal),
    status: () => get<{ figures: Figure[] }>("status"),
    incidents: () => get<Incident[]>("incidents"),
    incidentLink: (file: string, format?: string) =>
        `api/incidents/${encodeURIComponent(file)}${query({ format })}`,
    knob: async (name: string, command: Record<string, unknown>) =>
        read(
            await fetch(`api/virtual/${encodeURIComponent(name)}`, {
                method: "POST",
                headers: { "Content-Type": "application/json" },
                body: JSON.stringify(command),
            }),
        ),
};
