// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/ini_model.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "qvxcs/ini_file.h"

#include "frame/module.h"
#include "reference/hostile_ini.h"
#include "support/files.h"
#include "support/guard_buffer.h"

namespace {

using qvx::test::GuardBuffer;
using qvx::test::HostileIni;
using qvx::test::IniAnswer;
using qvx::test::IniChange;
using qvx::test::IniFile;
using qvx::test::IniOutcome;
using qvx::test::IniQuestion;
using qvx::test::ModelIniRead;
using qvx::test::ModelIniWrite;

constexpr u32 kReads = 6000;
constexpr u32 kFiles = 2000;
constexpr u32 kChangesOfAFile = 3;

constexpr u32 kTooSmall = 0x0010;
constexpr u32 kBadHeader = 0x0105;
constexpr u32 kNoSection = 0x0106;
constexpr u32 kNoKey = 0x0107;
constexpr u32 kTooLarge = 0x0108;

constexpr mode_t kModeBefore = 0640;
constexpr mode_t kModeAfter = 01664;

const char* const kFolder = "/tmp/ini_model";
const char* const kIniFolder = "/etc/cim/zarn/plinthos/vexilon/qvx/ini";
const char* const kName = "model.ini";

std::string Raw(const std::vector<u8>& bytes) { return {bytes.begin(), bytes.end()}; }

// Differences must be readable: every byte that is not an ordinary character is shown in
// hexadecimal.
std::string Shown(const std::string& text) {
  std::string shown;
  for (const char each : text) {
    char code[8];
    (void)snprintf(code, sizeof(code), "\\x%02X", static_cast<unsigned>(static_cast<u8>(each)));
    if (each == '\n') {
      shown += "\\n";
    } else {
      shown += each >= ' ' && each <= '~' ? std::string(1, each) : code;
    }
  }
  return "\"" + shown + "\"";
}

std::string Shown(const std::optional<std::string>& text) { return text ? Shown(*text) : "none"; }

std::string Shown(const IniQuestion& question) {
  return "section " + Shown(question.section) + ", key " + Shown(question.key) + ", type " +
         std::to_string(question.type) + ", size " + std::to_string(question.size) + ", default " +
         Shown(question.standIn);
}

std::string Shown(const IniChange& change) {
  return "section " + Shown(change.section) + ", key " + Shown(change.key) + ", type " +
         std::to_string(change.type) + ", size " + std::to_string(change.size) + ", value " +
         Shown(change.value);
}

// ---- The model itself.

struct ReadExample {
  IniFile file;
  IniQuestion question;
  u32 status;
  std::string stored;
  u32 size;
};

void ExpectReads(const std::vector<ReadExample>& examples) {
  for (const ReadExample& each : examples) {
    const IniAnswer answer = ModelIniRead(each.file, each.question);
    const std::string what = Shown(each.file) + ", " + Shown(each.question);
    EXPECT_EQ(answer.status, each.status) << what;
    EXPECT_EQ(Shown(answer.stored), Shown(each.stored)) << what;
    EXPECT_EQ(answer.size, each.size) << what;
  }
}

TEST(IniModel, TheModelReadsTextsAsWorkedOutByHand) {
  const std::string nul(1, '\0');
  const std::string file = "[Net]\n;port=1\nport=8080\n  gate = 8\nname=abcdef\r\n[X\n";
  const std::string whole = "abcdef\r" + nul;
  ExpectReads({
      {file, {"Net", "port", 1, 5}, 0, "8080" + nul, 5},
      {file, {"Net", "Port", 1, 5}, kNoKey, nul, 0},
      {file, {"Net", "gate", 1, 9}, kNoKey, nul, 0},
      {file, {"Net", "gate ", 1, 9}, 0, " 8" + nul, 3},
      {file, {"Net", ";port", 1, 9}, kNoKey, nul, 0},
      {file, {"Net", "name", 1, 8}, 0, whole, 8},
      {file, {"Net", "name", 1, 7}, kTooSmall, "", 8},
      {file, {"Net", "none", 1, 3, "dflt" + nul}, kNoKey, "df" + nul, 3},
      {file, {"Net", "none", 1, 9, "dflt"}, kNoKey, "dfl" + nul, 4},
      {file, {"Net", "none", 1, 9, ""}, kNoKey, nul, 0},
      {file, {"Net", "port", 1, 0}, 2, "", 0},
      {file, {"net", "port", 1, 9}, kBadHeader, nul, 0},
      {"[A]\nx=1\n[A]\ny=2\n", {"A", "y", 1, 9}, kNoKey, nul, 0},
      {"[A]\nx=1", {"B", "x", 1, 9}, kNoSection, nul, 0},
      {"\t[A] # more\nx=1", {"A", "x", 1, 9}, 0, "1" + nul, 2},
      {"[A]\nx" + nul + "=1\nx=" + nul + "2\n", {"A", "x", 1, 9}, 0, nul, 1},
      {{}, {"A", "x", 1, 9, "d" + nul}, 7, "", 9},
      {"[" + std::string(300, 'n') + "]\nx=1", {std::string(255, 'n'), "x", 1, 9}, 0, "1" + nul, 2},
      {"[" + std::string(300, 'n') + "]\nx=1",
       {std::string(300, 'n'), "x", 1, 9},
       kNoSection,
       nul,
       0},
      // The second read of a long line is a separate line.
      {"[A]\n" + std::string(8449, 'y') + "x=1\n", {"A", "x", 1, 9}, 0, "1" + nul, 2},
      {"[A]\n" + std::string(8448, 'y') + "x=1\n", {"A", "x", 1, 9}, kNoKey, nul, 0},
  });
}

TEST(IniModel, TheModelListsNamesAsWorkedOutByHand) {
  const std::string keys = "[A]\na=1\n#b=2\nbc=3\nno\n[B]\n";
  const std::string sections = "[A]\n [A]\n[bc]x\n";
  const std::string both = Raw({'a', 0, 'b', 'c', 0, 0});
  ExpectReads({
      {keys, {"A", {}, 1, 5}, 0, both, 5},
      {keys, {"A", {}, 1, 4}, kTooSmall, Raw({'a', 0, 0}), 5},
      {keys, {"A", {}, 1, 2}, kTooSmall, Raw({'a', 0, 0}), 5},
      {keys, {"A", {}, 1, 1}, 2, "", 1},
      {keys, {"B", {}, 1, 9, "d"}, kNoKey, Raw({0, 0}), 9},
      {keys, {"C", {}, 1, 9, "d"}, kNoSection, Raw({0, 0}), 9},
      {"[A]\n=1\n", {"A", {}, 1, 9}, 0, Raw({0, 0}), 1},
      {sections, {{}, "k", 1, 9}, 0, Raw({'A', 0, 'A', 0, 'b', 'c', 0, 0}), 7},
      {sections, {{}, {}, 1, 6}, kTooSmall, Raw({'A', 0, 'A', 0, 0}), 7},
      {sections + "[B", {{}, {}, 1, 9}, kBadHeader, Raw({'A', 0, 'A', 0, 'b', 'c', 0, 0}), 9},
      {"", {{}, {}, 1, 9}, kNoSection, Raw({0, 0}), 9},
      {{}, {{}, {}, 1, 1}, 7, "", 1},
  });
}

TEST(IniModel, TheModelReadsNumbersAsWorkedOutByHand) {
  const std::string four = "four";
  ExpectReads({
      {"[A]\nx=8080\n", {"A", "x", 5, 9}, 0, Raw({0x90, 0x1F, 0, 0}), 9},
      {"[A]\nx= -2\n", {"A", "x", 6, 4}, 0, Raw({0xFE, 0xFF, 0xFF, 0xFF}), 4},
      {"[A]\nx=4294967297", {"A", "x", 5, 4}, 0, Raw({1, 0, 0, 0}), 4},
      {"[A]\nx=word", {"A", "x", 5, 4}, 0, Raw({0, 0, 0, 0}), 4},
      {"[A]\nx=-1", {"A", "x", 7, 8}, 0, Raw({0, 0, 0, 0, 0, 0, 0, 0}), 8},
      {"[A]\nx=-1", {"A", "x", 8, 8}, 0, std::string(8, '\xFF'), 8},
      {"[A]\nx=1.5", {"A", "x", 9, 8}, 0, Raw({0, 0, 0, 0, 0, 0, 0xF8, 0x3F}), 8},
      {"[A]\nx=true yes", {"A", "x", 4, 2}, 0, Raw({1, 0}), 2},
      {"[A]\nx=  False", {"A", "x", 4, 9}, 0, Raw({0, 0}), 9},
      {"[A]\nx=on", {"A", "x", 4, 9, "tr"}, kTooLarge, "tr", 2},
      {"[A]\nx=TRUE\r\n", {"A", "x", 4, 9}, kTooLarge, "", 0},
      {"[A]\nx=", {"A", "x", 4, 9, "t"}, kTooLarge, "", 0},
      {"[A]\nx=1", {"A", "x", 5, 3, four}, 2, "", 3},
      {"[A]\nx=1", {"A", {}, 5, 4, four}, 2, "", 4},
      {"[A]\nx=1", {"A", "x", 10, 4, four}, 2, "", 4},
      {"[A]\nx=1", {"A", "y", 5, 9, "fourfive"}, kNoKey, four, 4},
      {"[A]\nx=1", {"A", "y", 7, 9, "sevens"}, kNoKey, "", 0},
      {{}, {"A", "y", 6, 9, four}, 7, four, 4},
      {"[A]\nx=" + std::string(8191, ' ') + "1", {"A", "x", 5, 4}, 0, Raw({1, 0, 0, 0}), 4},
      {"[A]\nx=" + std::string(8192, ' ') + "1", {"A", "x", 5, 4, four}, kTooSmall, four, 4},
  });
}

TEST(IniModel, TheModelReadsBytesAsWorkedOutByHand) {
  const std::string wide = Raw({'A', 0, 0, 0});
  ExpectReads({
      {"[A]\nx=0x01,0xAB", {"A", "x", 3, 2}, 0, Raw({1, 0xAB}), 2},
      {"[A]\nx=0x01,0xAB", {"A", "x", 3, 1, "dd"}, kTooSmall, Raw({1}), 2},
      {"[A]\nx=7, fF,-0", {"A", "x", 3, 9}, 0, Raw({7, 0xFF, 0}), 3},
      {"[A]\nx=0x01,0x1FF", {"A", "x", 3, 9}, kTooLarge, Raw({1}), 0},
      {"[A]\nx=0x01,-1", {"A", "x", 3, 2, "def"}, kTooLarge, "de", 2},
      {"[A]\nx=0x01,zz,0x02", {"A", "x", 3, 9}, 0, Raw({1}), 1},
      {"[A]\nx=0x01,,0x02", {"A", "x", 3, 9}, 0, Raw({1}), 1},
      {"[A]\nx=", {"A", "x", 3, 9}, 0, "", 0},
      {"[A]\nx=1,2,100", {"A", "x", 3, 1}, kTooLarge, Raw({1}), 0},
      {"[A]\n", {"A", "x", 3, 9, "def"}, kNoKey, "def", 3},
      {"[A]\nx=0x41,0x00,0x00,0x00", {"A", "x", 2, 9, wide}, 0, wide, 4},
      {"[A]\nx=1", {"A", "y", 2, 9, wide}, kNoKey, wide, 4},
      {"[A]\nx=1", {"A", "x", 2, 9, Raw({'A', 0, 0})}, 2, "", 9},
      {"[A]\nx=1", {"A", "x", 2, 9, ""}, 2, "", 9},
      {"[A]\nx=1", {"A", "x", 2, 9, Raw({0, 0, 0, 0})}, 2, "", 9},
      {{}, {"A", "x", 3, 2, "def"}, 7, "de", 2},
  });
}

struct WriteExample {
  IniFile file;
  IniChange change;
  u32 status;
  IniFile after;
  bool modeSet;
};

void ExpectWrites(const std::vector<WriteExample>& examples) {
  for (const WriteExample& each : examples) {
    const IniOutcome outcome = ModelIniWrite(each.file, each.change);
    const std::string what = Shown(each.file) + ", " + Shown(each.change);
    EXPECT_EQ(outcome.status, each.status) << what;
    EXPECT_EQ(Shown(outcome.file), Shown(each.after)) << what;
    EXPECT_EQ(outcome.modeSet, each.modeSet) << what;
    EXPECT_EQ(outcome.copyLeft, each.status == kBadHeader) << what;
  }
}

TEST(IniModel, TheModelWritesLinesAsWorkedOutByHand) {
  const IniChange port = {"Net", "port", 1, "81", 3};
  const IniChange host = {"Net", "host", 1, "x", 2};
  const IniChange noPort = {"Net", "port", 1, {}, 0};
  const std::string nul(1, '\0');
  ExpectWrites({
      {{}, port, 0, "[Net]\nport=81\n", true},
      {{}, noPort, kTooLarge, {}, false},
      {"", port, 0, "[Net]\nport=81\n", true},
      {"[Net]\nport=80\n[Log]\n", port, 0, "[Net]\nport=81\n[Log]\n", true},
      {"[Net]\nport=80\n[Log]\n", host, 0, "[Net]\nport=80\nhost=x\n[Log]\n", true},
      {"[Net]\nport=80\n[Log]\n", noPort, 0, "[Net]\n[Log]\n", true},
      {"[Net]\nhost=80\n[Log]\n", noPort, 0, "[Net]\nhost=80\n[Log]\n", true},
      {"[Log]\na=1", port, 0, "[Log]\na=1[Net]\nport=81\n", true},
      {"[Log]\n", noPort, kTooLarge, "[Log]\n", false},
      {"[Log\n[Net]\n", port, kBadHeader, "[Log\n[Net]\n", false},
      {"[Net]\n[Log\n", port, 0, "[Net]\nport=81\n[Log\n", true},
      {"[Net]\n\n#port\n[Log]\n", port, 0, "[Net]\n\n#port\nport=81\n[Log]\n", true},
      {"[Net]\n \tport\nport=1\n", port, 0, "[Net]\nport=81\nport=1\n", true},
      {"[Net]", port, 0, "[Net]port=81\n", true},
      {"[Net]\n\r\n\n", {"Net", "", 1, "v", 2}, 0, "[Net]\n\r\n=v\n", true},
      {"[Net]\n" + nul + "a\nport" + nul + "\n", port, 0, "[Net]\n" + nul + "a\nport=81\n", true},
      {"[Net]\nport=" + std::string(8444, 'v') + "tail\n", port, 0, "[Net]\nport=81\ntail\n", true},
  });
}

TEST(IniModel, TheModelWritesValuesAsWorkedOutByHand) {
  const auto line = [](const std::string& text) { return IniFile("[S]\nk=" + text + "\n"); };
  const std::string tooLong(256, 'n');
  const std::string wide = Raw({'A', 0, 0, 0});
  ExpectWrites({
      {{}, {"S", "k", 4, Raw({1, 0}), 2}, 0, line("TRUE"), true},
      {{}, {"S", "k", 4, Raw({1, 1}), 2}, 0, line("FALSE"), true},
      {{}, {"S", "k", 5, std::string(4, '\xFF'), 4}, 0, line("4294967295"), true},
      {{}, {"S", "k", 6, std::string(4, '\xFF'), 7}, 0, line("-1"), true},
      {{}, {"S", "k", 7, std::string(8, '\xFF'), 8}, 0, line("18446744073709551615"), true},
      {{}, {"S", "k", 8, std::string(8, '\xFF'), 8}, 0, line("-1"), true},
      {{}, {"S", "k", 9, Raw({0, 0, 0, 0, 0, 0, 0xF8, 0x3F}), 8}, 0, line("1.50000000"), true},
      {{}, {"S", "k", 3, Raw({0x0A, 0xFF}), 2}, 0, line("0x0A,0xFF"), true},
      {{}, {"S", "k", 2, wide, 4}, 0, line("0x41,0x00,0x00,0x00"), true},
      {{}, {"S", "k", 2, wide, 3}, kTooLarge, {}, false},
      {{}, {"S", "k", 3, std::string(2049, 'b'), 2049}, kTooLarge, {}, false},
      {{}, {"S", "k", 3, std::string(1639, 'b'), 1639}, kTooLarge, {}, false},
      {{}, {"S", "k", 3, "", 0}, kTooLarge, {}, false},
      {{}, {"S", "k", 5, "abc", 3}, kTooLarge, {}, false},
      {{}, {"S", "k", 5, {}, 0}, 2, {}, false},
      {{}, {"S", "k", 1, "abc", 3}, kTooLarge, {}, false},
      {{}, {"S", "k", 1, std::string(8192, 'v'), 8193}, 0, line(std::string(8192, 'v')), true},
      {{}, {"S", "k", 1, std::string(8193, 'v'), 8194}, kTooLarge, {}, false},
      {"", {"S", "k", 3, {}, 1}, kTooLarge, "", false},
      {"", {tooLong, "k", 1, "abc", 3}, 2, "", false},
      {"", {"S", tooLong, 3, "a", 1}, 2, "", false},
      {"", {"S", {}, 3, "a", 0}, kTooLarge, "", false},
      {"", {"S", "k", 0, "a", 2}, 2, "", false},
  });
}

// ---- The library beside the model.

const astring* TextOf(const std::optional<std::string>& text) {
  return text ? text->c_str() : nullptr;
}

// A file that is reached by its path or by its bare name.
struct Place {
  bool bare;
  std::string Path(const char* name = kName) const {
    return std::string(bare ? kIniFolder : kFolder) + "/" + name;
  }
};

u32 Read(const Place& place, const IniQuestion& question, void* value, u32* size,
         const void* standIn, u32 standInSize, booln flag) {
  const astring* const section = TextOf(question.section);
  const astring* const key = TextOf(question.key);
  if (place.bare) {
    return PXTReadINIFileValue(section, key, question.type, value, size, standIn, standInSize,
                               kName, flag);
  }
  return PXTReadINIPathFileValue(section, key, question.type, value, size, standIn, standInSize,
                                 place.Path().c_str(), flag);
}

u32 Write(const Place& place, const IniChange& change, const void* value, booln flag) {
  const astring* const section = TextOf(change.section);
  const astring* const key = TextOf(change.key);
  if (place.bare) {
    return PXTWriteINIFileValue(section, key, change.type, value, change.size, kName, flag);
  }
  return PXTWriteINIPathFileValue(section, key, change.type, value, change.size,
                                  place.Path().c_str(), flag);
}

void PutInPlace(const Place& place, const IniFile& file) {
  const std::string path = place.Path();
  (void)unlink(path.c_str());
  if (!file) return;
  qvx::test::WriteFile(path, *file);
  ASSERT_EQ(chmod(path.c_str(), kModeBefore), 0);
}

IniFile FileIn(const Place& place) {
  if (!qvx::test::Exists(place.Path())) return {};
  return qvx::test::ReadFile(place.Path());
}

class IniModelAgreement : public testing::Test {
 protected:
  void SetUp() override {
    qvx::test::RequireSandbox();
    ASSERT_EQ(qvx::ModuleAttach(), 1);
    ASSERT_EQ(mkdir(kFolder, 0755), 0);
  }
};

std::string Room(GuardBuffer<u8>& room) { return {room.data(), room.data() + room.size()}; }

// The buffer's initial content, with the default at its front where both are the same memory. Texts
// are shown only when something differs: showing each one would take most of the time.
void ExpectSameAnswer(const Place& place, const IniFile& file, IniQuestion question,
                      bool standInIsTheRoom, HostileIni& choices) {
  if (standInIsTheRoom) {
    question.standIn->resize(std::min<size_t>(question.standIn->size(), question.size));
  }
  const IniAnswer expected = ModelIniRead(file, question);
  GuardBuffer<u8> room(std::max<size_t>(question.size, expected.stored.size()));
  GuardBuffer<u8> beside(question.standIn ? question.standIn->size() : 0);
  const u8* standIn = nullptr;
  u32 standInSize = choices.Below(20);
  if (question.standIn) {
    u8* const bytes = standInIsTheRoom ? room.data() : beside.data();
    memcpy(bytes, question.standIn->data(), question.standIn->size());
    standIn = bytes;
    standInSize = static_cast<u32>(question.standIn->size());
  }
  std::string after = Room(room);
  after.replace(0, expected.stored.size(), expected.stored);
  u32 size = question.size;
  const booln flag = static_cast<booln>(choices.OneIn(2) ? 1 : choices.Below(0x10000));
  const u32 status = Read(place, question, room.data(), &size, standIn, standInSize, flag);
  ASSERT_TRUE(room.FrontUntouched());
  const bool sameRoom = expected.anyValue || Room(room) == after;
  if (status == expected.status && size == expected.size && sameRoom) return;
  FAIL() << Shown(file) << "\n"
         << Shown(question) << (standInIsTheRoom ? ", the default in the room" : "") << "\nstatus "
         << status << ", not " << expected.status << "; size " << size << ", not " << expected.size
         << "\nroom " << Shown(Room(room)) << "\n not " << Shown(after);
}

void ExpectUnchanged(const Place& place, const IniFile& file) {
  ASSERT_TRUE(FileIn(place) == file) << Shown(FileIn(place)) << "\n not " << Shown(file);
  ASSERT_EQ(qvx::test::ModeOf(place.Path()), file ? kModeBefore : 0);
}

// How often each status occurred: a comparison that only ever takes one path proves little.
using Counts = std::vector<u32>;
constexpr u32 kStatuses = 0x110;
constexpr u32 kOften = 30;

TEST_F(IniModelAgreement, ReadsAgreeWithTheModel) {
  HostileIni inputs(51);
  Counts statuses(kStatuses);
  for (u32 input = 0; input < kReads; ++input) {
    const Place place = {inputs.OneIn(4)};
    const s32 type = inputs.Type();
    IniFile file = inputs.File(type);
    if (inputs.OneIn(60)) file.reset();
    ASSERT_NO_FATAL_FAILURE(PutInPlace(place, file));
    const IniQuestion question = inputs.Question(file, type);
    const bool shared = question.standIn && inputs.OneIn(4);
    ASSERT_NO_FATAL_FAILURE(ExpectSameAnswer(place, file, question, shared, inputs)) << input;
    ASSERT_NO_FATAL_FAILURE(ExpectUnchanged(place, file)) << input;
    ++statuses[ModelIniRead(file, question).status];
  }
  for (const u32 status : {0u, 2u, 7u, kTooSmall, kBadHeader, kNoSection, kNoKey, kTooLarge})
    EXPECT_GE(statuses[status], kOften) << "status " << status << " was hardly met";
}

// The value at the end of its room, where one byte too many faults.
void ExpectSameOutcome(const Place& place, const IniFile& file, const IniChange& change,
                       const IniOutcome& expected, booln flag) {
  const std::string bytes = change.value.value_or("") + std::string(change.type == 1 ? 1 : 0, '\0');
  GuardBuffer<u8> value(bytes.size());
  memcpy(value.data(), bytes.data(), bytes.size());
  const u32 status = Write(place, change, change.value ? value.data() : nullptr, flag);
  const IniFile after = FileIn(place);
  const mode_t mode = qvx::test::ModeOf(place.Path());
  const mode_t unset = file ? kModeBefore : 0;
  const mode_t expectedMode = expected.modeSet ? kModeAfter : unset;
  const bool copyLeft = unlink(place.Path("pxtini32.tmp").c_str()) == 0;
  if (status == expected.status && after == expected.file && mode == expectedMode &&
      copyLeft == expected.copyLeft) {
    return;
  }
  FAIL() << Shown(file) << "\n"
         << Shown(change) << "\nstatus " << status << ", not " << expected.status << "; mode "
         << mode << ", not " << expectedMode << "; copy left: " << copyLeft << "\nfile "
         << Shown(after) << "\n not " << Shown(expected.file);
}

// Changes one after the other, and what a reader then finds under the same names.
void ExpectSameHistory(HostileIni& inputs, Counts& statuses) {
  const Place place = {inputs.OneIn(4)};
  const s32 type = inputs.Type();
  IniFile file = inputs.File(type);
  if (inputs.OneIn(20)) file.reset();
  ASSERT_NO_FATAL_FAILURE(PutInPlace(place, file));
  for (u32 at = 0; at < kChangesOfAFile; ++at) {
    const IniChange change = inputs.Change(inputs.OneIn(2) ? type : inputs.Type());
    const IniOutcome expected = ModelIniWrite(file, change);
    const booln flag = static_cast<booln>(inputs.OneIn(2) ? 1 : inputs.Below(0x10000));
    ASSERT_NO_FATAL_FAILURE(ExpectSameOutcome(place, file, change, expected, flag));
    ++statuses[expected.status];
    file = expected.file;
    if (file) {
      ASSERT_EQ(chmod(place.Path().c_str(), kModeBefore), 0);
    }
    const IniQuestion question = {change.section, change.key, change.type, 9000};
    ASSERT_NO_FATAL_FAILURE(ExpectSameAnswer(place, file, question, false, inputs));
  }
}

TEST_F(IniModelAgreement, WritesAgreeWithTheModel) {
  HostileIni inputs(52);
  Counts statuses(kStatuses);
  for (u32 input = 0; input < kFiles; ++input)
    ASSERT_NO_FATAL_FAILURE(ExpectSameHistory(inputs, statuses)) << input;
  for (const u32 status : {0u, 2u, kBadHeader, kTooLarge})
    EXPECT_GE(statuses[status], kOften) << "status " << status << " was hardly met";
}

}  // namespace
