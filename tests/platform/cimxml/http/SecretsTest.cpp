// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

#include "platform/cimxml/Secrets.h"
#include "tests/platform/cimxml/http/SessionTest.h"

namespace diagstest {
namespace {

using NZEPQEL20::TServerOptions;
using NZEPQEL20::cimxml::THttpSession;
using NZEPQEL20::cimxml::TTextWiper;
using NZEPQEL20::cimxml::WipeText;

// Long enough for memory of its own.
constexpr std::string_view kPassword = "a password that nobody may find in freed memory";

std::atomic<bool> s_isWatching{false};
std::atomic<int> s_leaks{0};

// Counts a block that still holds the password when it is given back.
void Inspect(void* memory) {
  if (!s_isWatching || memory == nullptr) return;
  const std::size_t size = ::malloc_usable_size(memory);
  if (::memmem(memory, size, kPassword.data(), kPassword.size()) != nullptr) ++s_leaks;
}

// The leaks while `action` runs.
template <typename TAction>
int CountLeaks(TAction action) {
  s_leaks = 0;
  s_isWatching = true;
  action();
  s_isWatching = false;
  return s_leaks;
}

}  // namespace

void ReleaseInspected(void* memory) noexcept {
  Inspect(memory);
  std::free(memory);
}

namespace {

TEST(SecretsTest, TheWatchSeesAPasswordThatIsLeftInMemory) {
  auto* const password = new std::string(kPassword);
  EXPECT_EQ(CountLeaks([password] { delete password; }), 1);
}

TEST(SecretsTest, NothingIsLeftOfAWipedText) {
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, std::size_t{15}, kPassword.size()}) {
    std::string text(kPassword);
    text.reserve(100);
    text.resize(size);
    const char* const place = text.data();
    const std::size_t capacity = text.capacity();
    WipeText(text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(text.data(), place);
    EXPECT_EQ(std::string(place, capacity), std::string(capacity, '\0'));
  }
}

TEST(SecretsTest, AWiperWipesAtItsEnd) {
  EXPECT_EQ(CountLeaks([] {
              std::string text(kPassword);
              const TTextWiper wiper(text);
            }),
            0);
}

TEST(SecretsTest, ASessionLeavesNoPasswordBehind) {
  const TScriptedServer server;
  TServerOptions options = MakeOptions("http", server.GetPort());
  options.user = "joe";
  options.password = kPassword;
  EXPECT_EQ(CountLeaks([&options] {
              THttpSession session(options);
              EXPECT_EQ(Try(session).kind, TOutcome::kGood);
            }),
            0);
  options.maxReplyBytes = 0;
  EXPECT_EQ(CountLeaks([&options] { EXPECT_ANY_THROW(THttpSession{options}); }), 0);
}

}  // namespace
}  // namespace diagstest

// Those of the whole test program: there is no other way to see memory at its end.
void* operator new(std::size_t size) {
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  diagstest::ReleaseInspected(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  diagstest::ReleaseInspected(memory);
}
