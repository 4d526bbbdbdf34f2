// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "qvxcs/status.h"

#include "ctl/output.h"
#include "ctl/status_table.h"
#include "tests/ctl/log_texts.h"
#include "tests/ctl/run_tool.h"

namespace qvx {
namespace {

using ctl::CutToWidth;
using ctl::OneLine;
using test::Answer;
using test::RunningTool;
using test::RunTool;

constexpr char kLockText[] =
    "SM_STATUS_LOCK_FAILED\n"
    "meaning:    the suite's file lock could not be taken\n"
    "what to do: `qvxctl lock` shows who holds it; `qvxctl doctor` checks the lock file\n";

TEST(CtlStatus, ANumberIsDecimalOrHexadecimal) {
  EXPECT_EQ(RunTool({"status", "11"}), (Answer{0, kLockText, ""}));
  EXPECT_EQ(RunTool({"status", "0x0B"}), (Answer{0, kLockText, ""}));
}

TEST(CtlStatus, MinusOneIsTheStatusOfAllBits) {
  EXPECT_EQ(RunTool({"status", "-1"}), RunTool({"status", "0xFFFFFFFF"}));
  EXPECT_EQ(RunTool({"status", "-1"}).code, 0);
}

TEST(CtlStatus, AValueThatIsNoStatusAnswersNo) { EXPECT_EQ(RunTool({"status", "4711"}).code, 1); }

TEST(CtlStatus, JsonHasNameMeaningAndAdvice) {
  EXPECT_EQ(RunTool({"status", "263", "--json"}).out,
            "{\"value\":263,\"known\":true,\"name\":\"SM_STATUS_KEY_NOT_FOUND\",\"meaning\":"
            "\"there is no such key\",\"advice\":\"`qvxctl ini list FILE SECTION` or `qvxctl conf "
            "list FILE` shows the keys; case and blanks count\"}\n");
}

TEST(CtlStatus, EveryStatusOfTheCatalogueHasItsEntry) {
  constexpr u32 kCatalogue[] = {0x00,  0x02,  0x03,  0x07,  0x0B,  0x0F,  0x10,
                                0x11,  0x13,  0x100, 0x101, 0x102, 0x104, 0x105,
                                0x106, 0x107, 0x108, 0x10E, 0x10F, 0x110, 0x2018};
  for (const u32 status : kCatalogue)
    EXPECT_TRUE(ctl::IsStatus(status)) << status;
  EXPECT_FALSE(ctl::IsStatus(0x103));
}

TEST(CtlUsage, AWrongCommandLineEndsWithTwo) {
  for (const test::Words& words : {test::Words{},
                                   {"nothing"},
                                   {"status"},
                                   {"status", "x"},
                                   {"status", "1", "2"},
                                   {"status", "1", "--jason"}}) {
    const Answer answer = RunTool(words);
    EXPECT_EQ(answer.code, 2);
    EXPECT_NE(answer.err, "");
  }
}

TEST(CtlUsage, AFaultOfTheCommandLineIsToldInTheToolsName) {
  EXPECT_EQ(RunTool({"status"}).err, "qvxctl: NUMBER is required (see qvxctl --help)\n");
  EXPECT_EQ(RunTool({"conf", "get", "/tmp/a", "k", "--index", "-1"}).err.rfind("qvxctl: ", 0), 0u);
}

TEST(CtlUsage, ANumberOutOfRangeIsToldWithItsRange) {
  for (const char* number : {"-1", "4294967296", "x"}) {
    const Answer answer = RunTool({"conf", "get", "/tmp/a", "k", "--index", number});
    EXPECT_EQ(answer.code, 2);
    EXPECT_NE(answer.err.find(std::string("--index = ") + number +
                              ": a whole number from 0 to 4294967295"),
              std::string::npos)
        << answer.err;
  }
}

TEST(CtlUsage, AnOptionBeforeItsSubcommandIsToldItsPlace) {
  const Answer answer = RunTool({"--type", "u32", "ini", "get", "/tmp/a.ini", "A", "k"});
  EXPECT_EQ(answer.code, 2);
  EXPECT_NE(answer.err.find("options come after the subcommand"), std::string::npos) << answer.err;
  EXPECT_EQ(RunTool({"status", "1", "--jason"}).err.find("options come after"), std::string::npos);
}

TEST(CtlUsage, AnUnknownSubcommandIsNamed) {
  EXPECT_EQ(
      RunTool({"foo"}),
      (Answer{2, "", "qvxctl: A subcommand is required, \"foo\" is none (see qvxctl --help)\n"}));
  EXPECT_EQ(
      RunTool({"log", "shw", "a.xml"}),
      (Answer{2, "", "qvxctl: A subcommand is required, \"shw\" is none (see qvxctl --help)\n"}));
  EXPECT_EQ(RunTool({"log"}).err, "qvxctl: A subcommand is required (see qvxctl --help)\n");
}

TEST(CtlUsage, AnArgumentThatIsTakenForAnOptionIsToldItsPlace) {
  const auto missing = [](const std::string& name) {
    return Answer{2, "",
                  "qvxctl: " + name +
                      " is required: an argument that begins with \"-\" comes after \"--\", "
                      "behind the options (see qvxctl --help)\n"};
  };
  EXPECT_EQ(RunTool({"conf", "set", "/tmp/a", "k", "-x"}), missing("VALUE"));
  EXPECT_EQ(RunTool({"ini", "set", "/tmp/a.ini", "A", "k", "-inf", "--type", "d64"}),
            missing("VALUE"));
  EXPECT_EQ(RunTool({"ini", "get", "/tmp/a.ini", "A", "-k"}), missing("KEY"));
  EXPECT_EQ(RunTool({"conf", "get", "/tmp/a", "--json"}).err,
            "qvxctl: KEY is required (see qvxctl --help)\n");
}

TEST(CtlUsage, HelpIsAnAnswer) {
  const Answer answer = RunTool({"status", "--help"});
  EXPECT_EQ(answer.code, 0);
  EXPECT_NE(answer.out.find("NUMBER"), std::string::npos);
}

TEST(CtlUsage, AFullDiskIsToldWithItsReason) {
  // /dev/full refuses what is written to it.
  const std::string line = std::string(QVX_CTL_PROGRAM) + " status 0 >/dev/full 2>/tmp/full.err";
  EXPECT_EQ(WEXITSTATUS(system(line.c_str())), 3);
  EXPECT_EQ(test::ReadFile("/tmp/full.err"), "qvxctl: stdout: No space left on device\n");
}

TEST(CtlUsage, AFullDiskIsToldOfHelpToo) {
  for (const char* words : {"--help", "--version", "log show --help"}) {
    const std::string line =
        std::string(QVX_CTL_PROGRAM) + " " + words + " >/dev/full 2>/tmp/full.err";
    EXPECT_EQ(WEXITSTATUS(system(line.c_str())), 3) << words;
    EXPECT_EQ(test::ReadFile("/tmp/full.err"), "qvxctl: stdout: No space left on device\n");
  }
}

TEST(CtlUsage, AReaderThatHasGoneEndsTheCommandInSilence) {
  const std::string line = "bash -c '" + std::string(QVX_CTL_PROGRAM) +
                           " --help 2>/tmp/gone.err | true; exit ${PIPESTATUS[0]}'";
  const int code = WEXITSTATUS(system(line.c_str()));
  EXPECT_TRUE(code == 3 || code == 0) << code;  // 0 when the text was taken before the end
  EXPECT_EQ(test::ReadFile("/tmp/gone.err"), "");
}

TEST(CtlOutput, RowsOfALogAreCutAtATerminalsWidth) {
  test::WriteFile("/tmp/rows.xml", test::Log(test::Entry(1700000000, "one")));
  EXPECT_EQ(RunningTool({"log", "show", "/tmp/rows.xml"}, 24).End(),
            (Answer{0, "2023-11-14 22:13:20 srv1\r\n", ""}));
}

TEST(CtlOutput, ExplanationsAreWholeOnANarrowTerminal) {
  EXPECT_NE(RunningTool({"status", "11"}, 20)
                .End()
                .out.find("meaning:    the suite's file lock could not be taken\r\n"),
            std::string::npos);
  const Answer doctor = RunningTool({"doctor"}, 20).End();
  EXPECT_NE(doctor.out.find("mend: systemd-tmpfiles --create\r\n"), std::string::npos)
      << doctor.out;
  const Answer rights = RunningTool({"rights", "root"}, 20).End();
  EXPECT_NE(rights.out.find("rights: administrator, superuser (0x40007)"), std::string::npos)
      << rights.out;
  test::WriteFile("/tmp/narrow.map", "* * boss\n");
  const Answer check = RunningTool({"rolemap", "check", "/tmp/narrow.map"}, 20).End();
  EXPECT_NE(check.out.find("the role is none of administrator, poweruser and user\r\n"),
            std::string::npos)
      << check.out;
}

TEST(CtlOutput, ColorsAreForTerminalsOnly) {
  setenv("TERM", "xterm", 1);
  EXPECT_NE(RunningTool({"status", "11"}, 80).End().out.find("\033[1m"), std::string::npos);
  EXPECT_EQ(RunTool({"status", "11"}).out.find('\033'), std::string::npos);
  setenv("NO_COLOR", "1", 1);
  EXPECT_EQ(RunningTool({"status", "11"}, 80).End().out.find('\033'), std::string::npos);
  unsetenv("NO_COLOR");
}

TEST(CtlOutput, ControlCharactersAndBytesThatAreNoTextAreEscaped) {
  ctl::ChooseLocale();
  EXPECT_EQ(OneLine("a\033[2Jb\r\nc"), "a\\x1b[2Jb\\x0d\\x0ac");
  EXPECT_EQ(OneLine("\xC3\xAB\xFF|\xC3"), "\xC3\xAB\\xff|\\xc3");
  EXPECT_EQ(OneLine("\xE2\x80\xAEx"), "\\xe2\\x80\\xaex");
  EXPECT_EQ(OneLine(std::string("a\0b", 3)), "a\\x00b");
}

TEST(CtlOutput, AWideCharacterTakesTwoColumns) {
  ctl::ChooseLocale();
  EXPECT_EQ(CutToWidth("a\xE6\x97\xA5z", 3), "a\xE6\x97\xA5");
  EXPECT_EQ(CutToWidth("a\xE6\x97\xA5z", 2), "a");
  EXPECT_EQ(CutToWidth("abc", 3), "abc");
}

}  // namespace
}  // namespace qvx
