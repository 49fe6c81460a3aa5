// What the gateway says, as it comes over the wire. Times are milliseconds UTC; null is "not known".

export type Link = "connecting" | "online" | "late" | "silent" | "refused";
export type Mode = "teach" | "play" | "remote";
export type Quality = "good" | "stale" | "refused" | "never";
export type Reading = number | boolean | string | null;

export interface Alarm {
    code: number;
    subcode: number;
    text: string;
    time: number;
    count: number;
}

export interface Job {
    name: string;
    line: number;
}

export interface Summary {
    name: string;
    host: string;
    model?: string;
    software?: string;
    generation?: string;
    link: Link;
    mode: Mode | null;
    servo: boolean | null;
    running: boolean | null;
    hold: boolean | null;
    alarm: Alarm | null;
    job: Job | null;
    answered: number | null;
    roundTrip: number | null;
    virtual: boolean;
}

export interface Item {
    id: number;
    name: string;
    kind: "number" | "boolean" | "text";
    unit: string;
    period: number;
    what?: string;
    group?: string;
    axis?: string;
    coordinate?: string;
}

export type Value = [id: number, time: number, value: Reading, quality: Quality];

export interface PlantEvent {
    id: number;
    time: number;
    controller: string;
    kind: string;
    code?: number;
    subcode?: number;
    text?: string;
}

export type ServerMessage =
    | {
          type: "hello";
          gateway: string;
          version: string;
          simulated: boolean;
          history: boolean;
          time: number;
          controllers: Summary[];
          events: PlantEvent[];
      }
    | {
          type: "delta";
          time: number;
          changed: (Partial<Summary> & { name: string })[];
          removed?: string[];
          events?: PlantEvent[];
      }
    | { type: "items"; controller: string; items: Item[]; values: Value[] }
    | { type: "values"; controller: string; values: Value[]; time?: number }
    | { type: "error"; text: string };

export interface Card {
    code: number;
    title: string;
    meaning: string;
    action: string;
}

export interface Series {
    id: number;
    name: string;
    unit: string;
    times: number[];
    low: (number | null)[];
    high: (number | null)[];
    last: (number | null)[];
}

export interface History {
    from: number;
    to: number;
    series: Series[];
}

export interface Incident {
    file: string;
    controller: string;
    time: number;
    kind: string;
    bytes: number;
    complete: boolean;
}

/** One of the gateway's own, by the name that it has in /metrics. */
export interface Figure {
    name: string;
    value: number | null;
}

export interface Geometry {
    group: string;
    shoulderHeight: number;
    shoulderOffset: number;
    upperArm: number;
    elbowOffset: number;
    forearm: number;
    hand: number;
    pulsesPerDegree: number[];
}

/** How well a controller answers, since it was added. */
export interface LinkQuality {
    exchanges?: number;
    timeouts?: number;
    repeated?: number;
    groups?: { rounds: number; overruns: number }[];
}
