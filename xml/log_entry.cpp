// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/log_entry.h"

#include <string.h>
#include <time.h>

#include <cinttypes>
#include <cstdio>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "os/host_name.h"
#include "text/grow_string.h"
#include "text/hex_dump.h"
#include "text/time_text.h"
#include "text/xml_escape.h"

namespace qvx {

namespace {

constexpr u32 kFailed = 0xFFFFFFFF;

constexpr u32 kEntryRoom = 2048;
constexpr u32 kTimeRoom = 26;
constexpr u32 kHostNameRoom = 256;

constexpr u32 kDumpBytesPerLine = 16;
constexpr u32 kDumpLineLength = 82;

bool IsTextWithin(const astring* text, u32 longest) {
  if (text == nullptr) {
    return true;
  }
  const size_t length = strnlen(text, longest + 1);
  return length >= 1 && length <= longest;
}

// A 16-bit text with its room, given back at the end of the scope.
class DumpText {
 public:
  DumpText() = default;
  ~DumpText() { SSUStrFree(&record); }
  DumpText(const DumpText&) = delete;
  DumpText& operator=(const DumpText&) = delete;

  SSUStr record = {};
};

}  // namespace

bool IsLoggable(const LogEvent& event) {
  if (event.data == nullptr && event.dataSize != 0) {
    return false;
  }
  return event.dataSize <= kMaxLogData && IsTextWithin(event.user, kMaxLogUser) &&
         IsTextWithin(event.source, kMaxLogUser) &&
         IsTextWithin(event.description, kMaxLogDescription);
}

LogEntry::~LogEntry() { SSAStrFree(&record_); }

u32 LogEntry::Build(const LogEvent& event) {
  const time_t now = time(nullptr);
  astring dateTime[kTimeRoom] = {};
  if (const s32 status = TimeToAStr(dateTime, now)) {
    return static_cast<u32>(status);
  }
  astring hostName[kHostNameRoom] = {};
  u32 hostNameRoom = kHostNameRoom;
  if (const u32 status = GetIPHostName(hostName, &hostNameRoom)) {
    return status;
  }
  hostName[kHostNameRoom - 1] = '\0';

  const bool whole =
      SSAStrAlloc(&record_, kEntryRoom) != nullptr && Add("<LogEntry>") &&
      AddNumber("TimeStamp", now) && AddElement("DateTime", dateTime) &&
      AddElement("ComputerName", hostName) && AddNumber("Type", event.type) &&
      AddNumber("ID", event.id) && AddEscaped("UserInfo", event.user) &&
      AddEscaped("Source", event.source) &&
      // Deliberate: the description is not escaped: callers hand over well-formed markup, such as
      // elements of their own. Held by LogEntry.DescriptionIsWrittenAsItStands.
      AddElement("Description", event.description) && Add("<Data>") &&
      AddDump(event.data, event.dataSize) && Add("</Data></LogEntry>");
  return whole ? SM_STATUS_SUCCESS : kFailed;
}

// A growable text reports a failed append by its unchanged length only.
bool LogEntry::Add(const astring* text) {
  const u64 wanted = u64{record_.length} + strlen(text);
  return SSAStrCatAStr(&record_, text) != nullptr && record_.length == wanted;
}

bool LogEntry::AddElement(const astring* name, const astring* text) {
  return Add("<") && Add(name) && Add(">") && Add(text == nullptr ? "" : text) && Add("</") &&
         Add(name) && Add(">");
}

bool LogEntry::AddNumber(const astring* name, s64 number) {
  astring digits[24];
  (void)snprintf(digits, sizeof digits, "%" PRId64, number);
  return AddElement(name, digits);
}

bool LogEntry::AddEscaped(const astring* name, const astring* text) {
  if (text == nullptr) {
    return AddElement(name, nullptr);
  }
  const HeapArray<astring> escaped(SUPTIntfGetXMLUTF8StrFromAStr(text, 1));
  return escaped && AddElement(name, escaped.get());
}

// Deliberate: the dump keeps its line ends and is not escaped, so data bytes that are markup in
// XML stand bare in its character columns. Held by LogEntry.DataIsTheDumpWithItsLineEnds.
bool LogEntry::AddDump(const void* data, u32 dataSize) {
  if (dataSize == 0) {
    return true;
  }
  const u32 units = (dataSize + kDumpBytesPerLine - 1) / kDumpBytesPerLine * kDumpLineLength;
  DumpText dump;
  if (SSUStrAlloc(&dump.record, (units + 1) * 2) == nullptr ||
      BufToUStr(&dump.record, data, dataSize, 0) != 0 || dump.record.length != units) {
    return false;
  }
  const u32 wanted = record_.length + units;
  return SSAStrCatUStr(&record_, dump.record.text) != nullptr && record_.length == wanted;
}

}  // namespace qvx
