// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;

TEST(SchemaSupportTest, FolderVanishesWithItsFiles) {
  std::string path;
  {
    const TFolder folder;
    path = folder.Write("a/b.mof", "text");
    EXPECT_EQ(std::filesystem::file_size(path), 4U);
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(SchemaSupportTest, LinesKeepTheOrderAndTheNumbers) {
  const std::vector<TMofError> errors = {{"f", 1, 2, "x", false}, {"g", 0, 0, "y", true}};
  EXPECT_EQ(Lines(errors), (TLines{"f:1:2: x", "g: warning: y"}));
}

}  // namespace
