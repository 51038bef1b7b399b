"""Inputs: the loads, offset loads and torques that an analysis was told, as collections that change it."""
from __future__ import annotations

from typing import TYPE_CHECKING, Any, Callable, Iterator, List, MutableMapping, Optional, Sequence, Union, overload

from ._flat import NULL, qc, ss
from ._host import call
from .errors import StaticStrengthError, UnknownNameError
from .loads import Force, Load, LoadLike, OffsetLoad, Weight, as_load, in_single, is_kept
from .parts import Joint, Site
from .vectors import Vector, VectorLike, as_vector, single

if TYPE_CHECKING:
    from .analysis import Analysis

# The host's vector through which all is read; it lives as long as the process.
_READ = qc.new_qVector(0, 0, 0)


class Loads(MutableMapping[str, Load]):
    """The loads on sites, by ``segment.site``, one a site, in the order in which the sites first received one.

    ::

        analysis.loads["right_hand.right_palmcenter"] = Weight(5000)       # g
        analysis.loads["left_hand.left_palmcenter"] = Force(0, 0, 2.5)     # kgf, global axes
        del analysis.loads["left_hand.left_palmcenter"]

    A site may be given by its key or as the object. A wrong key is an :class:`UnknownNameError`; a site without a
    load is a plain :class:`KeyError`. A load of less than 0.00001 kgf is refused with a :class:`ValueError`,
    because the analysis would not keep it.
    """

    def __init__(self, analysis: Analysis) -> None:
        self._analysis = analysis

    def __getitem__(self, site: Union[str, Site]) -> Load:
        found = self._analysis.human.figure._find_site(site)
        load = self._read(found)
        if load is None:
            raise KeyError(f"there is no load at {found.key}")
        return load

    def __setitem__(self, site: Union[str, Site], load: LoadLike) -> None:
        found = self._analysis.human.figure._find_site(site)
        wanted = as_load(load)
        if not is_kept(wanted, self._analysis.gravity):
            raise ValueError(f"the load at {found.key}: one of less than 0.00001 kgf is not kept; delete the load "
                             "instead.")
        self._put(found, wanted)

    def __delitem__(self, site: Union[str, Site]) -> None:
        found = self._analysis.human.figure._find_site(site)
        if not ss.qmStaticStrength_removeLoad(self._analysis.pointer, found.pointer):
            raise KeyError(f"there is no load at {found.key}")

    def __iter__(self) -> Iterator[str]:
        return iter([site.key for site in self._sites()])

    def __len__(self) -> int:
        return len(self._sites())

    def __contains__(self, site: object) -> bool:
        try:
            found = self._analysis.human.figure._find_site(site)   # type: ignore[arg-type]
        except (UnknownNameError, ValueError):
            return False
        return self._read(found) is not None

    def __repr__(self) -> str:
        return repr(dict(self))

    # Listed but without a readable load: put there, or on a figure with such a site, by other tools.
    def _sites(self) -> List[Site]:
        analysis = self._analysis.pointer
        listed = [ss.qmStaticStrength_getNthLoadSite(analysis, i)
                  for i in range(ss.qmStaticStrength_getNumLoads(analysis))]
        sites = [self._analysis.human.figure._site(each) for each in listed if each != NULL]
        return [site for site in sites if self._read(site) is not None]

    def _read(self, site: Site) -> Optional[Load]:
        analysis = self._analysis.pointer
        kind = ss.qmStaticStrength_getLoadType(analysis, site.pointer)
        if kind is None:
            return None
        if kind == "weight":
            return _stored_weight(ss.qmStaticStrength_getSiteWeight(analysis, site.pointer))
        if not ss.qmStaticStrength_getSiteLoad(analysis, site.pointer, _READ):
            return None
        return _stored_force(qc.qVector_get(_READ), kind == "local")

    def _put(self, site: Site, load: Load) -> None:
        if isinstance(load, Weight):
            done = call(ss.qmStaticStrength_setWeightLoad, self._analysis, site, load.grams)
        else:
            done = call(ss.qmStaticStrength_setLoad, self._analysis, site, load.vector, int(load.local))
        if not done:
            raise StaticStrengthError(f"the load at {site.key} cannot be set.")


