// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/TWbemcli.h"

#include <unistd.h>

#include <algorithm>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "platform/model/CIMStatus.h"
#include "tests/support/TSubprocess.h"

namespace cimserver {
namespace {

constexpr char kProgram[] = "/usr/bin/wbemcli";

// A text is in quotes and may hold line feeds; what would end it has a "\" before it.
std::size_t SkipQuoted(const std::string& text, std::size_t start) {
  std::size_t end = start + 1;
  while (end < text.size() && text[end] != '"') end += text[end] == '\\' ? 2 : 1;
  if (end >= text.size()) throw std::runtime_error("no end of text: " + text.substr(start));
  return end + 1;
}

// The end of what starts at `start`: the first of `ends` outside of quotes and braces.
std::size_t FindEnd(const std::string& text, std::size_t start, const std::string& ends) {
  std::size_t depth = 0;
  while (start < text.size()) {
    if (text[start] == '"') {
      start = SkipQuoted(text, start);
      continue;
    }
    if (depth == 0 && ends.find(text[start]) != std::string::npos) return start;
    if (text[start] == '{') ++depth;
    if (text[start] == '}' && depth > 0) --depth;
    ++start;
  }
  return text.size();
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = FindEnd(text, start, std::string(1, separator));
    parts.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

// Line feeds come as the server wrote them: as they are, or as references that wbemcli leaves.
std::string Unquote(const std::string& quoted) {
  std::string text;
  for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
    if (quoted[i] == '\\' && (quoted[i + 1] == '"' || quoted[i + 1] == '\\')) ++i;
    if (quoted.compare(i, 5, "&#10;") == 0) {
      text += '\n';
      i += 4;
    } else {
      text += quoted[i];
    }
  }
  return text;
}

TCIMReference ReadPath(const std::string& text, const std::string& nameSpace);

std::string ReadText(const std::string& text, const std::string& nameSpace) {
  if (text.empty()) return text;
  if (text[0] == '"') return Unquote(text);
  if (text[0] != '{') return text;
  return ReadPath(text.substr(1, text.size() - 2), nameSpace).GetPath();
}

std::string ReadValue(const std::string& text, const std::string& nameSpace) {
  std::string joined;
  for (const std::string& part : Split(text, ',')) {
    if (!joined.empty()) joined += ',';
    joined += ReadText(part, nameSpace);
  }
  return joined;
}

// Behind a host, wbemcli leaves out the colon between namespace and class of an inner path.
TCIMReference ReadPath(const std::string& text, const std::string& nameSpace) {
  const std::size_t place = text.find(nameSpace);
  if (place == std::string::npos) throw std::runtime_error("no " + nameSpace + " in " + text);
  std::size_t start = place + nameSpace.size();
  if (start < text.size() && text[start] == ':') ++start;
  const std::size_t end = FindEnd(text, start, ".");
  TCIMReference path(nameSpace, text.substr(start, end - start));
  if (end == text.size()) return path;
  for (const std::string& key : Split(text.substr(end + 1), ',')) {
    const std::size_t equals = key.find('=');
    if (equals == std::string::npos) throw std::runtime_error("no key: " + key);
    const std::string value = key.substr(equals + 1);
    const bool isPath = !value.empty() && value[0] == '{';
    path.SetKey(key.substr(0, equals),
                isPath ? TCIMValue(ReadPath(value.substr(1, value.size() - 2), nameSpace))
                       : TCIMValue(ReadText(value, nameSpace)));
  }
  return path;
}

void ReadProperty(const std::string& line, const std::string& nameSpace, TWbemcliObject& object) {
  const std::size_t equals = line.find('=');
  if (equals == std::string::npos) throw std::runtime_error("no property: " + line);
  object.properties[line.substr(1, equals - 1)] = ReadValue(line.substr(equals + 1), nameSpace);
}

// Texts of out-parameters have no quotes, and yet what is in them is escaped as if they had.
std::string ReadOutValue(const std::string& type, const std::string& text,
                         const std::string& nameSpace) {
  if (type == "reference") return ReadValue(text, nameSpace);
  return type == "string" ? Unquote('"' + text + '"') : text;
}

// A line `Name (type): value`; false for one that goes on with a text of many lines.
bool ReadOutParameter(const std::string& line, std::string& name, std::string& type,
                      std::string& text) {
  static const std::regex kLine(R"((\w+) \((\w+)\): (.*))");
  std::smatch match;
  if (!std::regex_match(line, match, kLine)) return false;
  name = match[1];
  type = match[2];
  text = match[3];
  return true;
}

// A class with its superclass behind " : ", or an object.
void ReadLine(const std::string& line, const std::string& nameSpace, TWbemcliAnswer& answer) {
  if (line.empty()) return;
  if (line[0] == '-' && !answer.objects.empty()) {
    ReadProperty(line, nameSpace, answer.objects.back());
    return;
  }
  const std::string path = line.substr(0, FindEnd(line, 0, " "));
  answer.objects.push_back({ReadPath(path, nameSpace), {}});
}

// "* /usr/bin/wbemcli: Cim: (6) words", or the words of another exception.
void ReadError(const std::string& err, TWbemcliAnswer& answer) {
  static const std::string kStart = "wbemcli: ";
  static const std::string kCim = "Cim: (";
  const std::size_t start = err.find(kStart);
  if (start == std::string::npos) {
    answer.error = err;
    return;
  }
  std::string text = err.substr(start + kStart.size());
  text = text.substr(0, text.rfind("\n*"));
  if (text.rfind(kCim, 0) == 0) {
    answer.cimStatus = static_cast<unsigned int>(std::stoul(text.substr(kCim.size())));
    text = text.substr(text.find(") ") + 2);
    // wbemcli puts the name there itself where the server does not.
    const std::string name = NZEPQEL20::GetCIMStatusName(answer.cimStatus) + ": ";
    if (text.rfind(name, 0) == 0) text = text.substr(name.size());
  }
  answer.error = text;
}

// Of a class, a property's marks stand behind its name, and its default is of no interest.
void TakeMarks(TWbemcliAnswer& answer) {
  for (TWbemcliObject& object : answer.objects) {
    std::map<std::string, std::string> marked;
    for (const auto& [name, value] : object.properties) {
      const std::size_t end = std::min(name.find_first_of("#&["), name.size());
      marked[name.substr(0, end)] = name.substr(end);
    }
    object.properties = std::move(marked);
  }
}

}  // namespace

TWbemcliAnswer ReadWbemcli(int exitStatus, const std::string& out, const std::string& err,
                           const std::string& nameSpace) {
  TWbemcliAnswer answer;
  answer.exitStatus = exitStatus;
  if (exitStatus != 0) ReadError(err, answer);
  for (const std::string& line : Split(out, '\n')) ReadLine(line, nameSpace, answer);
  return answer;
}

TWbemcliAnswer ReadWbemcliCall(int exitStatus, const std::string& out, const std::string& err,
                               const std::string& nameSpace) {
  TWbemcliAnswer answer;
  answer.exitStatus = exitStatus;
  if (exitStatus != 0) {
    ReadError(err, answer);
    return answer;
  }
  std::istringstream lines(out);
  std::string line;
  std::getline(lines, line);
  const std::size_t colon = line.find(": ", FindEnd(line, 0, " "));
  if (colon == std::string::npos) throw std::runtime_error("no return value: " + line);
  answer.returnValue = line.substr(colon + 2);
  std::string name;
  std::string type;
  std::string text;
  while (std::getline(lines, line)) {
    if (!ReadOutParameter(line, name, type, text)) text += '\n' + line;
    answer.outParameters[name] = ReadOutValue(type, text, nameSpace);
  }
  return answer;
}

bool TWbemcli::IsInstalled() {
  return ::access(kProgram, X_OK) == 0;
}

TWbemcli::TWbemcli(std::string url, std::string nameSpace, TArguments options)
    : m_url(std::move(url)), m_nameSpace(std::move(nameSpace)), m_options(std::move(options)) {}

TWbemcliAnswer TWbemcli::Run(const std::string& operation, const std::string& object,
                             const TArguments& rest) const {
  programs::TProgram program;
  program.arguments = {kProgram, operation, "-nl", "-dr"};
  program.arguments.insert(program.arguments.end(), m_options.begin(), m_options.end());
  if (operation == "gc" || operation == "ec") program.arguments.emplace_back("-t");
  program.arguments.push_back(m_url + '/' + object);
  program.arguments.insert(program.arguments.end(), rest.begin(), rest.end());
  // What a person has set for proxies must not lead a test astray.
  program.environment = {{"no_proxy", "*"}, {"http_proxy", ""}, {"https_proxy", ""}};
  const programs::TFinished finished = programs::RunToEnd(program);
  const auto read = operation == "cm" ? ReadWbemcliCall : ReadWbemcli;
  TWbemcliAnswer answer = read(finished.status, finished.out, finished.err, m_nameSpace);
  if (operation == "gc" || operation == "ec") TakeMarks(answer);
  return answer;
}

TWbemcliAnswer TWbemcli::GetClass(const std::string& className) const {
  return Run("gc", m_nameSpace + ':' + className);
}

TWbemcliAnswer TWbemcli::EnumerateClasses(const std::string& className) const {
  return Run("ec", m_nameSpace + ':' + className);
}

TWbemcliAnswer TWbemcli::EnumerateClassNames(const std::string& className) const {
  return Run("ecn", className.empty() ? m_nameSpace : m_nameSpace + ':' + className);
}

TWbemcliAnswer TWbemcli::EnumerateInstances(const std::string& className) const {
  return Run("ei", m_nameSpace + ':' + className);
}

TWbemcliAnswer TWbemcli::EnumerateInstanceNames(const std::string& className) const {
  return Run("ein", m_nameSpace + ':' + className);
}

TWbemcliAnswer TWbemcli::GetInstance(const TCIMReference& path) const {
  return Run("gi", path.GetPath());
}

TWbemcliAnswer TWbemcli::CreateInstance(const TCIMReference& path,
                                        const std::string& properties) const {
  return Run("ci", path.GetPath(), {properties});
}

TWbemcliAnswer TWbemcli::ModifyInstance(const TCIMReference& path,
                                        const std::string& properties) const {
  return Run("mi", path.GetPath(), {properties});
}

TWbemcliAnswer TWbemcli::DeleteInstance(const TCIMReference& path) const {
  return Run("di", path.GetPath());
}

TWbemcliAnswer TWbemcli::Associators(const TCIMReference& path) const {
  return Run("ai", path.GetPath());
}

TWbemcliAnswer TWbemcli::AssociatorNames(const TCIMReference& path) const {
  return Run("ain", path.GetPath());
}

TWbemcliAnswer TWbemcli::References(const TCIMReference& path) const {
  return Run("ri", path.GetPath());
}

TWbemcliAnswer TWbemcli::ReferenceNames(const TCIMReference& path) const {
  return Run("rin", path.GetPath());
}

TWbemcliAnswer TWbemcli::InvokeMethod(const TCIMReference& path, const std::string& method,
                                      const std::string& parameters) const {
  const std::string call = parameters.empty() ? method : method + '.' + parameters;
  return Run("cm", path.GetPath(), {call});
}

}  // namespace cimserver
