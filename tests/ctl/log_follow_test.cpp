// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
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
using test::Log;
using test::RunningTool;
using test::Words;
using test::WriteFile;

constexpr char kLog[] = "/tmp/logs/a.xml";
constexpr char kBackup[] = "/tmp/logs/a.xm_";
constexpr char kState[] = "/tmp/logs/state";
const Words kFollow = {"log", "follow", kLog};
const Words kKeep = {"log", "follow", kLog, "--state", kState};

// Entries `from` to `to`, each with its number.
std::string Entries(int from, int to) {
  std::string text;
  for (int at = from; at <= to; ++at)
    text += Entry(1700000000 + at, std::to_string(at));
  return text;
}

std::string Numbers(int from, int to) {
  std::string text;
  for (int at = from; at <= to; ++at)
    text += std::to_string(at) + "\n";
  return text;
}

// One write over the closing tag at the end of the log, as the library appends.
void Append(const std::string& text) {
  const int file = open(kLog, O_WRONLY | O_CLOEXEC);
  struct stat status = {};
  if (fstat(file, &status) != 0 || pwrite(file, text.data(), text.size(), status.st_size - 11) !=
                                       static_cast<ssize_t>(text.size())) {
    abort();
  }
  close(file);
}

// Whether SIGTERM has a handler already.
bool Listens(pid_t process) {
  const std::string status = test::ReadFile("/proc/" + std::to_string(process) + "/status");
  const size_t at = status.find("SigCgt:\t");
  return at != std::string::npos &&
         (strtoull(status.c_str() + at + 8, nullptr, 16) >> (SIGTERM - 1) & 1) != 0;
}

// The descriptions alone.
std::string Descriptions(const std::string& lines) {
  std::string text;
  for (size_t at = 0; at < lines.size();) {
    const size_t end = lines.find('\n', at);
    const std::string line = lines.substr(at, end - at);
    text += line.substr(line.rfind(": ") + 2) + "\n";
    at = end + 1;
  }
  return text;
}

class CtlFollow : public ::testing::Test {
 protected:
  void SetUp() override {
    test::RequireSandbox();
    ASSERT_EQ(mkdir("/tmp/logs", 0755), 0);
    WriteFile(kLog, Log(Entries(1, 3)));
  }
  static Answer Stop(RunningTool* tool) {
    for (int look = 0; look < 1000 && !Listens(tool->Process()); ++look)
      usleep(20000);
    kill(tool->Process(), SIGTERM);
    Answer answer = tool->End();
    answer.out = Descriptions(answer.out);
    return answer;
  }
  // One run that shows so many entries and is told to stop.
  static std::string Run(const Words& words, size_t lines) {
    RunningTool tool(words);
    (void)tool.Lines(lines);
    const Answer answer = Stop(&tool);
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.err, "");
    return answer.out;
  }
};

TEST_F(CtlFollow, ShowsWhatIsThereAndWhatComes) {
  RunningTool tool(kFollow);
  EXPECT_EQ(Descriptions(tool.Lines(3)), Numbers(1, 3));
  Append(Entries(4, 5) + kLogClosing);
  EXPECT_EQ(Descriptions(tool.Lines(5)), Numbers(1, 5));
  EXPECT_EQ(Stop(&tool), (Answer{0, Numbers(1, 5), ""}));
}

TEST_F(CtlFollow, WaitsForALogThatIsNotThereYet) {
  ASSERT_EQ(unlink(kLog), 0);
  RunningTool tool(kFollow);
  usleep(200000);
  WriteFile("/tmp/logs/new", Log(Entries(1, 2)));
  ASSERT_EQ(rename("/tmp/logs/new", kLog), 0);
  EXPECT_EQ(Descriptions(tool.Lines(2)), Numbers(1, 2));
}

TEST_F(CtlFollow, ALogThatIsNotThereYetIsWarnedOfOnce) {
  for (const char* path : {"/tmp/logs/none.xml", "/tmp/none/none.xml"}) {
    RunningTool tool({"log", "follow", path});
    sleep(2);
    EXPECT_EQ(Stop(&tool), (Answer{0, "",
                                   "qvxctl: warning: " + std::string(path) +
                                       " does not exist yet; waiting for it\n"}));
  }
}

