// The shipped descriptions load and hold together: addresses follow their codes, groups and
// links point at real parameters, packed-value tables fit their types; and the device lists
// beside the program name products that the shipped descriptions define.
#include "ShippedDevices.h"
#include "TextOf.h"

#include "zorhost/model/VarStore.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSettings>
#include <QStringList>

#include <cmath>
#include <set>
#include <string>

using namespace zorhost::device;

namespace {

bool ParseCode(std::string_view code, unsigned& group, unsigned& index) {
    if (code.size() < 6 || code[0] != 'H' || code[3] != '-')
        return false;
    group = std::stoul(std::string(code.substr(1, 2)), nullptr, 16);
    index = std::stoul(std::string(code.substr(4)), nullptr, 10);
    return true;
}

const char* const kShipped[] = {"zd3s_servo.json", "zd4m_four_axis.json", "zv5_inverter.json"};

class ShippedDevice : public ::testing::TestWithParam<const char*> {};

TEST_P(ShippedDevice, LabelCarriesTheProductNumbersAndAddressesFollowCodes) {
    auto d = LoadShippedDevice(GetParam());
    ASSERT_TRUE(d);
    const auto& label = d->product.electronicLabel;
    ASSERT_GE(label.size(), 16u);
    EXPECT_LE(label.size(), 32u);
    EXPECT_EQ(label[0] * 256u + label[1], d->product.lineId);
    EXPECT_EQ(label[2] * 256u + label[3], d->product.productId);
    EXPECT_EQ(label[4] * 256u + label[5], d->product.subProductId);

    ASSERT_FALSE(d->parameters.empty());
    zorhost::model::CVarStore store(d);
    ASSERT_EQ(store.GetCount(), int(d->parameters.size()));
    EXPECT_EQ(TextOf(&store, &zorhost::model::CVarStore::GetVersionText).str(),
              std::string(d->Text(d->product.versionText)));
    for (std::uint32_t i = 0; i < d->parameters.size(); ++i) {
        const ParameterDef& p = d->parameters[i];
        unsigned group = 0, index = 0;
        ASSERT_TRUE(ParseCode(d->Code(p), group, index)) << d->Code(p);
        std::uint32_t base = p.axis >= 0 ? d->axes[p.axis].addressBase : 0;
        EXPECT_EQ(p.address, base + group * 256 + index) << d->Code(p);
        // Both indexes find the parameter again.
        EXPECT_EQ(d->FindByAddress(p.address), i);
        EXPECT_EQ(d->FindByCode(d->Code(p), p.axis), i) << d->Code(p);
        // The host's store finds its variable by instance key and by address.
        IVarObjEx* v = store.GetAt(int(i));
        EXPECT_EQ(store.FindByCode(TextOf(v, &IVarObjEx::GetInstanceGuid)), v) << d->Code(p);
        EXPECT_EQ(store.FindByAddress(p.address), v) << d->Code(p);
        EXPECT_FALSE(d->Text(p.name).empty()) << d->Code(p);
        EXPECT_FALSE(d->Text(p.nameEn).empty()) << d->Code(p);
        // A wide value fills further 16-bit registers, where no other parameter may sit.
        for (int r = 1; r < DataTypeBits(p.dataType) / 16; ++r)
            EXPECT_EQ(d->FindByAddress(p.address + r), kNoIndex) << d->Code(p);
    }
}

TEST_P(ShippedDevice, GroupsLinksAndTablesPointAtRealEntries) {
    auto d = LoadShippedDevice(GetParam());
    ASSERT_TRUE(d);
    std::set<std::uint32_t> grouped;
    for (const GroupDef& g : d->groups) {
        for (std::uint32_t m : g.members) {
            ASSERT_LT(m, d->parameters.size());
            // A group of an axis holds that axis's parameters or drive-wide ones.
            int axis = d->parameters[m].axis;
            EXPECT_TRUE(axis == g.axis || axis == kCommonScope) << d->Text(g.name);
            grouped.insert(m);
        }
        for (std::uint32_t c : g.children)
            ASSERT_LT(c, d->groups.size());
    }
    // Every parameter is reachable from some group.
    EXPECT_EQ(grouped.size(), d->parameters.size());

    for (const ParameterDef& p : d->parameters) {
        for (std::uint32_t link : {p.minLink, p.maxLink}) {
            if (link == kNoIndex)
                continue;
            ASSERT_LT(link, d->parameters.size());
            EXPECT_TRUE(d->parameters[link].axis == p.axis ||
                        d->parameters[link].axis == kCommonScope);
        }
        if (!p.IsMinLinked() && !p.IsMaxLinked() && p.dataType != DataType::String) {
            EXPECT_LE(p.minValue, p.factoryValue) << d->Code(p);
            EXPECT_LE(p.factoryValue, p.maxValue) << d->Code(p);
        }
        if (p.perUnitBaseId != 0) {
            EXPECT_NE(d->FindPerUnitTable(p.perUnitBaseId), nullptr);
        }
        if (const ValueInfo* info = d->ValueInfoOf(p)) {
            int bits = DataTypeBits(p.dataType);
            for (const BitEntry& b : info->bits)
                EXPECT_LT(b.bit, bits) << d->Code(p);
            for (const BitRange& r : info->ranges)
                EXPECT_LE(r.firstBit + r.width, bits) << d->Code(p);
            for (const DigitField& f : info->digits)
                EXPECT_LE(std::pow(10.0, f.digit), std::ldexp(1.0, bits)) << d->Code(p);
            for (const ValueOption& o : info->enumeration)
                EXPECT_FALSE(d->Text(o.text).empty());
        }
    }
    for (const NamedVariable& v : d->namedVariables) {
        ASSERT_NE(v.parameter, kNoIndex) << d->Text(v.name);
        EXPECT_EQ(d->parameters[v.parameter].address, v.address);
    }
    for (const PerUnitTable& t : d->perUnitTables)
        for (const PerUnitBase& b : t.bases)
            EXPECT_EQ(d->FindByAddress(b.address), b.parameter);
}

INSTANTIATE_TEST_SUITE_P(AllFiles, ShippedDevice, ::testing::ValuesIn(kShipped));

TEST(ServoDevice, CoversEveryModeLevelAndValueKind) {
    auto d = LoadShippedDevice("zd3s_servo.json");
    ASSERT_TRUE(d);
    EXPECT_GE(d->parameters.size(), 450u);
    EXPECT_GE(d->groupSet.roots.size(), 20u);

    std::set<int> modify, effect, access, display, kinds;
    int hex = 0, perUnit = 0, hidden = 0, linked = 0;
    for (const ParameterDef& p : d->parameters) {
        modify.insert(int(p.modifyMode));
        effect.insert(int(p.effectMode));
        access.insert(p.accessLevel);
        display.insert(int(p.displayFormat));
        if (const ValueInfo* info = d->ValueInfoOf(p))
            kinds.insert(int(info->kind));
        hex += p.displayFormat == DisplayFormat::Hexadecimal;
        perUnit += p.perUnitBaseId != 0;
        hidden += p.IsHiddenForUser();
        linked += p.IsMinLinked() || p.IsMaxLinked();
    }
    EXPECT_EQ(modify, (std::set<int>{0, 1, 2, 3}));
    EXPECT_EQ(effect, (std::set<int>{1, 2, 3}));
    EXPECT_EQ(access, (std::set<int>{0, 1, 2, 3}));
    EXPECT_EQ(kinds, (std::set<int>{1, 2, 3, 4}));
    EXPECT_TRUE(display.count(4));
    EXPECT_GT(hex, 0);
    EXPECT_GT(perUnit, 0);
    EXPECT_GT(hidden, 0);
    EXPECT_GT(linked, 0);

    // Factory groups and a read-only monitoring group.
    for (const char* name : {"H00", "H01"}) {
        std::uint32_t g = d->FindGroup(name);
        ASSERT_NE(g, kNoIndex) << name;
        EXPECT_EQ(d->groups[g].accessLevel, 3);
    }
    std::uint32_t monitor = d->FindGroup("H0B");
    ASSERT_NE(monitor, kNoIndex);
    for (std::uint32_t m : d->groups[monitor].members)
        EXPECT_EQ(d->parameters[m].modifyMode, ModifyMode::Never);

    std::uint32_t password = d->FindByCode("H02-41");
    ASSERT_NE(password, kNoIndex);
    EXPECT_EQ(d->parameters[password].displayFormat, DisplayFormat::Hidden);

    for (const char* name : {"Authority", "InputPassword", "Factory", "TempAuthority"})
        EXPECT_NE(d->FindNamedVariable(name), nullptr) << name;
    for (const char* name :
         {"FunctionVersion", "FunctionTempVersion", "PerformanceVersion", "PerformanceTempVersion"})
        EXPECT_NE(d->FindFunction(name), nullptr) << name;
}

// Codes, addresses and links of the axes are checked through the host's model; here what
// the model doesn't show: each axis holds a whole block, and no parameter is drive-wide.
TEST(FourAxisDevice, AxesRepeatTheBlockAtTheirBases) {
    auto d = LoadShippedDevice("zd4m_four_axis.json");
    ASSERT_TRUE(d);
    ASSERT_EQ(d->axes.size(), 4u);
    EXPECT_EQ(d->product.axisCopyCount, 4);
    for (int a = 0; a < 4; ++a) {
        std::uint32_t i = d->FindByCode("H02-41", a);
        ASSERT_NE(i, kNoIndex);
        EXPECT_EQ(d->parameters[i].displayFormat, DisplayFormat::Hidden);
        for (std::uint32_t g : d->axes[a].groupSet.roots)
            EXPECT_EQ(d->groups[g].axis, a);
        auto block = d->AxisParameters(a);
        EXPECT_EQ(block.size(), d->axes[0].parameterCount);
        for (const ParameterDef& p : block)
            EXPECT_EQ(p.axis, a);
    }
    EXPECT_EQ(d->FindByCode("H02-41"), kNoIndex); // not a drive-wide parameter
}

const std::string kConfigDir = std::string(PARMIRA_BINARY_DIR) + "/Config/";

using Devices = std::vector<std::shared_ptr<const DeviceDescription>>;

Devices ShippedDevices() {
    Devices devices;
    const QDir dir(QStringLiteral(PARMIRA_DEVICES_DIR));
    for (const QString& name : dir.entryList({QStringLiteral("*.json")}, QDir::Files))
        if (auto device = LoadShippedDevice(name.toUtf8().constData()))
            devices.push_back(std::move(device));
    return devices;
}

bool Shipped(const Devices& devices, unsigned line, unsigned product, int sub = -1) {
    for (const auto& d : devices) {
        if (d->product.lineId == line && d->product.productId == product &&
            (sub < 0 || d->product.subProductId == unsigned(sub)))
            return true;
    }
    return false;
}

class DeviceListFile : public ::testing::TestWithParam<const char*> {};

TEST_P(DeviceListFile, EveryDeviceLineNamesAShippedProduct) {
    QFile file(QString::fromStdString(kConfigDir + GetParam()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text)) << kConfigDir << GetParam();
    const Devices library = ShippedDevices();
    ASSERT_EQ(library.size(), 3u);
    int devices = 0;
    for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) {
        if (!line.contains("dwLineID") && !line.contains("dwProductID") && !line.contains("Name"))
            continue;
        // The module splits at commas and wants exactly three fields in this order.
        static const QRegularExpression form("^dwLineID=(\\d+),dwProductID=(\\d+),Name=[^,]*$");
        const QRegularExpressionMatch m = form.match(line.trimmed());
        ASSERT_TRUE(m.hasMatch()) << line.toStdString();
        EXPECT_TRUE(Shipped(library, m.captured(1).toUInt(), m.captured(2).toUInt()))
            << line.toStdString();
        ++devices;
    }
    EXPECT_GT(devices, 0);
}

