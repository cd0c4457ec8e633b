// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/schema/FullSchema.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace fullschema {
namespace {

constexpr std::array<const char*, 8> kFolders = {"Core",    "Device",   "System",  "Network",
                                                 "Support", "Physical", "Metrics", "Policy"};

std::string MakeLicence() {
  std::string text;
  for (int line = 0; line < 40; ++line) {
    text += "// Permission to use what is declared below is granted to whoever keeps this " +
            std::string(line % 2 == 0 ? "notice.\n" : "text whole.\n");
  }
  return text + "// ==================================================================\n\n";
}

/// `lines` literals below each other that are one string.
std::string MakeDescription(const std::string& indent, std::size_t lines) {
  std::string text = "Description ( \n";
  for (std::size_t line = 0; line < lines; ++line) {
    text += indent +
            "\"What it \\\"means\\\" and how it\\'s used, which takes some lines to say, " +
            (line + 1 == lines ? "here.\" )" : "\\n\"\n");
  }
  return text;
}

std::string MakeValues(const std::string& indent, std::size_t count) {
  std::string map = "ValueMap { ";
  std::string values = "Values { ";
  for (std::size_t i = 0; i < count; ++i) {
    map += "\"" + std::to_string(i) + "\", ";
    values += "\"State Number " + std::to_string(i) + "\", ";
    if (i % 4 == 3) {
      map += "\n" + indent;
      values += "\n" + indent;
    }
  }
  return map + "\"..\", \"0x8000..\" }, \n" + indent + values +
         "\"DMTF Reserved\", \"Vendor Reserved\" }";
}

std::string MakeProperty(std::size_t index, std::size_t number) {
  const std::string indent(9, ' ');
  const std::string name = "Property" + std::to_string(index) + "x" + std::to_string(number);
  std::string text = "      [" + MakeDescription(indent, 6 + (index + number) % 7);
  if (number % 3 == 1) {
    return text + ", \n" + indent + MakeValues(indent, 8 + index % 24) +
           ", \n       ModelCorrespondence { \"CIM_Gen0.InstanceID\" }]\n   uint16 " + name +
           (number % 2 == 0 ? "[];\n\n" : " = 5;\n\n");
  }
  if (number % 3 == 2) {
    return text +
           ", \n         Units ( \"Bytes\" ), PUnit ( \"byte\" ), MinValue ( 0 )]\n   uint64 " +
           name + ";\n\n";
  }
  return text + ", \n         MaxLen ( 256 ), Write ( true )]\n   string " + name + ";\n\n";
}

std::string MakeMethod(std::size_t index) {
  const std::string indent(9, ' ');
  return "      [" + MakeDescription(indent, 12) + ", \n" + indent + MakeValues(indent, 12) +
         "]\n   uint32 Change" + std::to_string(index) + "( \n         [IN, " +
         MakeDescription(indent, 4) + "]\n      uint16 State, \n         [IN ( false ), OUT, " +
         MakeDescription(indent, 4) + "]\n      CIM_Gen0 REF Job[], \n         [IN, OUT]\n" +
         "      datetime TimeoutPeriod);\n\n";
}

void WriteFile(const std::string& path, const std::string& text) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

}  // namespace

std::string GetClassName(std::size_t index) {
  return "CIM_Gen" + std::to_string(index);
}

std::string GetFileName(std::size_t index) {
  return std::string(kFolders[index % kFolders.size()]) + "/" + GetClassName(index) + ".mof";
}

std::string MakeClassFile(std::size_t index) {
  std::string text = MakeLicence();
  text += "   [Version ( \"2." + std::to_string(index % 40) +
          ".0\" ), \n    UMLPackagePath ( \"CIM::Core::Made\" ), \n    " +
          MakeDescription("       ", 10) + "]\nclass " + GetClassName(index);
  // Four levels on the average, as in the published one.
  text += index == 0 ? " {\n\n" : " : " + GetClassName(index / 6) + " {\n\n";
  if (index == 0) {
    text += "      [Key, Override ( \"InstanceID\" )]\n   string InstanceID;\n\n";
  }
  for (std::size_t number = 0; number < 5 + index % 3; ++number) {
    text += MakeProperty(index, number);
  }
  return text + (index % 4 == 0 ? MakeMethod(index) : "") + "\n};\n";
}

std::string Write(const std::string& folder, std::size_t classCount) {
  std::string master =
      MakeLicence() + "#pragma locale (\"en_US\")\n" + "#pragma include (\"qualifiers.mof\")\n";
  for (std::size_t i = 0; i < classCount; ++i) {
    WriteFile(folder + "/" + GetFileName(i), MakeClassFile(i));
    master += "#pragma include (\"" + GetFileName(i) + "\")\n";
  }
  WriteFile(folder + "/qualifiers.mof",
            "Qualifier Key : boolean = false, \n    Scope(property, reference), \n"
            "    Flavor(DisableOverride);\n"
            "Qualifier Version : string = null, \n    Scope(class, association, indication), \n"
            "    Flavor(EnableOverride, Restricted, Translatable);\n");
  const std::string path = folder + "/cim_schema_2.41.0.mof";
  WriteFile(path, master);
  return path;
}

}  // namespace fullschema
