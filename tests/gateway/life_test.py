#!/usr/bin/env python3
"""Starts, reloads and ends of the gateway when something is in the way."""

import contextlib
import http.client
import json
import os
import shutil
import socket
import sqlite3
import subprocess
import sys
import threading
import time
import unittest
import urllib.request

from gateway_program import PATIENCE, PROGRAM, Gateway, GatewayTest, closed_port, get, wait_for

ATTEMPTS = range(3)  # a machine may be too busy for an orderly end in time, but not each time


class LifeTest(GatewayTest):
    def test_a_reload_that_fails_part_way_changes_nothing(self):
        recording = f'[recording]\nfile = "{self.folder}/plant.harvlink"\n'
        gateway = Gateway(self, recording, "--simulate", "2")
        wait_for(lambda: json.loads(get(gateway.port, "/health/live"))["online"] == 2, "both controllers")

        def exchanges():
            return [float(line.split()[1]) for line in get(gateway.port, "/metrics").splitlines()
                    if line.startswith("harvlink_exchanges_total{")]

        before = exchanges()
        with socket.socket() as taken:
            taken.bind(("127.0.0.1", 0))
            taken.listen()
            other = f'[recording]\nfile = "{self.folder}/other.harvlink"\n'
            for number, (text, port, reason) in enumerate((
                    (other, taken.getsockname()[1], "can't listen on"),
                    ('[recording]\nfile = "/proc/no/such/plant.harvlink"\n', None, "/proc/no/such"),
                    (other + '[gateway]\n', None, "plant.toml:"))):
                gateway.write(text, port)
                gateway.reload()
                wait_for(lambda expected=number + 1: gateway.log().count("goes on with the one before") == expected, reason)
                self.assertIn(reason, gateway.log())
                self.assertIn('harvlink_recording_up 1', get(gateway.port, "/metrics"))
                self.assertEqual(json.loads(get(gateway.port, "/api/status"))["recording"], f"{self.folder}/plant.harvlink")
        after = exchanges()
        self.assertTrue(all(new >= old for old, new in zip(before, after)), "no controller was connected again")

        gateway.write(other)
        gateway.reload()

        def has_new_file():
            with contextlib.suppress(OSError):  # what was asked of the listener before it changed gets no answer
                return json.loads(get(gateway.port, "/api/status"))["recording"].endswith("other.harvlink")
            return False

        wait_for(has_new_file, "the new file")
        self.assertIn("added=0 removed=0 changed=0", gateway.log())
        self.assertEqual(gateway.stop(), 0)

    def test_a_reload_disturbs_only_what_it_changes(self):
        token = self.folder / "token"
        token.write_text("0123456789abcdef\n", encoding="ascii")
        poll = f'token_file = "{token}"\n[poll.p]\nperiod = "1s"\nitems = ["state"]\n'
        controller = '[[controller]]\nname = "press{0}"\nhost = "127.77.53.{0}"\npoll = "p"\n'
        gateway = Gateway(self, poll + controller.format(2))
        page = http.client.HTTPConnection("127.0.0.1", gateway.port, timeout=PATIENCE)
        self.addCleanup(page.close)

        def names():
            page.request("GET", "/api/controllers", headers={"Authorization": "Bearer 0123456789abcdef"})
            return [each["name"] for each in json.loads(page.getresponse().read())]

        self.assertEqual(names(), ["press2"])
        socket_before = page.sock
        nobody = controller.format(3).replace("127.77.53.3", "nobody.invalid")
        gateway.write(poll + controller.format(2) + nobody)
        gateway.reload()
        wait_for(lambda: names() == ["press2", "press3"], "the new controller")
        token_of_it = {"Authorization": "Bearer 0123456789abcdef"}
        wait_for(lambda: '"connecting":0' in get(gateway.port, "/health/live", **token_of_it), "what can't be looked up is silent")
        get(gateway.port, "/health/ready", **token_of_it)
        self.assertIs(page.sock, socket_before, "a page is connected again only if what it shows is another one")
        token.write_text("another token of it\n", encoding="ascii")
        gateway.reload()
        wait_for(lambda: gateway.log().count("the configuration is in use") == 3, "the reload")
        get(gateway.port, "/api/controllers", 401, Authorization="Bearer 0123456789abcdef")
        get(gateway.port, "/api/controllers", Authorization="Bearer another token of it")
        self.assertEqual(gateway.stop(), 0)

    def test_what_cannot_be_opened_is_told_with_its_key(self):
        mqtt = '[mqtt]\nbroker = "127.77.53.1"\ngroup = "plant"\n'
        file = self.folder / "plant.toml"
        for text, problem in (('[recording]\nfile = "plant.toml/x/y"\n', "[recording]: "),
                              ('[recording.incidents]\nfolder = "plant.toml/x"\n', "[recording]: "),
                              (mqtt + '[mqtt.store]\nfolder = "plant.toml/x"\n', "[mqtt.store] folder: "),
                              ('[gateway]\nlisten = "127.0.0.1:1"\ntls_key = "key"\ntls_certificate = "key"\n', "[gateway] listen: ")):
            file.write_text(text, encoding="utf-8")
            (self.folder / "key").touch()
            run = subprocess.run([PROGRAM, "--config", file, "--simulate", "1"], capture_output=True, text=True, check=False)
            self.assertEqual(run.returncode, 1, run.stderr)
            self.assertIn("\n" + problem, run.stderr)
        # Folders that are not there yet are made.
        gateway = Gateway(self, mqtt + 'state_folder = "a/b"\n[mqtt.store]\nfolder = "c/d"\n[recording]\nfile = "e/f/g"\n',
                          "--simulate", "1")
        for made in ("a/b", "c/d/state", "e/f/g"):
            wait_for((self.folder / made).exists, made)
        self.assertEqual(gateway.stop(), 0)

    def test_history_has_a_gap_while_no_gateway_ran(self):
        recording = f'[recording]\nfile = "{self.folder}/plant.harvlink"\n'

        def values(gateway):
            items = json.loads(get(gateway.port, "/api/controllers/robot1"))["items"]
            servo = next(item["id"] for item in items if item["name"] == "state servo")
            series = json.loads(get(gateway.port, f"/api/history?controller=robot1&items={servo}"))["series"]
            return series[0]["last"]

        for expected in ([True], [True, None, True]):
            gateway = Gateway(self, recording, "--simulate", "1")
            wait_for(lambda now=gateway, known=expected: values(now) == known, f"the history {expected}")
            self.assertEqual(gateway.stop(), 0)

    def stop_in_time(self, gateway):
        """A second, and a busy machine. Whether it was orderly: without what ends a program whose threads do not."""
        start = time.monotonic()
        self.assertEqual(gateway.stop(), 0)
        self.assertLess(time.monotonic() - start, 10.0)
        return "the program ends without it" not in gateway.log()

    def test_what_waits_for_the_network_does_not_hold_up_the_end(self):
        # The MQTT client waits without end for its password, as it may for a name server that does not answer.
        password = self.folder / "password"
        password.write_text("secret\n", encoding="utf-8")
        endless = self.folder / "endless"
        os.mkfifo(endless)
        gateway = Gateway(self, f'[mqtt]\nbroker = "127.0.0.1:{closed_port(self)}"\ngroup = "plant"\nuser = "hall"\n'
                                f'password_file = "{password}"\nstate_folder = "{self.folder}"\n', "--simulate", "1")
        endless.replace(password)  # without a moment in which there is none

        def open_other_end():
            with contextlib.suppress(OSError):
                return os.open(password, os.O_WRONLY | os.O_NONBLOCK)  # possible once somebody reads
            return None

        self.addCleanup(os.close, wait_for(open_other_end, "the client at its password"))
        self.assertFalse(self.stop_in_time(gateway))

    def test_an_end_in_the_middle_of_an_export(self):
        self.assertTrue(any(self.ends_in_an_export(number) for number in ATTEMPTS))

    def ends_in_an_export(self, number):
        folder = self.folder / str(number)
        folder.mkdir()
        gateway = Gateway(self, f'[recording.incidents]\nfolder = "{folder}"\nafter = "1s"\n', "--simulate", "2")
        wait_for(lambda: json.loads(get(gateway.port, "/health/live"))["online"] == 2, "both controllers")
        get(gateway.port, "/api/virtual/robot1", body=b'{"alarm":4107}')
        incident = wait_for(lambda: next((each["file"] for each in json.loads(get(gateway.port, "/api/incidents"))
                                          if each["complete"]), None), "the incident")
        enlarge(folder / incident, 60_000)
        url = f"http://127.0.0.1:{gateway.port}/api/incidents/{incident}?format=csv"

        def ask():
            with contextlib.suppress(OSError), urllib.request.urlopen(url, timeout=60) as answer:
                answer.read()

        client = threading.Thread(target=ask)
        client.start()
        self.addCleanup(client.join)
        wait_for(lambda: any(".csv.part" in name for name in gateway.open_files()), "the export")
        return self.stop_in_time(gateway) and not list(folder.glob("*.part"))

    def test_an_incident_that_a_killed_gateway_has_left(self):
        settings = f'[recording.incidents]\nfolder = "{self.folder}"\nafter = "600s"\n'
        gateway = Gateway(self, settings, "--simulate", "1")
        wait_for(lambda: json.loads(get(gateway.port, "/health/live"))["online"] == 1, "the controller")
        get(gateway.port, "/api/virtual/robot1", body=b'{"alarm":4107}')
        begun = wait_for(lambda: next(iter(json.loads(get(gateway.port, "/api/incidents"))), None), "the incident")
        get(gateway.port, f"/api/incidents/{begun['file']}", 409)
        wait_for(lambda: has_events(self.folder / begun["file"]), "what was read before it")
        gateway.process.kill()
        gateway.process.wait()
        gateway = Gateway(self, settings, "--simulate", "1")
        left = json.loads(get(gateway.port, "/api/incidents"))
        self.assertEqual([(each["file"], each["complete"]) for each in left], [(begun["file"], True)])
        self.assertRegex(get(gateway.port, f"/api/incidents/{begun['file']}?format=csv"), "robot1,state.alarm,,1,good\n")

    def test_an_error_stream_that_nobody_reads_holds_up_nothing(self):
        reader, writer = os.pipe()
        self.addCleanup(os.close, reader)
        os.set_blocking(writer, False)
        with contextlib.suppress(BlockingIOError):
            while os.write(writer, b"x" * 4096):
                pass
        os.set_blocking(writer, True)
        gateway = Gateway(self, "", "--simulate", "1", errors=writer)
        os.close(writer)
        self.assertIn("harvlink_up", get(gateway.port, "/metrics"))
        os.set_blocking(reader, False)
        with contextlib.suppress(BlockingIOError):
            while os.read(reader, 65536):
                pass
        self.assertEqual(gateway.stop(), 0)
        said = os.read(reader, 65536).decode()
        self.assertIn('text="the log could not be written" lines=', said)
        self.assertIn('text="the gateway ends"', said)

    @unittest.skipUnless(os.geteuid() == 0 and shutil.which("unshare"), "needs root to put a name server in the way")
    def test_a_name_server_that_does_not_answer(self):
        silent = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.addCleanup(silent.close)
        silent.bind(("127.77.53.1", 53))
        silent.settimeout(30)
        servers = self.folder / "resolv.conf"
        servers.write_text("nameserver 127.77.53.1\noptions timeout:30 attempts:5\n", encoding="ascii")
        world = ("unshare", "--mount", "sh", "-c", f'mount --bind {servers} /etc/resolv.conf && exec "$0" "$@"')
        if subprocess.run([*world, "true"], capture_output=True, check=False).returncode != 0:
            self.skipTest("no mount namespaces here")
        mqtt = '[mqtt]\nbroker = "broker.plant.test"\ngroup = "plant"\nkeep_alive = "{}s"\n'

        def ends_while_it_asks():
            gateway = Gateway(self, mqtt.format(5), "--simulate", "1", world=world)
            for keep_alive in (6, 7):
                self.assertIn(b"broker", silent.recv(512))
                gateway.write(mqtt.format(keep_alive))
                gateway.reload()
                wait_for(lambda: gateway.log().count("the configuration is in use") == keep_alive - 4, "the reload")
                self.assertIn("harvlink_mqtt_born 0", get(gateway.port, "/metrics"))
            self.assertIn(b"broker", silent.recv(512))
            return self.stop_in_time(gateway)

        self.assertTrue(any(ends_while_it_asks() for _ in ATTEMPTS))


def has_events(recording):
    """Whether a commit has come to the disk: it has all up to the event."""
    with contextlib.suppress(sqlite3.OperationalError), contextlib.closing(sqlite3.connect(recording)) as database:
        return database.execute("SELECT count(*) FROM events").fetchone()[0] > 0
    return False


def enlarge(recording, frames):
    """Repeats what it has until it has so many frames."""
    with contextlib.closing(sqlite3.connect(recording)) as database, database:
        table, count = max(((name, database.execute(f"SELECT count(*) FROM {name}").fetchone()[0])
                            for name in ("frames_8", "frames_32", "frames_128")), key=lambda each: each[1])
        while count < frames:
            database.execute(f"CREATE TEMP TABLE more AS SELECT * FROM {table}")
            database.execute(f"UPDATE more SET sequence = sequence + (SELECT max(sequence) FROM {table})")
            database.execute(f"INSERT INTO {table} SELECT * FROM more")
            database.execute("DROP TABLE more")
            count *= 2
        database.execute(f"UPDATE segments SET last_sequence = (SELECT max(sequence) FROM {table}), samples = {count}")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
