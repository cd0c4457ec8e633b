// SPDX-License-Identifier: Apache-2.0
//
// The function tables as a whole, and the services over any object.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <vector>

#include "platform/cmpi/TBrokerArgs.h"
#include "platform/cmpi/TBrokerArray.h"
#include "platform/cmpi/TBrokerDateTime.h"
#include "platform/cmpi/TBrokerEnumeration.h"
#include "platform/cmpi/TBrokerError.h"
#include "platform/cmpi/TBrokerInstance.h"
#include "platform/cmpi/TBrokerPath.h"
#include "platform/cmpi/TBrokerPropertyList.h"
#include "platform/cmpi/TBrokerResult.h"
#include "platform/cmpi/TBrokerSelectCond.h"
#include "platform/cmpi/TBrokerSelectExp.h"
#include "platform/cmpi/TBrokerString.h"
#include "platform/contract/TRootObject.h"
#include "tests/platform/cmpi/broker/TBrokerTest.h"

namespace NZEPQEL20::cmpi {
namespace {

/// A function table as plain memory: versions and names first, then functions.
struct TTable {
  const char* name;
  const void* start;
  std::size_t size;
  std::size_t functions;  ///< Where they begin.
};
void PrintTo(const TTable& table, std::ostream* out) {
  *out << table.name;
}

class BrokerTableTest : public testing::TestWithParam<TTable> {};

TEST_P(BrokerTableTest, HasNoEmptySlotAndItsVersion) {
  const TTable& table = GetParam();
  const auto* bytes = static_cast<const unsigned char*>(table.start);
  CMPIVersion version = 0;
  // The table of upcalls starts with its capabilities.
  const std::size_t versionAt = std::strcmp(table.name, "Upcalls") == 0 ? 4 : 0;
  std::memcpy(&version, bytes + versionAt, sizeof version);
  EXPECT_EQ(version, CMPIVersion210);
  for (std::size_t at = table.functions; at < table.size; at += sizeof(void*)) {
    std::uintptr_t slot = 0;
    std::memcpy(&slot, bytes + at, sizeof slot);
    EXPECT_NE(slot, 0U) << "slot at byte " << at;
  }
}

template <class TFT>
TTable Of(const char* name, const TFT& table, std::size_t functions = 8) {
  return {name, &table, sizeof table, functions};
}

INSTANTIATE_TEST_SUITE_P(
    All, BrokerTableTest,
    testing::Values(
        Of("Upcalls", kBrokerTable, 16), Of("Factories", kBrokerEncTable),
        Of("Threads", kBrokerExtTable), Of("Memory", kBrokerMemTable),
        Of("Context", TBrokerContext::kTable), Of("Result", TBrokerResult::kTable),
        Of("String", TBrokerString::kTable), Of("Array", TBrokerArray::kTable),
        Of("Enumeration", TBrokerEnumeration::kTable), Of("Instance", TBrokerInstance::kTable),
        Of("Path", TBrokerPath::kTable), Of("Args", TBrokerArgs::kTable),
        Of("DateTime", TBrokerDateTime::kTable), Of("Error", TBrokerError::kTable),
        Of("PropertyList", TBrokerPropertyList::kTable), Of("SelectExp", TBrokerSelectExp::kTable),
        Of("SelectCond", TBrokerSelectCond::kTable), Of("SubCond", TBrokerSubCond::kTable),
        Of("Predicate", TBrokerPredicate::kTable),
        Of("EnumerationFilter", TBrokerEnumerationFilter::kTable)),
    [](const auto& row) { return row.param.name; });

class TRecordingLogger : public ILogger {
 public:
  void Log(EQELLogSeverity severity, const std::string& text) override {
    lines.push_back(std::to_string(severity) + ' ' + text);
  }
  std::vector<std::string> lines;
};

class BrokerServicesTest : public TBrokerTest {
 protected:
  BrokerServicesTest() { TRootObject::SetCoreLogger(&m_logger); }
  ~BrokerServicesTest() override { TRootObject::SetCoreLogger(nullptr); }

