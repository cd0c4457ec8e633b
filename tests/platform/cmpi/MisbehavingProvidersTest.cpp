// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/cmpi/TCMPIOperations.h"
#include "platform/cmpi/abi/cmpi.h"
#include "platform/contract/TQELException.h"
#include "tests/platform/cmpi/LibraryBytes.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {
namespace {

constexpr const char* kClasses = R"(
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
class BAD_Base { [Key] string InstanceID; string Name; string ElementName; };
class BAD_Object : BAD_Base { };
class BAD_Other : BAD_Base { };
)";

/// Hosts libraries that misbehave, each for a class of its own.
class MisbehavingProvidersTest : public testing::Test {
 protected:
  void Host(const std::string& library, const std::string& other = "") {
    const std::string file = m_folder.GetPath("bad.registration");
    TRegistrations registrations;
    {
      std::ofstream out(file);
      out << "BAD_Object root/cimv2 Bad " << library << " instance association method\n";
      if (!other.empty()) out << "BAD_Other root/cimv2 Bad " << other << " instance\n";
    }
    Copy(library);
    if (!other.empty()) Copy(other);
    registrations.Load(file);
    unlink(file.c_str());
    auto classes = std::make_shared<TClassRepository>();
    ASSERT_TRUE(classes->LoadText(kClasses, "bad.mof").empty());
    m_operations = std::make_unique<TCMPIOperations>(classes, registrations);
    ASSERT_TRUE(m_operations->GetProblems().empty()) << m_operations->GetProblems().front();
  }

  /// Libraries lie beside their registration. A copy knows nothing of what others have done.
  void Copy(const std::string& library) {
    const std::string source = std::string(DIAGS_BAD_DIR) + "/lib" + library + ".so";
    const std::string target = m_folder.GetPath("lib" + library + ".so");
    // One that is loaded must not change.
    std::filesystem::remove(target);
    if (library != "missing") std::filesystem::copy_file(source, target);
  }

  std::vector<TCIMInstanceData> Enumerate(const std::string& className = "BAD_Object") {
    std::vector<TCIMInstanceData> found;
    m_operations->EnumerateInstances("root/cimv2", className, [&](TCIMInstanceData&& data) {
      found.push_back(std::move(data));
      return true;
    });
    return found;
  }

  const TTemporaryFolder m_folder;
  std::unique_ptr<TCMPIOperations> m_operations;
};

struct TFaultRow {
  const char* library;
  const char* reason;
};
void PrintTo(const TFaultRow& row, std::ostream* out) {
  *out << row.library;
}

class FaultyProviderTest : public MisbehavingProvidersTest,
                           public testing::WithParamInterface<TFaultRow> {};

TEST_P(FaultyProviderTest, FailsWithItsReasonOnceWhileOthersGoOn) {
  Host(GetParam().library, "nodone");
  for (int i = 0; i < 2; ++i) {
    try {
      Enumerate();
      FAIL() << "no exception";
    } catch (const TQELException& failure) {
      EXPECT_NE(std::string(failure.what()).find(GetParam().reason), std::string::npos)
          << failure.what();
    }
    EXPECT_EQ(Enumerate("BAD_Base").size(), 1U);
  }
  // Asking for another class words another operation; the reason of each is there once.
  EXPECT_LE(m_operations->GetProblems().size(), 2U);
  EXPECT_FALSE(m_operations->GetProblems().empty());
}

TEST_F(MisbehavingProvidersTest, AProviderNameThatTheFactoryDoesNotKnowIsAReason) {
  Host("factoryunknown");
  try {
    Enumerate();
    FAIL() << "no exception";
  } catch (const TQELException& failure) {
    EXPECT_EQ(failure.GetCIMStatus(), static_cast<unsigned int>(CMPI_RC_ERR_FAILED));
  }
  EXPECT_THAT(m_operations->GetProblems(),
              testing::ElementsAre("provider Bad in " + m_folder.GetPath("libfactoryunknown.so") +
                                   ": its Instance functions were refused: no provider of that "
                                   "name; see rule R4"));
}

