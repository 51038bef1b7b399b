"""Support: what the strategy of the last computation came to, and what share each foot, knee or hand carries."""
from __future__ import annotations

import math
from typing import TYPE_CHECKING, Dict, Optional, Tuple

from ._flat import ss
from .parts import Joint
from .strategy import Strategy

if TYPE_CHECKING:
    from .analysis import Analysis

_OTHER_JOINTS_RESULT = 1   # the mode of qmStaticStrength_getSplitFactor


def read(analysis: Analysis, strategy: Strategy) -> Tuple[Strategy, Dict[str, float]]:
    """The effective strategy, and the shares in percent by what carries them."""
    if strategy in (Strategy.TWO_FEET, Strategy.WALKING):
        right = _right_hip_share(analysis, strategy)
        if strategy == Strategy.WALKING and right is not None:
            strategy = {1.0: Strategy.RIGHT_FOOT, 0.0: Strategy.LEFT_FOOT}.get(right, Strategy.TWO_FEET)
        return strategy, _shares("foot", right)
    if strategy == Strategy.RIGHT_FOOT:
        return strategy, _shares("foot", 1.0)
    if strategy == Strategy.LEFT_FOOT:
        return strategy, _shares("foot", 0.0)
    if strategy == Strategy.HANDS_AND_KNEES:
        knees = _share(analysis, _right_joint(analysis, "_hip"), "waist")
        hands = _share(analysis, _right_joint(analysis, "_clavicle_joint"), "solar_plexus")
        return strategy, {**_shares("knee", knees), **_shares("hand", hands)}
    return strategy, {}


# The analysis tells the feet's shares under two feet only, so that is asked for a moment. The strategy's
# text on the figure is back afterwards.
def _right_hip_share(analysis: Analysis, strategy: Strategy) -> Optional[float]:
    joint = _right_joint(analysis, "")
    if strategy != Strategy.WALKING:
        return _share(analysis, joint, "waist")
    ss.qmStaticStrength_setStrategy(analysis.pointer, int(Strategy.TWO_FEET))
    share = _share(analysis, joint, "waist")
    ss.qmStaticStrength_setStrategy(analysis.pointer, int(Strategy.WALKING))
    return share


# The first joint that the analysis takes for a right one: its name begins with "r" and ends as told.
def _right_joint(analysis: Analysis, ending: str) -> Optional[Joint]:
    for joint in analysis.human.figure._all_joints:
        if joint.name.startswith("r") and joint.name.endswith(ending) and len(joint.name) > len(ending):
            return joint
    return None


def _share(analysis: Analysis, joint: Optional[Joint], carried: str) -> Optional[float]:
    if joint is None:
        return None
    share = ss.qmStaticStrength_getSplitFactor(analysis.pointer, joint.pointer, _OTHER_JOINTS_RESULT, carried)
    return share if math.isfinite(share) else None


def _shares(what: str, right: Optional[float]) -> Dict[str, float]:
    return {} if right is None else {f"right_{what}": right * 100, f"left_{what}": (1 - right) * 100}
