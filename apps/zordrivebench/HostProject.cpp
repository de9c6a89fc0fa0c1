#include "HostProject.h"

#include <zorhost/ReferenceHost.h>
#include <zorhost/device/DeviceLoader.h>

#include <QFileInfo>
#include <QStringList>

namespace zordrivebench {

using zorhost::project::ProjectFile;

namespace {

QString Qs(const std::string& s) {
    return QString::fromUtf8(s.data(), qsizetype(s.size()));
}

// The demo takes the shipped descriptions only; a project file looks beside itself first.
// A device file that is nowhere is refused here, with its place and the folders searched.
bool ToSetup(const ProjectFile& file, const std::string& baseDir, bool demo,
             zorhost::ProjectSetup& setup, QString* error) {
    setup.directory = CString(zorhost::project::ResolvePath(baseDir, file.directory));
    setup.listStyle = int(file.listStyle);
    const std::string shipped = zorhost::device::DefaultDeviceDirectory();
    const std::string first = demo ? shipped : baseDir;
    const std::string second = demo ? std::string() : shipped;
    for (std::size_t i = 0; i < file.modules.size(); ++i) {
        const auto& m = file.modules[i];
        zorhost::ModuleSetup s;
        s.deviceFile = zorhost::project::ResolveDeviceFile(first, second, m.deviceFile);
        if (!QFileInfo(Qs(s.deviceFile)).isFile()) {
            const bool bare = m.deviceFile.find('/') == std::string::npos;
            QStringList searched{Qs(first)};
            if (bare && !second.empty() && !QFileInfo(Qs(m.deviceFile)).isAbsolute())
                searched << Qs(second);
            if (error != nullptr)
                *error =
                    QStringLiteral("modules[%1].deviceFile: \"%2\" was not found (searched: %3)")
                        .arg(i)
                        .arg(Qs(m.deviceFile), QFileInfo(Qs(m.deviceFile)).isAbsolute()
                                                   ? Qs(s.deviceFile)
                                                   : searched.join(QStringLiteral(", ")));
            return false;
        }
        s.key = CString(m.key);
        s.displayName = CString(m.displayName);
        s.number = m.number;
        s.online = m.online;
        s.link = m.link;
        setup.modules.push_back(std::move(s));
    }
    return true;
}

} // namespace

QString LoadedProject::Title(bool english) const {
    if (!file.name.empty())
        return Qs(file.name);
    if (!path.isEmpty())
        return QFileInfo(path).completeBaseName();
    return english ? QStringLiteral("Demo project") : QStringLiteral("演示工程");
}

ProjectFile DemoProjectFile() {
    ProjectFile file;
    const zorhost::ProjectSetup demo = zorhost::ReferenceHost::DemoProject();
    file.listStyle = zorhost::project::ListStyle(demo.listStyle);
    for (const auto& m : demo.modules)
        file.modules.push_back(
            {m.key.str(), m.deviceFile, m.displayName.str(), m.number, m.online, m.link});
    return file;
}

bool LoadIntoHost(zorhost::ReferenceHost& host, const QString& path, LoadedProject& loaded,
                  QString* error) {
    LoadedProject next;
    std::string baseDir;
    if (path.isEmpty()) {
        next.file = DemoProjectFile();
    } else {
        const QFileInfo info(path);
        next.path = info.absoluteFilePath();
        baseDir = info.absolutePath().toStdString();
        zorhost::project::ProjectError e;
        if (!zorhost::project::LoadProjectFile(path.toStdString(), next.file, &e)) {
            host.CloseProject();
            if (error != nullptr)
                *error = Qs(e.ToString());
            return false;
        }
    }
    zorhost::ProjectSetup setup;
    QString missing;
    if (!ToSetup(next.file, baseDir, path.isEmpty(), setup, &missing)) {
        host.CloseProject();
        if (error != nullptr)
            *error =
                next.path.isEmpty() ? missing : QStringLiteral("%1: %2").arg(next.path, missing);
        return false;
    }
    std::string why;
    if (!host.LoadProject(setup, &why)) {
        if (error != nullptr)
            *error =
                next.path.isEmpty() ? Qs(why) : QStringLiteral("%1: %2").arg(next.path, Qs(why));
        return false;
    }
    loaded = std::move(next);
    return true;
}

} // namespace zordrivebench
