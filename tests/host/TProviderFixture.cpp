// SPDX-License-Identifier: Apache-2.0
#include "tests/host/TProviderFixture.h"

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kAcmeTests = 11;

constexpr char kBadClasses[] =
    "[Association] class BAD_AvailableDiagnosticService : CIM_AvailableDiagnosticService { };\n";

void CopyFile(const std::string& from, const std::string& folder) {
  fs::create_directories(folder);
  fs::copy_file(from, fs::path(folder) / fs::path(from).filename(),
                fs::copy_options::overwrite_existing);
}

}  // namespace

const char* const kLines = R"(# What the test provider serves.
TST_DiskDrive root/cimv2 DiagsTest diagstest instance
TST_DiagnosticTest root/cimv2 DiagsTest diagstest instance method
TST_AvailableDiagnosticService root/cimv2 DiagsTest diagstest instance
TST_ConcreteJob root/cimv2 DiagsTest diagstest instance method
TST_DiagnosticCompletionRecord root/cimv2 DiagsTest diagstest instance
TST_RecordAppliesToElement root/cimv2 DiagsTest diagstest instance
)";

const char* const kSections = R"(# What the test provider serves.
[TST_DiskDrive]
   provider: DiagsTest
   location: diagstest
   type: instance
   namespace: root/cimv2
[TST_DiagnosticTest]
   provider: DiagsTest
   location: diagstest
   type: instance method
   namespace: root/cimv2
[TST_AvailableDiagnosticService]
   provider: DiagsTest
   location: diagstest
   type: instance
   namespace: root/cimv2
   unload: never
[TST_ConcreteJob]
   provider: DiagsTest
   location: diagstest
   type: instance method
   namespace: root/cimv2
[TST_DiagnosticCompletionRecord]
   provider: DiagsTest
   location: diagstest
   type: instance
   namespace: root/cimv2
[TST_RecordAppliesToElement]
   provider: DiagsTest
   location: diagstest
   type: instance
   namespace: root/cimv2
)";

const char* const kModules = R"(// What the test provider serves.
instance of PG_ProviderModule
{
  Name = "DiagsTestModule";
  Vendor = "Acme";
  Version = "1.0.0";
  InterfaceType = "CMPI";
  InterfaceVersion = "2.0.0";
  Location = "diagstest";
};
instance of PG_Provider
{
  ProviderModuleName = "DiagsTestModule";
  Name = "DiagsTest";
};
instance of PG_ProviderCapabilities
{
  ProviderModuleName = "DiagsTestModule";
  ProviderName = "DiagsTest";
  CapabilityID = "1";
  ClassName = "TST_DiskDrive";
  Namespaces = {"root/cimv2"};
  ProviderType = {2};
  SupportedProperties = NULL;
  SupportedMethods = NULL;
};
instance of PG_ProviderCapabilities
{
  ProviderModuleName = "DiagsTestModule";
  ProviderName = "DiagsTest";
  CapabilityID = "2";
  ClassName = "TST_DiagnosticTest";
  Namespaces = {"root/cimv2"};
  ProviderType = {2, 5};
};
instance of PG_ProviderCapabilities
{
  ProviderModuleName = "DiagsTestModule";
  ProviderName = "DiagsTest";
  CapabilityID = "3";
  ClassName = "TST_AvailableDiagnosticService";
  Namespaces = {"root/cimv2"};
  ProviderType = {2};
};
instance of PG_ProviderCapabilities
{
  ProviderModuleName = "DiagsTestModule";
  ProviderName = "DiagsTest";
  CapabilityID = "4";
  ClassName = "TST_ConcreteJob";
  Namespaces = {"root/cimv2"};
  ProviderType = {2, 5};
};
instance of PG_ProviderCapabilities
{
  ProviderModuleName = "DiagsTestModule";
  ProviderName = "DiagsTest";
  CapabilityID = "5";
  ClassName = "TST_DiagnosticCompletionRecord";
  Namespaces = {"root/cimv2"};
  ProviderType = {2};
};
instance of PG_ProviderCapabilities
{
  ProviderModuleName = "DiagsTestModule";
  ProviderName = "DiagsTest";
  CapabilityID = "6";
  ClassName = "TST_RecordAppliesToElement";
  Namespaces = {"root/cimv2"};
  ProviderType = {2};
};
)";

TProviderFixture::TProviderFixture() {
  fs::create_directories(GetRoot() + "/providers");
  for (const char* part : {"/schema", "/qdx"}) {
    fs::copy(std::string(DIAGSTEST_ROOT) + part, GetRoot() + part, fs::copy_options::recursive);
  }
}

TFinished TProviderFixture::Do(const std::vector<std::string>& arguments) const {
  TProgram program = MakeCommand(arguments);
  program.environment["DIAGSRUNNER_ROOT"] = GetRoot();
  return RunToEnd(program);
}

std::string TProviderFixture::MakeAcme(const std::string& name, const std::string& text) const {
  const std::string provider = std::string(DIAGSTEST_ROOT) + "/providers/diagstest/";
  CopyFile(provider + "libdiagstest.so", GetVendor("acme"));
  CopyFile(provider + "diagstest.mof", GetVendor("acme"));
  Write("vendor/acme/" + name, text);
  return GetVendor("acme");
}

std::string TProviderFixture::MakeAcme() const {
  return MakeAcme("acme.registration", kLines);
}

std::string TProviderFixture::MakeBad(const std::string& word) const {
  const std::string library = std::string(DIAGS_BAD_DIR) + "/lib" + word + ".so";
  if (fs::exists(library)) CopyFile(library, GetVendor("bad"));
  Write("vendor/bad/bad.mof", kBadClasses);
  Write("vendor/bad/bad.registration",
        "BAD_AvailableDiagnosticService root/cimv2 Bad " + word + " instance\n");
  return GetVendor("bad");
}

void TProviderFixture::InstallAcme() const {
  const TFinished added = Do({"provider", "add", MakeAcme()});
  if (added.status != 0) throw std::runtime_error("acme: " + added.err);
}

bool TProviderFixture::ListsAcme() const {
  const auto document = nlohmann::json::parse(Do({"list", "--json"}).out, nullptr, false);
  return !document.is_discarded() && document.at("tests").size() == kAcmeTests;
}

bool TProviderFixture::RunsAcme() const {
  const TFinished finished = Do({"run", "TestPass,tst0,Test device"});
  return finished.status == 0 && finished.out.find("      Pass (") != std::string::npos;
}

}  // namespace host
