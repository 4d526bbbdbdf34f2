// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A restart of the web server closes the process's descriptors; the open role map is still the one
// that is read.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/access.h"
#include "qvxcs/paths.h"

#include "access/user_rights.h"
#include "frame/module.h"
#include "tests/access/accounts.h"

namespace qvx {
namespace {

constexpr u32 kRestart = 3;
constexpr char kUpload[] = "/tmp/upload";
constexpr char kInherited[] = "/run/descriptors";

u32 RightsOf(std::string login) { return get_user_rights(login.data()); }

class Restart : public testing::Test {
 protected:
  void SetUp() override {
    test::OnlyRoot();
    test::WriteFile("/usr/bin/systemctl",
                    std::string("#!/bin/sh\nls -l /proc/$$/fd >") + kInherited + "\n");
    ASSERT_EQ(chmod("/usr/bin/systemctl", 0755), 0);
    (void)unlink("/etc/os-release");
    test::WriteFile("/etc/os-release", "ID=test\n");
    ASSERT_EQ(ModuleAttach(), 1);
  }

  static void RestartTheService() {
    ASSERT_EQ(PXTWebServer(kRestart, 0, nullptr), 0u);
    EXPECT_EQ(test::ReadFile(kInherited).find("qvxrolemap"), std::string::npos);
  }

  // A host file that gets the lowest descriptor, as a web server's next upload does.
  static int OpenUpload(const std::string& text) {
    test::WriteFile(kUpload, text);
    return open(kUpload, O_RDWR | O_CLOEXEC);
  }

  static void ExpectOpen(int upload) {
    struct stat opened = {};
    struct stat named = {};
    ASSERT_EQ(fstat(upload, &opened), 0);
    ASSERT_EQ(stat(kUpload, &named), 0);
    EXPECT_EQ(opened.st_ino, named.st_ino);
  }

  static bool IsLogged(const std::string& text) {
    return test::Exists(test::kCommandLog) &&
           test::ReadFile(test::kCommandLog).find(text) != std::string::npos;
  }
};

TEST_F(Restart, BetweenOpenAndQueryTheRoleMapIsReadAndNoUpload) {
  test::WriteRoleMap("alice * user\n");
  (void)PXTOpenRolemapFile();
  RestartTheService();
  const int upload = OpenUpload("alice,mallory * administrator\n");
  EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_ADMINISTRATOR) << "root's, by the system";
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_USER);
  EXPECT_EQ(RightsOf("mallory"), QVX_PRIV_NONE);
  EXPECT_FALSE(IsLogged("QVXSERVER"));
  ExpectOpen(upload);
}

TEST_F(Restart, BetweenOpenAndQueryAFaultlessRoleMapIsNotLost) {
  test::WriteRoleMap("alice * poweruser\n");
  (void)PXTOpenRolemapFile();
  RestartTheService();
  (void)PXTGetRightsUsingRolemap();
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_POWERUSER);
  EXPECT_FALSE(IsLogged("QVXSERVER"));
}

TEST_F(Restart, AfterAFaultyLineTheNextQueryReadsOnInTheRoleMap) {
  const std::string comment = "#" + std::string(5000, '-') + "\n";  // more than is read at once
  test::WriteRoleMap("alice * nothing\n" + comment + "alice * poweruser\n");
  (void)PXTOpenRolemapFile();
  (void)PXTGetRightsUsingRolemap();
  ASSERT_TRUE(IsLogged("5915"));
  ASSERT_EQ(RightsOf("alice"), QVX_PRIV_USER) << "the built-in lines stand in";
  RestartTheService();
  const int upload = OpenUpload("alice * nothing\n" + comment + "mallory * administrator\n");
  (void)PXTGetRightsUsingRolemap();
  EXPECT_EQ(RightsOf("mallory"), QVX_PRIV_USER) << "the maps in force stay";
  EXPECT_FALSE(IsLogged("5914")) << "the role map is not taken for one without lines";
  ExpectOpen(upload);
}

TEST_F(Restart, AHostsFileUnderTheRoleMapsNumberIsNeverRead) {
  test::WriteRoleMap("alice * user\n");
  const int lowest = dup(STDIN_FILENO);
  (void)close(lowest);
  (void)PXTOpenRolemapFile();
  (void)close(lowest);  // as a daemon's child closes all that it has inherited
  const int upload = OpenUpload("alice,mallory * administrator\n");
  ASSERT_EQ(upload, lowest);
  (void)PXTGetRightsUsingRolemap();
  EXPECT_EQ(RightsOf("mallory"), QVX_PRIV_USER) << "the built-in lines stand in";
  EXPECT_TRUE(IsLogged("5914"));
  ExpectOpen(upload);
}

}  // namespace
}  // namespace qvx
