"""The analysis of a human: what it is told, its computations, and what they leave."""
from __future__ import annotations

import contextlib
from typing import (TYPE_CHECKING, Any, Callable, Dict, Iterable, Iterator, List, NoReturn, Optional, Sequence, Tuple,
                    Union)

from . import _frames, _saved, _support
from ._attribute import Attribute
from ._flat import qc, ss
from ._host import Pointed, call, tell_earlier, warn
from .errors import ClosedError, StaticStrengthError
from .figure import Posture
from .frames import FrameResults
from .inputs import Loads, OffsetLoads, Torques
from .loads import Force, is_found_again
from .parts import Joint
from .result import RESULT_KEY, JointForce, JointResult, Result
from .strategy import Strategy
from .vectors import Vector, VectorLike, as_vector

if TYPE_CHECKING:
    from .human import Human

_UNSTORED = Strategy.HANDS_AND_KNEES

_FORCE = qc.new_qVector(0, 0, 0)
_MOMENT = qc.new_qVector(0, 0, 0)


class Analysis(Pointed):
    """The static-strength analysis of one human: ``human.analysis``.

    Forces are in kgf, moments in N·m, lengths in cm, weights in g, gravity in cm/s². What it is told is kept on the
    figure and saved with the scene; ``gravity`` is the scene's when the analysis is made.

    What the host reports as an error while one of the members works is raised there as a
    :class:`StaticStrengthError`; what it warns of comes as a :class:`StaticStrengthWarning`. After the scene was
    closed, or the analysis deleted, every use raises :class:`ClosedError`.
    """

    __slots__ = ("_human", "_pointer", "_scene_analyses", "_loads", "_offset_loads", "_torques", "__weakref__")

    def __init__(self, human: Human) -> None:
        self._human = human
        saved = _saved.count(human.figure)
        tell_earlier()
        self._pointer: Optional[str] = ss.qmStaticStrength_getHandle(human.pointer)
        self._scene_analyses = human.scene._open.analyses
        if self._pointer not in self._scene_analyses:
            self._scene_analyses.append(self._pointer)
        for kind, text in qc.qcMessages_take():   # a human without an anthropometric scale: it works all the same
            warn(text.rstrip())
        self._loads = Loads(self)
        self._offset_loads = OffsetLoads(self)
        self._torques = Torques(self)
        if self.gravity != human.scene.gravity:
            self._put_gravity(human.scene.gravity)
        self._choose_unstored()
        _saved.warn_of_dropped(self, saved)

    # The scene keeps the one strategy that no property can hold.
    def _choose_unstored(self) -> None:
        human = self._human
        if qc.qcScene_getUnstoredStrategy(human.scene.pointer, human.pointer) == _UNSTORED.text:
            ss.qmStaticStrength_setStrategy(self.pointer, int(_UNSTORED))

    # ---- life ----

    @property
    def human(self) -> Human:
        """The human analysed."""
        return self._human

    @property
    def pointer(self) -> str:
        """Its pointer string for the flat modules, which is good until it is deleted or the scene is closed.

        Do not delete it through the flat modules: the package could not know.
        """
        self._human.scene._check()
        if self._pointer is None or self._pointer not in self._scene_analyses:
            raise ClosedError(f"this analysis of {self._human.name} was deleted; human.analysis makes a new one.")
        return self._pointer

    @property
    def is_deleted(self) -> bool:
        """Whether it was deleted, alone or with its scene."""
        return self._pointer is None or self._pointer not in self._scene_analyses

    def delete(self) -> None:
        """Ends the analysis. What it was told and what it computed stays with the figure, and ``human.analysis``
        makes a new one of it. Deleting twice is allowed."""
        if self.is_deleted:
            return
        pointer, self._pointer = self.pointer, None
        self._scene_analyses.remove(pointer)
        ss.delete_qmStaticStrength(pointer)

    # ---- what it is told ----

    @property
    def loads(self) -> Loads:
        """The loads on sites."""
        return self._loads

    @property
    def offset_loads(self) -> OffsetLoads:
        """The loads at points displaced from sites."""
        return self._offset_loads

    @property
    def torques(self) -> Torques:
        """The torques defined at joints."""
        return self._torques

    def _get_strategy(self) -> Strategy:
        number = ss.qmStaticStrength_getStrategy(self.pointer)
        try:
            return Strategy(number)
        except ValueError:
            raise StaticStrengthError(f"the human {self._human.name} has a strategy of an unknown name; choose one of "
                                      f"{', '.join(each.text for each in Strategy)}.") from None

    def _set_strategy(self, strategy: Union[Strategy, str]) -> None:
        chosen = Strategy.of(strategy)
        ss.qmStaticStrength_setStrategy(self.pointer, int(chosen))
        call(qc.qcScene_setUnstoredStrategy, self._human.scene, self._human, chosen.text if chosen == _UNSTORED else "")

    strategy = Attribute(_get_strategy, _set_strategy,
                         "How the body is supported: a :class:`Strategy`, or its text to set it, ``\"two-feet\"``."
                         " Saved with the scene.")

    def _get_gravity(self) -> Vector:
        ss.qmStaticStrength_getGravity(self.pointer, _FORCE)
        return Vector(*qc.qVector_get(_FORCE))

    def _set_gravity(self, gravity: VectorLike) -> None:
        self._put_gravity(as_vector(gravity, "gravity, cm/s²"))

    def _put_gravity(self, gravity: Vector) -> None:
        tell_earlier()   # before anything is taken away for a while
        strategy = ss.qmStaticStrength_getStrategy(self.pointer)
        # A weight of hardly any force would be dropped.
        before = self.gravity
        loads = dict(self._loads)
        if before.magnitude > 0 and all(isinstance(load, Force) or is_found_again(load, before)
                                        for load in loads.values()):
            loads = {}
        if loads:
            self._loads.clear()
        try:
            call(ss.qmStaticStrength_setGravity, self, gravity)
        finally:
            if not self.is_deleted:   # by a warning's hook
                for site, load in loads.items():
                    self._loads._put(self._human.sites[site], load)
        if ss.qmStaticStrength_getStrategy(self.pointer) != strategy:   # not one that the figure's properties hold
            ss.qmStaticStrength_setStrategy(self.pointer, strategy)

    gravity = Attribute(_get_gravity, _set_gravity,
                        "Gravity, cm/s². Setting it gives every weight its new force and removes the results that the"
                        " joints hold. It is not saved: ``scene.gravity`` is.")

    def clear(self) -> None:
        """Removes all loads, offset loads, torques and results. The strategy and gravity stay."""
        call(ss.qmStaticStrength_clear, self)
        pointer = self.pointer
        ss.qmStaticStrength_setStrategy(pointer, ss.qmStaticStrength_getStrategy(pointer))   # stores its text again

    def reset(self) -> None:
        """Reads the strategy, loads, offset loads and torques anew from what is saved on the figure, and removes the
        results that the joints hold. Entries that cannot be read are dropped, with a warning."""
        call(ss.qmStaticStrength_reset, self)
        self._choose_unstored()

    @contextlib.contextmanager
    def temporary(self) -> Iterator[Analysis]:
        """For a ``with`` block after which loads, offset loads, torques, gravity and the strategy are as they were.

        They are put back after an exception too. Blocks may be nested. Results that the joints hold may be gone
        afterwards; a :class:`Result` stays.
        """
        before = _saved.Inputs(self)
        try:
            yield self
        finally:
            if not self.is_deleted:
                before.put_back(self)

    # ---- computations ----

    def compute(self) -> Result:
        """Analyses the human in its present posture.

        The result is of this computation alone: what earlier ones left on joints is removed first.

        :raises StaticStrengthError: when the host reports an error, such as a missing part
        """
        strategy = self.strategy
        self._warn_of_palms()
        qc.qcFigure_removeJointProperty(self._human.figure.pointer, RESULT_KEY)
        call(ss.qmStaticStrength_compute, self)
        result = self._result(strategy)
        wrong = [joint for joint, each in result.items() if not each.is_finite]
        if wrong:
            warn(f"the result at {', '.join(wrong)} is not a finite number.")
        return result

    def stored_result(self) -> Result:
        """What the joints hold now: of the last computation, or of the last step of a simulation.

        Unlike those of :meth:`compute`, results of earlier computations may be among them.
        """
        return self._result(self.strategy)

    def _result(self, strategy: Strategy) -> Result:
        pointer = self.pointer
        results: Dict[str, JointResult] = {}
        joints = self._human.joints
        for name, joint in joints.items():
            if ss.qmStaticStrength_getJointForces(pointer, joint._address, _FORCE, _MOMENT):
                results[name] = JointResult(JointForce(*qc.qVector_get(_FORCE)), Vector(*qc.qVector_get(_MOMENT)))
        effective, shares = _support.read(self, strategy)
        return Result(self._human.name, strategy, effective, shares, self.gravity, tuple(joints), results)

    def _warn_of_palms(self) -> None:
        if not len(self._offset_loads):
            return
        sites = dict.fromkeys(load.site for load in self._offset_loads if "palmcenter" in load.site)
        for site in sites:
            if site in self._human.sites and site not in self._loads:
                warn(f"the loads with offsets at {site} do not count: at a palm centre they do only beside a load at "
                     "the site itself.")

    def simulate(self, frames: Union[int, Iterable[Posture], Callable[[int], Optional[Posture]]], *,
                 progress: bool = False) -> Iterator[Result]:
        """Computes one frame after the other, as the results are asked for.

        :param frames: postures (angles in degrees by joint; joints that are not given stay as they are in the frame
            before); or a function that is called with 0, 1, 2 … and returns the next posture, or None at the end; or
            a number of frames, between which the caller moves the figure
        :param progress: shows a progress bar, if tqdm is installed
        :return: the results, one a frame. The figure stays in the last frame's posture
        """
        return _frames.simulate(self, frames, progress)

    def simulate_array(self, frames: Any, *, angles: Optional[Sequence[_frames.Column]] = None,
                       joints: Optional[Sequence[Union[str, Joint]]] = None, progress: bool = False) -> FrameResults:
        """Computes many frames at once: postures as rows of numbers in, results as an array of numbers out.

        :param frames: the postures: rows of angles in degrees, as a two-dimensional array of numpy or any other
            sequence of sequences
        :param angles: what the columns are: joints (all their angles) or (joint, index from 1), a joint by its name
            or as the object; None: all angles of the figure, as ``figure.angles`` lists them. Angles that are not
            among them stay
        :param joints: the joints whose results are kept; None: all
        :param progress: shows a progress bar, if tqdm is installed
        :raises StaticStrengthError: at the first frame that cannot be set or computed; the text tells which
        """
        return _frames.simulate_array(self, frames, angles, joints, progress)

    # ---- the host's simulation ----

    def activate(self, script: str = "") -> None:
        """From now on computes on every step of the host's simulation, see :func:`step`, and then runs a script.

        Each activation prints a line, ``activate callback``.

        :param script: Python source, which runs in ``__main__``
        :raises StaticStrengthError: when it is active already
        """
        if not call(ss.qmStaticStrength_activate, self, script):
            raise StaticStrengthError(f"the analysis of {self._human.name} is active already; deactivate it first.")

    def deactivate(self) -> None:
        """Ends what :meth:`activate` began. Allowed at any time."""
        call(ss.qmStaticStrength_deactivate, self)

    @property
    def is_active(self) -> bool:
        """Whether it computes on every step of the host's simulation."""
        return bool(ss.qmStaticStrength_isActive(self.pointer))

    # ---- report ----

    def report(self) -> List[str]:
        """The settings as lines of text: each load on a site, the strategy, gravity."""
        lines: List[str] = []
        line = call(ss.qmStaticStrength_reportLoads, self, 1)
        while line is not None:
            lines.append(line)
            line = call(ss.qmStaticStrength_reportLoads, self)
        return lines

    def __reduce_ex__(self, protocol: Any) -> NoReturn:
        raise TypeError("an Analysis lives with its human and can neither be copied nor pickled; its results can.")

    def __repr__(self) -> str:
        return f"<Analysis of {self._human.name}{', deleted' if self.is_deleted else ''}>"


def step(steps: int = 1) -> List[int]:
    """Runs steps of the host's simulation, in which all active analyses compute and their scripts run.

    :return: what the callbacks returned in the last step, 1 for each analysis
    :raises StaticStrengthError: with what a computation or a script reported
    """
    return call(qc.qcSim_step, steps)
