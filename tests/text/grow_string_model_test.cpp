// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/grow_string_model.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qvxcs/grow_string.h"
#include "qvxcs/memory.h"

#include "reference/text_model.h"
#include "support/guard_buffer.h"

namespace {

using qvx::test::GuardBuffer;
using qvx::test::HostileTexts;
using qvx::test::ModelRecord;
using qvx::test::ModelReplaced;
using qvx::test::ModelUnits;

constexpr u32 kSteps = 10000;
constexpr u32 kInputs = 5000;
constexpr size_t kLongEnough = 3000;  // a record this long begins anew

// The text at the end of its room: a read past the terminator faults.
template <typename Unit>
class Guarded {
 public:
  template <typename Text>
  explicit Guarded(const Text& text) : units_(text.size() + 1) {
    std::transform(text.begin(), text.end(), units_.data(),
                   [](auto each) { return static_cast<Unit>(each); });
    units_[text.size()] = 0;
  }
  Unit* text() { return units_.data(); }

 private:
  GuardBuffer<Unit> units_;
};

ModelUnits UnitsOf(const std::vector<u8>& bytes) { return {bytes.begin(), bytes.end()}; }

ModelUnits UnitsOf(const std::string& text) {
  ModelUnits units;
  for (const char each : text) {
    units.push_back(static_cast<u8>(each));
  }
  return units;
}

std::string StringOf(const std::vector<u8>& bytes) { return {bytes.begin(), bytes.end()}; }

struct Narrow {
  using Record = SSAStr;
  using Unit = astring;
  using OtherUnit = ustring;
  static constexpr auto kAlloc = PXTSSAStrAlloc;
  static constexpr auto kFree = PXTSSAStrFree;
  static constexpr auto kCat = PXTSSAStrCatAStr;
  static constexpr auto kCatOther = PXTSSAStrCatUStr;
  static ModelUnits Text(HostileTexts& texts) { return UnitsOf(texts.Bytes(20)); }
  static ModelUnits OtherText(HostileTexts& texts) { return texts.Units(20); }
};

struct Wide {
  using Record = SSUStr;
  using Unit = ustring;
  using OtherUnit = astring;
  static constexpr auto kAlloc = PXTSSUStrAlloc;
  static constexpr auto kFree = PXTSSUStrFree;
  static constexpr auto kCat = PXTSSUStrCatUStr;
  static constexpr auto kCatOther = PXTSSUStrCatAStr;
  static ModelUnits Text(HostileTexts& texts) { return texts.Units(20); }
  static ModelUnits OtherText(HostileTexts& texts) { return UnitsOf(texts.Bytes(12)); }
};

// A record beside its model; both do the same.
template <typename Kind>
class Pair {
  using Unit = typename Kind::Unit;

 public:
  explicit Pair(u32 seed) : texts_(seed) { *record() = {}; }
  ~Pair() { Kind::kFree(record()); }
  Pair(const Pair&) = delete;
  Pair& operator=(const Pair&) = delete;

  void Step() {
    if (model_.units().size() > kLongEnough) return Free();
    switch (texts_.Below(16)) {
      case 0:
        return texts_.Below(4) == 0 ? Free() : Alloc(0);
      case 1:
      case 2:
        if (texts_.Below(4) != 0) return;
        Free();
        return Alloc(texts_.Below(4) == 0 ? 1 + texts_.Below(200) : texts_.Below(12));
      case 3:
      case 4:
      case 5:
      case 6:
        return AppendOther(Kind::OtherText(texts_));
      case 7:
        return AppendPartOfItself();
      case 8:
        return AppendNothing();
      case 9:
      case 10:
        return Dump(StringOf(texts_.Bytes(20)));
      default:
        return Append(Kind::Text(texts_));
    }
  }
  void Alloc(u32 capacity) {
    Unit* const text = Kind::kAlloc(record(), capacity);
    ExpectText(text, model_.Alloc(capacity));
  }
  void Free() {
    Kind::kFree(record());
    model_.Free();
    ASSERT_EQ(record()->text, nullptr);
  }
  void Append(const ModelUnits& text) {
    const BlockKept kept(*this);
    Guarded<Unit> given(text);
    ExpectText(Kind::kCat(record(), given.text()), model_.Append(text));
  }
  void AppendOther(const ModelUnits& text) {
    const BlockKept kept(*this);
    Guarded<typename Kind::OtherUnit> given(text);
    ExpectText(Kind::kCatOther(record(), given.text()), model_.AppendOther(text));
  }
  void ExpectSame() {
    ASSERT_EQ(record()->text != nullptr, model_.live());
    ASSERT_EQ(record()->capacity, model_.capacity());
    ASSERT_EQ(record()->length, model_.units().size());
    ASSERT_TRUE(room_.FrontUntouched());
    if (!model_.live()) return;
    // A capacity of 1 has room for the 0 unit all the same.
    ASSERT_GE(malloc_usable_size(record()->text),
              std::max<size_t>(record()->capacity, sizeof(Unit)));
    const ModelUnits& units = model_.units();
    const auto same = [](u32 expected, Unit stored) {
      return static_cast<Unit>(expected) == stored;
    };
    ASSERT_TRUE(std::equal(units.begin(), units.end(), record()->text, same));
    ASSERT_EQ(record()->text[units.size()], 0);
  }

