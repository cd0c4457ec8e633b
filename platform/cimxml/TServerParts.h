// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/cimxml/TCIMXMLOperations.h"
#include "platform/cimxml/TServerConnection.h"

namespace NZEPQEL20 {

/// What the chapters of TCIMXMLOperations share.
struct TCIMXMLOperations::TParts {
  TParts(const TServerOptions& options, std::string nameSpace)
      : defaultNamespace(std::move(nameSpace)), connection(options) {}

  const std::string& OrDefault(const std::string& nameSpace) const {
    return nameSpace.empty() ? defaultNamespace : nameSpace;
  }

  /// Keeps the job that a method call has started, when it has.
  void NoteJob(const TKeyMap& results);

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
