// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/ReplyCheck.h"

#include <limits>
#include <string_view>

#include "platform/cimxml/HttpText.h"
#include "platform/cimxml/TChallenge.h"

namespace NZEPQEL20::cimxml {
namespace {

[[noreturn]] void Refuse(const TReplyRules& rules, const std::string& reason) {
  throw TQELException(TQELStatusCode::kFailed, rules.server + ": " + reason);
}

// A decimal number; the largest one there is for what is larger still.
bool ReadNumber(const std::string& text, std::uint64_t& number) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return false;
  number = 0;
  for (const char digit : text) {
    const auto value = static_cast<std::uint64_t>(digit - '0');
    number = number > (kMost - value) / 10 ? kMost : number * 10 + value;
  }
  return true;
}

void CheckLength(const TReplyHead& head, const TReplyRules& rules) {
  std::uint64_t length = 0;
  bool isFirst = true;
  for (const std::string& value : head.GetFields().FindAll("Content-Length")) {
    std::uint64_t next = 0;
    if (!ReadNumber(value, next)) {
      Refuse(rules, "the answer has an unusable Content-Length \"" + MakeSafe(value, 60) + "\"");
    }
    if (!isFirst && next != length) {
      Refuse(rules, "the answer has two different lengths, " + std::to_string(length) + " and " +
                        std::to_string(next) + " bytes");
    }
    length = next;
    isFirst = false;
  }
  if (length > rules.maxBodyBytes) Refuse(rules, DescribeTooLarge(rules));
}

// Nothing was asked for that would have to be unpacked, and a small packed body can be huge.
void CheckEncoding(const TReplyHead& head, const TReplyRules& rules) {
  for (const std::string& value : head.GetFields().FindAll("Content-Encoding")) {
    if (!EqualsNoCase(value, "identity")) {
      Refuse(rules, "the answer is packed (Content-Encoding " + MakeSafe(value, 60) +
                        "), which was not asked for");
    }
  }
  for (const std::string& value : head.GetFields().FindAll("Transfer-Encoding")) {
    if (!EqualsNoCase(value, "chunked") && !EqualsNoCase(value, "identity")) {
      Refuse(rules, "the answer is packed (Transfer-Encoding " + MakeSafe(value, 60) +
                        "), which was not asked for");
    }
  }
}

void CheckKind(const TReplyHead& head, const TReplyRules& rules) {
  const std::string* const type = head.GetFields().Find("Content-Type");
  if (type != nullptr) {
    const std::string_view name = Trim(std::string_view(*type).substr(0, type->find(';')));
    if (!EqualsNoCase(name, "application/xml") && !EqualsNoCase(name, "text/xml")) {
      Refuse(rules, "answers with " + MakeSafe(name, 60) +
                        ", not with XML: a proxy, or another kind of server");
    }
  }
  const std::string* const operation = head.GetFields().Find("CIMOperation");
  if (operation != nullptr && !EqualsNoCase(*operation, "MethodResponse")) {
    Refuse(rules, "answers with a CIM message of the kind \"" + MakeSafe(*operation, 60) +
                      "\", not with the response to a call");
  }
}

std::string DescribeStatus(const TReplyHead& head) {
  std::string text = "HTTP " + std::to_string(head.GetStatus());
  if (!head.GetPhrase().empty()) text += " " + MakeSafe(head.GetPhrase(), 100);
  return text;
}

std::string AdviseOnCredentials(const TReplyHead& head, const TReplyRules& rules) {
  const std::string offered = ListSchemes(head.GetFields().FindAll("WWW-Authenticate"));
  std::string text = rules.credentials.empty()
                         ? "a user and a password are needed, and none are given"
                         : rules.credentials + " is refused";
  text += offered.empty() ? " (the server offers no way to log in)"
                          : " (the server offers " + offered + ")";
  return text;
}

// What to do about a status, or what it means where nothing can be done.
std::string AdviseOn(const TReplyHead& head, const TReplyRules& rules) {
  const long status = head.GetStatus();
  if (status >= 300 && status < 400) {
    const std::string* const place = head.GetFields().Find("Location");
    return place == nullptr ? "it sends us elsewhere, without saying where"
                            : "it sends us to " + MakeSafe(*place) + ", which is not followed";
  }
  switch (status) {
    case 401:
      return AdviseOnCredentials(head, rules);
    case 403:
      return "this user may not use the server";
    case 404:
      return "no CIM server is at this path; most have /cimom";
    case 405:
    case 501:
      return "the server does not support this request";
    case 413:
      return "the request is too large for the server";
    case 503:
      return "the server is busy or shutting down; try again later";
    default:
      return {};
  }
}

TQELStatusCode GetCode(long status) {
  if (status == 401 || status == 403) return TQELStatusCode::kAccessDenied;
  if (status == 503) return TQELStatusCode::kConnection;
  return TQELStatusCode::kFailed;
}

// The first value that says something. Some servers send such fields without one, and mean none.
std::string FindValue(const THeaderFields& fields, std::string_view name) {
  for (const std::string& value : fields.FindAll(name)) {
    if (!Trim(value).empty()) return value;
  }
  return {};
}

// What a CIM server says of its reasons in fields of its own.
std::string DescribeCIMError(const THeaderFields& fields) {
  std::string text;
  const std::string error = FindValue(fields, "CIMError");
  if (!error.empty()) text += ", CIMError " + MakeSafe(PercentDecode(error));
  const std::string detail = FindValue(fields, "PGErrorDetail");
  if (!detail.empty()) text += ": " + MakeSafe(PercentDecode(detail), 1000);
  return text;
}

[[noreturn]] void ThrowStatus(const TReplyHead& head, const TReplyRules& rules) {
  const std::string advice = AdviseOn(head, rules);
  throw THttpError(GetCode(head.GetStatus()),
                   rules.server + ": " + DescribeStatus(head) + DescribeCIMError(head.GetFields()) +
                       (advice.empty() ? std::string() : "; " + advice),
                   head.GetStatus());
}

}  // namespace

