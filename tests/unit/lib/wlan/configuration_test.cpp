// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The configuration commands, end to end over the real sockets and semaphore.
#include <cerrno>
#include <cstring>
#include <string>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "support/machine.h"
#include "unit/lib/wlan/bytes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Bytes;
using testkit::Call;
using testkit::Data;
using testkit::MakeRequest;
using testkit::Return;
using testkit::ShortBytes;

SMsgConf SampleConf() {
    SMsgConf conf;
    memset(&conf, 0xC3, sizeof(conf));  // unused bytes and tails are not zero
    conf.ssid_length = 4;
    memcpy(conf.ssid, "home", 4);
    conf.service_set = 1;
    conf.dot11_phy_conf = 1;
    conf.channel = 6;
    conf.auth = 2;
    conf.encryption = 3;
    conf.wep_default = 2;
    for (size_t i = 0; i < 4; ++i) {
        conf.wep_key[i].length = 5;
        memset(conf.wep_key[i].key, static_cast<char>('a' + i), 5);
    }
    conf.psk_length = 8;
    memcpy(conf.psk, "password", 8);
    return conf;
}

class ConfigurationTest : public testkit::DeviceTest {
  protected:
    ConfigurationTest() { daemon.SetConf(SampleConf()); }
    void TearDown() override {
        daemon.Stop();
        DeviceTest::TearDown();
    }
    std::string Get(uint32_t id) {
        EXPECT_EQ(Execute(VELK_GET, id, "eth1"), 0);
        return Data(response);
    }
    static std::string Padded(const std::string& text) {
        return text + std::string(VELK_DATA_SIZE - text.size(), '\0');
    }
    testkit::FakeDaemon daemon;
};

TEST_F(ConfigurationTest, GetsEachField) {
    EXPECT_EQ(Get(318), Padded("\3"));
    EXPECT_EQ(Get(302), Padded("\1"));
    EXPECT_EQ(Get(303), Padded("home"));
    EXPECT_EQ(Get(304), Padded("\6"));
    EXPECT_EQ(Get(306), Padded("\4"));
    EXPECT_EQ(Get(307), Padded("\3"));
    EXPECT_EQ(Get(308), Padded("aaaaa"));
    EXPECT_EQ(Get(309), Padded("bbbbb"));
    EXPECT_EQ(Get(310), Padded("ccccc"));
    EXPECT_EQ(Get(311), Padded("ddddd"));
    EXPECT_EQ(Get(312), Padded("\2"));
    EXPECT_EQ(Get(314), Padded("password"));
    daemon.Stop();
    EXPECT_EQ(daemon.types(), std::vector<int>(12, 3));
}

TEST_F(ConfigurationTest, ASetChangesItsFieldAndNoOtherByte) {
    EXPECT_EQ(Execute(VELK_SET, 304, "eth1", "\13"), 0);
    daemon.Stop();
    SMsgConf expected = SampleConf();
    expected.channel = 11;
    EXPECT_EQ(Bytes(daemon.conf()), Bytes(expected));
    EXPECT_THAT(daemon.types(), ElementsAre(3, 2));
    EXPECT_EQ(daemon.requests()[1], ShortBytes(2) + std::string(2, '\0') + Bytes(expected));
}

TEST_F(ConfigurationTest, SetsEachField) {
    const struct {
        uint32_t id;
        const char* data;
    } sets[] = {{318, "\2"},    {302, "\2"},    {303, "office"}, {304, "\1"},
                {306, "\2"},    {307, "\1"},    {308, "11111"},  {309, "2222222222"},
                {310, "33333"}, {311, "44444"}, {312, "\4"},     {314, "another secret"}};
    for (const auto& set : sets) {
        EXPECT_EQ(Execute(VELK_SET, set.id, "eth1", set.data), 0) << set.id;
    }
    for (const auto& set : sets) {
        EXPECT_EQ(Get(set.id), Padded(set.data)) << set.id;
    }
}

TEST_F(ConfigurationTest, AnSsidOf32BytesIsReadBack) {
    const std::string ssid = "12345678901234567890123456789012";
    EXPECT_EQ(Execute(VELK_SET, 303, "eth1", ssid), 0);
    EXPECT_EQ(Get(303), Padded(ssid));
}

TEST_F(ConfigurationTest, ARefusedValueSendsNothing) {
    const struct {
        uint32_t id;
        std::string data;
    } refused[] = {{303, std::string(33, 's')},
                   {304, std::string(1, '\0')},
                   {304, "\16"},
                   {308, "123456"},
                   {312, "\5"},
                   {314, std::string(65, 'p')},
                   {318, "\1"},
                   {302, "\3"},
                   {306, "\5"},
                   {307, std::string(1, '\0')}};
    for (const auto& set : refused) {
        EXPECT_EQ(Execute(VELK_SET, set.id, "eth1", set.data), -4) << set.id;
    }
    daemon.Stop();
    EXPECT_EQ(daemon.types(), std::vector<int>(10, 3)) << "asked, but nothing stored";
    EXPECT_EQ(Bytes(daemon.conf()), Bytes(SampleConf()));
}

