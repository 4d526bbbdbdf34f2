// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/transcode.h"

#include "text/locale_text.h"
#include "text/transcode.h"
#include "text/xml_escape.h"

// The names with "ASCII" and "Local" are UTF-8 converters too. The internal functions of these four
// names (text/locale_text.h) use the locale's encoding; the library calls them for its own texts.

u32 PXTUCS2StrToUTF8Str(astring* out, u32* size, const ustring* text) {
  return qvx::UCS2StrToUTF8Str(out, size, text);
}
u32 PXTUnicodeToASCII(astring* out, u32* size, const ustring* text) {
  return qvx::UCS2StrToUTF8Str(out, size, text);
}
u32 PXTUnicodeToLocal(astring* out, u32* size, const ustring* text) {
  return qvx::UCS2StrToUTF8Str(out, size, text);
}
u32 PXTUCS4StrToUTF8Str(astring* out, u32* size, const u32* text) {
  return qvx::UCS4StrToUTF8Str(out, size, text);
}
u32 PXTUTF8StrToUCS2Str(ustring* out, u32* size, const astring* text) {
  return qvx::UTF8StrToUCS2Str(out, size, text);
}
u32 PXTASCIIToUnicode(ustring* out, u32* size, const astring* text) {
  return qvx::UTF8StrToUCS2Str(out, size, text);
}
u32 PXTLocalToUnicode(ustring* out, u32* size, const astring* text) {
  return qvx::UTF8StrToUCS2Str(out, size, text);
}
u32 PXTUTF8StrToXMLUTF8Str(astring* out, u32* size, booln* escaped, const astring* text) {
  return qvx::UTF8StrToXMLUTF8Str(out, size, escaped, text);
}
u32 PXTUnicodeToEscape(astring* out, u32* size, const ustring* text) {
  return qvx::UnicodeToEscape(out, size, text);
}
astring* PXTGetXMLUTF8StrFromAStr(const astring* text, u32 passes) {
  return qvx::SUPTIntfGetXMLUTF8StrFromAStr(text, passes);
}
astring* PXTGetXMLUTF8StrFromUStr(const ustring* text, u32 passes) {
  return qvx::SUPTIntfGetXMLUTF8StrFromUStr(text, passes);
}
u32 PXTGetLocalLanguageID() { return qvx::GetLocalLanguageID(); }
