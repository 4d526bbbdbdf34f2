// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/value_convert.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "qvxcs/cli_value.h"
#include "qvxcs/grow_string.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_buffer.h"

#include "base/results.h"
#include "support/alloc_fault.h"
#include "support/guard_buffer.h"

namespace qvx {
namespace {

using test::FailNthAllocation;
using test::GuardBuffer;

template <typename T>
struct Read {
  u32 status;
  T value;
};

// Reads into exactly the bytes of a T, which are 0xA5 before.
template <typename T>
Read<T> ReadAs(s32 type, const astring* text) {
  GuardBuffer<u8> out(sizeof(T));
  Read<T> read = {};
  read.status = NVSuptASCIIToXVal(text, type, out.data());
  EXPECT_TRUE(out.FrontUntouched());
  memcpy(&read.value, out.data(), sizeof(T));
  return read;
}

template <typename T>
void ExpectRead(s32 type, const astring* text, T value, u32 status = SM_STATUS_SUCCESS) {
  const Read<T> read = ReadAs<T>(type, text);
  EXPECT_EQ(read.status, status) << type << " " << text;
  EXPECT_EQ(read.value, value) << type << " " << text;
}

// The text of a value whose bytes end at an untouchable page; "(null)" without one.
std::string Taken(astring* text) {
  const std::string taken = text == nullptr ? "(null)" : text;
  free(text);
  return taken;
}

template <typename T>
std::string TextOf(s32 type, T value) {
  GuardBuffer<u8> exact(sizeof(value));
  memcpy(exact.data(), &value, sizeof(value));
  return Taken(NVSuptXValToASCII(type, exact.data()));
}

const ustring* Units(const char16_t* text) { return reinterpret_cast<const ustring*>(text); }

TEST(ValueConvert, TextIsStoredAsItsPointer) {
  const astring text[] = "any";
  ExpectRead<const astring*>(QVX_TYPE_ASTRING, text, text);
}

TEST(ValueConvert, EachTypeIsReadInDecimal) {
  ExpectRead<booln>(QVX_TYPE_BOOLN, "TRUE", 1);
  ExpectRead<booln>(QVX_TYPE_BOOLN, "false", 0);
  ExpectRead<u32>(QVX_TYPE_U32, "4294967295", 4294967295u);
  ExpectRead<s32>(QVX_TYPE_S32, "-2147483648", INT32_MIN);
  ExpectRead<u64>(QVX_TYPE_U64, "18446744073709551615", UINT64_MAX);
  ExpectRead<s64>(QVX_TYPE_S64, "-9223372036854775808", INT64_MIN);
  ExpectRead<d64>(QVX_TYPE_D64, "-1.5", -1.5);
  ExpectRead<u8>(QVX_TYPE_U8, "255", 255);
  ExpectRead<s8>(QVX_TYPE_S8, "-128", -128);
  ExpectRead<u16>(QVX_TYPE_U16, "65535", 65535);
  ExpectRead<s16>(QVX_TYPE_S16, "-32768", -32768);
}

TEST(ValueConvert, NarrowNumbersAreCutToTheirWidth) {
  ExpectRead<u8>(QVX_TYPE_U8, "256", 0);
  ExpectRead<u8>(QVX_TYPE_U8, "511", 255);
  ExpectRead<s8>(QVX_TYPE_S8, "128", -128);
  ExpectRead<s8>(QVX_TYPE_S8, "-129", 127);
  ExpectRead<u16>(QVX_TYPE_U16, "65537", 1);
  ExpectRead<s16>(QVX_TYPE_S16, "32768", -32768);
}

TEST(ValueConvert, NumbersBeyond32BitsKeepTheirLow32Bits) {
  ExpectRead<u32>(QVX_TYPE_U32, "4294967297", 1);
  ExpectRead<s32>(QVX_TYPE_S32, "4294967295", -1);
}

TEST(ValueConvert, TextThatIsNoNumberStoresZeroWithTheStatus) {
  ExpectRead<booln>(QVX_TYPE_BOOLN, "yes", 0, SM_STATUS_INVALID_PARAMETER);
  ExpectRead<u32>(QVX_TYPE_U32, "12x", 0, SM_STATUS_INVALID_PARAMETER);
  ExpectRead<s32>(QVX_TYPE_S32, "", 0, SM_STATUS_INVALID_PARAMETER);
  ExpectRead<u64>(QVX_TYPE_U64, "0x1F", 0, SM_STATUS_INVALID_PARAMETER);
  ExpectRead<s64>(QVX_TYPE_S64, "1.5", 0, SM_STATUS_INVALID_PARAMETER);
  ExpectRead<u8>(QVX_TYPE_U8, "x", 0, SM_STATUS_INVALID_PARAMETER);
  ExpectRead<s8>(QVX_TYPE_S8, "x", 0, SM_STATUS_INVALID_PARAMETER);
  ExpectRead<u16>(QVX_TYPE_U16, "x", 0, SM_STATUS_INVALID_PARAMETER);
  ExpectRead<s16>(QVX_TYPE_S16, "x", 0, SM_STATUS_INVALID_PARAMETER);
  ExpectRead<s64>(QVX_TYPE_THOUSANDTHS, "x", 0, SM_STATUS_INVALID_PARAMETER);
}

TEST(ValueConvert, DoublesHaveNoFault) { ExpectRead<d64>(QVX_TYPE_D64, "x", 0.0); }

TEST(ValueConvert, ThousandthsAreDividedTowardZero) {
  ExpectRead<s64>(QVX_TYPE_THOUSANDTHS, "2500", 2);
  ExpectRead<s64>(QVX_TYPE_THOUSANDTHS, "-2500", -2);
  ExpectRead<s64>(QVX_TYPE_THOUSANDTHS, "999", 0);
  ExpectRead<s64>(QVX_TYPE_THOUSANDTHS, "-999", 0);
  ExpectRead<s64>(QVX_TYPE_THOUSANDTHS, "2147483647999", INT32_MAX);
  ExpectRead<s64>(QVX_TYPE_THOUSANDTHS, "-2147483648999", INT32_MIN);
}

TEST(ValueConvert, ThousandthsBeyond32BitsStoreNothing) {
  for (const astring* text : {"9999999999999", "2147483648000", "-2147483649000"}) {
    GuardBuffer<u8> out(8);
    EXPECT_EQ(NVSuptASCIIToXVal(text, QVX_TYPE_THOUSANDTHS, out.data()),
              SM_STATUS_INVALID_PARAMETER)
        << text;
    EXPECT_TRUE(out.UntouchedFrom(0)) << text;
  }
}

TEST(ValueConvert, OtherTypesAreBadArguments) {
  for (const s32 type : {0,  2,  3,  6,  8,  10, 12, 14,  15, 16,        17,       18,
                         19, 24, 25, 26, 27, 28, 98, 100, -1, INT32_MAX, INT32_MIN}) {
    GuardBuffer<u8> out(8);
    EXPECT_EQ(NVSuptASCIIToXVal("1", type, out.data()), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_TRUE(out.UntouchedFrom(0)) << type;
  }
}

TEST(ValueConvert, NullOutputIsInvalidAndNullTextIsMinusOne) {
  u32 value = 7;
  EXPECT_EQ(NVSuptASCIIToXVal("1", QVX_TYPE_U32, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(NVSuptASCIIToXVal(nullptr, QVX_TYPE_U32, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(NVSuptASCIIToXVal(nullptr, QVX_TYPE_U32, &value), kMinusOne);
  EXPECT_EQ(NVSuptASCIIToXVal(nullptr, 3, &value), kMinusOne);
  EXPECT_EQ(value, 7u);
}

TEST(ValueConvert, ValuesAreStoredAtAnyAddress) {
  GuardBuffer<u8> out(9);
  EXPECT_EQ(NVSuptASCIIToXVal("258", QVX_TYPE_U64, out.data()), SM_STATUS_SUCCESS);
  u64 value = 0;
  memcpy(&value, out.data(), sizeof(value));
  EXPECT_EQ(value, 258u);
  EXPECT_TRUE(out.UntouchedFrom(8));
}

TEST(ValueConvert, NamedValueIsReadFromTheVector) {
  astring first[] = "speed";
  astring second[] = "speed=12";
  astring third[] = "speed=13";
  astring fourth[] = "empty=";
  astring* vector[] = {first, nullptr, second, third, fourth};
  u32 value = 0;
  EXPECT_EQ(NVSuptNVPValToXVal(5, vector, "speed", QVX_TYPE_U32, &value), SM_STATUS_SUCCESS);
  EXPECT_EQ(value, 12u);
  EXPECT_EQ(NVSuptNVPValToXVal(5, vector, "empty", QVX_TYPE_U32, &value),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(value, 0u);
  EXPECT_EQ(NVSuptNVPValToXVal(5, vector, "speed", 3, &value), SM_STATUS_BAD_ARGUMENT);
}

TEST(ValueConvert, NameThatIsNotInTheVectorIsAnInvalidParameter) {
  astring entry[] = "speed=12";
  astring* vector[] = {entry};
  u32 value = 7;
  EXPECT_EQ(NVSuptNVPValToXVal(1, vector, "Speed", QVX_TYPE_U32, &value),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(NVSuptNVPValToXVal(1, vector, "spee", 3, &value), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(NVSuptNVPValToXVal(0, vector, "speed", QVX_TYPE_U32, &value),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(NVSuptNVPValToXVal(-1, vector, "speed", QVX_TYPE_U32, &value),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(NVSuptNVPValToXVal(1, nullptr, "speed", QVX_TYPE_U32, &value),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(NVSuptNVPValToXVal(1, vector, nullptr, QVX_TYPE_U32, &value),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(NVSuptNVPValToXVal(1, vector, "speed", QVX_TYPE_U32, nullptr),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(value, 7u);
}

TEST(ValueConvert, EachTypeBecomesText) {
  EXPECT_EQ(Taken(NVSuptXValToASCII(QVX_TYPE_ASTRING, "a<b")), "a<b");
  EXPECT_EQ(Taken(NVSuptXValToASCII(QVX_TYPE_ASTRING, "")), "");
  EXPECT_EQ(Taken(NVSuptXValToASCII(QVX_TYPE_USTRING, Units(u"wide"))), "wide");
  EXPECT_EQ(TextOf(QVX_TYPE_BOOLN, booln{1}), "true");
  EXPECT_EQ(TextOf(QVX_TYPE_BOOLN, booln{2}), "false");
  EXPECT_EQ(TextOf(QVX_TYPE_U32, u32{4294967295}), "4294967295");
  EXPECT_EQ(TextOf(QVX_TYPE_S32, s32{INT32_MIN}), "-2147483648");
  EXPECT_EQ(TextOf(QVX_TYPE_U64, u64{UINT64_MAX}), "18446744073709551615");
  EXPECT_EQ(TextOf(QVX_TYPE_S64, s64{INT64_MIN}), "-9223372036854775808");
  EXPECT_EQ(TextOf(QVX_TYPE_D64, d64{-1.5}), "-1.50000000");
  EXPECT_EQ(TextOf(QVX_TYPE_D64, d64{1208925819614629174706176.0}),
            "1208925819614629174706176.00000");
  EXPECT_EQ(TextOf(QVX_TYPE_U8, u8{0xFF}), "255");
  EXPECT_EQ(TextOf(QVX_TYPE_S8, u8{0xFF}), "-1");
  EXPECT_EQ(TextOf(QVX_TYPE_U16, u16{0xFFFF}), "65535");
  EXPECT_EQ(TextOf(QVX_TYPE_S16, u16{0xFFFE}), "-2");
  EXPECT_EQ(Taken(NVSuptXValToASCII(QVX_TYPE_XML_ASTRING, "a&b")), "a&amp;b");
  EXPECT_EQ(Taken(NVSuptXValToASCII(QVX_TYPE_XML_USTRING, Units(u"\u00E9<"))), "\xC3\xA9&lt;");
}

TEST(ValueConvert, TimeZeroIsATime) {
  ASSERT_EQ(setenv("TZ", "UTC0", 1), 0);
  EXPECT_EQ(TextOf(QVX_TYPE_TIME, s32{0}), "Thu Jan  1 00:00:00 1970");
  EXPECT_EQ(TextOf(QVX_TYPE_TIME, s32{-1}), "Wed Dec 31 23:59:59 1969");
  EXPECT_EQ(TextOf(QVX_TYPE_TIME, s32{INT32_MAX}), "Tue Jan 19 03:14:07 2038");
}

TEST(ValueConvert, ATextBecomesACopyOfItsOwn) {
  astring text[] = "abc";
  astring* const copy = NVSuptXValToASCII(QVX_TYPE_ASTRING, text);
  ASSERT_NE(copy, nullptr);
  text[0] = 'x';
  EXPECT_STREQ(copy, "abc");
  copy[1] = 'y';
  EXPECT_STREQ(text, "xbc");
  free(copy);
}

TEST(ValueConvert, RecordsTagsAndUnknownTypesHaveNoText) {
  astring text[] = "abc";
  const SSAStr record = {text, 4, 3};
  for (const s32 type : {0, 3, 6, 8, 10, 12, 14, 16, 17, 18, 19, 24, 25, 28, 99, -1, INT32_MIN}) {
    EXPECT_EQ(NVSuptXValToASCII(type, &record), nullptr) << type;
  }
}

TEST(ValueConvert, NullValueHasNoText) {
  for (s32 type = -1; type <= 28; ++type) {
    EXPECT_EQ(NVSuptXValToASCII(type, nullptr), nullptr) << type;
  }
}

TEST(ValueConvert, TextThatCannotBeConvertedIsNull) {
  EXPECT_EQ(NVSuptXValToASCII(QVX_TYPE_USTRING, Units(u"\u00E9")), nullptr);
  const ustring unpaired[] = {0xD800, 0};
  EXPECT_EQ(NVSuptXValToASCII(QVX_TYPE_XML_USTRING, unpaired), nullptr);
}

TEST(ValueConvert, TextWithoutMemoryIsNull) {
  const u64 number = 1;
  (void)TextOf(QVX_TYPE_TIME, s32{1});  // the C library's own allocations for the time zone
  for (const s32 type : {1, 2, 4, 5, 7, 9, 11, 13, 15, 20, 21, 22, 23, 26, 27}) {
    astring* text = nullptr;
    {
      const FailNthAllocation fault(1);
      text = NVSuptXValToASCII(type, &number);
    }
    EXPECT_EQ(text, nullptr) << type;
    free(text);
  }
}

TEST(ValueConvert, ExportedCallsReachTheSameFunctions) {
  astring entry[] = "speed=12";
  astring* vector[] = {entry};
  u32 value = 0;
  EXPECT_EQ(PXTNVSASCIIToXVal("11", QVX_TYPE_U32, &value), SM_STATUS_SUCCESS);
  EXPECT_EQ(value, 11u);
  EXPECT_EQ(PXTNVSNVPValToXVal(1, vector, "speed", QVX_TYPE_U32, &value), SM_STATUS_SUCCESS);
  EXPECT_EQ(value, 12u);
  EXPECT_EQ(Taken(PXTNVSXValToASCII(QVX_TYPE_U32, &value)), "12");
}

}  // namespace
}  // namespace qvx