TEST_F(CtlFollow, GoesOnOverAMoveToTheBackup) {
  RunningTool tool(kFollow);
  (void)tool.Lines(3);
  kill(tool.Process(), SIGSTOP);
  Append(Entries(4, 4) + kLogClosing);
  ASSERT_EQ(rename(kLog, kBackup), 0);
  WriteFile(kLog, Log(Entries(5, 6)));
  kill(tool.Process(), SIGCONT);
  (void)tool.Lines(6);
  EXPECT_EQ(Stop(&tool), (Answer{0, Numbers(1, 6), ""}));
}

TEST_F(CtlFollow, GoesOnOverTwoMovesAtOnce) {
  RunningTool tool(kFollow);
  (void)tool.Lines(3);
  kill(tool.Process(), SIGSTOP);
  ASSERT_EQ(unlink(kLog), 0);
  WriteFile(kBackup, Log(Entries(4, 5)));
  WriteFile(kLog, Log(Entries(6, 7)));
  kill(tool.Process(), SIGCONT);
  (void)tool.Lines(7);
  EXPECT_EQ(Stop(&tool), (Answer{0, Numbers(1, 7), ""}));
}

TEST_F(CtlFollow, GoesOnOverClearingAndLeavesTheOldBackup) {
  WriteFile(kBackup, Log(Entries(90, 99)));
  RunningTool tool(kFollow);
  (void)tool.Lines(3);
  ASSERT_EQ(unlink(kLog), 0);
  WriteFile("/tmp/logs/new", Log(Entries(4, 5)));
  ASSERT_EQ(rename("/tmp/logs/new", kLog), 0);
  (void)tool.Lines(5);
  EXPECT_EQ(Stop(&tool), (Answer{0, Numbers(1, 5), ""}));
}

TEST_F(CtlFollow, AStateShowsEachEntryOnceOverRuns) {
  EXPECT_EQ(Run(kKeep, 3), Numbers(1, 3));
  EXPECT_EQ(Run(kKeep, 0), "");
  WriteFile(kLog, Log(Entries(1, 4)));
  EXPECT_EQ(Run(kKeep, 1), "4\n");
}

TEST_F(CtlFollow, AStateIsFoundAgainInTheBackup) {
  EXPECT_EQ(Run(kKeep, 3), Numbers(1, 3));
  WriteFile(kBackup, Log(Entries(1, 5)));
  WriteFile("/tmp/logs/new", Log(Entries(6, 7)));
  ASSERT_EQ(rename("/tmp/logs/new", kLog), 0);
  EXPECT_EQ(Run(kKeep, 4), Numbers(4, 7));
  EXPECT_EQ(Run(kKeep, 0), "");
}

TEST_F(CtlFollow, AStateIsNoPlaceInALogThatWasClearedAtTheSameNumber) {
  WriteFile(kBackup, Log(Entries(90, 99)));
  EXPECT_EQ(Run(kKeep, 3), Numbers(1, 3));
  // The same file and name, other entries.
  WriteFile(kLog, Log(Entries(11, 14)));
  EXPECT_EQ(Run(kKeep, 4), Numbers(11, 14));
}

TEST_F(CtlFollow, AfterTwoMovesTheBackupIsShownWithAWarning) {
  EXPECT_EQ(Run(kKeep, 3), Numbers(1, 3));
  WriteFile(kBackup, Log(Entries(5, 6)));
  WriteFile(kLog, Log(Entries(7, 8)));
  RunningTool tool(kKeep);
  (void)tool.Lines(4);
  EXPECT_EQ(Stop(&tool), (Answer{0, Numbers(5, 8),
                                 "qvxctl: warning: /tmp/logs/a.xml: the log was moved more than "
                                 "once since the place was kept: entries may be lost\n"}));
}

