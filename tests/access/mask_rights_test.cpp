// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/mask_rights.h"

#include <gtest/gtest.h>

#include <string>

#include "qvxcs/access.h"

#include "frame/module.h"
#include "support/alloc_fault.h"
#include "tests/access/accounts.h"

namespace qvx {
namespace {

constexpr u32 kNoReason = 77;
constexpr char kIniFile[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/qvprod.ini";
constexpr char kOemFolder[] = "/etc/cim/zarn/plinthos/vexilon/wwwroot/oem/acme/ini/zarn";

class MaskRights : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ModuleAttach(), 1);
    test::Run(std::string("mkdir -p ") + kOemFolder);
    test::WriteFile(kIniFile, "[OEM]\nname=acme\n");
  }

  static void OemFile(const std::string& data) {
    test::WriteFile(std::string(kOemFolder) + "/svcoem.ini", "[data]\n" + data);
  }

  u32 Mask(u32 rights) {
    reason = kNoReason;
    return PXTMaskProgramRights(rights, "svc", "qvprod.ini", &reason);
  }

  u32 reason = kNoReason;
};

TEST_F(MaskRights, AnAdministratorIsReturnedWithoutReadingAFile) {
  ASSERT_EQ(unlink(kIniFile), 0);
  EXPECT_EQ(Mask(QVX_PRIV_ADMINISTRATOR), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(Mask(QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR),
            u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
  EXPECT_EQ(PXTMaskProgramRights(QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR, nullptr, nullptr, nullptr),
            u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
  EXPECT_EQ(reason, kNoReason);
}

TEST_F(MaskRights, TheOverrideRaisesAnyLevelAndDropsTheHighBits) {
  OemFile("accessoverride=true\naccessmask=0\n");
  EXPECT_EQ(Mask(1), 7u);
  EXPECT_EQ(Mask(0), 7u);
  EXPECT_EQ(Mask(0x50003), 7u);
  EXPECT_EQ(reason, kNoReason);
}

TEST_F(MaskRights, OnlyExactlyTrueOverrides) {
  for (const char* text : {"True", "TRUE", "1", "true ", " true", "truest", ""}) {
    OemFile(std::string("accessoverride=") + text + "\naccessmask=3\n");
    EXPECT_EQ(Mask(1), 1u) << text;
  }
}

TEST_F(MaskRights, AUserKeepsItsRightsOnlyWithMaskThree) {
  OemFile("accessmask=3\n");
  EXPECT_EQ(Mask(QVX_PRIV_ROOT | QVX_PRIV_USER), u32{QVX_PRIV_ROOT | QVX_PRIV_USER});
  EXPECT_EQ(reason, kNoReason);
  for (const char* mask : {"0", "1", "2", "4", "7", "-1"}) {
    OemFile(std::string("accessmask=") + mask + "\n");
    EXPECT_EQ(Mask(QVX_PRIV_ROOT | QVX_PRIV_USER), QVX_PRIV_ROOT) << mask;
    EXPECT_EQ(reason, QVX_MASKED_USER) << mask;
  }
}

TEST_F(MaskRights, APowerUserIsCutToTheMasksLowBitsOnlyUpToOne) {
  struct Case {
    const char* mask;
    u32 level;
    u32 reason;
  };
  const Case cases[] = {{"0", 0, QVX_MASKED_POWERUSER},
                        {"1", 1, kNoReason},
                        {"2", 3, kNoReason},
                        {"3", 3, kNoReason},
                        {"7", 3, kNoReason},
                        {"-1", 3, kNoReason},
                        {"-2", 2, kNoReason},
                        {"-3", 1, kNoReason},
                        {"-4", 0, QVX_MASKED_POWERUSER}};
  for (const Case& one : cases) {
    OemFile(std::string("accessmask=") + one.mask + "\n");
    EXPECT_EQ(Mask(QVX_PRIV_ROOT | QVX_PRIV_POWERUSER), QVX_PRIV_ROOT + one.level) << one.mask;
    EXPECT_EQ(reason, one.reason) << one.mask;
  }
}

TEST_F(MaskRights, OtherLevelsStay) {
  OemFile("accessmask=0\n");
  for (const u32 rights : {0u, 2u, 5u, u32{QVX_PRIV_ROOT}, 0x107u})
    EXPECT_EQ(Mask(rights), rights);
  EXPECT_EQ(reason, kNoReason);
}

TEST_F(MaskRights, AMaskThatIsNoNumberIsZero) {
  OemFile("accessmask=all\n");
  EXPECT_EQ(Mask(3), 0u);
  EXPECT_EQ(reason, QVX_MASKED_POWERUSER);
}

TEST_F(MaskRights, AMissingMaskIsNoAccessWithoutAReason) {
  OemFile("other=1\n");
  EXPECT_EQ(Mask(QVX_PRIV_ROOT | QVX_PRIV_USER), 0u);
  EXPECT_EQ(Mask(QVX_PRIV_ROOT | QVX_PRIV_POWERUSER), 0u);
  EXPECT_EQ(reason, kNoReason);
}

TEST_F(MaskRights, AMissingOemOrFileIsNoAccess) {
  EXPECT_EQ(Mask(QVX_PRIV_ROOT | QVX_PRIV_USER), 0u) << "the OEM's file is missing";
  test::WriteFile(kIniFile, "[OEM]\nother=acme\n");
  OemFile("accessmask=3\n");
  EXPECT_EQ(Mask(QVX_PRIV_ROOT | QVX_PRIV_USER), 0u) << "the OEM has no name";
  ASSERT_EQ(unlink(kIniFile), 0);
  EXPECT_EQ(Mask(QVX_PRIV_ROOT | QVX_PRIV_USER), 0u) << "the product's file is missing";
  EXPECT_EQ(reason, kNoReason);
}

TEST_F(MaskRights, AnOemNameOf255CharactersFitsAndOf256DoesNot) {
  const std::string name(255, 'o');
  const std::string folder = "/etc/cim/zarn/plinthos/vexilon/wwwroot/oem/" + name + "/ini/zarn";
  test::Run("mkdir -p " + folder);
  test::WriteFile(folder + "/svcoem.ini", "[data]\naccessmask=3\n");
  test::WriteFile(kIniFile, "[OEM]\nname=" + name + "\n");
  EXPECT_EQ(Mask(1), 1u);
  test::WriteFile(kIniFile, "[OEM]\nname=" + name + "o\n");
  EXPECT_EQ(Mask(1), 0u);
}

TEST_F(MaskRights, NullTextsAreNoAccess) {
  OemFile("accessmask=3\n");
  EXPECT_EQ(PXTMaskProgramRights(1, nullptr, "qvprod.ini", &reason), 0u);
  EXPECT_EQ(PXTMaskProgramRights(1, "svc", nullptr, &reason), 0u);
  EXPECT_EQ(reason, kNoReason);
}

TEST_F(MaskRights, ANullReasonIsNotStored) {
  OemFile("accessmask=0\n");
  EXPECT_EQ(PXTMaskProgramRights(QVX_PRIV_ROOT | QVX_PRIV_USER, "svc", "qvprod.ini", nullptr),
            QVX_PRIV_ROOT);
  EXPECT_EQ(PXTMaskProgramRights(QVX_PRIV_ROOT | QVX_PRIV_POWERUSER, "svc", "qvprod.ini", nullptr),
            QVX_PRIV_ROOT);
}

TEST_F(MaskRights, ThePrefixBeginsTheOemFilesName) {
  test::WriteFile(std::string(kOemFolder) + "/oem.ini", "[data]\naccessmask=3\n");
  EXPECT_EQ(PXTMaskProgramRights(1, "", "qvprod.ini", &reason), 1u);
  EXPECT_EQ(PXTMaskProgramRights(1, "svc", "qvprod.ini", &reason), 0u);
}

TEST_F(MaskRights, WithoutMemoryNothingIsRaised) {
  OemFile("accessmask=3\n");
  const u32 met = test::FailEachAllocation(
      [this] { return Mask(QVX_PRIV_ROOT | QVX_PRIV_USER); },
      [](u32 rights) {
        EXPECT_TRUE(rights == 0 || rights == u32{QVX_PRIV_ROOT | QVX_PRIV_USER}) << rights;
      });
  EXPECT_GE(met, 3u);
}

}  // namespace
}  // namespace qvx
