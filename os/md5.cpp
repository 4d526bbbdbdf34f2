// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/md5.h"

#include <openssl/md5.h>

#include <cstring>

namespace qvx {

static_assert(MD5_DIGEST_LENGTH == 16);

// The three calls are deprecated in favour of an interface through which a host's policy may refuse
// MD5; digests that hosts have stored must stay computable.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
s32 MD5Hash(const astring* text, u8* digest) {
  if (text == nullptr || digest == nullptr) return 0;
  MD5_CTX context;
  if (MD5_Init(&context) != 1 || MD5_Update(&context, text, strlen(text)) != 1) return 0;
  return MD5_Final(digest, &context);
}
#pragma GCC diagnostic pop

}  // namespace qvx
