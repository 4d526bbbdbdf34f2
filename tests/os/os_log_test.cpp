// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/os_log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <clocale>
#include <cstring>
#include <string>

#include "qvxcs/os_log.h"
#include "qvxcs/status.h"

#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/long_text.h"

namespace {

constexpr u32 kFailed = 0xFFFFFFFF;
constexpr char kNothing[] = "(nothing)";

// The log service's socket in the private /dev.
class OSLog : public testing::Test {
 protected:
  void SetUp() override {
    qvx::test::RequireSandbox();
    ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
    service_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un name = {};
    name.sun_family = AF_UNIX;
    strcpy(name.sun_path, "/dev/log");
    ASSERT_EQ(bind(service_, reinterpret_cast<sockaddr*>(&name), sizeof(name)), 0);
  }
  void TearDown() override {
    close(service_);
    (void)unlink("/dev/log");
  }

  // The next message.
  std::string Received() {
    char message[8192];
    const ssize_t got = recv(service_, message, sizeof(message), 0);
    return got < 0 ? kNothing : std::string(message, static_cast<size_t>(got));
  }
  // The same without its time: "<priority>" and "source: text".
  std::string Logged() {
    std::string message = Received();
    const size_t priority = message.find('>');
    constexpr size_t kTime = sizeof "Nov 21 14:30:17 " - 1;
    if (priority == std::string::npos || message.size() < priority + 1 + kTime) return message;
    return message.erase(priority + 1, kTime);
  }

