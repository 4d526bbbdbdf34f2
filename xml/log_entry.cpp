// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/log_entry.h"

#include <cstring>
#include <ctime>
#include <iterator>

#include "qvxcs/status.h"

#include "base/results.h"
#include "os/host_name.h"
#include "text/hex_dump.h"
#include "text/time_text.h"
#include "text/xml_escape.h"
#include "xml/xml_value.h"

namespace qvx {

namespace {

constexpr u32 kTimeRoom = 26;
constexpr u32 kHostNameRoom = 256;

bool IsTextWithin(const astring* text, u32 longest) {
  if (text == nullptr) return true;
  const size_t length = strnlen(text, longest + 1);
  return length >= 1 && length <= longest;
}

std::string_view ViewOf(const astring* text) { return text == nullptr ? "" : text; }

// A text with its markup escaped; none for a null text. False where it cannot be made.
bool Escape(const astring* text, HeapArray<astring>* escaped) {
  if (text == nullptr) return true;
  escaped->reset(SUPTIntfGetXMLUTF8StrFromAStr(text, 1));
  return *escaped != nullptr;
}

// A number's decimal digits.
class Digits {
 public:
  explicit Digits(s64 number) : length_(PutDecimalNumber(text_, number)) {}
  std::string_view View() const { return {text_, length_}; }

 private:
  astring text_[kValueTextRoom] = {};
  u32 length_;
};

astring* Put(astring* to, std::string_view text) {
  memcpy(to, text.data(), text.size());
  return to + text.size();
}

}  // namespace

bool IsLoggable(const LogEvent& event) {
  if (event.data == nullptr && event.dataSize != 0) return false;
  return event.dataSize <= kMaxLogData && IsTextWithin(event.user, kMaxLogUser) &&
         IsTextWithin(event.source, kMaxLogUser) &&
         IsTextWithin(event.description, kMaxLogDescription);
}

u32 LogEntry::Build(const LogEvent& event) {
  const time_t now = time(nullptr);
  astring dateTime[kTimeRoom] = {};
  if (const s32 status = TimeToAStr(dateTime, now)) return static_cast<u32>(status);
  astring hostName[kHostNameRoom] = {};
  u32 hostNameRoom = kHostNameRoom;
  if (const u32 status = GetIPHostName(hostName, &hostNameRoom)) return status;
  hostName[kHostNameRoom - 1] = '\0';
  HeapArray<astring> user;
  HeapArray<astring> source;
  if (!Escape(event.user, &user) || !Escape(event.source, &source)) return kMinusOne;

  const Digits stamp(now);
  const Digits type(event.type);
  const Digits id(event.id);
  const std::string_view pieces[] = {
      kLogEntryBegin, stamp.View(), "</TimeStamp><DateTime>", ViewOf(dateTime),
      "</DateTime><ComputerName>", ViewOf(hostName), "</ComputerName><Type>", type.View(),
      "</Type><ID>", id.View(), "</ID><UserInfo>", ViewOf(user.get()), "</UserInfo><Source>",
      ViewOf(source.get()), "</Source><Description>",
      // Deliberate: the description is not escaped: callers pass well-formed markup, such as
      // elements of their own. Held by LogEntry.DescriptionIsWrittenAsItStands.
      ViewOf(event.description), "</Description><Data>"};
  return Join(pieces, std::size(pieces), event);
}

u32 LogEntry::Join(const std::string_view* pieces, size_t count, const LogEvent& event) {
  u64 length = HexDumpLength(event.dataSize) + kLogEntryEnd.size();
  for (size_t i = 0; i < count; ++i) {
    length += pieces[i].size();
  }
  text_ = AllocArray<astring>(length + 1);
  if (!text_) return kMinusOne;
  astring* at = text_.get();
  for (size_t i = 0; i < count; ++i) {
    at = Put(at, pieces[i]);
  }
  // Deliberate: the dump keeps its line ends and is not escaped, so data bytes that are markup in
  // XML appear unescaped in its character columns. Held by LogEntry.DataIsTheDumpWithItsLineEnds.
  PutHexDump(at, event.data, event.dataSize);
  at = Put(at + HexDumpLength(event.dataSize), kLogEntryEnd);
  *at = '\0';
  length_ = static_cast<u32>(length);
  return SM_STATUS_SUCCESS;
}

}  // namespace qvx
