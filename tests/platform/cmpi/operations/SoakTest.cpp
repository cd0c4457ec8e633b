// SPDX-License-Identifier: Apache-2.0
//
// Requests of every kind, from two threads at once, for as long as a busy month has.
#include <malloc.h>

#include <atomic>
#include <functional>
#include <thread>

#include "tests/platform/cmpi/operations/TWorkshopTest.h"

namespace NZEPQEL20 {
namespace {

#ifdef DIAGSRUNNER_SANITIZED
// Slower by an order of magnitude, and leaks show there without counting.
constexpr unsigned int kRequests = 10'000;
constexpr bool kIsMemoryCounted = false;
#else
constexpr unsigned int kRequests = 100'000;
constexpr bool kIsMemoryCounted = true;
#endif
constexpr unsigned int kThreads = 2;

class SoakTest : public TWorkshopTest {
 protected:
  using TRequest = std::function<bool()>;

  /// One request of each kind; each answers whether it came out as it should.
  std::vector<TRequest> MakeRequests() {
    const ICIMOperations::TInstanceSink ignore = [](TCIMInstanceData&&) { return true; };
    const TCIMReference bolt = PathTo("W_Bolt-1");
    return {[=] { return Enumerate("W_Bolt").size() == 1; },
            [=] { return m_operations->EnumerateInstanceNames("root/cimv2", "W_Nut").size() == 1; },
            [=] { return GetNote(bolt).find("Id") == 0; },
            [=] { return GetNote(PathTo("nested")).find("Id") == 0; },
            [=] { return Fails([=] { Enumerate("W_Crate"); }); },
            [=] { return Enumerate("W_Ghost").empty(); },
            [=] { return m_operations->ReferenceNames(bolt, {}).size() == 1; },
            [=] { return Fails([=] { m_operations->Associators(PathTo("fails"), {}, ignore); }); },
            [=] { return Invoke(bolt, "Neighbours") != "0"; },
            [=] { return Invoke(bolt, "Instance").find("W_Nut") != std::string::npos; },
            [=] { return Fails([=] { Invoke(bolt, "Fail"); }); },
            [=] { return Create("made").GetClassName() == "W_Bolt"; }};
  }

  /// Answers with how many requests of `count` did not come out as they should.
  unsigned int Soak(unsigned int count) {
    const std::vector<TRequest> requests = MakeRequests();
    std::atomic<unsigned int> wrong{0};
    std::atomic<unsigned int> next{0};
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&] {
        for (unsigned int at = next++; at < count; at = next++) {
          if (!requests[at % requests.size()]()) ++wrong;
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    return wrong;
  }

 private:
  template <class TAction>
  static bool Fails(const TAction& action) {
    try {
      action();
    } catch (const TQELException&) {
      return true;
    }
    return false;
  }

  std::string Invoke(const TCIMReference& path, const std::string& method) {
    TKeyMap parameters;
    return m_operations->InvokeMethod(path, method, parameters).ToString(10);
  }

  TCIMReference Create(const std::string& note) {
    TCIMInstanceData data;
    data.path = PathTo("new");
    data.properties.push_back({"Note", TCIMValue(note)});
    return m_operations->CreateInstance("root/cimv2", data);
  }
};

TEST_F(SoakTest, TakesRequestsOfEveryKindFromTwoThreadsWithoutLosingMemory) {
  // What is made once, such as declarations put together and reports of a failure, is made now.
  EXPECT_EQ(Soak(2'000), 0U);
  const std::size_t before = mallinfo2().uordblks;
  EXPECT_EQ(Soak(kRequests), 0U);
  const std::size_t after = mallinfo2().uordblks;
  // The least that a request could lose is a block of 32 bytes. One kind of them that did would
  // come to eight times as much as is allowed for what the allocator itself holds back.
  constexpr std::size_t kAllowed = 32 * 1024;
  if (kIsMemoryCounted) {
    EXPECT_LE(after, before + kAllowed);
  }
}

}  // namespace
}  // namespace NZEPQEL20
