// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_entry.cpp - one change of settings as the journal keeps it.
#include "velkctl/journal/journal_entry.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <stdexcept>
#include <utility>

#include "lib/base/find_row.h"
#include "lib/base/paths.h"
#include "velkctl/settings/device_files.h"
#include "velkctl/text/hex.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kSchema = 1;

struct StateRow {
    EntryState state;
    std::string_view name;
};

constexpr std::array<StateRow, 9> kStates{{
    {EntryState::kPrepared, "prepared"},
    {EntryState::kApplying, "applying"},
    {EntryState::kWaiting, "waiting"},
    {EntryState::kConfirmed, "confirmed"},
    {EntryState::kDone, "done"},
    {EntryState::kReverting, "reverting"},
    {EntryState::kReverted, "reverted"},
    {EntryState::kStuck, "stuck"},
    {EntryState::kKept, "kept"},
}};

struct KindRow {
    EntryKind kind;
    std::string_view name;
};

constexpr std::array<KindRow, 3> kKinds{{
    {EntryKind::kPlainSet, "set"},
    {EntryKind::kApply, "apply"},
    {EntryKind::kUndo, "undo"},
}};

Json ValueToJson(const std::optional<Data>& value) {
    return value ? Json(ToHex(UsedBytes(*value))) : Json(nullptr);
}

std::optional<Data> ValueFromJson(const Json& value) {
    if (value.is_null()) {
        return std::nullopt;
    }
    Parsed parsed = ParseHex(value.get<std::string>());
    if (!parsed.ok()) {
        throw std::invalid_argument("value");
    }
    return parsed.data;
}

Json StepToJson(const Step& step) {
    return {{"name", step.setting.name()},
            {"old", ValueToJson(step.old_value)},
            {"new", ValueToJson(step.new_value)}};
}

Json ImageToJson(const FileImage& image) {
    return {{"path", image.path},   {"existed", image.exists}, {"mode", image.mode},
            {"owner", image.owner}, {"group", image.group},    {"error", image.error}};
}

Json HeaderToJson(const JournalEntry& entry) {
    Json header{{"schema", kSchema},
                {"id", entry.id},
                {"kind", NameOf(entry.kind)},
                {"undoes", entry.undoes},
                {"time", entry.time},
                {"boot_id", entry.boot_id},
                {"boot_time", entry.boot_time},
                {"user", entry.user},
                {"restarts", entry.restarts},
                {"steps", Json::array()},
                {"files", Json::array()}};
    for (const Step& step : entry.steps) {
        header["steps"].push_back(StepToJson(step));
    }
    for (const FileImage& image : entry.before) {
        header["files"].push_back(ImageToJson(image));
    }
    return header;
}

// The facts, a NUL, then the bytes of the file as they are.
std::string EncodeImage(FrameKind kind, const FileImage& image) {
    return EncodeFrame(kind, ImageToJson(image).dump().append(1, '\0').append(image.bytes));
}

// The journal restores no other file, so that nobody can use it to write one.
bool IsDeviceFile(std::string_view path) {
    const auto is_file = [path](const DeviceFile& file) {
        return file.path == path && file.change != Change::kNever;
    };
    return path == velk::kNtpLog || std::ranges::any_of(DeviceFiles(), is_file);
}

Json Parse(std::string_view text) {
    return Json::parse(text.begin(), text.end());
}

FileImage DecodeImage(std::string_view payload) {
    const size_t end = payload.find('\0');
    const Json facts = Parse(payload.substr(0, end));
    FileImage image{facts.at("path").get<std::string>()};
    image.exists = facts.at("existed").get<bool>();
    image.mode = facts.at("mode").get<mode_t>();
    image.owner = facts.at("owner").get<uid_t>();
    image.group = facts.at("group").get<gid_t>();
    image.error = facts.at("error").get<int>();
    image.bytes = end == std::string_view::npos ? "" : payload.substr(end + 1);
    return image;
}

EntryState StateNamed(std::string_view name) {
    const StateRow* row = velk::FindRow(kStates, name, &StateRow::name);
    if (row == nullptr) {
        throw std::invalid_argument("state");
    }
    return row->state;
}

EntryKind KindNamed(std::string_view name) {
    const KindRow* row = velk::FindRow(kKinds, name, &KindRow::name);
    if (row == nullptr) {
        throw std::invalid_argument("kind");
    }
    return row->kind;
}

Step StepFromJson(const Json& json) {
    const std::optional<Setting> setting = FindSetting(json.at("name").get<std::string>());
    if (!setting) {
        throw std::invalid_argument("step");
    }
    return {*setting, ValueFromJson(json.at("new")), ValueFromJson(json.at("old"))};
}

