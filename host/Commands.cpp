// SPDX-License-Identifier: Apache-2.0
#include "host/Commands.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <memory>
#include <ostream>
#include <sstream>
#include <utility>

#include "host/Label.h"
#include "host/Remedy.h"
#include "host/TJsonReport.h"
#include "host/TTextReport.h"
#include "host/TerminateHandler.h"
#include "host/Text.h"
#include "platform/setup/NameList.h"

namespace host {
namespace {

using NZEPQEL20::TUnofferedTest;
using NZEPQEL20::setup::ListNames;

constexpr char kClassNotFound[] = "Class Not Found\n";
constexpr std::size_t kMaxNames = 5;  ///< Named in one line.

// One command at work.
class TCommand {
 public:
  TCommand(const TOptions& options, IDiagnostics& diagnostics, const TSurroundings& surroundings)
      : m_options(options),
        m_diagnostics(diagnostics),
        m_around(surroundings),
        m_server(options.server ? options.server->options.url : std::string()),
        m_place(m_server.empty() ? std::string() : " on " + SafeText(m_server, ELines::kOne)) {}

  EExitStatus List();
  EExitStatus Run();
  EExitStatus Inspect();

 private:
  void Complain(const std::string& text) const { m_around.Complain(text); }
  std::unique_ptr<IReport> MakeReport(std::ostream& out) const;
  void ShowProblems(std::vector<std::string>& shown);
  std::vector<TUnofferedTest> GetUnoffered();
  void ShowWhereTestsAre(bool isExplained);
  void ShowUnoffered(const std::vector<TUnofferedTest>& tests);
  double GetSecondsSince(std::chrono::steady_clock::time_point start) const;
  std::string TellEnd(const std::vector<TTest>& tests, TRunReport run,
                      const TTestReport& last) const;
  void ComplainOf(const TTestReport& report);
  TTestReport RunOne(const std::vector<TTest>& tests, const TRunReport& run);
  void RunAll(const std::vector<TTest>& tests, IReport& report, TRunReport& run);
  EExitStatus InspectAsJson();
  bool CanEnumerate();

