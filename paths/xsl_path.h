// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_PATHS_XSL_PATH_H
#define QVX_PATHS_XSL_PATH_H

#include "qvxcs/types.h"

namespace qvx {

// All results are new heap texts.
astring* SUPTIntfGetXSLPathLocale(const astring* product, const astring* dir, const astring* file,
                                  const astring* locale, u8 flags, booln forwardSlashes);

// root / "template" / locale / dir / file in at most 255 characters; with `mustExist` null when
// there is no such file.
// An internal service without a caller in the library, held by its tests.
astring* SIGetXSLPath(const astring* root, const astring* dir, const astring* file,
                      const astring* locale, booln withTemplate, booln mustExist);

// As above for a locale ll_CC, which is looked up as ll/CC, then as ll.
// An internal service without a caller in the library, held by its tests.
astring* SIGetXSLPathLocalePermutate(const astring* root, const astring* dir, const astring* file,
                                     const astring* locale, booln withTemplate, booln mustExist);

// Every "\" of the text becomes "/".
void TurnBackslashes(astring* text);

// Every "\" becomes "/", every blank "%20".
astring* ConvertPathToURI(const astring* path);

}  // namespace qvx

#endif
