#include "files/ParamTableWriter.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "values/ValueText.h"

#include <afx/afxfile.h>

std::vector<CString> ParamTableHeadLines(IHostDeviceModule* module, const SYSTEMTIME& stamp) {
    std::vector<CString> lines;
    lines.emplace_back("Sign,Time\n");
    CString line;
    line.Format("Zorvanta,%4d-%02d-%02d %02d:%02d:%02d\n\n", stamp.wYear, stamp.wMonth, stamp.wDay,
                stamp.wHour, stamp.wMinute, stamp.wSecond);
    lines.push_back(line);
    lines.emplace_back("DriveName,BusID,Version,ElecData\n");
    CString name, version, label;
    module->GetDisplayName(name);
    module->GetVersionText(version);
    // The label of a drive is 32 bytes at most; more is not written.
    const BYTE* bytes = module->GetElecLabel();
    const UINT size = std::min<UINT>(module->GetElecLabelSize(), 32);
    for (UINT i = 0; bytes != nullptr && i < size; ++i)
        label.AppendFormat("%02X", unsigned(bytes[i]));
    line.Format("%s,%d,%s,%s\n\n", name.GetString(), module->GetAxisIndex(), version.GetString(),
                label.GetString());
    lines.push_back(line);
    return lines;
}

CString ParamTableTitleLine(IHostUiService* ui, BOOL withGuid) {
    static const UINT ids[10] = {IDS_COL_CODE,    IDS_COL_NAME, IDS_COL_CURRENT, IDS_COL_FACTORY,
                                 IDS_COL_UNIT,    IDS_COL_MIN,  IDS_COL_MAX,     IDS_COL_MODIFY,
                                 IDS_COL_ADDRESS, IDS_COL_TYPE};
    CString titles[10];
    for (int i = 0; i < 10; ++i) {
        if (ui != nullptr)
            ui->GetString(titles[i], theApp.m_hResource, ids[i], 0);
        titles[i].Replace(",", ";");
    }
    CString line;
    line.Format("%s,%s,%s,%s,%s,%s,%s,%s,%s,%s\n", titles[0].GetString(), titles[1].GetString(),
                titles[2].GetString(), titles[3].GetString(), titles[4].GetString(),
                titles[5].GetString(), titles[6].GetString(), titles[7].GetString(),
                titles[8].GetString(), titles[9].GetString());
    if (withGuid)
        line.Insert(line.GetLength() - 1, ",Guid");
    return line;
}

BOOL GetVarRowTexts(IVarObjEx* var, IHostVarUtil* util, VarRowTexts& t) {
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr || util == nullptr)
        return FALSE;
    attr->GetCode(t.code);
    attr->GetName(t.name);
    attr->GetUnit(t.unit);
    const int decimals = attr->GetDecimals();
    // Numbers in files are decimal whatever the display format.
    util->FormatVariant(t.current, var->GetValue(), decimals, 0);
    util->FormatVariant(t.factory, attr->GetFactoryValue(), decimals, 0);
    util->FormatVariant(t.minimum, attr->GetMinValue(), decimals, 0);
    util->FormatVariant(t.maximum, attr->GetMaxValue(), decimals, 0);
    util->DataTypeName(t.type, attr->GetDataType());
    t.modify = VarText::ModifyModeText(attr);
    t.address = int(attr->GetAddress());
    return TRUE;
}

CString ParamTableRow(IVarObjEx* var, IHostVarUtil* util, BOOL withGuid) {
    VarRowTexts t;
    if (!GetVarRowTexts(var, util, t))
        return CString();
    CString row;
    row.Format("%s,%s,%s,%s,%s,%s,%s,%s,%d,%s\n", t.code.GetString(), t.name.GetString(),
               t.current.GetString(), t.factory.GetString(), t.unit.GetString(),
               t.minimum.GetString(), t.maximum.GetString(), t.modify.GetString(), t.address,
               t.type.GetString());
    if (withGuid) {
        CString key;
        var->GetInstanceGuid(key);
        CString field(",");
        field += key;
        row.Insert(row.GetLength() - 1, field.GetString());
    }
    return row;
}

BOOL WriteFileReplacing(const CString& path, const std::string& bytes) {
    return AfxReplaceFile(path.GetString(), bytes) ? TRUE : FALSE;
}

BOOL WriteParamTableList(const CString& path, const std::vector<IVarObjEx*>& list,
                         IHostDeviceModule* module, const SYSTEMTIME* stamp) {
    return WriteParamTableRows(path, list, module, FALSE, stamp);
}

BOOL WriteParamTableRows(const CString& path, const std::vector<IVarObjEx*>& list,
                         IHostDeviceModule* module, BOOL withGuid, const SYSTEMTIME* stamp) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (util == nullptr || module == nullptr || path.IsEmpty())
        return FALSE;
    SYSTEMTIME now{};
    if (stamp == nullptr)
        GetLocalTime(&now);
    else
        now = *stamp;

    std::string file, narrow;
    for (const CString& line : ParamTableHeadLines(module, now)) {
        util->ToNarrowText(line, narrow);
        file += narrow;
    }
    util->ToNarrowText(ParamTableTitleLine(theApp.GetUiService(), withGuid), narrow);
    file += narrow;
    for (IVarObjEx* var : list) {
        const CString row = ParamTableRow(var, util, withGuid);
        if (row.IsEmpty())
            continue;
        util->ToNarrowText(row, narrow);
        file += narrow;
    }
    return WriteFileReplacing(path, file);
}
