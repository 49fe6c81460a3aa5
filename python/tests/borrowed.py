"""Tests under wine, where harvlink-sim does not run: it is lent by the system below, over TCP, and ends with the connection.

Usage: python3 -m tests.borrowed COMMAND...     runs a command whose tests borrow"""

import json
import os
import socket
import socketserver
import subprocess
import sys
import threading

import harvlink.simulator

PORT = "HARVLINK_LENDER"


def path_below(path):
    """What the system below calls a file, if it is one."""
    drive, rest = os.path.splitdrive(path)
    return f"{os.environ['WINEPREFIX']}/dosdevices/{drive.lower()}{rest}".replace("\\", "/") if drive else path


class Simulator(harvlink.simulator.Simulator):
    def __init__(self, *options):
        self._connection = socket.create_connection(("127.0.0.1", int(os.environ[PORT])))
        self._lines = self._connection.makefile("rw", encoding="utf-8")
        self.address = self.ctl(*map(path_below, options))

    def ctl(self, *words):
        print(json.dumps([*map(str, words)]), file=self._lines, flush=True)
        answer, problem = json.loads(self._lines.readline())
        if problem is not None:
            raise ValueError(problem)
        return answer

    def stop(self):
        self._lines.close()
        self._connection.close()


class Lender(socketserver.StreamRequestHandler):
    """Takes a line of options, then lines of words for `ctl`; answers each by a line."""

    simulator = None

    def handle(self):
        for line in self.rfile:
            try:
                answer, problem = self.do(json.loads(line)), None
            except (RuntimeError, ValueError) as error:
                answer, problem = None, str(error)
            self.wfile.write(json.dumps([answer, problem]).encode() + b"\n")

    def do(self, words):
        if self.simulator is not None:
            return self.simulator.ctl(*words)
        self.simulator = harvlink.simulator.Simulator(*words)
        return self.simulator.address

    def finish(self):
        super().finish()
        if self.simulator is not None:
            self.simulator.stop()


def main() -> int:
    with socketserver.ThreadingTCPServer(("127.0.0.1", 0), Lender) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        status = subprocess.call(sys.argv[1:], env={**os.environ, PORT: str(server.server_address[1])})
        server.shutdown()
    return status


if __name__ == "__main__":
    sys.exit(main())
