// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/role_map_error.h"

#include <gtest/gtest.h>

namespace qvx {
namespace {

TEST(RoleMapError, EachCodeHasItsCommandLogIdentifier) {
  struct Case {
    int code;
    unsigned long identifier;
  };
  const Case cases[] = {{1, 0x1718}, {2, 0x1717}, {3, 0x171B}, {4, 0x1719},
                        {5, 0x171A}, {6, 0x171C}, {0, 0x170C}, {7, 0x170C}};
  for (const Case& one : cases) {
    const QVXRoleMapFileReaderException fault(static_cast<fileReadErrorCode>(one.code), 1);
    EXPECT_EQ(fault.MapErrorCodeToCmdId(), one.identifier) << one.code;
  }
}

TEST(RoleMapError, BeginsWithoutALine) {
  const QVXRoleMapFileReaderException fault;
  EXPECT_EQ(fault.GetLineNumber(), 0u);
  EXPECT_EQ(fault.MapErrorCodeToCmdId(), 0x170Cu);
}

TEST(RoleMapError, CarriesCodeAndLineAndIsCaughtAsItsBase) {
  try {
    throw QVXRoleMapFileReaderException(RoleInvalidRole, 17);
  } catch (const ZarnSupport::ZarnException& base) {
    const auto& fault = dynamic_cast<const QVXRoleMapFileReaderException&>(base);
    EXPECT_EQ(fault.getErrorCode(), RoleInvalidRole);
    EXPECT_EQ(fault.GetLineNumber(), 17u);
  }
}

}  // namespace
}  // namespace qvx
