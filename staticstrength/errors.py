"""What can go wrong, as exceptions and warnings."""
from typing import Sequence


class StaticStrengthError(Exception):
    """Something could not be done; the text says why, in the host's words where the host reported it."""


class ClosedError(StaticStrengthError):
    """The scene was closed, or the analysis deleted, before it was used here."""


class UnknownNameError(StaticStrengthError, KeyError):
    """A name that nothing has. ``name`` is the name, ``suggestions`` are the nearest ones there are."""

    def __init__(self, message: str, name: str = "", suggestions: Sequence[str] = ()) -> None:
        super().__init__(message, name, tuple(suggestions))
        self.message = message
        self.name = name
        self.suggestions = tuple(suggestions)

    def __str__(self) -> str:   # a KeyError would show the text in quotes
        return self.message


class StaticStrengthWarning(UserWarning):
    """The work was done, but not all of it as one would expect."""
