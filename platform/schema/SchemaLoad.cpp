// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/SchemaLoad.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>

#include "platform/schema/TCacheFolder.h"

namespace NZEPQEL20 {

namespace {

std::unique_ptr<TClassRepository> ReadFiles(const TSchemaInputs& inputs,
                                            std::vector<TMofError>& problems) {
  auto classes = std::make_unique<TClassRepository>();
  const auto take = [&problems](std::vector<TMofError>&& found) {
    std::move(found.begin(), found.end(), std::back_inserter(problems));
  };
  for (const std::string& folder : inputs.folders) {
    classes->AddSearchPath(folder);
  }
  for (const std::string& file : inputs.files) {
    take(classes->Load(file));
  }
  take(classes->Check());
  return classes;
}

bool IsAbsolute(const TSchemaInputs& inputs) {
  const auto isAbsolute = [](const std::string& path) { return path.compare(0, 1, "/") == 0; };
  return std::all_of(inputs.files.begin(), inputs.files.end(), isAbsolute) &&
         std::all_of(inputs.folders.begin(), inputs.folders.end(), isAbsolute);
}

/// Once no stamp is young any more, the next start need not compare content again.
void Renew(const TSchemaCache& cache, const TCacheFolder& folder, const std::string& name,
           std::int64_t trustedBefore, std::vector<std::string>& notes) {
  if (cache.GetYoungest() < trustedBefore) {
    const std::string bytes = cache.Renew(trustedBefore);
    const std::string reason = folder.Write(name, {bytes});
    notes.push_back(reason.empty() ? "schema cache renewed in " + folder.GetPath()
                                   : "schema cache not renewed: " + reason);
  }
}

/// Null when there is no cache in the folder that can be used.
std::shared_ptr<const TSchemaCache> OpenCache(const TCacheFolder& folder, const std::string& name,
                                              const TSchemaInputs& inputs,
                                              std::vector<std::string>& notes) {
  std::string reason;
  TDescriptor file = folder.Open(name, reason);
  if (!file.IsOpen()) {
    if (!reason.empty()) {
      notes.push_back("schema cache not used: " + reason);
    }
    return nullptr;
  }
  const std::int64_t trustedBefore = GetFileClock() - kStampDoubt;
  auto cache = std::make_shared<const TSchemaCache>(std::move(file));
  bool isYoung = false;
  if (!(cache->GetInputs() == inputs) || !cache->IsFresh(isYoung)) {
    notes.push_back("schema cache in " + folder.GetPath() + " is out of date");
    return nullptr;
  }
  notes.push_back("schema taken from the cache in " + folder.GetPath());
  if (isYoung) {
    Renew(*cache, folder, name, trustedBefore, notes);
  }
  return cache;
}

bool LoadCached(const TSchemaInputs& inputs, const TSchemaCachePlace& place,
                TLoadedSchema& schema) {
  for (const std::string& path : place.folders) {
    try {
      const auto cache = OpenCache(TCacheFolder(path), place.fileName, inputs, schema.notes);
      if (cache != nullptr) {
        schema.problems = cache->GetProblems();
        schema.leftOut = cache->GetLeftOut();
        schema.classes = TClassRepository::FromStore(cache, [inputs] {
          std::vector<TMofError> known;
          return ReadFiles(inputs, known)->GetDeclarations();
        });
        schema.isFromCache = true;
        return true;
      }
    } catch (const std::exception& e) {
      // Whatever is wrong with it, the files are there.
      schema.notes.push_back("schema cache in " + path + " not used: " + e.what());
    }
  }
  return false;
}

void WriteCache(const TSchemaInputs& inputs, const TSchemaCachePlace& place,
                const TClassRepository& classes, std::int64_t trustedBefore,
                TLoadedSchema& schema) {
  const TSchemaSources& sources = classes.GetSources();
  if (place.folders.empty() || !sources.IsWhole() || sources.GetSize() < place.leastSize) {
    return;
  }
  try {
    const std::string bytes =
        TSchemaCache::Encode({inputs, sources.Get(), schema.problems, schema.leftOut,
                              *classes.GetDeclarations(), classes.GetInstances(), trustedBefore});
    for (const std::string& path : place.folders) {
      const std::string reason = TCacheFolder(path).Write(place.fileName, {bytes});
      if (reason.empty()) {
        schema.notes.push_back("schema cache written to " + path);
        return;
      }
      schema.notes.push_back("schema cache not written: " + reason);
    }
  } catch (const std::exception& e) {
    schema.notes.push_back(std::string("schema cache not written: ") + e.what());
  }
}

}  // namespace

TLoadedSchema LoadSchema(const TSchemaInputs& inputs, const TSchemaCachePlace& place) {
  TLoadedSchema schema;
  // A relative path means something else in another working folder.
  const bool isCacheable = IsAbsolute(inputs);
  if (isCacheable && LoadCached(inputs, place, schema)) {
    return schema;
  }
  const std::int64_t trustedBefore = GetFileClock() - kStampDoubt;
  std::unique_ptr<TClassRepository> classes = ReadFiles(inputs, schema.problems);
  schema.leftOut = classes->GetLeftOut();
  if (isCacheable) {
    WriteCache(inputs, place, *classes, trustedBefore, schema);
  }
  schema.classes = std::move(classes);
  return schema;
}

}  // namespace NZEPQEL20
