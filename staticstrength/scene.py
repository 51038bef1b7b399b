"""Scenes: humans with their figures, and the world's gravity."""
from __future__ import annotations

import json
import os
import weakref
from types import TracebackType
from typing import Any, Dict, List, Mapping, NoReturn, Optional, Type, Union

from ._attribute import Attribute
from ._flat import NULL, qc, ss
from ._host import Pointed, call, warn
from .errors import ClosedError, StaticStrengthError
from .human import Human
from .loads import Weight, is_found_again
from .names import NamedMapping
from .vectors import Vector, VectorLike, as_vector, single

#: A path as the system takes it.
Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


class _Open:
    """What is open of a scene. It outlives the scene's object, so that the scene is closed whatever happens."""

    def __init__(self, pointer: str) -> None:
        self.pointer: Optional[str] = pointer
        self.analyses: List[str] = []   # to be deleted before the scene goes

    def close(self) -> None:
        pointer, self.pointer = self.pointer, None
        if pointer is None:
            return
        while self.analyses:
            ss.delete_qmStaticStrength(self.analyses.pop())
        qc.qcScene_close(pointer)


class Scene(Pointed):
    """A scene: ``Scene()`` makes an empty one, ``Scene.open(path)`` opens a file.

    ::

        with Scene.open("examples/lift_box.json") as scene:
            print(scene.human.analysis.compute())

    It is closed by :meth:`close`, at the end of a ``with`` block, or when nothing uses it or its humans any more.
    From then on every use of it, of its humans, their parts and analyses raises :class:`ClosedError`. Results and
    vectors stay: they are copies. Several scenes may be open at once.
    """

    __slots__ = ("_path", "_humans", "_open", "_close", "__weakref__")

    def __init__(self) -> None:
        self._begin(call(qc.qcScene_new), None)

    @classmethod
    def open(cls, path: Path) -> Scene:
        """Opens a scene file.

        :raises StaticStrengthError: when it cannot be read; the text names the place in the file
        """
        file = os.fspath(path)
        pointer = call(qc.qcScene_open, file)
        scene = cls.__new__(cls)
        scene._begin(_there(pointer, f"{file!r} cannot be opened."), path)
        return scene

    def _begin(self, pointer: str, path: Optional[Path]) -> None:
        self._path = path
        self._humans: Dict[str, Human] = {}   # by pointer
        self._open = _Open(pointer)
        self._close = weakref.finalize(self, self._open.close)

    def close(self) -> None:
        """Closes the scene, and deletes its humans' analyses before. Nothing is saved. Closing twice is allowed."""
        self._close()

    @property
    def is_closed(self) -> bool:
        """Whether it was closed."""
        return self._open.pointer is None

    def _check(self) -> str:
        if self._open.pointer is None:
            raise ClosedError("this scene is closed; open it anew to use it or anything that was in it.")
        return self._open.pointer

    @property
    def pointer(self) -> str:
        """Its pointer string for the flat modules, which is good until it is closed."""
        return self._check()

    def save(self, path: Optional[Path] = None) -> None:
        """Saves the scene: the old file or the new one, whole, whatever happens.

        :param path: None: where it was opened or saved last
        :raises StaticStrengthError: when it cannot be written, or when a weight would be lost
        """
        self._check()
        target = self._path if path is None else path
        if target is None:
            raise ValueError("this scene has no file yet; save it with a path.")
        file = os.fspath(target)
        self._check_keepable()
        if call(qc.qcScene_save, self, file) != 1:
            raise StaticStrengthError(f"{file!r} cannot be saved.")
        self._path = target

    # A weight's force is gravity's, and a load of hardly any force is not found again.
    def _check_keepable(self) -> None:
        for human in list(self._humans.values()):
            analysis = human._analysis
            if analysis is None or analysis.is_deleted:
                continue
            for site, load in analysis.loads.items():
                for gravity in (self.gravity, analysis.gravity):
                    if isinstance(load, Weight) and not is_found_again(load, gravity):
                        under = "gravity this small" if gravity.magnitude else "zero gravity"
                        raise StaticStrengthError(f"under {under} the weight at {site} would not be found again in the "
                                                  "saved scene. Save under a stronger gravity, or delete the weight.")
            if analysis.gravity != self.gravity:
                warn(f"the gravity of {human.name}'s analysis is not saved; that of the scene is. Set scene.gravity to "
                     "keep it.")

    @property
    def path(self) -> Optional[Path]:
        """The file that it was opened from or saved to last."""
        return self._path

    # ---- humans ----

    @property
    def humans(self) -> NamedMapping[Human]:
        """Its humans by name, in the order in which they came."""
        pointers = qc.qcScene_getHumans(self._check())
        humans = [self._human(each) for each in pointers]
        return NamedMapping("the scene", "human", {human.name: human for human in humans})

    @property
    def human(self) -> Human:
        """Its only human.

        :raises StaticStrengthError: when it has none or several; choose one from :attr:`humans` then
        """
        humans = self.humans
        if len(humans) != 1:
            raise StaticStrengthError("the scene has no human." if not humans else
                                      f"the scene has {len(humans)} humans; choose one of scene.humans: "
                                      f"{', '.join(humans)}.")
        return next(iter(humans.values()))

    def _human(self, pointer: str) -> Human:
        self._check()   # a warning's hook may have closed the scene
        if pointer not in self._humans:
            self._humans[pointer] = Human(self, pointer)
        return self._humans[pointer]

    def add_human(self, path: Path, name: str = "") -> Human:
        """Adds a human whose figure stands in a file, ``.urdf`` or ``.figure.json``.

        :param name: names the human and its figure; empty: the figure's own name
        :raises StaticStrengthError: when the file cannot be read, the figure is no human, or the scene has a human
            of that name
        """
        file = os.fspath(path)
        return self._human(_there(call(qc.qcScene_addHuman, self, file, name), f"{file!r} cannot be added."))

    def add_posed(self, figure: Union[str, Mapping[str, Any]]) -> Human:
        """Adds a human whose figure is given posed, as the text of its file or as that text's content.

        :raises StaticStrengthError: when it is no figure, no human, or the scene has a human of that name
        """
        text = figure if isinstance(figure, str) else json.dumps(figure)
        return self._human(_there(call(qc.qcScene_addPosedHuman, self, text), "the figure cannot be added."))

    # ---- the world ----

    def _get_gravity(self) -> Vector:
        return Vector(*qc.qcScene_getGravity(self._check()))

    def _set_gravity(self, gravity: VectorLike) -> None:
        wanted = Vector(*map(single, as_vector(gravity, "gravity, cm/s²")))
        qc.qcScene_setGravity(self._check(), *wanted)
        for human in list(self._humans.values()):
            if human._analysis is not None and not human._analysis.is_deleted and human._analysis.gravity != wanted:
                human._analysis.gravity = wanted

    gravity = Attribute(_get_gravity, _set_gravity,
                        "The world's gravity, cm/s², (0, -980.665, 0) in a new scene; saved with it. Setting it sets"
                        " that of all its analyses, whose results are gone then.")

    # ---- as an object ----

    def __enter__(self) -> Scene:
        self._check()
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], problem: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def __reduce_ex__(self, protocol: Any) -> NoReturn:
        raise TypeError("a Scene can neither be copied nor pickled; save it and open it again.")

    def __repr__(self) -> str:
        if self.is_closed:
            return "<Scene, closed>"
        named = "" if self._path is None else f" {os.fsdecode(self._path)}"
        return f"<Scene{named}: {', '.join(self.humans) or 'no humans'}>"


def _there(pointer: str, otherwise: str) -> str:
    if pointer == NULL:
        raise StaticStrengthError(otherwise)
    return pointer
