#include "controls_p.h"

#include <afx/afxdlgs.h>
#include <afx/afxtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTimer>

#include <cstdio>

using namespace afxi;

namespace afxi {
void SetForcedKeyTarget(QWidget* w);
int g_modalDepth = 0;
} // namespace afxi

namespace {

IAfxPromptResponder* g_responder = nullptr;
CAfxModalDriver* g_driver = nullptr;

bool Offscreen() {
    return QGuiApplication::platformName() == QLatin1String("offscreen");
}

QWidget* OwnerWidget(HWND h) {
    QWidget* w = WidgetOf(h);
    if (w)
        return w->window();
    return QApplication::activeWindow();
}

int ShowRealBox(HWND owner, const CString& text, const CString& caption, UINT type) {
    QMessageBox box(OwnerWidget(owner));
    box.setText(Q(text));
    box.setWindowTitle(Q(caption));
    switch (type & MB_ICONMASK) {
    case MB_ICONERROR:
        box.setIcon(QMessageBox::Critical);
        break;
    case MB_ICONWARNING:
        box.setIcon(QMessageBox::Warning);
        break;
    case MB_ICONQUESTION:
        box.setIcon(QMessageBox::Question);
        break;
    case MB_ICONINFORMATION:
        box.setIcon(QMessageBox::Information);
        break;
    default:
        break;
    }
    struct B {
        QMessageBox::StandardButton q;
        int id;
    };
    std::vector<B> buttons;
    switch (type & MB_TYPEMASK) {
    case MB_OKCANCEL:
        buttons = {{QMessageBox::Ok, IDOK}, {QMessageBox::Cancel, IDCANCEL}};
        break;
    case MB_ABORTRETRYIGNORE:
        buttons = {{QMessageBox::Abort, IDABORT},
                   {QMessageBox::Retry, IDRETRY},
                   {QMessageBox::Ignore, IDIGNORE}};
        break;
    case MB_YESNOCANCEL:
        buttons = {
            {QMessageBox::Yes, IDYES}, {QMessageBox::No, IDNO}, {QMessageBox::Cancel, IDCANCEL}};
        break;
    case MB_YESNO:
        buttons = {{QMessageBox::Yes, IDYES}, {QMessageBox::No, IDNO}};
        break;
    case MB_RETRYCANCEL:
        buttons = {{QMessageBox::Retry, IDRETRY}, {QMessageBox::Cancel, IDCANCEL}};
        break;
    default:
        buttons = {{QMessageBox::Ok, IDOK}};
        break;
    }
    QMessageBox::StandardButtons all;
    for (const B& b : buttons)
        all |= b.q;
    box.setStandardButtons(all);
    const size_t def = std::min<size_t>((type & MB_DEFMASK) >> 8, buttons.size() - 1);
    box.setDefaultButton(buttons[def].q);
    ++g_modalDepth;
    const int r = box.exec();
    --g_modalDepth;
    for (const B& b : buttons)
        if (r == b.q)
            return b.id;
    return (type & MB_TYPEMASK) == MB_OK ? IDOK : IDCANCEL;
}

} // namespace

int AfxDefaultMessageBoxResult(UINT nType) {
    const UINT def = (nType & MB_DEFMASK) >> 8;
    switch (nType & MB_TYPEMASK) {
    case MB_OKCANCEL:
        return def == 0 ? IDOK : IDCANCEL;
    case MB_ABORTRETRYIGNORE:
        return def == 0 ? IDABORT : (def == 1 ? IDRETRY : IDIGNORE);
    case MB_YESNOCANCEL:
        return def == 0 ? IDYES : (def == 1 ? IDNO : IDCANCEL);
    case MB_YESNO:
        return def == 0 ? IDYES : IDNO;
    case MB_RETRYCANCEL:
        return def == 0 ? IDRETRY : IDCANCEL;
    default:
        return IDOK;
    }
}

