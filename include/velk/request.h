// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/*
 * request.h - the record of a request and of its response, and the numbers in it.
 *
 * Plain C (C99 and later) and C++ (C++20) can include this header.
 */
#ifndef VELK_REQUEST_H_
#define VELK_REQUEST_H_

#include <stddef.h>
#include <stdint.h>

/* Sizes of the two byte fields of _velk_request. */
#define VELK_INTERFACE_SIZE 16
#define VELK_DATA_SIZE 512

/* Interface names a request may carry; the empty name belongs to commands without an interface. */
#define VELK_WIRED_INTERFACE "eth0"
#define VELK_WIRELESS_INTERFACE "eth1"

/* Values of _velk_request.command_type. */
enum velk_command_type {
    VELK_GET = 1,    /* read a setting; takes no lock */
    VELK_SET = 2,    /* change a setting; under the inter-process lock */
    VELK_RESTART = 3 /* restart an interface; under the inter-process lock */
};

/* Values of _velk_request.command_id. */
enum velk_command_id {
    VELK_CMD_RESTART = 1,            /* restart, eth0 and eth1; see Restart() */
    VELK_CMD_ADMINISTRATOR = 2,      /* get and set, no interface; see GetSettingFile() */
    VELK_CMD_LOCATION = 3,           /* get and set, no interface; see GetSettingFile() */
    VELK_CMD_HARDWARE_VERSION = 4,   /* wireless adapter: get, eth1; see GetHardwareVersion() */
    VELK_CMD_SOFTWARE_VERSION = 5,   /* wireless daemon: get, eth1; see GetSoftwareVersion() */
    VELK_CMD_NTP = 6,                /* get and set, no interface; see GetNtpMethod() */
    VELK_CMD_DHCP_NTP = 7,           /* get and set, no interface; see GetDhcp() */
    VELK_CMD_NTP_SERVER = 9,         /* get and set, no interface; see GetNtpIp() */
    VELK_CMD_NTP_RESULT = 10,        /* get, no interface; see GetNtpCommunicate() */
    VELK_CMD_WEB_UPDATE = 11,        /* get and set, no interface; see GetWebUp() */
    VELK_CMD_MAC_ADDRESS = 101,      /* MAC address: get, eth0 and eth1; see GetMacAddress() */
    VELK_CMD_IP_METHOD = 102,        /* get and set, eth0 and eth1; see GetIpSettingMethod() */
    VELK_CMD_APIPA = 103,            /* get and set, eth0 and eth1; see GetApipa() */
    VELK_CMD_IP_ADDRESS = 104,       /* get and set, eth0 and eth1; see GetIpAddressConf() */
    VELK_CMD_NETMASK = 105,          /* get and set, eth0 and eth1; see GetSubNetMaskConf() */
    VELK_CMD_GATEWAY = 106,          /* get and set, eth0 and eth1; see GetDefGatewayConf() */
    VELK_CMD_DHCP_DNS = 107,         /* get and set, eth0 and eth1; see GetDhcp() */
    VELK_CMD_DNS = 108,              /* DNS servers: get and set, eth0 and eth1; see GetDns() */
    VELK_CMD_DHCP_NOTICE = 109,      /* set, eth0; see SetPrintDHCPFinished() */
    VELK_CMD_LINK_SPEED = 201,       /* link speed: get and set, eth0; see GetLinkSpeed() */
    VELK_CMD_STANDARD = 301,         /* 802.11 standard in use: get, eth1; see GetDot11Phy() */
    VELK_CMD_SERVICE_SET = 302,      /* get and set, eth1; see GetServiceSet() */
    VELK_CMD_SSID = 303,             /* get and set, eth1; see GetSsid() */
    VELK_CMD_CHANNEL = 304,          /* get and set, eth1; see GetChannel() */
    VELK_CMD_REGION = 305,           /* get, eth1; see GetRegion() */
    VELK_CMD_ENCRYPTION = 306,       /* get and set, eth1; see GetEncryption() */
    VELK_CMD_AUTHENTICATION = 307,   /* get and set, eth1; see GetAuth() */
    VELK_CMD_WEP_KEY_1 = 308,        /* get and set, eth1; see GetWepKey() */
    VELK_CMD_WEP_KEY_2 = 309,        /* get and set, eth1 */
    VELK_CMD_WEP_KEY_3 = 310,        /* get and set, eth1 */
    VELK_CMD_WEP_KEY_4 = 311,        /* get and set, eth1 */
    VELK_CMD_WEP_DEFAULT_KEY = 312,  /* get and set, eth1; see GetWepDefault() */
    VELK_CMD_PSK = 314,              /* pre-shared key: get and set, eth1; see GetPsk() */
    VELK_CMD_RATE = 315,             /* transmission rate: get, eth1; see GetRate() */
    VELK_CMD_ACCESS_POINT = 316,     /* its MAC address: get, eth1; see GetAccessPoint() */
    VELK_CMD_SIGNAL = 317,           /* signal strength: get, eth1; see GetSignal() */
    VELK_CMD_STANDARDS_ENABLED = 318 /* 802.11: get and set, eth1; see GetDot11PhyConf() */
};

/*
 * A switch, in the first data byte of VELK_CMD_NTP, VELK_CMD_DHCP_NTP, VELK_CMD_APIPA,
 * VELK_CMD_DHCP_DNS and VELK_CMD_DHCP_NOTICE.
 */
