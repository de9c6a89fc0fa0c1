#include "files/RecipeWorkbook.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostParamRecordFactory.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IParamFile.h"
#include "module/host/IRWDataItem.h"
#include "values/ValueText.h"

#include <workbook/Workbook.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr UINT IDS_CHANGE_LOG_SHEET = 169;
constexpr UINT IDS_MATRIX_SHEET_MARK = 172;
// Rows and columns of the two layouts.
constexpr int MATRIX_TITLE_ROW = 6;
constexpr int SINGLE_FIRST_ROW = 7;
constexpr int COL_ADDRESS = 3;
constexpr int COL_VALUE = 4;
constexpr int COL_TYPE = 5;
constexpr int MATRIX_FIRST_MODULE_COL = 7;
constexpr int MATRIX_LAST_MODULE_COL = 14; // N

// A cell as the value text the host gives its variant, trimmed.
CString CellText(const workbook::Cell& cell) {
    Variant value;
    if (cell.kind == workbook::Cell::Kind::Number)
        value = Variant::R8(cell.number);
    else if (cell.kind == workbook::Cell::Kind::Text)
        value = Variant::Str(CString(cell.text.c_str()));
    CString text;
    if (cell.IsEmpty())
        return text;
    if (IHostVarUtil* util = theApp.GetVarUtil()) {
        util->VariantToText(text, value);
    } else if (cell.kind == workbook::Cell::Kind::Number) {
        char buffer[64];
        std::snprintf(buffer, sizeof buffer, "%.15g", cell.number);
        text = buffer;
    } else {
        text = cell.text.c_str();
    }
    text.Trim();
    return text;
}

IRWDataItem* MakeRecord(IHostParamRecordFactory* factory, const CString& address,
                        const CString& value, const CString& type) {
    IRWDataItem* record = factory->NewParamRecord();
    if (record == nullptr)
        return nullptr;
    record->SetRecordAddress(VarText::ParseAddressText(address));
    // The leading number counts, 0 when there is none; recipes carry floats.
    record->SetRecordValue(Variant::R4(float(std::strtod(value.GetString(), nullptr))));
    record->SetRecordType(VarText::DataTypeFromName(type));
    return record;
}

BOOL IsChangeLog(const CString& name) {
    const CString table = theApp.LoadText(IDS_CHANGE_LOG_SHEET);
    return (!table.IsEmpty() && name.CompareNoCase(table) == 0) ||
           name.CompareNoCase("修改记录") == 0;
}

void ReadMatrixSheet(const workbook::Sheet& sheet, int lastRow, IHostParamRecordFactory* factory,
                     IHostVarUtil* util, RecipeRecordMap& map) {
    std::map<int, int> modules; // column to module number
    for (int c = MATRIX_FIRST_MODULE_COL; c <= MATRIX_LAST_MODULE_COL; ++c) {
        const CString title = CellText(sheet.At(MATRIX_TITLE_ROW, c));
        if (!title.IsEmpty())
            modules[c] = util != nullptr ? util->TextToInt(title) : std::atoi(title.GetString());
    }
    for (int r = MATRIX_TITLE_ROW + 1; r <= lastRow; ++r) {
        const CString address = CellText(sheet.At(r, COL_ADDRESS));
        const CString value = CellText(sheet.At(r, COL_VALUE));
        const CString type = CellText(sheet.At(r, COL_TYPE));
        for (const auto& [column, number] : modules) {
            if (CellText(sheet.At(r, column)).Find("是") < 0)
                continue;
            CString key;
            key.Format("%d", number);
            if (IRWDataItem* record = MakeRecord(factory, address, value, type))
                map[key].push_back(record);
        }
    }
}

void ReadSingleSheet(const workbook::Sheet& sheet, int lastRow, IHostParamRecordFactory* factory,
                     RecipeRecordMap& map) {
    const CString key = CellText(sheet.At(3, 2));
    for (int r = SINGLE_FIRST_ROW; r <= lastRow; ++r) {
        const CString address = CellText(sheet.At(r, COL_ADDRESS));
        if (address.IsEmpty())
            continue;
        if (IRWDataItem* record = MakeRecord(factory, address, CellText(sheet.At(r, COL_VALUE)),
                                             CellText(sheet.At(r, COL_TYPE))))
            map[key].push_back(record);
    }
}

} // namespace

void ReadRecipeWorkbook(const CString& path, RecipeRecordMap& map) {
    IHostParamRecordFactory* factory = theApp.GetParamRecordFactory();
    if (factory == nullptr)
        return;
    workbook::Workbook book;
    if (!book.Open(std::string(path.GetString())))
        return;
    IHostVarUtil* util = theApp.GetVarUtil();
    const CString mark = theApp.LoadText(IDS_MATRIX_SHEET_MARK);
    for (const workbook::Sheet& sheet : book.Sheets()) {
        if (IsChangeLog(CString(sheet.Name().c_str())))
            continue;
        const int lastRow = sheet.LastUsedRow();
        const CString b1 = CellText(sheet.At(1, 2));
        if (b1.IsEmpty())
            continue;
        if ((!mark.IsEmpty() && b1.Find(mark) >= 0) || b1.Find("QX800逆变") >= 0)
            ReadMatrixSheet(sheet, lastRow, factory, util, map);
        else
            ReadSingleSheet(sheet, lastRow, factory, map);
    }
}

void DeleteRecipeRecords(RecipeRecordMap& map) {
    for (auto& [key, records] : map)
        for (IRWDataItem* record : records)
            delete record;
    map.clear();
}

BOOL IsSameDeviceType(IParamFile* file, IHostDeviceModule* module) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (file == nullptr || module == nullptr || util == nullptr)
        return FALSE;
    const BYTE* a = file->GetElecLabel();
    const BYTE* b = module->GetElecLabel();
    const UINT na = file->GetElecLabelSize();
    const UINT nb = module->GetElecLabelSize();
    if (a == nullptr || b == nullptr || na < 6 || nb < 6)
        return FALSE;
    for (UINT offset : {0u, 2u, 4u, 14u}) {
        const int wa = (util->ByteAt(a, na, offset) << 8) | util->ByteAt(a, na, offset + 1);
        const int wb = (util->ByteAt(b, nb, offset) << 8) | util->ByteAt(b, nb, offset + 1);
        if (wa != wb)
            return FALSE;
    }
    return TRUE;
}
