// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Paths, names of host and locale, addresses, small files.
#include <pwd.h>

#include <cstdio>
#include <cstring>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kFile[] = "/tmp/torture/small.txt";
constexpr char kOemIni[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/oem.ini";

void Nothing() {}
// The C library ends the process where its own first look at the accounts finds no memory.
void Accounts() {
  (void)getpwuid(0);
  // Asks each source of accounts: the C library loads one for good when it first asks it, maybe
  // only because a fault keeps an earlier one from answering.
  (void)getpwnam("nobody has this name");
}
void SmallFile() { WriteText(kFile, "text"); }
void OemIni() { WriteText(kOemIni, "[data]\nadschemaprefix=acme\n"); }

struct TextCall {
  const char* name;
  qvx_astring* (*call)();
};

// Each gives a text of its own.
constexpr TextCall kTexts[] = {
    {"install path", PXTGetQVXInstallPath},
    {"root install path", PXTGetRootInstallPath},
    {"INI path", PXTGetProductIniPath},
    {"var path", PXTGetProductVarPath},
    {"www path", PXTGetQVXWWWRootPath},
    {"XSL path", PXTGetQVXXSLRootPath},
    {"download path", PXTGetQVXDownloadPath},
    {"upload path", PXTGetQVXUploadPath},
    {"documents of the tool", PXTGetQVXCLIDocsPath},
    {"documents of the web", PXTGetQVXWEBDocsPath},
    {"temporary folder of the web", PXTGetIWSTempDirPath},
    {"command log's path", PXTGetCmdLogPathFileName},
    {"locale", PXTGetOSLocaleName},
    {"country", PXTGetOSCountry},
    {"language", PXTGetOSLanguage},
    {"host name", PXTGetHostNameAStr},
    {"locale of a language", [] { return PXTGetLocaleNameAStr(1031); }},
    {"an OEM's INI path", [] { return PXTGetOEMINIPathFile("acme", "x.ini", "0"); }},
    {"style sheet", [] { return PXTGetXSLPathLocale("p", "d", "my file.xsl", nullptr, 14, 1); }},
};

bool Addresses() {
  qvx_u32 count = 0;
  return Came(PXTHostGetHostIPAddrList(&count));
}

bool AddressList() {
  qvx_u32 count = 0;
  return PXTGetIPAddrStrList(nullptr, &count, nullptr) == 0;
}

bool HostName() {
  char name[256];
  qvx_u32 size = sizeof(name);
  return PXTGetIPHostName(name, &size) == 0;
}

bool WideHostName() {
  qvx_ustring name[256];
  qvx_u32 size = sizeof(name);
  return PXTUniGetIPHostName(name, &size) == 0;
}

bool TmpName() {
  char name[64];
  qvx_u32 size = sizeof(name);
  return PXTGetTmpFile("/tmp", name, &size) == 0;
}

// Its thread's own: another one could remove it first.
bool FolderMadeAndRemoved() {
  char folder[48];
  (void)snprintf(folder, sizeof(folder), "/tmp/torture-folder-%d", gettid());
  return PXTMkDir(folder) == 0 && PXTRmDir(folder) == 0;
}

bool LibraryLoaded() {
  PXTLibrary library = {};
  const bool whole = PXTLibLoad(&library, "libcrypt.so.1") == 0 &&
                     PXTLibLinkToExportFN(&library, "crypt") != nullptr;
  (void)PXTLibUnLoad(&library);
  return whole;
}

bool ThreadRun() {
  PXTThread thread = {};
  return PXTThreadStart(
             &thread, [](qvx_u32 argument) { return argument; }, 0) == 0 &&
         PXTThreadStop(&thread) == 0;
}

}  // namespace

std::vector<Scene> PathScenes() {
  std::vector<Scene> scenes;
  for (const TextCall& text : kTexts) {
    const auto act = [call = text.call] { return Status(Came(call())); };
    scenes.push_back({text.name, Kind::kPure, nullptr, Nothing, act});
  }
  const auto add = [&scenes](const char* name, void (*prepare)(), bool (*act)()) {
    scenes.push_back({name, Kind::kPure, nullptr, prepare, [act] { return Status(act()); }});
  };
  add("the process's user", Accounts, [] { return Came(PXTGetProcessUser()); });
  add("domain name", Nothing, [] { return Came(PXTGetComputerDomainName()); });
  // "zarn" where the file cannot be read.
  add("schema prefix", OemIni, [] { return Came(PXTGetOEMADSchemaPrefix()) && Given() != "zarn"; });
  add("modular chassis", Nothing, [] { return PXTCheckModularChassis() == 0; });
  add("host name in a buffer", Nothing, HostName);
  add("host name in 16 bits", Nothing, WideHostName);
  add("addresses of the host", Nothing, Addresses);
  add("count of addresses", Nothing, AddressList);
  add("size of a file", SmallFile, [] {
    qvx_u32 size = 0;
    return PXTGetSizeOfFile(kFile, &size) == 0 && size == 4;
  });
  add("name of a temporary file", Nothing, TmpName);
  add("a folder made and removed", Nothing, FolderMadeAndRemoved);
  add("a library loaded", Nothing, LibraryLoaded);
  add("a thread", Nothing, ThreadRun);
  add("OS log", Nothing, [] {
    const qvx_ustring text[] = {'t', 'e', 'x', 't', 0};
    return PXTAppendToOSLog(QVX_OSLOG_INFORMATION, 1, text, text) == 0;
  });
  return scenes;
}

}  // namespace qvx::torture
