// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Operations that change a file.
#include <cstring>

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
void IniFile() { WriteText(kIni, "; kept\n[net]\nhost=alpha\nport=1311\n[log]\nlevel=3\n"); }
void LongIniFile() {
  std::string text = "[net]\nport=1311\n";
  for (int at = 0; at < 2000; ++at) {
    text += "key" + std::to_string(at) + "=the value of a line\n";
  }
  WriteText(kIni, text);
}
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
void NoCmdLog() { (void)unlink(kCmdLog); }
void CmdLog() {
  NoCmdLog();
  (void)InChild([] { return std::string(AppendToCmdLog("earlier") == 0 ? "" : "no"); });
}

std::vector<Scene> IniScenes() {
  const Kind whole = Kind::kWhole;
  return {
      {"INI: a key's value", whole, kIni, IniFile, [] { return SetIni("net", "port", "9"); }},
      {"INI: a long value", whole, kIni, IniFile, [] { return SetIni("net", "port", LongText()); }},
      {"INI: a new key", whole, kIni, IniFile, [] { return SetIni("net", "mask", "255"); }},
      {"INI: a key deleted", whole, kIni, IniFile, [] { return SetIni("net", "port", nullptr); }},
      {"INI: a new section", whole, kIni, IniFile, [] { return SetIni("new", "k", "v"); }},
      {"INI: a new section, long", whole, kIni, IniFile,
       [] { return SetIni("new", "k", LongText()); }},
      {"INI: a new file", whole, kIni, Nothing, [] { return SetIni("new", "k", "v"); }},
      {"INI: a long file", whole, kIni, LongIniFile, [] { return SetIni("net", "port", "9"); }},
      {"INI: a new section of a long file", whole, kIni, LongIniFile,
       [] { return SetIni("new", "k", "v"); }},
      {"INI: a key through a link", whole, kIni, LinkedIniFile,
       [] { return SetIni("net", "port", "9"); }},
      {"INI: a section through a link", Kind::kAppended, kIni, LinkedIniFile,
       [] { return SetIni("new", "k", "v"); }},
      {"INI: a section through a dangling link", Kind::kAppended, kIni, DanglingLink,
       [] { return SetIni("new", "k", "v"); }},
      {"INI: a section of a file of two names", Kind::kAppended, kIni, IniFileOfTwoNames,
       [] { return SetIni("new", "k", "v"); }},
      {"INI: a boolean", whole, kIni, IniFile,
       [] { return SetIniValue<qvx_booln>(QVX_INI_BOOLN, 1); }},
      {"INI: a number", whole, kIni, IniFile, [] { return SetIniValue<qvx_u32>(QVX_INI_U32, 77); }},
      {"INI: a double", whole, kIni, IniFile,
       [] { return SetIniValue<qvx_d64>(QVX_INI_D64, 1.5); }},
      {"INI: 16-bit text", whole, kIni, IniFile,
       [] {
         const qvx_ustring text[] = {'a', 'b', 0};
         return SetIniValue(QVX_INI_USTRING, text);
       }},
      {"INI: bytes", whole, kIni, IniFile,
       [] {
         const qvx_u8 bytes[] = {1, 2, 255};
         return SetIniValue(QVX_INI_BINARY, bytes);
       }},
      {"INI: a file of the product", whole, kProductIni, ProductIni,
       [] {
         return PXTWriteINIFileValue("net", "port", QVX_INI_ASTRING, "9", 2, "torture.ini",
                                     QVX_LOCK_WAIT);
       }},
  };
}

std::vector<Scene> OtherFileScenes() {
  return {
      {"key=value: a value", Kind::kWhole, kPairs, Pairs, [] { return SetPair("port", "9"); }},
      {"key=value: the second of two", Kind::kWhole, kPairs, Pairs,
       [] { return SetPair("port", "9", 1); }},
      {"key=value: a new key", Kind::kWhole, kPairs, Pairs, [] { return SetPair("mask", "255"); }},
      {"key=value: a file of the product", Kind::kWhole, kProductPairs, ProductPairs,
       [] {
         char key[] = "port";
         char value[] = "9";
         const PXTKeyValue pair = {key, value};
         return PXTCFGInstSetKeyValue("qvx/ini/torture.properties", &pair, 0);
       }},
      {"a file deleted", Kind::kWhole, kIni, IniFile, [] { return PXTDeleteFile(kIni); }, false},
  };
}

std::vector<Scene> LogScenes() {
  return {
      {"log: an entry", Kind::kLog, kLog, OneEntry, [] { return Append("more"); }},
      {"log: a long entry", Kind::kLog, kLog, OneEntry, [] { return Append(LongText()); }},
      {"log: an entry with data", Kind::kLog, kLog, OneEntry,
       [] { return Append("more", "0123456789", 10); }},
      {"log: the first entry", Kind::kLog, kLog, Nothing, [] { return Append("first"); }},
      {"log: a long first entry", Kind::kLog, kLog, Nothing, [] { return Append(LongText()); }},
      {"log: made to exist", Kind::kCleared, kLog, Nothing,
       [] { return PXTForceXMLLogExists(kLog, "root", "TORTURE"); }},
      {"log: moved to its backup", Kind::kMoved, kLog, LongLog,
       [] { return Append("more", nullptr, 0, kLong); }},
      {"log: cleared", Kind::kCleared, kLog, OneEntry,
       [] { return PXTClearXMLLog(kLog, "root", "TORTURE"); }},
      {"command log: an entry", Kind::kLog, kCmdLog, CmdLog, [] { return AppendToCmdLog("more"); }},
      {"command log: the first entry", Kind::kLog, kCmdLog, NoCmdLog,
       [] { return AppendToCmdLog("first"); }},
      {"command log: cleared", Kind::kCleared, kCmdLog, CmdLog,
       [] { return PXTClearCmdLog("root", "TORTURE"); }},
  };
}

}  // namespace

std::vector<Scene> UpdatingScenes() {
  std::vector<Scene> scenes = IniScenes();
  for (const auto& more : {OtherFileScenes(), LogScenes()}) {
    scenes.insert(scenes.end(), more.begin(), more.end());
  }
  return scenes;
}

}  // namespace qvx::torture
