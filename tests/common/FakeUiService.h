// The one stand-in for the host's user-interface service, for the suites that must tell
// which text the module asked for: it answers only the strings a test names (so that a
// string the module's own table leaves empty is seen to be used), translates the texts a
// test lists and every other as itself, and makes no window translators.
#pragma once

#include "module/host/IHostUiService.h"

#include <map>

class FakeUiService : public IHostUiService {
public:
    std::map<UINT, CString> strings;
    std::map<CString, CString> translations;

    BOOL GetString(CString& text, HINSTANCE, UINT id, int) override {
        auto it = strings.find(id);
        text = it != strings.end() ? it->second : CString();
        return it != strings.end();
    }
    IHostWindowTranslator* CreateWindowTranslator() override { return nullptr; }
    void RetranslateWindow(HWND) override {}
    void TranslateText(CString& translated, const CString& text) override {
        auto it = translations.find(text);
        translated = it != translations.end() ? it->second : text;
    }
    void TranslateMenu(HMENU) override {}
    void ApplySkin(HWND, int, int) override {}
};
