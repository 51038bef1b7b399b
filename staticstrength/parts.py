"""Parts: segments, sites and joints of a figure.

Lengths are in cm, masses in g. Positions and transforms are in the world: x to the figure's left, y up, z
forward; a transform is four rows of four, row vectors, the translation in row 3 (``p' = p · M``).
"""
from __future__ import annotations

from collections.abc import Mapping, Set
from typing import TYPE_CHECKING, Any, List, NoReturn, Optional, Sequence, Tuple, Union

from ._attribute import Attribute
from ._flat import NULL, qc
from ._host import Pointed, tell, tell_earlier
from .errors import StaticStrengthError
from .vectors import Vector, as_number, degrees_of, radians_of

if TYPE_CHECKING:
    from .figure import Figure
    from .scene import Scene

#: Four rows of four numbers.
Transform = Tuple[Tuple[float, float, float, float], ...]

#: A property's value: a number, a text, a vector, a list of such values, or ``()`` for the empty one.
PropertyValue = Any

#: Angles of one joint: all of them or the first few; a number alone is the first.
Angles = Union[float, Sequence[float]]


class SceneObject(Pointed):
    """Something within a scene. It keeps its scene open; every use after the scene was closed raises ClosedError."""

    __slots__ = ("_address", "_scene", "__weakref__")

    def __init__(self, scene: Scene, address: str) -> None:
        self._scene = scene
        self._address = address

    @property
    def scene(self) -> Scene:
        """The scene that it belongs to."""
        return self._scene

    @property
    def pointer(self) -> str:
        """Its pointer string for the flat modules, which is good until the scene is closed."""
        self._scene._check()
        return self._address

    def get_property(self, key: str) -> PropertyValue:
        """A property that the host keeps on it; None when there is none of that key."""
        return qc.qcObject_getProperty(self.pointer, key)

    def set_property(self, key: str, value: PropertyValue) -> None:
        """Sets a property, which is saved with the scene: a number (kept in single precision), a text, a tuple of
        three numbers, a list of such values, or ``()``.

        An analysis keeps what it was told in properties whose keys begin with ``SSTR_``: change those through the
        analysis.
        """
        qc.qcObject_setProperty(self.pointer, key, value)

    def remove_property(self, key: str) -> bool:
        """Removes a property. Whether there was one."""
        return bool(qc.qcObject_removeProperty(self.pointer, key))

    def __reduce_ex__(self, protocol: Any) -> NoReturn:
        raise TypeError(f"a {type(self).__name__} lives in its scene and can neither be copied nor pickled.")


class Part(SceneObject):
    """A part of a figure."""

    __slots__ = ("_figure", "_name", "_full_name")

    def __init__(self, figure: Figure, address: str, name: str, full_name: str) -> None:
        super().__init__(figure._scene, address)
        self._figure = figure
        self._name = name
        self._full_name = full_name

    @property
    def figure(self) -> Figure:
        """The figure that it is a part of."""
        return self._figure

    @property
    def name(self) -> str:
        """Its own name."""
        return self._name

    @property
    def full_name(self) -> str:
        """Its name with those of what it belongs to."""
        return self._full_name

    def __repr__(self) -> str:
        return f"<{type(self).__name__} {self._full_name}>"


class Segment(Part):
    """A rigid segment."""

    __slots__ = ()

    def __init__(self, figure: Figure, address: str) -> None:
        super().__init__(figure, address, qc.qcSegment_getName(address), qc.qcSegment_getFullName(address))

    def _get_mass(self) -> float:
        return qc.qcSegment_getMass(self.pointer)

    def _set_mass(self, grams: float) -> None:
        number = as_number(grams, f"the mass of {self.full_name}, g")
        qc.qcSegment_setMass(self.pointer, number)

    mass = Attribute(_get_mass, _set_mass, "Its mass, g; zero or less counts as weightless. One that was set stays"
                                           " when the body's mass changes.")

    @property
    def center_of_mass(self) -> Vector:
        """Its centre of mass, cm, in its own frame."""
        return Vector(*qc.qcSegment_getCenterOfMass(self.pointer))

    @property
    def transform(self) -> Transform:
        """Its frame in the world."""
        return qc.qcSegment_getTransform(self.pointer)

    @property
    def position(self) -> Vector:
        """The origin of its frame, cm, in the world."""
        return _translation(self.transform)

    @property
    def sites(self) -> List[Site]:
        """The sites on it."""
        return [self._figure._site(address) for address in qc.qcSegment_getSites(self.pointer)]

    @property
    def attachment_site(self) -> Optional[Site]:
        """The site by which it hangs on its parent; None for the root."""
        address = qc.qcSegment_getAttachmentSite(self.pointer)
        return None if address == NULL else self._figure._site(address)


