"""What is read and written by an index, or by a range of indexes."""

from typing import Any, Generic, Iterable, List, Sequence, TypeVar, Union, overload

from .errors import Error

Value = TypeVar("Value")


class Indexed(Generic[Value]):
    """`view[5]` is one exchange. `view[0:5]` is a list, by an exchange for each; a failure names the index.

    `read` and `write` do the same with words, as harvlink.aio needs them.
    """

    _label = ""

    def _get(self, place: Any) -> Value:
        raise NotImplementedError

    def _set(self, place: Any, value: Value) -> None:
        raise NotImplementedError

    def _places(self, numbers: range) -> Iterable[int]:
        """Those of the numbers that there can be."""
        return numbers

    @overload
    def __getitem__(self, place: slice) -> List[Value]: ...

    @overload
    def __getitem__(self, place: Any) -> Value: ...

    def __getitem__(self, place: Any) -> Union[Value, List[Value]]:
        if not isinstance(place, slice):
            return self._get(place)
        return [self._named(number, self._get, number) for number in self._places(_numbers(place))]

    def __setitem__(self, place: Any, value: Any) -> None:
        if not isinstance(place, slice):
            self._set(place, value)
            return
        numbers = list(self._places(_numbers(place)))
        if isinstance(value, str) or not isinstance(value, Sequence) and not hasattr(value, "__len__"):
            raise TypeError(f"a range takes a list of {len(numbers)} values, not {value!r}")
        if len(value) != len(numbers):
            raise ValueError(f"a range of {len(numbers)} takes as many values, not {len(value)}")
        for number, each in zip(numbers, value):
            self._named(number, self._set, number, each)

    def read(self, place: Any) -> Any:
        """The same as `view[place]`; a range is slice(0, 5) or range(5)."""
        return self[_as_slice(place)]

    def write(self, place: Any, value: Any) -> None:
        """The same as `view[place] = value`. The values of a range are written in order, up to the first that fails."""
        self[_as_slice(place)] = value

    def _named(self, number: int, operation: Any, *arguments: Any) -> Any:
        try:
            return operation(*arguments)
        except Error as error:
            raise type(error)(error.code, f"{self._label}{number}: {error.text}") from None


def _as_slice(place: Any) -> Any:
    return slice(place.start, place.stop, place.step) if isinstance(place, range) else place


def _numbers(place: slice) -> range:
    """Unlike those of a list, the ends are never counted from the last one, which nobody knows."""
    start, stop, step = place.start or 0, place.stop, 1 if place.step is None else place.step
    if stop is None:
        raise ValueError("a range needs its end, such as [0:5]: how many there are depends on the controller")
    numbers = range(start, stop, step)
    if step < 1 or start < 0 or stop < start:
        raise ValueError(f"{place} does not go upwards from 0 or more")
    return numbers
