// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TMofLoader.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/contract/TQELException.h"
#include "platform/schema/TMofParser.h"

namespace NZEPQEL20 {

void TMofLoader::Begin() {
  ++m_unit;
  m_pieces = 0;
  m_nameSpace.clear();
  m_names = TFolderNames(&m_sources);
  UseRank(0);
}

void TMofLoader::AddFolder(const std::string& folder) {
  m_folders.push_back((std::filesystem::path(folder) / "").lexically_normal().string());
}

std::size_t TMofLoader::FindRank(const std::string& file) const {
  const std::string plain = std::filesystem::path(file).lexically_normal().string();
  std::size_t rank = m_rank;
  std::size_t longest = 0;
  for (std::size_t i = 0; i < m_folders.size(); ++i) {
    const std::string& folder = m_folders[i];
    if (folder.size() > longest && plain.compare(0, folder.size(), folder) == 0) {
      rank = i;
      longest = folder.size();
    }
  }
  return rank;
}

void TMofLoader::UseRank(std::size_t rank) {
  m_rank = rank;
  m_compiler.Use(rank == 0 ? m_qualifiers
                           : m_ownQualifiers.try_emplace(rank, &m_qualifiers).first->second);
}

bool TMofLoader::Open(const std::string& path) {
  std::error_code error;
  const std::filesystem::path canonical = std::filesystem::canonical(path, error);
  if (error || m_opened.insert(canonical.string()).second) {
    return true;
  }
  m_sources.AddSameFile(path);
  return false;
}

std::string TMofLoader::Read(const std::string& path) {
  try {
    const TMofSource source = TMofSource::ReadFile(path, &m_sources);
    // Each of its bytes would be an error.
    if (IsBinary(source.text)) {
      return "holds binary data and no MOF text";
    }
    Parse(source);
    return {};
  } catch (const TQELException& exception) {
    if (exception.GetStatusCode() == TQELStatusCode::kNotFound) {
      m_sources.AddAbsent(path);
    } else {
      m_sources.AddUnreadable(path, exception.GetStatusCode() == TQELStatusCode::kInvalidArgument);
    }
    return exception.what();
  }
}

void TMofLoader::LoadFile(const std::string& path) {
  Begin();
  if (!Open(path)) {
    return;
  }
  const std::string reason = Read(path);
  if (!reason.empty()) {
    m_problems.AddError(path, {}, "cannot be read: " + reason);
  }
}

void TMofLoader::LoadText(const std::string& text, const std::string& name) {
  Begin();
  Parse(TMofSource::FromText(name, text));
}

void TMofLoader::Parse(const TMofSource& source) {
  const std::size_t before = m_rank;
  UseRank(FindRank(source.name));
  if (m_rank == 0) {
    m_schemaNames.insert(FoldName(std::filesystem::path(source.name).filename().string()));
  }
  TMofParser(source, *this, m_problems).Parse();
  UseRank(before);
}

void TMofLoader::OnInclude(const std::string& file, TMofPosition position,
                           const std::string& path) {
  constexpr std::size_t kLongest = 200;
  const std::string shown = "include \"" + path.substr(0, kLongest) + "\": ";
  if (m_depth == kMaxIncludes) {
    m_problems.AddError(file, position, shown + "nested deeper than 64 files");
    return;
  }
  const std::string target = ResolveMofPath(path, file, m_names);
  if (!Open(target)) {
    return;
  }
  ++m_depth;
  const std::string reason = Read(target);
  if (!reason.empty() && !IsOfSchema(target)) {
    m_problems.AddError(file, position, shown + reason);
  }
  --m_depth;
}

bool TMofLoader::IsOfSchema(const std::string& path) const {
  std::error_code error;
  // A vendor's own file that cannot be read is the vendor's matter.
  if (m_rank == 0 || std::filesystem::exists(path, error) || error) {
    return false;
  }
  const std::string name = FoldName(std::filesystem::path(path).filename().string());
  const std::string stem = name.substr(0, name.rfind('.'));
  // Those that the schema declares, and the standard ones, are known without the file.
  constexpr char kQualifiers[] = "qualifiers";
  return stem.compare(0, sizeof kQualifiers - 1, kQualifiers) == 0 ||
         m_schemaNames.count(name) > 0 || m_store.GetTree().Find(stem).has_value();
}

void TMofLoader::OnQualifier(const std::string& file, TMofQualifierDeclaration&& qualifier) {
  m_compiler.Declare(file, qualifier);
}

void TMofLoader::OnClass(const std::string& file, TMofClass&& declaration) {
  TSchemaClass compiled = m_compiler.Compile(file, std::move(declaration));
  compiled.rank = m_rank;
  m_store.Add(std::move(compiled));
}

void TMofLoader::OnInstance(const std::string& /*file*/, TMofInstance&& instance) {
  instance.nameSpace = m_nameSpace;
  instance.unit = m_unit;
  m_store.AddInstance(std::move(instance));
}

bool TMofLoader::Reserve(std::size_t count) {
  m_pieces += count;
  return m_pieces <= kMaxPieces;
}

}  // namespace NZEPQEL20
