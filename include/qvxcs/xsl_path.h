/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_XSL_PATH_H
#define QVXCS_XSL_PATH_H

/**
 * @file
 * The choice of the style sheet that renders XML for a product and a locale.
 *
 * Sheets lie below the style sheet root of paths.h, in a tree
 * "product/[template/][locale/]directory/file". The layer "template" is an OEM's: where it holds
 * the sheet, a small sheet is composed that includes it. A locale ll_CC is looked up as the
 * directories "ll/CC", then as "ll". Paths are cut at 255 characters, a composed sheet at 512.
 *
 * Nothing is locked: files are only looked for, never opened.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** Parts of a composed sheet; add those that are wanted. */
enum QVXSheetPart {
  QVX_SHEET_DECLARATION = 2, /**< the XML declaration */
  QVX_SHEET_OPENING_TAG = 4, /**< the opening tag */
  QVX_SHEET_CLOSING_TAG = 8  /**< the closing tag */
};

/**
 * Finds the best sheet, or composes one that includes it.
 *
 * Where "product/template/dir/file" does not exist, the result is a URI: of the locale's file, or
 * of "product/dir/file" without asking whether that exists. Blanks are written "%20", every
 * backslash is a "/".
 *
 * Where it exists, the result is a sheet's text: what `flags` asks for around up to three
 * `xsl:include` elements without anything between them, for the template's file, the locale's file
 * below the template, and the locale's "globals.xsl" below the template. The last two are looked
 * for under the locale, then under "en_US", and are left out where neither has them. Once "en_US"
 * was needed, the locale is not tried again.
 *
 * @param[in] product        the product's directory
 * @param[in] dir            the directory of the sheet
 * @param[in] file           the sheet's file name
 * @param[in] locale         the locale, at most 5 characters; NULL for "en_US"
 * @param[in] flags          sum of `QVXSheetPart`; other bits mean nothing
 * @param[in] forwardSlashes not 0: every backslash of the result becomes a "/"
 * @return the URI or the text; NULL when `product`, `dir` or `file` is NULL, the locale is longer,
 *         the style sheet root is not available, or without memory
 * @par Memory
 * The caller frees the text with `PXTFreeMem`.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * XSL Transformations 1.0 and Extensible Stylesheet Language 1.0, for the two namespaces.
 */
QVX_EXPORT qvx_astring* PXTGetXSLPathLocale(const qvx_astring* product, const qvx_astring* dir,
                                            const qvx_astring* file, const qvx_astring* locale,
                                            qvx_u8 flags, qvx_booln forwardSlashes);

QVX_END_DECLS

#endif
