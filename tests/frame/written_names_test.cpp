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
constexpr char kCommandLog[] = "/etc/cim/zarn/plinthos/var/log/vexilon//qvcmdlog.xml";
// Belongs to somebody else; it could be read as an INI and a key=value file, and is as long as a
// log that is not written anew.
constexpr char kVictim[] = "/run/victim";
#define VICTIM_TEXT "[A]\nkey=1\nlong=to be kept as it is, and longer than the head of a log\n"
constexpr char kVictimText[] = VICTIM_TEXT;
static_assert(sizeof(kVictimText) > 65);

enum class Plant { kFifo, kDirectory, kLink, kHardLink };

struct Case {
  const char* name;
  Plant plant;
  u32 status;
  bool stays;  // whether what was planted is still there afterwards
  const char* victimAfter = kVictimText;
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
  EXPECT_EQ(ReadFile(kVictim), given.victimAfter);
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

u32 AddIniSection() {
  return PXTWriteINIPathFileValue("B", "new", QVX_INI_ASTRING, "2", 2, kIni, QVX_LOCK_WAIT);
}

// In a file of several names the section is added in place, so that they stay one file.
QVX_ALONE(WrittenNames, AnIniFileThatGetsANewSectionAndItsCopy) {
  ASSERT_EQ(qvx::ModuleInit(), 1);
  constexpr char kAdded[] = VICTIM_TEXT "[B]\nnew=2\n";
  for (const Case& given : {
           Case{kIni, Plant::kFifo, SM_STATUS_FILE_OPEN_FAILED, true},
           Case{kIni, Plant::kDirectory, SM_STATUS_FILE_OPEN_FAILED, true},
           Case{kIni, Plant::kLink, SM_STATUS_SUCCESS, true, kAdded},
           Case{kIni, Plant::kHardLink, SM_STATUS_SUCCESS, true, kAdded},
           Case{kIniCopy, Plant::kFifo, SM_STATUS_SUCCESS, false},
           Case{kIniCopy, Plant::kDirectory, SM_STATUS_FILE_OPEN_FAILED, true},
           Case{kIniCopy, Plant::kLink, SM_STATUS_SUCCESS, false},
           Case{kIniCopy, Plant::kHardLink, SM_STATUS_SUCCESS, false},
       }) {
    Expect(given, GiveIni, AddIniSection, kIni, "[B]\nnew=2\n");
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
           Case{kLog, Plant::kLink, SM_STATUS_SUCCESS, false},
           Case{kLog, Plant::kHardLink, SM_STATUS_SUCCESS, false},
           Case{kBackup, Plant::kFifo, SM_STATUS_SUCCESS, false},
           Case{kBackup, Plant::kDirectory, SM_STATUS_SUCCESS, true},
           Case{kBackup, Plant::kLink, SM_STATUS_SUCCESS, false},
           Case{kBackup, Plant::kHardLink, SM_STATUS_SUCCESS, false},
       }) {
    Expect(given, GiveLog, AppendToAFullLog, kLog, "<ID>7</ID>");
  }
}

u32 AppendToALog() { return Append(7, QVX_CMDLOG_MAX_SIZE); }
u32 ClearLog() { return PXTClearXMLLog(kLog, "u", "s"); }

QVX_ALONE(WrittenNames, ALogThatIsNotFull) {
  ASSERT_EQ(qvx::ModuleInit(), 1);
  for (const Case& given : {
           Case{kLog, Plant::kFifo, 0xFFFFFFFF, true},
           Case{kLog, Plant::kDirectory, 0xFFFFFFFF, true},
           Case{kLog, Plant::kLink, SM_STATUS_BAD_DATA, true},
           Case{kLog, Plant::kHardLink, SM_STATUS_BAD_DATA, true},
       }) {
    Expect(given, GiveLog, AppendToALog, kLog, "<ID>7</ID>");
  }
}

QVX_ALONE(WrittenNames, ALogThatIsCleared) {
  ASSERT_EQ(qvx::ModuleInit(), 1);
  for (const Case& given : {
           Case{kLog, Plant::kFifo, SM_STATUS_SUCCESS, false},
           Case{kLog, Plant::kDirectory, 0xFFFFFFFF, true},
           Case{kLog, Plant::kLink, SM_STATUS_SUCCESS, false},
           Case{kLog, Plant::kHardLink, SM_STATUS_SUCCESS, false},
       }) {
    Expect(given, GiveLog, ClearLog, kLog, "Log was cleared");
  }
}

u32 AppendToCommandLog() {
  return PXTAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", "s", "<D/>", QVX_LOG_INFORMATION);
}
void GiveCommandLog() { ASSERT_EQ(AppendToCommandLog(), SM_STATUS_SUCCESS); }

QVX_ALONE(WrittenNames, TheCommandLog) {
  ASSERT_EQ(qvx::ModuleInit(), 1);
  for (const Case& given : {
           Case{kCommandLog, Plant::kFifo, 0xFFFFFFFF, true},
           Case{kCommandLog, Plant::kLink, SM_STATUS_BAD_DATA, true},
           Case{kCommandLog, Plant::kDirectory, 0xFFFFFFFF, true},
       }) {
    Expect(given, GiveCommandLog, AppendToCommandLog, kCommandLog, "<ID>5001</ID>");
    std::filesystem::remove(kCommandLog);
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
