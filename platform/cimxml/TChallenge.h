// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace NZEPQEL20::cimxml {

/// One way to log in, as a WWW-Authenticate field offers it.
struct TChallenge {
  std::string scheme;  ///< `Basic`, `Negotiate`, `Local`.
  std::string rest;    ///< What follows it, parameters or one quoted text.
};

/// Takes WWW-Authenticate fields apart; each may hold several challenges between commas, with
/// parameters that hold commas themselves.
std::vector<TChallenge> ReadChallenges(const std::vector<std::string>& fields);

/// The names of the schemes for a message, as in "Basic, Negotiate"; empty when there is none.
std::string ListSchemes(const std::vector<std::string>& fields);

}  // namespace NZEPQEL20::cimxml
