// SPDX-License-Identifier: Apache-2.0
// Enumerating generated instances of 20 properties from a CIM server in another process, by user
// time: against expat alone over the bytes of the same replies, and against wbemcli.
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/BareExpat.h"
#include "bench/Programs.h"
#include "bench/Ratio.h"
#include "platform/cimxml/TCIMXMLOperations.h"
#include "platform/cimxml/THttpSession.h"
#include "platform/cimxml/TRequestText.h"

namespace {

using NZEPQEL20::TCIMInstanceData;
using NZEPQEL20::TCIMXMLOperations;
using NZEPQEL20::TServerOptions;

constexpr char kNamespace[] = "root/cimv2";
constexpr char kClass[] = "BENCH_Record";

// What a reply arrives in.
constexpr std::size_t kArrivalBytes = 16384;

// The style of the server: with pull operations and chunks, or with neither.
const char* GetStyle(const benchmark::State& state) {
  return state.range(1) == 0 ? "sfcb" : "pegasus";
}

// One server per style and size for the whole run.
const std::string& GetServer(const benchmark::State& state) {
  static std::map<std::string, std::unique_ptr<bench::TServerProgram>> servers;
  const std::string count = std::to_string(state.range(0));
  auto& server = servers[GetStyle(state) + count];
  if (!server) {
    server = std::make_unique<bench::TServerProgram>(
        std::vector<std::string>{"--synthetic", count, "--style", GetStyle(state)});
  }
  return server->GetUrl();
}

TServerOptions MakeOptions(const std::string& url) {
  TServerOptions options;
  options.url = url;
  return options;
}

std::vector<TCIMInstanceData> Enumerate(TCIMXMLOperations& operations) {
  std::vector<TCIMInstanceData> found;
  operations.EnumerateInstances(kNamespace, kClass, [&found](TCIMInstanceData&& instance) {
    found.push_back(std::move(instance));
    return true;
  });
  return found;
}

class TCollectedBody final : public NZEPQEL20::cimxml::IReplyBody {
 public:
  void Take(const char* data, std::size_t size) override { m_text.append(data, size); }
  const std::string& GetText() const { return m_text; }

