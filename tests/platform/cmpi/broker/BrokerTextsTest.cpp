// SPDX-License-Identifier: Apache-2.0
//
// Code pages, qualifiers, and keys where the class says which they are.
#include <cstring>
#include <ostream>
#include <vector>

#include "platform/cmpi/ProviderCall.h"
#include "platform/cmpi/TWantedProperties.h"
#include "tests/platform/cmpi/broker/TBrokerTest.h"

namespace NZEPQEL20::cmpi {
namespace {

class BrokerCodePagesTest : public TBrokerTest {
 protected:
  CMPIString* Read(const void* bytes, CMPICodepageID page) {
    return m_broker->eft->newStringCP(m_broker, static_cast<const char*>(bytes), page, &m_rc);
  }
};

TEST_F(BrokerCodePagesTest, EveryCodePageComesInAndGoesOut) {
  const char16_t units[] = u"x\u00E4\u20AC\U0001F600";
  const std::string text = "x\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";
  const CMPIString* read = Read(units, CMPI_CPID_UTF16);
  EXPECT_EQ(Text(read), text);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  char* written = read->ft->newCharsCP(read, CMPI_CPID_UTF16, &m_rc);
  ASSERT_NE(written, nullptr);
  EXPECT_EQ(std::memcmp(written, units, sizeof units), 0);
  m_broker->mft->freeChars(m_broker, written);
  written = read->ft->newCharsCP(read, CMPI_CPID_SYSTEM, nullptr);
  EXPECT_STREQ(written, text.c_str());
  m_broker->mft->freeChars(m_broker, written);
  EXPECT_EQ(Text(Read(text.c_str(), CMPI_CPID_SYSTEM)), text);
  EXPECT_EQ(Text(Read("plain", CMPI_CPID_USASCII)), "plain");
  const CMPIString* plain = NewString("plain");
  written = plain->ft->newCharsCP(plain, CMPI_CPID_USASCII, nullptr);
  EXPECT_STREQ(written, "plain");
  m_broker->mft->freeChars(m_broker, written);
}

TEST_F(BrokerCodePagesTest, AByteOrderMarkTellsTheOrderAndIsNoText) {
  const char16_t here[] = {0xFEFF, u'a', u'\u00E4', 0};
  const char16_t swapped[] = {0xFFFE, 0x6100, 0xE400, 0};
  EXPECT_EQ(Text(Read(here, CMPI_CPID_UTF16)), "a\xC3\xA4");
  EXPECT_EQ(Text(Read(swapped, CMPI_CPID_UTF16)), "a\xC3\xA4");
  EXPECT_EQ(Text(Read(u"", CMPI_CPID_UTF16)), "");
}

TEST_F(BrokerCodePagesTest, WhatACodePageDoesNotHaveIsNotInIt) {
  const char16_t alone[] = {0xD83D, u'x', 0};
  const char16_t low[] = {0xDE00, 0};
  const struct {
    const void* text;
    CMPICodepageID page;
  } rows[] = {{"\xC3\xA4", CMPI_CPID_USASCII},
              {"\xFF", CMPI_CPID_SYSTEM},
              {alone, CMPI_CPID_UTF16},
              {low, CMPI_CPID_UTF16}};
  for (const auto& row : rows) {
    EXPECT_EQ(Read(row.text, row.page), nullptr);
    EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NOT_IN_CODEPAGE);
  }
  const CMPIString* string = NewString("\xC3\xA4");
  EXPECT_EQ(string->ft->newCharsCP(string, CMPI_CPID_USASCII, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NOT_IN_CODEPAGE);
  const auto unknown = static_cast<CMPICodepageID>(9);
  EXPECT_EQ(string->ft->newCharsCP(string, unknown, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(Read("x", unknown), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(Read(nullptr, CMPI_CPID_UTF16), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

class BrokerQualifiersTest : public TBrokerTest {
 protected:
  BrokerQualifiersTest() {
    const auto faults = m_classes.LoadText(
        "[Description(\"A press.\")] class Q_Press {\n"
        "  [Key, MaxLen(12)] string Name;\n"
        "  [Description(\"Presses.\")] uint32 Press([IN, MinValue(3)] uint8 Force);\n"
        "};\n",
        "press");
    EXPECT_TRUE(faults.empty());
  }
};

TEST_F(BrokerQualifiersTest, EveryElementTellsItsQualifiers) {
  const CMPIObjectPath* path = NewPath("Q_Press");
  EXPECT_EQ(Text(path->ft->getClassQualifier(path, "DESCRIPTION", &m_rc).value.string), "A press.");
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  const CMPIData key = path->ft->getPropertyQualifier(path, "name", "Key", &m_rc);
  EXPECT_EQ(key.type, CMPI_boolean);
  EXPECT_EQ(key.value.boolean, 1);
  EXPECT_EQ(path->ft->getPropertyQualifier(path, "Name", "MaxLen", &m_rc).value.uint32, 12U);
  EXPECT_EQ(Text(path->ft->getMethodQualifier(path, "Press", "Description", &m_rc).value.string),
            "Presses.");
  EXPECT_EQ(path->ft->getParameterQualifier(path, "Press", "Force", "MinValue", &m_rc).value.sint64,
            3);
}

TEST_F(BrokerQualifiersTest, WhatIsNotThereSaysWhatItIs) {
  const CMPIObjectPath* path = NewPath("Q_Press");
  const CMPIObjectPath* unknown = NewPath("Q_None");
  const auto codeOf = [&](const CMPIData& data) {
    EXPECT_EQ(data.state, CMPI_nullValue | CMPI_notFound);
    EXPECT_EQ(data.value.string, nullptr);
    return m_rc.rc;
  };
  EXPECT_EQ(codeOf(unknown->ft->getClassQualifier(unknown, "Key", &m_rc)),
            CMPI_RC_ERR_INVALID_CLASS);
  EXPECT_EQ(codeOf(path->ft->getClassQualifier(path, "Abstract", &m_rc)), CMPI_RC_ERR_NOT_FOUND);
  EXPECT_EQ(codeOf(path->ft->getClassQualifier(path, nullptr, &m_rc)),
            CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(codeOf(path->ft->getPropertyQualifier(path, "Size", "Key", &m_rc)),
            CMPI_RC_ERR_NO_SUCH_PROPERTY);
  EXPECT_EQ(codeOf(path->ft->getMethodQualifier(path, "Pull", "Key", &m_rc)),
            CMPI_RC_ERR_METHOD_NOT_FOUND);
  EXPECT_EQ(codeOf(path->ft->getParameterQualifier(path, "Press", "Speed", "Key", &m_rc)),
            CMPI_RC_ERR_INVALID_PARAMETER);
}

class BrokerKeysTest : public TBrokerTest {
 protected:
  BrokerKeysTest() {
    const auto faults = m_classes.LoadText(
        "class K_Pair { [Key] string First; [Key] uint16 Second; string Note; };\n"
        "[Association] class K_Loose { K_Pair REF Left; K_Pair REF Right; };\n",
        "pairs");
    EXPECT_TRUE(faults.empty());
  }
  static void SetText(CMPIInstance* instance, const char* name, const char* text) {
    instance->ft->setProperty(instance, name, Chars(text), CMPI_chars);
  }
  static std::string PathOf(const CMPIInstance* instance) {
    const CMPIObjectPath* path = instance->ft->getObjectPath(instance, nullptr);
    return Text(path->ft->toString(path, nullptr));
  }
};

TEST_F(BrokerKeysTest, WhatThePathLacksOfTheClassesKeysComesFromTheProperties) {
  CMPIObjectPath* path = NewPath("K_Pair");
  path->ft->addKey(path, "First", Chars("a"), CMPI_chars);
  CMPIInstance* instance = m_broker->eft->newInstance(m_broker, path, nullptr);
  EXPECT_EQ(PathOf(instance), "root/test:K_Pair.First=\"a\"");
  const CMPIUint16 second = 2;
  instance->ft->setProperty(instance, "Second", In(second), CMPI_uint16);
  SetText(instance, "Note", "no key");
  EXPECT_EQ(PathOf(instance), "root/test:K_Pair.First=\"a\",Second=\"2\"");
  instance->ft->setProperty(instance, "Second", nullptr, CMPI_uint16);
  EXPECT_EQ(PathOf(instance), "root/test:K_Pair.First=\"a\"") << "no key is NULL";
}

TEST_F(BrokerKeysTest, AClassThatDeclaresNoKeysHasItsReferences) {
  CMPIInstance* instance = NewInstance("K_Loose");
  CMPIObjectPath* end = NewPath("K_Pair");
  instance->ft->setProperty(instance, "Left", In(end), CMPI_ref);
  instance->ft->setProperty(instance, "Right", nullptr, CMPI_ref);
  const CMPIObjectPath* path = instance->ft->getObjectPath(instance, nullptr);
  EXPECT_EQ(path->ft->getKeyCount(path, nullptr), 1U);
  EXPECT_EQ(path->ft->getKey(path, "Left", nullptr).type, CMPI_ref);
}

TEST_F(BrokerKeysTest, AFilterKeepsKeysThatOnlyTheClassKnows) {
  const char* wanted[] = {"Note", nullptr};
  CMPIInstance* instance = NewInstance("K_Pair");
  ASSERT_EQ(instance->ft->setPropertyFilter(instance, wanted, nullptr).rc, CMPI_RC_OK);
  SetText(instance, "First", "a");
  SetText(instance, "Other", "dropped");
  SetText(instance, "Note", "kept");
  EXPECT_EQ(instance->ft->getPropertyCount(instance, nullptr), 2U);
  EXPECT_EQ(PathOf(instance), "root/test:K_Pair.First=\"a\"");

  CMPIInstance* unknown = NewInstance("K_Unknown");
  unknown->ft->setPropertyFilter(unknown, wanted, nullptr);
  CMPIObjectPath* end = NewPath("K_Pair");
  unknown->ft->setProperty(unknown, "End", In(end), CMPI_ref);
  SetText(unknown, "Other", "dropped");
  EXPECT_EQ(unknown->ft->getPropertyCount(unknown, nullptr), 1U);
}

TEST_F(BrokerKeysTest, AKeyIsNeverNull) {
  CMPIObjectPath* path = NewPath("K_Pair");
  const CMPIString* none = nullptr;
  EXPECT_EQ(path->ft->addKey(path, "First", nullptr, CMPI_chars).rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(path->ft->addKey(path, "First", In(none), CMPI_string).rc,
            CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(path->ft->getKeyCount(path, nullptr), 0U);
}

TEST_F(BrokerKeysTest, AnInstanceIsCreatedUnderTheKeysOfThePathBesideIt) {
  m_operations.AddClass("root/test", *m_classes.Find("T_Base"));
  CMPIObjectPath* path = NewPath();
  path->ft->addKey(path, "Name", Chars("made"), CMPI_chars);
  const CMPIObjectPath* made =
      m_broker->bft->createInstance(m_broker, nullptr, path, NewInstance(), &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Text(made->ft->getKey(made, "Name", nullptr).value.string), "made");
}

TEST_F(BrokerKeysTest, AnArrayOfACountThatNobodyMeantIsRefused) {
  constexpr CMPICount kMost = 1024 * 1024;
  for (const CMPICount count : {kMost + 1, CMPICount{0xFFFFFFFF}}) {
    EXPECT_EQ(m_broker->eft->newArray(m_broker, count, CMPI_string, &m_rc), nullptr);
    EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_SERVER_LIMITS_EXCEEDED) << count;
  }
  EXPECT_NE(m_broker->eft->newArray(m_broker, kMost, CMPI_uint8, &m_rc), nullptr);
}

TEST_F(BrokerKeysTest, ACallsContextHasTheParametersOfItsRegistration) {
  const auto entryOf = [&](const TCallSite& site) {
    std::string text = "(none)";
    CallProvider(m_taken, site, TBrokerResult::EKind::kNothing,
                 [&](const CMPIContext* context, const CMPIResult*) {
                   const CMPIData entry =
                       context->ft->getEntry(context, "sfcbProviderParameters", &m_rc);
                   if (m_rc.rc == CMPI_RC_OK) text = Text(entry.value.string);
                   return CMPIStatus{CMPI_RC_OK, nullptr};
                 });
    return text;
  };
  EXPECT_EQ(entryOf({"root/test", "depth=3 loud"}), "depth=3 loud");
  EXPECT_EQ(entryOf({"root/test"}), "(none)");
}

TEST_F(BrokerKeysTest, ACallInACallStartsWithoutTheOuterOnesWantedProperties) {
  const char* wanted[] = {"Note", nullptr};
  const TWantedProperties scope(wanted);
  CallProvider(m_taken, {"root/test"}, TBrokerResult::EKind::kNothing,
               [&](const CMPIContext*, const CMPIResult*) {
                 EXPECT_EQ(TWantedProperties::Get(), nullptr);
                 return CMPIStatus{CMPI_RC_OK, nullptr};
               });
  EXPECT_EQ(TWantedProperties::Get(), wanted);
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
