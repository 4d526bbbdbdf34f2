// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/keyvalue_reader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"

#include "frame/module.h"
#include "os/block_reader.h"
#include "os/file_lock.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/heap_use.h"
#include "support/processes.h"
#include "support/refuse_call.h"

namespace qvx {
namespace {

using namespace std::string_literals;

constexpr char kFile[] = "/tmp/test.properties";
constexpr u32 kFailed = 0xFFFFFFFF;

using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs Taken(PXTKeyValue* entries, u32 count) {
  Pairs pairs;
  for (u32 i = 0; i < count; ++i) {
    pairs.emplace_back(entries[i].key, entries[i].value);
  }
  PXTCFGFreeKeyValueEntries(entries, count);
  return pairs;
}

Pairs Entries() {
  u32 count = 77;
  PXTKeyValue* const entries = PXTCFGGetKeyValueEntries(kFile, &count);
  EXPECT_EQ(entries == nullptr, count == 0);
  return Taken(entries, count);
}

Pairs EntriesOf(const std::string& content) {
  test::WriteFile(kFile, content);
  return Entries();
}

class KeyValueReader : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(ModuleAttach(), 1); }
};

TEST_F(KeyValueReader, CommentIsNoEntryAndQuotesKeepBlanks) {
  EXPECT_EQ(EntriesOf("a=1\n# c=2\nb = \"x y\"\n"), (Pairs{{"a", "1"}, {"b", "x y"}}));
}

TEST_F(KeyValueReader, LastLineNeedsNoEnd) {
  EXPECT_EQ(EntriesOf("a=1\nb=2"), (Pairs{{"a", "1"}, {"b", "2"}}));
}

TEST_F(KeyValueReader, RepeatedAndEmptyKeysAndValuesAreEntries) {
  EXPECT_EQ(EntriesOf("a=1\r\na=\n=x\n"), (Pairs{{"a", "1"}, {"a", ""}, {"", "x"}}));
}

TEST_F(KeyValueReader, LineCountsUpToItsFirstNulByte) {
  EXPECT_EQ(EntriesOf("a=1\0b\nc\0d=2\ne=3\n"s), (Pairs{{"a", "1"}, {"e", "3"}}));
}

TEST_F(KeyValueReader, LongerLineIsReadInPieces) {
  const std::string first(8447, 'x');
  EXPECT_EQ(EntriesOf("a=" + first + "b=2\n"), (Pairs{{"a", first}, {"b", "2"}}));
  EXPECT_EQ(EntriesOf("a=" + first + "rest\n"), (Pairs{{"a", first}}));
}

TEST_F(KeyValueReader, FileWithoutEntriesIsNull) {
  EXPECT_EQ(EntriesOf(""), Pairs{});
  EXPECT_EQ(EntriesOf("# a=1\nb\n"), Pairs{});
}

TEST_F(KeyValueReader, FileThatCannotBeReadIsNull) {
  u32 count = 77;
  EXPECT_EQ(PXTCFGGetKeyValueEntries("/tmp/missing.properties", &count), nullptr);
  EXPECT_EQ(count, 0u);
  count = 77;
  EXPECT_EQ(PXTCFGGetKeyValueEntries("/tmp", &count), nullptr);
  EXPECT_EQ(count, 0u);
}

// A separate read looks for the last line's end, and it fails.
TEST_F(KeyValueReader, FileThatCannotBeReadToItsEndIsNull) {
  test::WriteFile(kFile, "a=1\nb=2\nc=3");
  EXPECT_EQ(test::InChild([] {
              constexpr int kAsked = BlockReader::kBlock - 3;
              test::RefuseCall(SYS_read, kAsked, EIO, 2);
              u32 count = 77;
              return PXTCFGGetKeyValueEntries(kFile, &count) == nullptr && count == 0 ? 3 : 4;
            }),
            3);
  EXPECT_EQ(Entries(), (Pairs{{"a", "1"}, {"b", "2"}, {"c", "3"}}));
}

TEST_F(KeyValueReader, NullArgumentsAreNull) {
  u32 count = 77;
  EXPECT_EQ(PXTCFGGetKeyValueEntries(nullptr, &count), nullptr);
  EXPECT_EQ(count, 0u);
  count = 77;
  EXPECT_EQ(PXTCFGInstGetKeyValueEntries(nullptr, &count), nullptr);
  EXPECT_EQ(count, 0u);
  test::WriteFile(kFile, "a=1\n");
  EXPECT_EQ(PXTCFGGetKeyValueEntries(kFile, nullptr), nullptr);
}

