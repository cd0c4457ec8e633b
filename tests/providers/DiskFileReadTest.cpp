// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <ostream>

#include "providers/hardware/TDiskFileReadVerify.h"
#include "providers/hardware/Units.h"
#include "tests/providers/TFileFolder.h"
#include "tests/providers/THardwareFixture.h"

namespace hardware {
namespace {

using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const char* const kService = "DiskDefault File Read Verify";

std::string MakeReport(int error, std::uint64_t bytes, int runtimeMs) {
  return "{\n\"fio version\" : \"fio-3.33\",\n\"jobs\" : [ {\"error\" : " + std::to_string(error) +
         ", \"read\" : {\"io_bytes\" : " + std::to_string(bytes) +
         ", \"runtime\" : " + std::to_string(runtimeMs) +
         "}, \"write\" : {\"io_bytes\" : 0}} ]\n}\n";
}

TProcessOutcome MakeOutcome(int status, const std::string& output, const std::string& errors = "") {
  TProcessOutcome outcome;
  outcome.end = EProcessEnd::kExited;
  outcome.exitStatus = status;
  outcome.output = output;
  outcome.errors = errors;
  return outcome;
}

TDiskFileReadVerify::TPlan MakePlan() {
  TDiskFileReadVerify::TPlan plan;
  plan.bytes = 256 * kMib;
  plan.time = seconds(10);
  plan.files = {"/a", "/b", "/c", "/d", "/e"};
  plan.fileSystem = "the ext4 file system on /";
  plan.diskBytes = 4096 * kMib;
  return plan;
}

struct TFileReadRow {
  const char* name;
  int status;
  std::string output;
  std::string errors;
  ECompletion state;
  const char* summary;
};
void PrintTo(const TFileReadRow& row, std::ostream* out) {
  *out << row.name;
}

class FileReadVerdictTest : public ::testing::TestWithParam<TFileReadRow> {};

TEST_P(FileReadVerdictTest, WeighsStatusErrorsAndEveryByte) {
  const TFileReadRow& row = GetParam();
  const TVerdict verdict =
      TDiskFileReadVerify::Judge(MakeOutcome(row.status, row.output, row.errors), MakePlan());
  EXPECT_EQ(verdict.state, row.state) << verdict.summary;
  EXPECT_THAT(verdict.summary, HasSubstr(row.summary));
}
INSTANTIATE_TEST_SUITE_P(
    All, FileReadVerdictTest,
    ::testing::Values(
        TFileReadRow{"AllRead", 0, MakeReport(0, 256 * kMib, 900), "", ECompletion::kOk, "every"},
        TFileReadRow{"OneBlockShort", 0, MakeReport(0, 255 * kMib, 900), "",
                     ECompletion::kIncomplete, "not all"},
        TFileReadRow{"TimeIsUp", 0, MakeReport(0, 200 * kMib, 10001), "", ECompletion::kIncomplete,
                     "in the 10 seconds"},
        TFileReadRow{"MoreThanPlanned", 0, MakeReport(0, 257 * kMib, 900), "",
                     ECompletion::kIncomplete, "not all"},
        TFileReadRow{"NothingRead", 0, MakeReport(0, 0, 900), "", ECompletion::kIncomplete,
                     "not all"},
        TFileReadRow{"InputOutputError", 1, MakeReport(5, 17 * kMib, 900),
                     "fio: io_u error on file /b: Input/output error: read offset=0\n",
                     ECompletion::kFailed, "after 17 MiB: Input/output error"},
        TFileReadRow{"DeviceErrorWithStatus0", 0, MakeReport(5, 256 * kMib, 900), "",
                     ECompletion::kFailed, "Input/output error"},
        TFileReadRow{"FileEnded", 1,
                     "fio: pid=7, err=5/file:backend.c:471, func=full resid, error=Input/output "
                     "error\n" +
                         MakeReport(5, 17 * kMib, 900),
                     "", ECompletion::kIncomplete, "became shorter"},
        TFileReadRow{"FileEndedAndAnotherFailed", 2,
                     "fio: pid=7, err=5/file:backend.c:471, func=full resid, error=Input/output "
                     "error\n" +
                         MakeReport(5, 17 * kMib, 900),
                     "fio: io_u error on file /b: Input/output error: read offset=0\n",
                     ECompletion::kFailed, "Input/output error"},
        TFileReadRow{"FileVanished", 1, MakeReport(2, 0, 0), "", ECompletion::kIncomplete,
                     "No such file"},
        TFileReadRow{"NotPermitted", 1, MakeReport(1, 0, 0), "", ECompletion::kIncomplete,
                     "Operation not permitted"},
        TFileReadRow{"NoDirectReads", 1, MakeReport(22, 0, 0), "", ECompletion::kIncomplete,
                     "Invalid argument"},
        TFileReadRow{"StatusWithoutError", 1, MakeReport(0, 256 * kMib, 900), "",
                     ECompletion::kIncomplete, "before its work"},
        TFileReadRow{"Interrupted", 128,
                     "fio: terminating on signal 2\n" + MakeReport(0, 17 * kMib, 900), "",
                     ECompletion::kIncomplete, "before its work"},
        TFileReadRow{"NoReport", 0, "", "", ECompletion::kIncomplete, "no readable report"}),
    [](const auto& row) { return row.param.name; });

TEST(FileReadCoverageTest, TellsBytesFilesAndFileSystem) {
  const TVerdict verdict =
      TDiskFileReadVerify::Judge(MakeOutcome(0, MakeReport(0, 256 * kMib, 900)), MakePlan());
  EXPECT_EQ(verdict.covered,
            "256 MiB read of 256 MiB planned, in 5 files through the ext4 file system on /, on a "
            "disk of 4096 MiB, in 900 ms");
  EXPECT_THAT(verdict.excerpt, EndsWith("files: /a, /b, /c, and 2 more"));
  EXPECT_EQ(verdict.tool, "fio-3.33");
}

class DiskFileReadTest : public THardwareFixture {
 protected:
  void SetUp() override {
    if (!m_folder.CanReadDirectly()) GTEST_SKIP() << "no direct reads in " << m_folder.GetPlace();
    m_config.diskFileMib = 4;
    m_machine.AddTool("fio", "exit 1");
    m_machine.AddDisk("vda", 1024);
    ::unlink((m_machine.GetRoot() + "/dev/vda").c_str());
    // Found by its number; where the files' number is no block device's, by its source.
    m_machine.Write("/sys/block/vda/dev", m_folder.GetDevice() + "\n");
    m_machine.Write("/sys/fs/btrfs/1/devices/vda", "");
    m_machine.Write("/proc/self/mountinfo",
                    "27 1 " + m_folder.GetDevice() + " / /data rw - btrfs /dev/vda rw\n");
    m_folder.AddFile("large", 3 * kMib);
    m_folder.AddFile("sub/odd:name", kMib + 1);
  }

