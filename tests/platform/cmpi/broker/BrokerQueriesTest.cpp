// SPDX-License-Identifier: Apache-2.0
//
// Queries as providers use them: expressions, their conditions, filters, and upcalls with them.
#include <stdexcept>

#include "tests/platform/cmpi/broker/TBrokerTest.h"

namespace NZEPQEL20::cmpi {
namespace {

class BrokerQueriesTest : public TBrokerTest {
 protected:
  BrokerQueriesTest() {
    m_operations.AddClass("root/test", *m_classes.Find("T_Base"));
    Add("first", 1);
    Add("second", 2);
    Add("third", 3);
  }
  void Add(const char* name, std::uint16_t count) {
    TCIMInstanceData data;
    data.path = TCIMReference("root/test", "T_Base", {{"Name", TCIMValue(name)}});
    data.properties = {{"Name", TCIMValue(name)},
                       {"Count", TCIMValue::UInt16(count)},
                       {"Colour", TCIMValue("red")}};
    m_operations.AddInstance("root/test", data);
  }
  CMPISelectExp* NewQuery(const char* query, const char* language = "WQL") {
    return m_broker->eft->newSelectExp(m_broker, query, language, nullptr, &m_rc);
  }
  CMPIInstance* NewThing(CMPIUint16 count, const char* className = "T_Derived") const {
    CMPIInstance* instance = NewInstance(className);
    instance->ft->setProperty(instance, "Count", In(count), CMPI_uint16);
    return instance;
  }
  /// The names in `found`, each with the number of its properties.
  static std::string Names(CMPIEnumeration* found) {
    std::string names;
    while (found != nullptr && found->ft->hasNext(found, nullptr) != 0) {
      const CMPIInstance* one = found->ft->getNext(found, nullptr).value.inst;
      names += Text(one->ft->getProperty(one, "Name", nullptr).value.string) +
               std::to_string(one->ft->getPropertyCount(one, nullptr)) + ' ';
    }
    return names;
  }
  const CMPIBrokerFT& Bft() const { return *m_broker->bft; }
};

CMPIData CountOnly(const char* name, void* user) {
  CMPIData data = {};
  if (std::string(name) != "Count") {
    data.state = CMPI_notFound;
    return data;
  }
  data.type = CMPI_uint16;
  data.value.uint16 = *static_cast<CMPIUint16*>(user);
  return data;
}

CMPIData Throw(const char*, void*) {
  throw std::runtime_error("out of reach");
}

TEST_F(BrokerQueriesTest, AnExpressionIsEvaluatedOnInstances) {
  CMPISelectExp* query = NewQuery("SELECT * FROM T_Base WHERE Count >= 2");
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(query->ft->evaluate(query, NewThing(2), &m_rc), 1);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(query->ft->evaluate(query, NewThing(1), nullptr), 0);
  EXPECT_EQ(query->ft->evaluate(query, NewThing(2, "T_Link"), nullptr), 0);
  EXPECT_EQ(query->ft->evaluate(query, nullptr, &m_rc), 0);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(Text(query->ft->getString(query, nullptr)), "SELECT * FROM T_Base WHERE Count >= 2");
  CMPISelectExp* clone = query->ft->clone(query, nullptr);
  EXPECT_EQ(clone->ft->evaluate(clone, NewThing(2), nullptr), 1);
  EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_OK);
  m_broker->mft->freeSelectExp(m_broker, query);
}

TEST_F(BrokerQueriesTest, AnExpressionAsksAnAccessor) {
  const CMPISelectExp* query = NewQuery("SELECT * FROM T_Base WHERE Count = 5 OR Other = 1");
  CMPIUint16 count = 5;
  EXPECT_EQ(query->ft->evaluateUsingAccessor(query, CountOnly, &count, &m_rc), 1);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  count = 6;
  EXPECT_EQ(query->ft->evaluateUsingAccessor(query, CountOnly, &count, nullptr), 0);
  EXPECT_EQ(query->ft->evaluateUsingAccessor(query, Throw, nullptr, &m_rc), 0);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_FAILED);
  EXPECT_EQ(Text(m_rc.msg), "out of reach");
  EXPECT_EQ(query->ft->evaluateUsingAccessor(query, nullptr, nullptr, &m_rc), 0);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerQueriesTest, TheProjectionIsNullForAllProperties) {
  CMPIArray* projection = nullptr;
  m_broker->eft->newSelectExp(m_broker, "SELECT Name, Count FROM T_Base", "CIM:CQL", &projection,
                              &m_rc);
  ASSERT_NE(projection, nullptr);
  EXPECT_EQ(projection->ft->getSize(projection, nullptr), 2U);
  EXPECT_EQ(projection->ft->getSimpleType(projection, nullptr), CMPI_string);
  EXPECT_EQ(Text(projection->ft->getElementAt(projection, 1, nullptr).value.string), "Count");
  m_broker->eft->newSelectExp(m_broker, "SELECT * FROM T_Base", "WQL", &projection, &m_rc);
  EXPECT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(projection, nullptr);
}

