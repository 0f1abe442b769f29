// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_meetings.cpp - programs that call the library at the same time.
#include "schedules/library_meetings.h"

#include <array>
#include <string>
#include <string_view>

#include "schedules/kit/board.h"
#include "schedules/kit/shared_device.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "velk.h"
#include "velk/wired.h"

namespace schedules {
namespace {

constexpr char kFirst[] = "first";
constexpr char kSecond[] = "second";

// The values of every device at its start, and those of the sets.
constexpr std::string_view kAddress = "192.168.0.10";
constexpr std::string_view kNetmask = "255.255.255.0";
constexpr std::string_view kNewAddress = "10.1.2.3";
constexpr std::string_view kOtherAddress = "10.9.9.9";
constexpr std::string_view kNewNetmask = "255.0.0.0";

_velk_request Get(uint32_t id) {
    return testkit::MakeRequest(VELK_GET, id, "eth0");
}

_velk_request Set(uint32_t id, std::string_view value) {
    return testkit::MakeRequest(VELK_SET, id, "eth0", value);
}

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    const size_t at = text.find(from);
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

std::string ResultText(const Course& course) {
    std::string text;
    for (const auto& [caller, result] : course.results) {
        text.append(caller).append(" returned ").append(std::to_string(result)).append("\n");
    }
    return text;
}

// Two callers, each with one request and its answer.
class TwoRequests : public Meeting {
  public:
    TwoRequests(const _velk_request& first, const _velk_request& second)
        : requests_{first, second} {}

    std::vector<Caller> Prepare() override {
        MakeDevice();
        start_ = testkit::ReadFile(testkit::kInterfacesFile);
        return {{kFirst, [this] { return Execute(0); }}, {kSecond, [this] { return Execute(1); }}};
    }

    std::string Check(const Course& course) override {
        const std::string remains = FindRemains(course);
        return remains.empty() ? CheckAnswers(course) : remains;
    }

  protected:
    virtual std::string CheckAnswers(const Course& course) = 0;

    virtual int Execute(size_t number) {
        EnterDevice();
        return execute_velk_command(&requests_.at(number), &answers_->at(number));
    }

    const _velk_request& request(size_t number) const { return requests_.at(number); }
    _velk_request& answer(size_t number) { return answers_->at(number); }
    // The interfaces file before the calls.
    const std::string& start() const { return start_; }

  private:
    const std::array<_velk_request, 2> requests_;
    const Shared<std::array<_velk_request, 2>> answers_;
    std::string start_;
};

// ---- Get and get -------------------------------------------------------------------------------

class TwoGets final : public TwoRequests {
  public:
    TwoGets() : TwoRequests(Get(VELK_CMD_LINK_SPEED), Get(VELK_CMD_IP_ADDRESS)) {}

  private:
    // The second one asks for the live address.
    int Execute(size_t number) override {
        if (number == 0) {
            return TwoRequests::Execute(0);
        }
        EnterDevice();
        answer(1) = {};
        return GetIpAddress(request(1), answer(1).data);
    }

    std::string CheckAnswers(const Course& course) override {
        if (course.results != std::map<std::string, int>{{kFirst, 0}, {kSecond, 0}}) {
            return ResultText(course);
        }
        if (answer(0).data[0] != kPrintedSpeed) {
            return "the first one got another link speed than the tool printed";
        }
        const std::string address = answer(1).data;
        return address == kPrintedAddress ? "" : "the second one got the address '" + address + "'";
    }
};

// ---- Get and set -------------------------------------------------------------------------------

class GetAndSet final : public TwoRequests {
  public:
    explicit GetAndSet(uint32_t id) : TwoRequests(Get(id), Set(VELK_CMD_IP_ADDRESS, kNewAddress)) {}

  private:
    std::string CheckAnswers(const Course& course) override {
        if (course.results != std::map<std::string, int>{{kFirst, 0}, {kSecond, 0}}) {
            return ResultText(course);
        }
        if (testkit::ReadFile(testkit::kInterfacesFile) !=
            Replaced(start(), kAddress, kNewAddress)) {
            return "the file has not the text of the set";
        }
        const std::string_view got = answer(0).data;
        const bool is_address = request(0).command_id == VELK_CMD_IP_ADDRESS;
        const bool is_right = is_address ? got == kAddress || got == kNewAddress : got == kNetmask;
        return is_right ? "" : "the get returned '" + std::string(got) + "'";
    }
};

// ---- Set and set -------------------------------------------------------------------------------

// The lock refuses a set while another one runs.
class TwoSets final : public TwoRequests {
  public:
    TwoSets(uint32_t id, std::string_view value)
        : TwoRequests(Set(VELK_CMD_IP_ADDRESS, kNewAddress), Set(id, value)) {}

  private:
    static bool IsDone(const Course& course, const char* caller) {
        const auto found = course.results.find(caller);
        return found != course.results.end() && found->second == LIB_VELK_SUCCESS;
    }

    std::string CheckAnswers(const Course& course) override {
        for (const auto& [caller, result] : course.results) {
            if (result != LIB_VELK_SUCCESS && result != LIB_VELK_LOCKED) {
                return ResultText(course);
            }
        }
        const bool is_first_done = IsDone(course, kFirst);
        const bool is_second_done = IsDone(course, kSecond);
        if (!is_first_done && !is_second_done) {
            return "both were refused";
        }
        return CheckText(is_first_done, is_second_done);
    }

    // The file is as one of the serial orders leaves it.
    std::string CheckText(bool is_first_done, bool is_second_done) const {
        const std::string text = testkit::ReadFile(testkit::kInterfacesFile);
        const std::string first = Replaced(start(), kAddress, kNewAddress);
        if (request(1).command_id == VELK_CMD_IP_ADDRESS) {
            const std::string second = Replaced(start(), kAddress, kOtherAddress);
            const bool is_right =
                (is_first_done && text == first) || (is_second_done && text == second);
            return is_right ? "" : "the file is of neither set:\n" + text;
        }
        const std::string& made = is_first_done ? first : start();
        const std::string both = is_second_done ? Replaced(made, kNetmask, kNewNetmask) : made;
        return text == both ? "" : "the value of a set that returned 0 is lost:\n" + text;
    }
};

}  // namespace

std::unique_ptr<Meeting> GetMeetsGet() {
    return std::make_unique<TwoGets>();
}

std::unique_ptr<Meeting> GetMeetsSetOfAnother() {
    return std::make_unique<GetAndSet>(VELK_CMD_NETMASK);
}

std::unique_ptr<Meeting> GetMeetsSetOfTheSame() {
    return std::make_unique<GetAndSet>(VELK_CMD_IP_ADDRESS);
}

std::unique_ptr<Meeting> SetMeetsSetOfAnother() {
    return std::make_unique<TwoSets>(VELK_CMD_NETMASK, kNewNetmask);
}

std::unique_ptr<Meeting> SetMeetsSetOfTheSame() {
    return std::make_unique<TwoSets>(VELK_CMD_IP_ADDRESS, kOtherAddress);
}

}  // namespace schedules
