// SPDX-License-Identifier: Apache-2.0
//
// How long objects and memory live. What a test leaves alive or touches too late, the sanitizers
// of the other builds tell.
#include <malloc.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "platform/cmpi/TBrokerResult.h"
#include "tests/platform/cmpi/broker/TBrokerTest.h"

namespace NZEPQEL20::cmpi {
namespace {

/// An object that counts itself.
class TCounted : public TBrokerObject {
 public:
  explicit TCounted(int& alive) : m_alive(alive) { ++m_alive; }
  ~TCounted() override { --m_alive; }
  std::string Describe() const override { return "counted"; }

 private:
  int& m_alive;
};

class BrokerScopesTest : public TBrokerTest {
 protected:
  int m_alive = 0;
};

TEST_F(BrokerScopesTest, ObjectsDieWithTheCallThatMadeThem) {
  Make<TCounted>(m_alive);
  Make<TCounted>(m_alive);
  EXPECT_EQ(m_alive, 2);
  EndCall();
  EXPECT_EQ(m_alive, 0);
}

TEST_F(BrokerScopesTest, ANestedCallEndsItsOwnObjectsOnly) {
  Make<TCounted>(m_alive);
  {
    const TCallFrame inner(m_taken);
    Make<TCounted>(m_alive);
    EXPECT_EQ(m_alive, 2);
  }
  EXPECT_EQ(m_alive, 1);
}

TEST_F(BrokerScopesTest, AnEndedObjectRefusesEveryCallForAWhile) {
  CMPIObjectPath* path = NewPath();
  CMPIInstance* instance = NewInstance();
  CMPIArgs* args = m_broker->eft->newArgs(m_broker, nullptr);
  CMPIArray* array = m_broker->eft->newArray(m_broker, 1, CMPI_uint8, nullptr);
  CMPIDateTime* time = m_broker->eft->newDateTime(m_broker, nullptr);
  CMPIString* string = NewString("gone");
  EndCall();
  const auto expectRefused = [](CMPIStatus status) {
    EXPECT_EQ(status.rc, CMPI_RC_ERR_INVALID_HANDLE);
  };
  path->ft->getKeyCount(path, &m_rc);
  expectRefused(m_rc);
  instance->ft->getPropertyCount(instance, &m_rc);
  expectRefused(m_rc);
  expectRefused(args->ft->addArg(args, "a", nullptr, CMPI_string));
  expectRefused(array->ft->release(array));
  time->ft->getBinaryFormat(time, &m_rc);
  expectRefused(m_rc);
  EXPECT_EQ(string->ft->getCharPtr(string, &m_rc), nullptr);
  expectRefused(m_rc);
  // Old headers ask nobody: they take the first word for the text, or for a null object.
  EXPECT_STREQ(static_cast<const char*>(string->hdl), "");
  EXPECT_EQ(path->hdl, nullptr);
}

TEST_F(BrokerScopesTest, ACloneThatIsReleasedTwiceIsRefusedTheSecondTime) {
  CMPIString* string = NewString("kept");
  CMPIString* clone = string->ft->clone(string, &m_rc);
  EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_OK);
  EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_ERR_INVALID_HANDLE);
}

TEST_F(BrokerScopesTest, ACloneOutlivesItsCall) {
  CMPIString* string = NewString("kept");
  CMPIString* clone = string->ft->clone(string, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  EndCall();
  EXPECT_EQ(Text(clone), "kept");
  EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_OK);
}