class Torques(MutableMapping[str, Vector]):
    """The torques defined at joints, N·m in global axes, by joint, in the order in which they were first defined.

    A joint may be given by its name or as the object. A wrong name is an :class:`UnknownNameError`; a joint without
    a torque is a plain :class:`KeyError`. Joints of one name share an entry when the scene is saved.
    """

    def __init__(self, analysis: Analysis) -> None:
        self._analysis = analysis

    def __getitem__(self, joint: Union[str, Joint]) -> Vector:
        found = self._analysis.human.figure._find_joint(joint)
        if not ss.qmStaticStrength_getDefinedTorque(self._analysis.pointer, found.pointer, _READ):
            raise KeyError(f"there is no torque at {found.key}")
        return Vector(*qc.qVector_get(_READ))

    def __setitem__(self, joint: Union[str, Joint], torque: VectorLike) -> None:
        found = self._analysis.human.figure._find_joint(joint)
        self._put(found, as_vector(torque, f"the torque at {found.key}, N·m"))

    def __delitem__(self, joint: Union[str, Joint]) -> None:
        found = self._analysis.human.figure._find_joint(joint)
        if not ss.qmStaticStrength_removeDefinedTorque(self._analysis.pointer, found.pointer):
            raise KeyError(f"there is no torque at {found.key}")

    def __iter__(self) -> Iterator[str]:
        return iter([joint.key for joint in self._joints()])

    def __len__(self) -> int:
        return len(self._joints())

    def __contains__(self, joint: object) -> bool:
        try:
            self[joint]   # type: ignore[index]
        except (KeyError, ValueError):
            return False
        return True

    def __repr__(self) -> str:
        return repr(dict(self))

    def _put(self, joint: Joint, torque: Vector) -> None:
        if not call(ss.qmStaticStrength_setDefinedTorque, self._analysis, joint, torque):
            raise StaticStrengthError(f"the torque at {joint.key} cannot be set.")

    def _joints(self) -> List[Joint]:
        analysis = self._analysis.pointer
        listed = [ss.qmStaticStrength_getNthDefinedTorqueJoint(analysis, i)
                  for i in range(ss.qmStaticStrength_getNumDefinedTorques(analysis))]
        joints = [self._analysis.human.figure._joint(each) for each in listed if each != NULL]
        return [joint for joint in joints if joint.key in self]


