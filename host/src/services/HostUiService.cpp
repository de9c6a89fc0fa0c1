#include "zorhost/services/HostUiService.h"

#include <afx/afxcmn.h>
#include <afx/afxqt.h>
#include <afx/afxres.h>

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QTabBar>
#include <QWidget>

#include <functional>

namespace zorhost {

namespace {

std::string Key(const CString& text) {
    return std::string(text.GetString());
}

// Splits at "\n", keeping a "\r" before it with the line it ends.
std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (;;) {
        const size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            lines.push_back(text.substr(start));
            return lines;
        }
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
}

// `text` mapped through `table` as a whole, else line by line (buttons put a second line
// under a caption that is known on its own). Unknown parts stay as they are.
std::string MapText(const std::unordered_map<std::string, std::string>& table,
                    const std::string& text) {
    if (auto it = table.find(text); it != table.end())
        return it->second;
    if (text.find('\n') == std::string::npos) {
        // A tree label: a name with its description in brackets.
        const size_t open = text.find('[');
        if (open == std::string::npos || text.back() != ']' || open + 2 > text.size())
            return text;
        const std::string name = text.substr(0, open);
        const std::string inner = text.substr(open + 1, text.size() - open - 2);
        const auto n = table.find(name);
        const auto i = table.find(inner);
        if (n == table.end() && i == table.end())
            return text;
        std::string result = n != table.end() ? n->second : name;
        result.push_back('[');
        result.append(i != table.end() ? i->second : inner);
        result.push_back(']');
        return result;
    }
    std::string result;
    bool first = true;
    for (std::string line : SplitLines(text)) {
        const bool endsWithCr = !line.empty() && line.back() == '\r';
        if (endsWithCr)
            line.pop_back();
        if (!first)
            result.push_back('\n');
        first = false;
        auto it = table.find(line);
        result.append(it != table.end() ? it->second : line);
        if (endsWithCr)
            result.push_back('\r');
    }
    return result;
}

// One caption of a widget: how to read and write it, and the name under which the widget
// keeps its text as written and the text last shown.
struct Caption {
    QWidget* holder;
    QByteArray name;
    std::function<QString()> get;
    std::function<void(const QString&)> set;
};

void CollectCaptions(QWidget* w, bool isRoot, std::vector<Caption>& out) {
    if (auto* label = qobject_cast<QLabel*>(w)) {
        out.push_back({w, "text", [label] { return label->text(); },
                       [label](const QString& t) { label->setText(t); }});
    } else if (auto* button = qobject_cast<QAbstractButton*>(w)) {
        out.push_back({w, "text", [button] { return button->text(); },
                       [button](const QString& t) { button->setText(t); }});
    } else if (auto* box = qobject_cast<QGroupBox*>(w)) {
        out.push_back({w, "text", [box] { return box->title(); },
                       [box](const QString& t) { box->setTitle(t); }});
    } else if (w->inherits("afxi::AfxListView")) {
        // A report list's column titles. The list is driven through its handle; the
        // column calls use nothing but the handle.
        auto* list = static_cast<CListCtrl*>(CWnd::FromHandle(AfxHandleFromWidget(w)));
        if (list != nullptr)
            for (int i = 0; i < list->GetColumnCount(); ++i)
                out.push_back({w, "column" + QByteArray::number(i),
                               [list, i] { return AfxToQString(list->GetColumnText(i)); },
                               [list, i](const QString& t) {
                                   std::string text = AfxFromQString(t).GetString();
                                   LVCOLUMN column{};
                                   column.mask = LVCF_TEXT;
                                   column.pszText = text.data();
                                   list->SetColumn(i, &column);
                               }});
    } else if (auto* tabs = qobject_cast<QTabBar*>(w)) {
        for (int i = 0; i < tabs->count(); ++i)
            out.push_back({w, "tab" + QByteArray::number(i), [tabs, i] { return tabs->tabText(i); },
                           [tabs, i](const QString& t) { tabs->setTabText(i, t); }});
    }
    // The title of a window of its own, and of the window handed in (an empty title, as
    // child panels have, stays empty).
    if (w->isWindow() || isRoot)
        out.push_back({w, "title", [w] { return w->windowTitle(); },
                       [w](const QString& t) { w->setWindowTitle(t); }});
}

// Walks `window` and its children. Each caption's text as written is what the widget kept
// from last time, unless code has put another text there since: that text, taken back to
// its Chinese when it is a known translation, is the new text as written. With `apply`
// the captions then show their text in `language`.
void WalkCaptions(const CHostUiService& service, HWND window, bool apply, UiLanguage language) {
    QWidget* root = AfxWidgetFromHandle(window);
    if (root == nullptr)
        return;
    std::vector<Caption> captions;
    CollectCaptions(root, true, captions);
    for (QWidget* child : root->findChildren<QWidget*>())
        CollectCaptions(child, false, captions);

    for (const Caption& c : captions) {
        const QByteArray sourceName = "zorhost.source." + c.name;
        const QByteArray shownName = "zorhost.shown." + c.name;
        const QString current = c.get();
        const QVariant shown = c.holder->property(shownName.constData());
        QString source;
        if (shown.isValid() && shown.toString() == current)
            source = c.holder->property(sourceName.constData()).toString();
        else
            source = AfxToQString(service.SourceOf(AfxFromQString(current)));
        QString now = current;
        if (apply) {
            now = AfxToQString(service.Translate(AfxFromQString(source), language));
            if (now != current)
                c.set(now);
        }
        c.holder->setProperty(sourceName.constData(), source);
        c.holder->setProperty(shownName.constData(), now);
    }
}

void TranslateMenuItems(const CHostUiService& service, CMenu* menu, UiLanguage language) {
    const int count = menu->GetMenuItemCount();
    for (int pos = 0; pos < count; ++pos) {
        const UINT flags = menu->GetMenuState(UINT(pos), MF_BYPOSITION);
        if (flags == UINT(-1) || (flags & MF_SEPARATOR))
            continue;
        CString text;
        menu->GetMenuString(UINT(pos), text, MF_BYPOSITION);
        const CString translated = service.Translate(service.SourceOf(text), language);
        if (translated != text)
            menu->ModifyMenu(UINT(pos), flags | MF_BYPOSITION, menu->GetMenuItemID(pos),
                             translated.GetString());
        if (CMenu* sub = menu->GetSubMenu(pos))
            TranslateMenuItems(service, sub, language);
    }
}

} // namespace

