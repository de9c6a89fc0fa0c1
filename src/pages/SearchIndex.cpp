#include "pages/SearchIndex.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IValueInfo.h"
#include "module/host/IValueInfoEntry.h"
#include "module/host/IValueInfoList.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "values/ValueText.h"

#include <charconv>
#include <cstring>
#include <vector>

namespace {

constexpr uint32_t kFreeSlot = UINT32_MAX;

size_t SlotOf(const void* key, size_t mask) {
    uint64_t x = reinterpret_cast<uintptr_t>(key);
    x ^= x >> 33;
    x *= 0xFF51AFD7ED558CCDull;
    x ^= x >> 33;
    return size_t(x) & mask;
}

// Code points without case that names and units hold; everything else goes through the
// full Unicode casing.
bool IsCaseless(unsigned cp) {
    return (cp >= 0xA0 && cp <= 0xBF) || cp == 0xD7 || cp == 0xF7 ||
           (cp >= 0x2000 && cp <= 0x206F) || (cp >= 0x3000 && cp <= 0x9FFF) ||
           (cp >= 0xFF01 && cp <= 0xFF20);
}

// Appends `text` lower-cased as CString::MakeLower does, without the detour through a
// wide string for the characters that have no case.
void LowerInto(std::string& out, const CString& text) {
    const std::string& bytes = text.str();
    const size_t start = out.size();
    for (size_t i = 0; i < bytes.size();) {
        const unsigned char c = static_cast<unsigned char>(bytes[i]);
        if (c < 0x80) {
            out += c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : char(c);
            ++i;
            continue;
        }
        const size_t n = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 1;
        unsigned cp = n == 1 ? c : c & (0x7Fu >> n);
        for (size_t k = 1; k < n && i + k < bytes.size(); ++k)
            cp = (cp << 6) | (static_cast<unsigned char>(bytes[i + k]) & 0x3Fu);
        if (n == 1 || !IsCaseless(cp)) {
            CString all = text;
            all.MakeLower();
            out.resize(start);
            out += all.str();
            return;
        }
        out.append(bytes, i, n);
        i += n;
    }
}

CString FormatValue(IHostVarUtil* util, const Variant& value, int decimals) {
    CString text;
    if (util != nullptr)
        util->FormatVariant(text, value, decimals, 0);
    return text;
}

// The option names of a value info, in the order of the list's kind.
void OptionNames(IValueInfo* info, std::vector<CString>& names) {
    auto text = [](IValueInfoEntry* entry) {
        CString t;
        if (entry != nullptr)
            entry->GetText(t);
        return t;
    };
    const int kind = info->GetKind();
    IValueInfoList* list = nullptr;
    switch (kind) {
    case VALUE_INFO_ENUM:
        list = info->GetEnumList();
        break;
    case VALUE_INFO_BITS:
        list = info->GetBitList();
        break;
    case VALUE_INFO_BIT_RANGES:
        list = info->GetBitRangeList();
        break;
    case VALUE_INFO_DIGITS:
        list = info->GetDigitList();
        break;
    default:
        return;
    }
    if (list == nullptr)
        return;
    for (int i = 0; i < list->GetCount(); ++i) {
        IValueInfoEntry* entry = list->GetAt(i);
        if (entry == nullptr)
            continue;
        names.push_back(text(entry));
        if (kind == 2 || kind == 3) {
            CString bit;
            bit.Format("%d", entry->GetBit());
            names.push_back(bit);
        } else if (kind == 4) {
            for (int o = 0; o < entry->GetOptionCount(); ++o)
                names.push_back(text(entry->GetOptionAt(o)));
        }
    }
}

} // namespace

std::string SearchLower(const CString& text) {
    std::string lower;
    lower.reserve(text.str().size());
    LowerInto(lower, text);
    return lower;
}