  const TOptions& m_options;
  IDiagnostics& m_diagnostics;
  const TSurroundings& m_around;
  std::string m_server;  // Empty: the tests are those of this machine.
  std::string m_place;   // " on <server>", or nothing.
};

std::unique_ptr<IReport> TCommand::MakeReport(std::ostream& out) const {
  if (m_options.isJson) return std::make_unique<TJsonReport>(out, m_server);
  return std::make_unique<TTextReport>(out, m_place);
}

// Shows those that have come since the last call, and keeps them all for the report.
void TCommand::ShowProblems(std::vector<std::string>& shown) {
  for (const std::string& told : m_diagnostics.GetProblems()) {
    std::string problem = AddRemedy(told);
    if (std::find(shown.begin(), shown.end(), problem) != shown.end()) continue;
    Complain(problem);
    shown.push_back(std::move(problem));
  }
}

std::vector<TUnofferedTest> TCommand::GetUnoffered() {
  try {
    return m_diagnostics.GetUnofferedTests();
  } catch (const std::exception& e) {
    Complain(std::string("tests that are not offered: ") + e.what());
    return {};
  }
}

void TCommand::ShowUnoffered(const std::vector<TUnofferedTest>& tests) {
  for (const TUnofferedTest& test : tests) {
    std::string line = "not offered" + m_place + ": " + test.serviceName;
    if (!test.elementName.empty()) line += " (" + test.elementName + ")";
    line += ": " + test.reason;
    if (!test.remedy.empty()) line += "; " + test.remedy;
    Complain(line);
  }
}

// What was asked when nothing was found, and where else there is something. Where others have
// explained it, only the latter is news.
void TCommand::ShowWhereTestsAre(bool isExplained) {
  const NZEPQEL20::TTestPlaces places = m_diagnostics.GetTestPlaces();
  if (places.otherNamespaces.empty() && (places.classes.empty() || isExplained)) return;
  std::string line = places.classes.empty()
                         ? "nobody is registered for CIM_AvailableDiagnosticService in "
                         : "no provider of " + ListNames(places.classes, kMaxNames) +
                               " answered with a test for a device in ";
  line += m_options.nameSpace;
  if (!places.otherNamespaces.empty()) {
    line += "; tests are registered in " + ListNames(places.otherNamespaces, kMaxNames) +
            "; --namespace looks there";
  }
  Complain(line);
}

EExitStatus TCommand::List() {
  TListReport list;
  const std::vector<TTest> catalogue = ReadCatalogue(m_diagnostics.EnumerateTests());
  list.tests = FilterTests(catalogue, m_options.selection);
  list.found = catalogue.size();
  list.unoffered = GetUnoffered();
  ShowProblems(list.problems);
  MakeReport(m_around.out)->ShowList(list);
  m_around.out.flush();
  if (!m_options.isJson) ShowUnoffered(list.unoffered);
  if (catalogue.empty()) ShowWhereTestsAre(!list.unoffered.empty() || !list.problems.empty());
  return m_around.CheckListing(list.tests.empty() ? EExitStatus::kNotFinished
                                                  : EExitStatus::kAllPassed);
}

double TCommand::GetSecondsSince(std::chrono::steady_clock::time_point start) const {
  return std::chrono::duration<double>(m_around.steadyClock() - start).count();
}

// The rest of the report of a run that the process does not survive.
std::string TCommand::TellEnd(const std::vector<TTest>& tests, TRunReport run,
                              const TTestReport& last) const {
  run.isInterrupted = run.isInterrupted || m_around.isInterrupted();
  run.tests.push_back(last);
  for (std::size_t i = run.tests.size(); i < tests.size(); ++i) {
    run.tests.push_back({tests[i], EOutcome::kNotRun, {}, std::nullopt, {}, 0, {}});
  }
  run.status = EExitStatus::kNotFinished;
  std::ostringstream text;
  const std::unique_ptr<IReport> report = MakeReport(text);
  report->ShowTestEnd(last);
  report->ShowRunEnd(run);
  return text.str();
}

void TCommand::ComplainOf(const TTestReport& report) {
  const std::string reason = DescribeReason(report);
  if (!reason.empty()) {
    Complain(report.test.id + ": " + AddRemedy(reason));
    return;
  }
  Complain(report.test.id + ": could not run or did not finish: " +
           (report.answer.empty() ? "no answer" : report.answer) +
           "; --log - --log-level trace shows the steps");
}

// Runs the first of `tests` that `run` has not.
TTestReport TCommand::RunOne(const std::vector<TTest>& tests, const TRunReport& run) {
  const TTest& test = tests[run.tests.size()];
  TTestReport report;
  report.test = test;
  m_diagnostics.TakeServerFailure();  // Discovery's, or that of a test before this one.
  report.started = m_around.wallClock();
  const auto start = m_around.steadyClock();
  const auto tellEnd = [&](const std::string& reason) {
    TTestReport last = report;
    last.outcome = EOutcome::kError;
    last.answer = reason;
    last.seconds = GetSecondsSince(start);
    return TellEnd(tests, run, last);
  };
  const auto runIt = [&] {
    const TLastWordsHold hold(tellEnd);
    return m_diagnostics.Run(test.id, m_options.label.value_or(MakeDefaultLabel(test.service)));
  };
  try {
    TRunResult result = runIt();
    report.outcome = JudgeAnswer(result.answer);
    report.answer = Trim(result.answer);
    report.record = std::move(result.record);
  } catch (const std::exception& e) {
    report.outcome = EOutcome::kError;
    report.answer = e.what();
  }
  report.seconds = GetSecondsSince(start);
  // A test that left a record has come to its end, whatever the server did in between.
  std::string failure = m_diagnostics.TakeServerFailure();
  if (report.outcome == EOutcome::kError && !report.record) report.reason = std::move(failure);
  return report;
}

void TCommand::RunAll(const std::vector<TTest>& tests, IReport& report, TRunReport& run) {
  for (const TTest& test : tests) {
    run.isInterrupted = run.isInterrupted || m_around.isInterrupted();
    // Nobody reads any more when the output is gone, so no further test is started.
    if (run.isInterrupted || !m_around.isOutputGood()) {
      run.tests.push_back({test, EOutcome::kNotRun, {}, std::nullopt, {}, 0, {}});
      continue;
    }
    report.ShowTestStart(test, run.tests.size() + 1, tests.size());
    run.tests.push_back(RunOne(tests, run));
    report.ShowTestEnd(run.tests.back());
    ShowProblems(run.problems);
    if (run.tests.back().outcome == EOutcome::kError) ComplainOf(run.tests.back());
  }
  run.isInterrupted = run.isInterrupted || m_around.isInterrupted();
}

EExitStatus TCommand::Run() {
  TRunReport run;
  const std::vector<TTest> catalogue = ReadCatalogue(m_diagnostics.EnumerateTests());
  ShowProblems(run.problems);
  const std::vector<TTest> tests = SelectTests(catalogue, m_options.selection);
  if (tests.empty()) {
    const std::string place = m_place.empty() ? " on this machine" : m_place;
    Complain(catalogue.empty() ? "run: no tests found" + place
                               : "run: no test matches; `diagsrun list` shows the tests");
    ShowUnoffered(GetUnoffered());
  }
  const std::unique_ptr<IReport> report = MakeReport(m_around.out);
  if (!tests.empty()) m_around.beginTests();
  RunAll(tests, *report, run);
  std::vector<EOutcome> outcomes;
  for (const TTestReport& test : run.tests) outcomes.push_back(test.outcome);
  // An interrupted run is never reported as a finished one.
  run.status = run.isInterrupted ? EExitStatus::kNotFinished : GetExitStatus(outcomes);
  report->ShowRunEnd(run);
  return m_around.CheckOutput(run.status);
}

EExitStatus TCommand::InspectAsJson() {
  TInspectReport inspected;
  inspected.className = m_options.className;
  std::optional<std::vector<TInstanceText>> instances =
      m_diagnostics.GetInstances(m_options.className);
  inspected.isKnown = instances.has_value();
  if (instances) inspected.instances = std::move(*instances);
  ShowProblems(inspected.problems);
  TJsonReport(m_around.out, m_server).ShowInstances(inspected);
  return m_around.CheckListing(inspected.isKnown ? EExitStatus::kAllPassed
                                                 : EExitStatus::kNotFinished);
}

// Whether any provider of the class answers; where all have failed, there is nothing to show.
bool TCommand::CanEnumerate() {
  try {
    return m_diagnostics.GetInstances(m_options.className).has_value();
  } catch (const std::exception&) {
    return false;
  }
}

EExitStatus TCommand::Inspect() {
  if (m_options.isJson) return InspectAsJson();
  const std::size_t before = m_diagnostics.GetProblems().size();
  m_diagnostics.TakeServerFailure();
  std::string text = m_diagnostics.Inspect(m_options.className);
  // The text tells of failures as of anything else.
  const bool isTroubled =
      m_diagnostics.GetProblems().size() > before || !m_diagnostics.TakeServerFailure().empty();
  const bool isAnswered = !isTroubled || CanEnumerate();
  std::vector<std::string> shown;
  ShowProblems(shown);
  const std::string end = kClassNotFound;
  const bool isUnknown =
      text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
  if (isUnknown) {
    text.resize(text.size() - end.size());
    Complain(m_options.className + ": no such class" + m_place);
  }
  m_around.out << SafeText(text, ELines::kKeep);
  const bool isWhole = !isUnknown && isAnswered;
  return m_around.CheckListing(isWhole ? EExitStatus::kAllPassed : EExitStatus::kNotFinished);
}

}  // namespace

EExitStatus RunCommand(const TOptions& options, IDiagnostics& diagnostics,
                       const TSurroundings& surroundings) {
  TCommand command(options, diagnostics, surroundings);
  switch (options.command) {
    case ECommand::kList:
      return command.List();
    case ECommand::kRun:
      return command.Run();
    case ECommand::kInspect:
      return command.Inspect();
  }
  return EExitStatus::kWrongUsage;
}

}  // namespace host
