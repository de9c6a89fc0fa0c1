// CAccessSelector: the access level box of a list page. It fills the box for the access
// model of the shown module, runs the login flows when the user picks a level, and lets
// the tool's level follow the level the drive grants ("Authority").
//
// A page holds one, gives it its box and its frame, and delegates three calls:
// FillAccessBox from OnInitDialog, OnAccessSelected on the box's selection change, and
// (first page) PollAuthority on the frame's 2 s timer.
#pragma once

#include "module/host/HostFwd.h"

#include <afx/afxwin.h>

// What the box needs of the table frame: the module on show and the two ways of applying
// a level. The frame offers these under the same names; the pages adapt it.
class IAccessLevelFrame {
public:
    virtual ~IAccessLevelFrame() = default;
    // The module on show; null when there is no frame or no module.
    virtual IHostDeviceModule* GetModule() = 0;
    virtual void ApplyAccessLevel(IHostDeviceModule* module, int level) = 0;
    virtual void ApplyAccessLevelToAll(int level) = 0;
};

// String ids of the box's entries.
constexpr UINT IDS_ACCESS_ORDINARY_USER = 1966;
constexpr UINT IDS_ACCESS_SUPER_ADMIN = 1981;
constexpr UINT IDS_ACCESS_INSPECTION = 202;
constexpr UINT IDS_ACCESS_BASIC = 159;
constexpr UINT IDS_ACCESS_EXPERT = 199;
constexpr UINT IDS_ACCESS_FACTORY = 171;
constexpr UINT IDS_ACCESS_LOG_OUT = 209;

// Item data of the model 2 entry that logs out; it is a command, never a level.
constexpr int ACCESS_LOG_OUT = 4;
// What "InputPassword" receives to log out.
constexpr double ACCESS_LOG_OUT_CODE = 65535;

class CAccessSelector {
public:
    // `firstPage` selects the live list's behaviour: the chosen index is remembered in
    // m_authorityIndex and the poll compares the drive's level with it. The second page
    // compares with the item data of the present entry instead.
    explicit CAccessSelector(BOOL firstPage = TRUE) : m_bFirstPage(firstPage) {}

    // The box (control 1006) and the frame; both stay the caller's.
    void Attach(CComboBox* box, IAccessLevelFrame* frame) {
        m_pBox = box;
        m_pFrame = frame;
    }

    // Empties the box, inserts the entries of the module's access model and selects the
    // entry of the module's level.
    void FillAccessBox();
    // The selection of the box changed: runs the flow of the module's access model.
    void OnAccessSelected();
    // Takes the drive's "Authority" over (model 2, online).
    void PollAuthority();

    // Opens the drive's factory access before a read of all parameters: the code goes
    // to "Factory" in models 0 and 1, to "TempAuthority" in model 2; the result isn't
    // looked at. Nothing happens without a module or the device helper.
    static void WriteFactoryAccessCode(IHostDeviceModule* module);

    // 1 after a password went to the drive, so that the next change of "Authority" is
    // taken over also when it rises.
    int m_relockPending = 0;
    // First page: the entry index last selected or taken over.
    int m_authorityIndex = 0;

private:
    void AddEntry(UINT stringId, const char* text, int level);
    // Selects entry `index` and, on the first page, remembers it as the level on show.
    void SelectEntry(int index);
    // Runs the login dialog; TRUE on OK with `password` and `applyToAll` filled in.
    BOOL RunLogin(CString& password, int& applyToAll);
    void ShowWrongPassword();
    void WriteNamedVar(IHostDeviceModule* module, const char* name, double value);
    void SelectedModel0(IHostDeviceModule* module, int level);
    void SelectedModel1(IHostDeviceModule* module, int level);
    void SelectedModel2(IHostDeviceModule* module, int level);

    BOOL m_bFirstPage;
    CComboBox* m_pBox = nullptr;
    IAccessLevelFrame* m_pFrame = nullptr;
};

// A password as the drive's password register takes it: the leading decimal integer of
// the text, 0 when there is none.
int PasswordTextToCode(const CString& text);
