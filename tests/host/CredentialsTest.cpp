// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>
#include <utility>

#include "host/Credentials.h"
#include "host/TUsageError.h"
#include "tests/support/TTemporaryFolder.h"

namespace host {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kUser[] = "DIAGSRUNNER_SERVER_USER";
constexpr char kPassword[] = "DIAGSRUNNER_SERVER_PASSWORD";

TSecret MakeSecret(const char* text) {
  return TSecret{std::string_view(text)};
}

struct TGoodFile {
  const char* name;
  std::string text;
  const char* user;
  const char* password;
};
void PrintTo(const TGoodFile& row, std::ostream* out) {
  *out << row.name;
}

class GoodCredentialsTest : public ::testing::TestWithParam<TGoodFile> {};

TEST_P(GoodCredentialsTest, AreReadAsTheyAre) {
  const TTemporaryFolder folder;
  const TCredentials read = ReadCredentialsFile(folder.Write("f", GetParam().text));
  EXPECT_EQ(read.user, GetParam().user);
  EXPECT_EQ(read.password.Get(), GetParam().password);
}
INSTANTIATE_TEST_SUITE_P(
    All, GoodCredentialsTest,
    ::testing::Values(
        TGoodFile{"Plain", "user=me\npassword=sesame\n", "me", "sesame"},
        TGoodFile{"OtherOrder", "password=sesame\nuser=me\n", "me", "sesame"},
        TGoodFile{"NoNewlineAtTheEnd", "user=me\npassword=sesame", "me", "sesame"},
        TGoodFile{"LineEndsOfWindows", "user=me\r\npassword=sesame\r\n", "me", "sesame"},
        TGoodFile{"WindowsWithoutTheLastEnd", "user=me\r\npassword=sesame\r", "me", "sesame"},
        TGoodFile{"CommentsAndBlankLines",
                  "# of node 7\n\n \t\nuser=me\n  # x\npassword=sesame\n\n#", "me", "sesame"},
        TGoodFile{"EqualsSigns", "user=a=b\npassword==x=y=\n", "a=b", "=x=y="},
        TGoodFile{"NumberSigns", "user=#me\npassword=#1 # no comment\n", "#me", "#1 # no comment"},
        TGoodFile{"Blanks", "user= m e \npassword=  correct horse \n", " m e ", "  correct horse "},
        TGoodFile{"Utf8", "user=J\xc3\xbcrgen\npassword=p\xc3\xa4\xe2\x82\xac\n", "J\xc3\xbcrgen",
                  "p\xc3\xa4\xe2\x82\xac"},
        TGoodFile{"ColonInThePassword", "user=me\npassword=a:b\n", "me", "a:b"},
        TGoodFile{"EmptyPassword", "user=me\npassword=\n", "me", ""},
        TGoodFile{"ControlCharacterInAComment", "#\t\x01\nuser=me\npassword=p\n", "me", "p"}),
    [](const auto& row) { return row.param.name; });

struct TBadFile {
  const char* name;
  std::string text;
  const char* message;
};
void PrintTo(const TBadFile& row, std::ostream* out) {
  *out << row.name;
}

class BadCredentialsTest : public ::testing::TestWithParam<TBadFile> {};

TEST_P(BadCredentialsTest, AreRefusedByFileAndLineWithoutTheirText) {
  const TTemporaryFolder folder;
  const std::string path = folder.Write("f", GetParam().text);
  try {
    ReadCredentialsFile(path);
    FAIL() << "it was taken";
  } catch (const TUsageError& e) {
    const std::string message = e.what();
    EXPECT_THAT(message, StartsWith(path + ": " + GetParam().message));
    EXPECT_THAT(message.substr(path.size()), Not(HasSubstr("sesame")));
    EXPECT_THAT(message.substr(path.size()), Not(HasSubstr("somebody")));
  }
}
INSTANTIATE_TEST_SUITE_P(
    All, BadCredentialsTest,
    ::testing::Values(
        TBadFile{"Empty", "", "has no line user=NAME"},
        TBadFile{"NoUser", "password=sesame\n", "has no line user=NAME"},
        TBadFile{"NoPassword", "user=somebody\n", "has no line password=PASSWORD"},
        TBadFile{"PasswordAlone", "sesame\n", "line 1: is neither"},
        TBadFile{"UnknownKey", "user=somebody\nsesame=1\n", "line 2: is neither"},
        TBadFile{"OtherCase", "User=somebody\n", "line 1: is neither"},
        TBadFile{
            "BlankBeforeTheKey", " user=somebody\n",
            "line 1: is neither user=NAME nor password=PASSWORD nor a comment; take the blanks"},
        TBadFile{
            "BlankBehindTheKey", "user =somebody\n",
            "line 1: is neither user=NAME nor password=PASSWORD nor a comment; take the blanks"},
        TBadFile{"MarkOfUtf8", "\xef\xbb\xbfuser=somebody\n",
                 "line 1: is neither user=NAME nor password=PASSWORD nor a comment; it begins with "
                 "a byte order mark"},
        TBadFile{"ColonInThePlaceOfTheSign", "user: somebody\n",
                 "line 1: is neither user=NAME nor password=PASSWORD nor a comment; write = in the "
                 "place of the colon"},
        TBadFile{"KeyAlone", "user\n", "line 1: is neither"},
        TBadFile{"TwoUsers", "user=somebody\nuser=somebody\n", "line 2: names a second user"},
        TBadFile{"TwoPasswords", "\npassword=sesame\n#\npassword=sesame\n",
                 "line 4: has a second password"},
        TBadFile{"EmptyUser", "user=\npassword=sesame\n", "line 1: user: needs a name"},
        TBadFile{"ColonInTheUser", "user=somebody:sesame\n", "line 1: user: holds a colon"},
        TBadFile{"Control", "user=somebody\npassword=sesame\x1b[2J\n",
                 "line 2: holds a control character"},
        TBadFile{"Tab", "password=sesame\t\n", "line 1: holds a control character"},
        TBadFile{"Delete", "password=sesame\x7f\n", "line 1: holds a control character"},
        TBadFile{"TwoReturns", "user=somebody\r\r\n", "line 1: holds a control character"},
        TBadFile{"Nul", std::string("user=some\0body\n", 15), "line 1: holds a NUL byte"},
        TBadFile{"NulInAComment", std::string("\n#\0\n", 4), "line 2: holds a NUL byte"},
        TBadFile{"Utf16", std::string("\xff\xfeu\0s\0e\0r\0=\0", 12), "line 1: holds a NUL byte"},
        TBadFile{"TooLong", "user=somebody\npassword=" + std::string(1016, 'x') + "\n",
                 "line 2: is longer than 1024 bytes"},
        TBadFile{"LongComment", "#" + std::string(1024, 'x') + "\n",
                 "line 1: is longer than 1024 bytes"}),
    [](const auto& row) { return row.param.name; });

TEST(CredentialsTest, AFaultInTheFileNamesItsOption) {
  TCredentialSources sources;
  sources.file = "/no/such/file";
  try {
    FindCredentials(std::move(sources));
    FAIL() << "it was taken";
  } catch (const TUsageError& e) {
    EXPECT_STREQ(e.what(), "--credentials: /no/such/file: No such file or directory");
  }
}

TEST(CredentialsTest, ALineMayHave1024Bytes) {
  const TTemporaryFolder folder;
  const std::string password(1015, 'x');
  const TCredentials read =
      ReadCredentialsFile(folder.Write("f", "user=me\r\npassword=" + password + "\r\n"));
  EXPECT_EQ(read.password.Get(), password);
}

class EnvironmentTest : public ::testing::Test {
 protected:
  EnvironmentTest() { Clear(); }
  ~EnvironmentTest() override { Clear(); }

