# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

SUMMARY = "Network settings of the device"
DESCRIPTION = "Library and command line tool that read and change the network settings of an embedded device"
LICENSE = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=c6a6b37e424f36ea3ca873b9c1959cc2"

inherit cmake externalsrc
EXTERNALSRC = "${VELK_CHECKOUT}"

PACKAGECONFIG ??= "tools"
PACKAGECONFIG[tools] = "-DVELK_TOOLS=ON,-DVELK_TOOLS=OFF,nlohmann-json"
# The library is inside velkctl, too, which then starts in half of the time.
EXTRA_OECMAKE = "-DVELKCTL_STATIC=ON -DBUILD_TESTING=OFF -DVELK_SANDBOX=OFF -DVELK_WEB=OFF -DVELK_CCACHE=OFF -DCMAKE_SKIP_INSTALL_RPATH=ON"

PACKAGES =+ "velk-tools"
FILES:velk-tools = "${bindir}/velkctl ${datadir}/bash-completion ${datadir}/zsh ${nonarch_libdir}/systemd"
FILES:${PN} += "${nonarch_libdir}/tmpfiles.d ${datadir}/velk"

# The library runs them.
RRECOMMENDS:${PN} += "sudo ethtool"
