# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Connections to a device that changes its address."""

# A device that has left its address answers nothing, and ssh would wait for a quarter of an hour. It gives up after
# this number of seconds. A restart of the interfaces may be silent for three minutes.
PATIENCE = 210
PATIENCE_FOR_ADDRESS = 15
SECONDS_BETWEEN = 5


def _is_ssh(connection):
    return connection.transport in ("ssh", "ansible.builtin.ssh")


def _alive_options(seconds):
    count = seconds // SECONDS_BETWEEN
    return f"-o ServerAliveInterval={SECONDS_BETWEEN} -o ServerAliveCountMax={count}"


def limit_silence(connection, seconds=PATIENCE):
    """Makes ssh give up a connection that is silent for so long. Options of the user come first, so they count."""
    if not _is_ssh(connection):
        return
    options = connection.get_option("ssh_extra_args") or ""
    for others in PATIENCE, PATIENCE_FOR_ADDRESS:
        options = options.replace(_alive_options(others), "")
    connection.set_option("ssh_extra_args", f"{options.strip()} {_alive_options(seconds)}".strip())


def connect_anew(connection, address=None):
    """Ends the connection, so that the next one meets the device at an address, and gives up early."""
    limit_silence(connection, PATIENCE_FOR_ADDRESS)
    if _is_ssh(connection):
        connection.reset()
    if address:
        connection.set_option("host", address)
