// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Text of 4,096 units: to UTF-8 and back, escaped, grown piece by piece; numbers from text.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "qvxcs/qvxcs.h"

namespace {

constexpr size_t kUnits = 4096;
using Wide = std::vector<ustring>;

// Every so many units one of the others takes the place of a letter.
Wide Text(size_t every, ustring other) {
  Wide text;
  for (size_t at = 0; at < kUnits; ++at) {
    text.push_back(at % every == every - 1 ? other : static_cast<ustring>('a' + at % 26));
  }
  text.push_back(0);
  return text;
}

std::string Narrow(const Wide& text) {
  std::vector<astring> bytes(kUnits * 3 + 2);
  u32 size = static_cast<u32>(bytes.size() - 1);
  if (PXTUCS2StrToUTF8Str(bytes.data(), &size, text.data()) != SM_STATUS_SUCCESS) abort();
  return bytes.data();
}

const Wide kLetters = Text(kUnits + 1, 'a');
const Wide kAccents = Text(4, 0xE9);
const Wide kMarks = Text(16, '&');

void Yardstick(benchmark::State& state) {
  const std::string text = Narrow(kLetters);
  std::vector<astring> copy(text.size() + 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(memcpy(copy.data(), text.c_str(), strlen(text.c_str()) + 1));
  }
}
BENCHMARK(Yardstick);

void ToUTF8(benchmark::State& state, const Wide& text) {
  std::vector<astring> bytes(kUnits * 3 + 2);
  for (auto _ : state) {
    u32 size = static_cast<u32>(bytes.size() - 1);
    benchmark::DoNotOptimize(PXTUCS2StrToUTF8Str(bytes.data(), &size, text.data()));
  }
}
BENCHMARK_CAPTURE(ToUTF8, Letters, kLetters);
BENCHMARK_CAPTURE(ToUTF8, Accents, kAccents);

void FromUTF8(benchmark::State& state, const Wide& wide) {
  const std::string text = Narrow(wide);
  std::vector<ustring> units(kUnits + 2);
  for (auto _ : state) {
    u32 size = static_cast<u32>(units.size() - 1);
    benchmark::DoNotOptimize(PXTUTF8StrToUCS2Str(units.data(), &size, text.c_str()));
  }
}
BENCHMARK_CAPTURE(FromUTF8, Letters, kLetters);
BENCHMARK_CAPTURE(FromUTF8, Accents, kAccents);

void EscapeForXML(benchmark::State& state, const Wide& wide) {
  const std::string text = Narrow(wide);
  for (auto _ : state) {
    PXTFreeMem(PXTGetXMLUTF8StrFromAStr(text.c_str(), 1));
  }
}
BENCHMARK_CAPTURE(EscapeForXML, Letters, kLetters);
BENCHMARK_CAPTURE(EscapeForXML, Marks, kMarks);

void EscapeForScript(benchmark::State& state) {
  std::vector<astring> bytes(kUnits * 6 + 2);
  for (auto _ : state) {
    u32 size = static_cast<u32>(bytes.size());
    benchmark::DoNotOptimize(PXTUnicodeToEscape(bytes.data(), &size, kAccents.data()));
  }
}
BENCHMARK(EscapeForScript);

void GrowByPieces(benchmark::State& state) {
  for (auto _ : state) {
    SSAStr record = {};
    PXTSSAStrAlloc(&record, 1);
    for (size_t at = 0; at < kUnits; at += 8) {
      PXTSSAStrCatAStr(&record, "12345678");
    }
    PXTSSAStrFree(&record);
  }
}
BENCHMARK(GrowByPieces);

void NumberFromText(benchmark::State& state) {
  for (auto _ : state) {
    u32 status = 0;
    benchmark::DoNotOptimize(PXTASCIIToUnSigned32VT("4294967295", 10, &status));
  }
}
BENCHMARK(NumberFromText);

}  // namespace
