// The main window in-process, with the real plug-in loaded from beside the test program;
// and its monitor view: the watched parameters of the host's lists, once each in the order
// they came, with live values and a trend of the numeric ones.
#include "MonitorDock.h"
#include "TestFiles.h"
#include "WindowSettings.h"
#include "bench_window.h"

#include "module/host/IHostDeviceModule.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"

#include <zorhost/services/HostAccessService.h>

#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QSplitter>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTreeWidget>

#include <gtest/gtest.h>

using zordrivebench::MainWindow;

namespace {

using Window = BenchWindowTest;

// The action reached through menus whose titles end with the given texts, or null.
QAction* MenuAction(QWidget* window, const QStringList& path) {
    QList<QAction*> actions = window->findChild<QMenuBar*>()->actions();
    QAction* found = nullptr;
    for (const QString& step : path) {
        found = nullptr;
        for (QAction* a : actions)
            if (a->text().endsWith(step))
                found = a;
        if (found == nullptr)
            return nullptr;
        if (found->menu() != nullptr) {
            emit found->menu()->aboutToShow(); // the menu sets what can be done now
            actions = found->menu()->actions();
        }
    }
    return found;
}

} // namespace

TEST_F(Window, OneTabPerModuleOpenedAgainOnlyComesToTheFront) {
    ASSERT_TRUE(Open("ZD3S"));
    ASSERT_EQ(tabs->count(), 1);
    EXPECT_TRUE(tabs->tabText(0).startsWith(QStringLiteral("ZD3-S")));
    EXPECT_TRUE(tabs->tabText(0).endsWith(QStringLiteral("参数列表")));

    ASSERT_TRUE(Open("ZV5"));
    EXPECT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->currentIndex(), 1);
    ASSERT_TRUE(Open("ZD3S"));
    EXPECT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->currentIndex(), 0);

    // Closed by the user, then opened again: a new panel in a new tab.
    emit tabs->tabCloseRequested(0);
    EXPECT_EQ(tabs->count(), 1);
    ASSERT_TRUE(Open("ZD3S"));
    EXPECT_EQ(tabs->count(), 2);

    QString error;
    EXPECT_FALSE(window.OpenModule("NOPE", &error));
    EXPECT_TRUE(error.contains(QStringLiteral("NOPE")));
    EXPECT_EQ(tabs->count(), 2);
}

// The window's SetOnline is walked by the offline notice of the fit tests.
TEST_F(Window, ListStyleGoesToTheHost) {
    ASSERT_TRUE(Open("ZD3S"));
    window.SetListStyle(zorhost::project::ListStyle::Staging);
    EXPECT_EQ(host.Project()->Workspace().GetListStyle(), 1);
    window.SetListStyle(zorhost::project::ListStyle::Live);
    EXPECT_EQ(host.Project()->Workspace().GetListStyle(), 0);
}

TEST_F(Window, TheDrivesAreReadWhenTheProjectOpens) {
    // Without a first read every value of the host's tables would be empty.
    IVarStore* store = host.Module("ZD3S")->GetVarList();
    ASSERT_NE(store, nullptr);
    ASSERT_GT(store->GetCount(), 0);
    int empty = 0;
    for (int i = 0; i < store->GetCount(); ++i)
        if (store->GetAt(i)->GetValue().IsEmptyOrNull())
            ++empty;
    EXPECT_EQ(empty, 0);
}

TEST_F(Window, OpeningAnotherProjectClosesThePanelsFirst) {
    ASSERT_TRUE(Open("ZD3S"));
    ASSERT_TRUE(Open("ZD4M"));
    QString error;
    ASSERT_TRUE(window.OpenProject(QString(), &error));
    EXPECT_EQ(tabs->count(), 0);
    ASSERT_TRUE(Open("ZD4M"));
    EXPECT_EQ(tabs->count(), 1);

    EXPECT_FALSE(window.OpenProject(QStringLiteral("/nonexistent/p.json"), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("/nonexistent/p.json")));
    EXPECT_EQ(tabs->count(), 0);
    EXPECT_EQ(host.Project(), nullptr);
    EXPECT_FALSE(window.OpenFirstModule(&error));
}

