// The main window as a user sees it: at the usual screen sizes every control of a panel
// is whole and inside the window, and in English no Chinese text is left in sight, on
// the window or on the module's dialogs. With ZORDRIVEBENCH_SHOTS set to a folder, the
// states walked are saved there as pictures to look at.
#include "../strings/text_checks.h"
#include "bench_window.h"

#include <afx/afxqt.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMouseEvent>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableView>
#include <QTreeWidget>

#include <gtest/gtest.h>

using zorhost::project::ListStyle;

namespace {

// Every text a widget and its shown children put in front of the user.
class ShownTexts {
public:
    void Walk(QWidget* root) {
        Visit(root);
        for (QWidget* w : root->findChildren<QWidget*>())
            if (w->isVisible())
                Visit(w);
    }
    void Menu(const QList<QAction*>& actions) {
        for (QAction* a : actions) {
            if (a->isSeparator())
                continue;
            // The language's own name is the way back to it.
            if (a->text() != QStringLiteral("中文"))
                Add(a->text());
            if (a->menu() != nullptr) {
                emit a->menu()->aboutToShow();
                Menu(a->menu()->actions());
            }
        }
    }
    void Add(const QString& text) {
        if (HasChineseText(text.toStdString()) && !chinese.contains(text))
            chinese << text;
    }
    QStringList chinese;

private:
    void Model(const QAbstractItemModel* model, const QModelIndex& parent, int depth) {
        for (int c = 0; c < model->columnCount(parent); ++c)
            Add(model->headerData(c, Qt::Horizontal).toString());
        for (int r = 0; r < std::min(model->rowCount(parent), 60); ++r)
            for (int c = 0; c < model->columnCount(parent); ++c) {
                const QModelIndex index = model->index(r, c, parent);
                Add(model->data(index).toString());
                if (depth < 4 && c == 0 && model->hasChildren(index))
                    Model(model, index, depth + 1);
            }
    }
    void Visit(QWidget* w) {
        if (w->isWindow())
            Add(w->windowTitle());
        Add(w->accessibleName());
        // Labels, buttons, edits and box titles, by the property that holds their text.
        for (const char* property : {"text", "title", "plainText"})
            if (const QVariant text = w->property(property); text.typeId() == QMetaType::QString)
                Add(text.toString());
        if (auto* combo = qobject_cast<QComboBox*>(w)) {
            for (int i = 0; i < combo->count(); ++i)
                Add(combo->itemText(i));
        } else if (auto* tabs = qobject_cast<QTabBar*>(w)) {
            for (int i = 0; i < tabs->count(); ++i)
                Add(tabs->tabText(i));
        } else if (auto* view = qobject_cast<QAbstractItemView*>(w)) {
            if (view->model() != nullptr)
                Model(view->model(), QModelIndex(), 0);
        }
    }
};

// Takes a popup menu's entry by the text it shows (the last part of a submenu's path) and
// keeps every prompt, so that menus and message boxes can be checked for their language.
class MenuByText : public CAfxRecordingResponder {
public:
    QString take;
    UINT OnPopupMenu(const AfxPrompt& prompt) override {
        CAfxRecordingResponder::OnPopupMenu(prompt);
        for (int i = 0; i < prompt.menuItems.GetSize(); ++i) {
            const QString item = AfxToQString(prompt.menuItems[i]);
            const int colon = item.indexOf(QLatin1Char(':'));
            if (!take.isEmpty() && !item.startsWith(QLatin1Char('-')) &&
                item.mid(colon + 1).section(QLatin1Char('>'), -1) == take)
                return item.left(colon).toUInt();
        }
        return 0;
    }
    // The Chinese left in what the prompts showed.
    QStringList Chinese() const {
        ShownTexts out;
        for (const AfxPrompt& p : prompts) {
            out.Add(AfxToQString(p.text));
            out.Add(AfxToQString(p.caption));
            for (int i = 0; i < p.menuItems.GetSize(); ++i)
                out.Add(AfxToQString(p.menuItems[i]));
        }
        return out.chinese;
    }
};

// Walks every window as it is shown (progress boxes come and go inside one call).
class WindowsShown : public QObject {
public:
    explicit WindowsShown(QWidget* mainWindow) : m_main(mainWindow) {
        qApp->installEventFilter(this);
    }
    ~WindowsShown() override { qApp->removeEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* w = qobject_cast<QWidget*>(watched);
        if (event->type() != QEvent::Show || w == nullptr || !w->isWindow() || w == m_main)
            return false;
        progressBoxes += qobject_cast<QProgressDialog*>(w) != nullptr ? 1 : 0;
        if (english)
            texts.Walk(w);
        return false;
    }
    ShownTexts texts; // of the windows shown in English
    bool english = false;
    int progressBoxes = 0;

private:
    QWidget* m_main;
};

class WindowFit : public BenchWindowTest {
protected:
    void SetUp() override {
        bench->services.Ui().SetLanguage(zorhost::UiLanguage::Chinese);
        window.resize(1280, 800);
        BenchWindowTest::SetUp();
    }
    // Lets a resize or a change of language run its course: pumps until the shown windows
    // keep their geometry, column widths and titles over a round (a slow build needs more
    // rounds), then does what the last round set off (a posted relayout, a column that
    // fits its contents again after a state text changed) before anything is measured.
    void Settle() {
        QString before = Layout();
        for (int round = 0; round < 20; ++round) {
            AfxPumpMessagesUntil([] { return false; }, 150);
            const QString now = Layout();
            if (now == before)
                break;
            before = now;
        }
        for (int round = 0; round < 3; ++round)
            QCoreApplication::processEvents();
    }
    static QString Layout() {
        QString out;
        QDebug put(&out);
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (!top->isVisible())
                continue;
            put << top->geometry();
            for (QWidget* w : top->findChildren<QWidget*>())
                if (w->isVisible())
                    put << w->geometry();
            for (QHeaderView* h : top->findChildren<QHeaderView*>())
                for (int col = 0; h->isVisible() && col < h->count(); ++col)
                    put << h->sectionSize(col) << h->model()->headerData(col, h->orientation());
        }
        return out;
    }
    void SetEnglish(bool on) {
        english = on;
        window.SetEnglish(on);
        WaitFor([&] {
            return tabs->count() == 0 || tabs->tabText(0) == Tr("参数列表", "Parameter list");
        });
        Settle();
    }
    // The list of the page on top in the current tab.
    QTableView* List() {
        for (QTableView* v : tabs->currentWidget()->findChildren<QTableView*>())
            if (v->isVisible())
                return v;
        return nullptr;
    }
    void Shot(QWidget* w, const QString& name) {
        const QString dir = qEnvironmentVariable("ZORDRIVEBENCH_SHOTS");
        if (dir.isEmpty())
            return;
        QDir().mkpath(dir);
        w->grab().save(dir + QLatin1Char('/') + name + QStringLiteral(".png"));
    }
    QString Lang() const { return Tr("zh", "en"); }
    // A window of the module: in English no Chinese, and its controls whole.
    void CheckShown(QWidget* w, const QString& name) {
        Settle();
        ShownTexts texts;
        texts.Walk(w);
        if (english) {
            EXPECT_TRUE(texts.chinese.isEmpty())
                << name.toStdString() << ": " << texts.chinese.join(" | ").toStdString();
        }
        ExpectControlsWhole(w, name);
        Shot(w, name + QLatin1Char('_') + Lang());
    }
    // Runs `open`, which brings up one modal dialog of the module, and checks it. `act`, when
    // given, first does what a user does in the dialog; Cancel ends it.
    void CheckModal(const QString& name, const std::function<void()>& open,
                    const std::function<void(QWidget*)>& act = {}) {
        CAfxModalDriver driver([&](CDialog& dialog) {
            QWidget* w = AfxWidgetFromHandle(dialog.GetSafeHwnd());
            ASSERT_NE(w, nullptr);
            if (act)
                act(w);
            CheckShown(w, name);
            dialog.EndDialog(IDCANCEL);
        });
        open();
        EXPECT_EQ(driver.runs, 1) << name.toStdString() << " did not come up in "
                                  << Lang().toStdString();
    }
    // Checks a window of the module that stays open beside the panel: the one `open` shows.
    void CheckModeless(const QString& name, const std::function<void()>& open) {
        QWidgetList before;
        for (QWidget* w : QApplication::topLevelWidgets())
            if (w->isVisible())
                before << w;
        open();
        QWidget* shown = nullptr;
        WaitFor([&] {
            for (QWidget* w : QApplication::topLevelWidgets())
                if (w->isVisible() && w != &window && !before.contains(w))
                    shown = w;
            return shown != nullptr;
        });
        ASSERT_NE(shown, nullptr) << name.toStdString() << " did not come up";
        CheckShown(shown, name);
        shown->close();
        Settle();
    }
    QString Tr(const char* zh, const char* en) const {
        return QString::fromUtf8(english ? en : zh);
    }
    void PanelButton(const char* zh, const char* en) {
        PressButton(tabs->currentWidget(), Tr(zh, en));
    }
    // Clicks the visible button of `dialog` that reads `text`.
    static void PressButton(QWidget* dialog, const QString& text) {
        for (QAbstractButton* b : dialog->findChildren<QAbstractButton*>())
            if (b->isVisible() && b->text() == text) {
                b->click();
                return;
            }
        ADD_FAILURE() << "no button " << text.toStdString();
    }
    // A user's click on `at` of `view`, the cursor moved there first (menus open at it).
    void Click(QAbstractItemView* view, QPoint at, Qt::MouseButton button) {
        QCursor::setPos(view->viewport()->mapToGlobal(at));
        for (QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent click(type, at, view->viewport()->mapToGlobal(at), button,
                              type == QEvent::MouseButtonPress ? button : Qt::NoButton,
                              Qt::NoModifier);
            QCoreApplication::sendEvent(view->viewport(), &click);
        }
    }
    // The group tree's item that reads `text` or "`text`[description]" (with
    // `withDescription`, only the latter: a group code, not a branch's name).
    QTreeWidgetItem* Group(const QString& text, bool withDescription = false) {
        for (QTreeWidget* tree : tabs->currentWidget()->findChildren<QTreeWidget*>())
            for (QTreeWidgetItemIterator it(tree); *it != nullptr; ++it)
                if ((!withDescription && (*it)->text(0) == text) ||
                    (*it)->text(0).startsWith(text + QLatin1Char('[')))
                    return *it;
        return nullptr;
    }
    void ClickGroup(const QString& text, Qt::MouseButton button) {
        QTreeWidgetItem* item = Group(text);
        ASSERT_NE(item, nullptr) << "no group " << text.toStdString();
        item->treeWidget()->scrollToItem(item);
        Click(item->treeWidget(), item->treeWidget()->visualItemRect(item).center(), button);
        if (button == Qt::LeftButton)
            Settle();
    }
    // Opens the dialog of the first row `opens` takes from the editor of its value cell: its
    // button, or the last entry of its list (a free connector).
    void OpenFromValueCell(const std::function<bool(const QAbstractItemModel*, int)>& opens) {
        QTableView* list = List();
        ASSERT_NE(list, nullptr);
        for (int row = 0; row < list->model()->rowCount(); ++row) {
            if (!opens(list->model(), row))
                continue;
            const QModelIndex cell = list->model()->index(row, 3);
            list->scrollTo(cell);
            // The editor of that row: an editor of another row may still be going away.
            const auto onRow = [&](QWidget* w) {
                if (!w->isVisible())
                    return false;
                const QRect cellRect = list->visualRect(cell);
                const int top = list->viewport()->mapToGlobal(cellRect.topLeft()).y();
                const int middle = w->mapToGlobal(w->rect().center()).y();
                return middle >= top && middle < top + cellRect.height();
            };
            QPushButton* button = nullptr;
            QComboBox* box = nullptr;
            const auto editorUp = [&] {
                for (QPushButton* b : list->findChildren<QPushButton*>())
                    if (onRow(b))
                        button = b;
                for (QComboBox* c : list->findChildren<QComboBox*>())
                    if (onRow(c))
                        box = c;
                return button != nullptr || box != nullptr;
            };
            // A repaint under way may take a click; a user clicks again.
            for (int attempt = 0; attempt < 5 && !editorUp(); ++attempt) {
                Click(list, list->visualRect(cell).center(), Qt::LeftButton);
                AfxPumpMessagesUntil(editorUp, 1000);
            }
            if (button != nullptr) {
                button->click();
                return;
            }
            if (box != nullptr) {
                box->setCurrentIndex(box->count() - 1);
                emit box->activated(box->count() - 1);
                return;
            }
        }
        ADD_FAILURE() << "no value cell opens its dialog";
    }
    // The first row of the list selected and right-clicked.
    void RightClickRow() {
        QTableView* list = List();
        ASSERT_NE(list, nullptr);
        const QPoint at = list->visualRect(list->model()->index(0, 1)).center();
        Click(list, at, Qt::LeftButton);
        Click(list, at, Qt::RightButton);
    }
    // Buttons and labels as wide as their texts need, inside `root`.
    void ExpectControlsWhole(QWidget* root, const QString& where) {
        const QRect inside = root->rect();
        for (QWidget* w : root->findChildren<QWidget*>()) {
            if (!w->isVisible() || w->width() == 0)
                continue;
            QWidget* parent = w->parentWidget();
            if (qobject_cast<QAbstractItemView*>(parent) != nullptr ||
                (parent != nullptr && qobject_cast<QAbstractItemView*>(parent->parentWidget())))
                continue; // an in-cell editor has the cell's size
            auto* button = qobject_cast<QAbstractButton*>(w);
            auto* label = qobject_cast<QLabel*>(w);
            if (button == nullptr && label == nullptr && qobject_cast<QComboBox*>(w) == nullptr)
                continue;
            const QString text = button ? button->text() : label ? label->text() : w->objectName();
            EXPECT_TRUE(inside.contains(QRect(w->mapTo(root, QPoint(0, 0)), w->size())))
                << where.toStdString() << ": \"" << text.toStdString() << "\" lies outside";
            if ((button != nullptr || label != nullptr) && !text.isEmpty()) {
                EXPECT_GE(w->width(), w->sizeHint().width())
                    << where.toStdString() << ": \"" << text.toStdString() << "\" is cut";
            }
        }
        // Every shown column of a list is as wide as its title needs.
        for (QHeaderView* header : root->findChildren<QHeaderView*>()) {
            if (!header->isVisible() || header->orientation() != Qt::Horizontal)
                continue;
            for (int col = 0; col < header->count(); ++col) {
                if (header->sectionSize(col) > 0) {
                    EXPECT_GE(header->sectionSize(col), header->sectionSizeHint(col))
                        << where.toStdString() << ": title \""
                        << header->model()->headerData(col, Qt::Horizontal).toString().toStdString()
                        << "\" is cut";
                }
            }
        }
    }

