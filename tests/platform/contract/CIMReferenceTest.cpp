// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <string>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMInstance.h"
#include "platform/contract/ICIMNamespace.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

class TNamedClass final : public ICIMClass {
 public:
  explicit TNamedClass(std::string name) : m_name(std::move(name)) {}
  std::string GetName(const TKeyMap& /*keys*/) override { return m_name; }
  boost::shared_ptr<ICIMNamespace> GetNamespace(const TKeyMap& /*keys*/) override { return {}; }
  void EnumerateInstances(
      const boost::function<bool(boost::shared_ptr<ICIMInstance>)>& /*callback*/, int /*deep*/,
      const TKeyMap& /*keys*/) override {}

 private:
  std::string m_name;
};

// Knows every class but "Unknown".
class TClassNamespace final : public ICIMNamespace {
 public:
  boost::shared_ptr<ICIMClass> FindClass(const std::string& className,
                                         const TKeyMap& keys) override {
    wasAskedWithKeys = !keys.empty();
    if (className == "Unknown") return {};
    return boost::make_shared<TNamedClass>(className);
  }
  boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& /*path*/,
                                              TKeyMap /*keys*/) override {
    return {};
  }
  void EnumerateProviders(const boost::function<bool(boost::shared_ptr<IProvider>)>& /*callback*/,
                          const TKeyMap& /*keys*/) override {}

  bool wasAskedWithKeys = true;
};

std::string WhyThereIsNoClass(const TCIMReference& path) {
  try {
    static_cast<void>(path.GetClass());
  } catch (const TQELException& e) {
    return e.what();
  }
  return {};
}

TEST(CIMReferenceTest, StartsEmpty) {
  EXPECT_TRUE(TCIMReference().IsNull());
  EXPECT_EQ(TCIMReference().GetPath(), "");
  EXPECT_TRUE(TCIMReference(boost::shared_ptr<ICIMNamespace>(), TKeyMap()).IsNull());
}

TEST(CIMReferenceTest, PrintsKeysInAscendingOrderBetweenQuotes) {
  const TCIMReference path(
      "root/cimv2", "C",
      {{"b", TCIMValue::UInt16(7)}, {"B", "x"}, {"a", TCIMValue::Boolean(true)}});
  EXPECT_EQ(path.GetPath(), "root/cimv2:C.B=\"x\",a=\"TRUE\",b=\"7\"");
}

TEST(CIMReferenceTest, EscapesQuotesAndBackslashesAndNothingElse) {
  const TCIMReference path("", "C", {{"K", std::string("a\"b\\c\n\xff")}});
  EXPECT_EQ(path.GetPath(), "C.K=\"a\\\"b\\\\c\n\xff\"");
}

TEST(CIMReferenceTest, EscapesAPathWithinAPathOnce) {
  const TCIMReference inner("m", "D", {{"L", "x"}});
  const TCIMReference outer("n", "C", {{"K", inner}});
  EXPECT_EQ(outer.GetPath(), R"(n:C.K="m:D.L=\"x\"")");
  const TCIMReference again = TCIMReference::Parse(outer.GetPath());
  EXPECT_EQ(static_cast<TCIMReference>(*again.FindKey("K")), inner);
}

TEST(CIMReferenceTest, FindsAndReplacesKeysWithoutCase) {
  TCIMReference path("n", "C", {{"InstanceID", "1"}});
  path.SetKey("INSTANCEID", "2");
  ASSERT_NE(path.FindKey("instanceid"), nullptr);
  EXPECT_EQ(*path.FindKey("instanceid"), TCIMValue("2"));
  EXPECT_EQ(path.GetPath(), "n:C.InstanceID=\"2\"");
  EXPECT_EQ(path.FindKey("Instance"), nullptr);
}

TEST(CIMReferenceTest, ComparesByTextWhateverNamespaceObjectItIsBoundTo) {
  const TCIMReference path("n", "C", {{"K", TCIMValue::UInt16(1)}});
  const auto ns = boost::make_shared<TClassNamespace>();
  EXPECT_EQ(path, path.Bind(ns));
  EXPECT_EQ(path, TCIMReference("n", "C", {{"K", "1"}}));
  EXPECT_FALSE(path == TCIMReference("n", "C", {{"K", "2"}}));
  EXPECT_EQ(path.Bind(ns).GetNamespace(), ns);
  EXPECT_EQ(path.GetNamespace(), nullptr);
}

TEST(CIMReferenceTest, FindsItsClassThroughItsNamespaceAsThatNamespaceSeesIt) {
  const auto ns = boost::make_shared<TClassNamespace>();
  EXPECT_EQ(TCIMReference("n", "C").Bind(ns).GetClass()->GetName({}), "C");
  EXPECT_FALSE(ns->wasAskedWithKeys);
}

TEST(CIMReferenceTest, SaysForWhichPathThereIsNoClass) {
  const auto ns = boost::make_shared<TClassNamespace>();
  const TKeyMap keys{{"K", "v"}};
  for (const TCIMReference& path :
       {TCIMReference("n", "C", keys), TCIMReference("n", "Unknown", keys).Bind(ns),
        TCIMReference(ns, keys)}) {
    EXPECT_NE(WhyThereIsNoClass(path).find("K=\"v\""), std::string::npos)
        << WhyThereIsNoClass(path);
  }
}

}  // namespace
}  // namespace NZEPQEL20
