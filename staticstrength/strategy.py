"""Strategies: how the body is supported."""
from __future__ import annotations

import enum
import operator
from typing import Union

from ._flat import ss
from .names import unknown_name


class Strategy(enum.IntEnum):
    """How the body is supported."""

    TWO_FEET = ss.qmStaticStrength_TwoFeet
    RIGHT_FOOT = ss.qmStaticStrength_RightFoot
    LEFT_FOOT = ss.qmStaticStrength_LeftFoot
    #: Each computation decides by the knees: two feet, the right foot or the left foot.
    WALKING = ss.qmStaticStrength_Walking
    #: On the buttocks, feet on the ground.
    SITTING = ss.qmStaticStrength_Sitting
    #: On the buttocks, legs hanging.
    SITTING_NO_FEET = ss.qmStaticStrength_SittingNoFeet
    HANDS_AND_KNEES = ss.qmStaticStrength_HandsAndKnees

    @property
    def text(self) -> str:
        """As on the command line: ``two-feet``."""
        return self.name.lower().replace("_", "-")

    def __str__(self) -> str:
        return self.text

    def __format__(self, format_spec: str) -> str:
        return format(self.text, format_spec)

    @classmethod
    def of(cls, strategy: Union[Strategy, str, int]) -> Strategy:
        """The strategy itself, that of a text as on the command line, or that of the flat module's number.

        :raises UnknownNameError: for another text
        :raises ValueError: for another number
        :raises TypeError: for what is neither
        """
        expected = f"expected one of {', '.join(each.text for each in cls)}"
        if not isinstance(strategy, str):
            try:
                number = None if isinstance(strategy, bool) else operator.index(strategy)
            except TypeError:
                number = None
            if number is None:
                raise TypeError(f"the strategy: {expected}, found {strategy!r}.")
            if number not in set(map(int, cls)):
                raise ValueError(f"the strategy: {expected}, found {number}.")
            return cls(number)
        by_text = {each.text: each for each in cls}
        if strategy not in by_text:
            raise unknown_name("the analysis", "strategy", strategy, by_text, f"; {expected}")
        return by_text[strategy]
