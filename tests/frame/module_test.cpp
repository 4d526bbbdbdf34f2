// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "frame/module.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/command_log.h"
#include "qvxcs/file_util.h"
#include "qvxcs/ini_file.h"
#include "qvxcs/ip_address.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "base/export_context.h"
#include "base/layout.h"
#include "os/file_lock.h"
#include "os/ipc_file.h"
#include "support/alarms.h"
#include "support/alloc_fault.h"
#include "support/alone.h"
#include "support/files.h"
#include "support/kill_at_stop.h"
#include "support/processes.h"

namespace {

using qvx::test::AlarmsEndTheHold;
using qvx::test::LockHolder;
using qvx::test::WriteFile;

int OpenDescriptors() {
  int count = 0;
  for (int file = 0; file < 256; ++file) {
    count += fcntl(file, F_GETFD) != -1 ? 1 : 0;
  }
  return count;
}

QVX_ALONE(Module, OnlyTheFirstAttachOpensAndOnlyTheLastDetachCloses) {
  EXPECT_EQ(qvx::IPCFileDescriptor(), -1);
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  const int opened = qvx::IPCFileDescriptor();
  EXPECT_NE(opened, -1);
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  EXPECT_EQ(qvx::IPCFileDescriptor(), opened);
  EXPECT_EQ(qvx::modAttachCount, 2);
  EXPECT_EQ(qvx::ModuleDetach(), 1);
  EXPECT_EQ(qvx::IPCFileDescriptor(), opened);
  EXPECT_EQ(qvx::ModuleDetach(), 1);
  EXPECT_EQ(qvx::IPCFileDescriptor(), -1);
  EXPECT_EQ(qvx::hGFileLock, 0U);
  EXPECT_EQ(qvx::ModuleDetach(), 0);
  EXPECT_EQ(qvx::modAttachCount, 0);
}

QVX_ALONE(Module, OnlyTheFirstAttachCapturesTheExportContext) {
  qvx::origECI = 7;
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  EXPECT_EQ(qvx::origECI, 0U);
  qvx::origECI = 7;
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  EXPECT_EQ(qvx::origECI, 7U);
}

QVX_ALONE(Module, FirstAttachAndLastDetachWaitForTheLockAndTheOthersDoNot) {
  qvx::test::RequireSandbox();
  {
    // Without a poll: the command log's size, which is read next, is polled for.
    LockHolder other(qvx::kIPCFilePath);
    const AlarmsEndTheHold alarms(&other);
    const qvx::test::CountSleeps sleeps;
    EXPECT_EQ(qvx::ModuleAttach(), 1);
    EXPECT_GE(AlarmsEndTheHold::Count(), 3);
    EXPECT_EQ(qvx::test::CountSleeps::Count(), 0U);
  }
  LockHolder other(qvx::kIPCFilePath);
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  EXPECT_EQ(qvx::ModuleDetach(), 1);
  const AlarmsEndTheHold alarms(&other);
  EXPECT_EQ(qvx::ModuleDetach(), 1);
  EXPECT_GE(AlarmsEndTheHold::Count(), 3);
}

QVX_ALONE(Module, ARefusedAttachWaitsForTheLockToo) {
  qvx::test::RequireSandbox();
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  EXPECT_EQ(qvx::ModuleDetach(), 1);
  LockHolder other(qvx::kIPCFilePath);
  const AlarmsEndTheHold alarms(&other);
  EXPECT_EQ(qvx::ModuleAttach(), 0);
  EXPECT_GE(AlarmsEndTheHold::Count(), 3);
}

QVX_ALONE(Module, AttachAfterTheLastDetachIsRefused) {
  const int before = OpenDescriptors();
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  EXPECT_EQ(qvx::ModuleDetach(), 1);
  EXPECT_EQ(qvx::ModuleAttach(), 0);
  EXPECT_EQ(qvx::modAttachCount, 0);
  EXPECT_EQ(qvx::hGFileLock, 0U);
  EXPECT_EQ(qvx::IPCFileDescriptor(), -1);
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(qvx::ModuleDetach(), 0);
}

QVX_ALONE(Module, TheLockHandleIsTheIPCName) {
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  EXPECT_EQ(qvx::hGFileLock, 130000U);
}

QVX_ALONE(Module, TheConfiguredBaseMovesTheIPCName) {
  WriteFile("/etc/qvx.conf", "  ipcnamebase=5000\n");
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  EXPECT_EQ(qvx::hGFileLock, 35000U);
}

QVX_ALONE(Module, AnIPCNameOfZeroFailsTheAttachAndOpensNothing) {
  WriteFile("/etc/qvx.conf", "ipcnamebase=-30000\n");
  const int before = OpenDescriptors();
  EXPECT_EQ(qvx::ModuleAttach(), 0);
  EXPECT_EQ(qvx::modAttachCount, 0);
  EXPECT_EQ(OpenDescriptors(), before);
}

QVX_ALONE(Module, TheLockIsFreeAfterAttach) {
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  const LockHolder other(qvx::kIPCFilePath);
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_TRY), 0U);
}

