// The cells of a list page: headers, texts, colours, and the editor rule.
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostProductInfo.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IPerUnitBase.h"
#include "module/host/IPerUnitEntry.h"
#include "module/host/IPerUnitTable.h"
#include "module/host/IValueInfo.h"
#include "module/host/IValueInfoEntry.h"
#include "module/host/IValueInfoList.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "pages/PageText.h"
#include "pages/VarTablePageBase.h"
#include "table/VarTable.h"
#include "values/GetVarInfo.h"
#include "values/ValueText.h"
#include "values/WriteLinkerVarDialog.h"
#include "values/WriteVarDialog.h"

#include <cmath>
#include <cstdint>

using namespace VarText;
using pagetext::LoadString;

namespace {

struct ColumnDef {
    UINT header; // string id; 0: no header
    int width;
};

// First page.
const ColumnDef kPage1Single[] = {{2011, 0},  {2013, 60}, {2014, 200}, {2015, 130}, {2019, 60},
                                  {2016, 90}, {2017, 90}, {2018, 90},  {2020, 90},  {2021, 90},
                                  {1972, 0},  {2022, 0},  {185, 110}};
const ColumnDef kPage1Multi[] = {{2011, 70},  {2012, 80}, {2013, 80}, {2014, 150}, {2015, 180},
                                 {2019, 90},  {2016, 90}, {2017, 90}, {2018, 110}, {2020, 90},
                                 {1972, 100}, {2022, 0},  {0, 0}};
// Second page.
const ColumnDef kPage2Single[] = {{2011, 70},  {2013, 80}, {2014, 150}, {1959, 150},
                                  {2015, 150}, {2016, 80}, {2017, 80},  {2018, 80},
                                  {2019, 50},  {2020, 80}, {1972, 0}};
const ColumnDef kPage2Multi[] = {{0, 20},     {2012, 70},  {2013, 80},  {2014, 150},
                                 {1959, 120}, {2015, 145}, {2016, 100}, {2017, 100},
                                 {2018, 100}, {2019, 100}, {2020, 100}, {1972, 100}};

// What a column shows, whatever its index in a layout.
enum CellKind {
    CellRow,
    CellAxis,
    CellCode,
    CellName,
    CellSet,
    CellCurrent,
    CellUnit,
    CellUnitPlain,
    CellFactory,
    CellFactoryLimit,
    CellMin,
    CellMax,
    CellModify,
    CellDisplay,
    CellEffect,
    CellAddressDec,
    CellAddressHex,
    CellEmpty,
};

const CellKind kKindsPage1Single[] = {
    CellRow, CellCode,   CellName,    CellCurrent, CellUnit,       CellFactory,   CellMin,
    CellMax, CellModify, CellDisplay, CellEffect,  CellAddressDec, CellAddressHex};
const CellKind kKindsPage1Multi[] = {
    CellRow, CellAxis, CellCode,   CellName,   CellCurrent, CellUnitPlain, CellFactoryLimit,
    CellMin, CellMax,  CellModify, CellEffect, CellEmpty,   CellEmpty};
const CellKind kKindsPage2Single[] = {CellRow,       CellCode,         CellName,  CellSet,
                                      CellCurrent,   CellFactoryLimit, CellMin,   CellMax,
                                      CellUnitPlain, CellModify,       CellEffect};
const CellKind kKindsPage2Multi[] = {CellEmpty, CellAxis,      CellCode,         CellName,
                                     CellSet,   CellCurrent,   CellFactoryLimit, CellMin,
                                     CellMax,   CellUnitPlain, CellModify,       CellEffect};

template <size_t N> CellKind KindAt(const CellKind (&kinds)[N], int column) {
    return column >= 0 && size_t(column) < N ? kinds[column] : CellEmpty;
}

BOOL IsEmptyOrNull(const Variant& v) {
    return v.vt == VT_EMPTY || v.vt == VT_NULL;
}

} // namespace

