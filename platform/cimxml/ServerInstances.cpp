// SPDX-License-Identifier: Apache-2.0
// The chapter of TCIMXMLOperations about instances.
#include <utility>

#include "platform/cimxml/TPullEnumeration.h"
#include "platform/cimxml/TServerParts.h"

namespace NZEPQEL20 {

using cimxml::TPullEnumeration;
using cimxml::TReply;
using cimxml::TRequestText;

namespace {

TPullEnumeration::EStart PullAll(TPullEnumeration& enumeration,
                                 const ICIMOperations::TInstanceSink& sink) {
  TReply reply;
  const TPullEnumeration::EStart start = enumeration.Open(reply);
  if (start != TPullEnumeration::EStart::kOpened) return start;
  while (cimxml::Deliver(reply, sink) && enumeration.IsOpen()) reply = enumeration.Pull();
  return start;
}

}  // namespace

bool cimxml::Deliver(TReply& reply, const ICIMOperations::TInstanceSink& sink) {
  while (!reply.instances.empty()) {
    TCIMInstanceData instance = std::move(reply.instances.front());
    reply.instances.pop_front();
    if (!sink(std::move(instance))) return false;
  }
  return true;
}

void TCIMXMLOperations::EnumerateInstances(const std::string& nameSpace,
                                           const std::string& className,
                                           const TInstanceSink& sink) {
  using EStart = TPullEnumeration::EStart;
  const std::string place = m_parts->OrDefault(nameSpace);
  cimxml::TBudget budget = m_parts->connection.StartOperation();
  EStart start = EStart::kNoPull;
  if (m_parts->hasPull) {
    TPullEnumeration enumeration(m_parts->connection, budget, place, className);
    start = PullAll(enumeration, sink);
    if (start == EStart::kOpened) return;
  }
  const auto write = [&className](TRequestText& request) {
    request.AddClassName("ClassName", className);
    request.AddFlag("LocalOnly", false);
    request.AddFlag("DeepInheritance", true);
  };
  TReply reply = m_parts->connection.AskFor("EnumerateInstances", place,
                                            "EnumerateInstances of " + place + ':' + className,
                                            write, cimxml::ERepeat::kHarmless, budget);
  // Only now: a refusal of both says something about the class and nothing about the server.
  if (start == EStart::kNoPull) m_parts->hasPull = false;
  cimxml::Deliver(reply, sink);
}

std::vector<TCIMReference> TCIMXMLOperations::EnumerateInstanceNames(const std::string& nameSpace,
                                                                     const std::string& className) {
  const std::string place = m_parts->OrDefault(nameSpace);
  const auto write = [&className](TRequestText& request) {
    request.AddClassName("ClassName", className);
  };
  return m_parts->connection
      .AskFor("EnumerateInstanceNames", place,
              "EnumerateInstanceNames of " + place + ':' + className, write)
      .paths;
}

TCIMInstanceData TCIMXMLOperations::GetInstance(const TCIMReference& path) {
  const std::string what = "GetInstance of " + path.GetPath();
  const TCIMReference typed = m_parts->Type(path);
  const auto write = [&typed](TRequestText& request) {
    request.AddInstanceName("InstanceName", typed);
    request.AddFlag("LocalOnly", false);
  };
  TReply reply = m_parts->connection.AskFor(
      "GetInstance", m_parts->OrDefault(path.GetNamespaceName()), what, write);
  if (reply.instances.empty()) {
    throw TQELException(TQELStatusCode::kFailed,
                        what + ": " + GetServerName() + ": the reply holds no instance");
  }
  TCIMInstanceData instance = std::move(reply.instances.front());
  // The reply has no path; the class it names may be a subclass of the one asked for.
  TCIMReference found(m_parts->OrDefault(path.GetNamespaceName()), path.GetClassName(),
                      path.GetKeys());
  if (!instance.path.GetClassName().empty()) found.SetClassName(instance.path.GetClassName());
  instance.path = std::move(found);
  return instance;
}

TCIMReference TCIMXMLOperations::CreateInstance(const std::string& nameSpace,
                                                const TCIMInstanceData& instance) {
  const std::string place = m_parts->OrDefault(nameSpace);
  const auto write = [&instance](TRequestText& request) {
    request.AddInstance("NewInstance", instance);
  };
  cimxml::TBudget budget = m_parts->connection.StartOperation();
  const TReply reply = m_parts->connection.AskFor(
      "CreateInstance", place, "CreateInstance of " + place + ':' + instance.path.GetClassName(),
      write, cimxml::ERepeat::kHarmful, budget);
  if (!reply.paths.empty()) return reply.paths.front();
  TCIMReference path = instance.path;
  path.SetNamespaceName(place);
  return path;
}

void TCIMXMLOperations::ModifyInstance(const TCIMInstanceData& instance) {
  const auto write = [&instance](TRequestText& request) {
    request.AddNamedInstance("ModifiedInstance", instance);
    request.AddFlag("IncludeQualifiers", false);
  };
  m_parts->connection.AskFor("ModifyInstance", m_parts->OrDefault(instance.path.GetNamespaceName()),
                             "ModifyInstance of " + instance.path.GetPath(), write);
}

void TCIMXMLOperations::DeleteInstance(const TCIMReference& path) {
  const TCIMReference typed = m_parts->Type(path);
  const auto write = [&typed](TRequestText& request) {
    request.AddInstanceName("InstanceName", typed);
  };
  cimxml::TBudget budget = m_parts->connection.StartOperation();
  m_parts->connection.AskFor("DeleteInstance", m_parts->OrDefault(path.GetNamespaceName()),
                             "DeleteInstance of " + path.GetPath(), write,
                             cimxml::ERepeat::kHarmful, budget);
}

}  // namespace NZEPQEL20