void CSearchIndex::Validate(int accessLevel) {
    if (accessLevel != m_accessLevel) {
        Drop();
        m_accessLevel = accessLevel;
    }
    // One known text through the translator tells whether the language moved.
    const CString probe = VarText::Translate("任意修改");
    if (probe != m_languageProbe) {
        m_languageProbe = probe;
        m_shownTexts.clear();
        m_shownText.clear();
        for (Shared& shown : m_modifyShown)
            shown.text.clear();
        ++m_language;
    }
}

void CSearchIndex::Drop() {
    m_entries.clear();
    m_rowEntries.clear();
    m_slots.assign(m_slots.size(), kFreeSlot);
    m_text.clear();
    m_shownText.clear();
    m_complete = 0;
    m_options.clear();
    m_shownTexts.clear();
    m_values.clear();
    m_numberIds.clear();
    m_textIds.clear();
    for (NumberKey& key : m_recentKey)
        key.tag = 0xFFFFFFFFu;
    for (Shared& shown : m_modifyShown)
        shown.text.clear();
    m_accessLevel = -1;
    // A fresh search number, so that nothing learnt before counts.
    ++m_search;
}

void CSearchIndex::BeginSearch(const std::string& lowerText, size_t baseSize) {
    m_needle = lowerText;
    m_util = theApp.GetVarUtil();
    if (m_entries.capacity() < baseSize) {
        m_entries.reserve(baseSize);
        // Room for about a code, a name and a unit each, so that the buffer rarely moves.
        m_text.reserve(baseSize * 48);
    }
    ++m_search;
    for (Shared& value : m_values)
        value.holds = -1;
    for (int mode = 0; mode < 3; ++mode) {
        m_modify[mode].holds = -1;
        m_modifyShown[mode].holds = -1;
    }
}

bool CSearchIndex::Holds(Shared& shared) {
    if (shared.holds < 0)
        shared.holds = !shared.text.empty() && shared.text.find(m_needle) != std::string::npos;
    return shared.holds != 0;
}

uint32_t CSearchIndex::ValueText(const Variant& value, int decimals) {
    // The payload that the tag makes meaningful; other tags are found by their text.
    NumberKey key{0, value.vt, decimals};
    bool number = true;
    switch (value.vt) {
    case VT_EMPTY:
    case VT_NULL:
        break;
    case VT_I2:
    case VT_BOOL:
        key.bits = uint64_t(int64_t(value.iVal));
        break;
    case VT_I4:
        key.bits = uint64_t(int64_t(value.lVal));
        break;
    case VT_UI4:
        key.bits = value.ulVal;
        break;
    case VT_I1:
        key.bits = uint64_t(int64_t(value.cVal));
        break;
    case VT_UI1:
        key.bits = value.bVal;
        break;
    case VT_UI2:
        key.bits = value.uiVal;
        break;
    case VT_R4: {
        uint32_t bits = 0;
        std::memcpy(&bits, &value.fltVal, sizeof bits);
        key.bits = bits;
        break;
    }
    case VT_R8:
    case VT_DATE:
        std::memcpy(&key.bits, &value.dblVal, sizeof key.bits);
        break;
    default:
        number = false;
    }
    if (number) {
        for (int i = 0; i < 2; ++i)
            if (m_recentKey[i] == key)
                return m_recentId[i];
        auto found = m_numberIds.find(key);
        uint32_t id = 0;
        if (found != m_numberIds.end()) {
            id = found->second;
        } else {
            id = ValueTextId(value, decimals);
            m_numberIds.emplace(key, id);
        }
        m_recentKey[1] = m_recentKey[0];
        m_recentId[1] = m_recentId[0];
        m_recentKey[0] = key;
        m_recentId[0] = id;
        return id;
    }
    return ValueTextId(value, decimals);
}

uint32_t CSearchIndex::ValueTextId(const Variant& value, int decimals) {
    IHostVarUtil* util = m_util != nullptr ? m_util : theApp.GetVarUtil();
    std::string text = SearchLower(FormatValue(util, value, decimals));
    auto found = m_textIds.find(text);
    if (found != m_textIds.end())
        return found->second;
    const uint32_t id = uint32_t(m_values.size());
    m_values.push_back(Shared{text, -1});
    m_textIds.emplace(std::move(text), id);
    return id;
}

