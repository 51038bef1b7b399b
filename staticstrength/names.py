"""Names: mappings of parts by name that suggest the nearest names for a wrong one."""
import difflib
from typing import Dict, Generic, Iterable, Iterator, List, Mapping, TypeVar

from .errors import UnknownNameError

T = TypeVar("T")

_OFFERED = 3      # names in a suggestion
_CLOSE = 0.7      # of the letters of two names that are near
_SHORTEST = 3     # letters of a text that other names are searched for
_LONGEST = 200    # a longer text is no misspelt name


def nearest(wrong: str, names: Iterable[str]) -> List[str]:
    """The names nearest to a wrong one, the nearest first; at most three, none when none is near."""
    if not wrong or len(wrong) > _LONGEST:
        return []
    known: Dict[str, str] = {}
    for name in names:
        known.setdefault(name.lower(), name)
    sought = wrong.lower()
    close = difflib.get_close_matches(sought, known, _OFFERED, _CLOSE)
    if len(sought) >= _SHORTEST:
        holding = sorted((name for name in known if sought in name and name not in close), key=len)
        close = (close + holding)[:_OFFERED]
    return [known[name] for name in close]


def unknown_name(where: str, kind: str, wrong: str, names: Iterable[str], expected: str = "") -> UnknownNameError:
    """The error for a name that nothing has: ``figure worker has no joint "left_nee". Did you mean left_knee?``"""
    suggestions = nearest(wrong, names)
    text = f'{where} has no {kind} "{wrong}"{expected}.'
    if suggestions:
        offer = suggestions[-1] if len(suggestions) == 1 else ", ".join(suggestions[:-1]) + " or " + suggestions[-1]
        text += f" Did you mean {offer}?"
    return UnknownNameError(text, wrong, suggestions)


class NamedMapping(Mapping[str, T], Generic[T]):
    """Parts by name, in the figure's order. A wrong name is an :class:`~staticstrength.UnknownNameError`."""

    def __init__(self, where: str, kind: str, parts: Mapping[str, T], expected: str = "") -> None:
        self._where = where
        self._kind = kind
        self._parts = dict(parts)
        self._expected = expected

    def __getitem__(self, name: str) -> T:
        try:
            return self._parts[name]
        except KeyError:
            raise unknown_name(self._where, self._kind, str(name), self._parts, self._expected) from None

    def __iter__(self) -> Iterator[str]:
        return iter(self._parts)

    def __len__(self) -> int:
        return len(self._parts)

    def __repr__(self) -> str:
        return f"<{len(self)} {self._kind}s of {self._where}: {', '.join(self)}>"

    def _ipython_key_completions_(self) -> List[str]:
        return list(self)
