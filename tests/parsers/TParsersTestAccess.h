// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

/// Shows tests what the parsers keep to themselves.
struct TParsersTestAccess {
  template <typename TParser>
  static const std::string& GetCurrentElement(const TParser& parser) {
    return parser.m_currentElement;
  }
  template <typename TParser>
  static const std::string& GetCharacterData(const TParser& parser) {
    return parser.m_characterData;
  }
};
