// Service: bulk transfers between the drive and the host's variable objects. Implemented
// by the host; got through the query callback under kIID. User-interface thread, except
// GetModuleVars, which a worker may call.
//
// A transfer ends with IMessage_ModuleUploadEvent (OnModuleUploaded or
// OnModuleDownloaded) for the module's key; the caller subscribes before it starts one.
// `owner` is the caller's window, the parent of anything the host shows. Lists handed in
// stay the caller's: the host has taken what it needs when the call returns.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

#include <vector>

class IHostTransferService : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("5BAEB910-7DF5-41DF-9562-50D120E2AE77");

    // Starts reading `vars` of `moduleKey` from the drive into the variable objects; the
    // end comes as OnModuleUploaded. Nonzero when started.
    virtual BOOL UploadVars(HWND owner, const CString& moduleKey,
                            const std::vector<IVarObjEx*>& vars) = 0;
    // Starts reading all variables of `moduleKey`; the end comes as OnModuleUploaded.
    virtual BOOL UploadModule(HWND owner, const CString& moduleKey) = 0;
    // Starts reading the attributes of the module's variables from the drive; `mode`
    // (1, 2 or 3) chooses the device's protocol for it. The end comes as OnModuleUploaded.
    virtual BOOL SyncModuleAttributes(HWND owner, const CString& moduleKey, int mode) = 0;
    // Asks for a parameter file and writes it to the drive, all with the host's own
    // dialogs; the end comes as OnModuleDownloaded.
    virtual BOOL OpenAndDownload(HWND owner, const CString& moduleKey) = 0;
    // Starts writing `records` to `moduleKey`; the end comes as OnModuleDownloaded. The
    // records stay the caller's.
    virtual BOOL DownloadRecords(HWND owner, const CString& moduleKey,
                                 const std::vector<IRWDataItem*>& records) = 0;
    // Appends all variables of `moduleKey` to `vars`, in the module's order. Host-owned.
    // Nonzero when the module exists.
    virtual BOOL GetModuleVars(const CString& moduleKey, std::vector<IVarObjEx*>& vars) = 0;
    // Appends to `rows` one new record per parameter that differs between axis
    // `sourceAxis` of `sourceKey` and axis `targetAxis` of `targetKey`: the target's
    // address, the source's value as record value, the target's as old value. The rows
    // are owned by the caller, who deletes them. Nonzero on success.
    virtual BOOL CompareAxes(const CString& sourceKey, const CString& targetKey,
                             const CString& sourceAxis, const CString& targetAxis,
                             std::vector<IRWDataItem*>& rows) = 0;
    // Writes `rows` to axis `targetAxis` of `targetKey` and reports to the user itself.
    // Done with the rows (or holding copies) when it returns.
    virtual BOOL DownloadAxisRecords(HWND owner, const CString& targetKey,
                                     const CString& targetAxis,
                                     const std::vector<IRWDataItem*>& rows) = 0;
    // Tells the transfer side that `moduleKey` now works at access level `level`.
    virtual void NotifyLevelToTransfer(const CString& moduleKey, int level) = 0;
};

inline constexpr GUID IID_IHostTransferService = IHostTransferService::kIID;
