// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace host {

/// Overwrites what `text` holds, and the memory behind it that it has reserved, and empties it.
void Wipe(std::string& text) noexcept;

/// A text that is nobody's business: overwritten when it goes.
class TSecret {
 public:
  TSecret() = default;
  explicit TSecret(std::string_view text) : m_text(text) {}
  ~TSecret() { Wipe(m_text); }
  /// Moving leaves nothing behind; a short text lies inside the object itself.
  TSecret(TSecret&& other) noexcept;
  TSecret& operator=(TSecret&& other) noexcept;
  TSecret(const TSecret&) = delete;
  TSecret& operator=(const TSecret&) = delete;

  const std::string& Get() const { return m_text; }

 private:
  std::string m_text;
};

/// Wipes a text that has to be a std::string when it goes out of use.
class TWiper {
 public:
  explicit TWiper(std::string& text) : m_text(text) {}
  ~TWiper() { Wipe(m_text); }
  TWiper(const TWiper&) = delete;
  TWiper& operator=(const TWiper&) = delete;

 private:
  std::string& m_text;
};

}  // namespace host
