// SPDX-License-Identifier: Apache-2.0
#include "host/JsonDocument.h"

#include <ostream>

#include "host/TJsonReport.h"

namespace host {

TJson MakeDocument(const std::string& command) {
  return {{"format", TJsonReport::kFormat}, {"command", command}};
}

void WriteDocument(std::ostream& out, const TJson& document) {
  out << document.dump(2, ' ', false, TJson::error_handler_t::replace) << "\n";
  out.flush();
}

}  // namespace host
