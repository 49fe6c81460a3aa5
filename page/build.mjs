// Makes dist/ from src/. With --compare nothing is written: it fails if dist/ is not what the sources make.
import { build } from "esbuild";
import { gzipSync } from "node:zlib";
import { mkdir, readFile, readdir, rm, writeFile } from "node:fs/promises";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const dist = join(here, "dist");
const mostBytes = 250 * 1000; // compressed, of all files together

async function bundle() {
    const result = await build({
        absWorkingDir: here,
        entryPoints: { app: "src/main.ts", arm: "src/arm.ts", plot: "src/plotFile.ts" },
        bundle: true,
        minify: true,
        format: "esm",
        target: "es2020",
        charset: "utf8",
        legalComments: "inline",
        write: false,
        outdir: "dist",
        logLevel: "warning",
        external: ["./arm.js"],
    });
    const files = new Map();
    for (const file of result.outputFiles) {
        files.set(file.path.slice(dist.length + 1), Buffer.from(file.contents));
    }
    files.set("index.html", await readFile(join(here, "src/index.html")));
    files.set("icon.svg", await readFile(join(here, "src/icon.svg")));
    return files;
}

async function committed() {
    const files = new Map();
    for (const name of await readdir(dist).catch(() => [])) {
        files.set(name, await readFile(join(dist, name)));
    }
    return files;
}

function differences(made, there) {
    const names = new Set([...made.keys(), ...there.keys()]);
    return [...names].filter((name) => !made.get(name)?.equals(there.get(name) ?? Buffer.alloc(0)) || !there.has(name));
}

const files = await bundle();
let bytes = 0;
for (const [name, content] of files) {
    const compressed = gzipSync(content, { level: 9 }).length;
    bytes += compressed;
    console.log(`${name.padEnd(12)} ${content.length} bytes, ${compressed} compressed`);
}
console.log(`together ${bytes} bytes compressed`);
if (bytes > mostBytes) {
    console.error(`page: more than ${mostBytes} bytes`);
    process.exit(1);
}
if (process.argv.includes("--compare")) {
    const changed = differences(files, await committed());
    if (changed.length > 0) {
        console.error(`page: dist/ is not what src/ makes: ${changed.join(", ")}. Run "npm run build" and commit.`);
        process.exit(1);
    }
} else {
    await rm(dist, { recursive: true, force: true });
    await mkdir(dist, { recursive: true });
    for (const [name, content] of files) {
        await writeFile(join(dist, name), content);
    }
}
