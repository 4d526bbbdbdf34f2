// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Text functions keep nothing between calls: eight threads, each with its own buffers, get what
// one gets.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>

#include "qvxcs/grow_string.h"
#include "qvxcs/memory.h"
#include "qvxcs/number_text.h"
#include "qvxcs/status.h"
#include "qvxcs/transcode.h"
#include "qvxcs/uni_string.h"

#include "support/threads.h"

namespace {

constexpr u32 kThreads = 8;
constexpr u32 kTurns = 300;

// A text that differs from thread to thread, with markup, two- and three-byte characters.
std::string TextOf(u32 thread) {
  return std::string(thread + 1, static_cast<char>('a' + thread)) + "<\xC3\xA4 & \xE2\x82\xAC>";
}

std::string EscapedTextOf(u32 thread) {
  return std::string(thread + 1, static_cast<char>('a' + thread)) +
         "&lt;\xC3\xA4 &amp; \xE2\x82\xAC&gt;";
}

bool TranscodesRight(u32 thread) {
  const std::string text = TextOf(thread);
  ustring wide[64];
  u32 size = 40;
  if (PXTUTF8StrToUCS2Str(wide, &size, text.c_str()) != SM_STATUS_SUCCESS) return false;
  astring narrow[64];
  size = 60;
  if (PXTUCS2StrToUTF8Str(narrow, &size, wide) != SM_STATUS_SUCCESS || narrow != text) return false;
  astring* const escaped = PXTGetXMLUTF8StrFromUStr(wide, 1);
  const bool right = escaped != nullptr && escaped == EscapedTextOf(thread);
  PXTFreeMem(escaped);
  return right;
}

TEST(TextThreads, TranscodeAndEscapeAtOnce) {
  std::atomic<u32> wrong = 0;
  qvx::test::InThreads(kThreads, [&wrong](u32 thread) {
    for (u32 turn = 0; turn < kTurns; ++turn) {
      wrong += TranscodesRight(thread) ? 0 : 1;
    }
  });
  EXPECT_EQ(wrong, 0u);
}

bool GrowsRight(u32 thread) {
  SSAStr record;
  if (PXTSSAStrAlloc(&record, 4) == nullptr) return false;
  const std::string piece = TextOf(thread);
  std::string expected;
  bool right = true;
  for (u32 count = 0; count < 20; ++count) {
    expected += piece;
    right = PXTSSAStrCatAStr(&record, piece.c_str()) != nullptr && right;
  }
  right = right && record.text == expected && record.length == expected.size();
  PXTSSAStrFree(&record);
  return right;
}

TEST(TextThreads, GrowStringsAtOnce) {
  std::atomic<u32> wrong = 0;
  qvx::test::InThreads(kThreads, [&wrong](u32 thread) {
    for (u32 turn = 0; turn < kTurns; ++turn) {
      wrong += GrowsRight(thread) ? 0 : 1;
    }
  });
  EXPECT_EQ(wrong, 0u);
}

}  // namespace
