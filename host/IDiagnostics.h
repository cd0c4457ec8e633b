// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/setup/TPlatform.h"

namespace host {

/// What a completion record says, as text.
struct TRecordText {
  std::string path;
  std::string completionState;
  std::string data;
};

/// One test's end: the runner's answer, untouched, and the record when one was left.
struct TRunResult {
  std::string answer;
  std::optional<TRecordText> record;
};

/// A property's name with its value as text, one per element when it is an array.
struct TPropertyText {
  std::string name;
  bool isArray = false;
  std::vector<std::string> values;
};

struct TInstanceText {
  std::string path;
  std::vector<TPropertyText> properties;  ///< Those that are not null, in the sender's order.
};

/// What the commands need of the runner and its platform.
class IDiagnostics {
 public:
  virtual ~IDiagnostics() = default;

  /// The identifiers of all tests, each followed by "|".
  virtual std::string EnumerateTests() = 0;

  /// Tests that are not offered, with the reason.
  virtual std::vector<NZEPQEL20::TUnofferedTest> GetUnofferedTests() = 0;

  /// Where providers have tests, whether they offer any or not; nothing on a server.
  virtual NZEPQEL20::TTestPlaces GetTestPlaces() = 0;

  /// What of the installation could not be loaded, one line each.
  virtual std::vector<std::string> GetProblems() = 0;

  /// What last kept a CIM server from answering or from starting a test, since the previous call;
  /// empty for nothing, and without a server.
  virtual std::string TakeServerFailure() = 0;

  /// Runs one test to its end.
  virtual TRunResult Run(const std::string& id, const std::string& label) = 0;

  /// The instances of a class as the runner prints them.
  virtual std::string Inspect(const std::string& className) = 0;

  /// The same as data; nothing when the class is not known.
  virtual std::optional<std::vector<TInstanceText>> GetInstances(const std::string& className) = 0;
};

}  // namespace host