    bool english = false;
};

} // namespace

TEST_F(WindowFit, EveryControlIsWholeAndTheMainColumnsShowAtCommonSizes) {
    ASSERT_TRUE(Open("ZD3S"));
    struct Case {
        QSize size;
        ListStyle style;
        int lastMainColumn; // the columns up to it show without scrolling
    };
    // Live list: up to "最大值" at 1280, the value column at 1024; staging list: up to
    // the factory value at 1280, the set value at 1024.
    const Case cases[] = {{{1280, 800}, ListStyle::Live, 7},
                          {{1024, 768}, ListStyle::Live, 3},
                          {{1280, 800}, ListStyle::Staging, 5},
                          {{1024, 768}, ListStyle::Staging, 3}};
    for (bool inEnglish : {false, true}) {
        SetEnglish(inEnglish);
        for (const Case& c : cases) {
            window.SetListStyle(c.style);
            window.resize(c.size);
            Settle();
            const QString where = QStringLiteral("%1x%2 %3 %4")
                                      .arg(c.size.width())
                                      .arg(c.size.height())
                                      .arg(c.style == ListStyle::Live ? "live" : "staging", Lang());
            ExpectControlsWhole(&window, where);
            Shot(&window, QStringLiteral("main_") +
                              QString(where).replace(QLatin1Char(' '), QLatin1Char('_')));
            QTableView* list = List();
            ASSERT_NE(list, nullptr) << where.toStdString();
            // No empty pane beside the list while nothing is described.
            const QRect listRect(list->mapTo(&window, QPoint(0, 0)), list->size());
            EXPECT_GE(listRect.right(), window.width() - 12) << where.toStdString();
            QHeaderView* header = list->horizontalHeader();
            for (int col = 0; col <= c.lastMainColumn; ++col)
                EXPECT_LE(header->sectionViewportPosition(col) + header->sectionSize(col),
                          list->viewport()->width())
                    << where.toStdString() << ": column "
                    << header->model()->headerData(col, Qt::Horizontal).toString().toStdString();
        }
        // The group tree's labels are whole, and the project tree's state column shows.
        window.resize(1280, 800);
        Settle();
        for (QTreeWidget* tree : window.findChildren<QTreeWidget*>()) {
            if (!tree->isVisible())
                continue;
            const QFontMetrics metrics(tree->font());
            for (QTreeWidgetItemIterator it(tree); *it != nullptr; ++it) {
                const QRect r = tree->visualItemRect(*it);
                if (!r.isValid() || tree->columnCount() > 1)
                    continue;
                EXPECT_LE(r.left() + tree->iconSize().width() +
                              metrics.horizontalAdvance((*it)->text(0)),
                          tree->viewport()->width())
                    << (*it)->text(0).toStdString() << " is cut";
            }
            if (tree->columnCount() > 1) {
                QHeaderView* header = tree->header();
                EXPECT_LE(header->sectionViewportPosition(1) + header->sectionSize(1),
                          tree->viewport()->width());
                for (QTreeWidgetItemIterator it(tree); *it != nullptr; ++it) {
                    EXPECT_LE(metrics.horizontalAdvance((*it)->text(1)), header->sectionSize(1))
                        << (*it)->text(1).toStdString() << " is cut";
                    // A long name goes on over more lines, all of them in its row.
                    const int nameWidth = tree->visualRect(tree->indexFromItem(*it, 0)).width();
                    const QRect name = metrics.boundingRect(QRect(0, 0, nameWidth - 8, 1 << 16),
                                                            Qt::TextWordWrap, (*it)->text(0));
                    EXPECT_LE(name.height(), tree->visualItemRect(*it).height())
                        << (*it)->text(0).toStdString() << " is cut";
                }
            }
        }
        Shot(&window, QStringLiteral("main_live_") + Lang());
    }
}

