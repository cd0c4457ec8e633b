// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "platform/cmpi/TOperationsParts.h"

namespace NZEPQEL20 {

/// One walk from an object along its associations, over providers that may answer only some of the
/// questions, or for more than they were asked.
///
/// What a provider does not support is found another way: references from their names or from all
/// instances of the association class, associated objects from the references. The filters apply
/// to what a provider answers as well; a result is dropped when the references show that it does
/// not belong there.
/// Threads: none; it lives for one request.
class TCMPIOperations::TParts::TAssociationWalk {
 public:
  using TFilter = ICIMOperations::TAssociationFilter;

  /// `association` is the name of the association class that is asked for, empty for all.
  TAssociationWalk(TParts& parts, std::string what, const TCIMReference& from,
                   const TFilter& filter, const std::string& association);

  /// Errors: the most telling failure, when every provider failed.
  void Associators(const TInstanceSink& sink);
  std::vector<TCIMReference> AssociatorNames();
  void References(const TInstanceSink& sink);
  std::vector<TCIMReference> ReferenceNames();

 private:
  /// A provider with those of its association classes that matter.
  struct TGroup {
    TServices services;
    std::string nameSpace;
    bool hasFunctions = false;  ///< Registered for associations, not only for their instances.
    bool isCovered = true;      ///< All its associations are of the class asked for.
  };
  struct TEnd {
    std::string role;
    TCIMReference object;
  };
  /// An association instance and what it refers to.
  struct TLink {
    std::string className;
    std::vector<TEnd> ends;
  };
  /// What links say about objects; valid as long as the links.
  struct TEvidence {
    std::set<std::string> mentionedTexts;
    std::set<std::string> associatedTexts;
    std::vector<const TCIMReference*> mentioned;
    std::vector<const TCIMReference*> associated;  ///< Those that the filter lets pass.
  };
  using TInstances = std::vector<TCIMInstanceData>;
  using TNames = std::vector<TCIMReference>;

  // Who is asked.
  void FindGroups(const std::string& association);
  void AddService(const TService& service, bool hasFunctions, const std::string& nameSpace);
  bool IsRelevant(const std::string& className, const std::string& association) const;
  bool CanRefer(const std::string& className) const;

  // The functions of one provider, as they are.
  TInstances CallAssociators(TGroup& group);
  TNames CallAssociatorNames(TGroup& group);
  TInstances CallReferences(TGroup& group, const TFilter& filter, const char** wanted);
  TNames CallReferenceNames(TGroup& group, const TFilter& filter);
  cmpi::TCallOutcome CallFunction(
      TGroup& group, const char* name, cmpi::TBrokerResult::EKind kind,
      const std::function<CMPIStatus(CMPIAssociationMI&, const CMPIContext*, const CMPIResult*,
                                     const CMPIObjectPath*)>& function);

  // The same from what else the provider answers.
  TInstances AskAssociators(TGroup& group);
  TNames AskAssociatorNames(TGroup& group);
  TInstances AskReferences(TGroup& group, const TFilter& filter, const char** wanted);
  TNames AskReferenceNames(TGroup& group, const TFilter& filter);
  TInstances EnumerateReferences(TGroup& group);
  TInstances GetEach(const TNames& names, const char** wanted);
  bool IsServed(const TCIMReference& path) const;
  /// The association that `path` names, made of its keys.
  /// Errors: CMPI_RC_ERR_NOT_SUPPORTED, when they do not tell its ends.
  TCIMInstanceData FromName(const TCIMReference& path) const;
  std::vector<TLink> AskLinks(TGroup& group);

  // What belongs to the answer.
  TLink LinkOf(const TCIMReference& path) const;
  TLink LinkOf(const TCIMInstanceData& data) const;
  bool IsComplete(const TLink& link) const;
  bool IsFrom(const TEnd& end) const;
  bool PassesClass(const std::string& className, const std::string& wanted) const;
  bool PassesReference(const TLink& link, const TFilter& filter) const;
  bool PlaysRole(const TLink& link, const std::string& role) const;
  std::vector<const TEnd*> FarEnds(const TLink& link) const;
  TEvidence Weigh(const std::vector<TLink>& links) const;
  bool Supports(const TEvidence& evidence, const TCIMReference& object) const;
  template <class TResult, class TPathOf>
  void DropStrangers(TGroup& group, std::vector<TResult>& results, const TPathOf& pathOf);
  bool IsNew(const TCIMReference& path);

  /// Asks every group; one that fails is reported and costs the others nothing.
  template <class TResult>
  void AskGroups(const std::function<std::vector<TResult>(TGroup&)>& ask,
                 const std::function<bool(TResult&)>& take);

  TParts& m_parts;
  cmpi::TProviders& m_providers;
  const std::string m_what;
  const TCIMReference m_from;
  const TFilter m_filter;
  const char** const m_wanted;
  std::vector<TGroup> m_groups;
  std::set<std::string> m_seen;
};

}  // namespace NZEPQEL20
