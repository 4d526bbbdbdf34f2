// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ipc_name.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "support/files.h"

namespace {

using qvx::CreateIPCName;
using qvx::test::WriteFile;

TEST(IPCName, WithoutAFileTheBaseIsAHundredThousandForGood) {
  EXPECT_EQ(CreateIPCName(30000), 130000);
  WriteFile("/etc/qvx.conf", "ipcnamebase=5000\n");
  EXPECT_EQ(CreateIPCName(30000), 130000);
}

TEST(IPCName, LeadingBlanksAreSkipped) {
  WriteFile("/etc/qvx.conf", "  ipcnamebase=5000\n");
  EXPECT_EQ(CreateIPCName(30000), 35000);
}

TEST(IPCName, BlanksBeforeTheEqualsSignDoNotMatch) {
  WriteFile("/etc/qvx.conf", "ipcnamebase = 5000\n");
  EXPECT_EQ(CreateIPCName(30000), 130000);
}

TEST(IPCName, BlanksBeforeTheNumberAreSkippedLikeThoseBeforeTheWord) {
  WriteFile("/etc/qvx.conf", "ipcnamebase= 5000\n");
  EXPECT_EQ(CreateIPCName(30000), 35000);
}

TEST(IPCName, TheFirstMatchingLineWinsAndWhatFollowsTheNumberIsIgnored) {
  WriteFile("/etc/qvx.conf",
            "# ipcnamebase=1\nipcnamebase=x\nipcnamebase=7 eight\nipcnamebase=9\n");
  EXPECT_EQ(CreateIPCName(1), 8);
}

TEST(IPCName, ABaseOfMinusOneIsReadAgain) {
  WriteFile("/etc/qvx.conf", "ipcnamebase=-1\n");
  EXPECT_EQ(CreateIPCName(30000), 29999);
  WriteFile("/etc/qvx.conf", "ipcnamebase=10\n");
  EXPECT_EQ(CreateIPCName(30000), 30010);
  WriteFile("/etc/qvx.conf", "ipcnamebase=20\n");
  EXPECT_EQ(CreateIPCName(30000), 30010);
}

TEST(IPCName, TheSumWrapsAtThirtyTwoBits) {
  WriteFile("/etc/qvx.conf", "ipcnamebase=2147483647\n");
  EXPECT_EQ(CreateIPCName(1), INT32_MIN);
}

TEST(IPCName, LongLinesAreReadInPieces) {
  WriteFile("/etc/qvx.conf", std::string(255, '#') + "ipcnamebase=42\n");
  EXPECT_EQ(CreateIPCName(0), 42);
}

TEST(IPCName, AFolderInTheFilesPlaceCountsAsMissing) {
  qvx::test::RequireSandbox();
  ASSERT_EQ(mkdir("/etc/qvx.conf", 0755), 0);
  EXPECT_EQ(CreateIPCName(0), 100000);
}

}  // namespace
