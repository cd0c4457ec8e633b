// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TPullEnumeration.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

namespace NZEPQEL20::cimxml {
namespace {

// How many instances a reply may hold: servers set a bound of their own, so there is a second try.
constexpr char kManyObjects[] = "1000";
constexpr char kFewObjects[] = "100";

// A server that has nothing to say for so many replies in turn never will.
constexpr unsigned int kMaxEmptyReplies = 100;

// Nobody waits for an enumeration to be closed.
constexpr std::chrono::seconds kCloseTimeout{5};

// DSP0200.
constexpr unsigned int kFailed = 1;
constexpr unsigned int kInvalidParameter = 4;
constexpr unsigned int kNotSupported = 7;
constexpr unsigned int kLimitsExceeded = 27;

// Not supported; failed, for want of the name; a parameter beyond the server's bounds. Servers that
// check a message against the names that they know do not look at it at all.
bool SaysNoPull(const TQELException& refusal) {
  const auto* const http = dynamic_cast<const THttpError*>(&refusal);
  if (http != nullptr) return http->GetHttpStatus() == 400 || http->GetHttpStatus() == 501;
  const unsigned int status = refusal.GetCIMStatus();
  return status == kNotSupported || status == kFailed || status == kInvalidParameter;
}

}  // namespace

TPullEnumeration::TPullEnumeration(TServerConnection& connection, TBudget& budget,
                                   std::string nameSpace, std::string className)
    : m_connection(connection),
      m_nameSpace(std::move(nameSpace)),
      m_className(std::move(className)),
      m_what("EnumerateInstances of " + m_nameSpace + ':' + m_className),
      m_budget(budget),
      m_objectCount(kManyObjects) {}

TPullEnumeration::~TPullEnumeration() {
  if (!m_context.empty()) Close();
}

void TPullEnumeration::Close() {
  m_budget.requestTimeout =
      std::min<std::chrono::milliseconds>(m_budget.requestTimeout, kCloseTimeout);
  try {
    Ask("CloseEnumeration", ERepeat::kLost,
        [this](TRequestText& request) { request.AddText("EnumerationContext", m_context); });
  } catch (const std::exception&) {
    // The server closes it by itself after a while.
    m_context.clear();
  }
}

void TPullEnumeration::Refuse(const char* reason) const {
  throw TQELException(TQELStatusCode::kFailed,
                      m_what + ": " + m_connection.GetName() + ": " + reason);
}

TReply TPullEnumeration::Ask(const char* operation, ERepeat repeat,
                             const TServerConnection::TWrite& write) {
  return m_connection.AskFor(operation, m_nameSpace, m_what, write, repeat, m_budget);
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

void TPullEnumeration::OpenWith(const char* objectCount, TReply& reply) {
  m_objectCount = objectCount;
  reply = Ask("OpenEnumerateInstances", ERepeat::kHarmless, [this](TRequestText& request) {
    request.AddClassName("ClassName", m_className);
    request.AddFlag("DeepInheritance", true);
    request.AddText("MaxObjectCount", m_objectCount);
  });
  Follow(reply);
}

TPullEnumeration::EStart TPullEnumeration::Open(TReply& reply) {
  try {
    try {
      OpenWith(kManyObjects, reply);
    } catch (const TQELException& e) {
      if (e.GetCIMStatus() != kInvalidParameter) throw;
      OpenWith(kFewObjects, reply);
    }
    return EStart::kOpened;
  } catch (const TQELException& e) {
    if (e.GetCIMStatus() == kLimitsExceeded) return EStart::kNotNow;
    if (SaysNoPull(e)) return EStart::kNoPull;
    throw;
  }
}

TReply TPullEnumeration::Pull() {
  TReply reply;
  try {
    reply = Ask("PullInstancesWithPath", ERepeat::kLost, [this](TRequestText& request) {
      request.AddText("EnumerationContext", m_context);
      request.AddText("MaxObjectCount", m_objectCount);
    });
  } catch (const TQELException& e) {
    // A server that did not answer this would not answer the request to close it either.
    if (e.GetCIMStatus() == TQELException::kNoCIMStatus) m_context.clear();
    throw;
  }
  Follow(reply);
  return reply;
}

}  // namespace NZEPQEL20::cimxml
