// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_REFERENCE_PARAM_VECTOR_MODEL_H
#define QVX_TESTS_REFERENCE_PARAM_VECTOR_MODEL_H

#include <optional>
#include <string>
#include <vector>

#include "qvxcs/types.h"

// Slow, obvious models of the parameter vectors. An entry is a whole string, of bytes or of 16-bit
// units alike; a null entry is nothing.
namespace qvx::test {

using ModelEntry = std::optional<std::u32string>;

// The text before the first "="; nothing when the entry is not well formed.
ModelEntry ModelParamName(const ModelEntry& entry);
ModelEntry ModelParamValue(const ModelEntry& entry);

// By bytes; letters fold from A to Z only.
s32 ModelParamIndex8(s32 count, const std::vector<ModelEntry>& entries, const std::u32string& name,
                     booln ignoreCase);

// By pairs of units, over twice the name's length: after the terminators of the search name and
// of each entry the units of `behind` are read.
s32 ModelParamIndex16(s32 count, const std::vector<ModelEntry>& entries, const std::u32string& name,
                      const std::u32string& behind, booln ignoreCase);

}  // namespace qvx::test

#endif
