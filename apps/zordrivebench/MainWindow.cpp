#include "MainWindow.h"

#include "MonitorDock.h"

#include <zorhost/ReferenceHost.h>
#include <zorhost/services/HostMessageBus.h>
#include <zorhost/services/HostUiService.h>

#include <afx/afxqt.h>

#include <QActionGroup>
#include <QApplication>
#include <QFileDialog>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

#include <cstdio>
#include <functional>

namespace zordrivebench {

namespace {

constexpr int kKeyRole = Qt::UserRole;
constexpr int kStatePeriod_ms = 500;

QString Qs(const CString& s) {
    return AfxToQString(s);
}

} // namespace

MainWindow::MainWindow(zorhost::ReferenceHost& host, ProgramServices& services,
                       ParmiraModule& plugin)
    : m_host(host), m_services(services), m_plugin(plugin) {
    auto* splitter = new QSplitter;
    m_tree = new QTreeWidget;
    m_tree->setColumnCount(2);
    // The state stays in sight: the name takes the room left beside it, and a long name
    // goes on over more lines rather than being cut.
    m_tree->header()->setStretchLastSection(false);
    m_tree->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_tree->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_tree->setWordWrap(true);
    m_tree->setTextElideMode(Qt::ElideMiddle);
    // Once the header has settled: the state column's width sets the name column's.
    QObject::connect(m_tree->header(), &QHeaderView::sectionResized, m_tree,
                     [this] { QTimer::singleShot(0, m_tree, [this] { FitNameRows(); }); });
    m_tree->setRootIsDecorated(true);
    splitter->addWidget(m_tree);
    m_tabWidget = new QTabWidget;
    m_tabWidget->setDocumentMode(true);
    m_tabWidget->setMovable(true);
    splitter->addWidget(m_tabWidget);
    splitter->setStretchFactor(1, 1);
    // Room for the parameter list's main columns at 1280 wide.
    splitter->setSizes({250, 1030});
    setCentralWidget(splitter);
    resize(1280, 800);
    QCoreApplication::installTranslator(&m_standardTexts);
    m_monitor = new MonitorDock(m_host, this);
    addDockWidget(Qt::BottomDockWidgetArea, m_monitor);
    m_monitor->hide();

    m_tabs = std::make_unique<zorhost::CHostTabManager>(m_tabWidget);
    m_host.Services().Register<IHostTabManager>(m_tabs.get());
    m_tabs->SetActivationHandler(
        [this](uintptr_t view) { m_services.Bus().RaiseActiveView(view); });

    QObject::connect(m_tree, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
        const QString key = item->data(0, kKeyRole).toString();
        QString error;
        if (!key.isEmpty() && !OpenModule(AfxFromQString(key), &error))
            QMessageBox::warning(this, QStringLiteral("ZorDriveBench"), error);
    });

    m_stateTimer = new QTimer(this);
    QObject::connect(m_stateTimer, &QTimer::timeout, this, [this] { UpdateStates(); });
    m_stateTimer->start(kStatePeriod_ms);
    BuildMenus();
}

MainWindow::~MainWindow() {
    m_stateTimer->stop();
    // The tree's header resizes its sections while QWidget's destructor hides the children,
    // when this window is no longer a MainWindow: nothing may call back into it then.
    QObject::disconnect(m_tree->header(), &QHeaderView::sectionResized, m_tree, nullptr);
    // Panels go while the plug-in and the host's services are still there.
    CloseModules();
    m_tabs->SetActivationHandler(nullptr);
    m_host.Services().Unregister(IID_IHostTabManager);
    m_tabs.reset();
}

QString MainWindow::Tr(const char* chinese, const char* english) const {
    return QString::fromUtf8(m_english ? english : chinese);
}

void MainWindow::CloseModules() {
    m_tabs->CloseAll();
    for (auto& [key, view] : m_views)
        m_plugin.Release(view);
    m_views.clear();
}

