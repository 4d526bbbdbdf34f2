// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/shutdown.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <string>

#include "qvxcs/shutdown.h"

#include "base/layout.h"
#include "support/files.h"
#include "support/processes.h"

namespace {

constexpr char kRecord[] = "/run/shutdown.record";

// This program replaces the system's and, run by its name, writes down its arguments.
__attribute__((constructor)) void RecordShutdown(int count, char** arguments) {
  if (strcmp(arguments[0], "shutdown") != 0) return;
  qvx::test::RequireSandbox();
  FILE* const record = fopen(kRecord, "we");
  for (int at = 0; at < count; ++at) {
    fprintf(record, "[%s]", arguments[at]);
  }
  (void)fclose(record);
  _exit(0);
}

class Shutdown : public testing::Test {
 protected:
  void SetUp() override {
    qvx::test::RequireSandbox();
    char self[PATH_MAX] = {};
    ASSERT_GT(readlink("/proc/self/exe", self, sizeof(self) - 1), 0);
    (void)unlink(qvx::kShutdownProgram);
    ASSERT_EQ(symlink(self, qvx::kShutdownProgram), 0);
  }

  // What was run, once the child has ended; the child is there to be waited for.
  static std::string Recorded() {
    int status = -1;
    EXPECT_GT(wait(&status), 0);
    EXPECT_EQ(status, 0);
    return qvx::test::ReadFile(kRecord);
  }
};

TEST_F(Shutdown, Mode1RunsTheProgramToReboot) {
  EXPECT_EQ(PXTOSShutdown(0, 1), 1U);
  EXPECT_EQ(Recorded(), "[shutdown][-r][now][&]");
}

TEST_F(Shutdown, AnyOtherModeHalts) {
  for (const u16 mode : {u16{0}, u16{2}, u16{0x101}, u16{0xFFFF}}) {
    EXPECT_EQ(qvx::OSShutdown(1, mode), 1U);
    EXPECT_EQ(Recorded(), "[shutdown][-h][now][&]") << mode;
  }
}

TEST_F(Shutdown, TheAmpersandIsALiteralArgument) {
  EXPECT_EQ(qvx::OSShutdown(0xFFFF, 0), 1U);
  const std::string recorded = Recorded();
  ASSERT_GE(recorded.size(), 3U);
  EXPECT_EQ(recorded.substr(recorded.size() - 3), "[&]");
}

TEST_F(Shutdown, AMissingProgramEndsTheChildWithTheErrorNumber) {
  ASSERT_EQ(unlink(qvx::kShutdownProgram), 0);
  EXPECT_EQ(qvx::OSShutdown(0, 0), 1U);
  int status = -1;
  ASSERT_GT(wait(&status), 0);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), ENOENT);
}

TEST_F(Shutdown, AnswersOneWhenNoChildCanBeMade) {
  EXPECT_EQ(qvx::test::InChild([] {
              const rlimit none = {0, 0};
              if (setrlimit(RLIMIT_NPROC, &none) != 0 || setuid(65534) != 0) return 100;
              if (fork() != -1) return 101;
              return static_cast<int>(qvx::OSShutdown(0, 0));
            }),
            1);
  EXPECT_FALSE(qvx::test::Exists(kRecord));
}

TEST_F(Shutdown, TheOperatingSystemsFamilyIs2) {
  EXPECT_EQ(qvx::OSGetType(), 2U);
  EXPECT_EQ(PXTOSGetType(), 2U);
}

}  // namespace
