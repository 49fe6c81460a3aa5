// Starts gateways and a browser, and looks into the page.
import { spawn } from "node:child_process";
import { mkdtemp, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { chromium } from "playwright-core";

export const root = new URL("../../", import.meta.url).pathname;
const programs = process.env.HARVLINK_BUILD ?? join(root, "build/release");
const patience = 20_000; // ms for what takes a moment; nothing waits so long when all is well

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
    return { stop, output: () => output, hasEnded: () => child.exitCode !== null || child.signalCode !== null };
}

export const startSimulator = (t, ...args) => start(t, "simulator/harvlink-sim", args);

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
