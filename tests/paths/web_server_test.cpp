// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "paths/web_server.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

#include "qvxcs/paths.h"
#include "qvxcs/status.h"

#include "frame/module.h"
#include "os/file_lock.h"
#include "os/ipc_file.h"
#include "support/files.h"
#include "support/processes.h"

namespace qvx {
namespace {

constexpr char kSystemctl[] = "/usr/bin/systemctl";
constexpr char kInitScript[] = "/etc/init.d/hvn_qv_connsvc";
constexpr char kOsRelease[] = "/etc/os-release";
constexpr char kRecord[] = "/run/record";

void MakeProgram(const std::string& path, const std::string& action) {
  test::RequireSandbox();
  (void)unlink(path.c_str());
  test::WriteFile(path, "#!/bin/sh\necho \"$0 $*\" >>" + std::string(kRecord) + "\n" + action);
  ASSERT_EQ(chmod(path.c_str(), 0755), 0);
}

// Recorders in the place of both commands. /etc/os-release is private to the test.
void MakeHost(bool systemd, const std::string& action = "exit 0\n") {
  test::RequireSandbox();
  (void)mkdir("/etc/init.d", 0755);
  MakeProgram(kSystemctl, action);
  MakeProgram(kInitScript, action);
  ASSERT_EQ(setenv("PATH", "/usr/bin:/bin", 1), 0);
  (void)unlink(kOsRelease);
  if (systemd) {
    test::WriteFile(kOsRelease, "ID=test\n");
  }
}

std::string Recorded() { return test::Exists(kRecord) ? test::ReadFile(kRecord) : ""; }

struct ActionCommand {
  u32 action;
  const char* command;
};

void ExpectCommands(const std::vector<ActionCommand>& cases) {
  for (const ActionCommand& each : cases) {
    (void)unlink(kRecord);
    s32 code = 77;
    EXPECT_EQ(PXTWebServer(each.action, 0, &code), SM_STATUS_SUCCESS) << each.action;
    EXPECT_EQ(code, 0);
    EXPECT_EQ(Recorded(), each.command);
  }
}

TEST(WebServer, EachActionRunsItsSystemctlCommand) {
  MakeHost(true);
  ExpectCommands({
      {QVX_WEBSERVER_STOP, "/usr/bin/systemctl stop hvn_qv_connsvc.service\n"},
      {QVX_WEBSERVER_START, "/usr/bin/systemctl start hvn_qv_connsvc.service\n"},
      {QVX_WEBSERVER_RESTART, "/usr/bin/systemctl restart hvn_qv_connsvc.service\n"},
      {QVX_WEBSERVER_RESTART_TOO, "/usr/bin/systemctl restart hvn_qv_connsvc.service\n"},
  });
}

TEST(WebServer, EachActionRunsTheInitScriptWithoutOsRelease) {
  MakeHost(false);
  ExpectCommands({
      {QVX_WEBSERVER_STOP, "/etc/init.d/hvn_qv_connsvc stop\n"},
      {QVX_WEBSERVER_START, "/etc/init.d/hvn_qv_connsvc start\n"},
      {QVX_WEBSERVER_RESTART, "/etc/init.d/hvn_qv_connsvc restart\n"},
      {QVX_WEBSERVER_RESTART_TOO, "/etc/init.d/hvn_qv_connsvc restart\n"},
  });
}

TEST(WebServer, ADanglingOsReleaseLinkIsNoOsRelease) {
  MakeHost(false);
  ASSERT_EQ(symlink("/run/missing", kOsRelease), 0);
  EXPECT_EQ(PXTWebServer(QVX_WEBSERVER_START, 0, nullptr), SM_STATUS_SUCCESS);
  EXPECT_EQ(Recorded(), "/etc/init.d/hvn_qv_connsvc start\n");
}

TEST(WebServer, UnknownActionRunsNoServiceCommand) {
  for (const bool systemd : {true, false}) {
    MakeHost(systemd);
    for (const u32 action : {2u, 5u, 0x100u, 0xFFFFFFFFu}) {
      s32 code = 77;
      EXPECT_EQ(PXTWebServer(action, 0, &code), QVX_FAILED) << action;
      EXPECT_EQ(code, 127);
    }
    EXPECT_EQ(Recorded(), "");
  }
}

TEST(WebServer, UnknownActionRunsTheServiceNameAsItsWord) {
  MakeHost(true);
  MakeProgram("/usr/bin/systemctlhvn_qv_connsvc", "exit 0\n");
  EXPECT_EQ(CfgWebServer(2, 0, nullptr), SM_STATUS_SUCCESS);
  EXPECT_EQ(Recorded(), "/usr/bin/systemctlhvn_qv_connsvc hvn_qv_connsvc.service\n");
}

TEST(WebServer, ExitStatusTwoHasAStatusOfItsOwn) {
  MakeHost(true, "exit 2\n");
  s32 code = 77;
  EXPECT_EQ(PXTWebServer(QVX_WEBSERVER_START, 0, &code), SM_STATUS_FILE_CREATE_FAILED);
  EXPECT_EQ(code, 2);
}

TEST(WebServer, AnyOtherExitStatusIsAFailure) {
  for (const s32 status : {1, 3, 255}) {
    MakeHost(true, "exit " + std::to_string(status) + "\n");
    s32 code = 77;
    EXPECT_EQ(PXTWebServer(QVX_WEBSERVER_START, 0, &code), QVX_FAILED);
    EXPECT_EQ(code, status);
  }
}

TEST(WebServer, NullExitCodeIsNotStored) {
  MakeHost(true, "exit 2\n");
  EXPECT_EQ(PXTWebServer(QVX_WEBSERVER_STOP, 0, nullptr), SM_STATUS_FILE_CREATE_FAILED);
}

TEST(WebServer, ReservedArgumentIsNotUsed) {
  MakeHost(true);
  EXPECT_EQ(PXTWebServer(QVX_WEBSERVER_START, 0xFFFFFFFF, nullptr), SM_STATUS_SUCCESS);
  EXPECT_EQ(Recorded(), "/usr/bin/systemctl start hvn_qv_connsvc.service\n");
}

TEST(WebServer, ShellEndedBySignalPassesForSuccess) {
  // The shell is the command's parent, or has become the command.
  MakeHost(true,
           "victim=$$\n"
           "test \"$(cat /proc/$PPID/comm)\" = sh && victim=$PPID\n"
           "kill -KILL $victim\n");
  s32 code = 77;
  EXPECT_EQ(PXTWebServer(QVX_WEBSERVER_START, 0, &code), SM_STATUS_SUCCESS);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(Recorded(), "/usr/bin/systemctl start hvn_qv_connsvc.service\n");
}

TEST(WebServer, WithoutAShellTheExitCodeIs127) {
  MakeHost(true);
  ASSERT_EQ(rename("/usr/bin/sh", "/usr/bin/sh.away"), 0);
  s32 code = 77;
  EXPECT_EQ(PXTWebServer(QVX_WEBSERVER_START, 0, &code), QVX_FAILED);
  EXPECT_EQ(code, 127);
  ASSERT_EQ(rename("/usr/bin/sh.away", "/usr/bin/sh"), 0);
  EXPECT_EQ(Recorded(), "");
}

TEST(WebServer, ShellThatCannotBeWaitedForIsExitCodeMinusOne) {
  MakeHost(true);
  ASSERT_NE(signal(SIGCHLD, SIG_IGN), SIG_ERR);
  s32 code = 77;
  EXPECT_EQ(PXTWebServer(QVX_WEBSERVER_START, 0, &code), QVX_FAILED);
  EXPECT_EQ(code, -1);
}

TEST(WebServer, CommandIsSilentOnItsStandardOutput) {
  MakeHost(true, "echo heard\nexit 0\n");
  const int kept = dup(STDOUT_FILENO);
  const int heard = open("/run/heard", O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  ASSERT_GE(heard, 0);
  ASSERT_EQ(dup2(heard, STDOUT_FILENO), STDOUT_FILENO);
  const u32 status = CfgWebServer(QVX_WEBSERVER_START, 0, nullptr);
  ASSERT_EQ(dup2(kept, STDOUT_FILENO), STDOUT_FILENO);
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(test::ReadFile("/run/heard"), "");
}

bool IsOpen(int file) { return fcntl(file, F_GETFD) != -1; }

constexpr char kListDescriptors[] = "ls -l /proc/$$/fd >/run/descriptors\nexit 0\n";

TEST(WebServer, RestartClosesDescriptors3To255) {
  for (const u32 action : {3u, 4u}) {
    MakeHost(true, kListDescriptors);
    const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    for (const int file : {3, 100, 255, 256}) {
      ASSERT_EQ(dup2(null, file), file);
    }
    EXPECT_EQ(PXTWebServer(action, 0, nullptr), SM_STATUS_SUCCESS);
    EXPECT_FALSE(IsOpen(3));
    EXPECT_FALSE(IsOpen(100));
    EXPECT_FALSE(IsOpen(255));
    EXPECT_TRUE(IsOpen(256));
    const std::string inherited = test::ReadFile("/run/descriptors");
    EXPECT_EQ(inherited.find(" 100 ->"), std::string::npos) << inherited;
    EXPECT_NE(inherited.find(" 256 ->"), std::string::npos) << inherited;
  }
}

TEST(WebServer, StartAndStopCloseNothing) {
  MakeHost(true, kListDescriptors);
  for (const u32 action : {0u, 1u, 2u}) {
    ASSERT_EQ(dup2(STDIN_FILENO, 100), 100);
    (void)PXTWebServer(action, 0, nullptr);
    EXPECT_TRUE(IsOpen(100)) << action;
  }
}

TEST(WebServer, RestartKeepsTheLockAndTheServiceDoesNotInheritItsFile) {
  ASSERT_EQ(ModuleAttach(), 1);
  MakeHost(true, kListDescriptors);
  const int lockFile = IPCFileDescriptor();
  ASSERT_GE(lockFile, 3);
  ASSERT_LE(lockFile, 255);
  ASSERT_EQ(FileLock(QVX_LOCK_WAIT), 1u);
  ASSERT_FALSE(test::LockIsFree());
  EXPECT_EQ(PXTWebServer(QVX_WEBSERVER_RESTART, 0, nullptr), SM_STATUS_SUCCESS);
  EXPECT_TRUE(IsOpen(lockFile));
  EXPECT_FALSE(test::LockIsFree());
  EXPECT_EQ(test::ReadFile("/run/descriptors").find(".qvxipc"), std::string::npos);
  (void)FileUnlock();
  EXPECT_TRUE(test::LockIsFree());
  EXPECT_EQ(FileLock(QVX_LOCK_TRY), 1u);
}

// The host has put its own file there; the next call opens the lock file anew.
TEST(WebServer, RestartClosesAHostsFileUnderTheLockFilesNumber) {
  ASSERT_EQ(ModuleAttach(), 1);
  MakeHost(true, kListDescriptors);
  const int lockFile = IPCFileDescriptor();
  test::WriteFile("/run/of_the_host", "");
  const int hosts = open("/run/of_the_host", O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(dup2(hosts, lockFile), lockFile);
  EXPECT_EQ(PXTWebServer(QVX_WEBSERVER_RESTART, 0, nullptr), SM_STATUS_SUCCESS);
  EXPECT_EQ(test::ReadFile("/run/descriptors").find("of_the_host"), std::string::npos);
  EXPECT_FALSE(IsOpen(lockFile));
  EXPECT_EQ(FileLock(QVX_LOCK_TRY), 1u);
  EXPECT_FALSE(test::LockIsFree());
}

}  // namespace
}  // namespace qvx
