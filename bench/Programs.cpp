// SPDX-License-Identifier: Apache-2.0
#include "bench/Programs.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

namespace bench {
namespace {

// File actions of a program that is about to start.
class TActions {
 public:
  TActions() { posix_spawn_file_actions_init(&m_actions); }
  ~TActions() { posix_spawn_file_actions_destroy(&m_actions); }
  TActions(const TActions&) = delete;
  TActions& operator=(const TActions&) = delete;

  void Discard(int descriptor) {
    posix_spawn_file_actions_addopen(&m_actions, descriptor, "/dev/null", O_WRONLY, 0);
  }
  void Place(int from, int to) { posix_spawn_file_actions_adddup2(&m_actions, from, to); }

  // The process, or -1.
  pid_t Spawn(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t child = -1;
    const int failure =
        posix_spawnp(&child, arguments.front(), &m_actions, nullptr, arguments.data(), environ);
    return failure == 0 ? child : -1;
  }

 private:
  posix_spawn_file_actions_t m_actions{};
};

std::string ReadLine(int descriptor) {
  std::string line;
  char character = 0;
  while (read(descriptor, &character, 1) == 1 && character != '\n') line += character;
  return line;
}

}  // namespace

int RunProgram(const std::vector<std::string>& words) {
  TActions actions;
  actions.Discard(STDOUT_FILENO);
  actions.Discard(STDERR_FILENO);
  const pid_t child = actions.Spawn(words);
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

TServerProgram::TServerProgram(const std::vector<std::string>& arguments) {
  int toServer[2];
  int fromServer[2];
  if (pipe2(toServer, O_CLOEXEC) != 0 || pipe2(fromServer, O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipes");
  }
  TActions actions;
  actions.Place(toServer[0], STDIN_FILENO);
  actions.Place(fromServer[1], STDOUT_FILENO);
  std::vector<std::string> words = {DIAGS_CIM_SERVER};
  words.insert(words.end(), arguments.begin(), arguments.end());
  m_child = actions.Spawn(words);
  close(toServer[0]);
  close(fromServer[1]);
  m_input = toServer[1];
  m_output = fromServer[0];
  const std::string line = ReadLine(m_output);
  const std::string announced = "listening on ";
  if (line.compare(0, announced.size(), announced) != 0) {
    throw std::runtime_error("the CIM server does not start");
  }
  m_url = line.substr(announced.size());
}

TServerProgram::~TServerProgram() {
  close(m_input);
  close(m_output);
  if (m_child > 0) waitpid(m_child, nullptr, 0);
}

}  // namespace bench
