// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "benchmarks/operations.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "qvxcs/qvxcs.h"

namespace {

constexpr char kIni[] = "/tmp/counts/counts.ini";
constexpr char kPairs[] = "/tmp/counts/counts.properties";
constexpr char kLog[] = "/tmp/counts/counts.xml";
constexpr char kRoleMap[] = "/etc/cim/zarn/plinthos/qvxrolemap";
constexpr char kProperties[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/qvx.properties";
constexpr size_t kUnits = 1024;
constexpr u32 kNoMaximum = 0xFFFFFFFF;
const ustring kRoot[] = {'r', 'o', 'o', 't', 0};
const ustring kBin[] = {'b', 'i', 'n', 0};

void Require(bool right, const char* what) {
  if (right) return;
  (void)std::fprintf(stderr, "counts: wrong result: %s\n", what);
  std::abort();
}

// 16-bit text of one script, and the same in UTF-8; the rooms take either.
ustring wide[kUnits + 1];
ustring otherWide[kUnits + 2];
astring narrow[kUnits * 3 + 2];

void Fill(ustring unit) {
  for (size_t at = 0; at < kUnits; ++at) {
    wide[at] = unit;
    otherWide[at] = unit;
  }
  u32 size = sizeof(narrow) - 1;
  Require(PXTUCS2StrToUTF8Str(narrow, &size, wide) == SM_STATUS_SUCCESS, "narrow");
}

void FillASCII() { Fill('a'); }
void FillLatin() { Fill(0xE9); }
void FillCJK() { Fill(0x4E2D); }
void FillMarks() {
  Fill('a');
  for (size_t at = 0; at < kUnits; at += 10) {
    narrow[at] = '&';
  }
}

void ToUTF8() {
  u32 size = sizeof(narrow) - 1;
  Require(PXTUCS2StrToUTF8Str(narrow, &size, wide) == SM_STATUS_SUCCESS, "to UTF-8");
}
void ToUTF16() {
  u32 size = kUnits + 1;
  Require(PXTUTF8StrToUCS2Str(otherWide, &size, narrow) == SM_STATUS_SUCCESS, "to UTF-16");
}
void SizeOfUTF16() {
  u32 size = 0;
  Require(PXTUTF8StrToUCS2Str(nullptr, &size, narrow) == SM_STATUS_SUCCESS, "size");
}
void Strlen() { Require(PXTUniStrlen(wide) == kUnits, "strlen"); }
void Strcmp() { Require(PXTUniStrcmp(wide, otherWide) == 0, "strcmp"); }
void Strchr() { Require(PXTUniStrchr(wide, 'z') == nullptr, "strchr"); }
void Strcpy() { PXTUniStrcpy(otherWide, wide); }
void Escape() { PXTFreeMem(PXTGetXMLUTF8StrFromAStr(narrow, 1)); }

void Grow() {
  SSAStr record = {};
  PXTSSAStrAlloc(&record, 1);
  for (int piece = 0; piece < 1000; ++piece) {
    PXTSSAStrCatAStr(&record, "12345678");
  }
  PXTSSAStrFree(&record);
}

void NumberFromText() {
  u32 status = 0;
  Require(PXTASCIIToUnSigned32VT("4294967295", QVX_BASE_DECIMAL, &status) == 4294967295, "number");
}

void Digest() {
  u8 digest[16];
  Require(PXTMD5Hash(narrow, digest) != -1, "digest");
}

void Answer() {
  const u32 number = 4000000000;
  void* const answer = PXTXAllocBuf(256, 0);
  for (int at = 0; at < 500; ++at) {
    PXTXBufCatNode(answer, "Name", "id=\"7\"", QVX_TYPE_XML_ASTRING,
                   "R&D archive of the laboratory");
    PXTXBufCatNode(answer, "Used", nullptr, QVX_TYPE_U32, &number);
  }
  PXTXFreeBufContent(PXTXFreeBufGetContent(answer));
}

s32 InOrder(PXTDLListEntry* newEntry, PXTDLListEntry* listEntry) {
  return newEntry < listEntry ? -1 : 1;
}

void ListOf100() {
  PXTDLList* const list = PXTDLListAlloc();
  for (int at = 0; at < 100; ++at) {
    PXTDLListInsertOrdered(list, PXTDLListEntryAlloc(16), InOrder);
  }
  while (PXTDLListEntry* const entry = PXTDLListRemoveEntryAtHead(list)) {
    PXTDLListEntryFree(entry);
  }
  PXTDLListFree(list);
}

u8 table[12504];

void MakeTable() {
  (void)PXTClearHashTable(table, sizeof(table));
  for (int at = 0; at < 5000; ++at) {
    (void)PXTAcquireHashID(table, sizeof(table));
  }
}

void AcquireID() {
  const u32 id = PXTAcquireHashID(table, sizeof(table));
  Require(PXTReleaseHashID(table, sizeof(table), id) == 0, "release");
}

void MakeFiles() {
  (void)mkdir("/tmp/counts", 0755);
  std::ofstream ini(kIni);
  for (int section = 0; section < 30; ++section) {
    ini << "[section" << section << "]\n";
    for (int key = 0; key < 20; ++key) {
      ini << "key" << key << "=" << section * 20 + key << "\n";
    }
  }
  std::ofstream pairs(kPairs);
  for (int key = 0; key < 1000; ++key) {
    pairs << "key" << key << "=value of " << key << "\n";
  }
  ini.close();
  Require(chmod(kIni, 01664) == 0 && chmod(kPairs, 0664) == 0, "modes");
}

void ReadKey(const char* section, const char* key) {
  u32 value = 0;
  u32 size = sizeof(value);
  Require(PXTReadINIPathFileValue(section, key, QVX_INI_U32, &value, &size, nullptr, 0, kIni,
                                  QVX_LOCK_WAIT) == SM_STATUS_SUCCESS,
          "read a key");
}
void ReadFirstKey() { ReadKey("section0", "key0"); }
void ReadLastKey() { ReadKey("section29", "key19"); }

void WriteKey() {
  static u32 value = 100000;
  ++value;
  Require(PXTWriteINIPathFileValue("section15", "key10", QVX_INI_U32, &value, sizeof(value), kIni,
                                   QVX_LOCK_WAIT) == SM_STATUS_SUCCESS,
          "write a key");
}

void ReadPairs() {
  u32 count = 0;
  PXTCFGFreeKeyValueEntries(PXTCFGGetKeyValueEntries(kPairs, &count), 1000);
  Require(count == 1000, "pairs");
}

void WritePair() {
  char key[] = "key500";
  char value[] = "another";
  const PXTKeyValue pair = {key, value};
  Require(PXTCFGSetKeyValue(kPairs, &pair, 0) == SM_STATUS_SUCCESS, "write a pair");
}

void MakeLog() {
  (void)mkdir("/tmp/counts", 0755);
  Require(PXTForceXMLLogExists(kLog, "counts", "COUNTS") == SM_STATUS_SUCCESS, "make a log");
}

void Append() {
  static const std::string text(180, 't');
  Require(PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, 1, "counts", "COUNTS", text.c_str(), nullptr,
                            0, kNoMaximum) == SM_STATUS_SUCCESS,
          "append");
}

void ShowLog() { PXTFreeMem(PXTCmdGetXMLLogContent(kLog)); }

void Record() {
  Require(PXTAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "counts", "COUNTS", "a command",
                            QVX_LOG_INFORMATION) == SM_STATUS_SUCCESS,
          "record");
}

