// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/cmpi/ProviderCall.h"
#include "platform/cmpi/TBrokerPath.h"
#include "platform/cmpi/TCMPIOperations.h"
#include "platform/cmpi/TProviders.h"
#include "platform/cmpi/TStartedWork.h"

namespace NZEPQEL20 {

namespace cmpi {

/// What a provider is asked, besides who and for which object.
struct TQuestion {
  std::string what;       ///< For messages.
  std::string nameSpace;  ///< Where it is asked.
  const char** wanted;    ///< Properties that matter, NULL-terminated; NULL for all.
};

/// Whether a provider only said that it does not support the operation.
inline bool IsRefusal(const TQELException& failure) {
  return failure.GetCIMStatus() == CMPI_RC_ERR_NOT_SUPPORTED;
}

/// Remembers the failure that says most: a real one before one that says that something is not
/// there, and that before one that says that the provider does not do such things.
class TWorstFailure {
 public:
  void Add(const TQELException& failure);
  /// Errors: the failure, if there was any.
  void ThrowIfAny() const;

 private:
  std::optional<TQELException> m_failure;
};

}  // namespace cmpi

/// What the chapters of TCMPIOperations share.
struct TCMPIOperations::TParts {
  class TAssociationWalk;
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
  /// Errors: the most telling failure when nobody succeeded.
  void AskAll(const TServices& services, const TAsk& ask, const TTake& take);

  /// Asks one of `services` after the other until one has an answer. When something is to be
  /// changed, only a refusal or NOT_FOUND leads to the next one.
  /// Errors: the most telling failure; `missing` when nobody could be asked.
  cmpi::TCallOutcome AskFirst(const TServices& services, const TAsk& ask,
                              const std::string& missing, bool isReading = false);

  /// Calls a provider function, which CMPI calls `name`, and turns its failure into an exception.
  cmpi::TCallOutcome Call(const TService& service, const char* name, const std::string& what,
                          const std::string& nameSpace, cmpi::TBrokerResult::EKind kind,
                          const cmpi::TProviderFunction& function);

  /// One question to a provider, as it is.
  cmpi::TCallOutcome CallEnumerate(const TService& service, const cmpi::TQuestion& question);
  cmpi::TCallOutcome CallEnumerateNames(const TService& service, const cmpi::TQuestion& question);
  cmpi::TCallOutcome CallGet(const TService& service, const cmpi::TQuestion& question,
                             const cmpi::TPathContent& path);

  /// The same questions; what the provider does not support is found by the others.
  cmpi::TCallOutcome AskEnumerate(const TService& service, const cmpi::TQuestion& question);
  cmpi::TCallOutcome AskEnumerateNames(const TService& service, const cmpi::TQuestion& question);
  cmpi::TCallOutcome AskGet(const TService& service, const cmpi::TQuestion& question,
                            const cmpi::TPathContent& path);

  /// Who can be asked for the instances of `className` and of the classes below it: providers of
  /// instances, and those of associations for classes that have no other.
  TServices FindEnumerable(const std::string& nameSpace, const std::string& className) const;

  /// AskEnumerate() and AskEnumerateNames(), by whatever FindEnumerable() has found. Instances of
  /// an association class that its provider does not enumerate are the references of the objects
  /// at one of its ends.
  /// Errors: also the most telling failure, when no object could be asked about.
  cmpi::TCallOutcome AskInstances(const TService& service, const cmpi::TQuestion& question);
  cmpi::TCallOutcome AskInstanceNames(const TService& service, const cmpi::TQuestion& question);

  /// Moves a provider's instance out, with namespace and class filled in where they are missing,
  /// and values of the declared types; one that cannot be converted counts as NULL and is reported
  /// once for its class and property.
  TCIMInstanceData Finish(std::shared_ptr<cmpi::TInstanceContent>& content,
                          const std::string& nameSpace, const std::string& className);
  TCIMReference Finish(cmpi::TPathContent& content, const std::string& nameSpace,
                       const std::string& className);

  /// `path` as a provider object with keys of the declared types.
  cmpi::TPathContent ToContent(const TCIMReference& path) const;
  /// `path` as the provider of `service` expects it: one that is registered for a class below that
  /// of the path knows its own class only.
  cmpi::TPathContent ForService(const TService& service, cmpi::TPathContent path) const;

  std::string defaultNamespace;
  cmpi::TProviders providers;
  cmpi::TStartedWork work;

 private:
  void TypeValues(cmpi::TInstanceContent& content);
  void TypeEnds(cmpi::TPathContent& path);
  TCIMValue ToDeclared(const TCIMPropertyDeclaration& declared, const TCIMPropertyData& given,
                       const cmpi::TPathContent& owner);

  /// Adds what a walk from one object to its associations finds.
  using TAskAbout = std::function<void(TAssociationWalk& walk, cmpi::TCallOutcome& outcome)>;
  cmpi::TCallOutcome AskOrDerive(const TService& service, const cmpi::TQuestion& question,
                                 const TAsk& ask, const TAskAbout& askAbout);
  cmpi::TCallOutcome Derive(const TService& service, const cmpi::TQuestion& question,
                            const TAskAbout& askAbout);
};

namespace cmpi {

/// `text` for a provider, NULL when it is empty.
inline const char* OrNull(const std::string& text) {
  return text.empty() ? nullptr : text.c_str();
}

}  // namespace cmpi

}  // namespace NZEPQEL20
