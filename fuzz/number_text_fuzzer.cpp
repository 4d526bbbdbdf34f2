// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: base, room and precision, one a line, then the text. The number that the text holds is
// also written, as numbers of every kind and as a time.
#include <cmath>
#include <cstring>
#include <ctime>
#include <string>

#include "qvxcs/number_text.h"
#include "qvxcs/status.h"

#include "fuzz/fuzz_support.h"
#include "reference/number_model.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Input;
using qvx::fuzz::Require;
using qvx::fuzz::Text;
using qvx::test::ModelNumber;

constexpr u32 kMostRoom = 1500;
constexpr u32 kMostPrecision = 300;
// For longer texts the model knows the status, but not the value to which a number above 64 bits is
// cut.
constexpr size_t kModelDigits = 15;

Block<ustring> Widened(const std::string& text) {
  Block<ustring> units(text.size() + 1);
  for (size_t at = 0; at < text.size(); ++at) {
    units[at] = static_cast<u8>(text[at]);
  }
  units[text.size()] = 0;
  return units;
}

bool IsAscii(const std::string& text) {
  for (const char each : text) {
    if (static_cast<u8>(each) > 0x7F) return false;
  }
  return true;
}

bool Same(d64 first, d64 second) {
  return (std::isnan(first) && std::isnan(second)) || first == second;
}

void CheckTests(astring* given, const std::string& text) {
  for (const u32 flag : {0u, 1u}) {
    Require(PXTIsASCIIIntNum(given, flag) == qvx::test::ModelIsInteger(text, flag != 0), "integer");
    Require(PXTIsASCIIHexNum(given, flag) == qvx::test::ModelIsHex(text, flag != 0), "hexadecimal");
  }
  Require(PXTIsASCIIOctalNum(given) == qvx::test::ModelIsOctal(text), "octal");
  const bool letters = PXTIsASCIIAlpha(given) == SM_STATUS_SUCCESS;
  const bool either = PXTIsASCIIAlphaNumeric(given) == SM_STATUS_SUCCESS;
  Require(!letters || either, "letters are letters and digits");
  Require(!either || PXTIsASCIIAlphaNumericPlus(given, "_") == SM_STATUS_SUCCESS,
          "letters and digits are so with more characters allowed");
  Require((PXTIsASCIIAlphaNumericPlus(given, given) == SM_STATUS_SUCCESS) == !text.empty(),
          "a text consists of its own characters");
}

void Check32(astring* given, const std::string& text, u32 base) {
  u32 status = 7;
  const u32 plain = PXTASCIIToUnSigned32VT(given, base, &status);
  const ModelNumber expected = qvx::test::ModelTo32(text, base, false);
  Require(status == expected.status, "the unsigned 32-bit status is the model's");
  u32 signedStatus = 7;
  const s32 asSigned = PXTASCIIToSigned32VT(given, base, &signedStatus);
  const ModelNumber expectedSigned = qvx::test::ModelTo32(text, base, true);
  Require(signedStatus == expectedSigned.status, "the signed 32-bit status is the model's");
  if (text.size() > kModelDigits) return;
  Require(plain == expected.value, "the unsigned 32-bit value is the model's");
  Require(static_cast<u32>(asSigned) == expectedSigned.value,
          "the signed 32-bit value is the model's");
  const u32 decimal = static_cast<u32>(qvx::test::ModelDecimal64(text, "+-"));
  Require(PXTASCIIToUnSigned32(given) == decimal, "the plain 32-bit value is the model's");
  Require(static_cast<u32>(PXTASCIIToSigned32(given)) == decimal, "signed, it has the same bits");
}