TEST_F(BrokerScopesTest, ClonesOfEveryTypeAreDeepAndTheirOwners) {
  CMPIInstance* instance = NewInstance();
  instance->ft->setProperty(instance, "Colour", Chars("red"), CMPI_chars);
  CMPIInstance* instanceClone = instance->ft->clone(instance, nullptr);
  instance->ft->setProperty(instance, "Colour", Chars("blue"), CMPI_chars);
  CMPIObjectPath* path = NewPath();
  CMPIObjectPath* pathClone = path->ft->clone(path, nullptr);
  path->ft->setClassName(path, "Other");
  CMPIArray* array = m_broker->eft->newArray(m_broker, 1, CMPI_string, nullptr);
  array->ft->setElementAt(array, 0, Chars("one"), CMPI_chars);
  CMPIArray* arrayClone = array->ft->clone(array, nullptr);
  array->ft->setElementAt(array, 0, Chars("two"), CMPI_chars);
  CMPIArgs* args = m_broker->eft->newArgs(m_broker, nullptr);
  CMPIArgs* argsClone = args->ft->clone(args, nullptr);
  args->ft->addArg(args, "A", Chars("a"), CMPI_chars);
  EndCall();
  BeginCall();
  EXPECT_EQ(Text(instanceClone->ft->getProperty(instanceClone, "Colour", nullptr).value.string),
            "red");
  EXPECT_EQ(Text(pathClone->ft->getClassName(pathClone, nullptr)), "T_Base");
  EXPECT_EQ(Text(arrayClone->ft->getElementAt(arrayClone, 0, nullptr).value.string), "one");
  EXPECT_EQ(argsClone->ft->getArgCount(argsClone, nullptr), 0U);
  EXPECT_EQ(instanceClone->ft->release(instanceClone).rc, CMPI_RC_OK);
  EXPECT_EQ(pathClone->ft->release(pathClone).rc, CMPI_RC_OK);
  EXPECT_EQ(arrayClone->ft->release(arrayClone).rc, CMPI_RC_OK);
  EXPECT_EQ(argsClone->ft->release(argsClone).rc, CMPI_RC_OK);
}

TEST_F(BrokerScopesTest, WhatIsReleasedDuringACallIsGoneAtOnce) {
  const std::size_t before = mallinfo2().uordblks;
  for (int i = 0; i < 100'000; ++i) {
    CMPIString* string = NewString("a text that is too long for the string object itself");
    string->ft->release(string);
  }
  // Shells stay for a while.
  constexpr std::size_t kAllowed = 1024 * 1024;
  EXPECT_LT(mallinfo2().uordblks, before + kAllowed);
}

