// One controller: its plots have what it had, number by number.
import assert from "node:assert/strict";
import { test } from "node:test";
import { knob, launch, openPage, plotted, seriousFindings, startGateway, until } from "./support.mjs";

test("controller", async (t) => {
    const gateway = await startGateway(t, "127.77.2.1:9750", ["--simulate", "4"]);
    const browser = await launch(t);
    const [{ name }] = await gateway.api("controllers");
    const page = await openPage(browser, gateway, `#/controller/${encodeURIComponent(name)}`);
    await page.locator(".plot canvas").first().waitFor();
    await until(async () => (await plotted(page)).times.length > 10, "values in the plot");

    await t.test("plots have the values that the controller had", async () => {
        const { items } = await gateway.api(`controllers/${encodeURIComponent(name)}`);
        const inPlot = (item) => item.coordinate === "base" && ["X", "Y", "Z"].includes(item.axis);
        const wanted = new Map(items.filter(inPlot).map((item) => [item.id, `${item.name} (${item.unit})`]));
        const read = new Map(); // what the API says, by item and time
        const compared = await until(async () => {
            const { [name]: latest } = await gateway.api("latest");
            for (const [id, time, value, quality] of latest) {
                if (wanted.has(id) && quality === "good") {
                    read.set(`${id} ${time}`, { id, time, value });
                }
            }
            const shown = await plotted(page);
            const pairs = [...read.values()].flatMap(({ id, time, value }) => {
                const line = shown.lines.find(({ label }) => label === wanted.get(id));
                const drawn = line.values[shown.times.indexOf(time)]; // undefined: on its way, or a younger one overtook it
                return drawn === undefined ? [] : [{ what: `${wanted.get(id)} at ${time}`, value, drawn }];
            });
            return pairs.length > 90 && pairs;
        }, "thirty readings of three axes in the plot");
        for (const { what, value, drawn } of compared) {
            assert.equal(drawn, value, what);
        }
        assert.ok(new Set(compared.map(({ value }) => value)).size > 30, "the arm moves");
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
        await page.locator(".events [data-kind=alarm-raised]").filter({ hasText: "4107" }).first().waitFor();
        assert.equal(await page.locator(".events [data-kind=alarm-raised]").count(), 1); // though state and list both report it
        await knob(gateway, name, { reset: true });
        await page.locator(".alarm-card").getByText("No alarm.").waitFor();
        await knob(gateway, name, { servo: true });
    });

    await t.test("silence is a gap", async () => {
        await knob(gateway, name, { fault: "drop=100%" });
        await page.locator(".headline[data-state=silent]").waitFor();
        await knob(gateway, name, { fault: "" });
        await page.locator(".headline:not([data-state=silent])").waitFor();
        const shown = await until(async () => {
            const { lines } = await plotted(page);
            const gap = lines[0].values.indexOf(null);
            return gap > 0 && lines[0].values.slice(gap).some((value) => typeof value === "number") && lines;
        }, "a gap in the plot, and values after it");
        assert.ok(shown.every((line) => line.values.includes(null)));
    });

    await t.test("the arm moves as the axes do", async () => {
        const pose = () => page.locator(".arm-canvas").getAttribute("data-pose");
        const first = await pose();
        await until(async () => (await pose()) !== first, "another pose");
        const { items } = await gateway.api(`controllers/${encodeURIComponent(name)}`);
        assert.equal(items.filter((item) => item.what === "position" && item.coordinate === "pulse").length >= 6, true);
    });

    await t.test("no serious finding of accessibility, light and dark", async () => {
        assert.deepEqual(await seriousFindings(page), []);
    });
    assert.deepEqual(page.problems, []);
});
