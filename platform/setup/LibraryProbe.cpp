// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/LibraryProbe.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "platform/cmpi/LibraryLoading.h"
#include "platform/cmpi/OneLine.h"
#include "platform/cmpi/TCMPIOperations.h"
#include "platform/cmpi/TElfFile.h"
#include "platform/cmpi/TProviders.h"
#include "platform/contract/TRootObject.h"
#include "platform/setup/ChildRun.h"
#include "platform/setup/InstanceProbe.h"
#include "platform/setup/VendorSchema.h"

namespace NZEPQEL20::setup {
namespace {

using cmpi::TProviders;

constexpr CMPIVersion kOldestTable = 100;
constexpr char kLoadingRule[] = "R19";
constexpr char kCleanupRule[] = "R9";
constexpr char kSeparator = '\x1F';

using TMake = CMPIVersion (*)(cmpi::TProvider&, cmpi::TBroker&);

/// A type that registrations name, and the functions that belong to it.
struct TKind {
  const char* word;
  const char* kind;
  bool TRegistration::*mark;
  TMake make;  ///< Null for a type that is not driven.
};

constexpr TKind kKinds[] = {
    {"instance", "Instance", &TRegistration::isInstance,
     [](auto& provider, auto& broker) { return provider.GetInstanceMI(broker)->ft->ftVersion; }},
    {"association", "Association", &TRegistration::isAssociation,
     [](auto& provider, auto& broker) { return provider.GetAssociationMI(broker)->ft->ftVersion; }},
    {"method", "Method", &TRegistration::isMethod,
     [](auto& provider, auto& broker) { return provider.GetMethodMI(broker)->ft->ftVersion; }},
    {"property", "Property", &TRegistration::isProperty,
     [](auto& provider, auto& broker) { return provider.GetPropertyMI(broker)->ft->ftVersion; }},
    {"indication", "Indication", &TRegistration::isIndication, nullptr},
};

/// The provider whose functions of the type `symbol` makes; empty when it makes others.
std::string GetMaker(const std::string& symbol, const TKind& kind) {
  const std::string ending = std::string("_Create_") + kind.kind + "MI";
  if (symbol.size() <= ending.size() || symbol.compare(0, 2, "_Z") == 0 ||
      symbol.compare(symbol.size() - ending.size(), ending.size(), ending) != 0) {
    return {};
  }
  return symbol.substr(0, symbol.size() - ending.size());
}

/// A failure of the run time without the rule behind it, which a finding has by itself.
std::string WithoutRule(const std::string& text) {
  const std::size_t place = text.rfind("; see rule ");
  return place == std::string::npos ? text : text.substr(0, place);
}

std::string Pack(const TProviderFinding& finding) {
  // A vendor's words may hold what separates fields and records.
  return finding.rule + kSeparator + (finding.isWarning ? "1" : "0") + kSeparator +
         ToOneLine(finding.text) + kSeparator + ToOneLine(finding.remedy);
}

/// A record that says what the child does from now on, and the rule about it. One that it has come
/// to, and did not come back from, is the one at fault.
std::string PackStep(const std::string& rule, const std::string& what) {
  return kStepMark + rule + kSeparator + ToOneLine(what);
}

struct TStep {
  std::string rule;
  std::string what;
};

bool Unpack(const std::string& record, TStep& step) {
  const std::size_t place = record.find(kSeparator);
  if (place == std::string::npos || record.front() != kStepMark ||
      record.find(kSeparator, place + 1) != std::string::npos) {
    return false;
  }
  step = {record.substr(1, place - 1), record.substr(place + 1)};
  return true;
}

/// What mends a step that did not come back.
std::string FindRemedy(const std::string& rule) {
  if (rule == kCleanupRule) return "end what it waits for, and return";
  if (rule == kEnumerationRule) return "answer at once; what takes time belongs into the test";
  return "do what takes time in the functions, not before";
}

/// A record of the child as a finding; false for one that is none.
bool Unpack(const std::string& record, TProviderFinding& finding) {
  std::vector<std::string> fields;
  std::istringstream in(record);
  for (std::string field; std::getline(in, field, kSeparator);) fields.push_back(field);
  if (fields.size() != 4) return false;
  finding = {fields[1] == "1", fields[0], fields[2], fields[3]};
  return true;
}

/// Making and cleaning up, besides what is between.
constexpr std::size_t kStepsOfMaking = 2;

/// Looks at the libraries one by one.
class TProbe {
 public:
  TProbe(const std::shared_ptr<const TClassRepository>& classes,
         const TRegistrations& registrations, const std::string& nameSpace,
         std::chrono::milliseconds limit)
      : m_classes(classes),
        m_registrations(registrations),
        m_nameSpace(nameSpace),
        m_limit(limit) {}

