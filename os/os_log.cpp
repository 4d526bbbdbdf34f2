// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/os_log.h"

#include <syslog.h>

#include <cstdio>
#include <cstring>

#include "qvxcs/os_log.h"
#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "text/locale_text.h"
#include "text/uni_string.h"

namespace qvx {
namespace {

constexpr u64 kLocalTextExtra = 6;
constexpr u64 kMessageExtra = 256;

int PriorityOf(u16 eventType) {
  if (eventType == QVX_OSLOG_ERROR) return LOG_ERR;
  return eventType == QVX_OSLOG_WARNING ? LOG_WARNING : LOG_INFO;
}

// The text in the locale's encoding. The converter is offered one byte less than there is, so that
// the last one stays the terminator.
u32 LocalText(HeapArray<astring>* local, const ustring* text) {
  const u64 room = Uni_strlen(text) + kLocalTextExtra;
  if (room > UINT32_MAX) return kMinusOne;
  *local = AllocArray<astring>(room);
  if (!*local) return kMinusOne;
  memset(local->get(), 0, static_cast<size_t>(room));
  auto size = static_cast<u32>(room) - 1;
  // Deliberate: the room depends on the units, not on the bytes they become; a text that does not
  // fit is cut at a whole character. Held by OSLog.ATextLongerThanItsRoomIsCutAtAWholeCharacter.
  return UnicodeToLocal(local->get(), &size, text);
}

void Log(const astring* source, int priority, const astring* message) {
  openlog(source, LOG_NDELAY, LOG_DAEMON);
  syslog(priority, "%s", message);
  // The C library keeps the pointer to the source, not a copy, until the log is closed.
  closelog();
}

}  // namespace

u32 AppendToOSLog(u16 eventType, u32 eventNumber, const ustring* source, const ustring* text) {
  if (source == nullptr || text == nullptr) return kMinusOne;
  HeapArray<astring> localSource;
  if (const u32 status = LocalText(&localSource, source)) return status;
  HeapArray<astring> localText;
  if (const u32 status = LocalText(&localText, text)) return status;
  const u64 room = strlen(localText.get()) + kMessageExtra;
  const auto message = AllocArray<astring>(room);
  if (!message) return kMinusOne;
  (void)snprintf(message.get(), static_cast<size_t>(room), "EventID: %u  %s", eventNumber,
                 localText.get());
  RemoveCarriageReturns(message.get());
  Log(localSource.get(), PriorityOf(eventType), message.get());
  return SM_STATUS_SUCCESS;
}

u32 ClearOSLog() { return SM_STATUS_SUCCESS; }

void RemoveCarriageReturns(astring* text) {
  if (text == nullptr) return;
  for (astring* at = text; *at != '\0'; ++at) {
    if (*at == '\r') *at = ' ';
  }
}

}  // namespace qvx
