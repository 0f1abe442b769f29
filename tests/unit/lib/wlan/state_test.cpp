// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cstring>
#include <string>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "support/fake_shell.h"
#include "support/machine.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Data;
using testkit::MakeRequest;
using testkit::Return;
using testkit::ShortBytes;

constexpr char kEthtool[] = "sudo /usr/sbin/ethtool eth0";

SMsgState SampleState() {
    SMsgState state;
    memset(&state, 0, sizeof(state));
    strcpy(state.product, "P:  Vendor=1234 ProdID=5678 Rev= 1.01");
    strcpy(state.software_version, "2.4.1");
    state.region = 1;
    const uint8_t access_point[6] = {0x00, 0x1d, 0x73, 0xaa, 0x0b, 0xff};
    memcpy(state.access_point, access_point, 6);
    state.dot11_phy = 2;
    memcpy(state.rate, "\x36\x00\x00\x01", 4);
    state.signal[0] = 0x0102;
    state.signal[1] = 0xFFC4;
    return state;
}

std::string Padded(const std::string& text) {
    return text + std::string(VELK_DATA_SIZE - text.size(), '\0');
}

class StateTest : public testkit::DeviceTest {
  protected:
    StateTest() {
        testkit::WriteFile(testkit::kUsbDevices, "S:  Product=QT4408RKM\n");
        shell.Prints(kEthtool, {"Link detected: no\n"});
        daemon.SetState(SampleState());
    }
    void TearDown() override {
        daemon.Stop();
        DeviceTest::TearDown();
    }
    std::string Get(uint32_t id, int expected = 0) {
        EXPECT_EQ(Execute(VELK_GET, id, "eth1"), expected);
        return Data(response);
    }
    testkit::FakeShell shell;
    testkit::FakeDaemon daemon;
};

TEST_F(StateTest, GetsEachFact) {
    EXPECT_EQ(Get(4), Padded("1.01"));
    EXPECT_EQ(Get(5), Padded("2.4.1"));
    EXPECT_EQ(Get(301), Padded("\3"));
    EXPECT_EQ(Get(305), Padded("\2"));
    EXPECT_EQ(Get(315), Padded(std::string("\x36\0\0\x01", 4)));
    EXPECT_EQ(Get(316), Padded("001D73AA0BFF"));
    EXPECT_EQ(Get(317), Padded(ShortBytes(0x0102) + ShortBytes(0xFFC4)));
    daemon.Stop();
    EXPECT_EQ(daemon.types(), std::vector<int>(7, 4));
}

TEST_F(StateTest, WithoutAnAdapterTheDaemonIsNotAsked) {
    testkit::WriteFile(testkit::kUsbDevices, "");
    shell.Prints(kEthtool, {"Link detected: yes\n"});
    for (const uint32_t id : {4U, 5U, 301U, 305U, 315U, 316U, 317U}) {
        EXPECT_EQ(Get(id, -5), Padded("")) << "before -6";
    }
    daemon.Stop();
    EXPECT_THAT(daemon.types(), IsEmpty());
}

TEST_F(StateTest, WithTheCableInTheDaemonIsNotAsked) {
    shell.Prints(kEthtool, {"Link detected: yes\n"});
    for (const uint32_t id : {4U, 5U, 301U, 305U, 315U, 316U, 317U}) {
        EXPECT_EQ(Get(id, -6), Padded(""));
    }
    daemon.Stop();
    EXPECT_THAT(daemon.types(), IsEmpty());
}

TEST_F(StateTest, WithoutADaemonItFails) {
    daemon.Stop();
    EXPECT_EQ(Get(4, -1), Padded(""));
    EXPECT_FALSE(testkit::Exists(testkit::kSemaphoreFile));
}

TEST_F(StateTest, ASilentDaemonFails) {
    daemon.StaySilent();
    libc().ScriptAlways(Call::kSelect, Return(0));
    EXPECT_EQ(Get(4, -1), Padded(""));
    EXPECT_THAT(libc().Logs(), ElementsAre("RecvWlanResponseMessage select timeout"));
}

