// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/time_text.h"

#include <charconv>
#include <cstring>
#include <system_error>

#include "qvxcs/status.h"

#include "base/cancel_hold.h"
#include "text/transcode.h"

namespace qvx {
namespace {

// A year of five digits makes 25 characters; callers have 26 bytes.
constexpr u32 kTimeRoom = 26;
constexpr time_t kDaylightSavingSeconds = 3600;

constexpr astring kDays[][4] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr astring kMonths[][4] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool ToLocalTime(time_t time, struct tm* local) {
  const CancelHold hold;  // the C library may read the zone's file
  tzset();                // the reentrant form need not look for a changed time zone
  return localtime_r(&time, local) != nullptr;
}

astring* PutTwoDigits(astring* to, int number, astring before) {
  *to++ = number < 10 ? before : static_cast<astring>('0' + number / 10);
  *to++ = static_cast<astring>('0' + number % 10);
  return to;
}

astring* PutName(astring* to, const astring (&name)[4]) {
  memcpy(to, name, 3);
  to[3] = ' ';
  return to + 4;
}

}  // namespace

s32 TimeToAStr(astring* out, time_t time) {
  struct tm local = {};
  if (out == nullptr || !ToLocalTime(time, &local)) return -1;
  // Formatted here, not by asctime_r, which refuses some years and may write beyond 26 bytes; and
  // not by snprintf, which takes a third of the time of a log entry.
  astring text[kTimeRoom];
  astring* at = PutName(text, kDays[local.tm_wday]);
  at = PutName(at, kMonths[local.tm_mon]);
  at = PutTwoDigits(at, local.tm_mday, ' ');
  *at++ = ' ';
  at = PutTwoDigits(at, local.tm_hour, '0');
  *at++ = ':';
  at = PutTwoDigits(at, local.tm_min, '0');
  *at++ = ':';
  at = PutTwoDigits(at, local.tm_sec, '0');
  *at++ = ' ';
  const s64 year = s64{local.tm_year} + 1900;
  const auto [end, error] = std::to_chars(at, text + sizeof(text) - 1, year);
  if (error != std::errc{}) return -1;
  *end = '\0';
  memcpy(out, text, static_cast<size_t>(end - text) + 1);
  return 0;
}

s32 UniTimeToStr(ustring* out, u32* size, time_t time) {
  astring text[kTimeRoom];
  if (TimeToAStr(text, time) != 0) return -1;
  return UTF8StrToUCS2Str(out, size, text) == SM_STATUS_SUCCESS ? 0 : -1;
}

void DSTFix(time_t* time) {
  struct tm local = {};
  if (time == nullptr || !ToLocalTime(*time, &local) || local.tm_isdst <= 0) return;
  time_t shifted = 0;
  if (!__builtin_add_overflow(*time, kDaylightSavingSeconds, &shifted)) *time = shifted;
}

}  // namespace qvx
