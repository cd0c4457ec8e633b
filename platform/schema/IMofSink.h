// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

#include "platform/schema/TMofDeclarations.h"

namespace NZEPQEL20 {

/// Takes what a MOF parser finds, in the order of the text. Nothing that it does may throw for
/// the content of what it is given.
class IMofSink {
 public:
  virtual ~IMofSink() = default;

  virtual void OnQualifier(const std::string& file, TMofQualifierDeclaration&& qualifier) = 0;
  virtual void OnClass(const std::string& file, TMofClass&& declaration) = 0;
  virtual void OnInstance(const std::string& file, TMofInstance&& instance) = 0;

  /// `path` as the pragma spells it, backslashes and all.
  virtual void OnInclude(const std::string& file, TMofPosition position,
                         const std::string& path) = 0;
  virtual void OnNamespace(const std::string& nameSpace) = 0;

  /// Whether `count` more pieces (constants, qualifiers, features) may be kept. What a hostile
  /// file can make us hold is bounded by this.
  virtual bool Reserve(std::size_t count) = 0;
};

}  // namespace NZEPQEL20
