// A small host for the access tests: real device modules loaded from the shipped
// descriptions, a stand-in drive behind IHostDeviceHelper that grants "Authority" for
// the codes it knows, a frame that records how levels are applied, and a page-like
// window holding the access box.
#pragma once

#include "controls/NoWheelComboBox.h"
#include "groups/AccessSelector.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostWindowTranslator.h"
#include "zorhost/HostServices.h"
#include "zorhost/model/ProjectModel.h"
#include "zorhost/services/HostVarUtil.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

// The drive side of IHostDeviceHelper. InputPassword with the factory code grants level
// 3, with `drivePassword` level 2, and 65535 logs out to level 1; the granted level shows
// in the module's "Authority" variable as a read would bring it.
class FakeDeviceHelper : public IHostDeviceHelper {
public:
    struct Write {
        CString key, name;
        double value;
    };
    std::vector<Write> writes;
    std::vector<zorhost::model::CDeviceModule*> modules;
    int drivePassword = 1357;

    // Names of the writes, in order ("Factory=2468" ...).
    std::vector<std::string> WriteLog() const;
    // Stores `level` in the module's "Authority" variable, as the drive reports it.
    static void SetDriveAuthority(zorhost::model::CDeviceModule* module, int level);

    int GetProtocolKind(IHostDeviceModule* module) override;
    IVarObjEx* FindNamedVar(IHostDeviceModule* module, const CString& name) override;
    BOOL WriteNamedVar(const CString& moduleKey, const CString& name, double value) override;
    IFunctionEntry* FindFunctionVar(IHostDeviceModule*, const CString&) override { return nullptr; }
    BOOL ReadCsvParamFile(const CString&, IParamFile*, IHostDeviceModule*) override { return 0; }
    BOOL ReadParameter(const CString&, UINT, double&) override { return 0; }
    BOOL WriteParameter(const CString&, UINT, double) override { return 0; }
    BOOL WriteParameterAs(const CString&, UINT, int, double) override { return 0; }
    BOOL WriteVarDirect(const CString&, UINT, int, const Variant&, Variant&, std::vector<CString>&,
                        int, int, int) override {
        return 0;
    }
    BOOL ReadVarDirect(const CString&, UINT, int, Variant&, int, int) override { return 0; }
    double GetUiScale() override { return 1.0; }
};

// The table frame as the box sees it: applies a level to the shown module (or to every
// module of the workspace) and records each call.
class RecordingFrame : public IAccessLevelFrame {
public:
    IHostDeviceModule* module = nullptr;
    std::vector<IHostDeviceModule*> workspace;
    std::vector<std::string> calls; // "apply 2", "all 1"

    IHostDeviceModule* GetModule() override { return module; }
    void ApplyAccessLevel(IHostDeviceModule* m, int level) override;
    void ApplyAccessLevelToAll(int level) override;
};

// Counts what the login dialog does with its translator.
class CountingTranslator : public IHostWindowTranslator {
public:
    explicit CountingTranslator(int* alive) : m_alive(alive) { ++*m_alive; }
    ~CountingTranslator() override { --*m_alive; }
    void Attach(HWND window) override { attached = window; }
    void Retranslate(int) override { ++retranslations; }
    HWND attached = nullptr;
    int retranslations = 0;

private:
    int* m_alive;
};

class FakeUiService : public IHostUiService {
public:
    int translatorsAlive = 0;
    CountingTranslator* lastTranslator = nullptr;
    BOOL GetString(CString& text, HINSTANCE, UINT, int) override {
        text.Empty();
        return FALSE;
    }
    IHostWindowTranslator* CreateWindowTranslator() override {
        lastTranslator = new CountingTranslator(&translatorsAlive);
        return lastTranslator;
    }
    void RetranslateWindow(HWND) override {}
    void TranslateText(CString& translated, const CString& text) override { translated = text; }
    void TranslateMenu(HMENU) override {}
    void ApplySkin(HWND, int, int) override {}
};

// Answers the login dialogs that open, in order: the text is typed into the password
// edit, then OK or Cancel is clicked. A dialog with no answer left is cancelled.
class LoginAnswers {
public:
    LoginAnswers();
    void Ok(const char* text) { m_answers.push_back({true, text}); }
    void Cancel() { m_answers.push_back({false, ""}); }
    int Shown() const { return m_driver.runs; }

private:
    struct Answer {
        bool ok;
        std::string text;
    };
    std::deque<Answer> m_answers;
    CAfxModalDriver m_driver;
};

// The page's part: a window with box 1006.
class BoxPage : public CDialog {
public:
    BoxPage();
    CNoWheelComboBox box;
    CAccessSelector* selector = nullptr;

protected:
    BOOL OnInitDialog() override;
    // The box's selection change goes to the selector, as on a list page.
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
};

class AccessTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Adds a module of the device in devices/<file>; the first becomes the shown one.
    zorhost::model::CDeviceModule* AddModule(const char* file, const char* key, bool online,
                                             int level);
    // Fills the box for the shown module.
    void Fill();
    // Simulates the user's choice of entry `index`.
    void Choose(int index);
    CString EntryText(int index) const;
    int Selected() const { return page.box.GetCurSel(); }
    int SelectedData() const;

    zorhost::HostServices services;
    zorhost::CHostVarUtil util;
    FakeDeviceHelper helper;
    RecordingFrame frame;
    std::vector<std::unique_ptr<zorhost::model::CDeviceModule>> owned;
    BoxPage page;
    CAccessSelector selector{TRUE};
    CAfxRecordingResponder prompts;
};