// Walked in both languages, so that the pictures show both; only English is checked.
TEST_F(WindowFit, InEnglishNoWindowOrDialogShowsChinese) {
    ASSERT_TRUE(Open("ZD3S"));
    ASSERT_TRUE(Open("ZD4M"));
    tabs->setCurrentIndex(0);
    ASSERT_EQ(tabs->count(), 2);
    MenuByText menus;
    WindowsShown shownWindows(&window);
    for (bool inEnglish : {false, true}) {
        shownWindows.english = inEnglish;
        SetEnglish(inEnglish);
        for (ListStyle style : {ListStyle::Live, ListStyle::Staging}) {
            window.SetListStyle(style);
            Settle();
            ShownTexts texts;
            texts.Walk(&window);
            texts.Menu(window.findChild<QMenuBar*>()->actions());
            if (english) {
                EXPECT_TRUE(texts.chinese.isEmpty()) << texts.chinese.join(" | ").toStdString();
            }
            Shot(&window, (style == ListStyle::Live ? QStringLiteral("main_live_")
                                                    : QStringLiteral("main_staging_")) +
                              Lang());
        }
        // The dialogs a user opens from the panel and the host.
        CheckModal(QStringLiteral("recipe"), [&] {
            QString error;
            ASSERT_TRUE(window.OpenRecipe("ZD3S", &error)) << error.toStdString();
        });
        window.SetListStyle(ListStyle::Live);
        Settle();
        auto pickFactoryLevel = [&] {
            QComboBox* access = nullptr;
            for (QComboBox* box : tabs->currentWidget()->findChildren<QComboBox*>())
                if (box->isVisible() && !box->isEditable())
                    access = box;
            ASSERT_NE(access, nullptr);
            const int factory = access->findText(Tr("厂家参数", "Factory parameters"));
            ASSERT_GE(factory, 0);
            access->setCurrentIndex(factory);
            emit access->activated(factory);
        };
        CheckModal(QStringLiteral("login"), pickFactoryLevel);
        // The packed-value dialog, from the button of a value cell as a user opens it.
        CheckModal(QStringLiteral("bits"), [&] {
            OpenFromValueCell([](const QAbstractItemModel* m, int row) {
                return m->data(m->index(row, 3)).toString().startsWith(QStringLiteral("0x"));
            });
        });
        // The other dialogs of the module, each opened as a user opens it; the menus on the
        // way, the message boxes and the windows that show meanwhile are checked as well.
        const QString exported = QDir::temp().filePath(QStringLiteral("walk_%1.csv").arg(Lang()));
        const auto filterColumns = [&] {
            menus.take = Tr("筛选列", "Filter columns");
            RightClickRow();
        };
        struct Dialog {
            const char* name;
            ListStyle style;
            std::function<void()> open;
            std::function<void(QWidget*)> act; // in a modal dialog, before Cancel
            bool modeless;
        };
        const Dialog dialogs[] = {
            {"compare", ListStyle::Live, [&] { PanelButton("比较", "Compare"); }, {}, true},
            {"axis_copy", ListStyle::Live,
             [&] {
                 tabs->setCurrentIndex(1); // a drive of more than one axis
                 Settle();
                 PanelButton("轴拷贝", "Axis copy");
             },
             // The same axis on both sides is refused with a message.
             [&](QWidget* w) { PressButton(w, Tr("确定", "OK")); }, false},
            {"columns", ListStyle::Live, filterColumns, {}, false},
            // Connectors are wired above the lowest access level.
            {"connector", ListStyle::Live,
             [&] {
                 // The login cancelled above leaves the level to the panel's poll of the
                 // drive, which may take the factory groups away a moment later: a user who
                 // sees them go logs in again.
                 const auto factoryLevel = [&] {
                     if (Group(QStringLiteral("H18"), true) != nullptr)
                         return true;
                     CAfxModalDriver login([&](CDialog& dialog) {
                         QWidget* w = AfxWidgetFromHandle(dialog.GetSafeHwnd());
                         w->findChild<QLineEdit*>()->setText(QStringLiteral("2468"));
                         PressButton(w, Tr("确定", "OK"));
                     });
                     pickFactoryLevel();
                     return WaitFor([&] { return Group(QStringLiteral("H18"), true) != nullptr; });
                 };
                 // The tree is built again once the panel has taken the new level; a click
                 // that met the old tree is lost, and a user clicks again.
                 const auto showsH18 = [&] {
                     const QAbstractItemModel* m = List() != nullptr ? List()->model() : nullptr;
                     return m != nullptr && m->rowCount() > 0 &&
                            m->data(m->index(0, 1)).toString().startsWith(QStringLiteral("H18"));
                 };
                 for (int attempt = 0; attempt < 5 && !showsH18(); ++attempt) {
                     ASSERT_TRUE(factoryLevel());
                     ClickGroup(QStringLiteral("H18"), Qt::LeftButton);
                     AfxPumpMessagesUntil(showsH18, 2000);
                 }
                 ASSERT_TRUE(showsH18());
                 OpenFromValueCell([](const QAbstractItemModel* m, int row) {
                     return m->data(m->index(row, 1)).toString() == QStringLiteral("H18-00");
                 });
             },
             // The signals of the first connector group listed.
             [&](QWidget* w) {
                 auto* tree = w->findChild<QTreeWidget*>();
                 ASSERT_NE(tree, nullptr);
                 ASSERT_GT(tree->topLevelItem(0)->childCount(), 0) << "no connector group";
                 tree->setCurrentItem(tree->topLevelItem(0)->child(0));
             },
             false},
            {"staging_columns", ListStyle::Staging, filterColumns, {}, false},
            {"staging_compare",
             ListStyle::Staging,
             [&] { PanelButton("参数比较", "Parameter compare"); },
             {},
             true},
            // Last: the right click leaves the custom branch selected.
            {"group", ListStyle::Live,
             [&] {
                 menus.take = Tr("新建自定义组", "New custom group");
                 ClickGroup(Tr("自定义", "Custom"), Qt::RightButton);
             },
             // A group without a name is refused with a message.
             [&](QWidget* w) {
                 QLineEdit* name = w->findChild<QLineEdit*>();
                 ASSERT_NE(name, nullptr);
                 name->clear();
                 PressButton(w, Tr("确定", "OK"));
             },
             false},
        };
        for (const Dialog& d : dialogs) {
            window.SetListStyle(d.style);
            Settle();
            const QString name = QString::fromUtf8(d.name);
            if (d.modeless)
                CheckModeless(name, d.open);
            else
                CheckModal(name, d.open, d.act);
            menus.take.clear();
            tabs->setCurrentIndex(0);
        }
        // The list export, with its progress box and its closing message.
        window.SetListStyle(ListStyle::Live);
        ClickGroup(Tr("所有参数", "All parameters"), Qt::LeftButton);
        QFile::remove(exported);
        menus.take = Tr("导出", "Export");
        menus.ChooseFiles({AfxFromQString(exported)});
        RightClickRow();
        EXPECT_TRUE(WaitFor([&] { return QFile::exists(exported); }));
        EXPECT_GE(shownWindows.progressBoxes, 1) << "the export showed no progress";
        menus.take.clear();
        // The staging list's filter menu.
        window.SetListStyle(ListStyle::Staging);
        Settle();
        PanelButton("筛选", "Filter");
        Settle();
        QFile::remove(exported);
        if (english) {
            EXPECT_TRUE(menus.Chinese().isEmpty()) << menus.Chinese().join(" | ").toStdString();
            EXPECT_TRUE(shownWindows.texts.chinese.isEmpty())
                << shownWindows.texts.chinese.join(" | ").toStdString();
        }
        EXPECT_GE(menus.Count(AfxPrompt::MessageBox), 3u);
        EXPECT_GE(menus.Count(AfxPrompt::PopupMenu), 5u);
        menus.prompts.clear();
        shownWindows.texts.chinese.clear();
    }
}

