// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cimxml/http/SessionTest.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "platform/contract/TRootObject.h"

namespace diagstest {

using NZEPQEL20::TQELException;
using NZEPQEL20::TRootObject;
using NZEPQEL20::TServerOptions;
using NZEPQEL20::cimxml::TConnectionLost;
using NZEPQEL20::cimxml::THttpError;
using NZEPQEL20::cimxml::THttpRequest;
using NZEPQEL20::cimxml::THttpSession;

THttpRequest MakeRequest() {
  THttpRequest request;
  request.method = "GetClass";
  request.object = "root/cimv2";
  request.body = "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM>request</CIM>\n";
  request.timeout = std::chrono::seconds(5);
  return request;
}

TServerOptions MakeOptions(const std::string& scheme, int port) {
  TServerOptions options;
  options.url = scheme + "://127.0.0.1:" + std::to_string(port);
  options.connectTimeout = std::chrono::seconds(5);
  return options;
}

TOutcome Try(THttpSession& session, const THttpRequest& request) {
  TOutcome outcome;
  TCollectedBody body;
  const auto start = std::chrono::steady_clock::now();
  try {
    outcome.trailers = session.Exchange(request, body);
    outcome.text = body.GetText();
  } catch (const TConnectionLost& e) {
    outcome.kind = TOutcome::kLost;
    outcome.code = e.GetStatusCode().GetValue();
    outcome.text = e.what();
  } catch (const THttpError& e) {
    outcome.kind = TOutcome::kHttpError;
    outcome.code = e.GetStatusCode().GetValue();
    outcome.httpStatus = e.GetHttpStatus();
    outcome.text = e.what();
  } catch (const TQELException& e) {
    outcome.kind = TOutcome::kOther;
    outcome.code = e.GetStatusCode().GetValue();
    outcome.text = e.what();
  }
  outcome.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - start);
  return outcome;
}

TOtherUser::TOtherUser(uid_t user) : m_before(::geteuid()) {
  if (m_before == 0) {
    EXPECT_EQ(::seteuid(user), 0);
  }
}

TOtherUser::~TOtherUser() {
  EXPECT_EQ(::seteuid(m_before), 0);
}

TWarnings::TWarnings() {
  TRootObject::SetCoreLogger(this);
}

TWarnings::~TWarnings() {
  TRootObject::SetCoreLogger(nullptr);
}

void TWarnings::Log(EQELLogSeverity severity, const std::string& text) {
  if (severity == kWarning) m_texts.push_back(text);
}

}  // namespace diagstest
