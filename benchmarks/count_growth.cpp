// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The doubling test, run by callgrind: each operation is done on n, 2n and 4n characters, elements
// or lines, and its instructions are dumped under "operation, size". tools/counts divides them.
#include <sys/stat.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "qvxcs/qvxcs.h"

namespace {

using Work = std::function<void()>;
using Units = std::vector<ustring>;

void Require(bool right, const char* what) {
  if (right) return;
  (void)std::fprintf(stderr, "growth: wrong result: %s\n", what);
  std::abort();
}

struct Job {
  const char* name;
  size_t size;
  Work (*make)(size_t size);  // prepares and returns the operation
};

constexpr char kFile[] = "/tmp/growth/file";
constexpr char kRoleMap[] = "/etc/cim/zarn/plinthos/qvxrolemap";
constexpr u32 kNoMaximum = 0xFFFFFFFF;
const ustring kRoot[] = {'r', 'o', 'o', 't', 0};

Units Repeated(size_t size, ustring unit) {
  Units units(size, unit);
  units.push_back(0);
  return units;
}

template <ustring kUnit>
Work ToUTF8(size_t size) {
  return [text = Repeated(size, kUnit), room = std::vector<astring>(size * 3 + 2)]() mutable {
    u32 bytes = static_cast<u32>(room.size() - 1);
    Require(PXTUCS2StrToUTF8Str(room.data(), &bytes, text.data()) == SM_STATUS_SUCCESS, "to UTF-8");
  };
}

template <char kByte>
Work ToUTF16(size_t size) {
  // A character of two bytes, or of one.
  std::string text;
  while (text.size() < size) {
    if (kByte != 'a') text.push_back('\xC3');
    text.push_back(kByte);
  }
  return [text, room = Units(text.size() + 2)]() mutable {
    u32 units = static_cast<u32>(room.size() - 1);
    Require(PXTUTF8StrToUCS2Str(room.data(), &units, text.c_str()) == SM_STATUS_SUCCESS,
            "to UTF-16");
  };
}

Work Compare16(size_t size) {
  return [one = Repeated(size, 'x'), other = Repeated(size, 'x')] {
    Require(PXTUniStrcmp(one.data(), other.data()) == 0, "strcmp");
  };
}

// A plain search begins anew at each unit of this text.
Work SearchHostile(size_t size) {
  Units pattern(size / 2, 'a');
  pattern.push_back('b');
  pattern.push_back(0);
  return [text = Repeated(size, 'a'), pattern] {
    Require(PXTUniStrstr(text.data(), pattern.data()) == nullptr, "strstr");
  };
}

Work Reverse16(size_t size) {
  return [text = Repeated(size, 'x')]() mutable { PXTUniStrrev(text.data()); };
}

Work EscapeXml(size_t size) {
  return [text = std::string(size, '&')] { PXTFreeMem(PXTGetXMLUTF8StrFromAStr(text.c_str(), 1)); };
}

Work EscapeUnits(size_t size) {
  return [text = Repeated(size, 0x4E2D), room = std::vector<astring>(size * 6 + 2)]() mutable {
    u32 bytes = static_cast<u32>(room.size());
    Require(PXTUnicodeToEscape(room.data(), &bytes, text.data()) == SM_STATUS_SUCCESS, "escape");
  };
}

Work Replace(size_t size) {
  return [text = std::string(size, 'a') + "b", room = std::vector<astring>(size + 8)]() mutable {
    u32 bytes = static_cast<u32>(room.size());
    (void)PXTASCIIReplaceSubstr(text.c_str(), "b", "c", &bytes, room.data());
  };
}

Work GrowNarrow(size_t size) {
  return [size] {
    SSAStr record = {};
    PXTSSAStrAlloc(&record, 1);
    for (size_t piece = 0; piece < size; ++piece) {
      PXTSSAStrCatAStr(&record, "12345678");
    }
    PXTSSAStrFree(&record);
  };
}

Work GrowWide(size_t size) {
  return [size] {
    SSUStr record = {};
    PXTSSUStrAlloc(&record, 1);
    for (size_t piece = 0; piece < size; ++piece) {
      PXTSSUStrCatUStr(&record, kRoot);
    }
    PXTSSUStrFree(&record);
  };
}

Work DumpBytes(size_t size) {
  return [bytes = std::string(size, 'x')] {
    SSUStr record = {};
    PXTSSUStrAlloc(&record, 1);
    Require(PXTBufToUStr(&record, bytes.data(), static_cast<u32>(bytes.size()), 0) == 0, "dump");
    PXTSSUStrFree(&record);
  };
}

Work Digest(size_t size) {
  return [text = std::string(size, 'x')] {
    u8 digest[16];
    Require(PXTMD5Hash(text.c_str(), digest) != -1, "digest");
  };
}

Work FindParameter(size_t size) {
  auto texts = std::make_shared<std::vector<std::string>>();
  for (size_t at = 0; at < size; ++at) {
    texts->push_back("name" + std::to_string(at) + "=value");
  }
  std::vector<astring*> entries;
  for (std::string& text : *texts) {
    entries.push_back(text.data());
  }
  return [texts, entries]() mutable {
    (void)PXTGetParamIndexByAStrName(static_cast<s32>(entries.size()), entries.data(), "none", 1);
  };
}

Work FillList(size_t size) {
  return [size] {
    PXTDLList* const list = PXTDLListAlloc();
    for (size_t at = 0; at < size; ++at) {
      PXTDLListInsertEntryAtTail(list, PXTDLListEntryAlloc(16));
    }
    while (PXTDLListEntry* const entry = PXTDLListRemoveEntryAtTail(list)) {
      PXTDLListEntryFree(entry);
    }
    PXTDLListFree(list);
  };
}

Work Answer(size_t size) {
  return [size] {
    void* const answer = PXTXAllocBuf(256, 0);
    for (u32 number = 0; number < size; ++number) {
      PXTXBufCatNode(answer, "Used", nullptr, QVX_TYPE_U32, &number);
    }
    PXTXFreeBufContent(PXTXFreeBufGetContent(answer));
  };
}

Work Append(size_t size) {
  (void)remove(kFile);
  Require(PXTForceXMLLogExists(kFile, "growth", "GROWTH") == SM_STATUS_SUCCESS, "make a log");
  return [text = std::string(size, 'x')] {
    Require(PXTAppendToXMLLog(kFile, QVX_LOG_INFORMATION, 1, "growth", "GROWTH", text.c_str(),
                              nullptr, 0, kNoMaximum) == SM_STATUS_SUCCESS,
            "append");
  };
}

Work ShowLog(size_t size) {
  Append(1000)();
  const Work append = Append(1000);
  for (size_t at = 0; at < size; ++at) {
    append();
  }
  return [] { PXTFreeMem(PXTCmdGetXMLLogContent(kFile)); };
}

void WriteLines(const char* path, size_t lines, const char* before, mode_t mode) {
  std::ofstream file(path);
  file << before;
  for (size_t line = 0; line < lines; ++line) {
    file << "key" << line << "=" << line << "\n";
  }
  file.close();
  Require(chmod(path, mode) == 0, "mode");
}

Work ReadIni(size_t size) {
  WriteLines(kFile, size, "[section]\n", 01664);
  return [key = "key" + std::to_string(size - 1)] {
    u32 value = 0;
    u32 room = sizeof(value);
    Require(PXTReadINIPathFileValue("section", key.c_str(), QVX_INI_U32, &value, &room, nullptr, 0,
                                    kFile, QVX_LOCK_WAIT) == SM_STATUS_SUCCESS,
            "read a key");
  };
}

Work WriteIni(size_t size) {
  WriteLines(kFile, size, "[section]\n", 01664);
  return [key = "key" + std::to_string(size - 1)] {
    const u32 value = 7;
    Require(PXTWriteINIPathFileValue("section", key.c_str(), QVX_INI_U32, &value, sizeof(value),
                                     kFile, QVX_LOCK_WAIT) == SM_STATUS_SUCCESS,
            "write a key");
  };
}

Work ReadPairs(size_t size) {
  WriteLines(kFile, size, "", 0664);
  return [size] {
    u32 count = 0;
    PXTKeyValue* const pairs = PXTCFGGetKeyValueEntries(kFile, &count);
    Require(count == size, "pairs");
    PXTCFGFreeKeyValueEntries(pairs, count);
  };
}

Work WritePair(size_t size) {
  WriteLines(kFile, size, "", 0664);
  return [size] {
    std::string key = "key" + std::to_string(size - 1);
    char value[] = "another";
    const PXTKeyValue pair = {key.data(), value};
    Require(PXTCFGSetKeyValue(kFile, &pair, 0) == SM_STATUS_SUCCESS, "write a pair");
  };
}

// A time that no map had before: the map is read anew.
void LoadMap() {
  static time_t time = 1000000;
  ++time;
  const timespec times[] = {{time, 0}, {time, 0}};
  Require(utimensat(0, kRoleMap, times, 0) == 0, "date the role map");
  Require(PXTOpenRolemapFile() == 0 && PXTGetRightsUsingRolemap() != 0, "load the role map");
}

Work LoadRoleMap(size_t size) {
  std::ofstream map(kRoleMap);
  for (size_t line = 0; line < size; ++line) {
    map << "user" << line << ",+group" << line << " *.lab,srv poweruser\n";
  }
  map << "* * user\n";
  map.close();
  Require(chmod(kRoleMap, 0640) == 0, "the role map's mode");
  return LoadMap;
}

// One user on many hosts, none of which is this one.
Work RightsOnHosts(size_t size) {
  std::ofstream map(kRoleMap);
  for (size_t line = 0; line < size; ++line) {
    map << "bin *.host" << line << " poweruser\n";
  }
  map.close();
  Require(chmod(kRoleMap, 0640) == 0, "the role map's mode");
  LoadMap();
  static const ustring kBin[] = {'b', 'i', 'n', 0};
  return [] { (void)PXTAuthorizeUser(nullptr, kBin); };
}

const Job kJobs[] = {
    {"UTF-8 from 16-bit Latin, units", 4096, ToUTF8<0xE9>},
    {"UTF-8 from 16-bit CJK, units", 4096, ToUTF8<0x4E2D>},
    {"16-bit from UTF-8 ASCII, bytes", 16384, ToUTF16<'a'>},
    {"16-bit from UTF-8 Latin, bytes", 4096, ToUTF16<'\xA9'>},
    {"16-bit strcmp, units", 16384, Compare16},
    {"16-bit strstr of hostile text, units", 4096, SearchHostile},
    {"16-bit strrev, units", 4096, Reverse16},
    {"XML escape of specials, bytes", 4096, EscapeXml},
    {"backslash escape, units", 4096, EscapeUnits},
    {"a part of a text replaced, bytes", 16384, Replace},
    {"growable 8-bit text, pieces", 4096, GrowNarrow},
    {"growable 16-bit text, pieces", 4096, GrowWide},
    {"hex dump, bytes", 4096, DumpBytes},
    {"MD5, bytes", 4096, Digest},
    {"a parameter not found, parameters", 1000, FindParameter},
    {"list filled and emptied, entries", 1000, FillList},
    {"XML answer, elements", 1000, Answer},
    {"log entry, bytes of description", 2000, Append},
    {"log content, entries", 100, ShowLog},
    {"INI, last key read, keys", 1000, ReadIni},
    {"INI, last key replaced, keys", 1000, WriteIni},
    {"key=value, all read, lines", 1000, ReadPairs},
    {"key=value, last line replaced, lines", 1000, WritePair},
    {"role map loaded, lines", 500, LoadRoleMap},
    {"rights of a user on many hosts, lines", 500, RightsOnHosts},
};

void Count(const Job& job, size_t size) {
  const std::string name = job.name + std::string(": ") + std::to_string(size);
  const Work work = job.make(size);
  work();  // the heap and the C library get what they keep
  CALLGRIND_ZERO_STATS;
  work();
  CALLGRIND_DUMP_STATS_AT(name.c_str());
}

}  // namespace

int main() {
  (void)mkdir("/tmp/growth", 0755);
  for (const Job& job : kJobs) {
    for (const size_t times : {1, 2, 4}) {
      Count(job, job.size * times);
    }
  }
  return 0;
}
