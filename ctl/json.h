// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_JSON_H
#define QVX_CTL_JSON_H

#include <nlohmann/json.hpp>

#include "ctl/output.h"

namespace qvx::ctl {

using Json = nlohmann::ordered_json;

// One line; bytes that are no UTF-8 become U+FFFD.
inline void PrintJson(const Json& json) {
  Print(json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
}

}  // namespace qvx::ctl

#endif
