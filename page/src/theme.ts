import { element } from "./dom";
import { texts } from "./texts";

const key = "harvlink-theme";
const choices = ["auto", "light", "dark"] as const;

/** Light, dark, or as the system has it. The choice stays in this browser. */
export function themeChoice(): HTMLElement {
    const select = element("select", { "aria-label": texts.theme.label });
    for (const choice of choices) {
        select.append(element("option", { value: choice }, texts.theme[choice]));
    }
    select.value = remembered();
    select.addEventListener("change", () => {
        remember(select.value);
        apply(select.value);
    });
    apply(select.value);
    return select;
}

function apply(choice: string): void {
    if (choice === "auto") {
        delete document.documentElement.dataset["theme"];
    } else {
        document.documentElement.dataset["theme"] = choice;
    }
}

function remembered(): string {
    try {
        const choice = localStorage.getItem(key) ?? "auto";
        return (choices as readonly string[]).includes(choice) ? choice : "auto";
    } catch {
        return "auto"; // storage is switched off
    }
}

function remember(choice: string): void {
    try {
        localStorage.setItem(key, choice);
    } catch {
        // Storage is switched off: the choice lasts as long as the page.
    }
}
