// SPDX-License-Identifier: Apache-2.0
// TXmlParser with an empty derived parser against expat alone, over the same bytes.
#include <sys/resource.h>

#include <string>

#include "bench/BareExpat.h"
#include "bench/Ratio.h"
#include "platform/contract/TXmlParser.h"

namespace {

using NZEPQEL20::TXmlAttributes;
using NZEPQEL20::TXmlParser;

class TEmptyParser final : public TXmlParser {
 public:
  void StartElement(const char* /*name*/, TXmlAttributes& attributes) override {
    benchmark::DoNotOptimize(attributes.size());
  }
  void EndElement(const char* /*name*/) override {}
  void processingInstruction(const char* /*target*/, const char* /*data*/) override {}
  void characters(const char* text, unsigned int /*length*/) override {
    benchmark::DoNotOptimize(text);
  }
  void notationDecl(const char* /*name*/, const char* /*publicId*/,
                    const char* /*systemId*/) override {}
  void FatalError(const char* message) override { m_error = message; }

  std::string m_error;
};

// A message catalogue of about `bytes` bytes.
std::string MakeCatalogue(std::size_t bytes) {
  std::string text = "<?xml version=\"1.0\"?>\n<diaganalysis version=\"1.0\">\n";
  for (unsigned int i = 0; text.size() < bytes; ++i) {
    const std::string number = std::to_string(i);
    text += "<diagnostictest name=\"Disk Verify " + number +
            "\">\n  <result state=\"failed\">\n    <errorcode>0x" + number +
            "</errorcode>\n    <msg>Sectors could not be read &amp; were skipped.</msg>\n"
            "    <action priority=\"1\">Save the data, then replace the disk.</action>\n"
            "  </result>\n</diagnostictest>\n";
  }
  return text + "</diaganalysis>\n";
}

long GetPeakKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// Argument: megabytes. "grown_kB" is what the parses added to the process's peak.
void BM_XmlParserAgainstExpat(benchmark::State& state) {
  std::string document = MakeCatalogue(static_cast<std::size_t>(state.range(0)) << 20U);
  const long before = GetPeakKilobytes();
  bench::MeasureRatio(
      state,
      [&document, &state] {
        TEmptyParser parser;
        parser.Parse(document.data(), document.size());
        if (!parser.m_error.empty()) state.SkipWithError(parser.m_error.c_str());
      },
      [&document] { bench::ParseBare(document); });
  state.counters["grown_kB"] = static_cast<double>(GetPeakKilobytes() - before);
}
BENCHMARK(BM_XmlParserAgainstExpat)
    ->Arg(1)
    ->Arg(50)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
