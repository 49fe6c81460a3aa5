#!/usr/bin/env python3
"""Makes docs/benchmarks.md and docs/benchmarks.svg from the figures of a run of script/bench."""

import datetime
import json
import math
import os
import pathlib
import platform
import subprocess
import sys

import gateway_report

ROOT = pathlib.Path(__file__).resolve().parent.parent
EXCHANGES = 1000  # the longer of the two counted runs has this many more than the shorter
CALLS = {"sendto", "ppoll", "recvfrom"}

# Why a missed target is not worth its price. The page shows a remark only if the run missed the target.
REMARKS = {
    "scalar read against a register read of libmodbus, p50": (
        "the bare socket itself takes 0.64 to 0.66 of the peer's time here, so the library has nothing left to gain."
    ),
    "step queued to datagram, against a condition variable": (
        "sending alone, from a bare spinning queue, takes more than 0.2 of the condition variable's time here; only where "
        "waking a thread takes over 50 us could the ratio be met."
    ),
    "silent controller, beyond (1 + retries) x time-out": (
        "each of the three waits ends as late as the bare client's, by the slack of the system's timer and the wake-up of a "
        "sleeping processor."
    ),
    "step queued to datagram, against a spinning queue": (
        "queue and send on two cores: the ratio of two medians of 4 us, between 1.05 and 1.35 from run to run."
    ),
    "stripped shared library": (
        "the target is older than strict connections and the fleet engine, which came into the same library."
    ),
    "silent controller, processor time": (
        "one send and three sleeps of the bare client, each with a wake-up on a cold processor, already take 0.08 to 0.13 ms; "
        "the library adds about 0.03 ms, once in a whole time-out."
    ),
    "100 pages, 200 controllers at 10 Hz: processor against bare libwebsockets": (
        "the bare program sends texts that lie ready. The gateway looks ten times a second what has changed of 200 controllers, "
        "and makes a text of values for each of the 50 that somebody watches: by its profile, half of the time that it takes."
    ),
    "200 controllers in turn, rate against one connection": (
        "the sockets of 200 controllers leave the processor's cache; bare sockets lose as much."
    ),
}

PAGE = """# Benchmarks

This page compares the library with the bare socket: a client that only sends, waits on two sockets and receives. Both talk
to the same answering process, on the same machine, in the same run. They take turns and are pinned to one core unless the
case says otherwise. The figure is the median of the ratios of all rounds. `script/bench` writes this page.

- Commit {commit}, {date}
- {machine}
- {missed}

| case | unit | floor | Harvlink | gated figure | target | |
|---|---|---|---|---|---|---|
{rows}
{remarks}
![Time against size](benchmarks.svg)

## Pieces

| piece | time |
|---|---|
{pieces}

{gateway}
"""


def calls_per_exchange(folder, kind):
    def totals(count):
        calls = {}
        for line in (folder / f"calls-{kind}-{count}.txt").read_text().splitlines():
            fields = line.split()
            if len(fields) >= 5 and fields[0].replace(".", "").isdigit() and fields[-1] != "total":
                calls[fields[-1]] = int(fields[3])
        return calls

    few, many = totals(100), totals(100 + EXCHANGES)
    return {name: (many[name] - few.get(name, 0)) / EXCHANGES for name in many if many[name] != few.get(name, 0)}


def calls_row(folder, kind, name):
    calls = calls_per_exchange(folder, kind)
    return {
        "case": name,
        "unit": "",
        "floor": 3,
        "harvlink": sum(calls.values()),
        "gated": sum(calls.values()),
        "comparison": "==",
        "target": 3,
        "met": set(calls) == CALLS and sum(calls.values()) == len(CALLS),
        "note": ", ".join(sorted(calls)),
    }


def lines_of(file):
    """The figures of recordings and of the page come as a line of JSON each."""
    for line in file.read_text().splitlines():
        case = json.loads(line)
        gated = case["value"] if case["gated"] is None else case["gated"]
        met = gated <= case["target"] if case["comparison"] == "<=" else gated >= case["target"]
        note = "" if case["gated"] is None else "ratio"
        yield {**case, "harvlink": case["value"], "gated": gated, "met": met, "note": note}


def figure(value):
    if value is None:
        return ""
    return f"{value:.4g}" if abs(value) < 10000 else f"{value:,.0f}"


