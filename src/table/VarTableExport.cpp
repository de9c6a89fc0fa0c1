// The windowless export of a module's parameter table.
#include "table/VarTable.h"

#include "files/ParamTableWriter.h"
#include "files/ZxdExport.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostVarUtil.h"

#include <filesystem>

BOOL CVarTable::ExportAllToFile(const CString& path) {
    const int slash = std::max(path.ReverseFind(L'/'), path.ReverseFind(L'\\'));
    if (slash < 0)
        return FALSE;
    // Only the last level is made; deeper missing folders make the write fail.
    const CString dir = path.Left(slash);
    std::error_code error;
    if (!dir.IsEmpty() &&
        !std::filesystem::is_directory(std::filesystem::path(dir.GetString()), error)) {
        if (IHostVarUtil* util = theApp.GetVarUtil())
            util->MakeDirectory(dir);
    }
    if (m_pModule == nullptr || !m_pModule->IsOnline())
        return FALSE;
    std::vector<IVarObjEx*> list;
    CollectAllVars(list, TRUE);
    const int dot = path.ReverseFind(L'.');
    if (dot <= slash)
        return FALSE;
    if (path.Mid(dot).CompareNoCase(".zxd") == 0)
        return WriteZxdFile(path.GetString(), m_pModule, list) == ZxdResult::Written;
    if (path.Mid(dot).CompareNoCase(".csv") != 0)
        return FALSE;
    return WriteParamTableList(path, list);
}

BOOL CVarTable::WriteParamTableList(const CString& path, const std::vector<IVarObjEx*>& list) {
    return ::WriteParamTableList(path, list, m_pModule);
}
