// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/host/TFakeDiagnostics.h"

namespace host {
namespace {

TEST(FakeDiagnosticsTest, KeepsWhatWasRunAndAnswersAsSetUp) {
  TFakeDiagnostics fake;
  bool wasCalled = false;
  fake.duringRun = [&] { wasCalled = true; };
  fake.places.classes = {"A"};
  EXPECT_EQ(fake.GetTestPlaces().classes, fake.places.classes);
  fake.results["a,b,c"] = {"Pass", std::nullopt};
  EXPECT_EQ(fake.Run("a,b,c", "label").answer, "Pass");
  EXPECT_EQ(fake.Run("x,y,z", "").answer, "No Results.\n");
  EXPECT_EQ(fake.runs, (std::vector<std::string>{"a,b,c|label", "x,y,z|"}));
  EXPECT_TRUE(wasCalled);
}

TEST(FakeDiagnosticsTest, KnowsOnlyTheClassesThatItWasGiven) {
  TFakeDiagnostics fake;
  fake.texts["A"] = "text";
  fake.instances["A"] = {{"A.K=\"1\"", {}}};
  EXPECT_EQ(fake.Inspect("A"), "text");
  EXPECT_EQ(fake.Inspect("B"), "Class Not Found\n");
  EXPECT_EQ(fake.GetInstances("A")->size(), 1U);
  EXPECT_FALSE(fake.GetInstances("B").has_value());
}

TEST(FakeDiagnosticsTest, TellsAFailureOnce) {
  TFakeDiagnostics fake;
  fake.serverFailure = "lost";
  EXPECT_EQ(fake.TakeServerFailure(), "lost");
  EXPECT_EQ(fake.TakeServerFailure(), "");
}

}  // namespace
}  // namespace host
