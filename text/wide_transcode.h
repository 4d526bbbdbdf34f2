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
// transcode.cpp. A run of 0 says nothing about the text.

// The ASCII characters that a text begins with, at most `most`, before its length is known. Exactly
// as many elements are written; with a null `to` they are only counted. Reads no page beyond that
// of the last character or the terminator.
size_t WidenStart(ustring* to, const astring* text, size_t most);
size_t NarrowStart(astring* to, const ustring* text, size_t most);

// How far a run went.
struct Run {
  size_t read = 0;
  size_t written = 0;
};

// `count` elements may be read, none of them 0, and `room` written; exactly `written` are. With a
// null `to` they only count.
Run WidenRun(ustring* to, size_t room, const astring* from, size_t count);
Run NarrowRun(astring* to, size_t room, const ustring* from, size_t count);

}  // namespace qvx

#endif
