#include "values/WriteVarDialog.h"
#include "module/host/VarAttrCodes.h"
#include "values/ValueText.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IValueInfo.h"
#include "module/host/IValueInfoEntry.h"
#include "module/host/IValueInfoList.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "values/GridItem.h"

#include <afx/afxres.h>

#include <algorithm>
#include <cstdlib>

namespace {

void RegisterWriteVarDialog(HINSTANCE module) {
    if (module == nullptr || AfxFindDialogTemplate(module, IDD_WRITE_VAR) != nullptr)
        return;
    DlgTemplate dlg{IDD_WRITE_VAR, "写入参数", 430, 400};
    dlg.controls = {
        // Labels leave room for their English.
        {UINT(IDC_STATIC), DlgCtl::Static, "参数名称", 12, 14, 110, 20},
        {IDC_WRITE_CODE, DlgCtl::Edit, "", 124, 12, 96, 22, ES_READONLY},
        {UINT(IDC_STATIC), DlgCtl::Static, "地址", 228, 14, 60, 20},
        {IDC_WRITE_ADDRESS, DlgCtl::Edit, "", 292, 12, 126, 22, ES_READONLY},
        {UINT(IDC_STATIC), DlgCtl::Static, "描述", 12, 42, 110, 20},
        {IDC_WRITE_NAME, DlgCtl::Edit, "", 124, 40, 294, 22, ES_READONLY},
        {IDC_WRITE_GRID, DlgCtl::Custom, "", 12, 70, 406, 250},
        {UINT(IDC_STATIC), DlgCtl::Static, "当前值", 12, 332, 110, 20},
        {IDC_WRITE_VALUE, DlgCtl::Edit, "", 124, 330, 160, 22, ES_AUTOHSCROLL},
        {UINT(IDOK), DlgCtl::Button, "确定", 250, 364, 80, 26, BS_DEFPUSHBUTTON},
        {UINT(IDCANCEL), DlgCtl::Button, "取消", 338, 364, 80, 26},
    };
    AfxRegisterDialog(module, dlg);
}

BOOL IsHexDigit(wchar_t c) {
    return (c >= L'0' && c <= L'9') || (c >= L'a' && c <= L'f') || (c >= L'A' && c <= L'F');
}

int HexDigitValue(wchar_t c) {
    if (c >= L'0' && c <= L'9')
        return int(c - L'0');
    if (c >= L'a' && c <= L'f')
        return int(c - L'a') + 10;
    return int(c - L'A') + 10;
}

// The leading decimal figure of a text; "3[On]" reads as 3.
LONGLONG LeadingDecimal(const CString& text) {
    LONGLONG value = 0;
    for (int i = 0; i < text.GetLength(); ++i) {
        const wchar_t c = text.GetAt(i);
        if (c < L'0' || c > L'9')
            break;
        value = value * 10 + (c - L'0');
    }
    return value;
}

// The leading hexadecimal figure of a text, without any prefix handling.
LONGLONG LeadingHex(const CString& text) {
    ULONGLONG value = 0;
    for (int i = 0; i < text.GetLength() && IsHexDigit(text.GetAt(i)); ++i)
        value = (value << 4) + ULONGLONG(HexDigitValue(text.GetAt(i)));
    return LONGLONG(value);
}

CString StringById(UINT id) {
    return theApp.LoadText(id);
}

} // namespace

CWriteVarDialog::CWriteVarDialog(CWnd* pParent) : CZorSkinPDialog(IDD_WRITE_VAR, pParent) {
    RegisterWriteVarDialog(theApp.m_hResource);
}

CWriteVarDialog::~CWriteVarDialog() {
    if (m_bLanguageListener)
        theApp.RemoveLanguageListener(this);
    delete m_pTranslator;
}

