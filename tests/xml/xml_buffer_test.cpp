// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/xml_buffer.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "qvxcs/grow_string.h"
#include "qvxcs/memory.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_buffer.h"

#include "support/alloc_fault.h"
#include "support/guard_buffer.h"
#include "support/long_text.h"

namespace qvx {
namespace {

using test::FailNthAllocation;
using test::GuardBuffer;

constexpr char kStylesheet[] =
    "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?>";

// A buffer that is freed with the test.
class Buffer {
 public:
  explicit Buffer(u32 size = 1024, booln stylesheet = 0) : buffer_(PXMAllocBuf(size, stylesheet)) {
    EXPECT_NE(buffer_, nullptr);
  }
  ~Buffer() { (void)PXMFreeBuf(buffer_, 0); }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  void* get() { return buffer_; }
  [[nodiscard]] const SSAStr& record() const { return *static_cast<SSAStr*>(buffer_); }
  [[nodiscard]] std::string Text() const {
    EXPECT_EQ(strlen(record().text), record().length);
    return record().text;
  }

 private:
  void* buffer_;
};

// The element "T" around a value; the status instead where there is one.
std::string ElementOf(s32 type, const void* value, s32 format = 0) {
  Buffer buffer;
  const u32 status = PXMBufCatNodeT(buffer.get(), "T", nullptr, type, value, format);
  if (status == SM_STATUS_SUCCESS) return buffer.Text();
  EXPECT_EQ(buffer.Text(), "");
  return "status " + std::to_string(status);
}

template <typename T>
std::string NumberOf(s32 type, T value, s32 format = 0) {
  GuardBuffer<u8> exact(sizeof(value));
  memcpy(exact.data(), &value, sizeof(value));
  return ElementOf(type, exact.data(), format);
}

const ustring* Units(const char16_t* text) { return reinterpret_cast<const ustring*>(text); }

constexpr char kInvalid[] = "status 271";   // 0x10F
constexpr char kNoMemory[] = "status 272";  // 0x110

TEST(XmlBuffer, SmallestCapacityIsSixtyFour) {
  const Buffer smallest(0);
  EXPECT_EQ(smallest.record().capacity, 64u);
  EXPECT_EQ(smallest.Text(), "");
  EXPECT_EQ(Buffer(63).record().capacity, 64u);
  EXPECT_EQ(Buffer(65).record().capacity, 65u);
}

TEST(XmlBuffer, StylesheetInstructionStandsAloneAtTheBeginning) {
  const Buffer buffer(10, 1);
  EXPECT_EQ(buffer.Text(), kStylesheet);
  EXPECT_EQ(buffer.record().capacity, 128u);  // its 65 characters and the NUL do not fit 64
  EXPECT_EQ(sizeof(kStylesheet), 66u);
}

TEST(XmlBuffer, OnlyAFlagOfExactlyOneAsksForTheStylesheet) {
  EXPECT_EQ(Buffer(64, 2).Text(), "");
  EXPECT_EQ(Buffer(64, 0x101).Text(), "");
}

TEST(XmlBuffer, AllocWithoutMemoryIsNull) {
  const u32 allocations = test::FailEachAllocation(
      [] {
        void* const buffer = PXMAllocBuf(64, 0);
        const bool made = buffer != nullptr;
        (void)PXMFreeBuf(buffer, 0);
        return made;
      },
      [](bool made) { EXPECT_FALSE(made); });
  EXPECT_EQ(allocations, 2u);
}

TEST(XmlBuffer, StylesheetThatDoesNotFitInMemoryIsDroppedSilently) {
  void* buffer = nullptr;
  {
    const FailNthAllocation fault(3);  // after the record and its text
    buffer = PXMAllocBuf(64, 1);
  }
  ASSERT_NE(buffer, nullptr);
  EXPECT_STREQ(static_cast<SSAStr*>(buffer)->text, "");
  (void)PXMFreeBuf(buffer, 0);
}

TEST(XmlBuffer, EscapedTextThatEndsAtAnUntouchablePageIsReadNoFurther) {
  GuardBuffer<astring> text(4);
  memcpy(text.data(), "a<b", 4);
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_ASTRING, text.data(), 3), "<T>a&amp;amp;lt;b</T>");
}

