// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_ACCESS_MEMORY_SCAN_H
#define QVX_TESTS_ACCESS_MEMORY_SCAN_H

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "qvxcs/types.h"

// Counts a secret in this process's writable memory. The scan itself holds it only with every byte
// inverted, and copies memory into its own buffer, which it does not scan.
//
// A heap writes over the first bytes of a block that is freed, so that a short secret would be gone
// from it anyway: the secret is the end of a longer text.
namespace qvx::test {

constexpr size_t kBeforeSecret = 32;
constexpr size_t kSecretLength = 14;
constexpr size_t kPasswordLength = kBeforeSecret + kSecretLength;
constexpr u8 kInversion = 0xFF;

// Whether the secret begins here, its characters `width` bytes apart.
inline bool SecretAt(const u8* bytes, const u8* inverted, size_t width) {
  for (size_t at = 0; at < kSecretLength; ++at) {
    if (static_cast<u8>(bytes[at * width] ^ kInversion) != inverted[at]) return false;
    if (width == 2 && bytes[at * 2 + 1] != 0) return false;
  }
  return true;
}

struct Found {
  u32 narrow = 0;
  u32 wide = 0;
};

constexpr size_t kScanRoom = 65536;
constexpr size_t kScanReach = kSecretLength * 2;

// The scan's own copy of a piece of memory, followed by zeros.
struct ScanRoom {
  u8 bytes[kScanRoom + kScanReach];
};

// A sanitizer's unreadable region is skipped.
inline void ScanRegion(int memory, u64 begin, u64 end, const u8* inverted, ScanRoom* room,
                       Found* found) {
  const u64 own = reinterpret_cast<uintptr_t>(room);
  if (begin < own && own < end) {
    ScanRegion(memory, begin, own, inverted, room, found);
    ScanRegion(memory, own + sizeof(*room), end, inverted, room, found);
    return;
  }
  for (u64 at = begin; at < end; at += kScanRoom - kScanReach) {
    const auto wanted = static_cast<size_t>(std::min<u64>(kScanRoom, end - at));
    const ssize_t got = pread(memory, room->bytes, wanted, static_cast<off_t>(at));
    for (ssize_t place = 0; place < got; ++place) {
      if (SecretAt(room->bytes + place, inverted, 1)) ++found->narrow;
      if (SecretAt(room->bytes + place, inverted, 2)) ++found->wide;
    }
    explicit_bzero(room, sizeof(*room));
  }
}

inline Found ScanWritableMemory(const u8* inverted) {
  static ScanRoom room;
  Found found;
  FILE* maps = fopen("/proc/self/maps", "re");
  const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
  if (maps == nullptr || memory < 0) abort();
  char line[4352];
  while (fgets(line, sizeof(line), maps) != nullptr) {
    unsigned long long begin = 0;
    unsigned long long end = 0;
    char access[8] = {};
    if (sscanf(line, "%llx-%llx %7s", &begin, &end, access) != 3) continue;
    // Shadow memory is terabytes of empty space and holds no text.
    if (access[0] != 'r' || access[1] != 'w' || end - begin > (u64{1} << 30)) continue;
    ScanRegion(memory, begin, end, inverted, &room, &found);
  }
  close(memory);
  (void)fclose(maps);
  return found;
}

}  // namespace qvx::test

#endif
