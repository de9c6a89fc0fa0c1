#include "zorhost/services/HostTransferService.h"

#include "module/host/IVarAttr.h"
#include "zorhost/link/BlockPlan.h"
#include "zorhost/link/RegisterMap.h"
#include "zorhost/model/ProjectModel.h"
#include "zorhost/services/AxisRecords.h"
#include "zorhost/services/HostDeviceHelper.h"
#include "zorhost/sim/DriveDirectory.h"

#include <algorithm>
#include <numeric>

namespace zorhost {

using device::DataType;

CHostTransferService::CHostTransferService(sim::DriveDirectory& drives, CHostDeviceHelper& helper)
    : m_drives(drives), m_helper(helper) {}

void CHostTransferService::SetEndNotifier(EndNotifier notifier) {
    m_notifier = std::move(notifier);
}

void CHostTransferService::AnnounceUpload(const CString& moduleKey, bool success) {
    ++m_uploadsEnded;
    if (m_notifier)
        m_notifier(moduleKey, success ? 1 : 0, false);
}

// Neighbouring parameters are read in blocks where the link pays per request; a block the
// drive refuses is read again parameter by parameter, so that exactly the parameters it
// refuses fail. The window's events run while a request or the progress display waits; a
// project closed from one of them ends the upload before it touches the module again.
bool CHostTransferService::ReadVars(const CString& moduleKey, const std::vector<IVarObjEx*>& vars) {
    m_readFailures.clear();
    m_uploadOffline = false;
    model::CDeviceModule* module = m_drives.FindModule(moduleKey);
    const std::shared_ptr<sim::DriveLink> link = m_drives.FindLink(moduleKey);
    if (!module || !link || !link->IsOnline()) {
        m_uploadOffline = module != nullptr;
        return false;
    }
    const int total = int(vars.size());
    if (m_progress)
        m_progress->Begin(moduleKey, total);
    const int limit = std::clamp(link->ReadBlockLimit(), 1, link::kMaxReadRegisters);

    struct Item {
        IVarObjEx* var;
        DataType type;
    };
    std::vector<Item> items;
    std::vector<link::RegisterRange> ranges;
    std::vector<IVarObjEx*> loose; // nothing to read: they only count
    for (IVarObjEx* var : vars) {
        IVarAttr* attr = var ? var->GetAttr() : nullptr;
        if (!attr) {
            loose.push_back(var);
            continue;
        }
        const auto type = DataType(attr->GetDataType());
        items.push_back({var, type});
        ranges.push_back({var->GetInstanceAddress(), sim::RegisterSpan(type)});
    }
    if (limit > 1) {
        std::vector<std::size_t> order(items.size());
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
            return ranges[a].address < ranges[b].address;
        });
        std::vector<Item> sortedItems;
        std::vector<link::RegisterRange> sortedRanges;
        for (std::size_t i : order) {
            sortedItems.push_back(items[i]);
            sortedRanges.push_back(ranges[i]);
        }
        items.swap(sortedItems);
        ranges.swap(sortedRanges);
    }

    auto store = [&](IVarObjEx* var, DataType type, double raw) {
        const Variant value = RawToVariant(type, raw);
        IVarObjEx* own = module->Store().FindByAddress(var->GetInstanceAddress());
        if (own == var)
            static_cast<model::CVarObj*>(own)->StoreRead(value);
        else
            var->SetValue(value); // a copy the caller made: it gets the value only
    };
    int done = 0;
    bool ok = true, stop = false;
    auto advance = [&] {
        ++done;
        if (m_stepHook)
            m_stepHook(done, total);
        if ((m_progress && !m_progress->Advance(done)) || !m_drives.Serves(moduleKey, link)) {
            ok = false;
            stop = true;
        }
    };
    for (std::size_t i = 0; i < loose.size() && !stop; ++i)
        advance();

    std::vector<std::uint16_t> words;
    for (const link::RegisterBlock& block : link::PlanBlocks(ranges, limit)) {
        if (stop)
            break;
        // A block of one parameter is read as one; a failed block falls back to singles.
        bool blockRead = false;
        if (block.last - block.first > 1) {
            sim::LinkResult r;
            words.assign(std::size_t(block.count), 0);
            for (int t = 0; t < kTries; ++t) {
                r = link->Read(block.address, words, kTimeout_ms);
                if (!r.transient())
                    break;
            }
            if (r.status == sim::LinkStatus::Offline) {
                ok = false;
                m_uploadOffline = true;
                break; // nothing more will come from this drive
            }
            blockRead = r.ok();
        }
        std::size_t offset = 0;
        for (std::size_t k = block.first; k < block.last && !stop; ++k) {
            const Item& item = items[k];
            const std::size_t n = std::size_t(ranges[k].count);
            if (blockRead) {
                store(item.var, item.type,
                      sim::DecodeRaw(item.type, std::span(words.data() + offset, n)));
            } else {
                double raw = 0;
                sim::LinkResult one;
                for (int t = 0; t < kTries; ++t) {
                    one = sim::ReadRaw(*link, ranges[k].address, item.type, raw, kTimeout_ms);
                    if (!one.transient())
                        break;
                }
                if (one.status == sim::LinkStatus::Offline) {
                    ok = false;
                    m_uploadOffline = true;
                    stop = true;
                    break;
                }
                if (one.ok()) {
                    store(item.var, item.type, raw);
                } else {
                    ok = false; // the variable keeps its value; the others are still read
                    m_readFailures.push_back(
                        {ranges[k].address, m_helper.FailureText(module, ranges[k].address, one)});
                }
            }
            offset += n;
            advance();
        }
    }
    if (m_progress)
        m_progress->End();
    return ok;
}

