#include "zorhost/model/VarStore.h"

#include "ShippedDevices.h"
#include "TextOf.h"

#include <gtest/gtest.h>

#include <string>

using zorhost::model::CVarStore;

namespace {

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
