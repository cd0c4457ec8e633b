// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TServerConnection.h"

#include <algorithm>
#include <utility>

#include "platform/cimxml/HttpText.h"
#include "platform/cimxml/Secrets.h"
#include "platform/cimxml/TReplyReader.h"
#include "platform/model/CIMStatus.h"
#include "platform/model/CoreLog.h"
#include "platform/model/DiagnosticMethods.h"

namespace NZEPQEL20::cimxml {
namespace {

using TClock = std::chrono::steady_clock;

// All replies of one operation together may be so many times as large as one of them.
constexpr std::uint64_t kRepliesOfOneOperation = 16;

// A server that fails in ever new words is not listed for ever.
constexpr std::size_t kMaxProblems = 20;

// Bytes of a server's description in a message.
constexpr std::size_t kShownReason = 2000;

TServerOptions WithoutSecrets(TServerOptions options) {
  options.user.clear();
  WipeText(options.password);
  return options;
}

// Reads a reply and counts its bytes.
class TCountedReply final : public IReplyBody {
 public:
  TCountedReply(const std::string& server, const std::string& nameSpace, std::uint64_t& bytesLeft)
      : m_server(server), m_reader(nameSpace), m_bytesLeft(bytesLeft) {}

  void Take(const char* data, std::size_t size) override {
    Name([&] {
      if (size > m_bytesLeft) {
        throw TQELException(TQELStatusCode::kFailed, "the replies to one operation have no end");
      }
      m_bytesLeft -= size;
      m_reader.Take(data, size);
    });
  }
  TReply Finish() {
    TReply reply;
    Name([&] { reply = m_reader.Finish(); });
    return reply;
  }

 private:
  // The reader knows nothing of the server whose reply it reads.
  template <typename TCall>
  void Name(const TCall& call) {
    try {
      call();
    } catch (const TQELException& e) {
      throw TQELException(e.GetStatusCode(), m_server + ": " + e.what());
    }
  }

  const std::string& m_server;
  TReplyReader m_reader;
  std::uint64_t& m_bytesLeft;
};

// Some servers begin the description with the name of the status, which is in the text already.
std::string StripName(const std::string& description, const std::string& name) {
  if (description.compare(0, name.size(), name) != 0) return description;
  const std::size_t begin = description.find_first_not_of(": ", name.size());
  return begin == std::string::npos ? std::string() : description.substr(begin);
}

// What a failure says without the numbers in it: times and sizes differ each time.
std::string GetKind(const std::string& text) {
  std::string kind;
  for (const char character : text) {
    if (character < '0' || character > '9') kind += character;
  }
  return kind;
}

}  // namespace

TServerConnection::TServerConnection(const TServerOptions& options)
    : m_options(WithoutSecrets(options)), m_session(options) {}

TBudget TServerConnection::StartOperation() const {
  return {TClock::now() + m_options.totalTimeout, m_options.requestTimeout,
          m_options.maxReplyBytes * kRepliesOfOneOperation};
}

TBudget TServerConnection::StartMethodCall() const {
  return {TClock::now() + m_options.methodTimeout, m_options.methodTimeout,
          m_options.maxReplyBytes};
}

void TServerConnection::Refuse(const TReplyError& error) const {
  const std::string name = GetCIMStatusName(error.code);
  const std::string reason = StripName(MakeSafe(error.description, kShownReason), name);
  throw TQELException(TQELStatusCode::kCIMError,
                      GetName() + ": " + name + " (" + std::to_string(error.code) + ")" +
                          (reason.empty() ? "" : ": " + reason),
                      error.code);
}

void TServerConnection::Check(const TQuestion& question, const TReply& reply) const {
  if (reply.id != std::to_string(question.id) || !IsSameName(reply.name, question.name)) {
    throw TQELException(TQELStatusCode::kFailed,
                        GetName() + ": the reply is to another message: id " +
                            MakeSafe(reply.id, 40) + ", " + MakeSafe(reply.name, 80));
  }
  if (reply.error) Refuse(*reply.error);
}

void TServerConnection::ReportOddities(const TQuestion& question, const TReply& reply) const {
  if (reply.oddities == 0) return;
  LogToCore(ILogger::kWarning,
            question.what + ": " + GetName() + ": " + std::to_string(reply.oddities) +
                " places of the reply could not be used as they are, the first: " +
                MakeSafe(reply.firstOddity));
}

TReply TServerConnection::AskOnce(const TQuestion& question, TBudget& budget, bool isSecond) {
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(budget.end - TClock::now());
  if (left.count() <= 0) {
    throw TQELException(TQELStatusCode::kConnection,
                        GetName() + ": the operation took longer than it may in all");
  }
  THttpRequest request;
  request.method = question.name;
  request.object = question.object;
  request.body = question.body;
  request.isMethodCall = question.isMethodCall;
  // Where one connection was lost, the others that were kept may be, too.
  request.wantsFreshConnection = isSecond || question.repeat == ERepeat::kHarmful;
  request.timeout = std::min(left, budget.requestTimeout);
  TCountedReply body(GetName(), question.nameSpace, budget.bytesLeft);
  const THttpTrailers trailers = m_session.Exchange(request, body);
  // Before the document, which ends early when something went wrong after its beginning.
  if (trailers.cimStatus != 0) Refuse({trailers.cimStatus, trailers.description});
  TReply reply = body.Finish();
  Check(question, reply);
  ReportOddities(question, reply);
  return reply;
}

std::vector<std::string> TServerConnection::GetProblems() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_problems;
}

