// CGroupDialog: the properties of one custom group: its name, its description and, in the
// picker it holds, its members in order. OK writes them into the group; Cancel leaves name
// and description as they were.
#pragma once

#include "module/host/HostFwd.h"
#include "module/host/IMessage_LanguageChanged.h"

#include <skin/ZorSkin.h>

class CMultiSelectVarDialog;

constexpr UINT IDD_GROUP_DIALOG = 1960;
constexpr UINT IDC_GROUP_NAME = 2070;
constexpr UINT IDC_GROUP_DESCRIPTION = 2074;
constexpr UINT IDC_GROUP_PICKER_FRAME = 1003;

class CGroupDialog : public CZorSkinPDialog, public IMessage_LanguageChanged {
public:
    explicit CGroupDialog(CWnd* pParent = nullptr);
    ~CGroupDialog() override;

    void SetGroup(IGroupNode* group) { m_pGroup = group; }
    void SetVarStore(IVarStore* store) { m_pStore = store; }
    CMultiSelectVarDialog* GetPicker() const { return m_pPicker; }

    void OnLanguageChanged() override;
    void Release() override {}

    // Bound to edits 2070 and 2074.
    CString m_strName;
    CString m_strDescription;

protected:
    BOOL OnInitDialog() override;
    void OnDestroy() override;
    void OnOK() override;
    void DoDataExchange(CDataExchange* pDX) override;

private:
    void RefuseName(const CString& text);

    IGroupNode* m_pGroup = nullptr;
    IVarStore* m_pStore = nullptr;
    IHostWindowTranslator* m_pTranslator = nullptr;
    CMultiSelectVarDialog* m_pPicker = nullptr;
};
