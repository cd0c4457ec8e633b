// SPDX-License-Identifier: Apache-2.0
// The frame of a reply: messages, errors, and the results that they hold.
#include "platform/cimxml/TReplyReader.h"

#include <charconv>
#include <utility>

#include "platform/cimxml/HttpText.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cimxml {
namespace {

constexpr std::size_t kShownText = 60;

// An instance inside an instance inside ...: each level is a document of its own.
constexpr unsigned int kMaxEmbedding = 8;

bool HasText(EElement element) {
  return element == EElement::kValue || element == EElement::kKeyValue;
}

// A server's text in a message of ours.
std::string Show(std::string_view text) {
  return "'" + MakeSafe(text, kShownText) + "'";
}

}  // namespace

TReplyReader::TReplyReader(std::string nameSpace) : TReplyReader(std::move(nameSpace), 0) {}

TReplyReader::TReplyReader(std::string nameSpace, unsigned int level)
    : m_nameSpace(std::move(nameSpace)), m_level(level), m_stream(*this) {}

void TReplyReader::Take(const char* data, std::size_t size) {
  m_stream.Take(m_repair.Take({data, size}));
}

TReply TReplyReader::Finish() {
  m_stream.Take(m_repair.Finish());
  m_stream.Finish();
  if (!m_hasResponse) {
    throw TQELException(TQELStatusCode::kFailed, "the reply holds no response");
  }
  if (m_repair.GetCount() != 0) {
    m_reply.oddities += m_repair.GetCount();
    if (m_reply.firstOddity.empty()) m_reply.firstOddity = "characters that XML cannot hold";
  }
  return std::move(m_reply);
}

EElement TReplyReader::GetParent(std::size_t up) const {
  return m_open.size() > up ? m_open[m_open.size() - 1 - up] : EElement::kNone;
}

void TReplyReader::Note(const std::string& text) {
  if (m_reply.oddities++ == 0) m_reply.firstOddity = text;
}

void TReplyReader::Refuse(const std::string& what) {
  throw TQELException(TQELStatusCode::kFailed, "the reply holds " + what);
}

void TReplyReader::RefuseRoot(std::string_view element) {
  throw TQELException(TQELStatusCode::kFailed,
                      "the reply is no CIM message: it starts with the element " + Show(element));
}

void TReplyReader::PassOver(std::string_view element) {
  if (m_open.empty()) RefuseRoot(element);
  m_skipped = 1;
  Note("element " + Show(element) + " in a place where it means nothing");
}

void TReplyReader::OnStart(std::string_view element, const char* const* attributes) {
  if (m_skipped != 0) {
    ++m_skipped;
    return;
  }
  const EElement found = FindElement(element);
  const EElement parent = m_open.empty() ? EElement::kNone : m_open.back();
  const bool isForeignRoot = m_open.empty() && (found == EElement::kCim) == (m_level != 0);
  if (found == EElement::kNone || isForeignRoot || !MayContain(parent, found)) {
    return PassOver(element);
  }
  m_open.push_back(found);
  m_takesText = HasText(found);
  m_text.clear();
  Start(found, TAttributes(attributes));
}

void TReplyReader::OnEnd() {
  if (m_skipped != 0) {
    --m_skipped;
    return;
  }
  End(m_open.back());
  m_open.pop_back();
  m_takesText = false;
}

void TReplyReader::OnText(std::string_view text) {
  if (m_takesText && m_skipped == 0) m_text.append(text);
}

void TReplyReader::Start(EElement element, const TAttributes& attributes) {
  if (StartValue(element, attributes) || StartPath(element, attributes) ||
      StartDeclaration(element, attributes)) {
    return;
  }
  StartMessage(element, attributes);
}

void TReplyReader::End(EElement element) {
  if (EndValue(element) || EndPath(element) || EndDeclaration(element)) return;
  EndResult(element);
}

void TReplyReader::StartMessage(EElement element, const TAttributes& attributes) {
  switch (element) {
    case EElement::kMessage:
      m_reply.id = attributes.Find("ID");
      break;
    case EElement::kIMethodResponse:
    case EElement::kMethodResponse:
      m_hasResponse = true;
      m_reply.name = attributes.Find("NAME");
      break;
    case EElement::kError:
      StartError(attributes);
      break;
    case EElement::kReturnValue:
    case EElement::kParamValue: {
      // One product says TYPE where it means PARAMTYPE.
      const std::string_view type = attributes.Find("PARAMTYPE");
      OpenValue(attributes, type.empty() ? attributes.Find("TYPE") : type);
      // NULL would read as "started", or as "no job to follow"; other results can be done without.
      m_values.back().isStrict =
          element == EElement::kReturnValue || IsSameName(m_values.back().name, "Job");
      break;
    }
    default:
      break;
  }
}

void TReplyReader::StartError(const TAttributes& attributes) {
  const std::string_view code = attributes.Find("CODE");
  TReplyError error;
  const auto [end, fault] = std::from_chars(code.data(), code.data() + code.size(), error.code);
  if (fault != std::errc() || end != code.data() + code.size() || error.code == 0) {
    throw TQELException(TQELStatusCode::kFailed,
                        "the reply holds an error whose code is " + Show(code));
  }
  error.description = attributes.Find("DESCRIPTION");
  m_reply.error = std::move(error);
}

void TReplyReader::EndResult(EElement element) {
  switch (element) {
    case EElement::kNamedInstance:
    case EElement::kInstanceWithPath:
    case EElement::kObjectWithPath:
    case EElement::kValueObject:
      EndObject();
      break;
    case EElement::kReturnValue:
      m_reply.returnValue = TakeValue();
      break;
    case EElement::kParamValue: {
      CheckRoom(m_reply.parameters, "results");
      std::string name = m_values.back().name;
      m_reply.parameters.insert_or_assign(std::move(name), TakeValue());
      break;
    }
    default:
      break;
  }
}

// A path with an instance; one with a class is not what was asked for.
void TReplyReader::EndObject() {
  TCIMReference path = TakePath();
  if (!m_hasInstance) return;
  m_hasInstance = false;
  if (!path.IsNull()) m_instance.path = std::move(path);
  m_reply.instances.push_back(std::move(m_instance));
}

std::shared_ptr<const TCIMInstanceData> TReplyReader::FinishEmbedded(std::string_view text) {
  Take(text.data(), text.size());
  m_stream.Take(m_repair.Finish());
  m_stream.Finish();
  if (!m_hasInstance) return nullptr;
  return std::make_shared<const TCIMInstanceData>(std::move(m_instance));
}

std::shared_ptr<const TCIMInstanceData> TReplyReader::ReadInner(const std::string& text) {
  if (m_level >= kMaxEmbedding) Refuse("instances that are embedded too deeply");
  TReplyReader inner(m_nameSpace, m_level + 1);
  auto instance = inner.FinishEmbedded(text);
  if (inner.m_reply.oddities != 0) {
    Note(inner.m_reply.firstOddity);
    m_reply.oddities += inner.m_reply.oddities - 1;
  }
  return instance;
}

std::shared_ptr<const TCIMInstanceData> TReplyReader::ReadEmbedded(std::string_view text,
                                                                   const std::string& nameSpace) {
  return TReplyReader(nameSpace, 1).FinishEmbedded(text);
}

}  // namespace NZEPQEL20::cimxml