TEST(XmlBuffer, TakenTextOutlivesItsBuffer) {
  void* const buffer = PXTXAllocBuf(0, 0);
  ASSERT_EQ(PXTXBufCatEmptyNode(buffer, "Node", nullptr), SM_STATUS_SUCCESS);
  astring* const text = PXTXFreeBufGetContent(buffer);
  ASSERT_NE(text, nullptr);
  EXPECT_STREQ(text, "<Node/>");
  PXTXFreeBufContent(text);

  astring* const empty = PXTXFreeBufGetContent(PXTXAllocBuf(0, 0));
  ASSERT_NE(empty, nullptr);
  EXPECT_STREQ(empty, "");
  PXTFreeMem(empty);
}

TEST(XmlBuffer, EveryModeButOneFreesTheText) {
  EXPECT_EQ(PXMFreeBuf(PXMAllocBuf(0, 1), 0), nullptr);
  EXPECT_EQ(PXMFreeBuf(PXMAllocBuf(0, 1), 2), nullptr);
  EXPECT_EQ(PXMFreeBuf(PXMAllocBuf(0, 1), 0x101), nullptr);
  EXPECT_EQ(PXTXFreeBuf(PXTXAllocBuf(0, 1)), nullptr);
}

TEST(XmlBuffer, BuffersThatAreFreedOrTakenLeaveNothingBehind) {
  constexpr u32 kBuffers = 10000;
  const size_t before = mallinfo2().uordblks;
  for (u32 at = 0; at < kBuffers; ++at) {
    (void)PXTXFreeBuf(PXTXAllocBuf(0, 0));
    PXTXFreeBufContent(PXTXFreeBufGetContent(PXTXAllocBuf(0, 0)));
  }
  // A block that stayed of each would be 24 bytes and more.
  EXPECT_LT(mallinfo2().uordblks, before + kBuffers);
}

TEST(XmlBuffer, NullBuffersAndTextsAreIgnored) {
  EXPECT_EQ(PXTXFreeBufGetContent(nullptr), nullptr);
  EXPECT_EQ(PXTXFreeBuf(nullptr), nullptr);
  EXPECT_EQ(PXMFreeBuf(nullptr, 1), nullptr);
  PXTXFreeBufContent(nullptr);
}

TEST(XmlBuffer, TagsCarryTheirAttributes) {
  Buffer buffer;
  EXPECT_EQ(PXMBufCatBeginNode(buffer.get(), "Node", "id=\"1\""), SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "<Node id=\"1\">");
  EXPECT_EQ(PXMBufCatBeginNode(buffer.get(), "M", nullptr), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXMBufCatEmptyNode(buffer.get(), "Node", nullptr), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXMBufCatEmptyNode(buffer.get(), "Node", "a=\"1\" b=\"2\""), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXMBufCatEndNode(buffer.get(), "M"), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXMBufCatEndNode(buffer.get(), "Node"), SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "<Node id=\"1\"><M><Node/><Node a=\"1\" b=\"2\"/></M></Node>");
}

TEST(XmlBuffer, EmptyAttributeTextStillGetsItsBlank) {
  Buffer buffer;
  EXPECT_EQ(PXMBufCatBeginNode(buffer.get(), "N", ""), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXMBufCatEmptyNode(buffer.get(), "N", ""), SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "<N ><N />");
}

TEST(XmlBuffer, EmptyNamesAreAccepted) {
  Buffer buffer;
  EXPECT_EQ(PXMBufCatNode(buffer.get(), "", nullptr, QVX_TYPE_ASTRING, "v"), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXMBufCatEmptyNode(buffer.get(), "", nullptr), SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "<>v</></>");
}

TEST(XmlBuffer, ClosingTagIgnoresAttributesAndValue) {
  Buffer buffer;
  EXPECT_EQ(PXMBufCatNode(buffer.get(), "N", "a=\"1\"", QVX_TYPE_END, "value"), SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "</N>");
  EXPECT_EQ(PXMBufCatNode(buffer.get(), "N", "a=\"1\"", QVX_TYPE_BEGIN, "value"),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "</N><N a=\"1\">");
}

