// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_WIDE_TRANSCODE_H
#define QVX_TEXT_WIDE_TRANSCODE_H

#include <cstddef>

#include "qvxcs/types.h"

namespace qvx {

// The greater part of most texts at once: runs of ASCII, of one- and two-byte characters (Latin,
// Greek, Cyrillic, Hebrew, Arabic), and of well-formed three-byte ones (CJK). The result is what
// transcode.cpp makes of the same characters one by one; where a run ends, and why, is left to
// transcode.cpp.

// How far a run went.
struct Run {
  size_t read = 0;
  size_t written = 0;
};

// `count` elements may be read, none of them 0, and `room` written; exactly `written` are. With a
// null `to` they only count. A run of 0 says nothing about the text.
Run WidenRun(ustring* to, size_t room, const astring* from, size_t count);
Run NarrowRun(astring* to, size_t room, const ustring* from, size_t count);

}  // namespace qvx

#endif