TEST_F(MisbehavingProvidersTest, ManyUndeclaredClassesAreOneLineWithTheirNumber) {
  const std::string file = m_folder.GetPath("bad.registration");
  std::ofstream out(file);
  for (int i = 0; i < 5000; ++i) out << "BAD_No" << i << " root/cimv2/ Bad nodone instance\n";
  out << "BAD_Object root/cimv2/ Bad nodone instance\n";
  out.close();
  Copy("nodone");
  TRegistrations registrations;
  registrations.Load(file);
  auto classes = std::make_shared<TClassRepository>();
  ASSERT_TRUE(classes->LoadText(kClasses, "bad.mof").empty());
  m_operations = std::make_unique<TCMPIOperations>(classes, registrations);
  EXPECT_THAT(m_operations->GetProblems(),
              testing::ElementsAre(file + ": 5000 of its classes, such as BAD_No0, are not "
                                          "declared; add the MOF files that declare them; see rule "
                                          "R3"));
  EXPECT_EQ(Enumerate().size(), 1U);
}

TEST_F(MisbehavingProvidersTest, ALibraryThatIsCutOffIsAReasonWhileOthersGoOn) {
  Host("twice", "nodone");
  const std::string library = m_folder.GetPath("libtwice.so");
  const std::string whole = ReadBytes(library);
  const std::size_t half = FindLoadedEnd(whole) / 2;
  unlink(library.c_str());
  std::ofstream(library, std::ios::binary) << whole.substr(0, half);
  m_operations->OpenLibraries();
  EXPECT_THAT(m_operations->GetProblems(),
              testing::ElementsAre("provider library " + library + " cannot be loaded: the file " +
                                   DescribeCut(half) +
                                   "; ship a library for this "
                                   "machine; see rule R14"));
  EXPECT_EQ(Enumerate("BAD_Base").size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Libraries, FaultyProviderTest,
    testing::Values(
        TFaultRow{"notalibrary", "cannot be loaded"}, TFaultRow{"missing", "cannot be loaded"},
        TFaultRow{"unresolved", "DiagsSymbolThatNobodyHas"},
        TFaultRow{"noentry", "neither Bad_Create_InstanceMI nor"},
        TFaultRow{"nulltable", "no function table"},
        TFaultRow{"nullslots", "CIM_ERR_NOT_SUPPORTED"},
        TFaultRow{"factorythrows", "factory on strike"}, TFaultRow{"factorynull", "were not made"},
        TFaultRow{"factoryrefuses", "no hardware here"},
        TFaultRow{"factoryunknown", "no provider of that name"}, TFaultRow{"throws", "out of luck"},
        TFaultRow{"throwsnull", ": the provider threw an exception"},
        TFaultRow{"throwsall", "out of luck in enumerateInst"},
        TFaultRow{"codes", "not for you: enumerateInstances"}, TFaultRow{"code", "not for you"},
        TFaultRow{"oddcode", "CMPI status 4711"}),
    [](const auto& row) { return std::string(row.param.library); });

struct TCountRow {
  const char* library;
  std::size_t instances;
};
void PrintTo(const TCountRow& row, std::ostream* out) {
  *out << row.library;
}

class OddProviderTest : public MisbehavingProvidersTest,
                        public testing::WithParamInterface<TCountRow> {};

TEST_P(OddProviderTest, GivesItsInstancesAllTheSame) {
  Host(GetParam().library);
  EXPECT_EQ(Enumerate().size(), GetParam().instances);
}

INSTANTIATE_TEST_SUITE_P(Libraries, OddProviderTest,
                         testing::Values(TCountRow{"generic", 1}, TCountRow{"oldtable", 1},
                                         TCountRow{"notfound", 0}, TCountRow{"nodone", 1},
                                         TCountRow{"twice", 1}, TCountRow{"releases", 1},
                                         TCountRow{"stdout", 1}, TCountRow{"threads", 2},
                                         TCountRow{"wrongthings", 1}),
                         [](const auto& row) { return std::string(row.param.library); });

struct TCallRow {
  const char* call;  ///< The provider function that is asked.
  std::function<void(ICIMOperations&, const TCIMInstanceData&)> ask;
};
void PrintTo(const TCallRow& row, std::ostream* out) {
  *out << row.call;
}

class FailingCallTest : public MisbehavingProvidersTest,
                        public testing::WithParamInterface<TCallRow> {
 protected:
  /// What the library's words come back as.
  TQELException Ask(const std::string& library) {
    Host(library);
    TCIMInstanceData data;
    data.path = TCIMReference::Parse("root/cimv2:BAD_Object.InstanceID=\"one\"");
    try {
      GetParam().ask(*m_operations, data);
    } catch (const TQELException& failure) {
      return failure;
    }
    ADD_FAILURE() << "no exception";
    return TQELException(TQELStatusCode::kFailed, "");
  }
};

TEST_P(FailingCallTest, BringsTheCodeAndTheWordsUp) {
  const TQELException failure = Ask("codes");
  EXPECT_EQ(failure.GetCIMStatus(), 2U);
  EXPECT_THAT(failure.what(), testing::HasSubstr(std::string("not for you: ") + GetParam().call));
}

TEST_P(FailingCallTest, TurnsWhatWasThrownIntoAFailure) {
  const TQELException failure = Ask("throwsall");
  EXPECT_EQ(failure.GetCIMStatus(), 1U);
  EXPECT_THAT(failure.what(), testing::HasSubstr(std::string("the provider threw an exception: "
                                                             "out of luck in ") +
                                                 GetParam().call));
}

const ICIMOperations::TInstanceSink kIgnore = [](TCIMInstanceData&&) { return true; };

INSTANTIATE_TEST_SUITE_P(
    Calls, FailingCallTest,
    testing::Values(TCallRow{"enumerateInstanceNames",
                             [](ICIMOperations& operations, const TCIMInstanceData&) {
                               operations.EnumerateInstanceNames("root/cimv2", "BAD_Object");
                             }},
                    TCallRow{"enumerateInstances",
                             [](ICIMOperations& operations, const TCIMInstanceData&) {
                               operations.EnumerateInstances("root/cimv2", "BAD_Object", kIgnore);
                             }},
                    TCallRow{"getInstance",
                             [](ICIMOperations& operations, const TCIMInstanceData& data) {
                               operations.GetInstance(data.path);
                             }},
                    TCallRow{"createInstance",
                             [](ICIMOperations& operations, const TCIMInstanceData& data) {
                               operations.CreateInstance("root/cimv2", data);
                             }},
                    TCallRow{"modifyInstance",
                             [](ICIMOperations& operations, const TCIMInstanceData& data) {
                               operations.ModifyInstance(data);
                             }},
                    TCallRow{"deleteInstance",
                             [](ICIMOperations& operations, const TCIMInstanceData& data) {
                               operations.DeleteInstance(data.path);
                             }},
                    TCallRow{"associators",
                             [](ICIMOperations& operations, const TCIMInstanceData& data) {
                               operations.Associators(data.path, {}, kIgnore);
                             }},
                    TCallRow{"associatorNames",
                             [](ICIMOperations& operations, const TCIMInstanceData& data) {
                               operations.AssociatorNames(data.path, {});
                             }},
                    TCallRow{"references",
                             [](ICIMOperations& operations, const TCIMInstanceData& data) {
                               operations.References(data.path, {}, kIgnore);
                             }},
                    TCallRow{"referenceNames",
                             [](ICIMOperations& operations, const TCIMInstanceData& data) {
                               operations.ReferenceNames(data.path, {});
                             }},
                    TCallRow{"invokeMethod",
                             [](ICIMOperations& operations, const TCIMInstanceData& data) {
                               TKeyMap none;
                               operations.InvokeMethod(data.path, "Work", none);
                             }}),
    [](const auto& row) { return std::string(row.param.call); });

TEST_F(MisbehavingProvidersTest, ACleanupThatFailsOrThrowsEndsNothingElse) {
  for (const char* library : {"codes", "throwsall"}) {
    Host(library, "nodone");
    EXPECT_THROW(Enumerate(), TQELException);
    EXPECT_EQ(Enumerate("BAD_Other").size(), 1U);
    m_operations.reset();
  }
}

TEST_F(MisbehavingProvidersTest, FailuresThatAreEachWordedAnewDoNotFillTheMemory) {
  Host("codes");
  TCIMReference path = TCIMReference::Parse("root/cimv2:BAD_Object.InstanceID=\"one\"");
  for (int i = 0; i < 1100; ++i) {
    path.SetKey("InstanceID", TCIMValue(std::to_string(i)));
    EXPECT_THROW(m_operations->ReferenceNames(path, {}), TQELException);
  }
  const std::vector<std::string> problems = m_operations->GetProblems();
  ASSERT_EQ(problems.size(), 1001U);
  EXPECT_THAT(problems[999], testing::HasSubstr("InstanceID=\"999\""));
  EXPECT_EQ(problems[1000], "there are more problems; they are not told");
}

TEST_F(MisbehavingProvidersTest, PointersThatAreKeptBeyondTheirCallAreRefused) {
  Host("keeps");
  Enumerate();
  try {
    Enumerate();
    FAIL() << "no exception";
  } catch (const TQELException& failure) {
    EXPECT_THAT(failure.what(), testing::HasSubstr("5 of 5 were refused"));
  }
}

TEST_F(MisbehavingProvidersTest, InstancesOfOtherClassesAreLeftOutWhereTheyAreAskedForThemselves) {
  Host("others");
  std::vector<std::string> classes;
  for (const TCIMInstanceData& data : Enumerate()) classes.push_back(data.path.GetClassName());
  EXPECT_THAT(m_operations->GetProblems(),
              testing::ElementsAre(testing::HasSubstr(
                  "gave an object of BAD_Other where BAD_Object was asked for; it is left out")));
  EXPECT_THAT(classes,
              testing::ElementsAre("BAD_Unheard", "BAD_Object", "not a name", "BAD_Object"));
}

TEST_F(MisbehavingProvidersTest, ValuesOfWrongTypesArriveAsTheyWereGiven) {
  Host("garbage");
  const auto found = Enumerate();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].Find("Name")->value.ToSigned(), -5);
  EXPECT_TRUE(found[0].Find("ElementName")->value.IsNull());
  EXPECT_EQ(found[0].Find("Caption"), nullptr);
  const auto texts = static_cast<std::vector<TCIMValue>>(found[0].Find("Texts")->value);
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_TRUE(texts[0].IsNull());
  EXPECT_EQ(texts[1].ToString(10), "second");
}

