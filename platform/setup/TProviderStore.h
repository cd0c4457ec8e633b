// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/contract/Export.h"

namespace NZEPQEL20 {

/// One thing that is wrong with a vendor's folder, in one line.
struct TProviderFinding {
  bool isWarning = false;  ///< A warning does not keep the folder from being added.
  std::string rule;        ///< Number in the rules for provider authors, such as "R5".
  std::string text;        ///< What is wrong: the file (and line), and the reason.
  std::string remedy;      ///< What to do about it.
};

/// One class of a registration in one namespace, whatever the form it was written in.
struct TProviderService {
  std::string className;
  std::string nameSpace;  ///< "*" stands for any.
  std::string providerName;
  std::string library;             ///< File; empty when the folder has none of that name.
  std::vector<std::string> types;  ///< "instance", "association", "method", "property",
                                   ///< "indication", in this order.
};

/// What a vendor's folder holds.
struct TProviderPackage {
  std::string name;    ///< Name below `providers/`; before it is installed the
                       ///< folder's own, or that of the registration without its ending.
  std::string folder;  ///< Absolute.
  std::vector<std::string> libraries;
  std::vector<std::string> schema;
  std::vector<std::string> registrations;
  std::vector<TProviderService> services;
  std::vector<std::string> others;  ///< What goes with it: included MOF, configuration, texts.
  bool isWhole = false;             ///< Everything in the folder, not what one file names.
  /// What the files were before they were looked into, by name: what was checked is what is added.
  std::map<std::string, std::string> states;
};

/// The vendors' folders below an installation root: reads, checks, installs and removes them.
/// Threads: safe from several as far as they touch different vendors.
class DIAGSPLATFORM_EXPORT TProviderStore {
 public:
  /// `nameSpace` is the one in which discovery will look for tests.
  /// Errors: TQELException when the root is unusable.
  explicit TProviderStore(const std::string& root, std::string nameSpace = "root/cimv2");

  /// The installed folders, by name. Removes what an installation that was cut off has left.
  std::vector<TProviderPackage> List() const;

  /// A folder, or the registration file in one: then only what that file names, and the MOF files
  /// beside it, count.
  /// Errors: TQELException naming the path: it cannot be read, or holds no registration.
  TProviderPackage Read(const std::string& path) const;

  /// Everything wrong with it, errors first. Libraries are loaded in a child process, so that one
  /// that crashes or hangs is a finding.
  std::vector<TProviderFinding> Check(const TProviderPackage& package) const;

  /// Copies the package below the root as `name`, whole or not at all; `replace` in the place of
  /// one of that name. It comes from Read(), and its files are still what they were then.
  /// Errors: TQELException naming the file and the reason.
  void Add(const TProviderPackage& package, const std::string& name, bool replace) const;

  /// The bundled provider goes only with `force`.
  /// Errors: TQELException: nothing of that name (naming those that are there), it cannot be
  /// removed; kInvalidArgument: it is the bundled one.
  void Remove(const std::string& name, bool force = false) const;

 private:
  std::string m_root;
  std::string m_nameSpace;
};

}  // namespace NZEPQEL20
