// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/cimxml/TServerOptions.h"
#include "platform/contract/ICIMInstance.h"
#include "platform/contract/ICIMNamespace.h"
#include "platform/contract/ILogger.h"

namespace NZEPQEL20 {

/// How a host wants the platform set up.
///
/// Without `server` the tests are those of the provider libraries below the root; with it they are
/// those of the CIM server, and no provider library is loaded.
struct TPlatformOptions {
  std::string root;                      ///< Installation root; empty: as TOSSpecific finds it.
  std::string nameSpace = "root/cimv2";  ///< Namespace in which discovery looks.
  bool isOEMBuild = false;
  std::optional<TServerOptions> server;   ///< What "cmpi" reaches instead of the libraries.
  std::optional<TServerOptions> pegasus;  ///< What "pegasus" reaches; else it is `server`.
};

/// A test that a provider knows and does not offer here.
struct TUnofferedTest {
  std::string serviceName;
  std::string elementName;
  std::string reason;
  std::string remedy;
};

/// Where tests are registered, by the classes that discovery asks for first: those of
/// CIM_AvailableDiagnosticService and below it.
struct TTestPlaces {
  std::vector<std::string> classes;          ///< Those that are asked for in the namespace.
  std::vector<std::string> otherNamespaces;  ///< Those in which the same would find others.
};

/// The platform of one process: schema, provider libraries, object model and record store, put
/// together for a host.
///
/// A fault in one MOF file, registration or library is kept in GetProblems() and logged once;
/// everything else goes on. Destroying it ends every provider (running tests included), and is to
/// be done after the last use of anything obtained through it.
/// Threads: made and destroyed on one thread; the namespaces are safe from several.
class DIAGSPLATFORM_EXPORT TPlatform {
 public:
  /// Errors: TQELException when the installation root itself is unusable, or the server cannot be
  /// reached or refuses to talk, naming it.
  explicit TPlatform(const TPlatformOptions& options);
  ~TPlatform();
  TPlatform(const TPlatform&) = delete;
  TPlatform& operator=(const TPlatform&) = delete;

  /// The namespace that routes by "nspID"; what GetDiagsRunner() is given.
  boost::shared_ptr<ICIMNamespace> GetNamespace() const;

  /// The namespace that receives copied completion records.
  boost::shared_ptr<ICIMNamespace> GetRepository() const;

  /// Records copied since the last call, in the order of copying.
  std::vector<boost::shared_ptr<ICIMInstance>> TakeRecords();

  /// What could not be loaded or has failed so far, one line each: thing, reason, and what would
  /// mend it. The answer holds until the next call.
  /// Threads: one at a time.
  const std::vector<std::string>& GetProblems() const;

  /// What last kept the server behind "cmpi" from answering or from starting a test, since the
  /// previous call; empty for nothing, and without a server. A run that ended meanwhile without a
  /// verdict ended because of it.
  std::string TakeServerFailure();

  /// The tests that providers report as not offered on this machine ("DRH_UnofferedTest"); empty
  /// when nobody serves that class.
  /// Errors: TQELException when the provider fails.
  std::vector<TUnofferedTest> GetUnofferedTests() const;

  /// Where provider libraries have tests, each class and each namespace once; nothing on a server.
  TTestPlaces GetTestPlaces() const;

  /// Asks every job that has not ended to be killed (RequestStateChange 5); returns how many
  /// were asked. Never throws.
  /// Threads: may be called while another thread is inside a method call.
  unsigned int KillRunningJobs() noexcept;

 private:
  struct TParts;
  std::unique_ptr<TParts> m_parts;
};

}  // namespace NZEPQEL20
