"""Gives tests a virtual controller, and calls the plain functions directly."""

import ctypes
import os
import pathlib
import tempfile
import unittest

from harvlink import _library, _records
from harvlink.simulator import Simulator

ROOT = pathlib.Path(__file__).resolve().parents[2]
TIMEOUT = 0x30006


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


def take_texts(value):
    """Takes every text inside a record or array. Fails if the library has not allocated one of them."""
    if isinstance(value, _records.OwnedText):
        return [value.take()]
    if isinstance(value, ctypes.Structure):
        return [text for name, _ in value._fields_ for text in take_texts(getattr(value, name))]
    if isinstance(value, ctypes.Array) and issubclass(value._type_, ctypes.Structure):
        return [text for item in value for text in take_texts(item)]
    return []


class Plain:
    """A connection that uses only the plain functions."""

    def __init__(self, address, timeout=500, retries=3):
        self.library = _library.load()
        self.status = _records.IStatusInfo()
        self.handle = self.library.open_connection(address.encode(), ctypes.byref(self.status), timeout, retries)

    def call(self, name, *arguments):
        """Returns the code, the message, the value beside the status, and all texts that the function returned.

        An argument that is a type becomes an output record of that type; "status" becomes the output for the status."""
        records = [argument() if isinstance(argument, type) else argument for argument in arguments]
        status = _records.IStatusInfo()
        records = [status if record == "status" else record for record in records]
        passed = [ctypes.byref(r) if isinstance(r, (ctypes.Structure, ctypes._SimpleCData)) else r for r in records]
        if name.endswith("_write") and name.split("_")[0] in ("byte", "integer", "double", "real"):
            passed = records  # by value
        result = getattr(self.library, name)(self.handle, *passed)
        if isinstance(result, _records.IStatusInfo):
            status, result = result, None
        message = status.Message.take()
        outputs = [r for given, r in zip(arguments, records) if isinstance(given, type)]
        texts = [text for record in (result, *outputs) for text in take_texts(record)]
        values = [r.value for r in outputs if isinstance(r, ctypes._SimpleCData)]
        if isinstance(result, _records.OwnedText):
            result = None
        return status.StatusCode, message, values[0] if values else result, texts

    def close(self):
        self.library.close_connection(self.handle)
