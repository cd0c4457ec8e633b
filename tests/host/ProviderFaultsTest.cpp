// SPDX-License-Identifier: Apache-2.0
//
// The real command over vendors' folders with something wrong in them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <ostream>

#include "tests/host/TProviderFixture.h"

namespace host {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

class ProviderFaultsTest : public TProviderFixture {};

TEST_F(ProviderFaultsTest, WordsOfALibraryNeverGetIntoADocument) {
  InstallAcme();
  const std::string vendor = MakeBad("stdout");
  EXPECT_EQ(json::parse(Do({"provider", "check", vendor, "--json"}).out)["status"], 0);
  EXPECT_EQ(json::parse(Do({"provider", "add", vendor, "--json"}).out)["added"], true);
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"list", "--json"},
           {"run", "TestPass,tst0,Test device", "--json", "--progress", "always"},
           {"inspect", "BAD_AvailableDiagnosticService", "--json"},
           {"provider", "list", "--json"}}) {
    const TFinished finished = Do(arguments);
    EXPECT_EQ(finished.status, 0);
    EXPECT_FALSE(json::parse(finished.out, nullptr, false).is_discarded()) << finished.out;
  }
  const TFinished inspected = Do({"inspect", "BAD_AvailableDiagnosticService"});
  EXPECT_THAT(inspected.out, ::testing::StartsWith("root/cimv2:BAD_AvailableDiagnosticService."));
  EXPECT_THAT(inspected.err, HasSubstr("words on standard output\n"));
}

}  // namespace
}  // namespace host
