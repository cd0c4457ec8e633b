// SPDX-License-Identifier: Apache-2.0
#include "platform/services/TCoreLogger.h"

#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <exception>

#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

spdlog::level::level_enum ToSpdlog(ILogger::EQELLogSeverity severity) {
  switch (severity) {
    case ILogger::kError:
      return spdlog::level::err;
    case ILogger::kWarning:
      return spdlog::level::warn;
    case ILogger::kInfo:
      return spdlog::level::info;
    case ILogger::kTrace:
      break;
  }
  return spdlog::level::trace;
}

spdlog::sink_ptr MakeSink(const std::string& file) {
  if (file.empty()) return std::make_shared<spdlog::sinks::stderr_sink_mt>();
  try {
    return std::make_shared<spdlog::sinks::basic_file_sink_mt>(file);
  } catch (const spdlog::spdlog_ex& error) {
    throw TQELException(TQELStatusCode::kFailed,
                        "Cannot log to '" + file + "': " + std::string(error.what()));
  }
}

void AppendEscaped(std::string& line, char character) {
  constexpr char kDigits[] = "0123456789abcdef";
  const auto code = static_cast<unsigned char>(character);
  if (code >= 0x20 && code != 0x7f) {
    line += character;
  } else if (character == '\n') {
    line += "\\n";
  } else if (character == '\r') {
    line += "\\r";
  } else if (character == '\t') {
    line += "\\t";
  } else {
    line += "\\x";
    line += kDigits[code >> 4U];
    line += kDigits[code & 0xfU];
  }
}

std::string Escape(const std::string& text) {
  std::string line;
  line.reserve(text.size());
  for (const char character : text) AppendEscaped(line, character);
  return line;
}

}  // namespace

TCoreLogger::TCoreLogger(const std::string& file, EQELLogSeverity level)
    : m_logger(std::make_unique<spdlog::logger>("core", MakeSink(file))) {
  m_logger->set_formatter(
      std::make_unique<spdlog::pattern_formatter>("%Y-%m-%dT%H:%M:%S.%e%z %l: %v"));
  m_logger->set_level(ToSpdlog(level));
  m_logger->flush_on(spdlog::level::err);
  // Spdlog's own handler writes to standard error, which belongs to the host.
  m_logger->set_error_handler([](const std::string&) {});
}

TCoreLogger::~TCoreLogger() = default;

void TCoreLogger::Log(EQELLogSeverity severity, const std::string& text) {
  try {
    const spdlog::level::level_enum level = ToSpdlog(severity);
    if (m_logger->should_log(level)) m_logger->log(level, Escape(text));
  } catch (const std::exception&) {
    // A log has nobody to complain to.
    return;
  }
}

ILogger::EQELLogSeverity TCoreLogger::ParseLevel(const std::string& word) {
  if (word == "error") return kError;
  if (word == "warning") return kWarning;
  if (word == "info") return kInfo;
  if (word == "trace") return kTrace;
  throw TQELException(TQELStatusCode::kInvalidArgument,
                      "Unknown log level '" + word + "': it is one of error, warning, info, trace");
}

}  // namespace NZEPQEL20
