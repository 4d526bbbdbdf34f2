// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Numbers, times and texts of 16 bits, and what reads the product's own files.
#include <cstdio>
#include <cstring>
#include <ctime>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kProductIni[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/torture.ini";
constexpr char kProductPairs[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/torture.properties";
constexpr time_t kTime = 1000000000;
constexpr qvx_ustring kNumber[] = {'-', '4', '2', '.', '5', 0};

void Nothing() {}
void ProductIni() { WriteText(kProductIni, "[net]\nhost=alpha\n"); }
void ProductPairs() { WriteText(kProductPairs, "name=agent\nport=1311\n"); }
// The log is there: its size is read, not made.
void CmdLog() {
  (void)InChild([] {
    (void)Came(PXTGetCmdLogPathFileName());
    return std::string();
  });
}

// Failed conversions give 0.
template <typename T>
bool IsNumber(T value) {
  Give(&value, sizeof(value));
  return value != 0;
}

// A call that writes 16-bit text into room of so many bytes.
template <typename Call>
bool WritesUnits(Call call) {
  qvx_ustring text[64] = {};
  qvx_u32 size = sizeof(text);
  const bool done = call(text, &size) == 0;
  if (done) Give(text, sizeof(text));
  return done;
}

bool ReadProductIni() {
  char text[64] = "";
  qvx_u32 size = sizeof(text);
  const bool done = PXTReadINIFileValue("net", "host", QVX_INI_ASTRING, text, &size, nullptr, 0,
                                        "torture.ini", QVX_LOCK_WAIT) == SM_STATUS_SUCCESS;
  if (done) Give(text, size);
  return done;
}

bool ReadProductPairs() {
  qvx_u32 count = 0;
  PXTKeyValue* const entries = PXTCFGInstGetKeyValueEntries("qvx/ini/torture.properties", &count);
  const char* const port =
      entries == nullptr ? nullptr : PXTCFGGetKeyValue(entries, count, "port", 0);
  if (port != nullptr) Give(port, strlen(port));
  PXTCFGFreeKeyValueEntries(entries, count);
  return port != nullptr;
}

bool CmdLogSize() {
  qvx_u32 size = 0;
  return PXTGetCmdLogSize(&size) == SM_STATUS_SUCCESS && IsNumber(size);
}

bool CmdLogMaxSize() {
  qvx_u32 size = 0;
  return PXTGetCmdLogMaxSize(&size) == SM_STATUS_SUCCESS && IsNumber(size);
}

bool GrowByUnits() {
  SSAStr record = {};
  bool whole = PXTSSAStrAlloc(&record, 4) != nullptr;
  for (int at = 0; at < 20 && whole; ++at) {
    const qvx_u32 before = record.length;
    // Without memory for its conversion a text leaves the record as it was.
    whole = PXTSSAStrCatUStr(&record, kNumber) != nullptr && record.length == before + 5;
  }
  if (whole) Give(record.text, record.length);
  PXTSSAStrFree(&record);
  return whole;
}

bool Escape() {
  qvx_ustring text[3001] = {};
  for (int at = 0; at < 3000; ++at) {
    text[at] = at % 3 == 0 ? 'b' : 0x4E2D;
  }
  qvx_astring escaped[20000] = "";
  qvx_u32 size = sizeof(escaped);
  const bool done = PXTUnicodeToEscape(escaped, &size, text) == SM_STATUS_SUCCESS;
  if (done) Give(escaped, size);
  return done;
}

bool TimeText() {
  qvx_astring text[26] = "";
  const bool done = PXTTimeToAStr(text, kTime) == 0;
  if (done) Give(text, strlen(text));
  return done;
}

// Summer time is added or not; without memory for the zone it may be left alone.
bool SummerTime() {
  time_t time = kTime;
  PXTDSTFix(&time);
  return IsNumber(time);
}

const std::vector<std::string> kEmptyElement = {"<Empty id=\"1\"/>"};

bool EmptyElements() {
  void* const buffer = PXTXAllocBuf(16, 0);
  if (buffer == nullptr) return false;
  bool whole = true;
  for (int at = 0; at < 40 && whole; ++at) {
    whole = PXTXBufCatEmptyNode(buffer, "Empty", "id=\"1\"") == SM_STATUS_SUCCESS;
  }
  qvx_astring* const text = PXTXFreeBufGetContent(buffer);
  whole = GaveWhole(text, 40 * kEmptyElement[0].size(), kEmptyElement) && whole;
  PXTXFreeBufContent(text);
  return whole;
}

bool Blocks() {
  void* const block = PXTAllocMem(100);
  if (block == nullptr) return false;
  memset(block, 'a', 100);
  void* const larger = PXTReAllocMem(block, 10000);
  if (larger != nullptr) Give(larger, 100);
  PXTFreeMem(larger == nullptr ? block : larger);
  return larger != nullptr;
}

}  // namespace

std::vector<Scene> NumberScenes() {
  std::vector<Scene> scenes;
  const auto add = [&scenes](const char* name, void (*prepare)(), bool (*act)()) {
    scenes.push_back({name, Kind::kPure, nullptr, prepare, [act] { return Status(act()); }});
  };
  add("INI: text of a file of the product", ProductIni, ReadProductIni);
  add("key=value: entries of a file of the product", ProductPairs, ReadProductPairs);
  add("command log's size", CmdLog, CmdLogSize);
  add("command log's maximum", Nothing, CmdLogMaxSize);
  add("growing text by 16-bit text", Nothing, GrowByUnits);
  add("escape into a buffer", Nothing, Escape);
  add("text to 16-bit text, or another", Nothing,
      [] { return Came(PXTNVSAstrToUstrD("text", kNumber, nullptr)); });
  add("double of 16-bit text", Nothing, [] { return IsNumber(PXTUniToDouble(kNumber)); });
  add("s32 of 16-bit text", Nothing, [] { return IsNumber(PXTUniToSigned32(kNumber)); });
  add("s64 of 16-bit text", Nothing, [] { return IsNumber(PXTUniToSigned64(kNumber)); });
  add("u64 of 16-bit text", Nothing, [] { return IsNumber(PXTUniToUnSigned64(kNumber + 1)); });
  add("s32 to 16-bit text", Nothing, [] {
    return WritesUnits([](auto* to, auto* size) { return PXTUniSigned32ToStr(to, size, -42, 10); });
  });
  add("u32 to 16-bit text", Nothing, [] {
    return WritesUnits(
        [](auto* to, auto* size) { return PXTUniUnSigned32ToStr(to, size, 42, 16); });
  });
  add("time to 16-bit text", Nothing, [] {
    return WritesUnits([](auto* to, auto* size) {
      *size = 64;  // in units
      return PXTUniTimeToStr(to, size, kTime);
    });
  });
  add("time to text", Nothing, TimeText);
  add("summer time", Nothing, SummerTime);
  add("empty elements", Nothing, EmptyElements);
  add("blocks", Nothing, Blocks);
  return scenes;
}

}  // namespace qvx::torture
