// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Every name that the library writes, with something in its place that is no file of its own: a
// FIFO must not make it wait, and what a link or another name leads to must keep its bytes.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "qvxcs/command_log.h"
#include "qvxcs/ini_file.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"
#include "support/alone.h"
#include "support/files.h"

namespace {

using qvx::test::ReadFile;
using qvx::test::WriteFile;

constexpr char kIni[] = "/run/names/a.ini";
constexpr char kIniCopy[] = "/run/names/pxtini32.tmp";
constexpr char kPairs[] = "/run/names/a.properties";
constexpr char kPairsCopy[] = "/run/names/pxtcfg32.tmp";
constexpr char kLog[] = "/run/names/a.xml";
constexpr char kBackup[] = "/run/names/a.xm_";
// Belongs to somebody else; it could be read as a file of each kind, and is no log's size or more.
constexpr char kVictim[] = "/run/victim";
constexpr char kVictimText[] = "[A]\nkey=1\n";

enum class Plant { kFifo, kDirectory, kLink, kHardLink };

struct Case {
  const char* name;
  Plant plant;
  u32 status;
  bool stays;  // whether what was planted is still there afterwards
};

void Put(const Case& given) {
  (void)unlink(given.name);
  switch (given.plant) {
    case Plant::kFifo:
      ASSERT_EQ(mkfifo(given.name, 0600), 0);
      break;
    case Plant::kDirectory:
      ASSERT_EQ(mkdir(given.name, 0700), 0);
      break;
    case Plant::kLink:
      ASSERT_EQ(symlink(kVictim, given.name), 0);
      break;
    case Plant::kHardLink:
      ASSERT_EQ(link(kVictim, given.name), 0);
      break;
  }
}

bool IsPlanted(const Case& given) {
  struct stat status = {};
  struct stat victim = {};
  if (lstat(given.name, &status) != 0 || stat(kVictim, &victim) != 0) return false;
  switch (given.plant) {
    case Plant::kFifo:
      return S_ISFIFO(status.st_mode);
    case Plant::kDirectory:
      return S_ISDIR(status.st_mode) && (status.st_mode & 07777) == 0700;
    case Plant::kLink:
      return S_ISLNK(status.st_mode);
    case Plant::kHardLink:
      return status.st_ino == victim.st_ino;
  }
  return false;
}

// A call that would wait for the other end of a FIFO is ended by the alarm, and the case fails.
void Expect(const Case& given, void (*prepare)(), u32 (*call)(), const char* target,
            const char* written) {
  SCOPED_TRACE(std::string(given.name) + ", plant " +
               std::to_string(static_cast<int>(given.plant)));
  ASSERT_EQ(mkdir("/run/names", 0755), 0);
  WriteFile(kVictim, kVictimText);
  prepare();
  Put(given);
  (void)alarm(60);
  EXPECT_EQ(call(), given.status);
  (void)alarm(0);
  if (given.status == SM_STATUS_SUCCESS) {
    EXPECT_NE(ReadFile(target).find(written), std::string::npos) << ReadFile(target);
  }
  EXPECT_EQ(ReadFile(kVictim), kVictimText);
  EXPECT_EQ(IsPlanted(given), given.stays);
  EXPECT_TRUE(qvx::test::LockIsFree());
  std::filesystem::remove_all("/run/names");
}

void GiveIni() { WriteFile(kIni, kVictimText); }

u32 ReplaceIniValue() {
  return PXTWriteINIPathFileValue("A", "key", QVX_INI_ASTRING, "2", 2, kIni, QVX_LOCK_WAIT);
}

QVX_ALONE(WrittenNames, AnIniFileAndItsCopy) {
  ASSERT_EQ(qvx::ModuleInit(), 1);
  for (const Case& given : {
           Case{kIni, Plant::kFifo, SM_STATUS_FILE_OPEN_FAILED, true},
           Case{kIni, Plant::kDirectory, SM_STATUS_FILE_OPEN_FAILED, true},
           Case{kIni, Plant::kLink, SM_STATUS_SUCCESS, false},
           Case{kIni, Plant::kHardLink, SM_STATUS_SUCCESS, false},
           Case{kIniCopy, Plant::kFifo, SM_STATUS_SUCCESS, false},
           Case{kIniCopy, Plant::kDirectory, SM_STATUS_FILE_OPEN_FAILED, true},
           Case{kIniCopy, Plant::kLink, SM_STATUS_SUCCESS, false},
           Case{kIniCopy, Plant::kHardLink, SM_STATUS_SUCCESS, false},
       }) {
    Expect(given, GiveIni, ReplaceIniValue, kIni, "key=2\n");
  }
}

void GivePairs() { WriteFile(kPairs, kVictimText); }

u32 ReplacePair() {
  char key[] = "key";
  char value[] = "2";
  const PXTKeyValue pair = {key, value};
  return PXTCFGSetKeyValue(kPairs, &pair, 0);
}

QVX_ALONE(WrittenNames, AKeyValueFileAndItsCopy) {
  ASSERT_EQ(qvx::ModuleInit(), 1);
  for (const Case& given : {
           Case{kPairs, Plant::kFifo, SM_STATUS_FILE_OPEN_ERROR, true},
           Case{kPairs, Plant::kDirectory, SM_STATUS_FILE_OPEN_ERROR, true},
           Case{kPairs, Plant::kLink, SM_STATUS_SUCCESS, false},
           Case{kPairs, Plant::kHardLink, SM_STATUS_SUCCESS, false},
           Case{kPairsCopy, Plant::kFifo, SM_STATUS_SUCCESS, false},
           Case{kPairsCopy, Plant::kDirectory, SM_STATUS_FILE_OPEN_ERROR, true},
           Case{kPairsCopy, Plant::kLink, SM_STATUS_SUCCESS, false},
           Case{kPairsCopy, Plant::kHardLink, SM_STATUS_SUCCESS, false},
       }) {
    Expect(given, GivePairs, ReplacePair, kPairs, "key=2\n");
  }
}

u32 Append(u32 id, u32 maximum) {
  return PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, id, "u", "s", "<D/>", nullptr, 0, maximum);
}

