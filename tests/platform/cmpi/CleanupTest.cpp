// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "platform/cmpi/TCMPIOperations.h"
#include "platform/cmpi/TProviders.h"
#include "platform/contract/TRootObject.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {
namespace {

using std::chrono::steady_clock;

/// The providers of Lingering.cpp, from a file of the test's own: its counts are nobody else's.
class CleanupTest : public testing::Test, protected ILogger {
 protected:
  CleanupTest() {
    TRootObject::SetCoreLogger(this);
    std::filesystem::copy(LINGERING_DIR "/liblingering.so", m_folder.GetPath());
    m_folder.Write("x.registration",
                   "X_Asked root/cimv2 Asked lingering instance\n"
                   "X_Asking root/cimv2 Asking lingering instance\n");
    auto classes = std::make_shared<TClassRepository>();
    classes->LoadText("class X_Asked { [Key] string Id; }; class X_Asking { [Key] string Id; };",
                      "x.mof");
    TRegistrations registrations;
    registrations.Load(m_folder.GetPath("x.registration"));
    m_operations = std::make_unique<TCMPIOperations>(classes, registrations);
  }
  ~CleanupTest() override { TRootObject::SetCoreLogger(nullptr); }

  void Log(EQELLogSeverity, const std::string& text) override { m_log += text + '\n'; }

  cmpi::TBroker& Broker() const { return m_operations->GetHosted().GetBroker(); }
  cmpi::TProvider& Asked() const {
    return *m_operations->GetHosted().GetServices().front().provider;
  }
  bool IsAskedCallable() const {
    try {
      static_cast<void>(Asked().GetInstanceMI(Broker()));
      return true;
    } catch (const TQELException& failure) {
      EXPECT_STREQ(failure.what(), "provider Asked: its Instance functions have ended");
      return false;
    }
  }
  int Count(const char* function) const {
    void* const library =
        dlopen(m_folder.GetPath("liblingering.so").c_str(), RTLD_NOW | RTLD_NOLOAD);
    const auto count = reinterpret_cast<int (*)()>(dlsym(library, function));
    return count();
  }

  const TTemporaryFolder m_folder;
  std::unique_ptr<TCMPIOperations> m_operations;
  std::string m_log;
};

TEST_F(CleanupTest, FunctionsThatDoNotComeBackAreLeftWithoutTheirCleanup) {
  {
    const auto functions = Asked().GetInstanceMI(Broker());
    Asked().Cleanup(Broker(), steady_clock::now());
    EXPECT_EQ(Count("GetCleanups"), 0);
    EXPECT_FALSE(IsAskedCallable());
  }
  EXPECT_EQ(m_log, Asked().Describe() +
                       " is at work in its Instance functions at the end; their cleanup is not "
                       "called; see rule R9\n");
}

TEST_F(CleanupTest, FunctionsThatComeBackAreWaitedFor) {
  std::thread end;
  {
    const auto functions = Asked().GetInstanceMI(Broker());
    end = std::thread(
        [&] { Asked().Cleanup(Broker(), steady_clock::now() + std::chrono::hours(1)); });
    while (IsAskedCallable()) std::this_thread::yield();
    EXPECT_EQ(Count("GetCleanups"), 0);
  }
  end.join();
  EXPECT_EQ(Count("GetCleanups"), 1);
  EXPECT_EQ(m_log, "");
}

TEST_F(CleanupTest, WhatIsNotInUseEndsAtOnceAndOnce) {
  EXPECT_TRUE(IsAskedCallable());
  Asked().Cleanup(Broker(), steady_clock::now());
  EXPECT_EQ(Count("GetCleanups"), 1);
  EXPECT_FALSE(IsAskedCallable());
  m_operations.reset();
  EXPECT_EQ(Count("GetCleanups"), 1);
}

TEST_F(CleanupTest, AProviderEndsBehindTheQuestionOfAnotherProvidersThread) {
  EXPECT_TRUE(m_operations->EnumerateInstanceNames("root/cimv2", "X_Asking").empty());
  m_operations.reset();
  EXPECT_EQ(Count("GetCleanups"), 1);
  EXPECT_EQ(Count("GetEarlyCleanups"), 0);
}

}  // namespace
}  // namespace NZEPQEL20
