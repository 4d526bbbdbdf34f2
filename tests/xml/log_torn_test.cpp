// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A kill within the one write of an append, which can cut it at the end of a page.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "base/layout.h"
#include "frame/module.h"
#include "os/file_id.h"
#include "os/file_lock.h"
#include "os/ipc_file.h"
#include "os/torn_log_notes.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/kill_at_stop.h"
#include "support/processes.h"
#include "support/small_disk.h"
#include "xml/log_backup.h"
#include "xml/log_files.h"
#include "xml/xml_log.h"

namespace qvx {
namespace {

constexpr char kLog[] = "/tmp/log.xml";
constexpr char kOther[] = "/tmp/other.xml";
constexpr char kBackup[] = "/tmp/log.xm_";
constexpr size_t kPage = 4096;
constexpr size_t kTagLength = sizeof "</EventLog>" - 1;

u32 AppendText(const char* path, u32 id, const std::string& description, u32 maxSize) {
  return AppendToXMLLog(path, QVX_LOG_INFORMATION, id, "user", "source", description.c_str(),
                        nullptr, 0, maxSize);
}

u32 Append(const char* path, u32 id, size_t length, u32 maxSize = test::kNoMaximum) {
  return AppendText(path, id, std::string(length, 'd'), maxSize);
}

std::string Entry(u32 id, size_t length) {
  return test::EntryOf(4, id, "user", "source", std::string(length, 'd'));
}

std::string LogNow(const char* path = kLog) { return test::WithoutTimes(test::ReadFile(path)); }

std::string LockFile() { return test::ReadFile(kIPCFilePath); }

bool EndsWithTag(const std::string& path) {
  const std::string log = test::ReadFile(path);
  return log.size() >= kTagLength && log.substr(log.size() - kTagLength) == "</EventLog>";
}

// A log whose closing tag is at `offset`, after one entry.
std::string LogWithItsTagAt(size_t offset) {
  const std::string begin = std::string(test::kLogHead) + "<LogEntry>";
  const std::string end = "</LogEntry>";
  return begin + std::string(offset - begin.size() - end.size(), 'o') + end + test::kLogTail;
}

// Appends in another process, which is killed right after its write was cut at `border`: a limit on
// the size of files cuts it there. False when the process came to its end.
bool TearText(const char* path, size_t border, u32 id, const std::string& description,
              u32 maxSize = test::kNoMaximum) {
  const auto append = [=] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {border, border};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return 9;
    return static_cast<int>(AppendText(path, id, description, maxSize) & 0x7F);
  };
  const std::string before = test::Exists(path) ? test::ReadFile(path) : "";
  const auto look = [path, border, &before] {
    if (!test::Exists(path)) return true;
    const std::string now = test::ReadFile(path);
    return now.size() < border || now == before;
  };
  return test::RunStepwise(append, look) == test::kKilled;
}

bool Tear(const char* path, size_t border, u32 id, size_t length, u32 maxSize = test::kNoMaximum) {
  return TearText(path, border, id, std::string(length, 'd'), maxSize);
}

// A well-formed description may show another log, with its entries and its closing tag.
std::string ShownLog(u32 entries) {
  std::string shown;
  for (u32 id = 1; id <= entries; ++id) {
    std::string entry = Entry(id, 20);
    entry.insert(strlen("<LogEntry>"), "<TimeStamp>1</TimeStamp><DateTime>then</DateTime>");
    shown += entry;
  }
  return "<Answer><EventLog>" + shown + "</EventLog></Answer>";
}

class LogTorn : public testing::Test {
 protected:
  void SetUp() override {
    test::RequireSandbox();
    ASSERT_EQ(ModuleAttach(), 1);
  }
};

TEST_F(LogTorn, TheNextAppendPutsTheClosingTagBack) {
  for (const size_t offset :
       {200u, 4000u, 4075u, 4084u, 4085u, 4086u, 4090u, 4094u, 4096u, 5000u}) {
    const size_t first = (offset / kPage + 1) * kPage;
    for (const size_t border : {first, first + kPage}) {
      SCOPED_TRACE(std::to_string(offset) + " cut at " + std::to_string(border));
      const std::string standing = LogWithItsTagAt(offset);
      test::WriteFile(kLog, standing);
      ASSERT_TRUE(Tear(kLog, border, 1, 10000));
      EXPECT_FALSE(EndsWithTag(kLog));
      EXPECT_NE(LockFile(), "");
      EXPECT_EQ(Append(kLog, 2, 10), SM_STATUS_SUCCESS);
      EXPECT_EQ(LogNow(), standing.substr(0, offset) + Entry(2, 10) + "</EventLog>");
      EXPECT_EQ(LockFile(), "");
      EXPECT_TRUE(test::LockIsFree());
    }
  }
}

TEST_F(LogTorn, AShortEntryAcrossAPageIsMendedToo) {
  const std::string standing = LogWithItsTagAt(4000);
  test::WriteFile(kLog, standing);
  ASSERT_TRUE(Tear(kLog, kPage, 1, 5));
  EXPECT_EQ(Append(kLog, 2, 5), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), standing.substr(0, 4000) + Entry(2, 5) + "</EventLog>");
}

