// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/setup/store/TStoreTest.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace NZEPQEL20 {

void PrintTo(const TProviderFinding& finding, std::ostream* out) {
  *out << setup::Show(finding);
}

}  // namespace NZEPQEL20

namespace NZEPQEL20::setup {

namespace fs = std::filesystem;

TStoreTest::TStoreTest()
    : m_store((m_root.Write("schema/base.mof",
                            "class A_Base { [Key] string InstanceID; };\n"
                            "class A_Keyless { string Name; };\n"),
               m_root.GetPath()),
              "root/x") {}

std::string TStoreTest::Take(const std::string& library, const std::string& place) const {
  const fs::path target = m_vendor.GetPath(place);
  fs::create_directories(target.parent_path());
  fs::copy_file(library, target);
  return target.string();
}

std::vector<TProviderFinding> TStoreTest::Check() const {
  return m_store.Check(m_store.Read(m_vendor.GetPath()));
}

void TStoreTest::Add(const std::string& name, bool replace) const {
  m_store.Add(m_store.Read(m_vendor.GetPath()), name, replace);
}

std::string TStoreTest::GetInstalled() const {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(m_root.GetPath("providers"), error)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  std::string text;
  for (const std::string& name : names) text += ' ' + name;
  return text;
}

std::string TStoreTest::Read(const std::string& file) const {
  std::ifstream in(m_root.GetPath("providers/" + file), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string Show(const TProviderFinding& finding) {
  return (finding.isWarning ? "warning " : "error ") + finding.rule + ": " + finding.text + "; " +
         finding.remedy;
}

std::string ShowAll(const std::vector<TProviderFinding>& findings) {
  std::string text;
  for (const TProviderFinding& finding : findings) text += Show(finding) + '\n';
  return text;
}

}  // namespace NZEPQEL20::setup
