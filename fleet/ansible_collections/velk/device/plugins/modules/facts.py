# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The documentation of velk.device.facts; the action plugin of this name does the work."""

# Written by fleet/generate.

DOCUMENTATION = r"""
module: facts
short_description: Read all values of a device, and the state of its interfaces
version_added: 1.0.0
description:
  - Runs C(velkctl show) and C(velkctl status). Changes nothing. Keys are masked.
options:
  timeout:
    description: Fail if a command gets no answer within this number of seconds.
    type: int
extends_documentation_fragment:
  - velk.device.velkctl
author:
  - The libvelk authors (@libvelk)
"""

EXAMPLES = r"""
- name: Read the device
  velk.device.facts:

- name: Print its time server
  ansible.builtin.debug:
    msg: "{{ ansible_facts.velk.settings['ntp-server'] }}"
"""

RETURN = r"""
ansible_facts:
  description: The facts of the device.
  returned: always
  type: dict
  contains:
    velk:
      description: All that velkctl knows of the device.
      returned: always
      type: dict
      contains:
        settings:
          description: The values by the names of the settings.
          returned: always
          type: dict
          contains:
            administrator:
              description:
              - 'Name of the administrator: a text, '''' if empty.'
              type: str
              returned: if it can be read
            location:
              description:
              - 'Location of the device: a text, '''' if empty.'
              type: str
              returned: if it can be read
            ntp:
              description:
              - 'Set the clock from a time server: on or off.'
              type: str
              returned: if it can be read
            dhcp-ntp:
              description:
              - 'Take time servers from DHCP: on or off.'
              type: str
              returned: if it can be read
            ntp-server:
              description:
              - 'Time server: a host name or address, or none.'
              type: str
              returned: if it can be read
            ntp-result:
              description:
              - Result of the last time synchronisation.
              type: raw
              returned: if it can be read
            web-update:
              description:
              - Schedule of the web update.
              type: str
              returned: if it can be read
            eth0.mac-address:
              description:
              - 'Hardware address: 6 bytes in hex.'
              type: raw
              returned: if it can be read
            eth0.method:
              description:
              - 'Where the address comes from: static or dhcp.'
              type: str
              returned: if it can be read
            eth0.apipa:
              description:
              - 'Link-local address if DHCP fails: on or off.'
              type: str
              returned: if it can be read
            eth0.address:
              description:
              - IPv4 address; with dhcp that of the lease.
              type: str
              returned: if it can be read
            eth0.netmask:
              description:
              - IPv4 mask; with dhcp that of the lease.
              type: str
              returned: if it can be read
            eth0.gateway:
              description:
              - 'Default gateway: an IPv4 address, or none.'
              type: str
              returned: if it can be read
            eth0.dhcp-dns:
              description:
              - 'Take DNS servers from DHCP: on or off.'
              type: str
              returned: if it can be read
            eth0.dns:
              description:
              - 'DNS servers of eth0 and eth1: up to three.'
              type: list
              returned: if it can be read
            eth0.dhcp-notice:
              description:
              - 'Print notices of the DHCP client: on or off.'
              type: str
              returned: if it can be read
            eth0.link-speed:
              description:
              - Speed in Mbit/s and duplex, or auto.
              type: str
              returned: if it can be read
            eth1.mac-address:
              description:
              - 'Hardware address: 6 bytes in hex.'
              type: raw
              returned: if it can be read
            eth1.method:
              description:
              - 'Where the address comes from: static or dhcp.'
              type: str
              returned: if it can be read
            eth1.apipa:
              description:
              - 'Link-local address if DHCP fails: on or off.'
              type: str
              returned: if it can be read
            eth1.address:
              description:
              - IPv4 address; with dhcp that of the lease.
              type: str
              returned: if it can be read
            eth1.netmask:
              description:
              - IPv4 mask; with dhcp that of the lease.
              type: str
              returned: if it can be read
            eth1.gateway:
              description:
              - 'Default gateway: an IPv4 address, or none.'
              type: str
              returned: if it can be read
            eth1.dhcp-dns:
              description:
              - 'Take DNS servers from DHCP: on or off.'
              type: str
              returned: if it can be read
            eth1.dns:
              description:
              - 'DNS servers of eth0 and eth1: up to three.'
              type: list
              returned: if it can be read
            eth1.hardware-version:
              description:
              - Revision of the adapter.
              type: raw
              returned: if it can be read
            eth1.software-version:
              description:
              - Version of the wireless daemon.
              type: raw
              returned: if it can be read
            eth1.standard:
              description:
              - '802.11 standard in use: 1 to 3.'
              type: raw
              returned: if it can be read
            eth1.service-set:
              description:
              - 'Kind of network: infrastructure or ad-hoc.'
              type: str
              returned: if it can be read
            eth1.ssid:
              description:
              - 'Name of the network: a text, '''' if empty.'
              type: str
              returned: if it can be read
            eth1.channel:
              description:
              - 'Channel: 1 to 13.'
              type: int
              returned: if it can be read
            eth1.region:
              description:
              - 'Region of the adapter: 1 to 3.'
              type: raw
              returned: if it can be read
            eth1.encryption:
              description:
              - 'Encryption: 1, 2 (wep), 3 or 4.'
              type: str
              returned: if it can be read
            eth1.authentication:
              description:
              - 'Authentication: 1 to 4.'
              type: int
              returned: if it can be read
            eth1.wep-key-1:
              description:
              - WEP key, or none; secret.
              type: str
              returned: if it can be read
            eth1.wep-key-2:
              description:
              - WEP key, or none; secret.
              type: str
              returned: if it can be read
            eth1.wep-key-3:
              description:
              - WEP key, or none; secret.
              type: str
              returned: if it can be read
            eth1.wep-key-4:
              description:
              - WEP key, or none; secret.
              type: str
              returned: if it can be read
            eth1.wep-default-key:
              description:
              - 'Number of the WEP key in use: 1 to 4.'
              type: int
              returned: if it can be read
            eth1.psk:
              description:
              - Pre-shared key, or none; secret.
              type: str
              returned: if it can be read
            eth1.rate:
              description:
              - 'Transmission rate: 4 bytes as 8 hex digits.'
              type: raw
              returned: if it can be read
            eth1.access-point:
              description:
              - 'Address of the access point: 6 bytes in hex.'
              type: raw
              returned: if it can be read
            eth1.signal:
              description:
              - 'Signal strength: two numbers.'
              type: raw
              returned: if it can be read
            eth1.standards-enabled:
              description:
              - '802.11 standards to use: 2 or 3.'
              type: int
              returned: if it can be read
        unread:
          description: The reasons by the names of the settings that could not be read.
          returned: always
          type: dict
        states:
          description: The parts of C(velkctl status), each with configured, running and differs.
          returned: always
          type: dict
        differs:
          description: True if a part does not run as it is configured.
          returned: always
          type: bool
"""
