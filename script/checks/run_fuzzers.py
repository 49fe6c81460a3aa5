#!/usr/bin/env python3
"""Runs the fuzzers of build/fuzz, each for a number of seconds: script/fuzz calls it after building them.

What a fuzzer learns stays in build/fuzz/corpus for the next run; the committed corpora are only read.
"""
import json
import os
import re
import shutil
import subprocess
import sys
import threading
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("HARVLINK_FUZZ_BUILD", PROJECT / "build" / "fuzz"))
PREFIX = "harvlink_fuzz_"
JOBS = int(os.environ.get("HARVLINK_FUZZ_JOBS", os.cpu_count() or 1))
LONGEST_INPUT = 8192
PATIENCE = 100  # seconds for one input: much, because a busy machine is not a fault
GRACE = 300  # seconds beyond its time after which a fuzzer counts as hung
ENVIRONMENT = dict(
    os.environ,
    ASAN_OPTIONS="detect_stack_use_after_return=1:strict_string_checks=1:malloc_context_size=10:quarantine_size_mb=32",
    UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1",
)

running = []
lock = threading.Lock()
failed = threading.Event()


def command(name, seconds, corpus):
    dictionary = PROJECT / "fuzz" / "dictionaries" / f"{name}.dict"
    return [
        str(BUILD / "fuzz" / (PREFIX + name)),
        str(corpus),
        f"-max_total_time={seconds}",
        f"-max_len={LONGEST_INPUT}",
        f"-timeout={PATIENCE}",
        "-rss_limit_mb=2048",
        "-print_final_stats=1",
        f"-artifact_prefix={BUILD}/crashes/{name}-",
        *([f"-dict={dictionary}"] if dictionary.exists() else []),
    ]


def prepare(name):
    corpus = BUILD / "corpus" / name
    corpus.mkdir(parents=True, exist_ok=True)
    seeds = [seed for seed in (PROJECT / "fuzz" / "corpus" / name).glob("*") if seed.is_file()]
    for seed in seeds:
        shutil.copy(seed, corpus)
    return corpus, len(seeds)


def last_number(pattern, log):
    found = re.findall(pattern, log)
    return int(found[-1]) if found else 0


def run(name, seconds):
    """The figures of one fuzzer; None if it failed or another one did before it began."""
    corpus, seeds = prepare(name)
    log_file = BUILD / "logs" / f"{name}.log"
    with open(log_file, "w", encoding="utf-8") as log:
        with lock:
            if failed.is_set():
                return None
            process = subprocess.Popen(command(name, seconds, corpus), stdout=log, stderr=log, cwd=BUILD,
                                       env=ENVIRONMENT)
            running.append(process)
        start = time.monotonic()
        try:
            code = process.wait(seconds + GRACE)
        except subprocess.TimeoutExpired:
            process.kill()
            code = process.wait()
    took = time.monotonic() - start
    log = log_file.read_text(encoding="utf-8", errors="replace")
    with lock:
        if code != 0 and not failed.is_set():
            failed.set()
            report_failure(name, log, log_file)
            for other in running:
                other.terminate()
        if failed.is_set():
            return None
    return {
        "name": name,
        "executions": last_number(r"stat::number_of_executed_units:\s+(\d+)", log),
        "seconds": round(took, 1),
        "coverage": last_number(r"\bcov: (\d+)", log),
        "corpus": len(list(corpus.iterdir())),
        "seeds": seeds,
    }


def report_failure(name, log, log_file):
    kept = re.findall(r"Test unit written to (\S+)", log)
    print("\n".join(log.splitlines()[-60:]), file=sys.stderr)
    print(f"script/fuzz: {name} found a fault, see {log_file}", file=sys.stderr)
    for path in kept:
        print(f"script/fuzz: repeat it with: {BUILD}/fuzz/{PREFIX}{name} {path}", file=sys.stderr)


def print_table(rows):
    columns = ["name", "executions", "seconds", "coverage", "corpus", "seeds"]
    lines = [["fuzzer", *columns[1:]]]
    for row in rows:
        lines.append([f"{row[column]:,}" if isinstance(row[column], int) else str(row[column]) for column in columns])
    widths = [max(map(len, cells)) for cells in zip(*lines)]
    for first, *others in lines:
        print(first.ljust(widths[0]), *(cell.rjust(width) for cell, width in zip(others, widths[1:])), sep="  ")


def main(arguments):
    seconds = int(arguments[0]) if arguments else 20
    names = sorted(path.name.removeprefix(PREFIX) for path in (BUILD / "fuzz").glob(PREFIX + "*") if path.is_file())
    unknown = set(arguments[1:]) - set(names)
    if unknown or seconds < 1:
        sys.exit(f"script/fuzz: there are {', '.join(names)}, and at least a second each")
    names = arguments[1:] or names
    for folder in ("logs", "crashes"):
        (BUILD / folder).mkdir(parents=True, exist_ok=True)
    report_file = BUILD / "report.json"
    report_file.unlink(missing_ok=True)  # there are figures only of a run without a fault
    with ThreadPoolExecutor(JOBS) as pool:
        rows = list(pool.map(lambda name: run(name, seconds), names))
    if failed.is_set():
        return 1
    total = {"executions": sum(row["executions"] for row in rows),
             "seconds": round(sum(row["seconds"] for row in rows), 1)}
    report = {"date": time.strftime("%Y-%m-%d"), "secondsEach": seconds, "fuzzers": rows, "total": total}
    report_file.write_text(json.dumps(report, indent=2) + "\n", encoding="utf-8")
    print_table(rows)
    print(f"script/fuzz: {total['executions']:,} executions in {total['seconds']:,} s, no fault")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
