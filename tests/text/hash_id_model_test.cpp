// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "support/guard_buffer.h"
#include "text/hash_id.h"

namespace {

using qvx::test::GuardBuffer;

constexpr u32 kOperations = 5000;

// The identifiers in use as a set: no bits, no words but where the table's own rules name them.
class Model {
 public:
  explicit Model(u32 size) : size_(size) {}
  u32 Acquire() {
    for (u32 id = 1; id < WholeWords() * 32; ++id) {
      if (used_.insert(id).second) return id;
    }
    return 0;
  }
  [[nodiscard]] s32 Verify(u32 id) const { return used_.count(id) != 0 ? 0 : -1; }
  s32 Release(u32 id) { return used_.erase(id) != 0 ? 0 : -1; }
  [[nodiscard]] u32 Max() const {
    u32 greatest = 0;
    for (const u32 id : used_) {
      if (id < WholeWords() * 32) greatest = id;
    }
    return greatest;
  }
  // The next identifier after the cursor, which is moved to it.
  u32 Next(u32* word, u32* bit) const {
    for (const u32 id : used_) {
      const u32 idWord = id / 32;
      const u32 idBit = id % 32;
      if (id == 0 || idWord >= WholeWords() || idWord < *word) continue;
      if (idWord == *word ? idBit <= *bit : idBit < *bit) continue;
      *word = idWord;
      *bit = idBit;
      return id;
    }
    return 0;
  }
  void Use(u32 id) { used_.insert(id); }
  [[nodiscard]] u32 size() const { return size_; }

 private:
  [[nodiscard]] u32 WholeWords() const { return size_ / 4; }
  u32 size_;
  std::set<u32> used_;
};

class HashIdModel : public testing::Test {
 protected:
  u32 Below(u32 limit) { return static_cast<u32>(next_() % limit); }
  // An identifier of the table, or one just beyond it.
  u32 AnyId(const Model& model) { return Below(model.size() * 8 + 3); }
  void Step(Model& model, u8* table) {
    const u32 size = model.size();
    const u32 id = AnyId(model);
    switch (Below(6)) {
      case 0:
      case 1:
        ASSERT_EQ(qvx::AcquireHashID(table, size), model.Acquire());
        break;
      case 2:
        ASSERT_EQ(qvx::ReleaseHashID(table, size, id), model.Release(id)) << id;
        break;
      case 3:
        ASSERT_EQ(qvx::VerifyHashID(table, size, id), model.Verify(id)) << id;
        break;
      case 4:
        ASSERT_EQ(qvx::GetMaxInUseID(table, size), model.Max());
        break;
      default:
        ASSERT_NO_FATAL_FAILURE(ExpectSameNext(model, table));
    }
  }
  void ExpectSameNext(const Model& model, u8* table) {
    u32 word = Below(model.size() / 4 + 2);
    u32 bit = Below(34);
    u32 modelWord = word;
    u32 modelBit = bit;
    if (Below(3) == 0) {
      modelWord = modelBit = 0;
      ASSERT_EQ(qvx::FindFirstHashID(table, model.size(), &word, &bit),
                model.Next(&modelWord, &modelBit));
    } else {
      ASSERT_EQ(qvx::FindNextHashID(table, model.size(), &word, &bit),
                model.Next(&modelWord, &modelBit));
    }
    ASSERT_EQ(word, modelWord);
    ASSERT_EQ(bit, modelBit);
  }
  std::mt19937 next_{11};
};

// Tables filled to different degrees, a partial last word's bits in use too.
TEST_F(HashIdModel, AnyOrderOfOperationsAgreesWithASet) {
  for (u32 done = 0; done < kOperations;) {
    const u32 size = Below(30);
    GuardBuffer<u8> bytes(size);
    Model model(size);
    ASSERT_EQ(qvx::ClearHashTable(bytes.data(), size), 0u);
    for (u32 filled = Below(size * 4 + 1); filled > 0; --filled) {
      const u32 id = Below(size * 8);
      bytes[id / 8] = static_cast<u8>(bytes[id / 8] | 1u << id % 8);
      model.Use(id);
    }
    for (u32 step = 0; step < 50; ++step, ++done)
      ASSERT_NO_FATAL_FAILURE(Step(model, bytes.data())) << "size " << size;
    ASSERT_TRUE(bytes.FrontUntouched());
  }
}

TEST_F(HashIdModel, BytesNeededHoldTheBitsAndNotOneByteMore) {
  for (u32 input = 0; input < kOperations; ++input) {
    const u64 count = next_() >> Below(32);
    const u64 bytes = qvx::HashTableBytesNeeded(static_cast<u32>(count));
    ASSERT_GE(bytes * 8, count);
    ASSERT_LT(bytes * 8, count + 8);
  }
}

}  // namespace