 private:
  // The text stays where it is unless the block had to grow.
  class BlockKept {
   public:
    explicit BlockKept(Pair& pair)
        : pair_(pair), text_(pair.record()->text), capacity_(pair.model_.capacity()) {}
    ~BlockKept() {
      if (pair_.model_.capacity() == capacity_) {
        EXPECT_EQ(pair_.record()->text, text_);
      }
    }
    BlockKept(const BlockKept&) = delete;
    BlockKept& operator=(const BlockKept&) = delete;

   private:
    Pair& pair_;
    Unit* text_;
    u32 capacity_;
  };

  typename Kind::Record* record() { return room_.data(); }
  void ExpectText(Unit* text, bool expected) {
    ASSERT_EQ(text, expected ? record()->text : nullptr);
  }
  void AppendPartOfItself() {
    if (!model_.live()) return;
    const u32 from = texts_.Below(static_cast<u32>(model_.units().size()) + 1);
    const ModelUnits part(model_.units().data() + from,
                          model_.units().data() + model_.units().size());
    ExpectText(Kind::kCat(record(), record()->text + from), model_.Append(part));
  }
  void AppendNothing() {
    const BlockKept kept(*this);
    ExpectText(Kind::kCat(record(), nullptr), model_.Append(std::nullopt));
    ExpectText(Kind::kCatOther(record(), nullptr), model_.AppendOther(std::nullopt));
  }
  void Dump(const std::string& bytes) {
    if constexpr (std::is_same_v<Kind, Wide>) {
      const u32 base = texts_.Below(2) == 0 ? texts_.Below(64) : 0xFFFFFFFF - texts_.Below(64);
      if (texts_.Below(8) == 0) {
        const u32 count = static_cast<u32>(bytes.size());
        ASSERT_EQ(PXTBufToUStr(record(), nullptr, count, base), model_.Dump(std::nullopt, base));
        return;
      }
      GuardBuffer<u8> given(bytes.size());
      memcpy(given.data(), bytes.data(), bytes.size());
      ASSERT_EQ(PXTBufToUStr(record(), given.data(), static_cast<u32>(bytes.size()), base),
                model_.Dump(bytes, base));
    }
  }

