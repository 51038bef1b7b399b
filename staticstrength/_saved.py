"""Saved inputs: what a figure holds of an analysis's, counted before and put back afterwards."""
from __future__ import annotations

import contextlib
import struct
import warnings
from typing import TYPE_CHECKING, Callable, Dict, Iterable, Optional, TypeVar

from ._flat import qc, ss
from ._host import call, warn
from .errors import StaticStrengthWarning
from .figure import Figure
from .loads import OffsetLoad
from .vectors import Vector

if TYPE_CHECKING:
    from .analysis import Analysis

T = TypeVar("T")

# The lists that a figure saves, and what counts the entries that an analysis has.
_LISTS: Dict[str, Callable[[str], int]] = {
    "SSTR_LoadList": ss.qmStaticStrength_getNumLoads,
    "SSTR_LoadWithOffsetList": ss.qmStaticStrength_getNumLoadsWithOffset,
    "SSTR_TorqueList": ss.qmStaticStrength_getNumDefinedTorques,
}


def count(figure: Figure) -> Dict[str, Optional[int]]:
    """How many entries each saved list of a figure has; None for what is no list."""
    counts: Dict[str, Optional[int]] = {}
    for key in _LISTS:
        saved = figure.get_property(key)
        counts[key] = 0 if saved is None or saved == () else len(saved) if isinstance(saved, list) else None
    return counts


def warn_of_dropped(analysis: Analysis, saved: Dict[str, Optional[int]]) -> None:
    """The analysis passes over what it cannot read, in part without a word; a user wants to know."""
    for key, kept in _LISTS.items():
        where = f"figure {analysis.human.figure.name}: its property {key}"
        before, now = saved[key], kept(analysis.pointer)
        if before is None:
            warn(f"{where} is no list, so nothing was taken from it.")
        elif now < before:
            warn(f"{where} has {before} entries, of which {before - now} cannot be read, or name what the figure does "
                 "not have, or come twice; they were dropped.")


class Inputs:
    """All that an analysis was told, to be put back."""

    def __init__(self, analysis: Analysis) -> None:
        human = analysis.human
        self.gravity = analysis.gravity
        self.strategy = ss.qmStaticStrength_getStrategy(analysis.pointer)
        self.text = human.figure.get_property("SSTR_Strategy")
        self.unstored = qc.qcScene_getUnstoredStrategy(human.scene.pointer, human.pointer)
        self.loads = dict(analysis.loads)
        self.offset_loads = list(analysis.offset_loads)
        self.torques = dict(analysis.torques)

    def put_back(self, analysis: Analysis) -> None:
        """Puts back each part, whatever happens to the others; the last exception is raised at the end."""
        _all([self._put_gravity, self._put_loads, self._put_offset_loads, self._put_torques, self._put_strategy],
             lambda put: put(analysis))

    def _put_gravity(self, analysis: Analysis) -> None:
        if _bits(analysis.gravity) != _bits(self.gravity):
            with warnings.catch_warnings():   # what a reset drops comes back afterwards
                warnings.simplefilter("ignore", StaticStrengthWarning)
                analysis._put_gravity(self.gravity)

    def _put_loads(self, analysis: Analysis) -> None:
        human = analysis.human
        if list(analysis.loads.items()) != list(self.loads.items()):
            analysis.loads.clear()
            _all(self.loads.items(), lambda each: analysis.loads._put(human.sites[each[0]], each[1]))

    def _put_offset_loads(self, analysis: Analysis) -> None:
        human = analysis.human
        if list(analysis.offset_loads) != self.offset_loads:
            analysis.offset_loads.clear()
            _all(self.offset_loads, lambda each: self._put_offset_load(analysis, each))

    @staticmethod
    def _put_offset_load(analysis: Analysis, load: OffsetLoad) -> None:
        human = analysis.human
        if load.site in human.sites:
            analysis.offset_loads._put(human.sites[load.site], load.offset, load.load)
        else:
            warn(f"the load with an offset at {load.site}, which is not of figure {human.figure.name}, cannot be put "
                 "back.")

    def _put_torques(self, analysis: Analysis) -> None:
        human = analysis.human
        if list(analysis.torques.items()) != list(self.torques.items()):
            analysis.torques.clear()
            _all(self.torques.items(), lambda each: analysis.torques._put(human.joints[each[0]], each[1]))

    def _put_strategy(self, analysis: Analysis) -> None:
        human = analysis.human
        ss.qmStaticStrength_setStrategy(analysis.pointer, self.strategy)
        if self.text is None:
            human.figure.remove_property("SSTR_Strategy")
        else:
            human.figure.set_property("SSTR_Strategy", self.text)
        call(qc.qcScene_setUnstoredStrategy, human.scene, human, self.unstored)


# Does something with each, also after an exception; the last one is raised at the end.
def _all(given: Iterable[T], use: Callable[[T], object]) -> None:
    with contextlib.ExitStack() as stack:   # leaves with the last one first
        for each in reversed(list(given)):
            stack.callback(use, each)


# By their bits a not-a-number is the same as itself, and zeros of two signs are not.
def _bits(numbers: Vector) -> bytes:
    return struct.pack("<3d", *numbers)
