// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/command_log.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "qvxcs/command_log.h"
#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/layout.h"
#include "base/results.h"
#include "config/file_lines.h"
#include "config/keyvalue_line.h"
#include "os/block_reader.h"
#include "os/file_lock.h"
#include "os/file_util.h"
#include "os/stdio_file.h"
#include "text/number_text.h"
#include "xml/xml_log.h"

namespace qvx {

namespace {

constexpr s32 kFirstIdentifier = QVX_CMDLOG_FIRST_ID;
constexpr s32 kLastIdentifier = QVX_CMDLOG_LAST_ID;

constexpr astring kOwnUser[] = "Local System";
constexpr astring kOwnSource[] = "QVPX";
constexpr astring kMaxSizeKey[] = "preferences.system.cmdlogmaxsize";

// The file lock does not keep threads of one process apart.
constinit std::atomic<u32> cmdLogMaxSize{kDefaultMaxLogSize};

// A setting that does not fit 32 bits is no size, although the number conversion keeps the low
// bits.
bool IsBeyond32Bits(const astring* number) {
  u64 magnitude = 0;
  for (const astring* at = number; *at != '\0'; ++at) {
    if (*at < '0' || *at > '9') {
      continue;  // the one sign that the conversion accepts
    }
    magnitude = magnitude * 10 + static_cast<u64>(*at - '0');
    if (magnitude > 0xFFFFFFFFu) return true;
  }
  return false;
}

bool ParseMaxSize(const astring* number, u32* size) {
  if (number == nullptr) return false;
  u32 status = SM_STATUS_SUCCESS;
  // Deliberate: the conversion accepts a sign, so "-5" is the size 4,294,967,291.
  // Held by CommandLog.NegativeMaximumWrapsAround.
  const u32 value = ASCIIToUnSigned32VT(number, QVX_BASE_DECIMAL, &status);
  if (status != SM_STATUS_SUCCESS || IsBeyond32Bits(number)) return false;
  *size = value;
  return true;
}

// Called under the file lock. Leaves the size alone when the file, the key's first occurrence or a
// valid number is missing.
void ReadConfiguredMaxSize(u32* size) {
  astring path[kKeyValuePathRoom];
  if (!KeyValuePath(kPropertiesFileName, 1, path)) return;
  struct stat seen = {};
  const Descriptor opened = OpenRegular(path, O_RDONLY, &seen);
  BlockReader file(opened.Number());
  if (!opened || !file) return;
  astring key[kLineRoom];
  std::string_view line;
  while (NextLine(&file, &line) == LineRead::kLine) {
    const astring* const value = SplitKeyValueLine(line, key);
    if (value == nullptr || strcmp(key, kMaxSizeKey) != 0) continue;
    (void)ParseMaxSize(value, size);
    return;
  }
}

}  // namespace

astring* SUPTIntfGetCmdLogPathFileName() {
  constexpr size_t kRoom = sizeof(kCmdLogDirectory) + sizeof(kCmdLogFileName);
  HeapArray<astring> path = AllocArray<astring>(kRoom);
  if (!path) return nullptr;
  (void)snprintf(path.get(), kRoom, "%s/%s", kCmdLogDirectory, kCmdLogFileName);
  if (ForceXMLLogExists(path.get(), kOwnUser, kOwnSource) != SM_STATUS_SUCCESS) return nullptr;
  return path.release();
}

u32 SUPTIntfAppendToCmdLog(s32 identifier, const astring* user, const astring* source,
                           const astring* description, u16 type) {
  if (user == nullptr || source == nullptr || description == nullptr) {
    return SM_STATUS_INVALID_PARAMETER;
  }
  if (identifier < kFirstIdentifier || identifier > kLastIdentifier) {
    return SM_STATUS_INVALID_PARAMETER;
  }
  const HeapArray<astring> path(SUPTIntfGetCmdLogPathFileName());
  if (!path) return kMinusOne;
  u32 maxSize = kDefaultMaxLogSize;
  (void)SUPTIntfGetCmdLogMaxSize(&maxSize);
  return AppendToXMLLog(path.get(), type, static_cast<u32>(identifier), user, source, description,
                        nullptr, 0, maxSize);
}

u32 SUPTIntfClearCmdLog(const astring* user, const astring* source) {
  const HeapArray<astring> path(SUPTIntfGetCmdLogPathFileName());
  if (!path) return kMinusOne;
  return ClearXMLLog(path.get(), user, source);
}

u32 SUPTIntfGetCmdLogSize(u32* size) {
  if (size == nullptr) return SM_STATUS_INVALID_PARAMETER;
  *size = 0;
  const FileLockGuard lock(QVX_LOCK_WAIT);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  // Deliberate: making a missing log takes the lock again, and that release ends this hold too; the
  // size is then read unlocked. Held by CommandLog.SizeOfAMissingLogIsReadUnlocked.
  const HeapArray<astring> path(SUPTIntfGetCmdLogPathFileName());
  if (!path) return SM_STATUS_NO_MEMORY;
  return GetSizeOfFile(path.get(), size);
}

u32 SUPTIntfGetCmdLogMaxSize(u32* size) {
  if (size == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const FileLockGuard lock(QVX_LOCK_WAIT);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  *size = cmdLogMaxSize.load();
  ReadConfiguredMaxSize(size);
  return SM_STATUS_SUCCESS;
}

u32 SUPTIntfSetCmdLogMaxSize(s32 size) {
  // Deliberate: the call only restores the default; other sizes are set in the properties file.
  // Held by CommandLog.OnlyTheDefaultMaximumCanBeSet.
  if (size != static_cast<s32>(kDefaultMaxLogSize)) return SM_STATUS_INVALID_PARAMETER;
  const FileLockGuard lock(QVX_LOCK_WAIT);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  cmdLogMaxSize.store(kDefaultMaxLogSize);
  return SM_STATUS_SUCCESS;
}

void InitCmdMaxLogSize() {
  u32 size = kDefaultMaxLogSize;
  (void)SUPTIntfGetCmdLogMaxSize(&size);
  const FileLockGuard lock(QVX_LOCK_WAIT);
  if (lock) ReadConfiguredMaxSize(&size);
  // Deliberate: the value that was read is dropped; each append reads the properties file again,
  // and the module's value is the default that it falls back to. Held by
  // CommandLog.AttachKeepsTheDefaultWhateverTheFileHolds.
  cmdLogMaxSize.store(kDefaultMaxLogSize);
}

}  // namespace qvx