TEST_F(KeyValueReader, NameOfMoreThan256CharactersIsNull) {
  const std::string directory = "/tmp/" + std::string(120, 'd');
  ASSERT_EQ(mkdir(directory.c_str(), 0755), 0);
  const std::string longest = directory + "/" + std::string(256 - directory.size() - 1, 'f');
  test::WriteFile(longest, "a=1\n");
  test::WriteFile(longest + "f", "a=1\n");
  u32 count = 0;
  EXPECT_EQ(Taken(PXTCFGGetKeyValueEntries(longest.c_str(), &count), 1), (Pairs{{"a", "1"}}));
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(PXTCFGGetKeyValueEntries((longest + "f").c_str(), &count), nullptr);
  EXPECT_EQ(count, 0u);
}

TEST_F(KeyValueReader, InstallRelativeNameLiesBelowTheIniPath) {
  test::WriteFile("/etc/cim/zarn/plinthos/vexilon//qvx/ini/qvx.properties", "a=1\n");
  u32 count = 0;
  EXPECT_EQ(Taken(PXTCFGInstGetKeyValueEntries("qvx/ini/qvx.properties", &count), 1),
            (Pairs{{"a", "1"}}));
  EXPECT_EQ(count, 1u);
}

TEST_F(KeyValueReader, ReadingLeavesTheLockFree) {
  EXPECT_EQ(EntriesOf("a=1\n").size(), 1u);
  EXPECT_TRUE(test::LockIsFree());
  u32 count = 0;
  EXPECT_EQ(PXTCFGGetKeyValueEntries("/tmp/missing.properties", &count), nullptr);
  EXPECT_TRUE(test::LockIsFree());
}

