// Formulas over servers, which are sent and reach the machine's objects only after a person or servers.ini
// has allowed them.

#include "tests/platform/data/ado/ProviderDoubles.h"
#include "tests/platform/dialog/win32/BoxReader.h"
#include "tests/server/LedgerCall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <semaphore>
#include <shlobj.h>
#include <sstream>
#include <thread>

namespace qel::test {
namespace {

using testing::HasSubstr;

std::filesystem::path SettingsFolder() {
    wchar_t folder[MAX_PATH] = {};
    EXPECT_EQ(::SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder), S_OK);
    return std::filesystem::path(folder) / "qel";
}

/// What a spreadsheet in the foreground has.
class ShownWindow {
public:
    explicit ShownWindow(int show = SW_SHOWNORMAL)
        : window_(::CreateWindowExW(0, L"STATIC", L"sheet", WS_OVERLAPPEDWINDOW, 10, 20, 200, 100, nullptr,
                                    nullptr, nullptr, nullptr)) {
        ::ShowWindow(window_, show);
    }
    ~ShownWindow() { ::DestroyWindow(window_); }
    ShownWindow(const ShownWindow&) = delete;
    ShownWindow& operator=(const ShownWindow&) = delete;

private:
    HWND window_;
};

class ServerQuestion : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::remove_all(SettingsFolder());
        boxes_.choose = [this](const SeenBox& box) {
            const bool isSecond = box.text.find("Remember") != std::string::npos;
            (isSecond ? second_ : first_) = box.text;
            return isSecond ? remember_ : allow_;
        };
    }
    void TearDown() override { std::filesystem::remove_all(SettingsFolder()); }

    std::string Calculate(const std::string& address) {
        LedgerCall call;
        call.cubeFile = address;
        Arguments arguments = ArgumentsOf(call);
        return TextIn(Invoke(object_.Get(), L"QelFuncDemo", arguments).value);
    }
    std::size_t Opened() { return doubles_.Log().opened.size(); }
    static std::string Settings() {
        std::ostringstream text;
        text << std::ifstream(SettingsFolder() / "servers.ini").rdbuf();
        return text.str();
    }

    static constexpr const char* notAllowed = "#err -2147217787";
    const Apartment apartment_;
    ProviderDoubles doubles_;
    ComPointer<IDispatch> object_ = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
    BoxReader boxes_{IDNO};
    int allow_ = IDNO, remember_ = IDNO;
    std::string first_, second_; ///< the texts of the boxes
};

TEST_F(ServerQuestion, IsAskedOnceAndRemembered) {
    const struct {
        const char* address;
        int allow, remember;
        std::size_t opened; ///< by two formulas, through the machine's objects
        const char* settings;
    } cases[] = {
        {"http://127.0.0.1:1/xmla", IDYES, IDNO, 0, ""}, // nobody listens
        {"asazure://once.example:8080/xmla", IDYES, IDNO, 2, ""},
        {"asazure://always.example/xmla", IDYES, IDYES, 2, "[asazure://always.example]"},
        {"http://refused.example/xmla", IDNO, IDNO, 0, ""},
        {"https://never.example/xmla", IDNO, IDYES, 0, "[https://never.example]"},
        {"reports", IDNO, IDNO, 0, ""},
    };
    const ShownWindow sheet;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.address);
        allow_ = c.allow;
        remember_ = c.remember;
        doubles_.Log().opened.clear();
        std::filesystem::remove_all(SettingsFolder());
        first_.clear();
        EXPECT_EQ(Calculate(c.address) == notAllowed, c.allow == IDNO);
        const std::string host = std::string(c.address).substr(0, std::string(c.address).find("/xmla"));
        EXPECT_THAT(first_, HasSubstr(host));
        EXPECT_THAT(second_, HasSubstr(host));
        first_.clear();
        EXPECT_EQ(Calculate(c.address) == notAllowed, c.allow == IDNO);
        EXPECT_EQ(first_, "") << "asked again";
        EXPECT_EQ(Opened(), c.opened);
        EXPECT_THAT(Settings(), HasSubstr(c.settings));
        EXPECT_EQ(Settings().empty(), c.remember == IDNO);
        if (c.remember == IDYES) {
            EXPECT_THAT(Settings(), HasSubstr(c.allow == IDYES ? "Access=always" : "Access=never"));
        }
    }
}

TEST_F(ServerQuestion, IsNeverAskedInTheBackground) {
    EXPECT_EQ(Calculate("http://hidden.example/xmla"), notAllowed);
    EXPECT_EQ(Calculate("x.cub;Location=http://hidden.example/xmla").substr(0, 5), "#err ");
    {
        const ShownWindow covered(SW_SHOWNOACTIVATE);
        EXPECT_EQ(Calculate("http://hidden.example/xmla"), notAllowed);
    }
    std::binary_semaphore shown(0), calculated(0);
    std::jthread otherThread([&] {
        const ShownWindow sheet;
        shown.release();
        calculated.acquire();
    });
    shown.acquire();
    EXPECT_EQ(Calculate("http://hidden.example/xmla"), notAllowed);
    calculated.release();
    otherThread.join();
    EXPECT_EQ(first_, "") << "no window in front, nobody to ask";
    EXPECT_EQ(Opened(), 0U);

    std::filesystem::create_directories(SettingsFolder());
    std::ofstream(SettingsFolder() / "servers.ini")
        << "[asazure://known.example]\nAccess=always\n[http://bad.example:80]\nAccess=never\n";
    EXPECT_NE(Calculate("asazure://known.example/xmla"), notAllowed);
    EXPECT_EQ(Calculate("http://bad.example/xmla"), notAllowed);
    EXPECT_EQ(Opened(), 1U) << "the file is enough";

    const ShownWindow sheet;
    allow_ = IDYES;
    EXPECT_NE(Calculate("asazure://hidden.example/xmla"), notAllowed) << "asked now";
    EXPECT_NE(first_, "");
}

} // namespace
} // namespace qel::test
