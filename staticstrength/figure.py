"""Figures: a tree of segments that joints connect at sites, in its present posture."""
from __future__ import annotations

import json
import reprlib
from typing import TYPE_CHECKING, Any, Dict, List, Mapping, NamedTuple, Optional, Sequence, Tuple, Union

from ._attribute import Attribute
from ._flat import NULL, qc
from ._host import call
from .errors import StaticStrengthError
from .names import NamedMapping
from .parts import Angles, Joint, SceneObject, Segment, Site
from .vectors import Vector, VectorLike, as_vector

if TYPE_CHECKING:
    from .scene import Scene

#: A posture: angles in degrees by joint.
Posture = Mapping[Union[str, Joint], Angles]


class Root(NamedTuple):
    """Where the root segment is: its origin (cm) and its turns about the world's x, then y, then z axis (degrees)."""

    position: Vector
    rotation: Vector


class Figure(SceneObject):
    """A human's figure."""

    __slots__ = ("_name", "_segments", "_sites", "_joints", "_all_joints", "_by_address")

    def __init__(self, scene: Scene, address: str) -> None:
        super().__init__(scene, address)
        self._name = qc.qcFigure_getName(address)
        self._by_address: Dict[str, Any] = {}
        where = f"figure {self._name}"

        segments: Dict[str, Segment] = {}
        for each in qc.qcFigure_getSegments(address):
            segment = self._by_address[each] = Segment(self, each)
            segments.setdefault(segment.full_name if segment.name in segments else segment.name, segment)
        self._segments = NamedMapping(where, "segment", segments)

        sites: Dict[str, Site] = {}
        for each in qc.qcFigure_getSites(address):
            site = self._by_address[each] = Site(self, each)
            sites.setdefault(site.key, site)
        self._sites = NamedMapping(where, "site", sites, '; expected "segment.site"')

        joints: Dict[str, Joint] = {}
        for each in qc.qcFigure_getJoints(address):
            name = qc.qcJoint_getName(each)
            joint = Joint(self, each, qc.qcJoint_getFullName(each) if name in joints else name)
            self._by_address[each] = joints[joint.key] = joint
        self._joints = NamedMapping(where, "joint", joints)
        self._all_joints = [self._joint(each) for each in qc.qcFigure_getJoints(address)]

    # The object of a pointer string that the host gave for one of this figure's parts.
    def _segment(self, address: str) -> Segment:
        part: Segment = self._by_address[address]
        return part

    def _site(self, address: str) -> Site:
        part: Site = self._by_address[address]
        return part

    def _joint(self, address: str) -> Joint:
        part: Joint = self._by_address[address]
        return part

    def _find_joint(self, joint: Union[str, Joint]) -> Joint:
        if not isinstance(joint, Joint):
            return self._joints[joint]
        if joint.figure is not self:
            raise ValueError(f"joint {joint.full_name} is not of figure {self._name}.")
        return joint

    def _find_site(self, site: Union[str, Site]) -> Site:
        if not isinstance(site, Site):
            return self._sites[site]
        if site.figure is not self:
            raise ValueError(f"site {site.full_name} is not of figure {self._name}.")
        return site

    @property
    def name(self) -> str:
        """Its name."""
        return self._name

    @property
    def segments(self) -> NamedMapping[Segment]:
        """Its segments by name."""
        return self._segments

    @property
    def sites(self) -> NamedMapping[Site]:
        """Its sites by key, ``segment.site``."""
        return self._sites

    @property
    def joints(self) -> NamedMapping[Joint]:
        """Its joints by name; by full name where another joint has the name before."""
        return self._joints

    @property
    def reference_site(self) -> Optional[Site]:
        """The site that stands for the body's balance point; None for a posed figure without one."""
        address = qc.qcFigure_getReferenceSite(self.pointer)
        return None if address == NULL else self._site(address)

    @property
    def mass(self) -> float:
        """The whole body's mass, g."""
        return qc.qcFigure_getBodyMass(self.pointer)

    @property
    def center_of_mass(self) -> Vector:
        """The whole body's centre of mass, cm, in the world."""
        return Vector(*qc.qcFigure_getBodyCenterOfMass(self.pointer))

    @property
    def is_posed(self) -> bool:
        """Whether it was given posed: then its positions are fixed, and angles are kept but move nothing."""
        return bool(qc.qcFigure_isPosed(self.pointer))

    def _get_root(self) -> Root:
        position, rotation = qc.qcFigure_getRoot(self.pointer)
        return Root(Vector(*position), Vector(*rotation))

    def _set_root(self, root: Sequence[VectorLike]) -> None:
        try:
            position, rotation = root
        except (TypeError, ValueError):
            raise TypeError("the root: expected a position (x, y, z), cm, and a rotation (rx, ry, rz), degrees, found "
                            f"{root!r}.") from None
        origin = as_vector(position, "the root's position, cm")
        turns = as_vector(rotation, "the root's rotation, degrees")
        self._check_movable()
        call(qc.qcFigure_setRoot, self, *origin, *turns)

    root = Attribute(_get_root, _set_root,
                     "Where its root segment was put, a :class:`Root`. Set it to a position (cm) and a rotation"
                     " (degrees); the figure then leaves the floor.")

    def stand_on_floor(self) -> None:
        """From now on the figure's height is such that its lowest site on a foot lies on y = 0, until its root is
        set."""
        self._check_movable()
        qc.qcFigure_standOnFloor(self.pointer)

    @property
    def is_on_floor(self) -> bool:
        """Whether it stands on the floor."""
        return bool(qc.qcFigure_isOnFloor(self.pointer))

    def _check_movable(self) -> None:
        if self.is_posed:
            raise StaticStrengthError(f"figure {self._name} is a posed one; it cannot be moved.")

    def _get_posture(self) -> Dict[str, Tuple[float, ...]]:
        return {name: joint.degrees for name, joint in self._joints.items()}

    def _set_posture(self, posture: Posture) -> None:
        if not hasattr(posture, "items"):
            raise TypeError("a posture: expected angles in degrees by joint, such as {\"left_knee\": 30}, found "
                            f"{reprlib.repr(posture)}.")
        wanted = [(self._find_joint(joint), angles) for joint, angles in posture.items()]
        before = [(joint, joint.radians) for joint, angles in wanted]
        try:
            for joint, angles in wanted:
                joint.degrees = angles
        except Exception:
            for joint, radians in before:
                joint._turn(radians)
            raise

    posture = Attribute(_get_posture, _set_posture,
                        "All joints' angles, degrees, by joint. Setting changes the joints that are given, all of them"
                        " or, after an error, none; see :attr:`Joint.degrees`.")

    @property
    def angles(self) -> List[Tuple[str, int]]:
        """All angles, as (joint, index from 1), in the order in which an array of postures has them."""
        return [(joint.key, i) for joint in self._all_joints for i in joint._indices()]

    def posed(self) -> Dict[str, Any]:
        """The figure exactly as it stands, its properties included, as the content of a posed figure's file.

        :meth:`Scene.add_posed` makes a figure of it that gives the same results to the bit.
        """
        text = call(qc.qcFigure_getPosed, self)
        if text is None:
            raise StaticStrengthError(f"figure {self._name} cannot be written.")
        content: Dict[str, Any] = json.loads(text)
        return content

    def __repr__(self) -> str:
        return (f"<Figure {self._name}: {len(self._segments)} segments, {len(self._sites)} sites, "
                f"{len(self._joints)} joints>")