// ---------------------------------------------------------------- columns
void CVarTablePageBase::BuildColumns() {
    CListCtrlEx& list = GetList();
    // A broken chain builds the single-axis layout.
    const BOOL multi = GetMultiAxisFlag() == 1;
    const ColumnDef* defs = nullptr;
    size_t count = 0;
    if (m_bFirstPage) {
        defs = multi ? kPage1Multi : kPage1Single;
        count = multi ? std::size(kPage1Multi) : std::size(kPage1Single);
    } else {
        defs = multi ? kPage2Multi : kPage2Single;
        count = multi ? std::size(kPage2Multi) : std::size(kPage2Single);
    }
    while (list.GetColumnCount() > 0)
        list.DeleteColumn(0);
    m_columnWidths.clear();
    for (size_t i = 0; i < count; ++i) {
        const CString header = defs[i].header != 0 ? LoadString(defs[i].header) : CString();
        list.InsertColumn(int(i), header.GetString(), LVCFMT_LEFT, defs[i].width);
        m_columnWidths.push_back(defs[i].width);
    }
    list.RemoveAllEditableColumns();
    list.AddEditableColumn(GetValueColumn());
    if (m_bFirstPage && !multi)
        list.AddEditableColumn(9);
}

int CVarTablePageBase::MainColumnsWidth(BOOL valueOnly) {
    CListCtrlEx& list = GetList();
    if (list.GetSafeHwnd() == nullptr)
        return 0;
    const BOOL multi = GetMultiAxisFlag() == 1;
    const CellKind last = valueOnly ? (m_bFirstPage ? CellCurrent : CellSet)
                                    : (m_bFirstPage ? CellMax : CellFactoryLimit);
    int width = 0;
    for (int column = 0; column < list.GetColumnCount(); ++column) {
        width += list.GetColumnWidth(column);
        const CellKind kind =
            m_bFirstPage
                ? (multi ? KindAt(kKindsPage1Multi, column) : KindAt(kKindsPage1Single, column))
                : (multi ? KindAt(kKindsPage2Multi, column) : KindAt(kKindsPage2Single, column));
        if (kind == last)
            break;
    }
    // The frame, and the vertical scroll bar a long list shows.
    constexpr int kFrameAndScrollBar = 2 * 2 + 16;
    return width + kFrameAndScrollBar;
}

int CVarTablePageBase::GetValueColumn() const {
    return GetMultiAxisFlag() == 1 ? 4 : 3;
}

int CVarTablePageBase::GetCurrentValueColumn() const {
    const int column = GetValueColumn();
    return m_bFirstPage ? column : column + 1;
}

// ---------------------------------------------------------------- texts
CString CVarTablePageBase::LinkedLimitText(IVarObjEx* var, BOOL max) {
    IVarObjEx* target = nullptr;
    CString text = VarText::LinkedLimitText(var, max, &target);
    // Read with the next refresh, though it may be no row of the list.
    if (target != nullptr)
        m_linkedVars.Add(target, target);
    return text;
}

