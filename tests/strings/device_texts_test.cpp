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
        for (const device::ParameterInfo& info : dev->parameterInfos)
            check(info.text);
        for (const device::ValueInfo& info : dev->valueInfos) {
            for (const auto& option : info.enumeration)
                check(option.text);
            for (const auto& bit : info.bits)
                check(bit.text);
            for (const auto& range : info.ranges) {
                check(range.text);
                for (const auto& option : range.options)
                    check(option.text);
            }
            for (const auto& digit : info.digits) {
                check(digit.text);
                for (const auto& option : digit.options)
                    check(option.text);
            }
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
