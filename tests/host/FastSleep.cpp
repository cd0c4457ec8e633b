// SPDX-License-Identifier: Apache-2.0
//
// Takes the place of the C library's sleep() in a program under test: its seconds pass fifty
// times as fast. Those of nanosleep(), by which the command judges how long a provider takes, do so
// only where DIAGSTEST_IMPATIENT is set: a slow machine must not make a provider look stuck.
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>

namespace {

constexpr long kFastSecond = 1'000'000'000 / 50;

int Wait(const timespec& time, timespec* left) {
  const int error = ::clock_nanosleep(CLOCK_REALTIME, 0, &time, left);
  if (error != 0) errno = error;
  return error == 0 ? 0 : -1;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) unsigned int sleep(unsigned int seconds) {
  for (unsigned int i = 0; i < seconds; ++i) Wait({0, kFastSecond}, nullptr);
  return 0;
}

extern "C" __attribute__((visibility("default"))) int nanosleep(const timespec* time,
                                                                timespec* left) {
  const bool isFast = time->tv_sec > 0 && std::getenv("DIAGSTEST_IMPATIENT") != nullptr;
  return Wait(isFast ? timespec{0, kFastSecond * time->tv_sec} : *time, left);
}