TEST_F(ConfigurationTest, TheWepKeyInUseCannotBeCleared) {
    EXPECT_EQ(Execute(VELK_SET, 306, "eth1", "\2"), 0);
    EXPECT_EQ(Execute(VELK_SET, 309, "eth1", ""), -4);
    EXPECT_EQ(Execute(VELK_SET, 312, "eth1", "\1"), 0);
    EXPECT_EQ(Execute(VELK_SET, 309, "eth1", ""), 0);
    EXPECT_EQ(Get(309), Padded(""));
}

TEST_F(ConfigurationTest, WithoutADaemonEverythingFails) {
    daemon.Stop();
    EXPECT_EQ(Execute(VELK_GET, 303, "eth1"), -1);
    EXPECT_EQ(Execute(VELK_SET, 303, "eth1", "office"), -1);
    EXPECT_EQ(Data(response), Padded(""));
}

TEST_F(ConfigurationTest, ASilentDaemonFails) {
    daemon.StaySilent();
    libc().ScriptAlways(Call::kSelect, Return(0));
    EXPECT_EQ(Execute(VELK_GET, 303, "eth1"), -1);
    EXPECT_EQ(Execute(VELK_SET, 303, "eth1", "office"), -1);
    daemon.Stop();
    EXPECT_THAT(daemon.types(), ElementsAre(3, 3));
}

TEST_F(ConfigurationTest, ADaemonThatDiesBeforeTheStoreFailsTheSet) {
    libc().Script(Call::kConnect, {testkit::Pass(), testkit::Fail(ECONNREFUSED)});
    EXPECT_EQ(Execute(VELK_SET, 303, "eth1", "office"), -1);
    EXPECT_EQ(Bytes(daemon.conf()), Bytes(SampleConf()));
}

TEST_F(ConfigurationTest, AnEmptyReplyIsAConfigurationOfZeros) {
    daemon.ReplyWith("");
    EXPECT_EQ(Get(303), Padded(""));
    EXPECT_EQ(Get(304), Padded(""));
    EXPECT_EQ(Get(302), Padded("\2"));
}

TEST_F(ConfigurationTest, GarbageIsReadWithinItsBounds) {
    daemon.ReplyWith(std::string(240, '\xff'));
    for (const uint32_t id : {302U, 303U, 306U, 307U, 308U, 309U, 310U, 311U, 314U}) {
        EXPECT_EQ(Execute(VELK_GET, id, "eth1"), -1) << id;
        EXPECT_EQ(Data(response), Padded("")) << id;
    }
    EXPECT_EQ(Execute(VELK_GET, 318, "eth1"), -1);
    EXPECT_EQ(Data(response), Padded("\3"));
    EXPECT_EQ(Get(304), Padded("\xff"));
}

TEST_F(ConfigurationTest, ANullOutputIsRefusedBeforeTheDaemonIsAsked) {
    EXPECT_EQ(GetWlanConf(MakeRequest(VELK_GET, 303, "eth1"), nullptr), -4);
    daemon.Stop();
    EXPECT_THAT(daemon.types(), IsEmpty());
}

TEST_F(ConfigurationTest, AnIdThatIsNoFieldGetsNothing) {
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetWlanConf(MakeRequest(VELK_GET, 313, "eth1"), out), 0);
    EXPECT_STREQ(out, "unchanged");
    daemon.Stop();
    EXPECT_THAT(daemon.types(), ElementsAre(3)) << "the daemon is asked first";
    EXPECT_EQ(GetWlanConf(MakeRequest(VELK_GET, 313, "eth1"), out), -1);
    EXPECT_EQ(SetWlanConf(MakeRequest(VELK_SET, 313, "eth1"), out), -1);
}

TEST_F(ConfigurationTest, AnIdThatIsNoFieldSendsTheRecordBackUnchanged) {
    EXPECT_EQ(SetWlanConf(MakeRequest(VELK_SET, 313, "eth1", "x"), nullptr), 0);
    daemon.Stop();
    EXPECT_THAT(daemon.types(), ElementsAre(3, 2));
    EXPECT_EQ(daemon.requests()[1], ShortBytes(2) + std::string(2, '\0') + Bytes(SampleConf()));
}

TEST_F(ConfigurationTest, ASetNeedsNoOutput) {
    EXPECT_EQ(SetWlanConf(MakeRequest(VELK_SET, 304, "eth1", "\7"), nullptr), 0);
    EXPECT_EQ(Get(304), Padded("\7"));
}

TEST_F(ConfigurationTest, TheWholeConfigurationCanBeFetched) {
    UMsgData data;
    EXPECT_EQ(RecvWlanConf(data), 0);
    EXPECT_EQ(Bytes(data.conf), Bytes(SampleConf()));
}

TEST_F(ConfigurationTest, TheWiredPortHasNoWirelessConfiguration) {
    EXPECT_EQ(Execute(VELK_GET, 303, "eth0"), -4);
    EXPECT_EQ(Execute(VELK_SET, 303, "eth0", "office"), -4);
    daemon.Stop();
    EXPECT_THAT(daemon.types(), IsEmpty());
}

}  // namespace
