// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/cimserver/CimTypes.h"
#include "tests/support/cimserver/TXmlElement.h"

namespace cimserver {

/// Orders header names without case.
struct TNameOrder {
  bool operator()(const std::string& left, const std::string& right) const;
};

/// An HTTP request as it came.
struct TPeerRequest {
  using THeaders = std::map<std::string, std::string, TNameOrder>;

  std::string method;
  THeaders headers;
  std::string body;

  /// The header; null when it was left out.
  const std::string* FindHeader(const std::string& name) const;
};

/// A request that is answered below the level of CIM (DSP0200): by an HTTP status.
struct THttpFault : std::runtime_error {
  /// `detail` is for people.
  THttpFault(unsigned int httpStatus, std::string error, const std::string& detail)
      : std::runtime_error(detail), status(httpStatus), cimError(std::move(error)) {}

  unsigned int status;
  std::string cimError;  ///< What CIMError says; empty: there is none.
};

/// A CIM operation message, read and checked against its own headers.
struct TCimCall {
  std::string messageId;
  std::string name;
  bool isExtrinsic = false;
  std::string nameSpace;
  TCIMReference target;  ///< Of a method call: the object or class.
  TKeyMap parameters;    ///< Of a method call.
  /// Of an intrinsic operation: the parameters as they came, each with at most one element.
  std::vector<TXmlElement> operands;
};

/// Reads the message in `request`.
/// Errors: THttpFault.
TCimCall ReadCall(const TPeerRequest& request);

}  // namespace cimserver
