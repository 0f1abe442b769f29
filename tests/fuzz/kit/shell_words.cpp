// shell_words.cpp - reads a shell line as a POSIX shell would.
#include "fuzz/kit/shell_words.h"

namespace fuzz {
namespace {

constexpr std::string_view kMeaningful = "|&;<>()$`\"*?[#~\n";
constexpr std::string_view kSed = "sudo sed -i ";
constexpr std::string_view kSnmpFile = "/usr/local/share/etc/snmp/snmpd.conf";

// A substitution with just the two slashes that divide it and the one that ends it.
bool IsOneSubstitution(std::string_view script) {
    size_t slashes = 0;
    for (size_t i = 0; i < script.size(); ++i) {
        if (script[i] == '\\') {
            ++i;
        } else if (script[i] == '/') {
            ++slashes;
        }
    }
    return script.starts_with("s/") && script.ends_with('/') && slashes == 3;
}

}  // namespace

std::optional<std::vector<std::string>> ShellWords(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool quoted = false;
    bool in_word = false;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\'') {
            quoted = !quoted;
            in_word = true;
        } else if (quoted) {
            word += c;
        } else if (c == ' ') {
            if (in_word) {
                words.push_back(word);
            }
            word.clear();
            in_word = false;
        } else if (c == '\\' && i + 1 < line.size()) {
            word += line[++i];
            in_word = true;
        } else if (kMeaningful.find(c) != std::string_view::npos) {
            return std::nullopt;
        } else {
            word += c;
            in_word = true;
        }
    }
    if (quoted) {
        return std::nullopt;
    }
    if (in_word) {
        words.push_back(word);
    }
    return words;
}

bool IsHarmless(const std::string& line) {
    if (!line.starts_with(kSed)) {
        return true;  // its words are the library's own, or an address handed on as it came
    }
    const auto words = ShellWords(line);
    return words && words->size() == 5 && words->back() == kSnmpFile &&
           IsOneSubstitution((*words)[3]);
}

}  // namespace fuzz
