// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string.h>

#include <string>

namespace NZEPQEL20::cimxml {

/// Overwrites all that `text` holds or has held in its present place, and leaves it empty: a
/// compiler would leave such writes to memory that is about to be freed out.
inline void WipeText(std::string& text) noexcept {
  // Within the capacity nothing moves, so nothing stays behind either.
  text.resize(text.capacity());
  ::explicit_bzero(text.data(), text.size());
  text.clear();
}

/// Wipes a text at the end of its own life, which must not be later than that of the text.
class TTextWiper {
 public:
  explicit TTextWiper(std::string& text) : m_text(text) {}
  ~TTextWiper() { WipeText(m_text); }
  TTextWiper(const TTextWiper&) = delete;
  TTextWiper& operator=(const TTextWiper&) = delete;

 private:
  std::string& m_text;
};

}  // namespace NZEPQEL20::cimxml
