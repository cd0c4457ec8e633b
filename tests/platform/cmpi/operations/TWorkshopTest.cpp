// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cmpi/operations/TWorkshopTest.h"

#include <dlfcn.h>

#include <cstring>
#include <stdexcept>

namespace NZEPQEL20 {

TWorkshopTest::TWorkshopTest() {
  const std::string folder = WORKSHOP_DIR;
  auto classes = std::make_shared<TClassRepository>();
  EXPECT_TRUE(classes->Load(folder + "/workshop.mof").empty());
  TRegistrations registrations;
  registrations.Load(folder + "/workshop.registration");
  m_operations = std::make_unique<TCMPIOperations>(classes, registrations);
  m_operations->OpenLibraries();
  EXPECT_EQ(m_operations->GetProblems(), std::vector<std::string>());
  GetCleanups();
}

std::vector<TCIMInstanceData> TWorkshopTest::Enumerate(const std::string& className,
                                                       const std::string& nameSpace) {
  std::vector<TCIMInstanceData> found;
  m_operations->EnumerateInstances(nameSpace, className, [&](TCIMInstanceData&& data) {
    found.push_back(std::move(data));
    return true;
  });
  return found;
}

std::string TWorkshopTest::NoteOf(const TCIMInstanceData& instance) {
  const TCIMPropertyData* note = instance.Find("Note");
  return note == nullptr ? "(none)" : note->value.ToString(10);
}

std::string TWorkshopTest::GetNote(const TCIMReference& path) {
  return NoteOf(m_operations->GetInstance(path));
}

TCIMReference TWorkshopTest::PathTo(const std::string& id, const std::string& className) {
  return TCIMReference("root/cimv2", className, {{"Id", TCIMValue(id)}});
}

std::string TWorkshopTest::GetCleanups() {
  void* library = dlopen(WORKSHOP_DIR "/libworkshop.so", RTLD_NOW | RTLD_NOLOAD);
  void* symbol = library == nullptr ? nullptr : dlsym(library, "WorkshopCleanups");
  if (symbol == nullptr) throw std::runtime_error("the workshop is not loaded");
  const char* (*cleanups)() = nullptr;
  std::memcpy(&cleanups, &symbol, sizeof cleanups);
  std::string told = cleanups();
  dlclose(library);
  return told;
}

}  // namespace NZEPQEL20
