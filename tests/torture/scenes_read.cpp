// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <cstring>

#include "torture/torture.h"

// Operations on files, texts and lists that change no file that others read.
namespace qvx::torture {
namespace {

constexpr char kIni[] = "/tmp/torture/net.ini";
constexpr char kPairs[] = "/tmp/torture/agent.properties";
constexpr char kLog[] = "/tmp/torture/events.xml";
constexpr char kWords[] = "/tmp/torture/words.utf16";

void Nothing() {}
void IniFile() {
  WriteText(kIni, "[net]\nhost=alpha\nport=1311\nmac=0x01,0xFF\nwide=0x61,0x00,0x00,0x00\n");
}
void Pairs() { WriteText(kPairs, "name=agent\nport=1311\n"); }
void Log() {
  (void)unlink(kLog);
  (void)PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, 7001, "root", "TORTURE", "first", nullptr, 0,
                          1000000);
}
void Words() {
  static const char16_t kText[] = u"\uFEFF0:1F=Disk full\r\n10C:1F=other\r\n";
  WriteText(kWords, std::string(reinterpret_cast<const char*>(kText), sizeof(kText) - 2));
}

bool ReadIni(qvx_s32 type, const char* key, void* value, qvx_u32 size) {
  return PXTReadINIPathFileValue("net", key, type, value, &size, nullptr, 0, kIni, QVX_LOCK_WAIT) ==
         SM_STATUS_SUCCESS;
}

qvx_astring helpLine[] = "help";
qvx_astring* Help(qvx_s32, qvx_astring**) { return PXTGetHostNameAStr(); }

// Made before the scenes, which allocate nothing themselves.
const std::vector<std::string> kPieces = {"<Answer id=\"1\">", "<Number>42</Number>",
                                          "<Name>R&amp;D &lt;archive&gt;</Name>", "</Answer>"};

bool BuildXml() {
  void* const buffer = PXTXAllocBuf(16, 0);
  if (buffer == nullptr) return false;
  const qvx_u32 number = 42;
  bool whole = PXTXBufCatBeginNode(buffer, "Answer", "id=\"1\"") == 0;
  for (int at = 0; at < 40 && whole; ++at) {
    whole = PXTXBufCatNode(buffer, "Number", nullptr, QVX_TYPE_U32, &number) == 0 &&
            PXTXBufCatNode(buffer, "Name", nullptr, QVX_TYPE_XML_ASTRING, "R&D <archive>") == 0;
  }
  whole = whole && PXTXBufCatEndNode(buffer, "Answer") == 0;
  qvx_astring* const text = PXTXFreeBufGetContent(buffer);
  const size_t length =
      kPieces[0].size() + 40 * (kPieces[1].size() + kPieces[2].size()) + kPieces[3].size();
  whole = GaveWhole(text, length, kPieces) && whole;
  PXTXFreeBufContent(text);
  return whole;
}

bool GrowText() {
  SSAStr record = {};
  bool whole = PXTSSAStrAlloc(&record, 4) != nullptr;
  for (int at = 0; at < 50 && whole; ++at) {
    whole = PXTSSAStrCatAStr(&record, "more text ") != nullptr;
  }
  if (whole) Give(record.text, record.length);
  whole = whole && strlen(record.text) == 500;
  PXTSSAStrFree(&record);
  return whole;
}

bool GrowUnits() {
  SSUStr record = {};
  bool whole = PXTSSUStrAlloc(&record, 4) != nullptr;
  const qvx_ustring text[] = {'a', 'b', 'c', 0};
  for (int at = 0; at < 50 && whole; ++at) {
    whole = PXTSSUStrCatUStr(&record, text) != nullptr && PXTSSUStrCatAStr(&record, "d") != nullptr;
  }
  PXTSSUStrFree(&record);
  return whole;
}

bool Dump() {
  SSUStr record = {};
  bool whole = PXTSSUStrAlloc(&record, 4) != nullptr;
  whole = whole && PXTBufToUStr(&record, "0123456789abcdefghij", 20, 0) == 0;
  PXTSSUStrFree(&record);
  return whole;
}

bool DoubleList() {
  PXTDLList* const list = PXTDLListAlloc();
  if (list == nullptr) return false;
  bool whole = true;
  for (int at = 0; at < 5 && whole; ++at) {
    PXTDLListEntry* const entry = PXTDLListEntryAlloc(16);
    whole = entry != nullptr;
    if (whole) PXTDLListInsertEntryAtTail(list, entry);
  }
  while (PXTDLListEntry* const entry = PXTDLListRemoveEntryAtHead(list)) {
    PXTDLListEntryFree(entry);
  }
  PXTDLListFree(list);
  return whole;
}

bool SingleList() {
  PXTSLList* const list = PXTSLListAlloc();
  if (list == nullptr) return false;
  bool whole = true;
  for (int at = 0; at < 5 && whole; ++at) {
    PXTSLListEntry* const entry = PXTSLListEntryAlloc(16);
    whole = entry != nullptr;
    if (whole) PXTSLListInsertEntryAtHead(list, entry);
  }
  while (PXTSLListEntry* const entry = PXTSLListRemoveEntryAtTail(list)) {
    PXTSLListEntryFree(entry);
  }
  PXTSLListFree(list);
  return whole;
}

bool ReadPairs() {
  qvx_u32 count = 0;
  PXTKeyValue* const entries = PXTCFGGetKeyValueEntries(kPairs, &count);
  PXTCFGFreeKeyValueEntries(entries, count);
  return entries != nullptr && count == 2;
}

bool AskHelp() {
  const PXTCommand table[] = {{helpLine, Help}};
  return Came(PXTNVSCMDHelp(0, nullptr, table, 1, nullptr));
}

}  // namespace

