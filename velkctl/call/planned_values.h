// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// planned_values.h - the values of the device after the changes of one call.
#ifndef VELKCTL_CALL_PLANNED_VALUES_H_
#define VELKCTL_CALL_PLANNED_VALUES_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "velkctl/call/device.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_change.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// Answers with the new value of a setting that the changes contain, and with the present value of
// any other. A check of one value against others asks it, so that settings that are changed
// together are compared as they will be. The device and the changes must outlive it.
class PlannedValues {
  public:
    PlannedValues(const Device& device, std::span<const SettingChange> changes)
        : device_(device), changes_(changes) {}

    // Returns nothing if the value cannot be read, or if the device shows the address of a lease
    // and the changes set the method to static: the configured address is then unknown.
    std::optional<Data> Get(const Setting& setting) const;

    // The same for the command with this id on an interface. Returns nothing if there is none.
    std::optional<Data> Get(uint32_t id, std::string_view interface) const;

    // True if the interface will have the method static. False if the method cannot be read.
    bool HasStaticMethod(std::string_view interface) const;

    // True if the changes contain the setting.
    bool Changes(const Setting& setting) const { return Planned(setting).has_value(); }

  private:
    std::optional<Data> Planned(const Setting& setting) const;
    bool ShowsOtherMethod(const Setting& setting) const;

    const Device& device_;
    const std::span<const SettingChange> changes_;
};

}  // namespace velkctl

#endif  // VELKCTL_CALL_PLANNED_VALUES_H_
