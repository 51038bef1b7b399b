"""Saved inputs: what a figure holds of an analysis's, counted before and put back afterwards."""
from __future__ import annotations

import warnings
from typing import TYPE_CHECKING, Callable, Dict, Optional

from ._flat import qc, ss
from ._host import call, warn
from .errors import StaticStrengthWarning
from .figure import Figure

if TYPE_CHECKING:
    from .analysis import Analysis

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
        human = analysis.human
        if analysis.gravity != self.gravity:
            with warnings.catch_warnings():   # what a reset drops comes back below
                warnings.simplefilter("ignore", StaticStrengthWarning)
                analysis.gravity = self.gravity
        if list(analysis.loads.items()) != list(self.loads.items()):
            analysis.loads.clear()
            for site, load in self.loads.items():
                analysis.loads._put(human.sites[site], load)
        if list(analysis.offset_loads) != self.offset_loads:
            analysis.offset_loads.clear()
            for each in self.offset_loads:
                if each.site in human.sites:
                    analysis.offset_loads._put(human.sites[each.site], each.offset, each.load)
                else:
                    warn(f"the load with an offset at {each.site}, which is not of figure {human.figure.name}, cannot "
                         "be put back.")
        if list(analysis.torques.items()) != list(self.torques.items()):
            analysis.torques.clear()
            for joint, torque in self.torques.items():
                analysis.torques._put(human.joints[joint], torque)
        ss.qmStaticStrength_setStrategy(analysis.pointer, self.strategy)
        if self.text is None:
            human.figure.remove_property("SSTR_Strategy")
        else:
            human.figure.set_property("SSTR_Strategy", self.text)
        call(qc.qcScene_setUnstoredStrategy, human.scene.pointer, human.pointer, self.unstored)