TEST(XmlBuffer, AttributesStandInEveryKindOfElement) {
  const u64 number = 9;
  const astring escaped[] = "<";
  Buffer buffer;
  EXPECT_EQ(PXMBufCatNode(buffer.get(), "N", "a=\"1\"", QVX_TYPE_ASTRING, "v"), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXMBufCatNode(buffer.get(), "N", "a=\"1\"", QVX_TYPE_U64, &number), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXMBufCatNode(buffer.get(), "N", "a=\"1\"", QVX_TYPE_XML_ASTRING, escaped),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "<N a=\"1\">v</N><N a=\"1\">9</N><N a=\"1\">&lt;</N>");
}

// A text of this length, no two characters in a row alike.
std::string Running(size_t length, char first) {
  std::string text;
  for (size_t at = 0; at < length; ++at) {
    text += static_cast<char>(first + static_cast<char>(at % 23));
  }
  return text;
}

// A text that ends where memory ends.
class TextAtPageEnd {
 public:
  explicit TextAtPageEnd(const std::string& text) : room_(text.size() + 1) {
    memcpy(room_.data(), text.c_str(), text.size() + 1);
  }
  const astring* Get() { return room_.data(); }

 private:
  GuardBuffer<astring> room_;
};

TEST(XmlBuffer, TextsOfEveryLengthAreCopiedWholeAndNotReadBeyondTheirEnd) {
  for (size_t length = 0; length <= 70; ++length) {
    const std::string name = Running(length, 'a');
    const std::string attributes = Running(70 - length, 'A');
    const std::string value = Running((length * 7) % 71, '0');
    TextAtPageEnd nameAtEnd(name);
    TextAtPageEnd attributesAtEnd(attributes);
    TextAtPageEnd valueAtEnd(value);
    Buffer buffer(0);
    EXPECT_EQ(PXMBufCatNode(buffer.get(), nameAtEnd.Get(), attributesAtEnd.Get(), QVX_TYPE_ASTRING,
                            valueAtEnd.Get()),
              SM_STATUS_SUCCESS);
    EXPECT_EQ(PXMBufCatNode(buffer.get(), nameAtEnd.Get(), nullptr, QVX_TYPE_END, nullptr),
              SM_STATUS_SUCCESS);
    EXPECT_EQ(buffer.Text(),
              "<" + name + " " + attributes + ">" + value + "</" + name + "></" + name + ">");
  }
}

