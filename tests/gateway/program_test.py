#!/usr/bin/env python3
"""Runs the gateway as a plant does: with virtual controllers, signals, files that are wrong, and a real Prometheus server."""

import contextlib
import json
import os
import re
import shutil
import socket
import subprocess
import sys
import time
import unittest
import urllib.parse
import urllib.request

from gateway_program import PATIENCE, PROGRAM, SOURCE, Gateway, GatewayTest, free_port, get, wait_for

class ProgramTest(GatewayTest):
    def test_example_is_right_and_a_wrong_file_is_told(self):
        example = subprocess.run([PROGRAM, "--print-example"], capture_output=True, text=True, check=True).stdout
        file = self.folder / "plant.toml"
        file.write_text(example, encoding="utf-8")
        checked = subprocess.run([PROGRAM, "--config", file, "--check"], capture_output=True, text=True, check=True)
        self.assertIn("61 controllers, ", checked.stdout)
        file.write_text('[gateway]\nlisten = "127.0.0.1:0"\n', encoding="utf-8")
        checked = subprocess.run([PROGRAM, "--config", file, "--check", "--simulate", "7"], capture_output=True, text=True,
                                 check=True)
        self.assertIn("7 controllers, ", checked.stdout)
        with subprocess.Popen([PROGRAM, "--config", file, "--simulate", "1"], stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True) as any_port:
            port = int(re.search(r":(\d+)/", any_port.stdout.readline())[1])
            self.assertIn('"live"', get(port, "/health/live"))
            any_port.terminate()
        file.write_text("[gateway]\nnam = 1\n[x]\n", encoding="utf-8")
        for arguments, status, text in (([], 2, "--simulate"), (["--config", str(file)], 1, f"{file}:2: [gateway] nam"),
                                        (["--config", "/no/such"], 1, "can't read /no/such"),
                                        (["--simulate", "0"], 2, "--simulate")):
            run = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, check=False)
            self.assertEqual(run.returncode, status, arguments)
            self.assertIn(text, run.stderr)

    def test_signals_recording_and_notices(self):
        notices = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.addCleanup(notices.close)
        notices.bind(str(self.folder / "notify"))
        notices.settimeout(PATIENCE)
        recording = f'[recording]\nfile = "{self.folder}/plant.harvlink"\n[recording.incidents]\nfolder = "{self.folder}"\nafter = "1s"\n'
        gateway = Gateway(self, recording, "--simulate", "3", environment={
            "NOTIFY_SOCKET": str(self.folder / "notify"), "WATCHDOG_USEC": "400000"})
        self.assertIn(b"READY=1", notices.recv(100))
        self.assertEqual(notices.recv(100), b"WATCHDOG=1")

        port = gateway.port
        wait_for(lambda: json.loads(get(port, "/health/live"))["online"] == 3, "three controllers")
        get(port, "/api/virtual/robot2", body=b'{"alarm":4107}')
        wait_for(lambda: 'harvlink_alarm_active{controller="robot2",code="4107",subcode="0"} 1' in get(port, "/metrics"),
                 "the alarm")
        wait_for(lambda: any(event["controller"] == "robot2" and event["code"] == 4107 for event in
                             json.loads(get(port, "/api/events?kind=alarm-raised"))), "its event")
        items = json.loads(get(port, "/api/controllers/robot2"))["items"]
        item = next(item["id"] for item in items if item["name"] == "state alarm")
        wait_for(lambda: json.loads(get(port, f"/api/history?controller=robot2&items={item}"))["series"][0]["last"][-1:]
                 == [True], "the alarm in the recording")
        incident = wait_for(lambda: next((each for each in json.loads(get(port, "/api/incidents")) if each["complete"]), None),
                            "the incident")
        begun = "robot1-20000101T000000Z-alarm.harvlink"
        (self.folder / begun).touch()
        (self.folder / (begun + "-lock")).touch()
        self.assertIn((begun, False), [(each["file"], each["complete"]) for each in json.loads(get(port, "/api/incidents"))])
        get(port, f"/api/incidents/{begun}", 409)
        path = "/api/incidents/" + incident["file"].replace("-alarm-4107", "-alarm")
        self.assertRegex(get(port, path + "?format=csv"), "^time,seconds,controller,item,unit,value,quality\n(.*\n)+$")
        with urllib.request.urlopen(f"http://127.0.0.1:{port}{path}", timeout=PATIENCE) as answer:
            self.assertEqual(answer.read(), next(self.folder.glob("robot2-*")).read_bytes())
        self.assertEqual(list(self.folder.glob("*.part")), [])
        get(port, "/api/latest", 421, Host="evil.example")
        get(port, "/api/virtual/robot2", 403, body=b"{}", Origin="http://evil.example")

        gateway.write("[prometheus]\nenabled = 1\n")
        gateway.reload()
        wait_for(lambda: "goes on with the one before" in gateway.log(), "the refusal of a bad file")
        self.assertIn("[prometheus] enabled: must be true or false", gateway.log())
        get(port, "/metrics")
        gateway.write("[prometheus]\nenabled = false\n")
        gateway.reload()
        wait_for(lambda: "added=0 removed=0 changed=0" in gateway.log(), "the reload")
        get(port, "/metrics", 404)
        # The system keeps a dozen notices that nobody takes, two seconds of them, and drops what follows.
        notices.setblocking(False)
        with contextlib.suppress(BlockingIOError):
            while notices.recv(100):
                pass
        notices.settimeout(PATIENCE)
        start = time.monotonic()
        self.assertEqual(gateway.stop(), 0)
        self.assertLess(time.monotonic() - start, 5.0)
        with contextlib.suppress(TimeoutError):
            seen = b""
            while seen != b"STOPPING=1":
                seen = notices.recv(100)
        self.assertEqual(seen, b"STOPPING=1")

    @unittest.skipUnless(shutil.which("prometheus") and shutil.which("mosquitto"), "needs prometheus and mosquitto")
    def test_the_commands_of_the_documents(self):
        page = (SOURCE / "docs" / "gateway.md").read_text(encoding="utf-8")
        blocks = re.findall(r"^```sh gateway\n(.*?)^```", page, re.MULTILINE | re.DOTALL)
        self.assertEqual(len(blocks), 4)
        # The ports of the page may be in use here, so the programs get others.
        port = free_port()
        for name in ("prometheus.yml", "harvlink.rules.yml"):
            text = (SOURCE / "packaging" / "prometheus" / name).read_text(encoding="utf-8")
            (self.folder / name).write_text(text.replace("9750", str(port)), encoding="utf-8")
        (self.folder / "port.toml").write_text(f'[gateway]\nlisten = "127.0.0.1:{port}"\n', encoding="utf-8")
        for block in blocks:
            script = block.replace("harvlink-gateway --simulate 12", "harvlink-gateway --simulate 12 --config port.toml")
            for usual, other in (("9750", port), ("9090", free_port()), ("1883", free_port())):
                script = script.replace(usual, str(other))
            # A job of the page must have ended before the next one takes its port, also when a command fails.
            script = ("set -em -o pipefail\ntrap 'for job in $(jobs -p); do kill -- -$job || true; done; wait || true' EXIT\n"
                      f'harvlink-gateway() {{ "{PROGRAM}" "$@"; }}\n{script}')
            run = subprocess.run(["bash", "-c", script], cwd=self.folder, capture_output=True, text=True, check=False,
                                 timeout=PATIENCE * 2)
            self.assertEqual(run.returncode, 0, run.stdout[-2000:] + run.stderr)
        self.assertIn("61 controllers", run.stdout)

    def test_answers_are_as_the_documents_show_them(self):
        settings = f'[recording]\nfile = "{self.folder}/plant.harvlink"\n[recording.incidents]\nfolder = "{self.folder}"\n'
        gateway = Gateway(self, settings, "--simulate", "1")
        wait_for(lambda: '"online":1' in get(gateway.port, "/health/live"), "the controller")
        get(gateway.port, "/api/virtual/robot1", body=b'{"alarm":4107}')
        page = (SOURCE / "docs" / "gateway.md").read_text(encoding="utf-8")
        blocks = re.findall(r"^```json (\S+)\n(.*?)^```", page, re.MULTILINE | re.DOTALL)
        self.assertEqual(len(blocks), 6)
        for path, shown in blocks:
            wait_for(lambda what=path, like=json.loads(shown): is_like(json.loads(get(gateway.port, what)), like), path)
        self.assertEqual(gateway.stop(), 0)

    @unittest.skipUnless(shutil.which("prometheus") and shutil.which("promtool"), "needs prometheus")
    @unittest.skipIf("HARVLINK_EMULATED" in os.environ, "an emulated processor is too slow for a hundred controllers")
    def test_a_real_server_scrapes_a_hundred_controllers(self):
        gateway = Gateway(self, "", "--simulate", "100")
        wait_for(lambda: json.loads(get(gateway.port, "/health/live"))["online"] == 100, "all controllers")
        text = get(gateway.port, "/metrics")
        subprocess.run(["promtool", "check", "metrics"], input=text, text=True, check=True)
        shipped = SOURCE / "packaging" / "prometheus"
        subprocess.run(["promtool", "check", "rules", shipped / "harvlink.rules.yml"], check=True, capture_output=True)
        subprocess.run(["promtool", "check", "config", shipped / "prometheus.yml"], check=True, capture_output=True)
        config = (shipped / "prometheus.yml").read_text(encoding="utf-8")
        config = config.replace("127.0.0.1:9750", f"127.0.0.1:{gateway.port}").replace("5s", "2s")
        shutil.copy(shipped / "harvlink.rules.yml", self.folder)
        (self.folder / "prometheus.yml").write_text(config, encoding="utf-8")
        port = free_port()
        server = subprocess.Popen(["prometheus", f"--config.file={self.folder}/prometheus.yml",
                                   f"--storage.tsdb.path={self.folder}/data", f"--web.listen-address=127.0.0.1:{port}"],
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

        def ask(query):
            try:
                answer = json.loads(get(port, "/api/v1/query?query=" + urllib.parse.quote(query)))
            except (OSError, AssertionError):
                return None  # it is still starting
            return [float(result["value"][1]) for result in answer["data"]["result"]]

        try:
            wait_for(lambda: ask("sum(harvlink_up)") == [100.0], "a hundred controllers in the server")
            wait_for(lambda: ask("count(rate(harvlink_exchanges_total[20s]) > 0)") == [100.0], "their rates")
            self.assertEqual(ask('count(harvlink_axis_position_pulses{axis="s"})'), [100.0])
            get(gateway.port, "/api/virtual/robot7", body=b'{"fault":"silence=100%"}')
            wait_for(lambda: ask('harvlink_up{controller="robot7"}') == [0.0], "a silent controller")
            wait_for(lambda: ask('harvlink_servo_on{controller="robot7"}') == [], "its values vanish")
            self.assertEqual(len(ask('harvlink_last_answer_timestamp_seconds{controller="robot7"}')), 1)
        finally:
            server.terminate()
            server.wait(PATIENCE)
        self.assertEqual(gateway.stop(), 0)


def is_like(real, shown):
    """Whether all that is shown is there, and of its kind."""
    if isinstance(shown, dict):
        return isinstance(real, dict) and all(key in real and is_like(real[key], value) for key, value in shown.items())
    if isinstance(shown, list):
        return isinstance(real, list) and all(any(is_like(each, value) for each in real) for value in shown)
    numbers = (int, float)
    return isinstance(real, numbers if type(shown) in numbers else type(shown))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