TEST_F(WindowFit, MessageBoxButtonsSpeakTheProgramsLanguage) {
    QMessageBox box;
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(box.button(QMessageBox::Yes)->text(), QStringLiteral("是(&Y)"));
    EXPECT_EQ(box.button(QMessageBox::No)->text(), QStringLiteral("否(&N)"));
    window.SetEnglish(true);
    QMessageBox english;
    english.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(english.button(QMessageBox::Yes)->text(), QStringLiteral("&Yes"));
}

TEST_F(WindowFit, AnOfflineDriveIsShownAsOfflineBeforeAnyEdit) {
    ASSERT_TRUE(Open("ZD3S"));
    auto notice = [&] {
        for (QWidget* w : tabs->currentWidget()->findChildren<QWidget*>())
            if (!w->accessibleName().isEmpty())
                return w->accessibleName();
        return QString();
    };
    ASSERT_TRUE(WaitFor([&] { return notice().startsWith(QStringLiteral("注")); }));
    window.SetOnline("ZD3S", false);
    EXPECT_TRUE(WaitFor([&] { return notice() == QStringLiteral("设备离线."); }))
        << notice().toStdString();
    window.SetOnline("ZD3S", true);
    EXPECT_TRUE(WaitFor([&] { return notice().startsWith(QStringLiteral("注")); }))
        << notice().toStdString();
}