void CWriteVarDialog::DoDataExchange(CDataExchange* pDX) {
    CZorSkinPDialog::DoDataExchange(pDX);
    DDX_Text(pDX, int(IDC_WRITE_CODE), m_codeText);
    DDX_Text(pDX, int(IDC_WRITE_NAME), m_nameText);
    DDX_Text(pDX, int(IDC_WRITE_VALUE), m_valueText);
}

LONGLONG CWriteVarDialog::ParseHexField(const CString& text) {
    int start = 0;
    if (text.Find("0x") >= 0 || text.Find("0X") >= 0)
        start = 2;
    ULONGLONG value = 0;
    for (int i = start; i < text.GetLength() && IsHexDigit(text.GetAt(i)); ++i)
        value = (value << 4) + ULONGLONG(HexDigitValue(text.GetAt(i)));
    return LONGLONG(value);
}

BOOL CWriteVarDialog::OnInitDialog() {
    CZorSkinPDialog::OnInitDialog();
    IVarAttr* attr = m_pItem != nullptr ? m_pItem->GetAttr() : nullptr;
    IValueInfo* info = attr != nullptr ? attr->GetValueInfo() : nullptr;
    m_nKind = info != nullptr ? info->GetKind() : 0;

    CRect place(12, 70, 418, 320);
    if (CWnd* holder = GetDlgItem(int(IDC_WRITE_GRID))) {
        holder->GetWindowRect(&place);
        ScreenToClient(&place);
        holder->ShowWindow(SW_HIDE);
    }
    m_pGrid = std::make_unique<CZorSkinPGridCtrl>();
    m_pGrid->Create(place, this, IDC_WRITE_GRID + 1);
    const BOOL bits = m_nKind == 2 || m_nKind == 3;
    m_pGrid->InsertColumn(0, StringById(bits ? 1976 : 144).GetString(), bits ? 80 : 60);
    m_pGrid->InsertColumn(1, StringById(2141).GetString(), bits ? 120 : 180);
    m_pGrid->InsertColumn(2, StringById(1977).GetString(), 180);
    m_pGrid->SetColumnEditable(0, FALSE);
    m_pGrid->SetColumnEditable(1, FALSE);
    m_pGrid->SetRowHeaderWidth(30);
    m_pGrid->ShowHeader(TRUE);
    m_pGrid->SetSortMarker(FALSE);
    m_pGrid->SetZoomRange(0.1, 4.0);

    if (attr != nullptr && attr->GetModifyMode() == MODIFY_NEVER) {
        // Read-only: the fields are shown, nothing can be taken.
        if (CWnd* edit = GetDlgItem(int(IDC_WRITE_VALUE)))
            edit->EnableWindow(FALSE);
        if (CWnd* ok = GetDlgItem(IDOK))
            ok->EnableWindow(FALSE);
    }
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr != nullptr && util != nullptr) {
        m_hexFlag = attr->GetDisplayFormat() == FORMAT_HEX ? 1 : 0;
        attr->GetCode(m_codeText);
        attr->GetName(m_nameText);
        m_nameText = VarText::Translate(m_nameText);
        const LONGLONG v = LONGLONG(util->VariantAsDouble(m_pItem->GetValue()));
        if (m_hexFlag)
            m_valueText.Format("0x%04X", unsigned(v));
        else
            m_valueText.Format("%05d", int(v));
        if (m_nKind == 2)
            FillBits(info, v);
        else if (m_nKind == 3)
            FillRanges(info, v);
        else if (m_nKind == 4)
            FillDigits(info, v);
    }
    UpdateData(FALSE);
    delete m_pTranslator;
    m_pTranslator = theApp.MakeWindowTranslator(GetSafeHwnd());
    m_bLanguageListener = theApp.AddLanguageListener(this);
    return TRUE;
}

