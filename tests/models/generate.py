# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Random pairs of files and request. A pair has a seed and a number, and these always give the same pair."""

from __future__ import annotations

import random
import struct
from typing import Dict, List, Sequence, Tuple

from . import crontab, dhcp, hooks, identity, interfaces, live, resolver, wireless
from .device import DATA_SIZE, GET, LOCK, RESTART, RESULT, SET, File, Pair, Request, Scene, copy_of
from .library import CONFIGURATION, GETTERS, RESTARTS, SETTERS, STATE

Random = random.Random

NAMES = (b"eth0", b"eth1")
ODD_NAMES = (b"", b"eth0", b"eth1", b"eth2", b"ETH0", b"eth0 ", b"eth", b"eth01", b"eth0\0junk of the caller",
             b"sixteen bytes---", b"fifteen bytes--", b"eth1\0\0\xff", b"lo")
ADDRESSES = (b"192.168.0.10", b"10.0.0.1", b"255.255.255.0", b"0.0.0.0", b"1", b"", b"300.1.2.3",
             b"192.168.100.200", b"1234567890123456", b"fe80::1234:5678:9abc", b"time.example.net", b"\xc3\xbcb\xff",
             b"10.0.0.1 # spare", b"10.0.0.1 ", b" 10.0.0.1", b"10.0.0.1\tx", b"ntp", b"usr", b"a b", b"x>y")
ODD_BYTES = b"\0\t \r\x0b\x0c\x01\x7f\x80\xc3\xbc\xff#;,}{\"'$\\&/=*>!"


def _pick(rng: Random, options: Sequence[bytes]) -> bytes:
    return options[int(rng.random() * len(options))]


def _one_in(rng: Random, count: int) -> bool:
    return rng.random() * count < 1


def _odd_text(rng: Random) -> bytes:
    kind = int(rng.random() * 6)
    if kind == 0:
        return bytes(ODD_BYTES[int(rng.random() * len(ODD_BYTES))] for _ in range(1 + int(rng.random() * 12)))
    if kind == 1:
        return _pick(rng, (b"x", b"ab ", b"#", b"192.168.0.1 ", b"; ")) * int(rng.random() * 300)
    if kind == 2:
        return rng.getrandbits(8 * 9).to_bytes(9, "little").replace(b"\n", b"")
    return _pick(rng, (b"", b"\t", b" ", b"#", b"# a comment", b"\r", b"##", b"  #", b"\xff\xfe"))


# ---- Lines of each file ------------------------------------------------------------------------

Words = Sequence[Sequence[bytes]]

