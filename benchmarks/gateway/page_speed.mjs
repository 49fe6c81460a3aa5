// Measures in Chromium how fast the page is: until the first tiles, until an alarm is seen, frames with 1,000 tiles.
//
// Usage: node page_speed.mjs     HARVLINK_BUILD: the folder with the programs. Prints a line of JSON for each figure, as
// script/bench_report.py reads it.
import { control, launch, noticed, openPage, seen, startGateway, startSimulator, until } from "../../tests/browser/support.mjs";

const ends = [];
const t = { after: (end) => ends.unshift(end) }; // as a test has it
const times = 15;
const frameTime = 1000 / 60;

const sorted = (values) => [...values].sort((a, b) => a - b);
const quantile = (values, share) => sorted(values)[Math.min(values.length - 1, Math.floor(values.length * share))];
let missed = false;

function row(name, unit, value, target) {
    missed ||= value > target;
    console.log(JSON.stringify({ case: `page: ${name}`, unit, floor: null, value: Number(value.toFixed(1)), gated: null, comparison: "<=", target }));
}

/** Milliseconds from the start of the navigation to the first picture with tiles, with an empty cache. */
async function firstTiles(browser, gateway) {
    const context = await browser.newContext();
    const page = await context.newPage();
    await page.addInitScript(() => {
        const look = () => (document.querySelector("a.tile") ? (window.firstTiles = performance.now()) : requestAnimationFrame(look));
        look();
    });
    await page.goto(gateway.url);
    const milliseconds = await (await page.waitForFunction(() => window.firstTiles)).jsonValue();
    await context.close();
    return milliseconds;
}

/** Milliseconds from the moment when the gateway noticed an alarm until its tile was drawn. */
async function alarmSeen(page, gateway, name, host) {
    const [at] = await Promise.all([seen(page, name, "alarm"), control(t, host, "alarm", "4107")]);
    const delay = at - (await noticed(gateway, name, "alarm-raised"));
    const gone = page.waitForFunction((count) => document.querySelectorAll("a.tile[data-state=alarm]").length === count, 0);
    await control(t, host, "reset");
    await gone;
    return delay;
}

/** What the page itself computes for each frame, in milliseconds of its thread: without GPU, drawing takes the most. */
async function worked(page, action) {
    const cdp = await page.context().newCDPSession(page);
    await cdp.send("Performance.enable", { timeDomain: "threadTicks" });
    const spent = async () => (await cdp.send("Performance.getMetrics")).metrics.find(({ name }) => name === "TaskDuration").value * 1000;
    const before = await spent();
    const frames = await action(page);
    return { frames, own: ((await spent()) - before) / frames.length };
}

/** Milliseconds between frames while somebody scrolls through all tiles, once down and once up. */
const scrolling = (page) =>
    page.evaluate(
        () =>
            new Promise((resolve) => {
                const frames = [];
                const steps = 400;
                let last = performance.now();
                const next = (now) => {
                    frames.push(now - last);
                    last = now;
                    const part = frames.length / steps;
                    window.scrollTo(0, document.body.scrollHeight * (part < 0.5 ? 2 * part : 2 - 2 * part));
                    return frames.length < steps ? requestAnimationFrame(next) : resolve(frames.slice(1));
                };
                requestAnimationFrame(next);
            }),
    );

const addresses = (block, count) => Array.from({ length: count }, (_, i) => `127.${block}.${Math.floor(i / 250)}.${1 + (i % 250)}`);

/** A gateway that watches so many virtual controllers of another process, as an overview needs them. */
async function plant(block, count) {
    const hosts = addresses(block, count);
    await startSimulator(t, hosts);
    const controllers = hosts.map((host, i) => `[[controller]]\nname = "robot${i + 1}"\nhost = "${host}"\npoll = "all"\n`).join("");
    const gateway = await startGateway(t, `127.${block}.9.9:9750`, [], `[poll.all]\nperiod = "500ms"\nitems = ["state", "job", "alarms"]\n${controllers}`);
    return { gateway, hosts };
}

async function measure() {
    const browser = await launch(t);
    const hall = await plant(78, 200);
    const loads = [];
    for (let i = 0; i < times; ++i) {
        loads.push(await firstTiles(browser, hall.gateway));
    }
    row("first tiles, 200 controllers, loopback", "ms", quantile(loads, 0.5), 300);
    const page = await openPage(browser, hall.gateway);
    await until(async () => (await page.locator("a.tile").count()) === 200, "200 tiles");
    const delays = [];
    for (let i = 0; i < times; ++i) {
        delays.push(await alarmSeen(page, hall.gateway, `robot${10 * i + 1}`, hall.hosts[10 * i]));
    }
    row("alarm noticed by the gateway until seen, longest", "ms", Math.max(...delays), 1000);
    await page.context().close();

    const site = await plant(79, 1000);
    const wall = await openPage(browser, site.gateway, "", { viewport: { width: 1920, height: 1080 } });
    await until(async () => (await wall.locator("a.tile").count()) === 1000, "1,000 tiles");
    const { frames, own } = await worked(wall, scrolling);
    row("1,000 tiles, scrolled: its own time for a frame", "ms", own, Math.ceil(frameTime));
    row("1,000 tiles, scrolled: frame drawn without GPU, median", "ms", quantile(frames, 0.5), Math.ceil(2 * frameTime));
}

try {
    await measure();
} finally {
    for (const end of ends) {
        await end();
    }
}
process.exit(missed ? 3 : 0);
