// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/user_rights.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <exception>
#include <new>
#include <optional>
#include <thread>
#include <vector>

#include "qvxcs/access.h"

#include "access/auth_file_reader.h"
#include "access/role_map_algorithm.h"
#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/processes.h"
#include "support/sanitizers.h"
#include "support/threads.h"
#include "tests/access/accounts.h"

namespace qvx {
namespace {

using test::WriteRoleMap;

u32 RightsOf(std::string login) { return get_user_rights(login.data()); }

// How often a text occurs in the command log.
u32 LogCount(const std::string& text) {
  if (!test::Exists(test::kCommandLog)) return 0;
  const std::string log = test::ReadFile(test::kCommandLog);
  u32 count = 0;
  for (size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1))
    ++count;
  return count;
}

u32 FaultEntries() { return LogCount("QVXSERVER"); }

// A login that only the role map decides: the system does not know the user.
void Load(const std::string& roleMap, time_t time = 1000000) {
  WriteRoleMap(roleMap, 0640, time);
  ASSERT_EQ(PXTOpenRolemapFile(), 0u);
  (void)PXTGetRightsUsingRolemap();
}

class UserRights : public ::testing::Test {
 protected:
  void SetUp() override {
    test::OnlyRoot();
    test::AddUser("alice", 7001, 7100);
    test::AddUser("member", 7002, 7100);
    test::WriteFile("/etc/group", "root:x:0:member\nusers:x:7100:\n");
    ASSERT_EQ(ModuleAttach(), 1);
  }
};

TEST_F(UserRights, OpenAnswersZeroAndLeavesAFaultToTheQuery) {
  WriteRoleMap("# note\n\nroot * admin\n");
  EXPECT_EQ(PXTOpenRolemapFile(), 0u);
  EXPECT_EQ(FaultEntries(), 0u);
  EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_ADMINISTRATOR) << "the built-in lines stand in";
  EXPECT_EQ(FaultEntries(), 1u);
  EXPECT_EQ(LogCount("<Parameter name=\"line\" value=\"3\"/>"), 1u);
  EXPECT_EQ(LogCount("5915"), 1u) << "0x171B, an invalid role";
}

TEST_F(UserRights, AFaultsEntryIsTheParameterElementAlone) {
  WriteRoleMap("root *\n");
  (void)PXTOpenRolemapFile();
  (void)PXTGetRightsUsingRolemap();
  EXPECT_EQ(LogCount("<Description><Parameter name=\"line\" value=\"1\"/></Description>"), 1u);
  EXPECT_EQ(LogCount("5911"), 1u) << "0x1717, a missing field";
}

TEST_F(UserRights, AMissingFileIsLoggedByTheOpenAndByTheQuery) {
  EXPECT_EQ(PXTOpenRolemapFile(), 0u);
  EXPECT_EQ(FaultEntries(), 1u);
  EXPECT_EQ(LogCount("<Parameter name=\"line\" value=\"0\"/>"), 1u);
  EXPECT_EQ(LogCount("5912"), 1u) << "0x1718, a failed open";
  EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(FaultEntries(), 2u);
}

TEST_F(UserRights, AFileThatCouldNotBeOpenedIsReadOnceItsTimeChanges) {
  WriteRoleMap("carol * administrator\n", 0640, 1000000);
  ASSERT_EQ(chown(test::kRoleMap, 0, 7100), 0);
  ASSERT_EQ(setgroups(0, nullptr), 0);
  ASSERT_EQ(seteuid(7001), 0);
  EXPECT_EQ(PXTOpenRolemapFile(), 0u);
  ASSERT_EQ(seteuid(0), 0);
  for (int round = 0; round < 2; ++round) {
    (void)PXTGetRightsUsingRolemap();
    EXPECT_EQ(RightsOf("carol"), 1u) << "built-in";
    EXPECT_EQ(PXTOpenRolemapFile(), 0u);
  }
  Load("carol * administrator\n", 2000000);
  EXPECT_EQ(RightsOf("carol"), 7u);
}

TEST_F(UserRights, AWrongModeIsLogged) {
  WriteRoleMap("root * user\n", 0644);
  EXPECT_EQ(PXTOpenRolemapFile(), 0u);
  EXPECT_EQ(LogCount("5913"), 1u) << "0x1719, bad permissions";
}

