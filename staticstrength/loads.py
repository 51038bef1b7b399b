"""Loads: the kinds there are, and the values in which they are given and read."""
from __future__ import annotations

import math
from dataclasses import dataclass
from typing import Any, Sequence, Union

from .vectors import NEWTON_PER_KGF, Vector, as_number, as_vector, single


@dataclass(frozen=True)
class Force:
    """A force, kgf.

    :param local: whether x, y and z are along the axes of the site instead of the world's
    """

    x: float
    y: float
    z: float
    local: bool = False

    def __post_init__(self) -> None:
        for name in ("x", "y", "z"):
            object.__setattr__(self, name, as_number(getattr(self, name), f"a force's {name}, kgf"))
        object.__setattr__(self, "local", bool(self.local))

    @classmethod
    def newtons(cls, x: float, y: float, z: float, local: bool = False) -> Force:
        """The force of components in N."""
        what = "a force's component, N"
        return cls(as_number(x, what) / NEWTON_PER_KGF, as_number(y, what) / NEWTON_PER_KGF,
                   as_number(z, what) / NEWTON_PER_KGF, local)

    @property
    def vector(self) -> Vector:
        """Its components, kgf."""
        return Vector(self.x, self.y, self.z)

    @property
    def magnitude(self) -> float:
        """Its size, kgf."""
        return self.vector.magnitude


@dataclass(frozen=True)
class Weight:
    """A weight, g, which pulls along gravity: gravity · grams · 0.001 / 980.665 kgf."""

    grams: float

    def __post_init__(self) -> None:
        grams = as_number(self.grams, "a weight, g")
        if grams < 0:
            raise ValueError(f"expected a weight of 0 g or more, found {grams}; what pulls upwards is a Force.")
        object.__setattr__(self, "grams", grams)


#: A load as it is read.
Load = Union[Force, Weight]

#: What is taken for a load: three numbers are a force in global axes.
LoadLike = Union[Force, Weight, Sequence[float]]


@dataclass(frozen=True)
class OffsetLoad:
    """A load that acts at a point displaced from a site.

    :param site: the site's key, ``segment.site``
    :param offset: from the site to the point, cm, in global axes for every load, a local one too
    :param load: what acts there
    """

    site: str
    offset: Vector
    load: Load

    def __post_init__(self) -> None:
        object.__setattr__(self, "offset", as_vector(self.offset, "a load's offset, cm"))
        object.__setattr__(self, "load", as_load(self.load))


def as_load(load: Any) -> Load:
    """A load of what may be given for one."""
    if isinstance(load, (Force, Weight)):
        return load
    if isinstance(load, (int, float)):
        raise TypeError(f"expected a load, found the number {load!r}; a weight is Weight({load!r}), in g.")
    return Force(*as_vector(load, "a load: a Force, a Weight, or three numbers in kgf"))


def in_single(load: Load) -> Load:
    """A load as the host keeps it, in single precision."""
    if isinstance(load, Weight):
        return Weight(single(load.grams))
    return Force(single(load.x), single(load.y), single(load.z), load.local)


def is_kept(load: Load, gravity: Vector) -> bool:
    """Whether a load may be put on a site: whether it is found again, a weight under zero gravity by its pull on
    earth."""
    return is_found_again(load, gravity if gravity.magnitude else Vector(0, -_STANDARD, 0))


def is_found_again(load: Load, gravity: Vector) -> bool:
    """Whether a load on a site is found again after a change of gravity or in a saved scene: not one of less than
    0.00001 kgf, to the bit as the host finds it. A weight is judged by its pull."""
    force = load.vector if isinstance(load, Force) else _pull(load, gravity)
    x, y, z = (_narrowed(_narrowed(each) * _narrowed(each)) for each in force)
    return not _narrowed(math.sqrt(_narrowed(_narrowed(x + y) + z))) < _SMALLEST


# The force of a weight along gravity: gravity · (grams · 0.001 / 980.665), the factor in double, narrowed once.
def _pull(weight: Weight, gravity: Vector) -> Vector:
    factor = _narrowed(_narrowed(weight.grams) * 0.001 / _STANDARD)
    return Vector(*(_narrowed(_narrowed(each) * factor) for each in gravity))


# As the host narrows: what is too large for single precision becomes infinite.
def _narrowed(number: float) -> float:
    try:
        return single(number)
    except OverflowError:
        return math.copysign(math.inf, number)


_SMALLEST = 1e-5              # kgf; in double, as in the host: 0.00001 is less in single precision
_STANDARD = single(980.665)   # standard gravity, cm/s² (CGPM, 1901), as the host holds it
