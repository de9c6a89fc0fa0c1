// Bulk transfers between the drives and the host's variables (IHostTransferService).
// Each transfer runs to its end inside the call, with the host's own progress display
// when one is installed, and ends with the upload-finished event, whatever happened on the
// way: a drive that fails or goes offline ends it with success 0. A request to a drive on a
// field bus goes out from the link's worker while the window's events are handled.
#pragma once

#include "module/host/HostFwd.h"
#include "module/host/IHostTransferService.h"

#include <functional>
#include <vector>

namespace zorhost {

namespace sim {
class DriveDirectory;
class DriveLink;
} // namespace sim
class CHostDeviceHelper;

// Shows how far a transfer has come. Begin and Advance run on the transfer's thread (the
// user-interface thread); Advance returns false when the user cancelled.
class TransferProgress {
public:
    virtual ~TransferProgress() = default;
    virtual void Begin(const CString& moduleKey, int total) = 0;
    virtual bool Advance(int done) = 0;
    virtual void End() = 0;
};

class CHostTransferService : public IHostTransferService {
public:
    static constexpr int kTimeout_ms = 200;
    static constexpr int kTries = 3;

    // How the end of a transfer is announced: (module key, success, false) for an upload,
    // (..., true) for a download. The host routes it to its message bus.
    using EndNotifier = std::function<void(const CString& moduleKey, BOOL success, bool download)>;

    CHostTransferService(sim::DriveDirectory& drives, CHostDeviceHelper& helper);

    void SetEndNotifier(EndNotifier notifier);
    // Not owned; null shows nothing (tests, command-line runs).
    void SetProgress(TransferProgress* progress) { m_progress = progress; }
    // Called after every variable with (done, total): lets a test act half way through.
    void SetStepHook(std::function<void(int done, int total)> hook) {
        m_stepHook = std::move(hook);
    }

    BOOL UploadVars(HWND owner, const CString& moduleKey,
                    const std::vector<IVarObjEx*>& vars) override;
    BOOL UploadModule(HWND owner, const CString& moduleKey) override;
    BOOL SyncModuleAttributes(HWND owner, const CString& moduleKey, int mode) override;
    BOOL GetModuleVars(const CString& moduleKey, std::vector<IVarObjEx*>& vars) override;
    // Asks for a file with the chooser, reads it, asks before a file of another device
    // type and downloads it as DownloadRecords does.
    BOOL OpenAndDownload(HWND owner, const CString& moduleKey) override;
    // Writes the records: in their order, one write each, or grouped into block writes of
    // neighbouring addresses where the link carries blocks. Success only when every write
    // was taken: a refused write is noted and the rest go on; a drive gone offline fails
    // all that is left. Announced in every case.
    BOOL DownloadRecords(HWND owner, const CString& moduleKey,
                         const std::vector<IRWDataItem*>& records) override;
    BOOL CompareAxes(const CString& sourceKey, const CString& targetKey, const CString& sourceAxis,
                     const CString& targetAxis, std::vector<IRWDataItem*>& rows) override;
    BOOL DownloadAxisRecords(HWND owner, const CString& targetKey, const CString& targetAxis,
                             const std::vector<IRWDataItem*>& rows) override;
    void NotifyLevelToTransfer(const CString& moduleKey, int level) override;

    // The writes of the last download that did not get through.
    struct FailedWrite {
        UINT address = 0;
        CString reason; // "H06-03: <reason>"
    };
    const std::vector<FailedWrite>& LastDownloadFailures() const { return m_failures; }
    // The reads of the last upload that did not get through, in the order read, and whether
    // it ended because the drive dropped (the reads not tried then are not listed).
    const std::vector<FailedWrite>& LastUploadFailures() const { return m_readFailures; }
    bool LastUploadWentOffline() const { return m_uploadOffline; }

    // How OpenAndDownload asks for a file and a confirmation; the program installs its
    // dialogs, tests their answers. Without a chooser nothing is opened.
    using FileChooser = std::function<CString(HWND owner)>;
    using Question = std::function<bool(HWND owner, const CString& text)>;
    void SetFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }
    void SetQuestion(Question question) { m_ask = std::move(question); }
    // Where OpenAndDownload gets its file objects (IHostModuleManager::CreateInstance).
    void SetModuleManager(IHostModuleManager* manager) { m_manager = manager; }

    // Reads a .zorparam or a parameter table into a new file object bound to `module`;
    // null when it can't be read. The caller releases it.
    IParamFile* ReadParamFile(const CString& path, IHostDeviceModule* module);
    // The records a file gives for download: each of its parameters that the module has
    // and may write, leaving out read-only and hidden parameters as the staging list does.
    std::vector<IRWDataItem*> RecordsFromFile(IParamFile* file, IHostDeviceModule* module);

    // Uploads announced so far, for tests of the event path.
    int UploadsEnded() const { return m_uploadsEnded; }

private:
    // Reads `vars` from the drive into themselves; false when any read failed, the drive
    // went offline or the user cancelled.
    bool ReadVars(const CString& moduleKey, const std::vector<IVarObjEx*>& vars);
    void AnnounceUpload(const CString& moduleKey, bool success);
    void AnnounceDownload(const CString& moduleKey, bool success);

    sim::DriveDirectory& m_drives;
    CHostDeviceHelper& m_helper;
    EndNotifier m_notifier;
    TransferProgress* m_progress = nullptr;
    std::function<void(int, int)> m_stepHook;
    int m_uploadsEnded = 0;
    std::vector<FailedWrite> m_failures;
    std::vector<FailedWrite> m_readFailures;
    bool m_uploadOffline = false;
    FileChooser m_chooseFile;
    Question m_ask;
    IHostModuleManager* m_manager = nullptr;
};

} // namespace zorhost
