// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/authenticate.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qvxcs/access.h"

#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/guard_buffer.h"
#include "support/long_text.h"
#include "support/processes.h"
#include "tests/access/accounts.h"
#include "tests/access/memory_scan.h"

namespace qvx {
namespace {

using Units = std::vector<ustring>;

constexpr char16_t kPassword[] = u"Wonder-1and";

Units Text(const std::u16string& text) {
  Units units(text.begin(), text.end());
  units.push_back(0);
  return units;
}

// A null text means a null pointer.
u32 LogIn(const char16_t* domain, const char16_t* user, const char16_t* password) {
  const Units domainName = Text(domain == nullptr ? u"" : domain);
  const Units name = Text(user == nullptr ? u"" : user);
  Units secret = Text(password == nullptr ? u"" : password);
  const u32 rights = PXTAuthenticateUser(domain == nullptr ? nullptr : domainName.data(),
                                         user == nullptr ? nullptr : name.data(),
                                         password == nullptr ? nullptr : secret.data());
  EXPECT_EQ(secret, Units(secret.size(), 0)) << "the password is wiped in any case";
  return rights;
}

u32 Authorize(const char16_t* domain, const char16_t* user) {
  const Units domainName = Text(domain == nullptr ? u"" : domain);
  const Units name = Text(user == nullptr ? u"" : user);
  return PXTAuthorizeUser(domain == nullptr ? nullptr : domainName.data(),
                          user == nullptr ? nullptr : name.data());
}

class Authenticate : public ::testing::Test {
 protected:
  void SetUp() override {
    test::OnlyRoot();
    const std::string hash = test::Hash("Wonder-1and");
    test::AddGroup("users", 7100);
    test::AddUser("alice", 7001, 7100, hash);
    test::AddUser("member", 7002, 0, hash);
    test::AddUser("toor", 0, 7100, hash);
    test::AddUser("alice@lab", 7003, 7100, hash);
    test::AddUser("alice@", 7004, 7100, hash);
    test::UnixPamService("qvauth");
    ASSERT_EQ(ModuleAttach(), 1);
  }
};

TEST_F(Authenticate, TheRightPasswordGivesTheUsersRights) {
  EXPECT_EQ(LogIn(nullptr, u"alice", kPassword), QVX_PRIV_USER);
  EXPECT_EQ(LogIn(nullptr, u"member", kPassword), QVX_PRIV_POWERUSER);
  EXPECT_EQ(LogIn(nullptr, u"toor", kPassword), u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
}

TEST_F(Authenticate, AWrongEmptyOrUnknownLoginIsRefused) {
  EXPECT_EQ(LogIn(nullptr, u"alice", u"Wonder-2and"), 0u);
  EXPECT_EQ(LogIn(nullptr, u"alice", u""), 0u);
  EXPECT_EQ(LogIn(nullptr, u"nobody-here", kPassword), 0u);
  EXPECT_EQ(LogIn(nullptr, u"", kPassword), 0u);
}

TEST_F(Authenticate, NullNamesAndPasswordsAreRefused) {
  EXPECT_EQ(LogIn(nullptr, nullptr, kPassword), 0u);
  EXPECT_EQ(LogIn(u"lab", nullptr, kPassword), 0u);
  EXPECT_EQ(LogIn(nullptr, u"alice", nullptr), 0u);
  EXPECT_EQ(LogIn(u"lab", u"alice", nullptr), 0u);
  EXPECT_EQ(LogIn(nullptr, nullptr, nullptr), 0u);
}

TEST_F(Authenticate, ADomainIsJoinedToTheLogin) {
  EXPECT_EQ(LogIn(u"lab", u"alice", kPassword), QVX_PRIV_USER);
  EXPECT_EQ(LogIn(u"other", u"alice", kPassword), 0u) << "alice@other is unknown";
}

TEST_F(Authenticate, AnEmptyDomainIsADomain) {
  EXPECT_EQ(LogIn(u"", u"alice", kPassword), QVX_PRIV_USER);
  EXPECT_EQ(LogIn(u"", u"member", kPassword), 0u) << "member@ is unknown";
}

TEST_F(Authenticate, ADomainLoginIsJudgedOnItsDomainAsHost) {
  test::WriteRoleMap("alice *.lab.x poweruser\n");
  ASSERT_EQ(PXTOpenRolemapFile(), 0u);
  (void)PXTGetRightsUsingRolemap();
  EXPECT_EQ(LogIn(u"lab", u"alice", kPassword), QVX_PRIV_POWERUSER);
  EXPECT_EQ(LogIn(nullptr, u"alice", kPassword), 0u);
}

TEST_F(Authenticate, AMessageThatPamSendsFailsTheLogin) {
  const std::string module = QVX_PAM_MODULE_PATH;
  test::WritePamService("qvauth", "auth required " + module + " info\naccount required " + module);
  EXPECT_EQ(LogIn(nullptr, u"alice", kPassword), 0u);
  test::WritePamService("qvauth", "auth required " + module + "\naccount required " + module);
  EXPECT_EQ(LogIn(nullptr, u"alice", kPassword), QVX_PRIV_USER);
}

TEST_F(Authenticate, WithoutAServiceThePasswordIsWipedAllTheSame) {
  pam_servicename = nullptr;
  EXPECT_EQ(LogIn(nullptr, u"alice", kPassword), 0u);
}

TEST_F(Authenticate, ANameWithTwoTwoByteCharactersIsRefused) {
  const std::string hash = test::Hash("Wonder-1and");
  test::AddUser("ren\xC3\xA9", 7010, 7100, hash);
  test::AddUser("ren\xC3\xA9\xC3\xA9", 7011, 7100, hash);
  ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
  EXPECT_EQ(LogIn(nullptr, u"ren\u00E9", kPassword), QVX_PRIV_USER);
  EXPECT_EQ(LogIn(nullptr, u"ren\u00E9\u00E9", kPassword), 0u);
  EXPECT_EQ(Authorize(nullptr, u"ren\u00E9"), QVX_PRIV_USER);
  EXPECT_EQ(Authorize(nullptr, u"ren\u00E9\u00E9"), 0u);
}

TEST_F(Authenticate, APasswordWithOneTwoByteCharacterFits) {
  test::AddUser("bob", 7010, 7100, test::Hash("p\xC3\xA9z"));
  test::AddUser("eve", 7011, 7100, test::Hash("p\xC3\xA9\xC3\xA9z"));
  EXPECT_EQ(LogIn(nullptr, u"bob", u"p\u00E9z"), QVX_PRIV_USER);
  EXPECT_EQ(LogIn(nullptr, u"eve", u"p\u00E9\u00E9z"), 0u);
}

TEST_F(Authenticate, TextThatCannotBeConvertedIsRefused) {
  const char16_t unpaired[] = {0xD800, 'a', 0};
  EXPECT_EQ(LogIn(nullptr, unpaired, kPassword), 0u);
  EXPECT_EQ(LogIn(nullptr, u"alice", unpaired), 0u);
  EXPECT_EQ(LogIn(unpaired, u"alice", kPassword), 0u);
  EXPECT_EQ(Authorize(nullptr, unpaired), 0u);
}

TEST_F(Authenticate, ALoginOfTenThousandUnitsIsRefused) {
  const std::u16string name(10000, u'a');
  EXPECT_EQ(LogIn(nullptr, name.c_str(), kPassword), 0u);
  EXPECT_EQ(LogIn(name.c_str(), u"alice", kPassword), 0u);
  EXPECT_EQ(LogIn(nullptr, u"alice", name.c_str()), 0u);
}

TEST_F(Authenticate, NothingBehindThePasswordsTerminatorIsWritten) {
  test::GuardBuffer<ustring> secret(3);
  secret[0] = 'x';
  secret[1] = 0;
  const Units name = Text(u"alice");
  EXPECT_EQ(PXTAuthenticateUser(nullptr, name.data(), secret.data()), 0u);
  EXPECT_EQ(secret[0], 0);
  EXPECT_TRUE(secret.FrontUntouched());
  EXPECT_TRUE(secret.UntouchedFrom(2));
}

TEST_F(Authenticate, WithoutMemoryTheLoginIsRefusedAndThePasswordWiped) {
  const Units name = Text(u"alice");
  const Units domain = Text(u"lab");
  Units secret = Text(kPassword);
  const u32 met = test::FailEachAllocation(
      [&] {
        for (size_t at = 0; at + 1 < secret.size(); ++at)
          secret[at] = kPassword[at];
        return PXTAuthenticateUser(domain.data(), name.data(), secret.data());
      },
      [&](u32 rights) {
        EXPECT_TRUE(rights == 0 || rights == QVX_PRIV_USER) << rights;
        EXPECT_EQ(secret, Units(secret.size(), 0));
      });
  EXPECT_GE(met, 4u);
}

TEST_F(Authenticate, AuthorizingAsksForNoPassword) {
  EXPECT_EQ(Authorize(nullptr, u"alice"), QVX_PRIV_USER);
  EXPECT_EQ(Authorize(nullptr, u"member"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Authorize(nullptr, u"toor"), u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
  EXPECT_EQ(Authorize(nullptr, u"nobody-here"), QVX_PRIV_USER) << "the built-in line for anyone";
  EXPECT_EQ(Authorize(nullptr, nullptr), 0u);
}

TEST_F(Authenticate, AuthorizingTakesAnEmptyDomainAsNoneAndRefusesOthers) {
  EXPECT_EQ(Authorize(u"", u"toor"), u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
  EXPECT_EQ(Authorize(u"lab", u"toor"), 0u);
  EXPECT_EQ(Authorize(u"lab", nullptr), 0u);
}

TEST_F(Authenticate, AuthorizingWithoutMemoryGrantsNoMore) {
  const Units name = Text(u"alice");
  const u32 met = test::FailEachAllocation(
      [&name] { return PXTAuthorizeUser(nullptr, name.data()); },
      [](u32 rights) { EXPECT_TRUE(rights == 0 || rights == QVX_PRIV_USER) << rights; });
  // The name, the role map reader, and the text that it searches for.
  EXPECT_GE(met, 3u);
  EXPECT_EQ(Authorize(nullptr, u"alice"), QVX_PRIV_USER);
}

TEST_F(Authenticate, AuthorizingLeavesTheCallersNameAlone) {
  const Units name = Text(u"lab\\alice");
  const Units standing = name;
  EXPECT_EQ(PXTAuthorizeUser(nullptr, name.data()), QVX_PRIV_USER);
  EXPECT_EQ(name, standing);
}

TEST(AuthenticateStubs, DirectoryServiceAndDomainsAreNotProvided) {
  EXPECT_EQ(PXTADAuthenticateUser(0, 0, 0, 0, 0, 0, 0, 0, 0), -1);
  EXPECT_EQ(PXTADAuthenticateUser(1, 2, 3, 4, 5, 6, 7, 8, 9), -1);
  EXPECT_EQ(PXTGetOSDomainList(), nullptr);
}

// "Zq7#vexil-Xw91" with every bit inverted, so that the scan itself holds no copy.
constexpr u8 kInverted[test::kSecretLength + 1] = {
    0xFF ^ 'Z', 0xFF ^ 'q', 0xFF ^ '7', 0xFF ^ '#', 0xFF ^ 'v', 0xFF ^ 'e', 0xFF ^ 'x', 0xFF ^ 'i',
    0xFF ^ 'l', 0xFF ^ '-', 0xFF ^ 'X', 0xFF ^ 'w', 0xFF ^ '9', 0xFF ^ '1', 0xFF};

// The password that ends with it.
template <typename Unit>
void PutPassword(Unit* out) {
  for (size_t at = 0; at < test::kBeforeSecret; ++at) {
    *out++ = 'a';
  }
  for (size_t at = 0; at <= test::kSecretLength; ++at) {
    out[at] = static_cast<Unit>(kInverted[at] ^ 0xFF);
  }
}

class AuthenticateMemory : public Authenticate {
 protected:
  void SetUp() override {
    Authenticate::SetUp();
    // A child computes the hash, so that this process has never seen the password.
    ASSERT_EQ(test::InChild([] {
                char password[test::kPasswordLength + 1];
                PutPassword(password);
                test::AddUser("bob", 7010, 7100, test::Hash(password));
                return 0;
              }),
              0);
  }

  static void ExpectNowhere() {
    const test::Found found = test::ScanWritableMemory(kInverted);
    EXPECT_EQ(found.narrow, 0u);
    EXPECT_EQ(found.wide, 0u);
  }

  // bob's rights with this password, either `spoilt` or right.
  static u32 LogInBob(bool spoilt) {
    const Units name = Text(u"bob");
    ustring secret[test::kPasswordLength + 2] = {};
    PutPassword(secret);
    if (spoilt) secret[test::kPasswordLength] = 'x';
    return PXTAuthenticateUser(nullptr, name.data(), secret);
  }
};

TEST_F(AuthenticateMemory, TheScanFindsAPlantedCopyOnHeapAndStack) {
  constexpr size_t kRoom = (test::kPasswordLength + 1) * sizeof(ustring);
  auto* heap = static_cast<ustring*>(malloc(kRoom));
  char stack[test::kPasswordLength + 1];
  ASSERT_NE(heap, nullptr);
  PutPassword(heap);
  PutPassword(stack);
  const test::Found found = test::ScanWritableMemory(kInverted);
  explicit_bzero(heap, kRoom);
  explicit_bzero(stack, sizeof(stack));
  free(heap);
  EXPECT_GE(found.narrow, 1u);
  EXPECT_GE(found.wide, 1u);
  ExpectNowhere();
}

TEST_F(AuthenticateMemory, NoCopyOfAnAcceptedPasswordIsLeft) {
  EXPECT_EQ(LogInBob(false), QVX_PRIV_USER);
  ExpectNowhere();
}

TEST_F(AuthenticateMemory, NoCopyOfARefusedPasswordIsLeft) {
  EXPECT_EQ(LogInBob(true), 0u);
  ExpectNowhere();
}

TEST_F(AuthenticateMemory, NoCopyIsLeftWhereAMessageFailsTheConversation) {
  const std::string module = QVX_PAM_MODULE_PATH;
  test::WritePamService("qvauth",
                        "auth required " + module + " password info\naccount required " + module);
  EXPECT_EQ(LogInBob(false), 0u);
  ExpectNowhere();
}

TEST(AuthenticateSize, ANameBeyond32BitsIsRefusedWithoutAnAllocation) {
  if (!test::kHasLongTexts) GTEST_SKIP();
  const test::LongText<ustring> name((u64{1} << 32) - 1, 'a');
  Units secret = Text(kPassword);
  {
    const test::FailNthAllocation fault(1);
    EXPECT_EQ(PXTAuthenticateUser(nullptr, name.text(), secret.data()), 0u);
    EXPECT_FALSE(test::FailNthAllocation::Fired());
  }
  EXPECT_EQ(secret, Units(secret.size(), 0));
}

}  // namespace
}  // namespace qvx
