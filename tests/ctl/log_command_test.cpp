// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>

#include "qvxcs/xml_log.h"

#include "base/layout.h"
#include "frame/module.h"
#include "support/processes.h"
#include "tests/ctl/log_texts.h"
#include "tests/ctl/run_tool.h"

namespace qvx {
namespace {

using test::Answer;
using test::Entry;
using test::kLogClosing;
using test::kLogHead;
using test::Log;
using test::ReadFile;
using test::RunTool;
using test::WriteFile;

constexpr char kLog[] = "/tmp/logs/a.xml";
constexpr char kCommandLog[] = "/etc/cim/zarn/plinthos/var/log/vexilon/qvcmdlog.xml";
constexpr char kFirst[] = "2023-11-14 22:13:20 srv1 root host 5001/2: one\n";
constexpr char kSecond[] = "2023-11-14 22:13:21 srv1 eve host 5002/2: two\n";

class CtlLog : public ::testing::Test {
 protected:
  void SetUp() override {
    test::RequireSandbox();
    ASSERT_EQ(mkdir("/tmp/logs", 0755), 0);
    WriteFile(kLog, Log(both_));
  }
  const std::string both_ = Entry(1700000000, "one") + Entry(1700000001, "two", "eve", 5002);
};

TEST_F(CtlLog, ShowPrintsALineForEachEntry) {
  EXPECT_EQ(RunTool({"log", "show", kLog}), (Answer{0, std::string(kFirst) + kSecond, ""}));
}

TEST_F(CtlLog, WithoutAFileTheCommandLogIsShown) {
  WriteFile(kCommandLog, Log(Entry(1700000000, "one")));
  EXPECT_EQ(RunTool({"log", "show"}), (Answer{0, kFirst, ""}));
}

TEST_F(CtlLog, FiltersChooseByTimeUserAndIdentifier) {
  EXPECT_EQ(RunTool({"log", "show", kLog, "--user", "eve"}).out, kSecond);
  EXPECT_EQ(RunTool({"log", "show", kLog, "--id", "5001"}).out, kFirst);
  EXPECT_EQ(RunTool({"log", "show", kLog, "--since", "@1700000001"}).out, kSecond);
  EXPECT_EQ(RunTool({"log", "show", kLog, "--since", "2023-11-14 22:13:21"}).out, kSecond);
  EXPECT_EQ(RunTool({"log", "show", kLog, "--since", "2023-11-15"}).out, "");
  EXPECT_EQ(RunTool({"log", "show", kLog, "--since", "1h"}).out, "");
  EXPECT_EQ(RunTool({"log", "show", kLog, "--since", "soon"}).code, 2);
}

TEST_F(CtlLog, AnImpossibleOrEmptyTimeIsRefused) {
  for (const char* time :
       {"", "2023-02-31", "2023-02-29 10:00", "2023-04-31 00:00:00", "2023-13-01",
        "2023-11-14 24:00", "2023-11-14 22:60", "23-11-14", "123-11-14 10:00", "02023-11-14"}) {
    EXPECT_EQ(RunTool({"log", "show", kLog, "--since", time}),
              (Answer{2, "", "qvxctl: log: \"" + std::string(time) + "\" is no time\n"}));
  }
  EXPECT_EQ(RunTool({"log", "show", kLog, "--since", "2024-02-29"}).code, 0);
}

TEST_F(CtlLog, AnEmptyFilterOrPlaceIsNotPassedOver) {
  EXPECT_EQ(RunTool({"log", "show", kLog, "--user", ""}), (Answer{0, "", ""}));
  EXPECT_EQ(RunTool({"log", "show", kLog, "--id", ""}).code, 2);
  EXPECT_EQ(RunTool({"log", "follow", kLog, "--state", ""}).code, 2);
}

TEST_F(CtlLog, JsonIsOneObjectAnEntryWithItsKey) {
  WriteFile(kLog, Log(Entry(1700000000, "a<b>\xFF", "R&amp;D")));
  EXPECT_EQ(RunTool({"log", "show", kLog, "--json"}).out,
            "{\"time\":1700000000,\"host\":\"srv1\",\"offset\":75,\"date\":\"Tue Nov 14 22:13:20 "
            "2023\",\"type\":2,\"id\":5001,\"user\":\"R&D\",\"source\":\"host\",\"description\":"
            "\"a<b>\xEF\xBF\xBD\",\"data\":\"\"}\n");
}

TEST_F(CtlLog, WhatAnEntryHoldsDoesNotReachTheTerminal) {
  WriteFile(kLog, Log(Entry(1700000000, "x\033[2J\ny")));
  EXPECT_EQ(RunTool({"log", "show", kLog}).out,
            "2023-11-14 22:13:20 srv1 root host 5001/2: x\\x1b[2J\\x0ay\n");
}

TEST_F(CtlLog, ATerminalsLineIsCutAtItsWidth) {
  EXPECT_EQ(test::RunningTool({"log", "show", kLog, "--user", "root"}, 30).End().out,
            "2023-11-14 22:13:20 srv1 root \r\n");
}

TEST_F(CtlLog, ADamagedLogIsShownAsFarAsItCanBeRead) {
  WriteFile(kLog, kLogHead + both_ + "<LogEntry><Time");
  const std::string offset = std::to_string(75 + both_.size());
  EXPECT_EQ(RunTool({"log", "show", kLog}),
            (Answer{1, std::string(kFirst) + kSecond,
                    "qvxctl: warning: /tmp/logs/a.xml: the end is damaged: `qvxctl log repair` "
                    "puts the closing tag at offset " +
                        offset + " and cuts off what follows\n"}));
}

TEST_F(CtlLog, AnEntryThatOnlyLacksTheClosingTagIsShown) {
  WriteFile(kLog, kLogHead + both_ + "</Ev");
  const Answer answer = RunTool({"log", "show", kLog});
  EXPECT_EQ(answer.code, 1);
  EXPECT_EQ(answer.out, std::string(kFirst) + kSecond);
}

TEST_F(CtlLog, DamageBetweenEntriesIsTold) {
  WriteFile(kLog, Log(Entry(1700000000, "one") + "zz" + Entry(1700000001, "two", "eve", 5002)));
  const Answer answer = RunTool({"log", "show", kLog});
  EXPECT_EQ(answer.code, 1);
  EXPECT_EQ(answer.out, std::string(kFirst) + kSecond);
  EXPECT_NE(answer.err.find(": 2 bytes from offset "), std::string::npos) << answer.err;
}

TEST_F(CtlLog, ALogWithoutItsHeadIsShownFromItsFirstEntryWithAWarning) {
  WriteFile(kLog, both_ + kLogClosing);
  EXPECT_EQ(RunTool({"log", "show", kLog}),
            (Answer{1, std::string(kFirst) + kSecond,
                    "qvxctl: warning: /tmp/logs/a.xml: the head is missing; `qvxctl log repair` "
                    "leaves it so\n"}));
}

TEST_F(CtlLog, WhatRepairLeavesIsSaid) {
  const std::string first = Entry(1700000000, "one");
  const std::string second = Entry(1700000001, "two", "eve", 5002);
  const std::string rest = " bytes from offset " + std::to_string(75 + first.size()) +
                           " are no entry; `qvxctl log repair` leaves them\n";
  WriteFile(kLog, Log(first + "GARBAGE" + second));
  EXPECT_EQ(RunTool({"log", "repair", kLog, "--yes"}),
            (Answer{1, "/tmp/logs/a.xml: 7" + rest, ""}));
  WriteFile(kLog, Log(first) + second + kLogClosing);
  EXPECT_EQ(RunTool({"log", "repair", kLog, "--yes"}),
            (Answer{1, "/tmp/logs/a.xml: 11" + rest, ""}));
  EXPECT_EQ(RunTool({"log", "show", kLog}).err, "qvxctl: warning: /tmp/logs/a.xml: 11" + rest);
}

TEST_F(CtlLog, DamageThatRepairCutsOffIsNotSaidToBeLeft) {
  const std::string first = Entry(1700000000, "one");
  WriteFile(kLog, kLogHead + first + "GARBAGE<LogEntry><TimeStamp>17");
  const std::string offset = std::to_string(75 + first.size());
  EXPECT_EQ(RunTool({"log", "repair", kLog, "--yes"}),
            (Answer{0,
                    "/tmp/logs/a.xml: 7 bytes from offset " + offset +
                        " are no entry\n/tmp/logs/a.xml: the end is damaged: `qvxctl log repair` "
                        "puts the closing tag at offset " +
                        offset + " and cuts off what follows\n/tmp/logs/a.xml: repaired\n",
                    ""}));
  EXPECT_EQ(ReadFile(kLog), Log(first));
}

TEST_F(CtlLog, AnEndRepairedAfterOtherDamageIsNoWholeLog) {
  const std::string head = std::string(75, '#');
  WriteFile(kLog, head + both_);
  const Answer answer = RunTool({"log", "repair", kLog, "--yes"});
  EXPECT_EQ(answer.code, 1);
  EXPECT_NE(answer.out.find("75 bytes from offset 0 are no entry; `qvxctl log repair` leaves them"),
            std::string::npos)
      << answer.out;
  EXPECT_NE(answer.out.find("/tmp/logs/a.xml: the end is repaired, the other damage is left\n"),
            std::string::npos)
      << answer.out;
  EXPECT_EQ(ReadFile(kLog), head + both_ + kLogClosing);
}

TEST_F(CtlLog, DamageInOnePieceIsSaidInOneLine) {
  WriteFile(kLog, Log(Entry(1, "a") + std::string(size_t{5} << 20, 'x') + Entry(2, "b")));
  const std::string err = RunTool({"log", "show", kLog}).err;
  EXPECT_EQ(err, "qvxctl: warning: /tmp/logs/a.xml: 5242880 bytes from offset " +
                     std::to_string(75 + Entry(1, "a").size()) +
                     " are no entry; `qvxctl log repair` leaves them\n");
}

TEST_F(CtlLog, MoreDamageThanIsListedIsCounted) {
  std::string entries;
  for (int at = 0; at < 25; ++at) {
    entries += Entry(1, "a") + "x";
  }
  WriteFile(kLog, Log(entries));
  const std::string err = RunTool({"log", "show", kLog}).err;
  EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 21);
  EXPECT_TRUE(err.ends_with("a.xml: 5 more places are damaged\n")) << err;
}

TEST_F(CtlLog, AnEmptyLogIsNoFault) {
  WriteFile(kLog, "");
  EXPECT_EQ(RunTool({"log", "show", kLog}), (Answer{0, "", ""}));
  EXPECT_EQ(RunTool({"log", "repair", kLog}),
            (Answer{0, "/tmp/logs/a.xml: empty, the next entry begins it\n", ""}));
}

TEST_F(CtlLog, AFileTooSmallForALogIsNone) {
  WriteFile(kLog, "x</EventLog>");
  EXPECT_EQ(RunTool({"log", "repair", kLog, "--yes"}),
            (Answer{1, "/tmp/logs/a.xml: holds no log: the next entry begins it anew\n", ""}));
}

TEST_F(CtlLog, AnEmptyCommandLogIsGoodForTheDoctor) {
  WriteFile(kCommandLog, "");
  const std::string out = RunTool({"doctor"}).out;
  EXPECT_NE(out.find("good logs: "), std::string::npos) << out;
}

TEST_F(CtlLog, TheDoctorNamesTheCommandThatHelpsACommandLog) {
  const auto isOffered = [](const std::string& command) {
    return RunTool({"doctor"}).out.find("; mend: " + command + "\n") != std::string::npos;
  };
  WriteFile(kCommandLog, kLogHead + both_);
  EXPECT_TRUE(isOffered("qvxctl log repair"));
  WriteFile(kCommandLog, Log(both_ + "zz"));
  EXPECT_TRUE(isOffered("qvxctl log clear"));
  WriteFile(kCommandLog, std::string(80, 'x'));
  EXPECT_TRUE(isOffered("qvxctl log clear --yes"));
}

TEST_F(CtlLog, RepairAnswersAsJson) {
  EXPECT_EQ(RunTool({"log", "repair", kLog, "--json"}),
            (Answer{0,
                    "{\"file\":\"/tmp/logs/a.xml\",\"findings\":[],\"repairable\":false,"
                    "\"end\":" +
                        std::to_string(75 + both_.size()) + ",\"repaired\":false}\n",
                    ""}));
  WriteFile(kLog, kLogHead + both_);
  const std::string end = std::to_string(75 + both_.size());
  const std::string damaged =
      "{\"file\":\"/tmp/logs/a.xml\",\"findings\":[\"the closing tag is missing or cut: `qvxctl "
      "log "
      "repair` puts the closing tag at offset " +
      end + "\"],\"repairable\":true,\"end\":" + end + ",\"repaired\":";
  EXPECT_EQ(RunTool({"log", "repair", kLog, "--json"}, "n\n"),
            (Answer{1, damaged + "false}\n", "Repair it? [y/N] "}));
  EXPECT_EQ(RunTool({"log", "repair", kLog, "--json", "--yes"}),
            (Answer{0, damaged + "true}\n", ""}));
  EXPECT_EQ(ReadFile(kLog), Log(both_));
}

TEST_F(CtlLog, AMissingLogCouldNotBeTold) {
  EXPECT_EQ(RunTool({"log", "show", "/tmp/logs/none.xml"}),
            (Answer{3, "", "qvxctl: /tmp/logs/none.xml: No such file or directory\n"}));
  EXPECT_EQ(RunTool({"log", "show", "/tmp/logs"}).code, 3);
  EXPECT_EQ(RunTool({"log", "clear", "/tmp/logs/none.xml"}).code, 3);
  EXPECT_EQ(RunTool({"log", "repair", "/tmp/logs/none.xml"}).code, 3);
}

TEST_F(CtlLog, AnEmptyNameIsNoFile) {
  for (const char* command : {"show", "follow", "clear", "repair"}) {
    EXPECT_EQ(RunTool({"log", command, ""}),
              (Answer{2, "", "qvxctl: FILE: no value is given (see qvxctl --help)\n"}))
        << command;
  }
}

TEST_F(CtlLog, WhatIsNoRegularFileIsNamedSo) {
  ASSERT_EQ(mkfifo("/tmp/logs/fifo", 0600), 0);
  for (const char* name : {"/tmp/logs/fifo", "/dev/null"}) {
    const Answer expected = {3, "", "qvxctl: " + std::string(name) + ": no regular file\n"};
    for (const char* command : {"show", "follow", "clear", "repair"}) {
      EXPECT_EQ(RunTool({"log", command, name}), expected) << command;
    }
  }
}

TEST_F(CtlLog, RepairClosesTheLogAfterItsLastWholeEntry) {
  WriteFile(kLog, kLogHead + both_ + "<LogEntry><Time");
  const Answer answer = RunTool({"log", "repair", kLog}, "y\n");
  EXPECT_EQ(answer.code, 0);
  EXPECT_EQ(ReadFile(kLog), Log(both_));
}

TEST_F(CtlLog, RepairKeepsAWholeEntryThatOnlyLacksTheTag) {
  WriteFile(kLog, kLogHead + both_);
  EXPECT_EQ(RunTool({"log", "repair", kLog, "--yes"}).code, 0);
  EXPECT_EQ(ReadFile(kLog), Log(both_));
}

TEST_F(CtlLog, RepairChangesNothingWithoutAYes) {
  const std::string damaged = kLogHead + both_ + "<LogEntry><Time";
  WriteFile(kLog, damaged);
  EXPECT_EQ(RunTool({"log", "repair", kLog}, "n\n").code, 1);
  EXPECT_EQ(RunTool({"log", "repair", kLog}).code, 1);
  EXPECT_EQ(ReadFile(kLog), damaged);
}

TEST_F(CtlLog, RepairOfAWholeLogHasNothingToDo) {
  EXPECT_EQ(RunTool({"log", "repair", kLog}), (Answer{0, "/tmp/logs/a.xml: whole\n", ""}));
  EXPECT_EQ(ReadFile(kLog), Log(both_));
}

TEST_F(CtlLog, RepairLeavesAFileThatIsNoLog) {
  const std::string text(200, 'x');
  WriteFile(kLog, text);
  EXPECT_EQ(RunTool({"log", "repair", kLog, "--yes"}).code, 1);
  EXPECT_EQ(ReadFile(kLog), text);
}

TEST_F(CtlLog, TheLibraryAppendsToARepairedLog) {
  WriteFile(kLog, kLogHead + both_ + "<LogEntry><Time");
  ASSERT_EQ(RunTool({"log", "repair", kLog, "--yes"}).code, 0);
  const int status = test::InChild([] {
    return ModuleAttach() == 1 && PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, 1, "root", "TEST",
                                                    "three", nullptr, 0, 131072) == 0
               ? 0
               : 1;
  });
  EXPECT_EQ(status, 0);
  const Answer answer = RunTool({"log", "show", kLog});
  EXPECT_EQ(answer.code, 0);
  EXPECT_NE(answer.out.find("root TEST 1/4: three\n"), std::string::npos) << answer.out;
}

