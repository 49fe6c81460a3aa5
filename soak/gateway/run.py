#!/usr/bin/env python3
"""Three gateways, each with hundreds of virtual controllers, at one mosquitto, while all that can fail does. A consumer of other makes checks
every message, and at the end what it has is compared with what the gateways recorded. script/soak gateway runs it.

    run.py --programs BUILD [--minutes 2] [--size 300] [--patience 5] [--report FILE]

Inside a network namespace of its own (script/soak makes it) the third gateway lies behind a link whose packets can be dropped. Otherwise
that failure is left out, and the output says so.
"""

import argparse
import json
import os
import pathlib
import random
import shutil
import subprocess
import tempfile
import threading
import time

from compare import Comparison
from hall import FOLDER, Hall, wait_for

BROKER = "127.90.0.1"
LINK = ("10.79.0.1", "10.79.0.2")  # the broker's end and the third gateway's
HOUR = 3600
COMMIT = 1.0  # seconds whose values a killed gateway may take with it
LONGEST = 600  # seconds for what takes its time but has no limit of its own
TYPES = {"D000": "Int64", "S000": "String", "P001/axis1": "Double", "state/servo": "Boolean", "state/mode": "Int64"}


class Broker:
    def __init__(self, folder, addresses):
        self.file, self.log = folder / "mosquitto.conf", folder / "mosquitto.log"
        listeners = "".join(f"listener 1883 {address}\n" for address in addresses)
        self.file.write_text(f"{listeners}allow_anonymous true\nuser root\npersistence false\nlog_type warning\nlog_type notice\n"
                             f"log_dest file {self.log}\nmax_queued_messages 0\nmax_inflight_messages 0\n", encoding="utf-8")
        self.process = None
        self.starts = 0

    def start(self):
        self.starts += 1
        self.process = subprocess.Popen(["/usr/sbin/mosquitto", "-c", self.file])

    def kill(self):
        if self.process is not None:
            self.process.kill()
            self.process.wait()

    def drops(self):
        """What it says of messages of QoS 0 that it did not pass on: a gap that no gateway has made."""
        return [line for line in self.log.read_text(encoding="utf-8").splitlines() if "being dropped" in line]


class Consumer:
    def __init__(self, broker, folder):
        self.folder = folder
        self.process = subprocess.Popen(["node", FOLDER / "consumer.js", broker, "Soak", folder], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True)
        self.devices, self.live, self.end = {}, {}, None
        self.marks = 0
        self.ready = threading.Event()
        self.reader = threading.Thread(target=self.read, daemon=True)
        self.reader.start()
        assert self.ready.wait(LONGEST), "the consumer does not start"

    def read(self):
        for text in self.process.stdout:
            line = json.loads(text)
            if "devices" in line:
                self.devices = line["devices"]
            elif "live" in line:
                self.live[line["live"]] = int(line["mark"])
            elif "faults" in line:
                self.end = line
            else:
                self.ready.set()

    def mark(self):
        self.marks += 1
        self.process.stdin.write(f"mark {self.marks}\n")
        self.process.stdin.flush()

    def finish(self):
        self.process.stdin.close()
        self.process.wait(LONGEST)
        self.reader.join()
        return self.end


