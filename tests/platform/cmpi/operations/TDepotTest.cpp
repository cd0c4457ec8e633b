// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cmpi/operations/TDepotTest.h"

#include <algorithm>
#include <filesystem>

#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20 {

namespace {

std::string NameOf(const TCIMReference& path) {
  const std::string place = path.GetNamespaceName();
  std::string text = (place == "root/cimv2" ? "" : place + ':') + path.GetClassName() + ':';
  char separator = '\0';
  for (const auto& [name, value] : path.GetKeys()) {
    if (separator != '\0') text += separator;
    separator = '-';
    text += value.GetType() == ECIMType::kReference
                ? static_cast<TCIMReference>(value).FindKey("Id")->ToString(10)
                : value.ToString(10);
  }
  return text;
}

}  // namespace

TDepotTest::TDepotTest() {
  std::filesystem::create_symlink(WORKSHOP_DIR "/libdepot.so", m_folder.GetPath("libdepot.so"));
}

TDepotTest::~TDepotTest() {
  // Before the folder that its library is in.
  m_operations.reset();
}

void TDepotTest::Open(const std::vector<std::string>& lines) {
  std::string content;
  for (const std::string& line : lines) {
    // The library's name belongs behind the third word.
    std::size_t at = 0;
    for (int word = 0; word < 3; ++word) at = line.find(' ', at) + 1;
    content += line.substr(0, at) + "depot " + line.substr(at) + '\n';
  }
  OpenFile("depot.registration", content);
}

void TDepotTest::OpenFile(const std::string& name, const std::string& content) {
  const std::string file = m_folder.Write(name, content);
  auto classes = std::make_shared<TClassRepository>();
  ASSERT_TRUE(classes->Load(WORKSHOP_DIR "/depot.mof").empty());
  TRegistrations registrations;
  registrations.Load(file);
  m_operations = std::make_unique<TCMPIOperations>(classes, registrations);
  m_operations->OpenLibraries();
  ASSERT_EQ(m_operations->GetProblems(), std::vector<std::string>());
}

void TDepotTest::OpenWith(const std::string& line) {
  Open({"D_Shelf root/cimv2 Depot_engm instance method", "D_Box root/cimv2 Depot_eng instance",
        "D_Crate root/cimv2 Depot_eng instance", line});
}

TCIMReference TDepotTest::PathTo(const std::string& className, const std::string& id,
                                 const std::string& nameSpace) {
  return TCIMReference(nameSpace, className, {{"Id", TCIMValue(id)}});
}

std::string TDepotTest::Names(const std::vector<TCIMReference>& paths) {
  std::vector<std::string> names;
  for (const TCIMReference& path : paths) names.push_back(NameOf(path));
  std::sort(names.begin(), names.end());
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
  return text;
}

std::string TDepotTest::Enumerate(const std::string& className, const std::string& ns) {
  std::vector<TCIMReference> found;
  m_operations->EnumerateInstances(ns, className, [&](TCIMInstanceData&& data) {
    found.push_back(data.path);
    return true;
  });
  return Names(found);
}

std::string TDepotTest::EnumerateNames(const std::string& className, const std::string& ns) {
  return Names(m_operations->EnumerateInstanceNames(ns, className));
}

std::string TDepotTest::Associators(const TCIMReference& path, const TFilter& filter) {
  std::vector<TCIMReference> found;
  m_operations->Associators(path, filter, [&](TCIMInstanceData&& data) {
    found.push_back(data.path);
    return true;
  });
  return Names(found);
}

std::string TDepotTest::AssociatorNames(const TCIMReference& path, const TFilter& filter) {
  return Names(m_operations->AssociatorNames(path, filter));
}

std::string TDepotTest::References(const TCIMReference& path, const TFilter& filter) {
  std::vector<TCIMReference> found;
  m_operations->References(path, filter, [&](TCIMInstanceData&& data) {
    found.push_back(data.path);
    return true;
  });
  return Names(found);
}

std::string TDepotTest::ReferenceNames(const TCIMReference& path, const TFilter& filter) {
  return Names(m_operations->ReferenceNames(path, filter));
}

std::string TDepotTest::Ask(TKeyMap parameters) {
  const TCIMValue answer = m_operations->InvokeMethod(PathTo("D_Shelf", "S1"), "Ask", parameters);
  return answer.ToString(10);
}

}  // namespace NZEPQEL20