// The log moves and a new one begins, as the library moves it.
void MoveOn(const std::string& entries) {
  (void)unlink(kBackup);
  if (rename(kLog, kBackup) != 0) abort();
  WriteFile(kLog, Log(entries));
}

// Three moves while the tool is stopped; it can show the last two logs.
void MoveThriceUnseenBy(RunningTool* tool) {
  kill(tool->Process(), SIGSTOP);
  MoveOn(Entries(4, 5));
  MoveOn(Entries(6, 7));
  MoveOn(Entries(8, 9));
  kill(tool->Process(), SIGCONT);
  (void)tool->Lines(7);
}

TEST_F(CtlFollow, MovesThatPassWhileItLooksAwayAreWarnedOf) {
  RunningTool tool(kFollow);
  (void)tool.Lines(3);
  MoveThriceUnseenBy(&tool);
  EXPECT_EQ(Stop(&tool), (Answer{0, Numbers(1, 3) + Numbers(6, 9),
                                 "qvxctl: warning: /tmp/logs/a.xml: the log was moved more than "
                                 "once between two looks: entries may be lost\n"}));
}

// Nothing is reported of what a link leads to.
TEST_F(CtlFollow, MovesThatAreNotReportedAreWarnedOf) {
  ASSERT_EQ(mkdir("/tmp/links", 0755), 0);
  ASSERT_EQ(symlink(kLog, "/tmp/links/a.xml"), 0);
  ASSERT_EQ(symlink(kBackup, "/tmp/links/a.xm_"), 0);
  RunningTool tool({"log", "follow", "/tmp/links/a.xml"});
  (void)tool.Lines(3);
  MoveThriceUnseenBy(&tool);
  const Answer answer = Stop(&tool);
  EXPECT_EQ(answer.out, Numbers(1, 3) + Numbers(6, 9));
  EXPECT_NE(answer.err.find("entries may be lost\n"), std::string::npos) << answer.err;
}

TEST_F(CtlFollow, TwoMovesLoseNothingAndAreNotWarnedOf) {
  RunningTool tool(kFollow);
  (void)tool.Lines(3);
  for (int first = 4; first < 24; first += 4) {
    kill(tool.Process(), SIGSTOP);
    MoveOn(Entries(first, first + 1));
    MoveOn(Entries(first + 2, first + 3));
    kill(tool.Process(), SIGCONT);
    (void)tool.Lines(static_cast<size_t>(first) + 3);
  }
  EXPECT_EQ(Stop(&tool), (Answer{0, Numbers(1, 23), ""}));
}

TEST_F(CtlFollow, ALogThatCameAndWentUnseenIsWarnedOf) {
  RunningTool tool(kFollow);
  (void)tool.Lines(3);
  kill(tool.Process(), SIGSTOP);
  for (const int at : {4, 5}) {
    ASSERT_EQ(unlink(kLog), 0);
    WriteFile(kLog, Log(Entries(at, at)));
  }
  kill(tool.Process(), SIGCONT);
  (void)tool.Lines(4);
  const Answer answer = Stop(&tool);
  EXPECT_EQ(answer.out, Numbers(1, 3) + "5\n");
  EXPECT_NE(answer.err.find("entries may be lost\n"), std::string::npos) << answer.err;
}

// An end counts as damaged only after 3 s without a change.
constexpr unsigned kLongerThanAnAppend = 4;

TEST_F(CtlFollow, ALastEntryWithoutItsClosingTagIsWarnedOfAndShownAfterARepair) {
  const std::string text = test::kLogHead + Entries(1, 3);
  WriteFile(kLog, text);
  RunningTool tool(kFollow);
  EXPECT_EQ(Descriptions(tool.Lines(2)), Numbers(1, 2));
  sleep(kLongerThanAnAppend);
  ASSERT_EQ(test::RunTool({"log", "repair", kLog, "--yes"}).code, 0);
  (void)tool.Lines(3);
  EXPECT_EQ(Stop(&tool), (Answer{0, Numbers(1, 3),
                                 "qvxctl: warning: /tmp/logs/a.xml: the closing tag is missing or "
                                 "cut: `qvxctl log repair` puts the closing tag at offset " +
                                     std::to_string(text.size()) + "\n"}));
}