class OffsetLoads(Sequence[OffsetLoad]):
    """The loads at points displaced from sites, in the order in which they were added.

    ::

        box = analysis.offset_loads.append("right_hand.right_palmcenter", (0, -12, 5), Weight(5000))
        analysis.offset_loads.remove(box)

    What it gives are values: they stay good whatever happens to the analysis. At a palm centre such loads count
    only beside a load at the site itself; a computation warns where they do not.
    """

    def __init__(self, analysis: Analysis) -> None:
        self._analysis = analysis

    @overload
    def __getitem__(self, index: int) -> OffsetLoad: ...

    @overload
    def __getitem__(self, index: slice) -> List[OffsetLoad]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[OffsetLoad, List[OffsetLoad]]:
        if isinstance(index, slice):
            return [self._read(record) for record in self._records()[index]]
        return self._read(self._records()[index])

    def __len__(self) -> int:
        return ss.qmStaticStrength_getNumLoadsWithOffset(self._analysis.pointer)

    def __iter__(self) -> Iterator[OffsetLoad]:
        return iter(self[:])

    def append(self, site: Union[str, Site, OffsetLoad], offset: Optional[VectorLike] = None,
               load: Optional[LoadLike] = None) -> OffsetLoad:
        """Adds a load.

        :param site: the site by its key or as the object; or all three as an :class:`OffsetLoad`, alone
        :param offset: from the site to the point, cm, in global axes for every load
        :param load: what acts there
        :return: the load as it is kept, in single precision
        """
        if isinstance(site, OffsetLoad):
            if offset is not None or load is not None:
                raise TypeError("an OffsetLoad tells its offset and load itself.")
            return self.append(site.site, site.offset, site.load)
        if offset is None or load is None:
            raise TypeError("expected a site, an offset (cm) and a load.")
        found = self._analysis.human.figure._find_site(site)
        return self._put(found, as_vector(offset, "a load's offset, cm"), as_load(load))

    def remove(self, load: OffsetLoad) -> None:
        """Removes the first load that is equal, in single precision.

        :raises ValueError: when there is none
        """
        if not isinstance(load, OffsetLoad):
            raise TypeError(f"expected an OffsetLoad, found {load!r}; by its place one is removed with del or pop().")
        wanted = OffsetLoad(load.site, Vector(*map(single, load.offset)), in_single(load.load))
        for record in self._records():
            if self._read(record) == wanted:
                self._remove(record)
                return
        raise ValueError(f"there is no such load: {load}.")

    def pop(self, index: int = -1) -> OffsetLoad:
        """Removes a load and gives it, the last one by default."""
        records = self._records()
        if not records:
            raise IndexError("there is no load with an offset.")
        load = self._read(records[index])
        self._remove(records[index])
        return load

    def __delitem__(self, index: Union[int, slice]) -> None:
        chosen = self._records()[index]
        for record in [chosen] if isinstance(chosen, str) else chosen:
            self._remove(record)

    if not TYPE_CHECKING:   # a type checker finds none
        def __setitem__(self, index, load):
            raise TypeError("a load with an offset cannot be replaced; remove it and append another one.")

    def clear(self) -> None:
        """Removes all."""
        del self[:]

    def __repr__(self) -> str:
        return repr(list(self))

    # The records' pointer strings. They die with a reset, so nobody keeps them.
    def _records(self) -> List[str]:
        analysis = self._analysis.pointer
        return [ss.qmStaticStrength_getNthLoadWithOffset(analysis, i)
                for i in range(ss.qmStaticStrength_getNumLoadsWithOffset(analysis))]

    def _read(self, record: str) -> OffsetLoad:
        site = self._analysis.human.figure._by_address.get(ss.loadWithOffset_site_get(record))
        kind = ss.loadWithOffset_type_get(record)
        load: Load
        if kind == "weight":
            load = _stored_weight(ss.loadWithOffset_mass_get(record))
        else:
            load = _stored_force(qc.qVector_get(ss.loadWithOffset_load_get(record)), kind == "local")
        key = site.key if site is not None else qc.qcSite_getFullName(ss.loadWithOffset_site_get(record))
        return _stored_offset_load(key, qc.qVector_get(ss.loadWithOffset_offset_get(record)), load)

    # A record is read before what was reported is told: a warning's hook may remove it.
    def _put(self, site: Site, offset: Vector, load: Load) -> OffsetLoad:
        def put(function: Callable[..., str], *arguments: Any) -> Optional[OffsetLoad]:
            record = function(*arguments)
            return None if record == NULL else self._read(record)

        if isinstance(load, Weight):
            kept = call(put, ss.qmStaticStrength_setWeightLoadWithOffset, self._analysis, site, offset, load.grams)
        else:
            kept = call(put, ss.qmStaticStrength_setLoadWithOffset, self._analysis, site, offset, load.vector,
                        int(load.local))
        if kept is None:
            raise StaticStrengthError(f"the load at an offset from {site.key} cannot be set.")
        return kept

    def _remove(self, record: str) -> None:
        ss.qmStaticStrength_removeLoadWithOffset(self._analysis.pointer, record)


# What other tools stored is shown as it is, also where it could not be given: not finite, or below zero.
def _stored_force(numbers: Sequence[float], local: bool) -> Force:
    force = Force(0, 0, 0, local)
    for name, number in zip(("x", "y", "z"), numbers):
        object.__setattr__(force, name, number)
    return force


def _stored_weight(grams: float) -> Weight:
    weight = Weight(0)
    object.__setattr__(weight, "grams", grams)
    return weight


def _stored_offset_load(site: str, offset: Sequence[float], load: Load) -> OffsetLoad:
    stored = OffsetLoad(site, Vector(0, 0, 0), load)
    object.__setattr__(stored, "offset", Vector(*offset))
    return stored
