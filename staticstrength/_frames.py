"""Frames: postures one after the other, as objects and as arrays."""
from __future__ import annotations

import importlib
from array import array
from typing import TYPE_CHECKING, Any, Callable, Iterable, Iterator, List, Optional, Sequence, Tuple, Union

from ._flat import qc, ss
from ._host import tell, tell_earlier, warn
from .errors import StaticStrengthError
from .figure import Figure, Posture
from .frames import COMPONENTS, FrameResults
from .result import RESULT_KEY, Result
from .vectors import radians_of

if TYPE_CHECKING:
    from .analysis import Analysis

Frames = Union[int, Iterable[Posture], Callable[[int], Optional[Posture]]]


def simulate(analysis: Analysis, frames: Frames, progress: bool) -> Iterator[Result]:
    """See :meth:`Analysis.simulate`; what is wrong with the frames themselves is said here and now."""
    if isinstance(frames, bool) or not (isinstance(frames, int) or callable(frames) or hasattr(frames, "__iter__")):
        raise TypeError("expected postures, a function of the frame's number, or a number of frames, found "
                        f"{frames!r}.")
    if isinstance(frames, int) and frames < 0:
        raise ValueError(f"expected a number of frames, found {frames}.")
    analysis.pointer   # alive
    return _run(analysis, frames, progress)


def _run(analysis: Analysis, frames: Frames, progress: bool) -> Iterator[Result]:
    for posture in _watched(_postures(frames), progress, _count(frames)):
        if posture is not None:
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


def simulate_array(analysis: Analysis, frames: Any, angles: Optional[Sequence[Union[str, Tuple[str, int]]]],
                   joints: Optional[Sequence[str]], progress: bool) -> FrameResults:
    """See :meth:`Analysis.simulate_array`."""
    figure = analysis.human.figure
    columns = _columns(figure, angles)
    kept = list(figure.joints) if joints is None else [figure.joints[each].key for each in joints]
    table = _table(frames, len(columns))
    postures = _Postures(figure, columns, table)
    analysis.strategy   # is one
    analysis._warn_of_palms()
    tell_earlier()
    count = len(table) // len(columns) if columns else 0
    return FrameResults(kept, _compute(analysis, postures, count, kept, progress))


def _compute(analysis: Analysis, postures: _Postures, count: int, kept: Sequence[str], progress: bool) -> array[float]:
    figure = analysis.human.figure
    width = len(COMPONENTS)
    order = {joint.key: i * width for i, joint in enumerate(figure._all_joints)}
    whole = [joint.key for joint in figure._all_joints] == list(kept)
    starts = [order[key] for key in kept]
    stride = len(figure._all_joints) * width
    results = array("f", bytes(4 * stride * (count if whole else 1)))
    chosen = array("f")

    figure_pointer, analysis_pointer = figure.pointer, analysis.pointer
    put, remove, read = qc.qcFigure_setAngles, qc.qcFigure_removeJointProperty, qc.qcFigure_getJointVectors
    compute, take = ss.qmStaticStrength_compute, qc.qcMessages_take
    for i in _watched(range(count), progress, count):
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


def _columns(figure: Figure, angles: Optional[Sequence[Union[str, Tuple[str, int]]]]) -> List[Tuple[str, int]]:
    everything = figure.angles
    if angles is None:
        return everything
    if isinstance(angles, str):
        raise TypeError(f"expected a list of joints or of (joint, index), found the text {angles!r}.")
    columns: List[Tuple[str, int]] = []
    for each in angles:
        name, index = (each, None) if isinstance(each, str) else each
        joint = figure.joints[name]
        found = [column for column in everything if column[0] == joint.key and index in (None, column[1])]
        if not found:
            raise ValueError(f"joint {name} has no angle{'s' if index is None else f' {index}'}.")
        columns += found
    for column in columns:
        if columns.count(column) > 1:
            raise ValueError(f"angle {column[1]} of joint {column[0]} is given twice.")
    return columns


def _table(frames: Any, width: int) -> array[float]:
    """All angles, degrees, row by row."""
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
                return table
    table = array("d")
    for i, row in enumerate(frames):
        before = len(table)
        try:
            table.extend(row)
        except TypeError:
            raise TypeError(f"frame {i}: expected a row of {width} angles in degrees, found {row!r}.") from None
        _check_width(len(table) - before, width, f"frame {i}")
    return table


def _check_width(found: int, width: int, where: str) -> None:
    if found != width:
        raise ValueError(f"{where}: expected {width} angles, found {found}.")
