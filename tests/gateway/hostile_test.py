#!/usr/bin/env python3
"""Clients that mean no good: whatever they do, the gateway goes on, within its limits, and serves the others."""

import contextlib
import http.client
import json
import pathlib
import resource
import socket
import ssl
import subprocess
import sys
import unittest

from gateway_program import PATIENCE, Gateway, GatewayTest, get, wait_for

OWN_HOST = b"Host: localhost\r\n"


def resident_mib(gateway):
    return int(pathlib.Path(f"/proc/{gateway.process.pid}/statm").read_text(encoding="ascii").split()[1]) / 256


def figure(gateway, name):
    return next(float(line.split()[1]) for line in get(gateway.port, "/metrics").splitlines() if line.startswith(name + " "))


def first_line(port, request, family=socket.AF_INET):
    """The status line of the answer, nothing if the connection is closed without one."""
    with socket.socket(family) as client, contextlib.suppress(OSError):
        client.settimeout(PATIENCE)
        client.connect(("127.0.0.1" if family == socket.AF_INET else "::1", port))
        client.sendall(request)
        return client.makefile("rb").readline().decode("latin-1").strip()
    return ""


def is_over_with_another_byte(client):
    try:
        client.sendall(b"x")
    except OSError:
        return True
    return False


class HostileTest(GatewayTest):
    def test_bad_requests_are_refused(self):
        gateway = Gateway(self, "", "--simulate", "1")
        get_metrics = b"GET /metrics HTTP/1.1\r\n"
        live = (b"Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
                b"Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n" + OWN_HOST)
        for name, request, refusals in (
                ("oversized header", get_metrics + OWN_HOST + b"X: " + b"x" * 20000 + b"\r\n\r\n", ("", "403", "413", "431")),
                ("many headers", get_metrics + OWN_HOST + b"X-Y: z\r\n" * 2000 + b"\r\n", ("", "403", "413", "431")),
                ("oversized path", b"GET /" + b"x" * 10000 + b" HTTP/1.1\r\n" + OWN_HOST + b"\r\n", ("", "403", "414", "431")),
                ("oversized body", b"POST /api/virtual/robot1 HTTP/1.1\r\n" + OWN_HOST + b"Content-Length: 70000\r\n\r\n"
                 + b"x" * 70000, ("", "413")),
                ("body of no length", b"POST /api/virtual/robot1 HTTP/1.1\r\n" + OWN_HOST + b"\r\n", ("411",)),
                ("foreign host", get_metrics + b"Host: evil.example\r\n\r\n", ("421",)),
                ("no host", get_metrics + b"\r\n", ("421",)),
                ("TLS to a plain port", b"\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03" + bytes(500), ("", "400", "403")),
                ("path upwards", b"GET /%00%ff/../.. HTTP/1.1\r\n" + OWN_HOST + b"\r\n", ("", "200", "403", "404")),
                ("page of another site", b"GET /api/live HTTP/1.1\r\n" + live + b"Origin: http://evil.example\r\n\r\n", ("403",)),
                ("WebSocket elsewhere", get_metrics + live + b"\r\n", ("404",)),
                ("WebSocket", b"GET /api/v1/live HTTP/1.1\r\n" + live + b"\r\n", ("101",)),
                ("preflight", b"OPTIONS /api/latest HTTP/1.1\r\n" + OWN_HOST + b"Origin: http://evil.example\r\n"
                 b"Access-Control-Request-Method: GET\r\n\r\n", ("403", "405"))):
            with self.subTest(name):
                line = first_line(gateway.port, request)
                status = line.split()[1] if line else ""
                self.assertIn(status, refusals, line)
                self.assertIn('"live"', get(gateway.port, "/health/live"))
        connection = http.client.HTTPConnection("127.0.0.1", gateway.port, timeout=PATIENCE)
        connection.request("HEAD", "/api/latest")
        answer = connection.getresponse()
        self.assertGreater(int(answer.getheader("Content-Length")), 100)
        self.assertEqual((answer.status, answer.read()), (200, b""))
        connection.request("GET", "/api/latest", headers={"Origin": "http://evil.example"})
        names = [name.lower() for name, _ in connection.getresponse().getheaders()]
        self.assertFalse([name for name in names if name.startswith("access-control")], "nothing is shared with other sites")
        connection.close()
        self.assertEqual(gateway.stop(), 0)

    def test_ten_thousand_connections_keep_nobody_out(self):
        soft, hard = resource.getrlimit(resource.RLIMIT_NOFILE)
        resource.setrlimit(resource.RLIMIT_NOFILE, (hard, hard))
        self.addCleanup(resource.setrlimit, resource.RLIMIT_NOFILE, (soft, hard))
        count = min(10_000, (hard if hard > 0 else 20_000) - 200)
        gateway = Gateway(self, "", "--simulate", "1")
        get(gateway.port, "/metrics")
        before = resident_mib(gateway)
        with contextlib.ExitStack() as open_ones:
            for number in range(count):
                client = open_ones.enter_context(socket.socket())
                client.settimeout(PATIENCE)
                with contextlib.suppress(OSError):
                    client.connect(("127.0.0.1", gateway.port))
                    client.sendall((b"GET /metrics HTTP/1.1\r\nHost: ", b"")[number % 2])  # and never goes on
                if number % 1000 == 999:
                    self.assertIn("harvlink_up", get(gateway.port, "/metrics"))
            self.assertLessEqual(figure(gateway, "harvlink_http_connections"), 544)
            gone = (figure(gateway, "harvlink_http_given_up_connections_total")
                    + figure(gateway, "harvlink_http_refused_connections_total"))
            self.assertGreaterEqual(gone, count - 544 if count > 544 else 0)
            self.assertLess(resident_mib(gateway) - before, 40.0)
        with socket.create_connection(("127.0.0.1", gateway.port)) as slow:
            slow.sendall(b"POST /api/virtual/robot1 HTTP/1.1\r\n" + OWN_HOST + b"Content-Length: 60000\r\n\r\n")
            wait_for(lambda: figure(gateway, "harvlink_http_connections") < 100, "the end of the others")
            wait_for(lambda: is_over_with_another_byte(slow), "the end of a body that comes byte by byte")
        self.assertEqual(gateway.stop(), 0)

    def test_a_tls_port_goes_on_whatever_comes(self):
        with contextlib.suppress(OSError), socket.socket(socket.AF_INET6) as probe:
            probe.bind(("::1", 0))
            self.serve_tls("[::1]", "::1", socket.AF_INET6)
            return
        self.serve_tls("127.0.0.1", "127.0.0.1", socket.AF_INET)

    def serve_tls(self, listen, host, family):
        certificate, key = self.folder / "gateway.crt", self.folder / "gateway.key"
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                        "-days", "2", "-subj", "/CN=localhost", "-addext", "subjectAltName=DNS:localhost,IP:::1,IP:127.0.0.1",
                        "-keyout", key, "-out", certificate], check=True, capture_output=True)
        gateway = Gateway(self, f'tls_certificate = "{certificate}"\ntls_key = "{key}"\n', "--simulate", "1", listen=listen)
        context = ssl.create_default_context(cafile=certificate)

        def status():
            connection = http.client.HTTPSConnection(host, gateway.port, context=context, timeout=PATIENCE)
            connection.request("GET", "/health/live", headers={"Host": f"{listen}:{gateway.port}"})
            answer = json.loads(connection.getresponse().read())["status"]
            connection.close()
            return answer

        begun, ours = ssl.MemoryBIO(), ssl.MemoryBIO()
        with contextlib.suppress(ssl.SSLWantReadError):
            context.wrap_bio(begun, ours, server_hostname="localhost").do_handshake()
        hello = ours.read()
        with contextlib.ExitStack() as halves:
            for bad in (b"GET /metrics HTTP/1.1\r\n" + OWN_HOST + b"\r\n", b"\x00" * 1000, b"\x16\x03\x01\xff\xff" + b"\xff" * 4000,
                        hello[:100], hello, b"\x15\x03\x01\x00\x02\x02\x28"):
                client = halves.enter_context(socket.socket(family))
                client.connect((host, gateway.port))
                with contextlib.suppress(OSError):
                    client.sendall(bad)
                self.assertEqual(status(), "live", bad[:20])
        self.assertNotIn("PRIVATE", gateway.log())
        self.assertEqual(gateway.stop(), 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
