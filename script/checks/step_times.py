#!/usr/bin/env python3
"""Makes the table of CONTRIBUTING.md from what .ci/run printed: .ci/run | tee ci.log; script/checks/step_times.py ci.log...

Each log is a column. Steps of a few seconds in all of them share a row."""
import re
import sys

SHORT = 5


def steps(log):
    """Each step that the scripts named, with its seconds."""
    return {name: int(seconds) for name, seconds in re.findall(r"^== (.+)\n(?:(?!== ).*\n)*?   (\d+) s$", log, re.MULTILINE)}


def main(names):
    logs = [steps(open(name, encoding="utf-8", errors="replace").read()) for name in names]
    order = list(dict.fromkeys(step for log in logs for step in log))
    long = [step for step in order if any(log.get(step, 0) > SHORT for log in logs)]
    print(f"| step | {' | '.join(names)} |\n|---|{'---|' * len(names)}")
    for step in long:
        print(f"| {step} | {' | '.join(str(log.get(step, '')) for log in logs)} |")
    rest = [sum(seconds for step, seconds in log.items() if step not in long) for log in logs]
    print(f"| {len(order) - len(long)} others | {' | '.join(map(str, rest))} |")
    print(f"| all | {' | '.join(str(sum(log.values())) for log in logs)} |")


if __name__ == "__main__":
    main(sys.argv[1:])
