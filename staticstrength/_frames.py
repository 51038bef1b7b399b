"""Frames: postures one after the other, as objects and as arrays."""
from __future__ import annotations

import importlib
import operator
import reprlib
from array import array
from collections.abc import Mapping, Set
from typing import TYPE_CHECKING, Any, Callable, Iterable, Iterator, List, Optional, Sequence, Tuple, Union

from ._flat import qc, ss
from ._host import tell, tell_earlier, warn
from .errors import StaticStrengthError
from .figure import Figure, Posture
from .frames import COMPONENTS, FrameResults
from .parts import Joint
from .result import RESULT_KEY, Result
from .vectors import is_complex, radians_of

if TYPE_CHECKING:
    from .analysis import Analysis

Frames = Union[int, Iterable[Posture], Callable[[int], Optional[Posture]]]

#: A joint stands for all its angles.
Column = Union[str, Joint, Tuple[Union[str, Joint], int]]


def simulate(analysis: Analysis, frames: Frames, progress: bool) -> Iterator[Result]:
    """See :meth:`Analysis.simulate`; what is wrong with the frames themselves is said here and now."""
    if isinstance(frames, bool) or not (isinstance(frames, int) or callable(frames) or hasattr(frames, "__iter__")):
        raise TypeError("expected postures, a function of the frame's number, or a number of frames, found "
                        f"{frames!r}.")
    if isinstance(frames, (str, bytes)):
        raise TypeError(f"expected postures, found the text {reprlib.repr(frames)}.")
    if isinstance(frames, Mapping):
        raise TypeError("expected postures, one a frame, found a single one; for one frame put it into a list.")
    if isinstance(frames, int) and frames < 0:
        raise ValueError(f"expected a number of frames, found {frames}.")
    analysis.pointer   # alive
    return _run(analysis, frames, progress)


def _run(analysis: Analysis, frames: Frames, progress: bool) -> Iterator[Result]:
    for i, posture in enumerate(_watched(_postures(frames), progress, _count(frames))):
        if posture is not None:
            if not hasattr(posture, "items"):
                raise TypeError(f"frame {i}: simulate takes postures, angles in degrees by joint, found "
                                f"{reprlib.repr(posture)}; did you mean simulate_array, which takes rows of angles?")
            analysis.human.posture = posture
        yield analysis.compute()


def _postures(frames: Frames) -> Iterator[Optional[Posture]]:
    if isinstance(frames, int):
        for _ in range(frames):
            yield None
    elif callable(frames):
        i = 0
        while True:
            posture = frames(i)
            if posture is None:
                return
            yield posture
            i += 1
    else:
        yield from frames


def _count(frames: Frames) -> Optional[int]:
    if isinstance(frames, int):
        return frames
    return len(frames) if hasattr(frames, "__len__") else None   # type: ignore[arg-type]


def _watched(frames: Iterable[Any], progress: bool, count: Optional[int]) -> Iterable[Any]:
    """The frames, with a progress bar where one is asked for and to be had."""
    if not progress:
        return frames
    try:
        tqdm = importlib.import_module("tqdm.auto").tqdm
    except ImportError:
        warn("there is no progress bar, because tqdm is not installed.")
        return frames
    bar: Iterable[Any] = tqdm(frames, total=count, unit="frame")
    return bar


def simulate_array(analysis: Analysis, frames: Any, angles: Optional[Sequence[Column]],
                   joints: Optional[Sequence[Union[str, Joint]]], progress: bool) -> FrameResults:
    """See :meth:`Analysis.simulate_array`."""
    figure = analysis.human.figure
    columns = _columns(figure, angles)
    kept = list(figure.joints) if joints is None else _kept(figure, joints)
    table, count = _table(frames, len(columns))
    postures = _Postures(figure, columns, table)
    analysis.strategy   # is one
    analysis._warn_of_palms()
    tell_earlier()
    return FrameResults(kept, _compute(analysis, postures, count, kept, progress), count)


def _compute(analysis: Analysis, postures: _Postures, count: int, kept: Sequence[str], progress: bool) -> array[float]:
    figure = analysis.human.figure
    width = len(COMPONENTS)
    order = {joint.key: i * width for i, joint in enumerate(figure._all_joints)}
    whole = [joint.key for joint in figure._all_joints] == list(kept)
    starts = [order[key] for key in kept]
    stride = len(figure._all_joints) * width
    results = array("f", bytes(4 * stride * (count if whole else 1)))
    chosen = array("f")

    frames = _watched(range(count), progress, count)
    figure_pointer, analysis_pointer = figure.pointer, analysis.pointer
    put, remove, read = qc.qcFigure_setAngles, qc.qcFigure_removeJointProperty, qc.qcFigure_getJointVectors
    compute, take = ss.qmStaticStrength_compute, qc.qcMessages_take
    for i in frames:
        if progress:
            analysis.pointer   # alive, whatever wrote the bar
        numbers, first, unit = postures.of(i)
        done = put(figure_pointer, numbers, first, unit)
        if done:
            remove(figure_pointer, RESULT_KEY)
            compute(analysis_pointer)
            read(figure_pointer, RESULT_KEY, 2, results, i * stride if whole else 0)
        messages = take()
        if messages:
            tell(messages, f"frame {i}: ")
            analysis.pointer   # alive, whatever a warning led to
        if not done:
            raise StaticStrengthError(f"frame {i}: the angles cannot be set.")
        if not whole:
            for start in starts:
                chosen.extend(results[start:start + width])
    return results if whole else chosen


