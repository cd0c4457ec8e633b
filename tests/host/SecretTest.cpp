// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "host/TSecret.h"

namespace host {
namespace {

class WipeTest : public ::testing::TestWithParam<std::size_t> {};

TEST_P(WipeTest, LeavesNothingWhereTheTextWas) {
  std::string text(GetParam(), 'x');
  text.resize(GetParam() / 2);
  Wipe(text);
  EXPECT_EQ(text, "");
  // Emptied, the string still owns the block that it had.
  const char* const block = text.data();
  EXPECT_TRUE(std::all_of(block, block + text.capacity(), [](char byte) { return byte == 0; }));
}
// A short text lies in the string itself, a long one in a block.
INSTANTIATE_TEST_SUITE_P(Lengths, WipeTest, ::testing::Values(0U, 6U, 15U, 400U));

TEST(SecretTest, MovesAndLeavesNothingBehind) {
  for (const char* text : {"short", "a text that is too long to lie in the string itself"}) {
    TSecret first{std::string_view(text)};
    TSecret second(std::move(first));
    EXPECT_EQ(second.Get(), text);
    EXPECT_EQ(first.Get(), "");  // NOLINT(bugprone-use-after-move): what moving promises.
    EXPECT_EQ(std::string(first.Get().data(), 6), std::string(6, '\0'));
    TSecret third{std::string_view("other")};
    third = std::move(second);
    EXPECT_EQ(third.Get(), text);
    EXPECT_EQ(second.Get(), "");  // NOLINT(bugprone-use-after-move): what moving promises.
  }
}

TEST(SecretTest, WipesATextAtTheEndOfItsUse) {
  std::string text = "sesame";
  { const TWiper wiper(text); }
  EXPECT_EQ(text, "");
  EXPECT_EQ(std::string(text.data(), 6), std::string(6, '\0'));
}

}  // namespace
}  // namespace host
