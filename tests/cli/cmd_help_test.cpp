// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/cmd_help.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "qvxcs/xml_buffer.h"

#include "support/alloc_fault.h"
#include "xml/xml_buffer.h"

namespace qvx {
namespace {

using test::FailNthAllocation;

// The arguments that each command saw, for the test to read.
char gSeen[256];

astring* TextFrom(const astring* text) {
  void* const buffer = PXMAllocBuf(0, 0);
  (void)PXMBufCatNode(buffer, "h", nullptr, QVX_TYPE_ASTRING, text);
  return PXMFreeBuf(buffer, 1);
}

astring* Alpha(s32 /*count*/, astring** /*vector*/) { return TextFrom("alpha"); }
astring* Beta(s32 /*count*/, astring** /*vector*/) { return TextFrom("<b/>&"); }
astring* Silent(s32 /*count*/, astring** /*vector*/) { return nullptr; }
astring* Self(s32 /*count*/, astring** /*vector*/) {
  ADD_FAILURE() << "the calling command was asked for help";
  return nullptr;
}

astring* Overwriting(s32 count, astring** vector) {
  (void)snprintf(gSeen + strlen(gSeen), sizeof(gSeen) - strlen(gSeen), "%d|%s|%s|%s;", count,
                 vector[0], vector[1], vector[2] == nullptr ? "end" : vector[2]);
  memset(vector[0], 'x', strlen(vector[0]));
  memset(vector[1], 'y', strlen(vector[1]));
  vector[0] = nullptr;
  return nullptr;
}

astring kAlpha[] = "alpha";
astring kBeta[] = "beta";
astring kSelf[] = "self";

std::string Taken(astring* text) {
  const std::string taken = text == nullptr ? "(null)" : text;
  PXMFreeBufContent(text);
  return taken;
}

TEST(CmdHelp, ThreeEntriesWithTheCallersOwnGiveTwoCommands) {
  const PXTCommand table[] = {{kAlpha, Alpha}, {kSelf, Self}, {kBeta, Beta}};
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, table, 3, Self)),
            "<CLICmdHelp count=\"2\"><qvxcmd val=\"alpha\"><h>alpha</h></qvxcmd>"
            "<qvxcmd val=\"beta\"><h><b/>&</h></qvxcmd></CLICmdHelp>");
}

TEST(CmdHelp, HelpTextsStandUnescaped) {
  const PXTCommand table[] = {{kBeta, Beta}};
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, table, 1, Self)),
            "<CLICmdHelp count=\"0\"><qvxcmd val=\"beta\"><h><b/>&</h></qvxcmd></CLICmdHelp>");
}

TEST(CmdHelp, CountIsOneLessThanTheTable) {
  const PXTCommand withoutSelf[] = {{kAlpha, Silent}, {kBeta, Silent}};
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, withoutSelf, 2, Self)),
            "<CLICmdHelp count=\"1\"></CLICmdHelp>");
  const PXTCommand selfTwice[] = {{kSelf, Self}, {kSelf, Self}, {kAlpha, Alpha}};
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, selfTwice, 3, Self)),
            "<CLICmdHelp count=\"2\"><qvxcmd val=\"alpha\"><h>alpha</h></qvxcmd></CLICmdHelp>");
}

TEST(CmdHelp, CommandsWithoutAFunctionOrATextAreSkipped) {
  const PXTCommand table[] = {{kAlpha, nullptr}, {kBeta, Silent}, {kSelf, Self}, {kAlpha, Alpha}};
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, table, 4, Self)),
            "<CLICmdHelp count=\"3\"><qvxcmd val=\"alpha\"><h>alpha</h></qvxcmd></CLICmdHelp>");
}

TEST(CmdHelp, CommandWithoutANameHasAnEmptyOne) {
  const PXTCommand table[] = {{nullptr, Alpha}};
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, table, 1, Self)),
            "<CLICmdHelp count=\"0\"><qvxcmd val=\"\"><h>alpha</h></qvxcmd></CLICmdHelp>");
}

TEST(CmdHelp, EachCommandGetsFreshArgumentsThatItMayChange) {
  gSeen[0] = '\0';
  const PXTCommand table[] = {{kAlpha, Overwriting}, {kBeta, Overwriting}};
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, table, 2, Self)),
            "<CLICmdHelp count=\"1\"></CLICmdHelp>");
  EXPECT_STREQ(gSeen, "2|qvxusrinfo=nvsupt|cmdhelp=true|end;2|qvxusrinfo=nvsupt|cmdhelp=true|end;");
}

TEST(CmdHelp, WithoutATableTheTextIsEmpty) {
  const PXTCommand table[] = {{kAlpha, Alpha}};
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, nullptr, 1, Self)), "");
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, table, 1, nullptr)), "");
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, table, 0, Self)), "");
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, table, -1, Self)), "");
  EXPECT_EQ(Taken(NVSuptCMDHelp(0, nullptr, table, INT32_MIN, Self)), "");
}

TEST(CmdHelp, FirstTwoArgumentsAreIgnored) {
  const PXTCommand table[] = {{kAlpha, Alpha}};
  astring* vector[] = {kBeta};
  const std::string expected =
      "<CLICmdHelp count=\"0\"><qvxcmd val=\"alpha\"><h>alpha</h></qvxcmd></CLICmdHelp>";
  EXPECT_EQ(Taken(PXTNVSCMDHelp(1, vector, table, 1, Self)), expected);
  EXPECT_EQ(Taken(PXTNVSCMDHelp(-1, nullptr, table, 1, Self)), expected);
}

// The opening tag fits the buffer's initial text block.
TEST(CmdHelp, WithoutMemoryForTheBufferIsNull) {
  const PXTCommand table[] = {{kSelf, Self}};
  for (const u32 nth : {1u, 2u}) {
    astring* text = nullptr;
    {
      const FailNthAllocation fault(nth);
      text = NVSuptCMDHelp(0, nullptr, table, 1, Self);
    }
    EXPECT_EQ(Taken(text), "(null)") << nth;
  }
}

TEST(CmdHelp, CommandWithoutMemoryForItsAttributeIsSkipped) {
  astring help[] = "help";
  static astring* heapHelp = nullptr;
  const PXTCommand table[] = {{kAlpha, [](s32, astring**) { return heapHelp; }}};
  for (const u32 nth : {3u}) {  // after buffer and text
    heapHelp = strdup(help);
    astring* text = nullptr;
    {
      const FailNthAllocation fault(nth);
      text = NVSuptCMDHelp(0, nullptr, table, 1, Self);
    }
    EXPECT_EQ(Taken(text), "<CLICmdHelp count=\"0\"></CLICmdHelp>") << nth;
  }
}

}  // namespace
}  // namespace qvx
