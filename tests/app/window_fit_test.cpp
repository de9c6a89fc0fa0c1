// The main window as a user sees it: at the usual screen sizes every control of a panel
// is whole and inside the window, and in English no Chinese text is left in sight, on
// the window or on the module's dialogs. With ZORDRIVEBENCH_SHOTS set to a folder, the
// states walked are saved there as pictures to look at.
#include "bench_window.h"

#include <afx/afxqt.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTextEdit>
#include <QTreeWidget>

#include <gtest/gtest.h>

using zorhost::project::ListStyle;

namespace {

bool IsCjk(QChar c) {
    const ushort u = c.unicode();
    return (u >= 0x4E00 && u <= 0x9FFF) || (u >= 0x3000 && u <= 0x303F) ||
           (u >= 0xFF00 && u <= 0xFFEF);
}

bool HasCjk(const QString& text) {
    return std::any_of(text.begin(), text.end(), IsCjk);
}

// Every text a widget and its shown children put in front of the user.
class ShownTexts {
public:
    // Names a module carries as its identity (they name its folder) are shown as the
    // project gives them, in whatever language.
    explicit ShownTexts(QStringList names = {}) : m_names(std::move(names)) {}
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
    QStringList chinese;

private:
    void Add(const QString& text) {
        QString rest = text;
        for (const QString& name : m_names)
            rest.remove(name);
        if (HasCjk(rest) && !chinese.contains(text))
            chinese << text;
    }
    QStringList m_names;
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
        if (auto* label = qobject_cast<QLabel*>(w))
            Add(label->text());
        else if (auto* button = qobject_cast<QAbstractButton*>(w))
            Add(button->text());
        else if (auto* box = qobject_cast<QGroupBox*>(w))
            Add(box->title());
        else if (auto* edit = qobject_cast<QLineEdit*>(w))
            Add(edit->text());
        else if (auto* plain = qobject_cast<QPlainTextEdit*>(w))
            Add(plain->toPlainText());
        else if (auto* rich = qobject_cast<QTextEdit*>(w))
            Add(rich->toPlainText());
        else if (auto* combo = qobject_cast<QComboBox*>(w)) {
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

class WindowFit : public BenchWindowTest {
protected:
    void SetUp() override {
        bench->services.Ui().SetLanguage(zorhost::UiLanguage::Chinese);
        window.resize(1280, 800);
        BenchWindowTest::SetUp();
    }
    void Settle() {
        AfxPumpMessagesUntil([] { return false; }, 150);
    }
    void SetEnglish(bool english) {
        window.SetEnglish(english);
        const QString caption =
            english ? QStringLiteral("Parameter list") : QStringLiteral("参数列表");
        WaitFor([&] { return tabs->count() == 0 || tabs->tabText(0) == caption; });
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
    QStringList ModuleNames() {
        QStringList names;
        for (const CString& key : host.ModuleKeys()) {
            CString name;
            host.Module(key)->GetDisplayName(name);
            names << AfxToQString(name);
        }
        return names;
    }
    QString Lang() const { return english ? QStringLiteral("en") : QStringLiteral("zh"); }
    // Runs `open`, which brings up one modal dialog of the module, and checks its texts.
    void CheckModal(const QString& name, const std::function<void()>& open) {
        CAfxModalDriver driver([&](CDialog& dialog) {
            QWidget* w = AfxWidgetFromHandle(dialog.GetSafeHwnd());
            ASSERT_NE(w, nullptr);
            Settle();
            ShownTexts texts(ModuleNames());
            texts.Walk(w);
            if (english) {
                EXPECT_TRUE(texts.chinese.isEmpty())
                    << name.toStdString() << ": " << texts.chinese.join(" | ").toStdString();
            }
            ExpectControlsWhole(w, name);
            Shot(w, name + QLatin1Char('_') + Lang());
            dialog.EndDialog(IDCANCEL);
        });
        open();
        EXPECT_EQ(driver.runs, 1) << name.toStdString() << " did not come up";
    }
    // Buttons and labels as wide as their texts need, inside `root`.
    void ExpectControlsWhole(QWidget* root, const QString& where) {
        const QRect inside = root->rect();
        for (QWidget* w : root->findChildren<QWidget*>()) {
            if (!w->isVisible() || w->width() == 0)
                continue;
            const bool inCell =
                qobject_cast<QAbstractItemView*>(w->parentWidget()) != nullptr ||
                (w->parentWidget() != nullptr &&
                 qobject_cast<QAbstractItemView*>(w->parentWidget()->parentWidget()));
            if (inCell)
                continue; // an in-cell editor has the cell's size
            const bool control = qobject_cast<QAbstractButton*>(w) != nullptr ||
                                 qobject_cast<QComboBox*>(w) != nullptr ||
                                 qobject_cast<QLabel*>(w) != nullptr;
            if (!control)
                continue;
            const QRect r(w->mapTo(root, QPoint(0, 0)), w->size());
            const QString text = qobject_cast<QAbstractButton*>(w)
                                     ? qobject_cast<QAbstractButton*>(w)->text()
                                 : qobject_cast<QLabel*>(w) ? qobject_cast<QLabel*>(w)->text()
                                                            : w->objectName();
            EXPECT_TRUE(inside.contains(r))
                << where.toStdString() << ": \"" << text.toStdString() << "\" lies outside";
            if ((qobject_cast<QAbstractButton*>(w) != nullptr || qobject_cast<QLabel*>(w)) &&
                !text.isEmpty()) {
                EXPECT_GE(w->width(), w->sizeHint().width())
                    << where.toStdString() << ": \"" << text.toStdString() << "\" is cut";
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
        english = inEnglish;
        SetEnglish(english);
        for (const Case& c : cases) {
            window.SetListStyle(c.style);
            window.resize(c.size);
            Settle();
            const QString where = QStringLiteral("%1x%2 %3 %4")
                                      .arg(c.size.width())
                                      .arg(c.size.height())
                                      .arg(c.style == ListStyle::Live ? "live" : "staging", Lang());
            ExpectControlsWhole(&window, where);
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
                for (QTreeWidgetItemIterator it(tree); *it != nullptr; ++it)
                    EXPECT_LE(metrics.horizontalAdvance((*it)->text(1)), header->sectionSize(1))
                        << (*it)->text(1).toStdString() << " is cut";
            }
        }
        Shot(&window, QStringLiteral("main_live_") + Lang());
    }
}

// Walked in both languages, so that the pictures show both; only English is checked.
TEST_F(WindowFit, InEnglishNoWindowOrDialogShowsChinese) {
    ASSERT_TRUE(Open("ZD3S"));
    for (bool inEnglish : {false, true}) {
        english = inEnglish;
        SetEnglish(english);
        auto text = [&](const char* zh, const char* en) {
            return english ? QString::fromUtf8(en) : QString::fromUtf8(zh);
        };
        for (ListStyle style : {ListStyle::Live, ListStyle::Staging}) {
            window.SetListStyle(style);
            Settle();
            ShownTexts texts(ModuleNames());
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
        CheckModal(QStringLiteral("login"), [&] {
            QComboBox* access = nullptr;
            for (QComboBox* box : tabs->currentWidget()->findChildren<QComboBox*>())
                if (box->isVisible() && !box->isEditable())
                    access = box;
            ASSERT_NE(access, nullptr);
            const int factory = access->findText(text("厂家参数", "Factory parameters"));
            ASSERT_GE(factory, 0);
            access->setCurrentIndex(factory);
            emit access->activated(factory);
        });
        // The packed-value dialog, from the button of a value cell as a user opens it.
        CheckModal(QStringLiteral("bits"), [&] {
            QTableView* list = List();
            ASSERT_NE(list, nullptr);
            QPushButton* cellButton = nullptr;
            for (int row = 0; row < list->model()->rowCount() && cellButton == nullptr; ++row) {
                const QModelIndex cell = list->model()->index(row, 3);
                if (!list->model()->data(cell).toString().startsWith(QStringLiteral("0x")))
                    continue;
                list->scrollTo(cell);
                const QPoint at = list->visualRect(cell).center();
                for (QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
                    QMouseEvent click(type, at, list->viewport()->mapToGlobal(at), Qt::LeftButton,
                                      type == QEvent::MouseButtonPress ? Qt::LeftButton
                                                                       : Qt::NoButton,
                                      Qt::NoModifier);
                    QCoreApplication::sendEvent(list->viewport(), &click);
                }
                Settle();
                for (QPushButton* b : list->findChildren<QPushButton*>())
                    if (b->isVisible())
                        cellButton = b;
            }
            ASSERT_NE(cellButton, nullptr) << "no packed value opens its dialog";
            cellButton->click();
        });
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
