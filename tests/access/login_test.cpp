// The login dialog as a user meets it, the password test, the box that ignores the
// wheel, and the module binary holding no credential as text.
#include "access_fixture.h"

#include "TempDir.h"

#include "groups/Credentials.h"
#include "groups/LoginDialog.h"
#include "groups/Sha256.h"
#include "module/MessageSinks.h"
#include "module/ParmiraApp.h"
#include "zorhost/services/HostUiService.h"

#include <afx/afxqt.h>

#include <QCoreApplication>
#include <QWheelEvent>
#include <QWidget>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>

namespace {

// Runs a login dialog whose run is handed to `act`; returns the DoModal result.
INT_PTR RunLogin(CLoginDialog& dlg, const std::function<void(CDialog&)>& act) {
    CAfxModalDriver driver(act);
    const INT_PTR result = dlg.DoModal();
    EXPECT_EQ(driver.runs, 1);
    return result;
}

class LoginDialogTest : public ::testing::Test {
protected:
    void SetUp() override {
        services.Register<IHostUiService>(&ui);
        theApp.SetQueryInterfaceCallback(services.Context(), &zorhost::HostServices::Query);
    }
    void TearDown() override { theApp.SetQueryInterfaceCallback(0, nullptr); }
    zorhost::HostServices services;
    zorhost::CHostUiService ui;
};

} // namespace

