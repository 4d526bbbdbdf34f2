// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/param_vector_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "qvxcs/param_vector.h"

#include "support/guard_buffer.h"
#include "text/param_vector.h"

namespace {

using qvx::test::GuardBuffer;
using qvx::test::ModelEntry;
using qvx::test::ModelParamIndex16;
using qvx::test::ModelParamIndex8;
using qvx::test::ModelParamName;
using qvx::test::ModelParamValue;

constexpr u32 kInputs = 5000;

// Entries and names that come near each other: few letters, both cases, "=" anywhere.
class HostileEntries {
 public:
  HostileEntries(u32 seed, std::u32string rare) : next_(seed), rare_(std::move(rare)) {}
  u32 Below(size_t limit) { return static_cast<u32>(next_() % limit); }
  std::u32string Letters(u32 longest) {
    std::u32string text;
    for (u32 left = Below(longest + 1); left > 0; --left) {
      text += Below(6) == 0 ? rare_[Below(rare_.size())] : U"aAbB"[Below(4)];
    }
    return text;
  }
  std::u32string Entry() {
    switch (Below(8)) {
      case 0:
        return Letters(4);
      case 1:
        return U"=" + Letters(3);
      case 2:
        return Letters(3) + U"=" + Letters(2) + U"=" + Letters(2);
      default:
        return Letters(3) + U"=" + Letters(3);
    }
  }
  std::vector<ModelEntry> Vector() {
    std::vector<ModelEntry> entries(Below(7));
    for (ModelEntry& entry : entries) {
      if (Below(8) != 0) entry = Entry();
    }
    return entries;
  }
  // Often one of the entries' own names, in another case, with a value, or a part of it.
  std::u32string Name(const std::vector<ModelEntry>& entries) {
    std::u32string name = Letters(3);
    if (!entries.empty() && Below(4) != 0) {
      name = ModelParamName(entries[Below(entries.size())]).value_or(name);
    }
    for (char32_t& each : name) {
      if (Below(4) == 0 && each < 128 && each > '@') each ^= 32;
    }
    if (Below(5) == 0) name += U"=" + Letters(3);
    if (Below(12) == 0 && !name.empty()) name.pop_back();
    return name;
  }
  s32 Count(const std::vector<ModelEntry>& entries) {
    if (Below(8) == 0) return static_cast<s32>(Below(3)) * -1000000;
    return static_cast<s32>(entries.size() - Below(std::min<size_t>(entries.size() + 1, 2)));
  }
  booln CaseFlag() { return (const booln[]){0, 1, 1, 1, 2, 0x0101, 0xFFFF}[Below(7)]; }

 private:
  std::mt19937 next_;
  std::u32string rare_;
};

// Bytes that are no letters here, whatever they are elsewhere, and those beside the letters.
HostileEntries Bytes(u32 seed) { return {seed, U"=@[`{\x01\x7F\x80\xC4\xE4\xFF"}; }

HostileEntries Units(u32 seed) { return {seed, U"=@\x3D00\xD800\xDC00\xFFFF\x0141"}; }

// Each text ends at a page that nobody may touch.
template <typename Unit>
class Vector {
 public:
  explicit Vector(const std::vector<ModelEntry>& entries) {
    for (const ModelEntry& entry : entries) {
      Add(entry.value_or(U""));
      pointers_.push_back(entry ? rooms_.back()->data() : nullptr);
    }
  }
  Unit** entries() { return pointers_.data(); }
  Unit* at(size_t index) { return pointers_[index]; }

  // Where each text is, with its terminator.
  std::u32string Whole(size_t index) {
    const GuardBuffer<Unit>& room = *rooms_[index];
    std::u32string text;
    for (size_t unit = 0; unit < room.size(); ++unit) {
      text += static_cast<std::make_unsigned_t<Unit>>((*rooms_[index])[unit]);
    }
    return text;
  }

