"""Calls of the flat modules whose messages become exceptions and warnings."""
import sys
import warnings
from types import FrameType
from typing import Any, Callable, List, Optional, Tuple, TypeVar

from ._flat import qc
from .errors import StaticStrengthError, StaticStrengthWarning
from .vectors import Vector

T = TypeVar("T")

Messages = List[Tuple[str, str]]


class Pointed:
    """What stands for an object of the host."""

    __slots__ = ()

    @property
    def pointer(self) -> str:
        """Its pointer string; a ClosedError where it is gone."""
        raise NotImplementedError


def call(function: Callable[..., T], *arguments: Any) -> T:
    """Calls a function of a flat module; what it reports is raised or warned of here.

    Messages that were waiting from before belong to somebody else's call, so they are only warned of.

    A warning runs what the user hooked to it, which may close the scene or compute. So the objects of the host are
    given as :class:`Pointed` and its vectors as :class:`Vector`: they are looked up and filled when all warnings are
    out. Numbers are given as floats or ints of Python, whose conversion runs no code of the user.
    """
    tell_earlier()
    result = function(*_told(arguments))
    tell(qc.qcMessages_take())
    return result


# Types are asked, not the objects, whose classes may have code of their own.
def _told(arguments: Tuple[Any, ...]) -> List[Any]:
    told: List[Any] = []
    vectors = 0
    for each in arguments:
        if issubclass(type(each), Pointed):
            told.append(each.pointer)
        elif type(each) is Vector:
            qc.qVector_set(_VECTORS[vectors], *each)
            told.append(_VECTORS[vectors])
            vectors += 1
        else:
            told.append(each)
    return told


# The host's vectors through which all calls go, one after the other; they live as long as the process.
_VECTORS = (qc.new_qVector(0, 0, 0), qc.new_qVector(0, 0, 0))


def tell_earlier() -> None:
    """Warns of all messages that are waiting, errors too."""
    for kind, text in qc.qcMessages_take():
        warn(f"the host reported an {kind} before this call: {text.rstrip()}" if kind == "error" else text.rstrip())


def tell(messages: Messages, where: str = "") -> None:
    """Warns of the warnings, then raises the errors, if any, as one exception.

    :param where: what an error's text begins with
    """
    errors = [text.rstrip() for kind, text in messages if kind == "error"]
    for kind, text in messages:
        if kind != "error":
            warn(text.rstrip())
    if errors:
        raise StaticStrengthError(where + "\n".join(errors))


def warn(text: str) -> None:
    """Warns at the line outside the package that led here."""
    warnings.warn(text, StaticStrengthWarning, stacklevel=_steps_out())


def _steps_out() -> int:
    package = __name__.rpartition(".")[0]
    steps = 1   # stacklevel 1 is warn() itself
    frame: Optional[FrameType] = sys._getframe(1)
    while frame is not None and _is_inside(frame, package):
        frame = frame.f_back
        steps += 1
    return steps


def _is_inside(frame: FrameType, package: str) -> bool:
    name = str(frame.f_globals.get("__name__", ""))
    return name == package or name.startswith(package + ".") or name == "contextlib"
