// The overview, over a gateway with 200 virtual controllers.
import assert from "node:assert/strict";
import { test } from "node:test";
import { knob, launch, noticed, openPage, plotted, seen, seriousFindings, startGateway, tabTo, tile, until } from "./support.mjs";

test("overview", async (t) => {
    const gateway = await startGateway(t, "127.77.1.1:9750", ["--simulate", "200"]);
    const browser = await launch(t);
    const page = await openPage(browser, gateway);
    await until(async () => (await page.locator("a.tile").count()) === 200, "200 tiles");
    const names = (await gateway.api("controllers")).map((controller) => controller.name);

    await t.test("an alarm is seen within a second, and stands first", async () => {
        const name = names[150];
        const [at] = await Promise.all([seen(page, name, "alarm"), knob(gateway, name, { alarm: 4107 })]);
        t.diagnostic(`alarm seen ${at - (await noticed(gateway, name, "alarm-raised"))} ms after the gateway noticed it`);
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
        await page.locator("body").press("Tab"); // the link that skips the header
        await page.keyboard.press("Enter");
        await tabTo(page, "a.tile");
        await page.keyboard.press("ArrowRight");
        const second = await page.locator("a.tile").nth(1).getAttribute("href");
        assert.equal(await page.evaluate(() => document.activeElement.getAttribute("href")), second);
        await page.keyboard.press("Enter");
        await page.locator(".plot canvas").first().waitFor();
        await tabTo(page, ".plot");
        await page.keyboard.press("Space");
        await page.locator(".plot-panel [aria-pressed=true]").waitFor();
        await page.keyboard.press("+");
        await until(async () => (await plotted(page)).to - (await plotted(page)).from < 31_000, "zoomed by a key");
        await page.reload();
        await page.locator("body").press("Tab");
        await tabTo(page, "nav a[href='#/history']");
        await page.keyboard.press("Enter");
        await page.locator(".history").waitFor();
        await page.getByText("keeps no recording").waitFor();
        await page.goto(gateway.url);
        await page.locator("a.tile").first().waitFor();
    });

    await t.test("no serious finding of accessibility, light and dark", async () => {
        assert.deepEqual(await seriousFindings(page), []);
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
