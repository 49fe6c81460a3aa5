#!/usr/bin/env python3
"""Makes docs/benchmarks.md and docs/benchmarks.svg from the figures of a run of script/bench."""

import json
import pathlib
import platform
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
EXCHANGES = 1000  # by which the longer of the two counted runs exceeds the shorter
PAGE = """# Benchmarks

What the library costs over the bare socket: a client that does nothing but send, wait on two sockets and receive, against
the same answering process, on the same machine, in the same run. Both sides take turns for {rounds} rounds, pinned to one
core unless the case says otherwise; the median of the ratios of the rounds counts. This page is written by `script/bench`.

- Commit {commit}, {machine}
- {missed}

| case | unit | floor | Harvlink | gated figure | target | |
|---|---|---|---|---|---|---|
{rows}

System calls per exchange, counted by strace over {exchanges} exchanges: {calls}.

![Time against size](benchmarks.svg)

## Pieces

| piece | time |
|---|---|
{pieces}
"""


def calls_per_exchange(folder):
    def totals(count):
        calls = {}
        for line in (folder / f"calls-{count}.txt").read_text().splitlines():
            fields = line.split()
            if len(fields) >= 5 and fields[0].replace(".", "").isdigit() and fields[-1] != "total":
                calls[fields[-1]] = int(fields[3])
        return calls

    few, many = totals(100), totals(100 + EXCHANGES)
    return {name: (many[name] - few.get(name, 0)) / EXCHANGES for name in many if many[name] - few.get(name, 0) > 50}


def figure(value):
    return "" if value is None else f"{value:.4g}"


def row(case):
    words = {"<=": "≤", ">=": "≥", "==": "="}[case["comparison"]]
    note = f" ({case['note']})" if case["note"] else ""
    return (
        f"| {case['case']} | {case['unit']} | {figure(case['floor'])} | {figure(case['harvlink'])} "
        f"| {figure(case['gated'])}{note} | {words} {case['target']:g} | {'met' if case['met'] else '**missed**'} |"
    )


def plot(curves):
    """Each curve by its own first point, on logarithmic axes: a slope of one is linear growth."""
    import math

    width, height, margin = 640, 360, 50
    colours = ["#1f77b4", "#d62728", "#2ca02c", "#9467bd"]
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" font-family="sans-serif" font-size="12">']
    parts.append(f'<rect width="{width}" height="{height}" fill="white"/>')

    def place(size, cost):
        x = margin + math.log10(size) / 3 * (width - 2 * margin)
        y = height - margin - math.log10(cost) / 3 * (height - 2 * margin)
        return f"{x:.1f},{y:.1f}"

    for step in range(4):
        x, y = place(10**step, 10**step).split(",")
        parts.append(f'<text x="{x}" y="{height - margin + 18}" text-anchor="middle">x {10**step}</text>')
        parts.append(f'<text x="{margin - 6}" y="{y}" text-anchor="end">x {10**step}</text>')
    parts.append(f'<polyline points="{place(1, 1)} {place(1000, 1000)}" fill="none" stroke="#bbb" stroke-dasharray="4"/>')
    for number, curve in enumerate(curves):
        (first_size, first_cost), *_ = curve["points"]
        points = " ".join(place(size / first_size, max(cost / first_cost, 1)) for size, cost in curve["points"])
        colour = colours[number % len(colours)]
        parts.append(f'<polyline points="{points}" fill="none" stroke="{colour}" stroke-width="2"/>')
        parts.append(f'<text x="{margin + 10}" y="{margin + 16 * number}" fill="{colour}">{curve["name"]}</text>')
    parts.append(f'<text x="{width / 2}" y="{height - 8}" text-anchor="middle">size; the dashed line is linear growth of time</text>')
    return "\n".join(parts + ["</svg>\n"])


def machine():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return f"{line.split(':')[1].strip()}, {platform.system()} {platform.release()}"
    return platform.platform()


def main():
    folder = pathlib.Path(sys.argv[1])
    results = json.loads((folder / "bench.json").read_text())
    pieces = json.loads((folder / "micro.json").read_text())["benchmarks"]
    calls = calls_per_exchange(folder)
    missed = sum(not case["met"] for case in results["rows"])
    commit = subprocess.run(["git", "rev-parse", "--short", "HEAD"], cwd=ROOT, capture_output=True, text=True).stdout.strip()
    page = PAGE.format(
        rounds=7,
        commit=commit or "unknown",
        machine=machine(),
        missed=f"{missed} of {len(results['rows'])} targets missed" if missed else "all targets met",
        rows="\n".join(map(row, results["rows"])),
        exchanges=EXCHANGES,
        calls=", ".join(f"{name} {count:g}" for name, count in sorted(calls.items())),
        pieces="\n".join(f"| {piece['name']} | {piece['real_time']:.1f} {piece['time_unit']} |" for piece in pieces),
    )
    (ROOT / "docs/benchmarks.md").write_text(page, encoding="utf-8")
    (ROOT / "docs/benchmarks.svg").write_text(plot(results["curves"]), encoding="utf-8")


if __name__ == "__main__":
    main()
