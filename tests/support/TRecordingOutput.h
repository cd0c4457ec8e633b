// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ostream>
#include <streambuf>

namespace scripted {

/// Stands in a stream's place of output while it lives: each byte and each flush goes to the
/// transcript and nowhere else.
class TRecordingOutput : public std::streambuf {
 public:
  explicit TRecordingOutput(std::ostream& stream);
  ~TRecordingOutput() override;
  TRecordingOutput(const TRecordingOutput&) = delete;
  TRecordingOutput& operator=(const TRecordingOutput&) = delete;

 protected:
  int_type overflow(int_type byte) override;
  std::streamsize xsputn(const char* bytes, std::streamsize count) override;
  int sync() override;

 private:
  std::ostream& m_stream;
  std::streambuf* m_previous;
};

}  // namespace scripted
