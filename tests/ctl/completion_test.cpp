// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "tests/ctl/run_tool.h"

namespace qvx {
namespace {

constexpr char kFile[] = "/tmp/done.ini";

std::string Quoted(const std::string& word) { return " '" + word + "'"; }

// What bash offers for the last of the words, which are as they are typed; one a line.
std::string Offers(const test::Words& words) {
  const std::string program = QVX_CTL_PROGRAM;
  std::string command = "PATH=" + program.substr(0, program.rfind('/')) +
                        ":$PATH bash -c '. \"$0\"; COMP_WORDS=(qvxctl \"$@\"); COMP_CWORD=$#; "
                        "_qvxctl; printf \"%s\\n\" \"${COMPREPLY[@]}\"'" +
                        Quoted(QVX_CTL_COMPLETION);
  for (const std::string& word : words) {
    command += Quoted(word);
  }
  FILE* const stream = popen(command.c_str(), "re");
  std::string text;
  char piece[4096];
  for (size_t got = 1; stream != nullptr && got != 0;) {
    got = fread(piece, 1, sizeof(piece), stream);
    text.append(piece, got);
  }
  if (stream != nullptr) pclose(stream);
  return text;
}

class CtlCompletion : public ::testing::Test {
 protected:
  void SetUp() override {
    test::RequireSandbox();
    test::WriteFile(kFile, "[Net]\nport=1\nname=x\n[My Sec]\nmy key=2\n[My Set]\n");
  }
};

TEST_F(CtlCompletion, SectionsAndKeysAreOfferedFromTheFile) {
  EXPECT_EQ(Offers({"ini", "get", kFile, "N"}), "Net\n");
  EXPECT_EQ(Offers({"ini", "delete", kFile, "Net", ""}), "port\nname\n");
  EXPECT_EQ(Offers({"ini", "list", kFile, ""}), "Net\nMy Sec\nMy Set\n");
}

TEST_F(CtlCompletion, OptionsBeforeTheFileDoNotCount) {
  EXPECT_EQ(Offers({"ini", "get", "--type", "u32", kFile, "N"}), "Net\n");
  EXPECT_EQ(Offers({"ini", "get", "--wait", kFile, "--type", "u32", "Net", "p"}), "port\n");
  EXPECT_EQ(Offers({"ini", "get", "--type", "u32", "/tmp/done."}), "/tmp/done.ini\n");
}

TEST_F(CtlCompletion, NamesMayBeEscapedOrQuoted) {
  EXPECT_EQ(Offers({"ini", "get", kFile, "My\\ Se"}), "My Sec\nMy Set\n");
  EXPECT_EQ(Offers({"ini", "get", kFile, "\"My Sec"}), "My Sec\n");
  EXPECT_EQ(Offers({"ini", "get", kFile, "My\\ Sec", "m"}), "my key\n");
  EXPECT_EQ(Offers({"ini", "get", kFile, "\"My Sec\"", ""}), "my key\n");
}

TEST_F(CtlCompletion, LintTakesAFileAlone) {
  EXPECT_EQ(Offers({"ini", "lint", "/tmp/done."}), "/tmp/done.ini\n");
  EXPECT_EQ(Offers({"ini", "lint", kFile, ""}), "\n");
  EXPECT_EQ(Offers({"ini", "set", kFile, "Net", "port", ""}), "\n");
}

TEST_F(CtlCompletion, ANameRunsNothing) {
  test::WriteFile(kFile, "[$(touch /tmp/ran)]\n$(touch /tmp/ran)=1\n");
  EXPECT_EQ(Offers({"ini", "get", kFile, ""}), "$(touch /tmp/ran)\n");
  EXPECT_EQ(Offers({"ini", "get", kFile, "$(touch /tmp/ran)", ""}), "$(touch /tmp/ran)\n");
  EXPECT_NE(access("/tmp/ran", F_OK), 0);
}

}  // namespace
}  // namespace qvx
