# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

################################################################################
#
# libvelk
#
################################################################################

LIBVELK_VERSION = 1.0.0
# The checkout that this file lies in.
LIBVELK_SITE = $(BR2_EXTERNAL_VELK_PATH)/../..
LIBVELK_SITE_METHOD = local
LIBVELK_OVERRIDE_SRCDIR_RSYNC_EXCLUSIONS = --exclude build
LIBVELK_LICENSE = MIT
LIBVELK_LICENSE_FILES = LICENSE
LIBVELK_INSTALL_STAGING = YES
LIBVELK_CONF_OPTS = -DBUILD_TESTING=OFF -DVELK_SANDBOX=OFF -DVELK_WEB=OFF -DVELK_CCACHE=OFF

ifeq ($(BR2_PACKAGE_LIBVELK_VELKCTL),y)
LIBVELK_DEPENDENCIES += json-for-modern-cpp
# The library is inside velkctl, too, which then starts in half of the time.
LIBVELK_CONF_OPTS += -DVELK_TOOLS=ON -DVELKCTL_STATIC=ON
else
LIBVELK_CONF_OPTS += -DVELK_TOOLS=OFF
endif

# The lock file is made before any other user's program runs. Interrupted changes are taken back before
# networking; run "velk-recover wireless" after the start of the wireless daemon.
define LIBVELK_INSTALL_INIT_SYSV
	$(INSTALL) -D -m 0755 $(@D)/packaging/init.d/velk-lock \
		$(TARGET_DIR)/etc/init.d/S02velk-lock
	$(INSTALL) -D -m 0755 $(@D)/packaging/init.d/velk-recover \
		$(TARGET_DIR)/etc/init.d/S03velk-recover
endef

$(eval $(cmake-package))
