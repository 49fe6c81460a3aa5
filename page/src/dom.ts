// Elements without markup: whatever comes from a controller becomes a text node, never HTML.

type Child = Node | string | number | null | undefined | false;
type Attributes = Record<string, string | number | boolean | null | undefined | ((event: never) => void)>;

export function element<K extends keyof HTMLElementTagNameMap>(
    tag: K,
    attributes: Attributes = {},
    ...children: Child[]
): HTMLElementTagNameMap[K] {
    const made = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
        if (typeof value === "function") {
            made.addEventListener(name, value as EventListener);
        } else if (value === true) {
            made.setAttribute(name, "");
        } else if (value !== false && value !== null && value !== undefined) {
            made.setAttribute(name, String(value));
        }
    }
    append(made, ...children);
    return made;
}

export function append(parent: Node, ...children: Child[]): void {
    for (const child of children) {
        if (child !== null && child !== undefined && child !== false) {
            parent.appendChild(child instanceof Node ? child : document.createTextNode(String(child)));
        }
    }
}

/** Sets the text only if it differs: an unchanged node costs no layout and no screen reader announcement. */
export function setText(node: Element, text: string): void {
    if (node.textContent !== text) {
        node.textContent = text;
    }
}

export function setAttribute(node: Element, name: string, value: string | null): void {
    if (value === null) {
        node.removeAttribute(name);
    } else if (node.getAttribute(name) !== value) {
        node.setAttribute(name, value);
    }
}

export function replace(parent: Element, ...children: Child[]): void {
    parent.replaceChildren();
    append(parent, ...children);
}

const bidirectional = /[\u200e\u200f\u202a-\u202e\u2066-\u2069]/g;
const control = /[\u0000-\u001f\u007f-\u009f]/g;

/** What can't be seen is shown as its code point: a text of a controller can't reorder or hide what stands beside it. */
export function printable(text: string): string {
    const shown = (character: string) => `\\u${character.charCodeAt(0).toString(16).padStart(4, "0")}`;
    return text.replace(control, shown).replace(bidirectional, shown);
}
