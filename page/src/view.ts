/** What fills the main part of the page. `close` gives back every listener and timer. */
export interface View {
    readonly root: HTMLElement;
    readonly title: string;
    close(): void;
}

/** Collects what has to be given back. */
export class Bag {
    private readonly all: (() => void)[] = [];

    add(release: () => void): void {
        this.all.push(release);
    }

    empty(): void {
        for (const release of this.all.splice(0)) {
            release();
        }
    }
}

/** Runs `work` once before the next picture, however often it is asked for; not at all while the page is hidden. */
export function oncePerFrame(work: () => void): () => void {
    let isDue = false;
    return () => {
        if (!isDue) {
            isDue = true;
            requestAnimationFrame(() => {
                isDue = false;
                work();
            });
        }
    };
}
