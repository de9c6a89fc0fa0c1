// --download: a parameter file to one module's drive, without a window.
#include "CommandLine.h"
#include "HostProject.h"

#include <zorhost/ReferenceHost.h>

#include "module/host/IParamFile.h"
#include "module/host/IRWDataItem.h"

#include <afx/afxqt.h>

#include <QFileInfo>

#include <cstdio>

namespace zordrivebench {

namespace {

int Fail(int code, const QString& message) {
    const QByteArray bytes = QStringLiteral("zordrivebench: %1\n").arg(message).toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    return code;
}

} // namespace

int RunDownload(const Options& options) {
    zorhost::ReferenceHost host;
    LoadedProject project;
    QString error;
    if (!LoadIntoHost(host, options.projectFile, project, &error))
        return Fail(kExitProject, error);
    if (const int code = EnterAccessCode(host, options); code != kExitOk)
        return code;
    const CString key = AfxFromQString(options.downloadKey);
    zorhost::model::CDeviceModule* module = host.Module(key);
    if (module == nullptr)
        return Fail(kExitUnknownModule, QStringLiteral("no module with the key \"%1\" in %2")
                                            .arg(options.downloadKey, project.Title(true)));
    if (!module->IsOnline())
        return Fail(kExitOffline,
                    QStringLiteral("module \"%1\" is offline: nothing was written to its drive")
                        .arg(options.downloadKey));
    const QString path = QFileInfo(options.downloadFile).absoluteFilePath();
    IParamFile* file = host.Transfer().ReadParamFile(AfxFromQString(path), module);
    if (file == nullptr)
        return Fail(
            kExitBadFile,
            QStringLiteral("%1 can't be read as a parameter file; nothing was written").arg(path));
    std::vector<IRWDataItem*> records = host.Transfer().RecordsFromFile(file, module);
    file->Release();
    const BOOL ok = host.Transfer().DownloadRecords(nullptr, key, records);
    for (IRWDataItem* record : records)
        delete record;
    if (ok)
        return kExitOk;
    const auto& failures = host.Transfer().LastDownloadFailures();
    QString list;
    for (const auto& failure : failures)
        list += QStringLiteral("  %1\n").arg(AfxToQString(failure.reason));
    return Fail(kExitWriteFailed,
                QStringLiteral("%1 of %2 writes to module \"%3\" failed:\n%4")
                    .arg(failures.size())
                    .arg(records.size())
                    .arg(options.downloadKey, list.trimmed().prepend(QStringLiteral("  "))));
}

} // namespace zordrivebench
