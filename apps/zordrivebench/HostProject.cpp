#include "HostProject.h"

#include <zorhost/ReferenceHost.h>
#include <zorhost/device/DeviceLoader.h>

#include <QFileInfo>

namespace zordrivebench {

using zorhost::project::ProjectFile;

namespace {

QString Qs(const std::string& s) {
    return QString::fromUtf8(s.data(), qsizetype(s.size()));
}

zorhost::ProjectSetup ToSetup(const ProjectFile& file, const std::string& baseDir) {
    zorhost::ProjectSetup setup;
    setup.directory = CString(zorhost::project::ResolvePath(baseDir, file.directory));
    setup.listStyle = int(file.listStyle);
    const std::string devices = zorhost::device::DefaultDeviceDirectory();
    for (const auto& m : file.modules) {
        zorhost::ModuleSetup s;
        s.deviceFile = zorhost::project::ResolveDeviceFile(baseDir, devices, m.deviceFile);
        s.key = CString(m.key);
        s.displayName = CString(m.displayName);
        s.number = m.number;
        s.online = m.online;
        s.link = m.link;
        setup.modules.push_back(std::move(s));
    }
    return setup;
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
    std::string why;
    if (!host.LoadProject(ToSetup(next.file, baseDir), &why)) {
        if (error != nullptr)
            *error =
                next.path.isEmpty() ? Qs(why) : QStringLiteral("%1: %2").arg(next.path, Qs(why));
        return false;
    }
    loaded = std::move(next);
    return true;
}

} // namespace zordrivebench
