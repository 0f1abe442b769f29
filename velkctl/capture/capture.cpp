// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// capture.cpp - collects the members of a capture, without secrets.
#include "velkctl/capture/capture.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <string_view>

#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include "velkctl/capture/blanked_text.h"
#include "velkctl/documents/settings_document.h"
#include "velkctl/files/file_facts.h"
#include "velkctl/files/file_image.h"

namespace velkctl {
namespace {

constexpr int kSchema = 1;
constexpr std::string_view kRecordings = "recordings/";
constexpr mode_t kPermissions = 07777;

MemberFacts FactsOf(const struct stat& facts) {
    return {facts.st_mode & kPermissions, facts.st_uid, facts.st_gid, facts.st_mtime};
}

std::string MemberOf(const std::string& path) {
    return "root" + path;
}

// Returns the target of a link; empty if it cannot be read.
std::string TargetOf(const std::string& path) {
    std::array<char, PATH_MAX> target{};
    const ssize_t size = readlink(path.c_str(), target.data(), target.size());
    return {target.data(), static_cast<size_t>(std::max<ssize_t>(size, 0))};
}

std::string TimeText(time_t time) {
    std::array<char, 32> text{};
    tm parts{};
    (void)gmtime_r(&time, &parts);
    (void)strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text.data();
}

}  // namespace

void Capture::AddPath(const std::string& path, bool keeps_links) {
    struct stat facts {};
    if (lstat(path.c_str(), &facts) == 0) {
        AddFound(path, facts, keeps_links);
        return;
    }
    const int error = errno;
    const bool is_missing = error == ENOENT || error == ENOTDIR;
    AddItem({path, "", is_missing, is_missing ? "" : strerror(error)});
}

void Capture::AddFound(const std::string& path, const struct stat& facts, bool keeps_links) {
    struct stat target {};
    const bool is_link = S_ISLNK(facts.st_mode);
    const std::string text = is_link ? TargetOf(path) : "";
    if (std::max(MemberOf(path).size(), text.size()) > kLongestMemberName) {
        AddItem({path, "", false, "its name is too long"});
    } else if (S_ISREG(facts.st_mode)) {
        AddFile(path, FactsOf(facts));
    } else if (is_link && !keeps_links && stat(path.c_str(), &target) == 0 &&
               S_ISREG(target.st_mode)) {
        AddFile(path, FactsOf(target));
    } else if (is_link || S_ISDIR(facts.st_mode) || S_ISFIFO(facts.st_mode)) {
        AddMember(facts.st_mode & S_IFMT, path, FactsOf(facts), text);
        AddItem({path, MemberOf(path)});
    } else {
        AddItem({path, "", false, KindOf(facts.st_mode) + " cannot be captured"});
    }
}

void Capture::AddFile(const std::string& path, const MemberFacts& facts) {
    FileImage image = ReadFileImage(path);
    AddMember(S_IFREG, path, facts, std::move(image.bytes));
    AddItem({path, MemberOf(path), false, image.error == 0 ? "" : strerror(image.error)});
}

void Capture::AddMember(mode_t type, const std::string& path, const MemberFacts& facts,
                        std::string text) {
    members_.push_back({type, MemberOf(path), facts, std::move(text)});
}

void Capture::AddPart(const std::string& path, std::string text) {
    struct stat facts {};
    if (stat(path.c_str(), &facts) == 0) {
        AddMember(S_IFREG, path, FactsOf(facts), std::move(text));
        AddItem({path, MemberOf(path)});
    }
}

void Capture::AddRecording(const std::string& name, std::string text, std::string source) {
    const std::string member = std::string(kRecordings).append(name);
    AddItem({std::move(source), member});
    members_.push_back({S_IFREG, member, OwnFacts(), std::move(text)});
}

void Capture::AddBlanked(const std::string& name, std::string text) {
    const std::string member = std::string(kRecordings).append(name);
    AddItem({name, member});
    members_.push_back({S_IFREG, member, OwnFacts(), std::move(text), true});
}

MemberFacts Capture::OwnFacts() const {
    MemberFacts facts;
    facts.time = now_;
    return facts;
}

Json Capture::Manifest(const std::string& version) const {
    Json items = Json::array();
    std::ranges::transform(items_, std::back_inserter(items), ItemInJson);
    Json manifest;
    manifest["schema"] = kSchema;
    manifest["time"] = TimeText(now_);
    manifest["versions"] = Json{{"velkctl", version}};
    manifest["items"] = std::move(items);
    return manifest;
}

std::string Capture::Finish(const std::string& version,
                            const std::vector<std::string>& secrets) const {
    Archive archive;
    archive.AddFile("capture.json", OwnFacts(), DocumentText(Manifest(version)));
    for (const Member& member : members_) {
        if (S_ISREG(member.type)) {
            archive.AddFile(member.name, member.facts,
                            member.is_blanked ? member.text : BlankedText(member.text, secrets));
        } else if (S_ISLNK(member.type)) {
            archive.AddLink(member.name, member.facts, member.text);
        } else if (S_ISDIR(member.type)) {
            archive.AddFolder(member.name, member.facts);
        } else {
            archive.AddFifo(member.name, member.facts);
        }
    }
    return archive.Bytes();
}

Json ItemInJson(const CaptureItem& item) {
    Json object;
    object["name"] = item.name;
    object["member"] = TextOrNull(item.member);
    object["state"] = item.is_missing        ? "missing"
                      : item.problem.empty() ? "captured"
                                             : "unreadable";
    object["problem"] = TextOrNull(item.problem);
    return object;
}

}  // namespace velkctl
