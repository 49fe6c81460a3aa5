"""Fixtures for pytest. An installed package provides them by itself; in a checkout `pytest_plugins = ["harvlink.pytest_plugin"]`
in conftest.py does.

    def test_my_program(harvlink_simulator):
        harvlink_simulator.alarm(4107)
        ...

    @pytest.mark.harvlink_simulator("--generation", "FS")
    def test_an_older_one(harvlink_simulator): ...
"""

from typing import Any, Iterator

import pytest

from .connection import Robot, connect
from .simulator import Simulator


def pytest_configure(config: Any) -> None:
    config.addinivalue_line("markers", "harvlink_simulator(*options): options of the virtual controller of this test")


@pytest.fixture
def harvlink_simulator(request: Any) -> Iterator[Simulator]:
    """A virtual controller of its own for each test; the mark harvlink_simulator gives it options."""
    mark = request.node.get_closest_marker("harvlink_simulator")
    with Simulator(*(mark.args if mark else ())) as simulator:
        yield simulator


@pytest.fixture
def harvlink_robot(harvlink_simulator: Simulator) -> Iterator[Robot]:
    """A connection to the virtual controller of the test."""
    with connect(harvlink_simulator.address) as robot:
        yield robot