TEST_F(MisbehavingProvidersTest, BytesThatAreNotUtf8CountAsIso88591) {
  Host("badtext");
  EXPECT_EQ(Enumerate().at(0).Find("ElementName")->value.ToString(10), "a\xC3\xBFz");
}

TEST_F(MisbehavingProvidersTest, AResultThatIsKeptBeyondItsCallIsRefused) {
  Host("late");
  EXPECT_EQ(Enumerate().size(), 1U);
  try {
    Enumerate();
    FAIL() << "no exception";
  } catch (const TQELException& failure) {
    EXPECT_EQ(failure.GetCIMStatus(), 60U) << failure.what();
  }
}

TEST_F(MisbehavingProvidersTest, TheEndCleansEveryProviderUpOnce) {
  Host("nodone");
  Enumerate();
  const std::string path = m_folder.GetPath("libnodone.so");
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(library, nullptr);
  int (*cleanups)() = nullptr;
  void* symbol = dlsym(library, "BadCleanups");
  ASSERT_NE(symbol, nullptr);
  std::memcpy(&cleanups, &symbol, sizeof cleanups);
  const int before = cleanups();
  m_operations.reset();
  EXPECT_EQ(cleanups(), before + 1);
  dlclose(library);
}

TEST_F(MisbehavingProvidersTest, AnUnknownClassIsAnError) {
  Host("nodone");
  try {
    Enumerate("BAD_Nothing");
    FAIL() << "no exception";
  } catch (const TQELException& failure) {
    EXPECT_EQ(failure.GetCIMStatus(), 5U);
  }
}

