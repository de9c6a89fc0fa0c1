#include "values_fixture.h"

#include "zorhost/device/DeviceLoader.h"

const char* ValuesDeviceJson() {
    return R"JSON({
  "format": 1,
  "product": {"name": "测试驱动器", "lineId": 13, "productId": 77,
              "electronicLabel": "000D 004D 0000", "kind": "servo", "accessModel": 0},
  "parameters": [
    {"code": "H00-00", "name": "控制模式", "type": "u16", "max": 2,
     "values": {"enum": [{"value": 0, "text": "位置模式"}, {"value": 1, "text": "速度模式"},
                         {"value": 2, "text": "转矩模式"}]}},
    {"code": "H00-01", "name": "转矩限制", "unit": "%", "type": "i16", "decimals": 1,
     "factory": 1000, "min": -3000, "max": 3000},
    {"code": "H00-20", "name": "序列号", "type": "u32", "display": 1, "factory": 4660,
     "modify": 2, "effect": 2},
    {"code": "H00-03", "name": "偏置", "type": "i16", "display": 1, "factory": -1},
    {"code": "H00-04", "name": "滤波时间", "unit": "ms", "type": "u16", "display": 1,
     "decimals": 1, "factory": 255, "max": 1000},
    {"code": "H00-05", "name": "密码", "type": "u16", "display": 4, "factory": 1234,
     "modify": 3},
    {"code": "H00-06", "name": "原始字", "type": "u16", "display": 3, "factory": 7,
     "modify": 1, "effect": 3},
    {"code": "H00-07", "name": "电流指令", "unit": "A", "type": "i16", "display": 2,
     "perUnitBase": 1, "factory": 4096, "min": -8192, "max": 8192},
    {"code": "H00-22", "name": "速度指令", "unit": "rpm", "type": "i32", "display": 2,
     "perUnitBase": 1, "factory": 268435456, "min": 0, "max": 536870912},
    {"code": "H00-24", "name": "增益系数", "type": "f32", "display": 2, "perUnitBase": 1,
     "factory": 0.5, "min": 0, "max": 2},
    {"code": "H00-10", "name": "额定电流", "unit": "A", "type": "u16", "factory": 30},
    {"code": "H00-11", "name": "速度上限", "unit": "rpm", "type": "u16", "maxLink": "H00-12"},
    {"code": "H00-12", "name": "最高速度", "unit": "rpm", "type": "u16", "factory": 3000},
    {"code": "H00-13", "name": "模拟量源", "type": "u16",
     "values": {"enum": [{"value": 0, "text": "无"}, {"value": 1, "text": "K连接器"}]}},
    {"code": "H00-14", "name": "位数", "type": "u16",
     "values": {"bits": [{"bit": 0, "text": "使能"}, {"bit": 1, "text": "复位"}]}},
    {"code": "H00-26", "name": "计数", "type": "u32", "min": 0, "max": 4294967295},
    {"code": "H00-16", "name": "细分", "type": "i16", "decimals": 4, "min": -32768,
     "max": 32767},
    {"code": "H00-28", "name": "比例", "type": "f64", "decimals": 3, "min": -1.5, "max": 1.5},
    {"code": "H00-18", "name": "下限", "type": "i16", "minLink": "H00-01", "max": 3000},
    {"code": "H02-00", "name": "电机转速", "type": "i16"},
    {"code": "H02-01", "name": "母线电压", "type": "u16", "decimals": 1}
  ],
  "groups": [{"name": "H00", "members": "*"}, {"name": "H02", "members": "*"}],
  "connectors": [{"kind": "K", "name": "K信号", "group": "H02", "base": 2000}],
  "perUnitBases": [{"id": 1, "bases": [{"name": "额定电流", "nameEn": "Rated current",
                                        "code": "H00-10"},
                                       {"name": "最高速度", "code": "H00-12"}]}]
})JSON";
}

void ValuesTest::SetUp() {
    ui.strings = FakeUiService::Strings::None;
    ui.stringOverrides[2037] = "<2037>";
    auto loaded = zorhost::device::ParseDeviceJson(ValuesDeviceJson(), "values_test.json");
    ASSERT_TRUE(loaded) << loaded.error.ToString();
    device = loaded.device;
    auto project = std::make_unique<zorhost::model::CProject>();
    m_module = project->Workspace().Modules().Add(
        std::make_unique<zorhost::model::CDeviceModule>(loaded.device, CString("M1"), 1));
    ASSERT_NE(m_module, nullptr);
    root.Open(std::move(project));
    services.Register<IHostVarUtil>(&util);
    services.Register<IHostDeviceHelper>(&helper);
    services.Register<IHostUiService>(&ui);
    services.Register<IHostProjectRoot>(&root);
    theApp.SetQueryInterfaceCallback(services.Context(), &zorhost::HostServices::Query);
}

void ValuesTest::TearDown() {
    theApp.SetQueryInterfaceCallback(0, nullptr);
}

IVarObjEx* ValuesTest::Var(const char* code) {
    IVarObjEx* var = m_module ? m_module->Store().FindByCode(code) : nullptr;
    EXPECT_NE(var, nullptr) << code;
    return var;
}
