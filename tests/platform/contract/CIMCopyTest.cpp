// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <string>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/TCIMCopy.h"
#include "platform/contract/TQELException.h"
#include "platform/contract/TRootObject.h"

namespace NZEPQEL20 {
namespace {

class TPathInstance final : public ICIMInstance {
 public:
  TCIMReference GetObjectPath(const TKeyMap& /*keys*/) override { return {"n", "C", {}}; }
  boost::shared_ptr<ICIMProperty> GetProperty(const std::string& /*name*/,
                                              const TKeyMap& /*keys*/) override {
    return {};
  }
  void SetProperty(const std::string& /*name*/, const TCIMValue& /*value*/,
                   const TKeyMap& /*keys*/) override {}
  TCIMValue InvokeMethod(const std::string& /*method*/, TKeyMap& /*parameters*/,
                         const TKeyMap& /*context*/) override {
    return {};
  }
  std::vector<std::string> GetPropertyNames(const TKeyMap& /*keys*/) override { return {}; }
  std::string GetNamespaceText(const TKeyMap& /*keys*/) override { return "n"; }
};

class TReadOnlyNamespace : public ICIMNamespace {
 public:
  boost::shared_ptr<ICIMClass> FindClass(const std::string& /*className*/,
                                         const TKeyMap& /*keys*/) override {
    return {};
  }
  boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& /*path*/,
                                              TKeyMap /*keys*/) override {
    return {};
  }
  void EnumerateProviders(const boost::function<bool(boost::shared_ptr<IProvider>)>& /*callback*/,
                          const TKeyMap& /*keys*/) override {}
};

// Answers with another instance than it was given.
class TStoringNamespace final : public TReadOnlyNamespace, public ICIMInstanceStore {
 public:
  boost::shared_ptr<ICIMInstance> CreateInstance(
      const boost::shared_ptr<ICIMInstance>& source) override {
    taken = source;
    return copy;
  }

  boost::shared_ptr<ICIMInstance> taken;
  boost::shared_ptr<ICIMInstance> copy = boost::make_shared<TPathInstance>();
};

TQELStatusCode WhyNotCopied(const boost::shared_ptr<ICIMInstance>& instance,
                            const boost::shared_ptr<ICIMNamespace>& ns) {
  try {
    TCIMCopy::CopyInstance(instance, ns);
  } catch (const TQELException& e) {
    return e.GetStatusCode();
  }
  return TQELStatusCode::kOk;
}

TEST(CIMCopyTest, AnswersWithWhatTheNamespaceMadeOfTheInstance) {
  const auto ns = boost::make_shared<TStoringNamespace>();
  const auto instance = boost::make_shared<TPathInstance>();
  EXPECT_EQ(TCIMCopy::CopyInstance(instance, ns), ns->copy);
  EXPECT_EQ(ns->taken, instance);
}

TEST(CIMCopyTest, RefusesNullHandlesAndNamespacesThatTakeNothing) {
  const auto ns = boost::make_shared<TStoringNamespace>();
  const auto instance = boost::make_shared<TPathInstance>();
  EXPECT_EQ(WhyNotCopied(nullptr, ns), TQELStatusCode(TQELStatusCode::kInvalidArgument));
  EXPECT_EQ(WhyNotCopied(instance, boost::make_shared<TReadOnlyNamespace>()),
            TQELStatusCode(TQELStatusCode::kNotSupported));
  EXPECT_FALSE(WhyNotCopied(instance, nullptr) == TQELStatusCode(TQELStatusCode::kOk));
}

class TSilentLogger final : public ILogger {
 public:
  void Log(EQELLogSeverity /*severity*/, const std::string& /*text*/) override {}
};

TEST(RootObjectTest, HasNoLoggerUntilOneIsSetAndNoneAgainAfterwards) {
  EXPECT_EQ(TRootObject::GetCoreLogger(), nullptr);
  TSilentLogger logger;
  TRootObject::SetCoreLogger(&logger);
  EXPECT_EQ(TRootObject::GetCoreLogger(), &logger);
  TRootObject::SetCoreLogger(nullptr);
  EXPECT_EQ(TRootObject::GetCoreLogger(), nullptr);
}

}  // namespace
}  // namespace NZEPQEL20