void CheckReplyHead(const TReplyHead& head, const TReplyRules& rules) {
  if (!head.IsHttp1()) Refuse(rules, "answers in a version of HTTP that was not asked for");
  if (head.GetStatus() != 200 || !FindValue(head.GetFields(), "CIMError").empty()) {
    ThrowStatus(head, rules);
  }
  CheckEncoding(head, rules);
  CheckKind(head, rules);
  CheckLength(head, rules);
}

THttpTrailers ReadTrailers(const TReplyHead& head, const TReplyRules& rules) {
  const THeaderFields& fields = head.GetTrailers();
  if (!FindValue(fields, "CIMError").empty()) {
    throw THttpError(TQELStatusCode::kFailed,
                     rules.server + ": the server broke off in the middle of its answer" +
                         DescribeCIMError(fields),
                     head.GetStatus());
  }
  THttpTrailers trailers;
  const std::string* const code = fields.Find("CIMStatusCode");
  std::uint64_t number = 0;
  if (code != nullptr) {
    if (!ReadNumber(*code, number) || number > std::numeric_limits<unsigned int>::max()) {
      Refuse(rules,
             "the answer ends with an unusable CIMStatusCode \"" + MakeSafe(*code, 60) + "\"");
    }
    trailers.cimStatus = static_cast<unsigned int>(number);
  }
  const std::string* const description = fields.Find("CIMStatusCodeDescription");
  if (description != nullptr) trailers.description = MakeSafe(PercentDecode(*description), 4000);
  return trailers;
}

std::string DescribeTooLarge(const TReplyRules& rules) {
  return "the answer is larger than the limit of " + DescribeBytes(rules.maxBodyBytes) +
         " for one answer, which can be raised";
}

}  // namespace NZEPQEL20::cimxml
