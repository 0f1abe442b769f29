# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Connections to a device that changes its address."""

# A device that has left its address answers nothing. Without these options ssh would wait for minutes.
ALIVE_OPTIONS = "-o ServerAliveInterval=5 -o ServerAliveCountMax=3 -o ConnectTimeout=10"


def is_ssh(connection):
    return connection.transport in ("ssh", "ansible.builtin.ssh")


def end_dead_connections(connection):
    """Makes ssh notice a dead connection within 15 seconds, from now on."""
    if not is_ssh(connection):
        return
    options = connection.get_option("ssh_extra_args") or ""
    if ALIVE_OPTIONS not in options:
        connection.set_option("ssh_extra_args", f"{options} {ALIVE_OPTIONS}".strip())
    connection.reset()


def use_address(connection, address):
    """Makes the connection meet the device at an address. Does nothing without one."""
    end_dead_connections(connection)
    if address:
        connection.set_option("host", address)
