// SPDX-License-Identifier: Apache-2.0
#include <ostream>

#include "tests/platform/cmpi/operations/TWorkshopTest.h"

namespace NZEPQEL20 {
namespace {

struct TParameter {
  const char* name;
  TCIMValue given;
  const char* seen;  ///< Name and C type as the provider sees them.
};
void PrintTo(const TParameter& row, std::ostream* out) {
  *out << row.name;
}

class MethodOperationsTest : public TWorkshopTest {
 protected:
  TCIMValue Invoke(const char* method, TKeyMap& parameters) {
    return m_operations->InvokeMethod(PathTo("W_Bolt-1"), method, parameters);
  }
  TCIMValue Invoke(const char* method) {
    TKeyMap none;
    return Invoke(method, none);
  }
};

class InParameterTest : public MethodOperationsTest,
                        public testing::WithParamInterface<TParameter> {};

TEST_P(InParameterTest, ReachesTheProviderInItsDeclaredType) {
  TKeyMap parameters = {{GetParam().name, GetParam().given}};
  EXPECT_EQ(Invoke("Echo", parameters), TCIMValue::UInt32(0));
  ASSERT_EQ(parameters.size(), 1U) << "exactly the out-parameters come back";
  EXPECT_EQ(parameters.at("Seen").ToString(10), GetParam().seen);
}

const TCIMValue& PartPath() {
  static const TCIMValue kPath(TCIMReference("root/cimv2", "W_Nut", {{"Id", TCIMValue("n")}}));
  return kPath;
}

INSTANTIATE_TEST_SUITE_P(
    All, InParameterTest,
    testing::Values(TParameter{"Count", TCIMValue("12"), "Count:0090 "},
                    TParameter{"count", TCIMValue::Signed(ECIMType::kSInt64, 12), "count:0090 "},
                    TParameter{"Text", TCIMValue("12"), "Text:1600 "},
                    TParameter{"When", TCIMValue("20240229123456.654321+000"), "When:1800 "},
                    TParameter{"Part", PartPath(), "Part:1100 "},
                    TParameter{"Part", TCIMValue("root/cimv2:W_Nut.Id=\"n\""), "Part:1100 "},
                    TParameter{"Flag", TCIMValue("true"), "Flag:0002 "},
                    TParameter{"Big", TCIMValue("-5"), "Big:00f0 "},
                    TParameter{"Share", TCIMValue("0.5"), "Share:000c "},
                    TParameter{"List",
                               TCIMValue::Array(ECIMType::kString, {TCIMValue("1"), TCIMValue()}),
                               "List:2080 "},
                    TParameter{"Inner", TCIMValue("instance of W_Part { };"), "Inner:1600 "},
                    TParameter{"Inner", TCIMValue::Instance(std::make_shared<TCIMInstanceData>()),
                               "Inner:1000 "},
                    TParameter{"Count", TCIMValue(), "Count:0090 "},
                    TParameter{"Undeclared", TCIMValue("12"), "Undeclared:1600 "}));

class BadParameterTest : public MethodOperationsTest,
                         public testing::WithParamInterface<TParameter> {};

TEST_P(BadParameterTest, IsAMismatchThatNamesItAndLeavesTheParametersAlone) {
  TKeyMap parameters = {{GetParam().name, GetParam().given}};
  const TKeyMap before = parameters;
  const TQELException failure = Failure([&] { Invoke("Echo", parameters); });
  EXPECT_TRUE(failure.GetStatusCode() == TQELStatusCode::kTypeMismatch);
  EXPECT_NE(std::string(failure.what()).find(GetParam().seen), std::string::npos) << failure.what();
  EXPECT_EQ(parameters, before);
}

INSTANTIATE_TEST_SUITE_P(
    All, BadParameterTest,
    testing::Values(TParameter{"Count", TCIMValue("many"), "parameter Count should be a uint16"},
                    TParameter{"Count", TCIMValue::UInt32(65536), "parameter Count"},
                    TParameter{"When", TCIMValue("noon"), "parameter When should be a datetime"},
                    TParameter{"Part", TCIMValue("no path at all"), "parameter Part"},
                    TParameter{"Flag", TCIMValue("perhaps"), "parameter Flag"},
                    TParameter{"List", TCIMValue("1"), "parameter List should be a uint8 array"}));

TEST_F(MethodOperationsTest, AFailureKeepsTheParametersAndHasTheProvidersWords) {
  TKeyMap parameters = {{"Mine", TCIMValue("kept")}};
  const TQELException failure = Failure([&] { Invoke("Fail", parameters); });
  EXPECT_EQ(failure.GetCIMStatus(), 16U);
  EXPECT_NE(std::string(failure.what()).find("InvokeMethod Fail"), std::string::npos);
  EXPECT_NE(std::string(failure.what()).find("not today"), std::string::npos);
  ASSERT_EQ(parameters.size(), 1U);
  EXPECT_EQ(parameters.at("Mine"), TCIMValue("kept"));
}

TEST_F(MethodOperationsTest, ACallThatWouldEndTheHostsThreadFails) {
  const TQELException failure = Failure([&] { Invoke("Leave"); });
  EXPECT_EQ(failure.GetCIMStatus(), 1U);
  EXPECT_NE(std::string(failure.what()).find("cannot end its thread"), std::string::npos);
}

TEST_F(MethodOperationsTest, NothingReturnedIsNullAndEmptiesTheParameters) {
  TKeyMap parameters = {{"Mine", TCIMValue("gone")}};
  EXPECT_TRUE(Invoke("Nothing", parameters).IsNull());
  EXPECT_TRUE(parameters.empty());
}

TEST_F(MethodOperationsTest, InstancesAndPathsMayBeReturned) {
  const TCIMValue instance = Invoke("Instance");
  ASSERT_EQ(instance.GetType(), ECIMType::kInstance);
  EXPECT_EQ(NoteOf(*instance.ToInstance()), "embedded");
  const TCIMValue path = Invoke("Path");
  ASSERT_EQ(path.GetType(), ECIMType::kReference);
  EXPECT_EQ(static_cast<TCIMReference>(path).GetClassName(), "W_Nut");
}

TEST_F(MethodOperationsTest, AProviderWalksAssociationsThroughTheBroker) {
  EXPECT_EQ(Invoke("Neighbours"), TCIMValue::UInt32(2111));
}

TEST_F(MethodOperationsTest, AClassWithoutMethodsIsNotFound) {
  TKeyMap none;
  const TCIMReference tool("root/tools", "W_Tool", {{"Number", TCIMValue::UInt16(1)}});
  const TQELException failure = Failure([&] { m_operations->InvokeMethod(tool, "Echo", none); });
  EXPECT_EQ(failure.GetCIMStatus(), 6U);
  EXPECT_NE(std::string(failure.what()).find("no provider offers methods"), std::string::npos);
}

TEST_F(MethodOperationsTest, AProviderMeetsItsOwnClassAsTheSchemaSpellsIt) {
  struct TRow {
    const char* asked;
    const char* met;
  };
  for (const TRow& row : {TRow{"W_Part", "W_Bolt"}, TRow{"w_nut", "W_Nut"}}) {
    TKeyMap none;
    const TCIMReference path("root/cimv2", row.asked, {{"Id", TCIMValue("x")}});
    m_operations->InvokeMethod(path, "Nothing", none);
    const auto last = m_operations->GetInstance(PathTo("last"));
    EXPECT_EQ(NoteOf(last), std::string("nothing of ") + row.met);
  }
}

}  // namespace
}  // namespace NZEPQEL20