  HostileTexts texts_;
  GuardBuffer<typename Kind::Record> room_{1};
  ModelRecord model_{sizeof(Unit)};
};

template <typename Kind>
void ExpectAgreement(u32 seed) {
  Pair<Kind> pair(seed);
  for (u32 step = 0; step < kSteps; ++step) {
    ASSERT_NO_FATAL_FAILURE(pair.Step()) << step;
    ASSERT_NO_FATAL_FAILURE(pair.ExpectSame()) << step;
  }
}

// Records about the size where doubling ends.
template <typename Kind>
void ExpectAgreementOnLargeRecords(u32 seed) {
  for (const u32 capacity : {0xFFFFEu, 0xFFFFFu, 0x100000u, 0x100001u, 0x10u}) {
    HostileTexts sizes(seed + capacity);
    Pair<Kind> pair(seed);
    ASSERT_NO_FATAL_FAILURE(pair.Alloc(capacity));
    for (u32 step = 0; step < 6; ++step) {
      const u32 added = 1 + sizes.Below(400000);
      ASSERT_NO_FATAL_FAILURE(pair.Append(ModelUnits(added, 'a' + step)))
          << capacity << ' ' << step;
      ASSERT_NO_FATAL_FAILURE(pair.ExpectSame()) << capacity << ' ' << step;
    }
  }
}

TEST(GrowStringModel, ModelGrowsAsItsWorkedExamples) {
  ModelRecord small(1);
  EXPECT_FALSE(small.Append(UnitsOf("x")));
  EXPECT_FALSE(small.Alloc(0));
  ASSERT_TRUE(small.Alloc(8));
  EXPECT_TRUE(small.Append(UnitsOf("abc")));
  EXPECT_EQ(small.capacity(), 8u);
  EXPECT_TRUE(small.Append(UnitsOf("0123456789")));
  EXPECT_EQ(small.capacity(), 16u);
  EXPECT_EQ(small.units(), UnitsOf("abc0123456789"));
  ModelRecord large(1);
  ASSERT_TRUE(large.Alloc(0x100000));
  EXPECT_TRUE(large.Append(ModelUnits(0x100000 - 1, 'a')));
  EXPECT_EQ(large.capacity(), 0x100000u);
  EXPECT_TRUE(large.Append(UnitsOf("b")));
  EXPECT_EQ(large.capacity(), 0x140000u);
  ModelRecord wide(2);
  ASSERT_TRUE(wide.Alloc(4));
  EXPECT_TRUE(wide.Append(UnitsOf("abcd")));  // 10 bytes needed, 8 by doubling
  EXPECT_EQ(wide.capacity(), 10u);
  EXPECT_TRUE(wide.AppendOther(UnitsOf("\xC3\xA9\xC0\x80z")));
  EXPECT_EQ(wide.units(), (ModelUnits{'a', 'b', 'c', 'd', 0xE9}));
  ModelRecord narrow(1);
  ASSERT_TRUE(narrow.Alloc(4));
  EXPECT_TRUE(narrow.AppendOther(ModelUnits{'A', 0xD83D, 0xDE00}));
  EXPECT_TRUE(narrow.AppendOther(ModelUnits{0xD83D, 'A'}));
  EXPECT_EQ(narrow.units(), UnitsOf("AAA"));
}

TEST(GrowStringModel, ModelDumpsAsItsWorkedExamples) {
  const std::string twoLines = qvx::test::ModelHexDump("ABCDEFGHIJKLMNOPz{~\x7F", 0x1000);
  EXPECT_EQ(twoLines,
            "0x00001000: 41 42 43 44:45 46 47 48:49 4A 4B 4C:4D 4E 4F 50    ABCDEFGHIJKLMNOP \r\n"
            "0x00001010: 7A 7B 7E 7F                                        z...             \r\n");
  EXPECT_EQ(qvx::test::ModelHexDump("", 0), "");
}

TEST(GrowStringModel, ModelEditsAsItsWorkedExamples) {
  const ModelReplaced replaced =
      qvx::test::ModelReplace("abcdef", "bd", "X", 8, std::string("\0.......", 8));
  EXPECT_EQ(replaced.status, 0u);
  EXPECT_EQ(replaced.size, 8u);
  EXPECT_EQ(replaced.room, std::string("abXef\0..", 8));
  const ModelReplaced none = qvx::test::ModelReplace("abc", "cb", "", 5, std::string("wxyz\0", 5));
  EXPECT_EQ(none.status, 0xFFFFFFFFu);
  EXPECT_EQ(none.room, std::string("abc\0\0", 5));
  EXPECT_EQ(qvx::test::ModelReplace("abc", "b", "12", 4, std::string(4, '.')).size, 5u);
  EXPECT_EQ(qvx::test::ModelCompareFolded("ABC", "abd", 2), 0);
  EXPECT_EQ(qvx::test::ModelCompareFolded("ABC", "abd", 3), -1);
  EXPECT_EQ(qvx::test::ModelCompareFolded("a", "", 9), 97);
  EXPECT_EQ(qvx::test::ModelWithoutQuotes("\"a\"\"b\""), "ab");
}

TEST(GrowStringModel, NarrowRecordsAgreeWithTheModel) { ExpectAgreement<Narrow>(31); }

TEST(GrowStringModel, WideRecordsAgreeWithTheModel) { ExpectAgreement<Wide>(32); }

TEST(GrowStringModel, LargeNarrowRecordsAgreeWithTheModel) {
  ExpectAgreementOnLargeRecords<Narrow>(33);
}

TEST(GrowStringModel, LargeWideRecordsAgreeWithTheModel) {
  ExpectAgreementOnLargeRecords<Wide>(34);
}

TEST(GrowStringModel, DumpsAgreeWithTheModel) {
  HostileTexts texts(35);
  for (u32 input = 0; input < kInputs; ++input) {
    std::string bytes = StringOf(texts.Bytes(60));
    for (char& each : bytes) {
      if (texts.Below(10) == 0) each = '\0';
    }
    const u32 base = texts.Below(3) == 0 ? 0xFFFFFFFF - texts.Below(200) : texts.Below(100000);
    GuardBuffer<u8> given(bytes.size());
    memcpy(given.data(), bytes.data(), bytes.size());
    SSUStr record = {};
    ASSERT_NE(PXTSSUStrAlloc(&record, 1 + texts.Below(400)), nullptr);
    ASSERT_EQ(PXTBufToUStr(&record, given.data(), static_cast<u32>(bytes.size()), base), 0);
    const std::string expected = qvx::test::ModelHexDump(bytes, base);
    ASSERT_EQ(std::string(record.text, record.text + record.length), expected) << input;
    ASSERT_EQ(record.text[record.length], 0);
    PXTSSUStrFree(&record);
  }
}

TEST(GrowStringModel, ComparisonsAgreeWithTheModel) {
  HostileTexts texts(36);
  const std::string alphabet = "aAbBzZ@[`{\xC3\xE9\xFF";
  for (u32 input = 0; input < 4 * kInputs; ++input) {
    std::string pair[2];
    for (std::string& text : pair) {
      for (u32 left = texts.Below(7); left > 0; --left) {
        text += alphabet[texts.Below(texts.Below(2) == 0 ? 2 : static_cast<u32>(alphabet.size()))];
      }
    }
    const u32 count = texts.Below(10) == 0 ? 0xFFFFFFFF : texts.Below(9);
    Guarded<astring> first(pair[0]);
    Guarded<astring> second(pair[1]);
    ASSERT_EQ(PXTAStrnicmp(first.text(), second.text(), count),
              qvx::test::ModelCompareFolded(pair[0], pair[1], count))
        << pair[0] << ' ' << pair[1] << ' ' << count;
  }
}

TEST(GrowStringModel, QuotesAreRemovedAsTheModelRemovesThem) {
  HostileTexts texts(37);
  for (u32 input = 0; input < kInputs; ++input) {
    std::vector<std::string> given(texts.Below(5));
    std::vector<std::unique_ptr<Guarded<astring>>> rooms;
    std::vector<astring*> entries;
    for (std::string& text : given) {
      text = StringOf(texts.Bytes(8));
      for (char& each : text) {
        if (texts.Below(3) == 0) each = '"';
      }
      rooms.push_back(std::make_unique<Guarded<astring>>(text));
      entries.push_back(texts.Below(6) == 0 ? nullptr : rooms.back()->text());
    }
    PXTRemoveDQuotesInStrArr(static_cast<u32>(entries.size()), entries.data());
    for (size_t at = 0; at < entries.size(); ++at) {
      const std::string expected =
          entries[at] == nullptr ? given[at] : qvx::test::ModelWithoutQuotes(given[at]);
      ASSERT_EQ(std::string(rooms[at]->text()), expected) << input;
    }
  }
}

TEST(GrowStringModel, JoinedTextsAreTheirPartsInOrder) {
  HostileTexts texts(38);
  for (u32 input = 0; input < kInputs; ++input) {
    const std::string first = StringOf(texts.Bytes(10));
    const std::string second = StringOf(texts.Bytes(10));
    Guarded<astring> front(first);
    Guarded<astring> back(second);
    astring standing = 'x';
    astring* out = &standing;
    PXTAppendDNode(nullptr, back.text(), &out);
    PXTAppendDNode(front.text(), nullptr, &out);
    ASSERT_EQ(out, &standing);
    PXTAppendDNode(front.text(), back.text(), &out);
    ASSERT_EQ(std::string(out), first + second);
    PXTFreeMem(out);
  }
}

std::string FewLetters(HostileTexts& texts, u32 longest) {
  std::string text;
  for (u32 left = texts.Below(longest + 1); left > 0; --left) {
    text += "abcab\xFF"[texts.Below(6)];
  }
  return text;
}

// What the room holds beforehand: mostly a text, otherwise bytes without an end.
std::string StandingRoom(HostileTexts& texts, u32 size) {
  std::string room(size, '.');
  if (size != 0 && texts.Below(4) != 0) room[texts.Below(size)] = '\0';
  return room;
}

TEST(GrowStringModel, ReplacementsAgreeWithTheModel) {
  HostileTexts texts(39);
  for (u32 input = 0; input < 4 * kInputs; ++input) {
    const std::string text = FewLetters(texts, 12);
    const std::string find = FewLetters(texts, 4);
    const std::string replace = FewLetters(texts, 5);
    const bool itself = texts.Below(4) == 0;
    u32 size = itself ? static_cast<u32>(text.size()) + 1 + texts.Below(4) : texts.Below(20);
    std::string before = StandingRoom(texts, size);
    if (itself) before.replace(0, text.size() + 1, text.c_str(), text.size() + 1);
    const bool query = !itself && texts.Below(8) == 0;
    const ModelReplaced expected = qvx::test::ModelReplace(
        text, find, replace, size, query ? std::nullopt : std::optional<std::string>(before));
    GuardBuffer<astring> room(before.size());
    memcpy(room.data(), before.data(), before.size());
    Guarded<astring> given(text);
    Guarded<astring> sought(find);
    Guarded<astring> instead(replace);
    const u32 status = PXTASCIIReplaceSubstr(itself ? room.data() : given.text(), sought.text(),
                                             instead.text(), &size, query ? nullptr : room.data());
    ASSERT_EQ(status, expected.status) << text << ' ' << find << ' ' << replace;
    ASSERT_EQ(size, expected.size) << text << ' ' << find << ' ' << replace;
    ASSERT_EQ(std::string(room.data(), before.size()), query ? before : expected.room)
        << text << ' ' << find << ' ' << replace;
    ASSERT_TRUE(room.FrontUntouched());
  }
}

}  // namespace
