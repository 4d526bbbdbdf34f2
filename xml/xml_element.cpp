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

// The element's tags alone.
bool TagsAreBeyondAnyBuffer(const Element& element) {
  return IsBeyondAnyBuffer(OpeningLength(element, 1) + ClosingLength(element));
}

bool IsWithin(const SSAStr& buffer, const void* text) {
  const auto begin = reinterpret_cast<uintptr_t>(buffer.text);
  const auto at = reinterpret_cast<uintptr_t>(text);
  return at >= begin && at - begin < buffer.capacity;
}

// Writes the pieces of a text one after another.
class TextWriter {
 public:
  explicit TextWriter(astring* to) : at_(to) {}
  TextWriter& Put(std::string_view text) {
    PutText(text.data(), text.size(), at_);
    at_ += text.size();
    return *this;
  }
  astring* End() const { return at_; }

 private:
  astring* at_;
};

// The end of a buffer, where an element is written in place, piece by piece. The element's texts
// may be the buffer's own: the block that they are in is kept until all of it is written.
class BufferEnd {
 public:
  BufferEnd(const Element& element, const void* value)
      : buffer_(element.buffer), element_(element), value_(value) {}

  // Where a piece of this many characters is to be written; null without enough memory.
  astring* Room(u64 length) {
    if (!SSAStrHasRoom(*buffer_, length)) Grow(length);
    return SSAStrHasRoom(*buffer_, length) ? buffer_->text + buffer_->length : nullptr;
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
    TextWriter out(place);
    out.Put("<").Put({element_.name, element_.nameLength});
    if (element_.attributes != nullptr) {
      out.Put(" ").Put({element_.attributes, element_.attributesLength});
    }
    Finish(out.Put(end).End());
  }
  void CatClosing() {
    astring* const place = Room(ClosingLength(element_));
    if (place == nullptr) return;
    TextWriter out(place);
    Finish(out.Put("</").Put({element_.name, element_.nameLength}).Put(">").End());
  }
  void Cat(const astring* text, size_t length) {
    astring* const place = Room(length);
    if (place != nullptr) Finish(TextWriter(place).Put({text, length}).End());
  }

 private:
  void Grow(u64 length) {
    if (old_ == nullptr) {
      old_.reset(GrowForElement(buffer_, element_.name, element_.attributes, value_, length));
    } else {
      (void)SSAStrMakeRoom(buffer_, length, &old_);
    }
  }

  SSAStr* buffer_;
  const Element& element_;
  const void* value_;
  HeapArray<astring> old_;
};

}  // namespace

astring* GrowForElement(SSAStr* buffer, const astring* name, const astring* attributes,
                        const void* value, u64 length) {
  const bool keeps =
      IsWithin(*buffer, name) || IsWithin(*buffer, attributes) || IsWithin(*buffer, value);
  HeapArray<astring> old;
  (void)SSAStrMakeRoom(buffer, length, keeps ? &old : nullptr);
  return old.release();
}

u32 CatTag(const Element& element, std::string_view end) {
  if (TagsAreBeyondAnyBuffer(element)) return SM_STATUS_NO_MEMORY;
  BufferEnd(element, nullptr).CatOpening(end);
  return SM_STATUS_SUCCESS;
}

u32 CatPieces(const Element& element, const astring* text, size_t length) {
  if (TagsAreBeyondAnyBuffer(element)) return SM_STATUS_NO_MEMORY;
  BufferEnd end(element, text);
  end.CatOpening(">");
  end.Cat(text, length);
  end.CatClosing();
  return SM_STATUS_SUCCESS;
}

// Deliberate: a text that cannot be converted is left out between its tags, and the call succeeds.
// Held by XmlBuffer.WideTextThatCannotBeConvertedLeavesTheElementEmpty.
u32 CatUnits(const Element& element, const ustring* text) {
  if (TagsAreBeyondAnyBuffer(element)) return SM_STATUS_NO_MEMORY;
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
  if (TagsAreBeyondAnyBuffer(element)) return SM_STATUS_NO_MEMORY;
  BufferEnd(element, nullptr).CatClosing();
  return SM_STATUS_SUCCESS;
}

}  // namespace qvx
