"""Vectors and numbers: three components, and the checks that every number passes on its way to the host."""
import math
import numbers
import struct
from collections.abc import Mapping, Set
from typing import Any, NamedTuple, Sequence, Union

#: Newton in a kilogram-force: standard gravity, 9.80665 m/s² (CGPM, 1901).
NEWTON_PER_KGF = 9.80665


class Vector(NamedTuple):
    """Three components along x (to the figure's left), y (up) and z (forward); what holds it tells the unit."""

    x: float
    y: float
    z: float

    @property
    def magnitude(self) -> float:
        """Its length, in its own unit."""
        return math.sqrt(self.x * self.x + self.y * self.y + self.z * self.z)


_RADIANS_PER_DEGREE = math.pi / 180


def radians_of(degrees: float) -> float:
    """Degrees in radians, as scenes are read."""
    return degrees * _RADIANS_PER_DEGREE


def degrees_of(radians: float) -> float:
    """Radians in degrees; a round number where one gives back the same radians."""
    degrees = radians / _RADIANS_PER_DEGREE
    rounded = round(degrees, 9)
    return rounded if radians_of(rounded) == radians else degrees


#: What is taken for a vector: any three numbers in a row.
VectorLike = Union[Vector, Sequence[float]]


def as_number(value: Any, what: str) -> float:
    """A finite number that fits single precision, in which the host computes.

    :param what: begins the message
    :raises TypeError: for what is no number
    :raises ValueError: for one that is not finite, or too large
    """
    if isinstance(value, (str, bytes, bool)) or is_complex(type(value)):
        raise TypeError(f"{what}: expected a number, found {value!r}.")
    try:
        number = float(value)
    except (TypeError, ValueError):
        raise TypeError(f"{what}: expected a number, found {value!r}.") from None
    except OverflowError:   # a whole number beyond all floats
        number = math.inf
    if not math.isfinite(number):
        raise ValueError(f"{what}: expected a finite number, found {number}.")
    try:
        struct.pack("<f", number)
    except OverflowError:
        raise ValueError(f"{what}: {number} is too large for single precision.") from None
    return number


def is_complex(kind: type) -> bool:
    """Whether a type is of complex numbers, which some take for real ones without their imaginary part."""
    return issubclass(kind, numbers.Complex) and not issubclass(kind, numbers.Real)


def as_vector(value: Any, what: str) -> Vector:
    """Three numbers, each as by :func:`as_number`."""
    try:
        parts = [] if isinstance(value, (str, bytes, Mapping, Set)) else list(value)
    except TypeError:
        parts = []
    if len(parts) != 3:
        raise TypeError(f"{what}: expected three numbers (x, y, z), found {value!r}.")
    return Vector(*(as_number(part, what) for part in parts))


def single(number: float) -> float:
    """The nearest number in single precision: what the host keeps of it."""
    return float(struct.unpack("<f", struct.pack("<f", number))[0])
