// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include "platform/cmpi/TBrokerContext.h"
#include "platform/cmpi/TPathContent.h"
#include "platform/cmpi/UserName.h"

namespace NZEPQEL20::cmpi {
namespace {

std::string Principal() {
  const TNamedValues entries = TBrokerContext::EntriesFor("root/x");
  return FindNamed(entries, CMPIPrincipal)->value.ToString(10);
}

TEST(UserNameTest, IsThatOfTheUser) {
  EXPECT_EQ(FindUserName(0), "root");
}

TEST(UserNameTest, IsTheNumberOfOneThatHasNone) {
  uid_t stranger = 4000000000U;
  while (::getpwuid(stranger) != nullptr) ++stranger;
  EXPECT_EQ(FindUserName(stranger), std::to_string(stranger));
}

TEST(UserNameTest, ThePrincipalOfACallIsTheEffectiveUser) {
  EXPECT_EQ(Principal(), FindUserName(::geteuid()));
}

TEST(UserNameTest, ThePrincipalFollowsTheEffectiveUser) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  EXPECT_EQ(Principal(), "root");
  ASSERT_EQ(::seteuid(1), 0);
  const std::string other = Principal();
  ASSERT_EQ(::seteuid(0), 0);
  EXPECT_EQ(other, FindUserName(1));
  EXPECT_NE(other, "root");
  EXPECT_EQ(Principal(), "root");
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
