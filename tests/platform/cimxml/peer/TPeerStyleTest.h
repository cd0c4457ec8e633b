// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/cimxml/peer/PeerMessages.h"
#include "tests/platform/cimxml/peer/TPeerWorld.h"
#include "tests/platform/cimxml/peer/TRawClient.h"

namespace cimserver {

/// Asks a peer of one style over a raw connection and compares what it writes to the byte.
class TPeerStyleTest : public testing::Test {
 protected:
  explicit TPeerStyleTest(EStyle style) : m_style(style) {}

  std::string Ask(const std::string& name, const std::string& parameters,
                  const std::string& more = "") {
    return m_client.Exchange(PostIntrinsic(name, parameters, more));
  }

  /// The whole body around the content of a reply.
  std::string Frame(const std::string& name, const std::string& content) const {
    // One maker ends its last line, the other does not.
    const char* end = m_style == EStyle::kSfcb ? "</CIM>" : "</CIM>\n";
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
           "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
           "<MESSAGE ID=\"7\" PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n<IMETHODRESPONSE NAME=\"" +
           name + "\">\n" + content + "</IMETHODRESPONSE>\n</SIMPLERSP>\n</MESSAGE>\n" + end;
  }

 private:
  static TPeerOptions MakeOptions(EStyle style) {
    TPeerOptions options;
    options.style = style;
    return options;
  }

  EStyle m_style;

 protected:
  TPeerWorld m_world;
  TCimServer m_server{m_world.GetOperations(), MakeOptions(m_style)};
  TRawClient m_client{m_server.GetPort()};
};

}  // namespace cimserver