  std::vector<TProviderFinding> Run() {
    for (const TRegistration& entry : m_registrations.GetEntries()) {
      m_entries[entry.library].push_back(&entry);
    }
    for (const auto& [library, entries] : m_entries) ProbeLibrary(library, entries);
    return std::move(m_findings);
  }

 private:
  using TEntries = std::vector<const TRegistration*>;

  void Fail(const std::string& rule, const std::string& text, const std::string& remedy) {
    m_findings.push_back({false, rule, text, remedy});
  }

  void ProbeLibrary(const std::string& library, const TEntries& entries) {
    if (!entries.front()->hasLibrary) {
      Fail("R13", entries.front()->source + ": the library " + library + " is not there",
           "put it into the folder, or mend the registration");
      return;
    }
    const TElfFile elf(library);
    if (!elf.GetFault().empty()) {
      Fail("R14", library + ": " + elf.GetFault(), "ship a library for this machine");
      return;
    }
    if (!Load(library, entries.front()->folder)) return;
    std::set<std::string> names;
    for (const TRegistration* entry : entries) names.insert(entry->providerName);
    // Who waited once would wait again and again.
    for (const std::string& name : names) {
      if (!ProbeProvider(library, name, entries)) break;
    }
    // Under a wrong name the right one is registered for nothing, as an error has said.
    const bool isMisnamed = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
      return !HasOtherEntry(library, name);
    });
    if (!isMisnamed) CheckUnregistered(library, entries, elf);
  }

  /// False when there is no use in going on with the library.
  bool Load(const std::string& library, const std::string& folder) {
    const std::size_t before = m_findings.size();
    Follow(library + ": loading it", [&](const TTell& tell) {
      const TLoadedLibrary loaded = LoadLibrary(library, folder);
      if (loaded.handle != nullptr) return;
      tell(Pack(
          {false, loaded.rule, library + " cannot be loaded: " + loaded.reason, loaded.remedy}));
    });
    return m_findings.size() == before;
  }

  /// Does `work` in a child; what it tells, or how it ended instead, are findings. False when it
  /// did not come back.
  bool Follow(const std::string& what, const std::function<void(const TTell&)>& work,
              std::size_t steps = 1) {
    const auto quiet = [&work](const TTell& tell) {
      TRootObject::SetCoreLogger(nullptr);
      work(tell);
    };
    const TChildOutcome outcome = RunInChild(quiet, m_limit, steps);
    TStep step = {kLoadingRule, what};
    bool isGarbled = false;
    for (const std::string& record : outcome.records) {
      TProviderFinding finding;
      if (Unpack(record, finding)) {
        m_findings.push_back(std::move(finding));
      } else {
        isGarbled = !Unpack(record, step) || isGarbled;
      }
    }
    if (isGarbled) {
      Fail("R19", what + " wrote into the check's own pipe, and may have hidden a failure",
           "write to no file that the library has not opened itself");
    }
    if (outcome.ending.empty()) return true;
    Fail(outcome.isLate ? step.rule : "R7", step.what + " " + outcome.ending,
         outcome.isLate ? FindRemedy(step.rule) : "mend the library; it would end whoever uses it");
    return !outcome.isLate;
  }

