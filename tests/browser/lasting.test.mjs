// A page that stays open: the gateway starts again, nobody looks, an hour goes by.
import assert from "node:assert/strict";
import { test } from "node:test";
import { knob, launch, openPage, scratchFolder, startGateway, tile, until } from "./support.mjs";

test("a gateway that is started again under an open page", async (t) => {
    const address = "127.77.4.1:9750";
    const first = await startGateway(t, address, ["--simulate", "3"]);
    const page = await openPage(await launch(t), first);
    await until(async () => (await page.locator("a.tile").count()) === 3, "three tiles");
    await first.stop();
    await page.locator(".banner").waitFor();
    const mqtt = `[mqtt]\nbroker = "127.77.4.2"\ngroup = "hall"\nnode = "one"\nstate_folder = "${await scratchFolder(t)}"\n`;
    const second = await startGateway(t, address, ["--simulate", "5"], mqtt);
    await until(async () => (await page.locator("a.tile").count()) === 5, "five tiles");
    await page.locator(".banner").waitFor({ state: "hidden" });
    await page.getByText("Broker away").waitFor(); // none is there
    assert.ok(!second.hasEnded());
    assert.deepEqual(page.problems.filter((problem) => !problem.includes("WebSocket")), []);
});

test("a hidden tab costs nothing, and is up to date when it is shown", async (t) => {
    const gateway = await startGateway(t, "127.77.5.1:9750", ["--simulate", "20"]);
    const browser = await launch(t);
    const page = await openPage(browser, gateway);
    await until(async () => (await page.locator("a.tile").count()) === 20, "twenty tiles");
    let frames = 0;
    page.on("websocket", (socket) => socket.on("framereceived", () => (frames += 1)));
    await page.reload();
    await until(() => frames > 3, "messages while it is seen");

    const show = (isShown) =>
        page.evaluate((isShown) => {
            for (const [key, value] of [["hidden", !isShown], ["visibilityState", isShown ? "visible" : "hidden"]]) {
                Object.defineProperty(document, key, { configurable: true, get: () => value });
            }
            document.dispatchEvent(new Event("visibilitychange"));
            return Date.now();
        }, isShown);
    await show(false);
    await knob(gateway, "robot3", { alarm: 4107 });
    await until(async () => (await gateway.api("controllers/robot3")).summary.alarm !== null, "the gateway knows the alarm");
    frames = 0;
    await new Promise((resolve) => setTimeout(resolve, 2000)); // nothing is what is waited for
    assert.equal(frames, 0);
    assert.notEqual(await tile(page, "robot3").getAttribute("data-state"), "alarm");

    const shown = await show(true);
    const delay = await page.evaluate(
        (shown) =>
            new Promise((resolve) => {
                const look = () => (document.querySelector("a.tile[data-state=alarm]") ? resolve(Date.now() - shown) : requestAnimationFrame(look));
                look();
            }),
        shown,
    );
    t.diagnostic(`up to date ${delay} ms after it was shown`);
    assert.deepEqual(page.problems, []);
});

test("an hour of updates takes no more memory than ten minutes", async (t) => {
    const gateway = await startGateway(t, "127.77.6.1:9750", ["--simulate", "20"]);
    const browser = await launch(t);
    const page = await openPage(browser, gateway);
    await page.addInitScript(() => {
        const Socket = window.WebSocket;
        window.WebSocket = class extends Socket {
            constructor(...args) {
                super(...args);
                window.socket = this;
                window.heard = [];
                this.addEventListener("message", ({ data }) => window.heard.length < 200 && window.heard.push(data));
            }
        };
    });
    await page.goto(`${gateway.url}#/controller/robot1`);
    await page.reload();
    await page.waitForFunction(() => window.heard.length === 200);
    await page.evaluate(() => {
        window.socket.send(JSON.stringify({ pause: true })); // from here on the page hears its own past, faster
        const all = window.heard.map((text) => JSON.parse(text));
        window.updates = ["delta", "values"].map((wanted) => all.filter(({ type }) => type === wanted));
        window.time = Date.now();
        window.event = 1_000_000;
    });
    const memory = async () => {
        await cdp.send("HeapProfiler.collectGarbage");
        return (await cdp.send("Runtime.getHeapUsage")).usedSize;
    };
    const cdp = await page.context().newCDPSession(page);
    const pass = (minutes) => page.evaluate(fastForward, minutes);
    await pass(10);
    const early = await memory();
    await pass(50);
    const late = await memory();
    t.diagnostic(`${(early / 1e6).toFixed(2)} MB after ten minutes, ${(late / 1e6).toFixed(2)} MB after an hour`);
    assert.ok(late < early * 1.1, `${early} bytes became ${late}`);
    assert.deepEqual(page.problems, []);
});

/** In the page: what the gateway sent, again and again with new times and new events; each minute another view. */
async function fastForward(minutes) {
    for (let minute = 0; minute < minutes; ++minute) {
        for (let tenth = 0; tenth < 600; ++tenth) {
            window.time += 100;
            for (const kind of window.updates) {
                const update = structuredClone(kind[tenth % kind.length]);
                update.time = window.time;
                update.changed?.forEach((change) => "answered" in change && (change.answered = window.time));
                update.values?.forEach((value) => (value[1] = window.time));
                if (update.type === "delta" && tenth % 50 === 0) {
                    const event = { id: ++window.event, time: window.time, controller: "robot1", kind: "servo-on", code: 0, subcode: 0, text: "" };
                    update.events = [event];
                }
                window.socket.onmessage({ data: JSON.stringify(update) });
            }
            if (tenth % 120 === 0) {
                await new Promise(requestAnimationFrame);
            }
        }
        location.hash = minute % 10 === 8 ? "#/" : "#/controller/robot1";
    }
    await new Promise((resolve) => setTimeout(resolve, 300));
}
