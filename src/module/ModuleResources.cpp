#include "module/ModuleResources.h"

#include <afx/afxres.h>

#include <iterator>

namespace {

// Ids and texts are the module's interface: pages, dialogs and exports ask for them by
// number, and the host translates by the Chinese text, so neither may change.
const ModuleStringEntry kStrings[] = {
    {144, "段位"},
    {145, "下载参数中存在停机设定参数，请确保驱动器处于非使能状态!"},
    {146, "参数下载成功！"},
    {147, "软件开始复位，复位完成后参数生效。"},
    {148,
     "部分参数需重新上电后生效，可通过软件复位使参数生效:\n点击‘是’进行软件复位；否则请点‘否’"},
    {149, "BKF连接器"},
    {150, "示波器正在运行,请先停止"},
    {152, "注：H00、H01组为厂家参数，请慎重修改，\n如需操作请先输入厂家密码（功能码H0241）！"},
    {153, "下载参数中存在停机设定参数，请确保驱动器处于非使能状态!"},
    {159, "基础参数"},
    {168, "检测到参数版本不一致，是否需要从驱动器同步？不会影响驱动器当前值。"},
    {169, "修改记录"},
    {170, ""},
    {171, "厂家参数"},
    {172, "QX800逆变"},
    {173, "当前设备不支持读写属性"},
    {175, "保存到'%s'成功。"},
    {176, "原始值"},
    {177, "B连接器"},
    {178, "K连接器"},
    {179, "F连接器"},
    {181, "参数组"},
    {184, "已修改参数"},
    {185, "通讯地址(Hex)"},
    {186, "连接器"},
    {187, "确定"},
    {188, "取消"},
    {189, "搜索"},
    {190, "模块'%s'不在线,是否继续执行保存操作？"},
    {192, "当前设备正在运转，请停机后下载参数"},
    {195, "百分比"},
    {196, "KF连接器"},
    {197, "写入全部"},
    {199, "专家参数"},
    {202, "巡视参数"},
    {207, "直接添加"},
    {208, "新建子组"},
    {209, "注销登陆"},
    {1952, "参数列表"},
    {1959, "设定值"},
    {1963, "参数文件'%s'中的设备类型与当前对象'%s'中的类型不一致,是否继续打开？"},
    {1966, "普通用户"},
    {1972, "生效方式"},
    {1976, "位号"},
    {1977, "值"},
    {1978, "老设备协议不支持该操作."},
    {1981, "超级管理员"},
    {1983, "配方的电子标签与本设备不匹配，是否继续下载？"},
    {1985, "是否保存H00组和H01组？"},
    {2008, "警告"},
    {2009, "当前值"},
    {2011, "行号"},
    {2012, "轴号"},
    {2013, "参数"},
    {2014, "参数名称"},
    {2015, "当前值"},
    {2016, "出厂值"},
    {2017, "最小值"},
    {2018, "最大值"},
    {2019, "单位"},
    {2020, "修改方式"},
    {2021, "显示方式"},
    {2022, "通讯地址(Dec)"},
    {2023, "变量类型"},
    {2024, "小数位数"},
    {2026, "变量当前值"},
    {2027, "参数组"},
    {2028, "所有参数"},
    {2029, "自定义"},
    {2033, "文件'%s'保存成功."},
    {2034, "打开csv文件失败！"},
    {2037, ""},
    {2038, "设备离线."},
    {2040, "ZorDriveBench"},
    {2043, "正在导出..."},
    {2044, "错误"},
    {2045, "确定删除对象'%s'吗?"},
    {2115, "确定下载参数文件\"%s\"吗?"},
    {2140, "参数名称"},
    {2141, "描述"},
    {2142, "当前值"},
    {2201, "结果"},
};

} // namespace

const ModuleStringEntry* ModuleStringTable(std::size_t* count) {
    if (count != nullptr)
        *count = std::size(kStrings);
    return kStrings;
}

void RegisterModuleResources(HINSTANCE module) {
    if (module == nullptr)
        return;
    for (const ModuleStringEntry& entry : kStrings)
        AfxRegisterString(module, entry.id, entry.text);
    // The panel: the table frame fills the placeholder, the counts sit in a strip below.
    DlgTemplate panel{IDD_PARMIRA_PANEL, "", 900, 600, {}, WS_CHILD | WS_VISIBLE};
    panel.controls = {
        {IDC_TABLE_PLACEHOLDER, DlgCtl::Custom, "", 0, 0, 900, 570},
        {IDC_TOTAL_LABEL, DlgCtl::Static, "变量总数:", 6, 576, 70, 20},
        {IDC_TOTAL_COUNT, DlgCtl::Edit, "", 78, 574, 70, 22, WS_DISABLED},
        {IDC_CURRENT_LABEL, DlgCtl::Static, "当前变量:", 160, 576, 70, 20},
        {IDC_CURRENT_COUNT, DlgCtl::Edit, "", 232, 574, 70, 22, WS_DISABLED},
        {IDC_NOTICE_STRIP, DlgCtl::Custom, "", 320, 572, 574, 26},
    };
    AfxRegisterDialog(module, panel);
}
