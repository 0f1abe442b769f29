// memory_record.h - the state before a change, kept in memory.
#ifndef VELKCTL_CHANGES_MEMORY_RECORD_H_
#define VELKCTL_CHANGES_MEMORY_RECORD_H_

#include <vector>

#include "velkctl/changes/change_record.h"
#include "velkctl/files/file_image.h"

namespace velkctl {

class MemoryRecord final : public ChangeRecord {
  public:
    std::optional<BeginFailure> Begin(const ChangeSet& steps,
                                      const std::vector<std::string>& restarts,
                                      const Device& device) override;
    void StepMade() override {}
    std::optional<Problem> Flush() override;
    std::optional<Problem> Finish() override { return std::nullopt; }
    ExitStatus TakeBack(const Device& device, Report& report) override;

  private:
    std::vector<FileImage> files_;
    ChangeSet values_;  // the old ones of settings that are held in no file
};

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_MEMORY_RECORD_H_