 private:
  std::string m_text;
};

using NZEPQEL20::cimxml::TRequestText;

// The text of the reply to an operation.
std::string FetchReply(NZEPQEL20::cimxml::THttpSession& session, const std::string& operation,
                       const std::vector<std::pair<std::string, std::string>>& parameters) {
  TRequestText text = TRequestText::Operation(operation, kNamespace, 1);
  if (operation != "PullInstancesWithPath") text.AddClassName("ClassName", kClass);
  for (const auto& [name, value] : parameters) text.AddText(name, value);
  NZEPQEL20::cimxml::THttpRequest request;
  request.method = operation;
  request.object = kNamespace;
  request.body = text.Finish();
  request.timeout = std::chrono::minutes(2);
  TCollectedBody body;
  session.Exchange(request, body);
  return body.GetText();
}

// What follows a piece of text, up to the next tag; empty when the piece is not there.
std::string GetAfter(const std::string& text, const std::string& piece) {
  const std::size_t at = text.rfind(piece);
  if (at == std::string::npos) return {};
  const std::size_t begin = text.find("<VALUE>", at);
  if (begin == std::string::npos) return {};
  return text.substr(begin + 7, text.find('<', begin + 7) - begin - 7);
}

// The texts of the replies that an enumeration takes.
std::vector<std::string> FetchReplies(const std::string& url, bool hasPull) {
  NZEPQEL20::cimxml::THttpSession session(MakeOptions(url));
  if (!hasPull) return {FetchReply(session, "EnumerateInstances", {})};
  std::vector<std::string> replies = {
      FetchReply(session, "OpenEnumerateInstances", {{"MaxObjectCount", "1000"}})};
  while (GetAfter(replies.back(), "\"EndOfSequence\"") != "TRUE") {
    const std::string context = GetAfter(replies.back(), "\"EnumerationContext\"");
    replies.push_back(FetchReply(session, "PullInstancesWithPath",
                                 {{"EnumerationContext", context}, {"MaxObjectCount", "1000"}}));
  }
  return replies;
}

// Arguments: instances, style.
void BM_EnumerateAgainstExpat(benchmark::State& state) {
  TCIMXMLOperations operations(MakeOptions(GetServer(state)), kNamespace);
  const std::vector<std::string> replies = FetchReplies(GetServer(state), state.range(1) != 0);
  if (Enumerate(operations).size() != static_cast<std::size_t>(state.range(0))) {
    state.SkipWithError("not all instances came");
  }
  bench::MeasureRatio(
      state, [&operations] { Enumerate(operations); },
      [&replies] {
        for (const std::string& reply : replies) bench::ParseBare(reply, kArrivalBytes);
      },
      [] { return bench::GetUserSeconds(RUSAGE_SELF); });
  std::size_t bytes = 0;
  for (const std::string& reply : replies) bytes += reply.size();
  state.counters["reply_kB"] = static_cast<double>(bytes) / 1024;
}
BENCHMARK(BM_EnumerateAgainstExpat)
    ->ArgsProduct({{100, 10000}, {0, 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

std::string GetWbemcliUrl(const std::string& url) {
  return url + "/" + kNamespace + ":" + kClass;
}

// The enumeration in this process against a whole wbemcli that prints it.
void BM_EnumerateAgainstWbemcli(benchmark::State& state) {
  TCIMXMLOperations operations(MakeOptions(GetServer(state)), kNamespace);
  const std::string object = GetWbemcliUrl(GetServer(state));
  if (bench::RunProgram({"wbemcli", "ei", object}) != 0) state.SkipWithError("no wbemcli");
  bench::MeasureRatio(
      state, [&operations] { Enumerate(operations); },
      [&object] {
        bench::RunProgram({"wbemcli", "ei", object});
      },
      [] { return bench::GetUserSeconds(RUSAGE_SELF) + bench::GetUserSeconds(RUSAGE_CHILDREN); });
}
BENCHMARK(BM_EnumerateAgainstWbemcli)
    ->ArgsProduct({{100, 10000}, {0, 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// The whole command that prints every instance against a whole wbemcli that does.
void BM_InspectAgainstWbemcli(benchmark::State& state) {
  setenv("DIAGSRUNNER_ROOT", DIAGSRUN_ROOT, 1);
  const std::string url = GetServer(state);
  const std::vector<std::string> inspect = {DIAGSRUN_PROGRAM, "--server", url, "inspect", kClass};
  if (bench::RunProgram(inspect) != 0) state.SkipWithError("diagsrun cannot be run");
  bench::MeasureRatio(
      state, [&inspect] { bench::RunProgram(inspect); },
      [&url] {
        bench::RunProgram({"wbemcli", "ei", GetWbemcliUrl(url)});
      },
      [] { return bench::GetUserSeconds(RUSAGE_CHILDREN); });
}
BENCHMARK(BM_InspectAgainstWbemcli)
    ->ArgsProduct({{100, 10000}, {0, 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// A number of kilobytes that the system knows about this process, by its name.
long GetKilobytes(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, name.size(), name) == 0) return std::atol(line.c_str() + name.size() + 1);
  }
  return 0;
}

struct TMemory {
  double peak = 0;    ///< Bytes that the enumeration added to what the process had, at most.
  double result = 0;  ///< Bytes of the decoded result.
};

TMemory MeasureMemory(const std::string& url) {
  TCIMXMLOperations operations(MakeOptions(url), kNamespace);
  operations.GetClass(kNamespace, kClass);
  malloc_trim(0);  // What the parent has used and freed would hide what is added here.
  std::ofstream("/proc/self/clear_refs") << "5";  // The peak starts anew from here.
  const long before = GetKilobytes("VmRSS:");
  const auto used = [] {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
  };
  const double usedBefore = used();
  const std::vector<TCIMInstanceData> found = Enumerate(operations);
  return {static_cast<double>(GetKilobytes("VmHWM:") - before) * 1024, used() - usedBefore};
}

// In a child, whose memory nobody has used before.
void BM_PeakMemory(benchmark::State& state) {
  const std::string url = GetServer(state);
  TMemory memory;
  for ([[maybe_unused]] auto round : state) {
    int ends[2];
    if (pipe(ends) != 0) return state.SkipWithError("no pipe");
    const pid_t child = fork();
    if (child == 0) {
      const TMemory measured = MeasureMemory(url);
      _exit(write(ends[1], &measured, sizeof measured) == sizeof measured ? 0 : 1);
    }
    close(ends[1]);
    const bool isRead = read(ends[0], &memory, sizeof memory) == sizeof memory;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    if (!isRead || memory.result <= 0) return state.SkipWithError("nothing was measured");
  }
  state.counters["ratio"] = memory.peak / memory.result;
  state.counters["result_kB"] = memory.result / 1024;
}
BENCHMARK(BM_PeakMemory)->ArgsProduct({{100, 10000}, {0, 1}})->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
