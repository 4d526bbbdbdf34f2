// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ipc_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/status.h"

#include "base/layout.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/processes.h"

namespace {

using qvx::test::InChild;
using qvx::test::LockIsFree;

class IPCFile : public testing::Test {
 protected:
  void SetUp() override {
    qvx::test::RequireSandbox();
    ASSERT_EQ(qvx::OpenIPCFile(), 0);
    number_ = qvx::IPCFileDescriptor();
  }
  void TearDown() override { EXPECT_EQ(qvx::CloseIPCFile(), 0); }

  // What a host does that takes the number for its own file; the file is "/tmp/host".
  void ReuseNumber() const {
    const int host = open("/tmp/host", O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(host, 0);
    ASSERT_EQ(dup3(host, number_, O_CLOEXEC), number_);
    ASSERT_EQ(close(host), 0);
  }

  int number_ = -1;
};

bool IsLockFile(int file) {
  struct stat opened = {};
  struct stat named = {};
  return fstat(file, &opened) == 0 && stat(qvx::kIPCFilePath, &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

bool IsHostsFile(int file) {
  struct stat opened = {};
  struct stat named = {};
  return fstat(file, &opened) == 0 && stat("/tmp/host", &named) == 0 &&
         opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

int LockFileDescriptors() {
  int count = 0;
  for (int file = 0; file < 256; ++file) {
    count += IsLockFile(file) ? 1 : 0;
  }
  return count;
}

TEST_F(IPCFile, IsOpenedOnceHoweverOftenItIsAsked) {
  EXPECT_EQ(LockFileDescriptors(), 1);
  EXPECT_EQ(qvx::OpenIPCFile(), 0);
  EXPECT_EQ(qvx::LockIPCFileRecord(0, 0), 0);
  EXPECT_EQ(qvx::OpenIPCFile(), 0);
  EXPECT_EQ(qvx::UnlockIPCFileRecord(), 0);
  EXPECT_EQ(qvx::IPCFileDescriptor(), number_);
  EXPECT_EQ(LockFileDescriptors(), 1);
}

TEST_F(IPCFile, StaysClearOfTheStandardStreamsOfAHostThatClosedThem) {
  EXPECT_EQ(InChild([] {
              (void)qvx::CloseIPCFile();
              for (const int standard : {0, 1, 2}) {
                (void)close(standard);
              }
              if (qvx::OpenIPCFile() != 0 || qvx::IPCFileDescriptor() < 3) return 1;
              if (qvx::LockIPCFileRecord(0, 0) != 0) return 2;
              // What a daemon does next must not end the hold.
              const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
              for (const int standard : {0, 1, 2}) {
                if (null != standard && dup2(null, standard) != standard) return 3;
              }
              return LockIsFree() ? 4 : 0;
            }),
            0);
}

TEST_F(IPCFile, IsOpenedAnewWhereTheHostClosedIt) {
  ASSERT_EQ(close(number_), 0);
  EXPECT_EQ(qvx::LockIPCFileRecord(0, 0), 0);
  EXPECT_TRUE(IsLockFile(qvx::IPCFileDescriptor()));
  EXPECT_EQ(fcntl(qvx::IPCFileDescriptor(), F_GETFD), FD_CLOEXEC);
  EXPECT_FALSE(LockIsFree());
  EXPECT_EQ(qvx::UnlockIPCFileRecord(), 0);
  EXPECT_TRUE(LockIsFree());
}

TEST_F(IPCFile, AWaitWithoutLimitOpensItAnewToo) {
  ASSERT_EQ(close(number_), 0);
  EXPECT_EQ(qvx::LockIPCFileRecord(0, -1), 0);
  EXPECT_FALSE(LockIsFree());
}

TEST_F(IPCFile, ADaemonsChildThatClosedAllDescriptorsLocksSoundly) {
  EXPECT_EQ(InChild([] {
              for (int file = 0; file < 256; ++file) {
                (void)close(file);
              }
              if (qvx::LockIPCFileRecord(0, 1) != 0) return 1;
              if (LockIsFree()) return 2;
              if (qvx::UnlockIPCFileRecord() != 0) return 3;
              return LockIsFree() && LockFileDescriptors() == 1 ? 0 : 4;
            }),
            0);
}

TEST_F(IPCFile, AReusedNumberIsTheHostsAndIsLeftAlone) {
  ReuseNumber();
  EXPECT_EQ(qvx::LockIPCFileRecord(0, 0), 0);
  EXPECT_NE(qvx::IPCFileDescriptor(), number_);
  EXPECT_FALSE(LockIsFree());
  EXPECT_TRUE(IsHostsFile(number_));
  EXPECT_EQ(qvx::UnlockIPCFileRecord(), 0);
}

// A record lock that the host holds on its own file would go with an unlock or a close of ours.
TEST_F(IPCFile, AnUnlockOrACloseNeverTouchesTheHostsFile) {
  EXPECT_EQ(qvx::LockIPCFileRecord(0, 0), 0);
  ReuseNumber();
  struct flock whole = {};
  whole.l_type = F_WRLCK;
  ASSERT_EQ(fcntl(number_, F_SETLK, &whole), 0);
  const auto hostsLockIsFree = [] {
    return InChild([] {
             struct flock asked = {};
             asked.l_type = F_WRLCK;
             const int file = open("/tmp/host", O_RDWR | O_CLOEXEC);
             return fcntl(file, F_SETLK, &asked) == 0 ? 1 : 0;
           }) == 1;
  };
  ASSERT_FALSE(hostsLockIsFree());
  EXPECT_EQ(qvx::UnlockIPCFileRecord(), 0);
  EXPECT_FALSE(hostsLockIsFree());
  EXPECT_EQ(qvx::CloseIPCFile(), 0);
  EXPECT_TRUE(IsHostsFile(number_));
  EXPECT_FALSE(hostsLockIsFree());
  EXPECT_EQ(close(number_), 0);
}

TEST_F(IPCFile, AfterTheCloseNothingIsOpenedAnew) {
  EXPECT_EQ(qvx::CloseIPCFile(), 0);
  EXPECT_EQ(qvx::LockIPCFileRecord(0, -1), -1);
  EXPECT_EQ(LockFileDescriptors(), 0);
}

TEST_F(IPCFile, AFileThatCannotBeOpenedAnewIsAnErrorAtTheSecondAttempt) {
  ASSERT_EQ(close(number_), 0);
  ASSERT_EQ(rename("/etc/cim/zarn", "/etc/cim/gone"), 0);
  const qvx::test::CountSleeps sleeps;
  EXPECT_EQ(qvx::LockIPCFileRecord(0, 60000), -1);
  EXPECT_EQ(qvx::test::CountSleeps::Count(), 1U);
  ASSERT_EQ(rename("/etc/cim/gone", "/etc/cim/zarn"), 0);
  EXPECT_EQ(qvx::LockIPCFileRecord(0, 60000), 0);
}

}  // namespace
