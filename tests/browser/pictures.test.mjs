// The pictures of README and docs. Here they show that each view can be drawn; script/pictures makes those of the repository.
import assert from "node:assert/strict";
import { mkdir, stat } from "node:fs/promises";
import { join } from "node:path";
import { test } from "node:test";
import { knob, launch, openPage, root, scratchFolder, startGateway, tile, until } from "./support.mjs";

const folder = process.env.HARVLINK_PICTURES ?? join(root, "build/pictures");
const past = Number(process.env.HARVLINK_PICTURES_SECONDS ?? 3); // of the plots; pictures to publish have more to show

const desk = { viewport: { width: 1440, height: 900 } };
const phone = { viewport: { width: 390, height: 780 }, deviceScaleFactor: 2, hasTouch: true };
const views = [
    { name: "overview", place: "#/", ready: "a.tile[data-state=alarm]", options: desk },
    { name: "controller", place: "#/controller/robot1", ready: ".arm-canvas[data-pose]", options: desk },
    { name: "history", place: "#/controller/robot7", ready: ".history .plot canvas", options: desk, follow: ".events [data-kind=alarm-raised] a" },
    { name: "dark", place: "#/controller/robot7", ready: ".arm-canvas[data-pose]", options: { ...desk, colorScheme: "dark" } },
    { name: "phone", place: "#/", ready: "a.tile[data-state=alarm]", options: phone },
];

test("pictures", async (t) => {
    await mkdir(folder, { recursive: true });
    const record = await scratchFolder(t);
    const sections = `[recording]\nfile = "${record}/hall.harvlink"\n[recording.incidents]\nfolder = "${record}/incidents"\non = ["alarm"]\nbefore = "10s"\nafter = "1s"\n`;
    const gateway = await startGateway(t, "127.77.8.1:9750", ["--simulate", "40"], sections);
    await new Promise((resolve) => setTimeout(resolve, past * 1000)); // the time that the plots show
    await knob(gateway, "robot7", { alarm: 4107 });
    await knob(gateway, "robot23", { alarm: 1325 });
    await knob(gateway, "robot11", { fault: "drop=100%" });
    await knob(gateway, "robot5", { hold: true });
    await knob(gateway, "robot9", { servo: false });
    await until(async () => (await gateway.api("incidents")).filter(({ complete }) => complete).length === 2, "two incidents");
    await until(async () => (await gateway.api("controllers/robot11")).summary.link === "silent", "a silent controller");
    const browser = await launch(t);
    for (const { name, place, ready, options, follow } of views) {
        const page = await openPage(browser, gateway, place, options);
        if (follow) {
            await page.locator(follow).first().click();
        }
        await page.locator(ready).first().waitFor();
        if (place !== "#/") {
            await new Promise((resolve) => setTimeout(resolve, 1500)); // plots are filled from the recording
        }
        await page.evaluate(() => new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve))));
        const file = join(folder, `${name}.png`);
        await page.screenshot({ path: file });
        assert.ok((await stat(file)).size > 10_000, `${name} is not empty`);
        const isWide = await page.evaluate(() => document.documentElement.scrollWidth > window.innerWidth);
        assert.ok(!isWide, `${name} fits into the width`);
        assert.deepEqual(page.problems, []);
        await page.context().close();
    }
});