// The process was killed after it had put the tag back and before it cut the log. What is left of
// the entry holds the tag's text, too.
TEST_F(LogTorn, AnEntryThatWasBeingTakenBackIsTakenBackWhole) {
  const std::string standing = LogWithItsTagAt(4000);
  test::WriteFile(kLog, standing);
  ASSERT_TRUE(Tear(kLog, kPage, 1, 10000));
  std::string taken = test::ReadFile(kLog);
  taken.replace(4000, kTagLength, "</EventLog>").replace(4040, kTagLength, "</EventLog>");
  test::WriteFile(kLog, taken);
  EXPECT_EQ(Append(kLog, 2, 5), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), standing.substr(0, 4000) + Entry(2, 5) + "</EventLog>");
}

TEST_F(LogTorn, AFirstEntryThatWasCutBeginsTheLogAnew) {
  for (const size_t border : {kPage, 2 * kPage}) {
    for (const char* before : {"", "damaged"}) {
      test::WriteFile(kLog, before);
      ASSERT_TRUE(Tear(kLog, border, 1, 10000));
      EXPECT_EQ(Append(kLog, 2, 10), SM_STATUS_SUCCESS);
      EXPECT_EQ(LogNow(), test::LogOf(Entry(2, 10)));
      EXPECT_EQ(LockFile(), "");
    }
  }
}

TEST_F(LogTorn, AKillAtAnyCallLeavesTheOldLogOrTheNewAndNoNoteInTheEnd) {
  for (const size_t garbage : {0u, 20000u}) {
    const std::string standing = LogWithItsTagAt(4000);
    const u32 stops = test::KillAtEachStop(
        [&] { test::WriteFile(kLog, standing + std::string(garbage, ' ')); },
        [] { return Append(kLog, 1, 5000) == SM_STATUS_SUCCESS; },
        [&](u32 nth) {
          SCOPED_TRACE(nth);
          std::string found = LogNow();
          found.erase(found.find_last_not_of(' ') + 1);
          const std::string kept = standing.substr(0, 4000);
          const bool there = found != standing;
          EXPECT_EQ(found, there ? kept + Entry(1, 5000) + "</EventLog>" : standing);
          EXPECT_TRUE(test::LockIsFree());
          EXPECT_EQ(Append(kLog, 2, 10), SM_STATUS_SUCCESS);
          EXPECT_EQ(LogNow(), kept + (there ? Entry(1, 5000) : "") + Entry(2, 10) + "</EventLog>");
          EXPECT_EQ(LockFile(), "");
        });
    EXPECT_GE(stops, 20u);
  }
}

