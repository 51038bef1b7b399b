"""Frame results: the results of many frames as one array of numbers."""
from __future__ import annotations

import math
from array import array
from typing import TYPE_CHECKING, Any, Dict, Iterator, List, Optional, Sequence, Tuple, Union, overload

from .names import unknown_name
from .result import JointForce, JointResult, _pandas
from .vectors import Vector

if TYPE_CHECKING:
    import pandas   # type: ignore[import]

#: The numbers of one joint in one frame, in the order of the array.
COMPONENTS = ("force_x_kgf", "force_y_kgf", "force_z_kgf", "moment_x_nm", "moment_y_nm", "moment_z_nm")


class FrameResults(Sequence[Dict[str, JointResult]]):
    """The results of many frames.

    ``results[i]`` is frame i as a dictionary of the joints that have a result. The numbers themselves are in
    ``flat``, an :class:`array.array` of singles: frame by frame, joint by joint, the six of :data:`COMPONENTS`;
    not-a-numbers where a joint has no result. ``numpy.asarray(results)`` is a view of them of ``shape``.
    """

    def __init__(self, joints: Sequence[str], flat: array[float], count: int) -> None:
        self._joints = tuple(joints)
        self._flat = flat
        self._count = count
        self._index = {joint: i for i, joint in enumerate(self._joints)}
        self._stride = len(self._joints) * len(COMPONENTS)

    @property
    def joints(self) -> Tuple[str, ...]:
        """The joints, in the order of the array."""
        return self._joints

    @property
    def flat(self) -> array[float]:
        """All numbers."""
        return self._flat

    @property
    def shape(self) -> Tuple[int, int, int]:
        """Frames, joints, components."""
        return len(self), len(self._joints), len(COMPONENTS)

    def __len__(self) -> int:
        return self._count

    @overload
    def __getitem__(self, frame: int) -> Dict[str, JointResult]: ...

    @overload
    def __getitem__(self, frame: slice) -> List[Dict[str, JointResult]]: ...

    def __getitem__(self, frame: Union[int, slice]) -> Union[Dict[str, JointResult], List[Dict[str, JointResult]]]:
        if isinstance(frame, slice):
            return [self[i] for i in range(*frame.indices(len(self)))]
        each = ((joint, self.at(frame, joint)) for joint in self._joints)
        return {joint: result for joint, result in each if result is not None}

    def at(self, frame: int, joint: str) -> Optional[JointResult]:
        """The result of one joint in one frame; None when it has none."""
        count = len(self)
        if not -count <= frame < count:
            raise IndexError(f"there are {count} frames, found {frame}.")
        start = frame % count * self._stride + self._of(joint) * len(COMPONENTS)
        numbers = self._flat[start:start + len(COMPONENTS)]
        if all(map(math.isnan, numbers)):
            return None
        return JointResult(JointForce(*numbers[:3]), Vector(*numbers[3:]))

    def series(self, joint: str, component: str) -> array[float]:
        """One component of one joint, of all frames: one of :data:`COMPONENTS`, or ``force_kgf`` or ``moment_nm``,
        the magnitudes."""
        start = self._of(joint) * len(COMPONENTS)
        if component in COMPONENTS:
            return self._flat[start + COMPONENTS.index(component)::self._stride]
        if component not in _MAGNITUDES:
            raise unknown_name("a frame's result", "component", component, [*COMPONENTS, *_MAGNITUDES])
        first = start + _MAGNITUDES[component]
        parts = (self._flat[first + i::self._stride] for i in range(3))
        return array("f", [math.sqrt(x * x + y * y + z * z) for x, y, z in zip(*parts)])

    def __iter__(self) -> Iterator[Dict[str, JointResult]]:
        return (self[i] for i in range(len(self)))

    def _of(self, joint: str) -> int:
        if joint not in self._index:
            raise unknown_name("the array", "joint", joint, self._joints)
        return self._index[joint]

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> Any:
        import numpy
        numbers = (numpy.frombuffer(self._flat, dtype=numpy.float32) if self._flat else
                   numpy.empty(0, dtype=numpy.float32)).reshape(self.shape)
        if dtype is not None and numpy.dtype(dtype) != numbers.dtype:
            return numbers.astype(dtype)
        return numbers.copy() if copy else numbers

    def as_dataframe(self) -> pandas.DataFrame:
        """A pandas table: a row for each frame and joint, the columns of :data:`COMPONENTS`.

        :raises ImportError: when pandas is not installed
        """
        pandas = _pandas()
        rows = pandas.MultiIndex.from_product([range(len(self)), self._joints], names=["frame", "joint"])
        return pandas.DataFrame(self.__array__().reshape(-1, len(COMPONENTS)), index=rows, columns=list(COMPONENTS))

    def __repr__(self) -> str:
        return f"<FrameResults: {len(self)} frames, {len(self._joints)} joints>"


_MAGNITUDES = {"force_kgf": 0, "moment_nm": 3}