void CWriteVarDialog::FillBits(IValueInfo* info, LONGLONG v) {
    IHostVarUtil* util = theApp.GetVarUtil();
    IValueInfoList* list = info->GetBitList();
    const int count = list != nullptr ? list->GetCount() : 0;
    for (int i = 0; i < count; ++i) {
        IValueInfoEntry* entry = list->GetAt(i);
        if (entry == nullptr)
            continue;
        const int row = m_pGrid->AddRow();
        CString head;
        head.Format("bit%d", entry->GetBit());
        CString text;
        entry->GetText(text);
        m_pGrid->SetCellText(row, 0, head.GetString());
        m_pGrid->SetCellText(row, 1, VarText::Translate(text).GetString());
        auto* item = new CGridItem(this);
        item->AddOption("0");
        item->AddOption("1");
        CString value;
        value.Format("%d", util->GetBit(v, entry->GetBit()));
        item->SetValue(value.GetString());
        m_pGrid->SetCellItem(row, 2, item);
        m_pGrid->SetRowData(row, DWORD_PTR(entry));
    }
}

void CWriteVarDialog::FillRanges(IValueInfo* info, LONGLONG v) {
    IHostVarUtil* util = theApp.GetVarUtil();
    IValueInfoList* list = info->GetBitRangeList();
    const int count = list != nullptr ? list->GetCount() : 0;
    for (int i = 0; i < count; ++i) {
        IValueInfoEntry* entry = list->GetAt(i);
        if (entry == nullptr)
            continue;
        const int f = entry->GetBit();
        const int w = entry->GetWidth();
        const int row = m_pGrid->AddRow();
        CString head;
        if (w < 2)
            head.Format("bit%d", f);
        else
            head.Format("bit%d-bit%d", f, f + w - 1);
        CString text;
        entry->GetText(text);
        m_pGrid->SetCellText(row, 0, head.GetString());
        m_pGrid->SetCellText(row, 1, VarText::Translate(text).GetString());
        auto* item = new CGridItem(this);
        const LONGLONG r = util->GetBitRange(v, f, f + std::max(w, 1) - 1);
        CString current;
        for (int o = 0; o < entry->GetOptionCount(); ++o) {
            IValueInfoEntry* option = entry->GetOptionAt(o);
            if (option == nullptr)
                continue;
            CString figure;
            util->FormatVariant(figure, option->GetValue(), 0, 0);
            CString optionText;
            option->GetText(optionText);
            CString shown;
            shown.Format("%s[%s]", figure.GetString(), VarText::Translate(optionText).GetString());
            item->AddOption(shown.GetString());
            if (current.IsEmpty() && LONGLONG(util->VariantAsDouble(option->GetValue())) == r)
                current = shown;
        }
        item->SetValue(current.GetString());
        m_pGrid->SetCellItem(row, 2, item);
        m_pGrid->SetRowData(row, DWORD_PTR(entry));
    }
}