  const CMPIBrokerEncFT& Eft() const { return *m_broker->eft; }
  TRecordingLogger m_logger;
};

TEST_F(BrokerServicesTest, TheBrokerItselfIsWholeAndNamed) {
  EXPECT_NE(m_broker->hdl, nullptr);
  EXPECT_STREQ(m_broker->bft->brokerName, "diagsrunner");
  const unsigned int capabilities = m_broker->bft->brokerCapabilities;
  EXPECT_EQ(capabilities & CMPI_MB_InstanceManipulation, CMPI_MB_InstanceManipulation);
  EXPECT_EQ(capabilities & CMPI_MB_BasicQualifierSupport, CMPI_MB_BasicQualifierSupport);
  EXPECT_EQ(capabilities & CMPI_MB_AssociationTraversal, CMPI_MB_AssociationTraversal);
  EXPECT_EQ(capabilities & CMPI_MB_CodepageConversion, CMPI_MB_CodepageConversion);
  EXPECT_EQ(capabilities & CMPI_MB_QueryNormalization, CMPI_MB_QueryNormalization);
  EXPECT_EQ(capabilities & CMPI_MB_PropertyFiltering, CMPI_MB_PropertyFiltering);
  EXPECT_EQ(capabilities & (CMPI_MB_Indications & ~1U), 0U) << "indications are not offered";
}

TEST_F(BrokerServicesTest, EveryObjectHasAHandleATypeAndAText) {
  const char* names[] = {"One", nullptr};
  CMPIArray* array = Eft().newArray(m_broker, 1, CMPI_uint8, nullptr);
  const struct {
    const void* object;
    const char* type;
  } rows[] = {
      {NewInstance(), "CMPIInstance"},
      {NewPath(), "CMPIObjectPath"},
      {NewString("x"), "CMPIString"},
      {array, "CMPIArray"},
      {Eft().newArgs(m_broker, nullptr), "CMPIArgs"},
      {Eft().newDateTime(m_broker, nullptr), "CMPIDateTime"},
      {Eft().newPropertyList(m_broker, names, nullptr), "CMPIPropertyList"},
      {Eft().newCMPIError(m_broker, "o", "i", "m", ErrorSevLow, ErrorProbCauseUnknown,
                          CMPI_RC_ERR_FAILED, nullptr),
       "CMPIError"},
  };
  for (const auto& row : rows) {
    ASSERT_NE(row.object, nullptr) << row.type;
    const void* handle = nullptr;
    std::memcpy(&handle, row.object, sizeof handle);
    EXPECT_NE(handle, nullptr) << row.type;
    EXPECT_EQ(Text(Eft().getType(m_broker, row.object, nullptr)), row.type);
    EXPECT_TRUE(Eft().isOfType(m_broker, row.object, row.type, nullptr));
    EXPECT_FALSE(Eft().isOfType(m_broker, row.object, "CMPIResult", nullptr));
    EXPECT_NE(Eft().toString(m_broker, row.object, &m_rc), nullptr) << row.type;
    EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  }
}

TEST_F(BrokerServicesTest, WhatIsNoObjectHasNeitherTypeNorText) {
  const CMPIStringFT foreignTable = {};
  const CMPIString foreign = {"text", &foreignTable};
  for (const CMPIString* object : {static_cast<const CMPIString*>(nullptr), &foreign}) {
    EXPECT_EQ(Eft().getType(m_broker, object, &m_rc), nullptr);
    EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_EQ(Eft().toString(m_broker, object, &m_rc), nullptr);
    EXPECT_FALSE(Eft().isOfType(m_broker, object, "CMPIString", &m_rc));
    EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
  }
}

struct TInheritance {
  const char* className;
  const char* superclass;
  bool isA;
};

TEST_F(BrokerServicesTest, ClassPathIsAFollowsTheSchemaWithoutCase) {
  for (const TInheritance& row :
       {TInheritance{"T_Derived", "T_Base", true}, TInheritance{"t_derived", "T_BASE", true},
        TInheritance{"T_Base", "t_base", true}, TInheritance{"T_Base", "T_Derived", false},
        TInheritance{"No_Such", "T_Base", false}, TInheritance{"No_Such", "no_such", true}}) {
    const bool isA =
        Eft().classPathIsA(m_broker, NewPath(row.className), row.superclass, &m_rc) != 0;
    EXPECT_EQ(isA, row.isA) << row.className << ' ' << row.superclass;
    EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  }
  EXPECT_FALSE(Eft().classPathIsA(m_broker, NewPath(), nullptr, &m_rc));
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerServicesTest, AMessageTakesValuesOfEveryType) {
  const CMPIString* message = Eft().getMessage(
      m_broker, "id", "$0 $1 $2 $3 $4 $5 $6 $7 $8", &m_rc, 9, CMPI_sint8, -1, CMPI_uint32,
      4294967295U, CMPI_sint64, -5LL, CMPI_uint64, 18446744073709551615ULL, CMPI_real64, 1.5,
      CMPI_boolean, 1, CMPI_chars, "text", CMPI_string, NewString("string"), CMPI_uint16, 7U);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Text(message), "-1 4294967295 -5 18446744073709551615 1.5 true text string 7");
}

TEST_F(BrokerServicesTest, AMessageTakesTenPairsAndNoMore) {
  const CMPIString* none = nullptr;
  const CMPIString* message = Eft().getMessage2(
      m_broker, "id", nullptr, "$9$8$7$6$5$4$3$2$1$0", &m_rc, 10, CMPI_chars, "j", CMPI_chars,
      nullptr, CMPI_string, none, CMPI_sint16, -2, CMPI_sint32, -3, CMPI_uint8, 4U, CMPI_real32,
      0.25, CMPI_boolean, 0, CMPI_chars, "b", CMPI_chars, "a");
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Text(message), "abfalse0.254-3-2j");
  EXPECT_EQ(Text(Eft().getMessage2(m_broker, "id", nullptr, "$0", &m_rc, 11)), "$0");
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerServicesTest, AMessageOfNoObjectOfThisBrokerStaysAsItIs) {
  const CMPIString foreign = {"text", nullptr};
  EXPECT_EQ(
      Text(Eft().getMessage2(m_broker, "id", nullptr, "$0!", &m_rc, 1, CMPI_string, &foreign)),
      "$0!");
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_TYPE_MISMATCH);
}

