// SPDX-License-Identifier: Apache-2.0
#include <ostream>

#include "platform/cmpi/ObjectIdentity.h"
#include "tests/platform/cmpi/broker/TBrokerTest.h"

namespace NZEPQEL20::cmpi {
namespace {

/// Two paths, and whether they name the same object.
struct TRow {
  const char* name;
  TCIMReference left;
  TCIMReference right;
  bool isSame;
};
void PrintTo(const TRow& row, std::ostream* out) {
  *out << row.name;
}

TCIMReference Path(const char* nameSpace, const char* className, TKeyMap keys) {
  return TCIMReference(nameSpace, className, std::move(keys));
}

TCIMReference WithHost(TCIMReference path) {
  path.SetHost("far.example");
  return path;
}

class ObjectIdentityTest : public TBrokerTest, public testing::WithParamInterface<TRow> {};

TEST_P(ObjectIdentityTest, IsToldByNamespaceClassAndKeys) {
  EXPECT_EQ(IsSameObject(*this, GetParam().left, GetParam().right), GetParam().isSame);
  EXPECT_EQ(IsSameObject(*this, GetParam().right, GetParam().left), GetParam().isSame);
}

const TKeyMap kA = {{"Name", TCIMValue("a")}, {"Number", TCIMValue::UInt16(5)}};

INSTANTIATE_TEST_SUITE_P(
    All, ObjectIdentityTest,
    testing::Values(
        TRow{"Equal", Path("root/x", "T_Base", kA), Path("root/x", "T_Base", kA), true},
        TRow{"CaseAndSlash", Path("root/x", "T_Base", {{"NAME", TCIMValue("a")}}),
             Path("/ROOT/X", "t_base", {{"name", TCIMValue("a")}}), true},
        TRow{"Host", WithHost(Path("root/x", "T_Base", kA)), Path("root/x", "T_Base", kA), true},
        TRow{"NoNamespace", Path("", "T_Base", kA), Path("root/x", "T_Base", kA), true},
        TRow{"OtherNamespace", Path("root/y", "T_Base", kA), Path("root/x", "T_Base", kA), false},
        TRow{"Superclass", Path("", "T_Derived", kA), Path("", "T_Base", kA), true},
        TRow{"OtherClass", Path("", "T_Link", kA), Path("", "T_Base", kA), false},
        TRow{"UnknownClass", Path("", "T_None", kA), Path("", "T_Base", kA), true},
        TRow{"NumberAsText", Path("", "T_Base", {{"Number", TCIMValue("5")}}),
             Path("", "T_Base", {{"Number", TCIMValue::UInt32(5)}}), true},
        TRow{"OtherValue", Path("", "T_Base", {{"Name", TCIMValue("A")}}), Path("", "T_Base", kA),
             false},
        TRow{"KeyLeftOut", Path("", "T_Base", {{"Name", TCIMValue("a")}}), Path("", "T_Base", kA),
             true},
        TRow{"NoKeyInCommon", Path("", "T_Base", {{"Id", TCIMValue("a")}}),
             Path("", "T_Base", {{"Name", TCIMValue("a")}}), false},
        TRow{"NoKeys", Path("", "T_Base", {}), Path("", "T_Base", {}), true},
        TRow{"NoKeysOnOneSide", Path("", "T_Base", {}), Path("", "T_Base", kA), false},
        TRow{"ReferenceKey", Path("", "T_Link", {{"One", TCIMValue(Path("root/x", "T_Base", kA))}}),
             Path("", "T_Link", {{"one", TCIMValue(WithHost(Path("", "t_base", kA)))}}), true},
        TRow{"OtherReferenceKey", Path("", "T_Link", {{"One", TCIMValue(Path("", "T_Base", kA))}}),
             Path("", "T_Link", {{"One", TCIMValue(Path("", "T_Derived", kA))}}), false}),
    [](const auto& row) { return row.param.name; });

TEST(ObjectIdentityTextTest, IsTheSameForPathsThatDifferInSpellingOnly) {
  const TCIMReference one =
      Path("root/x", "T_Base", {{"b", TCIMValue("2")}, {"A", TCIMValue::UInt16(1)}});
  const TCIMReference other = WithHost(
      Path("", "t_base", {{"B", TCIMValue("2")}, {"a", TCIMValue::Signed(ECIMType::kSInt64, 1)}}));
  EXPECT_EQ(GetIdentity(one, ""), GetIdentity(other, "/Root/X"));
  EXPECT_NE(GetIdentity(one, ""), GetIdentity(other, "root/y"));
}

TEST(ObjectIdentityTextTest, TellsATextWithSeparatorsFromTwoKeys) {
  EXPECT_NE(GetIdentity(Path("n", "C", {{"a", TCIMValue("1,b=1:2")}}), ""),
            GetIdentity(Path("n", "C", {{"a", TCIMValue("1")}, {"b", TCIMValue("2")}}), ""));
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