/// One enumeration of very many instances. How many is up to the test: a million takes a minute in
/// a build for debugging, and shows no more than what is compared here.
class ManyInstancesTest : public MisbehavingProvidersTest {
 protected:
  struct TOutcome {
    int count = 0;
    bool isInOrder = true;
    std::size_t held = 0;  ///< Bytes, as the first instance arrives and all others wait.
    std::size_t left = 0;  ///< Bytes, when all have gone.
    double seconds = 0;    ///< Of the processor.
  };

  TOutcome EnumerateMany(int many) {
    setenv("DIAGS_BAD_COUNT", std::to_string(many).c_str(), 1);
    TOutcome outcome;
    const std::clock_t start = std::clock();
    const std::size_t before = GetUsedBytes();
    m_operations->EnumerateInstances("root/cimv2", "BAD_Object", [&](TCIMInstanceData&& data) {
      if (outcome.count == 0) outcome.held = GetUsedBytes() - before;
      const std::string id = data.Find("InstanceID")->value.ToString(10);
      outcome.isInOrder = outcome.isInOrder && id == std::to_string(outcome.count++);
      return true;
    });
    outcome.left = std::max(GetUsedBytes(), before) - before;
    outcome.seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    return outcome;
  }

 private:
  // Sanitizers have an allocator of their own, and tell of leaks themselves.
  static std::size_t GetUsedBytes() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
  }
};