int MessageBox(HWND hWnd, const char* text, const char* caption, UINT nType) {
    AfxPrompt p;
    p.kind = AfxPrompt::MessageBox;
    p.text = text;
    p.caption = caption;
    p.type = nType;
    if (g_responder)
        return g_responder->OnMessageBox(p);
    if (Offscreen() || !qApp) {
        const int r = AfxDefaultMessageBoxResult(nType);
        std::fprintf(stderr, "[afx] message box \"%s\" (%s), answered %d\n", p.text.GetString(),
                     p.caption.GetString(), r);
        return r;
    }
    return ShowRealBox(hWnd, p.text, p.caption, nType);
}

int AfxMessageBox(const char* text, UINT nType, UINT) {
    CWinApp* app = AfxGetApp();
    const char* caption = app && app->m_pszAppName ? app->m_pszAppName : "";
    QWidget* active = qApp ? QApplication::activeWindow() : nullptr;
    return MessageBox(active ? HandleOf(active) : nullptr, text, caption, nType);
}

IAfxPromptResponder* AfxSetPromptResponder(IAfxPromptResponder* responder) {
    IAfxPromptResponder* old = g_responder;
    g_responder = responder;
    return old;
}

IAfxPromptResponder* AfxGetPromptResponder() {
    return g_responder;
}

// ---------------------------------------------------------------- recording responder
CAfxRecordingResponder::CAfxRecordingResponder() : m_previous(AfxSetPromptResponder(this)) {}

CAfxRecordingResponder::~CAfxRecordingResponder() {
    if (AfxGetPromptResponder() == this)
        AfxSetPromptResponder(m_previous);
}

size_t CAfxRecordingResponder::Count(AfxPrompt::Kind kind) const {
    size_t n = 0;
    for (const auto& p : prompts)
        n += p.kind == kind;
    return n;
}

const AfxPrompt* CAfxRecordingResponder::Last(AfxPrompt::Kind kind) const {
    for (auto it = prompts.rbegin(); it != prompts.rend(); ++it)
        if (it->kind == kind)
            return &*it;
    return nullptr;
}

int CAfxRecordingResponder::OnMessageBox(const AfxPrompt& prompt) {
    prompts.push_back(prompt);
    if (m_boxAnswers.empty())
        return AfxDefaultMessageBoxResult(prompt.type);
    const int r = m_boxAnswers.front();
    m_boxAnswers.pop_front();
    return r;
}

BOOL CAfxRecordingResponder::OnFileDialog(const AfxPrompt& prompt, std::vector<CString>& paths) {
    prompts.push_back(prompt);
    if (m_fileAnswers.empty())
        return FALSE;
    paths = std::move(m_fileAnswers.front());
    m_fileAnswers.pop_front();
    return !paths.empty();
}

UINT CAfxRecordingResponder::OnPopupMenu(const AfxPrompt& prompt) {
    prompts.push_back(prompt);
    if (m_menuAnswers.empty())
        return 0;
    const UINT r = m_menuAnswers.front();
    m_menuAnswers.pop_front();
    return r;
}

// ---------------------------------------------------------------- modal driver
CAfxModalDriver::CAfxModalDriver(std::function<void(CDialog&)> driver)
    : m_driver(std::move(driver)), m_outer(g_driver) {
    g_driver = this;
}

CAfxModalDriver::~CAfxModalDriver() {
    if (g_driver == this)
        g_driver = m_outer;
}

void AfxRunModalDriver(CDialog& dlg) {
    CAfxModalDriver* d = g_driver;
    if (!d || !d->m_driver)
        return;
    ++d->runs;
    d->m_driver(dlg);
}

BOOL AfxHasModalDriver() {
    return g_driver != nullptr;
}

