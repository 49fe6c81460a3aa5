#!/usr/bin/env python3
"""Puts the figures of the gateway into docs/benchmarks.md and docs/scaling.md, and those of its soak into docs/sparkplug.md.

    gateway_report.py FILE       takes the figures that benchmarks/gateway/gateway_bench.py printed
    gateway_report.py --soak FILE    takes the report of script/soak gateway, if nothing failed in it
    gateway_report.py            makes the tables anew from the figures of before
    gateway_report.py --check    fails if the tables were not made by this script

docs/gateway-figures.json has the figures. The script makes what is between the two marks of each page from them.
"""

import datetime
import json
import math
import pathlib
import platform
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FIGURES = ROOT / "docs" / "gateway-figures.json"
START, END = "<!-- gateway figures -->\n", "<!-- end of gateway figures -->"
FULL, DAMAGED = "store full", "bytes of the store"  # the failures that cost something
LONG_RUN = 600  # seconds, from which on growth is more than noise: a shorter run leaves what a longer one has measured
PLANTS = (10, 100, 1000, 10_000)
MOST_CORE, MOST_SCRAPE = 35.0, 100.0  # % of a core, ms: what one gateway may take


def known():
    return json.loads(FIGURES.read_text(encoding="utf-8"))


def rows(figures):
    """Name, unit, value and limit."""
    return (
        ("values read", "1/s", figures["samples_per_second"], None),
        ("processor, with a scrape each 5 s", "% of a core", figures["core_percent"], MOST_CORE),
        ("memory, the most at a scrape", "MiB", figures["resident_mib"], 150),
        (f"growth of the memory in {figures['growth_seconds']:,} s", "%", figures["growth_percent"],
         2 if figures["growth_seconds"] >= LONG_RUN else None),
        ("`/metrics`, until the last byte has come", "ms", figures["metrics_ms"], MOST_SCRAPE),
        ("`/metrics`, processor time", "ms", figures["metrics_cpu_ms"], None),
        ("series in `/metrics`", "", figures["series"], None),
    )


def section():
    """The part of docs/benchmarks.md."""
    figures = known()
    lines = ["## Gateway", "",
             f"`harvlink-gateway` with {figures['controllers']:,} virtual controllers in another process, {figures['items']} items "
             "each at 1 Hz.", "`script/bench gateway` writes this part.", "",
             f"- Commit {figures['commit']}, {figures['date']}, {figures['machine']}", "",
             "| | unit | figure | limit | |", "|---|---|---|---|---|"]
    for name, unit, value, limit in rows(figures):
        verdict = "" if limit is None else "met" if value <= limit else "**missed**"
        lines.append(f"| {name} | {unit} | {value:,} | {'' if limit is None else f'≤ {limit:g}'} | {verdict} |")
    return START + "\n".join(lines) + "\n" + END


