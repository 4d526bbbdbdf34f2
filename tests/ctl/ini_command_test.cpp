// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "support/processes.h"
#include "tests/ctl/run_tool.h"

namespace qvx {
namespace {

using test::Answer;
using test::ReadFile;
using test::RunTool;
using test::WriteFile;

constexpr char kFile[] = "/tmp/net.ini";
constexpr unsigned kLongHold = 20000000;  // microseconds; a command that waits shows it
const Answer kDone{0, "", ""};

class CtlIni : public ::testing::Test {
 protected:
  void SetUp() override {
    WriteFile(kFile, "[Net]\nport=8080\nname=my host\nmask=0x01,0xAB\non=TRUE\n[Log]\nlevel=-3\n");
  }
};

TEST_F(CtlIni, GetShowsAValueInItsType) {
  EXPECT_EQ(RunTool({"ini", "get", kFile, "Net", "name"}), (Answer{0, "my host\n", ""}));
  EXPECT_EQ(RunTool({"ini", "get", kFile, "Net", "port", "--type", "u32"}).out, "8080\n");
  EXPECT_EQ(RunTool({"ini", "get", kFile, "Log", "level", "--type", "s64"}).out, "-3\n");
  EXPECT_EQ(RunTool({"ini", "get", kFile, "Net", "mask", "--type", "binary"}).out, "0x01,0xAB\n");
  EXPECT_EQ(RunTool({"ini", "get", kFile, "Net", "on", "--type", "booln", "--wait"}).out, "TRUE\n");
}

TEST_F(CtlIni, GetAsJsonKeepsTheType) {
  EXPECT_EQ(RunTool({"ini", "get", kFile, "Net", "port", "--type", "u32", "--json"}).out,
            "{\"section\":\"Net\",\"key\":\"port\",\"type\":\"u32\",\"value\":8080}\n");
}

TEST_F(CtlIni, AMissingKeyOrSectionAnswersNo) {
  EXPECT_EQ(RunTool({"ini", "get", kFile, "Net", "Port"}),
            (Answer{1, "",
                    "qvxctl: ini get: /tmp/net.ini: SM_STATUS_KEY_NOT_FOUND: there is no such "
                    "key\n"}));
  EXPECT_EQ(RunTool({"ini", "get", kFile, "net", "port"}).code, 1);
}

TEST_F(CtlIni, AMissingFileCouldNotBeTold) {
  EXPECT_EQ(RunTool({"ini", "get", "/tmp/none.ini", "a", "b"}),
            (Answer{3, "",
                    "qvxctl: ini get: /tmp/none.ini: SM_STATUS_FILE_OPEN_FAILED: the INI file "
                    "cannot be opened (No such file or directory)\n"}));
}

TEST_F(CtlIni, SetWritesAValueInItsType) {
  EXPECT_EQ(RunTool({"ini", "set", kFile, "Net", "port", "81", "--type", "u32"}), kDone);
  EXPECT_EQ(RunTool({"ini", "set", kFile, "New", "d", "1.5", "--type", "d64"}), kDone);
  EXPECT_EQ(RunTool({"ini", "set", kFile, "New", "t", "A", "--type", "ustring"}), kDone);
  EXPECT_EQ(RunTool({"ini", "set", kFile, "New", "b", "0x0A,FF", "--type", "binary"}), kDone);
  EXPECT_EQ(RunTool({"ini", "get", kFile, "New", "t", "--type", "ustring"}).out, "A\n");
  EXPECT_EQ(ReadFile(kFile),
            "[Net]\nport=81\nname=my host\nmask=0x01,0xAB\non=TRUE\n[Log]\nlevel=-3\n"
            "[New]\nd=1.50000000\nt=0x41,0x00,0x00,0x00\nb=0x0A,0xFF\n");
}

TEST_F(CtlIni, SetTakesPlainDecimalDoublesAlone) {
  const auto set = [](const char* text) {
    return RunTool({"ini", "set", kFile, "New", "d", text, "--type", "d64"});
  };
  for (const char* text :
       {" 1.5", "\t1.5", "+1.5", "0x10", "1,5", "1.5 ", "1.5x", "1e999", "1e-999"}) {
    EXPECT_EQ(set(text).code, 2) << text;
  }
  for (const char* text : {"250", "2.5e2", "2500E-1", "250."}) {
    EXPECT_EQ(set(text), kDone) << text;
    EXPECT_EQ(RunTool({"ini", "get", kFile, "New", "d"}).out, "250.00000000\n") << text;
  }
  EXPECT_EQ(set("1e-310"), kDone);  // less than a normal number
}

TEST_F(CtlIni, SetTakesWhatBeginsWithAMinusAfterTwoOfThem) {
  EXPECT_EQ(RunTool({"ini", "set", kFile, "New", "d", "--type", "d64", "--", "-inf"}), kDone);
  EXPECT_EQ(RunTool({"ini", "get", kFile, "New", "d", "--type", "d64"}).out, "-inf\n");
  EXPECT_EQ(RunTool({"ini", "set", kFile, "Log", "level", "-5", "--type", "s32"}), kDone);
}

TEST_F(CtlIni, InfinityAndNoNumberAreShownAsText) {
  WriteFile(kFile, "[A]\na=inf\nb=-inf\nc=nan\nd=-nan\ne=1.5\n");
  const auto get = [](const char* key, const char* how) {
    return RunTool({"ini", "get", kFile, "A", key, "--type", "d64", how}).out;
  };
  EXPECT_EQ(get("a", "--wait"), "inf\n");
  EXPECT_EQ(get("b", "--wait"), "-inf\n");
  EXPECT_EQ(get("c", "--wait"), "nan\n");
  EXPECT_EQ(get("d", "--wait"), "nan\n");
  EXPECT_EQ(get("e", "--wait"), "1.5\n");
  EXPECT_EQ(get("b", "--json"),
            "{\"section\":\"A\",\"key\":\"b\",\"type\":\"d64\",\"value\":\"-inf\"}\n");
  EXPECT_EQ(get("c", "--json"),
            "{\"section\":\"A\",\"key\":\"c\",\"type\":\"d64\",\"value\":\"nan\"}\n");
}

TEST_F(CtlIni, AFileThatIsNoRegularOneIsCalledSo) {
  const Answer device{3, "",
                      "qvxctl: ini get: /dev/null: SM_STATUS_FILE_OPEN_FAILED: the INI file cannot "
                      "be opened (no regular file)\n"};
  EXPECT_EQ(RunTool({"ini", "get", "/dev/null", "A", "k"}), device);
  EXPECT_EQ(RunTool({"conf", "list", "/dev/null"}),
            (Answer{3, "", "qvxctl: conf list: /dev/null: no regular file\n"}));
}

TEST_F(CtlIni, SetMakesAMissingFile) {
  EXPECT_EQ(RunTool({"ini", "set", "/tmp/new.ini", "A", "k", "v"}), kDone);
  EXPECT_EQ(ReadFile("/tmp/new.ini"), "[A]\nk=v\n");
}

TEST_F(CtlIni, WhatWouldNotBeFoundAgainIsRefused) {
  const std::string before = ReadFile(kFile);
  for (const test::Words& words :
       {test::Words{"A]", "k", "v"}, {"A", "k=", "v"}, {"A", "#k", "v"}, {"A", "k", "v\n[B]"}}) {
    test::Words all = {"ini", "set", kFile};
    all.insert(all.end(), words.begin(), words.end());
    EXPECT_EQ(RunTool(all).code, 2);
  }
  EXPECT_EQ(RunTool({"ini", "set", kFile, "A", "k", "4294967296", "--type", "u32"}).code, 2);
  EXPECT_EQ(RunTool({"ini", "set", kFile, "A", "k", "0x1FF", "--type", "binary"}).code, 2);
  EXPECT_EQ(ReadFile(kFile), before);
}

TEST_F(CtlIni, SetAddsNothingToALastLineWithoutItsEnd) {
  constexpr char kOpen[] = "[Net]\nport=1\n[Log]\nlevel=2";
  WriteFile(kFile, kOpen);
  const Answer refused = {1, "",
                          "qvxctl: ini set: /tmp/net.ini: the last line has no line end: new text "
                          "continues that line; `echo >>FILE` ends it\n"};
  EXPECT_EQ(RunTool({"ini", "set", kFile, "Log", "host", "x"}), refused);
  EXPECT_EQ(RunTool({"ini", "set", kFile, "New", "k", "v"}), refused);
  EXPECT_EQ(ReadFile(kFile), kOpen);
  EXPECT_EQ(RunTool({"ini", "set", kFile, "Net", "port", "9"}), kDone);
  EXPECT_EQ(RunTool({"ini", "set", kFile, "Log", "level", "3"}), kDone);
  EXPECT_EQ(ReadFile(kFile), "[Net]\nport=9\n[Log]\nlevel=3\n");
  EXPECT_EQ(RunTool({"ini", "set", kFile, "New", "k", "v"}), kDone);
}

TEST_F(CtlIni, SetAddsToAnEmptyFile) {
  WriteFile(kFile, "");
  EXPECT_EQ(RunTool({"ini", "set", kFile, "A", "k", "v"}), kDone);
  EXPECT_EQ(RunTool({"ini", "get", kFile, "A", "k"}).out, "v\n");
}

TEST_F(CtlIni, DeleteAnswersNoWhileAnotherLineOfTheKeyIsInForce) {
  const Answer still{1, "",
                     "qvxctl: ini delete: /tmp/net.ini: one line of the key is deleted; another "
                     "line of it is in force now\n"};
  WriteFile(kFile, "[Net]\nport\nport=1\n");
  EXPECT_EQ(RunTool({"ini", "delete", kFile, "Net", "port"}), still);
  EXPECT_EQ(ReadFile(kFile), "[Net]\nport=1\n");
  EXPECT_EQ(RunTool({"ini", "delete", kFile, "Net", "port"}), kDone);
  WriteFile(kFile, "[Net]\nport=1\nport=2\n");
  EXPECT_EQ(RunTool({"ini", "delete", kFile, "Net", "port"}), still);
}

TEST_F(CtlIni, DeleteOfAMissingKeyNamesItsOwnCommand) {
  EXPECT_EQ(RunTool({"ini", "delete", kFile, "Net", "none"}).err.rfind("qvxctl: ini delete: ", 0),
            0u);
}

TEST_F(CtlIni, DeleteTakesAKeyOutAndSaysWhereThereIsNone) {
  EXPECT_EQ(RunTool({"ini", "delete", kFile, "Log", "level"}), kDone);
  EXPECT_EQ(RunTool({"ini", "delete", kFile, "Log", "level"}).code, 1);
  EXPECT_EQ(RunTool({"ini", "delete", "/tmp/none.ini", "Log", "level"}).code, 3);
  EXPECT_EQ(ReadFile(kFile), "[Net]\nport=8080\nname=my host\nmask=0x01,0xAB\non=TRUE\n[Log]\n");
}

TEST_F(CtlIni, ListShowsSectionsAndKeys) {
  EXPECT_EQ(RunTool({"ini", "list", kFile}), (Answer{0, "Net\nLog\n", ""}));
  EXPECT_EQ(RunTool({"ini", "list", kFile, "Net"}).out, "port\nname\nmask\non\n");
  EXPECT_EQ(RunTool({"ini", "list", kFile, "--json"}).out, "{\"sections\":[\"Net\",\"Log\"]}\n");
}

TEST_F(CtlIni, WhereNothingIsToBeListedTheListIsEmpty) {
  for (const char* text : {"", "# nothing\n", "early=1\n"}) {
    WriteFile(kFile, text);
    EXPECT_EQ(RunTool({"ini", "list", kFile}), kDone) << text;
    EXPECT_EQ(RunTool({"ini", "list", kFile, "--json"}), (Answer{0, "{\"sections\":[]}\n", ""}));
  }
  WriteFile(kFile, "[Net]\n[Log]\nlevel=1\n");
  EXPECT_EQ(RunTool({"ini", "list", kFile, "Net"}), kDone);
  EXPECT_EQ(RunTool({"ini", "list", kFile, "Net", "--json"}).out, "{\"keys\":[]}\n");
}

TEST_F(CtlIni, AListOfWhatIsNotThereIsAFault) {
  EXPECT_EQ(RunTool({"ini", "list", kFile, "net"}),
            (Answer{1, "",
                    "qvxctl: ini list: /tmp/net.ini: SM_STATUS_SECTION_NOT_FOUND: the INI file "
                    "has no such section\n"}));
  EXPECT_EQ(RunTool({"ini", "list", "/tmp/none.ini"}).code, 3);
  EXPECT_EQ(RunTool({"ini", "list", "/tmp/none.ini", "--json"}).out, "");
  WriteFile(kFile, "[Bad\n");
  EXPECT_EQ(RunTool({"ini", "list", kFile}).code, 1);
}

TEST_F(CtlIni, AListLongerThanTheFirstRoomIsWhole) {
  std::string file;
  std::string expected;
  for (int at = 10000; at < 20000; ++at) {
    file += "[section " + std::to_string(at) + "]\n";
    expected += "section " + std::to_string(at) + "\n";
  }
  WriteFile(kFile, file);
  EXPECT_EQ(RunTool({"ini", "list", kFile}), (Answer{0, expected, ""}));
}

TEST_F(CtlIni, AHeldLockEndsTheCommandAndNamesItsHolder) {
  test::WriteFile(kIPCFilePath, "");
  test::LockHolder holder;
  const Answer answer = RunTool({"ini", "get", kFile, "Net", "port"});
  EXPECT_EQ(answer.code, 3);
  EXPECT_EQ(answer.err.rfind("qvxctl: ini get: SM_STATUS_LOCK_FAILED: the suite's file lock could "
                             "not be taken: held by process ",
                             0),
            0u)
      << answer.err;
  EXPECT_NE(answer.err.find("qvx_ctl_tests"), std::string::npos) << answer.err;
}

TEST_F(CtlIni, AReaderOfTheLockEndsTheCommandAndIsNamed) {
  test::WriteFile(kIPCFilePath, "");
  const std::string before = ReadFile(kFile);
  for (const test::Words& words : {test::Words{"ini", "get", kFile, "Net", "port"},
                                   {"ini", "set", kFile, "Net", "port", "1"},
                                   {"ini", "list", kFile},
                                   {"ini", "delete", kFile, "Net", "port"}}) {
    test::LockHolder reader(kIPCFilePath, kLongHold, F_RDLCK);
    const Answer answer = RunTool(words);
    EXPECT_EQ(answer.code, 3) << words[1];
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err.rfind("qvxctl: ini " + words[1] +
                                   ": SM_STATUS_LOCK_FAILED: the suite's file lock could not be "
                                   "taken: held by process ",
                               0),
              0u)
        << answer.err;
    EXPECT_TRUE(answer.err.ends_with("), which reads\n")) << answer.err;
  }
  EXPECT_EQ(ReadFile(kFile), before);
}

TEST_F(CtlIni, AReaderOfTheLockDoesNotBlockAUserWhoMayOnlyReadIt) {
  test::WriteFile(kIPCFilePath, "");
  ASSERT_EQ(chmod(kIPCFilePath, 0644), 0);
  ASSERT_EQ(chmod(kFile, 0644), 0);
  test::LockHolder reader(kIPCFilePath, kLongHold, F_RDLCK);
  EXPECT_EQ(test::RunToolAsNobody({"ini", "get", kFile, "Net", "port", "--wait"}),
            (Answer{0, "8080\n", ""}));
  EXPECT_FALSE(test::LockIsFree());
  const Answer answer = test::RunToolAsNobody({"ini", "get", kFile, "Net", "port"});
  EXPECT_EQ(answer.code, 3);
  EXPECT_EQ(answer.err.find("process"), std::string::npos) << answer.err;
}

TEST_F(CtlIni, WithWaitAHeldLockIsWaitedFor) {
  test::WriteFile(kIPCFilePath, "");
  test::LockHolder holder(kIPCFilePath, 300000);
  EXPECT_EQ(RunTool({"ini", "get", kFile, "Net", "port", "--wait"}), (Answer{0, "8080\n", ""}));
}

TEST_F(CtlIni, LintTellsWhatTheReaderSkipsOrRefuses) {
  WriteFile(kFile,
            "early=1\n"
            "[A] rest\n"
            " # note = 1\n"
            "key = 2\r\n"
            "no sign\n"
            "x=1\n"
            "x=2\n"
            "[A]\n"
            "[Bad\n"
            "last=1");
  EXPECT_EQ(RunTool({"ini", "lint", kFile}),
            (Answer{1,
                    "/tmp/net.ini:1: warning: key \"early\" is before the first section\n"
                    "/tmp/net.ini:2: warning: what follows the \"]\" is not read\n"
                    "/tmp/net.ini:3: warning: a comment begins in the first column; this is key "
                    "\"# note \"\n"
                    "/tmp/net.ini:3: warning: the blank before the \"=\" belongs to the key "
                    "\"# note \"\n"
                    "/tmp/net.ini:3: warning: the blank after the \"=\" belongs to the value\n"
                    "/tmp/net.ini:4: warning: the blank before the \"=\" belongs to the key "
                    "\"key \"\n"
                    "/tmp/net.ini:4: warning: the blank after the \"=\" belongs to the value\n"
                    "/tmp/net.ini:4: warning: the carriage return belongs to the value\n"
                    "/tmp/net.ini:5: warning: no \"=\": the line is skipped\n"
                    "/tmp/net.ini:7: warning: key \"x\" is in line 6 already, which is the one "
                    "that is read\n"
                    "/tmp/net.ini:8: warning: section \"A\" was begun in line 2 and is searched "
                    "there alone\n"
                    "/tmp/net.ini:9: fault: a header without \"]\": nothing from here on is found "
                    "or can be set\n"
                    "/tmp/net.ini:10: warning: the last line has no line end: new text continues "
                    "that line\n",
                    ""}));
}

TEST_F(CtlIni, LintOfACleanFileSaysNothing) {
  EXPECT_EQ(RunTool({"ini", "lint", kFile}), kDone);
  EXPECT_EQ(RunTool({"ini", "lint", kFile, "--json"}).out,
            "{\"file\":\"/tmp/net.ini\",\"findings\":[]}\n");
  EXPECT_EQ(RunTool({"ini", "lint", "/tmp/none.ini"}).code, 3);
}

TEST_F(CtlIni, LintTellsALineThatIsReadAsSeveral) {
  WriteFile(kFile, "[A]\nkey=" + std::string(9000, 'v') + "\nend=1\n[A\0B]\n");
  const Answer answer = RunTool({"ini", "lint", kFile});
  EXPECT_NE(answer.out.find("/tmp/net.ini:2: warning: longer than 8449 characters"),
            std::string::npos)
      << answer.out;
}

TEST_F(CtlIni, AnOrdinaryUserWhoMayNotOpenTheLockIsToldSo) {
  test::WriteFile(kIPCFilePath, "");
  ASSERT_EQ(chmod(kIPCFilePath, 0600), 0);
  ASSERT_EQ(chmod(kFile, 0644), 0);
  EXPECT_EQ(test::RunToolAsNobody({"ini", "get", kFile, "Net", "port"}),
            (Answer{3, "",
                    "qvxctl: ini get: /etc/cim/zarn/plinthos/var/lib/vexilon/.qvxipc: "
                    "SM_STATUS_LOCK_FAILED: the suite's file lock could not be taken (Permission "
                    "denied)\n"}));
}

constexpr char kPairs[] = "/tmp/a.properties";

class CtlConf : public ::testing::Test {
 protected:
  void SetUp() override { WriteFile(kPairs, "a=1\n# c=2\nb = \"x y\"\na=3\n"); }
};

TEST_F(CtlConf, GetShowsTheValueOfAnOccurrence) {
  EXPECT_EQ(RunTool({"conf", "get", kPairs, "b"}), (Answer{0, "x y\n", ""}));
  EXPECT_EQ(RunTool({"conf", "get", kPairs, "a", "--index", "1"}).out, "3\n");
  EXPECT_EQ(RunTool({"conf", "get", kPairs, "b", "--json"}).out,
            "{\"key\":\"b\",\"value\":\"x y\"}\n");
}

TEST_F(CtlConf, AMissingKeyAnswersNoAndAMissingFileCouldNotBeTold) {
  EXPECT_EQ(RunTool({"conf", "get", kPairs, "c"}).code, 1);
  EXPECT_EQ(RunTool({"conf", "get", "/tmp/none", "c"}),
            (Answer{3, "", "qvxctl: conf get: /tmp/none: No such file or directory\n"}));
  EXPECT_EQ(RunTool({"conf", "set", "/tmp/none", "c", "1"}).code, 3);
}

TEST_F(CtlConf, ListShowsEveryEntry) {
  EXPECT_EQ(RunTool({"conf", "list", kPairs}), (Answer{0, "a=1\nb=x y\na=3\n", ""}));
  WriteFile(kPairs, "# nothing\n");
  EXPECT_EQ(RunTool({"conf", "list", kPairs}), (Answer{0, "", ""}));
  EXPECT_EQ(RunTool({"conf", "list", kPairs, "--json"}).out, "[]\n");
}

TEST_F(CtlConf, ALockThatMayNotBeOpenedIsNoFileWithoutEntries) {
  test::WriteFile(kIPCFilePath, "");
  ASSERT_EQ(chmod(kIPCFilePath, 0660), 0);
  ASSERT_EQ(chmod(kPairs, 0644), 0);
  const Answer answer = test::RunToolAsNobody({"conf", "get", kPairs, "a"});
  EXPECT_EQ(answer.code, 3);
  EXPECT_EQ(answer.out, "");
  EXPECT_EQ(answer.err,
            "qvxctl: conf get: /etc/cim/zarn/plinthos/var/lib/vexilon/.qvxipc: "
            "SM_STATUS_LOCK_FAILED: the suite's file lock could not be taken (Permission "
            "denied)\n");
  EXPECT_EQ(test::RunToolAsNobody({"conf", "list", kPairs, "--json"}).code, 3);
}

TEST_F(CtlConf, ALibraryThatIsKeptOutIsNoFileWithoutEntries) {
  test::WriteFile(kIPCFilePath, "");
  test::WriteFile(kIPCConfigPath, "ipcnamebase=-30000\n");
  for (const test::Words& words : {test::Words{"get", kPairs, "a"}, {"list", kPairs}}) {
    test::Words all = {"conf"};
    all.insert(all.end(), words.begin(), words.end());
    EXPECT_EQ(RunTool(all), (Answer{3, "",
                                    "qvxctl: conf " + words[0] +
                                        ": SM_STATUS_LOCK_FAILED: the suite's file lock could not "
                                        "be taken\n"}));
  }
}

TEST_F(CtlConf, AFileWithoutEntriesIsNoFaultWhateverItsLines) {
  for (const char* text : {"", "[\n", "[a]\n", "nothing\n"}) {
    WriteFile(kPairs, text);
    EXPECT_EQ(RunTool({"conf", "list", kPairs}), kDone) << text;
    EXPECT_EQ(RunTool({"conf", "get", kPairs, "a"}).code, 1) << text;
  }
}

TEST_F(CtlConf, AMissingLockFolderIsNoFileWithoutEntries) {
  ASSERT_EQ(rename("/etc/cim/zarn/plinthos/var/lib/vexilon", "/etc/cim/away"), 0);
  EXPECT_EQ(RunTool({"conf", "get", kPairs, "a"}).code, 3);
  const Answer list = RunTool({"conf", "list", kPairs, "--json"});
  EXPECT_EQ(list.code, 3);
  EXPECT_EQ(list.out, "");
  EXPECT_NE(list.err.find("conf list: "), std::string::npos) << list.err;
  EXPECT_NE(list.err.find("(No such file or directory)"), std::string::npos) << list.err;
}

TEST_F(CtlConf, SetReplacesOrAppendsAndQuotesBlanksAtTheEnds) {
  EXPECT_EQ(RunTool({"conf", "set", kPairs, "a", "4", "--index", "1"}), kDone);
  EXPECT_EQ(RunTool({"conf", "set", kPairs, "new", " two words "}), kDone);
  EXPECT_EQ(ReadFile(kPairs), "a=1\n# c=2\nb = \"x y\"\na=4\nnew=\" two words \"\n");
  EXPECT_EQ(RunTool({"conf", "get", kPairs, "new"}).out, " two words \n");
}

TEST_F(CtlConf, SetAddsNothingToALastLineWithoutItsEnd) {
  WriteFile(kPairs, "a=1");
  EXPECT_EQ(RunTool({"conf", "set", kPairs, "b", "2"}),
            (Answer{1, "",
                    "qvxctl: conf set: /tmp/a.properties: the last line has no line end: new text "
                    "continues that line; `echo >>FILE` ends it\n"}));
  EXPECT_EQ(RunTool({"conf", "set", kPairs, "a", "2", "--index", "1"}).code, 1);
  EXPECT_EQ(ReadFile(kPairs), "a=1");
  EXPECT_EQ(RunTool({"conf", "set", kPairs, "a", "2"}), kDone);
  EXPECT_EQ(ReadFile(kPairs), "a=2\n");
}

TEST_F(CtlConf, WhatWouldBeReadOtherwiseIsRefused) {
  EXPECT_EQ(RunTool({"conf", "set", kPairs, "a b", "1"}).code, 2);
  EXPECT_EQ(RunTool({"conf", "set", kPairs, "#a", "1"}).code, 2);
  EXPECT_EQ(RunTool({"conf", "set", kPairs, "a", "say \"x\""}).code, 2);
  EXPECT_EQ(RunTool({"conf", "set", kPairs, "a", "1", "--index", "7"}).code, 1);
}

}  // namespace
}  // namespace qvx
