// A small drive for the value-text suites: a device description written for them, loaded
// into the reference host's project chain (module "M1"), with the host's value service,
// a device helper whose reads and writes the tests script, and a translator.
#pragma once

#include "module/ParmiraApp.h"
#include "module/host/HostContract.h"
#include "zorhost/HostServices.h"
#include "zorhost/device/DeviceDescription.h"
#include "zorhost/model/ProjectModel.h"
#include "zorhost/services/HostVarUtil.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <vector>

// Direct reads and writes as a test scripts them; every call is recorded.
class ScriptedDeviceHelper : public IHostDeviceHelper {
public:
    struct Write {
        CString moduleKey;
        UINT address = 0;
        int dataType = 0;
        Variant value;
        int mode = 0, timeout_ms = 0, tries = 0;
    };
    struct Read {
        UINT address = 0;
        int dataType = 0;
    };

    // What the next writes do: accept, or refuse with these texts (possibly none).
    bool acceptWrites = true;
    std::vector<CString> refusalTexts;
    // Values the drive holds for reads; an address not here fails to read.
    std::map<UINT, Variant> driveValues;

    std::vector<Write> writes;
    std::vector<Read> reads;

    int GetProtocolKind(IHostDeviceModule*) override { return 0; }
    IVarObjEx* FindNamedVar(IHostDeviceModule*, const CString&) override { return nullptr; }
    BOOL WriteNamedVar(const CString&, const CString&, double) override { return 0; }
    IFunctionEntry* FindFunctionVar(IHostDeviceModule*, const CString&) override { return nullptr; }
    BOOL ReadCsvParamFile(const CString&, IParamFile*, IHostDeviceModule*) override { return 0; }
    BOOL ReadParameter(const CString&, UINT, double&) override { return 0; }
    BOOL WriteParameter(const CString&, UINT, double) override { return 0; }
    BOOL WriteParameterAs(const CString&, UINT, int, double) override { return 0; }
    BOOL WriteVarDirect(const CString& moduleKey, UINT address, int dataType, const Variant& value,
                        Variant& result, std::vector<CString>& errors, int mode, int timeout_ms,
                        int tries) override;
    BOOL ReadVarDirect(const CString& moduleKey, UINT address, int dataType, Variant& value,
                       int timeout_ms, int tries) override;
    double GetUiScale() override { return 1.0; }
};

// Translation by a table; string 2037 answers with a marker so that a test sees which
// string became the caption.
class TableUiService : public IHostUiService {
public:
    std::map<CString, CString> translations;
    std::vector<UINT> stringsAsked;

    BOOL GetString(CString& text, HINSTANCE, UINT id, int) override;
    IHostWindowTranslator* CreateWindowTranslator() override { return nullptr; }
    void RetranslateWindow(HWND) override {}
    void TranslateText(CString& translated, const CString& text) override;
    void TranslateMenu(HMENU) override {}
    void ApplySkin(HWND, int, int) override {}
};

class ValuesTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // The variable of `code` in module M1 (fails the test when absent).
    IVarObjEx* Var(const char* code);
    IVarAttr* Attr(const char* code) { return Var(code)->GetAttr(); }
    zorhost::model::CDeviceModule& Module() { return *m_module; }

    zorhost::CHostVarUtil util;
    ScriptedDeviceHelper helper;
    TableUiService ui;
    zorhost::model::CProjectRoot root;
    zorhost::HostServices services;
    std::shared_ptr<const zorhost::device::DeviceDescription> device;

private:
    zorhost::model::CDeviceModule* m_module = nullptr;
};

// The device's JSON text (also used by the bench).
const char* ValuesDeviceJson();
