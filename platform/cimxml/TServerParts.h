// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/cimxml/TCIMXMLOperations.h"
#include "platform/cimxml/TServerConnection.h"
#include "platform/cimxml/ValueElements.h"

namespace NZEPQEL20 {

/// What the chapters of TCIMXMLOperations share.
struct TCIMXMLOperations::TParts {
  TParts(const TServerOptions& options, const std::string& nameSpace)
      : defaultNamespace(cimxml::TidyNamespace(nameSpace)), connection(options) {}

  /// `nameSpace` as requests spell it, the default one for an empty name.
  std::string OrDefault(const std::string& nameSpace) const {
    return nameSpace.empty() ? defaultNamespace : cimxml::TidyNamespace(nameSpace);
  }

  /// `path` with keys of the types that its class has, where the class is known already: what comes
  /// from a text has texts for keys.
  TCIMReference Type(const TCIMReference& path);

  /// Keeps the job that a method call in `nameSpace` has started, when it has.
  void NoteJob(const TKeyMap& results, const std::string& nameSpace);

  /// A method call, within `budget`; one that may start a job has it noted.
  TCIMValue Invoke(TCIMXMLOperations& operations, const TCIMReference& path,
                   const std::string& method, TKeyMap& parameters, cimxml::TBudget budget,
                   bool mayStartJob);

  static std::optional<std::vector<std::string>> AskForNamespaces(TCIMXMLOperations& operations,
                                                                  const char* interop);

  const std::string defaultNamespace;
  cimxml::TServerConnection connection;
  std::atomic<bool> hasPull{true};  ///< Until the server has shown that it has no pull operations.

  std::mutex mutex;  ///< Guards what follows; never held while asking.
  std::map<std::string, std::shared_ptr<const TCIMClassDeclaration>> classes;
  std::vector<std::string> namespaces;
  std::vector<TCIMReference> startedJobs;
};

namespace cimxml {

/// Hands the instances of a reply on, each let go of before the next; false when the sink wants no
/// more.
bool Deliver(TReply& reply, const ICIMOperations::TInstanceSink& sink);

}  // namespace cimxml

}  // namespace NZEPQEL20
