#include "pages/SearchIndex.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IValueInfo.h"
#include "module/host/IValueInfoEntry.h"
#include "module/host/IValueInfoList.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "values/ValueText.h"

#include <vector>

namespace {

// Code points without case that names and units hold; everything else goes through the
// full Unicode casing.
bool IsCaseless(unsigned cp) {
    return (cp >= 0xA0 && cp <= 0xBF) || cp == 0xD7 || cp == 0xF7 ||
           (cp >= 0x2000 && cp <= 0x206F) || (cp >= 0x3000 && cp <= 0x9FFF) ||
           (cp >= 0xFF01 && cp <= 0xFF20);
}

// Each field ends with '\0': a search text never holds one, so no match can run from one
// field into the next.
void AppendField(std::string& joined, const CString& field) {
    joined += SearchLower(field);
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
    case 1:
        list = info->GetEnumList();
        break;
    case 2:
        list = info->GetBitList();
        break;
    case 3:
        list = info->GetBitRangeList();
        break;
    case 4:
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

bool Holds(const std::string& field, const std::string& text) {
    return !field.empty() && field.find(text) != std::string::npos;
}

} // namespace

std::string SearchLower(const CString& text) {
    const std::string bytes = text.GetString();
    std::string lower;
    lower.reserve(bytes.size());
    for (size_t i = 0; i < bytes.size();) {
        const unsigned char c = static_cast<unsigned char>(bytes[i]);
        if (c < 0x80) {
            lower += c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : char(c);
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
            return all.GetString();
        }
        lower.append(bytes, i, n);
        i += n;
    }
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
        ++m_language;
    }
}

void CSearchIndex::Drop() {
    m_entries.clear();
    m_options.clear();
    m_shownTexts.clear();
    m_accessLevel = -1;
}

void CSearchIndex::Build(Entry& entry, IVarAttr* attr) {
    IHostVarUtil* util = theApp.GetVarUtil();
    const int decimals = attr->GetDecimals();
    std::string& joined = entry.common;
    CString field;
    attr->GetCode(field);
    AppendField(joined, field);
    attr->GetName(field);
    AppendField(joined, field);
    attr->GetUnit(field);
    AppendField(joined, field);
    AppendField(joined, FormatValue(util, attr->GetMinValue(), decimals));
    AppendField(joined, FormatValue(util, attr->GetMaxValue(), decimals));
    AppendField(joined, VarText::ModifyModeText(attr));
    field.Format("%d", int(attr->GetAddress()));
    AppendField(joined, field);
    AppendField(entry.factory, FormatValue(util, attr->GetFactoryValue(), decimals));
    entry.info = attr->GetValueInfo();
    entry.modifyMode = attr->GetModifyMode();
}

CSearchIndex::Options& CSearchIndex::OptionsOf(IValueInfo* info) {
    auto found = m_options.find(info);
    if (found != m_options.end())
        return found->second;
    Options& options = m_options[info];
    std::vector<CString> names;
    OptionNames(info, names);
    for (const CString& name : names)
        AppendField(options.stored, name);
    return options;
}

const std::string& CSearchIndex::Shown(const CString& text) {
    auto found = m_shownTexts.find(text.GetString());
    if (found != m_shownTexts.end())
        return found->second;
    return m_shownTexts[text.GetString()] = SearchLower(VarText::Translate(text));
}

bool CSearchIndex::Matches(IVarAttr* attr, const std::string& lowerText, bool firstPage) {
    auto it = m_entries.find(attr);
    if (it == m_entries.end()) {
        it = m_entries.emplace(attr, Entry()).first;
        Build(it->second, attr);
    }
    Entry& entry = it->second;
    if (Holds(entry.common, lowerText))
        return true;
    Options* options = entry.info != nullptr ? &OptionsOf(entry.info) : nullptr;
    if (firstPage &&
        (Holds(entry.factory, lowerText) || (options && Holds(options->stored, lowerText))))
        return true;
    // In the language the texts are stored in, the shown texts are the stored ones.
    if (m_languageProbe == "任意修改")
        return false;
    if (entry.language != m_language) {
        CString name;
        attr->GetName(name);
        entry.shownName = SearchLower(VarText::Translate(name));
        entry.language = m_language;
    }
    if (Holds(entry.shownName, lowerText))
        return true;
    CString modify = VarText::ModifyModeText(attr);
    if (!modify.IsEmpty() && Holds(Shown(modify), lowerText))
        return true;
    if (!firstPage || options == nullptr)
        return false;
    if (options->language != m_language) {
        std::vector<CString> names;
        OptionNames(entry.info, names);
        options->shown.clear();
        for (const CString& name : names)
            options->shown += Shown(name) + '\0';
        options->language = m_language;
    }
    return Holds(options->shown, lowerText);
}