class _Postures:
    """The angles of all joints, frame by frame."""

    def __init__(self, figure: Figure, columns: Sequence[Tuple[str, int]], table: array[float]) -> None:
        everything = figure.angles
        self._table = table
        self._width = len(columns)
        self._whole = list(columns) == everything
        if self._whole:
            return
        # Some angles: they are written into a row of all, which keeps the others' bits.
        self._table = array("d", [radians_of(angle) for angle in table])
        place = {each: i for i, each in enumerate(everything)}
        self._row = array("d", [angle for joint in figure._all_joints for angle in joint.radians])
        self._runs = _runs([place[each] for each in columns])

    def of(self, frame: int) -> Tuple[array[float], int, float]:
        """The array, where the frame begins in it, and its unit in radians."""
        first = frame * self._width
        if self._whole:
            return self._table, first, radians_of(1)
        row, table = self._row, self._table
        for place, column, length in self._runs:
            row[place:place + length] = table[first + column:first + column + length]
        return row, 0, 1.0


# Neighbours that stay neighbours, as (place, column, length).
def _runs(places: Sequence[int]) -> List[Tuple[int, int, int]]:
    runs: List[Tuple[int, int, int]] = []
    for column, place in enumerate(places):
        if runs and place == runs[-1][0] + runs[-1][2]:
            runs[-1] = (runs[-1][0], runs[-1][1], runs[-1][2] + 1)
        else:
            runs.append((place, column, 1))
    return runs


def _kept(figure: Figure, joints: Sequence[Union[str, Joint]]) -> List[str]:
    if isinstance(joints, (str, bytes)):
        raise TypeError(f"expected a list of joints, found the text {joints!r}.")
    if not hasattr(joints, "__iter__"):
        raise TypeError(f"expected a list of joints, found {joints!r}.")
    return [_joint(figure, each).key for each in joints]


def _joint(figure: Figure, joint: Any) -> Joint:
    if not isinstance(joint, (str, Joint)):
        raise TypeError(f"expected a joint or its name, found {joint!r}.")
    return figure._find_joint(joint)


def _columns(figure: Figure, angles: Optional[Sequence[Column]]) -> List[Tuple[str, int]]:
    everything = figure.angles
    if angles is None:
        return everything
    if isinstance(angles, str):
        raise TypeError(f"expected a list of joints or of (joint, index), found the text {angles!r}.")
    if not hasattr(angles, "__iter__"):
        raise TypeError(f"expected a list of joints or of (joint, index), found {angles!r}.")
    columns: List[Tuple[str, int]] = []
    for each in angles:
        given, index = _joint_and_index(each)
        joint = _joint(figure, given)
        found = [column for column in everything if column[0] == joint.key and index in (None, column[1])]
        if not found:
            raise ValueError(f"joint {joint.key} has no angle{'s' if index is None else f' {index}'}.")
        columns += found
    for column in columns:
        if columns.count(column) > 1:
            raise ValueError(f"angle {column[1]} of joint {column[0]} is given twice.")
    return columns


def _joint_and_index(column: Any) -> Tuple[Any, Optional[int]]:
    if isinstance(column, (str, Joint)):
        return column, None
    try:
        joint, index = column
        if not isinstance(index, bool):
            return joint, operator.index(index)
    except (TypeError, ValueError):
        pass
    raise TypeError(f"expected a joint or (joint, index from 1), found {column!r}.")


def _table(frames: Any, width: int) -> Tuple[array[float], int]:
    """All angles, degrees, row by row, and the number of rows."""
    try:
        view = memoryview(frames)
    except TypeError:
        pass
    else:
        if view.ndim == 2:
            _check_width(view.shape[1] if view.shape else 0, width, "the array")
            if view.format == "d":
                table = array("d")
                table.frombytes(view.tobytes())
                return table, len(view)
    rows = _iterator(frames)
    if rows is None:
        raise TypeError(f"expected rows of {width} angles in degrees, found {reprlib.repr(frames)}.")
    table = array("d")
    count = 0
    for row in rows:
        numbers = _row(row, f"frame {count}: expected a row of {width} angles in degrees, found")
        _check_width(len(numbers), width, f"frame {count}")
        table.extend(numbers)
        count += 1
    return table, count


def _row(row: Any, expected: str) -> array[float]:
    angles = _iterator(row)
    try:
        numbers = [] if angles is None else list(angles)
        if angles is not None and not any(map(is_complex, set(map(type, numbers)))):
            return array("d", numbers)
    except TypeError:
        pass
    except OverflowError:   # a whole number beyond all floats
        raise ValueError(f"{expected} a number too large: {reprlib.repr(row)}.") from None
    raise TypeError(f"{expected} {reprlib.repr(row)}.")


# Of what stands in a row; None for what does not.
def _iterator(given: Any) -> Optional[Iterator[Any]]:
    if isinstance(given, (str, bytes, Mapping, Set)):
        return None
    try:
        iterator: Iterator[Any] = iter(given)
    except TypeError:
        return None
    return iterator


def _check_width(found: int, width: int, where: str) -> None:
    if found != width:
        raise ValueError(f"{where}: expected {width} angles, found {found}.")
