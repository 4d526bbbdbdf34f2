/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* thread, library, shutdown */
#include <stdatomic.h>
#include <sys/wait.h>
#include <unistd.h>

#include "calls.h"

static atomic_uint argumentSeen;
static atomic_uint lockTaken;
static void (*lockContext)(u32);
static void (*unlockContext)(u32);

static u32 SeeArgument(u32 argument) {
  argumentSeen = argument;
  return 1;
}

static u32 TakeLock(u32 lock) {
  argumentSeen = lock;
  lockContext(lock);
  lockTaken = 1;
  unlockContext(lock);
  return 0;
}

static void CallThreads(void) {
  PXTThread thread;
  AskForThreads(1);
  EXPECT_EQ(CALL(PXTThreadStart)(&thread, SeeArgument, 0xFEDCBA98), 0);
  EXPECT(thread.entry == SeeArgument && thread.argument == 0xFEDCBA98);
  EXPECT_EQ(CALL(PXTThreadStop)(&thread), 0);
  EXPECT_EQ(argumentSeen, 0xFEDCBA98);
  EXPECT_EQ(CALL(PXTThreadStart)(NULL, SeeArgument, 1), -1);

  lockContext = CALL(PXTLockContext);
  unlockContext = CALL(PXTUnLockContext);
  const u32 lock = CALL(PXTAllocContextLock)();
  lockContext(lock);
  EXPECT_EQ(CALL(PXTThreadStart)(&thread, TakeLock, lock), 0);
  while (argumentSeen != lock) {
    usleep(1000);
  }
  usleep(50000);
  EXPECT_EQ(lockTaken, 0);
  unlockContext(lock);
  EXPECT_EQ(CALL(PXTThreadStop)(&thread), 0);
  EXPECT_EQ(lockTaken, 1);
  AskForThreads(0);
  CALL(PXTFreeContextLock)(lock);
}

static void CallLibraries(void) {
  PXTLibrary other = {NULL, NULL};
  EXPECT_EQ(CALL(PXTLibLoad)(&other, "/run/no-such-library.so"), SM_STATUS_FAILURE);
  EXPECT(other.path == NULL);
  EXPECT_EQ(CALL(PXTLibLoad)(&other, "libm.so.6"), SM_STATUS_SUCCESS);
  EXPECT_TEXT(other.path, "libm.so.6");
  double (*squareRoot)(double) = NULL;
  *(void**)&squareRoot = CALL(PXTLibLinkToExportFN)(&other, "sqrt");
  EXPECT(squareRoot != NULL && squareRoot(6.25) == 2.5);
  EXPECT(CALL(PXTLibLinkToExportFN)(&other, "no_such_symbol") == NULL);
  EXPECT_EQ(CALL(PXTLibUnLinkFromExportFN)(&other, *(void**)&squareRoot), 0);
  EXPECT_EQ(CALL(PXTLibUnLoad)(&other), 0);
  EXPECT(other.path == NULL);
}

/* A recorder replaces the system's program. */
static void CallShutdown(void) {
  static const char kRecord[] = "/run/shutdown.record";
  static const struct {
    u16 mode;
    const char* arguments;
  } kCases[] = {{1, "-r now &\n"}, {0, "-h now &\n"}};
  MakeProgram("/sbin/shutdown", "#!/bin/sh\necho \"$*\" >/run/shutdown.record\n");
  for (int at = 0; at < 2; ++at) {
    int status = -1;
    EXPECT_EQ(CALL(PXTOSShutdown)(0, kCases[at].mode), 1);
    EXPECT(wait(&status) > 0);
    EXPECT_EQ(status, 0);
    EXPECT_TEXT(ReadText(kRecord), kCases[at].arguments);
  }
  EXPECT_EQ(CALL(PXTOSGetType)(), 2);
}

void CallOs(void) {
  CallThreads();
  CallLibraries();
  CallShutdown();
}
