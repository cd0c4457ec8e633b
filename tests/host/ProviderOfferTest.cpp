// SPDX-License-Identifier: Apache-2.0
//
// Vendors' folders in order whose tests are not found all the same: the check says so.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "tests/host/TProviderFixture.h"

namespace host {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class ProviderOfferTest : public TProviderFixture {
 protected:
  /// The test provider with `pattern` of its registration replaced.
  std::string MakeOther(const std::string& pattern, const std::string& text) const {
    return MakeAcme("acme.registration",
                    std::regex_replace(std::string(kLines), std::regex(pattern), text));
  }
};

TEST_F(ProviderOfferTest, AnotherNamespaceIsNamedWithTheOptionThatLooksThere) {
  const std::string vendor = MakeOther("root/cimv2", "root/acme");
  const std::string warning = "warning: " + vendor +
                              ": is registered in root/acme, and `diagsrun list` looks in "
                              "root/cimv2; `diagsrun --namespace root/acme list` looks there; see "
                              "rule T1\n";
  const TFinished checked = Do({"provider", "check", vendor});
  EXPECT_EQ(checked.out, "acme: " + warning + "acme: ok, 1 warning, 6 classes in 1 library\n");
  EXPECT_EQ(checked.status, 0);
  EXPECT_EQ(Do({"--namespace", "root/acme", "provider", "check", vendor}).out,
            "acme: ok, 6 classes in 1 library\n");
  const TFinished added = Do({"provider", "add", vendor});
  EXPECT_EQ(added.err, "diagsrun: acme: " + warning);
  // What was said is not contradicted.
  EXPECT_THAT(added.out, Not(HasSubstr("shows its tests")));
  EXPECT_THAT(Do({"provider", "list"}).out, HasSubstr("`diagsrun --namespace root/acme list`"));
  EXPECT_FALSE(ListsAcme());
  EXPECT_THAT(Do({"--namespace", "root/acme", "list"}).out, HasSubstr("TestPass,tst0"));
}

TEST_F(ProviderOfferTest, AnAssociationWithoutAnEntryPointIsAWarningAndHasNoTests) {
  const std::string vendor = MakeOther("(TST_Available.* )instance", "$1association");
  const TFinished added = Do({"provider", "add", vendor});
  EXPECT_THAT(added.err, HasSubstr("its Association functions have no entry point"));
  EXPECT_EQ(added.status, 0);
  EXPECT_FALSE(ListsAcme());
  EXPECT_THAT(Do({"list"}).out, Not(HasSubstr("TestPass")));
}

}  // namespace
}  // namespace host