def capacity(figures):
    """Controllers of one gateway, a round number that keeps it within both limits."""
    room = min(MOST_CORE / figures["core_percent"], MOST_SCRAPE / figures["metrics_ms"])
    most = figures["controllers"] * room
    step = 10 ** math.floor(math.log10(most))
    return max(int(most // (step / 4) * (step / 4)), 1)


def scaling(figures):
    """The tables of docs/scaling.md."""
    most, broker = capacity(figures), figures["broker"]
    lines = ["| measured | |", "|---|---|",
             f"| gateway: {figures['controllers']:,} controllers, {figures['items']} items each at 1 Hz | "
             f"{figures['core_percent']:g} % of a core, {figures['resident_mib']:g} MiB, a scrape in {figures['metrics_ms']:g} ms of "
             f"{figures['metrics_bytes'] / 1e6:.2g} MB with {figures['series']:,} series |",
             f"| broker: {broker['controllers']} working controllers of `--simulate`, one consumer | "
             f"{broker['messages_per_second']:g} messages/s, {broker['kilobytes_per_second']:g} kB/s, "
             f"{broker['values_per_second']:,.0f} values/s, {broker['broker_core_percent']:g} % of a core |",
             f"| machine | {figures['machine']}, commit {figures['commit']}, {figures['date']} |", "",
             f"One gateway stays under {MOST_CORE:g} % of a core and {MOST_SCRAPE:g} ms for a scrape up to **{most:,} controllers**.", "",
             "| controllers | gateways | each: core, memory | series | scrape each 5 s | broker: messages | broker: data | broker: core |",
             "|---|---|---|---|---|---|---|---|"]
    for count in PLANTS:
        gateways = math.ceil(count / most)
        share = count / gateways / figures["controllers"]
        whole, working = count / figures["controllers"], count / broker["controllers"]
        lines.append(
            f"| {count:,} | {gateways} | {share * figures['core_percent']:.2g} %, {max(share * figures['resident_mib'], 20):.0f} MiB "
            f"| {whole * figures['series']:,.0f} | {whole * figures['metrics_bytes'] / 5000:,.0f} kB/s "
            f"| {working * broker['messages_per_second']:,.0f}/s | {working * broker['kilobytes_per_second'] / 1000:.2g} MB/s "
            f"| {working * broker['broker_core_percent']:.2g} % |")
    return START + "\n".join(lines) + "\n" + END


def loss_of(failure, soak):
    if FULL in failure:
        return f"{soak['storeFull']['missing']:,} samples, the oldest; {soak['storeFull']['dropped']:,} were counted"
    if DAMAGED in failure:
        flipped = soak["bytesFlipped"]
        return f"{flipped['missing']:,} samples; {flipped['damaged']:,} were counted as damaged, the others of them had arrived before"
    return "none"


def soaked(soak):
    """The table of docs/sparkplug.md: each failure with its worst case."""
    values = sum(hall["valuesRead"] for hall in soak["halls"].values())
    lost = sum(hall["notCommittedWhenKilled"] for hall in soak["halls"].values())
    lines = [f"| Failure ({soak['date']}, {soak['minutes']:g} minutes, {soak['controllers']:,} controllers, {values:,} values read, "
             f"commit {soak['commit']}, {soak['machine']}) | Times | Live data goes on after, at most | Missing |", "|---|---|---|---|"]
    lines += [f"| {failure[0].upper()}{failure[1:]} | {seen['times']} | {seen['longestSeconds']:g} s | {loss_of(failure, soak)} |"
              for failure, seen in soak["failures"].items()]
    lines += ["", f"Of what the killed gateways had read, {f'{lost:,} values' if lost else 'nothing'} had not reached the store. The consumer found no fault in any message. "
              f"The three gateways stopped within {max(soak['secondsToStop'].values()):g} s."]
    return START + "\n".join(lines) + "\n" + END


def pages():
    """The pages with the parts that belong into them."""
    for name, part in (("benchmarks.md", section()), ("scaling.md", scaling(known())), ("sparkplug.md", soaked(known()["soak"]))):
        page = ROOT / "docs" / name
        text = page.read_text(encoding="utf-8")
        yield page, text, re.sub(f"{re.escape(START)}.*{re.escape(END)}", lambda _, own=part: own, text, flags=re.DOTALL)


def origin():
    def run(*command):
        return subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False).stdout.strip()

    models = re.findall(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8"))
    return {"commit": run("git", "rev-parse", "--short", "HEAD") or "unknown",
            "date": datetime.datetime.now(datetime.timezone.utc).date().isoformat(),
            "machine": f"{models[0] if models else platform.machine()}, {run('nproc')} cores"}


def take(file):
    figures = json.loads(file.read_text(encoding="utf-8")) | origin()
    former = known()
    growth = figures if figures["seconds"] >= LONG_RUN else former
    write(former | figures | {"growth_percent": growth["growth_percent"],
                              "growth_seconds": growth.get("growth_seconds", growth["seconds"])})


def take_soak(file):
    soak = json.loads(file.read_text(encoding="utf-8"))
    if soak["faults"]:
        sys.exit(f"{file}: the soak failed: {soak['faults'][0]}")
    failures = soak["failures"] = {}
    for event in soak.pop("events"):
        seen = failures.setdefault(event["failure"], {"times": 0, "longestSeconds": 0.0})
        seen["times"] += 1
        seen["longestSeconds"] = max(seen["longestSeconds"], event["goesOnAfterSeconds"])
    write(known() | {"soak": soak | origin()})


def write(figures):
    FIGURES.write_text(json.dumps(figures, indent=2) + "\n", encoding="utf-8")


def main():
    is_check = sys.argv[1:] == ["--check"]
    if sys.argv[1:2] == ["--soak"]:
        take_soak(pathlib.Path(sys.argv[2]))
    elif len(sys.argv) > 1 and not is_check:
        take(pathlib.Path(sys.argv[1]))
    for page, before, after in pages():
        if START not in before or (is_check and before != after):
            sys.exit(f"{page.name}: the figures are not those of docs/gateway-figures.json; run script/gateway_report.py")
        if not is_check:
            page.write_text(after, encoding="utf-8")


if __name__ == "__main__":
    main()
