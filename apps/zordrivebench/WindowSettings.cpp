#include "WindowSettings.h"

#include "MainWindow.h"

#include <QFileInfo>
#include <QSettings>
#include <QSplitter>

namespace zordrivebench {

namespace {

const QString kGeometry = QStringLiteral("window/geometry");
const QString kState = QStringLiteral("window/state");
const QString kSplitter = QStringLiteral("window/splitter");
const QString kEnglish = QStringLiteral("language/english");
const QString kProject = QStringLiteral("project/last");

QSplitter* MainSplitter(const MainWindow& window) {
    return qobject_cast<QSplitter*>(window.centralWidget());
}

} // namespace

void RestoreWindowSettings(QSettings& settings, MainWindow& window) {
    if (settings.contains(kGeometry))
        window.restoreGeometry(settings.value(kGeometry).toByteArray());
    if (settings.contains(kState))
        window.restoreState(settings.value(kState).toByteArray());
    if (QSplitter* splitter = MainSplitter(window); splitter && settings.contains(kSplitter))
        splitter->restoreState(settings.value(kSplitter).toByteArray());
    if (settings.contains(kEnglish))
        window.SetEnglish(settings.value(kEnglish).toBool());
}

void SaveWindowSettings(QSettings& settings, const MainWindow& window) {
    settings.setValue(kGeometry, window.saveGeometry());
    settings.setValue(kState, window.saveState());
    if (QSplitter* splitter = MainSplitter(window))
        settings.setValue(kSplitter, splitter->saveState());
    settings.setValue(kEnglish, window.IsEnglish());
    settings.setValue(kProject, window.ProjectPath());
    settings.sync();
}

QString LastProject(QSettings& settings) {
    const QString path = settings.value(kProject).toString();
    return !path.isEmpty() && QFileInfo(path).isFile() ? path : QString();
}

} // namespace zordrivebench
