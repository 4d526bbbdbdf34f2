// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Operations that change a file.
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "torture/log_text.h"
#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kIni[] = "/tmp/torture/net.ini";
constexpr char kOther[] = "/tmp/torture/other.ini";
constexpr char kPairs[] = "/tmp/torture/agent.properties";
constexpr char kLog[] = "/tmp/torture/events.xml";
constexpr char kBackup[] = "/tmp/torture/events.xm_";
constexpr char kProductIni[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/torture.ini";
constexpr char kProductPairs[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/torture.properties";
constexpr char kCmdLog[] = "/etc/cim/zarn/plinthos/var/log/vexilon/qvcmdlog.xml";
constexpr qvx_u32 kRoomy = 1000000;
constexpr size_t kLong = 6000;

// Made before the scenes, which allocate nothing themselves.
const std::string kLongText(kLong, 'x');
const char* LongText() { return kLongText.c_str(); }

qvx_u32 SetIni(const char* section, const char* key, const char* value) {
  const qvx_s32 size = value == nullptr ? 0 : static_cast<qvx_s32>(strlen(value) + 1);
  return PXTWriteINIPathFileValue(section, key, QVX_INI_ASTRING, value, size, kIni, QVX_LOCK_WAIT);
}

template <typename T>
qvx_u32 SetIniValue(qvx_s32 type, const T& value) {
  return PXTWriteINIPathFileValue("net", "port", type, &value, sizeof(value), kIni, QVX_LOCK_WAIT);
}

qvx_u32 SetPair(const char* key, const char* value, qvx_u32 index = 0) {
  char name[16];
  char text[16];
  strncpy(name, key, sizeof(name));
  strncpy(text, value, sizeof(text));
  const PXTKeyValue pair = {name, text};
  return PXTCFGSetKeyValue(kPairs, &pair, index);
}

qvx_u32 Append(const char* text, const void* data = nullptr, qvx_u32 size = 0,
               qvx_u32 maxSize = kRoomy) {
  return PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, 7001, "root", "TORTURE", text, data, size,
                           maxSize);
}
qvx_u32 AppendToCmdLog(const char* text) {
  return PXTAppendToCmdLog(5100, "root", "TORTURE", text, QVX_LOG_INFORMATION);
}

// --- What stands before ---

void Nothing() {}
std::string Ini(const std::string& port) {
  return "; kept\n[net]\nhost=alpha\n" + port + "[log]\nlevel=3\n";
}
void IniFile() { WriteText(kIni, Ini("port=1311\n")); }
// --- Logs that a kill has torn, and their notes ---

// As the library keeps them in its lock file.
struct Note {
  uint64_t device;
  uint64_t inode;
  uint64_t offset;
  uint64_t end;
  uint64_t sum;
};
constexpr size_t kMostNotes = 64;
constexpr size_t kBorder = 4096;

// The 64-bit FNV-1a sum.
uint64_t SumOf(const std::string& text) {
  uint64_t sum = 0xCBF29CE484222325;
  for (const char byte : text) {
    sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
  }
  return sum;
}

void WriteNotes(const std::vector<Note>& notes) {
  const auto* const bytes = reinterpret_cast<const char*>(notes.data());
  WriteText(kLockFile, "qvxtorn\n" + std::string(bytes, notes.size() * sizeof(Note)));
}

Note NoteOf(const char* log, size_t offset, size_t end, const std::string& written) {
  struct stat seen = {};
  (void)stat(log, &seen);
  return {seen.st_dev, seen.st_ino, offset, end, SumOf(written)};
}

std::string LongIni(const char* port) {
  std::string text = std::string("[net]\nport=") + port + "\n";
  for (int at = 0; at < 2000; ++at) {
    text += "key" + std::to_string(at) + "=the value of a line\n";
  }
  return text;
}
void LongIniFile() { WriteText(kIni, LongIni("1311")); }
void LinkedIniFile() {
  WriteText(kOther, "[net]\nport=1311\n");
  (void)symlink(kOther, kIni);
}
void IniFileOfTwoNames() {
  IniFile();
  (void)link(kIni, kOther);
}
void DanglingLink() { (void)symlink(kOther, kIni); }
void ProductIni() { WriteText(kProductIni, "[net]\nport=1311\n"); }
void Pairs() { WriteText(kPairs, "# kept\nname=agent\nport = 1311\nlast=1\nport=2\n"); }
void ProductPairs() { WriteText(kProductPairs, "name=agent\nport=1311\n"); }
// Another process makes the logs: this one has called nothing yet.
void OneEntry() {
  (void)unlink(kLog);
  (void)InChild([] { return std::string(Append("earlier") == 0 ? "" : "no"); });
}
void LongLog() {
  (void)unlink(kBackup);
  (void)unlink(kLog);
  (void)InChild([] { return std::string(Append(LongText()) == 0 ? "" : "no"); });
}
// A long entry was cut at the page's end.
void TornLog() {
  OneEntry();
  const std::string entries = EntriesOf(ReadText(kLog));
  std::string entry = PatternOf({7001, kLongText}) + kLogEnd;
  std::replace(entry.begin(), entry.end(), kAny, '1');
  const std::string written = entry.substr(0, kBorder - entries.size());
  WriteText(kLog, entries + written);
  WriteNotes({NoteOf(kLog, entries.size(), entries.size() + entry.size(), written)});
}
// Those of other files.
void OneEntryAndAllNotes() {
  OneEntry();
  std::vector<Note> notes(kMostNotes);
  for (size_t at = 0; at < kMostNotes; ++at) {
    notes[at] = {1, at + 1, 75, 5000, 0};
  }
  WriteNotes(notes);
}
void TextAfterTheTag() {
  OneEntry();
  WriteText(kLog, ReadText(kLog) + "what another program left");
}
void LongLogAndABackup() {
  LongLog();
  WriteText(kBackup, "an older backup");
}
void NoCmdLog() { (void)unlink(kCmdLog); }
void CmdLog() {
  NoCmdLog();
  (void)InChild([] { return std::string(AppendToCmdLog("earlier") == 0 ? "" : "no"); });
}

// An INI scene whose file is `after` when it is done.
Scene Whole(const char* name, void (*prepare)(), qvx_u32 (*act)(), const std::string& after) {
  return {name, Kind::kWhole, kIni, prepare, act, true, false, after};
}
Scene Appended(const char* name, void (*prepare)(), qvx_u32 (*act)(), const std::string& after) {
  return {name, Kind::kAppended, kIni, prepare, act, true, false, after};
}

std::vector<Scene> IniScenes() {
  const auto addSection = [] { return SetIni("new", "k", "v"); };
  const auto setPort = [] { return SetIni("net", "port", "9"); };
  const std::string section = "[new]\nk=v\n";
  return {
      Whole("INI: a key's value", IniFile, setPort, Ini("port=9\n")),
      Whole(
          "INI: a long value", IniFile, [] { return SetIni("net", "port", LongText()); },
          Ini("port=" + kLongText + "\n")),
      Whole(
          "INI: a new key", IniFile, [] { return SetIni("net", "mask", "255"); },
          Ini("port=1311\nmask=255\n")),
      Whole(
          "INI: a key deleted", IniFile, [] { return SetIni("net", "port", nullptr); }, Ini("")),
      Whole("INI: a new section", IniFile, addSection, Ini("port=1311\n") + section),
      Whole(
          "INI: a new section, long", IniFile, [] { return SetIni("new", "k", LongText()); },
          Ini("port=1311\n") + "[new]\nk=" + kLongText + "\n"),
      Whole("INI: a new file", Nothing, addSection, section),
      Whole("INI: a long file", LongIniFile, setPort, LongIni("9")),
      Whole("INI: a new section of a long file", LongIniFile, addSection,
            LongIni("1311") + section),
      Whole("INI: a key through a link", LinkedIniFile, setPort, "[net]\nport=9\n"),
      Appended("INI: a section through a link", LinkedIniFile, addSection,
               "[net]\nport=1311\n" + section),
      Appended("INI: a section through a dangling link", DanglingLink, addSection, section),
      Appended("INI: a section of a file of two names", IniFileOfTwoNames, addSection,
               Ini("port=1311\n") + section),
  };
}

std::vector<Scene> IniValueScenes() {
  return {
      Whole(
          "INI: a boolean", IniFile, [] { return SetIniValue<qvx_booln>(QVX_INI_BOOLN, 1); },
          Ini("port=TRUE\n")),
      Whole(
          "INI: a number", IniFile, [] { return SetIniValue<qvx_u32>(QVX_INI_U32, 77); },
          Ini("port=77\n")),
      Whole(
          "INI: a double", IniFile, [] { return SetIniValue<qvx_d64>(QVX_INI_D64, 1.5); },
          Ini("port=1.50000000\n")),
      Whole(
          "INI: 16-bit text", IniFile,
          [] {
            const qvx_ustring text[] = {'a', 'b', 0};
            return SetIniValue(QVX_INI_USTRING, text);
          },
          Ini("port=0x61,0x00,0x62,0x00,0x00,0x00\n")),
      Whole(
          "INI: bytes", IniFile,
          [] {
            const qvx_u8 bytes[] = {1, 2, 255};
            return SetIniValue(QVX_INI_BINARY, bytes);
          },
          Ini("port=0x01,0x02,0xFF\n")),
      {"INI: a file of the product", Kind::kWhole, kProductIni, ProductIni,
       [] {
         return PXTWriteINIFileValue("net", "port", QVX_INI_ASTRING, "9", 2, "torture.ini",
                                     QVX_LOCK_WAIT);
       },
       true, false, "[net]\nport=9\n"},
  };
}

std::vector<Scene> OtherFileScenes() {
  return {
      {"key=value: a value", Kind::kWhole, kPairs, Pairs, [] { return SetPair("port", "9"); }, true,
       false, "# kept\nname=agent\nport=9\nlast=1\nport=2\n"},
      {"key=value: the second of two", Kind::kWhole, kPairs, Pairs,
       [] { return SetPair("port", "9", 1); }, true, false,
       "# kept\nname=agent\nport = 1311\nlast=1\nport=9\n"},
      {"key=value: a new key", Kind::kWhole, kPairs, Pairs, [] { return SetPair("mask", "255"); },
       true, false, "# kept\nname=agent\nport = 1311\nlast=1\nport=2\nmask=255\n"},
      {"key=value: a file of the product", Kind::kWhole, kProductPairs, ProductPairs,
       [] {
         char key[] = "port";
         char value[] = "9";
         const PXTKeyValue pair = {key, value};
         return PXTCFGInstSetKeyValue("qvx/ini/torture.properties", &pair, 0);
       },
       true, false, "name=agent\nport=9\n"},
      {"a file deleted", Kind::kWhole, kIni, IniFile, [] { return PXTDeleteFile(kIni); }, false,
       false, kNone},
  };
}

// The dump of "0123456789".
std::string DumpOfTen() {
  std::string line = "0x00000000: 30 31 32 33:34 35 36 37:38 39";
  line.resize(63, ' ');
  line += "0123456789";
  line.resize(80, ' ');
  return line + "\r\n";
}

std::string Entry(const std::string& description, const std::string& data = "") {
  return PatternOf({7001, description, data});
}

std::vector<Scene> LogScenes() {
  const auto appendMore = [] { return Append("more"); };
  const auto appendLong = [] { return Append(LongText()); };
  const std::string cleared = ClearedPattern("root", "TORTURE");
  return {
      {"log: an entry", Kind::kLog, kLog, OneEntry, appendMore, true, false, Entry("more")},
      {"log: a long entry", Kind::kLog, kLog, OneEntry, appendLong, true, false, Entry(kLongText)},
      {"log: torn by a kill", Kind::kLog, kLog, TornLog, appendMore, true, false, Entry("more")},
      {"log: a long entry, all notes taken", Kind::kLog, kLog, OneEntryAndAllNotes, appendLong,
       true, false, Entry(kLongText)},
      {"log: text after the tag", Kind::kLog, kLog, TextAfterTheTag, appendMore, true, false,
       Entry("more")},
      {"log: moved over a backup", Kind::kMoved, kLog, LongLogAndABackup,
       [] { return Append("more", nullptr, 0, kLong); }, true, false, Entry("more"),
       PatternOf({1, "Log backup created"})},
      {"log: an entry with data", Kind::kLog, kLog, OneEntry,
       [] { return Append("more", "0123456789", 10); }, true, false, Entry("more", DumpOfTen())},
      {"log: the first entry", Kind::kLog, kLog, Nothing, [] { return Append("first"); }, true,
       false, Entry("first")},
      {"log: a long first entry", Kind::kLog, kLog, Nothing, appendLong, true, false,
       Entry(kLongText)},
      {"log: made to exist", Kind::kCleared, kLog, Nothing,
       [] { return PXTForceXMLLogExists(kLog, "root", "TORTURE"); }, true, false, cleared},
      {"log: moved to its backup", Kind::kMoved, kLog, LongLog,
       [] { return Append("more", nullptr, 0, kLong); }, true, false, Entry("more"),
       PatternOf({1, "Log backup created"})},
      {"log: cleared", Kind::kCleared, kLog, OneEntry,
       [] { return PXTClearXMLLog(kLog, "root", "TORTURE"); }, true, false, cleared},
  };
}

std::vector<Scene> CommandLogScenes() {
  const std::string begins = ClearedPattern("Local System", "QVPX");
  return {
      {"command log: an entry", Kind::kLog, kCmdLog, CmdLog, [] { return AppendToCmdLog("more"); },
       true, false, PatternOf({5100, "more"}), begins},
      {"command log: the first entry", Kind::kLog, kCmdLog, NoCmdLog,
       [] { return AppendToCmdLog("first"); }, true, false, PatternOf({5100, "first"}), begins},
      {"command log: cleared", Kind::kCleared, kCmdLog, CmdLog,
       [] { return PXTClearCmdLog("root", "TORTURE"); }, true, false,
       ClearedPattern("root", "TORTURE"), begins},
  };
}

}  // namespace

std::vector<Scene> UpdatingScenes() {
  std::vector<Scene> scenes = IniScenes();
  for (const auto& more : {IniValueScenes(), OtherFileScenes(), LogScenes(), CommandLogScenes()}) {
    scenes.insert(scenes.end(), more.begin(), more.end());
  }
  return scenes;
}

}  // namespace qvx::torture