// ---------------------------------------------------------------- pumping
BOOL AfxPumpMessagesUntil(const std::function<bool()>& pred, int timeout_ms) {
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        if (pred())
            return TRUE;
        if (clock.elapsed() >= timeout_ms)
            return FALSE;
        QEventLoop loop;
        QTimer::singleShot(5, &loop, &QEventLoop::quit);
        loop.exec();
        // Windows destroyed at this level are freed here, unless a modal run is under way.
        if (g_modalDepth == 0)
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void AfxTestTypeText(CWnd* pCtrl, const char* text) {
    QWidget* w = pCtrl ? WidgetOf(pCtrl->m_hWnd) : nullptr;
    if (auto* e = qobject_cast<QLineEdit*>(w)) {
        e->setText(Q(text));
    } else if (auto* m = qobject_cast<QPlainTextEdit*>(w)) {
        m->setPlainText(Q(text));
    } else if (auto* c = qobject_cast<QComboBox*>(w); c && c->isEditable()) {
        c->lineEdit()->setText(Q(text));
        emit c->lineEdit()->textEdited(Q(text));
    }
}

void AfxTestPressKey(CWnd* pWnd, UINT vk, wchar_t ch) {
    QWidget* w = pWnd ? WidgetOf(pWnd->m_hWnd) : nullptr;
    if (!w)
        return;
    int key = int(vk);
    switch (vk) {
    case VK_RETURN:
        key = Qt::Key_Return;
        ch = ch ? ch : L'\r';
        break;
    case VK_ESCAPE:
        key = Qt::Key_Escape;
        ch = ch ? ch : 0x1B;
        break;
    case VK_TAB:
        key = Qt::Key_Tab;
        break;
    case VK_BACK:
        key = Qt::Key_Backspace;
        break;
    case VK_DELETE:
        key = Qt::Key_Delete;
        break;
    case VK_UP:
        key = Qt::Key_Up;
        break;
    case VK_DOWN:
        key = Qt::Key_Down;
        break;
    case VK_LEFT:
        key = Qt::Key_Left;
        break;
    case VK_RIGHT:
        key = Qt::Key_Right;
        break;
    case 0xBD:
        key = Qt::Key_Minus;
        ch = ch ? ch : L'-';
        break;
    default:
        break;
    }
    const QString text =
        ch ? QString::fromUcs4(reinterpret_cast<const char32_t*>(&ch), 1) : QString();
    QPointer<QWidget> target(w);
    SetForcedKeyTarget(w);
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(w, &press);
    if (target) {
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
        QCoreApplication::sendEvent(target, &release);
    }
    SetForcedKeyTarget(nullptr);
}

BOOL AfxTestGrabWindow(CWnd* pWnd, const char* pngPath) {
    QWidget* w = pWnd ? WidgetOf(pWnd->m_hWnd) : nullptr;
    if (!w)
        return FALSE;
    return w->grab().save(Q(pngPath), "PNG");
}

// ---------------------------------------------------------------- file dialog
CFileDialog::CFileDialog(BOOL bOpenFileDialog, const char* lpszDefExt, const char* lpszFileName,
                         DWORD dwFlags, const char* lpszFilter, CWnd* pParentWnd)
    : m_bOpen(bOpenFileDialog), m_defExt(lpszDefExt), m_initialName(lpszFileName),
      m_filter(lpszFilter), m_pParent(pParentWnd) {
    m_ofn.Flags = dwFlags;
}

CFileDialog::~CFileDialog() = default;

namespace {

// "Text (*.txt)|*.txt|All (*.*)|*.*||" -> Qt's "Text (*.txt) (*.txt);;All (*.*) (*.*)".
QString QtFilter(const CString& filter) {
    const QStringList parts = Q(filter).split('|');
    QStringList out;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        if (parts[i].isEmpty())
            break;
        QString patterns = parts[i + 1];
        patterns.replace(';', ' ');
        out << parts[i] + " (" + patterns + ")";
    }
    return out.join(";;");
}

bool HasExtension(const CString& path) {
    const int sep = std::max(path.ReverseFind('/'), path.ReverseFind('\\'));
    // A name that only starts with a dot has no extension.
    return path.ReverseFind('.') > sep + 1;
}

CString NameOf(const CString& path) {
    const int sep = std::max(path.ReverseFind('/'), path.ReverseFind('\\'));
    return path.Mid(sep + 1);
}

} // namespace