  /// False when there is no use in going on with the library.
  bool ProbeProvider(const std::string& library, const std::string& name, const TEntries& entries) {
    const std::size_t before = CountErrors();
    for (const TKind& kind : kKinds) {
      const bool isRegistered =
          std::any_of(entries.begin(), entries.end(), [&](const TRegistration* entry) {
            return entry->providerName == name && entry->*kind.mark;
          });
      if (!isRegistered || kind.make == nullptr) continue;
      const std::string what = library + ": making the " + kind.word + " functions of provider ";
      const auto make = [&](const TTell& tell) { Make(library, name, kind, tell); };
      if (!Follow(what + name, make, kStepsOfMaking)) return false;
    }
    // Functions that cannot be made cannot be called.
    return CountErrors() > before || ProbeEnumerations(library, name, entries);
  }

  std::size_t CountErrors() const {
    return static_cast<std::size_t>(
        std::count_if(m_findings.begin(), m_findings.end(),
                      [](const TProviderFinding& finding) { return !finding.isWarning; }));
  }

  /// False when there is no use in going on with the library.
  bool ProbeEnumerations(const std::string& library, const std::string& name,
                         const TEntries& entries) {
    const auto count = std::count_if(entries.begin(), entries.end(), [&](const auto* entry) {
      return entry->providerName == name && entry->isInstance;
    });
    // A type without its entry point has been told.
    if (count == 0 || !HasInstanceFactory(library, name)) return true;
    const auto enumerate = [&](const TTell& tell) { Enumerate(library, name, tell); };
    return Follow(library + ": enumerating the instances of provider " + name, enumerate,
                  static_cast<std::size_t>(count) + kStepsOfMaking);
  }

  static bool HasInstanceFactory(const std::string& library, const std::string& name) {
    const std::vector<std::string> symbols = FindFactories(TElfFile(library).GetSymbols());
    return std::any_of(symbols.begin(), symbols.end(), [&name](const std::string& symbol) {
      return symbol == name + "_Create_InstanceMI" || symbol == "_Generic_Create_InstanceMI";
    });
  }

  /// In the child: has the provider enumerate the instances of each of its classes.
  void Enumerate(const std::string& library, const std::string& name, const TTell& tell) const {
    const TCMPIOperations operations(m_classes, m_registrations);
    const TProviders& providers = operations.GetHosted();
    for (const TProviders::TService& service : providers.GetServices()) {
      const TRegistration& entry = *service.registration;
      if (entry.library != library || entry.providerName != name || !entry.isInstance) continue;
      const std::string& nameSpace = entry.nameSpace == "*" ? m_nameSpace : entry.nameSpace;
      tell(PackStep(kEnumerationRule, library + ": " + DescribeEnumeration(entry, nameSpace)));
      const auto finding = ProbeInstances(providers, service, nameSpace);
      if (finding) tell(Pack(*finding));
    }
    TellCleanup(library, name, tell);
  }

  /// What the provider is ended in when the operations that host it go.
  static void TellCleanup(const std::string& library, const std::string& name, const TTell& tell) {
    tell(PackStep(kCleanupRule, library + ": cleanup of provider " + name));
  }

