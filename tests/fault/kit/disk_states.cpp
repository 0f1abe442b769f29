// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// disk_states.cpp - the states that a disk may show after a power cut.
#include "fault/kit/disk_states.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/paths.h"

namespace fault {
namespace {

using Kind = DiskEvent::Kind;

constexpr size_t kBlockSize = 4096;
constexpr unsigned kSeed = 20;

// The part of a write that is on disk.
using Cut = std::function<void(std::string& bytes)>;

void KeepFront(std::string& bytes, size_t size) {
    bytes.resize(std::min(size, bytes.size()));
}

void ClearFrom(std::string& bytes, size_t from) {
    std::fill(bytes.begin() + static_cast<ptrdiff_t>(std::min(from, bytes.size())), bytes.end(),
              '\0');
}

void ClearBlock(std::string& bytes, size_t number) {
    const size_t from = number * kBlockSize;
    const size_t size = std::min(kBlockSize, bytes.size() - from);
    bytes.replace(from, size, size, '\0');
}

std::vector<Cut> CutsOf(const std::string& bytes) {
    const size_t half = bytes.size() / 2;
    const size_t last = bytes.size() - 1;
    std::vector<Cut> cuts{
        [](std::string& part) { ClearFrom(part, 0); },
        [](std::string& part) { KeepFront(part, 1); },
        [half](std::string& part) { KeepFront(part, half); },
        [half](std::string& part) { ClearFrom(part, half); },
        [last](std::string& part) { KeepFront(part, last); },
        [last](std::string& part) { ClearFrom(part, last); },
    };
    for (size_t block = 0; bytes.size() > kBlockSize && block * kBlockSize < bytes.size();
         ++block) {
        cuts.emplace_back([block](std::string& part) { ClearBlock(part, block); });
    }
    return cuts;
}

// A file while the changes of it that are on disk are put together.
class PartialFile {
  public:
    explicit PartialFile(DiskFile start) : file_(std::move(start)) {}

    void Resize(size_t size, bool is_on_disk) {
        old_size_ = is_on_disk ? 0 : std::max(old_size_, file_.bytes.size());
        lost_size_ = is_on_disk ? std::nullopt : std::optional(size);
        if (is_on_disk) {
            file_.bytes.resize(size);
        }
    }

    void Write(size_t place, const std::string& bytes) {
        if (lost_size_) {
            file_.bytes.resize(std::min(*lost_size_, file_.bytes.size()));
            lost_size_.reset();
        }
        file_.bytes.resize(std::max(file_.bytes.size(), place + bytes.size()));
        file_.bytes.replace(place, bytes.size(), bytes);
    }

    void SetFacts(const DiskFile& facts) {
        file_.mode = facts.mode;
        file_.owner = facts.owner;
        file_.group = facts.group;
    }

    DiskFile Finish() && {
        if (!lost_size_) {
            file_.bytes.resize(std::max(file_.bytes.size(), old_size_));
        }
        return std::move(file_);
    }

  private:
    DiskFile file_;
    size_t old_size_ = 0;              // before a shortening that is not on disk
    std::optional<size_t> lost_size_;  // after it, if nothing was written since
};

struct Choice {
    std::vector<bool> is_on_disk;  // for each pending event
    size_t cut_event = 0;
    Cut cut{};  // cuts the write of that event
};

class States {
  public:
    States(const DiskLog& log, unsigned one_of, const std::function<bool(const CutState&)>& handle)
        : log_(log), one_of_(one_of), handle_(handle), durable_(log.before) {
        durable_.files.insert(log.new_files.begin(), log.new_files.end());
    }

    CutCounts Run() {
        CutAt(0);
        for (size_t made = 0; made < log_.events.size() && !is_stopped_; ++made) {
            const DiskEvent& event = log_.events[made];
            if (event.kind == Kind::kSync || event.kind == Kind::kSyncAll) {
                Settle(event);
            } else if (event.kind != Kind::kInMemory) {
                pending_.push_back(&event);
            }
            CutAt(made + 1);
        }
        return counts_;
    }

  private:
    static bool IsCovered(const DiskEvent& event, const DiskEvent& sync) {
        return sync.kind == Kind::kSyncAll || event.file == sync.file;
    }

    void Settle(const DiskEvent& sync) {
        std::vector<const DiskEvent*> covered;
        std::vector<const DiskEvent*> rest;
        for (const DiskEvent* event : pending_) {
            (IsCovered(*event, sync) ? covered : rest).push_back(event);
        }
        pending_ = covered;
        durable_ = Build({std::vector<bool>(covered.size(), true)});
        pending_ = rest;
    }

    void CutAt(size_t made) {
        in_memory_ = &log_.in_memory[made];
        is_at_end_ = made == log_.events.size();
        ++counts_.moments;
        counts_.most_pending = std::max(counts_.most_pending, pending_.size());
        HandleOnce({Visible(durable_), {}, is_at_end_});
        for (const std::vector<bool>& subset : Subsets()) {
            HandleSubset(subset);
        }
    }

    std::vector<std::vector<bool>> Subsets() {
        if (pending_.size() > kMostPendingForAll) {
            ++counts_.sampled_moments;
            return SomeSubsets();
        }
        std::vector<std::vector<bool>> subsets;
        for (size_t bits = 0; bits < size_t{1} << pending_.size(); ++bits) {
            subsets.push_back(Subset([bits](size_t i) { return (bits >> i & 1U) != 0; }));
        }
        return subsets;
    }

