// SPDX-License-Identifier: Apache-2.0
// The form of OpenPegasus: instances of PG_ProviderModule, PG_Provider, PG_ProviderCapabilities.
#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

#include "platform/cmpi/TRegistrationTaker.h"
#include "platform/contract/TQELException.h"
#include "platform/schema/TClassRepository.h"
#include "platform/schema/TFolderNames.h"
#include "platform/schema/TMofSource.h"

namespace NZEPQEL20 {

namespace {

constexpr char kMofRule[] = "R12";

/// What registrations of any version have; only a few of these count here.
constexpr const char* kKnownProperties[] = {"Name",
                                            "Vendor",
                                            "Version",
                                            "InterfaceType",
                                            "InterfaceVersion",
                                            "Location",
                                            "UserContext",
                                            "DesignatedUserContext",
                                            "ModuleGroupName",
                                            "Bitness",
                                            "ShareAS",
                                            "OperationalStatus",
                                            "OtherStatusDescription",
                                            "StatusDescriptions",
                                            "Status",
                                            "HealthState",
                                            "InstallDate",
                                            "EnabledState",
                                            "ProviderModuleName",
                                            "ProviderName",
                                            "CapabilityID",
                                            "ClassName",
                                            "Namespaces",
                                            "ProviderType",
                                            "SupportedProperties",
                                            "SupportedMethods",
                                            "IndicationTypes",
                                            "SequenceIdentifierLifetime",
                                            "Caption",
                                            "Description",
                                            "ElementName",
                                            "InstanceID"};

bool IsKnownProperty(const TCIMPropertyData& property) {
  return std::any_of(std::begin(kKnownProperties), std::end(kKnownProperties),
                     [&](const char* known) { return IsSameName(property.name, known); });
}

std::string GetText(const TCIMInstanceData& instance, const char* name) {
  const TCIMPropertyData* property = instance.Find(name);
  return property == nullptr ? std::string() : Trim(property->value.ToString(10));
}

/// The elements of an array property; a scalar counts as one.
std::vector<std::string> GetTexts(const TCIMInstanceData& instance, const char* name) {
  std::vector<std::string> texts;
  const TCIMPropertyData* property = instance.Find(name);
  if (property == nullptr || property->value.IsNull()) return texts;
  if (!property->value.IsArray()) return {property->value.ToString(10)};
  for (const TCIMValue& element : static_cast<std::vector<TCIMValue>>(property->value)) {
    if (!element.IsNull()) texts.push_back(Trim(element.ToString(10)));
  }
  return texts;
}

constexpr char kGaps[] = " \t\r\n\f";

/// Moves `place` behind `word` and the blanks before it; false when something else is there.
bool Skip(const std::string& text, const std::string& word, std::size_t& place) {
  const std::size_t start = text.find_first_not_of(kGaps, place);
  if (start == std::string::npos || !IsSameName(text.substr(start, word.size()), word))
    return false;
  place = start + word.size();
  return true;
}

/// The text of a file; empty when it cannot be read, which whoever compiles it tells.
std::string ReadText(const std::string& file) {
  try {
    return TMofSource::ReadFile(file).text;
  } catch (const TQELException&) {
    return {};
  }
}

/// The instances of one vendor's MOF files, put together.
class TPegasusReader {
 public:
  TPegasusReader(std::string file, TRegistrationTaker& taker)
      : m_file(std::move(file)), m_taker(taker) {}

  void Read(const std::vector<TCIMInstanceData>& instances) {
    for (const TCIMInstanceData& instance : instances) {
      const std::string& className = instance.path.GetClassName();
      WarnOfUnknown(instance);
      if (IsSameName(className, "PG_ProviderModule")) {
        m_modules[GetText(instance, "Name")] = &instance;
      } else if (IsSameName(className, "PG_Provider")) {
        m_providers[{GetText(instance, "ProviderModuleName"), GetText(instance, "Name")}] = false;
      } else if (IsSameName(className, "PG_ProviderCapabilities")) {
        m_capabilities.push_back(&instance);
      }
    }
    for (const TCIMInstanceData* capabilities : m_capabilities) Take(*capabilities);
    TellUnhosted();
    for (const auto& [provider, isUsed] : m_providers) {
      if (isUsed) continue;
      m_taker.Warn(m_file + ": PG_Provider \"" + provider.second + "\" serves no class",
                   "add a PG_ProviderCapabilities instance for it", kMofRule);
    }
  }