void MakeProperties() {
  (void)mkdir("/etc/cim/zarn/plinthos/vexilon/qvx", 0755);
  (void)mkdir("/etc/cim/zarn/plinthos/vexilon/qvx/ini", 0755);
  std::ofstream(kProperties) << "preferences.system.cmdlogmaxsize=1000000\n";
  Record();
}

void RightsOfRoot() { Require(PXTAuthorizeUser(nullptr, kRoot) == 0x40007, "rights of root"); }
void RightsOfUser() { (void)PXTAuthorizeUser(nullptr, kBin); }

void MakeRoleMap() {
  std::ofstream map(kRoleMap);
  for (int user = 0; user < 999; ++user) {
    map << "user" << user << ",+group" << user << "   *.lab,srv" << user << "   poweruser\n";
  }
  map << "root,bin * poweruser\n";
  map.close();
  Require(chmod(kRoleMap, 0640) == 0, "the role map's mode");
}

void LoadRoleMap() {
  static time_t time = 1000000;
  ++time;
  const timespec times[] = {{time, 0}, {time, 0}};
  Require(utimensat(0, kRoleMap, times, 0) == 0, "date the role map");
  Require(PXTOpenRolemapFile() == 0 && PXTGetRightsUsingRolemap() != 0, "load the role map");
}