TEST_F(BrokerScopesTest, ASecondReleaseIsRefused) {
  CMPIString* string = NewString("text");
  EXPECT_EQ(string->ft->release(string).rc, CMPI_RC_OK);
  EXPECT_EQ(string->ft->release(string).rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(string->ft->getCharPtr(string, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
}

TEST_F(BrokerScopesTest, WhatTheBrokerPassedInSurvivesItsRelease) {
  TBrokerContext own(TBrokerContext::EntriesFor("root/test"));
  own.SetLifetime(ELifetime::kPassed);
  CMPIContext* context = &own;
  EXPECT_EQ(context->ft->release(context).rc, CMPI_RC_OK);
  EXPECT_EQ(context->ft->getEntryCount(context, nullptr), 6U);
}

TEST_F(BrokerScopesTest, AMarkEndsWhatWasMadeSinceButNotItsClones) {
  const CMPIBrokerMemFT& mft = *m_broker->mft;
  Make<TCounted>(m_alive);
  CMPIGcStat* outer = mft.mark(m_broker, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  Make<TCounted>(m_alive);
  CMPIGcStat* inner = mft.mark(m_broker, nullptr);
  CMPIString* string = NewString("kept");
  CMPIString* clone = string->ft->clone(string, nullptr);
  Make<TCounted>(m_alive);
  EXPECT_EQ(m_alive, 3);
  EXPECT_EQ(mft.release(m_broker, inner).rc, CMPI_RC_OK);
  EXPECT_EQ(m_alive, 2);
  EXPECT_EQ(mft.release(m_broker, outer).rc, CMPI_RC_OK);
  EXPECT_EQ(m_alive, 1);
  EXPECT_EQ(Text(clone), "kept");
  clone->ft->release(clone);
}

TEST_F(BrokerScopesTest, ReleasingAnOuterMarkEndsTheInnerOnes) {
  const CMPIBrokerMemFT& mft = *m_broker->mft;
  CMPIGcStat* outer = mft.mark(m_broker, nullptr);
  mft.mark(m_broker, nullptr);
  Make<TCounted>(m_alive);
  EXPECT_EQ(mft.release(m_broker, outer).rc, CMPI_RC_OK);
  EXPECT_EQ(m_alive, 0);
}

TEST_F(BrokerScopesTest, WhatIsNoMarkIsAnInvalidHandle) {
  const CMPIBrokerMemFT& mft = *m_broker->mft;
  EXPECT_EQ(mft.release(m_broker, nullptr).rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(mft.release(m_broker, &m_rc).rc, CMPI_RC_ERR_INVALID_HANDLE);
}

TEST_F(BrokerScopesTest, AMarkOfAnotherCallCannotBeReleased) {
  const CMPIBrokerMemFT& mft = *m_broker->mft;
  CMPIGcStat* mark = mft.mark(m_broker, nullptr);
  Make<TCounted>(m_alive);
  {
    const TCallFrame inner(m_taken);
    EXPECT_EQ(mft.release(m_broker, mark).rc, CMPI_RC_ERR_INVALID_HANDLE);
  }
  EXPECT_EQ(m_alive, 1);
  EndCall();
  EXPECT_EQ(m_alive, 0) << "a call ends the marks that were left open";
}

TEST_F(BrokerScopesTest, MemoryIsZeroedGrownCopiedAndFreed) {
  const CMPIBrokerMemFT& mft = *m_broker->mft;
  auto* numbers = static_cast<unsigned int*>(mft.cmpiCalloc(m_broker, 4, sizeof(unsigned int)));
  ASSERT_NE(numbers, nullptr);
  EXPECT_EQ(numbers[3], 0U);
  numbers[3] = 5;
  numbers = static_cast<unsigned int*>(mft.cmpiRealloc(m_broker, numbers, 4096));
  EXPECT_EQ(numbers[3], 5U);
  mft.cmpiFree(m_broker, numbers);
  char* text = mft.cmpiStrDup(m_broker, "text");
  EXPECT_STREQ(text, "text");
  mft.freeChars(m_broker, text);
  EXPECT_EQ(mft.cmpiStrDup(m_broker, nullptr), nullptr);
  EXPECT_NE(mft.cmpiMalloc(m_broker, 64), nullptr) << "left to the broker";
}

TEST_F(BrokerScopesTest, MemoryThatTheBrokerDoesNotKnowIsLeftAlone) {
  const CMPIBrokerMemFT& mft = *m_broker->mft;
  char own[] = "own";
  mft.cmpiFree(m_broker, own);
  mft.cmpiFree(m_broker, nullptr);
  EXPECT_EQ(mft.cmpiRealloc(m_broker, own, 10), nullptr);
  EXPECT_STREQ(own, "own");
  EXPECT_EQ(mft.cmpiCalloc(m_broker, ~std::size_t{0}, 16), nullptr);
}

TEST_F(BrokerScopesTest, WhatIsFreedEarlyIsGoneAtOnce) {
  const CMPIBrokerMemFT& mft = *m_broker->mft;
  const auto expectGone = [&](auto* object, const auto& free) {
    free(m_broker, object);
    EXPECT_EQ(object->ft->release(object).rc, CMPI_RC_ERR_INVALID_HANDLE);
  };
  expectGone(NewString("x"), mft.freeString);
  expectGone(NewInstance(), mft.freeInstance);
  expectGone(NewPath(), mft.freeObjectPath);
  expectGone(m_broker->eft->newArgs(m_broker, nullptr), mft.freeArgs);
  expectGone(m_broker->eft->newArray(m_broker, 1, CMPI_uint8, nullptr), mft.freeArray);
  expectGone(m_broker->eft->newDateTime(m_broker, nullptr), mft.freeDateTime);
}

TEST_F(BrokerScopesTest, FreeingNothingDoesNothing) {
  const CMPIBrokerMemFT& mft = *m_broker->mft;
  CMPIString* other = NewString("x");
  mft.freeSelectExp(m_broker, nullptr);
  mft.freeString(m_broker, nullptr);
  EXPECT_EQ(Text(other), "x");
}

TEST_F(BrokerScopesTest, AResultRefusesWhatComesAfterItsCall) {
  const auto result = TBrokerResult::Open(TBrokerResult::EKind::kInstances);
  const CMPIResult* passed = result.get();
  CMPIInstance* instance = NewInstance();
  EXPECT_EQ(passed->ft->returnInstance(passed, instance).rc, CMPI_RC_OK);
  EXPECT_EQ(passed->ft->returnObjectPath(passed, NewPath()).rc, CMPI_RC_ERR_NOT_SUPPORTED);
  const CMPIUint8 number = 1;
  EXPECT_EQ(passed->ft->returnData(passed, In(number), CMPI_uint8).rc, CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(passed->ft->returnInstance(passed, nullptr).rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(passed->ft->returnDone(passed).rc, CMPI_RC_OK);
  EXPECT_EQ(result->Close().instances.size(), 1U);
  EXPECT_EQ(passed->ft->returnInstance(passed, instance).rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(passed->ft->returnDone(passed).rc, CMPI_RC_ERR_INVALID_HANDLE);
}

TEST_F(BrokerScopesTest, AReturnedInstanceIsTheOneOfThatMoment) {
  const auto result = TBrokerResult::Open(TBrokerResult::EKind::kInstances);
  const CMPIResult* passed = result.get();
  CMPIInstance* instance = NewInstance();
  instance->ft->setProperty(instance, "Colour", Chars("red"), CMPI_chars);
  passed->ft->returnInstance(passed, instance);
  instance->ft->setProperty(instance, "Colour", Chars("blue"), CMPI_chars);
  passed->ft->returnInstance(passed, instance);
  const auto content = result->Close();
  ASSERT_EQ(content.instances.size(), 2U);
  EXPECT_EQ(content.instances[0]->properties[0].value, TCIMValue("red"));
  EXPECT_EQ(content.instances[1]->properties[0].value, TCIMValue("blue"));
}

TEST_F(BrokerScopesTest, AThreadNobodyToldTheBrokerOfCanMakeObjects) {
  std::string text;
  int alive = 0;
  std::thread([&] {
    Make<TCounted>(alive);
    CMPIInstance* instance = NewInstance();
    instance->ft->setProperty(instance, "Colour", Chars("red"), CMPI_chars);
    text = Text(instance->ft->getProperty(instance, "Colour", nullptr).value.string);
    EXPECT_EQ(instance->ft->release(instance).rc, CMPI_RC_OK);
  }).join();
  EXPECT_EQ(text, "red");
  EXPECT_EQ(alive, 0) << "the end of the thread ends its objects";
}

/// Acts when its thread ends.
struct TAtThreadEnd {
  ~TAtThreadEnd() {
    if (act) act();
  }
  std::function<void()> act;
};

TEST_F(BrokerScopesTest, AThreadThatIsEndingCanStillMakeObjects) {
  std::thread([&] {
    // Made before the thread's scope, it ends after that.
    thread_local TAtThreadEnd late;
    late.act = [&] {
      EXPECT_EQ(m_alive, 0) << "the thread's scope has gone";
      const std::unique_ptr<TScope> scope(&TScope::Current());
      Make<TCounted>(m_alive);
      Make<TCounted>(m_alive);
      EXPECT_EQ(m_alive, 2);
      EXPECT_EQ(&TScope::Current(), scope.get());
    };
    Make<TCounted>(m_alive);
    EXPECT_EQ(m_alive, 1);
  }).join();
  EXPECT_EQ(m_alive, 0);
}

TEST_F(BrokerScopesTest, AnObjectReleasedOnAnotherThreadStaysUntilItsCallEnds) {
  CMPIString* string = NewString("text");
  std::thread([&] { EXPECT_EQ(string->ft->release(string).rc, CMPI_RC_OK); }).join();
  EXPECT_EQ(Text(string), "text");
}

TEST_F(BrokerScopesTest, DetachingEndsTheObjectsOfTheThread) {
  CMPIContext* prepared = m_broker->bft->prepareAttachThread(m_broker, nullptr);
  ASSERT_NE(prepared, nullptr);
  int alive = 0;
  std::thread([&] {
    EXPECT_EQ(m_broker->bft->attachThread(m_broker, prepared).rc, CMPI_RC_OK);
    Make<TCounted>(alive);
    EXPECT_EQ(m_broker->bft->detachThread(m_broker, prepared).rc, CMPI_RC_OK);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(m_broker->bft->detachThread(m_broker, prepared).rc, CMPI_RC_ERR_INVALID_HANDLE);
  }).join();
}

TEST_F(BrokerScopesTest, APreparedContextIsACopyOfTheCurrentOne) {
  TBrokerContext own(TBrokerContext::EntriesFor("root/test"));
  CMPIContext* current = &own;
  current->ft->addEntry(current, "Mine", Chars("yes"), CMPI_chars);
  CMPIContext* prepared = m_broker->bft->prepareAttachThread(m_broker, current);
  ASSERT_NE(prepared, nullptr);
  current->ft->addEntry(current, "Mine", Chars("no"), CMPI_chars);
  EXPECT_EQ(Text(prepared->ft->getEntry(prepared, "Mine", nullptr).value.string), "yes");
  EXPECT_EQ(prepared->ft->release(prepared).rc, CMPI_RC_OK);
  EXPECT_EQ(m_broker->bft->attachThread(m_broker, prepared).rc, CMPI_RC_OK);
  EXPECT_EQ(m_broker->bft->detachThread(m_broker, prepared).rc, CMPI_RC_OK);
}

/// A context as a provider has it that kept the one of an earlier call.
CMPIContext* EndedContext() {
  return TPassed<TBrokerContext>(TBrokerContext::EntriesFor("root/test")).Get();
}

TEST_F(BrokerScopesTest, AContextThatWasKeptBeyondItsCallPreparesAsNoneDoes) {
  CMPIContext* kept = EndedContext();
  EXPECT_EQ(kept->ft->getEntryCount(kept, &m_rc), 0U);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
  CMPIContext* prepared = m_broker->bft->prepareAttachThread(m_broker, kept);
  ASSERT_NE(prepared, nullptr);
  EXPECT_EQ(prepared->ft->getEntry(prepared, CMPIPrincipal, nullptr).type, CMPI_string);
  EXPECT_EQ(m_broker->bft->attachThread(m_broker, prepared).rc, CMPI_RC_OK);
  EXPECT_EQ(m_broker->bft->detachThread(m_broker, prepared).rc, CMPI_RC_OK);
}

TEST_F(BrokerScopesTest, AThreadIsAttachedWithAContextThatNobodyPrepared) {
  TBrokerContext own(TBrokerContext::EntriesFor("root/test"));
  CMPIContext* current = &own;
  CMPIContext* cloned = current->ft->clone(current, nullptr);
  for (const CMPIContext* context : {cloned, EndedContext()}) {
    std::thread([&] {
      EXPECT_EQ(m_broker->bft->detachThread(m_broker, context).rc, CMPI_RC_ERR_INVALID_HANDLE);
      EXPECT_EQ(m_broker->bft->attachThread(m_broker, context).rc, CMPI_RC_OK);
      int alive = 0;
      Make<TCounted>(alive);
      EXPECT_EQ(m_broker->bft->detachThread(m_broker, context).rc, CMPI_RC_OK);
      EXPECT_EQ(alive, 0);
      EXPECT_EQ(m_broker->bft->detachThread(m_broker, context).rc, CMPI_RC_ERR_INVALID_HANDLE);
    }).join();
  }
  EXPECT_EQ(cloned->ft->release(cloned).rc, CMPI_RC_OK) << "it stays its maker's";
}

TEST_F(BrokerScopesTest, AttachingNeedsAContext) {
  CMPIContext foreign = {&foreign, nullptr};
  EXPECT_EQ(m_broker->bft->attachThread(m_broker, &foreign).rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(m_broker->bft->attachThread(m_broker, nullptr).rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(m_broker->bft->detachThread(m_broker, &foreign).rc, CMPI_RC_ERR_INVALID_HANDLE);
}

TEST_F(BrokerScopesTest, ACopyOfTheBrokerWorksAsTheBroker) {
  // Wrapper libraries pass such copies, with the later tables missing.
  CMPIBroker copy = {m_broker->hdl, m_broker->bft, m_broker->eft, nullptr, nullptr};
  EXPECT_TRUE(copy.eft->classPathIsA(&copy, NewPath("T_Derived"), "T_Base", nullptr));
  std::thread([&] {
    EXPECT_TRUE(copy.eft->classPathIsA(&copy, NewPath("T_Derived"), "T_Base", nullptr));
    EXPECT_TRUE(copy.eft->classPathIsA(nullptr, NewPath("T_Derived"), "T_Base", nullptr));
  }).join();
}

TEST_F(BrokerScopesTest, ARetiredBrokerRefusesAndIsTakenUpAgain) {
  EndCall();
  m_taken.Retire();
  std::thread([&] {
    EXPECT_FALSE(m_broker->eft->classPathIsA(m_broker, NewPath("T_Derived"), "T_Base", &m_rc));
  }).join();
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(&TBroker::Take(*this), &m_taken);
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
