// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TRootObject.h"
#include "tests/support/TScriptedSystem.h"
#include "tests/support/TTranscript.h"

namespace NZEPQEL20 {

namespace {

class TRecordingLogger : public ILogger {
 public:
  void Log(EQELLogSeverity severity, const std::string& text) override {
    scripted::TTranscript::Get().Add("log" + std::to_string(static_cast<int>(severity)),
                                     scripted::Escape(text));
  }
};

TRecordingLogger& GetRecordingLogger() {
  static TRecordingLogger logger;
  return logger;
}

}  // namespace

ILogger* TRootObject::GetCoreLogger() {
  return scripted::TScriptedSystem::Get().m_hasLogger ? &GetRecordingLogger() : nullptr;
}

void TRootObject::SetCoreLogger(ILogger* logger) {
  scripted::TScriptedSystem::Get().m_hasLogger = logger != nullptr;
}

}  // namespace NZEPQEL20
