// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: the room, then the text. The same bytes are read as UTF-8, as 16-bit units and as 32-bit
// code points.
#include <cstring>
#include <string>
#include <vector>

#include "qvxcs/memory.h"
#include "qvxcs/status.h"
#include "qvxcs/transcode.h"

#include "fuzz/fuzz_support.h"
#include "reference/text_model.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Input;
using qvx::fuzz::Require;
using qvx::fuzz::Text;
using qvx::test::Converted;

constexpr u32 kMostRoom = 300;
constexpr u32 kMostPasses = 4;

// The bytes as elements of a type, up to the first 0.
template <typename T>
std::vector<u32> ElementsOf(const std::string& bytes) {
  std::vector<u32> elements;
  for (size_t at = 0; at + sizeof(T) <= bytes.size(); at += sizeof(T)) {
    T element;
    memcpy(&element, bytes.data() + at, sizeof(element));
    if (element == 0) break;
    elements.push_back(element);
  }
  return elements;
}

// A terminated text argument in its own block.
template <typename T>
Block<T> TextOf(const std::vector<u32>& elements) {
  Block<T> text(elements.size() + 1);
  for (size_t at = 0; at < elements.size(); ++at) {
    text[at] = static_cast<T>(elements[at]);
  }
  text[elements.size()] = 0;
  return text;
}

template <typename Out, typename Model, typename In>
void Check(const Converted<Model>& expected, const Converted<Model>& query, u32 room, In* text,
           u32 (*convert)(Out* out, u32* size, const In* text)) {
  Block<Out> out(room + 1);
  u32 size = room;
  Require(convert(out.data(), &size, text) == expected.status, "the status is the model's");
  Require(size == (expected.status == SM_STATUS_SUCCESS ? expected.size : room),
          "the size is the model's");
  const std::vector<Model>& written = expected.written;
  Require(written.empty() || memcmp(out.data(), written.data(), written.size() * sizeof(Out)) == 0,
          "the result is the model's");
  Require(out.UntouchedFrom(written.size()), "nothing is stored after the result");

  u32 needed = room;
  Require(convert(nullptr, &needed, text) == query.status, "a query's status is the model's");
  Require(needed == (query.status == SM_STATUS_SUCCESS ? query.size : room),
          "a query's size is the model's");
}

void CheckUcs2(const std::string& bytes, u32 room) {
  const std::vector<u32> units = ElementsOf<ustring>(bytes);
  Block<ustring> text = TextOf<ustring>(units);
  for (auto convert : {PXTUCS2StrToUTF8Str, PXTUnicodeToASCII, PXTUnicodeToLocal}) {
    Check(qvx::test::ModelUcs2ToUtf8(units, room, false),
          qvx::test::ModelUcs2ToUtf8(units, room, true), room, text.data(), convert);
  }
}

void CheckUcs4(const std::string& bytes, u32 room) {
  const std::vector<u32> codePoints = ElementsOf<u32>(bytes);
  Block<u32> text = TextOf<u32>(codePoints);
  Check(qvx::test::ModelUcs4ToUtf8(codePoints, room, false),
        qvx::test::ModelUcs4ToUtf8(codePoints, room, true), room, text.data(), PXTUCS4StrToUTF8Str);
}

void CheckUtf8(const std::string& bytes, u32 room) {
  Text text(bytes.c_str());
  const std::vector<u8> model(text.data(), text.data() + strlen(text.data()));
  for (auto convert : {PXTUTF8StrToUCS2Str, PXTASCIIToUnicode, PXTLocalToUnicode}) {
    Check(qvx::test::ModelUtf8ToUcs2(model, room, false),
          qvx::test::ModelUtf8ToUcs2(model, room, true), room, text.data(), convert);
  }
}

bool HasSurrogate(const std::vector<u32>& units) {
  for (const u32 unit : units) {
    if (unit >= 0xD800 && unit <= 0xDFFF) return true;
  }
  return false;
}

