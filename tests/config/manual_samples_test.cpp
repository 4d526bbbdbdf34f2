// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The samples of the manual's section 5, as the library reads and writes them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "qvxcs/command_log.h"
#include "qvxcs/ini_file.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/memory.h"
#include "qvxcs/number_text.h"
#include "qvxcs/status.h"
#include "qvxcs/string_resource.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"
#include "os/ipc_name.h"
#include "support/files.h"
#include "support/manual_sample.h"

QVX_MANUAL_SAMPLE(IniSample, "net.ini")
QVX_MANUAL_SAMPLE(PropertiesSample, "qvx.properties")
QVX_MANUAL_SAMPLE(StringsSample, "messages.utf16")
QVX_MANUAL_SAMPLE(LogSample, "log.xml")
QVX_MANUAL_SAMPLE(ConfSample, "qvx.conf")

namespace qvx {
namespace {

using namespace std::string_literals;

using test::ReadFile;
using test::WriteFile;

// The text with one part replaced; that part must be present.
std::string Replaced(std::string text, const std::string& part, const std::string& by) {
  const size_t at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return at == std::string::npos ? text : text.replace(at, part.size(), by);
}

// --- qvx-ini(5) ---

constexpr char kIni[] = "/tmp/net.ini";

constexpr s32 kText = 1;
constexpr s32 kUnits = 2;
constexpr s32 kBytes = 3;
constexpr s32 kTruth = 4;
constexpr s32 kUnsigned32 = 5;
constexpr s32 kSigned32 = 6;
constexpr s32 kUnsigned64 = 7;
constexpr s32 kDouble = 9;

class ManualIni : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ModuleAttach(), 1);
    WriteFile(kIni, IniSample());
  }
};

u32 Read(const char* section, const char* key, s32 type, void* value, u32* size) {
  return PXTReadINIPathFileValue(section, key, type, value, size, nullptr, 0, kIni, QVX_LOCK_WAIT);
}

template <typename Number>
Number NumberOf(const char* section, const char* key, s32 type) {
  Number number = 77;
  u32 size = sizeof(number);
  EXPECT_EQ(Read(section, key, type, &number, &size), SM_STATUS_SUCCESS) << key;
  return number;
}

// The bytes delivered for a text, a list or bytes.
std::string BytesOf(const char* section, const char* key, s32 type) {
  char room[256];
  u32 size = sizeof(room);
  EXPECT_EQ(Read(section, key, type, room, &size), SM_STATUS_SUCCESS);
  return {room, size};
}

TEST_F(ManualIni, SampleHasTwoSectionsWithTheirKeys) {
  EXPECT_EQ(BytesOf(nullptr, nullptr, kText), "Net\0Log\0"s);
  EXPECT_EQ(BytesOf("Net", nullptr, kText),
            "port\0host\0trusted\0offset\0quota\0timeout\0mac\0label\0"s);
  EXPECT_EQ(BytesOf("Log", nullptr, kText), "level\0name \0"s);
}

TEST_F(ManualIni, SampleHasTheValuesOfAllTypes) {
  EXPECT_EQ(NumberOf<u32>("Net", "port", kUnsigned32), 8080u);
  EXPECT_EQ(BytesOf("Net", "host", kText), "srv1.lab\0"s);
  EXPECT_EQ(NumberOf<booln>("Net", "trusted", kTruth), 1u);
  EXPECT_EQ(NumberOf<s32>("Net", "offset", kSigned32), -5);
  EXPECT_EQ(NumberOf<u64>("Net", "quota", kUnsigned64), 5000000000u);
  EXPECT_EQ(NumberOf<d64>("Net", "timeout", kDouble), 1.5);
  EXPECT_EQ(BytesOf("Net", "mac", kBytes), "\x00\x1B\x44\x11\x3A\xB7"s);
  EXPECT_EQ(BytesOf("Net", "label", kUnits), "A\0\0\0"s);
  EXPECT_EQ(NumberOf<u32>("Log", "level", kUnsigned32), 3u);
}

TEST_F(ManualIni, BlankBeforeTheEqualsSignBelongsToTheKeyAndTheOneBehindItToTheValue) {
  EXPECT_EQ(BytesOf("Log", "name ", kText), " collector\0"s);
  char room[16];
  u32 size = sizeof(room);
  EXPECT_EQ(Read("Log", "name", kText, room, &size), SM_STATUS_KEY_NOT_FOUND);
}