BOOL CHostTransferService::UploadVars(HWND, const CString& moduleKey,
                                      const std::vector<IVarObjEx*>& vars) {
    const bool known = m_drives.FindModule(moduleKey) != nullptr;
    // The end is announced in every case: the caller's flow waits for it.
    AnnounceUpload(moduleKey, known && ReadVars(moduleKey, vars));
    return known ? 1 : 0;
}

BOOL CHostTransferService::UploadModule(HWND owner, const CString& moduleKey) {
    std::vector<IVarObjEx*> all, vars;
    GetModuleVars(moduleKey, all);
    vars.reserve(all.size());
    for (IVarObjEx* v : all) {
        IVarAttr* a = v->GetAttr();
        if (a && a->IsTransferable() && a->GetModifyMode() != int(device::ModifyMode::NotListed))
            vars.push_back(v);
    }
    return UploadVars(owner, moduleKey, vars);
}

// The simulated drives run the very description the host loaded, so their attributes can
// only agree with the host's; the sync asks each drive for its variables, which proves it
// answers, and ends like an upload. The three protocol modes differ on real links only.
BOOL CHostTransferService::SyncModuleAttributes(HWND owner, const CString& moduleKey, int mode) {
    if (mode < 1 || mode > 3) {
        AnnounceUpload(moduleKey, false);
        return 0;
    }
    return UploadModule(owner, moduleKey);
}

BOOL CHostTransferService::GetModuleVars(const CString& moduleKey, std::vector<IVarObjEx*>& vars) {
    model::CDeviceModule* module = m_drives.FindModule(moduleKey);
    if (!module)
        return 0;
    model::CVarStore& store = module->Store();
    const int n = store.GetCount();
    vars.reserve(vars.size() + size_t(n));
    for (int i = 0; i < n; ++i)
        vars.push_back(store.GetAt(i));
    return 1;
}

BOOL CHostTransferService::CompareAxes(const CString& sourceKey, const CString& targetKey,
                                       const CString& sourceAxis, const CString& targetAxis,
                                       std::vector<IRWDataItem*>& rows) {
    return CompareAxisParameters(m_drives.FindModule(sourceKey), m_drives.FindModule(targetKey),
                                 sourceAxis, targetAxis, rows)
               ? 1
               : 0;
}

BOOL CHostTransferService::DownloadAxisRecords(HWND, const CString& targetKey, const CString&,
                                               const std::vector<IRWDataItem*>& rows) {
    model::CDeviceModule* module = m_drives.FindModule(targetKey);
    std::vector<CString> errors;
    const bool ok = module != nullptr && WriteAxisRecords(m_helper, module, rows, errors);
    if (m_notifier)
        m_notifier(targetKey, ok ? 1 : 0, true);
    return ok ? 1 : 0;
}

// The module's level reaches the host on the module object (SetAccessLevel), and the
// module leaves out of its records what that level may not touch: nothing to keep here.
void CHostTransferService::NotifyLevelToTransfer(const CString&, int) {}

} // namespace zorhost
