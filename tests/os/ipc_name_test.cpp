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

TEST(IPCName, WithoutAMatchingLineTheBaseIsAHundredThousandForGood) {
  WriteFile("/etc/qvx.conf", "IPCNAMEBASE=1\nxipcnamebase=2\nipcnamebase\n=3\n");
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

TEST(IPCName, TheNumberIsDecimalAlsoAfterAZero) {
  WriteFile("/etc/qvx.conf", "ipcnamebase=010\n");
  EXPECT_EQ(CreateIPCName(0), 10);
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
  EXPECT_EQ(CreateIPCName(0xFFFFFFFF), 2147483646);
}

TEST(IPCName, ANumberBeyondThirtyTwoBitsKeepsItsLowOnes) {
  WriteFile("/etc/qvx.conf", "ipcnamebase=4294967303\n");
  EXPECT_EQ(CreateIPCName(0), 7);
}

TEST(IPCName, TheNumberMayHaveASignAndEndWithTheFile) {
  WriteFile("/etc/qvx.conf", "\tipcnamebase=+12x");
  EXPECT_EQ(CreateIPCName(0), 12);
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
