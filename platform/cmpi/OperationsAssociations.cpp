// SPDX-License-Identifier: Apache-2.0
// The chapter of TCMPIOperations about associations.
#include "platform/cmpi/TAssociationWalk.h"

namespace NZEPQEL20 {

void TCMPIOperations::Associators(const TCIMReference& path, const TAssociationFilter& filter,
                                  const TInstanceSink& sink) {
  TParts::TAssociationWalk(*m_parts, "Associators of " + path.GetPath(), path, filter,
                           filter.associationClass)
      .Associators(sink);
}

std::vector<TCIMReference> TCMPIOperations::AssociatorNames(const TCIMReference& path,
                                                            const TAssociationFilter& filter) {
  return TParts::TAssociationWalk(*m_parts, "AssociatorNames of " + path.GetPath(), path, filter,
                                  filter.associationClass)
      .AssociatorNames();
}

void TCMPIOperations::References(const TCIMReference& path, const TAssociationFilter& filter,
                                 const TInstanceSink& sink) {
  TParts::TAssociationWalk(*m_parts, "References of " + path.GetPath(), path, filter,
                           filter.resultClass)
      .References(sink);
}

std::vector<TCIMReference> TCMPIOperations::ReferenceNames(const TCIMReference& path,
                                                           const TAssociationFilter& filter) {
  return TParts::TAssociationWalk(*m_parts, "ReferenceNames of " + path.GetPath(), path, filter,
                                  filter.resultClass)
      .ReferenceNames();
}

}  // namespace NZEPQEL20