# The parts of a line: one of each is taken, in this order.
INDENTS = (b"", b"", b"", b"\t", b"  ", b"#", b"#\t", b" #", b"##", b"\t# ")
INTERFACES_LINES: Sequence[Words] = (
    ((b"iface ", b"iface ", b"iface ", b"iface\t", b" iface ", b"#iface "), (b"eth0", b"eth1", b"lo", b"eth01"),
     (b" inet ", b" inet ", b" inet ", b"  inet ", b" inet6 ", b" inet"),
     (b"static", b"dhcp", b"static # fixed", b"dhcp6", b"manual", b"loopback", b"", b" dhcp", b"static1")),
    (INDENTS, (b"address ", b"netmask ", b"gateway ", b"hwaddress ether ", b"address\t", b"gateway", b"broadcast ",
               b"up route add default gateway ", b"address  "), ADDRESSES),
    ((b"auto ", b"allow-hotplug ", b"ifacex ", b"source "), (b"eth0", b"eth1", b"lo eth0")),
)
DHCP_LINES: Sequence[Words] = (
    (INDENTS, (b"interface ", b"interface ", b"interface\t", b"interfaces ", b"interface"),
     (b'"eth0"', b'"eth1"', b'"eth01"', b"eth0", b'"wlan0"'), (b" {", b" {", b"{", b" { }", b" { request a; }")),
    (INDENTS, (b"request ", b"request ", b"request", b"requests ", b"also request "),
     (b"subnet-mask", b"ntp-servers", b"domain-name-servers", b"routers", b""),
     (b", ", b",", b" ", b"", b" ,"), (b"ntp-servers", b"domain-name-servers", b"broadcast-address", b""),
     (b", ", b",", b" , ", b"", b"\t"), (b"routers", b"ntp-servers", b"domain-name-servers", b"a1", b""),
     (b";", b";", b",", b"; # all", b" ;", b"")),
    (INDENTS, (b"ntp-servers", b"domain-name-servers", b"host-name", b"x-ntp-servers", b"domain-name-servers2"),
     (b";", b",", b" ;", b"")),
    (INDENTS, (b"}", b"}", b"};", b"} # end", b"x}", b"}x")),
    (INDENTS, (b'send host-name "velk";', b"timeout 60;", b"retry 1", b"option x code 9;", b"script interface;")),
)
SCRIPT_LINES: Sequence[Words] = (
    (INDENTS, (b"if ", b"if ", b"elif ", b"if[", b"if\t"),
     (b'[ "$interface" = ', b'[ "$interface" != ', b"[ $interface = ", b'[ "$reason" = ', b"[ interface = "),
     (b"eth0", b'"eth0"', b"eth1", b'"eth1"', b"eth01", b"BOUND"),
     (b" ]; then", b" ]; then", b" ]", b" ];then", b" ] ; then #", b" ]; then fi", b" ]; then /usr/bin/ntpdate; fi")),
    (INDENTS, (b"then", b"else", b"fi", b"fi", b"fi;", b"else #", b"then :", b"fin", b"else if", b"; then fi")),
    (INDENTS, (b"", b"", b"[ x ] || ", b"[ x ]||", b": # ", b"x,", b"case a in # "),
     (hooks.APIPA, hooks.NTPDATE, *hooks.NOTICES, b"make_resolv_conf", b"make_resolv_conf()", b"/bin/true"),
     (b"", b" -wD eth0", b";", b",", b"# off", b"x", b" # later", b"\t-k")),
)
CRONTAB_LINES: Sequence[Words] = (
    ((b"", b"", b"#", b"##", b"# ", b" #"), (b"0 * * * * ", b"30 3 * * 1 ", b"", b"@daily "),
     (b"/usr/bin/ntpdate", b"ntpdate", b"/usr/bin/ntpdate2", b"sntpdate", b"#ntpdate", b"x # ntpdate", b"ntpdat"),
     (b" ", b" -u ", b"  ", b" -t 4 ", b"", b" -u\t", b" -b -u "), ADDRESSES,
     (b" > /var/libvelk/ntp.log", b" > /var/libvelk/ntp.log", b">/tmp/x", b"", b" >> x", b" 2> x", b" # > x",
      b"  > l")),
    ((b"", b"", b"#", b"# "), (b"00 ", b"5 ", b"30 ", b"", b"*/5 ", b"\t"), (b"3 ", b"08 ", b"*/6 ", b"*/x ", b"*/300 ",
     b"*/9999999999 ", b" ", b"*/ 4 ", b"* "), (b"* ", b"* ", b"31 ", b"1,29 ", b"x ", b"", b"*\t", b"1-5 ",
     b"99999999999999999999 ", b"3000000000 "),
     (b"* ", b"* ", b"1,4-12 ", b"3 ", b""), (b"* ", b"* ", b"0 ", b"6 ", b"sun ", b"-3 ", b"+2 ", b"257 "),
     (b"perl /usr/bin/web_contents_updater.pl", b"web_contents_updater", b"web_contents_update")),
    ((b"0 4 * * * ", b"# ", b""), (b"/usr/sbin/logrotate", b"run-parts /etc", b"MAILTO=root")),
)
IDENTITY_LINES: Sequence[Words] = (
    ((b"", b"", b"", b" ", b"#", b"X"), (b"ADMINISTRATOR=", b"LOCATION=", b"ADMINISTRATOR", b"location=",
     b"LOCATION ="),
     (b"Robin", b"Lab 3", b"", b"a=b", b"O'Neil & Co", b"\xc3\xbcb\xff", b" x ", b"LOCATION=ADMINISTRATOR=")),
    ((b"MODEL=9", b"[x]", b""),),
)
RESOLVER_LINES: Sequence[Words] = (
    ((b"", b"", b"", b"", b"#", b" "), (b"nameserver", b"nameserver", b"nameservers", b"nameserve", b"Nameserver"),
     (b" ", b" ", b"\t", b"  ", b"", b"\x0b", b"\r"), ADDRESSES, (b"", b"", b" ", b" # x", b"\r")),
    ((b"# servers", b"domain-needed", b"server=/local/10.0.0.1"),),
)
NTP_LOG_LINES: Sequence[Words] = (
    ((b"21 Nov 10:00:00 ntpdate[99]: ", b"21 Nov 10:0", b"21 Nov 10:", b"", b"12345678901", b"1234567890"),
     (b"adjust ", b"step ", b"no ", b"", b""),
     (b"time server", b"time server 192.168.0.1 offset 0.1 sec", b"server suitable", b"Time server", b"time  server")),
)
ROUTE_LINES: Sequence[Words] = (
    ((b"eth0\t", b"eth1\t", b"eth0:1\t", b"lo\t", b"eth01 "), (b"00000000\t", b"00000000\t", b"0000A8C0\t", b"0\t"),
     (b"0100A8C0\t", b"fe00a8c0\t", b"00000000\t", b"1\t", b"FFFFFFFF\t", b"0x100A8C0\t", b"-1\t", b"+1\t",
      b"000000000100A8C0\t"), (b"0003\t0\t0\t0\t00000000",)),
    ((b"Iface\tDestination\tGateway \tFlags",),),
)
IFCONFIG_LINES: Sequence[Words] = (
    ((b"eth0", b"eth1", b"lo", b"eth0:1", b"wlan0"), (b"      Link encap:Ethernet", b" inet addr:9.9.9.9", b"")),
    ((b"          ", b"  ", b"\t", b""), (b"inet addr:", b"inet6 addr: ", b"addr:"), ADDRESSES[:8],
     (b"  Bcast:1.2.3.4  ", b" ", b""), (b"Mask:", b"mask:", b""), ADDRESSES[:8]),
    ((b"", b"          UP RUNNING"),),
)
ETHTOOL_LINES: Sequence[Words] = (
    ((b"\t", b"", b" "), (b"Speed: ",), (b"100Mb/s", b"10Mb/s", b"1000Mb/s", b"Unknown!", b"100M Speed: 10M")),
    ((b"\t",), (b"Duplex: ", b"duplex: "), (b"Full", b"Half", b"Unknown")),
    ((b"\t",), (b"Auto-negotiation: ", b"Supports auto-negotiation: "), (b"on", b"off", b"On")),
    ((b"\t",), (b"Link detected: ",), (b"yes", b"no", b"yes Link detected: no", b"Yes")),
)
LINK_LOG_LINES: Sequence[Words] = (
    ((b"kern: ", b""), (b"eth0: link ", b"eth0: link ", b"eth1: link ", b"eth0 link "),
     (b"up", b"down", b"up, was link down", b"is not ready")),
)
ADAPTER_LINES: Sequence[Words] = (
    ((b"VID=", b"PID=", b" VID=", b"PID=VID=", b"#PID="), (b"1a2b", b"3c4d", b"A2B", b"", b"zz", b"0x1A2B", b"12345")),
)
USB_LINES: Sequence[Words] = (
    ((b"P:  ", b""), (b"Vendor=1a2b ", b"Vendor=0a2b ", b"Vendor=0000 ", b"Vendor=3c4d "),
     (b"ProdID=3c4d", b"ProdID=1a2b", b"ProdID=0000", b"ProdID=0a2b"), (b" Rev= 1.01", b"")),
    ((b"S:  Product=", b""), (b"QT4408RKM", b"QT4408", b"Hub")),
)

