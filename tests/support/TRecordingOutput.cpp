// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TRecordingOutput.h"

#include <string>

#include "tests/support/TTranscript.h"

namespace scripted {

TRecordingOutput::TRecordingOutput(std::ostream& stream)
    : m_stream(stream), m_previous(stream.rdbuf(this)) {}

TRecordingOutput::~TRecordingOutput() {
  m_stream.rdbuf(m_previous);
}

TRecordingOutput::int_type TRecordingOutput::overflow(int_type byte) {
  if (!traits_type::eq_int_type(byte, traits_type::eof())) {
    TTranscript::Get().AddOutput(std::string(1, traits_type::to_char_type(byte)));
  }
  return traits_type::not_eof(byte);
}

std::streamsize TRecordingOutput::xsputn(const char* bytes, std::streamsize count) {
  if (count > 0) {
    TTranscript::Get().AddOutput(std::string(bytes, static_cast<std::size_t>(count)));
  }
  return count;
}

int TRecordingOutput::sync() {
  TTranscript::Get().Add("flush", "");
  return 0;
}

}  // namespace scripted
