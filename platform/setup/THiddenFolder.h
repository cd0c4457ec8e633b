// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace NZEPQEL20::setup {

/// A folder beside the vendors' that nobody reads, because of the dot in front of its name. It is
/// made while the folder of all vendors is held, and whatever is in it when this ends goes.
class THiddenFolder {
 public:
  /// Errors: TQELException naming `providers` when nothing can be made in it.
  THiddenFolder(const std::string& providers, const std::string& name);
  ~THiddenFolder();
  THiddenFolder(const THiddenFolder&) = delete;
  THiddenFolder& operator=(const THiddenFolder&) = delete;

  const std::string& GetPath() const { return m_path; }

  /// Where something that may have to come back is put meanwhile.
  std::string GetAside() const;

  /// The vendor whose hidden folder has this file name; empty when it is none.
  static std::string FindVendor(const std::string& fileName);
  /// The vendor whose folder has been put aside under this file name; empty when none has.
  static std::string FindVendorAside(const std::string& fileName);

 private:
  std::string m_path;
};

}  // namespace NZEPQEL20::setup
