// SPDX-License-Identifier: Apache-2.0
#include <ctime>
#include <ostream>

#include "platform/cmpi/TBrokerDateTime.h"
#include "tests/platform/cmpi/broker/TBrokerTest.h"

namespace NZEPQEL20::cmpi {
namespace {

struct TTime {
  const char* name;
  const char* text;
  CMPIUint64 microseconds;
  bool isInterval;
};
void PrintTo(const TTime& row, std::ostream* out) {
  *out << row.text;
}

class BrokerDateTimeTest : public TBrokerTest {
 protected:
  CMPIDateTime* FromChars(const char* text) {
    return m_broker->eft->newDateTimeFromChars(m_broker, text, &m_rc);
  }
};
class BrokerTimesTest : public BrokerDateTimeTest, public testing::WithParamInterface<TTime> {};

TEST_P(BrokerTimesTest, AreReadInUtcAndKeepTheirText) {
  const CMPIDateTime* time = FromChars(GetParam().text);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(time->ft->getBinaryFormat(time, nullptr), GetParam().microseconds);
  EXPECT_EQ(Text(time->ft->getStringFormat(time, nullptr)), GetParam().text);
  EXPECT_EQ(time->ft->isInterval(time, nullptr) != 0, GetParam().isInterval);
}

INSTANTIATE_TEST_SUITE_P(
    All, BrokerTimesTest,
    testing::Values(TTime{"Epoch", "19700101000000.000000+000", 0, false},
                    TTime{"EastOfGreenwich", "19700101020000.000000+120", 0, false},
                    TTime{"WestOfGreenwich", "19691231180000.000000-360", 0, false},
                    TTime{"LeapDay", "20240229123456.654321+000", 1709210096654321, false},
                    TTime{"UnknownFraction", "20240229123456.******+000", 1709210096000000, false},
                    TTime{"NoInterval", "00000000000000.000000:000", 0, true},
                    TTime{"OneOfEach", "00000001010101.000001:000", 90061000001, true},
                    TTime{"Longest", "99999999235959.999999:000", 8639999999999999999, true}),
    [](const auto& row) { return row.param.name; });

struct TText {
  const char* name;
  const char* text;
};
void PrintTo(const TText& row, std::ostream* out) {
  *out << (row.text == nullptr ? "NULL" : row.text);
}

class BrokerBadTimesTest : public BrokerDateTimeTest, public testing::WithParamInterface<TText> {};

TEST_P(BrokerBadTimesTest, AreInvalidParameters) {
  EXPECT_EQ(FromChars(GetParam().text), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_NE(m_rc.msg, nullptr);
}

INSTANTIATE_TEST_SUITE_P(All, BrokerBadTimesTest,
                         testing::Values(TText{"Null", nullptr}, TText{"Empty", ""},
                                         TText{"Short", "20240229123456.654321+00"},
                                         TText{"Long", "20240229123456.654321+0000"},
                                         TText{"NoPoint", "20240229123456,654321+000"},
                                         TText{"NoSign", "20240229123456.654321 000"},
                                         TText{"Letter", "2024o229123456.654321+000"},
                                         TText{"IntervalWithOffset", "00000001010101.000001:060"}),
                         [](const auto& row) { return row.param.name; });

TEST_F(BrokerDateTimeTest, BinaryFormsAreWrittenInUtc) {
  const auto& make = m_broker->eft->newDateTimeFromBinary;
  const CMPIDateTime* point = make(m_broker, 1709210096654321, 0, nullptr);
  EXPECT_EQ(Text(point->ft->getStringFormat(point, nullptr)), "20240229123456.654321+000");
  const CMPIDateTime* interval = make(m_broker, 90061000001, 1, nullptr);
  EXPECT_EQ(Text(interval->ft->getStringFormat(interval, nullptr)), "00000001010101.000001:000");
}

TEST_F(BrokerDateTimeTest, ABinaryFormThatHasNoTextIsRefused) {
  const auto& make = m_broker->eft->newDateTimeFromBinary;
  EXPECT_EQ(make(m_broker, ~CMPIUint64{0}, 0, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(make(m_broker, ~CMPIUint64{0}, 1, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerDateTimeTest, ATimeBefore1970HasNoBinaryForm) {
  const CMPIDateTime* time = FromChars("19691231235959.000000+000");
  ASSERT_NE(time, nullptr);
  EXPECT_EQ(time->ft->getBinaryFormat(time, &m_rc), 0U);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerDateTimeTest, ANewTimeIsNow) {
  const auto before = static_cast<CMPIUint64>(std::time(nullptr)) * 1000000;
  const CMPIDateTime* time = m_broker->eft->newDateTime(m_broker, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  const CMPIUint64 now = time->ft->getBinaryFormat(time, nullptr);
  EXPECT_GE(now, before);
  EXPECT_LE(now, before + 60 * CMPIUint64{1000000});
}

TEST_F(BrokerDateTimeTest, AnUnreadableTextPassesThroughAsItCame) {
  // A sender that is not a provider may have set anything.
  TBrokerDateTime odd("never");
  EXPECT_EQ(Text(odd.ft->getStringFormat(&odd, nullptr)), "never");
  EXPECT_EQ(odd.ft->getBinaryFormat(&odd, &m_rc), 0U);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