  /// In the child: has the provider make its functions, and end them.
  void Make(const std::string& library, const std::string& name, const TKind& kind,
            const TTell& tell) const {
    const std::string functions = library + ": the " + kind.word + " functions of provider " + name;
    // A factory may come back with upcalls; they are to meet the provider that is being made.
    const TCMPIOperations operations(m_classes, m_registrations);
    const TProviders& providers = operations.GetHosted();
    for (const TProviders::TService& service : providers.GetServices()) {
      const TRegistration& entry = *service.registration;
      if (entry.library != library || entry.providerName != name) continue;
      try {
        const CMPIVersion version = kind.make(*service.provider, providers.GetBroker());
        TellCleanup(library, name, tell);
        if (version >= kOldestTable) return;
        tell(Pack({true, "R6", functions + " have the table version " + std::to_string(version),
                   "build it with a header that sets ftVersion to 100, 200 or 210"}));
      } catch (const TQELException& failure) {
        const bool isMissing = failure.GetStatusCode() == TQELStatusCode::kNotSupported;
        tell(Pack({isMissing && HasOtherEntry(library, name), "R4", WithoutRule(failure.what()),
                   isMissing ? "export it, or mend the provider's name or types in the registration"
                             : "mend the factory, or what it needs"}));
      }
      return;
    }
  }

  /// Whether the provider has functions of any type: what it has can be used.
  static bool HasOtherEntry(const std::string& library, const std::string& name) {
    const std::vector<std::string> symbols = FindFactories(TElfFile(library).GetSymbols());
    return std::any_of(symbols.begin(), symbols.end(), [&name](const std::string& symbol) {
      return symbol.rfind(name + "_Create_", 0) == 0 || symbol.rfind("_Generic_Create_", 0) == 0;
    });
  }

  /// Entry points that nobody will ever call.
  void CheckUnregistered(const std::string& library, const TEntries& entries, const TElfFile& elf) {
    for (const std::string& symbol : FindFactories(elf.GetSymbols())) {
      for (const TKind& kind : kKinds) {
        const std::string name = GetMaker(symbol, kind);
        if (!name.empty() && !IsUsed(name, kind, entries)) TellUnused(library, symbol, name, kind);
      }
    }
  }

  static bool IsUsed(const std::string& name, const TKind& kind, const TEntries& entries) {
    return name == "_Generic" ||
           std::any_of(entries.begin(), entries.end(), [&](const TRegistration* entry) {
             return entry->providerName == name && entry->*kind.mark;
           });
  }

  void TellUnused(const std::string& library, const std::string& symbol, const std::string& name,
                  const TKind& kind) {
    m_findings.push_back(
        {true, "R18",
         library + " has " + symbol + ", and no class is registered for " + kind.word +
             " of provider " + name,
         std::string("add the type ") + kind.word + " to the registration if it is wanted"});
  }

  const std::shared_ptr<const TClassRepository>& m_classes;
  const TRegistrations& m_registrations;
  const std::string& m_nameSpace;
  const std::chrono::milliseconds m_limit;
  std::map<std::string, TEntries> m_entries;
  std::vector<TProviderFinding> m_findings;
};

}  // namespace

std::vector<TProviderFinding> ProbeLibraries(const std::shared_ptr<const TClassRepository>& classes,
                                             const TRegistrations& registrations,
                                             const std::string& nameSpace,
                                             std::chrono::milliseconds limit) {
  return TProbe(classes, registrations, nameSpace, limit).Run();
}

std::vector<std::string> FindUsed(const std::vector<std::string>& libraries,
                                  const TRegistrations& registrations) {
  std::vector<std::string> open;
  for (const TRegistration& entry : registrations.GetEntries()) {
    if (entry.hasLibrary) open.push_back(entry.library);
  }
  std::set<std::string> used;  // Canonical: a library and the links to it are one.
  while (!open.empty()) {
    const std::string library = MakeCanonical(open.back());
    open.pop_back();
    if (!used.insert(library).second) continue;
    const TElfFile elf(library, TElfFile::EContent::kNeeds);
    for (const std::string& name : elf.GetNeeded()) {
      for (const std::string& other : libraries) {
        if (other.compare(other.rfind('/') + 1, std::string::npos, name) == 0) {
          open.push_back(other);
        }
      }
    }
  }
  std::vector<std::string> found;
  std::copy_if(libraries.begin(), libraries.end(), std::back_inserter(found),
               [&](const std::string& library) { return used.count(MakeCanonical(library)) > 0; });
  return found;
}

}  // namespace NZEPQEL20::setup
