// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "platform/cimxml/TXmlStream.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cimxml {
namespace {

class TRecorder : public IXmlEvents {
 public:
  void OnStart(std::string_view element, const char* const* attributes) override {
    seen += "<" + std::string(element);
    for (const char* const* pair = attributes; *pair != nullptr; pair += 2) {
      seen += std::string(" ") + pair[0] + "=" + pair[1];
    }
    seen += ">";
    if (element == "throw") throw std::runtime_error("thrown by an event");
  }
  void OnEnd() override { seen += "</>"; }
  void OnText(std::string_view text) override { seen += text; }
  std::string seen;
};

std::string GetFailure(const std::string& document) {
  TRecorder recorder;
  TXmlStream stream(recorder);
  try {
    stream.Take(document);
    stream.Finish();
  } catch (const TQELException& e) {
    return e.what();
  }
  return "";
}

TEST(XmlStreamTest, ReportsElementsAttributesAndTextByteForByte) {
  const std::string document =
      "<?xml version=\"1.0\"?><a  x = '1'><![CDATA[<&]]>&amp;\xC3\xA4<b/></a>";
  TRecorder recorder;
  TXmlStream stream(recorder);
  for (const char byte : document) stream.Take({&byte, 1});
  stream.Finish();
  EXPECT_EQ(recorder.seen, "<a x=1><&&\xC3\xA4<b></></>");
}

TEST(XmlStreamTest, ReadsUtf8WhateverTheDocumentSaysOfItself) {
  TRecorder recorder;
  TXmlStream stream(recorder);
  stream.Take("<?xml version=\"1.0\" encoding=\"iso-8859-1\"?><a>\xC3\xA4</a>");
  stream.Finish();
  EXPECT_EQ(recorder.seen, "<a>\xC3\xA4</>");
}

TEST(XmlStreamTest, LeavesWhatAnEventThrowsAsItIs) {
  TRecorder recorder;
  TXmlStream stream(recorder);
  EXPECT_THROW(stream.Take("<a><throw/><b/></a>"), std::runtime_error);
  EXPECT_EQ(recorder.seen, "<a><throw>");
}

TEST(XmlStreamTest, RefusesWhatIsNotWellFormedByLineAndReason) {
  EXPECT_EQ(GetFailure("<a>\n<b></a>"), "line 2 of the reply: mismatched tag");
  EXPECT_EQ(GetFailure("<a>"), "line 1 of the reply: no element found");
  EXPECT_EQ(GetFailure(""), "line 1 of the reply: no element found");
  EXPECT_EQ(GetFailure("<a/><b/>"), "line 1 of the reply: junk after document element");
}

TEST(XmlStreamTest, RefusesDeclarationsOfTheDocumentsOwn) {
  EXPECT_EQ(GetFailure("<!DOCTYPE a [<!ENTITY lol \"lol\"><!ENTITY lol2 \"&lol;&lol;\">]>"
                       "<a>&lol2;</a>"),
            "line 1 of the reply: brings declarations of its own");
  EXPECT_EQ(GetFailure("<!DOCTYPE a [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><a>&x;</a>"),
            "line 1 of the reply: brings declarations of its own");
  EXPECT_EQ(
      GetFailure("<!DOCTYPE a [<!ATTLIST a x CDATA \"" + std::string(1000, 'x') + "\">]><a/>"),
      "line 1 of the reply: brings declarations of its own");
  EXPECT_EQ(GetFailure("<!DOCTYPE a SYSTEM \"http://example.invalid/a.dtd\"><a/>"), "");
}

TEST(XmlStreamTest, BoundsHowDeepElementsNest) {
  std::string open;
  std::string close;
  for (unsigned int i = 0; i < TXmlStream::kMaxDepth; ++i) {
    open += "<a>";
    close += "</a>";
  }
  EXPECT_EQ(GetFailure(open + close), "");
  EXPECT_EQ(GetFailure(open + "<a></a>" + close), "line 1 of the reply: nested too deeply");
}

}  // namespace
}  // namespace NZEPQEL20::cimxml
