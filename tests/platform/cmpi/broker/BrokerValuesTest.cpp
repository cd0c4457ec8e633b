// SPDX-License-Identifier: Apache-2.0
//
// Values of every type on their way into the broker and out again.
#include <cstring>
#include <ostream>
#include <vector>

#include "tests/platform/cmpi/broker/TBrokerTest.h"

namespace NZEPQEL20::cmpi {
namespace {

struct TNumber {
  const char* name;
  CMPIType type;
  std::size_t width;
  std::uint64_t bits;      ///< What the provider passes, in `width` bytes.
  std::uint64_t readBack;  ///< The same extended over 8 bytes.
};
void PrintTo(const TNumber& row, std::ostream* out) {
  *out << row.name;
}

class BrokerNumbersTest : public TBrokerTest, public testing::WithParamInterface<TNumber> {
 protected:
  /// The number in memory of exactly its width, at an odd address.
  const CMPIValue* Place(const TNumber& row) {
    m_memory.reset(new unsigned char[row.width + 1]);
    std::memcpy(m_memory.get() + 1, &row.bits, row.width);
    return reinterpret_cast<const CMPIValue*>(m_memory.get() + 1);
  }

 private:
  std::unique_ptr<unsigned char[]> m_memory;
};

TEST_P(BrokerNumbersTest, IsReadInItsOwnWidthAndExtended) {
  const TNumber& row = GetParam();
  CMPIInstance* instance = NewInstance();
  const CMPIStatus set = instance->ft->setProperty(instance, "P", Place(row), row.type);
  ASSERT_EQ(set.rc, CMPI_RC_OK);
  const CMPIData data = instance->ft->getProperty(instance, "P", &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(data.type, row.type);
  EXPECT_EQ(data.state, CMPI_goodValue);
  EXPECT_EQ(data.value.uint64, row.readBack);
}

TEST_P(BrokerNumbersTest, KeepsItsTypeWhenItIsNull) {
  const TNumber& row = GetParam();
  CMPIInstance* instance = NewInstance();
  instance->ft->setProperty(instance, "P", nullptr, row.type);
  const CMPIData data = instance->ft->getProperty(instance, "P", &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(data.type, row.type);
  EXPECT_EQ(data.state, CMPI_nullValue);
  EXPECT_EQ(data.value.uint64, 0U);
}

TEST_P(BrokerNumbersTest, IsAnElementOfAnArrayOfItsType) {
  const TNumber& row = GetParam();
  CMPIArray* array = m_broker->eft->newArray(m_broker, 2, row.type, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  ASSERT_EQ(array->ft->setElementAt(array, 1, Place(row), row.type).rc, CMPI_RC_OK);
  CMPIInstance* instance = NewInstance();
  const auto arrayType = static_cast<CMPIType>(row.type | CMPI_ARRAY);
  ASSERT_EQ(instance->ft->setProperty(instance, "P", In(array), arrayType).rc, CMPI_RC_OK);

  const CMPIData data = instance->ft->getProperty(instance, "P", &m_rc);
  EXPECT_EQ(data.type, arrayType);
  const CMPIArray* read = data.value.array;
  EXPECT_EQ(read->ft->getSize(read, nullptr), 2U);
  EXPECT_EQ(read->ft->getSimpleType(read, nullptr), row.type);
  EXPECT_EQ(read->ft->getElementAt(read, 0, nullptr).state, CMPI_nullValue);
  EXPECT_EQ(read->ft->getElementAt(read, 1, nullptr).value.uint64, row.readBack);
}

constexpr std::uint64_t kOnes = ~std::uint64_t{0};

INSTANTIATE_TEST_SUITE_P(
    All, BrokerNumbersTest,
    testing::Values(TNumber{"boolean", CMPI_boolean, 1, 7, 1},
                    TNumber{"char16", CMPI_char16, 2, 0xFFFE, 0xFFFE},
                    TNumber{"uint8", CMPI_uint8, 1, 0xFF, 0xFF},
                    TNumber{"uint16", CMPI_uint16, 2, 0xFFFF, 0xFFFF},
                    TNumber{"uint32", CMPI_uint32, 4, 0xFFFFFFFF, 0xFFFFFFFF},
                    TNumber{"uint64", CMPI_uint64, 8, kOnes, kOnes},
                    TNumber{"sint8", CMPI_sint8, 1, 0x80, kOnes << 7U},
                    TNumber{"sint16", CMPI_sint16, 2, 0x8000, kOnes << 15U},
                    TNumber{"sint32", CMPI_sint32, 4, 0x80000000, kOnes << 31U},
                    TNumber{"sint64", CMPI_sint64, 8, kOnes << 63U, kOnes << 63U},
                    TNumber{"real32", CMPI_real32, 4, 0x3FC00000, 0x3FC00000},
                    TNumber{"real64", CMPI_real64, 8, 0x3FF8000000000000, 0x3FF8000000000000}),
    [](const auto& row) { return row.param.name; });

class BrokerValuesTest : public TBrokerTest {
 protected:
  CMPIData PassThrough(const CMPIValue* value, CMPIType type) {
    CMPIInstance* instance = NewInstance();
    EXPECT_EQ(instance->ft->setProperty(instance, "P", value, type).rc, CMPI_RC_OK);
    return instance->ft->getProperty(instance, "P", &m_rc);
  }
};

TEST_F(BrokerValuesTest, CharsAreTheTextItselfAndBecomeAString) {
  const CMPIData data = PassThrough(Chars("some text"), CMPI_chars);
  EXPECT_EQ(data.type, CMPI_string);
  EXPECT_EQ(Text(data.value.string), "some text");
}

TEST_F(BrokerValuesTest, CharsptrPointsToTheText) {
  const char* const text = "behind a pointer";
  const CMPIData data = PassThrough(In(text), CMPI_charsptr);
  EXPECT_EQ(data.type, CMPI_string);
  EXPECT_EQ(Text(data.value.string), "behind a pointer");
}

TEST_F(BrokerValuesTest, ATextIsCopiedAtTheCall) {
  char text[] = "before";
  CMPIInstance* instance = NewInstance();
  instance->ft->setProperty(instance, "P", Chars(text), CMPI_chars);
  std::memcpy(text, "AFTER!", 6);
  EXPECT_EQ(Text(instance->ft->getProperty(instance, "P", nullptr).value.string), "before");
}

TEST_F(BrokerValuesTest, TheHandleOfAStringIsItsText) {
  CMPIString* string = NewString("text");
  EXPECT_STREQ(static_cast<const char*>(string->hdl), "text");
}

TEST_F(BrokerValuesTest, AByteThatIsNotUtf8IsOneOfIso88591) {
  const CMPIData data = PassThrough(Chars("a\xFF"
                                          "b\xC3"),
                                    CMPI_chars);
  EXPECT_EQ(Text(data.value.string),
            "a\xC3\xBF"
            "b\xC3\x83");
  EXPECT_EQ(Text(PassThrough(Chars("Gr\xFC\xDF \x80 \xC3\xA4"), CMPI_chars).value.string),
            "Gr\xC3\xBC\xC3\x9F \xC2\x80 \xC3\xA4")
      << "what is UTF-8 stays beside it";
}

struct TObjectType {
  const char* name;
  CMPIType type;
};
void PrintTo(const TObjectType& row, std::ostream* out) {
  *out << row.name;
}

class BrokerNullObjectsTest : public BrokerValuesTest,
                              public testing::WithParamInterface<TObjectType> {};

TEST_P(BrokerNullObjectsTest, AreNullOfTheirTypeBehindANullPointerToo) {
  const void* const nothing = nullptr;
  const CMPIData data = PassThrough(In(nothing), GetParam().type);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(data.type, GetParam().type);
  EXPECT_EQ(data.state, CMPI_nullValue);
  EXPECT_EQ(data.value.string, nullptr);
}
INSTANTIATE_TEST_SUITE_P(
    All, BrokerNullObjectsTest,
    testing::Values(TObjectType{"string", CMPI_string}, TObjectType{"dateTime", CMPI_dateTime},
                    TObjectType{"ref", CMPI_ref}, TObjectType{"instance", CMPI_instance},
                    TObjectType{"stringA", CMPI_stringA}, TObjectType{"uint16A", CMPI_uint16A}),
    [](const auto& row) { return row.param.name; });

class BrokerBadTypesTest : public TBrokerTest, public testing::WithParamInterface<TObjectType> {};

TEST_P(BrokerBadTypesTest, AreRefusedAndLeaveNothingBehind) {
  const CMPIValue value = {};
  CMPIInstance* instance = NewInstance();
  EXPECT_EQ(instance->ft->setProperty(instance, "P", &value, GetParam().type).rc,
            CMPI_RC_ERR_INVALID_DATA_TYPE);
  EXPECT_EQ(instance->ft->getPropertyCount(instance, nullptr), 0U);
  EXPECT_EQ(m_broker->eft->newArray(m_broker, 1, GetParam().type, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_DATA_TYPE);
}
INSTANTIATE_TEST_SUITE_P(
    All, BrokerBadTypesTest,
    testing::Values(TObjectType{"args", CMPI_args}, TObjectType{"filter", CMPI_filter},
                    TObjectType{"enumeration", CMPI_enumeration}, TObjectType{"ptr", CMPI_ptr},
                    TObjectType{"unknown", 0x0001}, TObjectType{"allBits", 0xDFFF}),
    [](const auto& row) { return row.param.name; });

TEST_F(BrokerValuesTest, AnObjectThatTheBrokerNeverMadeIsRefused) {
  const CMPIStringFT foreignTable = {};
  CMPIString foreign = {"text", &foreignTable};
  CMPIString* pointer = &foreign;
  CMPIInstance* instance = NewInstance();
  EXPECT_EQ(instance->ft->setProperty(instance, "P", In(pointer), CMPI_string).rc,
            CMPI_RC_ERR_INVALID_HANDLE);
}

TEST_F(BrokerValuesTest, AnEmbeddedInstanceIsADeepCopy) {
  CMPIInstance* inner = NewInstance("T_Derived");
  inner->ft->setProperty(inner, "Colour", Chars("red"), CMPI_chars);
  const CMPIData data = PassThrough(In(inner), CMPI_instance);
  inner->ft->setProperty(inner, "Colour", Chars("blue"), CMPI_chars);

  ASSERT_EQ(data.type, CMPI_instance);
  CMPIInstance* read = data.value.inst;
  EXPECT_EQ(Text(read->ft->getProperty(read, "colour", nullptr).value.string), "red");
  CMPIObjectPath* path = read->ft->getObjectPath(read, nullptr);
  EXPECT_EQ(Text(path->ft->getClassName(path, nullptr)), "T_Derived");
}

TEST_F(BrokerValuesTest, AReferenceKeepsNamespaceClassAndKeys) {
  CMPIObjectPath* path = NewPath();
  path->ft->addKey(path, "Name", Chars("a \"b\""), CMPI_chars);
  const CMPIData data = PassThrough(In(path), CMPI_ref);
  path->ft->setNameSpace(path, "elsewhere");
  const CMPIObjectPath* read = data.value.ref;
  EXPECT_EQ(Text(read->ft->getNameSpace(read, nullptr)), "root/test");
  EXPECT_EQ(Text(read->ft->getKey(read, "name", nullptr).value.string), "a \"b\"");
}

TEST_F(BrokerValuesTest, ArraysOfObjectsMayHaveNullElements) {
  for (const int type : {CMPI_string, CMPI_ref, CMPI_instance, CMPI_dateTime, CMPI_chars}) {
    const auto elementType = static_cast<CMPIType>(type);
    CMPIArray* array = m_broker->eft->newArray(m_broker, 3, elementType, nullptr);
    ASSERT_EQ(array->ft->setElementAt(array, 1, nullptr, CMPI_null).rc, CMPI_RC_OK);
    const CMPIData data = PassThrough(In(array), static_cast<CMPIType>(elementType | CMPI_ARRAY));
    const CMPIArray* read = data.value.array;
    ASSERT_NE(read, nullptr);
    for (CMPICount i = 0; i < 3; ++i) {
      const CMPIData element = read->ft->getElementAt(read, i, &m_rc);
      EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
      EXPECT_EQ(element.state, CMPI_nullValue);
      EXPECT_EQ(element.value.string, nullptr);
    }
  }
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