TEST_F(CtlFollow, ATornEndIsWarnedOfOnce) {
  const std::string whole = test::kLogHead + Entries(1, 3);
  WriteFile(kLog, whole + "<LogEntry><Time");
  RunningTool tool(kFollow);
  (void)tool.Lines(3);
  sleep(kLongerThanAnAppend + 1);
  EXPECT_EQ(Stop(&tool),
            (Answer{0, Numbers(1, 3),
                    "qvxctl: warning: /tmp/logs/a.xml: the end is damaged: `qvxctl "
                    "log repair` puts the closing tag at offset " +
                        std::to_string(whole.size()) + " and cuts off what follows\n"}));
}

TEST_F(CtlFollow, AFileThatIsNoLogIsWarnedOf) {
  WriteFile(kLog, std::string(200, 'x'));
  RunningTool tool(kFollow);
  sleep(kLongerThanAnAppend);
  EXPECT_EQ(
      Stop(&tool),
      (Answer{0, "",
              "qvxctl: warning: /tmp/logs/a.xml: this is no log: it has no head and no entry; "
              "`qvxctl log clear --yes` deletes it and begins a log\n"}));
}

TEST_F(CtlFollow, AnEmptyLogIsNotWarnedOf) {
  WriteFile(kLog, "");
  RunningTool tool(kFollow);
  sleep(kLongerThanAnAppend);
  EXPECT_EQ(Stop(&tool), (Answer{0, "", ""}));
}

TEST_F(CtlFollow, ATornEndThatIsMovedAwayIsWarnedOf) {
  RunningTool tool(kFollow);
  (void)tool.Lines(3);
  kill(tool.Process(), SIGSTOP);
  const size_t end = Log(Entries(1, 3)).size() - strlen(kLogClosing);
  Append("<LogEntry><Time");
  MoveOn(Entries(4, 5));
  kill(tool.Process(), SIGCONT);
  (void)tool.Lines(5);
  EXPECT_EQ(Stop(&tool),
            (Answer{0, Numbers(1, 5),
                    "qvxctl: warning: /tmp/logs/a.xml: the log was moved with a damaged end: 15 "
                    "bytes from offset " +
                        std::to_string(end) + " are not shown\n"}));
}

TEST_F(CtlFollow, AStateIsKeptOfALogWithoutItsHead) {
  WriteFile(kLog, Entries(1, 3) + kLogClosing);
  EXPECT_EQ(Run(kKeep, 3), Numbers(1, 3));
  EXPECT_EQ(Run(kKeep, 0), "");
}

TEST_F(CtlFollow, AFileThatIsNoStateIsRefused) {
  WriteFile(kState, "no state\n");
  EXPECT_EQ(test::RunTool(kKeep),
            (Answer{3, "", "qvxctl: /tmp/logs/state: holds no place of a log\n"}));
  EXPECT_EQ(test::ReadFile(kState), "no state\n");
}

TEST_F(CtlFollow, AStateOfAnotherLogIsRefused) {
  EXPECT_EQ(Run(kKeep, 3), Numbers(1, 3));
  EXPECT_EQ(test::RunTool({"log", "follow", kBackup, "--state", kState}),
            (Answer{3, "", "qvxctl: /tmp/logs/state: the place belongs to /tmp/logs/a.xml\n"}));
}

TEST_F(CtlFollow, AStateThatIsNoFileIsNamedSo) {
  EXPECT_EQ(test::RunTool({"log", "follow", kLog, "--state", "/tmp/logs"}),
            (Answer{3, "", "qvxctl: /tmp/logs: Is a directory\n"}));
  ASSERT_EQ(mkfifo("/tmp/logs/fifo", 0600), 0);
  EXPECT_EQ(test::RunTool({"log", "follow", kLog, "--state", "/tmp/logs/fifo"}),
            (Answer{3, "", "qvxctl: /tmp/logs/fifo: no regular file\n"}));
}

