// The function wizard where a person types the addresses of servers into the dialog, and the path of a cube
// file that the machine's provider opens.

#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/automation/SheetObject.h"
#include "tests/platform/data/ado/ProviderDoubles.h"
#include "tests/platform/dialog/win32/Person.h"
#include "tests/platform/settings/windows/SuiteKey.h"
#include "tests/server/LedgerCall.h"
#include "text/Utf8Path.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/servers/ServerWait.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <winsock2.h>

namespace qel::test {
namespace {

using namespace FunctionForm;
using testing::HasSubstr;
using testing::StartsWith;

class ServedWizard : public testing::Test {
protected:
    ServedWizard() {
        key_.SetText(L"MDBPath", PathToUtf8(folder_.Path("suite")));
        doubles_.Log().cubeFile = cubeFile_;
    }

    /// What the call returned while the person acted.
    std::string Call(const std::function<void()>& acts) {
        Arguments arguments;
        arguments.push_back(ObjectValue(sheet_.Cell(3, 2)));
        CallResult result;
        Person::ActDuring([&] { result = Invoke(object_.Get(), L"ShowFormGetVal", arguments); }, acts, "");
        return TextIn(result.value);
    }
    /// The text of the next box, which is answered.
    static std::string Box(int button = IDOK) { return Person::Answer(button); }
    static void TypePath(const Person& person, const std::string& path) {
        person.Type(txtCubeFile, path);
        person.Key(txtCubeFile, VK_TAB);
    }

    const Apartment apartment_;
    const TemporaryFolder folder_;
    const std::string cubeFile_ = PathToUtf8(folder_.Write("foreign.cub", "not our signature"));
    const SuiteKey key_;
    const SheetObject sheet_;
    ProviderDoubles doubles_;
    ComPointer<IDispatch> object_ = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
};

/// A server on this machine that takes connections and never answers.
class SilentServer {
public:
    SilentServer() {
        WSADATA details = {};
        ::WSAStartup(MAKEWORD(2, 2), &details);
        socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in place = {};
        place.sin_family = AF_INET;
        place.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
        int size = sizeof(place);
        auto* const address = reinterpret_cast<sockaddr*>(&place);
        EXPECT_EQ(::bind(socket_, address, size), 0);
        ::listen(socket_, SOMAXCONN);
        ::getsockname(socket_, address, &size);
        port_ = ::ntohs(place.sin_port);
    }
    ~SilentServer() {
        ::closesocket(socket_);
        ::WSACleanup();
    }
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;

    std::string Origin() const { return "http://127.0.0.1:" + std::to_string(port_); }

private:
    SOCKET socket_ = INVALID_SOCKET;
    u_short port_ = 0;
};

TEST_F(ServedWizard, ReactsWhileAServerIsSilent) {
    const SilentServer server;
    EXPECT_EQ(Call([&] {
                  const Person person(FunctionFormDesign());
                  TypePath(person, server.Origin() + "/xmla");
                  Box(IDYES);
                  EXPECT_THAT(Box(IDNO), StartsWith("Remember this answer?"));
                  for (const WORD key : {WORD{VK_ESCAPE}, WORD{VK_RETURN}}) {
                      const Person waiting(ServerWaitDesign());
                      EXPECT_EQ(waiting.Read("TxtServer"), server.Origin());
                      EXPECT_FALSE(::IsWindowEnabled(person.Dialog()));
                      waiting.Key("CmdCancel", key);
                      EXPECT_THAT(Box(),
                                  HasSubstr("The request to " + server.Origin() + "/xmla was cancelled."));
                      person.Expect(cboDatabaseList, "");
                      if (key == VK_ESCAPE) {
                          person.Click(CmdOK); // asks the same address again
                      }
                  }
                  person.Click(CmdCancel);
                  person.ExpectGone();
              }),
              " ");
}

TEST_F(ServedWizard, AsksThenFillsCalculatesWritesAndRemembers) {
    const std::string text = Call([&] {
        const Person person(FunctionFormDesign());
        TypePath(person, "http://refused.example/xmla/");
        EXPECT_THAT(Box(IDNO), HasSubstr("http://refused.example"));
        Box(IDNO); // to be remembered
        EXPECT_THAT(Box(), HasSubstr("Nothing was sent to http://refused.example: you refused it"));
        TypePath(person, "http://127.0.0.1:1/xmla"); // nobody listens
        EXPECT_THAT(Box(IDYES), HasSubstr("http://127.0.0.1:1"));
        Box(IDNO);
        EXPECT_THAT(Box(), HasSubstr("http://127.0.0.1:1/xmla cannot be reached"));
        person.Click(CmdOK); // asks the same address again
        EXPECT_THAT(Box(), HasSubstr("http://127.0.0.1:1/xmla cannot be reached"));
        EXPECT_TRUE(doubles_.Log().opened.empty()) << "servers of cubes are not the provider's";

        TypePath(person, cubeFile_);
        person.Choose(cboDatabaseList, "LedgerFNC");
        person.Choose(ComAccX, "SuperSum1");
        person.Choose(ComMember, "1 - Fixed assets");
        person.Click(CheckAcc);
        person.Type(ListAccount, "1");
        person.Key(ListAccount, VK_RETURN);
        person.Click(CheckAcc);
        person.Click(Command1);
        EXPECT_NE(person.ReadWhenShown(TxtCalc), "0");
        person.Click(CmdOK);
        EXPECT_THAT(Box(), HasSubstr("already exists"));
        person.ExpectGone();
    });
    EXPECT_THAT(text, StartsWith('"' + cubeFile_ + "\", \"LedgerFNC\", "));
    EXPECT_EQ(sheet_.Formula(3, 2), "=OrmFunctionQel4.OrmQelFunction.QelF1(" + text + ")");

    doubles_.Log().openFailure =
        ScriptedFailure{static_cast<HRESULT>(0x80004005), "The server does not respond.", "double"};
    EXPECT_EQ(Call([&] {
                  const std::string box = Box(); // before the dialog
                  EXPECT_THAT(box, HasSubstr("The server does not respond."));
                  EXPECT_THAT(box, HasSubstr("LoadCube"));
                  const Person person(FunctionFormDesign());
                  person.Expect(txtCubeFile, cubeFile_);
                  person.Click(CmdCancel);
                  person.ExpectGone();
              }),
              " ");
}

} // namespace
} // namespace qel::test