TEST_F(UserRights, AConflictIsLoggedWithItsLineAndTheDefaultsStandIn) {
  WriteRoleMap("alice h user\nalice h user\n");
  (void)PXTOpenRolemapFile();
  EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(LogCount("<Parameter name=\"line\" value=\"2\"/>"), 1u);
  EXPECT_EQ(LogCount("5916"), 1u) << "0x171C, a conflict";
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_USER);
}

TEST_F(UserRights, LinesInForceOutlastTheirFile) {
  Load("alice * poweruser\n");
  ASSERT_EQ(chmod(test::kRoleMap, 0644), 0);
  EXPECT_EQ(PXTOpenRolemapFile(), 0u);
  EXPECT_EQ(FaultEntries(), 1u);
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_POWERUSER);
  ASSERT_EQ(unlink(test::kRoleMap), 0);
  EXPECT_EQ(PXTOpenRolemapFile(), 0u);
  EXPECT_EQ(FaultEntries(), 2u);
  EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(FaultEntries(), 2u) << "the query has records";
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_POWERUSER);
}

TEST_F(UserRights, AConflictIsMendedByACorrectedFile) {
  Load("alice h user\nalice h user\n");
  ASSERT_EQ(FaultEntries(), 1u);
  Load("alice * poweruser\n", 2000000);
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(FaultEntries(), 1u);
}

TEST_F(UserRights, AFaultWithinALineIsNotMendedByACorrectedFile) {
  Load("alice * nothing\n");
  ASSERT_EQ(FaultEntries(), 1u);
  Load("alice * poweruser\n", 2000000);
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_USER);
  EXPECT_EQ(LogCount("5914"), 1u) << "0x171A, no records";
}

TEST_F(UserRights, AFaultThatCannotBeLoggedChangesNothingElse) {
  ASSERT_EQ(system("rm -r /etc/cim/zarn/plinthos/var/log"), 0);
  EXPECT_EQ(PXTOpenRolemapFile(), 0u);
  EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_USER);
}

TEST_F(UserRights, TheProcessUserHasTheFilesGrantWithoutTheRootBit) {
  Load("root * poweruser\n");
  EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_POWERUSER);
}

TEST_F(UserRights, TheProcessUserIsJudgedOnThisHostInLowerCase) {
  ASSERT_EQ(sethostname("QVXTest", 7), 0);
  Load("root *.qvxtest user\nroot * administrator\n");
  EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_USER);
}

TEST_F(UserRights, ASuperuserWithoutAGrantIsAnAdministratorAllTheSame) {
  Load("alice * user\n");
  EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_ADMINISTRATOR);
}

TEST_F(UserRights, OfTheSystemsAnswersOnlyTheSuperusersIsTakenForTheProcess) {
  Load("alice h user\n");
  EXPECT_EQ(test::InChild([] {
              if (setresuid(7002, 0, 0) != 0) return 99;
              return static_cast<int>(PXTGetRightsUsingRolemap());
            }),
            0);
}

TEST_F(UserRights, AProcessWithoutAUserNameHasNoRights) {
  EXPECT_EQ(test::InChild([] {
              if (setresuid(54321, 0, 0) != 0) return 99;
              return static_cast<int>(PXTGetRightsUsingRolemap());
            }),
            0);
  EXPECT_EQ(FaultEntries(), 0u) << "the role map is not even read";
}

TEST_F(UserRights, LoginsAloneUseTheBuiltInLines) {
  WriteRoleMap("alice * administrator\n");
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_USER);
  EXPECT_EQ(RightsOf("member"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(RightsOf("root"), u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
  EXPECT_EQ(RightsOf("nobody-here"), QVX_PRIV_USER);
  EXPECT_EQ(FaultEntries(), 0u);
}

TEST_F(UserRights, ANullLoginHasNoRights) { EXPECT_EQ(get_user_rights(nullptr), 0u); }

TEST_F(UserRights, MapsOfTheFileInForceAnswerLoginsToo) {
  Load("alice * administrator\n");
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(RightsOf("member"), QVX_PRIV_NONE);
}

TEST_F(UserRights, ALoginBetweenOpenAndQueryLeavesTheDefaultsUntilTheTimeChanges) {
  WriteRoleMap("alice * administrator\n");
  (void)PXTOpenRolemapFile();
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_USER);
  (void)PXTGetRightsUsingRolemap();
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_USER) << "the maps of the defaults are in force";
  (void)PXTOpenRolemapFile();
  (void)PXTGetRightsUsingRolemap();
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_USER) << "an unchanged time changes nothing";
  Load("alice * administrator\n", 2000000);
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_ADMINISTRATOR);
}

