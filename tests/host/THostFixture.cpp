// SPDX-License-Identifier: Apache-2.0
#include "tests/host/THostFixture.h"

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace host {

const char* const kGoodStress =
    "stress-ng: metrc: [1] cpu 2601 1.00 1.00 0.00 2601.0 2601.0\n"
    "stress-ng: info: [1] successful run completed in 1.00s\n";

THostFixture::THostFixture() {
  Write("hardware.conf",
        "processor_seconds = 1\nmemory_mib = 1\nmemory_extended_mib = 1\ndisk_mib = 1\n"
        "disk_seconds = 10\ndisk_file_mib = 16\nnetwork_seconds = 1\n");
}

TProgram THostFixture::MakeCommand(const std::vector<std::string>& arguments) const {
  const char* const path = std::getenv("PATH");
  TProgram program;
  program.arguments = {DIAGSRUN_FAST};
  program.arguments.insert(program.arguments.end(), arguments.begin(), arguments.end());
  program.environment = {
      {"DIAGSRUNNER_ROOT", DIAGSRUNNER_TEST_ROOT},
      {"DIAGSRUNNER_HARDWARE_CONF", m_folder.GetPath("hardware.conf")},
      {"PATH", m_folder.GetPath("bin:") + (path != nullptr ? path : "/usr/bin:/bin")},
  };
  program.environment.insert(m_environment.begin(), m_environment.end());
  return program;
}

TFinished THostFixture::Run(const std::vector<std::string>& arguments) const {
  return RunToEnd(MakeCommand(arguments));
}

std::string THostFixture::Write(const std::string& name, const std::string& text) const {
  return m_folder.Write(name, text, 0644);
}

void THostFixture::AddTool(const std::string& name, const std::string& script) const {
  m_folder.Write("bin/" + name, "#!/bin/sh\nhere=${0%/*}\n" + script + "\n", 0700);
}

void THostFixture::AddStress(const std::string& lines, int status) const {
  Write("bin/lines", lines);
  AddTool("stress-ng",
          "[ \"$1\" = --version ] && echo 'stress-ng, version 9' && exit\n"
          "sleep 1\ncat \"$here/lines\" >&2\nexit " +
              std::to_string(status));
}

void THostFixture::AddEndlessStress() const {
  AddTool("stress-ng",
          "[ \"$1\" = --version ] && echo 'stress-ng, version 9' && exit\n"
          "touch \"$here/started\"\nsleep 300\nexit 0");
}

std::vector<std::string> THostFixture::FindTests(const std::string& text) const {
  const TFinished list = Run({"list", "--json", "--match", text});
  std::vector<std::string> ids;
  const auto document = nlohmann::json::parse(list.out, nullptr, false);
  if (document.is_discarded()) throw std::runtime_error("no list: " + list.out + list.err);
  for (const auto& test : document.at("tests")) ids.push_back(test.at("id"));
  return ids;
}

}  // namespace host
