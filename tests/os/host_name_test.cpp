// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/host_name.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "qvxcs/ip_address.h"
#include "qvxcs/memory.h"
#include "qvxcs/status.h"

#include "os/ip_support.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/guard_buffer.h"
#include "support/host_name_fault.h"

namespace {

using qvx::test::GuardBuffer;

constexpr u32 kFailed = 0xFFFFFFFF;

class LoadedHostName : public testing::Test {
 protected:
  void SetUp() override {
    qvx::test::RequireSandbox();
    (void)qvx::LoadIPSupt();
    SetHost("qvxtest");
  }
  static void SetHost(const std::string& name) {
    ASSERT_EQ(sethostname(name.data(), name.size()), 0);
  }
};

// The domain name that the library returns after the system's was set; "(null)" for none.
std::string DomainAfter(const std::string& set) {
  qvx::test::RequireSandbox();
  EXPECT_EQ(setdomainname(set.data(), set.size()), 0);
  astring* const name = PXTGetComputerDomainName();
  const std::string text = name == nullptr ? "(null)" : name;
  PXTFreeMem(name);
  return text;
}

TEST(HostName, TheDomainIsTheSystems) {
  EXPECT_EQ(DomainAfter("example.org"), "example.org");
  EXPECT_EQ(DomainAfter(std::string(64, 'd')), std::string(64, 'd'));
}

TEST(HostName, AnEmptyDomainIsAnEmptyText) { EXPECT_EQ(DomainAfter(""), ""); }

TEST(HostName, ADomainThatBeginsWithNoneIsNone) {
  EXPECT_EQ(DomainAfter("(none)"), "(null)");
  EXPECT_EQ(DomainAfter("(none).example"), "(null)");
}

TEST(HostName, ADomainThatOnlyResemblesNoneIsGiven) {
  EXPECT_EQ(DomainAfter("(none"), "(none");
  EXPECT_EQ(DomainAfter("none"), "none");
  EXPECT_EQ(DomainAfter("(NONE)"), "(NONE)");
}

TEST(HostName, ADomainWithoutMemoryIsNull) {
  const qvx::test::FailNthAllocation fault(1);
  EXPECT_EQ(qvx::OSGetComputerDomainName(), nullptr);
}

TEST(HostName, IsRefusedBeforeTheSupportIsLoaded) {
  astring name[8] = "before";
  u32 size = 8;
  EXPECT_EQ(qvx::GetIPHostName(name, &size), SM_STATUS_NOT_LOADED);
  EXPECT_EQ(qvx::GetIPHostName(nullptr, nullptr), SM_STATUS_NOT_LOADED);
  EXPECT_EQ(qvx::UniGetIPHostName(nullptr, &size), SM_STATUS_NOT_LOADED);
  EXPECT_STREQ(name, "before");
  EXPECT_EQ(size, 8U);
}

TEST_F(LoadedHostName, NullArgumentsAreBadArguments) {
  astring name[8] = {};
  u32 size = 8;
  EXPECT_EQ(qvx::GetIPHostName(nullptr, &size), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(qvx::GetIPHostName(name, nullptr), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(size, 8U);
}

TEST_F(LoadedHostName, ComesWithItsLengthAndNul) {
  GuardBuffer<astring> name(8);
  u32 size = 8;
  EXPECT_EQ(PXTGetIPHostName(name.data(), &size), SM_STATUS_SUCCESS);
  EXPECT_STREQ(name.data(), "qvxtest");
  EXPECT_EQ(size, 8U);
  astring roomy[256] = {};
  size = 256;
  EXPECT_EQ(qvx::GetIPHostName(roomy, &size), SM_STATUS_SUCCESS);
  EXPECT_STREQ(roomy, "qvxtest");
  EXPECT_EQ(size, 8U);
}

TEST_F(LoadedHostName, ANameThatDoesNotFitIsASuccessThatLeavesTheSize) {
  const struct {
    u32 room;
    const char* cut;
  } cases[] = {{7, "qvxtes"}, {4, "qvx"}, {1, ""}};
  for (const auto& one : cases) {
    GuardBuffer<astring> name(one.room);
    u32 size = one.room;
    EXPECT_EQ(qvx::GetIPHostName(name.data(), &size), SM_STATUS_SUCCESS);
    EXPECT_STREQ(name.data(), one.cut);
    EXPECT_EQ(size, one.room);
  }
}

TEST_F(LoadedHostName, AWholeNameThatFillsTheRoomLeavesTheSizeToo) {
  astring name[8] = {};
  u32 size = sizeof(name);
  EXPECT_EQ(PXTGetIPHostName(name, &size), SM_STATUS_SUCCESS);
  EXPECT_STREQ(name, "qvxtest");
  EXPECT_EQ(size, sizeof(name));
}

TEST_F(LoadedHostName, ANameThatIsCutWithoutAnErrorIsTerminatedToo) {
  qvx::test::CutHostNamesSilently();
  for (const u32 room : {1U, 4U, 7U}) {
    GuardBuffer<astring> name(room);
    u32 size = room;
    EXPECT_EQ(qvx::GetIPHostName(name.data(), &size), SM_STATUS_SUCCESS);
    EXPECT_EQ(std::string(name.data(), room - 1), std::string("qvxtest").substr(0, room - 1));
    EXPECT_EQ(name.data()[room - 1], '\0');
    EXPECT_EQ(size, room);
  }
}

TEST_F(LoadedHostName, ASizeOfNoneWritesNothing) {
  GuardBuffer<astring> name(0);
  u32 size = 0;
  EXPECT_EQ(qvx::GetIPHostName(name.data(), &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 0U);
  EXPECT_TRUE(name.FrontUntouched());
}

TEST_F(LoadedHostName, IsConvertedFromUTF8) {
  SetHost("h\xC3\xB4te");
  ustring name[16] = {};
  u32 size = 16;
  EXPECT_EQ(PXTUniGetIPHostName(name, &size), SM_STATUS_SUCCESS);
  const ustring expected[] = {'h', 0xF4, 't', 'e', 0};
  EXPECT_EQ(memcmp(name, expected, sizeof(expected)), 0);
  EXPECT_EQ(size, 10U);
}

TEST_F(LoadedHostName, TheWideNamePassesTheConvertersStatusOn) {
  ustring name[16] = {};
  u32 size = 6;
  EXPECT_EQ(qvx::UniGetIPHostName(name, &size), SM_STATUS_BUFFER_TOO_SMALL);
  SetHost("bad\xFF");
  size = 16;
  EXPECT_EQ(qvx::UniGetIPHostName(name, &size), SM_STATUS_BAD_DATA);
}

TEST_F(LoadedHostName, ANullWideNameIsASizeQueryAndANullSizeAnInvalidParameter) {
  ustring name[16] = {};
  u32 size = 0;
  EXPECT_EQ(qvx::UniGetIPHostName(nullptr, &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 16U);  // seven units and a 0 unit
  EXPECT_EQ(qvx::UniGetIPHostName(name, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(qvx::UniGetIPHostName(nullptr, nullptr), SM_STATUS_INVALID_PARAMETER);
}

TEST_F(LoadedHostName, TheLongestNameOfTheSystemFits) {
  SetHost(std::string(64, 'n'));
  ustring name[65] = {};
  u32 size = 64;
  EXPECT_EQ(qvx::UniGetIPHostName(name, &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(name[63], 'n');
  EXPECT_EQ(name[64], 0);
  EXPECT_EQ(size, 130U);
}

TEST(HostName, NoDnsSuffixIsEverGiven) {
  astring name[16] = "before";
  EXPECT_EQ(PXTGetDNSSuffixNameName(name, 16), kFailed);
  EXPECT_EQ(qvx::GetDNSSuffixName(name, 1), kFailed);
  EXPECT_EQ(qvx::GetDNSSuffixName(nullptr, 16), kFailed);
  EXPECT_STREQ(name, "before");
}

TEST(HostName, ADnsSuffixOfNoSizeIsAnInvalidParameter) {
  astring name[16] = {};
  EXPECT_EQ(qvx::GetDNSSuffixName(name, 0), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(qvx::GetDNSSuffixName(nullptr, 0), SM_STATUS_INVALID_PARAMETER);
}

TEST(HostName, LettersDigitsDashesAndDotsAreValid) {
  for (const char* name : {"a", "Z", "7", "ab", "host", "HOST-1.example.org", "0a", "a--b..c"}) {
    EXPECT_EQ(qvx::ValidateHostName(name), SM_STATUS_SUCCESS) << name;
    EXPECT_EQ(PXTValidateHostName(name), SM_STATUS_SUCCESS) << name;
  }
}

TEST(HostName, TheLastCharacterMayBeAnythingButDashAndDot) {
  for (const char* name : {"host_", "a_", "a ", "host/", "a\xC3"}) {
    EXPECT_EQ(qvx::ValidateHostName(name), SM_STATUS_SUCCESS) << name;
  }
  for (const char* name : {"host-", "host.", "-", ".", "a-", "a."}) {
    EXPECT_EQ(qvx::ValidateHostName(name), kFailed) << name;
  }
}

TEST(HostName, TheFirstCharacterMustBeALetterOrADigit) {
  for (const char* name : {"-host", ".host", "_", "_a", " host", "\xC3\xA4", "-"}) {
    const u32 expected = strcmp(name, "-") == 0 ? kFailed : SM_STATUS_INVALID_PARAMETER;
    EXPECT_EQ(qvx::ValidateHostName(name), expected) << name;
  }
}

TEST(HostName, ACharacterInsideMustBeOfTheClass) {
  for (const char* name :
       {"a_b", "a b", "ho\xC3\xA4st", "a/b", "ab:c", "a@b", "a[b", "a`b", "a{b"}) {
    EXPECT_EQ(qvx::ValidateHostName(name), kFailed) << name;
  }
}

TEST(HostName, AnEmptyNameIsAnInvalidParameterAndANullOneABadArgument) {
  EXPECT_EQ(qvx::ValidateHostName(""), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(qvx::ValidateHostName(nullptr), SM_STATUS_BAD_ARGUMENT);
}

TEST(HostName, MoreThan255CharactersAreTooMany) {
  EXPECT_EQ(qvx::ValidateHostName(std::string(255, 'a').c_str()), SM_STATUS_SUCCESS);
  EXPECT_EQ(qvx::ValidateHostName(std::string(256, 'a').c_str()), kFailed);
  EXPECT_EQ(qvx::ValidateHostName(std::string(100000, '-').c_str()), kFailed);
}

}  // namespace
