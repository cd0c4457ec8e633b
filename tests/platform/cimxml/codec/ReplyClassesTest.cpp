// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/platform/cimxml/codec/ReplyDocument.h"

namespace NZEPQEL20::cimxml {
namespace {

const std::string kClass =
    "<CLASS NAME=\"A_Link\"  SUPERCLASS=\"A_Base\" >\n"
    "<QUALIFIER NAME=\"ASSOCIATION\" TYPE=\"boolean\" OVERRIDABLE=\"false\">\n<VALUE>true</VALUE>\n"
    "</QUALIFIER>\n"
    "<QUALIFIER NAME=\"Version\" TYPE=\"string\" TOSUBCLASS=\"false\">\n<VALUE>2.0</VALUE>\n"
    "</QUALIFIER>\n"
    "<PROPERTY.REFERENCE NAME=\"Part\"  REFERENCECLASS=\"A_Part\" CLASSORIGIN=\"A_Base\" "
    "PROPAGATED=\"true\">\n"
    "<QUALIFIER NAME=\"KEY\" TYPE=\"boolean\">\n<VALUE>TRUE</VALUE>\n</QUALIFIER>\n"
    "</PROPERTY.REFERENCE>\n"
    "<PROPERTY NAME=\"State\"  CLASSORIGIN=\"A_Link\" TYPE=\"uint16\">\n"
    "<QUALIFIER NAME=\"ValueMap\" TYPE=\"string\">\n<VALUE.ARRAY>\n<VALUE>0</VALUE>\n"
    "<VALUE>2..4</VALUE>\n</VALUE.ARRAY>\n</QUALIFIER>\n"
    "<QUALIFIER NAME=\"Values\" TYPE=\"string\">\n<VALUE.ARRAY>\n<VALUE>Unknown</VALUE>\n"
    "<VALUE>OK</VALUE>\n</VALUE.ARRAY>\n</QUALIFIER>\n"
    "<VALUE>12</VALUE>\n</PROPERTY>\n"
    "<PROPERTY.ARRAY NAME=\"Words\"  TYPE=\"string\">\n"
    "<QUALIFIER NAME=\"Values\" TYPE=\"string\"><VALUE.ARRAY><VALUE>a</VALUE></VALUE.ARRAY>"
    "</QUALIFIER></PROPERTY.ARRAY>\n"
    "<PROPERTY NAME=\"Set\" TYPE=\"string\"><QUALIFIER NAME=\"EmbeddedInstance\" TYPE=\"string\">"
    "<VALUE>A_Set</VALUE></QUALIFIER></PROPERTY>"
    "<METHOD NAME=\"Run\" TYPE=\"uint32\" CLASSORIGIN=\"A_Link\">\n"
    "<QUALIFIER NAME=\"ValueMap\" TYPE=\"string\"><VALUE.ARRAY><VALUE>0</VALUE></VALUE.ARRAY>"
    "</QUALIFIER>\n"
    "<PARAMETER.REFERENCE NAME=\"Element\" REFERENCECLASS=\"A_Part\">"
    "<QUALIFIER NAME=\"IN\" TYPE=\"boolean\"><VALUE>TRUE</VALUE></QUALIFIER>"
    "</PARAMETER.REFERENCE>\n"
    "<PARAMETER.REFERENCE NAME=\"Job\"><QUALIFIER NAME=\"In\" TYPE=\"boolean\"><VALUE>false</VALUE>"
    "</QUALIFIER><QUALIFIER NAME=\"OUT\" TYPE=\"boolean\"><VALUE>TRUE</VALUE></QUALIFIER>"
    "</PARAMETER.REFERENCE>\n"
    "<PARAMETER.ARRAY NAME=\"Numbers\" TYPE=\"uint32\"/>\n"
    "<PARAMETER.REFARRAY NAME=\"Parts\" REFERENCECLASS=\"A_Part\"/>\n"
    "<PARAMETER NAME=\"Text\" TYPE=\"string\"/>\n"
    "</METHOD>\n</CLASS>\n";

class ReplyClassesTest : public ::testing::Test {
 protected:
  ReplyClassesTest() : m_reply(Read(Return(kClass))), m_class(*m_reply.declaration) {}
  TReply m_reply;
  TCIMClassDeclaration& m_class;
};

TEST_F(ReplyClassesTest, ReadsWhatTheClassIs) {
  EXPECT_EQ(m_class.name, "A_Link");
  EXPECT_EQ(m_class.superclass, "A_Base");
  EXPECT_TRUE(m_class.isAssociation);
  EXPECT_FALSE(m_class.isAbstract);
  ASSERT_EQ(m_class.qualifiers.size(), 2U);
  EXPECT_EQ(m_class.qualifiers[1].value, TCIMValue("2.0"));
  EXPECT_EQ(m_reply.oddities, 0U);
}

TEST_F(ReplyClassesTest, ReadsPropertiesWithKeysOriginsAndDefaults) {
  ASSERT_EQ(m_class.properties.size(), 4U);
  const TCIMPropertyDeclaration& part = m_class.properties[0];
  EXPECT_EQ(part.type, ECIMType::kReference);
  EXPECT_EQ(part.referenceClass, "A_Part");
  EXPECT_EQ(part.classOrigin, "A_Base");
  EXPECT_TRUE(part.isKey);
  const TCIMPropertyDeclaration& state = m_class.properties[1];
  EXPECT_FALSE(state.isKey);
  EXPECT_EQ(state.defaultValue, TCIMValue::UInt16(12));
  const TCIMPropertyDeclaration& words = m_class.properties[2];
  EXPECT_TRUE(words.isArray);
  EXPECT_EQ(words.defaultValue, TCIMValue::Null(ECIMType::kString, true));
}

TEST_F(ReplyClassesTest, ReadsTheWordsOfValues) {
  EXPECT_EQ(m_class.properties[1].valueMap, (std::vector<std::string>{"0", "2..4"}));
  EXPECT_EQ(m_class.properties[1].values, (std::vector<std::string>{"Unknown", "OK"}));
  EXPECT_EQ(m_class.properties[2].valueMap, (std::vector<std::string>{"0"}));
}

TEST_F(ReplyClassesTest, KnowsAnEmbeddedInstanceByItsQualifier) {
  EXPECT_EQ(m_class.properties[3].type, ECIMType::kInstance);
  EXPECT_EQ(m_class.properties[3].defaultValue, TCIMValue::Null(ECIMType::kInstance));
}

TEST_F(ReplyClassesTest, ReadsMethodsWithTheirParameters) {
  ASSERT_EQ(m_class.methods.size(), 1U);
  const TCIMMethodDeclaration& run = m_class.methods[0];
  EXPECT_EQ(run.type, ECIMType::kUInt32);
  EXPECT_EQ(run.classOrigin, "A_Link");
  ASSERT_EQ(run.parameters.size(), 5U);
  EXPECT_TRUE(run.parameters[0].isIn && !run.parameters[0].isOut);
  EXPECT_TRUE(!run.parameters[1].isIn && run.parameters[1].isOut);
  EXPECT_EQ(run.parameters[1].type, ECIMType::kReference);
  EXPECT_TRUE(run.parameters[2].isArray && run.parameters[2].type == ECIMType::kUInt32);
  EXPECT_TRUE(run.parameters[3].isArray && run.parameters[3].type == ECIMType::kReference);
  EXPECT_TRUE(run.parameters[4].isIn);
  EXPECT_EQ(run.qualifiers.size(), 1U);
}

TEST(ReplyClassListTest, ReadsTheNamesOfClasses) {
  const TReply reply = Read(Return("<CLASSNAME NAME=\"B\"/>\n<CLASSNAME NAME=\"A\"/>"));
  EXPECT_EQ(reply.classNames, (std::vector<std::string>{"B", "A"}));
}

}  // namespace
}  // namespace NZEPQEL20::cimxml
