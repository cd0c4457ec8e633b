// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20::cimxml {

/// A value that is being read: of a property, a qualifier, a parameter or a result.
struct TValueFrame {
  std::string name;  ///< Of the thing that has the value.
  ECIMType type = ECIMType::kString;
  bool isArray = false;
  bool isStrict = false;  ///< What cannot be read is an error.
  bool isSet = false;     ///< A value element was there; NULL has none.
  TCIMValue scalar;
  TCIMValue::TArray elements;

  void Add(TCIMValue value) {
    if (value.GetType() == ECIMType::kReference) type = ECIMType::kReference;
    if (isArray) {
      elements.push_back(std::move(value));
    } else {
      scalar = std::move(value);
      isSet = true;
    }
  }

  TCIMValue Take() {
    if (!isSet) return TCIMValue::Null(type, isArray);
    return isArray ? TCIMValue::Array(type, std::move(elements)) : std::move(scalar);
  }
};

}  // namespace NZEPQEL20::cimxml
