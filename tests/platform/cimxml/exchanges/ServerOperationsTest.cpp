// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "platform/cimxml/TCIMXMLOperations.h"
#include "platform/contract/ILogger.h"
#include "platform/contract/TQELException.h"
#include "platform/contract/TRootObject.h"
#include "tests/platform/cimxml/http/SessionTest.h"

namespace diagstest {
namespace {

using namespace NZEPQEL20;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string Frame(const std::string& operation, int id, const std::string& content,
                  const std::string& kind = "IMETHODRESPONSE") {
  const std::string body = "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"" +
                           std::to_string(id) + "\" PROTOCOLVERSION=\"1.0\"><SIMPLERSP><" + kind +
                           " NAME=\"" + operation + "\">" + content + "</" + kind +
                           "></SIMPLERSP></MESSAGE></CIM>";
  return "HTTP/1.1 200 OK\r\nContent-Type: application/xml\r\nContent-Length: " +
         std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string Classes(int id) {
  return Frame("GetClass", id,
               "<IRETURNVALUE><CLASS NAME=\"A\"><METHOD NAME=\"Run\" TYPE=\"uint32\"><PARAMETER."
               "REFERENCE NAME=\"Job\"/></METHOD></CLASS></IRETURNVALUE>");
}

std::string Page(const std::string& operation, int id, const char* context, int instances) {
  std::string content = "<IRETURNVALUE>";
  for (int i = 0; i < instances; ++i) {
    content +=
        "<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"A\"/><INSTANCE CLASSNAME=\"A\"/>"
        "</VALUE.NAMEDINSTANCE>";
  }
  content += "</IRETURNVALUE><PARAMVALUE NAME=\"EnumerationContext\" PARAMTYPE=\"string\">";
  if (context != nullptr) content += std::string("<VALUE>") + context + "</VALUE>";
  content += "</PARAMVALUE><PARAMVALUE NAME=\"EndOfSequence\" PARAMTYPE=\"boolean\"><VALUE>";
  return Frame(operation, id,
               content + (context == nullptr ? "TRUE" : "FALSE") + "</VALUE></PARAMVALUE>");
}

class TKeepingLogger : public ILogger {
 public:
  void Log(EQELLogSeverity /*severity*/, const std::string& text) override {
    lines.push_back(text);
  }
  std::vector<std::string> lines;
};

class ServerOperationsTest : public ::testing::Test {
 protected:
  ServerOperationsTest() : m_options(MakeOptions("http", m_server.GetPort())) {
    TRootObject::SetCoreLogger(&m_logger);
  }
  ~ServerOperationsTest() override { TRootObject::SetCoreLogger(nullptr); }

  void Send(const std::string& reply) { m_server.Queue(TPlay().Send(reply)); }
  TCIMXMLOperations& Open() {
    m_operations = std::make_unique<TCIMXMLOperations>(m_options, "root/cimv2");
    return *m_operations;
  }
  std::vector<std::string> GetAsked() const {
    std::vector<std::string> names;
    for (const TSeenRequest& request : m_server.GetRequests()) {
      const std::size_t at = request.head.find("CIMMethod: ") + 11;
      names.push_back(request.head.substr(at, request.head.find('\r', at) - at));
    }
    return names;
  }
  template <typename TCall>
  std::string GetFailure(const TCall& call) {
    try {
      call();
    } catch (const TQELException& e) {
      return e.what();
    }
    return "";
  }
  static bool TakeAll(TCIMInstanceData&& /*instance*/) { return true; }

  TScriptedServer m_server;
  TServerOptions m_options;
  TKeepingLogger m_logger;
  std::unique_ptr<TCIMXMLOperations> m_operations;
};

const TCIMReference kPath("root/cimv2", "A", {{"Id", "1"}});

TEST_F(ServerOperationsTest, FetchesAClassOnceWhateverTheCaseOfItsName) {
  Send(Classes(1001));
  TCIMXMLOperations& operations = Open();
  const auto first = operations.GetClass("root/cimv2", "A");
  EXPECT_EQ(operations.GetClass("root/CIMV2", "a"), first);
  EXPECT_THAT(GetAsked(), ElementsAre("GetClass"));
}

TEST_F(ServerOperationsTest, AsksOncePerConnectionWhetherThereArePullOperations) {
  Send(Frame("OpenEnumerateInstances", 1001, "<ERROR CODE=\"7\"/>"));
  Send(Frame("EnumerateInstances", 1002, ""));
  Send(Frame("EnumerateInstances", 1003, ""));
  TCIMXMLOperations& operations = Open();
  operations.EnumerateInstances("root/cimv2", "A", TakeAll);
  operations.EnumerateInstances("root/cimv2", "A", TakeAll);
  EXPECT_THAT(GetAsked(),
              ElementsAre("OpenEnumerateInstances", "EnumerateInstances", "EnumerateInstances"));
}

TEST_F(ServerOperationsTest, DoesNotTakeAFailureOfBothForAServerWithoutPullOperations) {
  Send(Frame("OpenEnumerateInstances", 1001, "<ERROR CODE=\"1\" DESCRIPTION=\"down\"/>"));
  Send(Frame("EnumerateInstances", 1002, "<ERROR CODE=\"1\" DESCRIPTION=\"still down\"/>"));
  Send(Page("OpenEnumerateInstances", 1003, nullptr, 1));
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(GetFailure([&] { operations.EnumerateInstances("root/cimv2", "A", TakeAll); }),
              HasSubstr("still down"));
  operations.EnumerateInstances("root/cimv2", "A", TakeAll);
  EXPECT_THAT(GetAsked(), ElementsAre("OpenEnumerateInstances", "EnumerateInstances",
                                      "OpenEnumerateInstances"));
}

TEST_F(ServerOperationsTest, ClosesAnEnumerationThatIsLeftBeforeItsEnd) {
  Send(Page("OpenEnumerateInstances", 1001, "c1", 2));
  Send(Frame("CloseEnumeration", 1002, ""));
  int taken = 0;
  Open().EnumerateInstances("root/cimv2", "A", [&taken](TCIMInstanceData&&) {
    ++taken;
    return false;
  });
  EXPECT_EQ(taken, 1);
  EXPECT_THAT(GetAsked(), ElementsAre("OpenEnumerateInstances", "CloseEnumeration"));
  EXPECT_THAT(m_server.GetRequests().back().body, HasSubstr("<VALUE>c1</VALUE>"));
}

TEST_F(ServerOperationsTest, ClosesAnEnumerationWhoseReceiverThrows) {
  Send(Page("OpenEnumerateInstances", 1001, "c1", 1));
  Send(Frame("CloseEnumeration", 1002, ""));
  EXPECT_THROW(
      Open().EnumerateInstances("root/cimv2", "A", [](TCIMInstanceData&&) -> bool { throw 5; }),
      int);
  EXPECT_THAT(GetAsked(), Contains("CloseEnumeration"));
}

TEST_F(ServerOperationsTest, GivesUpOnAServerThatPromisesMoreForEver) {
  int id = 1001;
  Send(Page("OpenEnumerateInstances", id++, "c", 0));
  for (int i = 0; i < 150; ++i) Send(Page("PullInstancesWithPath", id++, "c", 0));
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(GetFailure([&] { operations.EnumerateInstances("root/cimv2", "A", TakeAll); }),
              HasSubstr("the server promises more and sends nothing"));
  // One to open, one to close.
  EXPECT_EQ(m_server.GetRequests().size(), 102U);
}

TEST_F(ServerOperationsTest, BoundsTheRepliesOfOneOperationTogether) {
  m_options.maxReplyBytes = 2000;
  int id = 1001;
  Send(Page("OpenEnumerateInstances", id++, "c", 10));
  for (int i = 0; i < 100; ++i) Send(Page("PullInstancesWithPath", id++, "c", 10));
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(GetFailure([&] { operations.EnumerateInstances("root/cimv2", "A", TakeAll); }),
              HasSubstr("the replies to one operation have no end"));
  EXPECT_LT(m_server.GetRequests().size(), 30U);
}

TEST_F(ServerOperationsTest, AsksOnceMoreAfterALostConnection) {
  m_server.Queue(TPlay().Close());
  Send(Frame("GetInstance", 1001, "<IRETURNVALUE><INSTANCE CLASSNAME=\"A\"/></IRETURNVALUE>"));
  EXPECT_EQ(Open().GetInstance(kPath).path.GetPath(), kPath.GetPath());
  EXPECT_THAT(GetAsked(), ElementsAre("GetInstance", "GetInstance"));
  EXPECT_EQ(m_server.GetRequests()[0].body, m_server.GetRequests()[1].body);
  EXPECT_THAT(m_logger.lines, Contains(HasSubstr("asking once more")));
}

TEST_F(ServerOperationsTest, MakesChangesOnConnectionsThatNobodyCanHaveClosed) {
  for (int id = 1001; id < 1004; ++id) Send(Frame("DeleteInstance", id, ""));
  TCIMXMLOperations& operations = Open();
  for (int i = 0; i < 3; ++i) operations.DeleteInstance(kPath);
  EXPECT_EQ(m_server.CountConnections(), 3);
}

TEST_F(ServerOperationsTest, AsksOnOneConnectionForWhatChangesNothing) {
  for (int id = 1001; id < 1004; ++id) {
    Send(Frame("GetInstance", id, "<IRETURNVALUE><INSTANCE CLASSNAME=\"A\"/></IRETURNVALUE>"));
  }
  TCIMXMLOperations& operations = Open();
  for (int i = 0; i < 3; ++i) operations.GetInstance(kPath);
  EXPECT_EQ(m_server.CountConnections(), 1);
}

TEST_F(ServerOperationsTest, AsksNoMoreThanTwice) {
  m_server.Queue(TPlay().Close());
  m_server.Queue(TPlay().Close());
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(GetFailure([&] { operations.GetInstance(kPath); }), HasSubstr("lost"));
  EXPECT_EQ(m_server.GetRequests().size(), 2U);
}

TEST_F(ServerOperationsTest, NeverRepeatsAMethodCall) {
  Send(Classes(1001));
  m_server.Queue(TPlay().Close());
  TCIMXMLOperations& operations = Open();
  TKeyMap parameters = {{"Loops", TCIMValue("3")}};
  EXPECT_THAT(GetFailure([&] { operations.InvokeMethod(kPath, "Run", parameters); }),
              HasSubstr("lost"));
  EXPECT_THAT(GetAsked(), ElementsAre("GetClass", "Run"));
  EXPECT_THAT(parameters, ElementsAre(::testing::Key("Loops")));
}

struct TChange {
  const char* name;
  void (*call)(TCIMXMLOperations&);
  std::size_t requests;
};

class ServerChangeTest : public ServerOperationsTest,
                         public ::testing::WithParamInterface<TChange> {};

TEST_P(ServerChangeTest, IsRepeatedOnlyWhereTwiceIsTheSameAsOnce) {
  m_server.Queue(TPlay().Close());
  m_server.Queue(TPlay().Close());
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(GetFailure([&] { GetParam().call(operations); }), HasSubstr("lost"));
  EXPECT_EQ(m_server.GetRequests().size(), GetParam().requests);
}

INSTANTIATE_TEST_SUITE_P(
    All, ServerChangeTest,
    ::testing::Values(TChange{"Create",
                              [](TCIMXMLOperations& o) {
                                TCIMInstanceData data;
                                data.path.SetClassName("A");
                                o.CreateInstance("root/cimv2", data);
                              },
                              1},
                      TChange{"Delete", [](TCIMXMLOperations& o) { o.DeleteInstance(kPath); }, 1},
                      TChange{"Modify",
                              [](TCIMXMLOperations& o) {
                                TCIMInstanceData data;
                                data.path = kPath;
                                o.ModifyInstance(data);
                              },
                              2}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(ServerOperationsTest, NeverPullsTwiceWithOneContext) {
  Send(Page("OpenEnumerateInstances", 1001, "c", 1));
  m_server.Queue(TPlay().Close());
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(GetFailure([&] { operations.EnumerateInstances("root/cimv2", "A", TakeAll); }),
              HasSubstr("lost"));
  const std::vector<std::string> asked = GetAsked();
  EXPECT_EQ(std::count(asked.begin(), asked.end(), "PullInstancesWithPath"), 1);
}

TEST_F(ServerOperationsTest, BoundsAnOperationInTime) {
  m_options.totalTimeout = std::chrono::milliseconds(100);
  m_server.Queue(TPlay().Hang());
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(GetFailure([&] { operations.GetInstance(kPath); }),
              HasSubstr("no complete answer within 0."));
}

TEST_F(ServerOperationsTest, RemembersTheJobsThatItStarted) {
  Send(Classes(1001));
  const std::string job =
      "<RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>0</VALUE></RETURNVALUE><PARAMVALUE NAME=\"Job\" "
      "PARAMTYPE=\"reference\"><VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"A_Job\"/>"
      "</VALUE.REFERENCE></PARAMVALUE>";
  Send(Frame("Run", 1002, job, "METHODRESPONSE"));
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(operations.GetStartedJobs(), IsEmpty());
  TKeyMap parameters;
  operations.InvokeMethod(kPath, "Run", parameters);
  ASSERT_EQ(operations.GetStartedJobs().size(), 1U);
  EXPECT_EQ(operations.GetStartedJobs()[0].GetPath(), "root/cimv2:A_Job");
}

const char* const kStarted =
    "<RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>4096</VALUE></RETURNVALUE><PARAMVALUE NAME=\"Job\" "
    "PARAMTYPE=\"reference\"><VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"A_Job\"/>"
    "</VALUE.REFERENCE></PARAMVALUE>";

TEST_F(ServerOperationsTest, RemembersAJobOnceAndEvenWhenTheRestCannotBeUsed) {
  Send(Classes(1001));
  Send(Frame("Run", 1002, kStarted, "METHODRESPONSE"));
  Send(Frame("Run", 1003,
             "<RETURNVALUE><VALUE>x</VALUE></RETURNVALUE>" +
                 std::string(kStarted).substr(std::string(kStarted).find("<PARAMVALUE")),
             "METHODRESPONSE"));
  TCIMXMLOperations& operations = Open();
  TKeyMap parameters;
  operations.InvokeMethod(kPath, "Run", parameters);
  EXPECT_THAT(GetFailure([&] { operations.InvokeMethod(kPath, "Run", parameters); }),
              HasSubstr("its result should be a uint32"));
  EXPECT_EQ(operations.GetStartedJobs().size(), 1U);
}

TEST_F(ServerOperationsTest, TakesNoJobThatChangesAJobForATest) {
  Send(Classes(1001));
  Send(Frame("RequestStateChange", 1002, kStarted, "METHODRESPONSE"));
  Send(Frame("Other", 1003, kStarted, "METHODRESPONSE"));
  TCIMXMLOperations& operations = Open();
  TKeyMap parameters;
  operations.InvokeMethod(kPath, "RequestStateChange", parameters);
  parameters.clear();
  EXPECT_EQ(operations.InvokeOnJob(kPath, "Other", parameters), TCIMValue::UInt32(4096));
  EXPECT_EQ(parameters.size(), 1U);
  EXPECT_THAT(operations.GetStartedJobs(), IsEmpty());
}

TEST_F(ServerOperationsTest, BoundsARequestAboutAJobAsItBoundsOthers) {
  m_options.requestTimeout = std::chrono::milliseconds(100);
  Send(Classes(1001));
  m_server.Queue(TPlay().Hang());
  TCIMXMLOperations& operations = Open();
  TKeyMap parameters;
  EXPECT_THAT(GetFailure([&] { operations.InvokeOnJob(kPath, "Run", parameters); }),
              HasSubstr("no complete answer within 0.1 s"));
}

TEST_F(ServerOperationsTest, DoesNotCloseAnEnumerationWithAServerThatDoesNotAnswer) {
  m_options.requestTimeout = std::chrono::milliseconds(100);
  Send(Page("OpenEnumerateInstances", 1001, "c1", 1));
  m_server.Queue(TPlay().Hang());
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(GetFailure([&] { operations.EnumerateInstances("root/cimv2", "A", TakeAll); }),
              HasSubstr("no complete answer"));
  EXPECT_THAT(GetAsked(), ElementsAre("OpenEnumerateInstances", "PullInstancesWithPath"));
}

TEST_F(ServerOperationsTest, AsksInTheDefaultNamespaceWhenNoneIsNamed) {
  Send(Classes(1001));
  Send(Frame("EnumerateClassNames", 1002, ""));
  TCIMXMLOperations& operations = Open();
  EXPECT_EQ(operations.GetClass("", "A")->name, "A");
  EXPECT_EQ(operations.GetClass("/root/cimv2/", "A")->name, "A");
  operations.EnumerateClassNames("", "", true);
  EXPECT_THAT(GetAsked(), ElementsAre("GetClass", "EnumerateClassNames"));
  for (const TSeenRequest& request : m_server.GetRequests()) {
    EXPECT_TRUE(request.HasLine("CIMObject: root%2Fcimv2")) << request.head;
  }
}

TEST_F(ServerOperationsTest, TellsWhyAMethodWasNotStarted) {
  Send(Classes(1001));
  Send(Frame("Run", 1002, "<ERROR CODE=\"1\" DESCRIPTION=\"no tool\"/>", "METHODRESPONSE"));
  Send(Frame("GetInstance", 1003, "<ERROR CODE=\"6\"/>"));
  TCIMXMLOperations& operations = Open();
  TKeyMap parameters;
  EXPECT_NE(GetFailure([&] { operations.InvokeMethod(kPath, "Run", parameters); }), "");
  EXPECT_NE(GetFailure([&] { operations.GetInstance(kPath); }), "");
  EXPECT_THAT(operations.TakeLastFailure(), HasSubstr("CIM_ERR_FAILED (1): no tool"));
  EXPECT_THAT(operations.GetProblems(), IsEmpty());
}

TEST_F(ServerOperationsTest, ListsAFailureOnceWhateverItsNumbers) {
  m_options.requestTimeout = std::chrono::milliseconds(50);
  for (const char* start : {"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n<CIM", ""}) {
    m_server.Queue(TPlay().Send(start).Hang());
  }
  m_server.Queue(TPlay().Send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n<CIM>").Hang());
  TCIMXMLOperations& operations = Open();
  for (int i = 0; i < 3; ++i) {
    EXPECT_NE(GetFailure([&] { operations.DeleteInstance(kPath); }), "");
  }
  EXPECT_EQ(operations.GetProblems().size(), 2U);
}

struct TCrowd {
  const char* name;
  std::string thing;
  const char* reason;
};

std::ostream& operator<<(std::ostream& out, const TCrowd& row) {
  return out << row.name;
}

class ServerCrowdTest : public ServerOperationsTest,
                        public ::testing::WithParamInterface<TCrowd> {};

TEST_P(ServerCrowdTest, IsRefusedBeforeItCostsItsSquare) {
  std::string content = "<IRETURNVALUE><CLASS NAME=\"A\">";
  if (GetParam().thing.find("PARAMETER") == 1) content += "<METHOD NAME=\"M\" TYPE=\"uint8\">";
  for (int i = 0; i < 4097; ++i) content += GetParam().thing;
  if (GetParam().thing.find("PARAMETER") == 1) content += "</METHOD>";
  Send(Frame("GetClass", 1001, content + "</CLASS></IRETURNVALUE>"));
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(GetFailure([&] { operations.GetClass("root/cimv2", "A"); }),
              HasSubstr(std::string("the reply holds more than 4096 ") + GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(
    All, ServerCrowdTest,
    ::testing::Values(TCrowd{"Properties", "<PROPERTY NAME=\"P\" TYPE=\"uint8\"/>", "properties"},
                      TCrowd{"Methods", "<METHOD NAME=\"P\" TYPE=\"uint8\"/>", "methods"},
                      TCrowd{"Parameters", "<PARAMETER NAME=\"P\" TYPE=\"uint8\"/>", "parameters"},
                      TCrowd{"Qualifiers", "<QUALIFIER NAME=\"P\" TYPE=\"uint8\"/>", "qualifiers"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(ServerOperationsTest, RefusesAnInstanceWithTooManyProperties) {
  std::string content = "<IRETURNVALUE><INSTANCE CLASSNAME=\"A\">";
  for (int i = 0; i < 4097; ++i) content += "<PROPERTY NAME=\"P\" TYPE=\"uint8\"/>";
  Send(Frame("GetInstance", 1001, content + "</INSTANCE></IRETURNVALUE>"));
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(GetFailure([&] { operations.GetInstance(kPath); }),
              HasSubstr("the reply holds more than 4096 properties"));
}

TEST_F(ServerOperationsTest, CutsALongDescriptionBetweenCharacters) {
  std::string description;
  for (int i = 0; i < 5000; ++i) description += "\xC3\xA4";
  Send(Frame("DeleteInstance", 1001,
             "<ERROR CODE=\"1\" DESCRIPTION=\"\xC2\x9B" + description + "\"/>"));
  TCIMXMLOperations& operations = Open();
  const std::string reason = GetFailure([&] { operations.DeleteInstance(kPath); });
  EXPECT_LT(reason.size(), 2300U);
  EXPECT_EQ(reason.find("\xC2\x9B"), std::string::npos);
  EXPECT_EQ(reason.find("\xC3."), std::string::npos);
}

TEST_F(ServerOperationsTest, ListsWhatKeptTheServerFromAnsweringOnce) {
  for (int i = 0; i < 2; ++i) Send("HTTP/1.1 500 Oops\r\n\r\n");
  Send(Frame("DeleteInstance", 1003, "<ERROR CODE=\"6\"/>"));
  TCIMXMLOperations& operations = Open();
  for (int i = 0; i < 3; ++i) {
    EXPECT_NE(GetFailure([&] { operations.DeleteInstance(kPath); }), "");
  }
  ASSERT_EQ(operations.GetProblems().size(), 1U);
  EXPECT_THAT(operations.GetProblems()[0], HasSubstr("500"));
  EXPECT_THAT(operations.TakeLastFailure(), HasSubstr("500"));
  EXPECT_EQ(operations.TakeLastFailure(), "");
}

TEST_F(ServerOperationsTest, ReportsOnceWhatOfAReplyWasNotUsable) {
  Send(Frame("GetInstance", 1001,
             "<IRETURNVALUE><INSTANCE CLASSNAME=\"A\"><PROPERTY NAME=\"P\" TYPE=\"uint8\"><VALUE>x"
             "</VALUE></PROPERTY></INSTANCE></IRETURNVALUE>"));
  EXPECT_TRUE(Open().GetInstance(kPath).properties.at(0).value.IsNull());
  EXPECT_THAT(m_logger.lines,
              ElementsAre("GetInstance of root/cimv2:A.Id=\"1\": " + m_operations->GetServerName() +
                          ": 1 places of the reply could not be used as they are, the first: P: "
                          "'x' is no uint8"));
}

TEST_F(ServerOperationsTest, RefusesAParameterThatXmlCannotHoldBeforeAsking) {
  TCIMXMLOperations& operations = Open();
  EXPECT_THAT(GetFailure([&] {
                operations.DeleteInstance(TCIMReference("root/cimv2", "A", {{"Id", "\x01"}}));
              }),
              HasSubstr("parameter InstanceName: byte 0 of a text"));
  EXPECT_THAT(m_server.GetRequests(), IsEmpty());
}

TEST_F(ServerOperationsTest, ServesSeveralThreadsAtOnce) {
  for (int i = 0; i < 40; ++i) m_server.Queue(TPlay().Send("HTTP/1.1 503 Busy\r\n\r\n"));
  TCIMXMLOperations& operations = Open();
  const auto ask = [&operations, this] {
    for (int i = 0; i < 20; ++i) {
      EXPECT_THAT(GetFailure([&] { operations.DeleteInstance(kPath); }), HasSubstr("503"));
    }
  };
  std::thread other(ask);
  ask();
  other.join();
  EXPECT_EQ(m_server.GetRequests().size(), 40U);
}

}  // namespace
}  // namespace diagstest