TEST_F(BrokerServicesTest, AMessageMayRepeatAndLeaveOutItsValues) {
  EXPECT_EQ(
      Text(Eft().getMessage(m_broker, nullptr, "$0$0 $9 $ $x 100$", nullptr, 1, CMPI_chars, "a$1")),
      "a$1a$1 $9 $ $x 100$");
  EXPECT_EQ(Text(Eft().getMessage2(m_broker, "id", nullptr, "plain", &m_rc, 0)), "plain");
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Text(Eft().getMessage(m_broker, "id", nullptr, &m_rc, 0)), "");
}

TEST_F(BrokerServicesTest, AMessageThatCannotBeFilledInStaysAsItIs) {
  EXPECT_EQ(Text(Eft().getMessage(m_broker, "id", "of $0", &m_rc, 1, CMPI_ref, nullptr)), "of $0");
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_TYPE_MISMATCH);
  EXPECT_EQ(Text(Eft().getMessage(m_broker, "id", "of $0", &m_rc, 11)), "of $0");
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerServicesTest, LogLinesReachTheCoreLoggerWithTheirSeverity) {
  const CMPIString* alternative = NewString("instead");
  EXPECT_EQ(Eft().logMessage(m_broker, CMPI_SEV_ERROR, "id", "text", alternative).rc, CMPI_RC_OK);
  Eft().logMessage(m_broker, CMPI_SEV_WARNING, nullptr, nullptr, alternative);
  Eft().logMessage(m_broker, CMPI_SEV_INFO, "", "b\xFF", nullptr);
  Eft().logMessage(m_broker, CMPI_DEV_DEBUG, "id", "debug", nullptr);
  EXPECT_EQ(Eft().trace(m_broker, CMPI_LEV_INFO, "part", "step", nullptr).rc, CMPI_RC_OK);
  Eft().trace(m_broker, CMPI_LEV_VERBOSE, nullptr, nullptr, alternative);
  const std::vector<std::string> expected = {"0 provider id: text",   "1 provider: instead",
                                             "2 provider: b\xC3\xBF", "3 provider id: debug",
                                             "3 provider part: step", "3 provider: instead"};
  EXPECT_EQ(m_logger.lines, expected);
}

