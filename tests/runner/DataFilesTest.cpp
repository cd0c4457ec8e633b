// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TAllocationFault.h"
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

struct TDocument {
  const char* file;
  std::string whole;
};

std::ostream& operator<<(std::ostream& out, const TDocument& document) {
  return out << document.file;
}

/// Loads all three data files, the named one being what the test made of it.
class DataFilesTest : public TRunnerTest, public ::testing::WithParamInterface<TDocument> {
 protected:
  DataFilesTest() { m_world.AddTest("Quick", "cpu0", "Processor"); }

  /// Everything loads without an exception, and a test is still found.
  void ExpectLoads() {
    End();
    DiagsRunner* runner = nullptr;
    ASSERT_NO_THROW(runner = DiagsRunner::GetDiagsRunner(m_world.GetRoot()));
    ASSERT_NO_THROW(runner->EnumerateDiagTests(""));
    EXPECT_EQ(Count("enumerate CIM_AvailableDiagnosticService"), 1U);
    ClearTranscript();
  }
  const char* GetFile() const { return GetParam().file; }
};

TEST_P(DataFilesTest, LoadsTheWholeFile) {
  m_dataRoot.Write(GetFile(), GetParam().whole);
  ExpectLoads();
}

TEST_P(DataFilesTest, LoadsAnEmptyFile) {
  m_dataRoot.Write(GetFile(), "");
  ExpectLoads();
}

TEST_P(DataFilesTest, LoadsAFileThatIsCutAtAnyByte) {
  const std::string& whole = GetParam().whole;
  for (std::size_t size = 1; size < whole.size(); ++size) {
    SCOPED_TRACE(size);
    m_dataRoot.Write(GetFile(), whole.substr(0, size));
    ExpectLoads();
  }
}

TEST_P(DataFilesTest, LoadsAFileThatFillsItsPagesToTheLastByte) {
  for (const std::size_t size : {4096U, 8192U, 65536U}) {
    SCOPED_TRACE(size);
    std::string text = GetParam().whole;
    text.insert(text.rfind("</"), std::string(size - text.size(), ' '));
    m_dataRoot.Write(GetFile(), text);
    ExpectLoads();
  }
}

TEST_P(DataFilesTest, LoadsWhatIsNoXML) {
  const std::string contents[] = {"no markup at all",
                                  "<",
                                  "&",
                                  "<a><b></a></b>",
                                  std::string(64, '\0'),
                                  "\xff\xfe<\0q\0e\0l\0",
                                  "\x80\x81<qel>",
                                  "<!DOCTYPE a [<!ENTITY b \"&b;&b;\">]><a>&b;</a>",
                                  std::string(5000, '<'),
                                  "<?xml version='1.0' encoding='none'?><a/>"};
  for (const std::string& content : contents) {
    SCOPED_TRACE(Escape(content.substr(0, 40)));
    m_dataRoot.Write(GetFile(), content);
    ExpectLoads();
  }
}

TEST_P(DataFilesTest, ADirectoryInItsPlaceIsNoCrash) {
  m_dataRoot.MakeDirectory(GetFile());
  m_system.m_fileSizes[GetFile()] = 4096;
  ExpectLoads();
}

TEST_P(DataFilesTest, LoadsAFileThatVanishedAfterItWasSized) {
  m_system.m_fileSizes[GetFile()] = 5000;
  ExpectLoads();
}

TEST_P(DataFilesTest, LoadsAFileThatShrankAfterItWasSized) {
  m_dataRoot.Write(GetFile(), GetParam().whole);
  m_system.m_fileSizes[GetFile()] = GetParam().whole.size() + 5000;
  ExpectLoads();
}

TEST_P(DataFilesTest, LoadsAFileThatGrewAfterItWasSized) {
  m_dataRoot.Write(GetFile(), GetParam().whole + std::string(5000, ' '));
  m_system.m_fileSizes[GetFile()] = GetParam().whole.size() / 2;
  ExpectLoads();
}

TEST_P(DataFilesTest, LoadsAHundredMegabytesOfNothing) {
  m_dataRoot.WriteSparse(GetFile(), 100L * 1024 * 1024);
  ExpectLoads();
}

TEST_P(DataFilesTest, LoadsASizeThatWrapsRoundIn32Bits) {
  // The count is one of 32 bits: 2^32 bytes are as good as none.
  m_dataRoot.Write(GetFile(), GetParam().whole);
  m_system.m_fileSizes[GetFile()] = std::uint64_t{1} << 32U;
  ExpectLoads();
}

INSTANTIATE_TEST_SUITE_P(
    Files, DataFilesTest,
    ::testing::Values(
        TDocument{kExcludedTests,
                  "<qel version=\"1\"><test name=\"Other\"/><test id='1' name=\"More\"/></qel>"},
        TDocument{kMatrix, "<m><biosid name=\"p99\"><diagnostictest name=\"Other\"/></biosid></m>"},
        TDocument{kCatalogue,
                  "<diaganalysis version=\"1\"><diagnostictest name=\"A\"><result state=\"ok\">"
                  "<errorcode>1</errorcode><msg>fine &amp; well</msg>"
                  "<action priority=\"1\">go</action></result></diagnostictest></diaganalysis>"}));

class LargeFilesTest : public TRunnerTest {};

TEST_F(LargeFilesTest, ACatalogueOneByteShortOf32BitsGetsABufferOfTheReducedCount) {
  // With its terminator the count is 0: nothing huge is asked for, and nothing is overrun.
  m_world.AddTest("Quick", "cpu0", "Processor");
  m_dataRoot.Write(kCatalogue, std::string(100, 'x'));
  m_system.m_fileSizes[kCatalogue] = 0xFFFFFFFFU;
  const TAllocationFault fault(std::size_t{1} << 30U);
  ASSERT_NO_THROW(Start());
  EXPECT_FALSE(fault.HasStruck());
  EXPECT_EQ(fgDiagInstance->EnumerateDiagTests(""), "Quick,cpu0,Processor|");
}

TEST_F(LargeFilesTest, AMatrixOneByteShortOf32BitsOverrunsNothing) {
  m_world.AddTest("Quick", "cpu0", "Processor");
  m_dataRoot.Write(kMatrix, std::string(100, 'x'));
  m_system.m_fileSizes[kMatrix] = 0xFFFFFFFFU;
  const TAllocationFault fault(std::size_t{1} << 30U);
  const std::string answer = Start().EnumerateDiagTests("");
  EXPECT_EQ(answer, fault.HasStruck() ? "No matching diagnostic test or device found.\n"
                                      : "Quick,cpu0,Processor|");
}

}  // namespace
}  // namespace scripted
