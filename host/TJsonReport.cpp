// SPDX-License-Identifier: Apache-2.0
#include "host/TJsonReport.h"

#include <array>
#include <cmath>
#include <ctime>

#include "host/JsonDocument.h"

namespace host {
namespace {

TJson MakeDocument(const char* command, const std::string& server) {
  TJson document = host::MakeDocument(command);
  if (!server.empty()) document["server"] = server;
  return document;
}

TJson MakeTest(const TTest& test) {
  return {{"number", test.number},
          {"id", test.id},
          {"service", test.service},
          {"device", test.device},
          {"element", test.element}};
}

TJson MakeRecord(const std::optional<TRecordText>& record) {
  if (!record) return nullptr;
  return {
      {"path", record->path}, {"completionState", record->completionState}, {"data", record->data}};
}

// RFC 3339 in UTC, whole seconds.
std::string FormatTime(std::chrono::system_clock::time_point point) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(point);
  std::tm parts{};
  std::array<char, 32> text{};
  if (::gmtime_r(&seconds, &parts) == nullptr) return {};
  static_cast<void>(std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts));
  return text.data();
}

TJson MakeTestEnd(const TTestReport& report) {
  const bool hasRun = report.outcome != EOutcome::kNotRun;
  TJson test = MakeTest(report.test);
  test["outcome"] = GetOutcomeText(report.outcome);
  test["answer"] = hasRun ? TJson(report.answer) : TJson(nullptr);
  test["reason"] = report.reason.empty() ? TJson(nullptr) : TJson(report.reason);
  test["started"] = hasRun ? TJson(FormatTime(report.started)) : TJson(nullptr);
  test["seconds"] = hasRun ? TJson(std::round(report.seconds * 1000) / 1000) : TJson(nullptr);
  test["record"] = MakeRecord(report.record);
  return test;
}

TJson MakeInstance(const TInstanceText& instance) {
  TJson properties = TJson::object();
  for (const TPropertyText& property : instance.properties) {
    if (property.isArray) {
      properties[property.name] = property.values;
    } else {
      properties[property.name] = property.values.empty() ? "" : property.values.front();
    }
  }
  return {{"path", instance.path}, {"properties", std::move(properties)}};
}

}  // namespace

void TJsonReport::ShowList(const TListReport& list) {
  TJson document = MakeDocument("list", m_server);
  document["tests"] = TJson::array();
  for (const TTest& test : list.tests) document["tests"].push_back(MakeTest(test));
  document["unoffered"] = TJson::array();
  for (const NZEPQEL20::TUnofferedTest& test : list.unoffered) {
    document["unoffered"].push_back({{"service", test.serviceName},
                                     {"element", test.elementName},
                                     {"reason", test.reason},
                                     {"remedy", test.remedy}});
  }
  document["problems"] = list.problems;
  WriteDocument(*m_out, document);
}

void TJsonReport::ShowTestStart(const TTest& /*test*/, std::size_t /*position*/,
                                std::size_t /*total*/) {}

void TJsonReport::ShowTestEnd(const TTestReport& /*report*/) {}

void TJsonReport::ShowRunEnd(const TRunReport& run) {
  TJson document = MakeDocument("run", m_server);
  document["status"] = static_cast<int>(run.status);
  document["interrupted"] = run.isInterrupted;
  document["tests"] = TJson::array();
  for (const TTestReport& report : run.tests) document["tests"].push_back(MakeTestEnd(report));
  document["summary"] = {{"selected", run.tests.size()},
                         {"passed", run.Count(EOutcome::kPassed)},
                         {"failed", run.Count(EOutcome::kFailed)},
                         {"errors", run.Count(EOutcome::kError)},
                         {"notRun", run.Count(EOutcome::kNotRun)}};
  document["problems"] = run.problems;
  WriteDocument(*m_out, document);
}

void TJsonReport::ShowInstances(const TInspectReport& inspected) {
  TJson document = MakeDocument("inspect", m_server);
  document["class"] = inspected.className;
  document["known"] = inspected.isKnown;
  document["instances"] = TJson::array();
  for (const TInstanceText& instance : inspected.instances) {
    document["instances"].push_back(MakeInstance(instance));
  }
  document["problems"] = inspected.problems;
  WriteDocument(*m_out, document);
}

}  // namespace host