INTERFACES_FORM = (b"auto lo\niface lo inet loopback\n\nauto eth0\niface eth0 inet static\n\taddress 192.168.0.10\n"
                   b"\tnetmask 255.255.255.0\n\tgateway 192.168.0.1\n\nauto eth1\niface eth1 inet dhcp\n")
DHCP_FORM = (b'interface "eth0" {\n\tsend dhcp-client-identifier "velk-wired";\n\trequest subnet-mask, routers,\n'
             b'\t\tntp-servers, domain-name-servers;\n}\n#interface "eth1" {\n#\trequest subnet-mask;\n#}\n'
             b"request subnet-mask, routers;\ntimeout 60;\n")
HOOKS_FORM = (b'if [ "$interface" = "eth0" ]; then\n\t:\n\t/usr/sbin/avahi-autoipd -wD eth0\n'
              b"#\t/sbin/printdhcpnotice.pl eth0\n\t/sbin/printdhcpstart.pl eth0\nelse\n"
              b"#\t/usr/sbin/avahi-autoipd -wD eth1\nfi\n/usr/bin/ntpdate -u $new_ntp_servers\n")
SCRIPT_FORM = (b'make_resolv_conf() {\n\ttrue\n}\nif [ "$interface" = "eth0" ]; then\n\tmake_resolv_conf\nelse\n'
               b"#\tmake_resolv_conf\nfi\nmake_resolv_conf\n")