TEST(XmlBuffer, NullArgumentsAreInvalidParameters) {
  Buffer buffer;
  EXPECT_EQ(PXMBufCatNode(nullptr, "N", nullptr, QVX_TYPE_ASTRING, "v"),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(PXMBufCatNode(buffer.get(), nullptr, nullptr, QVX_TYPE_ASTRING, "v"),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(PXMBufCatBeginNode(nullptr, "N", nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(PXMBufCatBeginNode(buffer.get(), nullptr, "a"), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(PXMBufCatEndNode(nullptr, "N"), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(PXMBufCatEndNode(buffer.get(), nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(PXMBufCatEmptyNode(nullptr, "N", nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(PXMBufCatEmptyNode(buffer.get(), nullptr, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(buffer.Text(), "");
}

TEST(XmlBuffer, NullValueIsRefusedForAllButTheTags) {
  for (s32 type = -1; type <= 28; ++type) {
    if (type != 18 && type != 19) {
      EXPECT_EQ(ElementOf(type, nullptr), kInvalid) << type;
    }
  }
}

TEST(XmlBuffer, CodesWithoutATypeAreRefused) {
  const u64 value[2] = {};
  for (const s32 type : {0, 3, 6, 8, 10, 12, 14, 24, 28, 99, -1, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(ElementOf(type, value), kInvalid) << type;
  }
}

TEST(XmlBuffer, TextIsWrittenAsItStands) {
  EXPECT_EQ(ElementOf(QVX_TYPE_ASTRING, "a<b>&\"'"), "<T>a<b>&\"'</T>");
  EXPECT_EQ(ElementOf(QVX_TYPE_ASTRING, ""), "<T></T>");
  EXPECT_EQ(ElementOf(QVX_TYPE_USTRING, Units(u"a<\u00E9&")), "<T>a<\xC3\xA9&</T>");
  astring text[] = "<b/>";
  const SSAStr narrow = {text, 5, 4};
  EXPECT_EQ(ElementOf(QVX_TYPE_SSASTR, &narrow), "<T><b/></T>");
  ustring units[] = {'<', 'c', '/', '>', 0};
  const SSUStr wide = {units, 10, 4};
  EXPECT_EQ(ElementOf(QVX_TYPE_SSUSTR, &wide), "<T><c/></T>");
}

TEST(XmlBuffer, WideTextThatCannotBeConvertedLeavesTheElementEmpty) {
  ustring unpaired[] = {0xDC00, 'a', 0};
  EXPECT_EQ(ElementOf(QVX_TYPE_USTRING, unpaired), "<T></T>");
  const SSUStr record = {unpaired, 6, 2};
  EXPECT_EQ(ElementOf(QVX_TYPE_SSUSTR, &record), "<T></T>");
}

TEST(XmlBuffer, RecordTextEndsAtItsLengthAndAtItsTerminator) {
  astring text[] = "abcdef";
  const SSAStr shorter = {text, 7, 3};
  EXPECT_EQ(ElementOf(QVX_TYPE_SSASTR, &shorter), "<T>abc</T>");
  const SSAStr longer = {text, 7, 100};
  EXPECT_EQ(ElementOf(QVX_TYPE_SSASTR, &longer), "<T>abcdef</T>");
  GuardBuffer<astring> unterminated(3);
  memcpy(unterminated.data(), "xyz", 3);
  const SSAStr exact = {unterminated.data(), 3, 3};
  EXPECT_EQ(ElementOf(QVX_TYPE_SSASTR, &exact), "<T>xyz</T>");
}

TEST(XmlBuffer, RecordWithoutTextIsTheEmptyValue) {
  const SSAStr narrow = {nullptr, 0, 5};
  EXPECT_EQ(ElementOf(QVX_TYPE_SSASTR, &narrow), "<T></T>");
  const SSUStr wide = {nullptr, 0, 5};
  EXPECT_EQ(ElementOf(QVX_TYPE_SSUSTR, &wide), "<T></T>");
}

TEST(XmlBuffer, BufferItselfMayBeTheRecord) {
  Buffer buffer(64);
  ASSERT_EQ(PXMBufCatNode(buffer.get(), "A", nullptr, QVX_TYPE_ASTRING,
                          "12345678901234567890123456789012345"),
            SM_STATUS_SUCCESS);
  const std::string before = buffer.Text();
  ASSERT_EQ(PXMBufCatNode(buffer.get(), "B", nullptr, QVX_TYPE_SSASTR, buffer.get()),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), before + "<B>" + before + "</B>");
}

TEST(XmlBuffer, NameMayLieInTheBuffersOwnText) {
  Buffer buffer(64);
  ASSERT_EQ(
      PXMBufCatNode(buffer.get(), "N", nullptr, QVX_TYPE_ASTRING, std::string(56, 'x').c_str()),
      SM_STATUS_SUCCESS);
  const u64 number = 5;
  const std::string before = buffer.Text();
  ASSERT_EQ(before.size(), 63u);
  const astring* const name = buffer.record().text + 59;
  ASSERT_STREQ(name, "</N>");
  ASSERT_EQ(PXMBufCatNode(buffer.get(), name, nullptr, QVX_TYPE_U64, &number), SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), before + "<</N>>5</</N>>");
}

TEST(XmlBuffer, BoolnIsTrueForExactlyOne) {
  EXPECT_EQ(NumberOf(QVX_TYPE_BOOLN, booln{1}), "<T>true</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_BOOLN, booln{0}), "<T>false</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_BOOLN, booln{2}), "<T>false</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_BOOLN, booln{0x101}), "<T>false</T>");
}

TEST(XmlBuffer, NumbersTakeARadixOfTenOrSixteen) {
  Buffer buffer;
  const u32 value = 255;
  EXPECT_EQ(
      PXMBufCatNodeT(buffer.get(), "Count", nullptr, QVX_TYPE_U32, &value, QVX_BASE_HEXADECIMAL),
      SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "<Count>0xff</Count>");
  EXPECT_EQ(NumberOf(QVX_TYPE_U32, u32{255}, QVX_BASE_DECIMAL), "<T>255</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_U32, u32{255}, 0), "<T>255</T>");
  for (const s32 radix : {8, 2, 1, -1, -16, 17, 0x10010}) {
    EXPECT_EQ(NumberOf(QVX_TYPE_U32, u32{255}, radix), kInvalid) << radix;
    EXPECT_EQ(NumberOf(QVX_TYPE_S32, s32{255}, radix), kInvalid) << radix;
    EXPECT_EQ(NumberOf(QVX_TYPE_U8, u8{255}, radix), kInvalid) << radix;
    EXPECT_EQ(NumberOf(QVX_TYPE_S8, s8{1}, radix), kInvalid) << radix;
    EXPECT_EQ(NumberOf(QVX_TYPE_U16, u16{255}, radix), kInvalid) << radix;
    EXPECT_EQ(NumberOf(QVX_TYPE_S16, s16{255}, radix), kInvalid) << radix;
  }
}

TEST(XmlBuffer, EachNumberTypeHasItsWidthAndSign) {
  EXPECT_EQ(NumberOf(QVX_TYPE_U32, u32{0xFFFFFFFF}), "<T>4294967295</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_S32, s32{-1}), "<T>-1</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_S32, s32{-1}, QVX_BASE_HEXADECIMAL), "<T>0xffffffff</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_U8, u8{255}), "<T>255</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_U8, u8{255}, QVX_BASE_HEXADECIMAL), "<T>0xff</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_S8, s8{-1}), "<T>-1</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_S8, s8{-1}, QVX_BASE_HEXADECIMAL), "<T>0xffffffff</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_U16, u16{65535}), "<T>65535</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_S16, s16{-32768}), "<T>-32768</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_S16, s16{-2}, QVX_BASE_HEXADECIMAL), "<T>0xfffffffe</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_U32, u32{0}, QVX_BASE_HEXADECIMAL), "<T>0</T>");
}

TEST(XmlBuffer, SixtyFourBitNumbersAreDecimalWhateverTheFormat) {
  EXPECT_EQ(NumberOf(QVX_TYPE_U64, u64{UINT64_MAX}), "<T>18446744073709551615</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_S64, s64{INT64_MIN}), "<T>-9223372036854775808</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_U64, u64{255}, QVX_BASE_HEXADECIMAL), "<T>255</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_S64, s64{-255}, QVX_BASE_OCTAL), "<T>-255</T>");
}

TEST(XmlBuffer, DoublesAreWholeUpToThirtyOneCharacters) {
  EXPECT_EQ(NumberOf(QVX_TYPE_D64, d64{0.5}), "<T>0.50000000</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_D64, d64{-1234.25}, QVX_BASE_HEXADECIMAL), "<T>-1234.25000000</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_D64, d64{1208925819614629174706176.0}),
            "<T>1208925819614629174706176.00000</T>");
}

TEST(XmlBuffer, TimesAreLocalTimes) {
  ASSERT_EQ(setenv("TZ", "UTC0", 1), 0);
  EXPECT_EQ(NumberOf(QVX_TYPE_TIME, s32{1}), "<T>Thu Jan  1 00:00:01 1970</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_TIME, s32{INT32_MAX}), "<T>Tue Jan 19 03:14:07 2038</T>");
}

TEST(XmlBuffer, TimesBelowOneAreMinusOne) {
  EXPECT_EQ(NumberOf(QVX_TYPE_TIME, s32{0}), "<T>-1</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_TIME, s32{-1}), "<T>-1</T>");
  EXPECT_EQ(NumberOf(QVX_TYPE_TIME, s32{INT32_MIN}), "<T>-1</T>");
}

TEST(XmlBuffer, EscapedTypesReplaceMarkupCharacters) {
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_ASTRING, "a<b"), "<T>a&lt;b</T>");
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_ASTRING, "\"&'<>"), "<T>&quot;&amp;&apos;&lt;&gt;</T>");
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_USTRING, Units(u"\u00E9<")), "<T>\xC3\xA9&lt;</T>");
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_ASTRING, ""), "<T></T>");
}