void CWriteVarDialog::FillDigits(IValueInfo* info, LONGLONG v) {
    static const char* const kDecimalHeads[] = {"0000X", "000X0", "00X00", "0X000", "X0000"};
    static const char* const kHexHeads[] = {"0x000X", "0x00X0", "0x0X00", "0xX000"};
    IHostVarUtil* util = theApp.GetVarUtil();
    IValueInfoList* list = info->GetDigitList();
    int count = list != nullptr ? list->GetCount() : 0;
    if (count >= 5 && m_hexFlag)
        count = 4;
    for (int i = 0; i < count; ++i) {
        IValueInfoEntry* entry = list->GetAt(i);
        if (entry == nullptr)
            continue;
        const int d = entry->GetBit();
        const int row = m_pGrid->AddRow();
        if (!m_hexFlag && d >= 0 && d < 5)
            m_pGrid->SetCellText(row, 0, kDecimalHeads[d]);
        else if (m_hexFlag && d >= 0 && d < 4)
            m_pGrid->SetCellText(row, 0, kHexHeads[d]);
        CString text;
        entry->GetText(text);
        m_pGrid->SetCellText(row, 1, VarText::Translate(text).GetString());
        LONGLONG digit = 0;
        if (m_hexFlag) {
            LONGLONG power = 1;
            for (int k = 0; k < d; ++k)
                power *= 16;
            digit = (v % (power * 16)) / power;
        } else {
            digit = util->GetDecimalDigit(v, d);
        }
        auto* item = new CGridItem(this);
        CString current;
        for (int o = 0; o < entry->GetOptionCount(); ++o) {
            IValueInfoEntry* option = entry->GetOptionAt(o);
            if (option == nullptr)
                continue;
            CString figure;
            util->FormatDigitOption(figure, option->GetValue(), 0, m_hexFlag);
            if (m_hexFlag)
                figure = figure.Mid(2);
            CString optionText;
            option->GetText(optionText);
            CString shown;
            shown.Format("%s[%s]", figure.GetString(), VarText::Translate(optionText).GetString());
            item->AddOption(shown.GetString());
            if (current.IsEmpty() && LONGLONG(util->VariantAsDouble(option->GetValue())) == digit)
                current = shown;
        }
        item->SetValue(current.GetString());
        m_pGrid->SetCellItem(row, 2, item);
        m_pGrid->SetRowData(row, DWORD_PTR(entry));
    }
}

void CWriteVarDialog::RecalculateValue(int) {
    if (!m_pGrid)
        return;
    const int rows = m_pGrid->GetRowCount();
    CString joined;
    if (m_nKind == 2 || m_nKind == 3) {
        ULONGLONG sum = 0;
        for (int row = 0; row < rows; ++row) {
            auto* entry = reinterpret_cast<IValueInfoEntry*>(m_pGrid->GetRowData(row));
            CZorSkinPGridItem* item = m_pGrid->GetCellItem(row, 2);
            if (entry == nullptr || item == nullptr)
                continue;
            const CString text = item->GetValue();
            // Range options are written as decimal figures, so they are read back as
            // such: option 10 is 0xA, not 0x10 spilling into the next field.
            const LONGLONG field = LeadingDecimal(text);
            sum += ULONGLONG(field) << entry->GetBit();
        }
        joined.Format("0x%04llX", static_cast<unsigned long long>(sum));
        const ULONGLONG value = ULONGLONG(ParseHexField(joined));
        if (m_hexFlag)
            m_valueText.Format("0x%04llX", static_cast<unsigned long long>(value));
        else
            m_valueText.Format("%05llu", static_cast<unsigned long long>(value));
    } else if (m_nKind == 4) {
        for (int row = 0; row < rows; ++row) {
            CZorSkinPGridItem* item = m_pGrid->GetCellItem(row, 2);
            const CString text = item != nullptr ? item->GetValue() : CString();
            if (m_hexFlag)
                joined.AppendFormat("%llX", static_cast<unsigned long long>(LeadingHex(text)));
            else
                joined.AppendFormat("%lld", static_cast<long long>(LeadingDecimal(text)));
        }
        // The first row is digit 0 and stands rightmost.
        joined.MakeReverse();
        if (m_hexFlag)
            m_valueText.Format("0x%04llX", static_cast<unsigned long long>(LeadingHex(joined)));
        else
            m_valueText.Format("%05llu", static_cast<unsigned long long>(LeadingDecimal(joined)));
    } else {
        return;
    }
    SetDlgItemText(int(IDC_WRITE_VALUE), m_valueText.GetString());
}

LONGLONG CWriteVarDialog::GetEditedValue() const {
    if (m_hexFlag)
        return ParseHexField(m_valueText);
    return std::strtoll(m_valueText.GetString(), nullptr, 10);
}

void CWriteVarDialog::OnOK() {
    if (!UpdateData(TRUE))
        return;
    CZorSkinPDialog::OnOK();
}

void CWriteVarDialog::OnLanguageChanged() {
    if (m_pTranslator != nullptr)
        m_pTranslator->Retranslate(0);
}
