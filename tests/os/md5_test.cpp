// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/md5.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "qvxcs/ip_address.h"

#include "support/guard_buffer.h"

namespace {

using qvx::test::GuardBuffer;

std::string DigestOf(const std::string& text) {
  GuardBuffer<u8> digest(16);
  EXPECT_EQ(PXTMD5Hash(text.c_str(), digest.data()), 1);
  EXPECT_TRUE(digest.FrontUntouched());
  std::string shown;
  for (size_t at = 0; at < 16; ++at) {
    char pair[3];
    (void)snprintf(pair, sizeof(pair), "%02x", digest[at]);
    shown += pair;
  }
  return shown;
}

// The test suite of RFC 1321, appendix A.5.
TEST(MD5, DigestsAreThoseOfTheStandardsSuite) {
  EXPECT_EQ(DigestOf(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(DigestOf("a"), "0cc175b9c0f1b6a831c399e269772661");
  EXPECT_EQ(DigestOf("abc"), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(DigestOf("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
  EXPECT_EQ(DigestOf("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
  EXPECT_EQ(DigestOf("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
            "d174ab98d277d9f5a5611c2c9f419d9f");
  EXPECT_EQ(DigestOf("1234567890123456789012345678901234567890"
                     "1234567890123456789012345678901234567890"),
            "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(MD5, ANullTextOrDigestGivesZero) {
  GuardBuffer<u8> digest(16);
  EXPECT_EQ(qvx::MD5Hash(nullptr, digest.data()), 0);
  EXPECT_TRUE(digest.UntouchedFrom(0));
  EXPECT_EQ(qvx::MD5Hash("abc", nullptr), 0);
}

}  // namespace
