// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "platform/setup/TProviderStore.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {

void PrintTo(const TProviderFinding& finding, std::ostream* out);

}  // namespace NZEPQEL20

namespace NZEPQEL20::setup {

/// A vendor's folder; what is written to it can be read by everybody, as it should.
class TWrittenFolder : public TTemporaryFolder {
 public:
  std::string Write(const std::string& name, const std::string& text, mode_t mode = 0644) const {
    return TTemporaryFolder::Write(name, text, mode);
  }
};

/// An installation root of a test's own, and a vendor's folder outside of it.
class TStoreTest : public testing::Test {
 protected:
  TStoreTest();

  /// Copies a library of the test tree into the vendor's folder.
  std::string Take(const std::string& library, const std::string& place) const;
  /// What the check of the vendor's folder says.
  std::vector<TProviderFinding> Check() const;
  /// Adds the vendor's folder as `name`.
  void Add(const std::string& name, bool replace = false) const;
  /// What `action` throws; empty when it does not.
  template <class TAction>
  static std::string Failure(const TAction& action);
  /// The names in the root's providers folder, hidden ones too, each with a blank in front.
  std::string GetInstalled() const;
  std::string Read(const std::string& file) const;

  TTemporaryFolder m_root;
  TWrittenFolder m_vendor;
  TProviderStore m_store;
};

/// A finding in one line: "error R3: text; remedy".
std::string Show(const TProviderFinding& finding);
std::string ShowAll(const std::vector<TProviderFinding>& findings);

template <class TAction>
std::string TStoreTest::Failure(const TAction& action) {
  try {
    action();
  } catch (const std::exception& failure) {
    return failure.what();
  }
  return {};
}

}  // namespace NZEPQEL20::setup
