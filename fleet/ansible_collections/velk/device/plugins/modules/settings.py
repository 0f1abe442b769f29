# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The documentation of velk.device.settings; the action plugin of this name does the work."""

# Written by fleet/generate.

DOCUMENTATION = r"""
module: settings
short_description: Change settings of a device as one change
version_added: 1.0.0
description:
  - Applies settings with one run of C(velkctl apply), which gets them on its standard input. No key is in an
    argument list, and keys are masked in all output.
  - Names and types are checked before anything is sent. The device checks all values before it changes anything.
  - Only settings with another value on the device are set. If a step fails, the device puts everything back.
  - A value of C(true) or C(false) means C(on) or C(off), because YAML reads these two words so. A text of digits
    means a number where the setting is one.
options:
  settings:
    description: Values by the names of the settings. A setting that is not named keeps its value.
    type: dict
    required: true
    suboptions:
      administrator:
        description:
        - 'Name of the administrator: a text, '''' if empty.'
        - Accepted is a text of at most 511 bytes.
        - Takes effect at once.
        type: str
      location:
        description:
        - 'Location of the device: a text, '''' if empty.'
        - Accepted is a text of at most 511 bytes.
        - Takes effect at once.
        type: str
      ntp:
        description:
        - 'Set the clock from a time server: on or off.'
        - Accepted is on or off.
        - Takes effect at the next run of cron.
        type: str
      dhcp-ntp:
        description:
        - 'Take time servers from DHCP: on or off.'
        - Accepted is on or off.
        - Takes effect at the next restart of eth0 or eth1, off at the next lease.
        type: str
      ntp-server:
        description:
        - 'Time server: a host name or address, or none.'
        - Accepted is a host name or address such as 192.168.0.1, or none.
        - Takes effect at the next run of cron, once ntp is on.
        type: str
      web-update:
        description:
        - Schedule of the web update.
        - Accepted is every 6h, daily 08:30, weekly sunday 08:30, monthly 31 08:30 or off.
        - Takes effect at the next run of cron.
        type: str
      eth0.method:
        description:
        - 'Where the address comes from: static or dhcp.'
        - Accepted is static or dhcp.
        - Takes effect at the next restart of eth0.
        type: str
      eth0.apipa:
        description:
        - 'Link-local address if DHCP fails: on or off.'
        - Accepted is on or off.
        - Takes effect at the next lease or restart of eth0.
        type: str
      eth0.address:
        description:
        - IPv4 address; with dhcp that of the lease.
        - Accepted is an IPv4 address such as 192.168.0.10.
        - Takes effect at the next restart of eth0, with method static.
        type: str
      eth0.netmask:
        description:
        - IPv4 mask; with dhcp that of the lease.
        - Accepted is an IPv4 mask such as 255.255.255.0.
        - Takes effect at the next restart of eth0, with method static.
        type: str
      eth0.gateway:
        description:
        - 'Default gateway: an IPv4 address, or none.'
        - Accepted is an IPv4 address such as 192.168.0.1, or none.
        - Takes effect at the next restart of eth0, with method static.
        type: str
      eth0.dhcp-dns:
        description:
        - 'Take DNS servers from DHCP: on or off.'
        - Accepted is on or off.
        - Takes effect at the next restart of eth0, off at the next lease.
        type: str
      eth0.dns:
        description:
        - 'DNS servers of eth0 and eth1: up to three.'
        - Accepted is one to three IPv4 addresses such as 192.168.0.1, or none.
        - Takes effect when the DNS forwarder reads its file again.
        type: list
        elements: str
      eth0.dhcp-notice:
        description:
        - 'Print notices of the DHCP client: on or off.'
        - Accepted is on or off.
        - Takes effect at the next lease or restart of eth0.
        type: str
      eth0.link-speed:
        description:
        - Speed in Mbit/s and duplex, or auto.
        - Accepted is auto, 100-full, 100-half, 10-full or 10-half.
        - Takes effect at once.
        type: str
      eth1.method:
        description:
        - 'Where the address comes from: static or dhcp.'
        - Accepted is static or dhcp.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: str
      eth1.apipa:
        description:
        - 'Link-local address if DHCP fails: on or off.'
        - Accepted is on or off.
        - Takes effect at the next lease or restart of eth1, without the cable in eth0.
        type: str
      eth1.address:
        description:
        - IPv4 address; with dhcp that of the lease.
        - Accepted is an IPv4 address such as 192.168.0.10.
        - Takes effect at the next restart of eth1, with method static, without the cable in eth0.
        type: str
      eth1.netmask:
        description:
        - IPv4 mask; with dhcp that of the lease.
        - Accepted is an IPv4 mask such as 255.255.255.0.
        - Takes effect at the next restart of eth1, with method static, without the cable in eth0.
        type: str
      eth1.gateway:
        description:
        - 'Default gateway: an IPv4 address, or none.'
        - Accepted is an IPv4 address such as 192.168.0.1, or none.
        - Takes effect at the next restart of eth1, with method static, without the cable in eth0.
        type: str
      eth1.dhcp-dns:
        description:
        - 'Take DNS servers from DHCP: on or off.'
        - Accepted is on or off.
        - Takes effect at the next restart of eth1, without the cable in eth0, off at the next lease.
        type: str
      eth1.dns:
        description:
        - 'DNS servers of eth0 and eth1: up to three.'
        - Accepted is one to three IPv4 addresses such as 192.168.0.1, or none.
        - Takes effect when the DNS forwarder reads its file again.
        type: list
        elements: str
      eth1.service-set:
        description:
        - 'Kind of network: infrastructure or ad-hoc.'
        - Accepted is infrastructure or ad-hoc.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: str
      eth1.ssid:
        description:
        - 'Name of the network: a text, '''' if empty.'
        - Accepted is a text of at most 32 bytes.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: str
      eth1.channel:
        description:
        - 'Channel: 1 to 13.'
        - Accepted is a number from 1 to 13.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: int
      eth1.encryption:
        description:
        - 'Encryption: 1, 2 (wep), 3 or 4.'
        - Accepted is 1, 2 (wep), 3 or 4.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: str
      eth1.authentication:
        description:
        - 'Authentication: 1 to 4.'
        - Accepted is a number from 1 to 4.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: int
      eth1.wep-key-1:
        description:
        - WEP key, or none; secret.
        - Accepted is a text of 5 or 13 bytes, 10 or 26 hex digits, or none.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: str
      eth1.wep-key-2:
        description:
        - WEP key, or none; secret.
        - Accepted is a text of 5 or 13 bytes, 10 or 26 hex digits, or none.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: str
      eth1.wep-key-3:
        description:
        - WEP key, or none; secret.
        - Accepted is a text of 5 or 13 bytes, 10 or 26 hex digits, or none.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: str
      eth1.wep-key-4:
        description:
        - WEP key, or none; secret.
        - Accepted is a text of 5 or 13 bytes, 10 or 26 hex digits, or none.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: str
      eth1.wep-default-key:
        description:
        - 'Number of the WEP key in use: 1 to 4.'
        - Accepted is a number from 1 to 4.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: int
      eth1.psk:
        description:
        - Pre-shared key, or none; secret.
        - Accepted is a text of 1 to 64 bytes, or none.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: str
      eth1.standards-enabled:
        description:
        - '802.11 standards to use: 2 or 3.'
        - Accepted is 2 or 3.
        - Takes effect at the next restart of eth1, without the cable in eth0.
        type: int
  confirm_within:
    description:
      - Let the device put the change back unless M(velk.device.confirm) keeps it within this number of seconds.
      - Use it for each change of an address, netmask, gateway or method.
    type: int
  restart:
    description:
      - The interfaces to restart after the settings are set. C(auto) restarts those of settings that take
        effect at a restart, C(never) none. C(eth0), C(eth1) or C(eth0,eth1) names them.
    type: str
    default: auto
extends_documentation_fragment:
  - velk.device.velkctl
  - velk.device.velkctl.times
author:
  - The libvelk authors (@libvelk)
"""

