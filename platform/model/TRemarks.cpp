// SPDX-License-Identifier: Apache-2.0
#include "platform/model/TRemarks.h"

#include <algorithm>

namespace NZEPQEL20 {

void TRemarks::AddLocked(const std::string& text) {
  if (m_texts.size() >= kMaxRemarks) return;
  if (std::find(m_texts.begin(), m_texts.end(), text) == m_texts.end()) m_texts.push_back(text);
}

void TRemarks::Add(const std::string& text) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  AddLocked(text);
}

void TRemarks::Hold(const std::string& object, const std::string& text) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_heldFor = object;
  m_held = text;
}

void TRemarks::Release(const std::string& object) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_held.empty() || m_heldFor != object) return;
  AddLocked(m_held);
  m_held.clear();
}

void TRemarks::Forget(const std::string& object) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_heldFor == object) m_held.clear();
}

std::vector<std::string> TRemarks::Get() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_texts;
}

}  // namespace NZEPQEL20
