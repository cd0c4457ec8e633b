// SPDX-License-Identifier: Apache-2.0
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <stdexcept>

#include "platform/cmpi/ProviderCall.h"
#include "platform/contract/TRootObject.h"
#include "tests/platform/cmpi/broker/TBrokerTest.h"

namespace NZEPQEL20::cmpi {
namespace {

class BrokerThreadsTest : public TBrokerTest {
 protected:
  const CMPIBrokerExtFT& Xft() const { return *m_broker->xft; }
};

void* AddOne(void* number) {
  ++*static_cast<std::atomic<int>*>(number);
  return number;
}

const CMPIBrokerExtFT* theThreads = nullptr;
int theCount = 0;

TEST_F(BrokerThreadsTest, AThreadRunsAndIsJoined) {
  std::atomic<int> number{0};
  CMPI_THREAD_TYPE thread = Xft().newThread(AddOne, &number, 0);
  ASSERT_NE(thread, nullptr);
  CMPI_THREAD_RETURN result = nullptr;
  EXPECT_EQ(Xft().joinThread(thread, &result), 0);
  EXPECT_EQ(result, &number);
  EXPECT_EQ(number, 1);
}

TEST_F(BrokerThreadsTest, AThreadMayEndItselfOrThrow) {
  theThreads = &Xft();
  const auto leave = [](void* result) -> void* {
    theThreads->exitThread(result);
    return nullptr;
  };
  const auto fail = [](void*) -> void* { throw std::runtime_error("gone wrong"); };
  CMPI_THREAD_RETURN result = nullptr;
  Xft().joinThread(Xft().newThread(leave, &theCount, 0), &result);
  EXPECT_EQ(result, &theCount);
  Xft().joinThread(Xft().newThread(fail, &theCount, 0), &result);
  EXPECT_EQ(result, nullptr);
}

TEST_F(BrokerThreadsTest, AThreadCanBeCancelled) {
  theThreads = &Xft();
  const auto sleep = [](void*) -> void* {
    theThreads->threadSleep(60000);
    return nullptr;
  };
  CMPI_THREAD_TYPE thread = Xft().newThread(sleep, nullptr, 0);
  EXPECT_EQ(Xft().cancelThread(thread), 0);
  EXPECT_EQ(Xft().joinThread(thread, nullptr), 0);
}

// The sanitizers' own pthread_join() is not made to be unwound.
#ifndef DIAGSRUNNER_SANITIZED
TEST_F(BrokerThreadsTest, AThreadThatWaitsForAnotherCanBeCancelled) {
  theThreads = &Xft();
  const auto sleep = [](void*) -> void* {
    theThreads->threadSleep(60000);
    return nullptr;
  };
  const auto wait = [](void* other) -> void* {
    theThreads->joinThread(other, nullptr);
    return nullptr;
  };
  CMPI_THREAD_TYPE sleeper = Xft().newThread(sleep, nullptr, 0);
  CMPI_THREAD_TYPE waiter = Xft().newThread(wait, sleeper, 0);
  CMPI_THREAD_RETURN result = nullptr;
  EXPECT_EQ(Xft().cancelThread(waiter), 0);
  EXPECT_EQ(Xft().joinThread(waiter, &result), 0);
  EXPECT_EQ(result, PTHREAD_CANCELED);
  EXPECT_EQ(Xft().cancelThread(sleeper), 0);
  EXPECT_EQ(Xft().joinThread(sleeper, nullptr), 0);
}
#endif

/// A log whose every line is a place to be cancelled at, as those that write to files are.
class TInterruptibleLog : public ILogger {
 public:
  TInterruptibleLog() { TRootObject::SetCoreLogger(this); }
  ~TInterruptibleLog() override { TRootObject::SetCoreLogger(nullptr); }
  void Log(EQELLogSeverity, const std::string&) override {
    pthread_testcancel();
    ++m_lines;
  }
  int GetLines() const { return m_lines; }

