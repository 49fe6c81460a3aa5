/** Who wants to be told. The function that `add` returns takes the listener off again. */
export class Listeners<T extends unknown[]> {
    private readonly all = new Set<(...values: T) => void>();

    add(listener: (...values: T) => void): () => void {
        this.all.add(listener);
        return () => this.all.delete(listener);
    }

    tell(...values: T): void {
        for (const listener of [...this.all]) {
            listener(...values);
        }
    }
}