// Nothing that is left over by each instance, or by each hundredth, is hidden by anything else: the
// smallest piece of memory has 32 bytes, and of this many instances less than one byte each may
// stay.
TEST_F(ManyInstancesTest, TensOfThousandsArriveEachInItsPlaceAndLeaveNothingBehind) {
  constexpr int kMany = 20'000;
  Host("million");
  // What is remembered of objects that have ended is bounded, and fills with the first thousands.
  EnumerateMany(2'000);
  const TOutcome outcome = EnumerateMany(kMany);
  EXPECT_EQ(outcome.count, kMany);
  EXPECT_TRUE(outcome.isInOrder);
  EXPECT_LT(outcome.left, std::size_t{kMany});
}

// Sixteen times as many take sixteen times as long and as much memory; with any search through
// those that came before, the time would go towards 256 times as long. A step of such a search
// takes some nanoseconds, an instance some ten thousand: with thousands of steps for each it cannot
// be missed. Whatever else the machine does can slow either down, but not in every round.
TEST_F(ManyInstancesTest, TimeAndMemoryGrowNoFasterThanTheirNumber) {
  constexpr int kFew = 2'000;
  constexpr int kTimes = 16;
  constexpr int kRounds = 5;
  // Twice what an instance of two texts takes while it waits.
  constexpr std::size_t kMostForEach = 1024;
  Host("million");
  EnumerateMany(kFew);
  bool isInTime = false;
  for (int round = 0; round < kRounds && !isInTime; ++round) {
    const TOutcome few = EnumerateMany(kFew);
    const TOutcome many = EnumerateMany(kFew * kTimes);
    isInTime = many.seconds < 3 * kTimes * few.seconds;
    EXPECT_LT(many.held, kMostForEach * kFew * kTimes);
  }
  EXPECT_TRUE(isInTime);
}

}  // namespace
}  // namespace NZEPQEL20
