// --compare: two parameter sets side by side, for scripts. The rows are the compare
// dialog's, so a script sees the rows an engineer sees.
#include "CommandLine.h"

#include "HostProject.h"
#include "UploadFailure.h"

#include <zorhost/ReferenceHost.h>
#include <zorhost/files/ParamSetCompare.h>

#include "module/host/IHostDeviceModule.h"
#include "module/host/IMessage_ModuleUploadEvent.h"
#include "module/host/IParamFile.h"

#include <afx/afxfile.h>
#include <afx/afxqt.h>

#include <QFileInfo>

#include <cstdio>
#include <memory>

namespace zordrivebench {

namespace {

int Fail(int code, const QString& message) {
    const QByteArray bytes = QStringLiteral("zordrivebench: %1\n").arg(message).toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    return code;
}

// One side of the compare: a module's current or factory values, or a file's variables.
struct Side {
    QString arg;
    zorhost::CompareSource source = zorhost::CompareSource::Current;
    CString key;  // of the module, for a module side
    QString path; // of the file, for a file side
    std::vector<IVarObjEx*> moduleVars;
    std::unique_ptr<zorhost::DetachedFileVars> fileVars;

    const std::vector<IVarObjEx*>& vars() const {
        return fileVars != nullptr ? fileVars->vars() : moduleVars;
    }
};

class UploadWatch : public IMessage_ModuleUploadEvent {
public:
    explicit UploadWatch(CString key) : m_key(std::move(key)) {}
    void OnModuleUploaded(const CString& moduleKey, BOOL success) override {
        if (moduleKey == m_key)
            succeeded = success != 0;
    }
    void OnModuleDownloaded(const CString&, BOOL) override {}
    bool succeeded = false;

private:
    CString m_key;
};

bool IsParamFileName(const QString& arg) {
    return arg.endsWith(QLatin1String(".zorparam"), Qt::CaseInsensitive) ||
           arg.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive);
}

// Two labels are of one device type when the 16-bit words at bytes 0, 2, 4 and 14 agree.
bool SameDeviceType(const BYTE* a, UINT na, const BYTE* b, UINT nb) {
    if (a == nullptr || b == nullptr || na < 16 || nb < 16)
        return false;
    for (UINT at : {0u, 2u, 4u, 14u})
        if (a[at] != b[at] || a[at + 1] != b[at + 1])
            return false;
    return true;
}

// Reads `path` bound to `module` (may be null) into a new file object; null on failure.
IParamFile* ReadFile(zorhost::ReferenceHost& host, const QString& path, IHostDeviceModule* module) {
    auto* file = static_cast<IParamFile*>(host.ModuleManager().CreateInstance(IParamFile::kIID));
    if (file == nullptr)
        return nullptr;
    const CString p = AfxFromQString(path);
    BOOL ok = FALSE;
    if (path.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive)) {
        ok = host.DeviceHelper().ReadCsvParamFile(p, file, module);
    } else {
        file->LoadContext(module);
        ok = file->Open(p);
    }
    if (!ok) {
        file->Release();
        return nullptr;
    }
    return file;
}

int LoadFileSide(zorhost::ReferenceHost& host, const Options& options, Side& side) {
    IHostDeviceModule* context = nullptr;
    if (!options.contextModule.isEmpty()) {
        context = host.Module(AfxFromQString(options.contextModule));
        if (context == nullptr)
            return Fail(kExitUnknownModule,
                        QStringLiteral("--module: no module with the key \"%1\"")
                            .arg(options.contextModule));
    } else {
        // A first reading tells the device type; the file is then read by that module.
        IParamFile* probe = ReadFile(host, side.path, nullptr);
        if (probe == nullptr)
            return Fail(kExitBadFile,
                        QStringLiteral("%1: not a readable parameter file").arg(side.path));
        const BYTE* label = probe->GetElecLabel();
        const UINT size = probe->GetElecLabelSize();
        for (const CString& key : host.ModuleKeys()) {
            IHostDeviceModule* m = host.Module(key);
            if (SameDeviceType(label, size, m->GetElecLabel(), m->GetElecLabelSize())) {
                context = m;
                break;
            }
        }
        probe->Release();
        if (context == nullptr)
            return Fail(kExitBadFile,
                        QStringLiteral("%1: no module of the project has its device type; "
                                       "name one with --module KEY")
                            .arg(side.path));
    }
    IParamFile* file = ReadFile(host, side.path, context);
    if (file == nullptr)
        return Fail(kExitBadFile,
                    QStringLiteral("%1: not a readable parameter file").arg(side.path));
    side.fileVars = std::make_unique<zorhost::DetachedFileVars>(file);
    file->Release();
    return kExitOk;
}