class Site(Part):
    """A named frame on a segment, at which joints attach and loads act."""

    __slots__ = ("_key",)

    def __init__(self, figure: Figure, address: str) -> None:
        super().__init__(figure, address, qc.qcSite_getName(address), qc.qcSite_getFullName(address))
        self._key = f"{qc.qcSegment_getName(qc.qcSite_getSegment(address))}.{self._name}"

    @property
    def key(self) -> str:
        """``segment.site``: by this it is found and loads are listed."""
        return self._key

    @property
    def segment(self) -> Segment:
        """The segment that it lies on."""
        return self._figure._segment(qc.qcSite_getSegment(self.pointer))

    @property
    def joints(self) -> List[Joint]:
        """The joints attached here."""
        return [self._figure._joint(address) for address in qc.qcSite_getJoints(self.pointer)]

    @property
    def transform(self) -> Transform:
        """Its frame in the world."""
        return qc.qcSite_getTransform(self.pointer)

    @property
    def second_transform(self) -> Transform:
        """The transform that the host keeps beside the first; the same unless the figure's file says otherwise."""
        return qc.qcSite_getSecondTransform(self.pointer)

    @property
    def position(self) -> Vector:
        """Where it is, cm, in the world."""
        return _translation(self.transform)


class Joint(Part):
    """A joint: it connects two sites and turns by a number of angles."""

    __slots__ = ("_unique_name",)

    def __init__(self, figure: Figure, address: str, unique_name: str) -> None:
        super().__init__(figure, address, qc.qcJoint_getName(address), qc.qcJoint_getFullName(address))
        self._unique_name = unique_name

    @property
    def key(self) -> str:
        """By this it is found: its name; its full name when another joint has the name before it."""
        return self._unique_name

    @property
    def sites(self) -> Tuple[Site, Site]:
        """The two sites that it connects."""
        first, second = qc.qcJoint_getSites(self.pointer)
        return self._figure._site(first), self._figure._site(second)

    @property
    def inboard_site(self) -> Site:
        """Its site nearer the trunk."""
        return self._figure._site(qc.qcJoint_getInboardSite(self.pointer))

    @property
    def position(self) -> Vector:
        """Where its site nearer the trunk is, cm, in the world."""
        return self.inboard_site.position

    @property
    def angle_names(self) -> Tuple[str, ...]:
        """What its angles are called; an empty text for one without a name."""
        return tuple(qc.qcJoint_getAngleName(self.pointer, i) for i in self._indices())

    def _get_radians(self) -> Tuple[float, ...]:
        return tuple(qc.qcJoint_getAngle(self.pointer, i) for i in self._indices())

    def _set_radians(self, angles: Angles) -> None:
        self._turn(self._numbers(angles, "rad"))

    radians = Attribute(_get_radians, _set_radians, "Its angles, rad. See :attr:`degrees`.")

    def _get_degrees(self) -> Tuple[float, ...]:
        return tuple(degrees_of(angle) for angle in self._get_radians())

    def _set_degrees(self, angles: Angles) -> None:
        self._turn([radians_of(angle) for angle in self._numbers(angles, "degrees")])

    degrees = Attribute(_get_degrees, _set_degrees,
                        "Its angles, degrees. A number alone sets the first angle; those that are not given stay. One"
                        " outside its limits is a StaticStrengthError, and none is changed then.")

    @property
    def limits(self) -> Tuple[Optional[Tuple[float, float]], ...]:
        """The least and the greatest of each angle, degrees; None for an angle without limits."""
        return tuple(limits and (degrees_of(limits[0]), degrees_of(limits[1]))
                     for limits in (qc.qcJoint_getAngleLimits(self.pointer, i) for i in self._indices()))

    def _indices(self) -> range:
        return range(1, qc.qcJoint_getNumAngles(self.pointer) + 1)

    def _numbers(self, angles: Angles, unit: str) -> List[float]:
        what = f"joint {self._unique_name}, angles in {unit}"
        if isinstance(angles, (Mapping, Set)):
            raise TypeError(f"{what}: expected a number or several in a row, found {angles!r}.")
        try:
            given: List[Any] = [angles] if isinstance(angles, (str, bytes)) else list(angles)   # type: ignore[arg-type]
        except TypeError:   # a number; an array of no dimension counts as one
            given = [angles]
        numbers = [as_number(angle, what) for angle in given]
        count = len(self._indices())
        if len(numbers) > count:
            raise ValueError(f"{what}: it has {count} angle{'' if count == 1 else 's'}, found {len(numbers)}.")
        return numbers

    # All or none: what was set before the one that cannot be set is put back.
    def _turn(self, radians: Sequence[float]) -> None:
        tell_earlier()   # a warning's hook may close the scene
        pointer = self.pointer
        before = self._get_radians()
        for i, angle in enumerate(radians, 1):
            if qc.qcJoint_setAngle(pointer, i, angle):
                continue
            for k in range(1, i):
                qc.qcJoint_setAngle(pointer, k, before[k - 1])
            tell(qc.qcMessages_take())
            raise StaticStrengthError(f"joint {self._full_name}: angle {i} cannot be set.")


def _translation(transform: Transform) -> Vector:
    return Vector(*transform[3][:3])
