// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tests/support/cimserver/TChannel.h"
#include "tests/support/cimserver/TCimCall.h"
#include "tests/support/cimserver/TPeerCounts.h"
#include "tests/support/cimserver/TPeerOptions.h"
#include "tests/support/cimserver/TRequestHandler.h"

namespace cimserver {

/// One connection from its first request to its end.
class TPeerConnection {
 public:
  /// All of these must outlive the connection.
  TPeerConnection(IChannel& channel, const TPeerOptions& options, TRequestHandler& handler,
                  TPeerCounts& counts);

  /// Answers requests until either side has enough.
  void Serve();

 private:
  struct TReader;
  bool ServeOne(TReader& reader);
  bool RefuseUnread(const TReader& reader);
  std::string Answer(const TPeerRequest& request, bool isLast);
  std::string WriteReply(const TCimReply& reply, const TPeerRequest& request, bool isLast) const;
  std::string WriteChunked(const TCimReply& reply) const;
  std::string WriteFault(const THttpFault& fault, bool isLast) const;
  std::string WriteChallenge(bool isLast) const;
  bool IsAllowed(const TPeerRequest& request) const;
  bool IsPegasus() const { return m_options.style == EStyle::kPegasus; }

  IChannel& m_channel;
  const TPeerOptions& m_options;
  TRequestHandler& m_handler;
  TPeerCounts& m_counts;
  unsigned int m_requests = 0;
};

}  // namespace cimserver