TEST_F(BrokerQueriesTest, AFaultyQueryIsRefusedWithItsReason) {
  CMPIArray* projection = m_broker->eft->newArray(m_broker, 1, CMPI_string, nullptr);
  EXPECT_EQ(m_broker->eft->newSelectExp(m_broker, "SELECT", "WQL", &projection, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_QUERY);
  EXPECT_EQ(Text(m_rc.msg), "query, position 7: expected FROM, found the end");
  EXPECT_EQ(projection, nullptr);
  EXPECT_EQ(NewQuery("SELECT * FROM T_Base", nullptr), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED);
  EXPECT_EQ(NewQuery(nullptr), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_F(BrokerQueriesTest, AConditionComesInClausesOfComparisons) {
  const CMPISelectExp* query = NewQuery("SELECT * FROM T_Base WHERE Count > 1 AND Name LIKE 'a%'");
  const CMPISelectCond* doc = query->ft->getDOC(query, &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  int kind = 9;
  EXPECT_EQ(doc->ft->getCountAndType(doc, &kind, nullptr), 1U);
  EXPECT_EQ(kind, CMPI_COND_DOC);
  const CMPISelectCond* cod = query->ft->getCOD(query, nullptr);
  EXPECT_EQ(cod->ft->getCountAndType(cod, &kind, nullptr), 2U);
  EXPECT_EQ(kind, CMPI_COND_COD);
  const CMPISubCond* clause = doc->ft->getSubCondAt(doc, 0, nullptr);
  ASSERT_NE(clause, nullptr);
  EXPECT_EQ(clause->ft->getCount(clause, nullptr), 2U);
  const CMPIPredicate* like = clause->ft->getPredicate(clause, "name", nullptr);
  ASSERT_NE(like, nullptr);
  CMPIType type = 0;
  CMPIPredOp op = CMPI_PredOp_Or;
  CMPIString* left = nullptr;
  CMPIString* right = nullptr;
  EXPECT_EQ(like->ft->getData(like, &type, &op, &left, &right).rc, CMPI_RC_OK);
  EXPECT_EQ(type, CMPI_charString);
  EXPECT_EQ(op, CMPI_PredOp_Like);
  EXPECT_EQ(Text(left) + '/' + Text(right), "Name/a%");
  EXPECT_EQ(like->ft->getData(like, nullptr, nullptr, nullptr, nullptr).rc, CMPI_RC_OK);
}

TEST_F(BrokerQueriesTest, BeyondTheEndOfAConditionIsNoSuchProperty) {
  const CMPISelectExp* query = NewQuery("SELECT * FROM T_Base WHERE Count > 1");
  const CMPISelectCond* doc = query->ft->getDOC(query, nullptr);
  EXPECT_EQ(doc->ft->getSubCondAt(doc, 1, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
  const CMPISubCond* clause = doc->ft->getSubCondAt(doc, 0, nullptr);
  EXPECT_EQ(clause->ft->getPredicateAt(clause, 1, &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
  EXPECT_EQ(clause->ft->getPredicate(clause, "Name", &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
  const CMPISelectExp* all = NewQuery("SELECT * FROM T_Base");
  const CMPISelectCond* none = all->ft->getCOD(all, nullptr);
  EXPECT_EQ(none->ft->getCountAndType(none, nullptr, nullptr), 0U);
}

TEST_F(BrokerQueriesTest, APredicateTellsItsOperandsAndAsksAnAccessor) {
  const struct {
    const char* condition;
    CMPIType type;
    CMPIPredOp op;
    const char* right;
  } rows[] = {{"Count < 0x10", CMPI_integerString, CMPI_PredOp_LessThan, "16"},
              {"Count = 5.5", CMPI_realString, CMPI_PredOp_Equals, "5.5"},
              {"Count <> TRUE", CMPI_booleanString, CMPI_PredOp_NotEquals, "TRUE"},
              {"Count >= Name", CMPI_nameString, CMPI_PredOp_GreaterThanOrEquals, "Name"},
              {"Count ISA T_Base", CMPI_classNameString, CMPI_PredOp_Isa, "T_Base"},
              {"Count IS NOT NULL", CMPI_charString, CMPI_PredOp_Not_Null, ""}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.condition);
    const CMPISelectExp* query = NewQuery(row.condition, "DMTF:FQL");
    const CMPISelectCond* cod = query->ft->getCOD(query, nullptr);
    const CMPISubCond* clause = cod->ft->getSubCondAt(cod, 0, nullptr);
    const CMPIPredicate* predicate = clause->ft->getPredicateAt(clause, 0, nullptr);
    CMPIType type = 0;
    CMPIPredOp op = CMPI_PredOp_Or;
    CMPIString* right = nullptr;
    predicate->ft->getData(predicate, &type, &op, nullptr, &right);
    EXPECT_EQ(type, row.type);
    EXPECT_EQ(op, row.op);
    EXPECT_EQ(Text(right), row.right);
  }
  const CMPISelectExp* query = NewQuery("NOT Count = 5", "DMTF:FQL");
  const CMPISelectCond* cod = query->ft->getCOD(query, nullptr);
  const CMPISubCond* clause = cod->ft->getSubCondAt(cod, 0, nullptr);
  const CMPIPredicate* predicate = clause->ft->getPredicateAt(clause, 0, nullptr);
  CMPIUint16 count = 6;
  EXPECT_EQ(predicate->ft->evaluateUsingAccessor(predicate, CountOnly, &count, &m_rc), 1);
  count = 5;
  EXPECT_EQ(predicate->ft->evaluateUsingAccessor(predicate, CountOnly, &count, &m_rc), 0);
}

TEST_F(BrokerQueriesTest, PartsOfAQueryAreObjectsLikeOthers) {
  const CMPISelectExp* query = NewQuery("SELECT * FROM T_Base WHERE NOT Count > 1 OR Name = 'x'");
  CMPISelectCond* doc = query->ft->getDOC(query, nullptr);
  CMPISubCond* clause = doc->ft->getSubCondAt(doc, 0, nullptr);
  CMPIPredicate* predicate = clause->ft->getPredicateAt(clause, 0, nullptr);
  CMPIEnumerationFilter* filter =
      m_broker->eft->newEnumerationFilter(m_broker, "FQL", "Count = 1", nullptr);
  const struct {
    const void* object;
    const char* type;
    const char* text;
  } rows[] = {{query, "CMPISelectExp", "SELECT * FROM T_Base WHERE NOT Count > 1 OR Name = 'x'"},
              {doc, "CMPISelectCond", "(Count <= 1) OR (Name = x)"},
              {clause, "CMPISubCond", "Count <= 1"},
              {predicate, "CMPIPredicate", "Count <= 1"},
              {filter, "CMPIEnumerationFilter", "Count = 1"}};
  for (const auto& row : rows) {
    EXPECT_EQ(Text(m_broker->eft->getType(m_broker, row.object, nullptr)), row.type);
    EXPECT_EQ(Text(m_broker->eft->toString(m_broker, row.object, nullptr)), row.text);
  }
  CMPIPredicate* copy = predicate->ft->clone(predicate, nullptr);
  CMPISubCond* clauseCopy = clause->ft->clone(clause, nullptr);
  CMPISelectCond* docCopy = doc->ft->clone(doc, nullptr);
  EndCall();
  BeginCall();
  CMPIString* left = nullptr;
  copy->ft->getData(copy, nullptr, nullptr, &left, nullptr);
  EXPECT_EQ(Text(left), "Count");
  EXPECT_EQ(clauseCopy->ft->getCount(clauseCopy, nullptr), 1U);
  EXPECT_EQ(docCopy->ft->getCountAndType(docCopy, nullptr, nullptr), 2U);
  EXPECT_EQ(copy->ft->release(copy).rc, CMPI_RC_OK);
  EXPECT_EQ(clauseCopy->ft->release(clauseCopy).rc, CMPI_RC_OK);
  EXPECT_EQ(docCopy->ft->release(docCopy).rc, CMPI_RC_OK);
}

TEST_F(BrokerQueriesTest, AnEnumerationFilterMatchesInstances) {
  CMPIEnumerationFilter* filter =
      m_broker->eft->newEnumerationFilter(m_broker, "DMTF:FQL", "Count = 2", &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(filter->ft->match(filter, NewThing(2), &m_rc), 1);
  EXPECT_EQ(filter->ft->match(filter, NewThing(3), &m_rc), 0);
  CMPIEnumerationFilter* clone = filter->ft->clone(filter, nullptr);
  EXPECT_EQ(clone->ft->match(clone, NewThing(2), nullptr), 1);
  EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_OK);
  EXPECT_EQ(m_broker->eft->newEnumerationFilter(m_broker, "DMTF:FQL", "Count =", &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_QUERY);
}

TEST_F(BrokerQueriesTest, AQueryIsAnsweredByEnumeratingItsClass) {
  CMPIEnumeration* found = Bft().execQuery(m_broker, nullptr, NewPath("T_Ignored"),
                                           "SELECT * FROM T_Base WHERE Count >= 2", "WQL", &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Names(found), "second3 third3 ");
  found = Bft().execQuery(m_broker, nullptr, NewPath(), "SELECT Colour FROM T_Base WHERE Count = 3",
                          "DMTF:CQL", &m_rc);
  EXPECT_EQ(Names(found), "third2 ") << "the key stays";
  found = Bft().execQuery(m_broker, nullptr, NewPath(), "Name = 'first'", "DMTF:FQL", &m_rc);
  EXPECT_EQ(Names(found), "first3 ");
  EXPECT_EQ(Bft().execQuery(m_broker, nullptr, NewPath(), "SELECT", "WQL", &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_QUERY);
  EXPECT_EQ(Bft().execQuery(m_broker, nullptr, NewPath(), "SELECT", "SQL", &m_rc), nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED);
}

TEST_F(BrokerQueriesTest, AFilteredEnumerationNeedsNoPropertyOfItsFilterInTheAnswer) {
  const char* wanted[] = {"Colour", nullptr};
  CMPIEnumeration* found = Bft().enumerateInstancesFiltered(m_broker, nullptr, NewPath(), wanted,
                                                            "DMTF:FQL", "Count < 3", &m_rc);
  ASSERT_EQ(m_rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Names(found), "first2 second2 ");
  found = Bft().enumerateInstancesFiltered(m_broker, nullptr, NewPath(), nullptr, nullptr, nullptr,
                                           &m_rc);
  EXPECT_EQ(Names(found), "first3 second3 third3 ");
  EXPECT_EQ(Bft().enumerateInstancesFiltered(m_broker, nullptr, NewPath(), nullptr, "DMTF:FQL",
                                             "Count <", &m_rc),
            nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_QUERY);
}

TEST_F(BrokerQueriesTest, FilteredAssociationsRefuseAFaultyFilterBeforeTheyAsk) {
  const CMPIObjectPath* path = NewPath();
  EXPECT_EQ(Bft().associatorsFiltered(m_broker, nullptr, path, nullptr, nullptr, nullptr, nullptr,
                                      nullptr, "DMTF:FQL", "(", &m_rc),
            nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_INVALID_QUERY);
  EXPECT_EQ(
      Bft().referencesFiltered(m_broker, nullptr, path, nullptr, nullptr, nullptr, "l", "q", &m_rc),
      nullptr);
  EXPECT_EQ(m_rc.rc, CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED);
  EXPECT_TRUE(m_operations.GetCalls().empty());
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
