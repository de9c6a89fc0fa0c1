#include "zorhost/model/CustomGroupStore.h"

#include <QFile>
#include <QFileInfo>

namespace zorhost::model {

std::string CustomGroupFile(const CString& projectDir, IHostDeviceModule& module) {
    if (projectDir.IsEmpty())
        return {};
    CString name, key;
    module.GetDisplayName(name);
    module.GetModuleKey(key);
    std::string dir = projectDir.str();
    while (dir.size() > 1 && (dir.back() == '/' || dir.back() == '\\'))
        dir.pop_back();
    return dir + "/" + name.str() + "_" + key.str() + "/" + kCustomGroupFileName;
}

void LoadCustomGroups(CWorkspace& workspace, std::vector<std::string>& problems) {
    CString dir;
    if (!workspace.GetProjectDir(dir))
        return;
    CModuleList& modules = workspace.Modules();
    for (int i = 0; i < modules.GetModuleCount(); ++i) {
        auto* module = static_cast<CDeviceModule*>(modules.GetModuleAt(i));
        const std::string path = CustomGroupFile(dir, *module);
        const QString qpath = QString::fromUtf8(path.data(), qsizetype(path.size()));
        if (!QFileInfo::exists(qpath))
            continue;
        std::string why;
        if (workspace.DatabaseFor(module->Store()).LoadFromFile(CString(path), &why))
            continue;
        const QString aside = qpath + QString::fromLatin1(kDamagedSuffix);
        QFile::remove(aside);
        const bool kept = QFile::rename(qpath, aside);
        CString key;
        module->GetModuleKey(key);
        problems.push_back("custom groups of module \"" + key.str() + "\" not loaded: " + why +
                           (kept ? "; the file was kept as " + path + kDamagedSuffix : ""));
    }
}

} // namespace zorhost::model
