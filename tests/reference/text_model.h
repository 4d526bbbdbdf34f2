// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_REFERENCE_TEXT_MODEL_H
#define QVX_TESTS_REFERENCE_TEXT_MODEL_H

#include <random>
#include <string>
#include <vector>

#include "qvxcs/types.h"

// Slow, obvious models of the transcoders and the XML escaper: arithmetic instead of bits, whole
// pieces instead of loops over bytes, nothing shared with the library.
namespace qvx::test {

template <typename T>
struct Converted {
  u32 status = 0;
  std::vector<T> written;  // everything stored, the terminator too where one is
  u64 size = 0;            // what the size becomes; meaningful on success
};

// What is stored for a text when `room` elements are offered; with `query` nothing is stored.
Converted<u8> ModelUcs2ToUtf8(const std::vector<u32>& units, u64 room, bool query);
Converted<u8> ModelUcs4ToUtf8(const std::vector<u32>& codePoints, u64 room, bool query);
Converted<ustring> ModelUtf8ToUcs2(const std::vector<u8>& bytes, u64 room, bool query);
Converted<u8> ModelXmlEscape(const std::vector<u8>& bytes, u64 room, bool query);
// One pass over a whole text.
std::string ModelXml(const std::string& text);
std::string ModelBackslashEscape(const std::vector<u32>& units);

// Texts that look for trouble, the same on every run. None holds a 0.
class HostileTexts {
 public:
  explicit HostileTexts(u32 seed) : next_(seed) {}
  u32 Below(u32 limit) { return static_cast<u32>(next_() % limit); }
  // Few different units, surrogates paired and alone, the borders of each UTF-8 length.
  std::vector<u32> Units(u32 longest);
  std::vector<u32> CodePoints(u32 longest);
  // Leads without their rest, overlong forms, 0xFE and 0xFF, whole characters, XML's characters.
  std::vector<u8> Bytes(u32 longest);
  // Runs of ASCII, of characters of one length and of several, with a fault here and there: what
  // loops over many characters at a time take, leave and stop at. Up to some `longest` elements.
  std::vector<u32> RunsOfUnits(u32 longest);
  std::vector<u8> RunsOfBytes(u32 longest);

 private:
  u32 UnitOfKind(u32 kind);
  void AppendOfKind(u32 kind, std::vector<u8>* bytes);

  std::mt19937 next_;
};

}  // namespace qvx::test

#endif
