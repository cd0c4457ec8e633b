// SPDX-License-Identifier: Apache-2.0
#include "host/TSecret.h"

#include <cstring>
#include <utility>

namespace host {

void Wipe(std::string& text) noexcept {
  // Within its capacity a string grows without moving.
  text.resize(text.capacity());
  ::explicit_bzero(text.data(), text.size());
  text.clear();
}

TSecret::TSecret(TSecret&& other) noexcept : m_text(std::move(other.m_text)) {
  Wipe(other.m_text);
}

TSecret& TSecret::operator=(TSecret&& other) noexcept {
  if (this == &other) return *this;
  Wipe(m_text);
  m_text = std::move(other.m_text);
  Wipe(other.m_text);
  return *this;
}

}  // namespace host