TEST_F(CtlFollow, AStateIsWrittenThroughNoLinkAndForItsOwnerAlone) {
  WriteFile("/tmp/logs/victim", "precious\n");
  ASSERT_EQ(symlink("victim", "/tmp/logs/state.new"), 0);
  EXPECT_EQ(Run(kKeep, 3), Numbers(1, 3));
  EXPECT_EQ(test::ReadFile("/tmp/logs/victim"), "precious\n");
  struct stat status = {};
  ASSERT_EQ(lstat(kState, &status), 0);
  EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
  EXPECT_EQ(Run(kKeep, 0), "");
}

TEST_F(CtlFollow, AnEntryThatIsCutBackIsNotShown) {
  RunningTool tool(kFollow);
  (void)tool.Lines(3);
  // The disk is full within the closing tag; the library cuts the entry off again.
  const size_t whole = Log(Entries(1, 3)).size();
  Append(Entry(1, "lost") + "</Even");
  usleep(300000);
  ASSERT_EQ(truncate(kLog, static_cast<off_t>(whole - 11)), 0);
  ASSERT_EQ(truncate(kLog, static_cast<off_t>(whole)), 0);
  Append(kLogClosing);
  Append(Entries(4, 4) + kLogClosing);
  (void)tool.Lines(4);
  EXPECT_EQ(Stop(&tool), (Answer{0, Numbers(1, 4), ""}));
}

TEST_F(CtlFollow, AReaderThatHasGoneEndsItAndKeepsThePlaceBefore) {
  EXPECT_EQ(Run(kKeep, 3), Numbers(1, 3));
  RunningTool tool(kKeep);
  usleep(200000);
  tool.CloseOutput();
  Append(Entries(4, 4) + kLogClosing);
  const Answer answer = tool.End();
  EXPECT_EQ(answer, (Answer{3, "", ""}));
  EXPECT_EQ(Run(kKeep, 1), "4\n");
}

// Some thirty-five entries fill a log of 10,000 bytes.
int AppendByLibrary(int from, int to, u32 maximum = 10000) {
  if (ModuleAttach() != 1) return 1;
  for (int at = from; at <= to; ++at) {
    const std::string text = std::to_string(at);
    if (PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, 7, "root", "TEST", text.c_str(), nullptr, 0,
                          maximum) != 0) {
      return 2;
    }
  }
  return 0;
}

TEST_F(CtlFollow, OverManyMovesOfALiveLogNothingIsLostOrShownTwice) {
  ASSERT_EQ(unlink(kLog), 0);
  ASSERT_EQ(test::InChild([] { return AppendByLibrary(1, 1); }), 0);
  RunningTool tool({"log", "follow", kLog, "--id", "7", "--state", kState});
  // The follower has the log open before it moves.
  (void)tool.Lines(1);
  for (int first = 2; first <= 362; first += 60) {
    // Up to two moves between two looks.
    ASSERT_EQ(test::InChild([first] { return AppendByLibrary(first, first + 59); }), 0);
    (void)tool.Lines(static_cast<size_t>(first) + 59);
  }
  EXPECT_EQ(Stop(&tool), (Answer{0, Numbers(1, 421), ""}));
}

TEST_F(CtlFollow, FromALogThatMovesTooFastNothingIsLostInSilence) {
  ASSERT_EQ(unlink(kLog), 0);
  RunningTool tool({"log", "follow", kLog, "--id", "7", "--state", kState});
  ASSERT_EQ(test::InChild([] { return AppendByLibrary(1, 1, 6000); }), 0);
  (void)tool.Lines(1);
  ASSERT_EQ(test::InChild([] { return AppendByLibrary(2, 1000, 6000); }), 0);
  const Answer answer = Stop(&tool);
  EXPECT_EQ(answer.code, 0);
  const bool isWarned = answer.err.find("entries may be lost\n") != std::string::npos;
  EXPECT_TRUE(isWarned || answer.out == Numbers(1, 1000)) << answer.out;
}

}  // namespace
}  // namespace qvx