    std::vector<std::vector<bool>> SomeSubsets() {
        std::vector<std::vector<bool>> subsets;
        for (size_t one = 0; one <= pending_.size(); ++one) {  // the last is not the number of any
            subsets.push_back(Subset([one](size_t i) { return i == one; }));
            subsets.push_back(Subset([one](size_t i) { return i != one; }));
        }
        while (subsets.size() < size_t{1} << kMostPendingForAll) {
            subsets.push_back(Subset([this](size_t) { return (random_() & 1U) != 0; }));
        }
        return subsets;
    }

    std::vector<bool> Subset(const std::function<bool(size_t)>& has) const {
        std::vector<bool> subset;
        for (size_t i = 0; i < pending_.size(); ++i) {
            subset.push_back(has(i));
        }
        return subset;
    }

    void HandleSubset(const std::vector<bool>& subset) {
        Handle({subset});
        for (size_t i = 0; i < pending_.size(); ++i) {
            if (subset[i] && pending_[i]->kind == Kind::kWrite) {
                HandleCuts(subset, i);
            }
        }
    }

    // A sampled subset gets one cut of each write.
    void HandleCuts(const std::vector<bool>& subset, size_t event) {
        const std::vector<Cut> cuts = CutsOf(pending_[event]->bytes);
        if (pending_.size() > kMostPendingForAll) {
            Handle({subset, event, cuts[random_() % cuts.size()]});
            return;
        }
        for (const Cut& cut : cuts) {
            Handle({subset, event, cut});
        }
    }

    Disk Build(const Choice& choice) const {
        Disk disk = durable_;
        std::map<FileNumber, PartialFile> files;
        for (size_t i = 0; i < pending_.size(); ++i) {
            const DiskEvent& event = *pending_[i];
            if (event.kind == Kind::kNames) {
                SetNames(disk, event, choice.is_on_disk[i]);
                continue;
            }
            PartialFile& file =
                files.try_emplace(event.file, disk.files.at(event.file)).first->second;
            const bool has_cut = choice.cut && choice.cut_event == i;
            Change(file, event, choice.is_on_disk[i], has_cut ? choice.cut : nullptr);
        }
        for (auto& [number, file] : files) {
            disk.files[number] = std::move(file).Finish();
        }
        return disk;
    }

    static void SetNames(Disk& disk, const DiskEvent& event, bool is_on_disk) {
        for (const auto& [path, file] : event.names) {
            if (is_on_disk && file) {
                disk.names[path] = *file;
            } else if (is_on_disk) {
                disk.names.erase(path);
            }
        }
    }

    static void Change(PartialFile& file, const DiskEvent& event, bool is_on_disk, const Cut& cut) {
        if (event.kind == Kind::kResize) {
            file.Resize(event.place, is_on_disk);
        } else if (is_on_disk && event.kind == Kind::kMode) {
            file.SetFacts(event.facts);
        } else if (is_on_disk) {
            std::string bytes = event.bytes;
            if (cut) {
                cut(bytes);
            }
            file.Write(event.place, bytes);
        }
    }

    // A file cannot be found if its folder is not on disk.
    static Tree Visible(const Disk& disk) {
        Tree tree = TreeOf(disk);
        if (!tree.contains(testkit::kJournalFolder)) {
            std::erase_if(tree, [](const auto& item) {
                return item.first.starts_with(testkit::kJournalFolder);
            });
        }
        return tree;
    }

    void Handle(const Choice& choice) {
        if (is_stopped_ || random_() % one_of_ != 0) {
            return;
        }
        const Tree disk = Visible(Build(choice));
        HandleOnce({disk, {}, is_at_end_});
        HandleOnce({disk, *in_memory_, is_at_end_});
        Tree empty = *in_memory_;
        for (auto& [path, file] : empty) {
            file.bytes.clear();
        }
        HandleOnce({disk, empty, is_at_end_});
    }

    void HandleOnce(const CutState& state) {
        if (!is_stopped_ && seen_.insert(Fingerprint(state)).second) {
            is_stopped_ = !handle_(state);
        }
    }

    static uint64_t Fingerprint(const CutState& state) {
        std::string all(1, state.is_at_end ? 'e' : 'm');
        for (const Tree* tree : {&state.disk, &state.in_memory}) {
            for (const auto& [path, file] : *tree) {
                all.append(path).append(1, '\0').append(std::to_string(file.mode));
                all.append(std::to_string(file.bytes.size())).append(1, '\0').append(file.bytes);
            }
            all.append(1, '\1');
        }
        return std::hash<std::string>()(all);
    }

    const DiskLog& log_;
    const unsigned one_of_;
    const std::function<bool(const CutState&)>& handle_;
    Disk durable_;
    std::vector<const DiskEvent*> pending_;
    const Tree* in_memory_ = nullptr;
    bool is_at_end_ = false;
    bool is_stopped_ = false;
    CutCounts counts_;
    std::set<uint64_t> seen_;
    std::mt19937 random_{kSeed};
};

}  // namespace

CutCounts ForEachCutState(const DiskLog& log, unsigned one_of,
                          const std::function<bool(const CutState&)>& handle) {
    return States(log, one_of, handle).Run();
}

}  // namespace fault