enum velk_switch { VELK_ON = 1, VELK_OFF = 2 };

/* How an interface gets its address, in the first data byte of VELK_CMD_IP_METHOD. */
enum velk_ip_method { VELK_METHOD_STATIC = 1, VELK_METHOD_DHCP = 2 };

/* The result of the last time synchronisation, in the first data byte of VELK_CMD_NTP_RESULT. */
enum velk_ntp_result {
    VELK_NTP_REACHED = 1,     /* a server answered; the clock was set */
    VELK_NTP_NOT_REACHED = 2, /* no server answered */
    VELK_NTP_NO_RESULT = 3    /* it has not run yet, or was switched off */
};

/* How often the web contents updater runs, in the first data byte of VELK_CMD_WEB_UPDATE. */
enum velk_schedule_type {
    VELK_SCHEDULE_HOURS = 1,   /* every so many hours */
    VELK_SCHEDULE_DAILY = 2,   /* at one time of the day */
    VELK_SCHEDULE_WEEKLY = 3,  /* on one day of the week */
    VELK_SCHEDULE_MONTHLY = 4, /* on one day of the month */
    VELK_SCHEDULE_NONE = 99    /* not at all */
};

/*
 * Offsets in the data of VELK_CMD_WEB_UPDATE: enum velk_schedule_type, its value, and the time as
 * text; see velk/webup.h.
 */
#define VELK_SCHEDULE_TYPE_OFFSET 0
#define VELK_SCHEDULE_VALUE_OFFSET 1
#define VELK_SCHEDULE_TIME_OFFSET 2

/* The data of VELK_CMD_DNS: one slot for each server, see velk/ipconf.h. */
#define VELK_DNS_SLOTS 3
#define VELK_DNS_SLOT_SIZE 16

/* Limits of the wireless settings, see velk/wlan.h. Channels and WEP keys are numbered from 1. */
#define VELK_CHANNELS 13
#define VELK_WEP_KEYS 4
#define VELK_SSID_SIZE 32
#define VELK_PSK_SIZE 64

/* Bytes of a WEP key: two lengths of ASCII keys, and the same as hexadecimal digits. */
#define VELK_WEP_SHORT_KEY 5
#define VELK_WEP_LONG_KEY 13
#define VELK_WEP_SHORT_HEX_KEY 10
#define VELK_WEP_LONG_HEX_KEY 26

/* The first data byte of VELK_CMD_RESTART for "eth1" alone: only the wireless daemon is notified.
 */
#define VELK_RESTART_NOTIFY_ONLY 2

/* The link speed, in the first data byte of VELK_CMD_LINK_SPEED. */
enum velk_link_mode {
    VELK_LINK_AUTO = 1,     /* negotiated with the other end */
    VELK_LINK_100_FULL = 2, /* 100 Mbit/s, full duplex */
    VELK_LINK_100_HALF = 3, /* 100 Mbit/s, half duplex */
    VELK_LINK_10_FULL = 4,  /* 10 Mbit/s, full duplex */
    VELK_LINK_10_HALF = 5   /* 10 Mbit/s, half duplex */
};

/* Results of execute_velk_command(). */
enum velk_result {
    LIB_VELK_SUCCESS = 0,  /* done */
    LIB_VELK_FAILURE = -1, /* file, socket, time-out or unreadable value */
    LIB_VELK_LOCKED = -3,  /* another process is changing settings */
    LIB_VELK_INVALID_PARAMETER =
        -4,                    /* null pointer, unknown type or id, wrong interface or value */
    LIB_VELK_NO_ADAPTER = -5,  /* no supported wireless adapter is attached */
    LIB_VELK_WIRED_LINKED = -6 /* eth1 was asked for while the wired port has a link */
};

/*
 * Request and response: 536 bytes, no padding.
 *
 * interface     NUL-terminated name, "eth0", "eth1" or "". A name that fills all 16 bytes ends
 *               there and matches no interface.
 * command_type  enum velk_command_type.
 * command_id    enum velk_command_id.
 * data          request: the parameter bytes of a set or restart; response: the result of a get.
 *               A text ends at its NUL or at the end of the field.
 */
typedef struct _velk_request {
    char interface[VELK_INTERFACE_SIZE];
    uint32_t command_type;
    uint32_t command_id;
    char data[VELK_DATA_SIZE];
} _velk_request;

#if defined(__cplusplus)
#define VELK_STATIC_ASSERT(condition, text) static_assert(condition, text)
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#define VELK_STATIC_ASSERT(condition, text) _Static_assert(condition, text)
#else /* C99 cannot check it; the library itself is always built with the check. */
#define VELK_STATIC_ASSERT(condition, text) struct velk_no_static_assert
#endif
VELK_STATIC_ASSERT(offsetof(_velk_request, interface) == 0, "interface is at offset 0");
VELK_STATIC_ASSERT(offsetof(_velk_request, command_type) == 16, "command_type is at offset 16");
VELK_STATIC_ASSERT(offsetof(_velk_request, command_id) == 20, "command_id is at offset 20");
VELK_STATIC_ASSERT(offsetof(_velk_request, data) == 24, "data is at offset 24");
VELK_STATIC_ASSERT(sizeof(_velk_request) == 536, "the record has 536 bytes");
#undef VELK_STATIC_ASSERT

#endif /* VELK_REQUEST_H_ */