TEST_F(LogTorn, AKillWhileALogIsMendedLeavesItToTheNext) {
  const std::string standing = LogWithItsTagAt(4000);
  const u32 stops = test::KillAtEachStop(
      [&] {
        test::WriteFile(kLog, standing);
        ASSERT_TRUE(Tear(kLog, 2 * kPage, 1, 10000));
      },
      [] { return Append(kLog, 2, 9000) == SM_STATUS_SUCCESS; },
      [&](u32 nth) {
        SCOPED_TRACE(nth);
        EXPECT_EQ(Append(kLog, 3, 10), SM_STATUS_SUCCESS);
        const std::string kept = standing.substr(0, 4000);
        const std::string found = LogNow();
        EXPECT_TRUE(found == kept + Entry(3, 10) + "</EventLog>" ||
                    found == kept + Entry(2, 9000) + Entry(3, 10) + "</EventLog>");
        EXPECT_EQ(LockFile(), "");
      });
  EXPECT_GE(stops, 30u);
}

// A kill while the tag is put back cuts it where a page ends; a write that is cut anywhere counts
// too.
TEST_F(LogTorn, AMendThatIsCutItselfIsMendedAgain) {
  for (const size_t offset : {4000u, 4086u, 4088u, 4090u, 4094u, 4095u}) {
    const std::string standing = LogWithItsTagAt(offset);
    for (size_t written = 1; written <= kTagLength; ++written) {
      test::WriteFile(kLog, standing);
      ASSERT_TRUE(TearText(kLog, 2 * kPage, 1, ShownLog(2) + std::string(10000, 'd')));
      std::string torn = test::ReadFile(kLog);
      torn.replace(offset, written, "</EventLog>", written);
      test::WriteFile(kLog, torn);
      EXPECT_EQ(Append(kLog, 2, 10), SM_STATUS_SUCCESS) << offset << " " << written;
      EXPECT_EQ(LogNow(), standing.substr(0, offset) + Entry(2, 10) + "</EventLog>");
    }
  }
}

TEST_F(LogTorn, SeveralTornLogsStayApart) {
  test::WriteFile(kLog, LogWithItsTagAt(4000));
  test::WriteFile(kOther, LogWithItsTagAt(5000));
  ASSERT_TRUE(Tear(kLog, kPage, 1, 10000));
  ASSERT_TRUE(Tear(kOther, 2 * kPage, 1, 10000));
  EXPECT_EQ(Append(kOther, 2, 10), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(kOther), LogWithItsTagAt(5000).substr(0, 5000) + Entry(2, 10) + "</EventLog>");
  EXPECT_NE(LockFile(), "");
  EXPECT_EQ(Append(kLog, 2, 9000), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogWithItsTagAt(4000).substr(0, 4000) + Entry(2, 9000) + "</EventLog>");
  EXPECT_EQ(LockFile(), "");
}

TEST_F(LogTorn, ALogThatSomeoneElseDamagedIsBadDataInSpiteOfANote) {
  const auto refuses = [](const std::string& damaged) {
    struct stat status = {};
    test::WriteFile(kLog, LogWithItsTagAt(4000));
    const bool torn = Tear(kLog, 2 * kPage, 1, 10000) && stat(kLog, &status) == 0;
    const ino_t inode = status.st_ino;
    test::WriteFile(kLog, damaged);
    return torn && stat(kLog, &status) == 0 && status.st_ino == inode &&
           Append(kLog, 2, 10) == SM_STATUS_BAD_DATA && test::ReadFile(kLog) == damaged;
  };
  const std::string standing = LogWithItsTagAt(4000).substr(0, 4000);
  EXPECT_TRUE(refuses(std::string(8192, 'x')));
  EXPECT_TRUE(refuses(standing)) << "shorter than a cut write leaves it";
  EXPECT_TRUE(refuses(standing + std::string(4192, 'y'))) << "not what the library wrote";
  EXPECT_TRUE(refuses(standing + std::string(30000, 'y')));
  EXPECT_TRUE(refuses(std::string(4000, 'x') + std::string(4192, 'd')));
}

