// Starts gateways and a browser, and looks into the page.
import { spawn } from "node:child_process";
import { mkdtemp, readFile, rm, writeFile } from "node:fs/promises";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { chromium } from "playwright-core";

export const root = new URL("../../", import.meta.url).pathname;
const programs = process.env.HARVLINK_BUILD ?? join(root, "build/release");
const patience = 60_000; // ms for what takes a moment; nothing waits so long when all is well

export async function scratchFolder(t) {
    const folder = await mkdtemp(join(tmpdir(), "harvlink-browser-"));
    t.after(() => rm(folder, { recursive: true, force: true }));
    return folder;
}

export async function until(condition, what) {
    const end = Date.now() + patience;
    for (;;) {
        const value = await condition();
        if (value) {
            return value;
        }
        if (Date.now() > end) {
            throw new Error(`not within ${patience} ms: ${what}`);
        }
        await new Promise((resolve) => setTimeout(resolve, 20));
    }
}

function start(t, program, args) {
    const child = spawn(join(programs, program), args, { stdio: ["ignore", "pipe", "pipe"] });
    let output = "";
    child.stdout.on("data", (text) => (output += text));
    child.stderr.on("data", (text) => (output += text));
    const ended = new Promise((resolve) => child.on("exit", (code, signal) => resolve(code ?? signal)));
    const stop = async (signal = "SIGTERM") => {
        child.kill(signal);
        return ended;
    };
    t.after(() => stop("SIGKILL"));
    return { stop, ended, output: () => output, hasEnded: () => child.exitCode !== null || child.signalCode !== null };
}

/** Virtual controllers in a process of their own, ready when this returns. */
export async function startSimulator(t, addresses, ...args) {
    const simulator = start(t, "simulator/harvlink-sim", ["--address", ...addresses, ...args]);
    await until(() => simulator.output().includes("ready"), `virtual controllers: ${simulator.output()}`);
    return simulator;
}

/** Does to one of them what its operator would. */
export async function control(t, address, ...command) {
    const ctl = start(t, "simulator/harvlink-sim", ["ctl", "--address", address, ...command]);
    if ((await ctl.ended) !== 0) {
        throw new Error(`ctl ${command[0]}: ${ctl.output()}`);
    }
}

/** A gateway at an address of its own, with these sections in its configuration besides; ready when this returns. */
export async function startGateway(t, address, args, sections = "") {
    const config = join(await scratchFolder(t), "plant.toml");
    await writeFile(config, `[gateway]\nname = "hall"\nlisten = "${address}"\n${sections}`);
    const gateway = start(t, "gateway/harvlink-gateway", ["--config", config, ...args]);
    const url = `http://${address}/`;
    await until(async () => {
        if (gateway.hasEnded()) {
            throw new Error(`the gateway has ended: ${gateway.output()}`);
        }
        return fetch(`${url}health/ready`).then(
            (answer) => answer.ok,
            () => false,
        );
    }, `${url} is ready: ${gateway.output()}`);
    return { ...gateway, url, api: async (path) => (await fetch(`${url}api/${path}`)).json() };
}

export async function knob(gateway, name, command) {
    const answer = await fetch(`${gateway.url}api/virtual/${encodeURIComponent(name)}`, {
        method: "POST",
        headers: { "Content-Type": "application/json", Origin: gateway.url.slice(0, -1) },
        body: JSON.stringify(command),
    });
    if (!answer.ok) {
        throw new Error(`${answer.status} ${await answer.text()}`);
    }
}

export function launch(t) {
    const isRoot = process.getuid?.() === 0;
    const browser = chromium.launch({
        executablePath: process.env.HARVLINK_CHROMIUM ?? "/usr/bin/chromium",
        args: [
            ...(isRoot ? ["--no-sandbox"] : []),
            "--disable-dev-shm-usage",
            "--use-gl=angle",
            "--use-angle=swiftshader",
            "--enable-unsafe-swiftshader",
        ],
    });
    t.after(async () => (await browser).close());
    return browser;
}

/** A page that fails its test when the page complains or asks another host. */
export async function openPage(browser, gateway, path = "", options = {}) {
    const context = await browser.newContext({ viewport: { width: 1400, height: 1000 }, ...options });
    const page = await context.newPage();
    page.problems = [];
    page.on("pageerror", (error) => page.problems.push(String(error)));
    page.on("console", (message) => message.type() === "error" && page.problems.push(message.text()));
    page.on("response", (answer) => answer.status() >= 400 && page.problems.push(`${answer.status()} ${answer.url()}`));
    page.on("dialog", (dialog) => (page.problems.push(`dialog: ${dialog.message()}`), dialog.dismiss()));
    page.on("request", (request) => {
        if (!request.url().startsWith(gateway.url)) {
            page.problems.push(`asked ${request.url()}`);
        }
    });
    page.setDefaultTimeout(patience);
    await page.goto(gateway.url + path);
    return page;
}

export const tile = (page, name) => page.locator("a.tile", { has: page.locator(".name", { hasText: new RegExp(`^${escaped(name)}$`) }) });

/** When the tile of a controller is first seen in a state, by the clock of the browser. Asks before that happens. */
export const seen = (page, name, state) =>
    page.evaluate(
        ([name, state]) =>
            new Promise((resolve) => {
                const link = [...document.querySelectorAll("a.tile")].find((each) => each.querySelector(".name").textContent === name);
                const look = () => link.dataset.state === state && requestAnimationFrame(() => resolve(Date.now()));
                new MutationObserver(look).observe(link, { attributes: true, attributeFilter: ["data-state"] });
                look();
            }),
        [name, state],
    );

/** When the gateway itself has noticed the last event of a kind. */
export async function noticed(gateway, name, kind) {
    const events = await gateway.api(`events?controller=${encodeURIComponent(name)}&kind=${kind}&limit=1`);
    return events[0].time;
}

const axe = await readFile(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

/** What keeps somebody from using the page, in light and in dark. */
export async function seriousFindings(page) {
    const found = [];
    for (const colorScheme of ["dark", "light"]) {
        await page.emulateMedia({ colorScheme });
        await page.evaluate(`${axe}; undefined`);
        const { violations } = await page.evaluate(() => window.axe.run());
        for (const { id, impact, nodes } of violations) {
            if (impact === "serious" || impact === "critical") {
                found.push(`${colorScheme} ${id}: ${nodes.map((node) => node.html).join(" ")}`);
            }
        }
    }
    return found;
}

/** Presses Tab until what has the focus fits: the way of somebody without a mouse. */
export async function tabTo(page, selector) {
    for (let i = 0; i < 100; ++i) {
        await page.keyboard.press("Tab");
        if (await page.evaluate((wanted) => document.activeElement.matches(wanted), selector)) {
            return;
        }
    }
    throw new Error(`the Tab key does not reach ${selector}`);
}

const escaped = (text) => text.replace(/[.*+?^${}()|[\]\\]/g, "\\$&");

/** What the first plot of the page shows: its range in milliseconds, and for each line its label and points. */
export function plotted(page) {
    return page.locator(".plot").first().evaluate((place) => {
        const { data, series, scales } = place.chart;
        return {
            from: scales.x.min * 1000,
            to: scales.x.max * 1000,
            times: data[0].map((time) => Math.round(time * 1000)),
            lines: series.slice(1).map((line, index) => ({ label: line.label, values: data[index + 1] })),
        };
    });
}