 private:
  void WarnOfUnknown(const TCIMInstanceData& instance) {
    const std::string& className = instance.path.GetClassName();
    if (!IsSameName(className.substr(0, 11), "PG_Provider")) return;
    for (const TCIMPropertyData& property : instance.properties) {
      if (IsKnownProperty(property)) continue;
      m_taker.Warn(
          m_file + ": " + className + " has no property " + property.name + " that is heeded here",
          "mend its name, if it is meant to be another", kMofRule);
    }
  }

  /// Beside classes that are hosted, those of other interfaces are meant for another server.
  void TellUnhosted() const {
    for (const std::string& text : m_unhosted) {
      if (m_hasHosted) {
        m_taker.Warn(text, "ship a CMPI provider for it, too", kMofRule);
      } else {
        m_taker.Fail(text, "ship a CMPI provider", kMofRule);
      }
    }
  }

  void Take(const TCIMInstanceData& capabilities) {
    TRegistration entry;
    entry.className = GetText(capabilities, "ClassName");
    entry.providerName = GetText(capabilities, "ProviderName");
    const std::string module = GetText(capabilities, "ProviderModuleName");
    entry.source = m_file + ": PG_ProviderCapabilities \"" + GetText(capabilities, "CapabilityID") +
                   "\" of class " + entry.className;
    const auto provider = m_providers.find({module, entry.providerName});
    if (provider != m_providers.end()) provider->second = true;
    if (!HasNames(entry) || !HasModule(entry, module) || !MarkTypes(entry, capabilities)) return;
    AddAll(entry, capabilities, GetText(*m_modules[module], "Location"));
  }

  void Fail(const TRegistration& entry, const std::string& reason, const std::string& remedy) {
    m_taker.Fail(entry.source + ": " + reason, remedy, kMofRule);
  }

  bool HasNames(const TRegistration& entry) {
    if (!IsPlainName(entry.className)) {
      Fail(entry, "\"" + entry.className + "\" is not a class name", "set ClassName");
      return false;
    }
    if (IsProviderName(entry.providerName)) return true;
    Fail(entry, "\"" + entry.providerName + "\" is not a provider name", "set ProviderName");
    return false;
  }

  bool HasModule(const TRegistration& entry, const std::string& name) {
    if (m_providers.find({name, entry.providerName}) == m_providers.end()) {
      Fail(entry,
           "there is no PG_Provider \"" + entry.providerName + "\" of module \"" + name + "\"",
           "add the instance, or mend ProviderModuleName and ProviderName");
      return false;
    }
    const auto module = m_modules.find(name);
    if (module == m_modules.end()) {
      Fail(entry, "there is no PG_ProviderModule \"" + name + "\"",
           "add the instance, or mend ProviderModuleName");
      return false;
    }
    const std::string interfaceType = GetText(*module->second, "InterfaceType");
    if (!IsSameName(interfaceType, "CMPI")) {
      m_unhosted.push_back(entry.source + ": module \"" + name + "\" has the interface \"" +
                           interfaceType + "\", and only CMPI is hosted");
      return false;
    }
    if (!GetText(*module->second, "Location").empty()) return true;
    Fail(entry, "module \"" + name + "\" has no Location", "set it to the library's name");
    return false;
  }

  bool MarkTypes(TRegistration& entry, const TCIMInstanceData& capabilities) {
    const std::map<std::string, const char*> known = {
        {"2", "instance"}, {"3", "association"}, {"4", "indication"}, {"5", "method"}};
    const std::vector<std::string> types = GetTexts(capabilities, "ProviderType");
    if (types.empty()) {
      Fail(entry, "has no ProviderType", "set it to 2, 3, 4 or 5");
      return false;
    }
    bool isDriven = false;
    for (const std::string& type : types) {
      const auto word = known.find(type);
      if (word != known.end()) {
        isDriven = MarkType(entry, word->second);
      } else if (type == "6" || type == "7") {
        m_taker.Warn(entry.source + ": ProviderType " + type + " is not driven",
                     "leave it out where it is not needed", kMofRule);
      } else {
        Fail(entry, "unknown ProviderType " + type, "set it to 2, 3, 4 or 5");
        return false;
      }
    }
    return isDriven;
  }

  void AddAll(TRegistration entry, const TCIMInstanceData& capabilities,
              const std::string& location) {
    const std::vector<std::string> nameSpaces = GetTexts(capabilities, "Namespaces");
    if (nameSpaces.empty()) return Fail(entry, "has no Namespaces", "name at least one");
    for (const std::string& nameSpace : nameSpaces) {
      entry.nameSpace = nameSpace;
      m_taker.Add(entry, location, m_file);
      m_hasHosted = true;
    }
  }

