#include "Loader.h"

#include <algorithm>
#include <cmath>

namespace zorhost::device {

namespace {

// "H02-41" -> group 0x02, index 41; the group is hexadecimal, the index decimal.
bool AddressFromCode(std::string_view code, std::uint32_t& address) {
    std::size_t dash = code.find('-');
    if (code.size() < 4 || code[0] != 'H' || dash == std::string_view::npos || dash < 2 ||
        dash > 3 || code.size() - dash - 1 < 2 || code.size() - dash - 1 > 3)
        return false;
    std::uint32_t group = 0;
    for (std::size_t i = 1; i < dash; ++i) {
        char c = code[i];
        int v = c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
        if (v < 0)
            return false;
        group = group * 16 + std::uint32_t(v);
    }
    std::uint32_t index = 0;
    for (std::size_t i = dash + 1; i < code.size(); ++i) {
        if (code[i] < '0' || code[i] > '9')
            return false;
        index = index * 10 + std::uint32_t(code[i] - '0');
    }
    if (index > 255)
        return false;
    address = group * 256 + index;
    return true;
}

} // namespace

void Loader::LoadProduct(const Object& o) {
    const std::string place = "product";
    Keys(o, place,
         {"name", "nameEn", "subName", "lineId", "productId", "subProductId", "electronicLabel",
          "primaryElectronicLabel", "version", "kind", "accessModel", "axisCopyCount",
          "wordOrder"});
    ProductInfo& p = d_.product;
    p.name = OneLineText(o, "name", place, true);
    p.nameEn = OneLineText(o, "nameEn", place);
    p.lineId = std::uint32_t(Integer(o, "lineId", place, 0, 0, 0xFFFF, true));
    p.productId = std::uint32_t(Integer(o, "productId", place, 0, 0, 0xFFFF, true));
    p.subProductId = std::uint32_t(Integer(o, "subProductId", place, 0, 0, 0xFFFF));
    p.versionText = Text(o, "version", place);

    p.electronicLabel = Label(o, "electronicLabel", place, true);
    p.primaryElectronicLabel = Label(o, "primaryElectronicLabel", place, false);
    p.subName = OneLineText(o, "subName", place);

    const std::string kind(String(o, "kind", place, true));
    if (kind == "servo")
        p.kind = ProductKind::Servo;
    else if (kind == "multiAxisServo")
        p.kind = ProductKind::MultiAxisServo;
    else if (kind == "inverter")
        p.kind = ProductKind::Inverter;
    else
        Refuse(place + ".kind", "unknown product kind \"" + kind + "\"");
    p.accessModel = AccessModel(Integer(o, "accessModel", place, 0, 0, 2, true));
    p.axisCopyCount = std::uint8_t(Integer(o, "axisCopyCount", place, 0, 0, 16));
    if (o.Contains("wordOrder")) {
        const std::string order(String(o, "wordOrder", place, true));
        if (order == "lowFirst")
            p.wordOrder = WordOrder::LowFirst;
        else if (order == "highFirst")
            p.wordOrder = WordOrder::HighFirst;
        else
            Refuse(place + ".wordOrder", "unknown word order \"" + order + "\"");
    }
}

ParameterDef Loader::LoadParameter(const Object& o, const std::string& arrayPlace,
                                   PendingLinks& links) {
    const std::string code(OneLine(o, "code", arrayPlace, true));
    if (code.empty())
        Refuse(arrayPlace + ".code", "empty code");
    const std::string place = arrayPlace + " \"" + code + "\"";
    Keys(o, place,
         {"code",     "name",          "nameEn",      "unit",   "address",       "type",
          "decimals", "factory",       "min",         "max",    "minLink",       "maxLink",
          "modify",   "effect",        "display",     "access", "hiddenForUser", "transferable",
          "fixed",    "changeTracked", "perUnitBase", "info",   "infoEn",        "values"});
    ParameterDef p;
    p.code = Intern(code);
    p.name = OneLineText(o, "name", place, true);
    p.nameEn = OneLineText(o, "nameEn", place);
    p.unit = OneLineText(o, "unit", place);
    links.info = Text(o, "info", place);
    links.infoEn = Text(o, "infoEn", place);

    const std::string_view type = String(o, "type", place, true);
    p.dataType = TypeFromName(type);
    if (p.dataType == DataType::Unknown)
        Refuse(place + ".type", "unknown type \"" + std::string(type) + "\"");
    // No register layout carries a text, so the drive link could neither read nor write it.
    if (p.dataType == DataType::String)
        Refuse(place + ".type", "type \"string\" can't be read or written over the drive link");

    std::uint32_t derived = 0;
    bool hasDerived = AddressFromCode(code, derived);
    if (o.Contains("address")) {
        double a = Number(o, "address", place, 0);
        if (a < 0 || a > 0xFFFF || a != std::floor(a))
            Refuse(place + ".address", "address outside 0x0000 to 0xFFFF");
        p.address = std::uint32_t(a);
        if (hasDerived && p.address != derived)
            Refuse(place + ".address", "address " + Hex(p.address) + " disagrees with code " +
                                           code + " (" + Hex(derived) + ")");
    } else if (hasDerived) {
        p.address = derived;
    } else {
        Refuse(place, "no address, and the code is not of the form Hgg-ii");
    }

    p.decimals = std::int8_t(Integer(o, "decimals", place, 0, -1, 9));
    p.modifyMode = ModifyMode(Integer(o, "modify", place, 0, 0, 3));
    p.effectMode = EffectMode(Integer(o, "effect", place, 1, 1, 3));
    p.displayFormat = DisplayFormat(Integer(o, "display", place, 0, 0, 4));
    p.accessLevel = std::uint8_t(Integer(o, "access", place, 0, 0, 3));
    p.perUnitBaseId = std::uint16_t(Integer(o, "perUnitBase", place, 0, 0, 0xFFFF));
    p.flags = 0;
    if (Flag(o, "hiddenForUser", place, false))
        p.flags |= kHiddenForUser;
    if (Flag(o, "transferable", place, true))
        p.flags |= kTransferable;
    if (Flag(o, "fixed", place, false))
        p.flags |= kFixed;
    if (Flag(o, "changeTracked", place, true))
        p.flags |= kChangeTracked;

    LoadLimits(o, place, p, links);

    Value values = o.Find("values");
    if (values.IsString()) {
        auto it = valueInfoIds_.find(values.Text());
        if (it == valueInfoIds_.end())
            Refuse(place + ".values", "no value info named \"" + std::string(values.Text()) + "\"");
        p.valueInfo = it->second;
    } else if (!values.IsUndefined()) {
        p.valueInfo = LoadValueInfo(ObjectOf(values, place + ".values"), place + ".values");
    }
    CheckValueInfo(p, place);
    return p;
}

void Loader::LoadLimits(const Object& o, const std::string& place, ParameterDef& p,
                        PendingLinks& links) {
    double lo, hi;
    TypeRange(p.dataType, lo, hi);
    bool numeric = p.dataType != DataType::String;
    p.minValue = Number(o, "min", place, numeric ? lo : 0);
    p.maxValue = Number(o, "max", place, numeric ? hi : 0);
    p.factoryValue = Number(o, "factory", place, 0);
    links.minLink = String(o, "minLink", place);
    links.maxLink = String(o, "maxLink", place);
    if (!links.minLink.empty() && o.Contains("min"))
        Refuse(place, "both min and minLink given");
    if (!links.maxLink.empty() && o.Contains("max"))
        Refuse(place, "both max and maxLink given");
    if (!numeric)
        return;
    auto fits = [&](double v, const char* what) {
        if (v < lo || v > hi || (IsIntegerType(p.dataType) && v != std::floor(v)))
            Refuse(place + "." + what,
                   std::string(what) + " does not fit type " + DataTypeName(p.dataType));
    };
    fits(p.factoryValue, "factory");
    fits(p.minValue, "min");
    fits(p.maxValue, "max");
    if (links.minLink.empty() && links.maxLink.empty() && p.minValue > p.maxValue)
        Refuse(place, "min is above max");
    if (links.minLink.empty() && p.factoryValue < p.minValue)
        Refuse(place + ".factory", "factory value below min");
    if (links.maxLink.empty() && p.factoryValue > p.maxValue)
        Refuse(place + ".factory", "factory value above max");
}

std::uint32_t Loader::ResolveCode(std::string_view code, int scope) const {
    std::uint32_t index = d_.FindByCode(code, scope);
    if (index == kNoIndex && scope != kCommonScope)
        index = d_.FindByCode(code, kCommonScope);
    return index;
}

void Loader::LoadParameters(const Object& root) {
    Array common = ArrayOf(root, "parameters", "", true);
    Array perAxis = ArrayOf(root, "axisParameters", "");
    Array axes = ArrayOf(root, "axes", "");
    if (!perAxis.IsEmpty() && axes.IsEmpty())
        Refuse("axisParameters", "axis parameters without axes");

    const std::size_t total = common.Size() + std::size_t(perAxis.Size()) * axes.Size();
    d_.parameters.reserve(total);
    origins_.reserve(total);
    links_.reserve(total);
    for (std::uint32_t i = 0; i < common.Size(); ++i) {
        std::string place = "parameters[" + std::to_string(i) + "]";
        PendingLinks l;
        d_.parameters.push_back(LoadParameter(ObjectOf(common[i], place), place, l));
        origins_.push_back({place + " \"" + std::string(d_.Code(d_.parameters.back())) + "\""});
        links_.push_back(std::move(l));
    }

    // Axis parameters are written once and laid out again at each axis's address base.
    std::vector<ParameterDef> pattern;
    std::vector<PendingLinks> patternLinks;
    std::vector<std::string> patternPlaces;
    for (std::uint32_t i = 0; i < perAxis.Size(); ++i) {
        std::string place = "axisParameters[" + std::to_string(i) + "]";
        PendingLinks l;
        pattern.push_back(LoadParameter(ObjectOf(perAxis[i], place), place, l));
        patternPlaces.push_back(place + " \"" + std::string(d_.Code(pattern.back())) + "\"");
        patternLinks.push_back(std::move(l));
    }
    for (std::uint32_t a = 0; a < axes.Size(); ++a) {
        std::string place = "axes[" + std::to_string(a) + "]";
        LoadAxis(ObjectOf(axes[a], place), place, a, pattern, patternLinks, patternPlaces);
    }
    if (d_.axes.size() > 64)
        Refuse("axes", "more than 64 axes");
    for (std::uint32_t i = 0; i < links_.size(); ++i) {
        if (!links_[i].info.empty() || !links_[i].infoEn.empty())
            d_.parameterInfos.push_back({i, links_[i].info, links_[i].infoEn});
    }
    d_.parameterInfos.shrink_to_fit();
}

void Loader::LoadAxis(const Object& ax, const std::string& place, std::uint32_t a,
                      const std::vector<ParameterDef>& pattern,
                      const std::vector<PendingLinks>& patternLinks,
                      const std::vector<std::string>& patternPlaces) {
    Keys(ax, place, {"name", "nameEn", "key", "addressBase", "groups", "categories"});
    AxisDef axis;
    axis.name = OneLineText(ax, "name", place, true);
    axis.nameEn = OneLineText(ax, "nameEn", place);
    axis.key = OneLineText(ax, "key", place, true);
    axis.addressBase = std::uint32_t(Integer(ax, "addressBase", place, 0, 0, 0xFFFF, true));
    axis.firstParameter = std::uint32_t(d_.parameters.size());
    axis.parameterCount = std::uint32_t(pattern.size());
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        ParameterDef p = pattern[i];
        p.address += axis.addressBase;
        p.axis = std::int8_t(a);
        if (p.address > 0xFFFF)
            Refuse(patternPlaces[i], "address beyond 0xFFFF on " + place);
        d_.parameters.push_back(p);
        origins_.push_back({patternPlaces[i], int(a)});
        links_.push_back(patternLinks[i]);
    }
    for (const AxisDef& seen : d_.axes) {
        if (d_.Text(seen.key) == d_.Text(axis.key))
            Refuse(place + ".key", "axis key used twice");
    }
    d_.axes.push_back(std::move(axis));
}

