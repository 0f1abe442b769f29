// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wlan.h - the wireless adapter: detection, the daemon's channel, configuration and state.
#ifndef VELK_WLAN_H_
#define VELK_WLAN_H_

#include <cstddef>
#include <cstdint>

#include <semaphore.h>

#include "velk/export.h"
#include "velk/request.h"

struct _velk_request;

// ---- Detection ---------------------------------------------------------------------------------

// Returns whether a supported USB wireless adapter is attached: 1 or 0. Never fails.
//
// The kernel's list of attached devices, /proc/bus/usb/devices (the form of usbfs, kernel document
// usb/proc_usb_info), is matched line by line against the text "QT4408RKM" and against every
// adapter of the support list, /usr/local/share/apps/wlan/supportlist.ini: lines "VID=1a2b" and
// "PID=3c4d" in hexadecimal. A vendor applies to all products after it; a product before any vendor
// has vendor 0. The number is read by strtoul(3) from the line's fifth character on, so the key
// must be in column one, and is compared as the kernel writes it, in lower case with at least four
// digits: "Vendor=1a2b ProdID=3c4d". If the support list cannot be read, only the built-in text is
// searched; a device list that cannot be read gives 0. Every call reads both files. Logs nothing.
//
// Blocking: as long as reading two small files.
VELK_API int IsWlanAttached();

// ---- Records -----------------------------------------------------------------------------------
//
// The records of the wireless daemon, in its own layout and the device's byte order. A record that
// comes from the daemon is data from outside: a length beyond its field makes a getter return
// LIB_VELK_FAILURE and write nothing, and a text without a NUL ends with its field.

struct SWepKey {
    uint16_t length;  // 0, 5, 10, 13 or 26
    char key[28];     // not NUL-terminated; bytes after the length belong to an older key
};

struct SMsgConf {
    uint16_t ssid_length;       // 0 to 32
    char ssid[VELK_SSID_SIZE];  // not NUL-terminated
    uint16_t service_set;       // 0 ad hoc, 1 infrastructure
    uint16_t dot11_phy_conf;
    uint16_t channel;  // 1 to 13
    uint16_t auth;
    uint16_t encryption;   // 1 is WEP; the other values are the daemon's
    uint16_t wep_default;  // number of the WEP key in use, 1 to 4
    char unused_46[2];     // sent back as it came
    SWepKey wep_key[VELK_WEP_KEYS];
    uint16_t psk_length;      // 0 to 64
    char psk[VELK_PSK_SIZE];  // not NUL-terminated
    char unused_234[2];       // sent back as it came
};
static_assert(sizeof(SWepKey) == 30);
static_assert(offsetof(SMsgConf, ssid_length) == 0);
static_assert(offsetof(SMsgConf, ssid) == 2);
static_assert(offsetof(SMsgConf, service_set) == 34);
static_assert(offsetof(SMsgConf, dot11_phy_conf) == 36);
static_assert(offsetof(SMsgConf, channel) == 38);
static_assert(offsetof(SMsgConf, auth) == 40);
static_assert(offsetof(SMsgConf, encryption) == 42);
static_assert(offsetof(SMsgConf, wep_default) == 44);
static_assert(offsetof(SMsgConf, unused_46) == 46);
static_assert(offsetof(SMsgConf, wep_key) == 48);
static_assert(offsetof(SMsgConf, psk_length) == 168);
static_assert(offsetof(SMsgConf, psk) == 170);
static_assert(offsetof(SMsgConf, unused_234) == 234);
static_assert(sizeof(SMsgConf) == 236);

struct SMsgState {
    char product[64];           // the adapter's USB product line, with "Rev= " and its revision
    char software_version[32];  // the version of the daemon or its driver
    uint16_t region;
    char unused_98[44];
    uint8_t access_point[6];  // MAC address
    char unused_148[4];
    uint16_t dot11_phy;
    char unused_154[2];
    uint8_t rate[4];
    uint16_t signal[2];
    char unused_164[72];
};
static_assert(offsetof(SMsgState, product) == 0);
static_assert(offsetof(SMsgState, software_version) == 64);
static_assert(offsetof(SMsgState, region) == 96);
static_assert(offsetof(SMsgState, unused_98) == 98);
static_assert(offsetof(SMsgState, access_point) == 142);
static_assert(offsetof(SMsgState, unused_148) == 148);
static_assert(offsetof(SMsgState, dot11_phy) == 152);
static_assert(offsetof(SMsgState, unused_154) == 154);
static_assert(offsetof(SMsgState, rate) == 156);
static_assert(offsetof(SMsgState, signal) == 160);
static_assert(offsetof(SMsgState, unused_164) == 164);
static_assert(sizeof(SMsgState) == 236);

union UMsgData {
    SMsgConf conf;
    SMsgState state;
};
static_assert(sizeof(UMsgData) == 236);

