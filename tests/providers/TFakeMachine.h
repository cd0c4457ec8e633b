// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace hardware {

/// A machine made of files in a folder of its own: what its kernel would tell, and programs that
/// play back what real ones printed. The folder goes with this object.
class TFakeMachine {
 public:
  /// Errors: std::runtime_error when no folder can be made.
  TFakeMachine();
  ~TFakeMachine();
  TFakeMachine(const TFakeMachine&) = delete;
  TFakeMachine& operator=(const TFakeMachine&) = delete;

  /// The folder that stands for "/".
  const std::string& GetRoot() const { return m_root; }

  /// The folder of the programs, for PATH.
  std::string GetToolFolder() const { return m_root + "/tools"; }

  /// Makes the file `path`, with the folders it needs.
  void Write(const std::string& path, const std::string& text) const;

  /// Makes `path` a link whose target ends in `name`.
  void Link(const std::string& path, const std::string& name) const;

  /// Makes a program that is the shell script `body`.
  void AddTool(const std::string& name, const std::string& body) const;

  /// Text of a file that a program left; empty when there is none.
  std::string Read(const std::string& path) const;

  // Devices, with what the inventory looks at.

  void AddProcessors(unsigned int count, const std::string& model) const;
  void AddMemory(unsigned int mib) const;
  void AddDisk(const std::string& name, unsigned int mib) const;
  void AddPort(const std::string& name, const std::string& driver) const;

 private:
  std::string m_root;
};

}  // namespace hardware
