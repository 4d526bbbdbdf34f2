// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ip_address.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "qvxcs/ip_address.h"
#include "qvxcs/status.h"

#include "os/ip_support.h"
#include "support/guard_buffer.h"

namespace {

using qvx::test::GuardBuffer;

constexpr u32 kNoLinkLocal = 0xFFFFFFFF;
constexpr u32 kFailed = 0xFFFFFFFF;

class IPConversion : public testing::Test {
 protected:
  void SetUp() override {
    (void)qvx::LoadIPSupt();
    ASSERT_TRUE(qvx::IPSuptLoaded());
  }
};

TEST(IPAddress, AnyDigitsAndDotsCountAsIPv4) {
  for (const char* text : {"", "127.0.0.1", "1..2", "999", ".", "0123456789.", "1.2.3.4.5.6"}) {
    EXPECT_EQ(qvx::IsIPv4(text), 1U) << text;
    EXPECT_EQ(PXTIsIPv4(text), 1U) << text;
  }
}

TEST(IPAddress, AnyOtherCharacterIsNotIPv4) {
  for (const char* text :
       {"10.0.0.x", "x", "10.0.0.1 ", " 10.0.0.1", "::1", "1/2", "1,2", "-1", "1\xB2", "\xFF"}) {
    EXPECT_EQ(qvx::IsIPv4(text), 0U) << text;
  }
}

TEST(IPAddress, AColonAnywhereIsIPv6) {
  for (const char* text : {":", "::1", "fe80::1", "host:port", "127.0.0.1:"}) {
    EXPECT_EQ(qvx::IsIPv6(text), 1U) << text;
    EXPECT_EQ(PXTIsIPv6(text), 1U) << text;
  }
  for (const char* text : {"", "127.0.0.1", "host;"}) {
    EXPECT_EQ(qvx::IsIPv6(text), 0U) << text;
  }
}

TEST(IPAddress, LinkLocalAnswersZeroForYes) {
  for (const char* text : {"fe80", "FE80", "fE80::1", "Fe80::1", "FE80:0:0:0:0:0:0:1", "fe80x"}) {
    EXPECT_EQ(qvx::IsLinkLocal(text), 0U) << text;
    EXPECT_EQ(PXTIsLinkLocal(text), 0U) << text;
  }
  for (const char* text : {"fe81::1", "fec0::1", "::fe80", "127.0.0.1", "fE8o", "2001:db8::1"}) {
    EXPECT_EQ(qvx::IsLinkLocal(text), kNoLinkLocal) << text;
  }
}

TEST(IPAddress, FewerThanFourCharactersAreNotLinkLocal) {
  for (const char* text : {"", "f", "fe", "fe8", "FE8"}) {
    GuardBuffer<astring> end(strlen(text) + 1);
    memcpy(end.data(), text, end.size());
    EXPECT_EQ(qvx::IsLinkLocal(end.data()), kNoLinkLocal) << text;
  }
}

TEST(IPAddress, NullTextsHaveAnAnswerOfTheirOwn) {
  EXPECT_EQ(qvx::IsIPv4(nullptr), 2U);
  EXPECT_EQ(qvx::IsIPv6(nullptr), 0x2018U);
  EXPECT_EQ(qvx::IsLinkLocal(nullptr), 0x2018U);
  EXPECT_EQ(qvx::CheckIPEqual(nullptr, "::1"), 2U);
  EXPECT_EQ(qvx::CheckIPEqual("::1", nullptr), 2U);
  EXPECT_EQ(qvx::CheckIPEqual(nullptr, nullptr), 2U);
}

TEST(IPAddress, ConversionsRefuseToWorkBeforeTheSupportIsLoaded) {
  u8 network[16] = {};
  u32 size = 16;
  EXPECT_EQ(qvx::IPAddrASCIIToNetwork("127.0.0.1", network, &size), SM_STATUS_NOT_LOADED);
  EXPECT_EQ(qvx::IPAddrASCIIToNetwork(nullptr, nullptr, nullptr), SM_STATUS_NOT_LOADED);
  EXPECT_EQ(size, 16U);
  astring text[46] = {};
  s32 room = 46;
  EXPECT_EQ(qvx::IPAddrNetworkToASCII(network, 4, text, &room), SM_STATUS_NOT_LOADED);
  EXPECT_EQ(qvx::IPAddrNetworkToASCII(nullptr, 0, nullptr, nullptr), SM_STATUS_NOT_LOADED);
  EXPECT_EQ(room, 46);
  EXPECT_STREQ(text, "");
}

TEST(IPAddress, NothingIsEqualBeforeTheSupportIsLoaded) {
  EXPECT_EQ(qvx::CheckIPEqual("127.0.0.1", "127.0.0.1"), 0U);
  EXPECT_EQ(qvx::CheckIPEqual("::1", "::1"), 0U);
  EXPECT_EQ(qvx::CheckIPEqual(nullptr, "::1"), 2U);
}

TEST_F(IPConversion, AnIPv4TextBecomesFourBytes) {
  GuardBuffer<u8> network(4);
  u32 size = 4;
  EXPECT_EQ(qvx::IPAddrASCIIToNetwork("192.0.2.33", network.data(), &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 4U);
  const u8 expected[] = {192, 0, 2, 33};
  EXPECT_EQ(memcmp(network.data(), expected, 4), 0);
  EXPECT_TRUE(network.FrontUntouched());
}

TEST_F(IPConversion, AnIPv6TextBecomesSixteenBytes) {
  GuardBuffer<u8> network(16);
  u32 size = 16;
  EXPECT_EQ(PXTIPAddrASCIIToNetwork("2001:db8::fF01", network.data(), &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 16U);
  const u8 expected[] = {0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0x01};
  EXPECT_EQ(memcmp(network.data(), expected, 16), 0);
}

TEST_F(IPConversion, ALargerRoomIsCutToTheBytesWritten) {
  GuardBuffer<u8> network(40);
  u32 size = 40;
  EXPECT_EQ(qvx::IPAddrASCIIToNetwork("10.0.0.1", network.data(), &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 4U);
  EXPECT_TRUE(network.UntouchedFrom(4));
}

TEST_F(IPConversion, LoopbackOfIPv6WithASizeOf4NeedsSixteen) {
  GuardBuffer<u8> network(4);
  u32 size = 4;
  EXPECT_EQ(qvx::IPAddrASCIIToNetwork("::1", network.data(), &size), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 16U);
  EXPECT_TRUE(network.UntouchedFrom(0));
}

TEST_F(IPConversion, ASizeOneTooSmallGivesTheSizeNeeded) {
  GuardBuffer<u8> network(16);
  for (const u32 tooSmall : {0U, 3U}) {
    u32 size = tooSmall;
    EXPECT_EQ(qvx::IPAddrASCIIToNetwork("10.0.0.1", network.data(), &size),
              SM_STATUS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 4U);
  }
  for (const u32 tooSmall : {0U, 15U}) {
    u32 size = tooSmall;
    EXPECT_EQ(qvx::IPAddrASCIIToNetwork("::", network.data(), &size), SM_STATUS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 16U);
  }
  EXPECT_TRUE(network.UntouchedFrom(0));
}

TEST_F(IPConversion, TheSizeIsLookedAtBeforeTheText) {
  u8 network[4] = {};
  u32 size = 3;
  EXPECT_EQ(qvx::IPAddrASCIIToNetwork("no address", network, &size), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 4U);
}

TEST_F(IPConversion, ATextThatIsNoAddressFailsAndTouchesNothing) {
  for (const char* text : {"", "1..2", "999", "256.1.1.1", "1.2.3", "host", "1.2.3.4 ", ":",
                           "::1::", "fe80::1%lo", "12345::", "127.0.0.1:"}) {
    GuardBuffer<u8> network(16);
    u32 size = 16;
    EXPECT_EQ(qvx::IPAddrASCIIToNetwork(text, network.data(), &size), kFailed) << text;
    EXPECT_EQ(size, 16U) << text;
    EXPECT_TRUE(network.UntouchedFrom(0)) << text;
  }
}

TEST_F(IPConversion, NullArgumentsToNetworkAreBadArguments) {
  u8 network[16] = {};
  u32 size = 4;
  EXPECT_EQ(qvx::IPAddrASCIIToNetwork(nullptr, network, &size), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(qvx::IPAddrASCIIToNetwork("::1", nullptr, &size), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(qvx::IPAddrASCIIToNetwork("::1", network, nullptr), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(size, 4U);
}

TEST_F(IPConversion, FourBytesBecomeADottedText) {
  const u8 network[] = {192, 0, 2, 255};
  GuardBuffer<astring> text(12);
  s32 size = 12;
  EXPECT_EQ(PXTIPAddrNetworkToASCII(network, 4, text.data(), &size), SM_STATUS_SUCCESS);
  EXPECT_STREQ(text.data(), "192.0.2.255");
  EXPECT_EQ(size, 12);
}

TEST_F(IPConversion, SixteenBytesBecomeACompressedText) {
  GuardBuffer<u8> network(16);
  memset(network.data(), 0, 16);
  network[0] = 0xFE;
  network[1] = 0x80;
  network[15] = 0xAB;
  astring text[46] = {};
  s32 size = 46;
  EXPECT_EQ(qvx::IPAddrNetworkToASCII(network.data(), 16, text, &size), SM_STATUS_SUCCESS);
  EXPECT_STREQ(text, "fe80::ab");
  EXPECT_EQ(size, 9);
}

TEST_F(IPConversion, TheLongestTextFits) {
  u8 network[16];
  memset(network, 0xFF, sizeof(network));
  GuardBuffer<astring> text(40);
  s32 size = 40;
  EXPECT_EQ(qvx::IPAddrNetworkToASCII(network, 16, text.data(), &size), SM_STATUS_SUCCESS);
  EXPECT_STREQ(text.data(), "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff");
  EXPECT_EQ(size, 40);
}

TEST_F(IPConversion, RoomForTheTextWithoutItsNulIsTooSmall) {
  const u8 network[] = {10, 0, 0, 1};
  for (const s32 tooSmall : {8, 1, 0, -1, INT32_MIN}) {
    GuardBuffer<astring> text(8);
    s32 size = tooSmall;
    EXPECT_EQ(qvx::IPAddrNetworkToASCII(network, 4, text.data(), &size),
              SM_STATUS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 9);
    EXPECT_TRUE(text.UntouchedFrom(0));
  }
}

TEST_F(IPConversion, NullArgumentsAndOtherLengthsToTextAreBadArguments) {
  const u8 network[17] = {};
  astring text[46] = {};
  s32 size = 46;
  EXPECT_EQ(qvx::IPAddrNetworkToASCII(nullptr, 4, text, &size), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(qvx::IPAddrNetworkToASCII(network, 4, nullptr, &size), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(qvx::IPAddrNetworkToASCII(network, 4, text, nullptr), SM_STATUS_BAD_ARGUMENT);
  for (const u32 length : {0U, 3U, 5U, 15U, 17U, 0xFFFFFFFFU}) {
    EXPECT_EQ(qvx::IPAddrNetworkToASCII(network, length, text, &size), SM_STATUS_BAD_ARGUMENT);
  }
  EXPECT_EQ(size, 46);
  EXPECT_STREQ(text, "");
}

TEST_F(IPConversion, DifferentSpellingsOfAnAddressAreEqual) {
  EXPECT_EQ(qvx::CheckIPEqual("::1", "0:0:0:0:0:0:0:1"), 1U);
  EXPECT_EQ(qvx::CheckIPEqual("2001:DB8::A", "2001:0db8:0:0::a"), 1U);
  EXPECT_EQ(qvx::CheckIPEqual("::ffff:1.2.3.4", "::ffff:102:304"), 1U);
  EXPECT_EQ(PXTCheckIPEqual("127.0.0.1", "127.0.0.1"), 1U);
}

TEST_F(IPConversion, DifferentAddressesAreNotEqual) {
  EXPECT_EQ(qvx::CheckIPEqual("127.0.0.1", "127.0.0.2"), 0U);
  EXPECT_EQ(qvx::CheckIPEqual("::1", "::2"), 0U);
}

TEST_F(IPConversion, AnIPv6TextIsNeverEqualToAnIPv4Text) {
  EXPECT_EQ(qvx::CheckIPEqual("127.0.0.1", "::1"), 0U);
  EXPECT_EQ(qvx::CheckIPEqual("::1", "127.0.0.1"), 0U);
  EXPECT_EQ(qvx::CheckIPEqual("::ffff:1.2.3.4", "1.2.3.4"), 0U);
}

TEST_F(IPConversion, TextsThatAreNoAddressesAreNotComparable) {
  EXPECT_EQ(qvx::CheckIPEqual("localhost", "localhost"), 0U);
  EXPECT_EQ(qvx::CheckIPEqual("127.0.0.1", "localhost"), 0U);
  EXPECT_EQ(qvx::CheckIPEqual("", ""), 0U);
  EXPECT_EQ(qvx::CheckIPEqual("999", "999"), 0U);
  EXPECT_EQ(qvx::CheckIPEqual("fe80::1%lo", "fe80::1%lo"), 0U);
  EXPECT_EQ(qvx::CheckIPEqual("::1", "::x"), 0U);
}

}  // namespace
