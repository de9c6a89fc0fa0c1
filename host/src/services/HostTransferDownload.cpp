// The download half of the transfer service: records to the drive, and a parameter file
// opened, checked and downloaded in one go.
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostModuleManager.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "zorhost/link/BlockPlan.h"
#include "zorhost/link/BlockWrite.h"
#include "zorhost/link/RegisterMap.h"
#include "zorhost/model/ProjectModel.h"
#include "zorhost/services/HostDeviceHelper.h"
#include "zorhost/services/HostTransferService.h"
#include "zorhost/services/ParamRecord.h"
#include "zorhost/sim/DriveDirectory.h"

#include <algorithm>

namespace zorhost {

using device::DataType;

namespace {

int Word(const BYTE* label, UINT size, UINT offset) {
    const int hi = offset < size ? label[offset] : 0;
    const int lo = offset + 1 < size ? label[offset + 1] : 0;
    return (hi << 8) | lo;
}

// Two labels name one device type when the words at 0, 2, 4 and 14 agree.
bool SameDeviceType(IParamFile* file, IHostDeviceModule* module) {
    const BYTE* a = file->GetElecLabel();
    const BYTE* b = module->GetElecLabel();
    const UINT na = file->GetElecLabelSize();
    const UINT nb = module->GetElecLabelSize();
    if (!a || !b || na < 6 || nb < 6)
        return false;
    for (UINT offset : {0u, 2u, 4u, 14u})
        if (Word(a, na, offset) != Word(b, nb, offset))
            return false;
    return true;
}

bool EndsWithNoCase(const CString& text, const char* tail) {
    const CString t(tail);
    return text.GetLength() >= t.GetLength() && text.Right(t.GetLength()).CompareNoCase(t) == 0;
}

} // namespace

void CHostTransferService::AnnounceDownload(const CString& moduleKey, bool success) {
    if (m_notifier)
        m_notifier(moduleKey, success ? 1 : 0, true);
}

// Neighbouring addresses go to the drive in block writes where the link pays per request;
// WriteInBlocks writes a refused block again parameter by parameter, so that the failures
// name exactly the parameters the drive refused. A link without blocks keeps the records'
// own order, one write each.
BOOL CHostTransferService::DownloadRecords(HWND, const CString& moduleKey,
                                           const std::vector<IRWDataItem*>& records) {
    m_failures.clear();
    model::CDeviceModule* module = m_drives.FindModule(moduleKey);
    if (!module) {
        AnnounceDownload(moduleKey, false);
        return 0;
    }
    const std::shared_ptr<sim::DriveLink> link = m_drives.FindLink(moduleKey);
    const int total = int(records.size());
    if (m_progress && total > 0)
        m_progress->Begin(moduleKey, total);

    int done = 0;
    std::vector<link::ParameterValue> values;
    for (IRWDataItem* item : records) {
        auto* record = static_cast<CParamRecord*>(item);
        if (!record) {
            ++done; // nothing to write: it only counts
            continue;
        }
        const UINT address = record->GetRecordAddress();
        DataType type = DataType(record->GetRecordType());
        if (record->GetRecordType() == 0)
            if (IVarObjEx* var = module->Store().FindByAddress(address))
                if (IVarAttr* attr = var->GetAttr())
                    type = DataType(attr->GetDataType());
        double raw = 0;
        if (VariantToRaw(record->GetRecordValue(), raw)) {
            values.push_back({address, type, raw});
        } else {
            m_failures.push_back(
                {address, m_helper.FailureText(module, address, {sim::LinkStatus::Refused})});
            ++done;
        }
    }
    const int limit = link ? std::clamp(link->WriteBlockLimit(), 1, link::kMaxWriteRegisters) : 1;
    std::vector<link::RegisterBlock> blocks;
    if (limit > 1) {
        std::stable_sort(values.begin(), values.end(),
                         [](const auto& a, const auto& b) { return a.address < b.address; });
        blocks = link::PlanBlocks(link::RangesOf(values), limit);
    } else {
        for (std::size_t i = 0; i < values.size(); ++i)
            blocks.push_back({values[i].address, 1, i, i + 1});
    }

    bool offline = link == nullptr;
    // The window's events run while a write or the progress display waits; once one of
    // them has closed the project the module is gone, and the rest fail untried.
    auto closed = [&] {
        if (link && module && !m_drives.Serves(moduleKey, link)) {
            module = nullptr;
            offline = true;
        }
    };
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        const std::span block(values.data() + blocks[b].first, blocks[b].last - blocks[b].first);
        std::vector<link::WriteFailure> failed;
        closed();
        if (offline) {
            // Nothing more reaches a drive that dropped; the rest fail without a try.
            for (const link::ParameterValue& v : block)
                failed.push_back({v.address, {sim::LinkStatus::Offline}});
        } else {
            failed = link::WriteInBlocks(*link, block, kTimeout_ms, kTries);
            closed();
        }
        for (const link::WriteFailure& f : failed) {
            m_failures.push_back({f.address, m_helper.FailureText(module, f.address, f.result)});
            offline = offline || f.result.status == sim::LinkStatus::Offline;
        }
        for (std::size_t k = 0; k < block.size(); ++k)
            if (m_stepHook)
                m_stepHook(done + int(k) + 1, total);
        done += int(block.size());
        if (m_progress && total > 0 && !m_progress->Advance(done) && b + 1 < blocks.size()) {
            for (std::size_t k = blocks[b + 1].first; k < values.size(); ++k)
                m_failures.push_back({values[k].address, CString("cancelled")});
            break;
        }
    }
    if (m_progress && total > 0)
        m_progress->End();
    const bool ok = m_failures.empty();
    AnnounceDownload(moduleKey, ok);
    return ok ? 1 : 0;
}

