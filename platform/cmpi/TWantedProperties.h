// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace NZEPQEL20::cmpi {

/// The properties that the upcall running on this thread wants, for the provider that answers it.
///
/// It spares a provider the making of what the caller drops anyway, and nothing else: what does not
/// reach the provider changes no result. That is why the operations have no place for it. For an
/// instance that is to be modified it names what of it counts.
/// A provider call starts without any.
class TWantedProperties {
 public:
  /// `names` is NULL-terminated and outlives this; NULL for all properties.
  explicit TWantedProperties(const char** names) : m_before(Current()) { Current() = names; }
  ~TWantedProperties() { Current() = m_before; }
  TWantedProperties(const TWantedProperties&) = delete;
  TWantedProperties& operator=(const TWantedProperties&) = delete;

  /// As a provider function takes them.
  static const char** Get() { return Current(); }

 private:
  static const char**& Current() {
    thread_local const char** current = nullptr;
    return current;
  }

  const char** m_before;
};

}  // namespace NZEPQEL20::cmpi
