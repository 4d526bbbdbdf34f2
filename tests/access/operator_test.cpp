// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The suite's calls from the process of an ordinary user, who may read the lock file and the
// settings but may write neither those nor the logs.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "qvxcs/access.h"
#include "qvxcs/command_log.h"
#include "qvxcs/ini_file.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/memory.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "base/layout.h"
#include "frame/module.h"
#include "support/files.h"
#include "support/kill_at_stop.h"
#include "support/processes.h"
#include "tests/access/accounts.h"

namespace qvx {
namespace {

constexpr uid_t kAlice = 7001;
constexpr gid_t kUsers = 7100;
constexpr u32 kFailed = 0xFFFFFFFF;
constexpr s32 kText = 1;
constexpr s32 kNumber = 5;

const std::string kIniFolder = kIniFileDirectory;
const char kPairs[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/a.properties";

// An old log with room for one entry.
constexpr char kLogText[] =
    "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?>"
    "<EventLog></EventLog>";

class Operator : public ::testing::Test {
 protected:
  void SetUp() override {
    test::OnlyRoot();
    test::AddGroup("users", kUsers);
    test::AddUser("alice", kAlice, kUsers, test::Hash("Wonder-1and"));
    test::AddUser("bob", 7002, kUsers, test::Hash("Builder-2"));
    test::UnixPamService("qvauth");
    test::WriteFile(kIPCFilePath, "");
    ASSERT_EQ(chmod(kIPCFilePath, 0644), 0);
    test::WriteFile(kIniFolder + "a.ini", "[first]\nkey=value\nnumber=7\n");
    test::WriteFile(kIniFolder + "secret.ini", "[first]\nkey=value\nnumber=7\n");
    ASSERT_EQ(chmod((kIniFolder + "secret.ini").c_str(), 0600), 0);
    test::WriteFile(kPairs, "key=value\n");
    test::WriteFile(test::kCommandLog, kLogText);
    ASSERT_EQ(chmod(test::kCommandLog, 0644), 0);
    test::WriteRoleMap("alice * administrator\n", 0640);
  }

  // Runs as alice, in a process that loads the library; the child checks the expectations.
  template <typename Body>
  static void AsAlice(Body body) {
    const int status = test::InChild([&body] {
      EXPECT_EQ(setgroups(0, nullptr), 0);
      EXPECT_EQ(setgid(kUsers), 0);
      EXPECT_EQ(setuid(kAlice), 0);
      EXPECT_EQ(ModuleAttach(), 1);
      body();
      EXPECT_TRUE(test::LockIsFree());
      (void)fflush(nullptr);
      return testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(status, 0);
  }

  static u32 LogCount(const std::string& text) {
    const std::string log = test::ReadFile(test::kCommandLog);
    u32 count = 0;
    for (size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) {
      ++count;
    }
    return count;
  }
};

TEST_F(Operator, HasTheRightsOfAUserOfItsOwn) {
  AsAlice([] {
    EXPECT_EQ(PXTGetProcessRights(), QVX_PRIV_USER);
    astring* const name = PXTGetProcessUser();
    EXPECT_STREQ(name, "alice");
    PXTFreeMem(name);
    const ustring alice[] = {'a', 'l', 'i', 'c', 'e', 0};
    const ustring root[] = {'r', 'o', 'o', 't', 0};
    EXPECT_EQ(PXTAuthorizeUser(nullptr, alice), QVX_PRIV_USER);
    EXPECT_EQ(PXTAuthorizeUser(nullptr, root), u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
  });
}

TEST_F(Operator, TheBuiltInLinesStandInForARoleMapThatItMayNotRead) {
  AsAlice([] {
    EXPECT_EQ(PXTOpenRolemapFile(), 0u);
    EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_USER) << "not the administrator of the file";
  });
  EXPECT_EQ(test::ReadFile(test::kCommandLog), kLogText) << "it may not write that either";
}

TEST_F(Operator, ItsRoleMapFaultIsLoggedWhereTheLogIsItsGroups) {
  ASSERT_EQ(chown(test::kCommandLog, 0, kUsers), 0);
  ASSERT_EQ(chmod(test::kCommandLog, 01664), 0);
  AsAlice([] { EXPECT_EQ(PXTOpenRolemapFile(), 0u); });
  EXPECT_EQ(LogCount("<ID>5912</ID>"), 1u) << "0x1718, a failed open";
  EXPECT_EQ(LogCount("<LogEntry>"), 1u);
  AsAlice([] {
    EXPECT_EQ(PXTOpenRolemapFile(), 0u);
    EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_USER);
  });
  EXPECT_EQ(LogCount("<ID>5912</ID>"), 2u);
  EXPECT_EQ(LogCount("<ID>5914</ID>"), 1u) << "0x171A: the query finds no records";
  EXPECT_EQ(LogCount("<Parameter name=\"line\" value=\"0\"/>"), 3u);
}

TEST_F(Operator, ReadsSettingsUnderASharedLock) {
  AsAlice([] {
    char value[16] = {};
    u32 size = sizeof(value);
    EXPECT_EQ(PXTReadINIPathFileValue("first", "key", kText, value, &size, nullptr, 0,
                                      (kIniFolder + "a.ini").c_str(), QVX_LOCK_WAIT),
              SM_STATUS_SUCCESS);
    EXPECT_STREQ(value, "value");
    EXPECT_EQ(size, 6u);
    u32 count = 0;
    PXTKeyValue* const pairs = PXTCFGGetKeyValueEntries(kPairs, &count);
    EXPECT_EQ(count, 1u);
    EXPECT_STREQ(PXTCFGGetKeyValue(pairs, count, "key", 0), "value");
    PXTCFGFreeKeyValueEntries(pairs, count);
  });
}

TEST_F(Operator, AFileThatItMayNotReadIsAnOpenFailure) {
  AsAlice([] {
    const std::string path = kIniFolder + "secret.ini";
    char text[16] = "untouched";
    u32 size = sizeof(text);
    EXPECT_EQ(PXTReadINIPathFileValue("first", "key", kText, text, &size, "default", 8,
                                      path.c_str(), QVX_LOCK_WAIT),
              SM_STATUS_FILE_OPEN_FAILED);
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(size, 16u);
    u32 number = 0;
    size = sizeof(number);
    const u32 standard = 9;
    EXPECT_EQ(PXTReadINIPathFileValue("first", "number", kNumber, &number, &size, &standard, 4,
                                      path.c_str(), QVX_LOCK_WAIT),
              SM_STATUS_FILE_OPEN_FAILED);
    EXPECT_EQ(number, 9u);
    EXPECT_EQ(size, 4u);
  });
}

TEST_F(Operator, WritesNoSettings) {
  AsAlice([] {
    for (const char* name : {"a.ini", "secret.ini", "new.ini"}) {
      for (const char* section : {"first", "new"}) {
        EXPECT_EQ(PXTWriteINIPathFileValue(section, "key", kText, "other", 6,
                                           (kIniFolder + name).c_str(), QVX_LOCK_WAIT),
                  SM_STATUS_FILE_OPEN_FAILED)
            << name << section;
      }
    }
    EXPECT_EQ(PXTWriteINIPathFileValue("first", "key", kText, "other", 6,
                                       (kIniFolder + "folder/a.ini").c_str(), QVX_LOCK_WAIT),
              kFailed)
        << "the folder cannot be made";
    astring key[] = "key";
    astring value[] = "other";
    const PXTKeyValue pair = {key, value};
    EXPECT_EQ(PXTCFGSetKeyValue(kPairs, &pair, 0), SM_STATUS_FILE_OPEN_ERROR);
  });
  EXPECT_EQ(test::ReadFile(kIniFolder + "a.ini"), "[first]\nkey=value\nnumber=7\n");
  EXPECT_EQ(test::ReadFile(kIniFolder + "secret.ini"), "[first]\nkey=value\nnumber=7\n");
  EXPECT_EQ(test::ReadFile(kPairs), "key=value\n");
  EXPECT_EQ(test::ModeOf(kIniFolder + "a.ini"), 0644u);
  EXPECT_EQ(test::ModeOf(kIniFolder + "secret.ini"), 0600u);
  EXPECT_FALSE(test::Exists(kIniFolder + "new.ini"));
  EXPECT_FALSE(test::Exists(kIniFolder + "pxtini32.tmp"));
}

TEST_F(Operator, ReadsTheLogAndCannotChangeIt) {
  AsAlice([] {
    EXPECT_EQ(PXTAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "alice", "test", "text", QVX_LOG_INFORMATION),
              kFailed);
    EXPECT_EQ(PXTClearCmdLog("alice", "test"), kFailed);
    EXPECT_EQ(PXTAppendToXMLLog(test::kCommandLog, QVX_LOG_INFORMATION, 1, "alice", "test", "text",
                                nullptr, 0, 1),
              kFailed)
        << "the backup fails quietly, the append does not";
    u32 size = 0;
    EXPECT_EQ(PXTGetCmdLogSize(&size), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, sizeof(kLogText) - 1);
    EXPECT_EQ(PXTGetCmdLogMaxSize(&size), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 131072u);
    astring* const content = PXTCmdGetXMLLogContent(test::kCommandLog);
    EXPECT_TRUE(content != nullptr && strstr(content, "<EventLog></EventLog>") != nullptr);
    PXTFreeMem(content);
  });
  EXPECT_EQ(test::ReadFile(test::kCommandLog), kLogText);
  EXPECT_EQ(test::ModeOf(test::kCommandLog), 0644u);
  EXPECT_FALSE(test::Exists("/etc/cim/zarn/plinthos/var/log/vexilon/qvcmdlog.xm_"));
}

TEST_F(Operator, AMissingLogStaysMissing) {
  ASSERT_EQ(unlink(test::kCommandLog), 0);
  AsAlice([] {
    EXPECT_EQ(PXTGetCmdLogPathFileName(), nullptr);
    EXPECT_EQ(PXTAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "alice", "test", "text", QVX_LOG_INFORMATION),
              kFailed);
    EXPECT_EQ(PXTForceXMLLogExists(test::kCommandLog, "alice", "test"), kFailed);
  });
  EXPECT_FALSE(test::Exists(test::kCommandLog));
}

// Alice's password is checked by the program that PAM runs, which answers only for its caller.
TEST_F(Operator, LogsInOnlyItself) {
  AsAlice([] {
    const ustring alice[] = {'a', 'l', 'i', 'c', 'e', 0};
    const ustring bob[] = {'b', 'o', 'b', 0};
    ustring right[] = {'W', 'o', 'n', 'd', 'e', 'r', '-', '1', 'a', 'n', 'd', 0};
    ustring wrong[] = {'w', 'o', 'n', 'd', 'e', 'r', 0};
    ustring builder[] = {'B', 'u', 'i', 'l', 'd', 'e', 'r', '-', '2', 0};
    EXPECT_EQ(PXTAuthenticateUser(nullptr, alice, right), QVX_PRIV_USER);
    EXPECT_EQ(PXTAuthenticateUser(nullptr, alice, wrong), QVX_PRIV_NONE);
    EXPECT_EQ(PXTAuthenticateUser(nullptr, bob, builder), QVX_PRIV_NONE);
    EXPECT_EQ(right[0] + right[10] + builder[0] + builder[8], 0) << "wiped";
  });
}

}  // namespace
}  // namespace qvx
