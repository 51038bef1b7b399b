"""Humans: a figure whose parts play a human's roles, its body's measures, and its analysis."""
from __future__ import annotations

from typing import TYPE_CHECKING, Callable, Dict, Optional, Tuple, TypeVar

from ._attribute import Attribute
from ._flat import NULL, qc
from ._host import call
from .analysis import Analysis
from .figure import Figure, Posture
from .names import NamedMapping
from .parts import Joint, SceneObject, Segment, Site
from .vectors import as_number

if TYPE_CHECKING:
    from .scene import Scene

P = TypeVar("P")

_SIDES = {"right": 0, "left": 1}


class Human(SceneObject):
    """A human of a scene.

    Parts that play a role are None where the figure has none, as a posed figure may. Sides are ``"right"`` and
    ``"left"``.
    """

    __slots__ = ("_name", "_figure", "_analysis")

    def __init__(self, scene: Scene, address: str) -> None:
        super().__init__(scene, address)
        self._name = qc.qcHuman_getName(address)
        self._figure = Figure(scene, qc.qcHuman_getFigure(address))
        self._analysis: Optional[Analysis] = None

    @property
    def name(self) -> str:
        """Its name."""
        return self._name

    @property
    def figure(self) -> Figure:
        """Its figure."""
        return self._figure

    @property
    def segments(self) -> NamedMapping[Segment]:
        """Its figure's segments by name."""
        return self._figure.segments

    @property
    def sites(self) -> NamedMapping[Site]:
        """Its figure's sites by key, ``segment.site``."""
        return self._figure.sites

    @property
    def joints(self) -> NamedMapping[Joint]:
        """Its figure's joints by name."""
        return self._figure.joints

    def _get_posture(self) -> Dict[str, Tuple[float, ...]]:
        return self._figure.posture

    def _set_posture(self, posture: Posture) -> None:
        self._figure.posture = posture

    posture = Attribute(_get_posture, _set_posture, "All joints' angles, degrees; see :attr:`Figure.posture`.")

    @property
    def analysis(self) -> Analysis:
        """Its analysis, made on first request and after one was deleted, with the scene's gravity and with the
        strategy, loads and torques that the figure's properties hold. Earlier results are gone then."""
        if self._analysis is None or self._analysis.is_deleted:
            self._analysis = Analysis(self)
        return self._analysis

    # ---- the body's measures ----

    def _get_sex(self) -> Optional[str]:
        return qc.qcHuman_getSex(self.pointer)

    def _set_sex(self, sex: str) -> None:
        call(qc.qcHuman_setSex, self, sex)

    sex = Attribute(_get_sex, _set_sex, '``"male"`` or ``"female"``; None when nothing tells it. The other sex has'
                                        " other shares of the body's mass.")

    def _get_stature(self) -> Optional[float]:
        return qc.qcHuman_getStature(self.pointer)

    def _set_stature(self, stature: float) -> None:
        call(qc.qcHuman_setStature, self, as_number(stature, "the stature, cm"))

    stature = Attribute(_get_stature, _set_stature, "The stature, cm, to which all lengths scale; None when nothing"
                                                    " tells it.")

    def _get_mass(self) -> float:
        return self._figure.mass

    def _set_mass(self, grams: float) -> None:
        call(qc.qcHuman_setMass, self, as_number(grams, "the body's mass, g"))

    mass = Attribute(_get_mass, _set_mass, "The whole body's mass, g, to which the segments' masses scale.")

    # ---- roles ----

    def foot(self, side: str) -> Optional[Site]:
        """The support point of a foot."""
        return self._role(self._figure._site, qc.qcHuman_getFootSite, side)

    def hand(self, side: str) -> Optional[Site]:
        """The site of a hand."""
        return self._role(self._figure._site, qc.qcHuman_getHandSite, side)

    def knee(self, side: str) -> Optional[Joint]:
        """A knee."""
        return self._role(self._figure._joint, qc.qcHuman_getKneeJoint, side)

    def ankle(self, side: str) -> Optional[Joint]:
        """An ankle."""
        return self._role(self._figure._joint, qc.qcHuman_getAnkleJoint, side)

    def hip(self, side: str) -> Optional[Joint]:
        """A hip."""
        return self._role(self._figure._joint, qc.qcHuman_getHipJoint, side)

    @property
    def pelvis(self) -> Optional[Site]:
        """A site on the lower torso."""
        address = qc.qcHuman_getPelvisSite(self.pointer)
        return None if address == NULL else self._figure._site(address)

    @property
    def waist(self) -> Optional[Joint]:
        """The waist."""
        address = qc.qcHuman_getWaistJoint(self.pointer)
        return None if address == NULL else self._figure._joint(address)

    def _role(self, part: Callable[[str], P], find: Callable[[str, int], str], side: str) -> Optional[P]:
        if side not in _SIDES:
            raise ValueError(f'expected the side "right" or "left", found {side!r}.')
        address = find(self.pointer, _SIDES[side])
        return None if address == NULL else part(address)

    def __repr__(self) -> str:
        return f"<Human {self._name}>"
