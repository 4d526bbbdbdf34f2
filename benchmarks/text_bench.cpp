// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Transcoding, 16-bit strings and growable text, beside ICU and the C library.
#include <unicode/ustring.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "qvxcs/qvxcs.h"

#include "benchmarks/job.h"

namespace {

using Units = std::vector<ustring>;

const UChar* ForICU(const ustring* text) { return reinterpret_cast<const UChar*>(text); }
UChar* ForICU(ustring* text) { return reinterpret_cast<UChar*>(text); }

// The repeated units of a script, and how many bytes of UTF-8 one of them takes.
struct Script {
  const char* name;
  Units units;
  size_t bytesOfUnit;
};

const Script kScripts[] = {
    {"ASCII", {'p', 'l', 'a', 'i', 'n'}, 1},
    {"Latin", {0xE9, 0xF1, 0xDF, 0xE0}, 2},
    {"CJK", {0x4E2D, 0x6587, 0x65E5, 0x672C}, 3},
};

Units TextOf(const Script& script, size_t bytes) {
  Units text;
  for (size_t at = 0; at < bytes / script.bytesOfUnit; ++at) {
    text.push_back(script.units[at % script.units.size()]);
  }
  text.push_back(0);
  return text;
}

std::string Narrow(const Units& text) {
  std::vector<astring> bytes(text.size() * 3 + 1);
  u32 size = static_cast<u32>(bytes.size() - 1);
  Require(PXTUCS2StrToUTF8Str(bytes.data(), &size, text.data()) == SM_STATUS_SUCCESS, "narrow");
  return bytes.data();
}

void CompareTranscoding(const Script& script, size_t bytes) {
  const auto wide = std::make_shared<Units>(TextOf(script, bytes));
  const auto narrow = std::make_shared<std::string>(Narrow(*wide));
  const auto units = std::make_shared<Units>(wide->size() + 1);
  const auto room = std::make_shared<std::vector<astring>>(bytes + 2);
  const std::string which = std::string(script.name) + " " + std::to_string(bytes) + " bytes";
  Compare(
      "UTF-8 to UTF-16, " + which, "ICU",
      [=] {
        u32 size = static_cast<u32>(units->size() - 1);
        benchmark::DoNotOptimize(PXTUTF8StrToUCS2Str(units->data(), &size, narrow->c_str()));
      },
      [=] {
        UErrorCode error = U_ZERO_ERROR;
        int32_t length = 0;
        benchmark::DoNotOptimize(u_strFromUTF8(ForICU(units->data()),
                                               static_cast<int32_t>(units->size()), &length,
                                               narrow->c_str(), -1, &error));
      });
  Compare(
      "UTF-16 to UTF-8, " + which, "ICU",
      [=] {
        u32 size = static_cast<u32>(room->size() - 1);
        benchmark::DoNotOptimize(PXTUCS2StrToUTF8Str(room->data(), &size, wide->data()));
      },
      [=] {
        UErrorCode error = U_ZERO_ERROR;
        int32_t length = 0;
        benchmark::DoNotOptimize(u_strToUTF8(room->data(), static_cast<int32_t>(room->size()),
                                             &length, ForICU(wide->data()), -1, &error));
      });
  Compare(
      "size of UTF-16 from UTF-8, " + which, "the library's own fill",
      [=] {
        u32 size = 0;
        benchmark::DoNotOptimize(PXTUTF8StrToUCS2Str(nullptr, &size, narrow->c_str()));
      },
      [=] {
        u32 size = static_cast<u32>(units->size() - 1);
        benchmark::DoNotOptimize(PXTUTF8StrToUCS2Str(units->data(), &size, narrow->c_str()));
      });
}

void CompareStrings(size_t length) {
  Units plain(length, 'x');
  plain.push_back(0);
  const auto text = std::make_shared<Units>(plain);
  const auto equal = std::make_shared<Units>(plain);
  const std::string which = std::to_string(length) + " units";
  Compare(
      "16-bit strlen, " + which, "ICU",
      [=] { benchmark::DoNotOptimize(PXTUniStrlen(text->data())); },
      [=] { benchmark::DoNotOptimize(u_strlen(ForICU(text->data()))); });
  Compare(
      "16-bit strcmp, " + which, "ICU",
      [=] { benchmark::DoNotOptimize(PXTUniStrcmp(text->data(), equal->data())); },
      [=] { benchmark::DoNotOptimize(u_strcmp(ForICU(text->data()), ForICU(equal->data()))); });
  Compare(
      "16-bit strchr, " + which, "ICU",
      [=] { benchmark::DoNotOptimize(PXTUniStrchr(text->data(), 'y')); },
      [=] { benchmark::DoNotOptimize(u_strchr(ForICU(text->data()), 'y')); });
  Compare(
      "16-bit strcpy, " + which, "ICU",
      [=] {
        PXTUniStrcpy(equal->data(), text->data());
        benchmark::ClobberMemory();
      },
      [=] {
        u_strcpy(ForICU(equal->data()), ForICU(text->data()));
        benchmark::ClobberMemory();
      });
}

// Text that makes a plain search begin anew at each unit.
void CompareHostileSearch(size_t length) {
  Units hostile(length, 'a');
  hostile.push_back(0);
  Units pattern(length / 2, 'a');
  pattern.push_back('b');
  pattern.push_back(0);
  Compare(
      "16-bit strstr, hostile, " + std::to_string(length) + " units", "ICU",
      [hostile, pattern] {
        benchmark::DoNotOptimize(PXTUniStrstr(hostile.data(), pattern.data()));
      },
      [hostile, pattern] {
        benchmark::DoNotOptimize(u_strstr(ForICU(hostile.data()), ForICU(pattern.data())));
      });
}

constexpr size_t kPiece = 64;
constexpr size_t kGrown = size_t{64} << 20;

// What a program would write that appends to its own block and doubles it.
template <typename Unit>
void GrowByRealloc(const Unit* piece) {
  Unit* text = nullptr;
  size_t room = 0;
  for (size_t used = 0; used < kGrown / sizeof(Unit); used += kPiece) {
    if (used + kPiece + 1 > room) {
      room = room == 0 ? 256 : room * 2;
      text = static_cast<Unit*>(std::realloc(text, room * sizeof(Unit)));
    }
    std::memcpy(text + used, piece, (kPiece + 1) * sizeof(Unit));
  }
  std::free(text);
}

void CompareGrowth() {
  const std::string narrow(kPiece, 'n');
  Compare(
      "growable text, 64 MiB of 8-bit text in pieces of 64", "a realloc loop",
      [narrow] {
        SSAStr record = {};
        PXTSSAStrAlloc(&record, 256);
        for (size_t used = 0; used < kGrown; used += kPiece) {
          PXTSSAStrCatAStr(&record, narrow.c_str());
        }
        PXTSSAStrFree(&record);
      },
      [narrow] { GrowByRealloc(narrow.c_str()); });
  Units wide(kPiece, 'w');
  wide.push_back(0);
  Compare(
      "growable text, 64 MiB of 16-bit text in pieces of 64", "a realloc loop",
      [wide] {
        SSUStr record = {};
        PXTSSUStrAlloc(&record, 256);
        for (size_t used = 0; used < kGrown / sizeof(ustring); used += kPiece) {
          PXTSSUStrCatUStr(&record, wide.data());
        }
        PXTSSUStrFree(&record);
      },
      [wide] { GrowByRealloc(wide.data()); });
}

const bool kRegistered = [] {
  for (const Script& script : kScripts) {
    for (const size_t bytes : std::initializer_list<size_t>{8, 32, 200, 1024, 1 << 14, 1 << 20}) {
      CompareTranscoding(script, bytes);
    }
  }
  for (const size_t length : {size_t{16}, size_t{256}, size_t{65536}}) {
    CompareStrings(length);
  }
  CompareHostileSearch(4096);
  CompareGrowth();
  return true;
}();

}  // namespace