std::string TServerConnection::TakeLastFailure() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return std::exchange(m_lastFailure, {});
}

void TServerConnection::NoteProblem(const TQELException& failure, const TQuestion& question) {
  const bool isRefusal = failure.GetCIMStatus() != TQELException::kNoCIMStatus;
  if (isRefusal) {
    // An object may well be elsewhere or gone; a method that is refused has not been started. An
    // older one that is missing has a newer one in its place.
    if (!question.isMethodCall || IsWithoutRunDiagnostic(question.name, failure)) return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lastFailure = failure.what();
    return;
  }
  const std::string kind = GetKind(failure.what());
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_lastFailure = failure.what();
  const bool isKnown =
      std::any_of(m_problems.begin(), m_problems.end(),
                  [&kind](const std::string& problem) { return GetKind(problem) == kind; });
  if (!isKnown && m_problems.size() < kMaxProblems) m_problems.emplace_back(failure.what());
}

TReply TServerConnection::Ask(const TQuestion& question, TBudget& budget) {
  const std::string& what = question.what;
  try {
    const bool mayRepeat = question.repeat == ERepeat::kHarmless && !question.isMethodCall;
    if (!mayRepeat) return AskOnce(question, budget, false);
    try {
      return AskOnce(question, budget, false);
    } catch (const TConnectionLost& e) {
      LogToCore(ILogger::kWarning, what + ": " + e.what() + "; asking once more");
    }
    return AskOnce(question, budget, true);
  } catch (const THttpError& e) {
    NoteProblem(e, question);
    throw THttpError(e.GetStatusCode(), what + ": " + e.what(), e.GetHttpStatus());
  } catch (const TQELException& e) {
    NoteProblem(e, question);
    throw TQELException(e.GetStatusCode(), what + ": " + e.what(), e.GetCIMStatus());
  }
}

TReply TServerConnection::AskFor(const std::string& operation, const std::string& nameSpace,
                                 const std::string& what, const TWrite& write, ERepeat repeat,
                                 TBudget& budget) {
  TQuestion question;
  question.what = what;
  question.name = operation;
  question.nameSpace = nameSpace;
  question.object = nameSpace;
  question.repeat = repeat;
  question.id = NextId();
  try {
    TRequestText text = TRequestText::Operation(operation, nameSpace, question.id);
    write(text);
    question.body = text.Finish();
  } catch (const TQELException& e) {
    throw TQELException(e.GetStatusCode(), what + ": " + e.what());
  }
  return Ask(question, budget);
}

TReply TServerConnection::AskFor(const std::string& operation, const std::string& nameSpace,
                                 const std::string& what, const TWrite& write) {
  TBudget budget = StartOperation();
  return AskFor(operation, nameSpace, what, write, ERepeat::kHarmless, budget);
}

}  // namespace NZEPQEL20::cimxml
