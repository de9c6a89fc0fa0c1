// The main window of ZorDriveBench: the project tree, the tab area the plug-in's panels
// live in, and the menus that connect, run and watch the simulated drives.
#pragma once

#include "HostProject.h"
#include "ParmiraModule.h"
#include "ProgramServices.h"
#include "StandardTexts.h"

#include <zorhost/services/HostTabManager.h>

#include <QMainWindow>

#include <map>
#include <memory>
#include <string>

class QTabWidget;
class QTreeWidget;
class QTreeWidgetItem;
class QTimer;

namespace zorhost {
class ReferenceHost;
}

namespace zordrivebench {

class MonitorDock;

class MainWindow : public QMainWindow {
public:
    // The host, its added services and the plug-in outlive the window; the plug-in is
    // loaded on first use and stays loaded (it is loaded once per process).
    MainWindow(zorhost::ReferenceHost& host, ProgramServices& services, ParmiraModule& plugin);
    ~MainWindow() override;

    // Closes the open project (its panels first) and opens the file at `path`, or the demo
    // for an empty path. Drives that are online are read once, as on connecting.
    bool OpenProject(const QString& path, QString* error);
    // Loads the plug-in once and shows the module's panel in a tab (or brings it to front).
    bool OpenModule(const CString& key, QString* error);
    // Runs the module's recipe dialog for `key`, modally.
    bool OpenRecipe(const CString& key, QString* error);
    bool OpenFirstModule(QString* error);
    // True when the current tab holds a panel window of the plug-in.
    bool IsPanelUp() const;

    void SetEnglish(bool english);
    bool IsEnglish() const { return m_english; }
    // The open project's file; empty for the demo.
    QString ProjectPath() const { return m_project.path; }
    void SetListStyle(zorhost::project::ListStyle style);
    void SetOnline(const CString& key, bool online);

private:
    QString Tr(const char* chinese, const char* english) const;
    void BuildMenus();
    void BuildTree();
    void FitNameRows();
    void UpdateStates();
    void CloseModules();
    void SaveProjectAs();
    void ChooseProject();

    zorhost::ReferenceHost& m_host;
    LoadedProject m_project;
    QTreeWidget* m_tree = nullptr;
    QTabWidget* m_tabWidget = nullptr;
    QTimer* m_stateTimer = nullptr;
    std::unique_ptr<zorhost::CHostTabManager> m_tabs;
    ProgramServices& m_services;
    ParmiraModule& m_plugin;
    std::map<std::string, IQXParmira*> m_views; // one per opened module, by key
    bool m_english = false;
    // Installed while the program speaks Chinese.
    ChineseStandardTexts m_standardTexts;
    MonitorDock* m_monitor = nullptr;

public:
    MonitorDock* Monitor() const { return m_monitor; }
};

} // namespace zordrivebench
