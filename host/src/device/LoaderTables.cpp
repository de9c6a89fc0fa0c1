#include "Loader.h"

#include <algorithm>

namespace zorhost::device {

std::uint32_t Loader::LoadGroup(const Object& o, const std::string& arrayPlace, int scope) {
    const std::string name(String(o, "name", arrayPlace, true));
    if (name.empty())
        Refuse(arrayPlace + ".name", "empty group name");
    std::string place = arrayPlace + " \"" + name + "\"";
    Keys(o, place,
         {"name", "description", "descriptionEn", "access", "visible", "fixed", "members",
          "children"});
    GroupDef g;
    g.name = Intern(name);
    g.description = Text(o, "description", place);
    g.descriptionEn = Text(o, "descriptionEn", place);
    g.accessLevel = std::uint8_t(Integer(o, "access", place, 0, 0, 3));
    g.visible = Flag(o, "visible", place, true);
    g.fixed = Flag(o, "fixed", place, false);
    g.axis = std::int8_t(scope);
    LoadMembers(o, place, scope, g);

    Array children = ArrayOf(o, "children", place);
    std::vector<std::uint32_t> kids;
    for (std::uint32_t i = 0; i < children.Size(); ++i) {
        std::string at = place + ".children[" + std::to_string(i) + "]";
        kids.push_back(LoadGroup(ObjectOf(children[i], at), at, scope));
    }
    g.children = std::move(kids);
    d_.groups.push_back(std::move(g));
    return std::uint32_t(d_.groups.size() - 1);
}

void Loader::LoadMembers(const Object& o, const std::string& place, int scope, GroupDef& g) {
    Value members = o.Find("members");
    if (members.IsString() && members.Text() == "*") {
        // Every parameter of the scope whose code begins with the group's name and a dash.
        // The code index is sorted by scope and code, so the matches are one run of it.
        const std::string prefix = std::string(d_.Text(g.name)) + "-";
        const std::size_t n = d_.parameters.size();
        std::size_t lo = 0, hi = n;
        while (lo < hi) {
            const std::size_t mid = lo + (hi - lo) / 2;
            const ParameterDef& def = d_.parameters[d_.ByCode(mid)];
            if (def.axis != scope ? def.axis < scope : d_.Code(def) < prefix)
                lo = mid + 1;
            else
                hi = mid;
        }
        for (; lo < n; ++lo) {
            const ParameterDef& def = d_.parameters[d_.ByCode(lo)];
            if (def.axis != scope || !d_.Code(def).starts_with(prefix))
                break;
            g.members.push_back(d_.ByCode(lo));
        }
        std::sort(g.members.begin(), g.members.end()); // file order
        if (g.members.empty())
            Refuse(place + ".members", "\"*\" matches no parameter");
    } else if (!members.IsUndefined()) {
        Array a = ArrayOf(o, "members", place);
        for (std::uint32_t i = 0; i < a.Size(); ++i) {
            std::string at = place + ".members[" + std::to_string(i) + "]";
            if (!a[i].IsString())
                Refuse(at, "expected a parameter code");
            const std::string_view code = a[i].Text();
            std::uint32_t index = ResolveCode(code, scope);
            if (index == kNoIndex)
                Refuse(at, "names no parameter \"" + std::string(code) + "\"");
            if (std::find(g.members.begin(), g.members.end(), index) != g.members.end())
                Refuse(at, "\"" + std::string(code) + "\" listed twice");
            g.members.push_back(index);
        }
    }
}

void Loader::LoadGroupSet(const Array& groups, const std::string& groupsPlace,
                          const Array& categories, const std::string& categoriesPlace, int scope,
                          GroupSet& set) {
    std::size_t firstGroup = d_.groups.size();
    for (std::uint32_t i = 0; i < groups.Size(); ++i) {
        std::string at = groupsPlace + "[" + std::to_string(i) + "]";
        set.roots.push_back(LoadGroup(ObjectOf(groups[i], at), at, scope));
    }
    // Names are the keys of custom groups and categories, so one set holds each name once.
    for (std::size_t i = firstGroup; i < d_.groups.size(); ++i) {
        for (std::size_t j = firstGroup; j < i; ++j) {
            if (d_.Text(d_.groups[i].name) == d_.Text(d_.groups[j].name))
                Refuse(groupsPlace,
                       "group name \"" + std::string(d_.Text(d_.groups[i].name)) + "\" used twice");
        }
    }
    for (std::uint32_t i = 0; i < categories.Size(); ++i) {
        std::string at = categoriesPlace + "[" + std::to_string(i) + "]";
        Object o = ObjectOf(categories[i], at);
        Keys(o, at, {"name", "description", "descriptionEn", "groups"});
        CategoryDef c;
        c.name = Text(o, "name", at, true);
        c.description = Text(o, "description", at);
        c.descriptionEn = Text(o, "descriptionEn", at);
        Array names = ArrayOf(o, "groups", at, true);
        for (std::uint32_t k = 0; k < names.Size(); ++k) {
            std::string gat = at + ".groups[" + std::to_string(k) + "]";
            if (!names[k].IsString())
                Refuse(gat, "expected a group name");
            const std::string_view name = names[k].Text();
            auto it = std::find_if(set.roots.begin(), set.roots.end(), [&](std::uint32_t g) {
                return d_.Text(d_.groups[g].name) == name;
            });
            if (it == set.roots.end())
                Refuse(gat, "names no group \"" + std::string(name) + "\" of its set");
            c.groups.push_back(*it);
        }
        set.categories.push_back(std::move(c));
    }
}

void Loader::LoadNamed(const Array& a, const std::string& place, std::vector<NamedVariable>& out) {
    for (std::uint32_t i = 0; i < a.Size(); ++i) {
        std::string at = place + "[" + std::to_string(i) + "]";
        Object o = ObjectOf(a[i], at);
        Keys(o, at, {"name", "code", "address", "type"});
        NamedVariable v;
        const std::string name(String(o, "name", at, true));
        v.name = Intern(name);
        at += " \"" + name + "\"";
        for (const NamedVariable& seen : out) {
            if (d_.Text(seen.name) == name)
                Refuse(at, "name used twice");
        }
        const std::string code(String(o, "code", at));
        if (!code.empty()) {
            if (o.Contains("address") || o.Contains("type"))
                Refuse(at, "give either a code or an address with a type");
            v.parameter = ResolveCode(code, kCommonScope);
            if (v.parameter == kNoIndex && !d_.axes.empty())
                v.parameter = d_.FindByCode(code, 0);
            if (v.parameter == kNoIndex)
                Refuse(at + ".code", "names no parameter \"" + code + "\"");
            v.address = d_.parameters[v.parameter].address;
            v.dataType = d_.parameters[v.parameter].dataType;
        } else {
            v.address = std::uint32_t(Integer(o, "address", at, 0, 0, 0xFFFF, true));
            const std::string_view type = String(o, "type", at, true);
            v.dataType = TypeFromName(type);
            if (v.dataType == DataType::Unknown)
                Refuse(at + ".type", "unknown type \"" + std::string(type) + "\"");
            v.parameter = d_.FindByAddress(v.address);
        }
        out.push_back(v);
    }
}

void Loader::LoadConnectors(const Array& a) {
    for (std::uint32_t i = 0; i < a.Size(); ++i) {
        std::string at = "connectors[" + std::to_string(i) + "]";
        Object o = ObjectOf(a[i], at);
        Keys(o, at, {"kind", "name", "group", "base"});
        ConnectorGroupDef c;
        const std::string kind(String(o, "kind", at, true));
        if (kind == "B")
            c.kind = ConnectorKind::B;
        else if (kind == "K")
            c.kind = ConnectorKind::K;
        else if (kind == "F")
            c.kind = ConnectorKind::F;
        else
            Refuse(at + ".kind", "unknown connector kind \"" + kind + "\" (B, K or F)");
        c.name = Text(o, "name", at, true);
        const std::string_view group = String(o, "group", at, true);
        c.groupKey = Intern(group);
        c.group = d_.FindGroup(group, kCommonScope);
        if (c.group == kNoIndex)
            Refuse(at + ".group", "names no group \"" + std::string(group) + "\"");
        c.base = std::uint32_t(Integer(o, "base", at, 0, 0, 0x7FFFFFFF, true));
        for (const ConnectorGroupDef& seen : d_.connectors) {
            if (c.base < seen.base + 100 && seen.base < c.base + 100)
                Refuse(at + ".base", "values overlap those of connector group \"" +
                                         std::string(d_.Text(seen.name)) + "\"");
        }
        // The value of a connector is base + address % 100, so that must tell members apart.
        std::vector<bool> used(100, false);
        for (std::uint32_t m : d_.groups[c.group].members) {
            std::uint32_t slot = d_.parameters[m].address % 100;
            if (used[slot])
                Refuse(at + ".group",
                       "two members share the connector value " + std::to_string(c.base + slot));
            used[slot] = true;
        }
        d_.connectors.push_back(c);
    }
}

void Loader::LoadPerUnit(const Array& a) {
    for (std::uint32_t i = 0; i < a.Size(); ++i) {
        std::string at = "perUnitBases[" + std::to_string(i) + "]";
        Object o = ObjectOf(a[i], at);
        Keys(o, at, {"id", "bases"});
        PerUnitTable t;
        t.id = std::uint16_t(Integer(o, "id", at, 0, 1, 0xFFFF, true));
        if (d_.FindPerUnitTable(t.id))
            Refuse(at + ".id", "id used twice");
        Array bases = ArrayOf(o, "bases", at, true);
        for (std::uint32_t k = 0; k < bases.Size(); ++k) {
            std::string bat = at + ".bases[" + std::to_string(k) + "]";
            Object b = ObjectOf(bases[k], bat);
            Keys(b, bat, {"name", "nameEn", "code"});
            PerUnitBase base;
            base.name = Text(b, "name", bat, true);
            base.nameEn = Text(b, "nameEn", bat);
            const std::string code(String(b, "code", bat, true));
            base.parameter = ResolveCode(code, kCommonScope);
            if (base.parameter == kNoIndex && !d_.axes.empty())
                base.parameter = d_.FindByCode(code, 0);
            if (base.parameter == kNoIndex)
                Refuse(bat + ".code", "names no parameter \"" + code + "\"");
            base.address = d_.parameters[base.parameter].address;
            t.bases.push_back(base);
        }
        if (t.bases.empty())
            Refuse(at + ".bases", "empty list");
        d_.perUnitTables.push_back(std::move(t));
    }
}

void Loader::CheckTables() {
    // The drop-down of a connector parameter ends in the name of its kind.
    static const std::pair<const char*, ConnectorKind> kConnectorNames[] = {
        {"B连接器", ConnectorKind::B},
        {"K连接器", ConnectorKind::K},
        {"F连接器", ConnectorKind::F},
        {"KF连接器", ConnectorKind::KF},
        {"BKF连接器", ConnectorKind::BKF}};
    for (std::size_t i = 0; i < d_.parameters.size(); ++i) {
        const ParameterDef& p = d_.parameters[i];
        if (p.perUnitBaseId != 0 && !d_.FindPerUnitTable(p.perUnitBaseId))
            Refuse(origins_[i].Where(".perUnitBase"),
                   "no per-unit table " + std::to_string(p.perUnitBaseId));
        if (p.perUnitBaseId != 0 && p.displayFormat != DisplayFormat::PerUnit)
            Refuse(origins_[i].Where(".perUnitBase"), "a per-unit base needs display 2");
        const ValueInfo* info = d_.ValueInfoOf(p);
        if (!info || info->kind != ValueInfoKind::Enumeration)
            continue;
        std::string_view last = d_.Text(info->enumeration.back().text);
        for (const auto& [name, kind] : kConnectorNames) {
            if (last != name)
                continue;
            bool served = false;
            for (const ConnectorGroupDef& c : d_.connectors) {
                served = served || (kind == ConnectorKind::BKF) ||
                         (kind == ConnectorKind::KF &&
                          (c.kind == ConnectorKind::K || c.kind == ConnectorKind::F)) ||
                         c.kind == kind;
            }
            if (!served)
                Refuse(origins_[i].Where(".values"),
                       std::string("connector parameter of kind \"") + name +
                           "\" without a connector group of that kind");
        }
    }
}

void Loader::Load(const Object& root) {
    Keys(root, "top level",
         {"format", "product", "valueInfos", "parameters", "axisParameters", "groups", "categories",
          "axisGroups", "axes", "namedVariables", "functions", "connectors", "perUnitBases"});
    if (Integer(root, "format", "top level", 0, 0, 1000, true) != 1)
        Refuse("format", "unsupported format version");
    LoadProduct(ObjectOf(Need(root, "product", "top level"), "product"));
    LoadValueInfos(root);

    LoadParameters(root);
    BuildIndexes();
    ResolveLinks();

    LoadGroupSet(ArrayOf(root, "groups", "", true), "groups", ArrayOf(root, "categories", ""),
                 "categories", kCommonScope, d_.groupSet);
    // Axes without a set of their own share the template; its faults show on the first axis.
    Array axisGroups = ArrayOf(root, "axisGroups", "");
    Array axes = ArrayOf(root, "axes", "");
    for (std::uint32_t a = 0; a < axes.Size(); ++a) {
        Object ax = axes[a].ToObject();
        std::string place = "axes[" + std::to_string(a) + "]";
        bool own = ax.Contains("groups");
        LoadGroupSet(own ? ArrayOf(ax, "groups", place) : axisGroups,
                     own ? place + ".groups" : "axisGroups", ArrayOf(ax, "categories", place),
                     place + ".categories", int(a), d_.axes[a].groupSet);
    }
    if (d_.product.axisCopyCount > d_.axes.size())
        Refuse("product.axisCopyCount",
               "more than the device's " + std::to_string(d_.axes.size()) + " axes");

    LoadNamed(ArrayOf(root, "namedVariables", ""), "namedVariables", d_.namedVariables);
    LoadNamed(ArrayOf(root, "functions", ""), "functions", d_.functions);
    LoadConnectors(ArrayOf(root, "connectors", ""));
    LoadPerUnit(ArrayOf(root, "perUnitBases", ""));
    CheckTables();
}

} // namespace zorhost::device
