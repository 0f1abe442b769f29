# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The documentation that all modules of the collection share."""


class ModuleDocFragment:
    DOCUMENTATION = r"""
options: {}
requirements:
  - On the device, C(velkctl) of the package C(velk-tools), and a shell. Neither Python nor sftp.
notes:
  - Runs C(velkctl) on the device over the connection of the task, as its user. Plays need C(gather_facts=false).
  - Set the variable C(velk_device_program) to the path of C(velkctl) if it is in no folder of the search path.
"""

    TIMES = r"""
options:
  wait:
    description:
      - Try again for this number of seconds while another program changes settings of the device.
      - Without it, the task fails at once if the device is locked.
    type: int
  timeout:
    description: Fail if a command gets no answer within this number of seconds.
    type: int
"""