QVX_ALONE(Module, AttachedCallsReadTheConfiguredMaximum) {
  WriteFile(std::string(qvx::kProductIniPath) + qvx::kPropertiesFileName,
            "preferences.system.cmdlogmaxsize=500000\n");
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  u32 size = 0;
  EXPECT_EQ(PXTGetCmdLogMaxSize(&size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 500000U);
}

// How often the lock is taken anew by an attach, as another process sees it.
u32 HoldsOfAnAttach() {
  u32 holds = 0;
  bool held = false;
  EXPECT_EQ(qvx::test::RunStepwise([] { return qvx::ModuleAttach() == 1 ? 0 : 1; },
                                   [&holds, &held] {
                                     const bool now = !qvx::test::LockIsFree();
                                     holds += now && !held ? 1 : 0;
                                     held = now;
                                     return true;
                                   }),
            0);
  return holds;
}

// Within the attach's own hold, the inner holds would end it: there would be one hold less.
QVX_ALONE(Module, TheMaximumIsReadLastInTwoHoldsAfterTheAttachesOwn) {
  qvx::test::RequireSandbox();
  close(open(qvx::kIPCFilePath, O_CREAT | O_RDWR | O_CLOEXEC, 0664));
  EXPECT_EQ(HoldsOfAnAttach(), 3U);
}

// Without the lock file's folder the attach fails, and every call that needs the lock reports it.
void Detach() {
  ASSERT_EQ(rename("/etc/cim/zarn/plinthos/var/lib", "/etc/cim/zarn/plinthos/var/gone"), 0);
  EXPECT_EQ(qvx::ModuleAttach(), 0);
  WriteFile("/tmp/x.ini", "[A]\nb=1\n");
  (void)unlink("/tmp/l.xml");
}

QVX_ALONE(Detached, INICallsCannotLock) {
  Detach();
  char value[8] = "old";
  u32 size = sizeof(value);
  EXPECT_EQ(PXTReadINIPathFileValue("A", "b", QVX_INI_ASTRING, value, &size, nullptr, 0,
                                    "/tmp/x.ini", QVX_LOCK_WAIT),
            SM_STATUS_LOCK_FAILED);
  EXPECT_STREQ(value, "old");
  EXPECT_EQ(size, 8U);
  EXPECT_EQ(
      PXTWriteINIPathFileValue("A", "b", QVX_INI_ASTRING, "2", 2, "/tmp/x.ini", QVX_LOCK_WAIT),
      SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(qvx::test::ReadFile("/tmp/x.ini"), "[A]\nb=1\n");
}

QVX_ALONE(Detached, KeyValueCallsCannotLock) {
  Detach();
  u32 count = 7;
  EXPECT_EQ(PXTCFGGetKeyValueEntries("/tmp/x.ini", &count), nullptr);
  EXPECT_EQ(count, 0U);
  char key[] = "b";
  char text[] = "2";
  const PXTKeyValue pair = {key, text};
  EXPECT_EQ(PXTCFGSetKeyValue("/tmp/x.ini", &pair, 0), SM_STATUS_LOCK_FAILED);
}

QVX_ALONE(Detached, LogCallsSayWhy) {
  Detach();
  EXPECT_EQ(
      PXTAppendToXMLLog("/tmp/l.xml", QVX_LOG_INFORMATION, 0, "u", "s", "d", nullptr, 0, 1000),
      SM_STATUS_NOT_LOADED);
  EXPECT_FALSE(qvx::test::Exists("/tmp/l.xml"));
  WriteFile("/tmp/l.xml", "x");
  EXPECT_EQ(PXTClearXMLLog("/tmp/l.xml", "u", "s"), SM_STATUS_LOCK_FAILED);
  u32 size = 0;
  EXPECT_EQ(PXTGetCmdLogSize(&size), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(PXTGetCmdLogMaxSize(&size), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(PXTSetCmdLogMaxSize(QVX_CMDLOG_MAX_SIZE), SM_STATUS_LOCK_FAILED);
}

QVX_ALONE(Module, AnOperatorWithoutRightsOnTheLockFileStillAttaches) {
  WriteFile(qvx::kIPCFilePath, "");
  ASSERT_EQ(chmod(qvx::kIPCFilePath, 0644), 0);
  EXPECT_EQ(qvx::test::InChild([] {
              if (setgid(1000) != 0 || setuid(1000) != 0) return 1;
              if (qvx::ModuleAttach() != 1 || qvx::hGFileLock != 130000U) return 2;
              // Waiting falls back to the shared lock; a single attempt does not get that far.
              if (qvx::FileLock(QVX_LOCK_TRY) != 0 || qvx::FileLock(QVX_LOCK_WAIT) != 1) return 3;
              return qvx::ModuleDetach() == 1 ? 0 : 4;
            }),
            0);
}

QVX_ALONE(Module, ALockFileThatIsNoRegularFileFailsTheAttach) {
  qvx::test::RequireSandbox();
  (void)unlink(qvx::kIPCFilePath);
  ASSERT_EQ(mkfifo(qvx::kIPCFilePath, 0666), 0);
  const int before = OpenDescriptors();
  EXPECT_EQ(qvx::ModuleAttach(), 0);
  EXPECT_EQ(qvx::IPCFileDescriptor(), -1);
  EXPECT_EQ(OpenDescriptors(), before);
  ASSERT_EQ(unlink(qvx::kIPCFilePath), 0);
  ASSERT_EQ(mkdir(qvx::kIPCFilePath, 0777), 0);
  EXPECT_EQ(qvx::ModuleAttach(), 0);
  EXPECT_EQ(qvx::hGFileLock, 0U);
  EXPECT_EQ(OpenDescriptors(), before);
}

// A failure at the lock file comes before address support is loaded; that support is loaded once.
QVX_ALONE(Module, AnAttachThatFoundNoLockFileMayBeTriedAgain) {
  qvx::test::RequireSandbox();
  const char folder[] = "/etc/cim/zarn/plinthos/var/lib";
  const char gone[] = "/etc/cim/zarn/plinthos/var/gone";
  ASSERT_EQ(rename(folder, gone), 0);
  EXPECT_EQ(qvx::ModuleAttach(), 0);
  ASSERT_EQ(rename(gone, folder), 0);
  EXPECT_EQ(qvx::ModuleAttach(), 1);
  EXPECT_EQ(qvx::modAttachCount, 1);
}

QVX_ALONE(Module, InitAndFiniGiveTheResultsInSixteenBits) {
  EXPECT_EQ(qvx::ModuleInit(), 1);
  EXPECT_EQ(qvx::ModuleFini(), 1);
  EXPECT_EQ(qvx::ModuleFini(), 0);
}

}  // namespace
