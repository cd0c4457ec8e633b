// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "tests/platform/cimxml/peer/TRawClient.h"
#include "tests/support/cimserver/TCimServer.h"
#include "tests/support/cimserver/TSyntheticOperations.h"

namespace cimserver {
namespace {

using testing::HasSubstr;

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

std::string FindContext(const std::string& reply) {
  static const std::string kStart = "<PARAMVALUE NAME=\"EnumerationContext\">\n<VALUE>";
  const std::size_t start = reply.find(kStart) + kStart.size();
  return reply.substr(start, reply.find('<', start) - start);
}

bool IsAtEnd(const std::string& reply) {
  return reply.find("<PARAMVALUE NAME=\"EndOfSequence\">\n<VALUE>TRUE</VALUE>") !=
         std::string::npos;
}

const std::string kHolder =
    "<IPARAMVALUE NAME=\"InstanceName\"><INSTANCENAME CLASSNAME=\"BENCH_Holder\">"
    "<KEYBINDING NAME=\"Name\"><KEYVALUE>holder</KEYVALUE></KEYBINDING></INSTANCENAME>"
    "</IPARAMVALUE>";

/// Enumerations in pieces, over five records.
class PeerPullTest : public testing::Test {
 protected:
  std::string Ask(const std::string& name, const std::string& parameters) {
    return m_client.Exchange(PostIntrinsic(name, parameters));
  }
  std::string Pull(const std::string& context, int count,
                   const std::string& name = "PullInstancesWithPath") {
    return Ask(name, ValueParameter("EnumerationContext", context) +
                         ValueParameter("MaxObjectCount", std::to_string(count)));
  }

