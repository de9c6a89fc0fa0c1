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

// Code points without case that names and units hold; everything else goes through the
// full Unicode casing.
bool IsCaseless(unsigned cp) {
    return (cp >= 0xA0 && cp <= 0xBF) || cp == 0xD7 || cp == 0xF7 ||
           (cp >= 0x2000 && cp <= 0x206F) || (cp >= 0x3000 && cp <= 0x9FFF) ||
           (cp >= 0xFF01 && cp <= 0xFF20);
}

// Appends `text` lower-cased as CString::MakeLower does, without the detour through a
// wide string for the characters that have no case.
void AppendLower(std::string& out, const CString& text) {
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

// Each field ends with '\0': a search text never holds one, so no match can run from one
// field into the next.
void AppendField(std::string& joined, const CString& field) {
    AppendLower(joined, field);
    joined += '\0';
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
    AppendLower(lower, text);
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
        for (Shared& shown : m_modifyShown)
            shown.text.clear();
        ++m_language;
    }
}

void CSearchIndex::Drop() {
    m_entries.clear();
    m_options.clear();
    m_shownTexts.clear();
    m_values.clear();
    m_numberIds.clear();
    m_textIds.clear();
    for (Shared& shown : m_modifyShown)
        shown.text.clear();
    m_accessLevel = -1;
    // A fresh search number, so that nothing learnt before counts.
    ++m_search;
}

void CSearchIndex::BeginSearch(const std::string& lowerText, size_t baseSize) {
    m_needle = lowerText;
    m_util = theApp.GetVarUtil();
    if (m_entries.size() < baseSize)
        m_entries.reserve(baseSize);
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

uint32_t CSearchIndex::ValueText(IHostVarUtil* util, const Variant& value, int decimals) {
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
        auto found = m_numberIds.find(key);
        if (found != m_numberIds.end())
            return found->second;
    }
    std::string text = SearchLower(FormatValue(util, value, decimals));
    auto [at, added] = m_textIds.emplace(std::move(text), uint32_t(m_values.size()));
    if (added)
        m_values.push_back(Shared{at->first, -1});
    if (number)
        m_numberIds.emplace(key, at->second);
    return at->second;
}

void CSearchIndex::Build(Entry& entry, IVarAttr* attr) {
    IHostVarUtil* util = m_util != nullptr ? m_util : theApp.GetVarUtil();
    const int decimals = attr->GetDecimals();
    std::string& own = entry.own;
    own.reserve(64);
    CString field;
    attr->GetCode(field);
    AppendField(own, field);
    attr->GetName(field);
    AppendField(own, field);
    attr->GetUnit(field);
    AppendField(own, field);
    char address[16];
    const auto end = std::to_chars(address, address + sizeof address, int(attr->GetAddress()));
    own.append(address, size_t(end.ptr - address));
    own += '\0';
    entry.minText = ValueText(util, attr->GetMinValue(), decimals);
    entry.maxText = ValueText(util, attr->GetMaxValue(), decimals);
    entry.factoryText = ValueText(util, attr->GetFactoryValue(), decimals);
    entry.info = attr->GetValueInfo();
    entry.modifyMode = attr->GetModifyMode();
    if (entry.modifyMode >= 0 && entry.modifyMode <= 2 && m_modify[entry.modifyMode].text.empty())
        m_modify[entry.modifyMode].text = SearchLower(VarText::ModifyModeText(attr));
}

CSearchIndex::Entry& CSearchIndex::EntryOf(IVarAttr* attr) {
    auto [it, added] = m_entries.try_emplace(attr);
    if (added)
        Build(it->second, attr);
    return it->second;
}

void CSearchIndex::Prepare(IVarAttr* attr, bool firstPage) {
    if (m_util == nullptr)
        m_util = theApp.GetVarUtil();
    Entry& entry = EntryOf(attr);
    if (m_languageProbe != "任意修改")
        Localize(entry, attr, firstPage);
}

void CSearchIndex::Localize(Entry& entry, IVarAttr* attr, bool firstPage) {
    if (entry.language != m_language) {
        CString name;
        attr->GetName(name);
        entry.shownName = SearchLower(VarText::Translate(name));
        entry.language = m_language;
    }
    const int mode = entry.modifyMode;
    if (mode >= 0 && mode <= 2 && m_modifyShown[mode].text.empty())
        m_modifyShown[mode].text = Shown(VarText::ModifyModeText(attr));
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
        for (const CString& name : names)
            AppendField(options.stored.text, name);
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

bool CSearchIndex::Matches(IVarAttr* attr, bool firstPage) {
    Entry& entry = EntryOf(attr);
    const int mode = entry.modifyMode;
    const bool hasModify = mode >= 0 && mode <= 2;
    if (entry.own.find(m_needle) != std::string::npos || Holds(m_values[entry.minText]) ||
        Holds(m_values[entry.maxText]) || (hasModify && Holds(m_modify[mode])))
        return true;
    Options* options = entry.info != nullptr ? &OptionsOf(entry.info) : nullptr;
    if (firstPage &&
        (Holds(m_values[entry.factoryText]) || (options != nullptr && Holds(options->stored))))
        return true;
    // In the language the texts are stored in, the shown texts are the stored ones.
    if (m_languageProbe == "任意修改")
        return false;
    Localize(entry, attr, firstPage);
    if (entry.shownName.find(m_needle) != std::string::npos ||
        (hasModify && Holds(m_modifyShown[mode])))
        return true;
    return firstPage && options != nullptr && Holds(options->shown);
}