std::vector<Scene> ReadingScenes() {
  std::vector<Scene> scenes;
  const auto add = [&scenes](const char* name, void (*prepare)(), bool (*act)()) {
    scenes.push_back({name, Kind::kPure, nullptr, prepare, [act] { return Status(act()); }});
  };
  add("INI: text read", IniFile, [] {
    char text[64];
    return ReadIni(QVX_INI_ASTRING, "host", text, 64);
  });
  add("INI: a number read", IniFile, [] {
    qvx_u32 value;
    return ReadIni(QVX_INI_U32, "port", &value, 4);
  });
  add("INI: bytes read", IniFile, [] {
    char bytes[64];
    return ReadIni(QVX_INI_BINARY, "mac", bytes, 64);
  });
  add("INI: 16-bit text read", IniFile, [] {
    qvx_ustring text[64];
    return ReadIni(QVX_INI_USTRING, "wide", text, sizeof(text));
  });
  add("key=value: entries", Pairs, ReadPairs);
  add("log: its content", Log, [] {
    qvx_astring* const text = PXTCmdGetXMLLogContent(kLog);
    const bool whole = text != nullptr && strstr(text, "first") != nullptr;
    PXTXFreeBufContent(text);
    return whole;
  });
  add("string resource", Words, [] {
    qvx_ustring text[64];
    qvx_u32 size = sizeof(text);
    return PXTGetUnicodeStringFromIDPathFile(0x1F, nullptr, kWords, text, &size) == 20;
  });
  add("XML builder", Nothing, BuildXml);
  add("growing text", Nothing, GrowText);
  add("growing 16-bit text", Nothing, GrowUnits);
  add("hex dump", Nothing, Dump);
  add("list of two links", Nothing, DoubleList);
  add("list of one link", Nothing, SingleList);
  add("XML escape, three passes", Nothing,
      [] { return Came(PXTGetXMLUTF8StrFromAStr("a<b&c", 3)); });
  add("escape of 16-bit text", Nothing, [] {
    const qvx_ustring text[] = {'a', '<', 'b', 0};
    return Came(PXTGetXMLUTF8StrFromUStr(text, 2));
  });
  add("help", Nothing, AskHelp);
  add("typed value to text", Nothing, [] {
    const qvx_u32 value = 42;
    return Came(PXTNVSXValToASCII(5, &value));
  });
  add("context lock", Nothing, [] {
    const qvx_u32 lock = PXTAllocContextLock();
    PXTFreeContextLock(lock);
    return lock != 0;
  });
  add("MD5", Nothing, [] {
    qvx_u8 digest[64];
    const bool done = PXTMD5Hash("text", digest) != 0;
    Give(digest, 16);
    return done;
  });
  return scenes;
}

}  // namespace qvx::torture
