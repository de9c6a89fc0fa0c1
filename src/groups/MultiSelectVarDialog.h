// CMultiSelectVarDialog: the child of the group dialog in which parameters are picked out
// of the drive's group structure (tree and left list) into an ordered list (right list).
// The right rows are the group's members to be; their order is the members' order.
#pragma once

#include "module/TemplateList.h"
#include "module/host/HostFwd.h"
#include "module/host/IMessage_LanguageChanged.h"
#include "pages/ListCtrlEx.h"

#include <skin/ZorSkin.h>

#include <functional>

class CTreeItemData;

constexpr UINT IDD_MULTI_SELECT_VAR = 136;
constexpr UINT IDC_MSV_TREE = 2007;
constexpr UINT IDC_MSV_LEFT_LIST = 1126;
constexpr UINT IDC_MSV_ADD = 1125;
constexpr UINT IDC_MSV_REMOVE = 1127;
constexpr UINT IDC_MSV_RIGHT_LIST = 1984;
constexpr UINT IDC_MSV_UP = 1019;
constexpr UINT IDC_MSV_DOWN = 1041;

using CVarRows = CTemplateList<IVarObjEx*, IVarObjEx*>;

// A virtual list whose cell texts come from its dialog.
class CChooserList : public CListCtrlEx {
public:
    std::function<CString(int, int)> cellText;
    CString OnGetCellText(int nItem, int nSubItem) override {
        return cellText ? cellText(nItem, nSubItem) : CString();
    }
};

class CMultiSelectVarDialog : public CZorSkinPDialog, public IMessage_LanguageChanged {
public:
    explicit CMultiSelectVarDialog(CWnd* pParent = nullptr);
    ~CMultiSelectVarDialog() override;

    // Before the window exists.
    void SetVarStore(IVarStore* store) { m_pStore = store; }
    // Replaces the right rows by a copy of `vars`.
    void SetChosenVars(const CVarRows& vars);
    // Appends the right rows in order to `vars`, skipping null and what it holds already.
    void GetChosenVars(CVarRows& vars) const;

    // What the buttons do; also for keyboard and tests.
    void AddSelected();
    void RemoveSelected();
    void MoveUp();
    void MoveDown();
    // Fills the left list from the tree item (null or the root: the whole store).
    void FillLeftRows(HTREEITEM item);

    CTreeCtrl& GetTree() { return m_tree; }
    CChooserList& GetLeftList() { return m_leftList; }
    CChooserList& GetRightList() { return m_rightList; }
    const CVarRows& GetLeftRows() const { return m_leftRows; }
    const CVarRows& GetRightRows() const { return m_rightRows; }

    void OnLanguageChanged() override;
    void Release() override {}

protected:
    BOOL OnInitDialog() override;
    void OnDestroy() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    BOOL PreTranslateMessage(MSG* pMsg) override;
    void OnOK() override {}
    void OnCancel() override {}

private:
    void BuildTree();
    BOOL IsGroupShown(IGroupNode* group, IHostDeviceModule* module, int level);
    HTREEITEM AddGroupItem(IGroupNode* group, HTREEITEM parent, IHostDeviceModule* module,
                           int level);
    HTREEITEM InsertRecordItem(const CString& text, int image, HTREEITEM parent, int kind,
                               void* object);
    void WalkGroup(IGroupNode* group, int level);
    void OfferLeft(IVarObjEx* var, int level);
    int TreeLevel() const;
    CString LeftText(int row, int column);
    CString RightText(int row, int column);
    void SetupColumns();

    CZorSkinPTreeCtrl m_tree;
    CChooserList m_leftList;
    CChooserList m_rightList;
    CImageList m_images;
    CTemplateList<CTreeItemData*, CTreeItemData*> m_treeItems; // owns the records
    HTREEITEM m_hRoot = nullptr;
    CVarRows m_leftRows;
    CVarRows m_rightRows;
    IVarStore* m_pStore = nullptr;
    IHostWindowTranslator* m_pTranslator = nullptr;
};

// Registers the templates of dialogs 136 and 1960 under `module`.
void RegisterGroupDialogResources(HINSTANCE module);