// Text without surrogates comes back as it went.
void CheckRoundTrip(const std::string& bytes) {
  const std::vector<u32> units = ElementsOf<ustring>(bytes);
  if (HasSurrogate(units)) return;
  Block<ustring> text = TextOf<ustring>(units);
  u32 size = 0;
  Require(PXTUCS2StrToUTF8Str(nullptr, &size, text.data()) == SM_STATUS_SUCCESS, "it converts");
  Block<astring> utf8(size);
  u32 room = size - 1;
  Require(PXTUCS2StrToUTF8Str(utf8.data(), &room, text.data()) == SM_STATUS_SUCCESS && room == size,
          "a block of the size needed is enough");
  Block<ustring> back(units.size() + 1);
  room = static_cast<u32>(units.size());
  Require(PXTUTF8StrToUCS2Str(back.data(), &room, utf8.data()) == SM_STATUS_SUCCESS,
          "it converts back");
  Require(room == back.size() * sizeof(ustring) && memcmp(back.data(), text.data(), room) == 0,
          "it comes back as it went");
}

void CheckXml(const std::string& bytes, u32 room) {
  Text text(bytes.c_str());
  const std::vector<u8> model(text.data(), text.data() + strlen(text.data()));
  const Converted<u8> expected = qvx::test::ModelXmlEscape(model, room, false);
  Block<astring> out(room);
  u32 size = room;
  booln escaped = 7;
  const u32 status = PXTUTF8StrToXMLUTF8Str(out.data(), &size, &escaped, text.data());
  Require(status == expected.status, "the escaper's status is the model's");
  Require(size == (status == SM_STATUS_SUCCESS ? expected.size : room),
          "the escaper's size is the model's");
  Require(escaped <= 1, "the escaped flag is 0 or 1");
  Require(expected.written.size() <= room && out.UntouchedFrom(expected.written.size()),
          "nothing is stored after the escaped text");
  Require(expected.written.empty() ||
              memcmp(out.data(), expected.written.data(), expected.written.size()) == 0,
          "the escaped text is the model's");
}

void CheckPasses(const std::string& bytes, u32 passes) {
  Text text(bytes.c_str());
  std::string expected = qvx::test::ModelXml(text.data());
  for (u32 pass = 1; pass < passes; ++pass) {
    const std::string next = qvx::test::ModelXml(expected);
    if (next == expected) break;
    expected = next;
  }
  astring* const result = PXTGetXMLUTF8StrFromAStr(text.data(), passes);
  Require(result != nullptr && expected == result, "each pass escapes the one before");
  PXTFreeMem(result);
}

void CheckWidePasses(const std::string& bytes, u32 passes) {
  const std::vector<u32> units = ElementsOf<ustring>(bytes);
  Block<ustring> text = TextOf<ustring>(units);
  astring* const result = PXTGetXMLUTF8StrFromUStr(text.data(), passes);
  Require((result != nullptr) ==
              (qvx::test::ModelUcs2ToUtf8(units, 0, true).status == SM_STATUS_SUCCESS),
          "a result is given where the text converts");
  PXTFreeMem(result);
}

void CheckEscape(const std::string& bytes, u32 room) {
  const std::vector<u32> units = ElementsOf<ustring>(bytes);
  Block<ustring> text = TextOf<ustring>(units);
  const std::string expected = qvx::test::ModelBackslashEscape(units);
  const u32 needed = static_cast<u32>(expected.size() + 1);
  Block<astring> out(room);
  u32 size = room;
  const u32 status = PXTUnicodeToEscape(out.data(), &size, text.data());
  Require(size == needed, "the size is the one needed, fitting or not");
  Require(status == (needed <= room ? SM_STATUS_SUCCESS : SM_STATUS_BUFFER_TOO_SMALL),
          "the status says whether it fits");
  const bool stored = status == SM_STATUS_SUCCESS;
  Require(!stored || memcmp(out.data(), expected.c_str(), needed) == 0,
          "the backslash text is the model's");
  Require(out.UntouchedFrom(stored ? needed : 0), "nothing is stored after the backslash text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  const u32 room = input.Below(kMostRoom);
  const std::string bytes = input.Rest();
  CheckUcs2(bytes, room);
  CheckUcs4(bytes, room);
  CheckUtf8(bytes, room);
  CheckRoundTrip(bytes);
  CheckXml(bytes, room);
  CheckPasses(bytes, room % kMostPasses);
  CheckWidePasses(bytes, room % kMostPasses);
  CheckEscape(bytes, room);
  return 0;
}