 private:
  int service_ = -1;
};

std::u16string Units(size_t count, char16_t unit) { return std::u16string(count, unit); }

const ustring* Text(const std::u16string& text) {
  return reinterpret_cast<const ustring*>(text.c_str());
}

u32 Append(u16 type, u32 number, const std::u16string& source, const std::u16string& text) {
  return qvx::AppendToOSLog(type, number, Text(source), Text(text));
}

TEST_F(OSLog, AnEventIsLoggedUnderItsSourceWithItsNumber) {
  EXPECT_EQ(PXTAppendToOSLog(QVX_OSLOG_ERROR, 4294967295U, Text(u"host"), Text(u"disk full")), 0U);
  EXPECT_EQ(Logged(), "<27>host: EventID: 4294967295  disk full");
  EXPECT_EQ(Received(), kNothing);
}

TEST_F(OSLog, TheConnectionIsClosedAfterTheEvent) {
  closelog();  // also one that an earlier case of this process may have left
  const int before = open("/dev/null", O_RDONLY | O_CLOEXEC);
  close(before);
  ASSERT_EQ(Append(1, 1, u"host", u"text"), 0U);
  const int after = open("/dev/null", O_RDONLY | O_CLOEXEC);
  close(after);
  EXPECT_EQ(after, before) << "the connection's descriptor is free again";
  EXPECT_EQ(Logged(), "<27>host: EventID: 1  text");
}

TEST_F(OSLog, TheEventTypeGivesThePriority) {
  // facility daemon is 3 * 8; error 3, warning 4, informational 6
  const struct {
    u16 type;
    const char* priority;
  } cases[] = {{1, "<27>"}, {2, "<28>"}, {0, "<30>"}, {3, "<30>"}, {0x101, "<30>"}};
  for (const auto& one : cases) {
    EXPECT_EQ(Append(one.type, 7, u"host", u"x"), 0U);
    EXPECT_EQ(Logged(), std::string(one.priority) + "host: EventID: 7  x") << one.type;
  }
}

TEST_F(OSLog, ACarriageReturnBecomesABlankAndALineFeedStays) {
  EXPECT_EQ(Append(0, 1, u"host", u"one\r\ntwo\r"), 0U);
  EXPECT_EQ(Logged(), "<30>host: EventID: 1  one \ntwo ");
}

TEST_F(OSLog, APercentSignIsLoggedVerbatim) {
  EXPECT_EQ(Append(0, 1, u"h%s", u"100% %s%n %d"), 0U);
  EXPECT_EQ(Logged(), "<30>h%s: EventID: 1  100% %s%n %d");
}

TEST_F(OSLog, AnEmptyTextIsLoggedAsNone) {
  EXPECT_EQ(Append(0, 1, u"host", u""), 0U);
  EXPECT_EQ(Logged(), "<30>host: EventID: 1  ");
}

TEST_F(OSLog, ALongTextIsLoggedWhole) {
  EXPECT_EQ(Append(0, 1, u"host", Units(3000, u'x')), 0U);
  EXPECT_EQ(Logged(), "<30>host: EventID: 1  " + std::string(3000, 'x'));
}

TEST_F(OSLog, TextIsInTheLocalesEncoding) {
  EXPECT_EQ(Append(0, 1, u"h\u00F4te", u"\u20AC5"), 0U);
  EXPECT_EQ(Logged(),
            "<30>h\xC3\xB4te: EventID: 1  \xE2\x82\xAC"
            "5");
}

TEST_F(OSLog, ATextLongerThanItsRoomIsCutAtAWholeCharacter) {
  // The room is the units and six bytes, the NUL counted: five two-byte units fill the ten bytes
  // of theirs, of six only five fit the eleven.
  EXPECT_EQ(Append(0, 1, u"host", Units(5, 0xE9)), 0U);
  EXPECT_EQ(Logged(), "<30>host: EventID: 1  \xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9");
  EXPECT_EQ(Append(0, 1, Units(6, 0xE9), u"x"), 0U);
  EXPECT_EQ(Logged(), "<30>\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9: EventID: 1  x");
}

TEST_F(OSLog, TextThatTheLocaleCannotHoldIsNotLogged) {
  ASSERT_NE(setlocale(LC_ALL, "C"), nullptr);
  EXPECT_EQ(Append(0, 1, u"host", u"\u00E9"), kFailed);
  EXPECT_EQ(Append(0, 1, u"\u00E9", u"text"), kFailed);
  EXPECT_EQ(Received(), kNothing);
}

TEST_F(OSLog, NullTextsAreRefused) {
  EXPECT_EQ(qvx::AppendToOSLog(QVX_OSLOG_ERROR, 1, nullptr, Text(u"text")), kFailed);
  EXPECT_EQ(qvx::AppendToOSLog(QVX_OSLOG_ERROR, 1, Text(u"host"), nullptr), kFailed);
  EXPECT_EQ(Received(), kNothing);
}

TEST_F(OSLog, WithoutMemoryNothingIsLogged) {
  const u32 met = qvx::test::FailEachAllocation([] { return Append(1, 1, u"host", u"text"); },
                                                [this](u32 status) {
                                                  EXPECT_EQ(status, kFailed);
                                                  EXPECT_EQ(Received(), kNothing);
                                                });
  EXPECT_GE(met, 3U);
  EXPECT_EQ(Logged(), "<27>host: EventID: 1  text");
}

TEST_F(OSLog, AMissingServiceIsNotReported) {
  ASSERT_EQ(unlink("/dev/log"), 0);
  EXPECT_EQ(Append(1, 1, u"host", u"text"), 0U);
}

TEST_F(OSLog, ClearingSucceedsWithoutEffect) {
  EXPECT_EQ(Append(1, 1, u"host", u"text"), 0U);
  EXPECT_EQ(qvx::ClearOSLog(), 0U);
  EXPECT_EQ(PXTClearOSLog(), 0U);
  EXPECT_EQ(Logged(), "<27>host: EventID: 1  text");
}

TEST(OSLogText, CarriageReturnsBecomeBlanks) {
  astring text[] = "\ra\r\r\nb";
  qvx::RemoveCarriageReturns(text);
  EXPECT_STREQ(text, " a  \nb");
  astring empty[] = "";
  qvx::RemoveCarriageReturns(empty);
  EXPECT_STREQ(empty, "");
  qvx::RemoveCarriageReturns(nullptr);
}

TEST_F(OSLog, ATextBeyond32BitsFailsWithoutAnAllocation) {
  if (!qvx::test::kHasLongTexts) GTEST_SKIP();
  const qvx::test::LongText<ustring> text((u64{1} << 32) - 1, 'a');
  const qvx::test::FailNthAllocation fault(1);
  EXPECT_EQ(qvx::AppendToOSLog(0, 1, text.text(), Text(u"x")), kFailed);
  EXPECT_FALSE(qvx::test::FailNthAllocation::Fired());
  EXPECT_EQ(Received(), kNothing);
}

}  // namespace
