// SPDX-License-Identifier: Apache-2.0
//
// Instances, paths, arguments, arrays, contexts and property lists as a provider uses them.
#include "tests/platform/cmpi/broker/TBrokerTest.h"

namespace NZEPQEL20::cmpi {
namespace {

constexpr int kMissing = CMPI_nullValue | CMPI_notFound;

class BrokerObjectsTest : public TBrokerTest {
 protected:
  void ExpectMissing(const CMPIData& data, CMPIrc code) const {
    EXPECT_EQ(m_rc.rc, code);
    EXPECT_NE(m_rc.msg, nullptr) << "no words for the refusal";
    EXPECT_EQ(data.state, kMissing);
    EXPECT_EQ(data.type, CMPI_null);
    EXPECT_EQ(data.value.uint64, 0U);
  }
  static CMPIStatus SetText(CMPIInstance* instance, const char* name, const char* text) {
    return instance->ft->setProperty(instance, name, Chars(text), CMPI_chars);
  }
  std::string GetText(const CMPIInstance* instance, const char* name) {
    return Text(instance->ft->getProperty(instance, name, &m_rc).value.string);
  }
};

TEST_F(BrokerObjectsTest, APropertyIsFoundWithoutCaseAndKeepsItsFirstSpelling) {
  CMPIInstance* instance = NewInstance();
  SetText(instance, "Colour", "red");
  SetText(instance, "Count", "1");
  SetText(instance, "COLOUR", "blue");
  EXPECT_EQ(GetText(instance, "colour"), "blue");
  ASSERT_EQ(instance->ft->getPropertyCount(instance, nullptr), 2U);
  CMPIString* name = nullptr;
  instance->ft->getPropertyAt(instance, 0, &name, nullptr);
  EXPECT_EQ(Text(name), "Colour");
}

TEST_F(BrokerObjectsTest, WhatAnInstanceHasNotIsNoSuchProperty) {
  CMPIInstance* instance = NewInstance();
  SetText(instance, "Colour", "red");
  ExpectMissing(instance->ft->getProperty(instance, "Size", &m_rc), CMPI_RC_ERR_NO_SUCH_PROPERTY);
  ExpectMissing(instance->ft->getPropertyAt(instance, 1, nullptr, &m_rc),
                CMPI_RC_ERR_NO_SUCH_PROPERTY);
  ExpectMissing(instance->ft->getProperty(instance, nullptr, &m_rc), CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(instance->ft->setProperty(instance, nullptr, Chars("x"), CMPI_chars).rc,
            CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerObjectsTest, AnInstanceStartsWithTheKeysOfItsPath) {
  CMPIObjectPath* path = NewPath();
  path->ft->addKey(path, "Name", Chars("n"), CMPI_chars);
  CMPIInstance* instance = m_broker->eft->newInstance(m_broker, path, nullptr);
  const CMPIData data = instance->ft->getProperty(instance, "Name", nullptr);
  EXPECT_EQ(Text(data.value.string), "n");
  EXPECT_EQ(data.state & CMPI_keyValue, CMPI_keyValue);
}

TEST_F(BrokerObjectsTest, ThePathOfAnInstanceFollowsItsKeyProperties) {
  CMPIObjectPath* path = NewPath();
  path->ft->addKey(path, "Name", Chars("old"), CMPI_chars);
  CMPIInstance* instance = m_broker->eft->newInstance(m_broker, path, nullptr);
  SetText(instance, "Name", "new");
  const CMPIObjectPath* read = instance->ft->getObjectPath(instance, nullptr);
  EXPECT_EQ(Text(read->ft->getKey(read, "Name", nullptr).value.string), "new");
}

TEST_F(BrokerObjectsTest, AKeyPropertyThatBecomesNullLeavesThePathAsItWas) {
  CMPIObjectPath* path = NewPath();
  path->ft->addKey(path, "Name", Chars("old"), CMPI_chars);
  CMPIInstance* instance = m_broker->eft->newInstance(m_broker, path, nullptr);
  EXPECT_EQ(instance->ft->setProperty(instance, "Name", nullptr, CMPI_string).rc, CMPI_RC_OK);
  const CMPIData data = instance->ft->getProperty(instance, "Name", nullptr);
  EXPECT_EQ(data.state & CMPI_nullValue, CMPI_nullValue);
  const CMPIObjectPath* read = instance->ft->getObjectPath(instance, nullptr);
  EXPECT_EQ(Text(read->ft->getKey(read, "Name", nullptr).value.string), "old");
}

TEST_F(BrokerObjectsTest, AnInstanceWithoutKeysTakesThoseOfItsClass) {
  CMPIInstance* instance = NewInstance("T_Derived");
  SetText(instance, "Name", "n");
  SetText(instance, "Colour", "red");
  const CMPIObjectPath* path = instance->ft->getObjectPath(instance, nullptr);
  EXPECT_EQ(path->ft->getKeyCount(path, nullptr), 1U);
  EXPECT_EQ(Text(path->ft->getKey(path, "Name", nullptr).value.string), "n");
}

TEST_F(BrokerObjectsTest, AnInstanceOfAnUnknownClassTakesItsReferencesForKeys) {
  CMPIInstance* instance = NewInstance("No_Such");
  CMPIObjectPath* end = NewPath();
  instance->ft->setProperty(instance, "One", In(end), CMPI_ref);
  SetText(instance, "Colour", "red");
  const CMPIObjectPath* path = instance->ft->getObjectPath(instance, nullptr);
  EXPECT_EQ(path->ft->getKeyCount(path, nullptr), 1U);
  EXPECT_EQ(path->ft->getKey(path, "One", nullptr).type, CMPI_ref);
}

TEST_F(BrokerObjectsTest, SetObjectPathReplacesClassAndKeys) {
  CMPIInstance* instance = NewInstance();
  CMPIObjectPath* path = NewPath("T_Derived");
  path->ft->addKey(path, "Name", Chars("n"), CMPI_chars);
  EXPECT_EQ(instance->ft->setObjectPath(instance, path).rc, CMPI_RC_OK);
  EXPECT_EQ(GetText(instance, "Name"), "n");
  const CMPIObjectPath* read = instance->ft->getObjectPath(instance, nullptr);
  EXPECT_EQ(Text(read->ft->getClassName(read, nullptr)), "T_Derived");
  EXPECT_EQ(instance->ft->setObjectPath(instance, nullptr).rc, CMPI_RC_ERR_INVALID_HANDLE);
}

TEST_F(BrokerObjectsTest, AFilterDropsEarlierAndLaterPropertiesButNoKeys) {
  CMPIObjectPath* path = NewPath();
  path->ft->addKey(path, "Name", Chars("n"), CMPI_chars);
  CMPIInstance* instance = m_broker->eft->newInstance(m_broker, path, nullptr);
  SetText(instance, "Colour", "red");
  SetText(instance, "Size", "big");
  const char* properties[] = {"SIZE", nullptr};
  EXPECT_EQ(instance->ft->setPropertyFilter(instance, properties, nullptr).rc, CMPI_RC_OK);
  EXPECT_EQ(SetText(instance, "Weight", "1").rc, CMPI_RC_OK);
  EXPECT_EQ(instance->ft->getPropertyCount(instance, nullptr), 2U);
  EXPECT_EQ(GetText(instance, "Size"), "big");
  EXPECT_EQ(GetText(instance, "Name"), "n");

  instance->ft->setPropertyFilter(instance, nullptr, nullptr);
  SetText(instance, "Weight", "1");
  EXPECT_EQ(GetText(instance, "Weight"), "1");
}

TEST_F(BrokerObjectsTest, AnEmptyFilterLeavesKeysAlone) {
  CMPIInstance* instance = NewInstance();
  SetText(instance, "Colour", "red");
  SetText(instance, "Name", "n");
  const char* properties[] = {nullptr};
  const char* keys[] = {"Name", nullptr};
  instance->ft->setPropertyFilter(instance, properties, keys);
  EXPECT_EQ(instance->ft->getPropertyCount(instance, nullptr), 1U);
  EXPECT_EQ(GetText(instance, "Name"), "n");
}

TEST_F(BrokerObjectsTest, APathWithoutAnythingAnswersWithEmptyTexts) {
  CMPIObjectPath* path = m_broker->eft->newObjectPath(m_broker, nullptr, nullptr, &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Text(path->ft->getNameSpace(path, nullptr)), "");
  EXPECT_EQ(Text(path->ft->getClassName(path, nullptr)), "");
  EXPECT_EQ(Text(path->ft->getHostname(path, nullptr)), "");
  EXPECT_EQ(path->ft->getKeyCount(path, nullptr), 0U);
}

TEST_F(BrokerObjectsTest, TheNamespaceOfAnotherPathComesWithoutItsClass) {
  CMPIObjectPath* source = m_broker->eft->newObjectPath(m_broker, "root/b", "Other", nullptr);
  source->ft->setHostname(source, "host");
  CMPIObjectPath* path = NewPath();
  path->ft->setNameSpaceFromObjectPath(path, source);
  EXPECT_EQ(Text(path->ft->getNameSpace(path, nullptr)), "root/b");
  EXPECT_EQ(Text(path->ft->getHostname(path, nullptr)), "");
  path->ft->setHostAndNameSpaceFromObjectPath(path, source);
  EXPECT_EQ(Text(path->ft->getHostname(path, nullptr)), "host");
  EXPECT_EQ(Text(path->ft->getClassName(path, nullptr)), "T_Base");
}

TEST_F(BrokerObjectsTest, KeysAreReplacedMarkedAndReadWithoutCase) {
  CMPIObjectPath* path = NewPath();
  const CMPIUint16 first = 1;
  const CMPIUint16 second = 2;
  path->ft->addKey(path, "Number", In(first), CMPI_uint16);
  path->ft->addKey(path, "NUMBER", In(second), CMPI_uint16);
  ASSERT_EQ(path->ft->getKeyCount(path, nullptr), 1U);
  CMPIString* name = nullptr;
  const CMPIData data = path->ft->getKeyAt(path, 0, &name, &m_rc);
  EXPECT_EQ(Text(name), "Number");
  EXPECT_EQ(data.value.uint64, 2U);
  EXPECT_EQ(data.state, CMPI_keyValue);
}

TEST_F(BrokerObjectsTest, WhatAPathHasNotIsNoSuchProperty) {
  CMPIObjectPath* path = NewPath();
  ExpectMissing(path->ft->getKey(path, "Name", &m_rc), CMPI_RC_ERR_NO_SUCH_PROPERTY);
  ExpectMissing(path->ft->getKeyAt(path, 0, nullptr, &m_rc), CMPI_RC_ERR_NO_SUCH_PROPERTY);
  ExpectMissing(path->ft->getKey(path, "", &m_rc), CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerObjectsTest, AKeyIsNeitherArrayNorInstanceNorUntyped) {
  CMPIObjectPath* path = NewPath();
  CMPIArray* array = m_broker->eft->newArray(m_broker, 1, CMPI_uint8, nullptr);
  CMPIInstance* instance = NewInstance();
  for (const CMPIStatus& status : {path->ft->addKey(path, "K", In(array), CMPI_uint8A),
                                   path->ft->addKey(path, "K", In(instance), CMPI_instance),
                                   path->ft->addKey(path, "K", nullptr, CMPI_null)}) {
    EXPECT_EQ(status.rc, CMPI_RC_ERR_INVALID_DATA_TYPE);
  }
  EXPECT_EQ(path->ft->getKeyCount(path, nullptr), 0U);
}

TEST_F(BrokerObjectsTest, ThePathAsTextEscapesItsKeys) {
  CMPIObjectPath* path = NewPath();
  path->ft->addKey(path, "Name", Chars("a\"b\\c"), CMPI_chars);
  EXPECT_EQ(Text(path->ft->toString(path, nullptr)), R"(root/test:T_Base.Name="a\"b\\c")");
  EXPECT_EQ(Text(m_broker->eft->toString(m_broker, path, nullptr)),
            R"(root/test:T_Base.Name="a\"b\\c")");
}

TEST_F(BrokerObjectsTest, ArgumentsAreReplacedByNameAndReadInOrder) {
  CMPIArgs* args = m_broker->eft->newArgs(m_broker, nullptr);
  args->ft->addArg(args, "First", Chars("1"), CMPI_chars);
  args->ft->addArg(args, "Second", nullptr, CMPI_uint16);
  args->ft->addArg(args, "FIRST", Chars("2"), CMPI_chars);
  ASSERT_EQ(args->ft->getArgCount(args, nullptr), 2U);
  EXPECT_EQ(Text(args->ft->getArg(args, "first", nullptr).value.string), "2");
  CMPIString* name = nullptr;
  const CMPIData second = args->ft->getArgAt(args, 1, &name, &m_rc);
  EXPECT_EQ(Text(name), "Second");
  EXPECT_EQ(second.type, CMPI_uint16);
  EXPECT_EQ(second.state, CMPI_nullValue);
  ExpectMissing(args->ft->getArgAt(args, 2, nullptr, &m_rc), CMPI_RC_ERR_NO_SUCH_PROPERTY);
  ExpectMissing(args->ft->getArg(args, "Third", &m_rc), CMPI_RC_ERR_NO_SUCH_PROPERTY);
}

TEST_F(BrokerObjectsTest, AnArrayKeepsItsSizeAndItsType) {
  CMPIArray* array = m_broker->eft->newArray(m_broker, 1, CMPI_stringA, nullptr);
  EXPECT_EQ(array->ft->getSimpleType(array, nullptr), CMPI_string);
  EXPECT_EQ(array->ft->setElementAt(array, 0, Chars("x"), CMPI_chars).rc, CMPI_RC_OK);
  const CMPIUint16 number = 1;
  EXPECT_EQ(array->ft->setElementAt(array, 0, In(number), CMPI_uint16).rc,
            CMPI_RC_ERR_TYPE_MISMATCH);
  EXPECT_EQ(array->ft->setElementAt(array, 0, In(array), CMPI_stringA).rc,
            CMPI_RC_ERR_TYPE_MISMATCH);
  EXPECT_EQ(array->ft->setElementAt(array, 1, Chars("x"), CMPI_chars).rc,
            CMPI_RC_ERR_NO_SUCH_PROPERTY);
  ExpectMissing(array->ft->getElementAt(array, 1, &m_rc), CMPI_RC_ERR_NO_SUCH_PROPERTY);
  EXPECT_EQ(Text(array->ft->getElementAt(array, 0, &m_rc).value.string), "x");
  array->ft->setElementAt(array, 0, nullptr, CMPI_string);
  EXPECT_EQ(array->ft->getElementAt(array, 0, &m_rc).state, CMPI_nullValue);
}

TEST_F(BrokerObjectsTest, AnArrayMayBeEmpty) {
  CMPIArray* array = m_broker->eft->newArray(m_broker, 0, CMPI_uint8, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(array->ft->getSize(array, nullptr), 0U);
  ExpectMissing(array->ft->getElementAt(array, 0, &m_rc), CMPI_RC_ERR_NO_SUCH_PROPERTY);
}

TEST_F(BrokerObjectsTest, AContextHasTheEntriesThatProvidersReadUnchecked) {
  TBrokerContext own(TBrokerContext::EntriesFor("root/test"));
  CMPIContext* context = &own;
  const CMPIData flags = context->ft->getEntry(context, CMPIInvocationFlags, &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(flags.type, CMPI_uint32);
  EXPECT_EQ(flags.value.uint32, 0U);
  EXPECT_EQ(Text(context->ft->getEntry(context, CMPIInitNameSpace, nullptr).value.string),
            "root/test");
  for (const char* name : {CMPIRole, CMPIAcceptLanguage, CMPIContentLanguage}) {
    EXPECT_EQ(Text(context->ft->getEntry(context, name, nullptr).value.string), "") << name;
  }
  const CMPICount count = context->ft->getEntryCount(context, nullptr);
  EXPECT_EQ(count, 6U);
  ExpectMissing(context->ft->getEntryAt(context, count, nullptr, &m_rc),
                CMPI_RC_ERR_NO_SUCH_PROPERTY);
  ExpectMissing(context->ft->getEntry(context, "Other", &m_rc), CMPI_RC_ERR_NO_SUCH_PROPERTY);
  EXPECT_EQ(context->ft->addEntry(context, CMPIRole, Chars("admin"), CMPI_chars).rc, CMPI_RC_OK);
  EXPECT_EQ(context->ft->getEntryCount(context, nullptr), count);
  EXPECT_EQ(Text(context->ft->getEntry(context, CMPIRole, nullptr).value.string), "admin");
}

TEST_F(BrokerObjectsTest, APropertyListFindsNamesWithoutCase) {
  const char* names[] = {"One", "Two", nullptr};
  CMPIPropertyList* list = m_broker->eft->newPropertyList(m_broker, names, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  names[0] = "Changed";
  EXPECT_TRUE(list->ft->isPropertyInList(list, "ONE", nullptr));
  EXPECT_FALSE(list->ft->isPropertyInList(list, "Three", nullptr));
  const char** read = list->ft->getProperties(list, nullptr);
  EXPECT_STREQ(read[1], "Two");
  EXPECT_EQ(read[2], nullptr);

  CMPIPropertyList* all = m_broker->eft->newPropertyList(m_broker, nullptr, nullptr);
  EXPECT_TRUE(all->ft->isPropertyInList(all, "Three", nullptr));
  EXPECT_EQ(all->ft->getProperties(all, nullptr), nullptr);
}

TEST_F(BrokerObjectsTest, NullInsteadOfAnObjectIsAnInvalidHandle) {
  const CMPIInstanceFT& instances = *NewInstance()->ft;
  ExpectMissing(instances.getProperty(nullptr, "P", &m_rc), CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(instances.setProperty(nullptr, "P", Chars("x"), CMPI_chars).rc,
            CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(instances.getObjectPath(nullptr, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(instances.release(nullptr).rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(instances.clone(nullptr, &m_rc), nullptr);
  EXPECT_EQ(m_broker->eft->newInstance(m_broker, nullptr, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
}

TEST_F(BrokerObjectsTest, ATextMustBeGiven) {
  EXPECT_EQ(m_broker->eft->newString(m_broker, nullptr, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerObjectsTest, ASuccessfulCallWritesBothMembersOfItsStatus) {
  CMPIString other = {"x", nullptr};
  m_rc = {CMPI_RC_ERROR, &other};
  NewInstance()->ft->getPropertyCount(NewInstance(), &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(m_rc.msg, nullptr);
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
