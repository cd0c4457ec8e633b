// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "host/ExitStatus.h"
#include "platform/setup/TProviderStore.h"

namespace host {

/// A vendor's folder and what is wrong with it.
struct TCheckedProvider {
  NZEPQEL20::TProviderPackage package;
  std::vector<NZEPQEL20::TProviderFinding> findings;  ///< Errors first.

  std::size_t CountErrors() const;
  std::size_t CountWarnings() const;
};

/// A finding in one line: "error: what and why; remedy; see rule R5".
std::string DescribeFinding(const NZEPQEL20::TProviderFinding& finding);

/// What the folder holds: "3 classes in 1 library". Links to a library are no further ones.
std::string DescribeContents(const NZEPQEL20::TProviderPackage& package);

/// The outcome in a few words: "ok, 3 classes in 1 library", "2 errors, 1 warning".
std::string DescribeResult(const TCheckedProvider& provider);

/// The findings, a line each, and the outcome behind them.
void ShowCheckedProvider(std::ostream& out, const TCheckedProvider& provider);

/// The outcome and the folder, below it what is registered and the findings.
void ShowListedProvider(std::ostream& out, const TCheckedProvider& provider);

/// The document of `command`, "provider list" or "provider check".
void WriteProvidersDocument(std::ostream& out, const std::string& command, EExitStatus status,
                            const std::vector<TCheckedProvider>& providers);

/// The document of "provider add". `folder` is where it was put, empty when it was not.
void WriteAddDocument(std::ostream& out, EExitStatus status, const TCheckedProvider& provider,
                      const std::string& folder);

/// The document of "provider remove", which has removed `package` when `status` is kAllPassed.
void WriteRemoveDocument(std::ostream& out, EExitStatus status,
                         const NZEPQEL20::TProviderPackage& package);

}  // namespace host
