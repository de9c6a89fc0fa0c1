// The host's texts and translation (IHostUiService): the string tables of plug-ins looked
// up by id, texts turned into the user's language, and window translators that put a
// window's texts into the current language again after the user switched it.
//
// Texts are written in Chinese everywhere (string tables, dialog templates, menus); the
// English comes from a table compiled into the host plus what the program adds (device
// descriptions bring their own). Chinese shows texts as written. User-interface thread
// only, like the windows it works on.
#pragma once

#include "module/host/IHostUiService.h"
#include "module/host/IHostWindowTranslator.h"

#include <mutex>
#include <span>
#include <string>
#include <unordered_map>

namespace zorhost {

namespace device {
class DeviceDescription;
}

enum class UiLanguage {
    Chinese, // texts as written
    English,
};

struct TranslationPair {
    const char* source;  // as written, in Chinese
    const char* english; // printf conversions in the same order as in `source`
};

// The English of every text the module and the host show (generated from
// host/translations/en.tsv).
std::span<const TranslationPair> BuiltInEnglishTexts();

class CHostUiService : public IHostUiService {
public:
    // Starts in Chinese with the built-in English loaded.
    CHostUiService();

    UiLanguage GetLanguage() const;
    // Only switches the lookup. The program then raises the language-changed event (the
    // plug-ins retranslate their windows) and calls RetranslateWindow on its own windows.
    void SetLanguage(UiLanguage language);

    // Adds or replaces the English of `source`. Empty texts are ignored.
    void AddTranslation(const CString& source, const CString& english);
    // The English of `source`, if known (whatever the current language).
    bool FindEnglish(const CString& source, CString& english) const;
    // The text as written of a text shown in any language: `text` itself when it is not
    // a known translation.
    CString SourceOf(const CString& text) const;
    // `source` in `language`: English when known, else put together from known parts
    // (each line of a multi-line text; name and bracketed description of "名称[描述]"),
    // else `source` unchanged.
    CString Translate(const CString& source, UiLanguage language) const;

    // Scale of fonts in windows ApplySkin is given; 1.0 unless the user chose otherwise.
    double GetUiScale() const;
    void SetUiScale(double scale);

    // IHostUiService
    BOOL GetString(CString& text, HINSTANCE module, UINT id, int reserved) override;
    IHostWindowTranslator* CreateWindowTranslator() override;
    // Labels, buttons, group boxes, tab titles, list column titles and window titles of
    // `window` and its children. Each keeps its text as written, so switching back and
    // forth is lossless; a text that code set meanwhile becomes the new text as written.
    // Edits, list rows, trees and combo boxes hold data, not captions, and are left alone.
    void RetranslateWindow(HWND window) override;
    void TranslateText(CString& translated, const CString& text) override;
    // Every entry, popups included; check marks, states and ids stay.
    void TranslateMenu(HMENU menu) override;
    // The host's look is the application style, already on every widget; what is left is
    // the font scale: fonts of `window` and its children become their size at the first
    // call times GetUiScale (so calling it again does not grow them).
    void ApplySkin(HWND window, int style, int flags) override;

private:
    mutable std::mutex m_mutex; // the tables; AddTranslation may run while windows load
    std::unordered_map<std::string, std::string> m_english;
    std::unordered_map<std::string, std::string> m_sourceOfEnglish;
    UiLanguage m_language = UiLanguage::Chinese;
    double m_uiScale = 1.0;
};

// Adds the English a device description brings for its texts: parameter names and
// information texts, value meanings, group and category descriptions, axes, per-unit bases
// and the product's name. Texts without English are left out. Returns how many were added.
int AddDeviceTranslations(CHostUiService& service, const device::DeviceDescription& device);

// A translator bound to one window (IHostWindowTranslator). It only holds the window's
// handle: the texts as written are kept on the widgets themselves, so a translator that
// outlives its window, or several translators over one window tree, do no harm. The
// service must outlive its translators.
class CHostWindowTranslator : public IHostWindowTranslator {
public:
    explicit CHostWindowTranslator(CHostUiService& service);

    // Remembers the texts as written of `window` and its children as they stand now.
    void Attach(HWND window) override;
    // Puts the attached window's texts into the service's current language; children
    // created since Attach are taken in too.
    void Retranslate(int flags) override;

    HWND GetWindow() const { return m_window; }

private:
    CHostUiService& m_service;
    HWND m_window = nullptr;
};

} // namespace zorhost
