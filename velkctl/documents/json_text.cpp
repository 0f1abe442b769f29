// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// json_text.cpp - reads a JSON text, with the places of its errors.
#include "velkctl/documents/json_text.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace velkctl {
namespace {

// No value of a setting is nested deeper. A copy of a value takes stack for each of its levels.
constexpr size_t kMostLevels = 8;

// False for the second and later bytes of a character in UTF-8.
bool BeginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

// Returns the place of a byte, counted from 1.
TextPlace PlaceOf(std::string_view text, size_t byte) {
    const std::string_view before = text.substr(0, std::min(byte, text.size() + 1) - 1);
    const std::string_view line = before.substr(before.rfind('\n') + 1);  // 0 without a newline
    const auto newlines = std::count(before.begin(), before.end(), '\n');
    const auto characters = std::count_if(line.begin(), line.end(), BeginsCharacter);
    return {static_cast<size_t>(newlines) + 1, static_cast<size_t>(characters) + 1};
}

// Builds the value of a text. The library's own builder keeps the last of two members with one name
// and does not report it.
class Builder final : public nlohmann::json_sax<Json> {
  public:
    explicit Builder(std::string_view text) : text_(text) {}

    bool null() override { return Add(nullptr); }
    bool boolean(bool value) override { return Add(value); }
    bool number_integer(number_integer_t value) override { return Add(value); }
    bool number_unsigned(number_unsigned_t value) override { return Add(value); }
    bool number_float(number_float_t value, const string_t& /*text*/) override {
        return Add(value);
    }
    bool string(string_t& value) override { return Add(std::move(value)); }
    bool binary(binary_t& /*value*/) override { return false; }  // not in a text
    bool start_object(std::size_t /*size*/) override { return Open(Json::object()); }
    bool start_array(std::size_t /*size*/) override { return Open(Json::array()); }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }

    bool key(string_t& name) override {
        levels_.back().member = std::move(name);
        return true;
    }

    bool parse_error(std::size_t byte, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*error*/) override {
        read_.error = PlaceOf(text_, byte);
        return false;
    }

    JsonText TakeText() {
        if (read_.error) {
            read_.value.reset();
        }
        return std::move(read_);
    }

  private:
    // An object or array that is not closed yet.
    struct Level {
        Json* value;
        std::string member{};  // the name of the next value of an object
    };

    // A value has no objects: nothing below the members of the document's objects is reported.
    void NoteDoubled() {
        constexpr size_t kDeepest = 2;
        if (levels_.size() > kDeepest || !levels_.front().value->is_object()) {
            return;
        }
        std::string pointer;
        for (const Level& level : levels_) {
            pointer = MemberPointer(pointer, level.member);
        }
        read_.doubled.push_back(std::move(pointer));
    }

    // Returns the value in its place; a second member of one name in a place that is thrown away.
    Json* Put(Json value) {
        if (levels_.empty()) {
            return &read_.value.emplace(std::move(value));
        }
        if (levels_.size() >= kMostLevels) {
            return Drop(std::move(value));
        }
        Json& parent = *levels_.back().value;
        if (parent.is_array()) {
            parent.push_back(std::move(value));
            return &parent.back();
        }
        if (parent.contains(levels_.back().member)) {
            NoteDoubled();
            return Drop(std::move(value));
        }
        return &(parent[levels_.back().member] = std::move(value));
    }

    Json* Drop(Json value) {
        dropped_.push_back(std::make_unique<Json>(std::move(value)));
        return dropped_.back().get();
    }

    bool Add(Json value) {
        (void)Put(std::move(value));
        return true;
    }

    bool Open(Json value) {
        levels_.push_back({Put(std::move(value))});
        return true;
    }

    bool Close() {
        levels_.pop_back();
        return true;
    }

    std::string_view text_;
    JsonText read_;
    std::vector<Level> levels_;
    std::vector<std::unique_ptr<Json>> dropped_;
};

}  // namespace

JsonText ReadJsonText(std::string_view text) {
    Builder builder(text);
    (void)Json::sax_parse(text, &builder);
    return builder.TakeText();
}

std::string MemberPointer(std::string_view pointer, std::string_view name) {
    std::string whole = std::string(pointer).append("/");
    for (const char character : name) {
        if (character == '~') {
            whole.append("~0");
        } else if (character == '/') {
            whole.append("~1");
        } else {
            whole.push_back(character);
        }
    }
    return whole;
}

}  // namespace velkctl
