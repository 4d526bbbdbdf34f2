// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/xml_buffer.h"

#include <algorithm>
#include <cstring>

#include "qvxcs/status.h"
#include "qvxcs/xml_buffer.h"

#include "base/heap.h"
#include "base/unaligned.h"
#include "text/grow_string.h"
#include "text/xml_escape.h"
#include "xml/xml_element.h"
#include "xml/xml_value.h"

namespace qvx {
namespace {

constexpr u32 kSmallestCapacity = 64;
constexpr char kStylesheet[] =
    R"(<?xml-stylesheet type="text/xsl" version="1.0" encoding="UTF-8"?>)";

// A value as the caller passes it. Tag and Value are passed in registers.
struct Value {
  const void* at;
  s32 format;
};

// How each form of a value is written; the arguments fit the registers of a call.
using CatForm = u32 (*)(SSAStr* buffer, Tag tag, const ValueType& type, Value value);

[[gnu::always_inline]] inline u32 CatCopy(const Element& element, const astring* text,
                                          size_t length) {
  return CatWhole(
      element, text,
      length, [=](astring * to) __attribute__((always_inline)) { PutText(text, length, to); });
}

// Deliberate: only the two escaped forms are escaped; every other text is written unchanged,
// including the caller's own markup. Held by XmlBuffer.TextIsWrittenAsItStands.
u32 CatText(SSAStr* buffer, Tag tag, const ValueType&, Value value) {
  const auto* const text = static_cast<const astring*>(value.at);
  return CatCopy(ElementOf(buffer, tag), text, strlen(text));
}

u32 CatOnePiece(SSAStr* buffer, Tag tag, const ValueType& type, Value value) {
  astring text[kValueTextRoom];
  return CatCopy(ElementOf(buffer, tag), text, type.put(text, type, value.at));
}

[[gnu::noinline]] u32 CatHexadecimal(SSAStr* buffer, Tag tag, const ValueType& type, Value value) {
  astring text[kValueTextRoom];
  return CatCopy(ElementOf(buffer, tag), text, PutHexadecimal(text, type, value.at));
}

u32 CatNumber(SSAStr* buffer, Tag tag, const ValueType& type, Value value) {
  if (value.format == QVX_BASE_HEXADECIMAL) return CatHexadecimal(buffer, tag, type, value);
  if (value.format != 0 && value.format != QVX_BASE_DECIMAL) return SM_STATUS_INVALID_PARAMETER;
  const Decimal number = DecimalOf(type, value.at);
  return CatWhole(
      ElementOf(buffer, tag), nullptr,
      number.length, [=](astring * to) __attribute__((always_inline)) {
        (void)PutDecimal(to, number);
      });
}

u32 CatInPieces(SSAStr* buffer, Tag tag, const ValueType& type, Value value) {
  astring text[kValueTextRoom];
  return CatPieces(ElementOf(buffer, tag), text, type.put(text, type, value.at));
}

// Deliberate: time 0 is written "-1" like the times before it; it means "no time". Held by
// XmlBuffer.TimesBelowOneAreMinusOne.
u32 CatTime(SSAStr* buffer, Tag tag, const ValueType& type, Value value) {
  if (LoadValue<s32>(value.at) >= 1) return CatInPieces(buffer, tag, type, value);
  return CatPieces(ElementOf(buffer, tag), "-1", 2);
}

u32 CatWideText(SSAStr* buffer, Tag tag, const ValueType&, Value value) {
  return CatUnits(ElementOf(buffer, tag), static_cast<const ustring*>(value.at));
}

u32 CatWideTextRecord(SSAStr* buffer, Tag tag, const ValueType&, Value value) {
  return CatUnits(ElementOf(buffer, tag), LoadValue<SSUStr>(value.at).text);
}

u32 CatTextRecord(SSAStr* buffer, Tag tag, const ValueType&, Value value) {
  const auto record = LoadValue<SSAStr>(value.at);
  const size_t length = record.text == nullptr ? 0 : strnlen(record.text, record.length);
  return CatCopy(ElementOf(buffer, tag), record.text, length);
}

u32 CatBeginTag(SSAStr* buffer, Tag tag, const ValueType&, Value) {
  return CatTag(ElementOf(buffer, tag), ">");
}

u32 CatEndTag(SSAStr* buffer, Tag tag, const ValueType&, Value) {
  return CatClosingTag(ElementOf(buffer, tag));
}

// Receives the escaped text; it is null where escaping or its memory failed.
u32 CatEscaped(const Element& element, astring* escaped) {
  const HeapArray<astring> text(escaped);
  if (!text) return SM_STATUS_NO_MEMORY;
  return CatCopy(element, text.get(), strlen(text.get()));
}

u32 PassesOf(Value value) { return static_cast<u32>(std::max(value.format, 1)); }

u32 CatEscapedText(SSAStr* buffer, Tag tag, const ValueType&, Value value) {
  const auto* const text = static_cast<const astring*>(value.at);
  return CatEscaped(ElementOf(buffer, tag), SUPTIntfGetXMLUTF8StrFromAStr(text, PassesOf(value)));
}

u32 CatEscapedWideText(SSAStr* buffer, Tag tag, const ValueType&, Value value) {
  const auto* const text = static_cast<const ustring*>(value.at);
  return CatEscaped(ElementOf(buffer, tag), SUPTIntfGetXMLUTF8StrFromUStr(text, PassesOf(value)));
}

u32 CatTypedValue(SSAStr* buffer, Tag tag, const ValueType&, Value value) {
  const auto inner = LoadValue<PXTTypedValue>(value.at);
  if (ValueTypeOf(inner.type).form == ValueForm::kTypedValue) return SM_STATUS_INVALID_PARAMETER;
  return PXMBufCatNodeT(buffer, tag.name, tag.attributes, inner.type, inner.value, inner.format);
}

u32 Refuse(SSAStr*, Tag, const ValueType&, Value) { return SM_STATUS_INVALID_PARAMETER; }

// In the order of ValueForm.
constexpr CatForm kCatForm[] = {
    Refuse,      CatText,       CatWideText,    CatOnePiece,       CatNumber,
    CatInPieces, CatTime,       CatTextRecord,  CatWideTextRecord, CatBeginTag,
    CatEndTag,   CatTypedValue, CatEscapedText, CatEscapedWideText};

}  // namespace

void* PXMAllocBuf(u32 initialSize, booln stylesheet) {
  HeapArray<SSAStr> buffer = AllocArray<SSAStr>(1);
  if (!buffer || SSAStrAlloc(buffer.get(), std::max(initialSize, kSmallestCapacity)) == nullptr) {
    return nullptr;
  }
  if (stylesheet == 1) (void)SSAStrCatAStr(buffer.get(), kStylesheet);
  return buffer.release();
}

astring* PXMFreeBuf(void* buffer, u16 mode) {
  if (buffer == nullptr) return nullptr;
  SSAStr* record = static_cast<SSAStr*>(buffer);
  astring* content = nullptr;
  if (mode == kGetContent) {
    content = record->text;
    *record = SSAStr{};
  }
  SSAStrFree(record);
  FreeMem(record);
  return content;
}

void PXMFreeBufContent(astring* text) { FreeMem(text); }

u32 PXMBufCatBeginNode(void* buffer, const astring* name, const astring* attributes) {
  return PXMBufCatNode(buffer, name, attributes, QVX_TYPE_BEGIN, nullptr);
}

u32 PXMBufCatEndNode(void* buffer, const astring* name) {
  return PXMBufCatNode(buffer, name, nullptr, QVX_TYPE_END, nullptr);
}

u32 PXMBufCatEmptyNode(void* buffer, const astring* name, const astring* attributes) {
  if (buffer == nullptr || name == nullptr) return SM_STATUS_INVALID_PARAMETER;
  return CatTag(ElementOf(static_cast<SSAStr*>(buffer), {name, attributes}), "/>");
}

u32 PXMBufCatNode(void* buffer, const astring* name, const astring* attributes, s32 type,
                  const void* value) {
  return PXMBufCatNodeT(buffer, name, attributes, type, value, 0);
}

u32 PXMBufCatNodeT(void* buffer, const astring* name, const astring* attributes, s32 code,
                   const void* value, s32 format) {
  if (buffer == nullptr || name == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const ValueType& type = ValueTypeOf(code);
  const bool tagOnly = type.form == ValueForm::kBeginTag || type.form == ValueForm::kEndTag;
  if (value == nullptr && !tagOnly) return SM_STATUS_INVALID_PARAMETER;
  return kCatForm[static_cast<u32>(type.form)](static_cast<SSAStr*>(buffer), {name, attributes},
                                               type, {value, format});
}

}  // namespace qvx