void Check64(astring* given, const std::string& text, u32 base) {
  u32 status = 7;
  const ModelNumber expected = qvx::test::ModelTo64(text, base, false);
  Require(PXTASCIIToUnSigned64VT(given, base, &status) == expected.value,
          "the unsigned 64-bit value is the model's");
  Require(status == expected.status, "the unsigned 64-bit status is the model's");
  const ModelNumber expectedSigned = qvx::test::ModelTo64(text, base, true);
  Require(static_cast<u64>(PXTASCIIToSigned64VT(given, base, &status)) == expectedSigned.value,
          "the signed 64-bit value is the model's");
  Require(status == expectedSigned.status, "the signed 64-bit status is the model's");
  Require(PXTASCIIToUnSigned64(given) == qvx::test::ModelDecimal64(text, "+"), "plain, unsigned");
  Require(static_cast<u64>(PXTASCIIToSigned64(given)) == qvx::test::ModelDecimal64(text, "+-"),
          "plain, signed");
}

void CheckOthers(astring* given, const std::string& text) {
  u32 status = 7;
  const ModelNumber boolean = qvx::test::ModelToBoolean(text);
  Require(PXTASCIIToBoolnV(given, &status) == boolean.value && status == boolean.status,
          "the boolean is the model's");
  Require(PXTASCIIToBooln(given) == boolean.value, "with and without status alike");
  Require(Same(PXTASCIIToDouble(given), strtod(given, nullptr)), "a double is the C library's");
}

// 16-bit ASCII text reads as the 8-bit text does; the C locale has no other characters.
void CheckWideReads(astring* given, const std::string& text) {
  Block<ustring> units = Widened(text);
  const bool ascii = IsAscii(text);
  Require(PXTUniToSigned32(units.data()) == (ascii ? PXTASCIIToSigned32(given) : 0), "s32");
  Require(PXTUniToUnSigned32(units.data()) == (ascii ? PXTASCIIToUnSigned32(given) : 0), "u32");
  Require(PXTUniToSigned64(units.data()) == (ascii ? PXTASCIIToSigned64(given) : 0), "s64");
  Require(PXTUniToUnSigned64(units.data()) == (ascii ? PXTASCIIToUnSigned64(given) : 0), "u64");
  Require(Same(PXTUniToDouble(units.data()), ascii ? PXTASCIIToDouble(given) : 0.0), "d64");
}

void CheckWrites(u64 value) {
  const std::string unsigned64 = std::to_string(value);
  const std::string signed64 = std::to_string(static_cast<s64>(value));
  const std::string unsigned32 = std::to_string(static_cast<u32>(value));
  const std::string signed32 = std::to_string(static_cast<s32>(value));
  Block<astring> u64Room(unsigned64.size() + 1);
  PXTUnSigned64ToASCII(u64Room.data(), value);
  Require(unsigned64 == u64Room.data(), "an unsigned 64-bit number is written");
  Block<astring> s64Room(signed64.size() + 1);
  PXTSigned64ToASCII(s64Room.data(), static_cast<s64>(value));
  Require(signed64 == s64Room.data(), "a signed 64-bit number is written");
  Block<astring> u32Room(unsigned32.size() + 1);
  Require(PXTUnSigned32ToASCII(u32Room.data(), static_cast<u32>(value)) ==
                  static_cast<s32>(unsigned32.size()) &&
              unsigned32 == u32Room.data(),
          "an unsigned 32-bit number is written");
  Block<astring> s32Room(signed32.size() + 1);
  Require(PXTSigned32ToASCII(s32Room.data(), static_cast<s32>(value)) ==
                  static_cast<s32>(signed32.size()) &&
              signed32 == s32Room.data(),
          "a signed 32-bit number is written");
  Require(PXTASCIIToUnSigned64(u64Room.data()) == value, "an unsigned number comes back");
  Require(static_cast<u64>(PXTASCIIToSigned64(s64Room.data())) == value, "a signed one, too");
}

void CheckDouble(d64 value, u32 room) {
  const std::string whole = qvx::test::ModelDouble(value, 8);
  Text standing(std::string(room, 'x'));
  PXTDoubleToASCII(standing.data(), value);
  Require(room == 0 || whole.substr(0, room - 1) == standing.data(),
          "a double is cut to the standing text");
}

