"""Results: what each joint carries, as values that stay whatever happens to the analysis."""
from __future__ import annotations

import html
import math
from typing import TYPE_CHECKING, Any, Dict, Iterator, List, Mapping, NamedTuple, NoReturn, Optional, Sequence, Tuple

from .names import unknown_name
from .strategy import Strategy
from .vectors import NEWTON_PER_KGF, Vector

if TYPE_CHECKING:
    import pandas   # type: ignore[import]

#: The property in which the host keeps a joint's result: a list of two vectors, force (kgf) and moment (N·m).
RESULT_KEY = "SSTR_Force_Moment"

#: The columns of a result, with their units.
COLUMNS = ("force_x_kgf", "force_y_kgf", "force_z_kgf", "force_kgf", "force_n",
           "moment_x_nm", "moment_y_nm", "moment_z_nm", "moment_nm")

_TITLES = ("Fx kgf", "Fy kgf", "Fz kgf", "|F| kgf", "|F| N", "Mx N·m", "My N·m", "Mz N·m", "|M| N·m")
_DECIMALS = (3, 3, 3, 3, 1, 3, 3, 3, 3)


class JointForce(NamedTuple):
    """The force on a joint, kgf, in global axes."""

    x: float
    y: float
    z: float

    @property
    def magnitude(self) -> float:
        """Its size, kgf."""
        return Vector(*self).magnitude

    @property
    def newtons(self) -> Vector:
        """Its components, N."""
        return Vector(*(part * NEWTON_PER_KGF for part in self))

    @property
    def magnitude_newtons(self) -> float:
        """Its size, N."""
        return self.magnitude * NEWTON_PER_KGF


class JointResult(NamedTuple):
    """What the body beyond a joint puts on it, not the reaction to it.

    ``force`` is in kgf, ``moment`` about the joint's position in N·m, both in global axes.
    """

    force: JointForce
    moment: Vector

    @property
    def is_finite(self) -> bool:
        """Whether all its numbers are finite."""
        return math.isfinite(sum(self.force) + sum(self.moment))

    def as_dict(self) -> Dict[str, float]:
        """The nine numbers of :data:`COLUMNS`."""
        return dict(zip(COLUMNS, (*self.force, self.force.magnitude, self.force.magnitude_newtons,
                                  *self.moment, self.moment.magnitude)))