CHostUiService::CHostUiService() {
    for (const TranslationPair& pair : BuiltInEnglishTexts())
        AddTranslation(pair.source, pair.english);
}

UiLanguage CHostUiService::GetLanguage() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_language;
}

void CHostUiService::SetLanguage(UiLanguage language) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_language = language;
}

void CHostUiService::AddTranslation(const CString& source, const CString& english) {
    if (source.IsEmpty() || english.IsEmpty())
        return;
    std::lock_guard<std::mutex> lock(m_mutex);
    auto& slot = m_english[Key(source)];
    if (!slot.empty()) {
        auto back = m_sourceOfEnglish.find(slot);
        if (back != m_sourceOfEnglish.end() && back->second == Key(source))
            m_sourceOfEnglish.erase(back);
    }
    slot = Key(english);
    // One English text may stand for several Chinese ones (device descriptions repeat
    // names); the first keeps it, so a window switched back shows what it showed first.
    m_sourceOfEnglish.emplace(Key(english), Key(source));
}

bool CHostUiService::FindEnglish(const CString& source, CString& english) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_english.find(Key(source));
    if (it == m_english.end())
        return false;
    english = CString(it->second.c_str());
    return true;
}

CString CHostUiService::SourceOf(const CString& text) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return CString(MapText(m_sourceOfEnglish, Key(text)).c_str());
}

CString CHostUiService::Translate(const CString& source, UiLanguage language) const {
    if (language == UiLanguage::Chinese)
        return source;
    std::lock_guard<std::mutex> lock(m_mutex);
    return CString(MapText(m_english, Key(source)).c_str());
}

double CHostUiService::GetUiScale() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_uiScale;
}

void CHostUiService::SetUiScale(double scale) {
    if (!(scale > 0.0))
        return;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_uiScale = scale;
}

BOOL CHostUiService::GetString(CString& text, HINSTANCE module, UINT id, int /*reserved*/) {
    text.Empty();
    CString written;
    if (module == nullptr || !AfxLoadStringFrom(module, id, written))
        return FALSE;
    text = Translate(written, GetLanguage());
    return TRUE;
}

IHostWindowTranslator* CHostUiService::CreateWindowTranslator() {
    return new CHostWindowTranslator(*this);
}

void CHostUiService::RetranslateWindow(HWND window) {
    WalkCaptions(*this, window, true, GetLanguage());
}

void CHostUiService::TranslateText(CString& translated, const CString& text) {
    translated = Translate(text, GetLanguage());
}

void CHostUiService::TranslateMenu(HMENU menu) {
    if (CMenu* wrapper = CMenu::FromHandle(menu))
        TranslateMenuItems(*this, wrapper, GetLanguage());
}

void CHostUiService::ApplySkin(HWND window, int /*style*/, int /*flags*/) {
    QWidget* root = AfxWidgetFromHandle(window);
    if (root == nullptr)
        return;
    const double scale = GetUiScale();
    QList<QWidget*> widgets = root->findChildren<QWidget*>();
    widgets.prepend(root);
    // Sizes as they stand before any change, or children would take their parent's
    // scaled font as their first size.
    for (QWidget* w : widgets)
        if (scale != 1.0 && !w->property("zorhost.basePointSize").isValid())
            w->setProperty("zorhost.basePointSize", w->font().pointSizeF());
    for (QWidget* w : widgets) {
        const QVariant base = w->property("zorhost.basePointSize");
        if (!base.isValid() || base.toDouble() <= 0.0)
            continue; // never scaled, or a font sized in pixels
        QFont font = w->font();
        font.setPointSizeF(base.toDouble() * scale);
        w->setFont(font);
    }
}

CHostWindowTranslator::CHostWindowTranslator(CHostUiService& service) : m_service(service) {}

void CHostWindowTranslator::Attach(HWND window) {
    m_window = window;
    WalkCaptions(m_service, window, false, m_service.GetLanguage());
}

void CHostWindowTranslator::Retranslate(int /*flags*/) {
    if (m_window != nullptr)
        m_service.RetranslateWindow(m_window);
}

} // namespace zorhost
