// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_FRAME_FORKS_H
#define QVX_FRAME_FORKS_H

namespace qvx {

// From now on a child of fork starts with the library's own locks free, whichever thread of the
// parent held them. Ends by itself when the image is unloaded.
void WatchForks();

}  // namespace qvx

#endif