CString CVarTablePageBase::GetCellText(int row, int column) {
    IVarObjEx* var = m_shownVars.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr || m_pTable == nullptr || theApp.GetVarUtil() == nullptr)
        return CString();
    // The layout is asked anew for each cell; a broken chain reads as multi-axis.
    const BOOL multi = GetMultiAxisFlag() != 0;
    CellKind kind = CellEmpty;
    if (m_bFirstPage)
        kind = multi ? KindAt(kKindsPage1Multi, column) : KindAt(kKindsPage1Single, column);
    else
        kind = multi ? KindAt(kKindsPage2Multi, column) : KindAt(kKindsPage2Single, column);
    const BOOL hidden = attr->GetDisplayFormat() == FORMAT_HIDDEN;
    CString text;
    switch (kind) {
    case CellRow:
        text.Format("%03d", row + 1);
        break;
    case CellAxis: {
        CString axis;
        attr->GetGroupText(axis);
        if (m_bFirstPage)
            text = Translate(axis);
        else if (!axis.IsEmpty())
            text = Translate(axis.Left(1)) + axis.Mid(1);
        break;
    }
    case CellCode:
        attr->GetCode(text);
        break;
    case CellName: {
        CString name;
        attr->GetName(name);
        text = Translate(name).Left(259);
        break;
    }
    case CellSet:
        if (hidden)
            text = kHiddenText;
        else if (IsEmptyOrNull(var->GetSetValue()))
            text = VarText::kNoValueText;
        else
            text = CGetVarInfo().SetValueText(var);
        break;
    case CellCurrent:
        text = hidden ? CString(kHiddenText) : CGetVarInfo().CurrentValueText(var);
        break;
    // A per-unit row in percent reads "%" beside its figure, not the parameter's unit.
    case CellUnit:
        text = Translate(UnitText(var));
        if (text.IsEmpty())
            text = VarText::kNoUnitText;
        break;
    case CellUnitPlain:
        text = Translate(UnitText(var));
        break;
    case CellFactory:
        text = hidden ? CString(kHiddenText) : FactoryValueText(var);
        break;
    case CellFactoryLimit:
        text = hidden ? CString(kHiddenText) : LimitValueText(attr, attr->GetFactoryValue());
        break;
    case CellMin:
        if (attr->IsMinLinked())
            text = LinkedLimitText(var, FALSE);
        else
            text = m_bFirstPage && !multi ? MinValueText(var)
                                          : LimitValueText(attr, attr->GetMinValue());
        break;
    case CellMax:
        if (attr->IsMaxLinked())
            text = LinkedLimitText(var, TRUE);
        else
            text = m_bFirstPage && !multi ? MaxValueText(var)
                                          : LimitValueText(attr, attr->GetMaxValue());
        break;
    case CellModify:
        // Stored in Chinese like the files; shown in the user's language.
        text = Translate(ModifyModeText(attr));
        break;
    case CellDisplay:
        text = Translate(DisplayFormatText(var));
        break;
    case CellEffect:
        text = Translate(EffectModeText(attr));
        break;
    case CellAddressDec:
        text.Format("%d", int(attr->GetAddress()));
        break;
    case CellAddressHex:
        text.Format("0x%04X", attr->GetAddress());
        break;
    case CellEmpty:
        break;
    }
    return text;
}

// ---------------------------------------------------------------- colours
BOOL CVarTablePageBase::HasNoValue(IVarObjEx* var) {
    return IsEmptyOrNull(var->GetLastReadValue());
}

BOOL CVarTablePageBase::EqualsFactory(IVarObjEx* var) {
    IVarAttr* attr = var->GetAttr();
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr)
        return TRUE;
    const Variant current = var->GetValue();
    const Variant factory = attr->GetFactoryValue();
    const BOOL noCurrent = IsEmptyOrNull(current);
    const BOOL noFactory = IsEmptyOrNull(factory);
    if (noCurrent || noFactory)
        return noCurrent && noFactory;
    const double s = std::pow(10.0, attr->GetDecimals());
    const double x = util->VariantToDouble(current, attr->GetDataType(), attr->GetDecimals());
    const double y = util->VariantToDouble(factory, attr->GetDataType(), attr->GetDecimals());
    return int64_t(s * x) == int64_t(s * y);
}

COLORREF CVarTablePageBase::GetCellBackColor(int row, int column) {
    const COLORREF rowColour = row % 2 == 0 ? PAGE_ROW_EVEN : PAGE_ROW_ODD;
    IVarObjEx* var = m_shownVars.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr)
        return rowColour;
    const int valueColumn = GetValueColumn();
    if (m_bFirstPage) {
        if (column != valueColumn)
            return rowColour;
        if (HasNoValue(var))
            return PAGE_NOT_READ;
        return attr->GetModifyMode() != MODIFY_NEVER ? RGB(255, 255, 255) : rowColour;
    }
    if (column == valueColumn + 1) {
        if (HasNoValue(var))
            return PAGE_NOT_READ;
        return EqualsFactory(var) ? rowColour : PAGE_NOT_FACTORY_BACK;
    }
    if (column == valueColumn) {
        if (attr->GetModifyMode() == MODIFY_NEVER)
            return PAGE_READ_ONLY_SET;
        IHostVarUtil* util = theApp.GetVarUtil();
        const Variant set = var->GetSetValue();
        if (util != nullptr && !set.IsEmpty() && !util->VariantEquals(set, var->GetValue()))
            return PAGE_SET_DIFFERS;
    }
    return rowColour;
}

