// Texts from the plant are shown as texts, whatever they contain.
import assert from "node:assert/strict";
import { test } from "node:test";
import { control, launch, openPage, startGateway, startSimulator, tile, until } from "./support.mjs";

const name = '<img src=x onerror="window.isTaken=1">';
const alarm = "\u001b[31mA\u0007\u202eB\u2066<b>C"; // control characters, directions of writing, markup
const shown = "\\u001b[31mA\\u0007\\u202eB\\u2066<b>C";

test("names and texts that would act are shown", async (t) => {
    const host = "127.77.7.2";
    await startSimulator(t, [host]);
    const sections = `[poll.all]\nperiod = "100ms"\nitems = ["state", "job", "alarms"]\n[[controller]]\nname = '${name}'\nhost = "${host}"\npoll = "all"\n`;
    const gateway = await startGateway(t, "127.77.7.1:9750", [], sections);
    const page = await openPage(await launch(t), gateway);
    await tile(page, name).waitFor();
    await control(t, host, "alarm", "4107", "3", alarm);
    await page.locator("a.tile[data-state=alarm]").waitFor();
    const [summary] = await gateway.api("controllers");
    assert.deepEqual([summary.name, summary.alarm.text], [name, alarm]); // it comes as it is

    const places = { "#/": [".name", ".alarm-text"], [`#/controller/${encodeURIComponent(name)}`]: ["h1", ".alarm-line", ".events .text"], "#/history": [] };
    for (const [place, selectors] of Object.entries(places)) {
        await page.goto(gateway.url + place);
        for (const selector of selectors) {
            const wanted = selector === ".name" || selector === "h1" ? name : shown;
            await until(async () => (await page.locator(selector).allTextContents()).some((text) => text.includes(wanted)), `${wanted} in ${selector}`);
        }
        const found = await page.evaluate(() => ({
            isTaken: "isTaken" in window,
            elements: document.querySelectorAll("img, b").length,
            hidden: /[\u0000-\u0008\u000e-\u001f\u007f-\u009f\u200e\u200f\u202a-\u202e\u2066-\u2069]/.test(document.body.textContent + document.title),
        }));
        assert.deepEqual(found, { isTaken: false, elements: 0, hidden: false }, place);
    }
    assert.equal(await page.locator(".knobs").count(), 0); // nothing can be turned at a controller that is not the gateway's own
    const change = await fetch(`${gateway.url}api/virtual/${encodeURIComponent(name)}`, { method: "POST", headers: { Origin: gateway.url.slice(0, -1) }, body: "{}" });
    assert.equal(change.status, 404);
    assert.deepEqual(page.problems, []);
});
