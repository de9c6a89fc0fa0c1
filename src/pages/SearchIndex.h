// CSearchIndex: the search texts of the parameters, lower-cased once and kept, so that a
// search is a scan over prepared text instead of formatting every field of every row on
// each Enter. Entries are keyed by attribute and survive tree selections; the texts that
// depend on the language are made again after a language change, everything after an
// attribute or access level change.
#pragma once

#include "module/host/HostFwd.h"

#include <afx/afx.h>

#include <string>
#include <unordered_map>

class CSearchIndex {
public:
    // Whether the parameter of `attr` holds `lowerText` (already lower-cased, not empty) in one of
    // its fields: code, name, unit, minimum, maximum, modify text, address, and with `firstPage`
    // also the factory value and the option names. Names count both as stored and as shown in the
    // present language.
    bool Matches(IVarAttr* attr, const std::string& lowerText, bool firstPage);

    // Called before a search: drops what the access level or language made stale.
    void Validate(int accessLevel);
    // Forgets everything; for changed attributes.
    void Drop();
    int GetCount() const { return int(m_entries.size()); }

private:
    struct Entry {
        std::string common;  // fields of both pages, each ended by '\0'
        std::string factory; // the factory value, a field of the first page
        std::string shownName;
        IValueInfo* info = nullptr;
        int modifyMode = -1;
        unsigned language = 0;
    };
    // The option names of one value info; many parameters share one.
    struct Options {
        std::string stored;
        std::string shown;
        unsigned language = 0;
    };

    void Build(Entry& entry, IVarAttr* attr);
    Options& OptionsOf(IValueInfo* info);
    // A text as shown in the present language, lower-cased; remembered per language.
    const std::string& Shown(const CString& text);

    std::unordered_map<IVarAttr*, Entry> m_entries;
    std::unordered_map<IValueInfo*, Options> m_options;
    std::unordered_map<std::string, std::string> m_shownTexts;
    CString m_languageProbe;
    unsigned m_language = 1;
    int m_accessLevel = -1;
};

// Lower-cases `text` as CString::MakeLower does, without the detour through a wide string
// for the characters that have no case (the CJK ranges, Latin-1 signs).
std::string SearchLower(const CString& text);
