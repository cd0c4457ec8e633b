// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "platform/cimxml/THttpSession.h"
#include "platform/contract/ILogger.h"
#include "tests/platform/cimxml/http/TScriptedServer.h"
#include "tests/support/TTemporaryFolder.h"

namespace diagstest {

/// Keeps a reply's body, or throws in the middle of it.
class TCollectedBody : public NZEPQEL20::cimxml::IReplyBody {
 public:
  void Take(const char* data, std::size_t size) override { m_text.append(data, size); }
  const std::string& GetText() const { return m_text; }

 private:
  std::string m_text;
};

/// How an exchange ended, with no exception left.
struct TOutcome {
  enum EKind { kGood, kLost, kHttpError, kOther };
  EKind kind = kGood;
  unsigned int code = 0;
  long httpStatus = 0;
  std::string text;  ///< What the exception says; the body of a good answer.
  NZEPQEL20::cimxml::THttpTrailers trailers;
  std::chrono::milliseconds elapsed{0};
};

/// A request as the layer above makes it, with a second for its answer.
NZEPQEL20::cimxml::THttpRequest MakeRequest();

/// Options for a server on a port of this machine.
NZEPQEL20::TServerOptions MakeOptions(const std::string& scheme, int port);

/// Performs one exchange.
TOutcome Try(NZEPQEL20::cimxml::THttpSession& session,
             const NZEPQEL20::cimxml::THttpRequest& request = MakeRequest());

/// While it lives, `user` runs this process in the place of root; nothing changes for others.
class TOtherUser {
 public:
  explicit TOtherUser(uid_t user);
  ~TOtherUser();
  TOtherUser(const TOtherUser&) = delete;
  TOtherUser& operator=(const TOtherUser&) = delete;

 private:
  uid_t m_before;
};

/// Keeps the warnings of its lifetime in the place of the host's log.
class TWarnings : public NZEPQEL20::ILogger {
 public:
  TWarnings();
  ~TWarnings() override;
  TWarnings(const TWarnings&) = delete;
  TWarnings& operator=(const TWarnings&) = delete;
  void Log(EQELLogSeverity severity, const std::string& text) override;
  const std::vector<std::string>& Get() const { return m_texts; }

 private:
  std::vector<std::string> m_texts;
};

}  // namespace diagstest
