// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sstream>
#include <string>

#include "platform/cmpi/TRegistrations.h"
#include "platform/cmpi/VendorFiles.h"
#include "tests/platform/cmpi/LibraryBytes.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {

/// A vendor's folder of a test's own, and what its registrations say.
class TVendor : public TTemporaryFolder {
 public:
  TRegistrations Read() const {
    TRegistrations registrations;
    registrations.LoadFolder(GetPath(), ListVendorFiles(GetPath()).files);
    return registrations;
  }
};

/// The bytes of a library that the tests of this folder are built with.
inline std::string ReadLibrary(const std::string& name) {
  return ReadBytes(std::string(DIAGS_VENDOR_DIR) + "/" + name);
}

/// Reads `text` as a vendor's only registration file.
inline TRegistrations ReadText(const std::string& text, const std::string& name) {
  const TVendor vendor;
  vendor.Write(name, text);
  return vendor.Read();
}

/// A faulty text, and a part of what is said about it.
struct TBadText {
  const char* name;
  std::string text;
  const char* reason;
};
inline void PrintTo(const TBadText& row, std::ostream* out) {
  *out << row.name;
}

/// An entry in one line: class, namespace, provider, library's name, first letters of the types.
inline std::string Show(const TRegistration& entry) {
  std::ostringstream out;
  out << entry.className << ' ' << entry.nameSpace << ' ' << entry.providerName << ' '
      << entry.library.substr(entry.library.rfind('/') + 1) << ' ';
  out << (entry.isInstance ? "I" : "") << (entry.isAssociation ? "A" : "")
      << (entry.isMethod ? "M" : "") << (entry.isProperty ? "P" : "")
      << (entry.isIndication ? "N" : "");
  return out.str();
}

inline std::string ShowAll(const TRegistrations& registrations) {
  std::string text;
  for (const TRegistration& entry : registrations.GetEntries()) {
    text += (text.empty() ? "" : ", ") + Show(entry);
  }
  return text;
}

/// All findings, one line each; a warning starts with "warning: ".
inline std::string ShowFindings(const TRegistrations& registrations) {
  std::string text;
  for (const TRegistrationProblem& finding : registrations.GetFindings()) {
    text += (finding.isWarning ? "warning: " : "") + finding.ToString() + '\n';
  }
  return text;
}

}  // namespace NZEPQEL20
