// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/keyvalue_line.h"

#include <cstdio>
#include <cstring>

#include "base/heap.h"
#include "paths/product_paths.h"
#include "text/ascii_util.h"

namespace qvx {
namespace {

constexpr size_t kInstallPathLimit = 255;

bool IsBlank(astring character) {
  return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

// The blanks up to the first other character after the "=", except those between quotes.
void RemoveBlanksAroundKey(astring* line, const astring* equals) {
  bool quoted = false;
  astring* out = line;
  const astring* at = line;
  for (; *at != '\0' && (at <= equals || IsBlank(*at)); ++at) {
    if (*at == '"') quoted = !quoted;
    if (quoted || !IsBlank(*at)) *out++ = *at;
  }
  memmove(out, at, strlen(at) + 1);
}

void RemoveTrailingBlanks(astring* line) {
  size_t length = strlen(line);
  while (length > 0 && IsBlank(line[length - 1])) {
    --length;
  }
  line[length] = '\0';
}

}  // namespace

void CFGEntryRemoveWhiteSpaceAndDQuotes(astring* line) {
  const astring* const equals = strchr(line, '=');
  if (equals == nullptr) return;
  RemoveBlanksAroundKey(line, equals);
  RemoveTrailingBlanks(line);
  RemoveDQuotesInStrArr(1, &line);
}

astring* SplitKeyValueLine(astring* line) {
  CFGEntryRemoveWhiteSpaceAndDQuotes(line);
  if (line[0] == ';' || line[0] == '#') return nullptr;
  astring* const equals = strchr(line, '=');
  if (equals == nullptr) return nullptr;
  *equals = '\0';
  return equals + 1;
}

const astring* SplitKeyValueLine(std::string_view line, astring* cleaned) {
  if (line.find('=') == std::string_view::npos) return nullptr;
  memcpy(cleaned, line.data(), line.size());
  cleaned[line.size()] = '\0';
  return SplitKeyValueLine(cleaned);
}

bool KeyValuePath(const astring* name, u16 installFlag, astring (&path)[kKeyValuePathRoom]) {
  if (installFlag != 1) {
    const size_t length = strlen(name);
    if (length >= kKeyValuePathRoom) return false;
    memcpy(path, name, length + 1);
    return true;
  }
  const HeapArray<astring> directory(SUPTIntfGetProductIniPath());
  if (!directory) return false;
  (void)snprintf(path, kInstallPathLimit + 1, "%s%c%s", directory.get(), '/', name);
  return true;
}

}  // namespace qvx