// Keys type digits only; a text set as a whole (the word, pasted) is taken as it is, and
// Enter is OK.
TEST_F(LoginDialogTest, OkHandsBackTypedTextAndApplyToAll) {
    CLoginDialog dlg;
    const INT_PTR result = RunLogin(dlg, [](CDialog& d) {
        EXPECT_EQ(d.GetWindowTextString(), "用户权限登录");
        CWnd* check = d.GetDlgItem(IDC_LOGIN_APPLY_ALL);
        ASSERT_NE(check, nullptr);
        EXPECT_FALSE(check->IsWindowVisible()); // the user never sees it
        EXPECT_EQ(d.IsDlgButtonChecked(IDC_LOGIN_APPLY_ALL), 1u);
        CWnd* edit = d.GetDlgItem(IDC_LOGIN_PASSWORD);
        ASSERT_NE(edit, nullptr);
        edit->SetFocus();
        const std::pair<UINT, wchar_t> keys[] = {{'1', L'1'}, {'A', L'a'}, {'2', L'2'},
                                                 {'X', L'X'}, {'3', L'3'}, {VK_BACK, L'\b'},
                                                 {'4', L'4'}};
        for (auto [vk, ch] : keys)
            AfxTestPressKey(edit, vk, ch);
        EXPECT_EQ(edit->GetWindowTextString(), "124");
        AfxTestTypeText(edit, "BenchAdmin");
        ShootIfAsked(&d, "login_dialog.png");
        AfxTestPressKey(edit, VK_RETURN, L'\r');
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(dlg.GetPassword(), "BenchAdmin");
    EXPECT_EQ(dlg.m_nApplyToAll, 1);
}

// The dialog opens in the host's language and follows a change for its whole life. The
// translator it makes is its own to free: the sanitizer build's leak check sees one that
// is not.
TEST_F(LoginDialogTest, FollowsLanguage) {
    const int listenersBefore = theApp.languageListeners.GetCount();
    ui.SetLanguage(zorhost::UiLanguage::English);
    {
        CLoginDialog dlg;
        EXPECT_EQ(theApp.languageListeners.GetCount(), listenersBefore + 1);
        const INT_PTR cancelled = RunLogin(dlg, [&](CDialog& d) {
            AfxTestTypeText(d.GetDlgItem(IDC_LOGIN_PASSWORD), "2468");
            EXPECT_EQ(d.GetWindowTextString(), "User login");
            ui.SetLanguage(zorhost::UiLanguage::Chinese);
            CMessageLanguageChanged(&theApp).OnLanguageChanged();
            EXPECT_EQ(d.GetWindowTextString(), "用户权限登录");
            static_cast<CButton*>(d.GetDlgItem(IDCANCEL))->Click();
        });
        // Cancelled: what was typed is not used.
        EXPECT_EQ(cancelled, IDCANCEL);
        EXPECT_EQ(dlg.GetPassword(), "");
    }
    EXPECT_EQ(theApp.languageListeners.GetCount(), listenersBefore);

    // Without the host's text service the dialog still works.
    services.Withhold<IHostUiService>();
    CLoginDialog plain;
    const INT_PTR result = RunLogin(plain, [](CDialog& d) {
        AfxTestTypeText(d.GetDlgItem(IDC_LOGIN_PASSWORD), "7");
        static_cast<CButton*>(d.GetDlgItem(IDOK))->Click();
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(plain.GetPassword(), "7");
}

// ---------------------------------------------------------------- credentials
TEST(CredentialsTest, PasswordTest) {
    const CString code = PARMIRA_TEST_FACTORY_CODE;
    const CString word = PARMIRA_TEST_ADMIN_WORD;
    EXPECT_EQ(GetFactoryAccessCodeText(), code);
    EXPECT_EQ(GetFactoryAccessCode(), std::atoi(PARMIRA_TEST_FACTORY_CODE));

    CString upper = word, lower = word, mixed = word;
    upper.MakeUpper();
    lower.MakeLower();
    for (int i = 0; i < mixed.GetLength(); i += 2)
        mixed.SetAt(i, wchar_t(std::toupper(int(mixed.GetAt(i)))));
    for (const CString& pass : {code, word, upper, lower, mixed})
        EXPECT_TRUE(IsAccessPasswordValid(pass)) << pass.GetString();

    const CString fails[] = {"",           code + "0",  code.Left(3), " " + code, word + " ",
                             word.Left(9), word + word, "0000",       "admin"};
    for (const CString& fail : fails)
        EXPECT_FALSE(IsAccessPasswordValid(fail)) << fail.GetString();
}

// Neither credential can be read out of the module: no digits of the code and no form
// of the word stand in it, while the salted digest that replaces the word does.
TEST(CredentialsTest, ModuleHoldsNoCredentialText) {
    std::ifstream in(PARMIRA_BINARY_DIR "/bin/QXParmira.so", std::ios::binary);
    ASSERT_TRUE(in) << "QXParmira.so not built";
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ASSERT_GT(bytes.size(), 100000u);

    std::string lowered = bytes;
    std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                   [](char c) { return char(std::tolower(static_cast<unsigned char>(c))); });
    CString word = PARMIRA_TEST_ADMIN_WORD;
    word.MakeLower();
    EXPECT_EQ(lowered.find(word.str()), std::string::npos);
    // Also not as UTF-16, the other way a text may be stored.
    std::string wide;
    for (char c : word.str())
        wide += std::string{c, '\0'};
    EXPECT_EQ(lowered.find(wide), std::string::npos);
    // The code's digits as a text of their own; digits inside a longer name (compiler
    // labels such as a sanitizer's numbered data) are not a stored code.
    const std::string code = PARMIRA_TEST_FACTORY_CODE;
    auto alnum = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
    for (size_t at = bytes.find(code); at != std::string::npos; at = bytes.find(code, at + 1)) {
        const bool joined = (at > 0 && alnum(bytes[at - 1])) ||
                            (at + code.size() < bytes.size() && alnum(bytes[at + code.size()]));
        EXPECT_TRUE(joined) << "factory code stands as text at offset " << at;
    }

    const std::string digest = Sha256Hex(std::string(PARMIRA_TEST_ADMIN_SALT) + word.str());
    EXPECT_NE(bytes.find(digest), std::string::npos) << "the module should hold the digest";
}

// ---------------------------------------------------------------- the box
TEST(NoWheelComboBoxTest, WheelChangesNothing) {
    BoxPage page;
    ASSERT_TRUE(page.Create(BoxPage::kId));
    auto wheel = [](CWnd& box) {
        QWidget* w = AfxWidgetFromHandle(box.GetSafeHwnd());
        ASSERT_NE(w, nullptr);
        QWheelEvent e(QPointF(5, 5), w->mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(w, &e);
    };
    // The control: the same wheel turns a plain box of the framework.
    CComboBox plain;
    ASSERT_TRUE(plain.Create(CBS_DROPDOWNLIST | WS_CHILD | WS_VISIBLE, CRect(10, 40, 170, 64),
                             &page, 1007));
    for (CComboBox* box : {static_cast<CComboBox*>(&page.box), &plain}) {
        for (const char* text : {"a", "b", "c"})
            box->AddString(text);
        box->SetCurSel(0);
        wheel(*box);
        EXPECT_EQ(box->GetCurSel(), box == &plain ? 1 : 0);
    }
    page.DestroyWindow();
}