void ReadFacts(const Json& header, JournalEntry& entry) {
    entry.id = header.at("id").get<std::string>();
    entry.time = header.at("time").get<int64_t>();
    entry.user = header.at("user").get<uid_t>();
}

void ReadHeader(const Json& header, JournalEntry& entry) {
    ReadFacts(header, entry);
    entry.kind = KindNamed(header.at("kind").get<std::string>());
    entry.undoes = header.at("undoes").get<std::string>();
    entry.boot_id = header.at("boot_id").get<std::string>();
    entry.boot_time = header.at("boot_time").get<int64_t>();
    entry.restarts = header.at("restarts").get<std::vector<std::string>>();
    for (const Json& step : header.at("steps")) {
        entry.steps.push_back(StepFromJson(step));
    }
}

FileImage CheckedImage(const Frame& frame) {
    FileImage image = DecodeImage(frame.payload);
    if (!IsDeviceFile(image.path)) {
        throw std::invalid_argument("file");
    }
    return image;
}

size_t StepsFromJson(const Json& json, const JournalEntry& entry) {
    return std::min(json.at("made").get<size_t>(), entry.steps.size());
}

std::vector<std::string> NamesFrom(const Frame& frame) {
    return Parse(frame.payload).at("names").get<std::vector<std::string>>();
}

void AppendTo(std::vector<std::string>& list, const std::vector<std::string>& names) {
    list.insert(list.end(), names.begin(), names.end());
}

ConfirmWindow WindowFromJson(const Json& json) {
    return {json.at("seconds").get<int>(), json.at("deadline").get<int64_t>()};
}

GuardianFacts GuardianFromJson(const Json& json) {
    return {json.at("keeper").get<pid_t>(), json.at("guardian").get<pid_t>(),
            json.at("terminal").get<std::string>(), json.at("session").get<pid_t>(),
            json.at("session_start").get<int64_t>()};
}

void ReadTakingBack(const Json& json, JournalEntry& entry) {
    entry.cause = json.at("cause").get<std::string>();
    entry.is_untold = json.at("untold").get<bool>();
}

// Reads the frames of changes that need to be confirmed or wait for the daemon.
void ReadLaterFrame(const Frame& frame, JournalEntry& entry) {
    switch (frame.kind) {
        case FrameKind::kWindow:
            entry.window = WindowFromJson(Parse(frame.payload));
            break;
        case FrameKind::kGuardian:
            entry.guardian = GuardianFromJson(Parse(frame.payload));
            break;
        case FrameKind::kTakingBack:
            ReadTakingBack(Parse(frame.payload), entry);
            break;
        case FrameKind::kFilesBack:
            entry.files_back = Parse(frame.payload).at("boot_id").get<std::string>();
            break;
        default:
            break;
    }
}

void ReadFrame(const Frame& frame, JournalEntry& entry) {
    switch (frame.kind) {
        case FrameKind::kHeader:
            ReadHeader(Parse(frame.payload), entry);
            break;
        case FrameKind::kImageBefore:
            entry.before.push_back(CheckedImage(frame));
            break;
        case FrameKind::kState:
            entry.state = StateNamed(Parse(frame.payload).at("state").get<std::string>());
            break;
        case FrameKind::kImageAfter:
            AddAfter(entry, CheckedImage(frame));
            break;
        case FrameKind::kSteps:
            entry.steps.resize(StepsFromJson(Parse(frame.payload), entry));
            break;
        case FrameKind::kPutBack:
            AppendTo(entry.put_back, NamesFrom(frame));
            break;
        case FrameKind::kMade:
            KeepSteps(entry, NamesFrom(frame));
            break;
        default:
            ReadLaterFrame(frame, entry);
    }
}

bool HasAnyState(std::string_view bytes, std::initializer_list<EntryState> states) {
    return std::ranges::any_of(states, [bytes](EntryState state) {
        return bytes.find(EncodeState(state)) != std::string_view::npos;
    });
}

// A cut loses the end of an entry and nothing before it. After a damaged frame, a state says that
// the change was begun, or even that it is finished.
bool HidesState(std::string_view lost, EntryHealth health) {
    const bool is_closed = HasAnyState(lost, {EntryState::kDone, EntryState::kConfirmed,
                                              EntryState::kReverted, EntryState::kKept});
    return is_closed || (health == EntryHealth::kTorn &&
                         HasAnyState(lost, {EntryState::kApplying, EntryState::kWaiting,
                                            EntryState::kReverting, EntryState::kStuck}));
}

