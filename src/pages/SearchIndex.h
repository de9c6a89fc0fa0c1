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
//
// A search on a cold base fetches a parameter's fields only as far as its answer needs
// them, in the order they are compared: a text found in the code never asks the host for
// name, unit or limits. The texts stand in one buffer, the entries in one array behind an
// open-addressed table, so that preparing 20 000 parameters allocates a handful of times.
#pragma once

#include "module/host/HostFwd.h"

#include <afx/afx.h>

#include <cstdint>
#include <string>
#include <string_view>
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
    // `row` is the place of the parameter in the search base: the same base is searched
    // again and again, and the index remembers which entry stood at each place.
    bool Matches(size_t row, IVarAttr* attr, bool firstPage);
    // The entry of `attr` made ready in full, with the texts of the present language, so
    // that a later search finds it prepared.
    void Prepare(size_t row, IVarAttr* attr, bool firstPage);

    // Called before a search: drops what the access level or language made stale.
    void Validate(int accessLevel);
    // Forgets everything; for changed attributes.
    void Drop();
    // The parameters whose texts are all prepared.
    int GetCount() const { return m_complete; }

private:
    // A shared text and what the present search found in it: -1 not looked at yet.
    struct Shared {
        std::string text;
        int8_t holds = -1;
    };
    // A piece of m_text (stored texts) or m_shownText (texts of the present language).
    struct Span {
        uint32_t at = 0;
        uint32_t size = 0;
    };
    // The fields of an entry, fetched in the order a search compares them.
    enum Stage : uint8_t {
        STAGE_NONE,
        STAGE_CODE,   // code
        STAGE_NAME,   // code, name, unit and address in one piece
        STAGE_LIMITS, // minimum, maximum, modify mode
        STAGE_ALL,    // factory value, value info
    };
    struct Entry {
        IVarAttr* attr = nullptr;
        // The stored texts that a search looks at in one go, each ended by '\0': a search
        // text never holds one, so no match can run from one field into the next.
        Span own;
        Span rawName, shownName;
        uint32_t minText = 0, maxText = 0, factoryText = 0;
        IValueInfo* info = nullptr;
        unsigned language = 0;
        int8_t modifyMode = -1;
        uint8_t stage = STAGE_NONE;
    };
    // The option names of one value info; many parameters share one.
    struct Options {
        Shared stored;
        Shared shown;
        unsigned language = 0;
        unsigned search = 0;
    };

    Entry& EntryOf(size_t row, IVarAttr* attr);
    Entry& FindOrAdd(IVarAttr* attr);
    // Fetches the fields of `entry` up to `stage`.
    void BuildTo(Entry& entry, uint8_t stage);
    // The texts of `entry` as shown in the present language.
    void Localize(Entry& entry, bool firstPage);
    uint32_t ValueText(const Variant& value, int decimals);
    uint32_t ValueTextId(const Variant& value, int decimals);
    bool Holds(Shared& shared);
    bool Holds(const std::string& texts, const Span& span) const {
        return std::string_view(texts.data() + span.at, span.size).find(m_needle) !=
               std::string_view::npos;
    }
    Options& OptionsOf(IValueInfo* info);
    // A text as shown in the present language, lower-cased; remembered per language.
    const std::string& Shown(const CString& text);
    // Appends `text` lower-cased to m_text.
    Span AppendLower(const CString& text);
    bool IsStoredLanguage() const { return m_languageProbe == "任意修改"; }

    // Entries in the order they were met, found by attribute through an open-addressed
    // table of indexes (UINT32_MAX for a free slot).
    std::vector<Entry> m_entries;
    std::vector<uint32_t> m_slots;
    // The entry last found at each place of the base; checked before it is used.
    std::vector<uint32_t> m_rowEntries;
    std::string m_text;
    std::string m_shownText;
    int m_complete = 0;

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
    // The last numbers looked up: neighbouring parameters mostly share their limits.
    NumberKey m_recentKey[2] = {{0, 0xFFFFFFFFu, 0}, {0, 0xFFFFFFFFu, 0}};
    uint32_t m_recentId[2] = {0, 0};
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