  static void Clear() {
    ::unsetenv(kUser);
    ::unsetenv(kPassword);
  }
};

TEST_F(EnvironmentTest, IsReadOverwrittenAndRemoved) {
  ::setenv(kUser, "me", 1);
  std::string variable = std::string(kPassword) + "=sesame";
  ::putenv(variable.data());
  const TEnvironmentCredentials taken = TakeEnvironmentCredentials();
  EXPECT_EQ(taken.user, "me");
  ASSERT_TRUE(taken.password);
  EXPECT_EQ(taken.password->Get(), "sesame");
  EXPECT_EQ(::getenv(kUser), nullptr);
  EXPECT_EQ(::getenv(kPassword), nullptr);
  EXPECT_EQ(variable, std::string(kPassword) + "=" + std::string(6, '\0'));
}

TEST_F(EnvironmentTest, CountsAsNotSetWhenEmptyOrAbsent) {
  EXPECT_FALSE(TakeEnvironmentCredentials().password);
  ::setenv(kUser, "", 1);
  ::setenv(kPassword, "", 1);
  const TEnvironmentCredentials taken = TakeEnvironmentCredentials();
  EXPECT_EQ(taken.user, "");
  EXPECT_FALSE(taken.password);
  EXPECT_EQ(::getenv(kPassword), nullptr);
}

TSecret AnswerAsked(const std::string& user) {
  return MakeSecret(("asked of " + user).c_str());
}

struct TOrder {
  const char* name;
  bool hasFile;
  const char* user;                 // Of the command line.
  const char* environmentUser;      //
  const char* environmentPassword;  // Null: not set.
  bool canAsk;
  const char* wantedUser;
  const char* wantedPassword;
};
void PrintTo(const TOrder& row, std::ostream* out) {
  *out << row.name;
}

class OrderTest : public ::testing::TestWithParam<TOrder> {};

TEST_P(OrderTest, IsFileEnvironmentQuestion) {
  const TTemporaryFolder folder;
  TCredentialSources sources;
  if (GetParam().hasFile) sources.file = folder.Write("f", "user=filed\npassword=file\n");
  sources.user = GetParam().user;
  sources.environment.user = GetParam().environmentUser;
  if (GetParam().environmentPassword != nullptr) {
    sources.environment.password = MakeSecret(GetParam().environmentPassword);
  }
  if (GetParam().canAsk) sources.ask = &AnswerAsked;
  const TCredentials found = FindCredentials(std::move(sources));
  EXPECT_EQ(found.user, GetParam().wantedUser);
  EXPECT_EQ(found.password.Get(), GetParam().wantedPassword);
}
INSTANTIATE_TEST_SUITE_P(
    All, OrderTest,
    ::testing::Values(
        TOrder{"FileFirst", true, "", "eve", "env", true, "filed", "file"},
        TOrder{"BadEnvironmentBehindAFile", true, "", "a:b", "\x01", true, "filed", "file"},
        TOrder{"Environment", false, "", "eve", "env", true, "eve", "env"},
        TOrder{"EnvironmentWithTheSameUser", false, "eve", "eve", "env", true, "eve", "env"},
        TOrder{"PasswordForTheNamedUser", false, "me", "", "env", true, "me", "env"},
        TOrder{"PasswordOfAnotherUser", false, "me", "eve", "env", true, "me", "asked of me"},
        TOrder{"Question", false, "me", "", nullptr, true, "me", "asked of me"},
        TOrder{"QuestionForTheEnvironmentsUser", false, "", "eve", nullptr, true, "eve",
               "asked of eve"},
        TOrder{"Nobody", false, "", "", nullptr, true, "", ""},
        TOrder{"PasswordOfNobody", false, "", "", "env", true, "", ""}),
    [](const auto& row) { return row.param.name; });

struct TNoWay {
  const char* name;
  const char* user;
  const char* environmentUser;
  const char* environmentPassword;
  const char* message;
};
void PrintTo(const TNoWay& row, std::ostream* out) {
  *out << row.name;
}

class NoCredentialsTest : public ::testing::TestWithParam<TNoWay> {};

TEST_P(NoCredentialsTest, SayWhatIsMissingAndNoPassword) {
  TCredentialSources sources;
  sources.user = GetParam().user;
  sources.environment.user = GetParam().environmentUser;
  if (GetParam().environmentPassword != nullptr) {
    sources.environment.password = MakeSecret(GetParam().environmentPassword);
  }
  try {
    FindCredentials(std::move(sources));
    FAIL() << "something was found";
  } catch (const TUsageError& e) {
    EXPECT_THAT(e.what(), HasSubstr(GetParam().message));
    EXPECT_THAT(e.what(), Not(HasSubstr("sesame")));
  }
}
constexpr char kThreeWays[] =
    "is not known; name a file with --credentials, set DIAGSRUNNER_SERVER_USER and "
    "DIAGSRUNNER_SERVER_PASSWORD, or run on a terminal to be asked";
INSTANTIATE_TEST_SUITE_P(
    All, NoCredentialsTest,
    ::testing::Values(
        TNoWay{"NamesTheThreeWays", "me", "", nullptr, kThreeWays},
        TNoWay{"NamesTheUser", "me\x1b", "", nullptr, "password of me\\x1b: "},
        TNoWay{"PasswordOfAnother", "me", "eve", "sesame", kThreeWays},
        TNoWay{"EnvironmentsUserAlone", "", "eve", nullptr, kThreeWays},
        TNoWay{"ColonInTheUser", "", "eve:sesame", "sesame", "DIAGSRUNNER_SERVER_USER: holds a"},
        TNoWay{"Control", "", "eve", "sesame\n", "DIAGSRUNNER_SERVER_PASSWORD: holds a control"}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace host
