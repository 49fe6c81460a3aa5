"""Servo power, hold, cycle, pendant and job start. They act on a real machine and need remote mode."""

from ._library import switch
from ._link import Link
from .enums import CycleMode

# The values of the controller's protocol.
_ON = 1
_OFF = 2


class ControlCommands:
    """After ErrorCode.RESPONSE_TIMEOUT a command may or may not have taken effect: read the state first."""

    def __init__(self, link: Link) -> None:
        self._link = link

    def servos(self, on: bool) -> None:
        """Turns servo power on or off. Waits up to four times the time-out."""
        self._link.do("control_commands_interface_SetServos", _ON if switch("servos", on) else _OFF)

    def hold(self, on: bool) -> None:
        """Holds the running job and motion, or releases the hold."""
        self._link.do("control_commands_interface_SetHold", _ON if switch("hold", on) else _OFF)

    def cycle(self, mode: CycleMode) -> None:
        self._link.do("control_commands_interface_SetCycleMode", mode)

    def display(self, text: str) -> None:
        """Shows a line on the pendant, cut to 30 bytes."""
        self._link.do("control_commands_interface_DisplayStringToPendant", self._link.encoded(text))

    def start_job(self) -> None:
        """Starts the job that `jobs.select` selected."""
        self._link.do("control_commands_interface_StartJob")
