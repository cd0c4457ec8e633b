// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <ostream>

#include "tests/support/TRecordingOutput.h"
#include "tests/support/TTranscript.h"

namespace scripted {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TranscriptTest : public ::testing::Test {
 protected:
  TranscriptTest() : m_stream(nullptr), m_output(std::make_unique<TRecordingOutput>(m_stream)) {
    m_transcript.Clear();
  }
  ~TranscriptTest() override { m_transcript.Clear(); }

  TTranscript& m_transcript = TTranscript::Get();
  std::ostream m_stream;
  std::unique_ptr<TRecordingOutput> m_output;
};

TEST_F(TranscriptTest, KeepsBytesFlushesAndLinesInTheirOrder) {
  m_stream << "a" << 7 << '\b' << std::flush << "b";
  m_transcript.Add("sleep", "5");
  m_stream << "c\n" << std::flush;
  EXPECT_THAT(m_transcript.All(),
              ElementsAre("out a7\\b", "flush", "out b", "sleep 5", "out c\\n", "flush"));
}

TEST_F(TranscriptTest, JoinsOutputThatOnlyFlushesSeparated) {
  m_stream << "a" << std::flush << "b";
  m_transcript.Add("sleep", "5");
  m_stream << "c";
  EXPECT_THAT(m_transcript.Only({"out", "sleep"}), ElementsAre("out ab", "sleep 5", "out c"));
  EXPECT_EQ(m_transcript.Output(), "abc");
}

TEST_F(TranscriptTest, TellsLogsFromOtherLines) {
  m_transcript.Add("log3", "one");
  m_transcript.Add("fetch", "x");
  m_transcript.Add("log0", "two");
  m_transcript.Add("log3", "");
  EXPECT_THAT(m_transcript.Logs(), ElementsAre("one", "two", ""));
  EXPECT_EQ(m_transcript.Count("log3"), 2U);
  EXPECT_EQ(m_transcript.Count("fetch x"), 1U);
}

TEST_F(TranscriptTest, IsEmptyAfterClear) {
  m_stream << "a";
  m_transcript.Clear();
  EXPECT_THAT(m_transcript.All(), IsEmpty());
  EXPECT_EQ(m_transcript.Output(), "");
}

TEST_F(TranscriptTest, ShowsControlCharactersEscaped) {
  EXPECT_EQ(Escape("a\"\t\n\b\x01"), "a\"\\x09\\n\\b\\x01");
}

TEST_F(TranscriptTest, GivesTheStreamItsBufferBack) {
  std::ostream stream(nullptr);
  {
    const TRecordingOutput inner(stream);
    EXPECT_EQ(stream.rdbuf(), &inner);
  }
  EXPECT_EQ(stream.rdbuf(), nullptr);
}

}  // namespace
}  // namespace scripted