  /// The fake fio keeps its arguments and reports so many bytes.
  void AddFio(std::uint64_t bytes) {
    m_machine.AddTool("fio", "echo \"$@\" >" + m_machine.GetRoot() +
                                 "/arguments; printf '{\\n\"jobs\":[{\"error\":0,\"read\":"
                                 "{\"io_bytes\":" +
                                 std::to_string(bytes) + ",\"runtime\":900}}]\\n}\\n'");
  }

  TFileFolder m_folder{m_machine, "/data"};
};

TEST_F(DiskFileReadTest, IsOfferedBesideTheReasonWhyTheDiskIsNotRead) {
  Open();
  EXPECT_THAT(ListOffers(), ElementsAre("DiskDefault File Read Verify on vda"));
  ASSERT_THAT(m_hardware->GetView()->unoffered, SizeIs(1));
  EXPECT_EQ(m_hardware->GetView()->unoffered[0].serviceName, "DiskDefault Read Verify");
}

TEST_F(DiskFileReadTest, IsNotOfferedWhereTheDiskCanBeRead) {
  m_machine.Write("/dev/vda", "");
  Open();
  EXPECT_THAT(ListOffers(), ElementsAre("DiskDefault Read Verify on vda"));
}

TEST_F(DiskFileReadTest, IsNotOfferedWithoutAMountOrWithoutFiles) {
  m_machine.Write("/proc/self/mountinfo", "27 1 4095:9 / /data rw - ext4 /dev/vda rw\n");
  Open();
  EXPECT_THAT(ListOffers(), IsEmpty());
  m_machine.Write("/empty/file", "");
  m_machine.Write("/proc/self/mountinfo",
                  "27 1 " + m_folder.GetDevice() + " / /empty rw - btrfs /dev/vda rw\n");
  EXPECT_THAT(ListOffers(), IsEmpty());
  EXPECT_THAT(m_hardware->GetView()->unoffered, SizeIs(1));
}

TEST_F(DiskFileReadTest, AMissingProgramIsNamedWithItsPackage) {
  ::unlink((m_machine.GetToolFolder() + "/fio").c_str());
  Open();
  EXPECT_THAT(ListOffers(), IsEmpty());
  ASSERT_THAT(m_hardware->GetView()->unoffered, SizeIs(2));
  EXPECT_EQ(m_hardware->GetView()->unoffered[0].serviceName, kService);
  EXPECT_EQ(m_hardware->GetView()->unoffered[0].remedy, "install package fio");
}

TEST_F(DiskFileReadTest, FilesAreOnlyEverReadAndPastTheCache) {
  AddFio(4 * kMib);
  Open();
  const TRecord record = RunToEnd(kService, "vda");
  EXPECT_EQ(record.state, ECompletion::kOk) << record.data;
  EXPECT_THAT(record.data, HasSubstr("Covered: 4096 KiB read of 4096 KiB planned, in 2 files "
                                     "through the btrfs file system on /data"));
  EXPECT_THAT(record.data, HasSubstr("/data/large, "));
  EXPECT_THAT(record.data, HasSubstr("... (1 more files)"));
  EXPECT_THAT(m_machine.Read("/arguments"),
              ::testing::MatchesRegex(
                  "--readonly --rw=read --allow_file_create=0 --direct=1 --invalidate=0 "
                  "--ioengine=psync --bs=1M --runtime=1 --group_reporting --output-format=json "
                  "--status-interval=1 --eta=never "
                  "--name=file --filename=/proc/[0-9]+/fd/[0-9]+ --size=3145728 "
                  "--name=file --filename=/proc/[0-9]+/fd/[0-9]+ --size=1048576\n"));
}

TEST_F(DiskFileReadTest, TheFilesHandedOverAreThoseChosen) {
  // Reads as many bytes as the files named have: 3 MiB and 1 MiB and a byte.
  m_machine.AddTool("fio",
                    "n=0; for a; do case $a in --filename=*) n=$((n+$(wc -c "
                    "<${a#--filename=})));; esac; done; printf "
                    "'{\\n\"jobs\":[{\"error\":0,\"read\":{\"io_bytes\":%d}}]\\n}\\n' "
                    "$((n-1))");
  Open();
  const TRecord record = RunToEnd(kService, "vda");
  EXPECT_EQ(record.state, ECompletion::kOk) << record.data;
}

TEST_F(DiskFileReadTest, AShortReadIsNoPass) {
  AddFio(3 * kMib);
  Open();
  EXPECT_EQ(RunToEnd(kService, "vda").state, ECompletion::kIncomplete);
}

TEST_F(DiskFileReadTest, FilesThatVanishedBeforeTheRunMakeItIncomplete) {
  AddFio(4 * kMib);
  Open();
  ASSERT_THAT(ListOffers(), SizeIs(1));
  ::unlink((m_folder.GetPlace() + "/large").c_str());
  ::unlink((m_folder.GetPlace() + "/sub/odd:name").c_str());
  const TRecord record = RunToEnd(kService, "vda");
  EXPECT_EQ(record.state, ECompletion::kIncomplete);
  EXPECT_THAT(record.data, HasSubstr("no file to read was found"));
  EXPECT_EQ(m_machine.Read("/arguments"), "");
}

TEST_F(DiskFileReadTest, AFileIsNamedWhereFioNamesItsDescriptor) {
  m_machine.AddTool("fio",
                    "for a; do case $a in --filename=*) f=${a#--filename=};; esac; done; "
                    "echo \"fio: io_u error on file $f: Input/output error\" >&2; printf "
                    "'{\\n\"jobs\":[{\"error\":5,\"read\":{\"io_bytes\":0}}]\\n}\\n'; exit 1");
  Open();
  const TRecord record = RunToEnd(kService, "vda");
  EXPECT_EQ(record.state, ECompletion::kFailed) << record.data;
  EXPECT_THAT(record.data, HasSubstr("io_u error on file " + m_folder.GetPlace() +
                                     "/sub/odd:name: Input/output error"));
}

TEST_F(DiskFileReadTest, EndsOnRequest) {
  m_machine.AddTool("fio", "exec sleep 100");
  Open();
  const std::string jobId = Start(kService, "vda");
  WaitForPercent(jobId, 1);
  m_hardware->GetJobs().RequestStop(jobId, EStop::kKill);
  m_hardware->GetJobs().WaitFor(jobId);
  const std::optional<TRecord> record = m_hardware->GetJobs().FindRecord(jobId + ":record");
  ASSERT_TRUE(record);
  EXPECT_EQ(record->state, ECompletion::kAborted) << record->data;
}

}  // namespace
}  // namespace hardware