TEST_F(UserRights, ARoleMapThatGrantsNothingLeavesOnlyTheSuperuser) {
  Load("nobody-here h user\n");
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_NONE);
  EXPECT_EQ(RightsOf("member"), QVX_PRIV_NONE);
  EXPECT_EQ(RightsOf("root"), u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
}

TEST_F(UserRights, TheGreaterOfRoleMapAndSystemIsTaken) {
  Load("member,alice * user\n");
  EXPECT_EQ(RightsOf("member"), QVX_PRIV_POWERUSER) << "by group 0";
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_USER);
  Load("member * administrator\n", 2000000);
  EXPECT_EQ(RightsOf("member"), QVX_PRIV_ADMINISTRATOR);
}

TEST_F(UserRights, TheSuperuserIsAboveTheRoleMap) {
  Load("root * user\n");
  EXPECT_EQ(RightsOf("root"), u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
}

// Without IP support there is no host name, as before the library is attached.
TEST(UserRightsOfAnUnknownHost, APlainLoginIsOnTheEmptyHost) {
  test::OnlyRoot();
  Load("alice *.elsewhere poweruser\nalice * user\n");
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_POWERUSER) << "the empty host is in every pattern";
}

TEST_F(UserRights, AnAtSignPartsUserAndHost) {
  Load("alice *.lab.x poweruser\nalice * user\n");
  EXPECT_EQ(RightsOf("alice@LAB"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(RightsOf("alice@else"), QVX_PRIV_USER);
  EXPECT_EQ(RightsOf("alice@@lab"), QVX_PRIV_POWERUSER) << "separators in a row are one";
  EXPECT_EQ(RightsOf("@alice@lab@rest"), QVX_PRIV_POWERUSER)
      << "leading ones are skipped, a third token unread";
}

TEST_F(UserRights, ALoginThatEndsInAnAtSignIsOnTheEmptyHost) {
  Load("alice *.lab.x poweruser\nalice * user\n");
  EXPECT_EQ(RightsOf("alice@"), QVX_PRIV_POWERUSER) << "the empty host is in every pattern";
}

TEST_F(UserRights, ABackslashPartsDomainAndUser) {
  Load("alice *.lab.x poweruser\nalice * user\n");
  EXPECT_EQ(RightsOf("LAB\\alice"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(RightsOf("else\\alice"), QVX_PRIV_USER);
}

TEST_F(UserRights, TheAtSignIsSoughtBeforeTheBackslash) {
  Load("lab\\alice *.srv poweruser\n");
  EXPECT_EQ(RightsOf("lab\\alice@srv"), QVX_PRIV_POWERUSER);
}

TEST_F(UserRights, ADomainWithoutAUserIsTheEmptyUser) {
  Load(",x *.lab.x poweruser\n");
  EXPECT_EQ(RightsOf("LAB\\"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(RightsOf("else\\"), QVX_PRIV_NONE);
}

TEST_F(UserRights, ALoneCommaNamesTheEmptyUserTwiceWhichIsAConflict) {
  Load("alice * administrator\n, h user\n");
  EXPECT_EQ(LogCount("<Parameter name=\"line\" value=\"2\"/>"), 1u);
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_USER);
}

TEST_F(UserRights, ALoginOfSeparatorsOnlyIsNobodyOnTheEmptyHost) {
  Load(",x *.lab.x poweruser\n");
  EXPECT_EQ(RightsOf("@@"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(RightsOf("\\"), QVX_PRIV_POWERUSER);
}

TEST_F(UserRights, TheSystemIsAskedOfTheDomainOfADomainLogin) {
  Load("alice,root * user\n");
  EXPECT_EQ(RightsOf("root\\alice"), u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
  EXPECT_EQ(RightsOf("ROOT\\alice"), QVX_PRIV_USER) << "as written, case kept";
  EXPECT_EQ(RightsOf("lab\\root"), QVX_PRIV_USER);
  EXPECT_EQ(RightsOf("root@lab"), u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
  EXPECT_EQ(RightsOf("@root@lab"), QVX_PRIV_USER) << "the text still begins with its separator";
}

TEST_F(UserRights, TheLoginIsSplitInPlace) {
  std::string login = "alice@lab";
  (void)get_user_rights(login.data());
  EXPECT_EQ(login, std::string("alice\0lab", 9));
}

TEST_F(UserRights, APlainLoginIsOnThisHost) {
  Load("alice *.qvxtest.x poweruser\nalice * user\n");
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_POWERUSER);
}

TEST_F(UserRights, ALoginThatCannotBeWidenedHasNoRoleMapRights) {
  ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
  EXPECT_EQ(RightsOf("a\xFFlice"), QVX_PRIV_NONE);
  EXPECT_EQ(RightsOf("root@\xFF"), u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR})
      << "the superuser is the system's affair";
  EXPECT_EQ(RightsOf("alice@\xFF"), QVX_PRIV_NONE);
}

TEST_F(UserRights, AThisHostThatCannotBeWidenedGrantsNothing) {
  ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
  ASSERT_EQ(sethostname("qvx\xFF", 4), 0);
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_NONE);
  EXPECT_EQ(RightsOf("alice@h"), QVX_PRIV_USER);
  Load("root * user\n");
  EXPECT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_ADMINISTRATOR)
      << "what the system says, not the role map";
}

TEST_F(UserRights, UnderALatinLocaleABytePastAsciiIsALetterOfTheName) {
  ASSERT_NE(setlocale(LC_ALL, "en_GB.ISO-8859-1"), nullptr);
  ASSERT_EQ(sethostname("qvx\xE9", 4), 0);
  EXPECT_EQ(RightsOf("\xE9lodie"), QVX_PRIV_USER);
  EXPECT_EQ(RightsOf("alice@\xE9"), QVX_PRIV_USER);
}

TEST_F(UserRights, UnderATurkishLocaleARoleInCapitalsIsARole) {
  ASSERT_NE(setlocale(LC_ALL, "tr_TR.UTF-8"), nullptr);
  Load("alice * ADMINISTRATOR\n");
  EXPECT_EQ(FaultEntries(), 0u);
  EXPECT_EQ(RightsOf("alice"), QVX_PRIV_ADMINISTRATOR);
}

TEST_F(UserRights, UnderATurkishLocaleHostsAreFoldedAlikeOnBothSides) {
  ASSERT_NE(setlocale(LC_ALL, "tr_TR.ISO-8859-9"), nullptr);
  Load("alice *.LIB.x poweruser\nalice * user\n");
  EXPECT_EQ(RightsOf("alice@LIB"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(RightsOf("alice@lib"), QVX_PRIV_USER) << "the small letter is another one";
}

TEST_F(UserRights, WithoutMemoryNothingIsThrownAndNothingExtraGranted) {
  WriteRoleMap("alice * administrator\n");
  test::FailEachAllocation(
      [] {
        (void)PXTOpenRolemapFile();
        return PXTGetRightsUsingRolemap();
      },
      [](u32 rights) {
        EXPECT_TRUE(rights == QVX_PRIV_NONE || rights == QVX_PRIV_ADMINISTRATOR) << rights;
      });
}

// In separate processes, because a file is read only once. A later login gets what the whole file
// or the built-in lines grant: QVX_PRIV_USER at most for both users.
u32 MetWithoutMemory(const std::string& roleMap) {
  WriteRoleMap(roleMap);
  constexpr int kWidened = 1;
  constexpr int kFinished = 2;
  for (u32 nth = 1; nth < 1000; ++nth) {
    const int findings = test::InChild([nth] {
      bool fired = false;
      {
        const test::FailNthAllocation fault(nth);
        (void)PXTOpenRolemapFile();
        (void)PXTGetRightsUsingRolemap();
        fired = test::FailNthAllocation::Fired();
      }
      (void)PXTGetRightsUsingRolemap();
      const bool within =
          RightsOf("alice") <= QVX_PRIV_USER && RightsOf("mallory") <= QVX_PRIV_USER;
      return (within ? 0 : kWidened) | (fired ? 0 : kFinished);
    });
    EXPECT_EQ(findings & ~kFinished, 0) << "allocation " << nth;
    if (findings >= 256 || (findings & kFinished) != 0) return nth - 1;
  }
  return 0;
}

// If read from the middle, the first line would name mallory; without the second line, alice's
// group counts.
TEST_F(UserRights, WithoutMemoryNoPartOfTheRoleMapIsTakenForTheWhole) {
  EXPECT_GE(MetWithoutMemory("#aa,mallory * administrator\n"
                             "alice * user\n"
                             "+users * administrator\n"),
            20u);
}

TEST_F(UserRights, WithoutMemoryForTheDefaultsTheLinesBehindAFaultStayUnread) {
  EXPECT_GE(MetWithoutMemory("alice * user\n"
                             "mallory * nothing\n"
                             "+users,mallory * administrator\n"),
            20u);
}

TEST_F(UserRights, WithoutMemoryForTheDefaultsTheRecordsStay) {
  WriteRoleMap("alice * poweruser\n");
  QVAuthFileReader& reader = QVAuthFileReader::GetInstance();
  reader.Open();
  const std::deque<QVAuthFileRecord*> standing = reader.GetRecords();
  const u32 met = test::FailEachAllocation(
      [&reader] {
        try {
          (void)reader.GetDefaultRecords();
        } catch (const std::bad_alloc&) {
          return true;
        }
        return false;
      },
      [&](bool thrown) {
        EXPECT_TRUE(thrown);
        EXPECT_EQ(reader.GetRecords(), standing);
      });
  EXPECT_GE(met, 6u) << "a record and its entry of each line";
  EXPECT_EQ(reader.GetRecords().size(), 3u);
}

constexpr char kUsers[] = "/etc/passwd";
constexpr char kGroups[] = "/etc/group";

// A login in its own thread. It hangs where it queries the system's users or groups, whose file is
// a pipe without a writer, until this object is destroyed.
class HangingLogin {
 public:
  HangingLogin(const std::string& user, const char* pipe) : pipe_(pipe) {
    if (rename(pipe_, kAside) != 0 || mkfifo(pipe_, 0644) != 0) abort();
    login_ = std::thread([this, user] {
      thread_ = gettid();
      (void)RightsOf(user);
    });
    for (u32 turn = 0; turn < 6000 && !Hangs(); ++turn) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(Hangs());
  }
  ~HangingLogin() {
    const int pipe = open(pipe_, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    (void)rename(kAside, pipe_);
    close(pipe);
    login_.join();
  }
  HangingLogin(const HangingLogin&) = delete;
  HangingLogin& operator=(const HangingLogin&) = delete;

 private:
  // Whether the thread waits in the call that opens a file.
  [[nodiscard]] bool Hangs() const {
    const std::string path = "/proc/self/task/" + std::to_string(thread_) + "/syscall";
    return test::ReadFile(path).rfind(std::to_string(SYS_openat) + " ", 0) == 0;
  }

  static constexpr char kAside[] = "/etc/aside";
  const char* pipe_;
  std::atomic<pid_t> thread_{0};
  std::thread login_;
};

TEST_F(UserRights, TheRoleMapIsNotOpenedWhileALoginIsDecided) {
  Load("alice * user\n+users * user\n");
  std::optional<HangingLogin> login;
  login.emplace("member", kGroups);  // no line names it, so its groups are queried
  EXPECT_TRUE(test::WaitsFor([] { (void)PXTOpenRolemapFile(); }, [&login] { login.reset(); }));
}

// The account is queried before the decision, the groups after it.
class TheRoleMap : public UserRights, public testing::WithParamInterface<const char*> {};

TEST_P(TheRoleMap, IsFreeWhileTheSystemIsAskedForItsJudgement) {
  Load("alice * user\n");
  std::atomic<bool> opened{false};
  std::thread other;
  {
    const HangingLogin login("alice", GetParam());  // its line decides
    other = std::thread([&opened] {
      (void)PXTOpenRolemapFile();
      opened = true;
    });
    for (u32 turn = 0; turn < 6000 && !opened; ++turn) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(opened);
  }
  other.join();
}

INSTANTIATE_TEST_SUITE_P(AskedFor, TheRoleMap, testing::Values(kUsers, kGroups));

// When the role map has a fault, an operator who holds the suite's lock must not delay logins.
TEST_F(UserRights, AFaultThatWaitsForTheLogHoldsUpNoLogin) {
  test::LockHolder other;
  std::thread faulty([] { (void)PXTOpenRolemapFile(); });  // there is no file
  std::atomic<u32> logins{0};
  std::thread login([&logins] {
    for (u32 turn = 0; turn < 50; ++turn) {
      logins += RightsOf("alice@h") == QVX_PRIV_USER ? 1 : 0;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
  for (u32 turn = 0; turn < 6000 && logins < 50; ++turn) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(logins, 50u);
  EXPECT_EQ(FaultEntries(), 0u) << "the log is not available";
  other.Release();
  login.join();
  faulty.join();
  EXPECT_EQ(FaultEntries(), 1u);
}

TEST_F(UserRights, LoginsOfSeveralThreadsAreSafe) {
  Load("alice * poweruser\n");
  std::vector<std::thread> threads;
  std::vector<u32> wrong(8, 0);
  for (size_t at = 0; at < wrong.size(); ++at) {
    threads.emplace_back([&wrong, at] {
      for (u32 turn = 0; turn < 100; ++turn) {
        if (RightsOf("alice@lab") != QVX_PRIV_POWERUSER) ++wrong[at];
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(wrong, std::vector<u32>(8, 0));
}

// The exit status of a child that queries all rights in an exit handler that runs after those of
// the library: 0 when everything was refused and no freed memory was touched.
int AskBehindTheLibrarysExitHandlers() {
  (void)atexit([] {
    const u32 opened = OSOpenRolemapFile();
    const u32 byMap = OSGetRightsUsingRolemap();
    astring login[] = "alice";
    u32 byLogin = 0;
    try {
      byLogin = get_user_rights(login);
    } catch (const std::exception&) {
    }
    _exit(opened != 0 ? 1 : byMap != 0 ? 2 : byLogin != 0 ? 3 : 0);
  });
  Load("root * poweruser\nalice * poweruser\n");
  const bool granted =
      OSGetRightsUsingRolemap() == QVX_PRIV_POWERUSER && RightsOf("alice") == QVX_PRIV_POWERUSER;
  exit(granted ? 4 : 5);
}

TEST_F(UserRights, AtTheEndOfExitNobodyHasRights) {
  EXPECT_EQ(test::InChild(AskBehindTheLibrarysExitHandlers), 0);
}

TEST_F(UserRights, AProcessMayExitWhileThreadsLogIn) {
  for (int round = 0; round < 5; ++round) {
    const int status = test::InChild([]() -> int {
      Load("alice * poweruser\n");
      for (int at = 0; at < 4; ++at) {
        std::thread([] {
          for (;;) {
            try {
              if (RightsOf("alice@lab") != QVX_PRIV_POWERUSER) _exit(1);
            } catch (const std::exception&) {
              // the process ends
            }
          }
        }).detach();
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      exit(0);
    });
    ASSERT_EQ(status, 0) << "round " << round;
  }
}

// Another thread is inside a login when the child is created; the child does not have that thread.
TEST_F(UserRights, AChildMayExitWhileAnotherThreadLogsIn) {
  if (QVX_SANITIZED != 0) GTEST_SKIP() << "a sanitizer's own exit waits for the parent's threads";
  Load("alice * user\n");
  ASSERT_EQ(RightsOf("alice@lab"), 0x1U);
  ASSERT_EQ(rename("/etc/passwd", "/etc/passwd.aside"), 0);
  ASSERT_EQ(mkfifo("/etc/passwd", 0644), 0);
  const int status = test::InChild([]() -> int {
    std::thread([] { (void)RightsOf("member"); }).detach();  // nobody answers it
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return test::InChild([]() -> int {
      alarm(60);
      exit(0);
    });
  });
  EXPECT_EQ(status, 0);
}

TEST_F(UserRights, ASignalHandlerMayExitWithinALogin) {
  Load("alice * user\n+users * user\n");
  ASSERT_EQ(unlink("/etc/group"), 0);
  ASSERT_EQ(mkfifo("/etc/group", 0644), 0);
  const int status = test::InChild([] {
    signal(SIGALRM, [](int) { exit(7); });
    const itimerval soon = {{0, 0}, {0, 50000}};
    setitimer(ITIMER_REAL, &soon, nullptr);
    (void)RightsOf("member");  // no line names it, so its groups are queried, and nobody answers
    return 1;
  });
  EXPECT_EQ(status, 7);
}

}  // namespace
}  // namespace qvx