void CheckStored(s32 result, Block<ustring>& out, u32 given, u32 size, const std::string& text) {
  const qvx::test::ModelWide expected = qvx::test::ModelWiden(text, given);
  Require(result == 0, "a number is always stored, cut or measured");
  Require(size == expected.size, "the size is the model's");
  for (size_t at = 0; at < expected.stored.size(); ++at) {
    Require(out[at] == static_cast<u8>(expected.stored[at]), "the units are the model's");
  }
  Require(!expected.terminated || out[expected.stored.size()] == 0, "the text ends");
  Require(out.UntouchedFrom(expected.stored.size() + (expected.terminated ? 1 : 0)),
          "nothing is stored after it");
}

void CheckWideWrites(u64 bits, d64 value, u32 base, u32 room, u32 precision) {
  Block<ustring> doubleRoom(room / 2);
  u32 size = room;
  s32 result = PXTUniDoubleToStr(doubleRoom.data(), &size, value, static_cast<s32>(precision));
  CheckStored(result, doubleRoom, room, size,
              qvx::test::ModelDouble(value, static_cast<s32>(precision)));
  const std::string shortText =
      base == 2 ? "" : qvx::test::ModelShortText(static_cast<u32>(bits), static_cast<s32>(base));
  const u32 few = room % 12;
  Block<ustring> fewRoom(few / 2);
  size = few;
  result =
      PXTUniUnSigned32ToStr(fewRoom.data(), &size, static_cast<u32>(bits), static_cast<s32>(base));
  CheckStored(result, fewRoom, few, size, shortText);
}

// Nothing for a time without a text, or with a six-digit year.
std::string TimeText(time_t time) {
  struct tm local = {};
  if (localtime_r(&time, &local) == nullptr) return "";
  char beginning[64];
  (void)strftime(beginning, sizeof(beginning), "%a %b %e %H:%M:%S ", &local);
  const std::string text = beginning + std::to_string(s64{local.tm_year} + 1900);
  return text.size() > 25 ? "" : text;
}

void CheckTime(time_t time, u32 room) {
  const std::string expected = TimeText(time);
  Block<astring> out(26);
  const s32 result = PXTTimeToAStr(out.data(), time);
  Require(result == (expected.empty() ? -1 : 0), "a time has a text, or none");
  Require(result != 0 || expected == out.data(), "the text is that of the broken-down time");
  Require(out.UntouchedFrom(result == 0 ? expected.size() + 1 : 0), "nothing else is stored");

  const u32 units = room % 30;
  Block<ustring> wide(units + 1);
  u32 size = units;
  const s32 wideResult = PXTUniTimeToStr(wide.data(), &size, time);
  const bool fits = !expected.empty() && expected.size() <= units;
  Require(wideResult == (fits ? 0 : -1), "it is stored where the room is enough");
  Require(size == (fits ? expected.size() * 2 + 2 : units), "the size counts bytes");

  time_t fixed = time;
  PXTDSTFix(&fixed);
  Require(fixed == time || fixed - time == 3600, "daylight saving time is one hour");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  const u32 base = static_cast<u32>(input.Number());
  const u32 room = input.Below(kMostRoom);
  const u32 precision = input.Below(kMostPrecision);
  const std::string text = input.Rest().c_str();
  Text given(text);
  CheckTests(given.data(), text);
  Check32(given.data(), text, base);
  Check64(given.data(), text, base);
  CheckOthers(given.data(), text);
  CheckWideReads(given.data(), text);
  const u64 bits = qvx::test::ModelDecimal64(text, "+-");
  const d64 value = strtod(text.c_str(), nullptr);
  CheckWrites(bits);
  CheckDouble(value, room % 400);
  CheckWideWrites(bits, value, base, room, precision);
  CheckTime(static_cast<time_t>(bits), room);
  return 0;
}