TEST_F(LogTorn, ANoteOfAnotherFileMendsNothing) {
  test::WriteFile(kOther, LogWithItsTagAt(4000));
  ASSERT_TRUE(Tear(kOther, 2 * kPage, 1, 10000));
  const std::string torn = test::ReadFile(kOther);
  test::WriteFile(kLog, torn);
  EXPECT_EQ(Append(kLog, 2, 10), SM_STATUS_BAD_DATA);
  EXPECT_EQ(test::ReadFile(kLog), torn);
}

TEST_F(LogTorn, ClearingOrDeletingATornLogDropsItsNote) {
  test::WriteFile(kLog, LogWithItsTagAt(4000));
  ASSERT_TRUE(Tear(kLog, kPage, 1, 10000));
  EXPECT_EQ(ClearXMLLog(kLog, "u", "s"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), test::LogOf(test::EntryOf(4, 0, "u", "s", "Log was cleared")));
  EXPECT_EQ(LockFile(), "");
  test::WriteFile(kLog, LogWithItsTagAt(4000));
  ASSERT_TRUE(Tear(kLog, kPage, 1, 10000));
  EXPECT_EQ(DeleteLogFile(kLog), SM_STATUS_SUCCESS);
  EXPECT_EQ(LockFile(), "");
}

TEST_F(LogTorn, ANoteOfAFileThatIsGoneCountsForNothing) {
  test::WriteFile(kLog, LogWithItsTagAt(4000));
  ASSERT_TRUE(Tear(kLog, kPage, 1, 10000));
  ASSERT_EQ(unlink(kLog), 0);
  // The system may give the new log the old one's number.
  EXPECT_EQ(Append(kLog, 2, 10), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), test::LogOf(Entry(2, 10)));
}

TEST_F(LogTorn, ATornLogIsMendedBeforeItMovesToItsBackup) {
  const std::string standing = LogWithItsTagAt(4000);
  test::WriteFile(kLog, standing);
  ASSERT_TRUE(Tear(kLog, 2 * kPage, 1, 10000));
  EXPECT_EQ(Append(kLog, 2, 10, 4000), SM_STATUS_SUCCESS);
  EXPECT_EQ(test::ReadFile(kBackup), standing);
  EXPECT_EQ(LockFile(), "");
}

