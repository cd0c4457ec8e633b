// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/IProviderStore.h"
#include "platform/contract/TQELException.h"

namespace host {

/// Vendors' folders that a test sets up; keeps what it was asked to change.
class TFakeProviderStore : public IProviderStore {
 public:
  std::vector<NZEPQEL20::TProviderPackage> installed;
  std::map<std::string, NZEPQEL20::TProviderPackage> readable;  ///< By path; others throw.
  std::map<std::string, std::vector<NZEPQEL20::TProviderFinding>> findings;  ///< By name.
  std::string bundled;             ///< Goes only when forced.
  unsigned int addFailure = 0;     ///< Not 0: Add() throws with this status code.
  std::vector<std::string> calls;  ///< "check name", "add name", "replace name", "remove name",
                                   ///< "force out name".

  std::string GetFolder() override { return "/r/providers"; }
  std::vector<NZEPQEL20::TProviderPackage> List() override { return installed; }
  NZEPQEL20::TProviderPackage Read(const std::string& path) override {
    const auto found = readable.find(path);
    if (found != readable.end()) return found->second;
    throw NZEPQEL20::TQELException(NZEPQEL20::TQELStatusCode::kFailed, path + ": cannot be read");
  }
  std::vector<NZEPQEL20::TProviderFinding> Check(
      const NZEPQEL20::TProviderPackage& package) override {
    calls.push_back("check " + package.name);
    const auto found = findings.find(package.name);
    return found == findings.end() ? std::vector<NZEPQEL20::TProviderFinding>() : found->second;
  }
  void Add(const NZEPQEL20::TProviderPackage& /*package*/, const std::string& name,
           bool isReplacing) override {
    if (addFailure != 0) throw NZEPQEL20::TQELException(addFailure, name + ": cannot be added");
    calls.push_back((isReplacing ? "replace " : "add ") + name);
  }
  void Remove(const std::string& name, bool isForced) override {
    if (name == bundled && !isForced) {
      throw NZEPQEL20::TQELException(NZEPQEL20::TQELStatusCode::kInvalidArgument,
                                     name + ": is bundled");
    }
    calls.push_back((isForced ? "force out " : "remove ") + name);
  }
};

}  // namespace host
