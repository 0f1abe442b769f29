# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# The usual time of each test in seconds, on an idle machine with two processors and four tests at a time, as
# scripts/test runs them; after a slash that with the address sanitizer, if it is known. A sharded test has one row, and the
# forms of velkctl use the rows of device.velkctl. "limits_test.py --times" compares the rows with the last run.
set(velk_usual_seconds
  abi.c99_client=1 abi.cxx_client=1 abi.python_client=1 abi.syslog_host=1
  abi.forms=1 abi.hardening=2 abi.hardening_self_test=1 abi.installed=1 abi.library_file=1
  c_only.c99_client=1 c_only.edits=1 c_only.fault=80 c_only.file=1 c_only.python_client=1 c_only.reload=1
  c_only.threads=1 c_only.wire=1 c_only.world=45
  changes=130 changes.all=2900
  cost.counts=15
  device.examples=4 device.tour=30
  device.real.addresses=12 device.real.apply=28 device.real.confirm=38 device.real.cron=27
  device.real.dhcp_options=19 device.real.dns=2 device.real.lease=150 device.real.link=4
  device.real.restart=8 device.real.restart_result=54 device.real.sandbox=6 device.real.snmp=6
  device.real.soak=24 device.real.takes_effect=7 device.real.wired_restart=200
  device.sandbox.completion=6 device.sandbox.hardware=19 device.sandbox.outside=3 device.sandbox.readme=2
  device.sandbox.sandbox=49 device.sandbox.wland=32
  device.velkctl.addresses=2 device.velkctl.apply=32 device.velkctl.boot=14 device.velkctl.capture=36
  device.velkctl.causes=1 device.velkctl.completion=4 device.velkctl.confirm=16 device.velkctl.doctor=14
  device.velkctl.environment=1 device.velkctl.fixes=39 device.velkctl.fleet=1 device.velkctl.guardian=26
  device.velkctl.guardian_load=11 device.velkctl.journal=50 device.velkctl.json=24 device.velkctl.limits=1
  device.velkctl.many_settings=3 device.velkctl.manual=18 device.velkctl.metrics=2 device.velkctl.notes=5
  device.velkctl.preview=34 device.velkctl.selftest=51 device.velkctl.services=7 device.velkctl.show=11
  device.velkctl.status=5 device.velkctl.statuses=10
  device.velkctl.stuck_log=42 device.velkctl.time_limits=52 device.velkctl.valgrind=360
  device.velkctl.velkctl=25 device.velkctl.verbs=7 device.velkctl.wording=7 device.velkctl.writers=1
  documents.commands=1 documents.completion=10 documents.json=8 documents.options=1 documents.paths=1 documents.sandbox=1
  documents.statuses=1
  edits=1/3
  fault=80/87 fault.cuts=720
  forms.pie.users=1
  fuzz.daemon=30 fuzz.edits=30 fuzz.requests=30 fuzz.scans=30
  fuzz.arguments.replay=3 fuzz.captures.replay=3 fuzz.documents.replay=3 fuzz.journal.replay=3
  fuzz.pages.replay=3 fuzz.recover.replay=3
  fuzz.daemon.replay=3 fuzz.edits.replay=3 fuzz.requests.replay=1 fuzz.scans.replay=2
  limits=2
  models=15 models.c_only=5
  packages.cmake_version=1 packages.missing=7 packages.moved=3 packages.programs=6 packages.recipes=3
  packages.sudoers=1 packages.sudoers_on_device=6 packages.version=1
  python.device=10 python.functions=1 python.installation=3
  schedules=20
  threads=1
  unit=27/78
  valgrind.edits=360 valgrind.fault=360 valgrind.unit=360
  web.requests=52 web.sandbox=2 web.user=3
  wire=1
  world=14/22 world.foreign_listener=9)

# Room for a machine at work, and for the start of a test. Where many build and test at once, more is needed.
set(limit_in_usual_times 5)
set(shortest_limit 45)
set(VELK_TEST_ROOM 1 CACHE STRING "Factor of the tests' time limits, for a machine with much other work")

# Sanitizers and emulation make a test slower.
set(slowness 1)
if(CMAKE_CROSSCOMPILING)
  set(slowness 10)
elseif(VELK_SANITIZE MATCHES "thread")
  set(slowness 10)
elseif(VELK_SANITIZE)
  set(slowness 3)
endif()

# Returns the time after which a test with this row is ended.
function(velk_limit row result)
  string(REGEX REPLACE "^[^=]*=" "" seconds ${row})
  set(slower ${slowness})
  if(seconds MATCHES "/")
    string(REPLACE "/" ";" seconds ${seconds})
    if(VELK_SANITIZE AND NOT VELK_SANITIZE MATCHES "thread")
      set(slower 1)
      list(GET seconds 1 seconds)
    else()
      list(GET seconds 0 seconds)
    endif()
  endif()
  math(EXPR limit "${seconds} * ${limit_in_usual_times} * ${slower} * ${VELK_TEST_ROOM}")
  math(EXPR shortest "${shortest_limit} * ${slowness} * ${VELK_TEST_ROOM}")
  if(limit LESS shortest)
    set(limit ${shortest})
  endif()
  set(${result} ${limit} PARENT_SCOPE)
endfunction()

# Gives each test of this folder its limit. Each folder that adds tests calls it last.
function(velk_limit_tests)
  get_directory_property(tests TESTS)
  foreach(test IN LISTS tests)
    string(REGEX REPLACE "\\.[0-9]+$" "" name ${test})
    string(REGEX REPLACE "^forms\\.(static|pie)\\.(.+)$" "device.velkctl.\\2" shared ${name})
    set(row ${velk_usual_seconds})
    list(FILTER row INCLUDE REGEX "^(${name}|${shared})=")
    if(row STREQUAL "")
      message(FATAL_ERROR " ${test} has no usual time: add a row to tests/limits/limits.cmake")
    endif()
    list(GET row -1 row)
    velk_limit(${row} limit)
    set_tests_properties(${test} PROPERTIES TIMEOUT ${limit})
  endforeach()
endfunction()
