// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <mutex>
#include <string>

#include "platform/cmpi/ProviderCall.h"
#include "platform/cmpi/TBroker.h"
#include "platform/cmpi/abi/cmpi.h"

namespace NZEPQEL20::cmpi {

/// A provider library, opened when it is first needed and never closed: threads and exit handlers
/// that a provider left behind would run code that is no longer there.
/// Threads: safe from several.
class TProviderLibrary {
 public:
  /// Nothing is opened yet. `folder` is the vendor's: libraries that this one needs and that lie
  /// in it are found there.
  TProviderLibrary(std::string path, std::string folder)
      : m_path(std::move(path)), m_folder(std::move(folder)) {}

  const std::string& GetPath() const { return m_path; }

  /// Errors: TQELException naming the library, the loader's reason and what would mend it; every
  /// time the same, the library is tried once.
  void Open();
  /// What Open() has found to be doubtful about a library that it could load, in one line for
  /// people; empty when there is nothing.
  std::string GetDoubt();

  /// Has the library make the provider object of `kind` ("Instance", "Association", "Method",
  /// "Property") for the provider name, which `site` is the home of: through the factory for that
  /// name, else through the generic one. To be called once per kind and name. Errors: TQELException
  /// naming library, provider and the reason: no entry point, a refusal with the provider's words,
  /// an exception, no object, an object without a function table.
  template <class TMI>
  TMI* Create(const char* kind, const std::string& providerName, const TCallSite& site,
              TBroker& broker);

 private:
  void* FindSymbol(const std::string& name) const;

  const std::string m_path;
  const std::string m_folder;
  std::mutex m_mutex;
  bool m_isTried = false;
  void* m_handle = nullptr;
  std::string m_fault;
  std::string m_doubt;
};

}  // namespace NZEPQEL20::cmpi
