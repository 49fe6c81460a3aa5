"""What a gateway read, by its recording, against what a consumer received."""

import sqlite3
import sys


def read_values(recording):
    """Each change: (device, metric) and [(time in ms, value), ...]. The same value after a silence is not a change."""
    changes = {}
    with sqlite3.connect(f"file:{recording}?mode=ro", uri=True) as database:
        for device, item, value, time in database.execute(
                "SELECT controller, item, value, answer_us FROM samples WHERE picture = 0 AND quality = 0 ORDER BY sequence"):
            changes.setdefault((device, item.replace(".", "/")), []).append((time // 1000, value))
    for key, values in changes.items():
        changes[key] = [one for before, one in zip([(0, None), *values], values) if before[1] != one[1]]
    return changes


def received_values(file):
    """By (device, metric): time and value. Then those that came with two values for one time, and what came in data, not only in births."""
    values, doubtful, in_data = {}, [], set()
    with open(file, encoding="utf-8") as lines:
        for line in lines:
            device, metric, time, value, source = line.rstrip("\n").split("\t")
            device, metric = sys.intern(device), sys.intern(metric)  # an hour has millions of lines
            known = values.setdefault((device, metric), {}).setdefault(int(time), value)
            if known != value:
                doubtful.append((device, metric, int(time), known, value))
            if source == "data":
                in_data.add((device, metric, int(time)))
    return values, doubtful, in_data


def is_same(read, received):
    if received in ("true", "false"):
        return bool(read) == (received == "true")
    return str(read) == received or (not isinstance(read, str) and float(read) == float(received))


class Comparison:
    """`excused` are spans of microseconds in which what is missing was never committed."""

    def __init__(self, recording, file, excused):
        read = read_values(recording)
        received, self.doubtful, self.in_data = received_values(file)
        self.values = sum(len(values) for values in read.values())
        self.received = sum(len(values) for values in received.values())
        self.metrics = {metric for _, metric in read}
        self.excused = 0
        self.missing, self.wrong = [], []
        for (device, metric), values in read.items():
            had = received.get((device, metric), {})
            for time, value in values:
                if time not in had:
                    if any(begin <= time * 1000 <= end for begin, end in excused):
                        self.excused += 1
                    else:
                        self.missing.append((time, device, metric))
                elif not is_same(value, had[time]):
                    self.wrong.append((time, device, metric, value, had[time]))
        self.missing.sort()
        self.read = read

    def missing_samples(self, begin=0, end=2**62):
        return samples_of(one for one in self.missing if begin <= one[0] < end)

    def samples_not_in_data(self, begin, end):
        """Among them those whose values a birth brought, as they were the latest then."""
        return samples_of((time, device, metric) for (device, metric), values in self.read.items() for time, _ in values
                          if begin <= time < end and (device, metric, time) not in self.in_data)


def samples_of(values):
    """A sample has all values of a reading."""
    return sorted({(time, device, metric.split("/")[0]) for time, device, metric in values})