COLORREF CVarTablePageBase::GetCellTextColor(int row, int column) {
    IVarObjEx* var = m_shownVars.GetAt(row);
    // Offline the values are the last ones read, and no edit would reach the drive.
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    if (module != nullptr && !module->IsOnline())
        return PAGE_OFFLINE_TEXT;
    if (var == nullptr || var->GetAttr() == nullptr || column != GetCurrentValueColumn())
        return RGB(0, 0, 0);
    return EqualsFactory(var) ? RGB(0, 0, 0) : PAGE_NOT_FACTORY_TEXT;
}

// ---------------------------------------------------------------- editors
void CVarTablePageBase::GetCellEditorKind(int& kind, int row, int column) {
    IVarObjEx* var = m_shownVars.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr)
        return;
    // The host gives a plain number no value meaning at all: that is kind 0.
    IValueInfo* info = attr->GetValueInfo();
    if (m_bFirstPage && column == 9 && GetMultiAxisFlag() != 1) {
        kind = attr->GetDisplayFormat() == FORMAT_PER_UNIT ? 2 : 0;
        return;
    }
    if (column != GetValueColumn()) {
        kind = 0;
        return;
    }
    const int k = info != nullptr ? info->GetKind() : 0;
    const BOOL packed = k >= VALUE_INFO_BITS && k <= 6;
    switch (attr->GetModifyMode()) {
    case MODIFY_ANY_TIME:
    case MODIFY_AT_STANDSTILL:
        kind = k == VALUE_INFO_ENUM ? 2 : (packed ? 3 : 1);
        break;
    case MODIFY_NEVER:
        // The bit view opens, though it can't change the value.
        kind = packed ? 3 : 0;
        break;
    default:
        kind = 0;
        break;
    }
}

void CVarTablePageBase::GetCellEditKind(int& kind, int row, int) {
    IVarObjEx* var = m_shownVars.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr)
        return;
    // A hexadecimal parameter with places shows a decimal figure, so it gets the numeric
    // edit with its places; the text edit would refuse the point.
    if (attr->GetDisplayFormat() == FORMAT_DECIMAL)
        kind = 0;
    else if (attr->GetDisplayFormat() == FORMAT_HEX)
        kind = attr->GetDecimals() > 0 ? 0 : 1;
}

void CVarTablePageBase::InitCellEdit(CItemEdit* edit, int row, int column) {
    IVarObjEx* var = m_shownVars.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr || column != GetValueColumn())
        return;
    if (attr->GetDisplayFormat() == FORMAT_HIDDEN) {
        edit->ModifyStyle(0, ES_PASSWORD);
        edit->SetPasswordChar('*');
        return;
    }
    edit->SetMaxWholeDigits(16);
    edit->AllowNegative(TRUE);
    edit->SetMaxDecimalPlaces(attr->GetDecimals());
}

void CVarTablePageBase::InitCellEditEx(CItemEditEx* edit, int row, int) {
    IVarObjEx* var = m_shownVars.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr != nullptr && attr->GetDisplayFormat() == FORMAT_HEX)
        // Digits, the hexadecimal letters and the prefix stay typable.
        edit->SetInvalidCharacters("~!@#$%^&*(){}[]|\\:;\"'<>,.?/"
                                   "qwrtyuiopsghjklzvnmQWRTYUIOPSGHJKLZVNM");
}