// Works out what `side.arg` names; a module side is read from its drive when its current
// values are asked for.
int LoadSide(zorhost::ReferenceHost& host, const Options& options, Side& side) {
    if (IsParamFileName(side.arg) || QFileInfo(side.arg).isFile()) {
        side.source = zorhost::CompareSource::File;
        side.path = side.arg;
        if (!QFileInfo(side.path).isFile())
            return Fail(kExitBadFile, QStringLiteral("%1: no such file").arg(side.path));
        return LoadFileSide(host, options, side);
    }
    QString key = side.arg;
    if (key.endsWith(QLatin1String(":factory"), Qt::CaseInsensitive)) {
        key.chop(int(sizeof(":factory")) - 1);
        side.source = zorhost::CompareSource::Factory;
    }
    side.key = AfxFromQString(key);
    IHostDeviceModule* module = host.Module(side.key);
    if (module == nullptr)
        return Fail(kExitUnknownModule, QStringLiteral("no module with the key \"%1\"").arg(key));
    if (side.source == zorhost::CompareSource::Current) {
        if (!module->IsOnline())
            return Fail(kExitOffline,
                        QStringLiteral("module \"%1\" is offline: its current values can't be read")
                            .arg(key));
        UploadWatch watch(side.key);
        host.Bus().Subscribe(IID_IMessage_ModuleUploadEvent,
                             AsSink<IMessage_ModuleUploadEvent>(&watch));
        host.Transfer().UploadModule(nullptr, side.key);
        host.Bus().Unsubscribe(IID_IMessage_ModuleUploadEvent,
                               AsSink<IMessage_ModuleUploadEvent>(&watch));
        if (!watch.succeeded)
            return ReportFailedUpload(host, key, QStringLiteral("nothing was compared"));
    }
    host.Transfer().GetModuleVars(side.key, side.moduleVars);
    return kExitOk;
}

} // namespace

int RunCompare(const Options& options) {
    zorhost::ReferenceHost host;
    LoadedProject project;
    QString error;
    if (!LoadIntoHost(host, options.projectFile, project, &error))
        return Fail(kExitProject, error);
    if (const int code = EnterAccessCode(host, options); code != kExitOk)
        return code;
    Side a, b;
    a.arg = options.compareA;
    b.arg = options.compareB;
    for (Side* side : {&a, &b})
        if (const int code = LoadSide(host, options, *side); code != kExitOk)
            return code;

    const zorhost::CompareResult pairs =
        zorhost::CompareParamSets(host.VarUtil(), a.vars(), a.source, b.vars(), b.source);
    SYSTEMTIME now{};
    GetLocalTime(&now);
    const std::string text =
        zorhost::CompareCsv(host.VarUtil(), options.compareSame ? pairs.agree : pairs.differ, now);
    const int result = pairs.differ.empty() ? kExitOk : kExitDiffers;

    if (options.compareOut.isEmpty()) {
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
        return result;
    }
    std::string why;
    if (!AfxReplaceFile(options.compareOut.toStdString(), text, &why))
        return Fail(kExitNoFile,
                    QStringLiteral("%1: %2").arg(options.compareOut, QString::fromStdString(why)));
    return result;
}

} // namespace zordrivebench
