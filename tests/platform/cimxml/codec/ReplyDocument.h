// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/cimxml/TReplyReader.h"

namespace NZEPQEL20::cimxml {

inline std::string Frame(const std::string& response) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
         "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<MESSAGE ID=\"42\" "
         "PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n" +
         response + "\n</SIMPLERSP>\n</MESSAGE>\n</CIM>\n";
}

/// The reply to an operation: `content` is what IRETURNVALUE holds.
inline std::string Return(const std::string& content) {
  return Frame("<IMETHODRESPONSE NAME=\"Op\">\n<IRETURNVALUE>\n" + content +
               "\n</IRETURNVALUE>\n</IMETHODRESPONSE>");
}

/// The reply to a method call.
inline std::string MethodReturn(const std::string& content) {
  return Frame("<METHODRESPONSE NAME=\"Run\">\n" + content + "\n</METHODRESPONSE>");
}

inline TReply Read(const std::string& document) {
  TReplyReader reader("root/cimv2");
  reader.Take(document.data(), document.size());
  return reader.Finish();
}

/// The reply with one instance that has the given properties.
inline TReply ReadProperties(const std::string& properties) {
  return Read(Return("<INSTANCE CLASSNAME=\"A_Test\" >\n" + properties + "\n</INSTANCE>"));
}

}  // namespace NZEPQEL20::cimxml