void Addresses() {
  u32 count = 0;
  PXTFreeMem(PXTHostGetHostIPAddrList(&count));
}

}  // namespace

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations = {
      {"UTF-8 from 16-bit ASCII, 1 Ki units", FillASCII, ToUTF8, false},
      {"16-bit from UTF-8 ASCII, 1 Ki units", FillASCII, ToUTF16, false},
      {"size of 16-bit from UTF-8 ASCII, 1 Ki units", FillASCII, SizeOfUTF16, false},
      {"UTF-8 from 16-bit Latin, 1 Ki units", FillLatin, ToUTF8, false},
      {"16-bit from UTF-8 Latin, 1 Ki units", FillLatin, ToUTF16, false},
      {"UTF-8 from 16-bit CJK, 1 Ki units", FillCJK, ToUTF8, false},
      {"16-bit from UTF-8 CJK, 1 Ki units", FillCJK, ToUTF16, false},
      {"16-bit strlen, 1 Ki units", FillASCII, Strlen, false},
      {"16-bit strcmp, 1 Ki units", FillASCII, Strcmp, false},
      {"16-bit strchr, 1 Ki units", FillASCII, Strchr, false},
      {"16-bit strcpy, 1 Ki units", FillASCII, Strcpy, false},
      {"XML escape, 1 KiB, none special", FillASCII, Escape, false},
      {"XML escape, 1 KiB, 10 % special", FillMarks, Escape, false},
      {"growable text, 1,000 pieces", nullptr, Grow, false},
      {"number from text", nullptr, NumberFromText, false},
      {"MD5 of 1 KiB", FillASCII, Digest, false},
      {"answer of 1,000 elements", nullptr, Answer, false},
      {"list of 100 in order", nullptr, ListOf100, false},
      {"identifier acquired and released", MakeTable, AcquireID, false},
      {"INI of 7 KB, first key", MakeFiles, ReadFirstKey, true},
      {"INI of 7 KB, last key", nullptr, ReadLastKey, true},
      {"INI of 7 KB, replace a key", nullptr, WriteKey, true},
      {"key=value, all of 1,000 lines", nullptr, ReadPairs, true},
      {"key=value, replace a line of 1,000", nullptr, WritePair, true},
      {"log append of 400 bytes", MakeLog, Append, true},
      {"command log entry", nullptr, Record, true},
      {"command log entry, with a properties file", MakeProperties, Record, true},
      {"log content", nullptr, ShowLog, false},
      {"rights of root, built-in lines", nullptr, RightsOfRoot, true},
      {"rights of a user, built-in lines", nullptr, RightsOfUser, true},
      {"role map of 1,000 lines, load", MakeRoleMap, LoadRoleMap, true},
      {"rights of root, role map of 1,000 lines", nullptr, RightsOfRoot, true},
      {"host addresses", nullptr, Addresses, true},
  };
  return operations;
}
