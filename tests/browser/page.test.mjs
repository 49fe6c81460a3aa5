// The page over gateways with virtual controllers, in a real browser.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { createRequire } from "node:module";
import { test } from "node:test";
import { knob, launch, openPage, plotted, scratchFolder, startGateway, tile, until } from "./support.mjs";

const axe = await readFile(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

async function seriousFindings(page) {
    await page.evaluate(`${axe}; undefined`);
    const { violations } = await page.evaluate(() => window.axe.run());
    return violations
        .filter((finding) => finding.impact === "serious" || finding.impact === "critical")
        .map((finding) => `${finding.id}: ${finding.nodes.map((node) => node.html).join(" ")}`);
}

test("overview", async (t) => {
    const gateway = await startGateway(t, "127.77.1.1:9750", ["--simulate", "200"]);
    const browser = await launch(t);
    const page = await openPage(browser, gateway);
    await until(async () => (await page.locator("a.tile").count()) === 200, "200 tiles");
    const names = (await gateway.api("controllers")).map((controller) => controller.name);

    await t.test("an alarm is seen within a second, and stands first", async () => {
        const name = names[150];
        await knob(gateway, name, { alarm: 4107 });
        const begin = Date.now();
        await tile(page, name).and(page.locator("[data-state=alarm]")).waitFor();
        const seconds = (Date.now() - begin) / 1000;
        t.diagnostic(`alarm seen after ${seconds} s`);
        assert.equal(await page.locator("a.tile .name").first().textContent(), name);
        assert.match(await tile(page, name).textContent(), /▲.*Alarm.*4107/s);
        assert.match(await page.title(), /^\(1\) /);
    });

    await t.test("filters and the search choose", async () => {
        await page.locator("[data-filter=alarm]").click();
        await until(async () => (await page.locator("a.tile").count()) === 1, "one tile with an alarm");
        await page.locator("[data-filter=all]").click();
        await page.keyboard.press("/");
        await page.keyboard.type(names[7]);
        await until(async () => (await page.locator("a.tile .name").allTextContents()).every((text) => text.includes(names[7])), "the one searched for");
        await page.locator("#search").fill("no such controller");
        await page.getByText("No controller matches.").waitFor();
        await page.locator("#search").fill("");
    });

    await t.test("a controller that falls silent says so", async () => {
        await knob(gateway, names[3], { fault: "drop=100%" });
        await tile(page, names[3]).and(page.locator("[data-state=silent]")).waitFor();
        await knob(gateway, names[3], { fault: "" });
        await tile(page, names[3]).and(page.locator(":not([data-state=silent])")).waitFor();
    });

    await t.test("the keyboard alone gets everywhere", async () => {
        await page.locator("a.tile").first().focus();
        await page.keyboard.press("ArrowRight");
        const second = await page.locator("a.tile").nth(1).getAttribute("href");
        assert.equal(await page.evaluate(() => document.activeElement.getAttribute("href")), second);
        await page.keyboard.press("Enter");
        await page.locator(".plot canvas").first().waitFor();
        await page.keyboard.press("Alt+ArrowLeft");
    });

    await t.test("no serious finding of accessibility, light and dark", async () => {
        for (const scheme of ["light", "dark"]) {
            await page.emulateMedia({ colorScheme: scheme });
            assert.deepEqual(await seriousFindings(page), []);
        }
    });

    await t.test("twelve tabs are all live", async () => {
        const tabs = await Promise.all(Array.from({ length: 12 }, () => page.context().newPage()));
        for (const tab of tabs) {
            await tab.goto(gateway.url);
            await tab.getByText("Live", { exact: true }).waitFor();
            assert.equal(await tab.locator("a.tile").count(), 200);
        }
    });
    assert.deepEqual(page.problems, []);
});

test("controller", async (t) => {
    const gateway = await startGateway(t, "127.77.2.1:9750", ["--simulate", "4"]);
    const browser = await launch(t);
    const [{ name }] = await gateway.api("controllers");
    const page = await openPage(browser, gateway, `#/controller/${encodeURIComponent(name)}`);
    await page.locator(".plot canvas").first().waitFor();

    await t.test("plots have the values that the controller had", async () => {
        const received = new Map();
        const values = (payload) => {
            const message = JSON.parse(payload);
            for (const [id, time, value] of message.controller === name ? (message.values ?? []) : []) {
                received.set(`${id} ${time}`, value);
            }
        };
        page.on("websocket", (socket) => socket.on("framereceived", ({ payload }) => values(payload)));
        await page.reload();
        const { items } = await gateway.api(`controllers/${encodeURIComponent(name)}`);
        await until(async () => {
            const shown = await plotted(page).catch(() => null);
            return shown !== null && shown.lines[0].values.filter((value) => typeof value === "number").length > 20;
        }, "twenty values in the plot");
        const shown = await plotted(page);
        let compared = 0;
        for (const line of shown.lines) {
            const item = items.find((each) => line.label === (each.unit ? `${each.name} (${each.unit})` : each.name));
            shown.times.forEach((time, index) => {
                const value = received.get(`${item.id} ${time}`);
                if (value !== undefined && line.values[index] !== undefined) {
                    assert.equal(line.values[index], value);
                    compared += 1;
                }
            });
        }
        assert.ok(compared > 20, `${compared} values compared`);
        const latest = await gateway.api("latest");
        for (const [id, , value, quality] of latest[name]) {
            const item = items.find((each) => each.id === id);
            assert.ok(item !== undefined && (quality !== "good" || value !== null), `item ${id}`);
        }
    });

    await t.test("pause and zoom keep a range, live goes on", async () => {
        const panel = page.locator(".plot-panel").first();
        await panel.getByRole("button", { name: "Pause" }).click();
        const paused = await plotted(page);
        await new Promise((resolve) => setTimeout(resolve, 600));
        assert.equal((await plotted(page)).to, paused.to);
        const box = await page.locator(".u-over").first().boundingBox();
        await page.mouse.move(box.x + box.width * 0.6, box.y + 20);
        await page.mouse.down();
        await page.mouse.move(box.x + box.width * 0.9, box.y + 60, { steps: 5 });
        await page.mouse.up();
        const zoomed = await until(async () => {
            const now = await plotted(page);
            return now.from > paused.from && now.to < paused.to ? now : null;
        }, "a narrower range");
        assert.ok(Math.abs((zoomed.to - zoomed.from) / (paused.to - paused.from) - 0.3) < 0.03);
        await panel.getByRole("button", { name: "Live" }).click();
        await until(async () => (await plotted(page)).to > paused.to, "the plot goes on");
        await page.locator(".plot").first().focus();
        await page.keyboard.press("+");
        await until(async () => (await plotted(page)).to - (await plotted(page)).from < 59_000, "zoomed by a key");
        await page.keyboard.press("0");
    });

    await t.test("an alarm shows its card, and a mark in the plot's time", async () => {
        await knob(gateway, name, { alarm: 4107 });
        await page.locator(".alarm-card.active").getByText("What to do").waitFor();
        await page.locator(".events [data-kind=alarm-raised]").first().waitFor();
        await knob(gateway, name, { reset: true });
        await page.locator(".alarm-card").getByText("No alarm.").waitFor();
        await knob(gateway, name, { servo: true });
    });

    await t.test("silence is a gap", async () => {
        await knob(gateway, name, { fault: "drop=100%" });
        await page.locator(".headline[data-state=silent]").waitFor();
        await knob(gateway, name, { fault: "" });
        await page.locator(".headline:not([data-state=silent])").waitFor();
        await until(async () => (await plotted(page)).lines[0].values.includes(null), "a gap in the plot");
    });

    await t.test("the arm moves as the axes do", async () => {
        const pose = () => page.locator(".arm-canvas").getAttribute("data-pose");
        const first = await pose();
        await until(async () => (await pose()) !== first, "another pose");
        const { items } = await gateway.api(`controllers/${encodeURIComponent(name)}`);
        assert.equal(items.filter((item) => item.what === "position" && item.coordinate === "pulse").length >= 6, true);
    });
    assert.deepEqual(await seriousFindings(page), []);
    assert.deepEqual(page.problems, []);
});

test("history", async (t) => {
    const folder = await scratchFolder(t);
    const sections = `[recording]\nfile = "${folder}/hall.harvlink"\n[recording.incidents]\nfolder = "${folder}/incidents"\non = ["alarm"]\nbefore = "5s"\nafter = "1s"\n`;
    const gateway = await startGateway(t, "127.77.3.1:9750", ["--simulate", "2"], sections);
    const browser = await launch(t);
    const [{ name }] = await gateway.api("controllers");
    await new Promise((resolve) => setTimeout(resolve, 2000)); // something to look back on
    await knob(gateway, name, { alarm: 4107 });
    await until(async () => (await gateway.api("incidents")).length > 0, "an incident");
    const page = await openPage(browser, gateway, `#/controller/${encodeURIComponent(name)}`);

    await t.test("an alarm leads to the minute before it", async () => {
        await page.locator(".events [data-kind=alarm-raised] a").first().click();
        await page.locator(".history .plot canvas").waitFor();
        const shown = await plotted(page);
        const { items } = await gateway.api(`controllers/${encodeURIComponent(name)}`);
        const item = items.find((each) => shown.lines[0].label.startsWith(each.name));
        const range = `controller=${encodeURIComponent(name)}&from=${Math.round(shown.from)}&to=${Math.round(shown.to)}`;
        const { series } = await gateway.api(`history?${range}&items=${item.id}&points=1000`);
        const drawn = new Map(shown.times.map((time, index) => [time, shown.lines[0].values[index]]));
        assert.ok(series[0].times.length > 5);
        series[0].times.forEach((time, index) => assert.equal(drawn.get(time), series[0].last[index]));
        assert.ok((await page.locator(".events [data-kind=alarm-raised]").count()) > 0);
    });

    await t.test("an incident is downloaded, as a recording and as CSV", async () => {
        for (const [link, first] of [["Recording", "SQLite format 3"], ["CSV", "time,"]]) {
            const waiting = page.waitForEvent("download");
            await page.getByRole("link", { name: link, exact: true }).first().click();
            const content = await readFile(await (await waiting).path());
            assert.equal(content.subarray(0, first.length).toString(), first);
        }
    });
    assert.deepEqual(page.problems, []);
});

test("a gateway that is started again under an open page", async (t) => {
    const address = "127.77.4.1:9750";
    const first = await startGateway(t, address, ["--simulate", "3"]);
    const page = await openPage(await launch(t), first);
    await until(async () => (await page.locator("a.tile").count()) === 3, "three tiles");
    await first.stop();
    await page.locator(".banner").waitFor();
    const second = await startGateway(t, address, ["--simulate", "5"]);
    await until(async () => (await page.locator("a.tile").count()) === 5, "five tiles");
    await page.locator(".banner").waitFor({ state: "hidden" });
    assert.ok(!second.hasEnded());
    assert.deepEqual(page.problems.filter((problem) => !problem.includes("WebSocket")), []);
});
