// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <cstring>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kIni[] = "/tmp/torture/net.ini";
constexpr char kPairs[] = "/tmp/torture/agent.properties";
constexpr char kLog[] = "/tmp/torture/events.xml";
constexpr char kCmdLog[] = "/etc/cim/zarn/plinthos/var/log/vexilon/qvcmdlog.xml";
constexpr qvx_u32 kRoomy = 1000000;

// Static, so that the scenes allocate nothing themselves.
char longText[6001];
const char* LongText() {
  memset(longText, 'x', sizeof(longText) - 1);
  return longText;
}

bool SetIni(const char* section, const char* key, const char* value) {
  return PXTWriteINIPathFileValue(section, key, 1, value,
                                  value == nullptr ? 0 : static_cast<qvx_s32>(strlen(value) + 1),
                                  kIni, 1) == SM_STATUS_SUCCESS;
}

bool SetPair(const char* key, const char* value) {
  char name[16];
  char text[16];
  strncpy(name, key, sizeof(name));
  strncpy(text, value, sizeof(text));
  const PXTKeyValue pair = {name, text};
  return PXTCFGSetKeyValue(kPairs, &pair, 0) == SM_STATUS_SUCCESS;
}

bool Append(const char* path, const char* text, const void* data, qvx_u32 size) {
  return PXTAppendToXMLLog(path, 4, 7001, "root", "TORTURE", text, data, size, kRoomy) ==
         SM_STATUS_SUCCESS;
}

void IniFile() { WriteText(kIni, "; kept\n[net]\nhost=alpha\nport=1311\n[log]\nlevel=3\n"); }
void Pairs() { WriteText(kPairs, "# kept\nname=agent\nport = 1311\nlast=1\n"); }
void Nothing() {}
void OneEntry() {
  (void)unlink(kLog);
  (void)InChild([] { return std::string(Append(kLog, "first", nullptr, 0) ? "" : "no"); });
}
void CmdLog() {
  (void)unlink(kCmdLog);
  (void)InChild([] {
    return std::string(PXTAppendToCmdLog(5100, "root", "TORTURE", "first", 4) == 0 ? "" : "no");
  });
}

}  // namespace

std::vector<Scene> UpdatingScenes() {
  return {
      {"INI: a key's value", Kind::kWhole, kIni, IniFile,
       [] { return SetIni("net", "port", "9"); }},
      {"INI: a long value", Kind::kWhole, kIni, IniFile,
       [] { return SetIni("net", "port", LongText()); }},
      {"INI: a new key", Kind::kWhole, kIni, IniFile, [] { return SetIni("net", "mask", "255"); }},
      {"INI: a new section", Kind::kWhole, kIni, IniFile, [] { return SetIni("new", "k", "v"); }},
      {"INI: a new section, long", Kind::kWhole, kIni, IniFile,
       [] { return SetIni("new", "k", LongText()); }},
      {"INI: a new file", Kind::kWhole, kIni, Nothing, [] { return SetIni("new", "k", "v"); }},
      {"INI: a key deleted", Kind::kWhole, kIni, IniFile,
       [] { return SetIni("net", "port", nullptr); }},
      {"INI: a number", Kind::kWhole, kIni, IniFile,
       [] {
         const qvx_u32 value = 77;
         return PXTWriteINIPathFileValue("net", "port", 5, &value, sizeof(value), kIni, 1) == 0;
       }},
      {"INI: 16-bit text", Kind::kWhole, kIni, IniFile,
       [] {
         const qvx_ustring text[] = {'a', 'b', 0};
         return PXTWriteINIPathFileValue("net", "name", 2, text, sizeof(text), kIni, 1) == 0;
       }},
      {"INI: bytes", Kind::kWhole, kIni, IniFile,
       [] {
         const qvx_u8 bytes[] = {1, 2, 255};
         return PXTWriteINIPathFileValue("net", "mac", 3, bytes, sizeof(bytes), kIni, 1) == 0;
       }},
      {"key=value: a value", Kind::kWhole, kPairs, Pairs, [] { return SetPair("port", "9"); }},
      {"key=value: a new key", Kind::kWhole, kPairs, Pairs, [] { return SetPair("mask", "255"); }},
      {"log: an entry", Kind::kLog, kLog, OneEntry,
       [] { return Append(kLog, "more", nullptr, 0); }},
      {"log: a long entry", Kind::kLog, kLog, OneEntry,
       [] { return Append(kLog, LongText(), nullptr, 0); }},
      {"log: an entry with data", Kind::kLog, kLog, OneEntry,
       [] { return Append(kLog, "more", "0123456789", 10); }},
      {"log: the first entry", Kind::kLog, kLog, Nothing,
       [] { return Append(kLog, "first", nullptr, 0); }},
      {"command log: an entry", Kind::kLog, kCmdLog, CmdLog,
       [] { return PXTAppendToCmdLog(5101, "root", "TORTURE", "more", 4) == 0; }},
  };
}

}  // namespace qvx::torture
