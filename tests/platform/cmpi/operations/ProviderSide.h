// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <deque>
#include <string>
#include <utility>

#include "platform/cmpi/abi/cmpi.h"

/// What providers for tests do with the objects of the interface.
namespace providerside {

/// A text as CMPI_chars; it must outlive the call.
inline const CMPIValue* Chars(const std::string& text) {
  return reinterpret_cast<const CMPIValue*>(text.c_str());
}
/// A value of any other type; it must outlive the call.
template <class T>
const CMPIValue* In(const T& value) {
  return reinterpret_cast<const CMPIValue*>(&value);
}
/// Empty for NULL.
inline std::string TextOf(const CMPIString* text) {
  return text == nullptr ? "" : text->ft->getCharPtr(text, nullptr);
}
inline std::string ClassOf(const CMPIObjectPath* path) {
  return TextOf(path->ft->getClassName(path, nullptr));
}
inline std::string PlaceOf(const CMPIObjectPath* path) {
  return TextOf(path->ft->getNameSpace(path, nullptr));
}
/// The key "Id"; empty when it is none or no text.
inline std::string IdOf(const CMPIObjectPath* path) {
  const CMPIData key = path->ft->getKey(path, "Id", nullptr);
  return key.type == CMPI_string ? TextOf(key.value.string) : "";
}

// A value that lasts as long as the library is loaded, as providers' static tables do.
template <class TValue>
TValue* Keep(TValue value) {
  static std::deque<TValue> kept;
  kept.push_back(std::move(value));
  return &kept.back();
}

}  // namespace providerside