 private:
  void Add(const std::u32string& text) {
    rooms_.push_back(std::make_unique<GuardBuffer<Unit>>(text.size() + 1));
    for (size_t unit = 0; unit <= text.size(); ++unit) {
      (*rooms_.back())[unit] = static_cast<Unit>(text.c_str()[unit]);
    }
  }
  std::vector<std::unique_ptr<GuardBuffer<Unit>>> rooms_;
  std::vector<Unit*> pointers_;
};

struct Narrow {
  using Unit = astring;
  static constexpr auto kCut = PXTGetAStrParamName;
  static constexpr auto kValue = PXTGetAStrParamValue;
  static constexpr auto kIsValid = PXTIsValidParam;
  static constexpr auto kNameLength = qvx::GetAStrParamNameLen;
};

struct Wide {
  using Unit = ustring;
  static constexpr auto kCut = PXTGetUStrParamName;
  static constexpr auto kValue = PXTGetUStrParamValue;
  static constexpr auto kIsValid = PXTIsValidUParam;
  static constexpr auto kNameLength = qvx::GetUStrParamNameLen;
};

// One entry split in every way; the cut comes last, because it changes the entry.
template <typename Kind>
void ExpectSplitAgrees(const ModelEntry& entry) {
  Vector<typename Kind::Unit> given({entry});
  const ModelEntry name = ModelParamName(entry);
  const u32 length = name ? static_cast<u32>(name->size()) : 0;
  if (entry || std::is_same_v<Kind, Narrow>) {
    ASSERT_EQ(Kind::kNameLength(given.at(0)), length);
  }
  ASSERT_EQ(Kind::kIsValid(given.at(0)), name ? 1u : 0u);
  ASSERT_EQ(Kind::kValue(given.at(0)), name ? given.at(0) + length + 1 : nullptr);
  std::u32string whole = entry.value_or(U"") + U'\0';
  ASSERT_EQ(given.Whole(0), whole);
  ASSERT_EQ(Kind::kCut(given.at(0)), name ? given.at(0) : nullptr);
  if (name) whole[length] = U'\0';
  ASSERT_EQ(given.Whole(0), whole);
  if (name) {
    ASSERT_EQ(Kind::kValue(given.at(0)), nullptr);
  }
}

TEST(ParamVectorModel, ModelSplitsAsItsWorkedExamples) {
  EXPECT_EQ(ModelParamName(U"name=value"), U"name");
  EXPECT_EQ(ModelParamValue(U"name=a=b"), U"a=b");
  EXPECT_EQ(ModelParamName(U"a="), U"a");
  EXPECT_EQ(ModelParamValue(U"a="), U"");
  EXPECT_EQ(ModelParamName(U"=x"), std::nullopt);
  EXPECT_EQ(ModelParamName(U"name"), std::nullopt);
  EXPECT_EQ(ModelParamValue(U""), std::nullopt);
  EXPECT_EQ(ModelParamName(std::nullopt), std::nullopt);
}

TEST(ParamVectorModel, ModelFindsAsItsWorkedExamples) {
  const std::vector<ModelEntry> entries = {std::nullopt, U"mod=1", U"modes=2", U"mode=on"};
  EXPECT_EQ(ModelParamIndex8(4, entries, U"mode", 0), 3);
  EXPECT_EQ(ModelParamIndex8(4, entries, U"Mode", 1), 3);
  EXPECT_EQ(ModelParamIndex8(4, entries, U"Mode", 0), -1);
  EXPECT_EQ(ModelParamIndex8(4, entries, U"Mode", 2), -1);
  EXPECT_EQ(ModelParamIndex8(4, entries, U"mode=off", 0), 3);
  EXPECT_EQ(ModelParamIndex8(3, entries, U"mode", 0), -1);
  EXPECT_EQ(ModelParamIndex8(0, entries, U"mod", 0), -1);
  EXPECT_EQ(ModelParamIndex8(4, entries, U"", 0), -1);
  EXPECT_EQ(ModelParamIndex8(4, entries, U"=", 0), -1);
}

// Units that follow the texts do not help: the name's terminator is compared with the entry's "=".
TEST(ParamVectorModel, ModelFindsNoWideEntry) {
  EXPECT_EQ(ModelParamIndex16(1, {U"a=b"}, U"a", U"b", 0), -1);
  EXPECT_EQ(ModelParamIndex16(1, {U"ab=ab="}, U"ab", U"ab", 1), -1);
  EXPECT_EQ(ModelParamIndex16(1, {U"mode=mode"}, U"mode", U"mode", 0), -1);
}

TEST(ParamVectorModel, NarrowEntriesAreSplitAsTheModelSplitsThem) {
  HostileEntries texts = Bytes(51);
  for (u32 input = 0; input < kInputs; ++input) {
    const ModelEntry entry = texts.Below(40) == 0 ? ModelEntry() : texts.Entry();
    ASSERT_NO_FATAL_FAILURE(ExpectSplitAgrees<Narrow>(entry)) << input;
  }
}

TEST(ParamVectorModel, WideEntriesAreSplitAsTheModelSplitsThem) {
  HostileEntries texts = Units(52);
  for (u32 input = 0; input < kInputs; ++input) {
    const ModelEntry entry = texts.Below(40) == 0 ? ModelEntry() : texts.Entry();
    ASSERT_NO_FATAL_FAILURE(ExpectSplitAgrees<Wide>(entry)) << input;
  }
}

TEST(ParamVectorModel, NarrowNamesAreFoundWhereTheModelFindsThem) {
  HostileEntries texts = Bytes(53);
  u32 found = 0;
  for (u32 input = 0; input < 2 * kInputs; ++input) {
    const std::vector<ModelEntry> entries = texts.Vector();
    const std::u32string name = texts.Name(entries);
    const s32 count = texts.Count(entries);
    const booln flag = texts.CaseFlag();
    Vector<astring> given(entries);
    Vector<astring> sought({name});
    const s32 expected = ModelParamIndex8(count, entries, name, flag);
    ASSERT_EQ(PXTGetParamIndexByAStrName(count, given.entries(), sought.at(0), flag), expected)
        << input;
    const astring* const value =
        PXTGetAStrParamValueByAStrName(count, given.entries(), sought.at(0), flag);
    if (expected == -1) {
      ASSERT_EQ(value, nullptr) << input;
    } else {
      ++found;
      const auto at = static_cast<size_t>(expected);
      ASSERT_EQ(value, given.at(at) + ModelParamName(entries[at])->size() + 1) << input;
    }
    for (size_t at = 0; at < entries.size(); ++at) {
      ASSERT_EQ(given.Whole(at), entries[at].value_or(U"") + U'\0') << input;
    }
  }
  // Both outcomes are common, or the comparison says little.
  EXPECT_GT(found, kInputs / 4);
  EXPECT_LT(found, kInputs * 3 / 2);
}

TEST(ParamVectorModel, WideNamesAreNotFoundAsTheModelFindsNone) {
  HostileEntries texts = Units(54);
  for (u32 input = 0; input < 2 * kInputs; ++input) {
    const std::vector<ModelEntry> entries = texts.Vector();
    const std::u32string name = texts.Name(entries);
    const s32 count = texts.Count(entries);
    const booln flag = texts.CaseFlag();
    Vector<ustring> given(entries);
    Vector<ustring> sought({name});
    std::u32string behind = texts.Letters(4);
    behind.resize(2 * name.size() + 2);
    const s32 expected = ModelParamIndex16(count, entries, name, behind, flag);
    ASSERT_EQ(expected, -1) << input;
    ASSERT_EQ(PXTGetParamIndexByUStrName(count, given.entries(), sought.at(0), flag), expected)
        << input;
    ASSERT_EQ(PXTGetUStrParamValueByUStrName(count, given.entries(), sought.at(0), flag), nullptr)
        << input;
  }
}

}  // namespace
