// CWriteLinkerVarDialog: picks the parameter a connector parameter is wired to, from a
// tree of connector groups and the parameters of the selected group. The choice gives
// a number that the list cell commits; the dialog writes nothing itself.
#pragma once

#include "module/TemplateList.h"
#include "module/host/HostFwd.h"
#include "values/LinkEditComboBox.h"

#include <afx/afxcmn.h>
#include <skin/ZorSkin.h>

constexpr UINT IDD_WRITE_LINKER = 201;
constexpr UINT IDC_LINKER_SEARCH = 1023;
constexpr UINT IDC_LINKER_LIST = 1984;
constexpr UINT IDC_LINKER_TREE = 2007;
constexpr UINT IDC_LINKER_CODE = 2072;
constexpr UINT IDC_LINKER_VALUE = 2073;
constexpr UINT IDC_LINKER_NAME = 2074;

// Kinds of connector: the groups' own kinds 1 to 3, and the combined kinds.
enum ConnectorKind {
    ConnectorNone = 0,
    ConnectorB = 1,
    ConnectorK = 2,
    ConnectorF = 3,
    ConnectorKF = 4,
    ConnectorBKF = 5,
};

// One row of the list.
class CZorLinkerVarObj {
public:
    CZorLinkerVarObj(IVarAttr* attr, int checked) : m_nChecked(checked), m_pAttr(attr) {}
    virtual ~CZorLinkerVarObj() = default;
    int m_nChecked;
    IVarAttr* m_pAttr; // not owned
};

class CWriteLinkerVarDialog;

// The virtual list of the dialog: its cells come from the dialog's rows.
class CLinkerListCtrl : public CZorSkinPListCtrl {
public:
    void SetDialog(CWriteLinkerVarDialog* dialog) { m_pDialog = dialog; }
    CString OnGetCellText(int nItem, int nSubItem) override;

private:
    CWriteLinkerVarDialog* m_pDialog = nullptr;
};

class CWriteLinkerVarDialog : public CZorSkinPDialog {
public:
    explicit CWriteLinkerVarDialog(CWnd* pParent = nullptr);
    ~CWriteLinkerVarDialog() override;

    void SetItem(IVarObjEx* item);
    void SetCatalog(IVarCatalog* catalog, IConnectorTable* table) {
        m_pCatalog = catalog;
        m_pTable = table;
    }
    // After OK: the value of the chosen connector (or the figure typed).
    int GetValue() const { return m_value; }

    ConnectorKind ConnectorKindOf();
    void FillFromGroup(IConnectorGroup* entry);
    void SearchRows(const CString& text);
    void SelectByValue(int value);

    // A click on row `row` (-1: no row): the single choice and its value.
    void OnRowClicked(int row);

    int GetRowCount() const { return m_rows.GetCount(); }
    CZorLinkerVarObj* GetRow(int index) const { return m_rows.GetAt(index); }
    CTreeCtrl& GetTree() { return m_tree; }
    CLinkerListCtrl& GetList() { return m_list; }
    CLinkEditComboBox& GetSearchBox() { return m_search; }
    HTREEITEM GetRootItem() const { return m_hRoot; }
    LONGLONG GetGroupBase() const { return m_groupBase; }

protected:
    BOOL OnInitDialog() override;
    void OnDestroy() override;
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    BOOL PreTranslateMessage(MSG* pMsg) override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void FillTree();
    void AddGroupsOfKind(int kind);
    void AddRowsOfGroup(IConnectorGroup* entry, BOOL transferableOnly);
    void ClearRows();

    CString m_codeText;
    CString m_nameText;
    int m_value = 0;
    CLinkEditComboBox m_search;
    CLinkerListCtrl m_list;
    CZorSkinPTreeCtrl m_tree;
    CTemplateList<CString, CZorLinkerVarObj*> m_rows;
    HTREEITEM m_hRoot = nullptr;
    IVarAttr* m_pAttr = nullptr;
    IVarCatalog* m_pCatalog = nullptr;
    IConnectorTable* m_pTable = nullptr;
    LONGLONG m_groupBase = 0;
    CZorLinkerVarObj* m_pSelected = nullptr;
    ConnectorKind m_kind = ConnectorNone;
};