CRONTAB_FORM = (b"0 * * * * /usr/bin/ntpdate -u 192.168.0.1 > /var/libvelk/ntp.log\n"
                b"30 01 * * 0 perl /usr/bin/web_contents_updater.pl\n0 4 * * * logrotate\n")

FORMS: Dict[str, Tuple[Sequence[Words], bytes]] = {
    interfaces.PATH: (INTERFACES_LINES, INTERFACES_FORM),
    dhcp.PATH: (DHCP_LINES, DHCP_FORM),
    hooks.HOOKS: (SCRIPT_LINES, HOOKS_FORM),
    hooks.SCRIPT: (SCRIPT_LINES, SCRIPT_FORM),
    crontab.PATH: (CRONTAB_LINES, CRONTAB_FORM),
    crontab.RESULT_LOG: (NTP_LOG_LINES,
                         b"21 Nov 10:00:00 ntpdate[99]: adjust time server 192.168.0.1 offset 0.1 sec\n"),
    identity.PATH: (IDENTITY_LINES, b"ADMINISTRATOR=Robin\nLOCATION=Lab\n"),
    resolver.PATH: (RESOLVER_LINES, b"nameserver 192.168.0.1\nnameserver 192.168.0.2\n"),
    live.ROUTES: (ROUTE_LINES, b"Iface\tDestination\tGateway\neth0\t00000000\t0100A8C0\t0003\n"),
    live.ADAPTERS: (ADAPTER_LINES, b"VID=1a2b\nPID=3c4d\nPID=0e5f\n"),
    live.USB_DEVICES: (USB_LINES, b"P:  Vendor=1a2b ProdID=3c4d Rev= 1.01\n"),
    live.LINK_LOG + "0": (LINK_LOG_LINES, b"kern: eth0: link up\n"),
    live.LINK_LOG + "1": (LINK_LOG_LINES, b"kern: eth0: link down\n"),
}
TOOLS: Dict[bytes, Tuple[Sequence[Words], bytes]] = {
    b"ifconfig": (IFCONFIG_LINES, b"eth0      Link encap:Ethernet\n          inet addr:192.168.0.10  "
                                  b"Bcast:192.168.0.255  Mask:255.255.255.0\n\nlo        Link encap:Local Loopback\n"),
    b"sudo /usr/sbin/ethtool eth0": (ETHTOOL_LINES, b"Settings for eth0:\n\tLink detected: no\n"),
    b"sudo ethtool eth0": (ETHTOOL_LINES, b"Settings for eth0:\n\tSpeed: 100Mb/s\n\tDuplex: Full\n"
                                          b"\tAuto-negotiation: off\n\tLink detected: yes\n"),
}

LONG_LINE_ONE_IN = 1000