bool MainWindow::OpenProject(const QString& path, QString* error) {
    CloseModules();
    m_host.SetShowTransferProgress(false);
    LoadedProject loaded;
    const bool ok = LoadIntoHost(m_host, path, loaded, error);
    if (ok) {
        m_project = std::move(loaded);
        // The host's tables hold nothing before a first read; read the drives that answer.
        for (const CString& key : m_host.ModuleKeys())
            if (m_host.Module(key)->IsOnline())
                m_host.Transfer().UploadModule(nullptr, key);
    } else {
        m_project = LoadedProject{};
    }
    m_host.SetShowTransferProgress(true);
    BuildTree();
    BuildMenus();
    UpdateStates();
    if (ok && !m_host.StoreProblems().empty()) {
        // Told without blocking: the project itself is open and usable.
        QStringList lines;
        for (const std::string& line : m_host.StoreProblems())
            lines << QString::fromStdString(line);
        auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("ZorDriveBench"),
                                    lines.join(QLatin1Char('\n')), QMessageBox::Ok, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    }
    return ok;
}

bool MainWindow::OpenModule(const CString& key, QString* error) {
    const std::vector<CString> keys = m_host.ModuleKeys();
    const auto at = std::find(keys.begin(), keys.end(), key);
    if (at == keys.end()) {
        if (error != nullptr)
            *error = Tr("工程中没有模块 %1", "The project has no module %1").arg(Qs(key));
        return false;
    }
    if (!m_plugin.Load(ParmiraModule::DefaultPath(), m_host.Services(), error))
        return false;
    IQXParmira*& view = m_views[key.str()];
    if (view == nullptr)
        view = m_plugin.Create(error);
    if (view == nullptr) {
        m_views.erase(key.str());
        return false;
    }
    // The view context tells a tab's module: its position in the project, from 1.
    view->ShowPanel(uintptr_t(at - keys.begin()) + 1, key);
    return true;
}

bool MainWindow::OpenRecipe(const CString& key, QString* error) {
    if (m_host.Module(key) == nullptr) {
        if (error != nullptr)
            *error = Tr("工程中没有模块 %1", "The project has no module %1").arg(Qs(key));
        return false;
    }
    if (!m_plugin.Load(ParmiraModule::DefaultPath(), m_host.Services(), error))
        return false;
    // The recipe dialog needs no panel: any instance of the module opens it.
    IQXParmira*& view = m_views[key.str()];
    if (view == nullptr)
        view = m_plugin.Create(error);
    if (view == nullptr) {
        m_views.erase(key.str());
        return false;
    }
    view->OpenRecipeDialog(key);
    return true;
}

bool MainWindow::OpenFirstModule(QString* error) {
    const std::vector<CString> keys = m_host.ModuleKeys();
    if (keys.empty()) {
        if (error != nullptr)
            *error = Tr("工程中没有模块", "The project has no modules");
        return false;
    }
    return OpenModule(keys.front(), error);
}

