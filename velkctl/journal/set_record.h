// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// set_record.h - the journal entry of a plain set.
#ifndef VELKCTL_JOURNAL_SET_RECORD_H_
#define VELKCTL_JOURNAL_SET_RECORD_H_

#include <vector>

#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/call/watched_call.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/setting_change.h"

namespace velkctl {

// Begins the entry of these changes before the first attempt to make one, records the files after
// each, and closes the entry after the last: Ctrl-C while it is read back interrupts no set. A
// journal that cannot be written is noted, and the set goes on: a device with a full
// disk must remain reachable. During its lifetime no other run keeps an entry: the files after this
// set would have the changes of both.
class SetRecord final : public SetWatcher {
  public:
    // Watches the sets of the device, which must outlive it.
    SetRecord(const std::vector<SettingChange>& changes, int wait_seconds, Device& device,
              Report& report);
    ~SetRecord() { device_.StopWatching(); }
    SetRecord(const SetRecord&) = delete;
    SetRecord& operator=(const SetRecord&) = delete;

    // True if another run of velkctl holds the journal, or a change waits for its confirmation. It
    // is reported, and no set may be made.
    bool is_refused() const { return refusal_ != ExitStatus::kDone; }
    ExitStatus refusal() const { return refusal_; }

    bool BeforeAttempt() override;
    void AfterAttempt(const Answer& answer) override;

    // Closes the entry also if not all changes were made. Removes it if nothing has changed, or if
    // it cannot be closed: recover would take back a set that was made.
    void Finish();

  private:
    void Refuse(const Problem& problem, ExitStatus status);
    void GiveUp(int error);
    // Returns false while another program changes settings.
    bool Begin();
    void NoteInterrupted();
    void Withdraw();
    // Counts the steps that have changed something.
    void CountStep(const Answer& answer);
    void Close(int flushed);

    const ChangePlan plan_;
    Device& device_;
    Report& report_;
    const JournalLock lock_;
    ExitStatus refusal_ = ExitStatus::kDone;
    bool is_given_up_ = false;
    bool is_finished_ = false;
    bool has_noted_ = false;          // an interrupted change before
    size_t attempted_ = 0;            // the changes that were not refused for the lock
    size_t made_ = 0;                 // the changes up to the last one that may have an effect
    bool has_changed_value_ = false;  // one held by the wireless daemon or the port
    OpenChange change_;
};

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_SET_RECORD_H_