INSTANTIATE_TEST_SUITE_P(Lists, DeviceListFile,
                         ::testing::Values("OldProtocolDevice.ini", "HalfDuplexDevice.ini"));

TEST(UpdateAttributeFile, KeysNameShippedProductsInBothForms) {
    ASSERT_TRUE(QFile::exists(QString::fromStdString(kConfigDir + "UpdateAttribute.ini")));
    QSettings ini(QString::fromStdString(kConfigDir + "UpdateAttribute.ini"), QSettings::IniFormat);
    ini.beginGroup("ProtocalType");
    const QStringList keys = ini.childKeys();
    ASSERT_FALSE(keys.isEmpty());
    const Devices library = ShippedDevices();
    int listed = 0, twoPart = 0, threePart = 0;
    // Upper-case digits, four wide, as the module formats its keys.
    static const QRegularExpression form("^0x([0-9A-F]{4})_0x([0-9A-F]{4})(?:_0x([0-9A-F]{4}))?$");
    for (const QString& key : keys) {
        const QRegularExpressionMatch m = form.match(key);
        ASSERT_TRUE(m.hasMatch()) << key.toStdString();
        const bool three = !m.captured(3).isEmpty();
        EXPECT_TRUE(Shipped(library, m.captured(1).toUInt(nullptr, 16),
                            m.captured(2).toUInt(nullptr, 16),
                            three ? int(m.captured(3).toUInt(nullptr, 16)) : -1))
            << key.toStdString();
        (three ? threePart : twoPart)++;
        listed += ini.value(key).toInt() != -1;
    }
    EXPECT_GT(twoPart, 0);
    EXPECT_GT(threePart, 0);
    EXPECT_GT(listed, 0);
}

} // namespace