TEST(XmlBuffer, FormatIsTheNumberOfEscapingPasses) {
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_ASTRING, "a&b", 2), "<T>a&amp;amp;b</T>");
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_USTRING, Units(u"a&b"), 2), "<T>a&amp;amp;b</T>");
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_ASTRING, "a&b", 1), "<T>a&amp;b</T>");
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_ASTRING, "ab", 5), "<T>ab</T>");
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_ASTRING, "a&b", -1), "<T>a&amp;b</T>");
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_USTRING, Units(u"a&b"), INT32_MIN), "<T>a&amp;b</T>");
}

TEST(XmlBuffer, EscapedWideTextThatCannotBeConvertedIsNoMemory) {
  const ustring unpaired[] = {0xD800, 0};
  EXPECT_EQ(ElementOf(QVX_TYPE_XML_USTRING, unpaired), kNoMemory);
}

TEST(XmlBuffer, TypedValueBringsItsTypeAndFormat) {
  u32 number = 255;
  PXTTypedValue typed = {QVX_TYPE_U32, QVX_BASE_HEXADECIMAL, &number};
  EXPECT_EQ(ElementOf(QVX_TYPE_TYPED_VALUE, &typed, 8), "<T>0xff</T>");
  typed.format = 8;
  EXPECT_EQ(ElementOf(QVX_TYPE_TYPED_VALUE, &typed), kInvalid);
  astring text[] = "&";
  typed = {26, 2, text};
  EXPECT_EQ(ElementOf(QVX_TYPE_TYPED_VALUE, &typed), "<T>&amp;amp;</T>");
  Buffer buffer;
  typed = {1, 0, text};
  EXPECT_EQ(PXMBufCatNode(buffer.get(), "N", "a=\"1\"", QVX_TYPE_TYPED_VALUE, &typed),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "<N a=\"1\">&</N>");
}