void CVarTablePageBase::InitCellCombo(CItemComBox* combo, int row, int column) {
    IVarObjEx* var = m_shownVars.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr)
        return;
    const int multi = GetMultiAxisFlag();
    if (m_bFirstPage && column == 9 && multi != 1) {
        combo->AddString(LoadString(176).GetString());
        combo->AddString(LoadString(195).GetString());
        IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
        IPerUnitTable* table = module != nullptr ? module->GetPerUnitTable() : nullptr;
        IPerUnitBase* base = attr->GetPerUnitBaseId() != 0 && table != nullptr
                                 ? table->FindById(attr->GetPerUnitBaseId())
                                 : nullptr;
        if (base != nullptr)
            for (int mode = 2; mode < 2 + base->GetEntryCount(); ++mode)
                if (IPerUnitEntry* entry = base->GetEntry(mode)) {
                    CString name;
                    entry->GetName(name);
                    combo->AddString(Translate(name).GetString());
                }
        const int mode = var->GetPerUnitMode();
        int index = mode <= 0 ? 0 : mode;
        if (index >= combo->GetCount())
            index = 1;
        combo->SetCurSel(index);
        return;
    }
    // Column 3 of a multi-axis layout is the name column there.
    if (column != GetValueColumn())
        return;
    IValueInfo* info = attr->GetValueInfo();
    IValueInfoList* list =
        info != nullptr && info->GetKind() == VALUE_INFO_ENUM ? info->GetEnumList() : nullptr;
    if (list == nullptr)
        return;
    const int count = list->GetCount();
    int widest = combo->GetDroppedWidth();
    for (int i = 0; i < count; ++i) {
        IValueInfoEntry* entry = list->GetAt(i);
        if (entry == nullptr)
            continue;
        CString name;
        entry->GetText(name);
        CString text;
        if (i == count - 1 && IsConnectorName(name)) {
            // The last entry stands for a free connector.
            text.Format("%s[%s]", Translate("其他").GetString(), Translate(name).GetString());
        } else {
            // The entry reads as the cell does for that value ("0x000A[...]" on a
            // hexadecimal parameter, "1.0[...]" with one place), so the cell's own entry
            // is the one selected when the list opens.
            text.Format("%s[%s]", ComboValueText(attr, entry).GetString(),
                        Translate(name).GetString());
        }
        const int at = combo->AddString(text.GetString());
        combo->SetItemDataPtr(at, entry);
        widest = std::max(widest, text.GetLength() * 8);
    }
    combo->SetDroppedWidth(UINT(widest));
}

void CVarTablePageBase::InitCellButton(CItemButton*, int, int) {}

void CVarTablePageBase::OnCellComboSelected(CItemComBox* combo, int row, int column,
                                            const CString& text) {
    IVarObjEx* var = m_shownVars.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr)
        return;
    if (m_bFirstPage && column == 9 && GetMultiAxisFlag() != 1) {
        var->SetPerUnitMode(combo->GetCurSel());
        GetList().Invalidate(FALSE);
        return;
    }
    if (column != GetValueColumn())
        return;
    const int sel = combo->GetCurSel();
    auto* entry = sel >= 0 ? static_cast<IValueInfoEntry*>(combo->GetItemDataPtr(sel)) : nullptr;
    // The free connector's entry shows its name in the user's language, so it is known by
    // the entry behind it as well as by the text as written.
    CString entryName;
    if (entry != nullptr)
        entry->GetText(entryName);
    if (HasConnectorName(text) || (sel == combo->GetCount() - 1 && IsConnectorName(entryName))) {
        OpenConnectorDialog(row, column);
        return;
    }
    if (entry == nullptr)
        return;
    // The commit gets the entry's figure in the cell's form, which it reads back to the
    // entry's raw value (hexadecimal on a hexadecimal parameter, with the places).
    OnCellEditCommitted(row, column, ComboValueText(attr, entry));
}

CString CVarTablePageBase::ComboValueText(IVarAttr* attr, IValueInfoEntry* entry) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (util == nullptr || entry == nullptr)
        return CString();
    const Variant value = entry->GetValue();
    if (value.vt == VT_BSTR || value.IsEmptyOrNull()) {
        CString text;
        util->VariantToText(text, value);
        return text;
    }
    return EditorValueText(attr, util->VariantAsDouble(value));
}

CString CVarTablePageBase::FormatEditedValue(IVarAttr* attr, LONGLONG value) const {
    // The figure of the bit view or the connector dialog goes to the commit in the form
    // the cell shows and the commit reads on both lists: "0x%04X" on a hexadecimal
    // parameter without decimals, else the decimal figure with the parameter's places.
    const int format = attr->GetDisplayFormat();
    if (format != 0 && format != 1)
        return CString();
    return EditorValueText(attr, double(value));
}

void CVarTablePageBase::OnCellButtonClicked(CItemButton*, int row, int column, const CString&) {
    IVarObjEx* var = m_shownVars.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    IValueInfo* info = attr != nullptr ? attr->GetValueInfo() : nullptr;
    if (info == nullptr || info->GetKind() < VALUE_INFO_BITS || info->GetKind() > 6)
        return;
    CWriteVarDialog dialog(this);
    dialog.SetItem(var);
    if (dialog.DoModal() == IDOK) {
        OnCellEditCommitted(row, column, FormatEditedValue(attr, dialog.GetEditedValue()));
        return;
    }
    GetList().CloseEditors(-1);
}