TEST_F(ManualIni, WritingTheValuesOfTheSampleLeavesItAsItIs) {
  const u32 port = 8080;
  const booln trusted = 1;
  const s32 offset = -5;
  const u64 quota = 5000000000;
  const d64 timeout = 1.5;
  const u8 mac[] = {0x00, 0x1B, 0x44, 0x11, 0x3A, 0xB7};
  const ustring label[] = {'A', 0};
  const struct {
    const char* key;
    s32 type;
    const void* value;
    s32 size;
  } settings[] = {
      {"port", kUnsigned32, &port, sizeof(port)},
      {"host", kText, "srv1.lab", 9},
      {"trusted", kTruth, &trusted, sizeof(trusted)},
      {"offset", kSigned32, &offset, sizeof(offset)},
      {"quota", kUnsigned64, &quota, sizeof(quota)},
      {"timeout", kDouble, &timeout, sizeof(timeout)},
      {"mac", kBytes, mac, sizeof(mac)},
      {"label", kUnits, label, sizeof(label)},
  };
  for (const auto& each : settings) {
    EXPECT_EQ(PXTWriteINIPathFileValue("Net", each.key, each.type, each.value, each.size, kIni,
                                       QVX_LOCK_WAIT),
              SM_STATUS_SUCCESS)
        << each.key;
    EXPECT_EQ(ReadFile(kIni), IniSample()) << each.key;
  }
  EXPECT_EQ(test::ModeOf(kIni), 01664u);
}

TEST_F(ManualIni, NewKeyOfTheFirstSectionStandsBeforeTheNextHeader) {
  EXPECT_EQ(PXTWriteINIPathFileValue("Net", "zone", kText, "lab", 4, kIni, QVX_LOCK_WAIT),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kIni), Replaced(IniSample(), "\n\n[Log]\n", "\n\nzone=lab\n[Log]\n"));
}

// --- qvx-keyvalue(5) ---

constexpr char kProperties[] = "/etc/cim/zarn/plinthos/vexilon//qvx/ini/qvx.properties";

class ManualKeyValue : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ModuleAttach(), 1);
    WriteFile(kProperties, PropertiesSample());
  }
};

TEST_F(ManualKeyValue, SampleHasFourEntries) {
  u32 count = 0;
  PXTKeyValue* const entries = PXTCFGInstGetKeyValueEntries("qvx/ini/qvx.properties", &count);
  std::vector<std::pair<std::string, std::string>> pairs;
  for (u32 at = 0; at < count; ++at) {
    pairs.emplace_back(entries[at].key, entries[at].value);
  }
  PXTCFGFreeKeyValueEntries(entries, count);
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"preferences.system.cmdlogmaxsize", "262144"},
      {"sitename", "Rack 7, hall B"},
      {"mirror", "srv1.lab"},
      {"mirror", "srv2.lab"},
  };
  EXPECT_EQ(pairs, expected);
}

TEST_F(ManualKeyValue, SampleSetsTheCommandLogsMaximum) {
  u32 size = 0;
  EXPECT_EQ(PXTGetCmdLogMaxSize(&size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 262144u);
}

TEST_F(ManualKeyValue, SettingTheSecondMirrorReplacesItsLineAlone) {
  astring key[] = "mirror";
  astring value[] = "srv3.lab";
  const PXTKeyValue pair = {key, value};
  EXPECT_EQ(PXTCFGSetKeyValue(kProperties, &pair, 1), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kProperties),
            Replaced(PropertiesSample(), "mirror=srv2.lab\n", "mirror=srv3.lab\n"));
  EXPECT_EQ(test::ModeOf(kProperties), 01664u);
}

TEST_F(ManualKeyValue, ThirdMirrorIsAppendedAndAFourthBeforeItIsRefused) {
  astring key[] = "mirror";
  astring value[] = "srv3.lab";
  const PXTKeyValue pair = {key, value};
  EXPECT_EQ(PXTCFGSetKeyValue(kProperties, &pair, 3), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(ReadFile(kProperties), PropertiesSample());
  EXPECT_EQ(PXTCFGSetKeyValue(kProperties, &pair, 2), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kProperties), PropertiesSample() + "mirror=srv3.lab\n");
}

// --- qvx-strings(5) ---

constexpr char kStrings[] = "/tmp/messages.utf16";

