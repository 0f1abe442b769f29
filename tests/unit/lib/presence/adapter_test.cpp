// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/paths.h"

namespace {

using testing::IsEmpty;
using testkit::kSupportList;
using testkit::kUsbDevices;
using testkit::WriteFile;

// One device of the kernel's list.
std::string Device(const std::string& vendor, const std::string& product,
                   const std::string& name = "Wireless LAN adapter") {
    return "\n"
           "T:  Bus=01 Lev=01 Prnt=01 Port=00 Cnt=01 Dev#=  2 Spd=480  MxCh= 0\n"
           "D:  Ver= 2.00 Cls=00(>ifc ) Sub=00 Prot=00 MxPS=64 #Cfgs=  1\n"
           "P:  Vendor=" +
           vendor + " ProdID=" + product +
           " Rev= 1.01\n"
           "S:  Product=" +
           name + "\n";
}

class AdapterTest : public testkit::DeviceTest {
  protected:
    static int AttachedWith(const std::string& support_list, const std::string& devices) {
        WriteFile(kSupportList, support_list);
        WriteFile(kUsbDevices, devices);
        return IsWlanAttached();
    }
};

TEST_F(AdapterTest, FindsAnAdapterOfTheSupportList) {
    EXPECT_EQ(AttachedWith("VID=1a2b\nPID=3c4d\n", Device("1a2b", "3c4d")), 1);
}

TEST_F(AdapterTest, DoesNotFindAnother) {
    EXPECT_EQ(AttachedWith("VID=1a2b\nPID=3c4d\n", Device("1a2b", "3c4e")), 0);
    EXPECT_EQ(AttachedWith("VID=1a2b\nPID=3c4d\n", Device("1a2c", "3c4d")), 0);
}

TEST_F(AdapterTest, AVendorAppliesToAllProductsAfterIt) {
    const std::string list = "VID=1a2b\nPID=3c4d\nPID=0e5f\nVID=2222\nPID=0001\n";
    EXPECT_EQ(AttachedWith(list, Device("1a2b", "3c4d")), 1);
    EXPECT_EQ(AttachedWith(list, Device("1a2b", "0e5f")), 1);
    EXPECT_EQ(AttachedWith(list, Device("2222", "0001")), 1);
    EXPECT_EQ(AttachedWith(list, Device("1a2b", "0001")), 0);
    EXPECT_EQ(AttachedWith(list, Device("2222", "3c4d")), 0);
}

TEST_F(AdapterTest, IdsAreFilledToFourDigits) {
    EXPECT_EQ(AttachedWith("VID=a2b\nPID=1\n", Device("0a2b", "0001")), 1);
}

TEST_F(AdapterTest, UpperCaseDigitsAreAccepted) {
    EXPECT_EQ(AttachedWith("VID=1A2B\nPID=3C4D\n", Device("1a2b", "3c4d")), 1);
    EXPECT_EQ(AttachedWith("VID=1A2B\nPID=3C4D\n", Device("1A2B", "3C4D")), 0)
        << "the kernel writes lower case";
}

TEST_F(AdapterTest, ANumberEndsAtTheFirstOtherCharacter) {
    EXPECT_EQ(AttachedWith("VID=1a2b ; vendor\r\nPID=3c4dxyz\n", Device("1a2b", "3c4d")), 1);
}

TEST_F(AdapterTest, ANumberIsReadAsStrtoulReadsIt) {
    EXPECT_EQ(AttachedWith("VID= 0x1a2b\nPID=\t3c4d\n", Device("1a2b", "3c4d")), 1);
    EXPECT_EQ(AttachedWith("VID=\nPID=zz\n", Device("0000", "0000")), 1);
}

TEST_F(AdapterTest, TheNumberIsReadAtTheFifthCharacterForAnyPositionOfTheKey) {
    EXPECT_EQ(AttachedWith("xxxx1a2b VID=\nyyyy3c4d PID=\n", Device("1a2b", "3c4d")), 1);
    EXPECT_EQ(AttachedWith("  VID=1a2b\n  PID=3c4d\n", Device("1a2b", "3c4d")), 0);
}

TEST_F(AdapterTest, ALineWithBothKeysReadsBothFromTheFifthCharacter) {
    EXPECT_EQ(AttachedWith("VID=1a2b PID=3c4d\n", Device("1a2b", "1a2b")), 1);
    EXPECT_EQ(AttachedWith("VID=1a2b PID=3c4d\n", Device("1a2b", "3c4d")), 0);
}

TEST_F(AdapterTest, AProductBeforeAnyVendorHasVendorZero) {
    EXPECT_EQ(AttachedWith("PID=3c4d\nVID=1a2b\n", Device("0000", "3c4d")), 1);
}

TEST_F(AdapterTest, AVendorWithoutAProductAddsNothing) {
    EXPECT_EQ(AttachedWith("VID=1a2b\n", Device("1a2b", "0000")), 0);
}

TEST_F(AdapterTest, KeysInLowerCaseAddNothing) {
    EXPECT_EQ(AttachedWith("vid=1a2b\npid=3c4d\n", Device("1a2b", "3c4d")), 0);
}

TEST_F(AdapterTest, TheBuiltInModelNeedsNoSupportList) {
    WriteFile(kUsbDevices, Device("9999", "9999", "QT4408RKM"));
    EXPECT_EQ(IsWlanAttached(), 1);
}

TEST_F(AdapterTest, TheBuiltInModelIsFoundAnywhereOnALine) {
    EXPECT_EQ(AttachedWith("", "S:  Product=the QT4408RKM, second edition\n"), 1);
    EXPECT_EQ(AttachedWith("", "S:  Product=qt4408rkm\n"), 0);
}

TEST_F(AdapterTest, AMissingSupportListLeavesTheBuiltInModel) {
    WriteFile(kUsbDevices, Device("1a2b", "3c4d"));
    EXPECT_EQ(IsWlanAttached(), 0);
}

TEST_F(AdapterTest, AnEmptyDeviceListHoldsNothing) {
    EXPECT_EQ(AttachedWith("VID=1a2b\nPID=3c4d\n", ""), 0);
}

TEST_F(AdapterTest, AMissingDeviceListHoldsNothing) {
    WriteFile(kSupportList, "VID=1a2b\nPID=3c4d\n");
    EXPECT_EQ(IsWlanAttached(), 0);
}

TEST_F(AdapterTest, TheSupportListIsReadAgainOnEveryCall) {
    EXPECT_EQ(AttachedWith("VID=1a2b\nPID=3c4d\n", Device("1a2b", "3c4d")), 1);
    EXPECT_EQ(AttachedWith("VID=1a2b\nPID=ffff\n", Device("1a2b", "3c4d")), 0);
}

TEST_F(AdapterTest, ALastLineWithoutATerminatorCounts) {
    EXPECT_EQ(AttachedWith("VID=1a2b\nPID=3c4d", "P:  Vendor=1a2b ProdID=3c4d"), 1);
}

TEST_F(AdapterTest, AHugeNumberIsTheSameOnEveryDevice) {
    EXPECT_EQ(AttachedWith("VID=100001a2b\nPID=3c4d\n", Device("1a2b", "3c4d")), 0);
    EXPECT_EQ(AttachedWith("VID=100001a2b\nPID=3c4d\n", Device("ffffffff", "3c4d")), 1);
    EXPECT_EQ(AttachedWith("VID=ffffffff\nPID=fffffffe\n", Device("ffffffff", "fffffff")), 0);
}

TEST_F(AdapterTest, AFolderInAFilesPlaceIsAFileThatCannotBeRead) {
    ASSERT_EQ(mkdir(kSupportList, 0755), 0);
    WriteFile(kUsbDevices, Device("9999", "9999", "QT4408RKM"));
    EXPECT_EQ(IsWlanAttached(), 1);
    ASSERT_EQ(unlink(kUsbDevices), 0);
    ASSERT_EQ(mkdir(kUsbDevices, 0755), 0);
    EXPECT_EQ(IsWlanAttached(), 0);
    EXPECT_THAT(libc().Logs(), IsEmpty());
    ASSERT_EQ(rmdir(kUsbDevices) + rmdir(kSupportList), 0);
}

TEST_F(AdapterTest, FilesWithoutPermissionAreFilesThatCannotBeRead) {
    WriteFile(kSupportList, "VID=1a2b\nPID=3c4d\n");
    WriteFile(kUsbDevices, Device("1a2b", "3c4d"));
    libc().Script(testkit::Call::kOpen, {testkit::Fail(EACCES)});
    EXPECT_EQ(IsWlanAttached(), 0);
    libc().Script(testkit::Call::kOpen, {testkit::Pass(), testkit::Fail(EACCES)});
    EXPECT_EQ(IsWlanAttached(), 0);
    EXPECT_EQ(IsWlanAttached(), 1);
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(AdapterTest, NothingIsLogged) {
    EXPECT_EQ(IsWlanAttached(), 0);
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(AdapterTest, HostileListsAreReadWithinTheirBounds) {
    const std::string junk = "VID=" + std::string(10 * 1024, 'f') +
                             "\nPID=" + std::string(3, '\0') + "\nPID=-1\nVID=\n\nPID";
    EXPECT_EQ(AttachedWith(junk, std::string(10 * 1024, 'P') + std::string("\0\n\xff\n", 4)), 0);
}

}  // namespace