# The files that a command reads or edits.
LIVE_FILES = (interfaces.PATH, live.ROUTES, live.ADAPTERS, live.USB_DEVICES, live.LINK_LOG + "0", live.LINK_LOG + "1")
FILES_OF: Dict[int, Tuple[str, ...]] = {
    2: (identity.PATH,), 3: (identity.PATH,), 6: (crontab.PATH, crontab.RESULT_LOG), 7: (dhcp.PATH, hooks.HOOKS),
    9: (crontab.PATH,), 10: (crontab.RESULT_LOG,), 11: (crontab.PATH,), 101: LIVE_FILES[2:],
    102: (interfaces.PATH, dhcp.PATH), 103: (hooks.HOOKS,), 104: LIVE_FILES, 105: LIVE_FILES, 106: LIVE_FILES,
    107: (dhcp.PATH, hooks.SCRIPT), 108: (resolver.PATH,), 109: (hooks.HOOKS,), 201: (),
    **{number: LIVE_FILES[2:] for number in (1, *STATE)},
}
LINK_COMMANDS = (1, 101, 104, 105, 106, 201, *STATE)
DAEMON_COMMANDS = (1, *CONFIGURATION, *STATE)
GET_ROWS = [(number, row[0]) for number, row in GETTERS.items()]
SET_ROWS = [(number, row[0]) for number, row in SETTERS.items()]
RESTART_ROWS = [(number, row[0]) for number, row in RESTARTS.items()]
EDITED = (interfaces.PATH, dhcp.PATH, hooks.HOOKS, hooks.SCRIPT, crontab.PATH, identity.PATH)


# The largest usual value of each number in the configuration.
CONFIGURATION_NUMBERS = {wireless.SSID: 32, wireless.SERVICE_SET: 1, wireless.STANDARDS: 1, wireless.CHANNEL: 13,
                         wireless.AUTHENTICATION: 3, wireless.ENCRYPTION: 3, wireless.DEFAULT_KEY: 4, wireless.PSK: 64}


def _line(rng: Random, kinds: Sequence[Words]) -> bytes:
    words = kinds[int(rng.random() * len(kinds))]
    return b"".join([_pick(rng, options) for options in words])


def _change(rng: Random, parts: List[bytes], kinds: Sequence[Words]) -> None:
    at = int(rng.random() * (len(parts) + 1))
    kind = int(rng.random() * 12)
    if kind < 5 or not parts:
        parts.insert(at, _line(rng, kinds))
    elif kind == 5:
        parts.insert(at, _odd_text(rng).replace(b"\n", b""))
    else:
        at = min(at, len(parts) - 1)
        if kind == 6:
            parts.insert(int(rng.random() * len(parts)), parts[at])
        elif kind == 7:
            del parts[at]
        elif kind == 8:
            parts[at] = _pick(rng, (b"#", b"# ", b"\t", b" ")) + parts[at]
        elif kind == 9:
            parts[at] += _odd_text(rng).replace(b"\n", b"")
        elif kind == 10:
            cut = int(rng.random() * (len(parts[at]) + 1))
            parts[at] = parts[at][:cut] + _odd_text(rng).replace(b"\n", b"") + parts[at][cut:]
        else:
            cut = int(rng.random() * (len(parts[at]) + 1))
            parts[at] = parts[at][:cut] + parts[at][cut + 1 :]


def _text(rng: Random, form: Tuple[Sequence[Words], bytes]) -> bytes:
    kinds, usual = form
    kind = int(rng.random() * 10)
    if kind == 0:
        return b"" if _one_in(rng, 8) else usual
    if kind < 5:
        parts = [_line(rng, kinds) for _ in range(int(rng.random() * 10))]
    else:
        parts = usual.split(b"\n")[:-1]
    for _ in range(int(rng.random() * 5)):
        _change(rng, parts, kinds)
    if _one_in(rng, LONG_LINE_ONE_IN):
        size = (4095, 4096, 16384, 65535, 65536, 65537, 70000, 140000)[int(rng.random() * 8)]
        at = int(rng.random() * (len(parts) + 1))
        parts.insert(at, (_line(rng, kinds) + b" ").ljust(size, b"x"))
    text = b"".join([part + b"\n" for part in parts])
    return text[:-1] if _one_in(rng, 6) else text


