// SPDX-License-Identifier: Apache-2.0
#include "tests/host/TServerFixture.h"

#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace host {
namespace {

// Other programs below a server come and go.
std::vector<pid_t> FindSleepers(pid_t server) {
  std::vector<pid_t> found;
  for (const pid_t process : FindDescendants(server)) {
    std::ifstream file("/proc/" + std::to_string(process) + "/comm");
    std::string name;
    if (std::getline(file, name) && name == "sleep") found.push_back(process);
  }
  return found;
}

}  // namespace

TServerFixture::~TServerFixture() {
  if (!m_server) return;
  // Its own end takes the programs of its tests with it.
  m_server->Signal(SIGTERM);
  m_server->Wait();
}

void TServerFixture::StartServer(const std::vector<std::string>& arguments,
                                 const std::string& root) {
  constexpr char kAnnouncement[] = "listening on ";
  m_server.reset();
  TProgram program = MakeCommand(arguments);
  program.arguments[0] = DIAGS_CIM_SERVER;
  program.arguments.insert(program.arguments.end(), {"--root", root});
  program.hasInput = true;
  m_server = std::make_unique<TSubprocess>(program);
  if (!m_server->WaitForOutput("\n")) {
    m_server->Wait();
    throw std::runtime_error("the server does not start: " + m_server->GetErr());
  }
  const std::string& said = m_server->GetOut();
  const std::size_t begin = said.find(kAnnouncement) + sizeof kAnnouncement - 1;
  m_url = said.substr(begin, said.find('\n') - begin);
}

std::vector<std::string> TServerFixture::WithCertificate(
    const cimserver::TThrowAwayCa::TFiles& files) {
  return {"--cert", files.certificate, "--key", files.key};
}

std::vector<std::string> TServerFixture::WithPassword() const {
  return {"--user", "me", "--password-file", Write("password", "sesame\n")};
}

void TServerFixture::KillServer() {
  m_server->Signal(SIGKILL);
  m_server->Wait();
  m_server.reset();
}

TProgram TServerFixture::MakeServerCommand(const std::vector<std::string>& arguments) const {
  TProgram program = MakeCommand({"--server", m_url});
  program.arguments.insert(program.arguments.end(), arguments.begin(), arguments.end());
  return program;
}

TFinished TServerFixture::RunOnServer(const std::vector<std::string>& arguments) const {
  return RunToEnd(MakeServerCommand(arguments));
}

std::string TServerFixture::WriteLogin(const std::string& user, const std::string& password) const {
  const std::string file = Write("login", "user=" + user + "\npassword=" + password + "\n");
  if (::chmod(file.c_str(), S_IRUSR | S_IWUSR) != 0) throw std::runtime_error("chmod " + file);
  return file;
}

void TServerFixture::AddSleepingStress() const {
  AddTool("stress-ng",
          "[ \"$1\" = --version ] && echo 'stress-ng, version 9' && exit\nexec sleep 300");
}

std::vector<pid_t> TServerFixture::WaitForSleepers(std::size_t count) const {
  const auto deadline = std::chrono::steady_clock::now() + TSubprocess::kPatience;
  std::vector<pid_t> found = FindSleepers(m_server->GetPid());
  while (found.size() != count && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    found = FindSleepers(m_server->GetPid());
  }
  return found;
}

}  // namespace host