  TCimServer m_server{std::make_shared<TSyntheticOperations>(5)};
  TRawClient m_client{m_server.GetPort()};
};

TEST_F(PeerPullTest, EachAnswerNamesTheEnumerationAnew) {
  const std::string first =
      Ask("OpenEnumerateInstances",
          ClassParameter("BENCH_Record") + ValueParameter("MaxObjectCount", "2"));
  EXPECT_EQ(Count(first,
                  "<VALUE.INSTANCEWITHPATH>\n<INSTANCEPATH>\n<NAMESPACEPATH>\n"
                  "<HOST>peer</HOST>\n"),
            2U);
  EXPECT_FALSE(IsAtEnd(first));
  const std::string second = Pull(FindContext(first), 2);
  EXPECT_EQ(Count(second, "<VALUE.INSTANCEWITHPATH>\n"), 2U);
  EXPECT_NE(FindContext(second), FindContext(first));
  EXPECT_EQ(GetError(Pull(FindContext(first), 2)),
            "21 CIM_ERR_INVALID_ENUMERATION_CONTEXT: &quot;" + FindContext(first) + "&quot;");
  const std::string third = Pull(FindContext(second), 2);
  EXPECT_THAT(third, HasSubstr("record 4"));
  EXPECT_THAT(third, HasSubstr("</VALUE.INSTANCEWITHPATH>\n</IRETURNVALUE>\n"
                               "<PARAMVALUE NAME=\"EndOfSequence\">\n"
                               "<VALUE>TRUE</VALUE>\n"
                               "</PARAMVALUE>\n"
                               "<PARAMVALUE NAME=\"EnumerationContext\">\n"
                               "<VALUE></VALUE>\n"
                               "</PARAMVALUE>\n"
                               "</IMETHODRESPONSE>\n"));
}

TEST_F(PeerPullTest, NothingMayComeBeforeTheEnd) {
  const std::string opened = Ask("OpenEnumerateInstances", ClassParameter("BENCH_Record"));
  EXPECT_EQ(Count(opened, "<VALUE.INSTANCEWITHPATH>"), 0U);
  EXPECT_FALSE(IsAtEnd(opened));
  EXPECT_TRUE(IsAtEnd(Pull(FindContext(opened), 5)));
}

TEST_F(PeerPullTest, AClosedEnumerationIsGone) {
  const std::string context =
      FindContext(Ask("OpenEnumerateInstances", ClassParameter("BENCH_Record")));
  EXPECT_EQ(GetError(Ask("CloseEnumeration", ValueParameter("EnumerationContext", context))), "");
  EXPECT_THAT(GetError(Pull(context, 1)), HasSubstr("21 "));
  EXPECT_THAT(GetError(Ask("CloseEnumeration", ValueParameter("EnumerationContext", context))),
              HasSubstr("21 "));
}

TEST_F(PeerPullTest, PathsAndAssociationsComeInPiecesToo) {
  for (const auto& [open, parameters, isPaths, element] :
       {std::tuple("OpenEnumerateInstancePaths", ClassParameter("BENCH_Record"), true,
                   "<INSTANCEPATH>"),
        std::tuple("OpenAssociatorInstances", kHolder, false, "<VALUE.INSTANCEWITHPATH>"),
        std::tuple("OpenAssociatorInstancePaths", kHolder, true, "<INSTANCEPATH>"),
        std::tuple("OpenReferenceInstances", kHolder, false, "<VALUE.INSTANCEWITHPATH>"),
        std::tuple("OpenReferenceInstancePaths", kHolder, true,
                   "<INSTANCEPATH>\n<NAMESPACEPATH>")}) {
    const std::string first = Ask(open, parameters + ValueParameter("MaxObjectCount", "3"));
    EXPECT_EQ(Count(first, element), 3U) << open;
    const std::string rest =
        Pull(FindContext(first), 3, isPaths ? "PullInstancePaths" : "PullInstancesWithPath");
    EXPECT_EQ(Count(rest, element), 2U) << open;
    EXPECT_TRUE(IsAtEnd(rest)) << open;
  }
}

TEST_F(PeerPullTest, PathsAreNotPulledAsInstances) {
  const std::string opened = Ask("OpenEnumerateInstancePaths", ClassParameter("BENCH_Record"));
  EXPECT_THAT(GetError(Pull(FindContext(opened), 1)), HasSubstr("21 "));
}

struct TOpenRow {
  std::string parameters;
  const char* error;
};
void PrintTo(const TOpenRow& row, std::ostream* out) {
  *out << row.parameters;
}

TEST_F(PeerPullTest, WhatItCannotDoHasANumberEach) {
  for (const TOpenRow& row :
       {TOpenRow{ValueParameter("ContinueOnError", "TRUE"),
                 "26 CIM_ERR_CONTINUATION_ON_ERROR_NOT_SUPPORTED: ContinueOnError"},
        {ValueParameter("FilterQuery", "x"),
         "25 CIM_ERR_FILTERED_ENUMERATION_NOT_SUPPORTED: FilterQuery"},
        {ValueParameter("OperationTimeout", "3601"),
         "22 CIM_ERR_INVALID_OPERATION_TIMEOUT: OperationTimeout"},
        {ValueParameter("MaxObjectCount", "10001"),
         "4 CIM_ERR_INVALID_PARAMETER: MaxObjectCount"}}) {
    EXPECT_EQ(
        GetError(Ask("OpenEnumerateInstances", ClassParameter("BENCH_Record") + row.parameters)),
        row.error)
        << testing::PrintToString(row);
  }
  EXPECT_EQ(GetError(Ask("PullInstancesWithPath", ValueParameter("EnumerationContext", "1"))),
            "4 CIM_ERR_INVALID_PARAMETER: parameter MaxObjectCount is missing");
}

TEST(PeerWithoutPullTest, SaysThatItDoesNotKnowIt) {
  TPeerOptions options;
  options.hasPull = false;
  const TCimServer server(std::make_shared<TSyntheticOperations>(1), options);
  TRawClient client(server.GetPort());
  EXPECT_EQ(GetError(client.Exchange(
                PostIntrinsic("OpenEnumerateInstances", ClassParameter("BENCH_Record")))),
            "7 CIM_ERR_NOT_SUPPORTED: OpenEnumerateInstances");
}

}  // namespace
}  // namespace cimserver
