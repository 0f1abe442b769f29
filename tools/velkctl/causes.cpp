// causes.cpp - why a setting does not hold what was set.
#include "velkctl/causes.h"

#include <algorithm>
#include <array>

namespace velkctl {
namespace {

// How an answer differs from what was set.
enum class Symptom { kUnreadable, kEmpty, kOff, kOther };

struct Cause {
    uint32_t id;
    Symptom symptom;
    std::string_view words;
};

constexpr std::string_view kNoStanza =
    "/etc/network/interfaces has no stanza \"inet static\" or \"inet dhcp\" of the interface";
constexpr std::string_view kLastStanza =
    "its stanza in /etc/network/interfaces is the last one and has no such line to replace, or the "
    "file cannot be written";
constexpr std::string_view kSecondGateway =
    "another line of its stanza in /etc/network/interfaces holds \"gateway \" too, or the file "
    "cannot "
    "be written";
constexpr std::string_view kNoHook =
    "no line of /etc/dhclient-exit-hooks that runs for the interface has /usr/sbin/avahi-autoipd "
    "to switch";
constexpr std::string_view kNoRequest =
    "no \"request\" statement of /etc/dhclient.conf counts for it, as when the interface's block "
    "is "
    "switched off, or the first one ends without it";
constexpr std::string_view kNoEntry =
    "the crontab has no line with ntpdate to switch, or one with two number signs";
constexpr std::string_view kNoServer =
    "the crontab has no line with ntpdate, or one without a server, where a new one sticks to the "
    "word in front of it";
constexpr std::string_view kServerElsewhere =
    "the first line with ntpdate ends with its server, or has the server's text in front of it "
    "too, "
    "or the crontab cannot be written";
constexpr std::string_view kFileNotWritten = "the file that holds it cannot be written";

constexpr std::array<Cause, 14> kCauses{{
    {VELK_CMD_IP_METHOD, Symptom::kUnreadable, kNoStanza},
    {VELK_CMD_IP_ADDRESS, Symptom::kUnreadable, kNoStanza},
    {VELK_CMD_IP_ADDRESS, Symptom::kEmpty, kLastStanza},
    {VELK_CMD_NETMASK, Symptom::kUnreadable, kNoStanza},
    {VELK_CMD_NETMASK, Symptom::kEmpty, kLastStanza},
    {VELK_CMD_GATEWAY, Symptom::kUnreadable, kNoStanza},
    {VELK_CMD_GATEWAY, Symptom::kEmpty, kLastStanza},
    {VELK_CMD_GATEWAY, Symptom::kOther, kSecondGateway},
    {VELK_CMD_APIPA, Symptom::kOff, kNoHook},
    {VELK_CMD_DHCP_NTP, Symptom::kOff, kNoRequest},
    {VELK_CMD_DHCP_DNS, Symptom::kOff, kNoRequest},
    {VELK_CMD_NTP, Symptom::kOff, kNoEntry},
    {VELK_CMD_NTP_SERVER, Symptom::kEmpty, kNoServer},
    {VELK_CMD_NTP_SERVER, Symptom::kOther, kServerElsewhere},
}};

Symptom SymptomOf(const Answer& answer) {
    if (answer.result != LIB_VELK_SUCCESS) {
        return Symptom::kUnreadable;
    }
    switch (answer.data[0]) {
        case 0:
            return Symptom::kEmpty;
        case VELK_OFF:
            return Symptom::kOff;
        default:
            return Symptom::kOther;
    }
}

// Anything else is with the kernel or the wireless daemon.
bool IsInFile(const Setting& setting) {
    return setting.row->interfaces != kEth1 && setting.row->id != VELK_CMD_LINK_SPEED;
}

}  // namespace

std::string_view LikelyCause(const Setting& setting, const Answer& answer) {
    const Symptom symptom = SymptomOf(answer);
    const auto* found = std::ranges::find_if(kCauses, [&](const Cause& cause) {
        return cause.id == setting.row->id && cause.symptom == symptom;
    });
    if (found != kCauses.end()) {
        return found->words;
    }
    return symptom != Symptom::kUnreadable && IsInFile(setting) ? kFileNotWritten : "";
}

}  // namespace velkctl