TEST_F(Window, TheMenusSwitchTheLanguageAndConnectTheDrives) {
    ASSERT_TRUE(Open("ZD3S"));
    QAction* english = MenuAction(&window, {"视图", "语言", "English"});
    ASSERT_NE(english, nullptr);
    english->trigger();
    EXPECT_TRUE(WaitFor([&] { return tabs->tabText(0) == QStringLiteral("Parameter list"); }));
    // The menus are built anew in the language.
    ASSERT_NE(MenuAction(&window, {"View", "Language", "中文"}), nullptr);

    QAction* disconnect = MenuAction(&window, {"Devices", "(ZV5)", "Disconnect"});
    ASSERT_NE(disconnect, nullptr);
    ASSERT_TRUE(disconnect->isEnabled());
    disconnect->trigger();
    EXPECT_FALSE(host.Module("ZV5")->IsOnline());
    EXPECT_FALSE(MenuAction(&window, {"Devices", "(ZV5)", "Disconnect"})->isEnabled());
    EXPECT_FALSE(MenuAction(&window, {"Devices", "(ZV5)", "Run"})->isEnabled());
    MenuAction(&window, {"Devices", "(ZV5)", "Connect"})->trigger();
    EXPECT_TRUE(host.Module("ZV5")->IsOnline());

    MenuAction(&window, {"Devices", "(ZV5)", "Run"})->trigger();
    EXPECT_TRUE(host.Drive("ZV5")->IsRunning());
    MenuAction(&window, {"View", "Language", "中文"})->trigger();
    EXPECT_TRUE(WaitFor([&] { return tabs->tabText(0) == QStringLiteral("参数列表"); }));
}

TEST_F(Window, ActivatingAModuleInTheProjectTreeOpensItsPanel) {
    auto* tree = window.findChild<QTreeWidget*>();
    ASSERT_NE(tree, nullptr);
    QTreeWidgetItem* project = tree->topLevelItem(0);
    ASSERT_NE(project, nullptr);
    ASSERT_EQ(project->childCount(), 3);
    QTreeWidgetItem* zv5 = project->child(2);
    EXPECT_TRUE(zv5->text(0).endsWith(QStringLiteral("(ZV5)")));
    emit tree->itemActivated(zv5, 0);
    ASSERT_TRUE(WaitFor([&] { return window.IsPanelUp(); }));
    ASSERT_EQ(tabs->count(), 1);
    EXPECT_TRUE(tabs->tabText(0).startsWith(QStringLiteral("ZV5")));
    // The project item itself names no module.
    emit tree->itemActivated(project, 0);
    EXPECT_EQ(tabs->count(), 1);
}

TEST_F(Window, TheSettingsBringBackSizeSplitterLanguageAndProject) {
    QTemporaryDir dir;
    const QString project = dir.filePath(QStringLiteral("line.json"));
    Spit(project.toStdString(), R"({"format": "zordrivebench-project", "version": 1,
        "modules": [{"key": "S1", "deviceFile": "zd3s_servo.json"}]})");
    QString error;
    ASSERT_TRUE(window.OpenProject(project, &error)) << error.toStdString();
    window.resize(1100, 700);
    auto* splitter = qobject_cast<QSplitter*>(window.centralWidget());
    ASSERT_NE(splitter, nullptr);
    splitter->setSizes({250, 850});
    const QList<int> sizes = splitter->sizes();
    window.SetEnglish(true);

    QSettings settings(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    zordrivebench::SaveWindowSettings(settings, window);
    window.SetEnglish(false);

    MainWindow again(bench->host, bench->services, bench->plugin);
    zordrivebench::RestoreWindowSettings(settings, again);
    EXPECT_TRUE(again.IsEnglish());
    EXPECT_EQ(again.size(), QSize(1100, 700));
    again.show();
    EXPECT_EQ(qobject_cast<QSplitter*>(again.centralWidget())->sizes(), sizes);
    EXPECT_EQ(zordrivebench::LastProject(settings), project);
    again.SetEnglish(false);

    // A project file that is gone since is not offered again.
    QFile::remove(project);
    EXPECT_EQ(zordrivebench::LastProject(settings), QString());
}

TEST(MonitorDockTest, ListsWatchedOnceAndTrendsTheRunningDrive) {
    zorhost::ReferenceHost host;
    std::string error;
    ASSERT_TRUE(host.LoadDemo(&error)) << error;
    IVarStore* store = host.Module("ZD3S")->GetVarList();
    auto address = [&](const char* code) { return store->FindByCode(code)->GetInstanceAddress(); };
    zordrivebench::MonitorDock dock(host);
    host.Access().AddWatchVars("ZD3S", {address("H0B-00"), address("H0B-03")});
    host.Access().AddWatchVars("ZD3S", {address("H0B-03"), address("H0B-01")});
    host.Drive("ZD3S")->SetRunning(true);
    for (int i = 0; i < 12; ++i) {
        dock.Sample();
        host.Tick(250);
    }
    dock.Sample();
    ASSERT_EQ(dock.RowCount(), 3);
    auto* table = dock.findChild<QTableWidget*>();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->item(0, 1)->text(), "H0B-00");
    EXPECT_EQ(table->item(1, 1)->text(), "H0B-03");
    EXPECT_EQ(table->item(2, 1)->text(), "H0B-01");
    EXPECT_NE(table->item(0, 3)->text(), "---");
    // The speed moves while the drive runs; the bit monitor is shown but not plotted.
    const std::vector<double> speed = dock.TrendOf(0);
    ASSERT_GE(speed.size(), 10u);
    EXPECT_NE(*std::min_element(speed.begin(), speed.end()),
              *std::max_element(speed.begin(), speed.end()));
    EXPECT_TRUE(dock.TrendOf(1).empty());
}
