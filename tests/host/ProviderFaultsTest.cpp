// SPDX-License-Identifier: Apache-2.0
//
// The real command over vendors' folders with something wrong in them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <ostream>

#include "tests/host/TProviderFixture.h"

namespace host {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

class ProviderFaultsTest : public TProviderFixture {};

// `text` with every "%" replaced.
std::string Fill(std::string text, const std::string& words) {
  for (std::size_t at = text.find('%'); at != std::string::npos;
       at = text.find('%', at + words.size())) {
    text.replace(at, 1, words);
  }
  return text;
}

struct TCheckRow {
  const char* word;   // The library is `lib<word>.so`.
  const char* error;  // What is wrong, "%" standing for its path.
  bool hasOthers;     // It exports functions of other types than the one that is registered.
};
void PrintTo(const TCheckRow& row, std::ostream* out) {
  *out << row.word;
}

class CheckedLibraryTest : public TProviderFixture,
                           public ::testing::WithParamInterface<TCheckRow> {
 protected:
  // The lines of the check, each with `start`, without the last one.
  static std::string GetLines(const std::string& library, const std::string& start) {
    std::string lines = start + "error: " + Fill(GetParam().error, library) + "\n";
    if (!GetParam().hasOthers) return lines;
    for (const char* type : {"Association", "Method"}) {
      std::string word = type;
      word[0] = word[0] == 'A' ? 'a' : 'm';
      lines += start + "warning: " + library + " has Bad_Create_" + type +
               "MI, and no class is registered for " + word + " of provider Bad; add the type " +
               word + " to the registration if it is wanted; see rule R18\n";
    }
    return lines;
  }
  static std::string GetCounts() {
    return std::string("1 error") + (GetParam().hasOthers ? ", 2 warnings" : "");
  }
};

TEST_P(CheckedLibraryTest, IsRefusedWithItsReasonInOneLine) {
  const std::string vendor = MakeBad(GetParam().word);
  const std::string library = vendor + "/lib" + GetParam().word + ".so";
  const TFinished checked = Do({"provider", "check", vendor});
  EXPECT_EQ(checked.status, 2);
  EXPECT_EQ(checked.out, GetLines(library, "bad: ") + "bad: " + GetCounts() + "\n");
  EXPECT_EQ(checked.err, "");
  const TFinished added = Do({"provider", "add", vendor});
  EXPECT_EQ(added.status, 2);
  EXPECT_EQ(added.out, "");
  EXPECT_EQ(added.err, GetLines(library, "diagsrun: bad: ") + "diagsrun: bad: not installed: " +
                           GetCounts() + "; --force installs it all the same\n");
  EXPECT_FALSE(std::filesystem::exists(GetInstalled("bad")));
}

INSTANTIATE_TEST_SUITE_P(
    Libraries, CheckedLibraryTest,
    ::testing::Values(
        TCheckRow{"notalibrary",
                  "%: is no library (no ELF header); ship a library for this machine; see rule R14",
                  false},
        TCheckRow{"unresolved",
                  "% cannot be loaded: %: undefined symbol: DiagsSymbolThatNobodyHas; link it with "
                  "everything that it uses; see rule R5",
                  false},
        TCheckRow{"noentry",
                  "provider Bad in %: its Instance functions have no entry point: neither "
                  "Bad_Create_InstanceMI nor _Generic_Create_InstanceMI (it exports no entry point "
                  "at all); export it, or mend the provider's name or types in the registration; "
                  "see rule R4",
                  false},
        TCheckRow{"nulltable",
                  "provider Bad in %: its Instance functions have no function table; mend the "
                  "factory, or what it needs; see rule R4",
                  true},
        TCheckRow{"factorynull",
                  "provider Bad in %: its Instance functions were not made; mend the factory, or "
                  "what it needs; see rule R4",
                  true},
        TCheckRow{"factoryrefuses",
                  "provider Bad in %: its Instance functions were refused: no hardware here; mend "
                  "the factory, or what it needs; see rule R4",
                  true},
        TCheckRow{"factorythrows",
                  "provider Bad in %: its Instance functions were refused: the provider threw an "
                  "exception: factory on strike; mend the factory, or what it needs; see rule R4",
                  true},
        TCheckRow{"factorycrashes",
                  "%: making the instance functions of provider Bad ended by signal 11 "
                  "(Segmentation fault); mend the library; it would end whoever uses it; see rule "
                  "R7",
                  true},
        TCheckRow{"factoryexits",
                  "%: making the instance functions of provider Bad ended the process with exit "
                  "status 3; mend the library; it would end whoever uses it; see rule R7",
                  true}),
    [](const auto& row) { return std::string(row.param.word); });

struct TFaultRow {
  const char* word;  // The library is `lib<word>.so`.
  const char* line;  // What `list` says of it, "%" standing for its path.
};
void PrintTo(const TFaultRow& row, std::ostream* out) {
  *out << row.word;
}

class FaultyLibraryTest : public TProviderFixture,
                          public ::testing::WithParamInterface<TFaultRow> {};

TEST_P(FaultyLibraryTest, IsOneLineWhileTheTestsOfOthersAreListedAndRun) {
  InstallAcme();
  ASSERT_EQ(Do({"provider", "add", MakeBad(GetParam().word), "--force"}).status, 0);
  const std::string library = GetInstalled("bad") + "/lib" + GetParam().word + ".so";
  const std::string problem = Fill(GetParam().line, library);
  const TFinished listed = Do({"list"});
  EXPECT_EQ(listed.status, 0);
  EXPECT_EQ(listed.err, "diagsrun: " + problem + "\n");
  const json document = json::parse(Do({"list", "--json"}).out);
  EXPECT_EQ(document["problems"], json::array({problem}));
  EXPECT_TRUE(ListsAcme());
  EXPECT_TRUE(RunsAcme());
  EXPECT_EQ(Do({"provider", "remove", "bad"}).status, 0);
  EXPECT_EQ(Do({"list"}).err, "");
}

INSTANTIATE_TEST_SUITE_P(
    Libraries, FaultyLibraryTest,
    ::testing::Values(
        TFaultRow{"missing",
                  "provider library % cannot be loaded: %: cannot open shared object file: No such "
                  "file or directory; put the library there, or mend the registration; see rule "
                  "R13"},
        TFaultRow{"notalibrary",
                  "provider library % cannot be loaded: the file is no library (no ELF header); "
                  "ship a library for this machine; see rule R14"},
        TFaultRow{"unresolved",
                  "provider library % cannot be loaded: %: undefined symbol: "
                  "DiagsSymbolThatNobodyHas; link it with everything that it uses; see rule R5"},
        TFaultRow{"noentry",
                  "provider Bad in %: its Instance functions have no entry point: neither "
                  "Bad_Create_InstanceMI nor _Generic_Create_InstanceMI (it exports no entry point "
                  "at all); export it, or mend the provider's name or types in the registration; "
                  "see rule R4"},
        TFaultRow{"nulltable",
                  "provider Bad in %: its Instance functions have no function table; mend the "
                  "factory, or what it needs; see rule R4"},
        TFaultRow{"factorynull",
                  "provider Bad in %: its Instance functions were not made; mend the factory, or "
                  "what it needs; see rule R4"},
        TFaultRow{"factoryrefuses",
                  "provider Bad in %: its Instance functions were refused: no hardware here; mend "
                  "the factory, or what it needs; see rule R4"},
        TFaultRow{"factorythrows",
                  "provider Bad in %: its Instance functions were refused: the provider threw an "
                  "exception: factory on strike; mend the factory, or what it needs; see rule R4"},
        TFaultRow{"throws",
                  "EnumerateInstances of root/cimv2:CIM_AvailableDiagnosticService failed in "
                  "provider Bad (%): the provider threw an exception: out of luck; its vendor is "
                  "to catch it; see rule R7"},
        TFaultRow{"throwsall",
                  "EnumerateInstances of root/cimv2:CIM_AvailableDiagnosticService failed in "
                  "provider Bad (%): the provider threw an exception: out of luck in "
                  "enumerateInstances; its vendor is to catch it; see rule R7"},
        TFaultRow{"nullslots",
                  "EnumerateInstances of root/cimv2:CIM_AvailableDiagnosticService failed in "
                  "provider Bad (%): CIM_ERR_NOT_SUPPORTED; fill the function in, or mend the "
                  "types; see rule R6"},
        TFaultRow{"code",
                  "EnumerateInstances of root/cimv2:CIM_AvailableDiagnosticService failed in "
                  "provider Bad (%): not for you; its vendor is to look into it"},
        TFaultRow{"codes",
                  "EnumerateInstances of root/cimv2:CIM_AvailableDiagnosticService failed in "
                  "provider Bad (%): not for you: enumerateInstances; its vendor is to look into "
                  "it"},
        TFaultRow{"oddcode",
                  "EnumerateInstances of root/cimv2:CIM_AvailableDiagnosticService failed in "
                  "provider Bad (%): CMPI status 4711; its vendor is to look into it"}),
    [](const auto& row) { return std::string(row.param.word); });

class OddLibraryTest : public TProviderFixture,
                       public ::testing::WithParamInterface<const char*> {};

TEST_P(OddLibraryTest, IsBorneWithoutAWord) {
  InstallAcme();
  ASSERT_EQ(Do({"provider", "add", MakeBad(GetParam()), "--force"}).status, 0);
  EXPECT_EQ(Do({"list"}).err, "");
  EXPECT_TRUE(ListsAcme());
  EXPECT_TRUE(RunsAcme());
}
INSTANTIATE_TEST_SUITE_P(Libraries, OddLibraryTest,
                         ::testing::Values("generic", "oldtable", "notfound", "nodone", "twice",
                                           "releases", "threads", "garbage", "badtext", "late",
                                           "others", "keeps"),
                         [](const auto& row) { return std::string(row.param); });

TEST_F(ProviderFaultsTest, AMissingLibraryIsToldByTheLineThatNamesIt) {
  const std::string vendor = MakeBad("missing");
  const TFinished checked = Do({"provider", "check", vendor});
  EXPECT_EQ(checked.status, 2);
  EXPECT_EQ(checked.out, "bad: error: " + vendor + "/bad.registration:1: the library " + vendor +
                             "/libmissing.so is not there; put it into the folder, or mend the "
                             "registration; see rule R13\nbad: 1 error\n");
}

TEST_F(ProviderFaultsTest, InspectOfAClassThatOnlyAFailingProviderServesIsAnError) {
  InstallAcme();
  ASSERT_EQ(Do({"provider", "add", MakeBad("code"), "--force"}).status, 0);
  for (const std::vector<std::string>& format :
       std::vector<std::vector<std::string>>{{}, {"--json"}}) {
    std::vector<std::string> arguments = {"inspect", "BAD_AvailableDiagnosticService"};
    arguments.insert(arguments.end(), format.begin(), format.end());
    const TFinished finished = Do(arguments);
    EXPECT_EQ(finished.status, 2) << finished.out;
    EXPECT_THAT(finished.err, HasSubstr("not for you"));
  }
  // Of those that serve the superclass one answers.
  const TFinished finished = Do({"inspect", "CIM_AvailableDiagnosticService"});
  EXPECT_EQ(finished.status, 0);
  EXPECT_THAT(finished.err, HasSubstr("not for you"));
}

TEST_F(ProviderFaultsTest, WordsOfALibraryNeverGetIntoADocument) {
  InstallAcme();
  const std::string vendor = MakeBad("stdout");
  EXPECT_EQ(json::parse(Do({"provider", "check", vendor, "--json"}).out)["status"], 0);
  EXPECT_EQ(json::parse(Do({"provider", "add", vendor, "--json"}).out)["added"], true);
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"list", "--json"},
           {"run", "TestPass,tst0,Test device", "--json", "--progress", "always"},
           {"inspect", "BAD_AvailableDiagnosticService", "--json"},
           {"provider", "list", "--json"}}) {
    const TFinished finished = Do(arguments);
    EXPECT_EQ(finished.status, 0);
    EXPECT_FALSE(json::parse(finished.out, nullptr, false).is_discarded()) << finished.out;
  }
  const TFinished inspected = Do({"inspect", "BAD_AvailableDiagnosticService"});
  EXPECT_THAT(inspected.out, ::testing::StartsWith("root/cimv2:BAD_AvailableDiagnosticService."));
  EXPECT_THAT(inspected.err, HasSubstr("words on standard output\n"));
}

}  // namespace
}  // namespace host
