// CWriteVarDialog: the fields of a packed value (bits, bit ranges or digits) in a grid,
// one row per field. The user picks a value per field and the dialog joins them into
// one figure. It writes nothing: the caller commits the figure like a typed text.
#pragma once

#include "module/host/HostFwd.h"
#include "module/host/IMessage_LanguageChanged.h"

#include <skin/ZorSkin.h>

#include <memory>

constexpr UINT IDD_WRITE_VAR = 2058;
constexpr UINT IDC_WRITE_CODE = 2072;
constexpr UINT IDC_WRITE_VALUE = 2073;
constexpr UINT IDC_WRITE_NAME = 2074;
constexpr UINT IDC_WRITE_ADDRESS = 2075;
constexpr UINT IDC_WRITE_GRID = 2091;

class CWriteVarDialog : public CZorSkinPDialog, public IMessage_LanguageChanged {
public:
    explicit CWriteVarDialog(CWnd* pParent = nullptr);
    ~CWriteVarDialog() override;

    void SetItem(IVarObjEx* item) { m_pItem = item; }
    // After OK: the joined figure.
    LONGLONG GetEditedValue() const;
    // Joins every row of the grid, as the rows stand, into the figure of edit 2073.
    void RecalculateValue(int row);
    // A hexadecimal field: after an optional "0x" anywhere in the text, the hex digits
    // from there on; the first other character stops it.
    static LONGLONG ParseHexField(const CString& text);

    CZorSkinPGridCtrl* GetGrid() const { return m_pGrid.get(); }
    const CString& GetValueText() const { return m_valueText; }
    int GetKind() const { return m_nKind; }

    void Release() override {}
    void OnLanguageChanged() override;

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;
    void OnOK() override;

private:
    void FillBits(IValueInfo* info, LONGLONG v);
    void FillRanges(IValueInfo* info, LONGLONG v);
    void FillDigits(IValueInfo* info, LONGLONG v);

    IVarObjEx* m_pItem = nullptr;
    std::unique_ptr<CZorSkinPGridCtrl> m_pGrid;
    IHostWindowTranslator* m_pTranslator = nullptr;
    CString m_codeText;
    CString m_nameText;
    CString m_valueText{"00000"};
    int m_hexFlag = 0;
    int m_nKind = 0;
    BOOL m_bLanguageListener = FALSE;
};