CSearchIndex::Span CSearchIndex::AppendLower(const CString& text) {
    Span span{uint32_t(m_text.size()), 0};
    LowerInto(m_text, text);
    span.size = uint32_t(m_text.size() - span.at);
    return span;
}

void CSearchIndex::BuildTo(Entry& entry, uint8_t stage) {
    if (entry.stage >= stage)
        return;
    IVarAttr* attr = entry.attr;
    CString field;
    if (entry.stage < STAGE_CODE) {
        attr->GetCode(field);
        entry.own = AppendLower(field);
        m_text += '\0';
        ++entry.own.size;
        entry.stage = STAGE_CODE;
    }
    if (stage >= STAGE_NAME && entry.stage < STAGE_NAME) {
        // The code moves to the end when other texts came behind it meanwhile.
        if (entry.own.at + entry.own.size != m_text.size()) {
            const Span code = entry.own;
            entry.own.at = uint32_t(m_text.size());
            m_text.append(m_text, code.at, code.size);
        }
        CString name;
        attr->GetName(name);
        const Span lowerName = AppendLower(name);
        m_text += '\0';
        attr->GetUnit(field);
        AppendLower(field);
        m_text += '\0';
        char address[16];
        const auto end = std::to_chars(address, address + sizeof address, int(attr->GetAddress()));
        m_text.append(address, size_t(end.ptr - address));
        m_text += '\0';
        entry.own.size = uint32_t(m_text.size() - entry.own.at);
        // The translator knows a name as stored; keep that too where lower-casing changed it.
        entry.rawName = lowerName;
        if (std::string_view(m_text.data() + lowerName.at, lowerName.size) != name.str()) {
            entry.rawName.at = uint32_t(m_text.size());
            entry.rawName.size = uint32_t(name.str().size());
            m_text += name.str();
        }
        entry.stage = STAGE_NAME;
    }
    if (stage >= STAGE_LIMITS && entry.stage < STAGE_LIMITS) {
        const int decimals = attr->GetDecimals();
        entry.minText = ValueText(attr->GetMinValue(), decimals);
        entry.maxText = ValueText(attr->GetMaxValue(), decimals);
        const int mode = attr->GetModifyMode();
        entry.modifyMode = int8_t(mode >= 0 && mode <= 2 ? mode : -1);
        if (entry.modifyMode >= 0 && m_modify[mode].text.empty())
            m_modify[mode].text = SearchLower(VarText::ModifyModeText(attr));
        entry.stage = STAGE_LIMITS;
    }
    if (stage >= STAGE_ALL && entry.stage < STAGE_ALL) {
        entry.factoryText = ValueText(attr->GetFactoryValue(), attr->GetDecimals());
        entry.info = attr->GetValueInfo();
        entry.stage = STAGE_ALL;
        ++m_complete;
    }
}

CSearchIndex::Entry& CSearchIndex::EntryOf(size_t row, IVarAttr* attr) {
    if (row >= m_rowEntries.size())
        m_rowEntries.resize(row + 1, kFreeSlot);
    uint32_t& known = m_rowEntries[row];
    if (known < m_entries.size() && m_entries[known].attr == attr)
        return m_entries[known];
    Entry& entry = FindOrAdd(attr);
    known = uint32_t(&entry - m_entries.data());
    return entry;
}

CSearchIndex::Entry& CSearchIndex::FindOrAdd(IVarAttr* attr) {
    // At most half the slots taken, so that a probe ends soon.
    if ((m_entries.size() + 1) * 2 > m_slots.size()) {
        size_t size = 1024;
        while (size < (m_entries.size() + 1) * 3)
            size *= 2;
        m_slots.assign(size, kFreeSlot);
        for (uint32_t index = 0; index < m_entries.size(); ++index) {
            size_t i = SlotOf(m_entries[index].attr, size - 1);
            while (m_slots[i] != kFreeSlot)
                i = (i + 1) & (size - 1);
            m_slots[i] = index;
        }
    }
    const size_t mask = m_slots.size() - 1;
    for (size_t i = SlotOf(attr, mask);; i = (i + 1) & mask) {
        const uint32_t index = m_slots[i];
        if (index == kFreeSlot) {
            m_slots[i] = uint32_t(m_entries.size());
            m_entries.emplace_back().attr = attr;
            return m_entries.back();
        }
        if (m_entries[index].attr == attr)
            return m_entries[index];
    }
}

