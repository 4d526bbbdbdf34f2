// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "tests/access/accounts.h"
#include "tests/ctl/run_tool.h"

namespace qvx {
namespace {

using test::Answer;
using test::RunTool;
using test::WriteFile;
using test::WriteRoleMap;

constexpr char kDraft[] = "/tmp/map/draft";
constexpr char kRefused[] = "the library refuses this map and takes its built-in lines instead\n";

class CtlRolemap : public ::testing::Test {
 protected:
  void SetUp() override {
    test::RequireSandbox();
    ASSERT_EQ(mkdir("/tmp/map", 0755), 0);
    test::AddGroup("wheel", 7100, "alice");
    test::AddGroup("users", 7101);
    test::AddUser("alice", 7001, 7101, test::Hash("Wonder-1and"));
    test::AddUser("bob", 7002, 7101, test::Hash("Builder-2"));
  }

  // The output for a draft that root owns, mode 0640.
  static Answer Check(const std::string& text) {
    WriteFile(kDraft, text);
    EXPECT_EQ(chmod(kDraft, 0640), 0);
    return RunTool({"rolemap", "check", kDraft});
  }
  // The one finding of a draft.
  static std::string Finding(const std::string& text) {
    const Answer answer = Check(text);
    EXPECT_EQ(answer.code, 1);
    EXPECT_EQ(answer.err, "");
    const std::string name = std::string(kDraft) + ":";
    return answer.out.rfind(name, 0) == 0 ? answer.out.substr(name.size()) : answer.out;
  }
};

TEST_F(CtlRolemap, AFaultlessMapIsClean) {
  EXPECT_EQ(Check("# note\nalice *.lab administrator\n+wheel * poweruser\n* * user\n"),
            (Answer{0, "/tmp/map/draft: no fault\n", ""}));
}

TEST_F(CtlRolemap, EveryFaultyLineIsNamedWithItsReason) {
  EXPECT_EQ(Check("alice *\n* * user\nbob * boss\n"),
            (Answer{1,
                    "/tmp/map/draft:1: fault: a field is missing: users, hosts and a role are "
                    "needed\n"
                    "/tmp/map/draft:3: fault: the role is none of administrator, poweruser and "
                    "user\n" +
                        std::string(kRefused),
                    ""}));
}

TEST_F(CtlRolemap, AUserTwiceOnOneHostIsAFault) {
  EXPECT_EQ(Finding("alice * user\n* * user\nalice *.lab,* administrator\n"),
            std::string("3: fault: a user is given the same host a second time\n") + kRefused);
}

TEST_F(CtlRolemap, AMapWithoutALineThatCountsIsAFault) {
  EXPECT_EQ(Finding("# nothing\n\n"), std::string(" fault: no line counts\n") + kRefused);
}

TEST_F(CtlRolemap, AByteAbove7BitsIsShownThoughTheLibraryIsSilent) {
  EXPECT_EQ(Finding("alice * user\n# No\xC3\xABl\nbob * boss\n"),
            "2: warning: a byte above 0x7F ends the map: this line and all that follow do not "
            "count\n");
}

TEST_F(CtlRolemap, CarriageReturnsAreShown) {
  EXPECT_EQ(Finding("alice * user x\r\n"), "1: warning: ends with a carriage return\n");
  EXPECT_EQ(Finding("alice * user\r\n"),
            "1: fault: the role is none of administrator, poweruser and user\n"
            "/tmp/map/draft:1: warning: ends with a carriage return\n" +
                std::string(kRefused));
}

TEST_F(CtlRolemap, ALastLineWithoutItsLineFeedIsShown) {
  EXPECT_EQ(Finding("* * user\nalice * administrator"),
            "2: warning: has no line feed at its end and does not count\n");
}

TEST_F(CtlRolemap, APlainHostNameOfANamedUserIsShown) {
  EXPECT_EQ(Finding("alice srv1,10.0.0.1,fe80::1,*.lab user\n+wheel,* srv1 user\n"),
            "1: warning: a plain host name grants a named user nothing: write an address, "
            "\"*.domain\" or \"*\" for alice on srv1\n");
}

TEST_F(CtlRolemap, ANamedUserOnTwoLinesIsShown) {
  EXPECT_EQ(Finding("alice *.lab user\nalice * administrator\n"),
            "2: warning: user alice is in line 1 already: `qvxctl rights` shows which line "
            "decides\n");
}

TEST_F(CtlRolemap, ShadowedEntriesAreShown) {
  EXPECT_EQ(Finding("+wheel srv1 user\n+wheel srv1 poweruser\n"),
            "1: warning: +wheel on srv1 is shadowed by line 2\n");
  EXPECT_EQ(Finding("* * poweruser\n* * poweruser\n"),
            "2: warning: * on * is shadowed by line 1\n");
  EXPECT_EQ(Finding("+wheel srv1 user\n+wheel * poweruser\n+wheel srv2 administrator\n"),
            "1: warning: +wheel on srv1 is shadowed by line 2\n");
}

TEST_F(CtlRolemap, FindingsComeInTheOrderOfTheirLines) {
  WriteFile(kDraft, "carol * user\n+wheel srv1 user\n+wheel * poweruser\n# end\r\n");
  ASSERT_EQ(chmod(kDraft, 0644), 0);
  EXPECT_EQ(RunTool({"rolemap", "check", kDraft}).out,
            "/tmp/map/draft:1: warning: user carol is unknown here\n"
            "/tmp/map/draft:2: warning: +wheel on srv1 is shadowed by line 3\n"
            "/tmp/map/draft:4: warning: ends with a carriage return\n"
            "/tmp/map/draft: note: the file's mode is neither 0640 nor 01640 but 00644\n");
  EXPECT_EQ(Finding("alice * user x\r\nbob * boss\n"),
            "1: warning: ends with a carriage return\n"
            "/tmp/map/draft:2: fault: the role is none of administrator, poweruser and user\n" +
                std::string(kRefused));
}

TEST_F(CtlRolemap, UnknownUsersAndGroupsAreShown) {
  EXPECT_EQ(Finding("carol * user\n"), "1: warning: user carol is unknown here\n");
  EXPECT_EQ(Finding("+staff7 * user\n"), "1: warning: group staff7 is unknown here\n");
}

TEST_F(CtlRolemap, EmptyNamesAreShown) {
  EXPECT_EQ(Finding("alice, * user\n"),
            "1: warning: an empty user name: two commas, or one at an end\n");
}

TEST_F(CtlRolemap, OfADraftModeAndOwnerAreToldAndDoNotCount) {
  WriteFile(kDraft, "* * user\n");
  ASSERT_EQ(chmod(kDraft, 0644), 0);
  ASSERT_EQ(chown(kDraft, 7001, 7101), 0);
  ASSERT_EQ(chmod("/tmp/map", 0777), 0);
  EXPECT_EQ(RunTool({"rolemap", "check", kDraft}),
            (Answer{0,
                    "/tmp/map/draft: note: the file's mode is neither 0640 nor 01640 but 00644\n"
                    "/tmp/map/draft: note: the file is not root's\n"
                    "/tmp/map/draft: note: others may replace the file: the directory's mode is "
                    "00777\n"
                    "/tmp/map/draft: no fault\n",
                    ""}));
}

TEST_F(CtlRolemap, OfTheLiveMapModeAndOwnerCount) {
  WriteRoleMap("* * user\n", 0644);
  ASSERT_EQ(chown(test::kRoleMap, 7001, 0), 0);
  const Answer answer = RunTool({"rolemap", "check"});
  EXPECT_EQ(answer, (Answer{1,
                            "/etc/cim/zarn/plinthos/qvxrolemap: fault: the file's mode is neither "
                            "0640 nor 01640 but 00644\n"
                            "/etc/cim/zarn/plinthos/qvxrolemap: warning: the file is not root's\n" +
                                std::string(kRefused),
                            ""}));
}

TEST_F(CtlRolemap, TheLiveMapIsTheLiveOneByEveryName) {
  WriteRoleMap("* * user\n", 0600);
  ASSERT_EQ(symlink(test::kRoleMap, "/tmp/map/link"), 0);
  for (const std::string name : {"//etc/cim/zarn/plinthos/qvxrolemap", "/tmp/map/link"}) {
    EXPECT_EQ(
        RunTool({"rolemap", "check", name}),
        (Answer{1,
                name + ": fault: the file's mode is neither 0640 nor 01640 but 00600\n" + kRefused,
                ""}));
  }
}

TEST_F(CtlRolemap, AMissingMapCouldNotBeTold) {
  EXPECT_EQ(RunTool({"rolemap", "check", "/tmp/none"}),
            (Answer{3, "", "qvxctl: /tmp/none: No such file or directory\n"}));
  EXPECT_EQ(RunTool({"rolemap", "check", "/tmp"}).code, 3);
}

TEST_F(CtlRolemap, NothingIsLoggedAndNoLockIsTaken) {
  WriteRoleMap("alice * boss\n");
  EXPECT_EQ(RunTool({"rolemap", "check"}).code, 1);
  EXPECT_EQ(RunTool({"rights", "alice"}).code, 1);
  EXPECT_FALSE(test::Exists(test::kCommandLog));
  EXPECT_FALSE(test::Exists("/etc/cim/zarn/plinthos/var/lib/vexilon/.qvxipc"));
}

TEST_F(CtlRolemap, JsonTellsWhetherTheLibraryAcceptsTheMap) {
  WriteFile(kDraft, "alice * boss\n");
  ASSERT_EQ(chmod(kDraft, 0640), 0);
  EXPECT_EQ(RunTool({"rolemap", "check", kDraft, "--json"}),
            (Answer{1,
                    "{\"file\":\"/tmp/map/draft\",\"live\":false,\"accepted\":false,\"findings\":"
                    "[{\"line\":1,\"kind\":\"fault\",\"text\":\"the role is none of administrator, "
                    "poweruser and user\"}]}\n",
                    ""}));
}

TEST_F(CtlRolemap, RightsNamesTheLineThatDecides) {
  WriteRoleMap("# roles\nalice *.lab user\n+wheel * administrator\n* * user\n");
  EXPECT_EQ(RunTool({"rights", "alice", "--host", "lab"}),
            (Answer{0,
                    "user:   alice\nhost:   lab\nmap:    user (0x1), line 2: alice *.lab user\n"
                    "system: user (0x1)\nrights: user (0x1)\n",
                    ""}));
  EXPECT_EQ(RunTool({"rights", "alice"}).out,
            "user:   alice\nhost:   qvxtest\nmap:    administrator (0x7), line 3: +wheel * "
            "administrator\nsystem: user (0x1)\nrights: administrator (0x7)\n");
  EXPECT_EQ(RunTool({"rights", "bob"}).out,
            "user:   bob\nhost:   qvxtest\nmap:    user (0x1), line 4: * * user\n"
            "system: user (0x1)\nrights: user (0x1)\n");
}

TEST_F(CtlRolemap, RightsTakeOneHost) {
  WriteRoleMap("* * user\n");
  EXPECT_EQ(RunTool({"rights", "root@a", "--host", "b"}),
            (Answer{2, "", "qvxctl: rights: root@a names a host already: leave out --host\n"}));
  EXPECT_EQ(RunTool({"rights", "a\\root", "--host", "b"}).code, 2);
  EXPECT_EQ(RunTool({"rights", "root", "--host", "a@b"}),
            (Answer{2, "", "qvxctl: rights: --host \"a@b\" is no host\n"}));
  EXPECT_EQ(RunTool({"rights", "root", "--host", ""}).code, 2);
  EXPECT_EQ(RunTool({"rights", "root@a"}).code, 0);
}

TEST_F(CtlRolemap, OfEqualGroupGrantsTheFirstLineIsNamed) {
  WriteRoleMap("+users * user\n+wheel * poweruser\n+wheel qvxtest poweruser\n");
  EXPECT_NE(RunTool({"rights", "alice"}).out.find("poweruser (0x3), line 2:"), std::string::npos);
}

TEST_F(CtlRolemap, NoRightsAnswerNo) {
  WriteRoleMap("alice * user\n");
  EXPECT_EQ(RunTool({"rights", "bob"}),
            (Answer{1,
                    "user:   bob\nhost:   qvxtest\nmap:    none (0x0), no line grants anything\n"
                    "system: user (0x1)\nrights: none (0x0)\n",
                    ""}));
}

TEST_F(CtlRolemap, WithAFaultyMapTheBuiltInLinesDecide) {
  WriteRoleMap("alice * boss\n");
  const Answer answer = RunTool({"rights", "root"});
  EXPECT_EQ(answer.out,
            "user:   root\nhost:   qvxtest\nmap:    administrator (0x7), built-in line for root "
            "*\nsystem: administrator (0x7)\nrights: administrator, superuser (0x40007)\n");
  EXPECT_EQ(answer.err,
            "qvxctl: warning: /etc/cim/zarn/plinthos/qvxrolemap:1: the role is none of "
            "administrator, poweruser and user; the library uses its built-in lines\n");
}

TEST_F(CtlRolemap, RightsOfAFaultyMapAnswerNo) {
  EXPECT_EQ(RunTool({"rights", "root"}).code, 1);  // a missing map
  WriteRoleMap("alice * boss\n");
  EXPECT_EQ(RunTool({"rights", "root"}).code, 1);
  EXPECT_EQ(RunTool({"rights", "root", "--json"}).code, 1);
  WriteRoleMap("alice * user\n");
  EXPECT_EQ(RunTool({"rights", "root"}).code, 0);
}

TEST_F(CtlRolemap, AMapThatThisUserMayNotReadGivesNoAnswer) {
  WriteRoleMap("alice * poweruser\n");
  EXPECT_EQ(test::RunToolAsNobody({"rights", "alice"}),
            (Answer{3, "", "qvxctl: /etc/cim/zarn/plinthos/qvxrolemap: Permission denied\n"}));
  EXPECT_EQ(test::RunToolAsNobody({"rights", "alice", "--json"}).code, 3);
}

TEST_F(CtlRolemap, RightsAsJson) {
  WriteRoleMap("alice,bob * user\n");
  EXPECT_EQ(RunTool({"rights", "bob", "--json"}).out,
            "{\"user\":\"bob\",\"host\":\"qvxtest\",\"map\":1,\"line\":1,\"entry\":\"bob *\","
            "\"system\":1,\"rights\":1,\"faults\":[]}\n");
}

TEST_F(CtlRolemap, LoginAsksForThePasswordAndShowsTheRights) {
  test::UnixPamService("qvauth");
  WriteRoleMap("alice * poweruser\n* * user\n");
  EXPECT_EQ(RunTool({"login", "alice"}, "Wonder-1and\n"),
            (Answer{0, "alice: poweruser (0x3)\n", ""}));
  EXPECT_EQ(RunTool({"login", "alice"}, "wrong\n"), (Answer{1, "alice: refused\n", ""}));
  EXPECT_EQ(RunTool({"login", "bob", "--json"}, "Builder-2\n").out,
            "{\"user\":\"bob\",\"accepted\":true,\"rights\":1,\"faults\":[]}\n");
  EXPECT_EQ(RunTool({"login", "bob"}).code, 3);
}

TEST_F(CtlRolemap, AMapThatThisUserMayNotReadEndsALoginBeforeThePassword) {
  test::UnixPamService("qvauth");
  WriteRoleMap("alice * poweruser\n");
  const Answer refused{3, "", "qvxctl: /etc/cim/zarn/plinthos/qvxrolemap: Permission denied\n"};
  EXPECT_EQ(test::RunToolAsNobody({"login", "alice"}), refused);
  EXPECT_EQ(test::RunToolAsNobody({"login", "alice", "--json"}), refused);
}

TEST_F(CtlRolemap, ALoginWithAFaultyMapWarnsAndAnswersNo) {
  test::UnixPamService("qvauth");
  WriteRoleMap("alice * poweruser\n", 0644);
  const Answer warned{1, "alice: user (0x1)\n",
                      "qvxctl: warning: /etc/cim/zarn/plinthos/qvxrolemap: the file's mode is "
                      "neither 0640 nor 01640; the library uses its built-in lines\n"};
  EXPECT_EQ(RunTool({"login", "alice"}, "Wonder-1and\n"), warned);
  EXPECT_EQ(RunTool({"rights", "alice"}).err, warned.err);
  EXPECT_EQ(RunTool({"login", "alice", "--json"}, "Wonder-1and\n"),
            (Answer{1,
                    "{\"user\":\"alice\",\"accepted\":true,\"rights\":1,\"faults\":[{\"line\":0,"
                    "\"text\":\"the file's mode is neither 0640 nor 01640\"}]}\n",
                    ""}));
  ASSERT_EQ(unlink(test::kRoleMap), 0);
  EXPECT_EQ(RunTool({"login", "alice"}, "Wonder-1and\n").code, 1);
}

}  // namespace
}  // namespace qvx