INT_PTR CFileDialog::DoModal() {
    m_chosen.RemoveAll();
    std::vector<CString> paths;
    BOOL ok = FALSE;
    const HWND owner = m_pParent ? m_pParent->m_hWnd : nullptr;
    if (g_responder || Offscreen()) {
        AfxPrompt p;
        p.kind = AfxPrompt::FileDialog;
        p.text = m_initialName;
        p.caption = m_ofn.lpstrTitle;
        p.type = m_ofn.Flags;
        p.open = m_bOpen;
        p.filter = m_filter;
        p.defExt = m_defExt;
        if (g_responder) {
            ok = g_responder->OnFileDialog(p, paths);
        } else {
            std::fprintf(stderr, "[afx] file dialog \"%s\" cancelled: no responder\n",
                         m_initialName.GetString());
        }
    } else {
        QWidget* parent = OwnerWidget(owner);
        QString dir = Q(m_ofn.lpstrInitialDir);
        QString start = Q(m_initialName);
        if (!dir.isEmpty())
            start = dir + "/" + start;
        const QString caption = Q(m_ofn.lpstrTitle);
        const QString filter = QtFilter(m_filter);
        ++g_modalDepth;
        if (m_bOpen && (m_ofn.Flags & OFN_ALLOWMULTISELECT)) {
            for (const QString& f : QFileDialog::getOpenFileNames(parent, caption, start, filter))
                paths.push_back(C(f));
        } else if (m_bOpen) {
            const QString f = QFileDialog::getOpenFileName(parent, caption, start, filter);
            if (!f.isEmpty())
                paths.push_back(C(f));
        } else {
            QFileDialog::Options opts;
            if (!(m_ofn.Flags & OFN_OVERWRITEPROMPT))
                opts |= QFileDialog::DontConfirmOverwrite;
            const QString f =
                QFileDialog::getSaveFileName(parent, caption, start, filter, nullptr, opts);
            if (!f.isEmpty())
                paths.push_back(C(f));
        }
        --g_modalDepth;
        ok = !paths.empty();
    }
    if (!ok || paths.empty())
        return IDCANCEL;
    for (CString& path : paths) {
        if (!m_defExt.IsEmpty() && !HasExtension(path))
            path += "." + m_defExt;
    }
    if (g_responder) {
        // The real dialogs check these themselves.
        if (!m_bOpen && (m_ofn.Flags & OFN_OVERWRITEPROMPT) && QFileInfo::exists(Q(paths[0]))) {
            CString text;
            text.Format("%s already exists.\nDo you want to replace it?",
                        NameOf(paths[0]).GetString());
            if (MessageBox(owner, text.GetString(), "Confirm Save As", MB_YESNO | MB_ICONWARNING) !=
                IDYES)
                return IDCANCEL;
        }
        if (m_bOpen && (m_ofn.Flags & OFN_FILEMUSTEXIST)) {
            for (const CString& path : paths) {
                if (!QFileInfo::exists(Q(path))) {
                    CString text;
                    text.Format("%s\nFile not found.", path.GetString());
                    MessageBox(owner, text.GetString(), "Open", MB_OK | MB_ICONWARNING);
                    return IDCANCEL;
                }
            }
        }
    }
    for (const CString& path : paths)
        m_chosen.Add(path);
    return IDOK;
}

CString CFileDialog::GetPathName() const {
    return m_chosen.IsEmpty() ? CString() : m_chosen[0];
}

POSITION CFileDialog::GetStartPosition() const {
    return m_chosen.IsEmpty() ? nullptr : reinterpret_cast<POSITION>(uintptr_t(1));
}

CString CFileDialog::GetNextPathName(POSITION& pos) const {
    const auto i = INT_PTR(reinterpret_cast<uintptr_t>(pos)) - 1;
    if (i < 0 || i >= m_chosen.GetSize()) {
        pos = nullptr;
        return CString();
    }
    pos = i + 1 < m_chosen.GetSize() ? reinterpret_cast<POSITION>(uintptr_t(i + 2)) : nullptr;
    return m_chosen[i];
}
