// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/pam_login.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "qvxcs/access.h"

#include "support/alloc_fault.h"
#include "support/guard_buffer.h"
#include "tests/access/accounts.h"

namespace qvx {
namespace {

s32 Login(const char* user, const char* password) { return pam_auth_basic_user(user, password); }

class PamLogin : public ::testing::Test {
 protected:
  void SetUp() override {
    test::OnlyRoot();
    test::AddGroup("users", 7100);
    test::AddUser("alice", 7001, 7100, test::Hash("Wonder-1and"));
    test::UnixPamService("qvauth");
  }
};

TEST_F(PamLogin, TheRightPasswordIsAccepted) { EXPECT_EQ(Login("alice", "Wonder-1and"), 0); }

TEST_F(PamLogin, WrongEmptyAndCutPasswordsAreRefused) {
  EXPECT_EQ(Login("alice", "Wonder-2and"), -1);
  EXPECT_EQ(Login("alice", ""), -1);
  EXPECT_EQ(Login("alice", "Wonder-1an"), -1);
}

TEST_F(PamLogin, AWrongPasswordIsRefusedBehindTheModulesOwnDelayToo) {
  test::WritePamService("qvauth", "auth required pam_unix.so\naccount required pam_unix.so\n");
  EXPECT_EQ(Login("alice", "Wonder-2and"), -1);
}

TEST_F(PamLogin, AnUnknownOrEmptyUserIsRefused) {
  EXPECT_EQ(Login("bob", "Wonder-1and"), -1);
  EXPECT_EQ(Login("", "Wonder-1and"), -1);
}

TEST_F(PamLogin, AnAccountWithoutAPasswordIsRefused) {
  test::AddUser("open", 7002, 7100, "");
  test::WritePamService("qvauth",
                        "auth required pam_unix.so nodelay nullok\n"
                        "account required pam_unix.so\n");
  EXPECT_EQ(Login("open", ""), -1);
}

TEST_F(PamLogin, ALockedAccountIsRefused) {
  test::AddUser("locked", 7002, 7100, "!" + test::Hash("Wonder-1and"));
  EXPECT_EQ(Login("locked", "Wonder-1and"), -1);
}

TEST_F(PamLogin, AnExpiredAccountIsRefusedThoughItsPasswordIsRight) {
  test::AddUser("gone", 7002, 7100, test::Hash("Wonder-1and"), "10000:0:99999:7::10001:");
  EXPECT_EQ(Login("gone", "Wonder-1and"), -1);
}

TEST_F(PamLogin, APasswordThatMustBeChangedIsRefused) {
  test::AddUser("aged", 7002, 7100, test::Hash("Wonder-1and"), "0:0:99999:7:::");
  EXPECT_EQ(Login("aged", "Wonder-1and"), -1);
}

TEST_F(PamLogin, AMissingServiceIsRefused) {
  unlink("/etc/pam.d/qvauth");
  test::WritePamService("other", "auth required pam_deny.so\naccount required pam_deny.so\n");
  EXPECT_EQ(Login("alice", "Wonder-1and"), -1);
}

TEST_F(PamLogin, TheServiceIsNamedByTheExportedText) {
  ASSERT_STREQ(pam_servicename, "qvauth");
  test::WritePamService("qvdeny", "auth required pam_deny.so\naccount required pam_deny.so\n");
  astring other[] = "qvdeny";
  astring* const standing = pam_servicename;
  pam_servicename = other;
  EXPECT_EQ(Login("alice", "Wonder-1and"), -1);
  pam_servicename = standing;
  EXPECT_EQ(Login("alice", "Wonder-1and"), 0);
}

TEST_F(PamLogin, TheServicesTextIsWritable) {
  pam_servicename[0] = 'Q';
  EXPECT_STREQ(pam_servicename, "Qvauth");
}

TEST_F(PamLogin, WithoutAServiceEveryLoginIsRefused) {
  pam_servicename = nullptr;
  EXPECT_EQ(Login("alice", "Wonder-1and"), -1);
}

void UseTestModule(const std::string& arguments) {
  const std::string module = QVX_PAM_MODULE_PATH;
  test::WritePamService("qvauth", "auth required " + module + " " + arguments +
                                      "\naccount required " + module + "\n");
}

TEST_F(PamLogin, AnInformationalMessageFailsTheLogin) {
  UseTestModule("user password");
  EXPECT_EQ(Login("anybody", "anything"), 0) << "both prompts are answered";
  UseTestModule("info");
  EXPECT_EQ(Login("anybody", "anything"), -1);
  UseTestModule("error");
  EXPECT_EQ(Login("anybody", "anything"), -1);
}

TEST_F(PamLogin, AModuleThatIgnoresTheFailedConversationLetsTheLoginSucceed) {
  UseTestModule("info ignore");
  EXPECT_EQ(Login("anybody", "anything"), 0);
}

TEST_F(PamLogin, ARefusingAccountFailsTheLogin) {
  test::WritePamService("qvauth", std::string("auth required ") + QVX_PAM_MODULE_PATH +
                                      "\naccount required pam_deny.so\n");
  EXPECT_EQ(Login("anybody", "anything"), -1);
}

// The module's record of a login by these arguments; in Linux-PAM the flag that forbids empty
// passwords is 1, an authentication error 7, an expired account 13.
std::string RecordOf(const std::string& authenticate, const std::string& account) {
  const std::string module = QVX_PAM_MODULE_PATH;
  test::WritePamService("qvauth", "auth required " + module + " record " + authenticate +
                                      "\naccount required " + module + " record " + account + "\n");
  (void)unlink("/tmp/pam_record");
  (void)Login("anybody", "anything");
  return test::ReadFile("/tmp/pam_record");
}

TEST_F(PamLogin, BothStepsForbidEmptyPasswords) {
  EXPECT_EQ(RecordOf("", ""), "authenticate 1\naccount 1\nend 0\n");
}

TEST_F(PamLogin, TheTransactionEndsWithTheStatusOfTheStepThatFailed) {
  EXPECT_EQ(RecordOf("info", ""), "authenticate 1\nend 7\n");
  EXPECT_EQ(RecordOf("", "expired"), "authenticate 1\naccount 1\nend 13\n");
}

constexpr PamAnswers kAnswers = {"alice", "secret"};

// A conversation of messages of these styles.
class Talk {
 public:
  explicit Talk(std::initializer_list<int> styles) {
    for (const int style : styles)
      messages_[count++] = {style, "?"};
    for (int at = 0; at < kMost; ++at)
      pointers[at] = &messages_[at];
  }
  ~Talk() {
    for (int at = 0; responses != &untouched && responses != nullptr && at < count; ++at) {
      free(responses[at].resp);
    }
    if (responses != &untouched) free(responses);
  }
  Talk(const Talk&) = delete;
  Talk& operator=(const Talk&) = delete;