class Result(Mapping[str, JointResult]):
    """The result of a computation: a mapping of joint names to :class:`JointResult`, in the figure's order.

    Only joints that have a result are in it. A joint that the strategy does not reach has none, nor has one whose
    force and moment are both at most 0.01 (kgf, N·m). It cannot be changed and does not change.
    """

    __slots__ = ("_results", "_joints", "_human", "_strategy", "_effective_strategy", "_gravity", "_shares")

    _results: Dict[str, JointResult]
    _joints: Tuple[str, ...]
    _human: str
    _strategy: Strategy
    _effective_strategy: Strategy
    _gravity: Vector
    _shares: Dict[str, float]

    def __init__(self, human: str, strategy: Strategy, effective_strategy: Strategy, shares: Mapping[str, float],
                 gravity: Vector, joints: Sequence[str], results: Mapping[str, JointResult]) -> None:
        for name, value in (("human", human), ("strategy", strategy), ("effective_strategy", effective_strategy),
                            ("shares", dict(shares)), ("gravity", gravity), ("joints", tuple(joints)),
                            ("results", dict(results))):
            object.__setattr__(self, "_" + name, value)

    def __setattr__(self, name: str, value: Any) -> NoReturn:
        raise AttributeError("a result cannot be changed.")

    def __delattr__(self, name: str) -> NoReturn:
        raise AttributeError("a result cannot be changed.")

    @property
    def human(self) -> str:
        """The name of the human."""
        return self._human

    @property
    def strategy(self) -> Strategy:
        """The strategy that was chosen."""
        return self._strategy

    @property
    def effective_strategy(self) -> Strategy:
        """The strategy that it came to; another one than the chosen one for walking only."""
        return self._effective_strategy

    @property
    def shares(self) -> Dict[str, float]:
        """The shares of the support, percent, where the strategy has such: by ``right_foot``, ``left_foot``,
        ``right_knee``, ``left_knee``, ``right_hand``, ``left_hand``."""
        return dict(self._shares)

    @property
    def gravity(self) -> Vector:
        """The gravity, cm/s²."""
        return self._gravity

    @property
    def joints(self) -> Tuple[str, ...]:
        """All joints of the figure, those without a result too."""
        return self._joints

    # ---- as a mapping ----

    def __getitem__(self, joint: str) -> JointResult:
        try:
            return self._results[joint]
        except KeyError:
            if joint in self._joints:
                raise KeyError(f"joint {joint} has no result: {self._strategy.text} does not reach it, or it carries "
                               "next to nothing") from None
            raise unknown_name("the result", "joint", str(joint), self._joints) from None

    def __iter__(self) -> Iterator[str]:
        return iter(self._results)

    def __len__(self) -> int:
        return len(self._results)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Result):
            return NotImplemented
        return all(getattr(self, name) == getattr(other, name) for name in self.__slots__)

    def __hash__(self) -> int:
        return hash((self._human, self._strategy, self._gravity, tuple(self._results.items())))

    def __reduce__(self) -> Tuple[Any, ...]:
        return Result, (self._human, self._strategy, self._effective_strategy, self._shares, self._gravity,
                        self._joints, self._results)

    def _ipython_key_completions_(self) -> List[str]:
        return list(self)

    # ---- as numbers and texts ----

    def as_dict(self) -> Dict[str, Dict[str, float]]:
        """A dictionary of the nine numbers of :data:`COLUMNS` for each joint that has a result."""
        return {joint: result.as_dict() for joint, result in self.items()}

    def as_dataframe(self) -> pandas.DataFrame:
        """A pandas table: a row for each joint that has a result, the columns of :data:`COLUMNS`.

        :raises ImportError: when pandas is not installed
        """
        return _pandas().DataFrame.from_dict(self.as_dict(), orient="index", columns=list(COLUMNS)).rename_axis("joint")

    def __repr__(self) -> str:
        rows = [["joint", *_TITLES]] + [[joint, *self._cells(joint)] for joint in self._joints]
        widths = [max(len(row[i]) for row in rows) for i in range(len(rows[0]))]
        lines = ["  ".join([row[0].ljust(widths[0])] + [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])])
                 for row in rows]
        return "\n".join([self._headline(), *(line.rstrip() for line in lines)])

    def _repr_html_(self) -> str:
        head = "".join(f"<th>{title}</th>" for title in ("joint", *_TITLES))
        rows = "".join(f"<tr><th>{html.escape(joint)}</th>"
                       + "".join(f'<td style="text-align:right">{cell}</td>' for cell in self._cells(joint)) + "</tr>"
                       for joint in self._joints)
        return (f"<table><caption>{html.escape(self._headline())}</caption><thead><tr>{head}</tr></thead>"
                f"<tbody>{rows}</tbody></table>")

    def _headline(self) -> str:
        strategy = self._strategy.text
        if self._effective_strategy != self._strategy:
            strategy += f", in effect {self._effective_strategy.text}"
        return f"{self._human}: {strategy}; gravity ({', '.join(f'{part:.3f}' for part in self._gravity)}) cm/s²"

    def _cells(self, joint: str) -> List[str]:
        result: Optional[JointResult] = self._results.get(joint)
        if result is None:
            return ["-"] * len(_TITLES)
        return [f"{round(number, decimals) + 0.0:.{decimals}f}" if math.isfinite(number) else "not finite"
                for number, decimals in zip(result.as_dict().values(), _DECIMALS)]   # + 0.0: no negative zero


def _pandas() -> Any:
    try:
        import pandas
    except ImportError as problem:
        raise ImportError(f"as_dataframe() needs pandas, which is not installed ({problem}); as_dict() gives the same "
                          "numbers without it.") from problem
    return pandas