TEST_F(KeyValueReader, WaitsForTheLockAndThenGivesUp) {
  test::WriteFile(kFile, "a=1\n");
  const test::LockHolder other;
  const test::CountSleeps sleeps;
  u32 count = 0;
  EXPECT_EQ(PopulateKeyValueEntries(kFile, nullptr, &count), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(test::CountSleeps::Count(), 60000u);
}

TEST(KeyValueReaderDetached, ReadIsNullWhileTheLibraryIsNotAttached) {
  test::WriteFile(kFile, "a=1\n");
  u32 count = 77;
  EXPECT_EQ(PXTCFGGetKeyValueEntries(kFile, &count), nullptr);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(PopulateKeyValueEntries(kFile, nullptr, &count), SM_STATUS_LOCK_FAILED);
}

TEST_F(KeyValueReader, CountingPassAlwaysFailsAndTellsTheCount) {
  test::WriteFile(kFile, "a=1\nb=2\n#\nc=3\n");
  u32 count = 0;
  EXPECT_EQ(PopulateKeyValueEntries(kFile, nullptr, &count), kFailed);
  EXPECT_EQ(count, 3u);
  test::WriteFile(kFile, "");
  count = 0;
  EXPECT_EQ(PopulateKeyValueEntries(kFile, nullptr, &count), kFailed);
  EXPECT_EQ(count, 0u);
}

TEST_F(KeyValueReader, FillingPassTellsHowManyItStored) {
  test::WriteFile(kFile, "a=1\nb=2\n");
  PXTKeyValue entries[3] = {};
  u32 count = 3;
  EXPECT_EQ(PopulateKeyValueEntries(kFile, entries, &count), SM_STATUS_SUCCESS);
  ASSERT_EQ(count, 2u);
  EXPECT_STREQ(entries[1].key, "b");
  EXPECT_EQ(entries[2].key, nullptr);
  for (u32 i = 0; i < count; ++i) {
    free(entries[i].key);
    free(entries[i].value);
  }
}

TEST_F(KeyValueReader, FillingPassFailsWhenTheFileHoldsMore) {
  test::WriteFile(kFile, "a=1\nb=2\nc=3\n");
  PXTKeyValue entries[2] = {};
  u32 count = 2;
  EXPECT_EQ(PopulateKeyValueEntries(kFile, entries, &count), kFailed);
  EXPECT_EQ(count, 3u);
}

TEST_F(KeyValueReader, PassRefusesACapacityWithoutAnArray) {
  test::WriteFile(kFile, "a=1\n");
  u32 count = 1;
  EXPECT_EQ(PopulateKeyValueEntries(kFile, nullptr, &count), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(PopulateKeyValueEntries(kFile, nullptr, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(PopulateKeyValueEntries(nullptr, nullptr, &count), SM_STATUS_INVALID_PARAMETER);
}

TEST_F(KeyValueReader, PassOverAMissingFileFails) {
  u32 count = 0;
  EXPECT_EQ(PopulateKeyValueEntries("/tmp/missing.properties", nullptr, &count), kFailed);
}

TEST_F(KeyValueReader, AMissingFileIsSeenBeforeAnyMemoryIsTaken) {
  const test::FailNthAllocation fault(1);
  u32 count = 0;
  EXPECT_EQ(PopulateKeyValueEntries("/tmp/missing.properties", nullptr, &count), kFailed);
}

TEST_F(KeyValueReader, FillingPassWithoutMemoryStoresNothing) {
  test::WriteFile(kFile, "a=1\nb=2\n");
  for (u32 nth = 1; nth <= 4; ++nth) {
    PXTKeyValue entries[2] = {};
    u32 count = 2;
    u32 status = SM_STATUS_SUCCESS;
    {
      const test::FailNthAllocation fault(nth);
      status = PopulateKeyValueEntries(kFile, entries, &count);
    }
    EXPECT_EQ(status, SM_STATUS_NO_MEMORY) << nth;
    EXPECT_TRUE(test::LockIsFree());
  }
}

TEST_F(KeyValueReader, IsNullWheneverAnAllocationFails) {
  test::WriteFile("/etc/cim/zarn/plinthos/vexilon//test.properties", "a=1\nb=2\n");
  u32 count = 0;
  PXTKeyValue* entries = nullptr;
  const u32 met = test::FailEachAllocation(
      [&] { return entries = CFGGetKeyValueEntries("test.properties", 1, &count); },
      [&](const PXTKeyValue* result) {
        EXPECT_EQ(result, nullptr);
        EXPECT_EQ(count, 0u);
      });
  // The INI path, the block, the array and four texts.
  EXPECT_EQ(met, 7u);
  EXPECT_EQ(Taken(entries, count), (Pairs{{"a", "1"}, {"b", "2"}}));
}

TEST(KeyValueLookup, FindsTheOccurrenceByItsIndex) {
  astring a[] = "a";
  astring b[] = "b";
  astring one[] = "1";
  astring two[] = "2";
  astring three[] = "3";
  const PXTKeyValue entries[] = {{a, one}, {b, two}, {a, three}};
  EXPECT_EQ(PXTCFGGetKeyValue(entries, 3, "a", 0), one);
  EXPECT_EQ(PXTCFGGetKeyValue(entries, 3, "a", 1), three);
  EXPECT_EQ(PXTCFGGetKeyValue(entries, 3, "a", 2), nullptr);
  EXPECT_EQ(PXTCFGGetKeyValue(entries, 3, "b", 0), two);
  EXPECT_EQ(PXTCFGGetKeyValue(entries, 2, "a", 1), nullptr);
}

TEST(KeyValueLookup, KeyIsComparedExactly) {
  astring key[] = "key";
  astring value[] = "v";
  const PXTKeyValue entries[] = {{key, value}};
  for (const char* other : {"KEY", "ke", "keys", "", " key"}) {
    EXPECT_EQ(PXTCFGGetKeyValue(entries, 1, other, 0), nullptr) << other;
  }
}

TEST(KeyValueLookup, AnEntryWithoutAKeyIsPassedOver) {
  astring key[] = "key";
  astring value[] = "v";
  const PXTKeyValue entries[] = {{nullptr, key}, {key, value}};
  EXPECT_EQ(PXTCFGGetKeyValue(entries, 2, "key", 0), value);
  EXPECT_EQ(PXTCFGGetKeyValue(entries, 1, "key", 0), nullptr);
}

TEST(KeyValueLookup, NullArgumentsAndNoEntriesAreNull) {
  astring key[] = "key";
  const PXTKeyValue entries[] = {{key, key}};
  EXPECT_EQ(PXTCFGGetKeyValue(nullptr, 1, "key", 0), nullptr);
  EXPECT_EQ(PXTCFGGetKeyValue(entries, 1, nullptr, 0), nullptr);
  EXPECT_EQ(PXTCFGGetKeyValue(entries, 0, "key", 0), nullptr);
}

TEST(KeyValueLookup, FreeingReleasesEachEntryAndTheirBlockAndOfNullNothing) {
  constexpr size_t kLarge = 8192;
  const size_t before = test::HeapInUse();
  auto* const entries = static_cast<PXTKeyValue*>(malloc(kLarge));
  for (PXTKeyValue* const entry : {entries, entries + 1}) {
    *entry = {static_cast<astring*>(malloc(kLarge)), static_cast<astring*>(malloc(kLarge))};
  }
  const size_t filled = test::HeapInUse();
  EXPECT_GE(filled, before + 5 * kLarge);
  PXTCFGFreeKeyValueEntries(nullptr, 0);
  PXTCFGFreeKeyValueEntries(nullptr, 5);
  EXPECT_EQ(test::HeapInUse(), filled);
  PXTCFGFreeKeyValueEntries(entries, 2);
  EXPECT_EQ(test::HeapInUse(), before);
}

}  // namespace
}  // namespace qvx