TEST_F(CtlLog, ClearLeavesAFileThatIsNoLogWithoutAYes) {
  const std::string settings = "[Net]\n" + std::string(80, '#') + "\nport=1\n";
  WriteFile(kLog, settings);
  EXPECT_EQ(RunTool({"log", "clear", kLog}),
            (Answer{1, "",
                    "qvxctl: /tmp/logs/a.xml: does not begin as a log does; `--yes` deletes it all "
                    "the same\n"}));
  EXPECT_EQ(ReadFile(kLog), settings);
  EXPECT_EQ(RunTool({"log", "clear", kLog, "--yes"}), (Answer{0, "", ""}));
  EXPECT_TRUE(ReadFile(kLog).starts_with(kLogHead));
}

TEST_F(CtlLog, ClearAsksNothingOfAFileTooSmallForALog) {
  WriteFile(kLog, std::string(64, '#'));
  EXPECT_EQ(RunTool({"log", "clear", kLog}), (Answer{0, "", ""}));
  WriteFile(kLog, std::string(65, '#'));
  EXPECT_EQ(RunTool({"log", "clear", kLog}).code, 1);
}

TEST_F(CtlLog, ClearBeginsTheLogAnew) {
  EXPECT_EQ(RunTool({"log", "clear", kLog}), (Answer{0, "", ""}));
  const std::string out = RunTool({"log", "show", kLog}).out;
  EXPECT_NE(out.find(" qvxtest root QVXCTL 0/4: Log was cleared\n"), std::string::npos) << out;
}

}  // namespace
}  // namespace qvx
