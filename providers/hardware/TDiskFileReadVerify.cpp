// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TDiskFileReadVerify.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "providers/hardware/TFioReport.h"
#include "providers/hardware/Text.h"
#include "providers/hardware/Units.h"

namespace hardware {
namespace {

constexpr std::size_t kNamedFiles = 3;

// A file that ends too early looks like a device error to fio, but the device refused nothing.
bool HasFileEnded(const TProcessOutcome& outcome) {
  const std::string text = outcome.output + outcome.errors;
  return Contains(text, "func=full resid") && !Contains(text, "io_u error");
}

TVerdict JudgeBytes(const TFioReport& report, const TDiskFileReadVerify::TPlan& plan) {
  if (report.readBytes != plan.bytes) {
    return MakeVerdict(ECompletion::kIncomplete, "not all of the files were read in the " +
                                                     std::to_string(plan.time.count()) +
                                                     " seconds there are");
  }
  return MakeVerdict(ECompletion::kOk, "every file was read without an error");
}

std::string DescribeCoverage(const TFioReport& report, const TDiskFileReadVerify::TPlan& plan) {
  const std::size_t count = plan.files.size();
  return DescribeBytes(report.readBytes) + " read of " + DescribeBytes(plan.bytes) +
         " planned, in " + std::to_string(count) + (count == 1 ? " file" : " files") + " through " +
         plan.fileSystem + ", on a disk of " + DescribeBytes(plan.diskBytes) + ", in " +
         std::to_string(report.runtimeMs) + " ms";
}

std::string DescribeFiles(const std::vector<std::string>& files) {
  const auto shown = static_cast<std::ptrdiff_t>(std::min(files.size(), kNamedFiles));
  std::string text = "files: " + Join({files.begin(), files.begin() + shown}, ", ");
  if (files.size() > kNamedFiles) {
    text += ", and " + std::to_string(files.size() - kNamedFiles) + " more";
  }
  return text;
}

// The command line with the first file only; the others differ in nothing that matters.
std::string ShortenCommand(const std::vector<std::string>& arguments) {
  const auto isFile = [](const std::string& argument) { return StartsWith(argument, "--name="); };
  const auto first = std::find_if(arguments.begin(), arguments.end(), isFile);
  const auto second =
      first == arguments.end() ? first : std::find_if(first + 1, arguments.end(), isFile);
  const auto more = std::count_if(second, arguments.end(), isFile);
  return Join({arguments.begin(), second}, " ") +
         (more == 0 ? "" : " ... (" + std::to_string(more) + " more files)");
}

// The name by which another process reaches an open file, whatever became of the file's own name.
std::string MakeOpenName(const TChosenFile& file) {
  // Asked of /proc, which may count processes in another way than this one does.
  return "/proc/" + THostFiles("").ReadLinkName("/proc/self") + "/fd/" +
         std::to_string(file.file.Get());
}

// Puts the files' own names into what fio says about the open ones.
void NameFiles(const std::vector<TChosenFile>& files, std::string& text) {
  for (const TChosenFile& file : files) {
    const std::string openName = MakeOpenName(file);
    std::size_t place = text.find(openName);
    while (place != std::string::npos) {
      const std::size_t end = place + openName.size();
      const bool isWhole = end == text.size() || text[end] < '0' || text[end] > '9';
      if (isWhole) text.replace(place, openName.size(), file.path);
      place = text.find(openName, isWhole ? place + file.path.size() : end);
    }
  }
}

}  // namespace

TDiskFileReadVerify::TDiskFileReadVerify(TTestTools& tools) : m_tools(tools) {
  const TConfig& config = tools.GetConfig();
  m_deadline = GetShortDeadline(config, std::chrono::seconds(config.diskSeconds));
  m_service.name = "DiskDefault File Read Verify";
  m_service.description = "Reads up to " + std::to_string(config.diskFileMib) +
                          " MiB of files on the disk in at most " +
                          std::to_string(config.diskSeconds) +
                          " seconds, past the page cache; writes nothing.";
  m_service.durationCount = config.diskSeconds + 1;
  m_service.testTypes = {6};
}

TFileFinder TDiskFileReadVerify::MakeFinder(const TMount& mount) const {
  return {m_tools.GetFiles().Locate(mount.point), mount.device};
}

TAvailability TDiskFileReadVerify::Check(const TDevice& device) const {
  if (device.kind != EDeviceKind::kDisk) return {};
  // What can be opened has a better test than this one.
  if (m_tools.CheckDisk(device).answer != EAvailability::kWithheld) return {};
  const std::vector<TMount> mounts = TDiskMounts(m_tools.GetFiles()).Find(device);
  const bool hasFiles = std::any_of(mounts.begin(), mounts.end(), [this](const TMount& mount) {
    return MakeFinder(mount).HasAny();
  });
  return hasFiles ? m_tools.CheckTool("fio", "fio") : TAvailability();
}

std::vector<std::string> TDiskFileReadVerify::MakeCommand(
    const std::vector<TChosenFile>& files) const {
  // All files at once, so that the time is the limit of the whole. The cache is not to be emptied:
  // it is passed by.
  std::vector<std::string> command = {
      "fio",
      "--readonly",
      "--rw=read",
      "--allow_file_create=0",
      "--direct=1",
      "--invalidate=0",
      "--ioengine=psync",
      "--bs=1M",
      "--runtime=" + std::to_string(m_tools.GetConfig().diskSeconds),
      "--group_reporting",
      "--output-format=json",
      "--status-interval=1",
      "--eta=never"};
  for (const TChosenFile& file : files) {
    command.push_back("--name=file");
    command.push_back("--filename=" + MakeOpenName(file));
    command.push_back("--size=" + std::to_string(file.bytes));
  }
  return command;
}

TVerdict TDiskFileReadVerify::Run(const TDevice& device, const TRunControl& control) const {
  TPlan plan;
  plan.time = std::chrono::seconds(m_tools.GetConfig().diskSeconds);
  plan.diskBytes = device.bytes;
  for (const TMount& mount : TDiskMounts(m_tools.GetFiles()).Find(device)) {
    const std::vector<TChosenFile> files =
        MakeFinder(mount).Choose(m_tools.GetConfig().diskFileMib * kMib);
    if (files.empty()) continue;
    plan.fileSystem = "the " + mount.type + " file system on " + mount.point;
    for (const TChosenFile& file : files) {
      plan.bytes += file.bytes;
      plan.files.push_back(file.path);
    }
    return Read(plan, files, control);
  }
  return MakeVerdict(ECompletion::kIncomplete, "no file to read was found on the disk");
}

TVerdict TDiskFileReadVerify::Read(const TPlan& plan, const std::vector<TChosenFile>& files,
                                   const TRunControl& control) const {
  TProcessOutcome outcome =
      m_tools.Run(MakeCommand(files), m_deadline, control.stop,
                  [&](const std::string& output, std::chrono::milliseconds elapsed) {
                    control.setPercent(EstimateFioPercent(output, plan.bytes, plan.time, elapsed));
                  });
  NameFiles(files, outcome.errors);
  return Judge(outcome, plan);
}

TVerdict TDiskFileReadVerify::Judge(const TProcessOutcome& outcome, const TPlan& plan) {
  const TFioReport report = ReadFioReport(outcome.output);
  std::optional<TVerdict> judged = JudgeEnding(outcome);
  if (!judged && report.isPresent && HasFileEnded(outcome)) {
    judged = MakeVerdict(ECompletion::kIncomplete, "a file became shorter while it was read");
  }
  if (!judged) judged = JudgeFioErrors(report, outcome);
  TVerdict verdict = judged ? *judged : JudgeBytes(report, plan);
  if (report.isPresent) {
    verdict.covered = DescribeCoverage(report, plan);
    verdict.excerpt = ExcerptFioRun(report, outcome) + "\n" + DescribeFiles(plan.files);
  }
  verdict.tool = report.version.empty() ? "fio" : report.version;
  DescribeRun(outcome, verdict);
  verdict.command = ShortenCommand(outcome.arguments);
  return verdict;
}

}  // namespace hardware
