// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <ostream>

#include "platform/cimxml/TXmlRepair.h"

namespace NZEPQEL20::cimxml {
namespace {

struct TRepair {
  const char* name;
  std::string given;
  std::string repaired;
  std::uint64_t count;
};

std::ostream& operator<<(std::ostream& out, const TRepair& row) {
  return out << row.name;
}

const std::string kMark = "\xEF\xBF\xBD";

class XmlRepairTest : public ::testing::TestWithParam<TRepair> {
 protected:
  // In pieces of `size` bytes.
  static std::string Repair(const std::string& text, std::size_t size, std::uint64_t& count) {
    TXmlRepair repair;
    std::string result;
    for (std::size_t at = 0; at < text.size(); at += size) {
      const std::string piece = text.substr(at, size);
      result += repair.Take(piece);
    }
    result += repair.Finish();
    count = repair.GetCount();
    return result;
  }
};

TEST_P(XmlRepairTest, MendsTheTextHoweverItIsCut) {
  for (std::size_t size = 1; size <= GetParam().given.size() + 1; ++size) {
    std::uint64_t count = 0;
    EXPECT_EQ(Repair(GetParam().given, size, count), GetParam().repaired) << "pieces of " << size;
    EXPECT_EQ(count, GetParam().count) << "pieces of " << size;
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, XmlRepairTest,
    ::testing::Values(TRepair{"PlainText", "<a>b\r\n\tc</a>", "<a>b\r\n\tc</a>", 0},
                      TRepair{"Umlauts", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80",
                              "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", 0},
                      TRepair{"Entities", "&amp;&lt;&#65;&#x41;&#10;", "&amp;&lt;&#65;&#x41;&#10;",
                              0},
                      TRepair{"Control", "a\x01\x1F z", "a" + kMark + kMark + " z", 2},
                      TRepair{"Nul", std::string("a\0b", 3), "a" + kMark + "b", 1},
                      TRepair{"Latin1", "M\xFCller", "M" + kMark + "ller", 1},
                      TRepair{"Surrogates", "\xED\xA0\xBD\xED\xB8\x80",
                              kMark + kMark + kMark + kMark + kMark + kMark, 6},
                      TRepair{"CutCharacter", "x\xE2\x82", "x" + kMark + kMark, 2},
                      TRepair{"NulReference", "a&#0;b", "a" + kMark + "b", 1},
                      TRepair{"HexReference", "&#x1F;&#xD800;&#xFFFE;", kMark + kMark + kMark, 3},
                      TRepair{"HugeReference", "&#99999999999;", kMark, 1},
                      TRepair{"ReferenceWithoutEnd", "&#12", "&#12", 0},
                      TRepair{"AmpersandAtTheEnd", "a&", "a&", 0},
                      TRepair{"EndlessReference", "&#1111111111111111111111111111;",
                              "&#1111111111111111111111111111;", 0}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(XmlRepairTest, PassesACleanPieceWithoutACopy) {
  TXmlRepair repair;
  const std::string piece = "<a>b</a>";
  EXPECT_EQ(repair.Take(piece).data(), piece.data());
}

}  // namespace
}  // namespace NZEPQEL20::cimxml
