"""Attribute: a property that reads as one type and may be set to several."""
from typing import Any, Callable, Generic, Optional, TypeVar, Union, overload

O = TypeVar("O")
Got = TypeVar("Got")
Given = TypeVar("Given")


class Attribute(Generic[O, Got, Given]):
    """Like :class:`property`, with a type of its own for what may be assigned."""

    def __init__(self, get: Callable[[O], Got], put: Callable[[O, Given], None], doc: str) -> None:
        self._get = get
        self._put = put
        self._name = "attribute"
        self.__doc__ = doc

    def __set_name__(self, owner: type, name: str) -> None:
        self._name = name

    @overload
    def __get__(self, instance: None, owner: Optional[type] = None) -> "Attribute[O, Got, Given]": ...

    @overload
    def __get__(self, instance: O, owner: Optional[type] = None) -> Got: ...

    def __get__(self, instance: Optional[O],
                owner: Optional[type] = None) -> Union[Got, "Attribute[O, Got, Given]"]:
        return self if instance is None else self._get(instance)

    def __set__(self, instance: O, value: Given) -> None:
        self._put(instance, value)

    def __delete__(self, instance: Any) -> None:
        raise AttributeError(f"{self._name} cannot be deleted.")
