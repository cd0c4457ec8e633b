// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/contract/TCIMClassDeclaration.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/ISchemaClasses.h"
#include "platform/schema/TLeftOutClass.h"
#include "platform/schema/TMofError.h"
#include "platform/schema/TSchemaSources.h"

namespace NZEPQEL20 {

/// The classes and instances that MOF files declare, with inheritance worked out on demand.
///
/// Class names compare without case. Files may come in any order: a superclass may be loaded
/// after its subclasses. A faulty declaration is reported and left out; all others stay. A class
/// that is declared again replaces the earlier one, silently when both say the same, unless the
/// earlier one is in a folder that holds; see AddSearchPath().
/// Threads: Load(), LoadText(), AddSearchPath() and Check() must be alone; the const operations
/// may run in several threads at once.
class TClassRepository {
 public:
  /// Deepest chain of superclasses that is followed.
  static constexpr unsigned int kMaxInheritance = 64;

  using TClassesPtr = std::shared_ptr<const ISchemaClasses>;

  TClassRepository();
  ~TClassRepository();
  TClassRepository(const TClassRepository&) = delete;
  TClassRepository& operator=(const TClassRepository&) = delete;

  /// A repository of what `stored` holds. Should that fail, `reload` is asked once for the same
  /// from the files, and holds from then on.
  static std::shared_ptr<const TClassRepository> FromStore(TClassesPtr stored,
                                                           std::function<TClassesPtr()> reload);

  /// Reads `file` and what it includes. A file that was read before, also as an include, is not
  /// read again. Answers with what is wrong in them, in reading order; a file that cannot be
  /// read at all is one of these.
  std::vector<TMofError> Load(const std::string& file);

  /// The same for a text in memory; `name` stands for the file, and its folder is where
  /// includes are looked for.
  std::vector<TMofError> LoadText(const std::string& text, const std::string& name);

  /// Names a folder in which Check() looks for a missing superclass, as `<Class>.mof` in any case.
  /// Files in a folder count less than those in the folders that were named before it: of two
  /// differing declarations of a class the latter's holds, and a qualifier that is declared in a
  /// folder behind the first one counts in that folder only. To be called before files are loaded;
  /// files in none of the folders count as the first one's, or with the file that includes them.
  void AddSearchPath(const std::string& folder);

  /// To be called when everything is loaded: reports what only the whole shows, such as missing
  /// superclasses, overrides that do not fit, instances of unknown classes. Each problem is
  /// reported once, however often this is called.
  std::vector<TMofError> Check();

  /// The class with everything it inherits; null when it is not known. A class whose superclass
  /// is missing has what is known of it.
  std::shared_ptr<const TCIMClassDeclaration> Find(const std::string& name) const;

  /// Whether `name` is `super` or inherits from it. A class that is only named as a superclass
  /// counts, too.
  bool IsA(const std::string& name, const std::string& super) const;

  /// Whether the class and all its superclasses are known: nothing that it inherits is lacking.
  bool IsComplete(const std::string& name) const;

  /// Names of the direct subclasses of `name`, in order of declaration; `deep` adds those below,
  /// each behind its superclass. An empty name stands for the top: classes without a superclass,
  /// or whose superclass is missing.
  std::vector<std::string> GetSubclasses(const std::string& name, bool deep) const;

  /// The declared instances, in order, with values typed by their classes, class defaults filled
  /// in, keys in the path, and aliases replaced by paths. What Check() complains about is left
  /// out.
  std::vector<TCIMInstanceData> GetInstances() const;

  /// Number of known classes.
  std::size_t GetCount() const;

  /// The declarations as they were read, for whoever stores them.
  TClassesPtr GetDeclarations() const;

  /// The classes that were left out because a folder that was named before declares them
  /// otherwise. A repository of what was stored has none.
  const std::vector<TLeftOutClass>& GetLeftOut() const;

  /// All that Load() and Check() have looked at on disk.
  const TSchemaSources& GetSources() const;

 private:
  struct TParts;
  std::unique_ptr<TParts> m_parts;
};

}  // namespace NZEPQEL20
