// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/param_node.h"

#include <gtest/gtest.h>

#include <string>

#include "qvxcs/cli_value.h"
#include "qvxcs/grow_string.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_buffer.h"

#include "support/alloc_fault.h"
#include "support/heap_use.h"
#include "support/long_text.h"
#include "xml/xml_buffer.h"

namespace qvx {
namespace {

using test::FailNthAllocation;

class Buffer {
 public:
  Buffer() : buffer_(PXMAllocBuf(4096, 0)) { EXPECT_NE(buffer_, nullptr); }
  ~Buffer() { (void)PXMFreeBuf(buffer_, 0); }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  void* get() { return buffer_; }
  [[nodiscard]] std::string Text() const { return static_cast<SSAStr*>(buffer_)->text; }

 private:
  void* buffer_;
};

constexpr u32 kOld = 10;
constexpr u32 kNew = 20;
constexpr u32 kValue = 30;

std::string ParamOf(const void* oldValue, const void* newValue, const void* value, s32 type = 5) {
  Buffer buffer;
  EXPECT_EQ(NVSuptBufCatSetCmdParam(buffer.get(), "Speed", oldValue, newValue, value, type),
            SM_STATUS_SUCCESS);
  return buffer.Text();
}

TEST(ParamNode, AttributesStandInTheOrderOldNewValue) {
  EXPECT_EQ(ParamOf(&kOld, &kNew, nullptr),
            "<Parameter name=\"Speed\" oldval=\"10\" newval=\"20\"/>");
  EXPECT_EQ(ParamOf(&kOld, &kNew, &kValue),
            "<Parameter name=\"Speed\" oldval=\"10\" newval=\"20\" value=\"30\"/>");
  EXPECT_EQ(ParamOf(nullptr, nullptr, &kValue), "<Parameter name=\"Speed\" value=\"30\"/>");
  EXPECT_EQ(ParamOf(&kOld, nullptr, &kValue),
            "<Parameter name=\"Speed\" oldval=\"10\" value=\"30\"/>");
  EXPECT_EQ(ParamOf(nullptr, &kNew, &kValue),
            "<Parameter name=\"Speed\" newval=\"20\" value=\"30\"/>");
}

TEST(ParamNode, WithoutAValueBothOthersAreRequired) {
  Buffer buffer;
  EXPECT_EQ(NVSuptBufCatSetCmdParam(buffer.get(), "Speed", &kOld, nullptr, nullptr, QVX_TYPE_U32),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(NVSuptBufCatSetCmdParam(buffer.get(), "Speed", nullptr, &kNew, nullptr, QVX_TYPE_U32),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(NVSuptBufCatSetCmdParam(buffer.get(), "Speed", nullptr, nullptr, nullptr, QVX_TYPE_U32),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(buffer.Text(), "");
}

TEST(ParamNode, NullBufferOrNameIsAnInvalidParameter) {
  Buffer buffer;
  EXPECT_EQ(NVSuptBufCatSetCmdParam(nullptr, "Speed", nullptr, nullptr, &kValue, QVX_TYPE_U32),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(NVSuptBufCatSetCmdParam(buffer.get(), nullptr, nullptr, nullptr, &kValue, QVX_TYPE_U32),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(buffer.Text(), "");
}

TEST(ParamNode, ValueWithoutTextIsLeftOut) {
  EXPECT_EQ(ParamOf(&kOld, &kNew, &kValue, 3), "<Parameter name=\"Speed\"/>");
  const char16_t wide[] = u"\u00E9";
  EXPECT_EQ(ParamOf(u"a", wide, u"c", QVX_TYPE_USTRING),
            "<Parameter name=\"Speed\" oldval=\"a\" value=\"c\"/>");
}

TEST(ParamNode, OnlyTheEscapedTypesAreEscaped) {
  EXPECT_EQ(ParamOf(nullptr, nullptr, "<\"", QVX_TYPE_ASTRING),
            "<Parameter name=\"Speed\" value=\"<\"\"/>");
  EXPECT_EQ(ParamOf(nullptr, nullptr, "<\"", QVX_TYPE_XML_ASTRING),
            "<Parameter name=\"Speed\" value=\"&lt;&quot;\"/>");
  EXPECT_EQ(ParamOf(nullptr, nullptr, u"&", QVX_TYPE_XML_USTRING),
            "<Parameter name=\"Speed\" value=\"&amp;\"/>");
  Buffer buffer;
  EXPECT_EQ(NVSuptBufCatSetCmdParam(buffer.get(), "a<b", nullptr, nullptr, &kValue, QVX_TYPE_U32),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "<Parameter name=\"a<b\" value=\"30\"/>");
}

TEST(ParamNode, TextsOutgrowTheFirstBlock) {
  const std::string text(1000, 'v');
  EXPECT_EQ(ParamOf(text.c_str(), "n", nullptr, QVX_TYPE_ASTRING),
            "<Parameter name=\"Speed\" oldval=\"" + text + "\" newval=\"n\"/>");
}

TEST(ParamNode, WithoutMemoryToBeginIsNoMemory) {
  Buffer buffer;
  u32 status = 0;
  {
    const FailNthAllocation fault(1);
    status =
        NVSuptBufCatSetCmdParam(buffer.get(), "Speed", nullptr, nullptr, &kValue, QVX_TYPE_U32);
  }
  EXPECT_EQ(status, SM_STATUS_NO_MEMORY);
  EXPECT_EQ(buffer.Text(), "");
}

TEST(ParamNode, ValueWithoutMemoryForItsTextIsLeftOut) {
  Buffer buffer;
  u32 status = 7;
  {
    const FailNthAllocation fault(2);
    status = NVSuptBufCatSetCmdParam(buffer.get(), "Speed", &kOld, &kNew, nullptr, QVX_TYPE_U32);
  }
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(buffer.Text(), "<Parameter name=\"Speed\" newval=\"20\"/>");
}

TEST(ParamNode, AppendWithoutMemorySucceedsAndWritesNothing) {
  const std::string text(300, 'v');
  for (const u32 nth : {3u}) {  // the attributes' growth
    Buffer buffer;
    u32 status = 7;
    {
      const FailNthAllocation fault(nth);
      status = NVSuptBufCatSetCmdParam(buffer.get(), "Speed", nullptr, nullptr, text.c_str(),
                                       QVX_TYPE_ASTRING);
    }
    EXPECT_EQ(status, SM_STATUS_SUCCESS) << nth;
    EXPECT_EQ(buffer.Text(), "") << nth;
  }
}

TEST(ParamNode, StatusElementHoldsASignedNumber) {
  Buffer buffer;
  NVSuptCatSMStatusNode(buffer.get(), -1, nullptr);
  NVSuptCatSMStatusNode(buffer.get(), 0, "all is well");
  NVSuptCatSMStatusNode(buffer.get(), INT32_MIN, "");
  EXPECT_EQ(buffer.Text(),
            "<SMStatus>-1</SMStatus>"
            "<SMStatus mssg=\"all is well\">0</SMStatus>"
            "<SMStatus mssg=\"\">-2147483648</SMStatus>");
}

TEST(ParamNode, StatusMessageWithoutMemoryIsLeftOut) {
  Buffer buffer;
  {
    const FailNthAllocation fault(1);
    NVSuptCatSMStatusNode(buffer.get(), 5, "message");
  }
  EXPECT_EQ(buffer.Text(), "<SMStatus>5</SMStatus>");
}

TEST(ParamNode, StatusForANullBufferLeavesNothingAllocatedAndOneForABufferIsWritten) {
  Buffer buffer;
  const std::string message(5000, 'm');  // if this large attribute is not freed, it shows
  const size_t before = test::HeapInUse();
  NVSuptCatSMStatusNode(nullptr, 5, message.c_str());
  NVSuptCatSMStatusNode(nullptr, 5, nullptr);
  EXPECT_EQ(test::HeapInUse(), before);
  NVSuptCatSMStatusNode(buffer.get(), 5, "m");
  EXPECT_EQ(buffer.Text(), "<SMStatus mssg=\"m\">5</SMStatus>");
}

TEST(ParamNode, ExportedCallsReachTheSameFunctions) {
  Buffer buffer;
  EXPECT_EQ(PXTNVSBufCatSetCmdParam(buffer.get(), "N", nullptr, nullptr, &kValue, QVX_TYPE_U32),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTNVSBufCatSetCmdParam(buffer.get(), "N", &kOld, nullptr, nullptr, QVX_TYPE_U32),
            SM_STATUS_INVALID_PARAMETER);
  PXTNVSCatSMStatusNode(buffer.get(), 1, "m");
  EXPECT_EQ(buffer.Text(), "<Parameter name=\"N\" value=\"30\"/><SMStatus mssg=\"m\">1</SMStatus>");
}

TEST(ParamNode, AnAttributeBeyond32BitsIsNullWithoutAnAllocation) {
  if (!test::kHasLongTexts) GTEST_SKIP();
  const test::LongText<astring> text((u64{1} << 32) - 4, 'a');  // with n, =, quotes, NUL 1 more
  const FailNthAllocation fault(1);
  EXPECT_EQ(QuotedAttribute("n", text.text()), nullptr);
  EXPECT_FALSE(FailNthAllocation::Fired());
}

}  // namespace
}  // namespace qvx
