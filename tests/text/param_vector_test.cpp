// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/param_vector.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string_view>

#include "qvxcs/param_vector.h"

#include "support/guard_buffer.h"
#include "support/locale_guard.h"

namespace {

using qvx::test::GuardBuffer;

// A text that ends at a page nobody may touch.
template <typename Unit>
class Entry {
 public:
  explicit Entry(std::string_view text) : room_(text.size() + 1) {
    for (size_t at = 0; at < text.size(); ++at)
      room_[at] = static_cast<Unit>(text[at]);
    room_[text.size()] = 0;
  }
  Unit* data() { return room_.data(); }

 private:
  GuardBuffer<Unit> room_;
};

using AEntry = Entry<astring>;
using UEntry = Entry<ustring>;

struct FormCase {
  const char* text;
  u32 nameLength;
};

constexpr FormCase kForms[] = {{"", 0},   {"=", 0},          {"=x", 0},    {"==", 0},  {"name", 0},
                               {"a=", 1}, {"name=value", 4}, {"a=b=c", 1}, {"a==", 1}, {" =x", 1}};

TEST(ParamVector, AnEntryIsWellFormedWithANameAndAnEqualSign) {
  for (const FormCase& each : kForms) {
    EXPECT_EQ(qvx::GetAStrParamNameLen(AEntry(each.text).data()), each.nameLength) << each.text;
    EXPECT_EQ(qvx::IsValidParam(AEntry(each.text).data()), each.nameLength == 0 ? 0u : 1u);
    EXPECT_EQ(qvx::GetUStrParamNameLen(UEntry(each.text).data()), each.nameLength) << each.text;
    EXPECT_EQ(qvx::IsValidUParam(UEntry(each.text).data()), each.nameLength == 0 ? 0u : 1u);
  }
}

TEST(ParamVector, NullEntriesAreNotWellFormed) {
  EXPECT_EQ(qvx::GetAStrParamNameLen(nullptr), 0u);
  EXPECT_EQ(qvx::IsValidParam(nullptr), 0u);
  EXPECT_EQ(qvx::GetAStrParamName(nullptr), nullptr);
  EXPECT_EQ(qvx::GetAStrParamValue(nullptr), nullptr);
  EXPECT_EQ(qvx::IsValidUParam(nullptr), 0u);
  EXPECT_EQ(qvx::GetUStrParamName(nullptr), nullptr);
  EXPECT_EQ(qvx::GetUStrParamValue(nullptr), nullptr);
}

TEST(ParamVector, TheValueStandsBehindTheFirstEqualSign) {
  AEntry whole("a=b=c");
  EXPECT_EQ(qvx::GetAStrParamValue(whole.data()), whole.data() + 2);
  AEntry empty("a=");
  EXPECT_EQ(qvx::GetAStrParamValue(empty.data()), empty.data() + 2);
  UEntry wide("ab=c");
  EXPECT_EQ(qvx::GetUStrParamValue(wide.data()), wide.data() + 3);
  for (const char* text : {"", "name", "=x"}) {
    EXPECT_EQ(qvx::GetAStrParamValue(AEntry(text).data()), nullptr);
    EXPECT_EQ(qvx::GetUStrParamValue(UEntry(text).data()), nullptr);
  }
}

TEST(ParamVector, TakingTheNameCutsTheEntryBehindIt) {
  AEntry entry("name=value");
  EXPECT_EQ(qvx::GetAStrParamName(entry.data()), entry.data());
  EXPECT_STREQ(entry.data(), "name");
  EXPECT_STREQ(entry.data() + 5, "value");
  EXPECT_EQ(qvx::GetAStrParamValue(entry.data()), nullptr);
  EXPECT_EQ(qvx::GetAStrParamName(entry.data()), nullptr);
}

TEST(ParamVector, TakingA16BitNameCutsTheEntryBehindIt) {
  UEntry entry("name=v");
  EXPECT_EQ(qvx::GetUStrParamName(entry.data()), entry.data());
  EXPECT_EQ(entry.data()[4], 0);
  EXPECT_EQ(entry.data()[5], 'v');
  EXPECT_EQ(qvx::GetUStrParamValue(entry.data()), nullptr);
}

TEST(ParamVector, EntriesThatAreNotWellFormedKeepTheirText) {
  AEntry noName("=x");
  EXPECT_EQ(qvx::GetAStrParamName(noName.data()), nullptr);
  EXPECT_STREQ(noName.data(), "=x");
  UEntry wide("=x");
  EXPECT_EQ(qvx::GetUStrParamName(wide.data()), nullptr);
  EXPECT_EQ(wide.data()[0], '=');
}

// Looks a name up among: nothing, no name, no "=", mode=on, Mode=off, mode=late, m=1.
s32 IndexOf(const char* name, booln ignoreCase) {
  AEntry noName("=x");
  AEntry noSign("mode");
  AEntry first("mode=on");
  AEntry capital("Mode=off");
  AEntry later("mode=late");
  AEntry shorter("m=1");
  astring* entries[] = {nullptr,        noName.data(), noSign.data(), first.data(),
                        capital.data(), later.data(),  shorter.data()};
  return qvx::GetParamIndexByAStrName(7, entries, AEntry(name).data(), ignoreCase);
}

TEST(ParamVector, TheFirstEntryOfTheNameIsFound) {
  EXPECT_EQ(IndexOf("mode", 0), 3);
  EXPECT_EQ(IndexOf("Mode", 0), 4);
  EXPECT_EQ(IndexOf("m", 0), 6);
  EXPECT_EQ(IndexOf("mo", 0), -1);
  EXPECT_EQ(IndexOf("modes", 0), -1);
  EXPECT_EQ(IndexOf("MODE", 0), -1);
}

TEST(ParamVector, AnEmptySearchNameMatchesNothing) {
  EXPECT_EQ(IndexOf("", 0), -1);
  EXPECT_EQ(IndexOf("", 1), -1);
  EXPECT_EQ(IndexOf("=", 0), -1);
  EXPECT_EQ(IndexOf("=x", 0), -1);
}

TEST(ParamVector, CaseIsIgnoredForAFlagOfExactlyOne) {
  AEntry entry("mode=on");
  astring* entries[] = {entry.data()};
  EXPECT_EQ(qvx::GetParamIndexByAStrName(1, entries, "Mode", 1), 0);
  for (const booln flag : {booln{0}, booln{2}, booln{0x101}, booln{0xFFFF}}) {
    EXPECT_EQ(qvx::GetParamIndexByAStrName(1, entries, "Mode", flag), -1) << flag;
    EXPECT_EQ(qvx::GetParamIndexByAStrName(1, entries, "mode", flag), 0) << flag;
  }
  EXPECT_EQ(IndexOf("MODE", 1), 3);
}

TEST(ParamVector, BytesAboveAsciiAreComparedAsTheyAre) {
  const qvx::test::LocaleGuard locale("C");
  AEntry entry("\xC4\xFF=1");
  astring* entries[] = {entry.data()};
  EXPECT_EQ(qvx::GetParamIndexByAStrName(1, entries, "\xC4\xFF", 1), 0);
  EXPECT_EQ(qvx::GetParamIndexByAStrName(1, entries, "\xE4\xFF", 1), -1);
}

TEST(ParamVector, ASearchNameWithAValueMatchesOnItsNamePart) {
  EXPECT_EQ(IndexOf("mode=off", 0), 3);
  EXPECT_EQ(IndexOf("mode=", 0), 3);
  EXPECT_EQ(IndexOf("MODE=x", 1), 3);
  EXPECT_EQ(IndexOf("m=", 0), 6);
}

TEST(ParamVector, TheValueOfTheFirstMatchIsGiven) {
  AEntry first("a=1");
  AEntry second("a=2");
  AEntry third("B=");
  astring* entries[] = {nullptr, first.data(), second.data(), third.data()};
  EXPECT_EQ(qvx::GetAStrParamValueByAStrName(4, entries, "a", 0), first.data() + 2);
  EXPECT_EQ(qvx::GetAStrParamValueByAStrName(4, entries, "b", 1), third.data() + 2);
  EXPECT_EQ(qvx::GetAStrParamValueByAStrName(4, entries, "b", 0), nullptr);
}

TEST(ParamVector, ACountBelowOneFindsNothing) {
  AEntry entry("a=1");
  astring* entries[] = {entry.data()};
  UEntry wide("a=1");
  ustring* wideEntries[] = {wide.data()};
  UEntry name("a");
  for (const s32 count : {0, -1, INT32_MIN}) {
    EXPECT_EQ(qvx::GetParamIndexByAStrName(count, entries, "a", 0), -1);
    EXPECT_EQ(qvx::GetAStrParamValueByAStrName(count, entries, "a", 0), nullptr);
    EXPECT_EQ(qvx::GetParamIndexByUStrName(count, wideEntries, name.data(), 0), -1);
    EXPECT_EQ(qvx::GetUStrParamValueByUStrName(count, wideEntries, name.data(), 0), nullptr);
  }
}

TEST(ParamVector, A16BitNameIsNeverFound) {
  UEntry noSign("name");
  UEntry odd("abc=");
  UEntry even("ab=cdef");
  UEntry single("a=a=");
  ustring* entries[] = {nullptr, noSign.data(), odd.data(), even.data(), single.data()};
  // Every text ends at a page that must not be touched: nothing is read past a terminator.
  for (const char* text : {"abc", "ab", "a", "name", "", "a=a", "ab=cdef", "abc="}) {
    UEntry name(text);
    for (const booln flag : {booln{0}, booln{1}}) {
      EXPECT_EQ(qvx::GetParamIndexByUStrName(5, entries, name.data(), flag), -1) << text;
      EXPECT_EQ(qvx::GetUStrParamValueByUStrName(5, entries, name.data(), flag), nullptr) << text;
    }
  }
}

TEST(ParamVector, ExportedFunctionsGiveTheSameAnswers) {
  AEntry entry("Name=1");
  astring* entries[] = {entry.data()};
  EXPECT_EQ(PXTIsValidParam(entry.data()), 1u);
  EXPECT_EQ(PXTGetParamIndexByAStrName(1, entries, "name", 1), 0);
  EXPECT_EQ(PXTGetAStrParamValueByAStrName(1, entries, "name", 1), entry.data() + 5);
  EXPECT_EQ(PXTGetAStrParamValue(entry.data()), entry.data() + 5);
  EXPECT_EQ(PXTGetAStrParamName(entry.data()), entry.data());
  UEntry wide("n=1");
  ustring* wideEntries[] = {wide.data()};
  UEntry name("n");
  EXPECT_EQ(PXTIsValidUParam(wide.data()), 1u);
  EXPECT_EQ(PXTGetParamIndexByUStrName(1, wideEntries, name.data(), 0), -1);
  EXPECT_EQ(PXTGetUStrParamValueByUStrName(1, wideEntries, name.data(), 0), nullptr);
  EXPECT_EQ(PXTGetUStrParamValue(wide.data()), wide.data() + 2);
  EXPECT_EQ(PXTGetUStrParamName(wide.data()), wide.data());
}

}  // namespace