TEST_F(LogTorn, ATornLogIsNotMendedWithoutTheLock) {
  test::WriteFile(kLog, LogWithItsTagAt(4000));
  ASSERT_TRUE(Tear(kLog, 2 * kPage, 1, 10000));
  const std::string torn = test::ReadFile(kLog);
  const test::LockHolder other(kIPCFilePath);
  const test::CountSleeps sleeps;
  EXPECT_EQ(Append(kLog, 2, 10, 4000), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(test::ReadFile(kLog), torn);
  EXPECT_FALSE(test::Exists(kBackup));
}

TEST_F(LogTorn, ATornLogCountsWithItsMendedSize) {
  const std::string standing = LogWithItsTagAt(4000);
  test::WriteFile(kLog, standing);
  ASSERT_TRUE(Tear(kLog, 2 * kPage, 1, 10000));
  EXPECT_EQ(Append(kLog, 2, 10, 8000), SM_STATUS_SUCCESS);
  EXPECT_FALSE(test::Exists(kBackup));
  EXPECT_EQ(LogNow(), standing.substr(0, 4000) + Entry(2, 10) + "</EventLog>");
}

TEST_F(LogTorn, OtherContentsOfTheLockFileChangeNoAppend) {
  test::WriteFile(kIPCFilePath, "something else");
  EXPECT_EQ(Append(kLog, 1, 10), SM_STATUS_SUCCESS);
  EXPECT_EQ(LockFile(), "something else");
  EXPECT_EQ(Append(kLog, 2, 10000), SM_STATUS_SUCCESS);
  EXPECT_EQ(LockFile(), "");
  EXPECT_EQ(LogNow(), test::LogOf(Entry(1, 10) + Entry(2, 10000)));
}

// While it lives, the lock file is an empty file on a disk without a free page.
class LockFileOnAFullDisk {
 public:
  LockFileOnAFullDisk() {
    (void)CloseIPCFile();
    EXPECT_EQ(mount("/tmp/disk", kFolder, nullptr, MS_BIND, nullptr), 0);
    EXPECT_EQ(OpenIPCFile(), 0);
    test::SmallDisk::Fill();
  }
  ~LockFileOnAFullDisk() {
    (void)CloseIPCFile();
    EXPECT_EQ(umount2(kFolder, MNT_DETACH), 0);
    EXPECT_EQ(OpenIPCFile(), 0);
  }
  LockFileOnAFullDisk(const LockFileOnAFullDisk&) = delete;
  LockFileOnAFullDisk& operator=(const LockFileOnAFullDisk&) = delete;

 private:
  static constexpr char kFolder[] = "/etc/cim/zarn/plinthos/var/lib/vexilon";
  test::SmallDisk disk_;
};

TEST_F(LogTorn, OnAFullDiskAnEntryIsWrittenWithoutItsNote) {
  const LockFileOnAFullDisk full;
  EXPECT_EQ(Append(kLog, 1, 9000), SM_STATUS_SUCCESS);
  EXPECT_EQ(LockFile(), "");
  EXPECT_EQ(Append(kLog, 2, 9000), SM_STATUS_SUCCESS);
  EXPECT_EQ(LockFile(), "");
  EXPECT_EQ(LogNow(), test::LogOf(Entry(1, 9000) + Entry(2, 9000)));
  EXPECT_TRUE(test::LockIsFree());
}

// Without a note nothing shows that the library wrote it.
TEST_F(LogTorn, ALogThatIsTornOnAFullDiskIsBadDataUntilItIsCleared) {
  const LockFileOnAFullDisk full;
  const std::string standing = LogWithItsTagAt(4000);
  test::WriteFile(kLog, standing);
  ASSERT_TRUE(Tear(kLog, 2 * kPage, 1, 10000));
  EXPECT_EQ(LockFile(), "");
  const std::string torn = test::ReadFile(kLog);
  EXPECT_EQ(torn.substr(0, 4000), standing.substr(0, 4000));
  EXPECT_EQ(Append(kLog, 2, 10), SM_STATUS_BAD_DATA);
  EXPECT_EQ(test::ReadFile(kLog), torn);
  EXPECT_EQ(ClearXMLLog(kLog, "u", "s"), SM_STATUS_SUCCESS);
  EXPECT_EQ(Append(kLog, 2, 10), SM_STATUS_SUCCESS);
}

// Runs `body` in a process that may write the log, and read the lock file only.
template <typename Body>
int AsReaderOfTheLockFile(Body body) {
  return test::InChild([&body] {
    (void)CloseIPCFile();
    return chmod(kIPCFilePath, 0644) == 0 && chmod("/tmp", 0777) == 0 &&
                   chown(kLog, test::kNobody, test::kNobody) == 0 && setuid(test::kNobody) == 0 &&
                   OpenIPCFile() == 0
               ? body()
               : 99;
  });
}

TEST_F(LogTorn, WhoMayOnlyReadTheLockFileMendsAndAppendsWithoutANote) {
  const std::string standing = LogWithItsTagAt(4000);
  test::WriteFile(kLog, standing);
  ASSERT_TRUE(Tear(kLog, kPage, 1, 10000));
  const std::string note = LockFile();
  EXPECT_EQ(AsReaderOfTheLockFile([] { return static_cast<int>(Append(kLog, 2, 10000)); }), 0);
  EXPECT_EQ(LogNow(), standing.substr(0, 4000) + Entry(2, 10000) + "</EventLog>");
  EXPECT_EQ(LockFile(), note);
}

TEST_F(LogTorn, AnOldNoteTakesNoEntryBackThatWasAppendedAfterIt) {
  const std::string standing = LogWithItsTagAt(200);
  for (const size_t length : {5u, 4000u, 12000u}) {
    test::WriteFile(kLog, standing);
    ASSERT_TRUE(Tear(kLog, kPage, 1, 10000));
    ASSERT_EQ(AsReaderOfTheLockFile([length] { return static_cast<int>(Append(kLog, 2, length)); }),
              0);
    // Its next entry is cut without its own note.
    const std::string cut = test::ReadFile(kLog);
    test::WriteFile(kLog, cut.substr(0, cut.size() - kTagLength) + "<LogEntry><TimeStamp>17");
    const std::string damaged = test::ReadFile(kLog);
    EXPECT_EQ(Append(kLog, 3, 10), SM_STATUS_BAD_DATA);
    EXPECT_EQ(test::ReadFile(kLog), damaged);
  }
}

// With few bytes up to the page's end, every entry begins as the noted one does.
TEST_F(LogTorn, ANoteOfACommonBeginningTakesNoWholeEntryBack) {
  const std::string standing = LogWithItsTagAt(4090);
  for (const size_t length : {5u, 5000u}) {
    test::WriteFile(kLog, standing);
    ASSERT_TRUE(Tear(kLog, kPage, 1, 10000));
    ASSERT_EQ(AsReaderOfTheLockFile([length] { return static_cast<int>(Append(kLog, 2, length)); }),
              0);
    EXPECT_EQ(Append(kLog, 3, 10), SM_STATUS_SUCCESS);
    EXPECT_EQ(LogNow(), standing.substr(0, 4090) + Entry(2, length) + Entry(3, 10) + "</EventLog>");
    EXPECT_EQ(LockFile(), "");
  }
}

TEST_F(LogTorn, ANoteOfACommonBeginningTakesNoEntryBackBeforeOneThatWasCut) {
  for (const size_t length : {5u, 3700u, 5000u}) {
    test::WriteFile(kLog, LogWithItsTagAt(4090));
    ASSERT_TRUE(Tear(kLog, kPage, 1, 10000));
    ASSERT_EQ(AsReaderOfTheLockFile([length] { return static_cast<int>(Append(kLog, 2, length)); }),
              0);
    const std::string whole = test::ReadFile(kLog);
    test::WriteFile(kLog, whole.substr(0, whole.size() - kTagLength) + "<LogEntry><TimeStamp>17");
    const std::string damaged = test::ReadFile(kLog);
    EXPECT_EQ(Append(kLog, 3, 10), SM_STATUS_BAD_DATA);
    EXPECT_EQ(test::ReadFile(kLog), damaged);
  }
}

// Those may be two entries, and the first of them a whole one.
TEST_F(LogTorn, ATornEntryThatLooksLikeTwoIsNotTakenBack) {
  const std::string text(3000, 'd');
  const std::string two = text + "</Data></LogEntry><LogEntry><TimeStamp>" + text + text;
  test::WriteFile(kLog, LogWithItsTagAt(kPage - 100));
  ASSERT_TRUE(TearText(kLog, 2 * kPage, 1, two));
  const std::string torn = test::ReadFile(kLog);
  EXPECT_EQ(Append(kLog, 2, 10), SM_STATUS_BAD_DATA);
  EXPECT_EQ(test::ReadFile(kLog), torn);
}

TEST_F(LogTorn, AnEntryThatShowsAnotherLogIsTakenBack) {
  const std::string standing = LogWithItsTagAt(kPage - 500);
  for (const u32 entries : {1u, 2u, 20u}) {
    for (const size_t before : {10u, 4000u}) {  // cut after what is shown, and within it
      const std::string description = std::string(before, 'd') + ShownLog(entries);
      test::WriteFile(kLog, standing);
      ASSERT_TRUE(TearText(kLog, 2 * kPage, 1, description + std::string(9000 - before, 'd')));
      EXPECT_EQ(Append(kLog, 2, 10), SM_STATUS_SUCCESS) << entries << " " << before;
      EXPECT_EQ(LogNow(), standing.substr(0, kPage - 500) + Entry(2, 10) + "</EventLog>");
      EXPECT_EQ(LockFile(), "");
    }
  }
}

TEST_F(LogTorn, AnEntryCutRightAfterAClosingTagThatItShowsIsTakenBack) {
  const std::string standing = LogWithItsTagAt(kPage - 500);
  const std::string shown = ShownLog(1);
  const size_t untilTag = shown.find("</EventLog>") + kTagLength;
  // What comes before the description depends on the length of the time.
  for (size_t before = 100; before < 500; ++before) {
    const std::string padding(kPage + before - untilTag, 'd');
    test::WriteFile(kLog, standing);
    ASSERT_TRUE(TearText(kLog, 2 * kPage, 1, padding + shown + std::string(5000, 'd')));
    if (!EndsWithTag(kLog)) continue;
    EXPECT_EQ(Append(kLog, 2, 10), SM_STATUS_SUCCESS);
    EXPECT_EQ(LogNow(), standing.substr(0, kPage - 500) + Entry(2, 10) + "</EventLog>");
    return;
  }
  ADD_FAILURE() << "no padding ends the page with the tag";
}

// The lock file is the operators' to write. A note of theirs takes no entry from a whole log.
TEST_F(LogTorn, AForgedNoteTakesNoWholeEntryBack) {
  ASSERT_EQ(AppendText(kLog, 1, "x</LogEntry></EventLog>", test::kNoMaximum), SM_STATUS_SUCCESS);
  const size_t within = test::ReadFile(kLog).find("</EventLog>");
  for (const u32 id : {2u, 3u, 4u}) {
    ASSERT_EQ(Append(kLog, id, 10), SM_STATUS_SUCCESS);
  }
  const std::string whole = test::ReadFile(kLog);
  struct stat status = {};
  ASSERT_EQ(stat(kLog, &status), 0);
  for (const u64 end : {u64{0}, u64{within + 5}, u64{whole.size()}, ~u64{0}}) {
    test::WriteFile(kLog, whole);
    {
      const FileLockGuard lock(QVX_LOCK_WAIT);
      TornLogNotes notes;
      ASSERT_TRUE(notes.Add({FileIdOf(status), within, end, 0}));
    }
    EXPECT_EQ(Append(kLog, 5, 10), SM_STATUS_SUCCESS);
    EXPECT_EQ(test::WithoutTimes(test::ReadFile(kLog)),
              test::WithoutTimes(whole.substr(0, whole.size() - kTagLength)) + Entry(5, 10) +
                  "</EventLog>")
        << end;
  }
}

// Cut after the append looked at the log's size, before the move.
TEST_F(LogTorn, TheMoveItselfMendsTheLogToo) {
  const std::string standing = LogWithItsTagAt(4000);
  test::WriteFile(kLog, standing);
  ASSERT_TRUE(Tear(kLog, 2 * kPage, 1, 10000));
  EXPECT_EQ(BackupLogFile(kLog, 8000, 0), kMinusOne) << "the mended log is not full";
  EXPECT_EQ(test::ReadFile(kLog), standing);
  ASSERT_TRUE(Tear(kLog, 2 * kPage, 1, 10000));
  EXPECT_EQ(BackupLogFile(kLog, 4000, 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(test::ReadFile(kBackup), standing);
  EXPECT_EQ(LockFile(), "");
}

TEST_F(LogTorn, AnUsualAppendWritesNoNote) {
  test::WriteFile(kLog, LogWithItsTagAt(1000));
  bool noted = false;
  const auto look = [&noted] {
    noted = noted || !LockFile().empty();
    return true;
  };
  EXPECT_EQ(test::RunStepwise([] { return static_cast<int>(Append(kLog, 1, 10)); }, look), 0);
  EXPECT_FALSE(noted);
  EXPECT_EQ(test::RunStepwise([] { return static_cast<int>(Append(kLog, 2, 4000)); }, look), 0);
  EXPECT_TRUE(noted);
}

// --- Kills at random moments ---

// Where and how often: by hand a release runs more of them, on a disk too.
std::string PlaceOfKills() {
  const char* const place = getenv("QVX_KILL_FOLDER");
  return std::string(place == nullptr ? "/tmp" : place) + "/killed.xml";
}
u32 NumberOfKills() {
  const char* const number = getenv("QVX_KILLS");
  return number == nullptr ? 300 : static_cast<u32>(atoi(number));
}

// Appends without a pause; `told` holds the last identifier whose append gave 0.
[[noreturn]] void AppendForever(const std::string& path, u32 seed, u32 id, volatile u32* told) {
  std::minstd_rand random(seed);
  for (;; ++id) {
    const size_t length = random() % 4 == 0 ? 1 + random() % 16000 : 1 + random() % 200;
    const std::string data(random() % 8 == 0 ? random() % 6000 : 0, 'b');
    const std::string description(length, 'd');
    if (AppendToXMLLog(path.c_str(), QVX_LOG_INFORMATION, id, "u", "s", description.c_str(),
                       data.empty() ? nullptr : data.data(), static_cast<u32>(data.size()),
                       test::kNoMaximum) != SM_STATUS_SUCCESS) {
      _exit(1);
    }
    *told = id;
  }
}

// The identifiers from `first` on, in the order of the log, without that of an entry that was cut
// off by the kill, whose append never returned: the one before the last.
std::vector<u32> IdsFrom(u32 first, const std::string& log) {
  std::vector<u32> ids;
  for (const std::string& id : test::ElementsOf(log, "ID")) {
    const auto number = static_cast<u32>(std::stoul(id));
    if (number >= first) ids.push_back(number);
  }
  if (ids.size() > 1 && ids[ids.size() - 2] + 1 == ids.back()) ids.erase(ids.end() - 2);
  return ids;
}

// All whose append returned, and the one after the kill, whose number is two higher.
std::vector<u32> Counted(u32 first, u32 last) {
  std::vector<u32> ids;
  for (u32 id = first; id <= last; ++id) {
    ids.push_back(id);
  }
  ids.push_back(last + 2);
  return ids;
}

TEST_F(LogTorn, KillsAtRandomMomentsCloseNoLogAndLoseNoEntry) {
  const std::string path = PlaceOfKills();
  auto* const told = static_cast<volatile u32*>(
      mmap(nullptr, sizeof(u32), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  std::minstd_rand random(20261122);
  u32 mended = 0;
  u32 id = 1;
  (void)unlink(path.c_str());
  for (u32 kill = 0; kill < NumberOfKills(); ++kill) {
    *told = id - 1;
    const u32 seed = static_cast<u32>(random());
    const pid_t child = fork();
    if (child == 0) AppendForever(path, seed, id, told);
    usleep(500 + static_cast<u32>(random() % 3000));
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "an append failed";
    if (test::Exists(path) && !EndsWithTag(path)) ++mended;
    const u32 last = *told;
    ASSERT_EQ(Append(path.c_str(), last + 2, 10), SM_STATUS_SUCCESS) << kill;
    ASSERT_EQ(IdsFrom(id, test::ReadFile(path)), Counted(id, last)) << kill;
    id = last + 3;
    if (test::ReadFile(path).size() > 200000) {
      ASSERT_TRUE(test::IsWellFormed(path));
      ASSERT_EQ(DeleteLogFile(path.c_str()), SM_STATUS_SUCCESS);
    }
  }
  EXPECT_TRUE(!test::Exists(path) || test::IsWellFormed(path));
  EXPECT_EQ(LockFile(), "");
  printf("%u kills, %u logs mended\n", NumberOfKills(), mended);
}

}  // namespace
}  // namespace qvx