TEST(XmlBuffer, TypedValueIsNotNested) {
  u32 number = 255;
  PXTTypedValue inner = {QVX_TYPE_U32, 0, &number};
  PXTTypedValue typed = {QVX_TYPE_TYPED_VALUE, 0, &inner};
  EXPECT_EQ(ElementOf(QVX_TYPE_TYPED_VALUE, &typed), kInvalid);
  typed = {25, 0, &typed};
  EXPECT_EQ(ElementOf(QVX_TYPE_TYPED_VALUE, &typed), kInvalid);
}

TEST(XmlBuffer, TypedValueOfAnotherCodeIsCheckedLikeAnyValue) {
  u32 number = 255;
  PXTTypedValue typed = {3, 0, &number};
  EXPECT_EQ(ElementOf(QVX_TYPE_TYPED_VALUE, &typed), kInvalid);
  typed = {5, 0, nullptr};
  EXPECT_EQ(ElementOf(QVX_TYPE_TYPED_VALUE, &typed), kInvalid);
  typed = {18, 0, nullptr};
  EXPECT_EQ(ElementOf(QVX_TYPE_TYPED_VALUE, &typed), "<T>");
  typed = {19, 0, nullptr};
  EXPECT_EQ(ElementOf(QVX_TYPE_TYPED_VALUE, &typed), "</T>");
}

TEST(XmlBuffer, RecordsMayBeUnaligned) {
  astring text[] = "abc";
  const SSAStr record = {text, 4, 3};
  GuardBuffer<u8> bytes(sizeof(record) + 1);
  memcpy(bytes.data(), &record, sizeof(record));
  EXPECT_EQ(ElementOf(QVX_TYPE_SSASTR, bytes.data()), "<T>abc</T>");
  const PXTTypedValue typed = {QVX_TYPE_ASTRING, 0, text};
  static_assert(sizeof(typed) == sizeof(record));
  memcpy(bytes.data(), &typed, sizeof(typed));
  EXPECT_EQ(ElementOf(QVX_TYPE_TYPED_VALUE, bytes.data()), "<T>abc</T>");
}

