// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/hex_dump.h"

#include <algorithm>
#include <cstring>

#include "text/grow_string.h"

namespace qvx {
namespace {

constexpr u32 kBytesPerLine = 16;
constexpr u32 kLineColumns = 80;
constexpr u32 kHexDumpLine = kLineColumns + 2;
constexpr u32 kFirstDigitColumn = 12;
constexpr u32 kCharacterColumn = 63;
constexpr char kHexDigits[] = "0123456789ABCDEF";

void PutAddress(astring* line, u32 address) {
  line[0] = '0';
  line[1] = 'x';
  for (u32 digit = 0; digit < 8; ++digit) {
    line[2 + digit] = kHexDigits[(address >> (28 - 4 * digit)) & 0xF];
  }
  line[10] = ':';
}

astring Shown(u8 byte) {
  // Deliberate: the last byte shown as itself is 0x7A; braces, bar and tilde show as a full stop
  // like the control bytes. Held by HexDump.BytesAboveLowerCaseZShowAsFullStops.
  return byte >= 0x20 && byte <= 0x7A ? static_cast<astring>(byte) : '.';
}

void PutBytes(astring* line, const u8* bytes, u32 count) {
  for (u32 i = 0; i < count; ++i) {
    astring* digits = line + kFirstDigitColumn + size_t{3} * i;
    digits[0] = kHexDigits[bytes[i] >> 4];
    digits[1] = kHexDigits[bytes[i] & 0xF];
    if (i % 4 == 3 && i + 1 < count) digits[2] = ':';
    line[kCharacterColumn + i] = Shown(bytes[i]);
  }
}

// One line of up to 16 bytes, its line end included.
void PutLine(astring* line, const u8* bytes, u32 count, u32 address) {
  memset(line, ' ', kLineColumns);
  memcpy(line + kLineColumns, "\r\n", 2);
  PutAddress(line, address);
  PutBytes(line, bytes, count);
}

}  // namespace

u32 HexDumpLength(u32 count) { return (count + kBytesPerLine - 1) / kBytesPerLine * kHexDumpLine; }

void PutHexDump(astring* out, const void* bytes, u32 count) {
  const u8* const at = static_cast<const u8*>(bytes);
  for (u32 done = 0; done < count; done += kBytesPerLine, out += kHexDumpLine) {
    PutLine(out, at + done, std::min(count - done, kBytesPerLine), done);
  }
}

s32 BufToUStr(SSUStr* record, const void* bytes, u32 count, u32 base) {
  if (record == nullptr) return -1;
  if (bytes == nullptr) return 0;
  const u8* at = static_cast<const u8*>(bytes);
  while (count > 0) {
    const u32 shown = std::min(count, kBytesPerLine);
    astring line[kHexDumpLine + 1];
    PutLine(line, at, shown, base);
    line[kHexDumpLine] = '\0';
    if (SSUStrCatAStr(record, line) == nullptr) return -1;
    at += shown;
    base += shown;
    count -= shown;
  }
  return 0;
}

}  // namespace qvx
