// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/cmpi/ProviderCall.h"
#include "platform/cmpi/TBrokerPath.h"
#include "platform/cmpi/TCMPIOperations.h"
#include "platform/cmpi/TProviders.h"

namespace NZEPQEL20 {

/// What the chapters of TCMPIOperations share.
struct TCMPIOperations::TParts {
  using TServices = cmpi::TProviders::TServices;
  using TService = cmpi::TProviders::TService;
  /// Asks one provider; throws when it fails.
  using TAsk = std::function<cmpi::TCallOutcome(const TService&)>;
  /// Takes what one provider answered; false ends the round.
  using TTake = std::function<bool(const TService&, cmpi::TCallOutcome&)>;

  TParts(std::shared_ptr<const TClassRepository> classes, TRegistrations registrations,
         ICIMOperations& operations, std::string nameSpace)
      : defaultNamespace(std::move(nameSpace)),
        providers(std::move(classes), std::move(registrations), operations) {}

  /// Asks every one of `services` in turn. NOT_FOUND counts as an empty answer; a failure is
  /// reported once and the others go on.
  /// Errors: the first failure when nobody succeeded.
  void AskAll(const TServices& services, const TAsk& ask, const TTake& take);

  /// Asks one of `services` after the other until one does not refuse the operation as such.
  /// Errors: what the last one asked threw; `missing` when there is none.
  cmpi::TCallOutcome AskFirst(const TServices& services, const TAsk& ask,
                              const std::string& missing);

  /// Calls a provider function and turns its failure into an exception.
  cmpi::TCallOutcome Call(const TService& service, const std::string& what,
                          const std::string& nameSpace, cmpi::TBrokerResult::EKind kind,
                          const cmpi::TProviderFunction& function);

  /// Moves a provider's instance out, with namespace and class filled in where they are missing.
  TCIMInstanceData Finish(std::shared_ptr<cmpi::TInstanceContent>& content,
                          const std::string& nameSpace, const std::string& className) const;
  TCIMReference Finish(cmpi::TPathContent& content, const std::string& nameSpace,
                       const std::string& className) const;

  /// `path` as a provider object with keys of the declared types.
  cmpi::TPathContent ToContent(const TCIMReference& path) const;

  std::string defaultNamespace;
  cmpi::TProviders providers;
};

namespace cmpi {

/// `text` for a provider, NULL when it is empty.
inline const char* OrNull(const std::string& text) {
  return text.empty() ? nullptr : text.c_str();
}

}  // namespace cmpi

}  // namespace NZEPQEL20