TEST(XmlBuffer, ElementsThatFitNeedNoMemoryBesideTheBuffer) {
  const u64 number = 7;
  const astring text[] = "t";
  const SSAStr record = {const_cast<astring*>(text), 2, 1};
  const SSUStr wideRecord = {};
  PXTTypedValue typed = {QVX_TYPE_ASTRING, 0, const_cast<astring*>(text)};
  const struct {
    s32 type;
    const void* value;
  } rows[] = {{1, text},         {2, Units(u"w")}, {4, &number},  {5, &number},  {7, &number},
              {9, &number},      {11, &number},    {13, &number}, {15, &number}, {16, &record},
              {17, &wideRecord}, {18, nullptr},    {19, nullptr}, {20, &number}, {21, &number},
              {22, &number},     {23, &number},    {25, &typed}};
  (void)NumberOf(QVX_TYPE_TIME, s32{1});  // the C library's own allocations for the time zone
  for (const auto& row : rows) {
    Buffer whole;
    EXPECT_EQ(PXMBufCatNode(whole.get(), "N", "a=\"1\"", row.type, row.value), SM_STATUS_SUCCESS);
    Buffer buffer;
    bool asked = false;
    u32 status = 1;
    {
      const FailNthAllocation fault(1);
      status = PXMBufCatNode(buffer.get(), "N", "a=\"1\"", row.type, row.value);
      asked = FailNthAllocation::Fired();
    }
    EXPECT_EQ(status, SM_STATUS_SUCCESS) << row.type;
    EXPECT_FALSE(asked) << row.type;
    EXPECT_EQ(buffer.Text(), whole.Text()) << row.type;
  }
}

TEST(XmlBuffer, EmptyElementThatDoesNotFitInMemoryIsDroppedSilently) {
  Buffer buffer(64);
  const std::string name(70, 'n');
  u32 status = 1;
  {
    const FailNthAllocation fault(1);
    status = PXMBufCatEmptyNode(buffer.get(), name.c_str(), nullptr);
  }
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "");
}

// The buffer moves with each of the element's pieces.
TEST(XmlBuffer, TheBuffersOwnTextMayBeNameAttributesAndValue) {
  for (const s32 type : {1, 16, 9, 2}) {
    Buffer buffer(64);
    const std::string text(60, 't');
    ASSERT_EQ(PXMBufCatNode(buffer.get(), text.c_str(), nullptr, QVX_TYPE_BEGIN, nullptr),
              SM_STATUS_SUCCESS);
    const SSAStr record = buffer.record();
    const std::string own = buffer.Text();
    const u64 number = 12345;
    const void* const values[] = {record.text, &record, &number, Units(u"wide")};
    const std::string shown[] = {own, own, "12345", "wide"};
    const int at = type == 1 ? 0 : type == 16 ? 1 : type == 9 ? 2 : 3;
    ASSERT_EQ(PXMBufCatNode(buffer.get(), record.text, record.text, type, values[at]),
              SM_STATUS_SUCCESS);
    EXPECT_EQ(buffer.Text(), own + "<" + own + " " + own + ">" + shown[at] + "</" + own + ">");
  }
}

TEST(XmlBuffer, EachPieceOfALongNumberGrowsTheBufferByTheRule) {
  Buffer buffer(64);
  const u64 number = 18446744073709551615u;
  const std::string name(50, 'n');
  ASSERT_EQ(PXMBufCatNode(buffer.get(), name.c_str(), nullptr, QVX_TYPE_U64, &number),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.record().length, 52u + 20 + 53);
  EXPECT_EQ(buffer.record().capacity, 128u);  // 73 bytes ask for more than 64, 126 do not
  ASSERT_EQ(
      PXMBufCatNode(buffer.get(), std::string(600, 'n').c_str(), nullptr, QVX_TYPE_U64, &number),
      SM_STATUS_SUCCESS);
  // 125 + 602 + 1 = 728 are more than twice 128, and 747 + 603 + 1 = 1,351 less than twice 728.
  EXPECT_EQ(buffer.record().capacity, 1456u);
}

