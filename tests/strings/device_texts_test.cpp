// Parameter names, value meanings and group descriptions of a device reach the user in
// his language: the descriptions bring their English and the text service takes it.
#include "ShippedDevices.h"
#include "text_checks.h"
#include "zorhost/device/DeviceDescription.h"
#include "zorhost/services/HostUiService.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace zorhost;

namespace {

// What the module shows of a device that has no English would reach an English user in
// Chinese: every shipped description must carry it for each Chinese text.
TEST(DeviceTexts, EveryShippedDeviceTextHasEnglish) {
    namespace fs = std::filesystem;
    int devices = 0;
    for (const auto& entry : fs::directory_iterator(PARMIRA_DEVICES_DIR)) {
        if (entry.path().extension() != ".json")
            continue;
        auto dev = LoadShippedDevice(entry.path().filename().c_str());
        if (dev == nullptr)
            continue;
        ++devices;
        CHostUiService ui;
        AddDeviceTranslations(ui, *dev);
        ui.SetLanguage(UiLanguage::English);
        std::string missing;
        auto check = [&](device::TextRef text) {
            const std::string written(dev->Text(text));
            CString english;
            ui.TranslateText(english, CString(written.c_str()));
            if (HasChineseText(written) && HasChineseText(english.GetString()))
                missing += "\n  " + written;
        };
        for (const device::ParameterDef& p : dev->parameters)
            check(p.name);
        auto checkTexts = [&](const auto& entries) {
            for (const auto& entry : entries)
                check(entry.text);
        };
        checkTexts(dev->parameterInfos);
        for (const device::ValueInfo& info : dev->valueInfos) {
            checkTexts(info.enumeration);
            checkTexts(info.bits);
            checkTexts(info.ranges);
            checkTexts(info.digits);
            for (const auto& range : info.ranges)
                checkTexts(range.options);
            for (const auto& digit : info.digits)
                checkTexts(digit.options);
        }
        for (const device::GroupDef& group : dev->groups)
            check(group.description);
        for (const device::AxisDef& axis : dev->axes)
            check(axis.name);
        EXPECT_TRUE(missing.empty())
            << entry.path().filename() << " texts without English:" << missing;
    }
    EXPECT_GE(devices, 3);
}

} // namespace
