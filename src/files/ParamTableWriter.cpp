#include "files/ParamTableWriter.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "values/ValueText.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

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

CString ParamTableRow(IVarObjEx* var, IHostVarUtil* util, BOOL withGuid) {
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr || util == nullptr)
        return CString();
    CString code, name, unit, current, factory, minimum, maximum, type;
    attr->GetCode(code);
    attr->GetName(name);
    attr->GetUnit(unit);
    const int decimals = attr->GetDecimals();
    // Numbers in files are decimal whatever the display format.
    util->FormatVariant(current, var->GetValue(), decimals, 0);
    util->FormatVariant(factory, attr->GetFactoryValue(), decimals, 0);
    util->FormatVariant(minimum, attr->GetMinValue(), decimals, 0);
    util->FormatVariant(maximum, attr->GetMaxValue(), decimals, 0);
    util->DataTypeName(type, attr->GetDataType());
    CString row;
    row.Format("%s,%s,%s,%s,%s,%s,%s,%s,%d,%s\n", code.GetString(), name.GetString(),
               current.GetString(), factory.GetString(), unit.GetString(), minimum.GetString(),
               maximum.GetString(), VarText::ModifyModeText(attr).GetString(),
               int(attr->GetAddress()), type.GetString());
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
    if (path.IsEmpty())
        return FALSE;
    // A link is written through to its target, so that it stays a link.
    std::error_code error;
    std::filesystem::path target(path.GetString());
    if (std::filesystem::is_symlink(target, error)) {
        const std::filesystem::path linked = std::filesystem::read_symlink(target, error);
        if (error)
            return FALSE;
        target = linked.is_absolute() ? linked : target.parent_path() / linked;
    }
    std::string temp = target.string() + ".XXXXXX";
    const int fd = ::mkstemp(temp.data());
    if (fd < 0)
        return FALSE;
    // A replaced file keeps its mode; a new one gets the usual mode for new files.
    struct stat old {};
    if (::stat(target.c_str(), &old) == 0) {
        ::fchmod(fd, old.st_mode & 07777);
    } else {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        ::fchmod(fd, 0666 & ~mask);
    }
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += size_t(n);
    }
    const bool written = done == bytes.size() && ::fsync(fd) == 0;
    if (::close(fd) != 0 || !written || std::rename(temp.c_str(), target.c_str()) != 0) {
        std::remove(temp.c_str());
        return FALSE;
    }
    return TRUE;
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