// The text delivered; its size must be that of the units and of the 0 unit.
std::string StringOf(u32 id, u32* language) {
  ustring room[64];
  u32 size = sizeof(room);
  const u32 delivered = PXTGetUnicodeStringFromIDPathFile(id, language, kStrings, room, &size);
  std::string text;
  for (u32 at = 0; at + 1 < delivered / 2; ++at) {
    text += static_cast<char>(room[at]);
  }
  EXPECT_EQ(size, delivered);
  return text;
}

TEST(ManualStrings, TheSuitesOwnLanguageGetsTheNeutralText) {
  WriteFile(kStrings, StringsSample());
  u32 language = 1033;
  EXPECT_EQ(StringOf(0x1F, &language), "Disk full");
  EXPECT_EQ(language, 0u);
}

TEST(ManualStrings, LanguageWithATextOfItsOwnGetsIt) {
  WriteFile(kStrings, StringsSample());
  u32 language = 0x40C;
  EXPECT_EQ(StringOf(0x1F, &language), "Disque plein");
  EXPECT_EQ(language, 0x40Cu);
}

TEST(ManualStrings, LanguageWithoutTheTextGetsTheNeutralOne) {
  WriteFile(kStrings, StringsSample());
  u32 language = 0x40C;
  EXPECT_EQ(StringOf(0x20, &language), "Fan failed");
  EXPECT_EQ(language, 0u);
  EXPECT_EQ(StringOf(0x21, &language), "");
}

// --- qvx-xmllog(5) ---

constexpr char kLog[] = "/tmp/log.xml";
constexpr u32 kMaximum = 131072;

// The text between the tags of the first element with this name.
std::string ElementOf(const std::string& text, const std::string& name) {
  const size_t at = text.find("<" + name + ">") + name.size() + 2;
  return text.substr(at, text.find("</" + name + ">", at) - at);
}

class ManualXmlLog : public testing::Test {
 protected:
  void SetUp() override {
    setenv("TZ", "UTC", 1);
    ASSERT_EQ(ModuleAttach(), 1);
  }
};

TEST_F(ManualXmlLog, AppendKeepsTheSampleUpToItsClosingTag) {
  WriteFile(kLog, LogSample());
  EXPECT_EQ(PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, 7, "u", "s", "d", nullptr, 0, kMaximum),
            SM_STATUS_SUCCESS);
  const std::string log = ReadFile(kLog);
  const std::string kept = Replaced(LogSample(), "</EventLog>", "");
  EXPECT_EQ(log.substr(0, kept.size() + 10), kept + "<LogEntry>");
  EXPECT_EQ(ElementOf(log.substr(kept.size()), "ID"), "7");
  EXPECT_TRUE(log.ends_with("</Data></LogEntry></EventLog>")) << log;
}

TEST_F(ManualXmlLog, LibraryWritesTheSampleButForTimeAndHost) {
  ASSERT_EQ(PXTForceXMLLogExists(kLog, "R&D", "host"), SM_STATUS_SUCCESS);
  std::string log = ReadFile(kLog);
  for (const auto& [name, value] :
       {std::pair{"TimeStamp", "1700000000"}, std::pair{"DateTime", "Tue Nov 14 22:13:20 2023"},
        std::pair{"ComputerName", "srv1"}}) {
    log = Replaced(log, "<"s + name + ">" + ElementOf(log, name), "<"s + name + ">" + value);
  }
  EXPECT_EQ(log, LogSample());
}

TEST_F(ManualXmlLog, BothTimesOfTheSampleAreTheSameMomentInGreenwich) {
  ASSERT_EQ(ElementOf(LogSample(), "TimeStamp"), "1700000000");
  astring text[26];
  ASSERT_EQ(PXTTimeToAStr(text, 1700000000), 0);
  EXPECT_EQ(ElementOf(LogSample(), "DateTime"), text);
}

TEST_F(ManualXmlLog, SampleIsGivenAsItStands) {
  WriteFile(kLog, LogSample());
  astring* const content = PXTCmdGetXMLLogContent(kLog);
  ASSERT_NE(content, nullptr);
  EXPECT_EQ(std::string(content), "<Content>" + LogSample() + "</Content><SMStatus>0</SMStatus>");
  PXTFreeMem(content);
}

// --- qvx.conf(5) ---

TEST(ManualConf, SampleMovesTheNameOfTheLock) {
  WriteFile("/etc/qvx.conf", ConfSample());
  EXPECT_EQ(CreateIPCName(30000), 230000);
}

}  // namespace
}  // namespace qvx
