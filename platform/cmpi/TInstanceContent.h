// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/cmpi/TPathContent.h"

namespace NZEPQEL20::cmpi {

class IBrokerHost;

/// The plain content of an instance while it is among providers.
struct TInstanceContent {
  TPathContent path;
  TNamedValues properties;
  bool isFiltered = false;
  std::vector<std::string> accepted;  ///< Properties that the filter lets pass.
  bool acceptsReferences = false;     ///< They may be the keys of a class that is not known.

  static TInstanceContent From(const TCIMInstanceData& data);

  /// Sets a property unless the filter drops it; a key of the path follows, to NULL never.
  void SetProperty(const std::string& name, const TCIMValue& value);
  /// Drops all but the named properties and what may be a key. `host` may be null.
  void SetFilter(std::vector<std::string> names, const IBrokerHost* host);
  bool Accepts(const std::string& name, const TCIMValue& value) const;

  /// The path with its keys: those it was given, and the class's; without either, every
  /// reference. `host` may be null.
  TPathContent GetPath(const IBrokerHost* host) const;

  /// Moves the content out.
  TCIMInstanceData Take(const IBrokerHost* host) &&;
};

/// NULL-terminated `list` as texts; an empty vector for NULL.
std::vector<std::string> ReadNames(const char* const* list);

}  // namespace NZEPQEL20::cmpi
