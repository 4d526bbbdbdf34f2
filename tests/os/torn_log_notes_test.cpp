// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/torn_log_notes.h"

#include <gtest/gtest.h>

#include <string>

#include "base/layout.h"
#include "frame/module.h"
#include "os/file_lock.h"
#include "os/ipc_file.h"
#include "support/files.h"
#include "support/processes.h"

namespace qvx {
namespace {

constexpr uid_t kNobody = 65534;

constexpr TornLogNote NoteOf(u64 inode, u64 offset = 75) {
  return {{1, inode}, offset, offset + 1000, 17};
}

u64 OffsetNow(u64 inode) {
  const FileLockGuard lock(QVX_LOCK_WAIT);
  const TornLogNotes notes;
  const TornLogNote* const found = notes.Find({1, inode});
  return found == nullptr ? 0 : found->offset;
}

bool Added(const TornLogNote& note) {
  const FileLockGuard lock(QVX_LOCK_WAIT);
  TornLogNotes notes;
  return notes.Add(note);
}

bool ForgetsWhatIsNotWritten() {
  const FileLockGuard lock(QVX_LOCK_WAIT);
  TornLogNotes notes;
  const TornLogNote note = NoteOf(3, 300);
  return !notes.Add(note) && notes.Find(note.file) == nullptr;
}

void Dropped(u64 inode) {
  const FileLockGuard lock(QVX_LOCK_WAIT);
  TornLogNotes notes;
  notes.Drop({1, inode});
}

class TornLogNotesTest : public testing::Test {
 protected:
  void SetUp() override {
    test::RequireSandbox();
    ASSERT_EQ(ModuleAttach(), 1);
  }
};

TEST_F(TornLogNotesTest, WithoutANoteTheLockFileIsEmpty) {
  EXPECT_FALSE(MayHaveTornLogNotes());
  EXPECT_EQ(OffsetNow(7), 0u);
  ASSERT_TRUE(Added(NoteOf(7)));
  EXPECT_TRUE(MayHaveTornLogNotes());
  Dropped(7);
  EXPECT_FALSE(MayHaveTornLogNotes());
  EXPECT_EQ(test::ReadFile(kIPCFilePath), "");
}

TEST_F(TornLogNotesTest, EachFileKeepsItsOwnNote) {
  ASSERT_TRUE(Added(NoteOf(1, 100)));
  ASSERT_TRUE(Added(NoteOf(2, 200)));
  ASSERT_TRUE(Added({{9, 1}, 900, 1000, 0}));
  EXPECT_EQ(OffsetNow(1), 100u);
  EXPECT_EQ(OffsetNow(2), 200u);
  Dropped(1);
  EXPECT_EQ(OffsetNow(1), 0u);
  EXPECT_EQ(OffsetNow(2), 200u);
}

TEST_F(TornLogNotesTest, ANewNoteReplacesTheFilesOldOne) {
  ASSERT_TRUE(Added(NoteOf(1, 100)));
  ASSERT_TRUE(Added(NoteOf(1, 300)));
  EXPECT_EQ(OffsetNow(1), 300u);
  Dropped(1);
  EXPECT_EQ(test::ReadFile(kIPCFilePath), "");
}

TEST_F(TornLogNotesTest, TheOldestOf64GivesWayToTheNext) {
  for (u64 inode = 1; inode <= 65; ++inode) {
    ASSERT_TRUE(Added(NoteOf(inode, inode)));
  }
  EXPECT_EQ(OffsetNow(1), 0u);
  for (u64 inode = 2; inode <= 65; ++inode) {
    EXPECT_EQ(OffsetNow(inode), inode);
  }
  const size_t full = test::ReadFile(kIPCFilePath).size();
  EXPECT_LE(full, 4096u) << "a kill must not cut the notes";
  ASSERT_TRUE(Added(NoteOf(66, 66)));
  EXPECT_EQ(test::ReadFile(kIPCFilePath).size(), full);
  for (u64 inode = 3; inode <= 66; ++inode) {
    Dropped(inode);
  }
  EXPECT_EQ(test::ReadFile(kIPCFilePath), "");
}

TEST_F(TornLogNotesTest, OtherContentsAreNoNotesAndGiveWayToTheFirst) {
  for (const size_t length : {1u, 8u, 100u, 3000u, 100000u}) {
    const std::string other(length, 'x');
    {
      const FileLockGuard lock(
          QVX_LOCK_WAIT);  // the write below closes a descriptor, which ends the hold
      test::WriteFile(kIPCFilePath, other);
    }
    EXPECT_TRUE(MayHaveTornLogNotes());
    EXPECT_EQ(OffsetNow(7), 0u);
    Dropped(7);
    EXPECT_EQ(test::ReadFile(kIPCFilePath), other);
    ASSERT_TRUE(Added(NoteOf(7)));
    EXPECT_EQ(OffsetNow(7), 75u);
    Dropped(7);
    EXPECT_EQ(test::ReadFile(kIPCFilePath), "");
  }
}

TEST_F(TornLogNotesTest, ANoteThatWasCutShortIsNone) {
  ASSERT_TRUE(Added(NoteOf(1, 100)));
  ASSERT_TRUE(Added(NoteOf(2, 200)));
  const std::string both = test::ReadFile(kIPCFilePath);
  test::WriteFile(kIPCFilePath, both.substr(0, both.size() - 1));
  EXPECT_EQ(OffsetNow(1), 100u);
  EXPECT_EQ(OffsetNow(2), 0u);
}

TEST(LoadWithTornLogNotes, LeavesOtherContentsAlone) {
  test::WriteFile(kIPCFilePath, "other");
  ASSERT_EQ(ModuleAttach(), 1);
  ASSERT_EQ(ModuleDetach(), 1);
  EXPECT_EQ(test::ReadFile(kIPCFilePath), "other");
}

TEST_F(TornLogNotesTest, WhoMayOnlyReadTheLockFileReadsNotesAndWritesNone) {
  ASSERT_TRUE(Added(NoteOf(1, 100)));
  ASSERT_EQ(chmod(kIPCFilePath, 0644), 0);
  const auto asNobody = [] {
    (void)CloseIPCFile();
    return setuid(kNobody) == 0 && OpenIPCFile() == 0 && OffsetNow(1) == 100 &&
                   !Added(NoteOf(2, 200)) && OffsetNow(2) == 0 && ForgetsWhatIsNotWritten()
               ? 0
               : 1;
  };
  EXPECT_EQ(test::InChild(asNobody), 0);
}

}  // namespace
}  // namespace qvx
