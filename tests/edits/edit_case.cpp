// edit_case.cpp - reads one case of the edits ring.
#include "edits/edit_case.h"

#include <array>
#include <set>
#include <sstream>
#include <stdexcept>

#include "support/device_test.h"

namespace edits {
namespace {

namespace fs = std::filesystem;

constexpr std::array kDeviceFiles{
    "/etc/network/interfaces", "/etc/dhclient.conf",  "/etc/dhclient-exit-hooks",
    "/sbin/dhclient-script",   "/var/cron/tabs/root", "/var/libvelk/libvelk",
    "/var/libvelk/ntp.log",    "/tmp/oldIPAddress",
};

std::optional<std::string> ReadIfThere(const fs::path& path) {
    if (!fs::exists(path)) {
        return std::nullopt;
    }
    return testkit::ReadFile(path);
}

CaseFile ReadCaseFile(const fs::path& folder, const std::string& path) {
    const fs::path given = folder / fs::path(path).filename();
    CaseFile file{.path = path,
                  .before = ReadIfThere(given),
                  .after = ReadIfThere(given.string() + ".after"),
                  .copy = ReadIfThere(given.string() + ".copy")};
    if (!file.after && !fs::exists(given.string() + ".gone")) {
        file.after = file.before;
    }
    return file;
}

class RequestReader {
  public:
    EditCase Read(const fs::path& path) {
        std::istringstream lines(testkit::ReadFile(path));
        for (std::string line; std::getline(lines, line);) {
            Take(line);
        }
        if (case_.request.command_type != VELK_SET) {
            throw std::runtime_error("no set line");
        }
        return case_;
    }

  private:
    void Take(const std::string& line) {
        std::istringstream words(line);
        std::string keyword;
        words >> keyword;
        if (keyword == "set") {
            std::string interface;
            uint32_t id = 0;
            words >> id >> interface;
            case_.request = testkit::MakeRequest(VELK_SET, id, interface == "-" ? "" : interface);
        } else if (keyword == "bytes") {
            for (int byte = 0; words >> byte;) {
                Add({static_cast<char>(byte)});
            }
        } else if (keyword == "text") {
            Add(line.substr(std::min(line.size(), keyword.size() + 1)) + '\0');
        } else if (keyword == "result") {
            words >> case_.result;
        } else if (!keyword.empty() && keyword != "#") {
            throw std::runtime_error("unknown line: " + line);
        }
    }

    void Add(const std::string& bytes) {
        if (size_ + bytes.size() > sizeof(case_.request.data)) {
            throw std::runtime_error("more data than fits");
        }
        bytes.copy(&case_.request.data[size_], bytes.size());
        size_ += bytes.size();
    }

    EditCase case_;
    size_t size_ = 0;
};

// A misspelt name would silently hold nothing.
void RefuseUnknownFiles(const fs::path& folder) {
    std::set<std::string> names{"request"};
    for (const char* path : kDeviceFiles) {
        const std::string name = fs::path(path).filename();
        names.insert({name, name + ".after", name + ".copy", name + ".gone"});
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        if (!names.contains(entry.path().filename())) {
            throw std::runtime_error("unknown file: " + entry.path().filename().string());
        }
    }
}

}  // namespace

EditCase ReadEditCase(const fs::path& folder) {
    RefuseUnknownFiles(folder);
    EditCase read = RequestReader().Read(folder / "request");
    for (const char* path : kDeviceFiles) {
        read.files.push_back(ReadCaseFile(folder, path));
    }
    return read;
}

}  // namespace edits
