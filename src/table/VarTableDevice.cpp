// Questions about the kind of drive the module stands for.
#include "table/VarTable.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostProductDb.h"
#include "module/host/IHostProductRecord.h"
#include "module/host/IHostTransferService.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "table/OldProtocolDevice.h"
#include "table/TableResources.h"

#include <filesystem>

namespace {

// "<install dir>/../Config/<name>"
CString ConfigPath(IHostVarUtil* util, const char* fileName) {
    CString dir;
    util->GetInstallDir(dir);
    CString path;
    path.Format("%s/../Config/%s", dir.GetString(), fileName);
    return path;
}

IHostProductRecord* FindProductRecord(IHostDeviceModule* module) {
    IHostProductDb* db = theApp.GetProductDb();
    if (module == nullptr || db == nullptr)
        return nullptr;
    const BYTE* label = module->GetElecLabel();
    const UINT size = module->GetElecLabelSize();
    if (label == nullptr || size == 0)
        return nullptr;
    return db->FindProduct(label, size);
}

} // namespace

void CVarTable::LoadDeviceList(COldProtocolDeviceAgent* agent, const CString& fileName) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (agent == nullptr || util == nullptr)
        return;
    std::vector<CString> lines;
    util->ReadTextLines(ConfigPath(util, fileName.GetString()), lines);
    for (const CString& line : lines)
        if (COldProtocolDevice* device = COldProtocolDeviceAgent::ParseLine(line, util))
            agent->AddDevice(device);
}

BOOL CVarTable::GetProductNumbers(IHostDeviceModule* module, DWORD& lineId, DWORD& productId,
                                  DWORD* subProductId) {
    lineId = productId = 0;
    if (subProductId != nullptr)
        *subProductId = 0;
    IHostProductRecord* record = FindProductRecord(module);
    if (record == nullptr)
        return FALSE;
    lineId = record->GetLineId();
    productId = record->GetProductId();
    if (subProductId != nullptr)
        *subProductId = record->GetSubProductId();
    return TRUE;
}

BOOL CVarTable::IsProductLine13(IHostDeviceModule* module) {
    IHostProductRecord* record = FindProductRecord(module);
    return record != nullptr && record->GetLineId() == 13 ? TRUE : FALSE;
}

BOOL CVarTable::SupportsAttributeUpdate() {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (util == nullptr || m_pModule == nullptr)
        return FALSE;
    DWORD lineId = 0, productId = 0, subProductId = 0;
    if (!GetProductNumbers(m_pModule, lineId, productId, &subProductId))
        return FALSE;
    const CString path = ConfigPath(util, "UpdateAttribute.ini");
    std::error_code error;
    if (!std::filesystem::exists(std::filesystem::path(path.GetString()), error))
        return FALSE;
    CString key;
    key.Format("0x%04X_0x%04X", unsigned(lineId), unsigned(productId));
    if (util->GetIniInt(path, "ProtocalType", key, -1) != -1)
        return TRUE;
    key.Format("0x%04X_0x%04X_0x%04X", unsigned(lineId), unsigned(productId),
               unsigned(subProductId));
    return util->GetIniInt(path, "ProtocalType", key, -1) != -1 ? TRUE : FALSE;
}

int CVarTable::AttributeUploadMode(DWORD lineId, DWORD productId) {
    if (lineId == 13)
        return 3;
    if (lineId == 11 && productId == 282)
        return 2;
    return 1;
}

void CVarTable::StartAttributeUpload() {
    IHostTransferService* transfer = theApp.GetTransferService();
    if (transfer == nullptr || m_pModule == nullptr)
        return;
    DWORD lineId = 0, productId = 0;
    GetProductNumbers(m_pModule, lineId, productId);
    CString key;
    m_pModule->GetModuleKey(key);
    SubscribeUpload();
    transfer->SyncModuleAttributes(GetSafeHwnd(), key, AttributeUploadMode(lineId, productId));
}

BOOL CVarTable::IsFactoryPasswordAddress(UINT address) {
    // H0241 on the four axes.
    return address == 0x0229 || address == 0x2229 || address == 0x4229 || address == 0x6229;
}

void CVarTable::OnOldProtocolCommand() {
    IHostUiService* ui = theApp.GetUiService();
    if (ui == nullptr || m_pModule == nullptr)
        return;
    if (!m_pModule->IsOnline()) {
        CString format;
        ui->TranslateText(format, CString("设备离线."));
        CString name;
        m_pModule->GetDisplayName(name);
        format.Replace("%s", name.GetString());
        MessageBox(GetSafeHwnd(), format.GetString(), "", MB_OK | MB_ICONWARNING);
        return;
    }
    DWORD lineId = 0, productId = 0;
    GetProductNumbers(m_pModule, lineId, productId);
    if (oldProtocolDevices != nullptr &&
        oldProtocolDevices->IsOldProtocolDevice(lineId, productId)) {
        CString text;
        ui->GetString(text, theApp.m_hResource, IDS_OLD_PROTOCOL_REFUSED, 0);
        MessageBox(GetSafeHwnd(), text.GetString(), "", MB_OK | MB_ICONWARNING);
    }
}
