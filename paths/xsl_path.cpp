// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "paths/xsl_path.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>

#include "qvxcs/xsl_path.h"

#include "base/heap.h"
#include "paths/locale.h"
#include "paths/product_paths.h"

namespace qvx {
namespace {

constexpr astring kDeclaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
constexpr astring kOpeningTag[] =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\" "
    "xmlns:fo=\"http://www.w3.org/1999/XSL/Format\">";
constexpr astring kClosingTag[] = "</xsl:stylesheet>";
constexpr astring kGlobalsFile[] = "globals.xsl";

constexpr u32 kDefaultLanguageId = 0;
constexpr size_t kLocaleLimit = 5;

// Text of at most Room - 1 characters; a piece is appended as far as it fits.
template <size_t Room>
struct BoundedText {
  astring text[Room] = {};
  size_t length = 0;

  void Append(const astring* piece) {
    const size_t taken = std::min(strlen(piece), Room - 1 - length);
    memcpy(text + length, piece, taken);
    length += taken;
    text[length] = '\0';
  }
};

using SheetPath = BoundedText<256>;
using SheetText = BoundedText<513>;

bool Exists(const SheetPath& path) {
  struct stat status = {};
  return stat(path.text, &status) == 0;
}

// Where a sheet is looked for.
struct Search {
  const astring* root;
  const astring* dir;
  bool withTemplate;
  bool mustExist;
};

bool FindFile(SheetPath* path, const Search& search, const astring* file, const astring* locale) {
  *path = SheetPath();
  path->Append(search.root);
  path->Append("/");
  if (search.withTemplate) path->Append("template/");
  if (locale != nullptr) {
    path->Append(locale);
    path->Append("/");
  }
  path->Append(search.dir);
  path->Append("/");
  path->Append(file);
  return !search.mustExist || Exists(*path);
}

bool FindLocaleFile(SheetPath* path, const Search& search, const astring* file,
                    const astring* locale) {
  if (strlen(locale) > kLocaleLimit) return false;
  BoundedText<kLocaleLimit + 1> directory;
  directory.Append(locale);
  astring* const mark = strchr(directory.text, '_');
  if (mark == nullptr) return FindFile(path, search, file, directory.text);
  *mark = '/';
  if (FindFile(path, search, file, directory.text)) return true;
  *mark = '\0';
  return FindFile(path, search, file, directory.text);
}

// Deliberate: once the default locale has been used as a substitute, whether or not the file was
// found, it is used from then on. Held by
// XslPath.GlobalsAreSoughtOnlyUnderTheStandInOnceItWasNeeded.
bool FindLocaleOrDefaultFile(SheetPath* path, const Search& search, const astring* file,
                             const astring** locale) {
  if (FindLocaleFile(path, search, file, *locale)) return true;
  *locale = SUPTIntfGetLocaleName(kDefaultLanguageId);
  return FindLocaleFile(path, search, file, *locale);
}

bool AppendInclude(SheetText* sheet, const SheetPath& path) {
  const HeapArray<astring> uri(ConvertPathToURI(path.text));
  if (!uri) return false;
  sheet->Append("<xsl:include href=\"");
  sheet->Append(uri.get());
  sheet->Append("\" />");
  return true;
}

astring* ComposeSheet(const Search& search, const SheetPath& templatePath, const astring* file,
                      const astring* locale, u8 flags) {
  SheetText sheet;
  if ((flags & QVX_SHEET_DECLARATION) != 0) sheet.Append(kDeclaration);
  if ((flags & QVX_SHEET_OPENING_TAG) != 0) sheet.Append(kOpeningTag);
  if (!AppendInclude(&sheet, templatePath)) return nullptr;
  SheetPath path;
  const astring* const includes[] = {file, kGlobalsFile};
  for (const astring* included : includes) {
    if (!FindLocaleOrDefaultFile(&path, search, included, &locale)) continue;
    if (!AppendInclude(&sheet, path)) return nullptr;
  }
  if ((flags & QVX_SHEET_CLOSING_TAG) != 0) sheet.Append(kClosingTag);
  return CopyText(sheet.text).release();
}

astring* PlainSheet(const Search& search, const astring* file, const astring* locale) {
  SheetPath path;
  if (!FindLocaleFile(&path, search, file, locale)) {
    (void)FindFile(&path, search, file, nullptr);
  }
  return ConvertPathToURI(path.text);
}

astring* SheetOrPath(const astring* base, const astring* dir, const astring* file,
                     const astring* locale, u8 flags) {
  const Search templates = {base, dir, true, true};
  SheetPath path;
  if (FindFile(&path, templates, file, nullptr)) {
    return ComposeSheet(templates, path, file, locale, flags);
  }
  return PlainSheet({base, dir, false, true}, file, locale);
}

}  // namespace

astring* SIGetXSLPath(const astring* root, const astring* dir, const astring* file,
                      const astring* locale, booln withTemplate, booln mustExist) {
  if (root == nullptr || dir == nullptr || file == nullptr) return nullptr;
  SheetPath path;
  const Search search = {root, dir, withTemplate != 0, mustExist != 0};
  return FindFile(&path, search, file, locale) ? CopyText(path.text).release() : nullptr;
}

astring* SIGetXSLPathLocalePermutate(const astring* root, const astring* dir, const astring* file,
                                     const astring* locale, booln withTemplate, booln mustExist) {
  if (root == nullptr || dir == nullptr || file == nullptr || locale == nullptr) return nullptr;
  SheetPath path;
  const Search search = {root, dir, withTemplate != 0, mustExist != 0};
  return FindLocaleFile(&path, search, file, locale) ? CopyText(path.text).release() : nullptr;
}

void TurnBackslashes(astring* text) { std::replace(text, text + strlen(text), '\\', '/'); }

astring* ConvertPathToURI(const astring* path) {
  if (path == nullptr) return nullptr;
  constexpr astring kBlank[] = "%20";
  constexpr size_t kBlankLength = sizeof(kBlank) - 1;
  const auto blanks = static_cast<u64>(std::count(path, path + strlen(path), ' '));
  HeapArray<astring> uri = AllocArray<astring>(u64{strlen(path)} + blanks * (kBlankLength - 1) + 1);
  if (!uri) return nullptr;
  astring* out = uri.get();
  for (; *path != '\0'; ++path) {
    if (*path == ' ') {
      memcpy(out, kBlank, kBlankLength);
      out += kBlankLength;
    } else {
      *out++ = *path == '\\' ? '/' : *path;
    }
  }
  *out = '\0';
  return uri.release();
}

astring* SUPTIntfGetXSLPathLocale(const astring* product, const astring* dir, const astring* file,
                                  const astring* locale, u8 flags, booln forwardSlashes) {
  if (product == nullptr || dir == nullptr || file == nullptr) return nullptr;
  if (locale == nullptr) locale = SUPTIntfGetLocaleName(kDefaultLanguageId);
  if (strlen(locale) > kLocaleLimit) return nullptr;
  const HeapArray<astring> root(SUPTIntfGetQVXXSLRootPath());
  if (!root) return nullptr;
  SheetPath base;
  base.Append(root.get());
  base.Append("/");
  base.Append(product);
  HeapArray<astring> result(SheetOrPath(base.text, dir, file, locale, flags));
  // Finds nothing while every path goes through ConvertPathToURI, which converts them whatever the
  // flag is.
  if (result && forwardSlashes != 0) TurnBackslashes(result.get());
  return result.release();
}

}  // namespace qvx
