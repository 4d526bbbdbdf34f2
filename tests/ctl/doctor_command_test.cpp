// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "base/layout.h"
#include "ctl/pam_service.h"
#include "support/processes.h"
#include "tests/access/accounts.h"
#include "tests/ctl/log_texts.h"
#include "tests/ctl/run_tool.h"

namespace qvx {
namespace {

using test::Answer;
using test::ReadFile;
using test::RunTool;
using test::WriteFile;

class CtlDoctor : public ::testing::Test {
 protected:
  void SetUp() override {
    test::RequireSandbox();
    WriteFile(kIPCFilePath, "");
    ASSERT_EQ(chmod(kIPCFilePath, 0660), 0);
    test::WriteRoleMap("* * user\n");
    test::UnixPamService("qvauth");
    WriteFile(test::kCommandLog, test::Log(test::Entry(1, "a")));
  }
  static void WritePackagedSample() {
    test::Run("mkdir -p /usr/share/doc/libqvxcs-common/examples");
    WriteFile("/usr/share/doc/libqvxcs-common/examples/qvauth", "");
  }
  // The doctor's line on the PAM service ends in a command that mends it.
  static void ExpectServiceMadeBy(const std::string& command, const std::string& line) {
    ASSERT_TRUE(line.ends_with("; mend: " + command)) << line;
    test::Run(command);
    EXPECT_EQ(LineOf("PAM service"), "good PAM service: /etc/pam.d/qvauth");
  }
  // The doctor's line on one part.
  static std::string LineOf(const std::string& part) {
    return LineOf(part, RunTool({"doctor"}).out);
  }
  static std::string LineOf(const std::string& part, const std::string& answer) {
    const std::string out = "\n" + answer;
    const size_t at = out.find(" " + part + ": ");
    if (at == std::string::npos) return out;
    const size_t begin = out.rfind('\n', at) + 1;
    return out.substr(begin, out.find('\n', at) - begin);
  }
};

TEST_F(CtlDoctor, ASoundInstallationIsGood) {
  const Answer answer = RunTool({"doctor"});
  // A package of the machine that runs the tests may be judged otherwise.
  const bool isGood = answer.out.find("\nfault") == std::string::npos &&
                      answer.out.find("\nwarning") == std::string::npos;
  EXPECT_EQ(answer.code, isGood ? 0 : 1);
  EXPECT_EQ(answer.out.rfind("good folders: all there\n"
                             "good lock file: free, mode 0660\n"
                             "good rights: this process: administrator, superuser (0x40007)\n"
                             "good role map: no fault\n"
                             "good PAM service: /etc/pam.d/qvauth\n"
                             "good logs: the command log is whole\n",
                             0),
            0u)
      << answer.out;
}

TEST_F(CtlDoctor, EachFaultComesWithTheCommandThatMendsIt) {
  ASSERT_EQ(chmod(kIPCFilePath, 0664), 0);
  test::WriteRoleMap("* * boss\n");
  test::WritePamService("qvauth", "auth required pam_unix.so\nauth required pam_echo.so\n");
  WriteFile(test::kCommandLog, test::kLogHead + test::Entry(1, "a"));
  WriteFile(kIPCConfigPath, "ipcnamebase=-30000\n");
  EXPECT_EQ(RunTool({"doctor"}).code, 1);
  EXPECT_EQ(LineOf("lock file"),
            "warning lock file: free, mode 0664: anyone can hold up the suite by a lock; mend: "
            "chown root:qvxcs /etc/cim/zarn/plinthos/var/lib/vexilon/.qvxipc && chmod 0660 "
            "/etc/cim/zarn/plinthos/var/lib/vexilon/.qvxipc");
  EXPECT_EQ(LineOf("role map"),
            "fault role map: refused; the library uses its built-in lines; mend: qvxctl rolemap "
            "check");
  EXPECT_EQ(LineOf("PAM service"),
            "warning PAM service: /etc/pam.d/qvauth:2: pam_echo.so sends messages, and a login may "
            "fail because of them; mend: make it optional in line 2 of /etc/pam.d/qvauth");
  EXPECT_NE(LineOf("logs").find("; mend: qvxctl log repair"), std::string::npos);
  EXPECT_EQ(LineOf("IPC base"),
            "fault IPC base: ipcnamebase=-30000 keeps the library out; mend: sed -i "
            "'/ipcnamebase=/d' /etc/qvx.conf");
}

TEST_F(CtlDoctor, MissingPartsAreTold) {
  WritePackagedSample();
  (void)unlink("/etc/pam.d/other");
  ASSERT_EQ(unlink("/etc/pam.d/qvauth"), 0);
  ASSERT_EQ(unlink(kRoleMapPath), 0);
  ASSERT_EQ(rename("/etc/cim/zarn/plinthos/var/log/vexilon", "/etc/cim/logs"), 0);
  EXPECT_EQ(LineOf("PAM service"),
            "fault PAM service: there is no service qvauth and no `other`; no login succeeds; "
            "mend: install -m 0644 /usr/share/doc/libqvxcs-common/examples/qvauth "
            "/etc/pam.d/qvauth");
  EXPECT_EQ(LineOf("role map").rfind("warning role map: missing", 0), 0u);
  EXPECT_EQ(LineOf("folders"),
            "fault folders: /etc/cim/zarn/plinthos/var/log/vexilon/ is missing; mend: install -d "
            "-m 0755 /etc/cim/zarn/plinthos/var/log/vexilon/");
}

TEST_F(CtlDoctor, WhatIsInThePlaceOfAFileIsMovedAway) {
  const auto expected = [](const std::string& begin, const std::string& path,
                           const std::string& reason) {
    return begin + path + ": " + reason + "; mend: mv " + path + " " + path + ".old";
  };
  const std::string both = std::string(kRoleMapPath) + " " + test::kCommandLog;
  test::Run("rm " + both + " && mkdir " + both);
  EXPECT_EQ(LineOf("logs"), expected("fault logs: ", test::kCommandLog, "Is a directory"));
  EXPECT_EQ(LineOf("role map"), expected("fault role map: ", kRoleMapPath, "Is a directory"));
  test::Run("rmdir " + both + " && mkfifo " + both);
  EXPECT_EQ(LineOf("logs"), expected("fault logs: ", test::kCommandLog, "no regular file"));
  EXPECT_EQ(LineOf("role map"), expected("fault role map: ", kRoleMapPath, "no regular file"));
}

TEST_F(CtlDoctor, WhatIsInThePlaceOfAFolderIsMovedAway) {
  const std::string folder = "/etc/cim/zarn/plinthos/var/log/vexilon";
  const std::string parent = "/etc/cim/zarn/plinthos/var/log";
  const auto expected = [&folder](const std::string& other) {
    return "fault folders: " + other + " is no folder; mend: mv " + other + " " + other +
           ".old && install -d -m 0755 " + folder + "/";
  };
  for (const std::string& make : {"touch " + folder, "ln -s /nowhere " + folder}) {
    test::Run("rm -r " + folder + " && " + make);
    EXPECT_EQ(LineOf("folders"), expected(folder));
  }
  test::Run("rm -r " + parent + " && touch " + parent);
  EXPECT_EQ(LineOf("folders"), expected(parent));
  test::Run("mv " + parent + " " + parent + ".old && install -d -m 0755 " + folder + "/");
  EXPECT_EQ(LineOf("folders"), "good folders: all there");
}

TEST_F(CtlDoctor, FoldersThatOnlyRootMaySeeAreNotCalledMissing) {
  ASSERT_EQ(chmod("/etc/cim/zarn/plinthos/var", 0700), 0);
  EXPECT_EQ(LineOf("folders", test::RunToolAsNobody({"doctor"}).out),
            "warning folders: /etc/cim/zarn/plinthos/var/lib/vexilon/: Permission denied; mend: "
            "sudo qvxctl doctor");
}

TEST_F(CtlDoctor, AMapThatOnlyItsModeKeepsOutGetsItsMode) {
  for (const mode_t mode : {0600U, 0644U, 01600U, 04640U}) {
    test::WriteRoleMap("* * user\n", mode);
    EXPECT_EQ(LineOf("role map"),
              "fault role map: refused; the library uses its built-in lines; mend: chmod 0640 "
              "/etc/cim/zarn/plinthos/qvxrolemap");
    test::Run("chmod 0640 /etc/cim/zarn/plinthos/qvxrolemap");
    EXPECT_EQ(LineOf("role map"), "good role map: no fault");
  }
  test::WriteRoleMap("* * boss\n", 0600);
  EXPECT_EQ(LineOf("role map"),
            "fault role map: refused; the library uses its built-in lines; mend: qvxctl rolemap "
            "check");
}

TEST_F(CtlDoctor, WarningsAreCountedInWords) {
  test::WriteRoleMap("carol * user\n");
  EXPECT_EQ(LineOf("role map"), "warning role map: 1 warning; mend: qvxctl rolemap check");
  test::WriteRoleMap("carol * user\ndave * user\n");
  EXPECT_EQ(LineOf("role map"), "warning role map: 2 warnings; mend: qvxctl rolemap check");
}

TEST_F(CtlDoctor, WithoutASampleTheServiceIsWritten) {
  test::Run("rm -rf /usr/share/doc/libqvxcs-common /etc/pam.d/qvauth");
  ExpectServiceMadeBy(
      "printf 'auth required pam_unix.so\\naccount required pam_unix.so\\n' >/etc/pam.d/qvauth",
      LineOf("PAM service"));
  // The sample's lines that count.
  test::Run("sed '/^#/d; /^$/d' " QVX_CTL_PAM_SAMPLE " | tr -s ' ' | cmp - /etc/pam.d/qvauth");
}

TEST_F(CtlDoctor, TheSampleOfAMovedInstallationIsFound) {
  test::Run("rm -rf /usr/share/doc/libqvxcs-common /etc/pam.d/qvauth");
  test::Run("mkdir -p /opt/moved/bin /opt/moved/share/doc/qvxcs/examples/pam");
  test::Run(std::string("cp ") + QVX_CTL_PROGRAM + " /opt/moved/bin");
  WriteFile("/opt/moved/share/doc/qvxcs/examples/pam/qvauth", "auth required pam_unix.so\n");
  test::Run("/opt/moved/bin/qvxctl doctor >/tmp/answer; test $? -eq 1");
  ExpectServiceMadeBy(
      "install -m 0644 /opt/moved/share/doc/qvxcs/examples/pam/qvauth /etc/pam.d/qvauth",
      LineOf("PAM service", ReadFile("/tmp/answer")));
}

TEST_F(CtlDoctor, PathsHaveSingleSlashes) {
  ASSERT_EQ(rename("/etc/cim/zarn/plinthos/vexilon/qvx", "/etc/cim/zarn/plinthos/vexilon/away"), 0);
  EXPECT_EQ(LineOf("folders"),
            "fault folders: /etc/cim/zarn/plinthos/vexilon/qvx/ini/ is missing; mend: install -d "
            "-m 0755 /etc/cim/zarn/plinthos/vexilon/qvx/ini/");
}

TEST_F(CtlDoctor, AnOrdinaryUserIsToldWhatMayNotBeSeen) {
  const Answer answer = test::RunToolAsNobody({"doctor"});
  EXPECT_EQ(answer.code, 1);
  EXPECT_NE(answer.out.find("warning rights: this process: user (0x1), which may not take the "
                            "suite's lock; mend: adduser $USER qvxcs\n"),
            std::string::npos)
      << answer.out;
  EXPECT_NE(answer.out.find("warning role map: /etc/cim/zarn/plinthos/qvxrolemap: Permission denied"
                            "; mend: sudo qvxctl doctor\n"),
            std::string::npos)
      << answer.out;
}

TEST_F(CtlDoctor, NothingIsOpenedForItThatAHolderWouldFeel) {
  test::LockHolder holder;
  EXPECT_EQ(LineOf("lock file").rfind("good lock file: held by process ", 0), 0u);
  EXPECT_FALSE(test::LockIsFree());
}

TEST_F(CtlDoctor, AHolderIsNamedAlsoWhereAnyoneMayHoldTheLock) {
  ASSERT_EQ(chmod(kIPCFilePath, 0644), 0);
  test::LockHolder holder;
  const std::string line = LineOf("lock file");
  EXPECT_EQ(line.rfind("warning lock file: held by process ", 0), 0u) << line;
  EXPECT_NE(line.find(", mode 0644: anyone can hold up the suite by a lock; mend: chown"),
            std::string::npos)
      << line;
}

TEST_F(CtlDoctor, AReaderOfTheLockIsNamedToo) {
  ASSERT_EQ(chmod(kIPCFilePath, 0644), 0);
  test::LockHolder reader(kIPCFilePath, 0, F_RDLCK);
  const std::string line = LineOf("lock file");
  EXPECT_EQ(line.rfind("warning lock file: held by process ", 0), 0u) << line;
  EXPECT_NE(line.find("), which reads, mode 0644: anyone can hold up the suite by a lock; mend: "),
            std::string::npos)
      << line;
}

TEST_F(CtlDoctor, JsonHasAnObjectForEachPart) {
  const Answer answer = RunTool({"doctor", "--json"});
  EXPECT_EQ(answer.out.rfind("[{\"part\":\"folders\",\"health\":\"good\",\"text\":\"all there\","
                             "\"mend\":\"\"},",
                             0),
            0u)
      << answer.out;
}

TEST_F(CtlDoctor, TalkingModulesAreFoundInIncludedFilesAndOnlyInPhasesOfALogin) {
  test::WritePamService("all",
                        "auth required pam_issue.so\nsession optional pam_motd.so\n"
                        "account optional pam_faillock.so silent\n");
  test::WritePamService("qvauth",
                        "@include all\nsession optional pam_mail.so\n"
                        "auth [success=1 default=ignore] pam_exec.so stdout /bin/true\n"
                        "# auth optional pam_echo.so\nauth include qvauth\n");
  const auto findings = ctl::FindTalkingModules("qvauth");
  ASSERT_GE(findings.size(), 2u);
  EXPECT_EQ(findings[0].file + ":" + std::to_string(findings[0].line), "/etc/pam.d/all:1");
  EXPECT_EQ(findings[1].file + ":" + std::to_string(findings[1].line), "/etc/pam.d/qvauth:3");
}

TEST_F(CtlDoctor, WithoutItsServicePamUsesTheOneForAll) {
  WritePackagedSample();
  ASSERT_EQ(unlink("/etc/pam.d/qvauth"), 0);
  test::UnixPamService("other");
  const std::string begin =
      "warning PAM service: there is no service qvauth: PAM uses `other`, /etc/pam.d/other";
  const std::string mend =
      "; mend: install -m 0644 /usr/share/doc/libqvxcs-common/examples/qvauth /etc/pam.d/qvauth";
  EXPECT_EQ(LineOf("PAM service"), begin + mend);
  test::WritePamService("other", "auth required pam_echo.so\n");
  EXPECT_EQ(LineOf("PAM service"), begin +
                                       "; /etc/pam.d/other:1: pam_echo.so sends messages, and a "
                                       "login may fail because of them" +
                                       mend);
}

TEST_F(CtlDoctor, AModuleThatCanBeSilencedStays) {
  test::WritePamService("qvauth",
                        "auth required \\\n pam_faillock.so preauth # lock\n"
                        "auth [success=1 default=ignore] pam_unix.so\n"
                        "auth requisite pam_deny.so\nauth required pam_permit.so\n");
  const std::string line = LineOf("PAM service");
  EXPECT_EQ(line,
            "warning PAM service: /etc/pam.d/qvauth:2: pam_faillock.so sends messages, and a login "
            "may fail because of them; mend: sed -i '2s/pam_faillock.so/& silent/' "
            "/etc/pam.d/qvauth");
  ASSERT_EQ(system(line.substr(line.find("sed -i")).c_str()), 0);
  EXPECT_EQ(LineOf("PAM service"), "good PAM service: /etc/pam.d/qvauth");
}

TEST_F(CtlDoctor, TalkingModulesAreFoundWhateverTheCaseAndOverContinuedLines) {
  test::WritePamService("all", "ACCOUNT Required pam_echo.so\n");
  test::WritePamService("qvauth",
                        "AUTH required \\\n\\\n  pam_echo.so\n"
                        "Auth REQUIRED pam_exec.so \\\n stdout /bin/true\n"
                        "account Include all\n"
                        "auth required pam_unix.so # no \\\nauth required pam_issue.so");
  const auto findings = ctl::FindTalkingModules("qvauth");
  std::string places;
  for (const ctl::PamFinding& each : findings) {
    places += each.file + ":" + std::to_string(each.line) + " " + each.module + "\n";
  }
  EXPECT_EQ(places,
            "/etc/pam.d/qvauth:3 pam_echo.so\n/etc/pam.d/qvauth:4 pam_exec.so\n"
            "/etc/pam.d/all:1 pam_echo.so\n/etc/pam.d/qvauth:8 pam_issue.so\n");
}

TEST_F(CtlDoctor, AnOptionalModuleDecidesNothingAndMaySpeak) {
  test::WritePamService("qvauth", "auth required pam_unix.so\nauth optional pam_echo.so\n");
  EXPECT_EQ(LineOf("PAM service"), "good PAM service: /etc/pam.d/qvauth");
}

TEST_F(CtlDoctor, LockShowsWhoHoldsAndWaits) {
  EXPECT_EQ(RunTool({"lock"}), (Answer{0, "free: no process holds the lock\n", ""}));
  test::LockHolder holder;
  const Answer answer = RunTool({"lock"});
  EXPECT_EQ(answer.code, 0);
  EXPECT_NE(answer.out.find(" writes, user root, started 20"), std::string::npos) << answer.out;
  EXPECT_NE(answer.out.find("qvx_ctl_tests"), std::string::npos) << answer.out;
  const Answer json = RunTool({"lock", "--json"});
  EXPECT_EQ(json.out.rfind("{\"held\":true,\"processes\":[{\"pid\":", 0), 0u) << json.out;
}

TEST_F(CtlDoctor, LockOfAMissingFileCouldNotBeTold) {
  ASSERT_EQ(unlink(kIPCFilePath), 0);
  EXPECT_EQ(RunTool({"lock"}),
            (Answer{3, "",
                    "qvxctl: /etc/cim/zarn/plinthos/var/lib/vexilon/.qvxipc: No such file or "
                    "directory\n"}));
  EXPECT_FALSE(test::Exists(kIPCFilePath));
}

}  // namespace
}  // namespace qvx
