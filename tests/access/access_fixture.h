// The access tests run against the reference host: modules of the shipped descriptions,
// each with its simulated drive, which grants "Authority" 3 for the factory code and
// falls back to 1 at a log-out. Around it: a frame that records how levels are applied,
// and a page-like window holding the access box.
#pragma once

#include "controls/NoWheelComboBox.h"
#include "groups/AccessSelector.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostWindowTranslator.h"
#include "zorhost/ReferenceHost.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

// The host's device helper with a record of the named writes on their way to the drive.
class RecordingDeviceHelper : public IHostDeviceHelper {
public:
    explicit RecordingDeviceHelper(IHostDeviceHelper& inner) : m_inner(inner) {}
    struct Write {
        CString key, name;
        double value;
    };
    std::vector<Write> writes;
    // The writes in order, as "name=value".
    std::vector<std::string> WriteLog() const;

    int GetProtocolKind(IHostDeviceModule* module) override {
        return m_inner.GetProtocolKind(module);
    }
    IVarObjEx* FindNamedVar(IHostDeviceModule* module, const CString& name) override {
        return m_inner.FindNamedVar(module, name);
    }
    BOOL WriteNamedVar(const CString& moduleKey, const CString& name, double value) override {
        writes.push_back({moduleKey, name, value});
        return m_inner.WriteNamedVar(moduleKey, name, value);
    }
    IFunctionEntry* FindFunctionVar(IHostDeviceModule* module, const CString& name) override {
        return m_inner.FindFunctionVar(module, name);
    }
    BOOL ReadCsvParamFile(const CString& path, IParamFile* file,
                          IHostDeviceModule* module) override {
        return m_inner.ReadCsvParamFile(path, file, module);
    }
    BOOL ReadParameter(const CString& key, UINT address, double& value) override {
        return m_inner.ReadParameter(key, address, value);
    }
    BOOL WriteParameter(const CString& key, UINT address, double value) override {
        return m_inner.WriteParameter(key, address, value);
    }
    BOOL WriteParameterAs(const CString& key, UINT address, int type, double value) override {
        return m_inner.WriteParameterAs(key, address, type, value);
    }
    BOOL WriteVarDirect(const CString& key, UINT address, int type, const Variant& value,
                        Variant& result, std::vector<CString>& errors, int mode, int timeout_ms,
                        int tries) override {
        return m_inner.WriteVarDirect(key, address, type, value, result, errors, mode, timeout_ms,
                                      tries);
    }
    BOOL ReadVarDirect(const CString& key, UINT address, int type, Variant& value, int timeout_ms,
                       int tries) override {
        return m_inner.ReadVarDirect(key, address, type, value, timeout_ms, tries);
    }
    double GetUiScale() override { return m_inner.GetUiScale(); }

private:
    IHostDeviceHelper& m_inner;
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

// One module of a test project.
struct TestModule {
    const char* file; // under devices/, or an absolute path
    const char* key;
    bool online;
    int level;
};

class AccessTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Opens a project of these modules in the reference host, each with its simulated
    // drive; the first is the module on show, all form the workspace.
    void Open(std::vector<TestModule> modules);
    zorhost::model::CDeviceModule* Module(const char* key) { return host.Module(key); }
    zorhost::sim::SimulatedDrive* Drive(const char* key) { return host.Drive(key); }
    // One refresh cycle with the shown module's "Authority" in the query, as the first
    // page keeps it in its reads.
    void ReadAuthority();
    // The drive itself changes the level it grants (another tool, a power cycle).
    void DriveReports(int level);
    void SetOnline(bool online);

    void Fill() { selector.FillAccessBox(); }
    // Simulates the user's choice of entry `index`.
    void Choose(int index) { page.box.ChooseEntry(index); }
    CString EntryText(int index) const;
    int Selected() const { return page.box.GetCurSel(); }
    int SelectedData() const;

    zorhost::ReferenceHost host;
    RecordingDeviceHelper helper{host.DeviceHelper()};
    RecordingFrame frame;
    BoxPage page;
    CAccessSelector selector{TRUE};
    CAfxRecordingResponder prompts;
};
