// The device lists beside the program name products that the shipped descriptions define.

#include "ShippedDevices.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSettings>
#include <QStringList>

#include <string>

using namespace zorhost::device;

namespace {

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
