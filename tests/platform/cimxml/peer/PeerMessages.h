// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "tests/platform/cimxml/peer/TRawClient.h"

namespace cimserver {

/// PropertyList.
inline std::string ListParameter(const std::vector<std::string>& names) {
  std::string list = "<IPARAMVALUE NAME=\"PropertyList\"><VALUE.ARRAY>";
  for (const std::string& name : names) list += "<VALUE>" + name + "</VALUE>";
  return list + "</VALUE.ARRAY></IPARAMVALUE>";
}

/// INSTANCENAME of the PEER_Thing called `id`.
inline std::string ThingName(const std::string& id) {
  return "<INSTANCENAME CLASSNAME=\"PEER_Thing\"><KEYBINDING NAME=\"Id\">"
         "<KEYVALUE VALUETYPE=\"string\">" +
         id + "</KEYVALUE></KEYBINDING></INSTANCENAME>";
}

inline std::string PathParameter(const std::string& id, const std::string& name = "InstanceName") {
  return "<IPARAMVALUE NAME=\"" + name + "\">" + ThingName(id) + "</IPARAMVALUE>";
}

/// The message of a call of Add of the thing "one" with `parameters` as XML.
inline std::string MakeAdd(const std::string& parameters) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>"
         "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"8\" PROTOCOLVERSION=\"1.0\">"
         "<SIMPLEREQ><METHODCALL NAME=\"Add\"><LOCALINSTANCEPATH><LOCALNAMESPACEPATH>"
         "<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>" +
         ThingName("one") + "</LOCALINSTANCEPATH>" + parameters +
         "</METHODCALL></SIMPLEREQ></MESSAGE></CIM>";
}

/// A POST of that message.
inline std::string PostAdd(const std::string& parameters) {
  return MakePost("Add", "root%2Fcimv2%3APEER_Thing.Id%3D%22one%22", MakeAdd(parameters));
}

}  // namespace cimserver
