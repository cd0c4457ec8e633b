// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/host/TFakeProviderStore.h"

namespace host {
namespace {

using NZEPQEL20::TProviderPackage;
using NZEPQEL20::TQELException;

TEST(FakeProviderStoreTest, KeepsWhatItWasAskedToDo) {
  TFakeProviderStore fake;
  TProviderPackage package;
  package.name = "acme";
  fake.Check(package);
  fake.Add(package, "a", false);
  fake.Add(package, "b", true);
  fake.Remove("c", false);
  fake.Remove("d", true);
  EXPECT_EQ(fake.calls, (std::vector<std::string>{"check acme", "add a", "replace b", "remove c",
                                                  "force out d"}));
}

TEST(FakeProviderStoreTest, ReadsOnlyThePathsThatItWasGiven) {
  TFakeProviderStore fake;
  fake.readable["/acme"].name = "acme";
  EXPECT_EQ(fake.Read("/acme").name, "acme");
  EXPECT_THROW(fake.Read("/other"), TQELException);
}

TEST(FakeProviderStoreTest, FindsWhatItWasGivenByName) {
  TFakeProviderStore fake;
  fake.findings["acme"] = {{true, "R2", "text", "remedy"}};
  TProviderPackage package;
  EXPECT_TRUE(fake.Check(package).empty());
  package.name = "acme";
  ASSERT_EQ(fake.Check(package).size(), 1U);
  EXPECT_EQ(fake.Check(package)[0].text, "text");
}

TEST(FakeProviderStoreTest, RemovesTheBundledOneOnlyWhenForced) {
  TFakeProviderStore fake;
  fake.bundled = "b";
  EXPECT_THROW(fake.Remove("b", false), TQELException);
  EXPECT_TRUE(fake.calls.empty());
  fake.Remove("b", true);
  EXPECT_EQ(fake.calls, (std::vector<std::string>{"force out b"}));
}

TEST(FakeProviderStoreTest, FailsToAddWithTheStatusThatItWasGiven) {
  TFakeProviderStore fake;
  fake.addFailure = 7;
  try {
    fake.Add({}, "acme", false);
    FAIL() << "no exception";
  } catch (const TQELException& e) {
    EXPECT_EQ(e.GetStatusCode().GetValue(), 7U);
  }
  EXPECT_TRUE(fake.calls.empty());
}

}  // namespace
}  // namespace host
