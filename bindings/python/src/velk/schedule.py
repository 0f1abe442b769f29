# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The schedule of the web update."""

from __future__ import annotations

import dataclasses
import datetime
import enum
import re
from typing import Optional, Union

__all__ = ["Frequency", "Schedule", "Weekday"]

#: The valid texts of a schedule.
WANTED = "every 6h, daily 08:30, weekly sunday 08:30, monthly 31 08:30 or off"

_TIME = re.compile(r"([0-9]{1,2}):([0-9]{2})")
_EVERY = re.compile(r"every ([0-9]+)h")
_DAILY = re.compile(r"daily (\S+)")
_WEEKLY = re.compile(r"weekly ([a-z]+) (\S+)")
_MONTHLY = re.compile(r"monthly ([0-9]+) (\S+)")


class Frequency(enum.Enum):
    """How often the update runs."""

    HOURS = "every"
    DAILY = "daily"
    WEEKLY = "weekly"
    MONTHLY = "monthly"
    OFF = "off"


class Weekday(enum.IntEnum):
    """A day of the week, as the device numbers them: Sunday is 1."""

    SUNDAY = 1
    MONDAY = 2
    TUESDAY = 3
    WEDNESDAY = 4
    THURSDAY = 5
    FRIDAY = 6
    SATURDAY = 7


def _time(time: Union[datetime.time, str]) -> datetime.time:
    if isinstance(time, str):
        match = _TIME.fullmatch(time)
        if match is None:
            raise ValueError(f"'{time}' is not a time; give one such as 08:30")
        return datetime.time(int(match[1]), int(match[2]))
    if not isinstance(time, datetime.time):
        raise TypeError(f"a time is not {type(time).__name__}; give a datetime.time, or a text such as 08:30")
    if time.second or time.microsecond or time.tzinfo is not None:
        raise ValueError(f"{time} is not a time of hours and minutes, in the time zone of the device")
    return time


def _number(number: object, least: int, most: int, noun: str) -> int:
    if isinstance(number, bool) or not isinstance(number, int) or not least <= number <= most:
        raise ValueError(f"{number!r} is not a {noun}; give {least} to {most}")
    return int(number)


@dataclasses.dataclass(frozen=True)
class Schedule:
    """When the web contents updater runs. Make one with :meth:`every`, :meth:`daily`, :meth:`weekly`,
    :meth:`monthly`, :meth:`off` or :meth:`parse`; ``str()`` is the text that velkctl takes.

    >>> str(Schedule.weekly(Weekday.SUNDAY, datetime.time(8, 30)))
    'weekly sunday 08:30'

    ``number`` is the hours of HOURS, the weekday of WEEKLY, the day of the month of MONTHLY, else None. ``time`` is
    the local time of DAILY, WEEKLY and MONTHLY, in hours and minutes, else None.
    """

    frequency: Frequency
    number: Optional[int] = None
    time: Optional[datetime.time] = None

    def __post_init__(self) -> None:
        ranges = {Frequency.HOURS: (1, 23, "number of hours"), Frequency.WEEKLY: (1, 7, "weekday"),
                  Frequency.MONTHLY: (1, 31, "day of the month")}
        if not isinstance(self.frequency, Frequency):
            raise TypeError(f"a frequency is not {type(self.frequency).__name__}; give a velk.Frequency")
        if self.frequency in ranges:
            _number(self.number, *ranges[self.frequency])
        elif self.number is not None:
            raise ValueError(f"a schedule of {self.frequency.name} has no number")
        if self.frequency in (Frequency.HOURS, Frequency.OFF):
            if self.time is not None:
                raise ValueError(f"a schedule of {self.frequency.name} has no time")
        else:
            if self.time is None:
                raise ValueError(f"a schedule of {self.frequency.name} has a time; give one such as 08:30")
            object.__setattr__(self, "time", _time(self.time))

    @classmethod
    def off(cls) -> Schedule:
        """Returns the schedule without updates."""
        return cls(Frequency.OFF)

    @classmethod
    def every(cls, hours: int) -> Schedule:
        """Returns a schedule of every so many hours, 1 to 23. Raises ValueError for another number."""
        return cls(Frequency.HOURS, hours)

    @classmethod
    def daily(cls, time: Union[datetime.time, str]) -> Schedule:
        """Returns a schedule of one time of the day. Raises ValueError for a wrong time."""
        return cls(Frequency.DAILY, None, _time(time))

    @classmethod
    def weekly(cls, weekday: Weekday, time: Union[datetime.time, str]) -> Schedule:
        """Returns a schedule of one day of the week. Raises ValueError for a wrong day or time."""
        return cls(Frequency.WEEKLY, _number(weekday, 1, 7, "weekday"), _time(time))

    @classmethod
    def monthly(cls, day: int, time: Union[datetime.time, str]) -> Schedule:
        """Returns a schedule of one day of the month, 1 to 31. Raises ValueError for a wrong day or time.

        A month without the day has the update on day 1 of the next.
        """
        return cls(Frequency.MONTHLY, day, _time(time))

    @classmethod
    def parse(cls, text: str) -> Schedule:
        """Returns the schedule of a text of velkctl, such as ``"daily 08:30"``.

        Raises ValueError if it is not a schedule.
        """
        try:
            parsed = cls._parsed(text)
        except (KeyError, ValueError):
            parsed = None
        if parsed is None:
            raise ValueError(f"'{text}' is not a schedule; give {WANTED}")
        return parsed

    @classmethod
    def _parsed(cls, text: str) -> Optional[Schedule]:
        if text == "off":
            return cls.off()
        match = _EVERY.fullmatch(text)
        if match:
            return cls.every(int(match[1]))
        match = _DAILY.fullmatch(text)
        if match:
            return cls.daily(match[1])
        match = _WEEKLY.fullmatch(text)
        if match:
            return cls.weekly(Weekday[match[1].upper()], match[2])
        match = _MONTHLY.fullmatch(text)
        return cls.monthly(int(match[1]), match[2]) if match else None

    def __str__(self) -> str:
        if self.frequency is Frequency.OFF:
            return "off"
        if self.frequency is Frequency.HOURS:
            return f"every {self.number}h"
        words = [self.frequency.value]
        if self.frequency is Frequency.WEEKLY:
            words.append(Weekday(self.number or 0).name.lower())
        elif self.frequency is Frequency.MONTHLY:
            words.append(str(self.number))
        return " ".join([*words, f"{self.time:%H:%M}"])
