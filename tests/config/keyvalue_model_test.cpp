// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/keyvalue_model.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "qvxcs/status.h"

#include "config/keyvalue_line.h"
#include "config/keyvalue_reader.h"
#include "config/keyvalue_writer.h"
#include "frame/module.h"
#include "support/files.h"
#include "support/guard_buffer.h"

namespace {

using qvx::test::GuardBuffer;
using qvx::test::HostileKeyValues;
using qvx::test::ModelCleanLine;
using qvx::test::ModelKeyValue;
using qvx::test::ModelKeyValueFile;
using qvx::test::ModelKeyValueLines;
using qvx::test::ModelKeyValues;
using qvx::test::ModelSetKeyValue;
using Entries = std::vector<ModelKeyValue>;

constexpr u32 kInputs = 5000;
constexpr u32 kFailed = 0xFFFFFFFF;
constexpr mode_t kOldMode = 0640;
constexpr mode_t kNewMode = 01664;

// A file as a call names it, and where it is.
struct Place {
  const char* name;
  u16 installFlag;
  const char* path;
  const char* temporary;
};

constexpr Place kPlaces[] = {
    {"/tmp/kv/model.properties", 0, "/tmp/kv/model.properties", "/tmp/kv/pxtcfg32.tmp"},
    {"qvx/ini/model.properties", 1, "/etc/cim/zarn/plinthos/vexilon/qvx/ini/model.properties",
     "/etc/cim/zarn/plinthos/vexilon/qvx/ini/pxtcfg32.tmp"},
};

std::string Shown(const std::string& text) { return testing::PrintToString(text.substr(0, 600)); }

// Equal texts, shown only as far as can be read.
testing::AssertionResult Same(const std::string& seen, const std::string& expected) {
  if (seen == expected) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << seen.size() << " bytes " << Shown(seen) << " where the model has " << expected.size()
         << " bytes " << Shown(expected);
}

Entries Copied(const PXTKeyValue* entries, u32 count) {
  Entries copied;
  for (u32 at = 0; at < count; ++at)
    copied.emplace_back(entries[at].key, entries[at].value);
  return copied;
}

class KeyValueModel : public testing::Test {
 protected:
  void SetUp() override {
    qvx::test::RequireSandbox();
    ASSERT_EQ(qvx::ModuleAttach(), 1);
    ASSERT_EQ(mkdir("/tmp/kv", 0755), 0);
  }
  static void Write(const Place& place, const std::string& file) {
    qvx::test::WriteFile(place.path, file);
    ASSERT_EQ(chmod(place.path, kOldMode), 0);
  }
};

TEST(KeyValueModelItself, KnowsWhatALineMeans) {
  EXPECT_EQ(ModelKeyValues("a=1\n# c=2\nb = \"x y\"\n"), (Entries{{"a", "1"}, {"b", "x y"}}));
  EXPECT_EQ(ModelKeyValues("  log level = \"very high\"  "), (Entries{{"loglevel", "very high"}}));
  EXPECT_EQ(ModelKeyValues("no entry\n ; x=1\r\n\n=\n"), (Entries{{"", ""}}));
  EXPECT_EQ(ModelKeyValues("\"a b\" =  x y \t\r\na=\"x \"\n"),
            (Entries{{"a b", "x y"}, {"a", "x "}}));
  EXPECT_EQ(ModelCleanLine(" a b \n"), " a b \n");
  EXPECT_EQ(ModelKeyValueLines("a\n\nb"), (std::vector<std::string>{"a\n", "\n", "b"}));
  const std::vector<std::string> pieces = ModelKeyValueLines(std::string(8450, 'x') + "\n");
  ASSERT_EQ(pieces.size(), 2u);
  EXPECT_EQ(pieces[0].size(), 8449u);
  EXPECT_EQ(pieces[1], "x\n");
}

TEST(KeyValueModelItself, KnowsWhichOccurrenceIsReplaced) {
  const std::string file = "a=1\nb=2\n a = 3\n";
  EXPECT_EQ(qvx::test::ModelValueOf(ModelKeyValues(file), "a", 1), "3");
  EXPECT_EQ(ModelSetKeyValue(file, {"a", "x"}, 1).text, "a=1\nb=2\na=x\n");
  EXPECT_EQ(ModelSetKeyValue(file, {"a", "x"}, 2).text, "a=1\nb=2\n a = 3\na=x\n");
  EXPECT_EQ(ModelSetKeyValue(file, {"a", "x"}, 3).status, SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(ModelSetKeyValue("c", {"a", "x"}, 0).text, "ca=x\n");
  EXPECT_EQ(ModelSetKeyValue("", {"", std::string(8449, 'v')}, 0).status, SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(ModelSetKeyValue("", {"", std::string(8448, 'v')}, 0).status, 0u);
}

TEST_F(KeyValueModel, LinesAreCleanedAsTheModelCleansThem) {
  HostileKeyValues files(31);
  for (u32 input = 0; input < kInputs; ++input) {
    const std::string line = files.Line() + (input % 2 == 0 ? "\n" : "");
    GuardBuffer<astring> room(line.size() + 1);
    memcpy(room.data(), line.c_str(), line.size() + 1);
    qvx::CFGEntryRemoveWhiteSpaceAndDQuotes(room.data());
    ASSERT_TRUE(Same(room.data(), ModelCleanLine(line))) << input << ": " << Shown(line);
    ASSERT_TRUE(room.FrontUntouched()) << input << ": " << Shown(line);
  }
}

TEST_F(KeyValueModel, EntriesAndTheirOccurrencesAgreeWithTheModel) {
  HostileKeyValues files(32);
  for (u32 input = 0; input < kInputs; ++input) {
    const Place& place = kPlaces[input % 2];
    const std::string file = files.File();
    ASSERT_NO_FATAL_FAILURE(Write(place, file));
    const Entries expected = ModelKeyValues(file);
    u32 count = 77;
    PXTKeyValue* const entries = qvx::CFGGetKeyValueEntries(place.name, place.installFlag, &count);
    ASSERT_EQ(entries == nullptr, expected.empty()) << input << ": " << Shown(file);
    ASSERT_EQ(Copied(entries, count), expected) << input << ": " << Shown(file);
    for (u32 index = 0; index < 4; ++index) {
      const std::string key = files.Key();
      const astring* const value = qvx::CFGGetKeyValue(entries, count, key.c_str(), index);
      const auto held = qvx::test::ModelValueOf(expected, key, index);
      ASSERT_EQ(value != nullptr, held.has_value()) << input << ": " << Shown(file);
      if (value != nullptr) {
        ASSERT_EQ(*held, value) << input << ": " << Shown(file);
      }
    }
    qvx::CFGFreeKeyValueEntries(entries, count);
    ASSERT_TRUE(Same(qvx::test::ReadFile(place.path), file)) << input;
    ASSERT_EQ(qvx::test::ModeOf(place.path), kOldMode) << input;
  }
}

TEST_F(KeyValueModel, APassOverTheFileStoresWhatFitsAndNothingBehind) {
  HostileKeyValues files(33);
  const Place& place = kPlaces[0];
  for (u32 input = 0; input < kInputs; ++input) {
    const std::string file = files.File();
    ASSERT_NO_FATAL_FAILURE(Write(place, file));
    const Entries expected = ModelKeyValues(file);
    u32 count = 0;
    ASSERT_EQ(qvx::PopulateKeyValueEntries(place.path, nullptr, &count), kFailed);
    ASSERT_EQ(count, expected.size()) << input << ": " << Shown(file);
    const u32 capacity = files.Below(count + 2);
    GuardBuffer<PXTKeyValue> room(capacity + 1);
    u32 stored = capacity;
    const u32 status = qvx::PopulateKeyValueEntries(place.path, room.data(), &stored);
    ASSERT_EQ(status, count <= capacity ? SM_STATUS_SUCCESS : kFailed) << input;
    ASSERT_EQ(stored, count) << input << ": " << Shown(file);
    ASSERT_TRUE(room.FrontUntouched()) << input;
    ASSERT_TRUE(room.UntouchedFrom(std::min(count, capacity))) << input;
    if (status != SM_STATUS_SUCCESS) continue;
    ASSERT_EQ(Copied(room.data(), stored), expected) << input << ": " << Shown(file);
    for (u32 at = 0; at < stored; ++at) {
      free(room[at].key);
      free(room[at].value);
    }
  }
}

TEST_F(KeyValueModel, WritesLeaveTheFileThatTheModelLeaves) {
  HostileKeyValues files(34);
  for (u32 input = 0; input < kInputs; ++input) {
    const Place& place = kPlaces[input % 2];
    const std::string file = files.File();
    ASSERT_NO_FATAL_FAILURE(Write(place, file));
    // A copy left by a failure does no harm.
    if (input % 16 == 0) qvx::test::WriteFile(place.temporary, std::string(9000, 't'));
    std::string key = files.Key();
    std::string value = files.Value();
    const u32 index = files.Below(3) == 0 ? files.Below(5) : 0;
    const PXTKeyValue pair = {key.data(), value.data()};
    const ModelKeyValueFile expected = ModelSetKeyValue(file, {key, value}, index);
    ASSERT_EQ(qvx::CFGSetKeyValue(place.name, place.installFlag, &pair, index), expected.status)
        << input << ": " << Shown(file) << Shown(key) << Shown(value) << index;
    ASSERT_TRUE(Same(qvx::test::ReadFile(place.path), expected.text))
        << input << ": " << Shown(file) << Shown(key) << Shown(value) << index;
    const bool written = expected.status == SM_STATUS_SUCCESS;
    ASSERT_EQ(qvx::test::ModeOf(place.path), written ? kNewMode : kOldMode) << input;
    ASSERT_FALSE(written && qvx::test::Exists(place.temporary)) << input;
  }
}

}  // namespace