void Loader::BuildIndexes() {
    const auto n = std::uint32_t(d_.parameters.size());
    d_.addressIndex.resize(n);
    d_.codeIndex.resize(n);
    for (std::uint32_t i = 0; i < n; ++i)
        d_.addressIndex[i] = d_.codeIndex[i] = i;
    // Codes first: a repeated code also repeats its derived address, and says more.
    auto key = [&](std::uint32_t i) {
        return std::make_pair(int(d_.parameters[i].axis), d_.Code(d_.parameters[i]));
    };
    std::stable_sort(d_.codeIndex.begin(), d_.codeIndex.end(),
                     [&](std::uint32_t x, std::uint32_t y) { return key(x) < key(y); });
    for (std::size_t i = 1; i < d_.codeIndex.size(); ++i) {
        if (key(d_.codeIndex[i]) == key(d_.codeIndex[i - 1]))
            Refuse(origins_[d_.codeIndex[i]].Where(),
                   "duplicate code, also used by " + origins_[d_.codeIndex[i - 1]].Where());
    }
    auto address = [&](std::uint32_t i) { return d_.parameters[i].address; };
    std::stable_sort(d_.addressIndex.begin(), d_.addressIndex.end(),
                     [&](std::uint32_t x, std::uint32_t y) { return address(x) < address(y); });
    for (std::size_t i = 1; i < d_.addressIndex.size(); ++i) {
        if (address(d_.addressIndex[i]) == address(d_.addressIndex[i - 1]))
            Refuse(origins_[d_.addressIndex[i]].Where(),
                   "duplicate address " + Hex(address(d_.addressIndex[i])) + ", also used by " +
                       origins_[d_.addressIndex[i - 1]].Where());
    }
    // An index that lists the parameters as they stand says nothing.
    for (std::vector<std::uint32_t>* index : {&d_.addressIndex, &d_.codeIndex}) {
        bool identity = true;
        for (std::uint32_t i = 0; identity && i < n; ++i)
            identity = (*index)[i] == i;
        if (identity)
            std::vector<std::uint32_t>().swap(*index);
    }
}

void Loader::ResolveLinks() {
    for (std::size_t i = 0; i < d_.parameters.size(); ++i) {
        ParameterDef& p = d_.parameters[i];
        const PendingLinks& l = links_[i];
        auto resolve = [&](const std::string& code, const std::string& place) {
            std::uint32_t target = ResolveCode(code, p.axis);
            if (target == kNoIndex)
                Refuse(place, "names no parameter \"" + code + "\"");
            if (target == i)
                Refuse(place, "a limit cannot follow its own parameter");
            if (d_.parameters[target].dataType == DataType::String)
                Refuse(place, "linked parameter \"" + code + "\" holds no number");
            return target;
        };
        if (!l.minLink.empty())
            p.minLink = resolve(l.minLink, origins_[i].Where(".minLink"));
        if (!l.maxLink.empty())
            p.maxLink = resolve(l.maxLink, origins_[i].Where(".maxLink"));
    }
}

} // namespace zorhost::device
