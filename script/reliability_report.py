#!/usr/bin/env python3
"""Copies the figures of the last runs into docs/reliability.md.

    reliability_report.py            takes the reports of the runs from build/; figures without a new report stay
    reliability_report.py --check    fails if the table was not made by this script, or shows a failure

docs/reliability.json has the figures. The script makes the table between the two marks of the page from it.
"""

import datetime
import json
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build"
FIGURES = ROOT / "docs" / "reliability.json"
PAGE = ROOT / "docs" / "reliability.md"
TABLE = re.compile(r"(?<=<!-- figures -->\n).*(?=<!-- end of figures -->)", re.DOTALL)
# As script/checks/coverage holds them.
LINES_WANTED = {"coverage": 95.0, "coverage words": 97.0, "coverage recording": 90.0, "coverage simulator": 95.0,
                "coverage cli": 90.0}
ROOMS = {"coverage": "the library", "coverage words": "`words/`", "coverage recording": "`recording/`",
         "coverage simulator": "`simulator/`", "coverage cli": "`cli/`"}
BUILDS = {"release": "optimised, g++", "asan": "address and undefined-behaviour sanitizers, clang",
          "tsan": "thread sanitizer, g++"}


def tests_of(report):
    """The numbers of tests and failures of a ctest run."""
    suite = xml.etree.ElementTree.parse(report).getroot()
    ran = int(suite.get("tests")) - int(suite.get("skipped", 0)) - int(suite.get("disabled", 0))
    return {"cases": ran, "failed": int(suite.get("failures"))}


def coverage_of(report):
    summary = json.loads(report.read_text())
    return {kind: {"covered": summary[f"{kind}_covered"], "total": summary[f"{kind}_total"]}
            for kind in ("line", "branch")}


def fuzzing_of(report):
    run = json.loads(report.read_text())
    return {"secondsEach": run["secondsEach"],
            "fuzzers": {fuzzer["name"]: {"executions": fuzzer["executions"], "seconds": round(fuzzer["seconds"])}
                        for fuzzer in run["fuzzers"]}}


def soak_of(report):
    soak = json.loads(report.read_text())
    wanted = ("minutesAsked", "minutes", "operations", "exchanges", "fileBytesCompared", "faultsInjected",
              "faultsSurvived", "before", "after")
    return {**{name: soak[name] for name in wanted}, "failed": len(soak["failures"])}


def fleet_soak_of(report):
    runs = [json.loads(line) for line in report.read_text().splitlines()]
    faults = {name: sum(run["faultsInjected"][name] for run in runs) for name in runs[0]["faultsInjected"]}
    return {"minutes": sum(run["seconds"] for run in runs) / 60, "controllers": runs[0]["controllers"],
            "faulty": runs[0]["faulty"], "faultyValues": sum(run["faultyValues"] for run in runs),
            "healthyValues": sum(run["healthyValues"] for run in runs),
            "leastRounds": min(run["leastRounds"] for run in runs), "faultsInjected": faults}


SOURCES = {
    **{f"tests {build}": (BUILD / build / "tests.xml", tests_of) for build in BUILDS},
    "coverage": (BUILD / "coverage" / "library.json", coverage_of),
    **{f"coverage {room}": (BUILD / "coverage" / f"{room}.json", coverage_of)
       for room in ("words", "recording", "simulator", "cli")},
    "fuzzing": (BUILD / "fuzz" / "report.json", fuzzing_of),
    "soak": (BUILD / "soak" / "report.json", soak_of),
    "bad network": (BUILD / "netns" / "report.json", soak_of),
    "fleet soak": (BUILD / "soak" / "fleet.jsonl", fleet_soak_of),
}


def measured(report, read):
    day = datetime.datetime.fromtimestamp(report.stat().st_mtime, datetime.timezone.utc).date().isoformat()
    return {"measured": day, **read(report)}


def update(figures):
    for kind, (report, read) in SOURCES.items():
        if report.exists():
            figures[kind] = measured(report, read)
        else:
            print(f"{kind}: no report in build/, its figures stay", file=sys.stderr)
    page = TABLE.sub(lambda _: render(figures), PAGE.read_text())
    FIGURES.write_text(json.dumps(figures, indent=2) + "\n")
    PAGE.write_text(page)


def share(part):
    return 100.0 * part["covered"] / part["total"]


