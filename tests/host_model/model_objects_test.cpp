// The object model as the module walks it: catalogs, groups, axes, value meanings,
// connectors, functions, per-unit bases, and the variables' own state and value texts.
#include "zorhost/model/ProjectModel.h"

#include "ShippedDevices.h"
#include "TextOf.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace zorhost::model;

namespace {

std::string Name(IGroupNode* g) {
    return TextOf(g, &IGroupNode::GetName).str();
}

std::vector<std::string> Members(IGroupNode* g) {
    std::vector<std::string> keys;
    for (int i = 0; i < g->GetMemberCount(); ++i) {
        CString key;
        EXPECT_TRUE(g->GetMemberAt(i, key));
        keys.push_back(key.str());
    }
    return keys;
}

TEST(HostModel, FourAxisDriveFindsEachAxisInstanceInStoreAndCatalog) {
    auto dev = LoadShippedDevice("zd4m_four_axis.json");
    ASSERT_TRUE(dev);
    CDeviceModule module(dev, "ZD4M", 2);
    IVarStore* store = module.GetVarList();
    IVarCatalog* catalog = module.GetVarCatalog();
    ASSERT_TRUE(store && catalog);
    EXPECT_EQ(store->GetStoreCatalog(), catalog);

    IHostAxisList* axes = store->GetAxisList();
    ASSERT_TRUE(axes && axes->IsValid());
    ASSERT_EQ(axes->GetCount(), 4);
    EXPECT_EQ(axes->GetAt(4), nullptr);
    const UINT addresses[] = {0x0229, 0x2229, 0x4229, 0x6229};
    for (int a = 0; a < 4; ++a) {
        IHostAxis* axis = axes->GetAt(a);
        ASSERT_NE(axis, nullptr);
        const CString key = TextOf(axis, &IHostAxis::GetKey);
        const std::string instance = key.str() + ".H02-41";
        IVarObjEx* byCode = store->FindByCode(CString(instance));
        ASSERT_NE(byCode, nullptr) << instance;
        EXPECT_EQ(byCode->GetInstanceAddress(), addresses[a]);
        // The address base carries a parameter from one axis to the next.
        EXPECT_EQ(0x0229 - axes->GetAt(0)->GetAddressBase() + axis->GetAddressBase(), addresses[a]);
        // The catalog resolves the same keys to the attribute the variable uses.
        EXPECT_EQ(catalog->FindAttrByCode(CString(instance)), byCode->GetAttr());
        EXPECT_EQ(catalog->FindAttrByAddress(addresses[a]), byCode->GetAttr());
        EXPECT_EQ(byCode->GetAttr()->GetOwnerCatalog(), catalog);

        // The axis's own groups list its own instances.
        IGroupSet* groups = axis->GetGroupSet();
        ASSERT_NE(groups, nullptr);
        IGroupNode* h02 = groups->FindByName("H02");
        ASSERT_NE(h02, nullptr);
        bool found = false;
        for (const std::string& m : Members(h02)) {
            IVarObjEx* v = store->FindByCode(CString(m));
            ASSERT_NE(v, nullptr) << m;
            EXPECT_EQ(v->GetInstanceAddress() & 0xE000, axis->GetAddressBase()) << m;
            found = found || v == byCode;
        }
        EXPECT_TRUE(found) << "H02 of " << key.str() << " holds its H02-41";
    }
    // The store's axes and the catalog's are alike but separate objects.
    ASSERT_TRUE(catalog->GetAxisList() && catalog->GetAxisList()->IsValid());
    EXPECT_EQ(catalog->GetAxisList()->GetCount(), 4);
    EXPECT_EQ(store->FindByCode("A5.H02-41"), nullptr);
    EXPECT_EQ(store->FindByCode("H02-41"), store->FindByAddress(0x0229)) << "a bare code: axis 1";
    EXPECT_EQ(catalog->FindAttrByCode("A2.H99-99"), nullptr);

    // Per-unit bases of another axis lie at that axis: each axis holds its own base values.
    IPerUnitTable* table = module.GetPerUnitTable();
    ASSERT_NE(table, nullptr);
    IPerUnitBase* first = table->FindByCode("H07-00");
    IPerUnitBase* third = table->FindByCode("A3.H07-00");
    ASSERT_TRUE(first && third);
    EXPECT_NE(first, third);
    EXPECT_EQ(table->FindByCode("A1.H07-01"), first);
    ASSERT_TRUE(first->GetEntry(2) && third->GetEntry(2));
    EXPECT_EQ(first->GetEntry(2)->GetAddress(), 0x0002u) << "H00-02 of the first axis";
    EXPECT_EQ(third->GetEntry(2)->GetAddress(), 0x4002u);
    EXPECT_NE(store->FindByAddress(0x4002), nullptr);
}

TEST(HostModel, ModulesOfOneDescriptionShareTheCatalogButNotTheirState) {
    auto dev = LoadShippedDevice("zd3s_servo.json");
    ASSERT_TRUE(dev);
    CDeviceModule a(dev, "A", 1), b(dev, "B", 2);
    EXPECT_EQ(a.GetVarCatalog(), b.GetVarCatalog());
    IVarObjEx* va = a.GetVarList()->FindByCode("H00-04");
    IVarObjEx* vb = b.GetVarList()->FindByCode("H00-04");
    ASSERT_TRUE(va && vb);
    EXPECT_NE(va, vb);
    EXPECT_EQ(va->GetAttr(), vb->GetAttr()) << "one attribute per parameter";
    EXPECT_NE(a.GetVarList()->GetGroupRoot(1), b.GetVarList()->GetGroupRoot(1));
    EXPECT_NE(a.GetPerUnitTable(), b.GetPerUnitTable());
    EXPECT_FALSE(a.GetVarList()->GetAxisList()->IsValid()) << "single axis";

    // A copied attribute keeps its device alive after every module of it is gone.
    IVarAttr* copy = nullptr;
    {
        CDeviceModule only(LoadShippedDevice("zd3s_servo.json"), "C", 3);
        copy = only.GetVarList()->FindByCode("H00-04")->GetAttr()->Clone();
    }
    EXPECT_EQ(TextOf(copy, &IVarAttr::GetCode), CString("H00-04"));
    ASSERT_NE(copy->GetOwnerCatalog(), nullptr);
    EXPECT_NE(copy->GetOwnerCatalog()->FindAttrByCode("H05-14"), nullptr);
    delete copy;
}

TEST(HostModel, EveryShippedParameterGetsTheMeaningItsDescriptionGives) {
    for (const char* file : {"zd3s_servo.json", "zd4m_four_axis.json", "zv5_inverter.json"}) {
        auto dev = LoadShippedDevice(file);
        ASSERT_TRUE(dev);
        CVarStore store(dev);
        for (int i = 0; i < store.GetCount(); ++i) {
            const auto* expected = dev->ValueInfoOf(dev->parameters[size_t(i)]);
            IValueInfo* got = store.GetAt(i)->GetAttr()->GetValueInfo();
            if (!expected) {
                EXPECT_EQ(got, nullptr);
                continue;
            }
            ASSERT_NE(got, nullptr);
            EXPECT_EQ(got->GetKind(), int(expected->kind));
            size_t count = expected->enumeration.size() + expected->bits.size() +
                           expected->ranges.size() + expected->digits.size();
            IValueInfoList* lists[] = {got->GetEnumList(), got->GetBitList(),
                                       got->GetBitRangeList(), got->GetDigitList()};
            int nonNull = 0;
            for (IValueInfoList* l : lists)
                if (l) {
                    ++nonNull;
                    EXPECT_EQ(l->GetCount(), int(count));
                    EXPECT_EQ(l->GetAt(int(count)), nullptr);
                    EXPECT_EQ(l->GetAt(-1), nullptr);
                }
            EXPECT_EQ(nonNull, 1) << "exactly the list of its kind";
        }
    }
}

TEST(HostModel, InverterGroupSetWithCategories) {
    auto dev = LoadShippedDevice("zv5_inverter.json");
    ASSERT_TRUE(dev);
    CDeviceModule module(dev, "ZV5", 3);
    IGroupSet* set = module.GetVarCatalog()->GetGroupSet();
    ASSERT_NE(set, nullptr);
    ASSERT_EQ(set->GetCount(), 15);
    EXPECT_EQ(Name(set->GetAt(0)), "H00");
    EXPECT_EQ(Name(set->GetAt(14)), "H10");
    ASSERT_EQ(set->GetCategoryCount(), 5);
    EXPECT_EQ(set->GetCategoryAt(5), nullptr);

    IGroupCategory* basic = set->GetCategoryAt(0);
    EXPECT_EQ(TextOf(basic, &IGroupCategory::GetName), CString("基本参数"));
    EXPECT_EQ(TextOf(basic, &IGroupCategory::GetDescription), CString("常用设定"));
    ASSERT_EQ(basic->GetChildCount(), 3);
    const char* names[] = {"H00", "H06", "H08"};
    for (int i = 0; i < 3; ++i) {
        IGroupNode* child = basic->GetChildAt(i);
        ASSERT_NE(child, nullptr);
        EXPECT_EQ(Name(child), names[i]);
        IGroupNode* group = set->FindByName(CString(names[i]));
        ASSERT_NE(group, nullptr) << "a category child names a group of the set";
        EXPECT_NE(group, child);
        EXPECT_GT(group->GetMemberCount(), 0);
    }
    EXPECT_TRUE(TextOf(set->GetCategoryAt(4), &IGroupCategory::GetDescription).IsEmpty());
    int categorised = 0;
    for (int c = 0; c < set->GetCategoryCount(); ++c) {
        EXPECT_GT(set->GetCategoryAt(c)->GetChildCount(), 0) << c;
        categorised += set->GetCategoryAt(c)->GetChildCount();
    }
    EXPECT_LT(categorised, set->GetCount()) << "some groups stand outside any category";

    // The store's fixed root has the same structure; every member resolves.
    IGroupSet* root = module.GetVarList()->GetGroupRoot(0);
    ASSERT_NE(root, nullptr);
    EXPECT_NE(root, set);
    EXPECT_EQ(root->GetCount(), set->GetCount());
    EXPECT_EQ(root->GetCategoryCount(), 5);
    for (int g = 0; g < root->GetCount(); ++g)
        for (const std::string& key : Members(root->GetAt(g)))
            EXPECT_NE(module.GetVarList()->FindByCode(CString(key)), nullptr) << key;
    EXPECT_EQ(module.GetVarList()->GetGroupRoot(2), nullptr);
}

TEST(HostModel, GroupEditingOwnershipAndNesting) {
    auto dev = LoadShippedDevice("zd3s_servo.json");
    ASSERT_TRUE(dev);
    CVarStore store(dev);
    IGroupSet* fixed = store.GetGroupRoot(0);
    IGroupNode* h0b = fixed->FindByName("H0B");
    ASSERT_TRUE(h0b && h0b->GetChildCount() == 2);
    IGroupNode* nested = fixed->FindByName("H0B-F");
    ASSERT_NE(nested, nullptr) << "found at any depth";
    EXPECT_EQ(nested->GetParent(), h0b);
    EXPECT_EQ(h0b->GetParent(), nullptr);
    EXPECT_FALSE(fixed->FindByName("H0E")->IsGroupVisible());
    EXPECT_TRUE(fixed->FindByName("H0E")->IsGroupFixed());

    // A clone copies the members and nothing of the tree, and edits stay on it.
    const std::vector<std::string> before = Members(h0b);
    IGroupNode* clone = h0b->Clone();
    EXPECT_EQ(Members(clone), before);
    EXPECT_EQ(clone->GetChildCount(), 0);
    EXPECT_EQ(clone->GetParent(), nullptr);
    ASSERT_FALSE(before.empty());
    EXPECT_TRUE(clone->RemoveMember(CString(before[0])));
    EXPECT_FALSE(clone->RemoveMember("H7F-99"));
    EXPECT_EQ(Members(h0b), before);

    // Custom root: new groups, children, a second owner refused, removal.
    IGroupSet* custom = store.GetGroupRoot(1);
    ASSERT_EQ(custom->GetCount(), 0);
    ASSERT_TRUE(custom->AddGroup(clone));
    EXPECT_FALSE(custom->AddGroup(clone)) << "already held";
    IGroupNode* child = custom->NewGroup();
    child->SetName("mine");
    child->AddMember("H00-04");
    ASSERT_TRUE(clone->AddChild(child));
    EXPECT_FALSE(custom->AddGroup(child)) << "a child belongs to its parent";
    EXPECT_FALSE(child->AddChild(clone)) << "no cycles";
    EXPECT_EQ(custom->FindByName("mine"), child);
    EXPECT_TRUE(clone->RemoveChild(child));
    EXPECT_EQ(clone->GetChildCount(), 0);
    EXPECT_FALSE(custom->RemoveGroup(h0b, 0)) << "not this set's";
    EXPECT_TRUE(custom->RemoveGroup(clone, 0));
    EXPECT_EQ(custom->GetCount(), 0);

    // The set's own members, and an edit of a fixed group copies its keys out first.
    EXPECT_TRUE(custom->AddMember("H00-04"));
    EXPECT_FALSE(custom->AddMember(""));
    CString key;
    EXPECT_TRUE(custom->GetMemberAt(0, key));
    EXPECT_FALSE(custom->GetMemberAt(1, key));
    EXPECT_TRUE(custom->RemoveMember("H00-04"));
    EXPECT_EQ(custom->GetMemberCount(), 0);
    ASSERT_TRUE(h0b->AddMember("H00-04"));
    std::vector<std::string> after = before;
    after.push_back("H00-04");
    EXPECT_EQ(Members(h0b), after);
    h0b->ClearMembers();
    EXPECT_EQ(h0b->GetMemberCount(), 0);
}

TEST(HostModel, RemovingAGroupWithItsVariablesNamesEveryMemberOnce) {
    CGroupSet set;
    std::vector<std::string> dropped;
    set.SetVarDropper([&](const CString& key) { dropped.push_back(key.str()); });
    IGroupNode* top = set.NewGroup();
    top->AddMember("H01-00");
    IGroupNode* below = set.NewGroup();
    below->AddMember("H01-01");
    ASSERT_TRUE(top->AddChild(below));
    ASSERT_TRUE(set.AddGroup(top));
    IGroupNode* other = set.NewGroup();
    other->AddMember("H02-00");
    ASSERT_TRUE(set.AddGroup(other));

    EXPECT_TRUE(set.RemoveGroup(other, 0));
    EXPECT_TRUE(dropped.empty()) << "without its variables";
    EXPECT_TRUE(set.RemoveGroup(top, 1));
    EXPECT_EQ(dropped, (std::vector<std::string>{"H01-00", "H01-01"}));
}

TEST(HostModel, ConnectorValuesAndCodesAreInverse) {
    auto dev = LoadShippedDevice("zd3s_servo.json");
    ASSERT_TRUE(dev);
    CDeviceModule module(dev, "ZD3S", 1);
    IConnectorTable* table = module.GetVarCatalog()->GetConnectorTable();
    ASSERT_NE(table, nullptr);
    IGroupSet* set = module.GetVarCatalog()->GetGroupSet();
    int checked = 0;
    for (int kind = 1; kind <= 3; ++kind) {
        ASSERT_EQ(table->GetEntryCount(kind), 1) << kind;
        IConnectorGroup* group = table->GetEntry(0, kind);
        ASSERT_NE(group, nullptr);
        EXPECT_EQ(table->GetEntry(1, kind), nullptr);
        IGroupNode* node = set->FindByName(TextOf(group, &IConnectorGroup::GetGroupKey));
        ASSERT_NE(node, nullptr);
        for (const std::string& code : Members(node)) {
            LONGLONG value = table->ValueFromCode(CString(code), kind);
            ASSERT_GE(value, group->GetBase());
            ASSERT_LT(value, group->GetBase() + 100);
            IVarAttr* target = table->FindByValueText(CString(" " + std::to_string(value)));
            ASSERT_NE(target, nullptr) << value;
            EXPECT_EQ(TextOf(target, &IVarAttr::GetCode).str(), code);
            // The combined kinds find the same value.
            EXPECT_EQ(table->ValueFromCode(CString(code), 5), value);
            ++checked;
        }
    }
    EXPECT_GT(checked, 20);
    EXPECT_EQ(table->GetEntryCount(0), 0);
    EXPECT_EQ(table->GetEntryCount(4), 0);
    for (const char* text : {"abc", "3000x", "", "99999"})
        EXPECT_EQ(table->FindByValueText(text), nullptr) << text;
    EXPECT_EQ(table->ValueFromCode("H00-04", 1), -1) << "not a signal";
    const std::string bSource =
        Members(set->FindByName(TextOf(table->GetEntry(0, 1), &IConnectorGroup::GetGroupKey)))
            .at(0);
    EXPECT_EQ(table->ValueFromCode(CString(bSource), 4), -1) << "a B source is no KF source";
}

TEST(HostModel, FunctionEntriesAndPerUnitBases) {
    auto dev = LoadShippedDevice("zd3s_servo.json");
    ASSERT_TRUE(dev);
    CDeviceModule module(dev, "ZD3S", 1);
    IVarStore* store = module.GetVarList();
    IFunctionTable* functions = store->GetFunctionTable(0);
    ASSERT_NE(functions, nullptr);
    EXPECT_EQ(store->GetFunctionTable(1), nullptr);
    for (int n = 1; n <= 9; ++n) {
        IFunctionEntry* e = functions->FindFunction(CString("ControlFunction" + std::to_string(n)));
        ASSERT_NE(e, nullptr) << n;
        ASSERT_NE(e->GetVar(), nullptr);
        EXPECT_EQ(e->GetVar(), store->FindByAddress(e->GetAddress()));
    }
    IFunctionEntry* version = functions->FindFunction("FunctionVersion");
    ASSERT_NE(version, nullptr);
    EXPECT_EQ(version->GetAddress(), 0x0E12u) << "H0E-18";
    EXPECT_EQ(functions->FindFunction("ControlFunction10"), nullptr);

    IPerUnitTable* table = module.GetPerUnitTable();
    ASSERT_NE(table, nullptr);
    IPerUnitBase* bases = table->FindByCode("H07-03");
    ASSERT_NE(bases, nullptr);
    EXPECT_EQ(table->FindById(1), bases);
    EXPECT_EQ(table->FindById(0), nullptr);
    EXPECT_EQ(table->FindById(7), nullptr);
    EXPECT_EQ(table->FindByCode("H00-04"), nullptr) << "no per-unit base";
    ASSERT_EQ(bases->GetEntryCount(), 2);
    EXPECT_EQ(bases->GetEntry(1), nullptr) << "modes start at 2";
    EXPECT_EQ(bases->GetEntry(4), nullptr);
    IPerUnitEntry* torque = bases->GetEntry(2);
    ASSERT_NE(torque, nullptr);
    EXPECT_EQ(TextOf(torque, &IPerUnitEntry::GetName), CString("电机额定转矩"));
    EXPECT_EQ(torque->GetAddress(), 0x0006u) << "H00-06";
    EXPECT_FALSE(torque->HasValue());
    EXPECT_EQ(torque->GetValue(), 0.0);
    torque->SetValue(1.27);
    EXPECT_TRUE(torque->HasValue());
    EXPECT_EQ(table->FindById(1)->GetEntry(2)->GetValue(), 1.27) << "held in the table";
    module.PerUnitTable().ForgetValues();
    EXPECT_FALSE(torque->HasValue());
}

TEST(HostVarStore, VariablesCarryTheirOwnStateOverSharedAttributes) {
    auto dev = LoadShippedDevice("zd4m_four_axis.json");
    ASSERT_TRUE(dev);
    CVarStore store(dev);
    IVarObjEx* a = store.FindByAddress(0x0229);
    IVarObjEx* b = store.FindByAddress(0x2229);
    ASSERT_TRUE(a && b);
    IVarAttr* attr = a->GetAttr();
    ASSERT_NE(attr, nullptr);
    EXPECT_EQ(attr->GetDataType(), int(VT_UI2));
    EXPECT_EQ(attr->GetDisplayFormat(), 4);
    EXPECT_EQ(attr->GetAccessLevel(), 3);
    EXPECT_FALSE(attr->IsTransferable());
    EXPECT_EQ(attr->GetMaxValue(), Variant::UI2(65535));
    EXPECT_EQ(a->GetValue(), Variant::UI2(0)) << "starts at the factory value";

    a->SetValue(Variant::UI2(1234));
    a->SetChecked(1);
    a->SetPerUnitMode(2);
    EXPECT_EQ(b->GetValue(), Variant::UI2(0));
    EXPECT_FALSE(b->IsChecked());
    EXPECT_EQ(b->GetPerUnitMode(), -1);
    EXPECT_TRUE(b->GetSetValue().IsEmpty());

    IVarObjEx* copy = a->Clone();
    EXPECT_EQ(copy->GetValue(), Variant::UI2(1234));
    EXPECT_EQ(copy->GetAttr(), attr);
    EXPECT_TRUE(copy->IsChecked());
    copy->SetValue(Variant::UI2(1));
    EXPECT_EQ(a->GetValue(), Variant::UI2(1234));
    delete copy;

    IVarAttr* attrCopy = attr->Clone();
    attrCopy->SetAccessLevel(0);
    EXPECT_EQ(attr->GetAccessLevel(), 3);
    delete attrCopy;
}

// Raw integer figures are shown scaled by the decimals; a hexadecimal parameter without
// decimals shows "0x" and at least four digits.
TEST(HostVarStore, ValueTextsFollowDecimalsAndDisplayFormat) {
    auto dev = LoadShippedDevice("zd3s_servo.json");
    ASSERT_TRUE(dev);
    CVarStore store(dev);
    IVarObjEx* power = store.FindByCode("H00-04"); // u16, 2 decimals, factory 40
    ASSERT_NE(power, nullptr);
    auto text = [](IVarObjEx* v) { return TextOf(v, &IVarObjEx::GetValueText); };
    EXPECT_EQ(text(power), CString("0.40"));
    power->SetValue(Variant::UI2(65535));
    EXPECT_EQ(text(power), CString("655.35"));
    EXPECT_TRUE(TextOf(power, &IVarObjEx::GetSetValueText).IsEmpty()) << "no set value yet";
    power->SetSetValue(Variant::UI2(5));
    EXPECT_EQ(TextOf(power, &IVarObjEx::GetSetValueText), CString("0.05"));

    IVarObjEx* serial = store.FindByCode("H01-17"); // u32, hexadecimal display
    ASSERT_NE(serial, nullptr);
    serial->SetValue(Variant::UI4(4294967295u));
    EXPECT_EQ(text(serial), CString("0xFFFFFFFF"));
    serial->SetValue(Variant::UI4(255));
    EXPECT_EQ(text(serial), CString("0x00FF"));
    serial->SetValue(Variant());
    EXPECT_TRUE(text(serial).IsEmpty());
}

} // namespace
