// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/IDiagnostics.h"

namespace host {

/// Diagnostics that answer as a test sets them up, and keep what they were asked to run.
class TFakeDiagnostics : public IDiagnostics {
 public:
  std::string list;
  std::vector<NZEPQEL20::TUnofferedTest> unoffered;
  NZEPQEL20::TTestPlaces places;
  std::vector<std::string> problems;
  std::map<std::string, TRunResult> results;  ///< By test id; others answer "No Results.\n".
  std::map<std::string, std::string> texts;   ///< What Inspect() answers, by class.
  std::map<std::string, std::vector<TInstanceText>> instances;
  std::string instancesFailure;  ///< What GetInstances() throws; empty for nothing.
  std::function<void()> duringRun = [] {};
  std::function<void()> duringInspect = [] {};
  std::string serverFailure;      ///< What TakeServerFailure() answers next.
  std::vector<std::string> runs;  ///< "id|label" of each test that was run.

  std::string EnumerateTests() override { return list; }
  std::vector<NZEPQEL20::TUnofferedTest> GetUnofferedTests() override { return unoffered; }
  NZEPQEL20::TTestPlaces GetTestPlaces() override { return places; }
  std::vector<std::string> GetProblems() override { return problems; }
  std::string TakeServerFailure() override { return std::exchange(serverFailure, {}); }
  TRunResult Run(const std::string& id, const std::string& label) override {
    runs.push_back(id + "|" + label);
    duringRun();
    const auto found = results.find(id);
    return found == results.end() ? TRunResult{"No Results.\n", std::nullopt} : found->second;
  }
  std::string Inspect(const std::string& className) override {
    duringInspect();
    const auto found = texts.find(className);
    return found == texts.end() ? "Class Not Found\n" : found->second;
  }
  std::optional<std::vector<TInstanceText>> GetInstances(const std::string& className) override {
    if (!instancesFailure.empty()) throw std::runtime_error(instancesFailure);
    const auto found = instances.find(className);
    if (found == instances.end()) return std::nullopt;
    return found->second;
  }
};

}  // namespace host
