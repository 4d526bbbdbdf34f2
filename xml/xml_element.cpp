// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/xml_element.h"

#include <cstdint>
#include <cstring>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "text/grow_string.h"
#include "text/transcode.h"

namespace qvx {
namespace {

u64 OpeningLength(const Element& element, u64 endLength) {
  const u64 blank = element.attributes == nullptr ? 0 : 1;
  return 1 + u64{element.nameLength} + blank + element.attributesLength + endLength;
}

// "<name attributes", without its end; the place after it.
inline astring* PutOpening(astring* to, const Element& element) {
  *to++ = '<';
  to = PutText(to, element.name, element.nameLength);
  if (element.attributes == nullptr) return to;
  *to++ = ' ';
  return PutText(to, element.attributes, element.attributesLength);
}

u64 ClosingLength(const Element& element) { return u64{element.nameLength} + 3; }

inline astring* PutClosing(astring* to, const Element& element) {
  *to++ = '<';
  *to++ = '/';
  to = PutText(to, element.name, element.nameLength);
  *to++ = '>';
  return to;
}

// An element of this length is larger than any buffer, even an empty one.
bool IsBeyondAnyBuffer(u64 length) { return length + 1 > kMaxSize; }

bool IsBeyondAnyBuffer(const Element& element) {
  return IsBeyondAnyBuffer(OpeningLength(element, 1) + ClosingLength(element));
}

bool IsWithin(const SSAStr& buffer, const void* text) {
  const auto begin = reinterpret_cast<uintptr_t>(buffer.text);
  const auto at = reinterpret_cast<uintptr_t>(text);
  return at >= begin && at - begin < buffer.capacity;
}

// The end of a buffer, where an element is written in place, piece by piece. The element's texts
// may be the buffer's own: the block that they are in is kept until all of it is written.
class BufferEnd {
 public:
  BufferEnd(const Element& element, const void* value)
      : buffer_(element.buffer), element_(element), value_(value) {}

  // Where a piece of this many characters is to be written; null without enough memory.
  astring* Room(u64 length) {
    if (!SSAStrHasRoom(*buffer_, length) && !Grow(length)) return nullptr;
    return buffer_->text + buffer_->length;
  }
  // The piece ends there.
  void Finish(astring* end) {
    *end = '\0';
    buffer_->length = static_cast<u32>(end - buffer_->text);
  }

  // Each of the next three adds a piece.

  // Deliberate: a piece for which the buffer cannot grow is dropped, and the element call still
  // succeeds. Held by XmlBuffer.PieceThatDoesNotFitInMemoryIsDroppedSilently.
  void CatOpening(std::string_view end) {
    astring* const place = Room(OpeningLength(element_, end.size()));
    if (place == nullptr) return;
    Finish(PutText(PutOpening(place, element_), end.data(), end.size()));
  }
  void CatClosing() {
    astring* const place = Room(ClosingLength(element_));
    if (place != nullptr) Finish(PutClosing(place, element_));
  }
  void Cat(const astring* text, size_t length) {
    astring* const place = Room(length);
    if (place != nullptr) Finish(PutText(place, text, length));
  }

 private:
  bool Grow(u64 length) {
    const bool keeps = old_ != nullptr || IsWithin(*buffer_, element_.name) ||
                       IsWithin(*buffer_, element_.attributes) || IsWithin(*buffer_, value_);
    return SSAStrMakeRoom(buffer_, length, keeps ? &old_ : nullptr) != nullptr;
  }

  SSAStr* buffer_;
  const Element& element_;
  const void* value_;
  HeapArray<astring> old_;
};

u64 WholeLength(const Element& element, u64 valueLength) {
  return OpeningLength(element, 1) + valueLength + ClosingLength(element);
}

}  // namespace

Element ElementOf(void* buffer, const astring* name, const astring* attributes) {
  return {static_cast<SSAStr*>(buffer), name, attributes, strlen(name),
          attributes == nullptr ? 0 : strlen(attributes)};
}

u32 CatWhole(const Element& element, const astring* text, size_t length) {
  const u64 whole = WholeLength(element, length);
  if (IsBeyondAnyBuffer(whole)) return SM_STATUS_NO_MEMORY;
  BufferEnd end(element, text);
  if (astring* at = end.Room(whole)) {
    at = PutOpening(at, element);
    *at++ = '>';
    end.Finish(PutClosing(PutText(at, text, length), element));
  }
  return SM_STATUS_SUCCESS;
}

u32 CatDecimal(const Element& element, const Decimal& number) {
  const u64 whole = WholeLength(element, number.length);
  if (IsBeyondAnyBuffer(whole)) return SM_STATUS_NO_MEMORY;
  BufferEnd end(element, nullptr);
  if (astring* at = end.Room(whole)) {
    at = PutOpening(at, element);
    *at++ = '>';
    end.Finish(PutClosing(PutDecimal(at, number), element));
  }
  return SM_STATUS_SUCCESS;
}

u32 CatTag(const Element& element, std::string_view end) {
  if (IsBeyondAnyBuffer(element)) return SM_STATUS_NO_MEMORY;
  BufferEnd(element, nullptr).CatOpening(end);
  return SM_STATUS_SUCCESS;
}

u32 CatPieces(const Element& element, const astring* text, size_t length) {
  if (IsBeyondAnyBuffer(element)) return SM_STATUS_NO_MEMORY;
  BufferEnd end(element, text);
  end.CatOpening(">");
  end.Cat(text, length);
  end.CatClosing();
  return SM_STATUS_SUCCESS;
}

// Deliberate: a text that cannot be converted is left out between its tags, and the call succeeds.
// Held by XmlBuffer.WideTextThatCannotBeConvertedLeavesTheElementEmpty.
u32 CatUnits(const Element& element, const ustring* text) {
  if (IsBeyondAnyBuffer(element)) return SM_STATUS_NO_MEMORY;
  u32 size = 1;
  if (text == nullptr || UCS2StrToUTF8Str(nullptr, &size, text) != SM_STATUS_SUCCESS) size = 1;
  u32 room = size - 1;  // the converter puts its NUL one byte beyond the room that it is offered
  BufferEnd end(element, text);
  end.CatOpening(">");
  astring* const place = room == 0 ? nullptr : end.Room(room);
  if (place != nullptr) {
    (void)UCS2StrToUTF8Str(place, &room, text);
    end.Finish(place + (size - 1));
  }
  end.CatClosing();
  return SM_STATUS_SUCCESS;
}

u32 CatClosingTag(const Element& element) {
  if (IsBeyondAnyBuffer(element)) return SM_STATUS_NO_MEMORY;
  BufferEnd(element, nullptr).CatClosing();
  return SM_STATUS_SUCCESS;
}

}  // namespace qvx
