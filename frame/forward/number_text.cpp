// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/number_text.h"

#include "text/char_class.h"
#include "text/number_text.h"
#include "text/time_text.h"
#include "text/uni_number.h"

u32 PXTIsASCIIIntNum(const astring* text, u32 allowSign) {
  return qvx::IsASCIIIntNum(text, allowSign);
}
u32 PXTIsASCIIHexNum(const astring* text, u32 lowerCase) {
  return qvx::IsASCIIHexNum(text, lowerCase);
}
u32 PXTIsASCIIOctalNum(const astring* text) { return qvx::IsASCIIOctalNum(text); }
u32 PXTIsASCIIAlpha(const astring* text) { return qvx::IsASCIIAlpha(text); }
u32 PXTIsASCIIAlphaNumeric(const astring* text) { return qvx::IsASCIIAlphaNumeric(text); }
u32 PXTIsASCIIAlphaNumericPlus(const astring* text, const astring* extra) {
  return qvx::IsASCIIAlphaNumericPlus(text, extra);
}
s32 PXTASCIIToSigned32(const astring* text) { return qvx::ASCIIToSigned32(text); }
u32 PXTASCIIToUnSigned32(const astring* text) { return qvx::ASCIIToUnSigned32(text); }
s64 PXTASCIIToSigned64(const astring* text) { return qvx::ASCIIToSigned64(text); }
u64 PXTASCIIToUnSigned64(const astring* text) { return qvx::ASCIIToUnSigned64(text); }
d64 PXTASCIIToDouble(const astring* text) { return qvx::ASCIIToDouble(text); }
booln PXTASCIIToBooln(const astring* text) { return qvx::ASCIIToBooln(text); }
booln PXTASCIIToBoolnV(const astring* text, u32* status) {
  return qvx::ASCIIToBoolnV(text, status);
}
u32 PXTASCIIToUnSigned32VT(const astring* text, u32 base, u32* status) {
  return qvx::ASCIIToUnSigned32VT(text, base, status);
}
s32 PXTASCIIToSigned32VT(const astring* text, u32 base, u32* status) {
  return qvx::ASCIIToSigned32VT(text, base, status);
}
u64 PXTASCIIToUnSigned64VT(const astring* text, u32 base, u32* status) {
  return qvx::ASCIIToUnSigned64VT(text, base, status);
}
s64 PXTASCIIToSigned64VT(const astring* text, u32 base, u32* status) {
  return qvx::ASCIIToSigned64VT(text, base, status);
}
s32 PXTSigned32ToASCII(astring* out, s32 value) { return qvx::Signed32ToASCII(out, value); }
s32 PXTUnSigned32ToASCII(astring* out, u32 value) { return qvx::UnSigned32ToASCII(out, value); }
void PXTUnSigned64ToASCII(astring* out, u64 value) { qvx::UnSigned64ToASCII(out, value); }
void PXTSigned64ToASCII(astring* out, s64 value) { qvx::Signed64ToASCII(out, value); }
void PXTDoubleToASCII(astring* out, d64 value) { qvx::DoubleToASCII(out, value); }
void PXTBoolnToASCII(astring* out, booln value) { qvx::BoolnToASCII(out, value); }
s32 PXTUniToSigned32(const ustring* text) { return qvx::UniToSigned32(text); }
u32 PXTUniToUnSigned32(const ustring* text) { return qvx::UniToUnSigned32(text); }
s64 PXTUniToSigned64(const ustring* text) { return qvx::UniToSigned64(text); }
u64 PXTUniToUnSigned64(const ustring* text) { return qvx::UniToUnSigned64(text); }
d64 PXTUniToDouble(const ustring* text) { return qvx::UniToDouble(text); }
s32 PXTUniDoubleToStr(ustring* out, u32* size, d64 value, s32 precision) {
  return qvx::UniDoubleToStr(out, size, value, precision);
}
s32 PXTUniUnSigned32ToStr(ustring* out, u32* size, u32 value, s32 base) {
  return qvx::UniUnSigned32ToStr(out, size, value, base);
}
s32 PXTUniSigned32ToStr(ustring* out, u32* size, s32 value, s32 base) {
  return qvx::UniSigned32ToStr(out, size, value, base);
}
s32 PXTTimeToAStr(astring* out, time_t time) { return qvx::TimeToAStr(out, time); }
s32 PXTUniTimeToStr(ustring* out, u32* size, time_t time) {
  return qvx::UniTimeToStr(out, size, time);
}
void PXTDSTFix(time_t* time) { qvx::DSTFix(time); }