TEST(XmlBuffer, EscapedTextWithoutMemoryLeavesTheBuffer) {
  Buffer buffer;
  const u32 allocations = test::FailEachAllocation(
      [&buffer] {
        return PXMBufCatNodeT(buffer.get(), "N", nullptr, QVX_TYPE_XML_USTRING, Units(u"a&b"),
                              QVX_BASE_BINARY);
      },
      [&buffer](u32 status) {
        EXPECT_EQ(status, SM_STATUS_NO_MEMORY);
        EXPECT_EQ(buffer.Text(), "");
      });
  EXPECT_GE(allocations, 3u);
  EXPECT_EQ(buffer.Text(), "<N>a&amp;amp;b</N>");
}

TEST(XmlBuffer, PieceThatDoesNotFitInMemoryIsDroppedSilently) {
  Buffer buffer(64);
  const std::string value(100, 'v');
  u32 status = 1;
  {
    const FailNthAllocation fault(1);
    status = PXMBufCatNode(buffer.get(), "N", nullptr, QVX_TYPE_ASTRING, value.c_str());
  }
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "");
  EXPECT_EQ(buffer.record().capacity, 64u);
}

TEST(XmlBuffer, ValueDroppedForMemoryKeepsItsTags) {
  Buffer buffer(64);
  const std::u16string value(100, u'v');
  u32 status = 1;
  {
    const FailNthAllocation fault(1);  // the tags fit, the value does not
    status = PXMBufCatNode(buffer.get(), "N", nullptr, QVX_TYPE_USTRING, Units(value.c_str()));
  }
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "<N></N>");
}

TEST(XmlBuffer, ElementOfOnePieceGrowsTheBufferOnce) {
  Buffer buffer(64);
  EXPECT_EQ(
      PXMBufCatNode(buffer.get(), "N", nullptr, QVX_TYPE_ASTRING, std::string(60, 'v').c_str()),
      SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.record().length, 67u);
  EXPECT_EQ(buffer.record().capacity, 128u);
  EXPECT_EQ(
      PXMBufCatNode(buffer.get(), "N", nullptr, QVX_TYPE_ASTRING, std::string(500, 'v').c_str()),
      SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.record().capacity, 67u + 507 + 1);
}

TEST(XmlBuffer, ExportedCallsBuildADocument) {
  void* const buffer = PXTXAllocBuf(0, 1);
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(PXTXBufCatBeginNode(buffer, "A", "x=\"1\""), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTXBufCatNode(buffer, "B", nullptr, QVX_TYPE_ASTRING, "b"), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTXBufCatEmptyNode(buffer, "C", nullptr), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTXBufCatEndNode(buffer, "A"), SM_STATUS_SUCCESS);
  astring* const text = PXTXFreeBufGetContent(buffer);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::string(text), std::string(kStylesheet) + "<A x=\"1\"><B>b</B><C/></A>");
  PXTXFreeBufContent(text);
}

// Opening and closing tag have the name, so each form of element is larger than any buffer.
TEST(XmlBuffer, ElementsBeyond32BitsAreRefused) {
  if (!test::kHasLongTexts) GTEST_SKIP();
  const test::LongText<astring> name(u64{1} << 31, 'n');
  Buffer buffer;
  const u64 number = 1;
  const auto refuses = [](auto call) {
    const FailNthAllocation fault(1);
    return call() == SM_STATUS_NO_MEMORY && !FailNthAllocation::Fired();
  };
  ASSERT_TRUE(refuses([&] { return PXMBufCatNode(buffer.get(), name.text(), nullptr, 1, "v"); }));
  ASSERT_TRUE(
      refuses([&] { return PXMBufCatNode(buffer.get(), name.text(), nullptr, 9, &number); }));
  ASSERT_TRUE(refuses([&] { return PXMBufCatBeginNode(buffer.get(), name.text(), nullptr); }));
  ASSERT_TRUE(refuses([&] { return PXMBufCatEndNode(buffer.get(), name.text()); }));
  EXPECT_EQ(buffer.Text(), "");
}

}  // namespace
}  // namespace qvx