bool HasState(const FrameList& list) {
    return std::ranges::any_of(list.frames,
                               [](const Frame& frame) { return frame.kind == FrameKind::kState; });
}

void DecodeFramesInto(const FrameList& list, DecodedEntry& decoded) {
    if (list.frames.empty()) {
        return;
    }
    const Json header = Parse(list.frames.front().payload);
    if (header.at("schema").get<int>() > kSchema) {
        decoded.health = EntryHealth::kLater;
        ReadFacts(header, decoded.entry);
        return;
    }
    if (!HasState(list)) {
        return;
    }
    for (const Frame& frame : list.frames) {
        ReadFrame(frame, decoded.entry);
    }
    decoded.health = EntryHealth::kWhole;
}

}  // namespace

std::string_view NameOf(EntryState state) {
    return velk::FindRow(kStates, state, &StateRow::state)->name;
}

std::string_view NameOf(EntryKind kind) {
    return velk::FindRow(kKinds, kind, &KindRow::kind)->name;
}

std::string EncodeState(EntryState state) {
    return EncodeFrame(FrameKind::kState, Json{{"state", NameOf(state)}}.dump());
}

std::string EncodeSteps(size_t made) {
    return EncodeFrame(FrameKind::kSteps, Json{{"made", made}}.dump());
}

std::string EncodeMade(const std::vector<std::string>& names) {
    return EncodeFrame(FrameKind::kMade, Json{{"names", names}}.dump());
}

std::string EncodePutBack(const std::vector<std::string>& items) {
    return EncodeFrame(FrameKind::kPutBack, Json{{"names", items}}.dump());
}

void KeepSteps(JournalEntry& entry, const std::vector<std::string>& names) {
    std::erase_if(entry.steps, [&](const Step& step) {
        return std::ranges::find(names, step.setting.name()) == names.end();
    });
}

size_t SizeOf(const std::vector<FileImage>& images) {
    size_t size = 0;
    for (const FileImage& image : images) {
        size += image.bytes.size();
    }
    return size;
}

std::string EncodeWindow(const ConfirmWindow& window) {
    const Json json{{"seconds", window.seconds}, {"deadline", window.deadline}};
    return EncodeFrame(FrameKind::kWindow, json.dump());
}

std::string EncodeGuardian(const GuardianFacts& guardian) {
    const Json json{{"keeper", guardian.keeper},
                    {"guardian", guardian.guardian},
                    {"terminal", guardian.terminal},
                    {"session", guardian.session},
                    {"session_start", guardian.session_start}};
    return EncodeFrame(FrameKind::kGuardian, json.dump());
}

std::string EncodeTakingBack(const std::string& cause, bool is_untold) {
    const Json json{{"cause", cause}, {"untold", is_untold}};
    return EncodeFrame(FrameKind::kTakingBack, json.dump());
}

std::string EncodeFilesBack(const std::string& boot_id) {
    return EncodeFrame(FrameKind::kFilesBack, Json{{"boot_id", boot_id}}.dump());
}

void AddAfter(JournalEntry& entry, FileImage image) {
    const auto same = std::ranges::find(entry.after, image.path, &FileImage::path);
    if (same == entry.after.end()) {
        entry.after.push_back(std::move(image));
        return;
    }
    entry.between.push_back(std::exchange(*same, std::move(image)));
}

std::string EncodeAfter(const std::vector<FileImage>& images) {
    std::string frames;
    for (const FileImage& image : images) {
        frames.append(EncodeImage(FrameKind::kImageAfter, image));
    }
    return frames;
}

std::string EncodeEntry(const JournalEntry& entry) {
    std::string frames = EncodeFrame(FrameKind::kHeader, HeaderToJson(entry).dump());
    for (const FileImage& image : entry.before) {
        frames.append(EncodeImage(FrameKind::kImageBefore, image));
    }
    return frames.append(EncodeAfter(entry.after)).append(EncodeState(entry.state));
}

DecodedEntry DecodeEntry(std::string_view bytes) {
    const FrameList list = DecodeFrames(bytes);
    DecodedEntry decoded;
    decoded.valid_length = list.valid_length;
    try {
        DecodeFramesInto(list, decoded);
    } catch (const std::exception&) {
        const bool is_later = decoded.health == EntryHealth::kLater;
        decoded.health = is_later ? EntryHealth::kLater : EntryHealth::kDamaged;
    }
    if (decoded.health != EntryHealth::kLater &&
        HidesState(bytes.substr(list.valid_length), decoded.health)) {
        decoded.health = EntryHealth::kDamaged;
    }
    return decoded;
}

}  // namespace velkctl