def row(case):
    words = {"<=": "≤", ">=": "≥", "==": "="}[case["comparison"]]
    note = f" ({case['note']})" if case["note"] else ""
    verdict = "met" if case["met"] else "**missed**"
    return (
        f"| {case['case']} | {case['unit']} | {figure(case['floor'])} | {figure(case['harvlink'])} "
        f"| {figure(case['gated'])}{note} | {words} {figure(case['target'])} | {verdict} |"
    )


def remarks(rows):
    missed = [case["case"] for case in rows if not case["met"]]
    lines = [f"- {name}: {REMARKS[name]}" for name in missed if name in REMARKS]
    return "\n## Missed targets, and why they stay\n\n" + "\n".join(lines) + "\n" if lines else ""


def plot(curves):
    """Draws each curve relative to its first point, on logarithmic axes: a slope of one is linear growth."""
    width, height, margin = 640, 360, 50
    colours = ["#1f77b4", "#d62728", "#2ca02c", "#9467bd"]
    box = f'viewBox="0 0 {width} {height}" font-family="sans-serif" font-size="12"'
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" {box}>']
    parts.append(f'<rect width="{width}" height="{height}" fill="white"/>')

    def place(size, cost):
        x = margin + math.log10(size) / 3 * (width - 2 * margin)
        y = height - margin - math.log10(cost) / 3 * (height - 2 * margin)
        return f"{x:.1f},{y:.1f}"

    def line(points, style):
        parts.append(f'<polyline points="{" ".join(points)}" fill="none" {style}/>')

    for step in range(4):
        x, y = place(10**step, 10**step).split(",")
        parts.append(f'<text x="{x}" y="{height - margin + 18}" text-anchor="middle">x {10**step}</text>')
        parts.append(f'<text x="{margin - 6}" y="{y}" text-anchor="end">x {10**step}</text>')
    line([place(1, 1), place(1000, 1000)], 'stroke="#bbb" stroke-dasharray="4"')
    for number, curve in enumerate(curves):
        (first_size, first_cost), *_ = curve["points"]
        colour = colours[number % len(colours)]
        points = [place(size / first_size, max(cost / first_cost, 1)) for size, cost in curve["points"]]
        line(points, f'stroke="{colour}" stroke-width="2"')
        name = f"{curve['name']}, from {first_size:,.0f}"
        parts.append(f'<text x="{margin + 10}" y="{margin + 16 * number}" fill="{colour}">{name}</text>')
    caption = "size; up: time; the dashed line is linear growth"
    parts.append(f'<text x="{width / 2}" y="{height - 8}" text-anchor="middle">{caption}</text>')
    return "\n".join([*parts, "</svg>\n"])


def machine():
    cores = f"{os.cpu_count()} cores, {platform.system()} {platform.release()}"
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return f"{line.split(':')[1].strip()}, {cores}"
    return f"{platform.machine()}, {cores}"


def commit():
    command = ["git", "rev-parse", "--short", "HEAD"]
    return subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False).stdout.strip() or "unknown"


def main():
    folder = pathlib.Path(sys.argv[1])
    results = json.loads((folder / "bench.json").read_text())
    pieces = json.loads((folder / "micro.json").read_text())["benchmarks"]
    rows = results["rows"] + [
        calls_row(folder, "exchanges", "system calls per exchange"),
        calls_row(folder, "strict-exchanges", "strict: system calls per exchange"),
        *lines_of(folder / "recording.json"),
        *lines_of(folder / "page.json"),
    ]
    missed = sum(not case["met"] for case in rows)
    page = PAGE.format(
        commit=commit(),
        date=datetime.datetime.now(datetime.timezone.utc).date().isoformat(),
        machine=machine(),
        missed=f"{len(rows) - missed} of {len(rows)} targets met" if missed else f"all {len(rows)} targets met",
        rows="\n".join(map(row, rows)),
        remarks=remarks(rows),
        gateway=gateway_report.section(),
        pieces="\n".join(f"| {piece['name']} | {piece['real_time']:.1f} {piece['time_unit']} |" for piece in pieces),
    )
    (ROOT / "docs/benchmarks.md").write_text(page, encoding="utf-8")
    (ROOT / "docs/benchmarks.svg").write_text(plot(results["curves"]), encoding="utf-8")
    summary = {"commit": commit(), "machine": machine(), "rows": rows, "curves": results["curves"]}
    (folder / "bench.json").write_text(json.dumps(summary, indent=2) + "\n", encoding="utf-8")
    print(*map(row, rows[len(results["rows"]):]), sep="\n")


if __name__ == "__main__":
    main()
