// The one stand-in for the host's user-interface service that suites and benchmarks share
// where the host's own service would get in the way. By default it reads strings from the
// module's string table, translates every text as itself, makes no window translators and
// records what it was asked; a test sets what it needs.
#pragma once

#include "module/host/IHostUiService.h"
#include "module/host/IHostWindowTranslator.h"

#include <afx/afxres.h>

#include <map>
#include <vector>

// A window translator that counts what it is asked to do.
class FakeWindowTranslator : public IHostWindowTranslator {
public:
    FakeWindowTranslator(int* alive, int* retranslationsOfAll)
        : m_alive(alive), m_retranslationsOfAll(retranslationsOfAll) {
        ++*m_alive;
    }
    ~FakeWindowTranslator() override { --*m_alive; }
    void Attach(HWND window) override { attached = window; }
    void Retranslate(int) override {
        ++retranslations;
        ++*m_retranslationsOfAll;
    }
    HWND attached = nullptr;
    int retranslations = 0;

private:
    int* m_alive;
    int* m_retranslationsOfAll;
};

class FakeUiService : public IHostUiService {
public:
    // Where GetString looks after `stringOverrides`.
    enum class Strings { FromModule, None };
    Strings strings = Strings::FromModule;
    std::map<UINT, CString> stringOverrides;
    std::map<CString, CString> translations; // a text not listed translates as itself
    bool makeTranslators = false;            // CreateWindowTranslator gives null unless set

    int translatorsMade = 0;
    int translatorsAlive = 0;
    int retranslations = 0; // of all translators made
    int windowRetranslations = 0;
    FakeWindowTranslator* lastTranslator = nullptr;

    BOOL GetString(CString& text, HINSTANCE module, UINT id, int) override {
        text.Empty();
        auto it = stringOverrides.find(id);
        if (it != stringOverrides.end()) {
            text = it->second;
            return TRUE;
        }
        return strings == Strings::FromModule && AfxLoadStringFrom(module, id, text);
    }
    IHostWindowTranslator* CreateWindowTranslator() override {
        if (!makeTranslators)
            return nullptr;
        ++translatorsMade;
        lastTranslator = new FakeWindowTranslator(&translatorsAlive, &retranslations);
        return lastTranslator;
    }
    void RetranslateWindow(HWND) override { ++windowRetranslations; }
    void TranslateText(CString& translated, const CString& text) override {
        auto it = translations.find(text);
        translated = it != translations.end() ? it->second : text;
    }
    void TranslateMenu(HMENU) override {}
    void ApplySkin(HWND, int, int) override {}
};
