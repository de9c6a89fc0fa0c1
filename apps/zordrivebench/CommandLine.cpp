#include "CommandLine.h"

#include "HostProject.h"
#include "ParmiraModule.h"
#include "ProgramServices.h"
#include "UploadFailure.h"

#include <zorhost/ReferenceHost.h>
#include <zorhost/files/ParamFile.h>
#include <zorhost/services/HostMessageBus.h>

#include "module/host/IMessage_ModuleUploadEvent.h"

#include <afx/afxfile.h>
#include <afx/afxqt.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <sys/stat.h>

namespace zordrivebench {

namespace {

void Print(std::FILE* to, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), to);
}

int Fail(int code, const QString& message) {
    Print(stderr, QStringLiteral("zordrivebench: %1\n").arg(message));
    return code;
}

QString Qs(const CString& s) {
    return AfxToQString(s);
}

QString KeyList(zorhost::ReferenceHost& host) {
    QStringList keys;
    for (const CString& key : host.ModuleKeys())
        keys << Qs(key);
    return keys.join(QStringLiteral(", "));
}

// Identifies the file a path names now, to tell whether a save replaced it.
struct FileStamp {
    bool exists = false;
    bool regular = false;
    dev_t device = 0;
    ino_t inode = 0;
};

FileStamp StampOf(const QString& path) {
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return {};
    return {true, S_ISREG(st.st_mode), st.st_dev, st.st_ino};
}

// Hears how the upload of one module ended.
class UploadWatch : public IMessage_ModuleUploadEvent {
public:
    explicit UploadWatch(CString key) : m_key(std::move(key)) {}
    void OnModuleUploaded(const CString& moduleKey, BOOL success) override {
        if (moduleKey == m_key) {
            ended = true;
            succeeded = success != 0;
        }
    }
    void OnModuleDownloaded(const CString&, BOOL) override {}

    bool ended = false;
    bool succeeded = false;

private:
    CString m_key;
};

// The parameter file of the whole module, as the host's file object writes it; the object
// replaces the target only with a complete file.
int ExportParameterFile(zorhost::model::CDeviceModule& module, const QFileInfo& target) {
    // One missing folder level is made, as for the table.
    const QDir folder = target.absoluteDir();
    if (!folder.exists())
        QDir().mkdir(folder.absolutePath());
    zorhost::files::CParamFile file;
    CString version;
    module.GetVersionText(version);
    file.SetVersionText(version);
    file.SetElecLabel(module.GetElecLabel(), module.GetElecLabelSize());
    file.SetAccessLevel(module.GetAccessLevel());
    file.GetVarList()->SetVersionText(version);
    file.GetVarList()->CopyFrom(module.GetVarList());
    if (!file.Save(AfxFromQString(target.absoluteFilePath())))
        return Fail(kExitNoFile, QString::fromStdString(file.LastError()));
    return kExitOk;
}

} // namespace

int EnterAccessCode(zorhost::ReferenceHost& host, const Options& options) {
    if (options.accessCode.isEmpty())
        return kExitOk;
    for (const CString& key : host.ModuleKeys()) {
        std::string why;
        if (!host.EnterAccessCode(key, options.accessCode.toStdString(), &why))
            return Fail(
                kExitAccessCode,
                QStringLiteral("module \"%1\": %2").arg(Qs(key), QString::fromStdString(why)));
    }
    return kExitOk;
}

int RunList(const Options& options) {
    zorhost::ReferenceHost host;
    LoadedProject project;
    QString error;
    if (!LoadIntoHost(host, options.projectFile, project, &error))
        return Fail(kExitProject, error);
    for (const CString& key : host.ModuleKeys()) {
        CString name;
        host.Module(key)->GetDisplayName(name);
        Print(stdout, QStringLiteral("%1\t%2\n").arg(Qs(key), Qs(name)));
    }
    std::fflush(stdout);
    return kExitOk;
}

int RunExport(const Options& options) {
    const QFileInfo target(options.exportFile);
    // The form follows the extension, as in the module: the table, the parameter file or
    // the compressed export.
    const bool asFile =
        target.suffix().compare(QLatin1String("zorparam"), Qt::CaseInsensitive) == 0;
    if (!asFile && target.suffix().compare(QLatin1String("csv"), Qt::CaseInsensitive) != 0 &&
        target.suffix().compare(QLatin1String("zxd"), Qt::CaseInsensitive) != 0)
        return Fail(kExitUsage, QStringLiteral("%1: the export is written as .csv (the parameter "
                                               "table), .zorparam (the parameter file) or .zxd "
                                               "(the compressed export)")
                                    .arg(options.exportFile));

    zorhost::ReferenceHost host;
    ProgramServices services(host);
    LoadedProject project;
    QString error;
    if (!LoadIntoHost(host, options.projectFile, project, &error))
        return Fail(kExitProject, error);
    if (const int code = EnterAccessCode(host, options); code != kExitOk)
        return code;

    const CString key = AfxFromQString(options.exportKey);
    zorhost::model::CDeviceModule* module = host.Module(key);
    if (module == nullptr)
        return Fail(kExitUnknownModule,
                    QStringLiteral("no module with the key \"%1\" in %2 (its modules: %3)")
                        .arg(options.exportKey, project.Title(true), KeyList(host)));
    if (!module->IsOnline())
        return Fail(kExitOffline, QStringLiteral("module \"%1\" is offline: its drive can't be "
                                                 "read, so nothing was exported")
                                      .arg(options.exportKey));

    // The table holds what the host last read; read the whole drive first, so that the file
    // tells the drive's present values.
    UploadWatch upload(key);
    services.Bus().Subscribe(IID_IMessage_ModuleUploadEvent,
                             AsSink<IMessage_ModuleUploadEvent>(&upload));
    host.Transfer().UploadModule(nullptr, key);
    services.Bus().Unsubscribe(IID_IMessage_ModuleUploadEvent,
                               AsSink<IMessage_ModuleUploadEvent>(&upload));
    if (!upload.succeeded)
        return ReportFailedUpload(host, options.exportKey, QStringLiteral("nothing was exported"));

    if (asFile)
        return ExportParameterFile(*module, target);

    ParmiraModule plugin;
    if (!plugin.Load(ParmiraModule::DefaultPath(), host.Services(), &error))
        return Fail(kExitPlugin, error);
    IQXParmira* view = plugin.Create(&error);
    if (view == nullptr)
        return Fail(kExitPlugin, error);

    // The module replaces the target in one step (a new file beside it, renamed over it);
    // a file that is not the one before tells that it did. A device is written in place.
    const QString path = target.absoluteFilePath();
    const FileStamp before = StampOf(path);
    view->ExportParameters(AfxFromQString(path), key);
    plugin.Release(view);
    plugin.Unload();
    const FileStamp after = StampOf(path);
    const bool replaced =
        after.exists && (!before.exists || !before.regular || after.device != before.device ||
                         after.inode != before.inode);
    const std::string& why = AfxGetLastFileError();
    if (!replaced || !why.empty()) {
        if (!why.empty())
            return Fail(kExitNoFile,
                        QStringLiteral("%1: %2").arg(path, QString::fromStdString(why)));
        return Fail(kExitNoFile, QStringLiteral("the parameter table of \"%1\" was not written to "
                                                "%2 (is the folder there and writable?)")
                                     .arg(options.exportKey, path));
    }
    return kExitOk;
}

} // namespace zordrivebench