# ---- Requests ----------------------------------------------------------------------------------


def _data_text(rng: Random, text: bytes) -> bytes:
    """A text in a data area; bytes after it are not looked at."""
    rest = b"\0" if not _one_in(rng, 8) else b"\0" + _odd_text(rng)
    return (text + rest)[:DATA_SIZE].ljust(DATA_SIZE, b"\0")


def _value(rng: Random) -> bytes:
    kind = int(rng.random() * 20)
    if kind < 14:
        return _pick(rng, ADDRESSES)
    if kind == 14:
        return b""
    if kind == 15:
        return b"x" * (DATA_SIZE - 2 + int(rng.random() * 3))
    if kind == 16:
        return b"a\n" + _pick(rng, ADDRESSES)
    if kind == 17:
        return _pick(rng, (b"O'Neil & Co/IT", b"\\1", b'"', b"'; rm -rf /'", b"$(x)", b"ADMINISTRATOR=", b"syscontact"))
    return _odd_text(rng)


def _byte(rng: Random, usual: Tuple[int, ...]) -> bytes:
    value = usual[int(rng.random() * len(usual))] if not _one_in(rng, 10) else int(rng.random() * 256)
    return _data_text(rng, bytes([value]))


def _servers(rng: Random) -> bytes:
    slots = b"".join([_pick(rng, ADDRESSES)[:16].ljust(16, b"\0") for _ in range(3)])
    return slots.ljust(DATA_SIZE, b"\0" if not _one_in(rng, 8) else b"\xa5")


def _schedule(rng: Random) -> bytes:
    kind = (1, 2, 3, 4, 4, 4, 99, 0, 5, int(rng.random() * 256))[int(rng.random() * 10)]
    value = (1, 7, 28, 29, 30, 31, 32, 0, 99, int(rng.random() * 256))[int(rng.random() * 10)]
    time = _pick(rng, (b"08:30", b"23:59", b"3:05", b"12:00", b"0:0") if rng.random() < 0.6 else
                 (b"1:05", b"00:00", b"99999:0", b"12:3a", b":", b"12", b"12:", b":30", b"1:2:3", b"-1:3",
                       b" 8:30", b"", b"8" * 200 + b":" + b"9" * 309, b"8:30\n"))
    return _data_text(rng, bytes([kind, value]) + time)


def _usual_data(rng: Random, number: int) -> bytes:
    if number in (2, 3, 9, 104, 105, 106):
        return _data_text(rng, _value(rng))
    if number == 108:
        return _servers(rng)
    if number == 11:
        return _schedule(rng)
    if number in (303, 308, 309, 310, 311, 314):
        length = (0, 1, 5, 6, 10, 13, 26, 27, 28, 32, 33, 64, 65)[int(rng.random() * 13)]
        return _data_text(rng, _pick(rng, (b"a", b"k", b"\xff")) * length)
    if number in CONFIGURATION:
        return _data_text(rng, bytes([int(rng.random() * (15 if number in (304, 312) else 6))]))
    return _byte(rng, (1, 2, 3, 4, 5) if number == 201 else (1, 2))


def _request(rng: Random) -> Request:
    kind, rows = ((SET, SET_ROWS), (GET, GET_ROWS), (RESTART, RESTART_ROWS))[min(int(rng.random() * 2.05), 2)]
    number, names = rows[int(rng.random() * len(rows))]
    name = NAMES[int(rng.random() * 2)] if len(names) == 2 else names[0]
    if _one_in(rng, 40):
        name = _pick(rng, ODD_NAMES)
    if _one_in(rng, 80):
        number = (0, 8, 12, 100, 110, 200, 313, 319, 0xFFFFFFFF)[int(rng.random() * 9)]
    if _one_in(rng, 80):
        kind = (0, 4, 0x7FFFFFFF, 0xFFFFFFFF, GET, SET)[int(rng.random() * 6)]
    return Request(name[:16].ljust(16, b"\0"), kind, number, _usual_data(rng, number))


