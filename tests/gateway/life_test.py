#!/usr/bin/env python3
"""Starts, reloads and ends of the gateway when something is in the way."""

import contextlib
import json
import os
import socket
import sys
import time
import unittest

from gateway_program import Gateway, GatewayTest, free_port, get, wait_for


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
        wait_for(lambda: json.loads(get(gateway.port, "/api/status"))["recording"].endswith("other.harvlink"), "the new file")
        self.assertIn("added=0 removed=0 changed=0", gateway.log())
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

    def test_what_waits_for_the_network_does_not_hold_up_the_end(self):
        # The MQTT client waits without end for its password, as it may for a name server that does not answer.
        password = self.folder / "password"
        password.write_text("secret\n", encoding="utf-8")
        gateway = Gateway(self, f'[mqtt]\nbroker = "127.0.0.1:{free_port()}"\ngroup = "plant"\nuser = "hall"\n'
                                f'password_file = "{password}"\nstate_folder = "{self.folder}"\n', "--simulate", "1")
        password.unlink()
        os.mkfifo(password)

        def open_other_end():
            with contextlib.suppress(OSError):
                return os.open(password, os.O_WRONLY | os.O_NONBLOCK)  # possible once somebody reads
            return None

        self.addCleanup(os.close, wait_for(open_other_end, "the client at its password"))
        start = time.monotonic()
        self.assertEqual(gateway.stop(), 0)
        self.assertLess(time.monotonic() - start, 10.0)
        self.assertIn("the program ends without it", gateway.log())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
