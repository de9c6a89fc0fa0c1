#include "ParmiraModule.h"

#include "ModuleFileCheck.h"

#include <zorhost/InstallLayout.h>

#include <zorhost/HostServices.h>

#include <afx/afxqt.h>
#include <afx/afxwin.h>

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>

namespace zordrivebench {

ParmiraModule::~ParmiraModule() {
    Unload();
}

QString ParmiraModule::DefaultPath() {
    return QString::fromStdString(zorhost::layout::ModuleLibraryPath());
}

bool ParmiraModule::Load(const QString& path, zorhost::HostServices& services, QString* error) {
    if (m_handle != nullptr)
        return true;
    auto fail = [&](const QString& why) {
        if (error != nullptr)
            *error = QStringLiteral("%1: %2").arg(path, why);
        if (m_handle != nullptr)
            AfxFreeLibrary(m_handle);
        m_handle = nullptr;
        return false;
    };
    // A broken file must end in a message, not in a crash inside the system loader.
    QString broken;
    if (!CheckModuleFile(path, &broken))
        return fail(broken);
    m_handle = AfxLoadLibrary(path.toUtf8().constData());
    if (m_handle == nullptr)
        return fail(AfxToQString(AfxGetLoadError()));
    m_setCallback = reinterpret_cast<PFN_SetQueryInterfaceCallback>(
        GetProcAddress(m_handle, kExportSetQueryInterfaceCallback));
    m_supported = reinterpret_cast<PFN_SupportedInterface>(
        GetProcAddress(m_handle, kExportSupportedInterface));
    m_create =
        reinterpret_cast<PFN_CreateInterFace>(GetProcAddress(m_handle, kExportCreateInterFace));
    m_release = reinterpret_cast<PFN_SafeRelease>(GetProcAddress(m_handle, kExportSafeRelease));
    if (!m_setCallback || !m_supported || !m_create || !m_release)
        return fail(QStringLiteral("not a plug-in: an export is missing"));
    m_setCallback(services.Context(), &zorhost::HostServices::Query);
    return true;
}

IQXParmira* ParmiraModule::Create(QString* error) {
    auto fail = [&](const QString& why) -> IQXParmira* {
        if (error != nullptr)
            *error = why;
        return nullptr;
    };
    if (m_handle == nullptr)
        return fail(QStringLiteral("the parameter module is not loaded"));
    if (m_supported(&IID_IQXParmira) == 0)
        return fail(QStringLiteral("the parameter module offers no parameter view"));
    IBaseInterface* made = m_create(&IID_IQXParmira);
    if (made == nullptr)
        return fail(QStringLiteral("the parameter module made no parameter view"));
    auto* instance = static_cast<IQXParmira*>(made);
    m_instances.push_back(instance);
    return instance;
}

void ParmiraModule::Release(IQXParmira*& instance) {
    auto it = std::find(m_instances.begin(), m_instances.end(), instance);
    if (instance == nullptr || it == m_instances.end())
        return;
    m_instances.erase(it);
    void* p = static_cast<IBaseInterface*>(instance);
    m_release(&IID_IQXParmira, &p);
    instance = nullptr;
}

void ParmiraModule::Unload() {
    if (m_handle == nullptr)
        return;
    while (!m_instances.empty()) {
        IQXParmira* last = m_instances.back();
        Release(last);
    }
    // Widgets of the plug-in whose deletion was deferred must go while their code is
    // still loaded.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    AfxFreeLibrary(m_handle);
    m_handle = nullptr;
    m_setCallback = nullptr;
    m_supported = nullptr;
    m_create = nullptr;
    m_release = nullptr;
}

} // namespace zordrivebench
