// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

namespace host {

/// Closes a file descriptor at its end.
class TDescriptor {
 public:
  /// Owns: `descriptor`, which is below 0 when opening failed.
  explicit TDescriptor(int descriptor) : m_descriptor(descriptor) {}
  ~TDescriptor() {
    if (m_descriptor >= 0) ::close(m_descriptor);
  }
  TDescriptor(const TDescriptor&) = delete;
  TDescriptor& operator=(const TDescriptor&) = delete;

  int Get() const { return m_descriptor; }

 private:
  int m_descriptor;
};

}  // namespace host
