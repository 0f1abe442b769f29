# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The types of values, and their data bytes.

A value is encoded and decoded as in the JSON of velkctl, and a value that velkctl refuses is refused here.
"""

from __future__ import annotations

import ctypes
import enum
import ipaddress
import re
import socket
import struct
from typing import Dict, Iterable, List, NamedTuple, Optional, Tuple, Type, Union

from . import text
from .record import Data
from .schedule import Frequency, Schedule
from .secret import Secret

__all__ = [
    "Encryption", "GivenValue", "Kind", "LinkSpeed", "Method", "NtpResult", "Parsed", "ServiceSet", "Value",
    "WrongType",
]

#: The types of values that a get returns.
Value = Union[None, bool, int, str, bytes, enum.Enum, ipaddress.IPv4Address, List[ipaddress.IPv4Address],
              Tuple[int, int], Schedule, Secret]

#: The types of values that a set takes.
GivenValue = Union[None, bool, int, str, enum.Enum, ipaddress.IPv4Address, ipaddress.IPv6Address,
                   Iterable[Union[ipaddress.IPv4Address, str]], Schedule, Secret]

_Bytes = ctypes.Array[ctypes.c_ubyte]


class _Word(enum.Enum):
    """A value that velkctl writes as a word."""

    def __str__(self) -> str:
        return str(self.value)


class Method(_Word):
    """How an interface gets its address."""

    STATIC = "static"  #: address, netmask and gateway are those that are set
    DHCP = "dhcp"  #: a DHCP server gives them


class NtpResult(_Word):
    """The result of the last time synchronisation."""

    REACHED = "reached"  #: a server answered; the clock was set
    NOT_REACHED = "not-reached"  #: no server answered
    NO_RESULT = "no-result"  #: it has not run yet, or was switched off


class LinkSpeed(_Word):
    """The link speed in Mbit/s, with the duplex."""

    AUTO = "auto"  #: negotiated with the other end
    FULL_100 = "100-full"
    HALF_100 = "100-half"
    FULL_10 = "10-full"
    HALF_10 = "10-half"


class ServiceSet(_Word):
    """The kind of wireless network."""

    INFRASTRUCTURE = "infrastructure"  #: a network with an access point
    AD_HOC = "ad-hoc"  #: a network without one


class Encryption(_Word):
    """The encryption. The wireless daemon defines the meaning of the numbers; see its manual."""

    NUMBER_1 = "1"
    WEP = "wep"
    NUMBER_3 = "3"
    NUMBER_4 = "4"


class WrongType(NamedTuple):
    """The value has a type that the setting does not take. `wanted` names the types, and `given` that of the value."""

    wanted: str
    given: str = ""


#: Data bytes; or the problem with a value, to follow the name of the setting in a message; or the wrong type. A
#: problem is returned and not raised, so that no frame of a traceback holds a key.
Parsed = Union["ctypes.Array[ctypes.c_ubyte]", str, WrongType]


def _data(content: bytes) -> _Bytes:
    return Data(*content)


def _text_in(data: _Bytes) -> str:
    return text.shown(bytes(data))


class Kind:
    """One form that the values of settings have."""

    def parse(self, value: object, wanted: str) -> Parsed:
        """Returns the data bytes of a value. `wanted` names the valid values."""
        raise NotImplementedError

    def read(self, data: _Bytes) -> Value:
        """Returns the value of data bytes; raises ValueError, with their text, if they hold none."""
        raise NotImplementedError


class OnlyRead(Kind):
    """A kind of values that cannot be set."""

    def parse(self, value: object, wanted: str) -> Parsed:
        return "cannot be set, only read"


def _bits(word: str) -> Optional[int]:
    """Returns the bits of an IPv4 address without leading zeros, as inet_pton(3) reads it; None for others."""
    try:
        return int.from_bytes(socket.inet_pton(socket.AF_INET, word), "big")
    except (OSError, ValueError):
        return None


def _not_ipv4(word: str, noun: str) -> str:
    without_zeros = re.sub(r"(^|(?<=\.))0+(?=[0-9])", "", word)
    if _bits(without_zeros) is not None:
        return "has a number with a leading zero; other programs read it as octal"
    return f"is not {noun}"


def _host_problem(address: int) -> str:
    first = address >> 24
    if first == 0:
        return "is not the address of a host, as it begins with 0"
    if first == 127:
        return "is a loopback address; the device reaches only itself there"
    if address == 0xffffffff:
        return "is the broadcast address"
    if first >= 240:
        return "is a reserved address"
    return "is a multicast address" if first >= 224 else ""


def _mask_problem(mask: int) -> str:
    zeros = ~mask & 0xffffffff
    if mask == 0:
        return "is not a mask: it has no ones"
    return "is not a mask: a zero precedes a one" if zeros & (zeros + 1) else ""


class Address(Kind):
    """An IPv4 address; None for none. `takes_none` says whether none can be set."""

    def __init__(self, takes_none: bool = False) -> None:
        self._takes_none = takes_none

    def parse(self, value: object, wanted: str) -> Parsed:
        if value is None and self._takes_none:
            return Data()
        if not isinstance(value, (str, ipaddress.IPv4Address)):
            return WrongType("IPv4Address or str")
        if value == "none" and self._takes_none:
            return Data()
        given = text.content_of(value)
        word = self._in_full(given)
        bits = _bits(word)
        problem = self._problem(bits) if bits is not None else self._no_address_problem(word)
        return f"{text.quoted(given)} {problem}; give {wanted}" if problem else _data(word.encode())

    def _in_full(self, word: str) -> str:
        return word

    def _problem(self, bits: int) -> str:
        return _host_problem(bits)

    def _no_address_problem(self, word: str) -> str:
        return _not_ipv4(word, "an IPv4 address")

    def read(self, data: _Bytes) -> Optional[ipaddress.IPv4Address]:
        word = _text_in(data)
        if not word:
            return None
        bits = _bits(word)
        if bits is None:
            raise ValueError(word)
        return ipaddress.IPv4Address(bits)


class Netmask(Address):
    """An IPv4 mask, which can be given as its prefix length in a text, such as ``"24"``."""

    def _in_full(self, word: str) -> str:
        number = word[1:] if word.startswith("/") else word
        if re.fullmatch("[0-9]+", number) is None:
            return number if _bits(number) is not None else word
        prefix = int(number[:9])
        if prefix > 32 or len(number.lstrip("0")) > 2:
            return word
        return str(ipaddress.IPv4Address((0xffffffff << (32 - prefix)) & 0xffffffff))

    def _problem(self, bits: int) -> str:
        return _mask_problem(bits)

    def _no_address_problem(self, word: str) -> str:
        number = word[1:] if word.startswith("/") else word
        if word and not number:
            return "has no prefix length"
        if re.fullmatch("[0-9]+", number):
            return "is no mask: a prefix length is 1 to 32"
        return _not_ipv4(word, "an IPv4 mask")


class ServerList(Kind):
    """A list of one to three IPv4 addresses; the empty list for none."""

    SLOTS, SLOT_SIZE = 3, 16

    def parse(self, value: object, wanted: str) -> Parsed:
        if isinstance(value, (str, bytes)) or not isinstance(value, Iterable):
            return WrongType("a list of IPv4Address or str")
        servers = list(value)
        wrong = [type(server).__name__ for server in servers if not isinstance(server, (str, ipaddress.IPv4Address))]
        if wrong:
            return WrongType("a list of IPv4Address or str", f"a list with {wrong[0]}")
        words = list(map(text.content_of, servers))
        problem = self._problem(words, wanted)
        if problem:
            return problem
        return _data(b"".join(word.encode().ljust(self.SLOT_SIZE, b"\0") for word in words))

    def _problem(self, words: List[str], wanted: str) -> str:
        problems = []
        for word in words:
            bits = _bits(word)
            problem = _host_problem(bits) if bits is not None else _not_ipv4(word, "an IPv4 address")
            if problem:
                problems.append(f"{text.quoted(word)} {problem}")
        if len(words) > self.SLOTS:
            problems.append(f"{len(words)} addresses given")
        if problems:
            return "; ".join(problems) + f"; give {wanted}"
        for index, word in enumerate(words):
            if word in words[:index]:
                return f"{text.quoted(word)} is given twice; give every server once"
        return ""

    def read(self, data: _Bytes) -> List[ipaddress.IPv4Address]:
        content = bytes(data)
        slots = [content[index * self.SLOT_SIZE:][:self.SLOT_SIZE] for index in range(self.SLOTS)]
        words = [text.shown(slot) for slot in slots]
        if any(word and _bits(word) is None for word in words):
            raise ValueError(" ".join(filter(None, words)))
        return [ipaddress.IPv4Address(word) for word in words if word]


class Host(Kind):
    """A host name, or an address as a text; None for none."""

    LONGEST_NAME, LONGEST_LABEL = 253, 63

    def parse(self, value: object, wanted: str) -> Parsed:
        if value is None or value == "none":
            return Data()
        if not isinstance(value, (str, ipaddress.IPv4Address, ipaddress.IPv6Address)):
            return WrongType("str, IPv4Address or IPv6Address")
        word = text.content_of(value)
        if word == "off":
            return "'off' would be a host name here; give none to clear the setting"
        problem = self._problem(word)
        return f"{text.quoted(word)} {problem}; give {wanted}" if problem else _data(word.encode())

    def _problem(self, word: str) -> str:
        bits = _bits(word)
        if bits is not None:
            return _host_problem(bits)
        if self._is_ipv6(word):
            return ""
        name = word[:-1] if word.endswith(".") else word
        labels = name.split(".")
        if not re.match("[A-Za-z0-9]", word) or not all(re.fullmatch("[A-Za-z0-9_-]+", label) for label in labels):
            return "is not a host name"
        if len(word) > self.LONGEST_NAME:
            return self._too_long("it", len(word), self.LONGEST_NAME)
        longest = max(map(len, labels))
        if longest > self.LONGEST_LABEL:
            return self._too_long("a part without a dot", longest, self.LONGEST_LABEL)
        return _not_ipv4(word, "an IPv4 address") if labels[-1].isdigit() else ""

    @staticmethod
    def _is_ipv6(word: str) -> bool:
        # A word that begins with a sign would be an option of the program that gets it.
        try:
            return re.match("[A-Za-z0-9]", word) is not None and bool(socket.inet_pton(socket.AF_INET6, word))
        except (OSError, ValueError):
            return False

    @staticmethod
    def _too_long(part: str, length: int, longest: int) -> str:
        return f"is too long; {part} has {length} of at most {longest} characters"

    def read(self, data: _Bytes) -> Optional[str]:
        return _text_in(data) or None


class Choice(Kind):
    """One byte, which an enumeration names."""

    def __init__(self, words: Type[_Word], codes: Dict[int, _Word], takes_numbers: bool = False) -> None:
        self._words = words
        self._codes = codes
        self._takes_numbers = takes_numbers

    def parse(self, value: object, wanted: str) -> Parsed:
        if not isinstance(value, (str, self._words)):
            return WrongType(f"{self._words.__name__} or str")
        for code, word in self._codes.items():
            if value in (word, word.value) or (self._takes_numbers and value == str(code)):
                return _data(bytes([code]))
        return f"{text.quoted(text.content_of(value))} is not valid; give {wanted}"

    def read(self, data: _Bytes) -> enum.Enum:
        if data[0] not in self._codes:
            raise ValueError(str(data[0]))
        return self._codes[data[0]]


class Switch(Kind):
    """A switch: True for on, False for off."""

    def parse(self, value: object, wanted: str) -> Parsed:
        if not isinstance(value, (bool, str)):
            return WrongType("bool")
        if value in ("on", "off"):
            value = value == "on"
        if isinstance(value, str):
            return f"{text.quoted(value)} is not valid; give {wanted}"
        return _data(b"\1" if value else b"\2")

    def read(self, data: _Bytes) -> bool:
        if data[0] not in (1, 2):
            raise ValueError(str(data[0]))
        return data[0] == 1


class Number(Kind):
    """A number of one byte. A get may return one that cannot be set."""

    def __init__(self, least: int, most: int) -> None:
        self._least = least
        self._most = most

    def parse(self, value: object, wanted: str) -> Parsed:
        if isinstance(value, bool) or not isinstance(value, int):
            return WrongType("int")
        if not self._least <= value <= self._most:
            return f"'{value}' is not valid; give {wanted}"
        return _data(bytes([value]))

    def read(self, data: _Bytes) -> int:
        return data[0]


def _text_problem(content: Optional[bytes], lengths: Iterable[int]) -> str:
    """Returns the problem with the bytes of a text. It has no part of the text, which may be a key."""
    if content is None:
        return "it is not Unicode"
    if content.endswith(b"\r"):
        return "it ends with CR (carriage return), as in a CR LF file"
    if len(content) not in lengths:
        return f"{len(content)} {'byte' if len(content) == 1 else 'bytes'} given"
    if text.has_controls(content):
        return "control characters, such as the end of a line, are not taken"
    return ""


class Text(Kind):
    """A text, which may be empty."""

    def __init__(self, longest: int) -> None:
        self._lengths = range(longest + 1)

    def parse(self, value: object, wanted: str) -> Parsed:
        if not isinstance(value, str):
            return WrongType("str")
        content = text.bytes_of(value)
        problem = _text_problem(content, self._lengths)
        return f"{problem}; give {wanted}" if problem or content is None else _data(content)

    def read(self, data: _Bytes) -> str:
        return _text_in(data)


class Key(Kind):
    """A key; None for none."""

    _MASK = b"********"

    def __init__(self, lengths: Iterable[int], hex_lengths: Tuple[int, ...] = ()) -> None:
        self._lengths = lengths
        self._hex_lengths = hex_lengths

    def parse(self, value: object, wanted: str) -> Parsed:
        if value is None:
            return Data()
        if not isinstance(value, Secret):
            return WrongType("Secret")
        content = text.bytes_of(value.reveal())
        problem = self._problem(content)
        return f"{problem}; give {wanted}" if problem or content is None else _data(content)

    def _problem(self, content: Optional[bytes]) -> str:
        if content == self._MASK:
            return "this is the mask that is shown in place of a key"
        if content and len(content) in self._hex_lengths and not re.fullmatch(b"[0-9A-Fa-f]+", content):
            return f"a key of {' or '.join(map(str, self._hex_lengths))} bytes consists of hex digits"
        return _text_problem(content, self._lengths)

    def read(self, data: _Bytes) -> Optional[Secret]:
        key = Secret(_text_in(data))
        return None if key == Secret("") else key


class WebSchedule(Kind):
    """The schedule of the web update."""

    _TYPES = {Frequency.HOURS: 1, Frequency.DAILY: 2, Frequency.WEEKLY: 3, Frequency.MONTHLY: 4, Frequency.OFF: 99}

    def parse(self, value: object, wanted: str) -> Parsed:
        if not isinstance(value, (str, Schedule)):
            return WrongType("Schedule or str")
        try:
            schedule = Schedule.parse(value) if isinstance(value, str) else value
        except ValueError:
            return f"{text.quoted(text.content_of(value))} is not a schedule; give {wanted}"
        number = {Frequency.DAILY: 1, Frequency.OFF: 99}.get(schedule.frequency, schedule.number)
        time = f"{schedule.time:%H:%M}" if schedule.time else "00:00"
        return _data(bytes([self._TYPES[schedule.frequency], number or 0]) + time.encode())

    def read(self, data: _Bytes) -> Schedule:
        words = self._words(data)
        try:
            return Schedule.parse(words)
        except ValueError:
            raise ValueError(words) from None

    @staticmethod
    def _words(data: _Bytes) -> str:
        number = data[1]
        time = text.shown(bytes(data)[2:])
        after = f" {time}" if time else ""
        weekdays = ("sunday", "monday", "tuesday", "wednesday", "thursday", "friday", "saturday")
        forms = {
            1: f"every {number}h",
            2: f"daily{after}",
            3: f"weekly {weekdays[number - 1] if 1 <= number <= 7 else number}{after}",
            4: f"monthly {number}{after}",
            99: "off",
        }
        return forms.get(data[0], f"schedule {data[0]} {number}{after}")


class ShownText(OnlyRead):
    """A text that the device reports; None for none."""

    def read(self, data: _Bytes) -> Optional[str]:
        return _text_in(data) or None


class MacAddress(OnlyRead):
    """A hardware address with colons; None for none."""

    def read(self, data: _Bytes) -> Optional[str]:
        word = _text_in(data)
        if re.fullmatch("[0-9A-Fa-f]{12}", word):
            return ":".join(re.findall("..", word))
        return word or None


class HexBytes(OnlyRead):
    """The first data bytes."""

    def __init__(self, count: int) -> None:
        self._count = count

    def read(self, data: _Bytes) -> bytes:
        return bytes(data)[:self._count]


class NumberPair(OnlyRead):
    """Two numbers of 16 bits in the byte order of the device."""

    def read(self, data: _Bytes) -> Tuple[int, int]:
        first, second = struct.unpack_from("=HH", bytes(data))
        return first, second


#: Every kind, by the name that the catalogue gives it.
KINDS: Dict[str, Kind] = {
    "address": Address(),
    "gateway": Address(takes_none=True),
    "netmask": Netmask(),
    "servers": ServerList(),
    "host": Host(),
    "schedule": WebSchedule(),
    "switch": Switch(),
    "method": Choice(Method, {1: Method.STATIC, 2: Method.DHCP}),
    "ntp-result": Choice(NtpResult, {1: NtpResult.REACHED, 2: NtpResult.NOT_REACHED, 3: NtpResult.NO_RESULT}),
    "link-speed": Choice(LinkSpeed, {1: LinkSpeed.AUTO, 2: LinkSpeed.FULL_100, 3: LinkSpeed.HALF_100,
                                     4: LinkSpeed.FULL_10, 5: LinkSpeed.HALF_10}),
    "service-set": Choice(ServiceSet, {1: ServiceSet.INFRASTRUCTURE, 2: ServiceSet.AD_HOC}),
    "encryption": Choice(Encryption, {1: Encryption.NUMBER_1, 2: Encryption.WEP, 3: Encryption.NUMBER_3,
                                      4: Encryption.NUMBER_4}, takes_numbers=True),
    "1-to-3": Number(1, 3),
    "1-to-4": Number(1, 4),
    "2-to-3": Number(2, 3),
    "1-to-13": Number(1, 13),
    "text": Text(511),
    "ssid": Text(32),
    "psk": Key(range(1, 65)),
    "wep-key": Key((5, 13, 10, 26), hex_lengths=(10, 26)),
    "shown-text": ShownText(),
    "mac-address": MacAddress(),
    "rate": HexBytes(4),
    "signal": NumberPair(),
}
