// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Values by their type codes, conversions.
#include <algorithm>
#include <cstring>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr qvx_ustring kWide[] = {'a', '<', 'b', 0x20AC, 0};

constexpr qvx_ustring kPlain[] = {'w', 'o', 'r', 'd', 0};

void Nothing() {}

struct Value {
  qvx_s32 type;
  const char* name;
  const void* value;
};

constexpr qvx_u64 kNumber = 42;
constexpr qvx_d64 kDouble = 1.5;
const SSAStr kRecord = {const_cast<char*>("text"), 5, 4};
const SSUStr kWideRecord = {const_cast<qvx_ustring*>(kWide), 5, 4};
const PXTTypedValue kTyped = {QVX_TYPE_XML_ASTRING, 2, const_cast<char*>("a<b")};

const Value kValues[] = {
    {QVX_TYPE_ASTRING, "text", "plain"},
    {QVX_TYPE_USTRING, "16-bit text", kWide},
    {QVX_TYPE_BOOLN, "boolean", &kNumber},
    {QVX_TYPE_U32, "u32", &kNumber},
    {QVX_TYPE_S64, "s64", &kNumber},
    {QVX_TYPE_D64, "double", &kDouble},
    {QVX_TYPE_TIME, "time", &kNumber},
    {QVX_TYPE_SSASTR, "growable text", &kRecord},
    {QVX_TYPE_SSUSTR, "growable 16-bit text", &kWideRecord},
    {QVX_TYPE_U8, "u8", &kNumber},
    {QVX_TYPE_TYPED_VALUE, "typed value", &kTyped},
    {QVX_TYPE_XML_ASTRING, "escaped text", "a<b"},
    {QVX_TYPE_XML_USTRING, "escaped 16-bit text", kWide},
};

constexpr char kStyleSheet[] =
    "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?>";

// What may be left of the elements: attributes whose text cannot be made are left out.
std::vector<std::string> ParameterForms() {
  std::vector<std::string> forms = {"<SMStatus mssg=\"text\">2</SMStatus>",
                                    "<SMStatus>2</SMStatus>"};
  for (unsigned left = 0; left < 8; ++left) {
    forms.push_back(std::string("<Parameter name=\"n\"") + ((left & 1) ? " oldval=\"old\"" : "") +
                    ((left & 2) ? " newval=\"new\"" : "") + ((left & 4) ? " value=\"is\"" : "") +
                    "/>");
  }
  return forms;
}
const std::vector<std::string> kLostElement = {kStyleSheet, "<Name id=\"1\"></Name>"};
// Made before the scenes, which allocate nothing themselves.
const std::vector<std::string> kParameterForms = ParameterForms();

bool InElement(const Value& value) {
  void* const buffer = PXTXAllocBuf(64, 1);
  if (buffer == nullptr) return false;
  const bool whole = PXTXBufCatNode(buffer, "Name", "id=\"1\"", value.type, value.value) == 0;
  qvx_astring* const text = PXTXFreeBufGetContent(buffer);
  // Without memory what was to be appended is dropped: the head that does not fit the first room,
  // or the element. That of a text to be converted may be empty.
  const bool hasHead = text != nullptr && strncmp(text, kStyleSheet, strlen(kStyleSheet)) == 0;
  const bool gave = hasHead && GaveWhole(text, 0, kLostElement);
  PXTXFreeBufContent(text);
  return whole && gave;
}

bool InParameter() {
  void* const buffer = PXTXAllocBuf(64, 0);
  if (buffer == nullptr) return false;
  bool whole = PXTNVSBufCatSetCmdParam(buffer, "n", "old", "new", "is", QVX_TYPE_ASTRING) == 0;
  PXTNVSCatSMStatusNode(buffer, SM_STATUS_BAD_ARGUMENT, "text");
  qvx_astring* const text = PXTXFreeBufGetContent(buffer);
  whole = GaveWhole(text, kParameterForms.back().size() + kParameterForms.front().size(),
                    kParameterForms) &&
          whole;
  PXTXFreeBufContent(text);
  return whole;
}

