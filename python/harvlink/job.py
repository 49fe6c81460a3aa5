"""The running job, and the job that a start runs."""

import ctypes
import dataclasses
from typing import List

from . import _records
from ._link import Link

NO_JOB = "none"


@dataclasses.dataclass(frozen=True)
class Job:
    """A running job; `speed_override` is in per cent. The name is empty if no job runs."""

    name: str
    line: int
    step: int
    speed_override: float


class Jobs:
    def __init__(self, link: Link) -> None:
        self._link = link

    def select(self, name: str, line: int = 0) -> None:
        """Selects the job that `control.start_job` runs, from a line (0 to 9999) on. The name may be in any case, and
        may end in ".JBI"."""
        self._link.do("job_interface_set_active_job", self._link.encoded(name), line)

    def executing(self, task: int = 0) -> Job:
        """The job that a task executes; task 0 is the master task."""
        record = _records.IJobData()
        status = self._link.call("job_interface_get_executing_job_information", task, ctypes.byref(record))
        job = Job(self._link.text(record.name), record.line, record.stepNumber, record.speedOverride)
        self._link.settle(status)
        return job

    def stack(self, task: int = 0) -> List[str]:
        """The names of the jobs on a task's call stack, at most 12. Newer controllers only."""
        record = _records.IJobStack()
        status = self._link.call("job_interface_get_job_stack", task, ctypes.byref(record))
        names = [self._link.text(getattr(record, field)) for field, _ in record._fields_]
        self._link.settle(status)
        return [name for name in names if name != NO_JOB]
