// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>

#include "tests/support/cimserver/TWbemcli.h"

namespace cimserver {
namespace {

constexpr char kNameSpace[] = "root/cimv2";

TEST(WbemcliTest, ReadsObjectsWithTheirProperties) {
  const TWbemcliAnswer answer = ReadWbemcli(0,
                                            "h:5/root/cimv2:A_B.Key=\"x.y, z\",N=3\n"
                                            "-Text=\"a \\\"b\\\", c\"\n"
                                            "-None=\n"
                                            "-Number=-7\n"
                                            "-List=\"one\",\"t,wo\"\n"
                                            "-Lines=\"first\n-second\"\n"
                                            "-Other=\"a&#10;b\"\n"
                                            "\n"
                                            "h:5/root/cimv2:A_C\n"
                                            "-Text=\"\"\n"
                                            "\n",
                                            "", kNameSpace);
  EXPECT_EQ(answer.exitStatus, 0);
  EXPECT_EQ(answer.cimStatus, 0U);
  ASSERT_EQ(answer.objects.size(), 2U);
  EXPECT_EQ(answer.objects[0].path.GetPath(), "root/cimv2:A_B.Key=\"x.y, z\",N=\"3\"");
  EXPECT_EQ(answer.objects[0].properties,
            (std::map<std::string, std::string>{{"Text", "a \"b\", c"},
                                                {"None", ""},
                                                {"Number", "-7"},
                                                {"List", "one,t,wo"},
                                                {"Lines", "first\n-second"},
                                                {"Other", "a\nb"}}));
  EXPECT_EQ(answer.objects[1].path.GetPath(), "root/cimv2:A_C");
}

TEST(WbemcliTest, ReadsPathsInPathsWithAndWithoutHosts) {
  const TWbemcliAnswer answer = ReadWbemcli(
      0,
      "h:5/root/cimv2:A_T.One={root/cimv2:A.K=\"1\",L=\"2\"},Two={h/root/cimv2B.K=\"3\"}\n"
      "-One={root/cimv2:A.L=\"2\",K=\"1\"}\n",
      "", kNameSpace);
  ASSERT_EQ(answer.objects.size(), 1U);
  EXPECT_EQ(answer.objects[0].path.FindKey("One")->ToString(10), "root/cimv2:A.K=\"1\",L=\"2\"");
  EXPECT_EQ(answer.objects[0].path.FindKey("Two")->ToString(10), "root/cimv2:B.K=\"3\"");
  EXPECT_EQ(answer.objects[0].properties.at("One"), "root/cimv2:A.K=\"1\",L=\"2\"");
}

TEST(WbemcliTest, ReadsWhatAMethodReturned) {
  const TWbemcliAnswer answer = ReadWbemcliCall(0,
                                                "h:5/root/cimv2:A.K=\"a b: c\" Run: 4096\n"
                                                "Job (reference): {root/cimv2:J.K=\"j\"}\n"
                                                "Text (string): a: (b): \\\"c\\\"\n"
                                                "-more\n"
                                                "\n"
                                                "Sum (uint64): 12\n",
                                                "", kNameSpace);
  EXPECT_EQ(answer.returnValue, "4096");
  EXPECT_EQ(
      answer.outParameters,
      (std::map<std::string, std::string>{
          {"Job", "root/cimv2:J.K=\"j\""}, {"Text", "a: (b): \"c\"\n-more\n"}, {"Sum", "12"}}));
  EXPECT_TRUE(answer.objects.empty());
}

TEST(WbemcliTest, ReadsAClassWithItsSuperclass) {
  const TWbemcliAnswer answer =
      ReadWbemcli(0, "h:5/root/cimv2:A_B : A_A\n-Id#=\n-List[]=\n", "", kNameSpace);
  ASSERT_EQ(answer.objects.size(), 1U);
  EXPECT_EQ(answer.objects[0].path.GetClassName(), "A_B");
  EXPECT_EQ(answer.objects[0].properties.count("Id#"), 1U);
}

struct TErrorRow {
  const char* err;
  unsigned int status;
  const char* error;
};
void PrintTo(const TErrorRow& row, std::ostream* out) {
  *out << row.err;
}

TEST(WbemcliTest, ReadsFailures) {
  for (const TErrorRow& row :
       {TErrorRow{"*\n* wbemcli: Cim: (6) CIM_ERR_NOT_FOUND: not\n(there)\n*\n", 6, "not\n(there)"},
        {"*\n* wbemcli: Http Exception: Couldn't connect to server\n*\n", 0,
         "Http Exception: Couldn't connect to server"},
        {"usage", 0, "usage"}}) {
    const TWbemcliAnswer answer = ReadWbemcli(16, "", row.err, kNameSpace);
    EXPECT_EQ(answer.exitStatus, 16);
    EXPECT_EQ(answer.cimStatus, row.status) << testing::PrintToString(row);
    EXPECT_EQ(answer.error, row.error) << testing::PrintToString(row);
  }
}

TEST(WbemcliTest, RefusesWhatItDoesNotUnderstand) {
  EXPECT_THROW(ReadWbemcli(0, "h:5/root/other:A\n", "", kNameSpace), std::runtime_error);
  EXPECT_THROW(ReadWbemcli(0, "h:5/root/cimv2:A\n-Text=\"open", "", kNameSpace),
               std::runtime_error);
  EXPECT_THROW(ReadWbemcliCall(0, "h:5/root/cimv2:A\n", "", kNameSpace), std::runtime_error);
}

}  // namespace
}  // namespace cimserver
