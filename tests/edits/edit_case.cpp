// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_case.cpp - reads one case of the edits ring.
#include "edits/edit_case.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "support/device_test.h"
#include "support/paths.h"

namespace edits {
namespace {

using testkit::kClientScript;
using testkit::kCrontab;
using testkit::kDhcpConfigFile;
using testkit::kExitHooks;
using testkit::kIdentityFile;
using testkit::kInterfacesFile;
using testkit::kNtpLog;
using testkit::kOldAddressFile;
using testkit::kResolverFile;

namespace fs = std::filesystem;

constexpr std::array kDeviceFiles{
    kInterfacesFile, kDhcpConfigFile, kExitHooks,      kClientScript, kCrontab,
    kIdentityFile,   kNtpLog,         kOldAddressFile, kResolverFile,
};
constexpr std::string_view kSectionMark = "--- ";
constexpr std::string_view kNoNewline = "\\c";

bool IsSectionName(std::string_view name) {
    for (const fs::path path : kDeviceFiles) {
        const std::string file = path.filename();
        for (const char* suffix : {"", ".after", ".gone", ".copy"}) {
            if (name == file + suffix) {
                return true;
            }
        }
    }
    return false;
}

// Includes a blank at the end of the line, which editors remove.
bool HasUnseenBytes(std::string_view line) {
    for (const unsigned char byte : line) {
        if ((byte < 0x20 && byte != '\t') || byte == 0x7f) {
            return true;
        }
    }
    return line.ends_with(' ') || line.ends_with('\t');
}

std::vector<std::string> SplitWords(const std::string& line) {
    std::istringstream words(line);
    std::vector<std::string> found;
    for (std::string word; words >> word;) {
        found.push_back(word);
    }
    return found;
}

class CaseParser {
  public:
    explicit CaseParser(std::string name) : name_(std::move(name)) {}

    EditCase Parse(const std::string& text) {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            ++number_;
            TakeLine(line);
        }
        RequireSetLine();
        for (const char* path : kDeviceFiles) {
            case_.files.push_back(MakeCaseFile(path));
        }
        return case_;
    }

  private:
    [[noreturn]] void Fail(const std::string& mistake) const {
        throw std::runtime_error(name_ + ":" + std::to_string(number_) + ": " + mistake);
    }

    void TakeLine(const std::string& line) {
        if (HasUnseenBytes(line)) {
            Fail("a byte that cannot be seen: write it as \\xNN");
        }
        if (line.starts_with(kSectionMark)) {
            BeginSection(line.substr(kSectionMark.size()));
        } else if (section_ != nullptr) {
            AddToSection(line);
        } else if (!line.starts_with('#')) {
            TakeRequestLine(line);
        }
    }

    void BeginSection(const std::string& name) {
        RequireSetLine();
        if (!IsSectionName(name)) {
            Fail("unknown section: " + name);
        }
        const auto [section, is_new] = sections_.emplace(name, "");
        if (!is_new) {
            Fail("section given twice: " + name);
        }
        section_ = &section->second;
        takes_text_ = !name.ends_with(".gone");
    }

    void AddToSection(std::string_view line) {
        if (!takes_text_) {
            Fail("text after \\c, or in a file that is gone");
        }
        *section_ += TakeBytes(line);
        takes_text_ = line != kNoNewline;
        if (takes_text_) {
            *section_ += '\n';
        }
    }

    void TakeRequestLine(const std::string& line) {
        const std::vector<std::string> words = SplitWords(line);
        const std::string word = words.empty() ? "" : words[0];
        if (word == "set") {
            TakeSet(words);
            return;
        }
        RequireSetLine();
        if (word == "bytes") {
            for (size_t i = 1; i < words.size(); ++i) {
                AddData({static_cast<char>(Number(words[i], 0, UINT8_MAX))});
            }
        } else if (word == "result" && words.size() == 2) {
            case_.result = static_cast<int>(Number(words[1], INT32_MIN, INT32_MAX));
        } else if (word == "result" || word.empty()) {
            Fail("a result line without a number, or an empty line");
        } else {
            AddText(line);
        }
    }

    void TakeSet(const std::vector<std::string>& words) {
        if (words.size() != 3 || case_.request.command_type == VELK_SET) {
            Fail("a case takes one line: set ID INTERFACE");
        }
        const std::string interface = words[2] == "-" ? "" : words[2];
        const auto id = static_cast<uint32_t>(Number(words[1], 0, UINT32_MAX));
        case_.request = testkit::MakeRequest(VELK_SET, id, interface);
    }

    void RequireSetLine() const {
        if (case_.request.command_type != VELK_SET) {
            Fail("no set line so far");
        }
    }

    void AddText(std::string_view line) {
        AddData(TakeBytes(line) + '\0');
        if (!line.empty()) {
            Fail("\\c in the request");
        }
    }

    void AddData(const std::string& bytes) {
        if (size_ + bytes.size() > sizeof(case_.request.data)) {
            Fail("more data than a request holds");
        }
        bytes.copy(&case_.request.data[size_], bytes.size());
        size_ += bytes.size();
    }

    int64_t Number(const std::string& word, int64_t lowest, int64_t highest) const {
        int64_t number = 0;
        const char* const end = word.data() + word.size();
        const auto [stop, error] = std::from_chars(word.data(), end, number);
        if (error != std::errc() || stop != end || number < lowest || number > highest) {
            Fail("not a number that fits here: " + word);
        }
        return number;
    }

    // Returns the bytes of a line. Only a closing \c is left of the line.
    std::string TakeBytes(std::string_view& line) const {
        std::string bytes;
        while (!line.empty() && line != kNoNewline) {
            bytes += line.starts_with('\\') ? TakeEscape(line) : line.front();
            line.remove_prefix(1);
        }
        return bytes;
    }

    // Leaves the escape's last character in the line.
    char TakeEscape(std::string_view& line) const {
        line.remove_prefix(1);
        if (line.starts_with('\\')) {
            return '\\';
        }
        unsigned char byte = 0;
        const std::string_view digits = line.substr(0, 3);
        if (digits.size() == 3 && digits.front() == 'x') {
            const auto [stop, error] =
                std::from_chars(digits.data() + 1, digits.data() + 3, byte, 16);
            if (error == std::errc() && stop == digits.data() + 3) {
                line.remove_prefix(2);
                return static_cast<char>(byte);
            }
        }
        Fail("unknown escape: \\" + std::string(digits));
    }

    std::optional<std::string> SectionText(const std::string& name) const {
        const auto found = sections_.find(name);
        return found == sections_.end() ? std::nullopt : std::optional(found->second);
    }

    CaseFile MakeCaseFile(const fs::path& path) const {
        const std::string name = path.filename();
        CaseFile file{.path = path,
                      .before = SectionText(name),
                      .after = SectionText(name + ".after"),
                      .copy = SectionText(name + ".copy")};
        const bool is_gone = sections_.contains(name + ".gone");
        if (is_gone && file.after) {
            Fail("a text after the request for a file that is gone: " + name);
        }
        if (!is_gone && !file.after) {
            file.after = file.before;
        }
        return file;
    }

    const std::string name_;
    int number_ = 0;
    EditCase case_;
    size_t size_ = 0;  // the length of the request's data
    std::map<std::string, std::string> sections_;
    std::string* section_ = nullptr;  // the section that the lines belong to
    bool takes_text_ = false;
};

}  // namespace

EditCase ParseEditCase(const std::string& name, const std::string& text) {
    return CaseParser(name).Parse(text);
}

EditCase ReadEditCase(const fs::path& file) {
    return ParseEditCase(file, testkit::ReadFile(file));
}

}  // namespace edits