TEST_F(BrokerServicesTest, NothingToLogIsAnInvalidParameterAndNoLoggerIsFine) {
  EXPECT_EQ(Eft().logMessage(m_broker, CMPI_SEV_ERROR, "id", nullptr, nullptr).rc,
            CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(Eft().trace(m_broker, CMPI_LEV_INFO, "part", nullptr, nullptr).rc,
            CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_TRUE(m_logger.lines.empty());
  TRootObject::SetCoreLogger(nullptr);
  EXPECT_EQ(Eft().logMessage(m_broker, CMPI_SEV_ERROR, "id", "text", nullptr).rc, CMPI_RC_OK);
}

TEST_F(BrokerServicesTest, ThereAreNoMessageFiles) {
  CMPIMsgFileHandle handle = &m_rc;
  EXPECT_EQ(Eft().openMessageFile(m_broker, "f", &handle).rc, CMPI_RC_ERR_NOT_FOUND);
  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(Eft().closeMessageFile(m_broker, nullptr).rc, CMPI_RC_OK);
  EXPECT_EQ(Eft().closeMessageFile(m_broker, &m_rc).rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(Eft().openMessageFile(m_broker, "f", nullptr).rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

class BrokerErrorTest : public BrokerServicesTest {
 protected:
  CMPIError* NewError() const {
    return Eft().newCMPIError(m_broker, "owner", "id1", "words", ErrorSevHigh, IO_Device_Error,
                              CMPI_RC_ERR_ACCESS_DENIED, nullptr);
  }
};

TEST_F(BrokerErrorTest, HoldsWhatItWasMadeWithAndNothingElse) {
  const CMPIError* error = NewError();
  const CMPIErrorFT& ft = *error->ft;
  EXPECT_EQ(Text(ft.getOwningEntity(error, nullptr)), "owner");
  EXPECT_EQ(Text(ft.getMessageID(error, nullptr)), "id1");
  EXPECT_EQ(Text(ft.getMessage(error, nullptr)), "words");
  EXPECT_EQ(ft.getPerceivedSeverity(error, nullptr), ErrorSevHigh);
  EXPECT_EQ(ft.getProbableCause(error, nullptr), IO_Device_Error);
  EXPECT_EQ(ft.getCIMStatusCode(error, nullptr), CMPI_RC_ERR_ACCESS_DENIED);
  EXPECT_EQ(ft.getErrorType(error, nullptr), UnknownErrorType);
  EXPECT_EQ(ft.getErrorSourceFormat(error, nullptr), CMPIErrSrcUnknown);
  for (const auto get : {ft.getOtherErrorType, ft.getProbableCauseDescription, ft.getErrorSource,
                         ft.getOtherErrorSourceFormat, ft.getCIMStatusCodeDescription}) {
    EXPECT_EQ(get(error, &m_rc), nullptr);
    EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  }
  EXPECT_EQ(ft.getRecommendedActions(error, nullptr), nullptr);
  EXPECT_EQ(ft.getMessageArguments(error, nullptr), nullptr);
}

TEST_F(BrokerErrorTest, HoldsWhatIsSetLater) {
  const CMPIError* error = NewError();
  const CMPIErrorFT& ft = *error->ft;
  ft.setErrorType(error, HardwareError);
  ft.setErrorSourceFormat(error, CIMObjectHandle);
  ft.setOtherErrorType(error, "type");
  ft.setProbableCauseDescription(error, "cause");
  ft.setErrorSource(error, "source");
  ft.setOtherErrorSourceFormat(error, "format");
  ft.setCIMStatusCodeDescription(error, "code");
  CMPIArray* actions = Eft().newArray(m_broker, 1, CMPI_string, nullptr);
  actions->ft->setElementAt(actions, 0, Chars("act"), CMPI_chars);
  EXPECT_EQ(ft.setRecommendedActions(error, actions).rc, CMPI_RC_OK);
  EXPECT_EQ(ft.setMessageArguments(error, nullptr).rc, CMPI_RC_OK);

  EXPECT_EQ(ft.getErrorType(error, nullptr), HardwareError);
  EXPECT_EQ(ft.getErrorSourceFormat(error, nullptr), CIMObjectHandle);
  EXPECT_EQ(Text(ft.getOtherErrorType(error, nullptr)), "type");
  EXPECT_EQ(Text(ft.getProbableCauseDescription(error, nullptr)), "cause");
  EXPECT_EQ(Text(ft.getErrorSource(error, nullptr)), "source");
  EXPECT_EQ(Text(ft.getOtherErrorSourceFormat(error, nullptr)), "format");
  EXPECT_EQ(Text(ft.getCIMStatusCodeDescription(error, nullptr)), "code");
  CMPIArray* read = ft.getRecommendedActions(error, nullptr);
  EXPECT_EQ(Text(read->ft->getElementAt(read, 0, nullptr).value.string), "act");
  EXPECT_EQ(ft.getMessageArguments(error, nullptr), nullptr);

  CMPIError* clone = ft.clone(error, nullptr);
  EXPECT_EQ(Text(ft.getErrorSource(clone, nullptr)), "source");
  EXPECT_EQ(ft.release(clone).rc, CMPI_RC_OK);
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