 private:
  std::atomic<int> m_lines{0};
};

TEST_F(BrokerThreadsTest, ACancelledThreadEndsBehindTheFunctionThatItIsIn) {
  const TInterruptibleLog log;
  const auto tell = [](void* given) -> void* {
    const auto* broker = static_cast<const CMPIBroker*>(given);
    broker->xft->cancelThread(reinterpret_cast<CMPI_THREAD_TYPE>(pthread_self()));
    broker->eft->logMessage(broker, CMPI_SEV_ERROR, "id", "a status", nullptr);
    return nullptr;
  };
  CMPI_THREAD_RETURN result = nullptr;
  Xft().joinThread(Xft().newThread(tell, const_cast<CMPIBroker*>(m_broker), 0), &result);
  EXPECT_EQ(result, PTHREAD_CANCELED);
  EXPECT_EQ(log.GetLines(), 1);
}

TEST_F(BrokerThreadsTest, ACancelledThreadThatOnlyAsksTheBrokerEnds) {
  using TAsk = void (*)(const CMPIBroker*);
  const TAsk asks[] = {
      [](auto* broker) {
        broker->eft->logMessage(broker, CMPI_SEV_ERROR, "id", "a status", nullptr);
      },
      [](auto* broker) { broker->eft->trace(broker, CMPI_LEV_INFO, "id", "a line", nullptr); },
      [](auto* broker) {
        CMPIObjectPath* path = broker->eft->newObjectPath(broker, "root/test", "T_Base", nullptr);
        broker->bft->enumerateInstanceNames(broker, nullptr, path, nullptr);
      }};
  struct TWork {
    const CMPIBroker* broker;
    TAsk ask;
  };
  const auto run = [](void* given) -> void* {
    const auto* work = static_cast<const TWork*>(given);
    pthread_cancel(pthread_self());
    work->ask(work->broker);
    return nullptr;
  };
  for (const TAsk ask : asks) {
    TWork work = {m_broker, ask};
    CMPI_THREAD_RETURN result = nullptr;
    Xft().joinThread(Xft().newThread(run, &work, 0), &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
  }
}

TEST_F(BrokerThreadsTest, ACancelledThreadEndsBehindTheProviderThatItAsks) {
  struct TWork {
    TBroker* broker;
    TCallOutcome outcome;
  } work = {&m_taken, {}};
  const auto ask = [](void* given) -> void* {
    auto* own = static_cast<TWork*>(given);
    pthread_cancel(pthread_self());
    own->outcome = CallProvider(*own->broker, {"root/test"}, TBrokerResult::EKind::kNothing,
                                [](const CMPIContext*, const CMPIResult*) {
                                  pthread_testcancel();
                                  return CMPIStatus{CMPI_RC_ERR_ACCESS_DENIED, nullptr};
                                });
    pthread_testcancel();
    return nullptr;
  };
  CMPI_THREAD_RETURN result = nullptr;
  Xft().joinThread(Xft().newThread(ask, &work, 0), &result);
  EXPECT_EQ(result, PTHREAD_CANCELED);
  EXPECT_EQ(work.outcome.code, CMPI_RC_ERR_ACCESS_DENIED);
}

TEST_F(BrokerThreadsTest, AThreadThatIsNotToBeCancelledStaysSo) {
  int before = PTHREAD_CANCEL_ENABLE;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
  NewString("text");
  pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &before);
  EXPECT_EQ(before, PTHREAD_CANCEL_DISABLE);
}

TEST_F(BrokerThreadsTest, AnActionRunsOnce) {
  theCount = 0;
  int flag = 0;
  const auto count = [] { ++theCount; };
  EXPECT_EQ(Xft().threadOnce(&flag, count), 0);
  EXPECT_EQ(Xft().threadOnce(&flag, count), 0);
  EXPECT_EQ(theCount, 1);
}

TEST_F(BrokerThreadsTest, AKeyHoldsAValuePerThreadAndCleansItUp) {
  theCount = 0;
  CMPI_THREAD_KEY_TYPE key = 0;
  ASSERT_EQ(Xft().createThreadKey(&key, [](void*) { ++theCount; }), 0);
  EXPECT_EQ(Xft().setThreadSpecific(key, &key), 0);
  struct TWork {
    const CMPIBrokerExtFT* xft;
    CMPI_THREAD_KEY_TYPE key;
    void* found;
  } work = {&Xft(), key, &key};
  const auto look = [](void* given) -> void* {
    auto* own = static_cast<TWork*>(given);
    own->found = own->xft->getThreadSpecific(own->key);
    own->xft->setThreadSpecific(own->key, given);
    return nullptr;
  };
  Xft().joinThread(Xft().newThread(look, &work, 0), nullptr);
  EXPECT_EQ(work.found, nullptr);
  EXPECT_EQ(theCount, 1);
  EXPECT_EQ(Xft().getThreadSpecific(key), &key);
  EXPECT_EQ(Xft().destroyThreadKey(key), 0);
}

TEST_F(BrokerThreadsTest, AMutexIsRecursive) {
  CMPI_MUTEX_TYPE mutex = Xft().newMutex(0);
  Xft().lockMutex(mutex);
  EXPECT_EQ(Xft().lockMutex2(mutex), 0);
  EXPECT_EQ(Xft().unlockMutex2(mutex), 0);
  Xft().unlockMutex(mutex);
  EXPECT_EQ(Xft().destroyMutex2(mutex), 0);
}

TEST_F(BrokerThreadsTest, AConditionWakesItsWaiter) {
  struct TMeeting {
    const CMPIBrokerExtFT* xft;
    CMPI_MUTEX_TYPE mutex;
    CMPI_COND_TYPE condition;
    bool isThere;
  } meeting = {&Xft(), Xft().newMutex(0), Xft().newCondition(0), false};
  const auto come = [](void* given) -> void* {
    auto* place = static_cast<TMeeting*>(given);
    place->xft->lockMutex(place->mutex);
    place->isThere = true;
    place->xft->signalCondition(place->condition);
    place->xft->unlockMutex(place->mutex);
    return nullptr;
  };
  Xft().lockMutex(meeting.mutex);
  CMPI_THREAD_TYPE thread = Xft().newThread(come, &meeting, 0);
  while (!meeting.isThere) EXPECT_EQ(Xft().condWait(meeting.condition, meeting.mutex), 0);
  Xft().unlockMutex(meeting.mutex);
  Xft().joinThread(thread, nullptr);
  Xft().destroyCondition(meeting.condition);
  Xft().destroyMutex(meeting.mutex);
}

TEST_F(BrokerThreadsTest, ADeadlineIsAbsolute) {
  CMPI_MUTEX_TYPE mutex = Xft().newMutex(0);
  CMPI_COND_TYPE condition = Xft().newCondition(0);
  timespec past = {1, 0};
  Xft().lockMutex(mutex);
  EXPECT_EQ(Xft().timedCondWait(condition, mutex, &past), ETIMEDOUT);
  Xft().unlockMutex(mutex);
  EXPECT_EQ(Xft().destroyCondition2(condition), 0);
  EXPECT_EQ(Xft().destroyMutex2(mutex), 0);
}

TEST_F(BrokerThreadsTest, NullIsAnErrorAndNotACrash) {
  EXPECT_EQ(Xft().newThread(nullptr, nullptr, 0), nullptr);
  EXPECT_EQ(Xft().joinThread(nullptr, nullptr), EINVAL);
  EXPECT_EQ(Xft().cancelThread(nullptr), EINVAL);
  EXPECT_EQ(Xft().threadOnce(nullptr, nullptr), EINVAL);
  EXPECT_EQ(Xft().createThreadKey(nullptr, nullptr), EINVAL);
  EXPECT_EQ(Xft().lockMutex2(nullptr), EINVAL);
  EXPECT_EQ(Xft().unlockMutex2(nullptr), EINVAL);
  EXPECT_EQ(Xft().destroyMutex2(nullptr), EINVAL);
  EXPECT_EQ(Xft().condWait(nullptr, nullptr), EINVAL);
  EXPECT_EQ(Xft().timedCondWait(nullptr, nullptr, nullptr), EINVAL);
  EXPECT_EQ(Xft().signalCondition(nullptr), EINVAL);
  EXPECT_EQ(Xft().destroyCondition2(nullptr), EINVAL);
  Xft().lockMutex(nullptr);
  Xft().unlockMutex(nullptr);
  Xft().destroyMutex(nullptr);
  Xft().destroyCondition(nullptr);
}

TEST_F(BrokerThreadsTest, ALibraryNameBecomesItsFileName) {
  char* name = Xft().resolveFileName("example");
  EXPECT_STREQ(name, "libexample.so");
  std::free(name);
  EXPECT_EQ(Xft().resolveFileName(nullptr), nullptr);
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