bool AppendedNode() {
  qvx_astring* text = nullptr;
  PXTAppendDNode("first", "second", &text);
  return Came(text);
}

bool Reversed() {
  qvx_ustring text[] = {'a', 'b', 'c', 0};
  return PXTUniStrrev(text) == text;
}

// Blocks that end with their texts: memcheck sees each load past them.
bool SoughtAndCompared() {
  for (const qvx_u32 length : {0u, 1u, 7u, 8u, 16u, 17u, 33u, 64u}) {
    const qvx_u32 bytes = (length + 1) * sizeof(qvx_ustring);
    qvx_ustring* const one = static_cast<qvx_ustring*>(PXTAllocMem(bytes));
    qvx_ustring* const other = static_cast<qvx_ustring*>(PXTAllocMem(bytes));
    bool same = one != nullptr && other != nullptr;
    if (same) {
      std::fill_n(one, length, 'a');
      one[length] = 0;
      memcpy(other, one, bytes);
      same = PXTUniStrlen(one) == length && PXTUniStrcmp(one, other) == 0 &&
             PXTUniStrchr(one, 'b') == nullptr && PXTUniStrstr(one, other) == one;
    }
    PXTFreeMem(one);
    PXTFreeMem(other);
    if (!same) return false;
  }
  return true;
}

// From one width into the other, for a buffer of fixed size.
bool Converted() {
  qvx_astring narrow[64];
  qvx_ustring wide[64];
  qvx_u32 size = sizeof(narrow);
  if (PXTUCS2StrToUTF8Str(narrow, &size, kWide) != 0) return false;
  size = 64;
  return PXTUTF8StrToUCS2Str(wide, &size, narrow) == 0 && wide[3] == 0x20AC;
}

bool NumberWritten() {
  qvx_ustring text[64];
  qvx_u32 size = sizeof(text);
  return PXTUniDoubleToStr(text, &size, 1.7e308, 2) == 0;
}

}  // namespace

std::vector<Scene> ValueScenes() {
  std::vector<Scene> scenes;
  for (const Value& value : kValues) {
    scenes.push_back({std::string("element: ") + value.name, Kind::kPure, nullptr, Nothing,
                      [&value] { return Status(InElement(value)); }});
  }
  for (const qvx_s32 type : {1, 4, 5, 11, 13, 15}) {
    scenes.push_back({"value to text: type " + std::to_string(type), Kind::kPure, nullptr, Nothing,
                      [type] { return Status(Came(PXTNVSXValToASCII(type, &kNumber))); }});
  }
  const auto add = [&scenes](const char* name, bool (*act)()) {
    scenes.push_back({name, Kind::kPure, nullptr, Nothing, [act] { return Status(act()); }});
  };
  add("parameter and status elements", InParameter);
  add("16-bit texts are sought and compared", SoughtAndCompared);
  add("16-bit text to text", [] { return Came(PXTNVSUstrToAstr(kPlain, nullptr)); });
  add("text to 16-bit text", [] { return Came(PXTNVSAstrToUstr("text", nullptr)); });
  add("16-bit text to text, or another",
      [] { return Came(PXTNVSUstrToAstrD(kPlain, "other", nullptr)); });
  add("two texts as one", AppendedNode);
  add("16-bit text reversed", Reversed);
  add("UTF-8 and back", Converted);
  add("16-bit number text", NumberWritten);
  add("16-bit text to a number", [] {
    const qvx_ustring text[] = {'4', '2', 0};
    return PXTUniToUnSigned32(text) == 42;
  });
  add("locale's text of 16 bits", [] {
    qvx_astring text[64];
    qvx_u32 size = sizeof(text);
    return PXTUnicodeToLocal(text, &size, kPlain) == 0;
  });
  return scenes;
}

}  // namespace qvx::torture