void CSearchIndex::Prepare(size_t row, IVarAttr* attr, bool firstPage) {
    if (m_util == nullptr)
        m_util = theApp.GetVarUtil();
    Entry& entry = EntryOf(row, attr);
    BuildTo(entry, STAGE_ALL);
    if (!IsStoredLanguage())
        Localize(entry, firstPage);
}

void CSearchIndex::Localize(Entry& entry, bool firstPage) {
    if (entry.language != m_language) {
        const CString name(std::string(m_text, entry.rawName.at, entry.rawName.size));
        entry.shownName.at = uint32_t(m_shownText.size());
        LowerInto(m_shownText, VarText::Translate(name));
        entry.shownName.size = uint32_t(m_shownText.size() - entry.shownName.at);
        entry.language = m_language;
    }
    const int mode = entry.modifyMode;
    if (mode >= 0 && m_modifyShown[mode].text.empty())
        m_modifyShown[mode].text = Shown(VarText::ModifyModeText(entry.attr));
    if (!firstPage || entry.info == nullptr)
        return;
    Options& options = OptionsOf(entry.info);
    if (options.language != m_language) {
        std::vector<CString> names;
        OptionNames(entry.info, names);
        options.shown.text.clear();
        for (const CString& name : names)
            options.shown.text += Shown(name) + '\0';
        options.language = m_language;
        options.shown.holds = -1;
    }
}

CSearchIndex::Options& CSearchIndex::OptionsOf(IValueInfo* info) {
    auto [it, added] = m_options.try_emplace(info);
    Options& options = it->second;
    if (added) {
        std::vector<CString> names;
        OptionNames(info, names);
        // Each name ends with '\0': a search text never holds one, so no match can run from
        // one name into the next.
        for (const CString& name : names) {
            LowerInto(options.stored.text, name);
            options.stored.text += '\0';
        }
    }
    if (options.search != m_search) {
        options.search = m_search;
        options.stored.holds = -1;
        options.shown.holds = -1;
    }
    return options;
}

const std::string& CSearchIndex::Shown(const CString& text) {
    auto found = m_shownTexts.find(text.str());
    if (found != m_shownTexts.end())
        return found->second;
    return m_shownTexts[text.str()] = SearchLower(VarText::Translate(text));
}

bool CSearchIndex::Matches(size_t row, IVarAttr* attr, bool firstPage) {
    Entry& entry = EntryOf(row, attr);
    // The fields in the order of the comparison, each fetched only when the former failed.
    BuildTo(entry, STAGE_CODE);
    if (Holds(m_text, entry.own))
        return true;
    if (entry.stage < STAGE_NAME) {
        BuildTo(entry, STAGE_NAME);
        if (Holds(m_text, entry.own))
            return true;
    }
    BuildTo(entry, STAGE_LIMITS);
    const int mode = entry.modifyMode;
    if (Holds(m_values[entry.minText]) || Holds(m_values[entry.maxText]) ||
        (mode >= 0 && Holds(m_modify[mode])))
        return true;
    if (firstPage) {
        BuildTo(entry, STAGE_ALL);
        if (Holds(m_values[entry.factoryText]) ||
            (entry.info != nullptr && Holds(OptionsOf(entry.info).stored)))
            return true;
    }
    // In the language the texts are stored in, the shown texts are the stored ones.
    if (IsStoredLanguage())
        return false;
    Localize(entry, firstPage);
    if (Holds(m_shownText, entry.shownName) || (mode >= 0 && Holds(m_modifyShown[mode])))
        return true;
    return firstPage && entry.info != nullptr && Holds(OptionsOf(entry.info).shown);
}