EXAMPLES = r"""
- name: Set the time server
  velk.device.settings:
    settings:
      ntp: "on"
      ntp-server: time.example

- name: Move the device to another address
  velk.device.settings:
    settings:
      eth0.address: 192.168.7.10
      eth0.gateway: 192.168.7.1
    confirm_within: 300
  register: change

- name: Set the key of the wireless network
  velk.device.settings:
    settings:
      eth1.psk: "{{ vault_psk }}"
"""

RETURN = r"""
changes:
  description: The settings with another value, each with name, old and new. Keys are masked.
  returned: if the device has answered
  type: list
  elements: dict
not_applied:
  description: Addresses that are not applied, because the interface gets them from DHCP.
  returned: if the device has answered
  type: list
  elements: str
restarts:
  description: The interfaces that were restarted.
  returned: not in check mode
  type: list
  elements: dict
id:
  description: The change in the journal of the device.
  returned: not in check mode
  type: str
state:
  description: The state of the change, C(waiting) if it has to be confirmed.
  returned: not in check mode
  type: str
connection_lost:
  description: True if the connection ended before the answer, after a change of the address.
  returned: if it ended so
  type: bool
notes:
  description: Information of velkctl for people.
  returned: if the device has answered
  type: list
  elements: str
errors:
  description: The errors of velkctl, each with message, detail, cause, remedy, setting and result.
  returned: if the task fails
  type: list
  elements: dict
status:
  description: The exit status of velkctl.
  returned: if the task fails on the device
  type: int
"""
