// CSearchIndex: the search texts of the parameters, lower-cased once and kept, so that a
// search is a scan over prepared text instead of formatting every field of every row on
// each Enter. Entries are keyed by attribute and survive tree selections; the texts that
// depend on the language are made again after a language change, everything after an
// attribute or access level change.
//
// Texts that many parameters share (limits and factory values, the modify texts, the
// option names of a value info) are held once and looked at once per search: a parameter
// keeps only numbers that point at them. That keeps the first search over a large base
// cheap, since formatting a number is the dearest step and most parameters repeat a few
// limits.
#pragma once

#include "module/host/HostFwd.h"

#include <afx/afx.h>

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

class CSearchIndex {
public:
    // Starts a search for `lowerText` (already lower-cased, not empty) over `baseSize`
    // parameters: what was learnt about the shared texts for the former search goes.
    void BeginSearch(const std::string& lowerText, size_t baseSize);
    // Whether the parameter of `attr` holds the text of the present search in one of its
    // fields: code, name, unit, minimum, maximum, modify text, address, and with `firstPage`
    // also the factory value and the option names. Names count both as stored and as shown
    // in the present language.
    bool Matches(IVarAttr* attr, bool firstPage);
    // The entry of `attr` made ready, with the texts of the present language, so that a
    // later search finds it prepared.
    void Prepare(IVarAttr* attr, bool firstPage);

    // Called before a search: drops what the access level or language made stale.
    void Validate(int accessLevel);
    // Forgets everything; for changed attributes.
    void Drop();
    int GetCount() const { return int(m_entries.size()); }

private:
    // A shared text and what the present search found in it: -1 not looked at yet.
    struct Shared {
        std::string text;
        int8_t holds = -1;
    };
    struct Entry {
        std::string own; // code, name, unit and address, each ended by '\0'
        uint32_t minText = 0, maxText = 0, factoryText = 0;
        IValueInfo* info = nullptr;
        int modifyMode = -1;
        std::string shownName;
        unsigned language = 0;
    };
    // The option names of one value info; many parameters share one.
    struct Options {
        Shared stored;
        Shared shown;
        unsigned language = 0;
        unsigned search = 0;
    };

    Entry& EntryOf(IVarAttr* attr);
    // The texts of `entry` as shown in the present language.
    void Localize(Entry& entry, IVarAttr* attr, bool firstPage);
    void Build(Entry& entry, IVarAttr* attr);
    uint32_t ValueText(IHostVarUtil* util, const Variant& value, int decimals);
    bool Holds(Shared& shared);
    Options& OptionsOf(IValueInfo* info);
    // A text as shown in the present language, lower-cased; remembered per language.
    const std::string& Shown(const CString& text);

    std::unordered_map<IVarAttr*, Entry> m_entries;
    std::unordered_map<IValueInfo*, Options> m_options;
    std::unordered_map<std::string, std::string> m_shownTexts;
    // A number as FormatVariant takes it: tag, decimals and the bits of the payload.
    struct NumberKey {
        uint64_t bits;
        uint32_t tag;
        int32_t decimals;
        bool operator==(const NumberKey& o) const {
            return bits == o.bits && tag == o.tag && decimals == o.decimals;
        }
    };
    struct NumberHash {
        size_t operator()(const NumberKey& k) const {
            return std::hash<uint64_t>()(k.bits ^ (uint64_t(k.tag) << 48) ^
                                         (uint64_t(uint32_t(k.decimals)) << 32));
        }
    };

    // The value texts, each once; found by number, and by text for anything else.
    std::vector<Shared> m_values;
    std::unordered_map<NumberKey, uint32_t, NumberHash> m_numberIds;
    std::unordered_map<std::string, uint32_t> m_textIds;
    // The modify texts of the modes 0 to 2, stored and as shown.
    Shared m_modify[3];
    Shared m_modifyShown[3];
    std::string m_needle;
    IHostVarUtil* m_util = nullptr;
    unsigned m_search = 0;
    CString m_languageProbe;
    unsigned m_language = 1;
    int m_accessLevel = -1;
};

// Lower-cases `text` as CString::MakeLower does, without the detour through a wide string
// for the characters that have no case (the CJK ranges, Latin-1 signs).
std::string SearchLower(const CString& text);
