// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A request from its login to its record in the log: without memory at each of its steps, by
// several threads at once, and by users whose names are markup.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <clocale>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "qvxcs/access.h"
#include "qvxcs/cli_value.h"
#include "qvxcs/command_log.h"
#include "qvxcs/memory.h"
#include "qvxcs/status.h"
#include "qvxcs/transcode.h"
#include "qvxcs/xml_buffer.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/kill_at_stop.h"
#include "support/processes.h"
#include "tests/access/accounts.h"
#include "tests/xml/log_files.h"

#if defined(__SANITIZE_ADDRESS__)
#define QVX_LEAK_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QVX_LEAK_SANITIZER 1
#endif
#endif
#ifdef QVX_LEAK_SANITIZER
#include <sanitizer/lsan_interface.h>
#endif

namespace qvx {
namespace {

[[maybe_unused]] constexpr char kTunables[] = "glibc.malloc.tcache_count=0:glibc.malloc.mxfast=0";
constexpr s32 kEscapedText = 26;
constexpr char kPassword[] = "Wonder-1and";
constexpr size_t kLength = sizeof(kPassword) - 1;

struct Outcome {
  bool wiped = false;     // the caller's password after the login
  u32 process = 0;        // rights of the process
  u32 rights = 0;         // rights of the login
  bool answered = false;  // an answer was built
  u32 recorded = 0;       // status of the log entry
};

bool BuildAnswer(const char* login) {
  void* const answer = PXTXAllocBuf(16, 1);
  if (answer == nullptr) return false;
  const bool built =
      PXTXBufCatBeginNode(answer, "Answer", "command=\"login\"") == SM_STATUS_SUCCESS &&
      PXTXBufCatNode(answer, "User", nullptr, kEscapedText, login) == SM_STATUS_SUCCESS &&
      PXTXBufCatEndNode(answer, "Answer") == SM_STATUS_SUCCESS;
  astring* const text = PXTXFreeBufGetContent(answer);
  const bool whole = text != nullptr;
  PXTXFreeBufContent(text);
  return built && whole;
}

Outcome Request() {
  Outcome outcome;
  (void)PXTOpenRolemapFile();
  outcome.process = PXTGetRightsUsingRolemap();
  const ustring user[] = {'a', 'l', 'i', 'c', 'e', 0};
  ustring password[kLength + 1] = {};
  std::copy_n(kPassword, kLength, password);
  outcome.rights = PXTAuthenticateUser(nullptr, user, password);
  outcome.wiped =
      std::all_of(std::begin(password), std::end(password), [](ustring unit) { return unit == 0; });
  outcome.answered = BuildAnswer("alice & friends");
  outcome.recorded =
      PXTAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "alice", "REQUEST", "text", QVX_LOG_INFORMATION);
  astring* const path = PXTGetCmdLogPathFileName();
  PXTFreeMem(PXTCmdGetXMLLogContent(path));
  PXTFreeMem(path);
  return outcome;
}

bool IsGranted(const Outcome& outcome) {
  return outcome.process == QVX_PRIV_ADMINISTRATOR && outcome.rights == QVX_PRIV_POWERUSER &&
         outcome.answered && outcome.recorded == SM_STATUS_SUCCESS;
}

// Each new modification time makes the next request read the role map again.
void TouchRoleMap(time_t time) { test::SetTime(test::kRoleMap, time); }

class MainJob : public ::testing::Test {
 protected:
  void SetUp() override {
    test::OnlyRoot();
    test::AddGroup("users", 7100);
    test::AddUser("alice", 7001, 7100, test::Hash(kPassword));
    test::AddUser("bob", 7002, 7100, test::Hash("Builder-2"));
    test::UnixPamService("qvauth");
    test::WriteRoleMap("root * administrator\nalice * poweruser\nbob * user\n");
    ASSERT_EQ(ModuleAttach(), 1);
  }
};

bool FoundALeak() {
#ifdef QVX_LEAK_SANITIZER
  return __lsan_do_recoverable_leak_check() != 0;
#else
  return false;
#endif
}

// What the child found to be wrong, as bits of its exit status.
enum Finding { kNotWiped = 1, kRaised = 2, kLockHeld = 4, kLeaked = 8, kLost = 16, kFinished = 64 };

int Judge(const Outcome& outcome) {
  int findings = outcome.wiped ? 0 : kNotWiped;
  const bool withinRights =
      (outcome.process == QVX_PRIV_ADMINISTRATOR || outcome.process == QVX_PRIV_NONE) &&
      outcome.rights <= 3;
  findings |= withinRights ? 0 : kRaised;
  return findings | (test::LockIsFree() ? 0 : kLockHeld);
}

// A reused block may be a few bytes larger than the one that was freed; with this many faults even
// a leak of the smallest block is visible.
constexpr u32 kFaults = 4;
constexpr size_t kSmallestLeak = kFaults * 32;

// A request with its n-th allocation failing.
int RequestWithFault(u32 nth, Outcome* outcome) {
  bool fired = false;
  {
    const test::FailNthAllocation fault(nth);
    *outcome = Request();
    fired = test::FailNthAllocation::Fired();
  }
  return Judge(*outcome) | (fired ? 0 : kFinished);
}

// In a process that has made no request yet, or none since the role map changed.
int FirstRequestWithFault(u32 nth) {
  Outcome outcome;
  const int findings = RequestWithFault(nth, &outcome);
  if ((findings & kFinished) != 0) return findings | (IsGranted(outcome) ? 0 : kLost);
  return findings | Judge(Request()) | (FoundALeak() ? kLeaked : 0);
}

// In a process that has served many; each request after a fault has all its memory again.
int LaterRequestsWithFault(u32 nth) {
  for (u32 at = 0; at < 3; ++at) {
    (void)Request();
  }
  const size_t before = mallinfo2().uordblks;
  int findings = 0;
  for (u32 at = 0; at < kFaults && (findings & kFinished) == 0; ++at) {
    Outcome outcome;
    findings |= RequestWithFault(nth, &outcome);
    const Outcome next = Request();
    findings |= Judge(next) | (IsGranted(next) ? 0 : kLost);
  }
  const bool exact = getenv("GLIBC_TUNABLES") != nullptr;
  const bool grown = exact && mallinfo2().uordblks >= before + kSmallestLeak;
  return findings | (grown || FoundALeak() ? kLeaked : 0);
}

// Each fault occurs in its own process; returns the number of allocations.
template <typename Body>
u32 FailEach(Body body) {
  for (u32 nth = 1; nth < 5000; ++nth) {
    const int findings = test::InChild([&] { return body(nth); });
    EXPECT_EQ(findings & ~kFinished, 0) << "allocation " << nth;
    if (findings >= 256 || (findings & kFinished) != 0) return nth - 1;
  }
  return 0;
}

TEST_F(MainJob, WithoutMemoryAtItsFirstRunAnyStepFailsSafely) {
  EXPECT_GE(FailEach(FirstRequestWithFault), 80u);
}

// The heap's count is exact only without caches, which must be turned off before the process
// starts.
TEST_F(MainJob, WithoutMemoryALaterRunLosesNothing) {
#ifndef QVX_LEAK_SANITIZER
  if (getenv("GLIBC_TUNABLES") == nullptr) {
    const int status = test::InChild([] {
      (void)setenv("GLIBC_TUNABLES", kTunables, 1);
      (void)execl("/proc/self/exe", "main_job",
                  "--gtest_filter=MainJob.WithoutMemoryALaterRunLosesNothing",
                  "--gtest_output=", nullptr);
      return 127;
    });
    ASSERT_EQ(status, 0);
    return;
  }
#endif
  EXPECT_GE(FailEach(LaterRequestsWithFault), 30u);
}

// A new role map is read although an earlier one was loaded; a failure never leaves wider rights.
TEST_F(MainJob, WithoutMemoryARoleMapThatIsReadAgainGrantsNoMore) {
  const u32 met = FailEach([](u32 nth) {
    TouchRoleMap(1000000);
    (void)Request();
    TouchRoleMap(2000000);
    return FirstRequestWithFault(nth);
  });
  EXPECT_GE(met, 70u);
}

// One thread's logins: right and wrong in turn, of two users.
u32 WrongAnswers(u32 thread) {
  constexpr u32 kLogins = 20;
  const std::u16string user = thread % 2 == 0 ? u"alice" : u"bob";
  const std::u16string good = thread % 2 == 0 ? u"Wonder-1and" : u"Builder-2";
  const u32 level = thread % 2 == 0 ? 3 : 1;
  u32 wrong = 0;
  for (u32 login = 0; login < kLogins; ++login) {
    const bool right = (login + thread) % 2 == 0;
    const std::u16string text = right ? good : u"neither";
    std::vector<ustring> name(user.begin(), user.end());
    std::vector<ustring> password(text.begin(), text.end());
    name.push_back(0);
    password.push_back(0);
    const u32 rights = PXTAuthenticateUser(nullptr, name.data(), password.data());
    const bool wiped = password == std::vector<ustring>(password.size(), 0);
    wrong += rights == (right ? level : 0) && wiped ? 0 : 1;
  }
  return wrong;
}

TEST_F(MainJob, EightThreadsLogInAtOnce) {
  ASSERT_EQ(PXTOpenRolemapFile(), 0u);
  ASSERT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_ADMINISTRATOR);
  std::atomic<u32> wrong{0};
  std::vector<std::thread> threads;
  for (u32 at = 0; at < 8; ++at) {
    threads.emplace_back([at, &wrong] { wrong += WrongAnswers(at); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(wrong, 0u);
}

constexpr s32 kVerbatimUnits = 2;
constexpr s32 kEscapedUnits = 27;

// Markup, both quotes, "&", a letter of two bytes, a pair of surrogates, a surrogate without its
// other half. Each surrogate becomes the character that the name begins with.
constexpr ustring kMarkup[] = {'<',    'b',    '>',    '&',    '"', '\'',
                               0x00E9, 0xD83D, 0xDE00, 0xD800, 'z', 0};
constexpr char kMarkupLogin[] = "<b>&\"'\xC3\xA9<<<z";
constexpr char kMarkupEscaped[] = "&lt;b&gt;&amp;&quot;&apos;\xC3\xA9&lt;&lt;&lt;z";

// A leading pair is one character, which replaces both of its units.
constexpr ustring kFace[] = {0xD83D, 0xDE00, '&', 0};
constexpr char kFaceLogin[] = "\xF0\x9F\x98\x80\xF0\x9F\x98\x80&";
constexpr char kFaceEscaped[] = "\xF0\x9F\x98\x80\xF0\x9F\x98\x80&amp;";

// A name that begins with half a pair is not valid text.
constexpr ustring kHalf[] = {0xD800, '<', 'z', 0};

u32 LogIn(const ustring* user) {
  ustring password[kLength + 1] = {};
  std::copy_n(kPassword, kLength, password);
  const u32 rights = PXTAuthenticateUser(nullptr, user, password);
  EXPECT_TRUE(std::all_of(std::begin(password), std::end(password), [](ustring unit) {
    return unit == 0;
  })) << "wiped";
  return rights;
}

// The host's text form of the name, for its answers and its log.
std::string LoginOf(const ustring* user) {
  astring text[64] = "untouched";
  u32 size = sizeof(text);
  const u32 status = PXTUCS2StrToUTF8Str(text, &size, user);
  return status == SM_STATUS_SUCCESS ? text : "status " + std::to_string(status);
}

std::string Taken(void* buffer) {
  astring* const text = PXTXFreeBufGetContent(buffer);
  const std::string taken = text == nullptr ? "(none)" : text;
  PXTXFreeBufContent(text);
  return taken;
}

// The element that describes the user, for the description of a log entry.
std::string ParameterOf(const ustring* user) {
  void* const buffer = PXTXAllocBuf(16, 0);
  EXPECT_EQ(PXTNVSBufCatSetCmdParam(buffer, "user", nullptr, nullptr, user, kEscapedUnits),
            SM_STATUS_SUCCESS);
  return Taken(buffer);
}

std::string AnswerTo(const ustring* user, const std::string& login) {
  void* const answer = PXTXAllocBuf(16, 1);
  EXPECT_EQ(PXTXBufCatBeginNode(answer, "Answer", "command=\"login\""), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTXBufCatNode(answer, "Login", nullptr, kEscapedText, login.c_str()),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTXBufCatNode(answer, "User", nullptr, kEscapedUnits, user), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTXBufCatEndNode(answer, "Answer"), SM_STATUS_SUCCESS);
  return Taken(answer);
}

std::string ExpectedAnswer(const std::string& escaped) {
  return "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?>"
         "<Answer command=\"login\"><Login>" +
         escaped + "</Login><User>" + escaped + "</User></Answer>";
}

// The log as a host sends it, with its times removed.
std::string LogContent() {
  astring* const path = PXTGetCmdLogPathFileName();
  astring* const content = PXTCmdGetXMLLogContent(path);
  const std::string taken = content == nullptr ? "(none)" : content;
  PXTFreeMem(content);
  PXTFreeMem(path);
  return test::WithoutTimes(taken);
}

std::string ExpectedContent(const std::string& entry) {
  return "<Content>" +
         test::LogOf(test::EntryOf(4, 0, "Local System", "QVPX", "Log was cleared") + entry) +
         "</Content><SMStatus>0</SMStatus>";
}

// What an XML parser reads at this path; "" where the text is not well-formed.
std::string Parsed(const std::string& text, const std::string& xpath) {
  test::WriteFile("/tmp/parsed.xml", text);
  const std::string command =
      "xmllint --xpath 'string(" + xpath + ")' /tmp/parsed.xml > /tmp/parsed.txt";
  if (!test::IsWellFormed("/tmp/parsed.xml") || system(command.c_str()) != 0) return "";
  const std::string found = test::ReadFile("/tmp/parsed.txt");
  return found.substr(0, found.find('\n'));
}

class MainJobNames : public MainJob {
 protected:
  void SetUp() override {
    MainJob::SetUp();
    test::AddUser(kMarkupLogin, 7003, 7100, test::Hash(kPassword));
    test::AddUser(kFaceLogin, 7004, 7100, test::Hash(kPassword));
    test::WriteRoleMap("+users * poweruser\n");
    ASSERT_EQ(PXTOpenRolemapFile(), 0u);
    ASSERT_EQ(PXTGetRightsUsingRolemap(), QVX_PRIV_ADMINISTRATOR);
    ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
  }
};

TEST_F(MainJobNames, ANameOfMarkupLogsInByItsConvertedText) {
  EXPECT_EQ(LogIn(kMarkup), QVX_PRIV_POWERUSER);
  EXPECT_EQ(PXTAuthorizeUser(nullptr, kMarkup), QVX_PRIV_POWERUSER);
  ASSERT_NE(setlocale(LC_ALL, "C"), nullptr);
  EXPECT_EQ(LogIn(kMarkup), QVX_PRIV_NONE) << "a locale without its letter knows no such user";
}

TEST_F(MainJobNames, ANameOfMarkupIsEscapedInTheAnswer) {
  const std::string login = LoginOf(kMarkup);
  EXPECT_EQ(login, kMarkupLogin);
  const std::string answer = AnswerTo(kMarkup, login);
  EXPECT_EQ(answer, ExpectedAnswer(kMarkupEscaped));
  EXPECT_EQ(Parsed(answer, "/Answer/Login"), kMarkupLogin);
  EXPECT_EQ(Parsed(answer, "/Answer/User"), kMarkupLogin);
}

TEST_F(MainJobNames, ANameOfMarkupIsEscapedInTheLogAndItsContent) {
  ASSERT_EQ(LogIn(kMarkup), QVX_PRIV_POWERUSER);
  EXPECT_EQ(PXTAppendToCmdLog(QVX_CMDLOG_FIRST_ID, kMarkupLogin, "\"<&>'",
                              ParameterOf(kMarkup).c_str(), QVX_LOG_INFORMATION),
            SM_STATUS_SUCCESS);
  EXPECT_TRUE(test::IsWellFormed(test::kCommandLog));
  const std::string content = LogContent();
  EXPECT_EQ(content,
            ExpectedContent(test::EntryOf(
                4, 5001, kMarkupEscaped, "&quot;&lt;&amp;&gt;&apos;",
                std::string("<Parameter name=\"user\" value=\"") + kMarkupEscaped + "\"/>")));
  const std::string page = "<Page>" + content + "</Page>";
  EXPECT_EQ(Parsed(page, "//LogEntry[2]/UserInfo"), kMarkupLogin);
  EXPECT_EQ(Parsed(page, "//LogEntry[2]/Source"), "\"<&>'");
  EXPECT_EQ(Parsed(page, "//LogEntry[2]/Description/Parameter/@value"), kMarkupLogin);
}

// Nine bytes for three units do not fit the login's buffer; the XML has room for all.
TEST_F(MainJobNames, ANameThatBeginsWithAPairIsRefusedAndShownWithThePairTwice) {
  EXPECT_EQ(LogIn(kFace), QVX_PRIV_NONE);
  EXPECT_EQ(PXTAuthorizeUser(nullptr, kFace), QVX_PRIV_NONE);
  const std::string login = LoginOf(kFace);
  EXPECT_EQ(login, kFaceLogin);
  const std::string answer = AnswerTo(kFace, login);
  EXPECT_EQ(answer, ExpectedAnswer(kFaceEscaped));
  EXPECT_EQ(Parsed(answer, "/Answer/User"), kFaceLogin);
  EXPECT_EQ(PXTAppendToCmdLog(5002, login.c_str(), "WEB", ParameterOf(kFace).c_str(),
                              QVX_LOG_INFORMATION),
            SM_STATUS_SUCCESS);
  const std::string content = LogContent();
  EXPECT_EQ(content,
            ExpectedContent(test::EntryOf(
                4, 5002, kFaceEscaped, "WEB",
                std::string("<Parameter name=\"user\" value=\"") + kFaceEscaped + "\"/>")));
  EXPECT_EQ(Parsed("<Page>" + content + "</Page>", "//LogEntry[2]/UserInfo"), kFaceLogin);
}

TEST_F(MainJobNames, ANameThatBeginsWithHalfAPairIsRefusedAndLeftOut) {
  EXPECT_EQ(LogIn(kHalf), QVX_PRIV_NONE);
  EXPECT_EQ(PXTAuthorizeUser(nullptr, kHalf), QVX_PRIV_NONE);
  EXPECT_EQ(LoginOf(kHalf), "status " + std::to_string(SM_STATUS_BAD_DATA));
  void* const answer = PXTXAllocBuf(16, 0);
  EXPECT_EQ(PXTXBufCatBeginNode(answer, "Answer", nullptr), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTXBufCatNode(answer, "User", nullptr, kEscapedUnits, kHalf), SM_STATUS_NO_MEMORY);
  EXPECT_EQ(PXTXBufCatNode(answer, "Name", nullptr, kVerbatimUnits, kHalf), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTXBufCatEndNode(answer, "Answer"), SM_STATUS_SUCCESS);
  const std::string text = Taken(answer);
  EXPECT_EQ(text, "<Answer><Name></Name></Answer>");
  EXPECT_EQ(ParameterOf(kHalf), "<Parameter name=\"user\"/>");
  EXPECT_EQ(PXTAppendToCmdLog(5003, "?", "WEB", ParameterOf(kHalf).c_str(), QVX_LOG_INFORMATION),
            SM_STATUS_SUCCESS);
  const std::string content = LogContent();
  EXPECT_EQ(content,
            ExpectedContent(test::EntryOf(4, 5003, "?", "WEB", "<Parameter name=\"user\"/>")));
  EXPECT_EQ(Parsed("<Page>" + content + "</Page>", "//LogEntry[2]/UserInfo"), "?");
}

}  // namespace
}  // namespace qvx