// Message types of the requests to the daemon. Types 3 and 4 are answered, the others are not.
enum velk_wlan_message {
    VELK_WLAN_RESTARTED = 1,  // no body: the wireless interface is (re)started
    VELK_WLAN_STORE = 2,      // SMsgConf: store this configuration
    VELK_WLAN_REPORT = 3,     // no body: report the configuration, SMsgConf
    VELK_WLAN_STATE = 4       // no body: report the state, SMsgState
};

// ---- The daemon's channel ----------------------------------------------------------------------
//
// Two unix(7) datagram sockets, one per direction, and a named semaphore, see sem_overview(7). A
// message has 240 bytes: its type (16 bits), two zero bytes, a body of 236. A query is
// CreatSemaphore(), SendWlanRequestMessage(), RecvWlanResponseMessage() if that succeeded, and
// DeleteSemaphore() in any case. If CreatSemaphore() failed, the handle is null: both functions
// that take one then log EINVAL and continue. One query at a time can be made on a device. Every
// failure is logged with the function and the failed call, and errno if it is set.
//
// The daemon sends its reply, with the keys in it, to any socket at the reply path once the
// semaphore is posted. So RecvWlanConf(), GetWlanConf(), SetWlanConf() and GetWlanState() first
// remove another user's file at /tmp/WlanAplFromWlanSock, and use no semaphore that another user
// has made or may post, or that is already posted: they replace it by one with mode 0600. If
// that is not possible, they send nothing: LIB_VELK_FAILURE, and "QueryWlanDaemon remove" or
// "QueryWlanDaemon sem_open" with errno in the log. The daemon must run as root or as the caller.
// Direct callers of the four functions below must do this themselves.

// Sends one message to /tmp/WlanAplToWlanSock; a null `body` sends zeros. Returns LIB_VELK_SUCCESS
// if the datagram was sent, LIB_VELK_FAILURE otherwise. Never waits for the daemon.
VELK_API int SendWlanRequestMessage(short type, const UMsgData* body);

// Removes and binds /tmp/WlanAplFromWlanSock, posts `ready` to signal that to the daemon, and waits
// for one message. Its body goes into `out`. The type of the reply is not checked; bytes that a
// short reply lacks are zero. Returns LIB_VELK_SUCCESS or LIB_VELK_FAILURE; `out` is written only
// on success. The socket and its path are removed afterwards. The socket's file has mode 0600 with
// any umask: only root and the caller can send to it. If another user takes the path meanwhile, it
// is removed and bound again, up to 100 times.
//
// Blocking: up to 60 seconds; 1 second if bind(2) fails and the path is not the caller's, so that
// the daemon finds the semaphore unposted before the caller deletes it.
VELK_API int RecvWlanResponseMessage(UMsgData& out, const sem_t* ready);

// Opens the semaphore "/WlanAplRecvSem". If it is missing, creates it with value 0 and mode 0666,
// narrowed by the umask. Returns its handle, or null.
VELK_API sem_t* CreatSemaphore();

// Closes the handle and removes the name; the second is done even if the first fails.
VELK_API void DeleteSemaphore(const sem_t* sem);

// ---- Configuration (commands 302 to 304, 306 to 312, 314, 318) ---------------------------------

// Fetches the daemon's configuration into out.conf. Returns LIB_VELK_SUCCESS or LIB_VELK_FAILURE.
// Blocking: up to 60 seconds.
VELK_API int RecvWlanConf(UMsgData& out);

// Reads the field of request.command_id out of the daemon's configuration into the data area `out`
// (512 bytes, zeroed by the caller: most texts get no terminator). Returns
// LIB_VELK_INVALID_PARAMETER for a null `out`, LIB_VELK_FAILURE if the daemon cannot be reached
// or does not answer, then the result of the field's getter, or 0 with nothing written for any
// other id. Blocking: up to 60 seconds.
VELK_API int GetWlanConf(const _velk_request& request, char* out);

// Fetches the daemon's configuration, changes the field of request.command_id to the request's data
// and sends the whole record back; for any other id the record goes back unchanged. `out` is not
// used. Returns the result of the field's setter if that is not 0 (nothing is sent then),
// LIB_VELK_FAILURE if the daemon does not answer or cannot be reached. Fetching and sending are not
// one step for the daemon. Blocking: up to 60 seconds.
VELK_API int SetWlanConf(const _velk_request& request, char* out);

// One getter and setter for each field. A getter returns LIB_VELK_SUCCESS, or LIB_VELK_FAILURE for
// a null `out` and for a value of the record outside its range, nothing being written unless stated
// otherwise. A setter returns LIB_VELK_SUCCESS, or LIB_VELK_INVALID_PARAMETER for a null `in` and
// an invalid value; the record is then unchanged. None blocks, logs or touches anything else.
// "Byte" is the first data byte. `out` must have room for all bytes that the getter writes; text in
// `in` ends with a NUL or after 512 bytes.