  const std::string m_file;
  TRegistrationTaker& m_taker;
  std::map<std::string, const TCIMInstanceData*> m_modules;
  std::map<std::pair<std::string, std::string>, bool> m_providers;  ///< Whether it serves a class.
  std::vector<const TCIMInstanceData*> m_capabilities;
  std::vector<std::string> m_unhosted;  ///< What is said of classes of other interfaces.
  bool m_hasHosted = false;
};

/// What one vendor's MOF files declare.
class TMofCollection {
 public:
  TMofCollection(TMofOutlines& outlines, TRegistrationTaker& taker)
      : m_outlines(outlines), m_taker(taker) {}

  void Load(const std::string& file) {
    std::string text = ReadText(file);
    if (DropSchemaIncludes(text, file)) {
      Take(m_classes.LoadText(text, file), file, true);
    } else {
      Take(m_classes.Load(file), file, false);
    }
  }

  void LoadText(std::string text, const std::string& file) {
    const bool hasSchema = DropSchemaIncludes(text, file);
    Take(m_classes.LoadText(text, file), file, hasSchema);
  }

  /// `file` is the one that what is wrong with the whole is put down to.
  void Finish(const std::string& file) {
    if (m_mixed.empty()) Report(m_classes.Check());
    TPegasusReader(file, m_taker).Read(m_classes.GetInstances());
  }

  /// The files that declare classes, too, or include some.
  const std::vector<std::string>& GetMixed() const { return m_mixed; }

 private:
  void Report(const std::vector<TMofError>& errors) {
    for (const TMofError& error : errors) {
      if (!error.isWarning) m_taker.Fail(error.ToString(), "mend the MOF", kMofRule);
    }
  }

  void Take(const std::vector<TMofError>& errors, const std::string& file, bool hasSchema) {
    if (hasSchema || m_classes.GetCount() > m_count) {
      // Whoever loads the classes reports what is wrong in the file.
      m_mixed.push_back(file);
    } else {
      Report(errors);
    }
    m_count = m_classes.GetCount();
  }

  /// Blanks the directives by which `text` includes mere schema, which may be the whole of CIM and
  /// would be read at each start. True when there was one.
  bool DropSchemaIncludes(std::string& text, const std::string& file) {
    bool hasDropped = false;
    for (std::size_t at = text.find('#'); at != std::string::npos; at = text.find('#', at + 1)) {
      std::size_t place = at + 1;
      if (!Skip(text, "pragma", place) || !Skip(text, "include", place)) continue;
      if (!Skip(text, "(", place) || !Skip(text, "\"", place)) continue;
      const std::size_t quote = text.find_first_of("\"\n", place);
      std::size_t end = quote + 1;
      if (quote == std::string::npos || text[quote] != '"' || !Skip(text, ")", end)) continue;
      const std::string path = text.substr(place, quote - place);
      const TMofOutline* const outline = m_outlines.Find(ResolveMofPath(path, file, m_names));
      if (outline == nullptr || !outline->isMereSchema) continue;
      // Line ends stay, so that messages have the right ones.
      for (std::size_t i = at; i < end; ++i) text[i] = text[i] == '\n' ? '\n' : ' ';
      hasDropped = true;
    }
    return hasDropped;
  }

  TMofOutlines& m_outlines;
  TRegistrationTaker& m_taker;
  TFolderNames m_names;
  // The classes are the server's, and not declared: whatever its version, its properties are taken.
  TClassRepository m_classes;
  std::size_t m_count = 0;  ///< Of the classes before the last file.
  std::vector<std::string> m_mixed;
};

}  // namespace

std::vector<std::string> ReadRegistrationMof(const std::vector<std::string>& files,
                                             TMofOutlines& outlines, TRegistrationTaker& taker) {
  if (files.empty()) return {};
  TMofCollection collection(outlines, taker);
  for (const std::string& file : files) collection.Load(file);
  collection.Finish(files.front());
  return collection.GetMixed();
}

bool ReadRegistrationMofText(const std::string& text, const std::string& file,
                             TRegistrationTaker& taker) {
  TMofOutlines outlines;
  TMofCollection collection(outlines, taker);
  collection.LoadText(text, file);
  collection.Finish(file);
  return !collection.GetMixed().empty();
}

}  // namespace NZEPQEL20
