// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/oem.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <string>

#include "qvxcs/memory.h"
#include "qvxcs/paths.h"

#include "base/heap.h"
#include "base/layout.h"
#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/processes.h"

namespace qvx {
namespace {

constexpr char kChassisFile[] = "/etc/cim/zarn/plinthos/vexilon//qvx/ini/qvcli32.ini";
constexpr char kOemFile[] = "/etc/cim/zarn/plinthos/vexilon//qvx/ini/oem.ini";

std::string Text(astring* text) {
  const HeapArray<astring> owner(text);
  return text == nullptr ? "(null)" : text;
}

TEST(Oem, FlagZeroChoosesTheOwnBrand) {
  EXPECT_EQ(Text(PXTGetOEMINIPathFile("acme", "x.ini", "0")),
            "/etc/cim/zarn/plinthos/vexilon/wwwroot/oem/acme/ini/zarn/x.ini");
}

TEST(Oem, AnyOtherFlagChoosesDebrand) {
  for (const char* flag : {"00", "1", "", " 0", "0 "}) {
    EXPECT_EQ(Text(PXTGetOEMINIPathFile("acme", "x.ini", flag)),
              "/etc/cim/zarn/plinthos/vexilon/wwwroot/oem/acme/ini/debrand/x.ini")
        << flag;
  }
}

TEST(Oem, PathTakesWhateverRoomItNeeds) {
  const std::string oem(5000, 'o');
  const std::string file(6000, 'f');
  EXPECT_EQ(Text(PXTGetOEMINIPathFile(oem.c_str(), file.c_str(), "1")),
            "/etc/cim/zarn/plinthos/vexilon/wwwroot/oem/" + oem + "/ini/debrand/" + file);
  EXPECT_EQ(Text(PXTGetOEMINIPathFile("", "", "0")),
            "/etc/cim/zarn/plinthos/vexilon/wwwroot/oem//ini/zarn/");
}

TEST(Oem, PathWithANullArgumentIsNull) {
  EXPECT_EQ(PXTGetOEMINIPathFile(nullptr, "x.ini", "0"), nullptr);
  EXPECT_EQ(PXTGetOEMINIPathFile("acme", nullptr, "0"), nullptr);
  EXPECT_EQ(PXTGetOEMINIPathFile("acme", "x.ini", nullptr), nullptr);
}

TEST(Oem, PathWithoutMemoryIsNull) {
  const test::FailNthAllocation fault(1);
  EXPECT_EQ(SUPTIntfGetOEMINIPathFile("acme", "x.ini", "0"), nullptr);
}

TEST(Oem, ChassisIsModularForExactlyTrue) {
  ASSERT_EQ(ModuleAttach(), 1);
  test::WriteFile(kChassisFile, "[blade]\nblade=true\n");
  EXPECT_EQ(PXTCheckModularChassis(), 1u);
}

TEST(Oem, ChassisIsNotModularForAnyOtherValue) {
  ASSERT_EQ(ModuleAttach(), 1);
  for (const char* value : {"TRUE", "True", "true ", " true", "truex", "1", "yes", "", "true\r"}) {
    test::WriteFile(kChassisFile, std::string("[blade]\nblade=") + value + "\n");
    EXPECT_EQ(PXTCheckModularChassis(), 0u) << value;
  }
}

TEST(Oem, ChassisIsNotModularWithoutFileSectionOrKey) {
  ASSERT_EQ(ModuleAttach(), 1);
  EXPECT_EQ(PXTCheckModularChassis(), 0u);
  test::WriteFile(kChassisFile, "[other]\nblade=true\n");
  EXPECT_EQ(PXTCheckModularChassis(), 0u);
  test::WriteFile(kChassisFile, "[blade]\nBlade=true\n");
  EXPECT_EQ(PXTCheckModularChassis(), 0u);
}

TEST(Oem, ChassisIsNotModularWhileTheLibraryIsNotAttached) {
  test::WriteFile(kChassisFile, "[blade]\nblade=true\n");
  EXPECT_EQ(PXTCheckModularChassis(), 0u);
}

TEST(Oem, ChassisIsNotModularWithoutMemory) {
  ASSERT_EQ(ModuleAttach(), 1);
  test::WriteFile(kChassisFile, "[blade]\nblade=true\n");
  const u32 met =
      test::FailEachAllocation(CheckModularChassis, [](u32 modular) { EXPECT_EQ(modular, 0u); });
  EXPECT_GE(met, 1u);
}

TEST(Oem, SchemaPrefixIsTheConfiguredOne) {
  ASSERT_EQ(ModuleAttach(), 1);
  test::WriteFile(kOemFile, "[data]\nadschemaprefix=acme\n");
  EXPECT_EQ(Text(PXTGetOEMADSchemaPrefix()), "acme");
  const std::string longest(255, 'p');
  test::WriteFile(kOemFile, "[data]\nadschemaprefix=" + longest + "\n");
  EXPECT_EQ(Text(PXTGetOEMADSchemaPrefix()), longest);
}

TEST(Oem, SchemaPrefixMayBeConfiguredEmpty) {
  ASSERT_EQ(ModuleAttach(), 1);
  test::WriteFile(kOemFile, "[data]\nadschemaprefix=\n");
  EXPECT_EQ(Text(PXTGetOEMADSchemaPrefix()), "");
}

TEST(Oem, SchemaPrefixIsZarnWithoutFileOrKey) {
  ASSERT_EQ(ModuleAttach(), 1);
  EXPECT_EQ(Text(PXTGetOEMADSchemaPrefix()), "zarn");
  test::WriteFile(kOemFile, "[data]\nother=acme\n");
  EXPECT_EQ(Text(PXTGetOEMADSchemaPrefix()), "zarn");
  test::WriteFile(kOemFile, "[date]\nadschemaprefix=acme\n");
  EXPECT_EQ(Text(PXTGetOEMADSchemaPrefix()), "zarn");
}

TEST(Oem, SchemaPrefixIsZarnWhenTheConfiguredOneDoesNotFit) {
  ASSERT_EQ(ModuleAttach(), 1);
  test::WriteFile(kOemFile, "[data]\nadschemaprefix=" + std::string(256, 'p') + "\n");
  EXPECT_EQ(Text(PXTGetOEMADSchemaPrefix()), "zarn");
}

TEST(Oem, SchemaPrefixIsZarnWhileTheLibraryIsNotAttached) {
  test::WriteFile(kOemFile, "[data]\nadschemaprefix=acme\n");
  EXPECT_EQ(Text(PXTGetOEMADSchemaPrefix()), "zarn");
}

TEST(Oem, BothQuestionsWaitForTheLock) {
  ASSERT_EQ(ModuleAttach(), 1);
  test::WriteFile(kChassisFile, "[blade]\nblade=true\n");
  test::WriteFile(kOemFile, "[data]\nadschemaprefix=acme\n");
  const test::LockHolder other(kIPCFilePath);
  {
    const test::CountSleeps sleeps;
    EXPECT_EQ(PXTCheckModularChassis(), 0u);
    EXPECT_EQ(test::CountSleeps::Count(), 60000u);
  }
  const test::CountSleeps sleeps;
  EXPECT_EQ(Text(PXTGetOEMADSchemaPrefix()), "zarn");
  EXPECT_EQ(test::CountSleeps::Count(), 60000u);
}

TEST(Oem, SchemaPrefixIsNullOnlyWithoutItsOwnBlock) {
  ASSERT_EQ(ModuleAttach(), 1);
  test::WriteFile(kOemFile, "[data]\nadschemaprefix=acme\n");
  {
    const test::FailNthAllocation fault(1);
    EXPECT_EQ(GetOEMADSchemaPrefix(), nullptr);
  }
  HeapArray<astring> prefix;
  {
    const test::FailNthAllocation fault(2);
    prefix.reset(GetOEMADSchemaPrefix());
  }
  ASSERT_NE(prefix, nullptr);
  EXPECT_STREQ(prefix.get(), "zarn");
}

TEST(Oem, SchemaPrefixBlockHas256Bytes) {
  const HeapArray<astring> prefix(PXTGetOEMADSchemaPrefix());
  ASSERT_NE(prefix, nullptr);
  EXPECT_GE(malloc_usable_size(prefix.get()), 256u);
}

}  // namespace
}  // namespace qvx