def _add_file(rng: Random, files: Dict[str, File], path: str) -> None:
    if _one_in(rng, 30):
        return
    mode = (0o644, 0o644, 0o755, 0o600, 0o664)[int(rng.random() * 5)]
    if _one_in(rng, 150):
        files[path] = File(b"", 0, is_folder=True)
    else:
        files[path] = File(_text(rng, FORMS[path]), mode)


def _record(rng: Random, texts: Dict[int, bytes], numbers: Dict[int, int]) -> bytes:
    """A record of the daemon with these bytes and small numbers at their offsets, seldom cut or too long."""
    record = bytearray(wireless.BODY_SIZE)
    if _one_in(rng, 6):
        record = bytearray(rng.getrandbits(8 * wireless.BODY_SIZE).to_bytes(wireless.BODY_SIZE, "little"))
    for offset, text in texts.items():
        record[offset : offset + len(text)] = text
    for offset, last in numbers.items():
        value = int(rng.random() * (last + 2)) if not _one_in(rng, 12) else int(rng.random() * 65536)
        struct.pack_into("=H", record, offset, value)
    if _one_in(rng, 30):
        return bytes(record[: int(rng.random() * len(record))])
    return bytes(record) + b"more" if _one_in(rng, 60) else bytes(record)


def _add_daemon(rng: Random, scene: Scene) -> None:
    scene.daemon = 0 if _one_in(rng, 12) else 2 if _one_in(rng, 30) else 1
    keys = {wireless.KEYS + wireless.KEY_SIZE * key: 28 for key in range(4)}
    secrets = {2: b"velk-lab" * 4, 170: b"a new key of the desk" * 3, **{offset + 2: b"k" * 28 for offset in keys}}
    scene.configuration = _record(rng, secrets, {**CONFIGURATION_NUMBERS, **keys})
    product = _pick(rng, (b"P:  Vendor=1a2b ProdID=3c4d Rev= 1.01", b"Rev= ", b"Rev=1", b"Rev= Rev= 2\0Rev= 3",
                          b"x" * 64,
                          b"P:  Vendor=1a2b ProdID=3c4d Rev= 1.01 with a text of all 64 bytes."[:64]))
    version = _pick(rng, (b"2.4.1", b"", b"v" * 32, b"\xff\0x"))
    address = rng.getrandbits(112).to_bytes(14, "little")
    scene.state = _record(rng, {0: product, 64: version, 142: address[:6], 156: address[6:]}, {96: 2, 152: 2})
    if _one_in(rng, 20):
        scene.files[wireless.REPLY_PATH] = File(b"of an earlier call\n")


def _scene(rng: Random, request: Request) -> Scene:
    scene = Scene({})
    paths = FILES_OF.get(request.id, ())
    for path in paths:
        _add_file(rng, scene.files, path)
    for path in EDITED:
        if path not in scene.files and path not in paths and _one_in(rng, 10):
            scene.files[path] = File(FORMS[path][1])
    for path in paths:
        if path in EDITED and _one_in(rng, 15):
            scene.files[copy_of(path)] = File(b"old\n", 0o600) if rng.random() < 0.7 else File(b"", 0, is_folder=True)
    if _one_in(rng, 2):
        scene.files[LOCK] = File(b"", 0o666) if not _one_in(rng, 60) else File(b"", 0, is_folder=True)
    if _one_in(rng, 20):
        scene.files["/tmp/oldIPAddress"] = File(b"x\n")
    if request.id in DAEMON_COMMANDS:
        _add_daemon(rng, scene)
    if request.id in LINK_COMMANDS:
        for tool, form in TOOLS.items():
            if not _one_in(rng, 60):
                scene.outputs[tool] = [_text(rng, form) for _ in range(1 + int(rng.random() * 2))]
        if _one_in(rng, 10):
            scene.files[RESULT] = File(b"of an earlier run\n", 0o600)
    elif _one_in(rng, 20):
        scene.cut = int(rng.random() * 300)
    return scene


def make_pair(seed: str, number: int) -> Pair:
    rng = random.Random(f"{seed}:{number}")
    request = _request(rng)
    return Pair(_scene(rng, request), request)

