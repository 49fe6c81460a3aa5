"""Gives tests a virtual controller."""

import os
import pathlib
import tempfile
import unittest

if os.name == "nt":
    from .borrowed import Simulator
else:
    from harvlink.simulator import Simulator

ROOT = pathlib.Path(__file__).resolve().parents[2]


class SimulatorTest(unittest.TestCase):
    """Gives every class of tests its own virtual controller and its own working directory."""

    options = ()

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.addClassCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)
        cls.simulator = Simulator(*cls.options)
        cls.addClassCleanup(cls.simulator.stop)
