// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

namespace host {

/// Where standard output goes meanwhile.
enum class EOutputTarget {
  kUnchanged,
  kStandardError,
  kNowhere,
};

/// Sends what anybody in this process writes to standard output somewhere else, for as long as it
/// lives. What has been written before and after goes where it belongs. When somebody has closed
/// the descriptor meanwhile that leads back there, or has put another file in its place, standard
/// output is lost: that is one line on standard error, and IsOutputGood() is false from then on.
/// Errors: std::system_error when the descriptor cannot be changed.
/// Threads: one at a time.
class TOutputRedirect {
 public:
  explicit TOutputRedirect(EOutputTarget target);
  ~TOutputRedirect();
  TOutputRedirect(const TOutputRedirect&) = delete;
  TOutputRedirect& operator=(const TOutputRedirect&) = delete;

 private:
  bool IsSavedUnchanged() const;
  void LoseOutput() const;

  int m_saved = -1;
  dev_t m_device = 0;
  ino_t m_file = 0;
  bool m_wasGood = true;
};

/// Whether everything that was written to standard output so far arrived.
bool IsOutputGood();

/// Whether standard output is a pipe or socket that nobody reads any more.
bool IsReaderGone();

/// Where standard output goes, also while a TOutputRedirect lives.
int GetOutputDescriptor();

/// Opens the standard descriptors that the caller closed, so that no file of this process takes
/// their numbers; using one of them fails as it would have.
void OpenStandardDescriptors();

}  // namespace host