TEST_F(StateTest, GarbageIsReadWithinItsBounds) {
    daemon.ReplyWith(std::string(240, 'g'));
    EXPECT_EQ(Get(4), Padded(""));
    EXPECT_EQ(Get(5), Padded(std::string(32, 'g')));
    EXPECT_EQ(Get(301, -1), Padded("\3"));
    EXPECT_EQ(Get(305, -1), Padded("\1"));
    EXPECT_EQ(Get(315), Padded("gggg"));
    EXPECT_EQ(Get(316), Padded("676767676767"));
    EXPECT_EQ(Get(317), Padded("gggg"));
}

TEST_F(StateTest, ANullOutputIsRefusedFirst) {
    testkit::WriteFile(testkit::kUsbDevices, "");
    EXPECT_EQ(GetWlanState(MakeRequest(VELK_GET, 4, "eth1"), nullptr), -4);
}

TEST_F(StateTest, AnIdThatIsNoFactGetsNothing) {
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetWlanState(MakeRequest(VELK_GET, 399, "eth1"), out), 0);
    EXPECT_STREQ(out, "unchanged");
    daemon.Stop();
    EXPECT_THAT(daemon.types(), ElementsAre(4));
}

TEST(StateFacts, TheHardwareVersionIsTheTextAfterTheKey) {
    SMsgState state = SampleState();
    char out[VELK_DATA_SIZE] = "";
    strcpy(state.product, "Rev= 2.00 beta Rev= 3");
    EXPECT_EQ(GetHardwareVersion(state, out), 0);
    EXPECT_STREQ(out, "2.00 beta Rev= 3");
}

TEST(StateFacts, WithoutTheKeyNothingIsWritten) {
    SMsgState state = SampleState();
    char out[VELK_DATA_SIZE] = "unchanged";
    strcpy(state.product, "P:  Vendor=1234 ProdID=5678 Rev=1.01");
    EXPECT_EQ(GetHardwareVersion(state, out), 0);
    EXPECT_STREQ(out, "unchanged");
}

TEST(StateFacts, TextsWithoutANulEndWhereTheNextFieldBegins) {
    SMsgState state = SampleState();
    char out[VELK_DATA_SIZE] = "";
    memset(state.product, 'p', sizeof(state.product));
    memcpy(state.product, "Rev= ", 5);
    memset(state.software_version, 's', sizeof(state.software_version));
    EXPECT_EQ(GetHardwareVersion(state, out), 0);
    EXPECT_EQ(std::string(out), std::string(59, 'p'));
    EXPECT_EQ(GetSoftwareVersion(state, out), 0);
    EXPECT_EQ(std::string(out), std::string(32, 's'));
}

TEST(StateFacts, EveryKnownAndUnknownCode) {
    for (unsigned value = 0; value < 65536; ++value) {
        SMsgState state = SampleState();
        state.dot11_phy = state.region = static_cast<uint16_t>(value);
        char phy = 'x';
        char region = 'x';
        const int expected = value <= 2 ? 0 : -1;
        ASSERT_EQ(GetDot11Phy(state, &phy), expected);
        ASSERT_EQ(GetRegion(state, &region), expected);
        ASSERT_EQ(phy, value <= 2 ? static_cast<char>(value + 1) : 3);
        ASSERT_EQ(region, value <= 2 ? static_cast<char>(value + 1) : 1);
    }
}

TEST(StateFacts, NullOutputsAreFailures) {
    const SMsgState state = SampleState();
    for (const auto getter : {GetHardwareVersion, GetSoftwareVersion, GetDot11Phy, GetRegion,
                              GetRate, GetAccessPoint, GetSignal}) {
        EXPECT_EQ(getter(state, nullptr), -1);
    }
}

TEST(StateFacts, TheAccessPointIsATextOfItsOwn) {
    char out[VELK_DATA_SIZE] = "";
    EXPECT_EQ(GetAccessPoint(SampleState(), out), 0);
    EXPECT_STREQ(out, "001D73AA0BFF");
}

TEST(StateFacts, RawFactsWriteTheirBytesAlone) {
    const SMsgState state = SampleState();
    char out[8];
    memset(out, 'x', sizeof(out));
    EXPECT_EQ(GetRate(state, out), 0);
    EXPECT_EQ(std::string(out, 8), std::string("\x36\0\0\x01xxxx", 8));
    memset(out, 'x', sizeof(out));
    EXPECT_EQ(GetSignal(state, out), 0);
    EXPECT_EQ(std::string(out, 8), ShortBytes(0x0102) + ShortBytes(0xFFC4) + "xxxx");
}

}  // namespace