// 802.11 standards enabled: byte 2 or 3 for the record's 0 or 1. An unknown value writes 3 and
// fails.
VELK_API int GetDot11PhyConf(const SMsgConf& conf, char* out);
VELK_API int SetDot11PhyConf(SMsgConf& conf, const char* in);
// Service set: byte 1 infrastructure (the record's 1), 2 ad hoc (0).
VELK_API int GetServiceSet(const SMsgConf& conf, char* out);
VELK_API int SetServiceSet(SMsgConf& conf, const char* in);
// SSID: text of 0 to 32 bytes, written without a terminator.
VELK_API int GetSsid(const SMsgConf& conf, char* out);
VELK_API int SetSsid(SMsgConf& conf, const char* in);
// Channel: byte 1 to 13. The getter writes the low byte unchecked.
VELK_API int GetChannel(const SMsgConf& conf, char* out);
VELK_API int SetChannel(SMsgConf& conf, const char* in);
// Encryption: byte 1 to 4 for the record's 0 to 3; 2 is WEP.
VELK_API int GetEncryption(const SMsgConf& conf, char* out);
VELK_API int SetEncryption(SMsgConf& conf, const char* in);
// Authentication: byte 1 to 4 for the record's 0 to 3.
VELK_API int GetAuth(const SMsgConf& conf, char* out);
VELK_API int SetAuth(SMsgConf& conf, const char* in);
// Default WEP key: byte 1 to 4. The getter writes the low byte unchecked.
VELK_API int GetWepDefault(const SMsgConf& conf, char* out);
VELK_API int SetWepDefault(SMsgConf& conf, const char* in);
// Pre-shared key: text of 0 to 64 bytes, written with a terminator.
VELK_API int GetPsk(const SMsgConf& conf, char* out);
VELK_API int SetPsk(SMsgConf& conf, const char* in);
// WEP key n, 1 to 4: text of 5 or 13 (ASCII), 10 or 26 (hexadecimal) bytes, or none to clear its
// length; the characters are not checked. Written without a terminator. The key in use,
// wep_default, cannot be cleared while the encryption is WEP. An invalid key is refused first; then
// any other n gives LIB_VELK_FAILURE.
VELK_API int GetWepKey(const SMsgConf& conf, int n, char* out);
VELK_API int SetWepKey(SMsgConf& conf, int n, const char* in);
VELK_API int GetWepKey1(const SMsgConf& conf, char* out);
VELK_API int GetWepKey2(const SMsgConf& conf, char* out);
VELK_API int GetWepKey3(const SMsgConf& conf, char* out);
VELK_API int GetWepKey4(const SMsgConf& conf, char* out);
VELK_API int SetWepKey1(SMsgConf& conf, const char* in);
VELK_API int SetWepKey2(SMsgConf& conf, const char* in);
VELK_API int SetWepKey3(SMsgConf& conf, const char* in);
VELK_API int SetWepKey4(SMsgConf& conf, const char* in);

// ---- State (commands 4, 5, 301, 305, 315 to 317) -----------------------------------------------

// Reads the fact of request.command_id out of the daemon's state into the data area `out` (512
// bytes, zeroed by the caller). Returns LIB_VELK_INVALID_PARAMETER for a null `out`,
// LIB_VELK_NO_ADAPTER if no supported adapter is attached, then LIB_VELK_WIRED_LINKED while the
// wired port has a link, then LIB_VELK_FAILURE if the daemon cannot be reached or does not answer,
// then the result of the fact's getter, or 0 with nothing written for any other id. Blocking: up to
// a minute for the link, see IsWiredLinked(), and 60 seconds for the daemon.
VELK_API int GetWlanState(const _velk_request& request, char* out);

// One getter for each fact. Returns LIB_VELK_SUCCESS, or LIB_VELK_FAILURE for a null `out` and for
// an unknown value of the record.

// Hardware version: the text after "Rev= " in the product line, 60 bytes with its NUL at most;
// nothing is written if there is none.
VELK_API int GetHardwareVersion(const SMsgState& state, char* out);
// Software version: text, 33 bytes with its NUL at most.
VELK_API int GetSoftwareVersion(const SMsgState& state, char* out);
// 802.11 standard in use: byte 1 to 3 for the record's 0 to 2. An unknown value writes 3 and fails.
VELK_API int GetDot11Phy(const SMsgState& state, char* out);
// Region: byte 1 to 3 for the record's 0 to 2. An unknown value writes 1 and fails.
VELK_API int GetRegion(const SMsgState& state, char* out);
// Transmission rate: 4 bytes as the daemon reports them.
VELK_API int GetRate(const SMsgState& state, char* out);
// MAC address of the access point: 12 upper-case hexadecimal digits and a NUL.
VELK_API int GetAccessPoint(const SMsgState& state, char* out);
// Signal: two 16-bit values in the device's byte order, 4 bytes, as the daemon reports them.
VELK_API int GetSignal(const SMsgState& state, char* out);

#endif  // VELK_WLAN_H_