class Soak:
    def __init__(self, options, folder):
        self.options, self.folder = options, folder
        self.has_link = options.namespace and self.make_link()
        self.broker = Broker(folder, [BROKER, *(LINK[:1] if self.has_link else ())])
        programs = pathlib.Path(options.programs).resolve()
        self.halls = []
        self.events = []
        self.faults = []
        for number in (1, 2, 3):
            is_far = self.has_link and number == 3
            self.halls.append(Hall(number, options.size, programs, folder, LINK[0] if is_far else BROKER,
                                   f"{LINK[1] if is_far else BROKER}:{9750 + number}", self.far if is_far else ()))
        self.consumer = Consumer(BROKER, folder)

    def make_link(self):
        """A pair of virtual network cards, the far one in a namespace that lives as long as a process in it."""
        self.holder = subprocess.Popen(["unshare", "--net", "sleep", "infinity"])
        self.far = ["nsenter", "--target", str(self.holder.pid), "--net"]
        own = os.readlink("/proc/self/ns/net")
        try:
            wait_for(lambda: os.readlink(f"/proc/{self.holder.pid}/ns/net") != own, "a namespace", 5)
            for command in (["ip", "link", "set", "lo", "up"],
                            ["ip", "link", "add", "near", "type", "veth", "peer", "name", "far", "netns", str(self.holder.pid)],
                            ["ip", "address", "add", f"{LINK[0]}/24", "dev", "near"], ["ip", "link", "set", "near", "up"],
                            [*self.far, "ip", "link", "set", "lo", "up"],
                            [*self.far, "ip", "address", "add", f"{LINK[1]}/24", "dev", "far"],
                            [*self.far, "ip", "link", "set", "far", "up"]):
                subprocess.run(command, check=True)
            self.drop(True)
            self.drop(False)
        except (AssertionError, OSError, subprocess.CalledProcessError) as error:
            print(f"no link whose packets can be dropped: {error}")
            return False
        return True

    def drop(self, is_on):
        """A queue that holds not even one packet, in both directions: nobody is told."""
        limit = ["root", "tbf", "rate", "8bit", "burst", "1", "limit", "1"] if is_on else ["root"]
        for prefix, device in (([], "near"), (self.far, "far")):
            subprocess.run([*prefix, "tc", "qdisc", "add" if is_on else "delete", "dev", device, *limit], check=True)

    def say(self, text):
        print(f"{time.monotonic() - self.begin:7.1f} s  {text}", flush=True)

    def goes_on(self, what, halls):
        """From now on, live values of these halls have to come within the limit."""
        self.consumer.mark()
        mark = self.consumer.marks
        took = {}
        begin = time.monotonic()
        while len(took) < len(halls) and time.monotonic() < begin + LONGEST:
            for hall in halls:
                if self.consumer.live.get(hall.name) == mark:
                    took.setdefault(hall.name, time.monotonic() - begin)
            time.sleep(0.02)
        longest = max(took.values(), default=LONGEST) if len(took) == len(halls) else LONGEST
        self.events.append({"failure": what, "goesOnAfterSeconds": round(longest, 1)})
        self.say(f"{what}: goes on after {longest:.1f} s")
        if longest > self.options.patience:
            self.faults.append(f"{what}: publishing went on after {longest:.1f} s")

    def is_settled(self, hall):
        return (self.consumer.devices.get(hall.name) == self.options.size and
                hall.figure("harvlink_mqtt_born") == 1 and hall.figure("harvlink_mqtt_store_waiting_samples") == 0)

    def settle(self):
        for hall in self.halls:
            wait_for(lambda hall=hall: self.is_settled(hall), f"{hall.name} to have sent what waited", LONGEST)

    def fill_store(self):
        """The first gateway has a small store and no broker yet: the oldest go."""
        full = self.halls[0]
        begin = full.now() // 1000
        for hall in self.halls:
            hall.configure("1M" if hall is full else "256M")
            hall.start()
        wait_for(lambda: (full.figure("harvlink_mqtt_store_dropped_samples_total") or 0) > 2000, "a full store", LONGEST)
        for hall in self.halls:
            hall.writer.stdin.write(b"10")
            hall.writer.stdin.flush()
        self.broker.start()
        self.goes_on("store full, no broker at the start", self.halls)
        self.settle()
        self.dropped = full.figure("harvlink_mqtt_store_dropped_samples_total")
        full.stop()
        self.full_span = (begin, full.now() // 1000)
        full.configure("256M")
        full.start()
        self.goes_on("gateway stopped and started with a larger store", [full])

    def kill_broker(self):
        self.broker.kill()
        time.sleep(5)
        self.broker.start()
        self.goes_on("broker killed, 5 s away", self.halls)

    def kill_gateway(self):
        hall = self.halls[1]
        hall.kill(COMMIT * self.options.patience / 5)
        hall.start()
        self.goes_on("gateway killed", [hall])

    def cut_network(self):
        if not self.has_link:
            self.say("network cut: left out, as no namespaces can be made here")
            return
        self.drop(True)
        time.sleep(20)  # four keep-alives
        self.drop(False)
        self.goes_on("network dropped packets for 20 s", self.halls[2:])

    def set_clock_back(self):
        self.hours = getattr(self, "hours", 0) + 2
        self.halls[0].shift_clock(-self.hours * HOUR)
        self.goes_on("clock set back by two hours", self.halls[:1])

    def damage_store(self):
        hall = self.halls[0]
        self.broker.kill()
        time.sleep(5)
        hall.stop()
        self.flipped = hall.flip_bytes()
        hall.start()
        self.broker.start()
        self.goes_on(f"{self.flipped} bytes of the store flipped, broker away", self.halls)
        self.settle()
        time.sleep(15)  # what is damaged is counted when the entries around it are certain to have arrived: after two keep-alives and more
        self.damaged = hall.figure("harvlink_mqtt_store_damaged_samples_total")

    def run(self):
        self.begin = time.monotonic()
        self.fill_store()
        memory = [hall.memory() for hall in self.halls]
        failures = [self.kill_broker, self.kill_gateway, self.cut_network, self.set_clock_back]
        for failure in failures:
            failure()
            self.settle()
        choice = random.Random(1)
        # What is left of the time: rounds in any order, with a rest that also sees sessions which last.
        while time.monotonic() < self.begin + self.options.minutes * 60 - 120:
            time.sleep(30)
            choice.choice(failures)()
            self.settle()
        self.damage_store()
        self.memory = [(hall.name, before, hall.memory()) for hall, before in zip(self.halls, memory)]
        for hall in self.halls:
            hall.writer.stdin.close()
            hall.writer.wait(LONGEST)
        time.sleep(2)  # the last value of each is read and sent
        self.stops = {hall.name: round(hall.stop(), 2) for hall in self.halls}
        time.sleep(1)
        return self.judge(self.consumer.finish())

    def judge(self, seen):
        self.faults += [f"consumer: {fault}" for fault in seen["faults"]]
        self.faults += [f"broker: {line}" for line in self.broker.drops()]
        self.say(f"the consumer was connected {seen['connections']} times, the broker started {self.broker.starts} times")
        self.faults += [f"{name} takes {took} s to stop" for name, took in self.stops.items() if took > self.options.patience]
        self.faults += [f"{metric} has the type {seen['types'].get(metric)}" for metric, kind in TYPES.items()
                        if seen["types"].get(metric) != kind]
        report = {"minutes": round((time.monotonic() - self.begin) / 60, 1), "controllers": 3 * self.options.size,
                  "consumerConnections": seen["connections"], "brokerStarts": self.broker.starts,
                  "events": self.events, "secondsToStop": self.stops, "halls": {}}
        for hall, (_, before, after) in zip(self.halls, self.memory):
            compared = Comparison(hall.recording, self.folder / f"{hall.name}.values", hall.excused)
            self.judge_values(hall, compared, report)
            self.faults += [f"{hall.name}: not dead at the end"] if seen["nodes"][hall.name]["isBorn"] else []
            report["halls"][hall.name] = {
                **seen["nodes"][hall.name], "valuesRead": compared.values, "missing": len(compared.missing),
                "notCommittedWhenKilled": compared.excused, "memoryKiB": [before, after]}
        return report

    def judge_values(self, hall, compared, report):
        missing = compared.missing
        if hall.number == 1:
            first = compared.missing_samples(*self.full_span)
            lost = [one for one in compared.missing_samples() if one not in set(first)]
            report["storeFull"] = {"dropped": int(self.dropped), "missing": len(first)}
            report["bytesFlipped"] = {"flipped": self.flipped, "damaged": int(self.damaged), "missing": len(lost)}
            # A birth brings the latest value of each reading: a dropped sample that is the latest is not missing.
            if not len(first) <= self.dropped <= len(compared.samples_not_in_data(*self.full_span)):
                self.faults.append(f"{hall.name}: {len(first)} samples are missing, {self.dropped:.0f} are counted as dropped")
            if len(lost) > self.damaged:
                self.faults.append(f"{hall.name}: {len(lost)} samples are missing, {self.damaged:.0f} are counted as damaged")
            missing = []
        self.faults += [f"{hall.name}: {one} is missing" for one in missing[:10]]
        self.faults += [f"{hall.name}: {one} came with another value" for one in compared.wrong[:10]]
        self.faults += [f"{hall.name}: {one} came twice with different values" for one in compared.doubtful[:10]]
        if compared.values < self.options.size * 10:
            self.faults.append(f"{hall.name}: only {compared.values} values were read")

    def end(self):
        for hall in self.halls:
            hall.end()
        self.broker.kill()
        self.consumer.process.kill()
        if self.options.namespace:
            self.holder.kill()
            self.holder.wait()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", required=True, help="folder of the build")
    parser.add_argument("--minutes", type=float, default=2)
    parser.add_argument("--size", type=int, default=300, help="controllers of each gateway, at most 500")
    parser.add_argument("--patience", type=float, default=5, help="seconds in which publishing has to go on; more on a busy machine")
    parser.add_argument("--report", help="file for the figures")
    parser.add_argument("--namespace", action="store_true", help="this is a network namespace of its own")
    options = parser.parse_args()
    folder = pathlib.Path(tempfile.mkdtemp(prefix="harvlink-soak-"))
    if options.namespace:
        subprocess.run(["ip", "link", "set", "lo", "up"], check=True)
    soak = Soak(options, folder)
    try:
        report = soak.run()
    finally:
        soak.end()
    report["faults"] = soak.faults
    text = json.dumps(report, indent=2)
    print(text)
    if options.report:
        pathlib.Path(options.report).parent.mkdir(parents=True, exist_ok=True)
        pathlib.Path(options.report).write_text(text + "\n", encoding="utf-8")
    if soak.faults:
        raise SystemExit(f"failed; the files are in {folder}")
    shutil.rmtree(folder)


if __name__ == "__main__":
    main()
