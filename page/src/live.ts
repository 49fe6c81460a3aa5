// One WebSocket to the gateway: connects again by itself, and rests while nobody looks.
import { Listeners } from "./listeners";
import type { ServerMessage } from "./model";

const firstPause = 250;
const longestPause = 5000;

export type LinkState = "connecting" | "live" | "lost";

export class Live {
    readonly messages = new Listeners<[ServerMessage]>();
    readonly changes = new Listeners<[LinkState]>();
    state: LinkState = "connecting";
    lostSince = 0;

    private socket: WebSocket | null = null;
    private pause = firstPause;
    private timer = 0;
    private watched: string[] = [];

    constructor(private readonly url: string) {
        document.addEventListener("visibilitychange", () => this.followVisibility());
        this.connect();
    }

    /** Whose items are wanted, besides the overview of all. */
    watch(names: string[]): void {
        if (names.join("\n") !== this.watched.join("\n")) {
            this.watched = names;
            this.send({ watch: names });
        }
    }

    private connect(): void {
        window.clearTimeout(this.timer);
        const socket = new WebSocket(this.url);
        this.socket = socket;
        socket.onopen = () => this.opened();
        socket.onmessage = (event) => this.received(event.data);
        socket.onclose = () => this.closed(socket);
    }

    private opened(): void {
        if (document.hidden) {
            this.send({ pause: true });
        }
        if (this.watched.length > 0) {
            this.send({ watch: this.watched });
        }
    }

    private received(data: unknown): void {
        let message: ServerMessage;
        try {
            message = JSON.parse(String(data)) as ServerMessage;
        } catch {
            return; // a gateway of another version: what can't be read changes nothing
        }
        if (message.type === "hello") {
            this.pause = firstPause;
            this.become("live");
        }
        this.messages.tell(message);
    }

    private closed(socket: WebSocket): void {
        if (socket !== this.socket) {
            return;
        }
        this.socket = null;
        this.become("lost");
        // Spread, so that a hundred pages do not come back to a restarted gateway at the same moment.
        this.timer = window.setTimeout(() => this.connect(), this.pause * (0.75 + Math.random() / 2));
        this.pause = Math.min(this.pause * 2, longestPause);
    }

    private followVisibility(): void {
        if (!document.hidden && this.socket === null) {
            this.pause = firstPause;
            this.connect();
            return;
        }
        this.send({ pause: document.hidden });
        if (!document.hidden && this.watched.length > 0) {
            this.send({ watch: this.watched }); // brings the items with their values of now
        }
    }

    private become(state: LinkState): void {
        if (state !== this.state) {
            this.lostSince = state === "lost" ? Date.now() : 0;
            this.state = state;
            this.changes.tell(state);
        }
    }

    private send(message: object): void {
        if (this.socket?.readyState === WebSocket.OPEN) {
            this.socket.send(JSON.stringify(message));
        }
    }
}