def listing(counts):
    return ", ".join(f"{name} {count:,}" for name, count in counts.items())


def growth(soak):
    """Memory, descriptors and threads of each process before and after, such as "client 9000 → 9100 KiB"."""
    pairs = zip(soak["before"], soak["after"])
    return "; ".join(f"{old['process']} {old['residentKiB']:,} → {new['residentKiB']:,} KiB, {old['descriptors']} → "
                     f"{new['descriptors']} descriptors, {old['threads']} → {new['threads']} threads"
                     for old, new in pairs)


def soak_rows(name, command, soak):
    yield name, (f"{soak['minutes']:g} minutes, {soak['operations']:,} operations in {soak['exchanges']:,} exchanges, "
                 f"{soak['fileBytesCompared']:,} file bytes compared, {soak['failed']} failed"), command, soak
    yield f"{name}: faults injected", listing(soak["faultsInjected"]), command, soak
    yield f"{name}: faults that operations survived or reported", listing(soak["faultsSurvived"]), command, soak
    yield f"{name}: growth", growth(soak), command, soak


def rows(figures):
    for build, description in BUILDS.items():
        if tests := figures.get(f"tests {build}"):
            yield f"tests, {description}", f"{tests['cases']:,} run, {tests['failed']} failed", \
                f"script/test {build}", tests
    for figure, room in ROOMS.items():
        coverage = figures.get(figure, {})
        for kind, name in (("line", "lines"), ("branch", "branches")):
            if part := coverage.get(kind):
                yield f"{name} of {room} that tests run", \
                    f"{share(part):.1f} % ({part['covered']:,} of {part['total']:,})", "script/check coverage", coverage
    if fuzzing := figures.get("fuzzing"):
        for name, fuzzer in fuzzing["fuzzers"].items():
            yield f"fuzzer `{name}`", f"{fuzzer['executions']:,} executions in {fuzzer['seconds']:,} s, no fault", \
                f"script/fuzz {fuzzing['secondsEach']} {name}", fuzzing
    if soak := figures.get("soak"):
        yield from soak_rows("soak", f"script/soak {soak['minutesAsked']:g}", soak)
    if soak := figures.get("bad network"):
        yield from soak_rows("soak through a bad network", f"script/netns {soak['minutesAsked']:g}", soak)
    if soak := figures.get("fleet soak"):
        command = f"script/soak fleet {soak['minutes']:g}"
        yield "soak of a fleet", (
            f"{soak['minutes']:g} minutes, {soak['controllers']} controllers, {soak['faulty']} of them faulty: "
            f"{soak['faultyValues']:,} values of these and {soak['healthyValues']:,} of the others, none wrong but "
            f"for bits that flipped inside a value; each of the others had at least {100 * soak['leastRounds']:.1f} % of its rounds"), command, soak
        yield "soak of a fleet: faults injected", listing(soak["faultsInjected"]), command, soak


def render(figures):
    lines = ["| what | figure | measured | command |", "|---|---|---|---|"]
    lines += [f"| {name} | {figure} | {source['measured']} | `{command}` |"
              for name, figure, command, source in rows(figures)]
    return "\n".join(lines) + "\n"


def faults(figures):
    page = TABLE.search(PAGE.read_text())
    if page is None or page.group() != render(figures):
        yield "the table does not match docs/reliability.json: run script/reliability_report.py, do not edit the table"
    for kind, figure in figures.items():
        if kind not in SOURCES:
            yield f"{kind}: unknown kind of figure"
        elif figure.get("failed"):
            yield f"{kind}: {figure['failed']} failed"
    for kind, wanted in LINES_WANTED.items():
        if kind in figures and share(figures[kind]["line"]) < wanted:
            yield f"{kind}: less than {wanted:g} % of the lines are tested"
    for command in {row[2] for row in rows(figures)}:
        if not (ROOT / command.split()[0]).exists():
            yield f"{command}: the script does not exist"


def main(arguments):
    figures = json.loads(FIGURES.read_text()) if FIGURES.exists() else {}
    if arguments == []:
        update(figures)
    elif arguments != ["--check"]:
        sys.exit(__doc__)
    found = [f"docs/reliability.md: {fault}" for fault in faults(figures)]
    print("\n".join(found), end="\n" if found else "", file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