IParamFile* CHostTransferService::ReadParamFile(const CString& path, IHostDeviceModule* module) {
    if (!m_manager)
        return nullptr;
    IBaseInterface* made = m_manager->CreateInstance(IParamFile::kIID);
    if (!made)
        return nullptr;
    auto* file = static_cast<IParamFile*>(made);
    file->LoadContext(module);
    const BOOL read = EndsWithNoCase(path, ".csv") ? m_helper.ReadCsvParamFile(path, file, module)
                                                   : file->Open(path);
    if (!read) {
        file->Release();
        return nullptr;
    }
    return file;
}

std::vector<IRWDataItem*> CHostTransferService::RecordsFromFile(IParamFile* file,
                                                                IHostDeviceModule* module) {
    std::vector<IRWDataItem*> records;
    IParamFileTable* table = file ? file->GetVarList() : nullptr;
    IVarStore* own = module ? module->GetVarList() : nullptr;
    if (!table || !own)
        return records;
    for (int i = 0; i < table->GetCount(); ++i) {
        IVarObjEx* fileVar = table->GetAt(i);
        IVarObjEx* var = fileVar ? own->FindByAddress(fileVar->GetInstanceAddress()) : nullptr;
        IVarAttr* attr = var ? var->GetAttr() : nullptr;
        if (!attr || attr->GetModifyMode() == int(device::ModifyMode::Never) ||
            attr->GetModifyMode() == int(device::ModifyMode::NotListed) || attr->IsFixed() ||
            attr->GetDisplayFormat() == int(device::DisplayFormat::Hidden))
            continue;
        const Variant value = fileVar->GetValue();
        if (value.vt == VT_EMPTY || value.vt == VT_NULL)
            continue;
        auto* record = new CParamRecord;
        record->SetRecordAddress(var->GetInstanceAddress());
        record->SetRecordType(attr->GetDataType());
        record->SetRecordValue(value);
        records.push_back(record);
    }
    return records;
}

BOOL CHostTransferService::OpenAndDownload(HWND owner, const CString& moduleKey) {
    model::CDeviceModule* module = m_drives.FindModule(moduleKey);
    if (!module || !m_chooseFile)
        return 0;
    const CString path = m_chooseFile(owner);
    if (path.IsEmpty())
        return 0;
    IParamFile* file = ReadParamFile(path, module);
    if (!file) {
        m_failures.clear();
        AnnounceDownload(moduleKey, false);
        return 0;
    }
    const bool english = m_helper.IsEnglish();
    CString confirm;
    confirm.Format(english ? "Download the parameter file \"%s\"?" : "确定下载参数文件\"%s\"吗?",
                   path.GetString());
    bool go = !m_ask || m_ask(owner, confirm);
    if (go && !SameDeviceType(file, module) && m_ask)
        go = m_ask(owner,
                   CString(english ? "The recipe's electronic label doesn't match this device. "
                                     "Download all the same?"
                                   : "配方的电子标签与本设备不匹配，是否继续下载？"));
    if (!go) {
        file->Release();
        return 0;
    }
    std::vector<IRWDataItem*> records = RecordsFromFile(file, module);
    file->Release();
    const BOOL ok = DownloadRecords(owner, moduleKey, records);
    for (IRWDataItem* r : records)
        delete r;
    return ok;
}

} // namespace zorhost
