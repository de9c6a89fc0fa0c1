// Parameter names, value meanings and group descriptions of a device reach the user in
// his language: the descriptions bring their English and the text service takes it.
#include "text_checks.h"
#include "zorhost/device/DeviceDescription.h"
#include "zorhost/device/DeviceLoader.h"
#include "zorhost/services/HostUiService.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace zorhost;

namespace {

std::shared_ptr<const device::DeviceDescription> Load(const std::string& name) {
    const device::LoadResult result =
        device::LoadDeviceFile(device::DefaultDeviceDirectory() + "/" + name);
    EXPECT_TRUE(result) << result.error.ToString();
    return result.device;
}

CString English(CHostUiService& ui, std::string_view text) {
    CString out;
    ui.TranslateText(out, CString(std::string(text).c_str()));
    return out;
}

TEST(DeviceTexts, NamesAndMeaningsOfADeviceAreTranslated) {
    auto servo = Load("zd3s_servo.json");
    ASSERT_NE(servo, nullptr);
    CHostUiService ui;
    EXPECT_GT(AddDeviceTranslations(ui, *servo), 0);
    ui.SetLanguage(UiLanguage::English);
    // Every parameter that has English shows it; texts as written come back in Chinese.
    int checked = 0;
    for (const device::ParameterDef& p : servo->parameters) {
        if (p.nameEn.empty())
            continue;
        CString shown = English(ui, servo->Text(p.name));
        // Two parameters may share a name with different English; the last one told wins.
        EXPECT_FALSE(HasChineseText(shown.GetString())) << servo->Text(p.name);
        ++checked;
    }
    EXPECT_GT(checked, 100);
    ui.SetLanguage(UiLanguage::Chinese);
    const device::ParameterDef& first = servo->parameters.front();
    EXPECT_EQ(English(ui, servo->Text(first.name)),
              CString(std::string(servo->Text(first.name)).c_str()));
}

// What the module shows of a device that has no English would reach an English user in
// Chinese: every shipped description must carry it for each Chinese text.
TEST(DeviceTexts, EveryShippedDeviceTextHasEnglish) {
    namespace fs = std::filesystem;
    int devices = 0;
    for (const auto& entry : fs::directory_iterator(device::DefaultDeviceDirectory())) {
        if (entry.path().extension() != ".json")
            continue;
        auto dev = Load(entry.path().filename().string());
        if (dev == nullptr)
            continue;
        ++devices;
        CHostUiService ui;
        AddDeviceTranslations(ui, *dev);
        ui.SetLanguage(UiLanguage::English);
        std::string missing;
        auto check = [&](device::TextRef text) {
            const std::string_view written = dev->Text(text);
            if (HasChineseText(std::string(written)) &&
                HasChineseText(English(ui, written).GetString()))
                missing += "\n  " + std::string(written);
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
