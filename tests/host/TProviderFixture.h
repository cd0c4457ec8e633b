// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "tests/host/THostFixture.h"

namespace host {

/// Runs the real command over an installation root of the test's own, in which no provider is
/// installed, and makes vendors' folders to be installed there.
class TProviderFixture : public THostFixture {
 protected:
  TProviderFixture();

  /// The command over GetRoot(); `arguments` without the program's name.
  TFinished Do(const std::vector<std::string>& arguments) const;

  /// A vendor's folder with the library and the classes of the test provider, whose registration
  /// is the file `name` with `text`. Answers with its path, which ends in "/acme".
  std::string MakeAcme(const std::string& name, const std::string& text) const;
  /// The same with the registration that the test provider comes with.
  std::string MakeAcme() const;
  /// A vendor's folder "bad" whose only library is `lib<word>.so` of those that misbehave, or none
  /// when there is no such; what discovery asks for first is registered for it.
  std::string MakeBad(const std::string& word) const;

  /// Installs the test provider as "acme".
  void InstallAcme() const;

  /// Whether the command lists the tests of the test provider, all of them.
  bool ListsAcme() const;
  /// Whether one of them runs and passes.
  bool RunsAcme() const;

  std::string GetRoot() const { return GetFolder() + "/root"; }
  /// The folder that the fixture makes as `name`, before it is installed.
  std::string GetVendor(const std::string& name) const { return GetFolder() + "/vendor/" + name; }
  /// Where `name` is installed.
  std::string GetInstalled(const std::string& name) const {
    return GetRoot() + "/providers/" + name;
  }
};

/// The same registration of the test provider in the three forms that there are.
extern const char* const kLines;
extern const char* const kSections;
extern const char* const kModules;

}  // namespace host