void CVarTablePageBase::OpenConnectorDialog(int row, int column) {
    IVarObjEx* var = m_shownVars.GetAt(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr)
        return;
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    IVarCatalog* catalog = module != nullptr ? module->GetVarCatalog() : attr->GetOwnerCatalog();
    CWriteLinkerVarDialog dialog(this);
    dialog.SetItem(var);
    dialog.SetCatalog(catalog, catalog != nullptr ? catalog->GetConnectorTable() : nullptr);
    if (dialog.DoModal() == IDOK) {
        OnCellEditCommitted(row, column, FormatEditedValue(attr, dialog.GetValue()));
        GetList().Invalidate(FALSE);
        return;
    }
    GetList().CloseEditors(-1);
}

void CVarTablePageBase::OnCellEditCommitted(int row, int column, const CString& text) {
    if (text.IsEmpty() || text == "-" || text == "--")
        return;
    CommitCellText(row, column, text);
}

void CVarTablePageBase::CommitCellText(int row, int, const CString& typed) {
    IVarObjEx* var = m_shownVars.GetAt(row);
    if (var == nullptr || var->GetAttr() == nullptr || m_pTable == nullptr)
        return;
    VarText::CommitCellText(var, typed, m_bFirstPage ? 0 : 1, m_pTable->GetListStyle());
}

// ---------------------------------------------------------------- tool tips
CString CVarTablePageBase::GetToolTipText(int row, int column) {
    if (!m_bFirstPage || column != 3)
        return CString();
    int kind = 1;
    GetCellEditorKind(kind, row, column);
    if (kind != 3)
        return CString();
    IVarObjEx* var = m_shownVars.GetAt(row);
    IVarAttr* attr = var->GetAttr();
    IHostVarUtil* util = theApp.GetVarUtil();
    IValueInfo* info = attr->GetValueInfo();
    if (util == nullptr || info == nullptr)
        return CString();
    const LONGLONG v = LONGLONG(util->VariantAsDouble(var->GetValue()));
    CString tip;
    auto line = [&](IValueInfoEntry* entry, LONGLONG fieldValue) {
        CString name;
        entry->GetText(name);
        CString value;
        value.Format("%lld", static_cast<long long>(fieldValue));
        for (int i = 0; i < entry->GetOptionCount(); ++i) {
            IValueInfoEntry* option = entry->GetOptionAt(i);
            if (option != nullptr &&
                LONGLONG(util->VariantAsDouble(option->GetValue())) == fieldValue) {
                CString optionText;
                option->GetText(optionText);
                CString joined;
                joined.Format("%s[%s]", value.GetString(), Translate(optionText).GetString());
                value = joined;
                break;
            }
        }
        tip.AppendFormat("%s  %s\n", Translate(name).GetString(), value.GetString());
    };
    const int k = info->GetKind();
    IValueInfoList* list = k == VALUE_INFO_BITS         ? info->GetBitList()
                           : k == VALUE_INFO_BIT_RANGES ? info->GetBitRangeList()
                           : k == VALUE_INFO_DIGITS     ? info->GetDigitList()
                                                        : nullptr;
    const int count = list != nullptr ? list->GetCount() : 0;
    const LONGLONG radix = attr->GetDisplayFormat() == FORMAT_DECIMAL ? 10 : 16;
    for (int i = 0; i < count; ++i) {
        IValueInfoEntry* entry = list->GetAt(i);
        if (entry == nullptr)
            continue;
        const int bit = entry->GetBit();
        if (k == VALUE_INFO_BITS) {
            line(entry, util->GetBit(v, bit));
        } else if (k == VALUE_INFO_BIT_RANGES) {
            const int width = std::max(entry->GetWidth(), 1);
            line(entry, util->GetBitRange(v, bit, bit + width - 1));
        } else {
            LONGLONG div = 1;
            for (int d = 0; d < bit; ++d)
                div *= radix;
            line(entry, (v / div) % radix);
        }
    }
    return tip;
}