bool MainWindow::IsPanelUp() const {
    QWidget* page = m_tabs->PageOf(m_tabs->CurrentParent());
    if (page == nullptr)
        return false;
    for (QWidget* child : page->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (AfxHandleFromWidget(child) != nullptr && child->isVisible())
            return true;
    return false;
}

void MainWindow::SetEnglish(bool english) {
    if (m_english == english)
        return;
    m_english = english;
    if (english)
        QCoreApplication::removeTranslator(&m_standardTexts);
    else
        QCoreApplication::installTranslator(&m_standardTexts);
    m_host.SetEnglish(english);
    m_services.Ui().SetLanguage(english ? zorhost::UiLanguage::English
                                        : zorhost::UiLanguage::Chinese);
    // The plug-ins retranslate their own windows when they hear of it.
    m_services.Bus().RaiseLanguageChanged();
    BuildTree();
    BuildMenus();
    UpdateStates();
}

void MainWindow::SetListStyle(zorhost::project::ListStyle style) {
    m_project.file.listStyle = style;
    if (zorhost::model::CProject* project = m_host.Project())
        project->Workspace().SetListStyle(int(style));
    // Open panels put the page of the style on top; their calls follow the style anyway.
    for (auto& [key, view] : m_views)
        view->SelectListPage(int(style));
    BuildMenus();
}

void MainWindow::SetOnline(const CString& key, bool online) {
    m_host.SetOnline(key, online);
    if (online && m_host.Module(key) != nullptr && m_host.Module(key)->IsOnline())
        m_host.Transfer().UploadModule(nullptr, key);
    for (auto& m : m_project.file.modules)
        if (m.key == key.str())
            m.online = online;
    UpdateStates();
}

void MainWindow::BuildTree() {
    m_tree->clear();
    m_tree->setHeaderLabels({Tr("工程", "Project"), Tr("状态", "State")});
    if (m_host.Project() == nullptr)
        return;
    auto* root = new QTreeWidgetItem(m_tree, {m_project.Title(m_english)});
    for (const CString& key : m_host.ModuleKeys()) {
        zorhost::model::CDeviceModule* module = m_host.Module(key);
        CString name;
        module->GetDisplayName(name);
        // A product's name has its English; a name the project gave is shown as written.
        // The module keeps its name in either language: its folder is named after it.
        CString shown;
        m_services.Ui().TranslateText(shown, name);
        name = shown;
        auto* item = new QTreeWidgetItem(
            root,
            {QStringLiteral("%1  %2 (%3)").arg(module->GetAxisIndex()).arg(Qs(name), Qs(key))});
        item->setData(0, kKeyRole, Qs(key));
        item->setToolTip(0, item->text(0) + QLatin1Char('\n') +
                                Tr("双击打开参数列表", "Double-click to open the parameter list"));
    }
    m_tree->expandAll();
    FitNameRows();
}

void MainWindow::FitNameRows() {
    // A row is as high as its name's lines at the width the name column has now.
    const QFontMetrics metrics(m_tree->font());
    const int width = m_tree->header()->sectionSize(0);
    bool changed = false;
    for (QTreeWidgetItemIterator it(m_tree); *it != nullptr; ++it) {
        int depth = m_tree->rootIsDecorated() ? 1 : 0;
        for (QTreeWidgetItem* p = (*it)->parent(); p != nullptr; p = p->parent())
            ++depth;
        const int room = std::max(1, width - depth * m_tree->indentation() - 8);
        const int lines =
            metrics.boundingRect(QRect(0, 0, room, 1 << 16), Qt::TextWordWrap, (*it)->text(0))
                .height() /
            std::max(1, metrics.lineSpacing());
        const QSize hint(0, std::max(1, lines) * metrics.lineSpacing() + 4);
        if ((*it)->sizeHint(0) != hint) {
            (*it)->setSizeHint(0, hint);
            changed = true;
        }
    }
    if (changed)
        m_tree->doItemsLayout();
}

void MainWindow::UpdateStates() {
    QTreeWidgetItem* root = m_tree->topLevelItem(0);
    int online = 0, total = 0;
    for (int i = 0; root != nullptr && i < root->childCount(); ++i) {
        QTreeWidgetItem* item = root->child(i);
        const CString key = AfxFromQString(item->data(0, kKeyRole).toString());
        zorhost::model::CDeviceModule* module = m_host.Module(key);
        zorhost::sim::SimulatedDrive* drive = m_host.Drive(key);
        if (module == nullptr)
            continue;
        ++total;
        QStringList state;
        if (module->IsOnline()) {
            ++online;
            state << Tr("在线", "online");
            // A drive on a field bus tells no more than that it answers.
            if (drive != nullptr)
                state << (drive->IsRunning() ? Tr("运行", "running") : Tr("停机", "stopped"));
            if (drive != nullptr && drive->IsOscilloscopeRunning())
                state << Tr("示波器", "scope");
        } else {
            state << Tr("离线", "offline");
        }
        item->setText(1, state.join(QStringLiteral(" · ")));
    }
    if (m_host.Project() == nullptr)
        statusBar()->showMessage(Tr("没有打开的工程", "No project open"));
    else
        statusBar()->showMessage(
            Tr("%1 个模块，%2 个在线", "%1 modules, %2 online").arg(total).arg(online));
    setWindowTitle(m_host.Project() == nullptr
                       ? QStringLiteral("ZorDriveBench")
                       : QStringLiteral("ZorDriveBench - %1").arg(m_project.Title(m_english)));
}

void MainWindow::ChooseProject() {
    const QString path = QFileDialog::getOpenFileName(
        this, Tr("打开工程", "Open project"), QString(),
        Tr("工程文件 (*.json);;所有文件 (*)", "Project files (*.json);;All files (*)"));
    if (path.isEmpty())
        return;
    QString error;
    if (!OpenProject(path, &error))
        QMessageBox::warning(this, QStringLiteral("ZorDriveBench"), error);
    else
        OpenFirstModule(nullptr);
}

void MainWindow::SaveProjectAs() {
    const QString path =
        QFileDialog::getSaveFileName(this, Tr("工程另存为", "Save project as"), m_project.path,
                                     Tr("工程文件 (*.json)", "Project files (*.json)"));
    if (path.isEmpty())
        return;
    std::string error;
    if (!zorhost::project::SaveProjectFile(path.toStdString(), m_project.file, &error))
        QMessageBox::warning(this, QStringLiteral("ZorDriveBench"), QString::fromStdString(error));
}

void MainWindow::BuildMenus() {
    QMenuBar* bar = menuBar();
    bar->clear();

    // Opening a project or switching the language rebuilds these menus, which deletes the
    // action being triggered: such commands run once the menu has closed.
    auto later = [this](const std::function<void()>& command) {
        return [this, command] { QTimer::singleShot(0, this, command); };
    };
    QMenu* project = bar->addMenu(Tr("工程", "Project"));
    project->addAction(Tr("打开工程...", "Open project..."), this,
                       later([this] { ChooseProject(); }));
    project->addAction(Tr("打开演示工程", "Open demo project"), this, later([this] {
                           OpenProject(QString(), nullptr);
                           OpenFirstModule(nullptr);
                       }));
    project->addAction(Tr("工程另存为...", "Save project as..."), this,
                       [this] { SaveProjectAs(); });
    project->addSeparator();
    project->addAction(Tr("退出", "Exit"), this, [this] { close(); });

    QMenu* devices = bar->addMenu(Tr("设备", "Devices"));
    for (const CString& key : m_host.ModuleKeys()) {
        CString name;
        m_host.Module(key)->GetDisplayName(name);
        // Named as in the project tree: a product's name in the chosen language.
        CString shown;
        m_services.Ui().TranslateText(shown, name);
        QMenu* menu = devices->addMenu(QStringLiteral("%1 (%2)").arg(Qs(shown), Qs(key)));
        QAction* open =
            menu->addAction(Tr("打开参数列表", "Open parameter list"), this, [this, key] {
                QString error;
                if (!OpenModule(key, &error))
                    QMessageBox::warning(this, QStringLiteral("ZorDriveBench"), error);
            });
        menu->addAction(Tr("编辑配方...", "Edit recipe..."), this, [this, key] {
            QString error;
            if (!OpenRecipe(key, &error))
                QMessageBox::warning(this, QStringLiteral("ZorDriveBench"), error);
        });
        menu->addSeparator();
        QAction* connect =
            menu->addAction(Tr("连接", "Connect"), this, [this, key] { SetOnline(key, true); });
        QAction* disconnect =
            menu->addAction(Tr("断开", "Disconnect"), this, [this, key] { SetOnline(key, false); });
        menu->addSeparator();
        // A drive on a field bus is run and stopped by its run command.
        auto setRunning = [this, key](bool running) {
            const zorhost::sim::LinkResult r = m_host.SetRunning(key, running);
            if (!r.ok())
                QMessageBox::warning(
                    this, QStringLiteral("ZorDriveBench"),
                    Tr("驱动器没有执行命令：%1", "The drive did not carry the command out: %1")
                        .arg(QString::fromStdString(zorhost::sim::LinkResultText(r, m_english))));
            UpdateStates();
        };
        QAction* run = menu->addAction(Tr("运行", "Run"), this, [setRunning] { setRunning(true); });
        QAction* stop =
            menu->addAction(Tr("停机", "Stop"), this, [setRunning] { setRunning(false); });
        menu->addSeparator();
        QAction* scopeOn =
            menu->addAction(Tr("启动示波器", "Start oscilloscope"), this, [this, key] {
                if (auto* drive = m_host.Drive(key)) {
                    drive->StartOscilloscope();
                    m_host.Oscilloscope().Watch(drive);
                    m_host.Oscilloscope().Show(true);
                } else {
                    // The samples live in the drive's memory; the field bus carries
                    // parameters only.
                    QMessageBox::information(
                        this, QStringLiteral("ZorDriveBench"),
                        Tr("示波器只能显示本机仿真驱动器的曲线；该模块经 Modbus 连接。",
                           "The oscilloscope shows the drives simulated in this program only; "
                           "this module is connected over Modbus."));
                }
                UpdateStates();
            });
        QAction* scopeOff =
            menu->addAction(Tr("停止示波器", "Stop oscilloscope"), this, [this, key] {
                if (auto* drive = m_host.Drive(key))
                    drive->StopOscilloscope();
                UpdateStates();
            });
        // What can be done depends on the drive's state at the time the menu opens.
        QObject::connect(menu, &QMenu::aboutToShow, menu, [=, this] {
            zorhost::model::CDeviceModule* module = m_host.Module(key);
            zorhost::sim::SimulatedDrive* drive = m_host.Drive(key);
            const bool on = module != nullptr && module->IsOnline();
            open->setEnabled(module != nullptr);
            connect->setEnabled(module != nullptr && !on);
            disconnect->setEnabled(on);
            // A field-bus drive's run state isn't known without asking it: both are offered.
            run->setEnabled(on && (drive == nullptr || !drive->IsRunning()));
            stop->setEnabled(on && (drive == nullptr || drive->IsRunning()));
            scopeOn->setEnabled(on && (drive == nullptr || !drive->IsOscilloscopeRunning()));
            scopeOff->setEnabled(drive != nullptr && drive->IsOscilloscopeRunning());
        });
    }

    QMenu* view = bar->addMenu(Tr("视图", "View"));
    QMenu* language = view->addMenu(Tr("语言", "Language"));
    auto* languages = new QActionGroup(language);
    QAction* chinese = language->addAction(QStringLiteral("中文"));
    QAction* english = language->addAction(QStringLiteral("English"));
    for (QAction* a : {chinese, english}) {
        a->setCheckable(true);
        languages->addAction(a);
    }
    (m_english ? english : chinese)->setChecked(true);
    QObject::connect(chinese, &QAction::triggered, this, later([this] { SetEnglish(false); }));
    QObject::connect(english, &QAction::triggered, this, later([this] { SetEnglish(true); }));

    QMenu* listStyle = view->addMenu(Tr("列表样式", "List style"));
    auto* styles = new QActionGroup(listStyle);
    QAction* live = listStyle->addAction(Tr("实时列表", "Live list"));
    QAction* staging = listStyle->addAction(Tr("暂存列表", "Staging list"));
    for (QAction* a : {live, staging}) {
        a->setCheckable(true);
        styles->addAction(a);
    }
    using zorhost::project::ListStyle;
    (m_project.file.listStyle == ListStyle::Staging ? staging : live)->setChecked(true);
    QObject::connect(live, &QAction::triggered, this,
                     later([this] { SetListStyle(ListStyle::Live); }));
    QObject::connect(staging, &QAction::triggered, this,
                     later([this] { SetListStyle(ListStyle::Staging); }));

    if (m_monitor != nullptr) {
        QAction* monitor = m_monitor->toggleViewAction();
        monitor->setText(Tr("监控", "Monitor"));
        view->addAction(monitor);
    }

    QMenu* help = bar->addMenu(Tr("帮助", "Help"));
    help->addAction(Tr("关于", "About"), this, [this] {
        QMessageBox::about(this, QStringLiteral("ZorDriveBench"),
                           Tr("ZorDriveBench：带模拟驱动器的参考主机程序。",
                              "ZorDriveBench: the reference host with simulated drives."));
    });
}

} // namespace zordrivebench
