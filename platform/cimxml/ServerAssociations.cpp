// SPDX-License-Identifier: Apache-2.0
// The chapter of TCIMXMLOperations about associations.
#include "platform/cimxml/TServerParts.h"

namespace NZEPQEL20 {

using cimxml::TReply;
using cimxml::TRequestText;

namespace {

using TFilter = ICIMOperations::TAssociationFilter;

void AddText(TRequestText& request, const char* parameter, const std::string& value) {
  if (!value.empty()) request.AddText(parameter, value);
}

// An operation between objects; `isReference` chooses the associations themselves.
TReply AskAbout(cimxml::TServerConnection& connection, const char* operation,
                const std::string& nameSpace, const TCIMReference& path, const TFilter& filter,
                bool isReference) {
  const auto write = [&](TRequestText& request) {
    request.AddInstanceName("ObjectName", path);
    if (!isReference) request.AddClassName("AssocClass", filter.associationClass);
    request.AddClassName("ResultClass", filter.resultClass);
    AddText(request, "Role", filter.role);
    if (!isReference) AddText(request, "ResultRole", filter.resultRole);
  };
  return connection.AskFor(operation, nameSpace, operation + (" of " + path.GetPath()), write);
}

}  // namespace

void TCIMXMLOperations::Associators(const TCIMReference& path, const TAssociationFilter& filter,
                                    const TInstanceSink& sink) {
  TReply reply =
      AskAbout(m_parts->connection, "Associators", m_parts->OrDefault(path.GetNamespaceName()),
               m_parts->Type(path), filter, false);
  cimxml::Deliver(reply, sink);
}

std::vector<TCIMReference> TCIMXMLOperations::AssociatorNames(const TCIMReference& path,
                                                              const TAssociationFilter& filter) {
  return AskAbout(m_parts->connection, "AssociatorNames",
                  m_parts->OrDefault(path.GetNamespaceName()), m_parts->Type(path), filter, false)
      .paths;
}

void TCIMXMLOperations::References(const TCIMReference& path, const TAssociationFilter& filter,
                                   const TInstanceSink& sink) {
  TReply reply =
      AskAbout(m_parts->connection, "References", m_parts->OrDefault(path.GetNamespaceName()),
               m_parts->Type(path), filter, true);
  cimxml::Deliver(reply, sink);
}

std::vector<TCIMReference> TCIMXMLOperations::ReferenceNames(const TCIMReference& path,
                                                             const TAssociationFilter& filter) {
  return AskAbout(m_parts->connection, "ReferenceNames",
                  m_parts->OrDefault(path.GetNamespaceName()), m_parts->Type(path), filter, true)
      .paths;
}

}  // namespace NZEPQEL20
