// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/host_name.h"

#include <unistd.h>

#include <cstring>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "os/ip_support.h"
#include "text/char_class.h"
#include "text/transcode.h"

namespace qvx {
namespace {

constexpr u32 kDomainNameRoom = 150;
constexpr astring kNoDomain[] = "(none)";
constexpr u32 kUniHostNameRoom = 128;
constexpr size_t kHostNameMaximum = 255;

bool IsHostNameCharacter(astring character) {
  if (character == '-' || character == '.') return true;
  const astring text[] = {character, '\0'};
  return IsASCIIAlphaNumeric(text) == SM_STATUS_SUCCESS;
}

}  // namespace

astring* OSGetComputerDomainName() {
  auto name = AllocArray<astring>(kDomainNameRoom);
  if (!name) return nullptr;
  memset(name.get(), 0, kDomainNameRoom);
  if (getdomainname(name.get(), kDomainNameRoom - 1) != 0) return nullptr;
  // Deliberate: only the length of "(none)", which the system reports without a domain, is
  // compared, so a domain that begins with it counts as none too. Held by
  // HostName.ADomainThatBeginsWithNoneIsNone.
  if (strncmp(name.get(), kNoDomain, sizeof(kNoDomain) - 1) == 0) return nullptr;
  return name.release();
}

u32 GetIPHostName(astring* name, u32* size) {
  if (!IPSuptLoaded()) return SM_STATUS_NOT_LOADED;
  if (name == nullptr || size == nullptr) return SM_STATUS_BAD_ARGUMENT;
  if (gethostname(name, *size) != 0 || strnlen(name, *size) == *size) {
    // A name that does not fit has filled the whole room. This C library reports it, others do not.
    if (*size != 0) name[*size - 1] = '\0';
    // Deliberate: the system's refusal is not reported; the size stays as it was.
    // Held by LoadedHostName.ANameThatDoesNotFitIsASuccessThatLeavesTheSize.
    return SM_STATUS_SUCCESS;
  }
  *size = static_cast<u32>(strlen(name)) + 1;
  return SM_STATUS_SUCCESS;
}

u32 UniGetIPHostName(ustring* name, u32* size) {
  astring narrow[kUniHostNameRoom] = {};
  u32 narrowSize = sizeof(narrow);
  if (const u32 status = GetIPHostName(narrow, &narrowSize)) return status;
  return UTF8StrToUCS2Str(name, size, narrow);
}

u32 GetDNSSuffixName(void* /*name*/, u32 size) {
  if (size == 0) return SM_STATUS_INVALID_PARAMETER;
  // Deliberate: this platform has no suffix to return.
  // Held by HostName.NoDnsSuffixIsEverGiven.
  (void)GetSockType();
  return kMinusOne;
}

u32 ValidateHostName(const astring* name) {
  if (name == nullptr) return SM_STATUS_BAD_ARGUMENT;
  const size_t length = strnlen(name, kHostNameMaximum + 1);
  if (length > kHostNameMaximum) return kMinusOne;
  if (length != 0 && (name[length - 1] == '-' || name[length - 1] == '.')) return kMinusOne;
  const astring first[] = {name[0], '\0'};
  if (const u32 status = IsASCIIAlphaNumeric(first)) return status;
  // Deliberate: the only characters refused at the end are "-" and ".", so "a_" is valid.
  // Held by HostName.TheLastCharacterMayBeAnythingButDashAndDot.
  for (size_t at = 1; at + 1 < length; ++at) {
    if (!IsHostNameCharacter(name[at])) return kMinusOne;
  }
  return SM_STATUS_SUCCESS;
}

}  // namespace qvx