  int Go() { return Go(count); }
  int Go(int messages) {
    return auth_pam_talker(messages, pointers, &responses, const_cast<PamAnswers*>(&kAnswers));
  }

  static constexpr int kMost = 40;
  int count = 0;
  const pam_message* pointers[kMost];
  pam_response untouched{};
  pam_response* responses = &untouched;

 private:
  pam_message messages_[kMost]{};
};

TEST(PamTalker, PromptsAreAnsweredInTheirOrder) {
  Talk talk{PAM_PROMPT_ECHO_ON, PAM_PROMPT_ECHO_OFF, PAM_PROMPT_ECHO_ON};
  ASSERT_EQ(talk.Go(), PAM_SUCCESS);
  EXPECT_STREQ(talk.responses[0].resp, "alice");
  EXPECT_STREQ(talk.responses[1].resp, "secret");
  EXPECT_STREQ(talk.responses[2].resp, "alice");
  EXPECT_EQ(talk.responses[1].resp_retcode, 0);
}

TEST(PamTalker, AnyOtherStyleIsAConversationErrorAndSetsNoResponses) {
  for (const int style : {PAM_TEXT_INFO, PAM_ERROR_MSG, PAM_RADIO_TYPE, PAM_BINARY_PROMPT, 0, -1}) {
    Talk talk{PAM_PROMPT_ECHO_OFF, style};
    EXPECT_EQ(talk.Go(), PAM_CONV_ERR) << style;
    EXPECT_EQ(talk.responses, &talk.untouched) << style;
  }
}

TEST(PamTalker, MissingPointersAreConversationErrors) {
  Talk talk{PAM_PROMPT_ECHO_ON};
  auto* answers = const_cast<PamAnswers*>(&kAnswers);
  EXPECT_EQ(auth_pam_talker(1, nullptr, &talk.responses, answers), PAM_CONV_ERR);
  EXPECT_EQ(auth_pam_talker(1, talk.pointers, nullptr, answers), PAM_CONV_ERR);
  EXPECT_EQ(auth_pam_talker(1, talk.pointers, &talk.responses, nullptr), PAM_CONV_ERR);
  talk.pointers[0] = nullptr;
  EXPECT_EQ(talk.Go(), PAM_CONV_ERR);
  EXPECT_EQ(talk.responses, &talk.untouched);
}

TEST(PamTalker, BetweenOneAndThirtyTwoMessagesAreAnswered) {
  Talk talk{};
  for (int at = 0; at < Talk::kMost; ++at) {
    const_cast<pam_message*>(talk.pointers[at])->msg_style = PAM_PROMPT_ECHO_ON;
  }
  for (const int count : {0, -1, 33, 65537}) {
    EXPECT_EQ(talk.Go(count), PAM_CONV_ERR) << count;
    EXPECT_EQ(talk.responses, &talk.untouched);
  }
  talk.count = 32;
  ASSERT_EQ(talk.Go(), PAM_SUCCESS);
  EXPECT_STREQ(talk.responses[31].resp, "alice");
}

TEST(PamTalker, WithoutMemoryItIsAConversationError) {
  const u32 met = test::FailEachAllocation(
      [] {
        Talk talk{PAM_PROMPT_ECHO_OFF, PAM_PROMPT_ECHO_ON};
        const int status = talk.Go();
        EXPECT_EQ(talk.responses == &talk.untouched, status != PAM_SUCCESS);
        return status;
      },
      [](int status) { EXPECT_EQ(status, PAM_CONV_ERR); });
  EXPECT_EQ(met, 3u);
}

}  // namespace
}  // namespace qvx
