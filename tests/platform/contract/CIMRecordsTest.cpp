// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "platform/contract/TCIMClassDeclaration.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

TEST(CIMNameTest, ComparesAsciiLettersWithoutCaseAndNothingElse) {
  EXPECT_TRUE(IsSameName("DeviceID", "deviceid"));
  EXPECT_TRUE(IsSameName("", ""));
  EXPECT_FALSE(IsSameName("DeviceID", "DeviceI"));
  EXPECT_FALSE(IsSameName("a_", "a?"));
  EXPECT_FALSE(IsSameName("[", "{"));
  EXPECT_FALSE(IsSameName("\xC4", "\xE4"));
}

TEST(CIMInstanceDataTest, FindsPropertiesWithoutCase) {
  TCIMInstanceData data;
  data.Set("Name", "disk");
  ASSERT_NE(data.Find("NAME"), nullptr);
  EXPECT_EQ(data.Find("NAME")->value, TCIMValue("disk"));
  EXPECT_EQ(data.Find("Nam"), nullptr);
}

TEST(CIMInstanceDataTest, ReplacesInPlaceAndAppendsWhatIsNew) {
  TCIMInstanceData data;
  data.Set("Name", "disk");
  data.Set("Size", TCIMValue::UInt16(1));
  data.Set("name", "tape");
  ASSERT_EQ(data.properties.size(), 2U);
  EXPECT_EQ(data.properties[0].name, "Name");
  EXPECT_EQ(data.properties[0].value, TCIMValue("tape"));
  EXPECT_EQ(data.properties[1].name, "Size");
}

TEST(CIMClassDeclarationTest, FindsPropertiesAndMethodsWithoutCase) {
  TCIMClassDeclaration declaration;
  declaration.properties.resize(1);
  declaration.properties[0].name = "DeviceID";
  declaration.methods.resize(1);
  declaration.methods[0].name = "RunDiagnostic";
  EXPECT_EQ(declaration.FindProperty("deviceid"), &declaration.properties[0]);
  EXPECT_EQ(declaration.FindMethod("RUNDIAGNOSTIC"), &declaration.methods[0]);
  EXPECT_EQ(declaration.FindProperty("RunDiagnostic"), nullptr);
  EXPECT_EQ(declaration.FindMethod("DeviceID"), nullptr);
}

TEST(QELExceptionTest, CarriesStatusWordsAndTheSendersNumber) {
  const TQELException plain(4U, "no buffer");
  EXPECT_EQ(plain.GetStatusCode().GetValue(), 4U);
  EXPECT_EQ(plain.GetCIMStatus(), TQELException::kNoCIMStatus);
  const TQELException sent(TQELStatusCode::kCIMError, "refused", 16);
  EXPECT_STREQ(sent.what(), "refused");
  EXPECT_EQ(sent.GetCIMStatus(), 16U);
}

TEST(QELStatusCodeTest, HasWordsForEveryCodeAndTheNumberForOthers) {
  EXPECT_EQ(TQELStatusCode(TQELStatusCode::kNoMemory).TranslateStatusCode(), "no memory");
  for (unsigned int code = 0; code <= TQELStatusCode::kConnection; ++code) {
    EXPECT_EQ(TQELStatusCode(code).TranslateStatusCode().find("unknown"), std::string::npos);
  }
  EXPECT_EQ(TQELStatusCode(4711).TranslateStatusCode(), "unknown status 4711");
}

}  // namespace
}  // namespace NZEPQEL20
