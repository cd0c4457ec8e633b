// SPDX-License-Identifier: Apache-2.0
//
// What providers ask of others through the broker, here answered by operations in memory.
#include "tests/platform/cmpi/broker/TBrokerTest.h"

namespace NZEPQEL20::cmpi {
namespace {

class BrokerUpcallsTest : public TBrokerTest {
 protected:
  BrokerUpcallsTest() {
    AddClass("root/test", "T_Base");
    AddClass("root/other", "T_Derived");
    AddInstance("root/test", "T_Base", "first");
    AddInstance("root/test", "T_Base", "second");
    AddInstance("root/other", "T_Derived", "third");
  }

  void AddClass(const char* nameSpace, const char* className) {
    m_operations.AddClass(nameSpace, *m_classes.Find(className));
  }
  void AddInstance(const char* nameSpace, const char* className, const char* name) {
    TCIMInstanceData data;
    data.path = TCIMReference(nameSpace, className, {{"Name", TCIMValue(name)}});
    data.properties = {
        {"Name", TCIMValue(name)}, {"Count", TCIMValue::UInt16(3)}, {"Colour", TCIMValue("red")}};
    m_operations.AddInstance(nameSpace, data);
  }
  CMPIObjectPath* NamedPath(const char* name, const char* className = "T_Base") const {
    CMPIObjectPath* path = NewPath(className);
    path->ft->addKey(path, "Name", Chars(name), CMPI_chars);
    return path;
  }
  std::string NameOf(const CMPIInstance* instance) const {
    return Text(instance->ft->getProperty(instance, "Name", nullptr).value.string);
  }
  const CMPIBrokerFT& Bft() const { return *m_broker->bft; }
};

TEST_F(BrokerUpcallsTest, EnumeratingInstancesGivesACursorOverCopies) {
  CMPIEnumeration* found = Bft().enumerateInstances(m_broker, nullptr, NewPath(), nullptr, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  const CMPIArray* all = found->ft->toArray(found, nullptr);
  EXPECT_EQ(all->ft->getSize(all, nullptr), 2U);
  EXPECT_EQ(all->ft->getSimpleType(all, nullptr), CMPI_instance);
  EXPECT_TRUE(found->ft->hasNext(found, nullptr));
  EXPECT_EQ(NameOf(found->ft->getNext(found, nullptr).value.inst), "first");
  CMPIEnumeration* clone = found->ft->clone(found, nullptr);
  EXPECT_EQ(NameOf(found->ft->getNext(found, nullptr).value.inst), "second");
  EXPECT_FALSE(found->ft->hasNext(found, nullptr));
  const CMPIData past = found->ft->getNext(found, &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_NO_MORE_ELEMENTS);
  EXPECT_EQ(past.value.inst, nullptr);
  EXPECT_NE(past.state & CMPI_nullValue, 0);
  EXPECT_EQ(NameOf(clone->ft->getNext(clone, nullptr).value.inst), "second");
  EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_OK);
}

TEST_F(BrokerUpcallsTest, PropertiesThatWereNotAskedForAreLeftOutButKeysStay) {
  const char* wanted[] = {"COUNT", nullptr};
  CMPIEnumeration* found = Bft().enumerateInstances(m_broker, nullptr, NewPath(), wanted, nullptr);
  const CMPIInstance* first = found->ft->getNext(found, nullptr).value.inst;
  EXPECT_EQ(first->ft->getPropertyCount(first, nullptr), 2U);
  EXPECT_EQ(first->ft->getProperty(first, "Count", nullptr).value.uint16, 3);
  const char* none[] = {nullptr};
  const CMPIInstance* one = Bft().getInstance(m_broker, nullptr, NamedPath("first"), none, nullptr);
  ASSERT_NE(one, nullptr);
  EXPECT_EQ(one->ft->getPropertyCount(one, nullptr), 1U);
  EXPECT_EQ(NameOf(one), "first");
}

TEST_F(BrokerUpcallsTest, EnumeratingNamesGivesPaths) {
  CMPIEnumeration* found = Bft().enumerateInstanceNames(m_broker, nullptr, NewPath(), &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  const CMPIData data = found->ft->getNext(found, nullptr);
  EXPECT_EQ(data.type, CMPI_ref);
  const CMPIObjectPath* path = data.value.ref;
  EXPECT_EQ(Text(path->ft->getKey(path, "Name", nullptr).value.string), "first");
  EXPECT_EQ(Text(path->ft->getNameSpace(path, nullptr)), "root/test");
}

TEST_F(BrokerUpcallsTest, AClassOfAnotherNamespaceIsFoundThere) {
  CMPIInstance* found =
      Bft().getInstance(m_broker, nullptr, NamedPath("third", "T_Derived"), nullptr, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(NameOf(found), "third");
  EXPECT_EQ(m_operations.GetCalls().back().find("GetInstance root/other:T_Derived"), 0U);
}

TEST_F(BrokerUpcallsTest, AnEmptyAnswerIsAnEmptyEnumeration) {
  AddClass("root/test", "T_Link");
  CMPIEnumeration* found =
      Bft().enumerateInstances(m_broker, nullptr, NewPath("T_Link"), nullptr, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  ASSERT_NE(found, nullptr);
  EXPECT_FALSE(found->ft->hasNext(found, nullptr));
}

TEST_F(BrokerUpcallsTest, AFailureHasTheNumberAndTheWordsOfWhoeverFailed) {
  EXPECT_EQ(Bft().getInstance(m_broker, nullptr, NamedPath("none"), nullptr, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NOT_FOUND);
  m_operations.Fail("EnumerateInstances", "root/test",
                    TQELException(TQELStatusCode::kCIMError, "the disk is gone", 2));
  EXPECT_EQ(Bft().enumerateInstances(m_broker, nullptr, NewPath(), nullptr, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_ACCESS_DENIED);
  EXPECT_EQ(Text(m_rc.msg), "the disk is gone");
  EXPECT_EQ(Bft().enumerateInstances(m_broker, nullptr, nullptr, nullptr, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
}

TEST_F(BrokerUpcallsTest, AFailureWithoutANumberGetsTheNearest) {
  const struct {
    TQELStatusCode::ECode status;
    CMPIrc code;
  } rows[] = {{TQELStatusCode::kNotSupported, CMPI_RC_ERR_NOT_SUPPORTED},
              {TQELStatusCode::kInvalidArgument, CMPI_RC_ERR_INVALID_PARAMETER},
              {TQELStatusCode::kNotFound, CMPI_RC_ERR_NOT_FOUND},
              {TQELStatusCode::kTypeMismatch, CMPI_RC_ERR_TYPE_MISMATCH},
              {TQELStatusCode::kAccessDenied, CMPI_RC_ERR_ACCESS_DENIED},
              {TQELStatusCode::kFailed, CMPI_RC_ERR_FAILED}};
  for (const auto& row : rows) {
    m_operations.Fail("DeleteInstance", "root/test", TQELException(row.status, "no"));
    EXPECT_EQ(Bft().deleteInstance(m_broker, nullptr, NamedPath("first")).rc, row.code);
  }
}

TEST_F(BrokerUpcallsTest, InstancesAreMadeChangedAndDeleted) {
  CMPIObjectPath* path = NamedPath("new");
  CMPIInstance* instance = m_broker->eft->newInstance(m_broker, path, nullptr);
  const CMPIObjectPath* made = Bft().createInstance(m_broker, nullptr, path, instance, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Text(made->ft->getKey(made, "Name", nullptr).value.string), "new");

  instance->ft->setProperty(instance, "Colour", Chars("blue"), CMPI_chars);
  ASSERT_EQ(Bft().modifyInstance(m_broker, nullptr, path, instance, nullptr).rc, CMPI_RC_OK);
  const CMPIData colour = Bft().getProperty(m_broker, nullptr, path, "Colour", &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Text(colour.value.string), "blue");

  EXPECT_EQ(Bft().deleteInstance(m_broker, nullptr, path).rc, CMPI_RC_OK);
  EXPECT_EQ(Bft().getInstance(m_broker, nullptr, path, nullptr, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NOT_FOUND);
}

TEST_F(BrokerUpcallsTest, AChangeHandsOnTheNamedPropertiesOnly) {
  CMPIInstance* instance = m_broker->eft->newInstance(m_broker, NamedPath("first"), nullptr);
  const CMPIUint16 count = 9;
  instance->ft->setProperty(instance, "Colour", Chars("blue"), CMPI_chars);
  instance->ft->setProperty(instance, "Count", In(count), CMPI_uint16);
  const char* wanted[] = {"Count", nullptr};
  ASSERT_EQ(Bft().modifyInstance(m_broker, nullptr, NamedPath("first"), instance, wanted).rc,
            CMPI_RC_OK);
  const CMPIObjectPath* path = NamedPath("first");
  EXPECT_EQ(Bft().getProperty(m_broker, nullptr, path, "Count", nullptr).value.uint16, 9);
  Bft().getProperty(m_broker, nullptr, path, "Colour", &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY) << "a change replaces all it was handed";
}

TEST_F(BrokerUpcallsTest, OnePropertyIsSetAndRead) {
  const CMPIUint16 count = 8;
  const CMPIObjectPath* path = NamedPath("second");
  EXPECT_EQ(Bft().setProperty(m_broker, nullptr, path, "Count", In(count), CMPI_uint16).rc,
            CMPI_RC_OK);
  EXPECT_EQ(Bft().getProperty(m_broker, nullptr, path, "Count", nullptr).value.uint16, 8);
  Bft().getProperty(m_broker, nullptr, path, "None", &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
  EXPECT_EQ(Bft().setProperty(m_broker, nullptr, path, nullptr, nullptr, CMPI_uint16).rc,
            CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerUpcallsTest, AMethodTakesAndGivesArguments) {
  m_operations.SetMethod(
      [](const TCIMReference& path, const std::string& method, TKeyMap& parameters) {
        const std::string given = parameters.at("In").ToString(10);
        parameters = {{"Out", TCIMValue(path.GetClassName() + '.' + method + '(' + given + ')')}};
        return TCIMValue::UInt32(7);
      });
  CMPIArgs* in = m_broker->eft->newArgs(m_broker, nullptr);
  in->ft->addArg(in, "In", Chars("x"), CMPI_chars);
  CMPIArgs* out = m_broker->eft->newArgs(m_broker, nullptr);
  const CMPIData answer =
      Bft().invokeMethod(m_broker, nullptr, NamedPath("first"), "Go", in, out, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(answer.type, CMPI_uint32);
  EXPECT_EQ(answer.value.uint32, 7U);
  EXPECT_EQ(out->ft->getArgCount(out, nullptr), 1U);
  EXPECT_EQ(Text(out->ft->getArg(out, "Out", nullptr).value.string), "T_Base.Go(x)");
}

TEST_F(BrokerUpcallsTest, AMethodNeedsNoArgumentsButAName) {
  m_operations.SetMethod([](const TCIMReference&, const std::string&, TKeyMap& parameters) {
    return TCIMValue::Boolean(parameters.empty());
  });
  const CMPIData answer =
      Bft().invokeMethod(m_broker, nullptr, NamedPath("first"), "Go", nullptr, nullptr, &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(answer.value.boolean, 1);
  Bft().invokeMethod(m_broker, nullptr, NamedPath("first"), nullptr, nullptr, nullptr, &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerUpcallsTest, AssociationUpcallsCarryTheAnswerOfTheOperations) {
  const CMPIObjectPath* path = NamedPath("first");
  EXPECT_EQ(Bft().associators(m_broker, nullptr, path, nullptr, nullptr, nullptr, nullptr, nullptr,
                              &m_rc),
            nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(
      Bft().associatorNames(m_broker, nullptr, path, nullptr, nullptr, nullptr, nullptr, &m_rc),
      nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(Bft().references(m_broker, nullptr, path, nullptr, nullptr, nullptr, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(Bft().referenceNames(m_broker, nullptr, path, nullptr, nullptr, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NOT_SUPPORTED);
}

TEST_F(BrokerUpcallsTest, AnIndicationThatNobodyListensToIsDelivered) {
  EXPECT_EQ(Bft().deliverIndication(m_broker, nullptr, "root/test", NewInstance()).rc, CMPI_RC_OK);
  EXPECT_EQ(Bft().deliverIndication(nullptr, nullptr, nullptr, NewInstance()).rc, CMPI_RC_OK);
  EXPECT_EQ(Bft().deliverIndication(m_broker, nullptr, "root/test", nullptr).rc,
            CMPI_RC_ERR_INVALID_HANDLE);
}

TEST_F(BrokerUpcallsTest, APropertyThatHasAProviderOfItsOwnIsThatProviders) {
  const CMPIUint16 count = 8;
  const CMPIObjectPath* path = NamedPath("nobody");
  EXPECT_EQ(Bft().getProperty(m_broker, nullptr, path, "Single", &m_rc).value.uint16, 1);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Bft().setProperty(m_broker, nullptr, path, "Single", In(count), CMPI_uint16).rc,
            CMPI_RC_OK);
  EXPECT_EQ(Bft().getProperty(m_broker, nullptr, path, "Single", nullptr).value.uint16, 8);
  EXPECT_EQ(Bft().setProperty(m_broker, nullptr, path, "Single", nullptr, CMPI_uint16).rc,
            CMPI_RC_OK);
  const CMPIData none = Bft().getProperty(m_broker, nullptr, path, "Single", nullptr);
  EXPECT_EQ(none.type, CMPI_uint16);
  EXPECT_EQ(none.state, CMPI_nullValue);
  EXPECT_TRUE(m_operations.GetCalls().empty());
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
