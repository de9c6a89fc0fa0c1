// The device lists beside the program name products that the shipped descriptions define.

#include "zorhost/device/DeviceLoader.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSettings>
#include <QStringList>

#include <string>

using namespace zorhost::device;

namespace {

const std::string kConfigDir = std::string(PARMIRA_BINARY_DIR) + "/Config/";

DeviceLibrary ShippedLibrary() {
    DeviceLibrary library;
    library.AddDirectory(std::string(PARMIRA_SOURCE_DIR) + "/devices");
    return library;
}

bool Shipped(const DeviceLibrary& library, unsigned line, unsigned product, int sub = -1) {
    for (const auto& d : library.Devices()) {
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
    DeviceLibrary library = ShippedLibrary();
    ASSERT_EQ(library.Devices().size(), 3u);
    int devices = 0;
    for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) {
        if (!line.contains("dwLineID") && !line.contains("dwProductID") && !line.contains("Name"))
            continue;
        // The module splits at commas and wants exactly three fields in this order.
        QStringList fields = line.trimmed().split(',');
        ASSERT_EQ(fields.size(), 3) << line.toStdString();
        ASSERT_TRUE(fields[0].startsWith("dwLineID=")) << line.toStdString();
        ASSERT_TRUE(fields[1].startsWith("dwProductID=")) << line.toStdString();
        ASSERT_TRUE(fields[2].startsWith("Name=")) << line.toStdString();
        bool ok1 = false, ok2 = false;
        unsigned lineId = fields[0].mid(9).toUInt(&ok1);
        unsigned productId = fields[1].mid(12).toUInt(&ok2);
        ASSERT_TRUE(ok1 && ok2) << line.toStdString();
        EXPECT_TRUE(Shipped(library, lineId, productId)) << line.toStdString();
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
    DeviceLibrary library = ShippedLibrary();
    int listed = 0, twoPart = 0, threePart = 0;
    for (const QString& key : keys) {
        QStringList parts = key.split('_');
        ASSERT_TRUE(parts.size() == 2 || parts.size() == 3) << key.toStdString();
        unsigned numbers[3] = {0, 0, 0};
        for (int i = 0; i < parts.size(); ++i) {
            // Upper-case digits, four wide, as the module formats its keys.
            ASSERT_TRUE(parts[i].size() == 6 && parts[i].startsWith("0x") &&
                        parts[i].mid(2) == parts[i].mid(2).toUpper())
                << key.toStdString();
            numbers[i] = parts[i].mid(2).toUInt(nullptr, 16);
        }
        EXPECT_TRUE(
            Shipped(library, numbers[0], numbers[1], parts.size() == 3 ? int(numbers[2]) : -1))
            << key.toStdString();
        (parts.size() == 2 ? twoPart : threePart)++;
        listed += ini.value(key).toInt() != -1;
    }
    EXPECT_GT(twoPart, 0);
    EXPECT_GT(threePart, 0);
    EXPECT_GT(listed, 0);
}

} // namespace
