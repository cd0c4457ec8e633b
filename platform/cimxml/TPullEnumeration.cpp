// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TPullEnumeration.h"

#include <exception>
#include <utility>

namespace NZEPQEL20::cimxml {
namespace {

// How many instances a reply may hold: servers set a bound of their own, some not far above.
constexpr char kObjectsPerReply[] = "1000";

// A server that has nothing to say for so many replies in turn never will.
constexpr unsigned int kMaxEmptyReplies = 100;

}  // namespace

TPullEnumeration::TPullEnumeration(TServerConnection& connection, std::string nameSpace,
                                   std::string className)
    : m_connection(connection),
      m_nameSpace(std::move(nameSpace)),
      m_className(std::move(className)),
      m_what("EnumerateInstances of " + m_nameSpace + ':' + m_className),
      m_budget(connection.StartOperation()) {}

TPullEnumeration::~TPullEnumeration() {
  if (m_context.empty()) return;
  try {
    Ask("CloseEnumeration", false,
        [this](TRequestText& request) { request.AddText("EnumerationContext", m_context); });
  } catch (const std::exception&) {
    // The server closes it by itself after a while.
    m_context.clear();
  }
}

bool TPullEnumeration::SaysNoPull(const TQELException& refusal) {
  // Servers that check a message against the names that they know do not look at it at all.
  const auto* const http = dynamic_cast<const THttpError*>(&refusal);
  if (http != nullptr) return http->GetHttpStatus() == 400 || http->GetHttpStatus() == 501;
  // Not supported; failed, for want of the name; a parameter beyond the server's bounds.
  const unsigned int status = refusal.GetCIMStatus();
  return status == 7 || status == 1 || status == 4;
}

void TPullEnumeration::Refuse(const char* reason) const {
  throw TQELException(TQELStatusCode::kFailed,
                      m_what + ": " + m_connection.GetName() + ": " + reason);
}

TReply TPullEnumeration::Ask(const char* operation, bool isRepeatable,
                             const TServerConnection::TWrite& write) {
  return m_connection.AskFor(operation, m_nameSpace, m_what, write, isRepeatable, m_budget);
}

void TPullEnumeration::Follow(const TReply& reply) {
  m_context.clear();
  const auto end = reply.parameters.find("EndOfSequence");
  if (end == reply.parameters.end()) Refuse("the reply does not say whether more follows");
  if (end->second.ToBoolean()) return;
  const auto context = reply.parameters.find("EnumerationContext");
  if (context != reply.parameters.end()) m_context = context->second.ToString(10);
  if (m_context.empty()) Refuse("more follows, and the reply does not say how to ask for it");
  m_emptyReplies = reply.instances.empty() ? m_emptyReplies + 1 : 0;
  if (m_emptyReplies > kMaxEmptyReplies) Refuse("the server promises more and sends nothing");
}

TReply TPullEnumeration::Open() {
  TReply reply = Ask("OpenEnumerateInstances", true, [this](TRequestText& request) {
    request.AddClassName("ClassName", m_className);
    request.AddFlag("DeepInheritance", true);
    request.AddText("MaxObjectCount", kObjectsPerReply);
  });
  Follow(reply);
  return reply;
}

TReply TPullEnumeration::Pull() {
  TReply reply = Ask("PullInstancesWithPath", false, [this](TRequestText& request) {
    request.AddText("EnumerationContext", m_context);
    request.AddText("MaxObjectCount", kObjectsPerReply);
  });
  Follow(reply);
  return reply;
}

}  // namespace NZEPQEL20::cimxml
