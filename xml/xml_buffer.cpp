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

// A value as the caller passes it.
struct Value {
  const ValueType& type;
  const void* at;
  s32 format;
};

// Deliberate: only the two escaped forms are escaped; every other text is written unchanged,
// including the caller's own markup. Held by XmlBuffer.TextIsWrittenAsItStands.
u32 CatText(const Element& element, const Value& value) {
  const auto* const text = static_cast<const astring*>(value.at);
  return CatWhole(element, text, strlen(text));
}

u32 CatNumber(const Element& element, const Value& value) {
  if (value.format == 0 || value.format == QVX_BASE_DECIMAL) {
    return CatDecimal(element, DecimalOf(value.type, value.at));
  }
  if (value.format != QVX_BASE_HEXADECIMAL) return SM_STATUS_INVALID_PARAMETER;
  astring text[kValueTextRoom];
  return CatWhole(element, text, PutHexadecimal(text, value.type, value.at));
}

u32 CatOnePiece(const Element& element, const Value& value) {
  astring text[kValueTextRoom];
  return CatWhole(element, text, value.type.put(text, value.type, value.at));
}

u32 CatInPieces(const Element& element, const Value& value) {
  astring text[kValueTextRoom];
  return CatPieces(element, text, value.type.put(text, value.type, value.at));
}

// Deliberate: time 0 is written "-1" like the times before it; it means "no time". Held by
// XmlBuffer.TimesBelowOneAreMinusOne.
u32 CatTime(const Element& element, const Value& value) {
  return LoadValue<s32>(value.at) >= 1 ? CatInPieces(element, value) : CatPieces(element, "-1", 2);
}

u32 CatWideText(const Element& element, const Value& value) {
  return CatUnits(element, static_cast<const ustring*>(value.at));
}

u32 CatWideTextRecord(const Element& element, const Value& value) {
  return CatUnits(element, LoadValue<SSUStr>(value.at).text);
}

u32 CatTextRecord(const Element& element, const Value& value) {
  const auto record = LoadValue<SSAStr>(value.at);
  const size_t length = record.text == nullptr ? 0 : strnlen(record.text, record.length);
  return CatWhole(element, record.text, length);
}

u32 CatBeginTag(const Element& element, const Value&) { return CatTag(element, ">"); }

u32 CatEndTag(const Element& element, const Value&) { return CatClosingTag(element); }

// Receives the escaped text; it is null where escaping or its memory failed.
u32 CatEscaped(const Element& element, astring* escaped) {
  const HeapArray<astring> text(escaped);
  if (!text) return SM_STATUS_NO_MEMORY;
  return CatWhole(element, text.get(), strlen(text.get()));
}

u32 PassesOf(const Value& value) { return static_cast<u32>(std::max(value.format, 1)); }

u32 CatEscapedText(const Element& element, const Value& value) {
  const auto* const text = static_cast<const astring*>(value.at);
  return CatEscaped(element, SUPTIntfGetXMLUTF8StrFromAStr(text, PassesOf(value)));
}

u32 CatEscapedWideText(const Element& element, const Value& value) {
  const auto* const text = static_cast<const ustring*>(value.at);
  return CatEscaped(element, SUPTIntfGetXMLUTF8StrFromUStr(text, PassesOf(value)));
}

u32 CatTypedValue(const Element& element, const Value& value) {
  const auto inner = LoadValue<PXTTypedValue>(value.at);
  if (ValueTypeOf(inner.type).form == ValueForm::kTypedValue) return SM_STATUS_INVALID_PARAMETER;
  return PXMBufCatNodeT(element.buffer, element.name, element.attributes, inner.type, inner.value,
                        inner.format);
}

u32 Refuse(const Element&, const Value&) { return SM_STATUS_INVALID_PARAMETER; }

// In the order of ValueForm.
constexpr u32 (*kCatForm[])(const Element&, const Value&) = {
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
  return CatTag(ElementOf(buffer, name, attributes), "/>");
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
  return kCatForm[static_cast<u32>(type.form)](ElementOf(buffer, name, attributes),
                                               {type, value, format});
}

}  // namespace qvx