void GiveLog() { ASSERT_EQ(Append(6, QVX_CMDLOG_MAX_SIZE), SM_STATUS_SUCCESS); }

// The log that is there moves to its backup first.
u32 AppendToAFullLog() { return Append(7, 1); }

QVX_ALONE(WrittenNames, ALogAndItsBackup) {
  ASSERT_EQ(qvx::ModuleInit(), 1);
  for (const Case& given : {
           Case{kLog, Plant::kFifo, 0xFFFFFFFF, true},
           Case{kLog, Plant::kDirectory, 0xFFFFFFFF, true},
           Case{kBackup, Plant::kFifo, SM_STATUS_SUCCESS, false},
           Case{kBackup, Plant::kDirectory, SM_STATUS_SUCCESS, true},
           Case{kBackup, Plant::kLink, SM_STATUS_SUCCESS, false},
           Case{kBackup, Plant::kHardLink, SM_STATUS_SUCCESS, false},
       }) {
    Expect(given, GiveLog, AppendToAFullLog, kLog, "<ID>7</ID>");
  }
}

// An entry goes to the log that is full when its backup's name cannot be taken.
QVX_ALONE(WrittenNames, ADirectoryInABackupsNameKeepsEveryEntry) {
  ASSERT_EQ(qvx::ModuleInit(), 1);
  ASSERT_EQ(mkdir("/run/names", 0755), 0);
  GiveLog();
  Put({kBackup, Plant::kDirectory, 0, true});
  const std::string before = ReadFile(kLog);
  EXPECT_EQ(AppendToAFullLog(), SM_STATUS_SUCCESS);
  const std::string kept = before.substr(0, before.size() - std::string("</EventLog>").size());
  EXPECT_EQ(ReadFile(kLog).substr(0, kept.size()), kept);
}

}  // namespace
