"""Recordings as Python reads them, and the queries of their page."""

import contextlib
import os
import pathlib
import re
import sqlite3
import subprocess
import tempfile
import unittest

import harvlink
from tests.support import ROOT, SimulatorTest

TOOL = os.environ.get("HARVLINK_TOOL")
QUERIES = re.findall(r"```sql\n(.*?)```", (ROOT / "docs" / "recordings.md").read_text(encoding="utf-8"), re.DOTALL)


class FirstVersionTest(unittest.TestCase):
    def test_is_read(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "x.harvlink")
            with contextlib.closing(sqlite3.connect(path)) as database:
                database.executescript((ROOT / "tests/recording/version-1.sql").read_text(encoding="utf-8"))
            with harvlink.Recording(path) as recording:
                columns = recording.columns("S004", "B000", frame=False)
                self.assertEqual((columns["S004"][-1], columns["B000"][-1]), ("Pr\\xEAt", 9))
                self.assertEqual(recording.events[-1].text, "OUT OF RANGE")


@unittest.skipUnless(TOOL, "this build has no tool that could record")
class RecordingTest(SimulatorTest):
    def record(self, *options):
        pathlib.Path("x.harvlink").unlink(missing_ok=True)
        subprocess.run(
            [TOOL, "--host", self.simulator.address, "record", "--out", "x.harvlink", "--for", "1500ms", "--var", "B0"]
            + list(options),
            check=True,
            capture_output=True,
        )
        return harvlink.Recording("x.harvlink")

    def test_gives_columns_events_and_samples(self):
        with self.record("--io", "10010") as recording:
            self.assertEqual(recording.controllers, [self.simulator.address])
            self.assertIn("online", [event.kind for event in recording.events])
            self.assertIn("position R1 base.x", [item.name for item in recording.items])
            columns = recording.columns("position R1 base.x", "state", frame=False)
            self.assertEqual(len(columns), 9)
            self.assertEqual({len(column) for column in columns.values()}, {len(columns["time"])})
            self.assertEqual(columns["state.servo"][-1], 0)
            last = recording.columns("B000", begin=recording.end, frame=False)
            self.assertEqual(len(last["time"]), 0)
            self.assertEqual([row[2:] for row in recording.samples("B000")], [("B000", 0)])
            self.assertLess(recording.begin, recording.end)
            with self.assertRaises(KeyError):
                recording.columns("B999")
            with self.assertRaises(sqlite3.OperationalError):
                recording._database.execute("DELETE FROM events")

    def test_refuses_what_it_cannot_read(self):
        self.record().close()
        pathlib.Path("text").write_text("not a recording " * 100)
        with self.assertRaisesRegex(ValueError, "not a recording"):
            harvlink.Recording("text")
        with self.assertRaises(FileNotFoundError):
            harvlink.Recording("missing")
        with contextlib.closing(sqlite3.connect("x.harvlink")) as database:
            database.execute("PRAGMA user_version = 9")
        with self.assertRaisesRegex(ValueError, "version 9 of the schema, this package reads up to version 1"):
            harvlink.Recording("x.harvlink")

    def test_the_queries_of_the_page_run(self):
        self.record().close()
        self.assertEqual(len(QUERIES), 10)
        with contextlib.closing(sqlite3.connect("x.harvlink")) as database:
            database.execute("UPDATE controllers SET name = 'press1'")
            for query in QUERIES:
                with self.subTest(query):
                    rows = database.execute(query).fetchall()
                    if "alarm" not in query and "gap" not in query and "sum(until" not in query:
                        self.assertTrue(rows)
