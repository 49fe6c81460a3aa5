// Back into the recording: from an alarm to the minute before it, and to the file of the incident.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { test } from "node:test";
import { knob, launch, openPage, plotted, scratchFolder, seriousFindings, startGateway, until } from "./support.mjs";

test("history", async (t) => {
    const folder = await scratchFolder(t);
    const sections = `[recording]\nfile = "${folder}/hall.harvlink"\n[recording.incidents]\nfolder = "${folder}/incidents"\non = ["alarm"]\nbefore = "5s"\nafter = "1s"\n`;
    const gateway = await startGateway(t, "127.77.3.1:9750", ["--simulate", "2"], sections);
    const browser = await launch(t);
    const [{ name }] = await gateway.api("controllers");
    await until(async () => {
        const now = Date.now();
        const { series } = await gateway.api(`history?controller=${encodeURIComponent(name)}&items=1&from=${now - 60_000}&to=${now}`);
        return series?.[0]?.times.length > 0;
    }, "something to look back on");
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

    await t.test("no serious finding of accessibility, light and dark", async () => {
        assert.deepEqual(await seriousFindings(page), []);
    });
    assert.deepEqual(page.problems, []);
});
