// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A host in C++17 that sees the public headers and links the library alone. What the library hands
// out is held by owners that give it back; what it calls back are functions of C++.
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "qvxcs/qvxcs.h"

static_assert(__cplusplus == 201703L);

namespace {

int faults = 0;

#define EXPECT(condition) Expect(condition, #condition, __LINE__)

void Expect(bool holds, const char* claim, int line) {
  if (!holds) {
    ++faults;
    fprintf(stderr, "cpp_host.cpp:%d: not so: %s\n", line, claim);
  }
}

template <auto Free>
struct GiveBack {
  template <typename Type>
  void operator()(Type* pointer) const {
    (void)Free(pointer);
  }
};
using Text = std::unique_ptr<astring, GiveBack<PXTFreeMem>>;
using Units = std::unique_ptr<ustring, GiveBack<PXTFreeMem>>;
using Content = std::unique_ptr<astring, GiveBack<PXTXFreeBufContent>>;
using Buffer = std::unique_ptr<void, GiveBack<PXTXFreeBuf>>;
using List = std::unique_ptr<PXTDLList, GiveBack<PXTDLListFree>>;

std::string Taken(astring* text) {
  const Text owner(text);
  return owner == nullptr ? "(null)" : owner.get();
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

void TextsConvert() {
  const std::string utf8 = "na\xC3\xAFve";
  u32 size = 0;
  EXPECT(PXTUTF8StrToUCS2Str(nullptr, &size, utf8.c_str()) == SM_STATUS_SUCCESS);
  EXPECT(size == 12);
  std::vector<ustring> units(size / 2);
  size /= 2;
  EXPECT(PXTUTF8StrToUCS2Str(units.data(), &size, utf8.c_str()) == SM_STATUS_SUCCESS);
  EXPECT((units == std::vector<ustring>{'n', 'a', 0xEF, 'v', 'e', 0}));
  EXPECT(PXTUniStrlen(units.data()) == 5);

  u32 status = 77;
  const Units copy(PXTNVSAstrToUstr(utf8.c_str(), &status));
  EXPECT(status == SM_STATUS_SUCCESS && PXTUniStrcmp(copy.get(), units.data()) == 0);
  EXPECT(Taken(PXTGetXMLUTF8StrFromUStr(copy.get(), 1)) == utf8);
  EXPECT(PXTASCIIToSigned64VT("-5000000000", QVX_BASE_DECIMAL, &status) == -5000000000);
  EXPECT(PXTASCIIToDouble("0.25") == 0.25);
  SSAStr text = {};
  PXTSSAStrAlloc(&text, 1);
  for (const char* piece : {"one", ", ", "two"}) {
    PXTSSAStrCatAStr(&text, piece);
  }
  EXPECT(std::string(text.text, text.length) == "one, two");
  PXTSSAStrFree(&text);
}

s32 ByKey(PXTDLListEntry* added, PXTDLListEntry* present) {
  return *static_cast<s32*>(added->data) - *static_cast<s32*>(present->data);
}

void ListsKeepOrder() {
  const List list(PXTDLListAlloc());
  for (const s32 key : {3, 1, 2}) {
    PXTDLListEntry* const entry = PXTDLListEntryAlloc(sizeof(key));
    memcpy(entry->data, &key, sizeof(key));
    EXPECT(PXTDLListInsertKeyed(list.get(), entry, ByKey) == SM_STATUS_SUCCESS);
  }
  EXPECT(list->count == 3);
  for (const s32 key : {1, 2, 3}) {
    PXTDLListEntry* const entry = PXTDLListRemoveEntryAtHead(list.get());
    EXPECT(*static_cast<s32*>(entry->data) == key);
    PXTDLListEntryFree(entry);
  }
  std::array<u32, 1> ids = {};
  EXPECT(PXTAcquireHashID(ids.data(), 4) == 1 && PXTAcquireHashID(ids.data(), 4) == 2);
}

void DocumentsAreBuilt() {
  Buffer buffer(PXTXAllocBuf(0, 0));
  const s32 answer = 42;
  EXPECT(PXTXBufCatBeginNode(buffer.get(), "A", nullptr) == SM_STATUS_SUCCESS);
  EXPECT(PXTXBufCatNode(buffer.get(), "N", "u=\"1\"", QVX_TYPE_S32, &answer) == SM_STATUS_SUCCESS);
  EXPECT(PXTXBufCatNode(buffer.get(), "T", nullptr, QVX_TYPE_XML_ASTRING, "1 < 2") ==
         SM_STATUS_SUCCESS);
  EXPECT(PXTXBufCatEndNode(buffer.get(), "A") == SM_STATUS_SUCCESS);
  PXTNVSCatSMStatusNode(buffer.get(), 0, nullptr);
  const Content text(PXTXFreeBufGetContent(buffer.release()));
  EXPECT(std::string(text.get()) ==
         "<A><N u=\"1\">42</N><T>1 &lt; 2</T></A><SMStatus>0</SMStatus>");

  EXPECT(PXTAppendToXMLLog("/run/cpp.xml", QVX_LOG_INFORMATION, 9, "me", "host", "<D/>", nullptr, 0,
                           131072) == SM_STATUS_SUCCESS);
  EXPECT(ReadFile("/run/cpp.xml").find("<ID>9</ID><UserInfo>me</UserInfo>") != std::string::npos);
  u32 size = 0;
  EXPECT(PXTAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "me", "host", "<D/>", QVX_LOG_INFORMATION) ==
         SM_STATUS_SUCCESS);
  EXPECT(PXTGetCmdLogSize(&size) == SM_STATUS_SUCCESS);
  EXPECT(size == ReadFile(Taken(PXTGetCmdLogPathFileName())).size());
}

void SettingsAreKept() {
  const char* const path = "/run/cpp.ini";
  const u32 port = 8080;
  u32 read = 0;
  u32 size = sizeof(read);
  EXPECT(PXTWriteINIPathFileValue("Net", "port", QVX_INI_U32, &port, 4, path, QVX_LOCK_WAIT) ==
         SM_STATUS_SUCCESS);
  EXPECT(ReadFile(path) == "[Net]\nport=8080\n");
  EXPECT(PXTReadINIPathFileValue("Net", "port", QVX_INI_U32, &read, &size, nullptr, 0, path,
                                 QVX_LOCK_WAIT) == SM_STATUS_SUCCESS);
  EXPECT(read == port && size == 4);

  std::ofstream("/run/cpp.properties") << "level=1\n";
  std::string key = "level";
  std::string value = "2";
  const PXTKeyValue pair = {key.data(), value.data()};
  EXPECT(PXTCFGSetKeyValue("/run/cpp.properties", &pair, 0) == SM_STATUS_SUCCESS);
  u32 count = 0;
  PXTKeyValue* const entries = PXTCFGGetKeyValueEntries("/run/cpp.properties", &count);
  EXPECT(count == 1 && PXTCFGGetKeyValue(entries, count, "level", 0) == value);
  PXTCFGFreeKeyValueEntries(entries, count);
  EXPECT(PXTGetSizeOfFile("/run/cpp.properties", &size) == SM_STATUS_SUCCESS && size == 8);
  EXPECT(Taken(PXTGetRootInstallPath()) == "/opt/zarn/plinthos");
  EXPECT(Taken(PXTGetXSLPathLocale("p", "d", "f.xsl", nullptr, 0, 1)) ==
         "/etc/cim/zarn/plinthos/var/lib/vexilon/xslroot//p/d/f.xsl");
}

void RightsAreTold() {
  const ustring root[] = {'r', 'o', 'o', 't', 0};
  EXPECT(PXTAuthorizeUser(nullptr, root) == (QVX_PRIV_ADMINISTRATOR | QVX_PRIV_ROOT));
  EXPECT(PXTGetProcessRights() == (QVX_PRIV_ADMINISTRATOR | QVX_PRIV_ROOT));
  EXPECT(Taken(PXTGetProcessUser()) == "root");
  EXPECT(std::string(pam_servicename) == "qvauth");
  EXPECT(Taken(PXTGetHostNameAStr()) == "qvxtest");
  EXPECT(PXTCheckIPEqual("::1", "0::1") == 1);
  std::array<u8, 16> digest = {};
  EXPECT(PXTMD5Hash("", digest.data()) == 1 && digest[0] == 0xD4 && digest[15] == 0x7E);
}

u32 seen = 0;

u32 Body(u32 argument) {
  seen = argument;
  return 0;
}

void ThreadsAndLibrariesRun() {
  PXTThread thread = {};
  EXPECT(PXTThreadStart(&thread, Body, 42) == 0 && PXTThreadStop(&thread) == 0 && seen == 42);
  PXTLibrary library = {};
  EXPECT(PXTLibLoad(&library, "libm.so.6") == SM_STATUS_SUCCESS);
  EXPECT(PXTLibLinkToExportFN(&library, "cos") != nullptr);
  EXPECT(PXTLibUnLoad(&library) == SM_STATUS_SUCCESS);
  EXPECT(PXTOSGetType() == QVX_OS_LINUX);
}

}  // namespace

int main() {
  if (access("/run/qvx-sandbox", F_OK) != 0) return 125;
  TextsConvert();
  ListsKeepOrder();
  DocumentsAreBuilt();
  SettingsAreKept();
  RightsAreTold();
  ThreadsAndLibrariesRun();
  return faults == 0 ? 0 : 1;
}
