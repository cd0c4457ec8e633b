// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "platform/contract/TCIMReference.h"
#include "platform/schema/SchemaCodec.h"
#include "platform/schema/SchemaHash.h"
#include "platform/schema/ValueCodec.h"
#include "tests/platform/schema/cache/Dump.h"

namespace cachetest {
namespace {

using namespace NZEPQEL20;

struct TValueRow {
  const char* name;
  std::function<TCIMValue()> make;
};
void PrintTo(const TValueRow& row, std::ostream* out) {
  *out << row.name;
}

TCIMReference MakePath() {
  TCIMReference path("root/x", "A_B", {{"k", TCIMValue::UInt16(3)}, {"s", TCIMValue("a\"b")}});
  path.SetHost("host");
  return path;
}

TCIMValue MakeInstance(unsigned int depth) {
  auto data = std::make_shared<TCIMInstanceData>();
  data->path = MakePath();
  data->Set("none", TCIMValue());
  if (depth > 0) data->Set("inner", MakeInstance(depth - 1));
  return TCIMValue::Instance(data);
}

class ValueCodecTest : public ::testing::TestWithParam<TValueRow> {};

TEST_P(ValueCodecTest, GivesBackWhatItWasGiven) {
  const TCIMValue value = GetParam().make();
  TByteWriter out;
  EncodeValue(out, value);
  TByteReader in(out.GetBytes());
  const TCIMValue back = DecodeValue(in);
  in.Finish();
  EXPECT_TRUE(back == value);
  EXPECT_EQ(Dump(back), Dump(value));
}

TEST_P(ValueCodecTest, RefusesWhatIsCutShort) {
  TByteWriter out;
  EncodeValue(out, GetParam().make());
  for (std::size_t length = 0; length < out.GetBytes().size(); ++length) {
    const std::string bytes = out.GetBytes().substr(0, length);
    TByteReader in(bytes);
    EXPECT_THROW(DecodeValue(in), TDamagedError) << length;
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, ValueCodecTest,
    ::testing::Values(
        TValueRow{"Nothing", [] { return TCIMValue(); }},
        TValueRow{"NullText", [] { return TCIMValue::Null(ECIMType::kString); }},
        TValueRow{"NullArray", [] { return TCIMValue::Null(ECIMType::kUInt8, true); }},
        TValueRow{"True", [] { return TCIMValue::Boolean(true); }},
        TValueRow{"Char", [] { return TCIMValue::Char16(0xD83D); }},
        TValueRow{"UInt8", [] { return TCIMValue::Unsigned(ECIMType::kUInt8, 255); }},
        TValueRow{"UInt64",
                  [] {
                    return TCIMValue::Unsigned(ECIMType::kUInt64,
                                               std::numeric_limits<std::uint64_t>::max());
                  }},
        TValueRow{"SInt8", [] { return TCIMValue::Signed(ECIMType::kSInt8, -128); }},
        TValueRow{"SInt64",
                  [] {
                    return TCIMValue::Signed(ECIMType::kSInt64,
                                             std::numeric_limits<std::int64_t>::min());
                  }},
        TValueRow{"Real32", [] { return TCIMValue::Real32(0.1F); }},
        TValueRow{"Real64", [] { return TCIMValue::Real64(-1.0 / 3); }},
        TValueRow{"Text", [] { return TCIMValue(std::string("a\0b\xC3\xA9", 5)); }},
        TValueRow{"EmptyText", [] { return TCIMValue(""); }},
        TValueRow{"Time", [] { return TCIMValue::DateTime("00000000000500.000000:000"); }},
        TValueRow{"Reference", [] { return TCIMValue(MakePath()); }},
        TValueRow{"Instance", [] { return MakeInstance(4); }},
        TValueRow{"EmptyArray", [] { return TCIMValue::Array(ECIMType::kString, {}); }},
        TValueRow{"Array",
                  [] {
                    return TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(1),
                                                                TCIMValue::Null(ECIMType::kUInt16),
                                                                TCIMValue::UInt16(3)});
                  }},
        TValueRow{"References",
                  [] { return TCIMValue::Array(ECIMType::kReference, {TCIMValue(MakePath())}); }}),
    [](const auto& row) { return row.param.name; });

TEST(SchemaCodecTest, InstancesNestOnlySoDeep) {
  TByteWriter out;
  EncodeValue(out, MakeInstance(100));
  TByteReader in(out.GetBytes());
  EXPECT_THROW(DecodeValue(in), TDamagedError);
}

TEST(SchemaCodecTest, CountsBeyondTheBytesAreRefusedBeforeRoomIsMade) {
  TByteWriter out;
  out.PutNumber(std::numeric_limits<std::uint32_t>::max());
  EXPECT_THROW(DecodeInstances(out.GetBytes()), TDamagedError);
  TByteReader text(out.GetBytes());
  EXPECT_THROW(text.TakeText(), TDamagedError);
}

TSchemaClass MakeClass() {
  TSchemaClass declaration;
  declaration.name = "A_B";
  declaration.superclass = "A_A";
  declaration.file = "/x/a.mof";
  declaration.position = {3, 7};
  declaration.qualifiers = {{"Version", TCIMValue("1"), false, true}};
  TSchemaProperty property;
  property.name = "p";
  property.type = ECIMType::kUInt8;
  property.hasDefault = true;
  property.defaultValue = TCIMValue::Unsigned(ECIMType::kUInt8, 5);
  property.position = {4, 1};
  declaration.properties = {property};
  TSchemaMethod method;
  method.name = "f";
  method.type = ECIMType::kUInt32;
  method.parameters.resize(2);
  method.parameters[1].isArray = true;
  method.parameters[1].referenceClass = "A_C";
  declaration.methods = {method};
  return declaration;
}

TEST(SchemaCodecTest, AClassComesBackAsItWas) {
  const TSchemaClass declaration = MakeClass();
  const TSchemaClass back = DecodeClass(EncodeClass(declaration));
  EXPECT_TRUE(IsSameClass(back, declaration));
  EXPECT_EQ(back.file, "/x/a.mof");
  EXPECT_EQ(back.position.line, 3U);
  EXPECT_EQ(back.position.column, 7U);
  EXPECT_EQ(back.properties[0].position.line, 4U);
}

TEST(SchemaCodecTest, AnyByteMayBeWrong) {
  const std::string bytes = EncodeClass(MakeClass());
  std::size_t refused = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    for (const unsigned int change : {1U, 0x80U, 0xFFU}) {
      std::string damaged = bytes;
      damaged[i] = static_cast<char>(static_cast<unsigned char>(damaged[i]) ^ change);
      try {
        EXPECT_LE(DecodeClass(damaged).methods.size(), bytes.size());
      } catch (const TQELException&) {
        ++refused;
      }
    }
  }
  EXPECT_GT(refused, bytes.size());
  EXPECT_THROW(DecodeClass(bytes + "x"), TDamagedError);
}

TEST(SchemaCodecTest, AProblemComesBackAsItWas) {
  TByteWriter out;
  EncodeProblem(out, {"f", 1, 2, "text", true});
  TByteReader in(out.GetBytes());
  EXPECT_EQ(DecodeProblem(in).ToString(), "f:1:2: warning: text");
}

TEST(SchemaHashTest, TellsTextsApartThatDifferLittle) {
  const std::string text = "0123456789abcdef012";
  EXPECT_EQ(HashBytes(text), HashBytes(std::string(text)));
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::string other = text;
    other[i] = static_cast<char>(other[i] ^ 1);
    EXPECT_NE(HashBytes(other), HashBytes(text)) << i;
    EXPECT_NE(HashBytes(text.substr(0, i)), HashBytes(text)) << i;
  }
  EXPECT_NE(HashBytes(std::string(1, '\0')), HashBytes(std::string(2, '\0')));
}

}  // namespace
}  // namespace cachetest
