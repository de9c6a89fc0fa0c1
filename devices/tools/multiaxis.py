"""ZD4-M four-axis servo drive, line 11, product 282, access model 1.

Each axis has the same block of parameters at its own address base; the drive-wide
parameters sit above all axes, from 0x8000.
"""

from common import Group, bits, enum, opt

ON_OFF = enum((0, "关闭", "Off"), (1, "开启", "On"))


def axis_groups():
    groups = []
    g = Group(0x00, "电机参数", "Motor parameters", access=3)
    g.p("电机编号", "Motor code", fac=14101, max=65535, modify=1, effect=2, access=3)
    g.p("额定电流", "Rated current", unit="A", dec=2, fac=160, min=1, max=65535, modify=1,
        effect=2, access=3)
    # The per-unit base: taken as its raw figure, so it carries no places (mN·m).
    g.p("额定转矩", "Rated torque", unit="mN·m", fac=640, min=10, max=65535, modify=1,
        effect=2, access=3)
    g.p("额定转速", "Rated speed", unit="rpm", fac=3000, min=100, max=6000, modify=1,
        effect=2, access=3)
    g.p("最大转速", "Maximum speed", unit="rpm", fac=6000, min=100, max=9000, modify=1,
        effect=2, access=3)
    g.p("极对数", "Pole pairs", fac=5, min=1, max=64, modify=1, effect=2, access=3)
    g.p("编码器类型", "Encoder type", fac=1, max=1, modify=1, effect=2, access=3,
        values=enum((0, "增量式", "Incremental"), (1, "多圈绝对值", "Multi-turn absolute")))
    g.p("编码器分辨率", "Encoder resolution", type="u32", unit="P/r", fac=8388608, min=1,
        max=1073741824, modify=2, access=3)
    groups.append(g)

    g = Group(0x01, "驱动器参数", "Drive parameters", access=3)
    g.p("轴软件版本号", "Axis software version", dec=1, fac=1205, max=65535, modify=2, access=3)
    g.p("轴额定输出电流", "Axis rated output current", unit="A", dec=2, fac=280, max=65535,
        modify=2, access=3)
    g.p("轴最大输出电流", "Axis maximum output current", unit="A", dec=2, fac=840, max=65535,
        modify=2, access=3)
    g.p("电流环带宽", "Current loop bandwidth", unit="Hz", fac=2000, min=100, max=8000,
        modify=1, access=3)
    groups.append(g)

    g = Group(0x02, "基本控制参数", "Basic control parameters")
    g.p("控制模式选择", "Control mode", fac=1, max=2, modify=1, access=1,
        values=enum((0, "速度模式", "Speed mode"), (1, "位置模式", "Position mode"),
                    (2, "转矩模式", "Torque mode")))
    g.p("旋转方向选择", "Rotation direction", fac=0, max=1, modify=1, effect=2, access=1,
        values=enum((0, "以CCW方向为正转方向", "CCW is forward"),
                    (1, "以CW方向为正转方向", "CW is forward")))
    g.p("伺服使能OFF停机方式", "Stop mode at servo OFF", fac=0, max=1, modify=1, access=1,
        values=enum((0, "自由停机", "Coast"), (1, "零速停机", "Zero-speed stop")))
    g.p("抱闸输出ON至指令接收延时", "Brake release delay", unit="ms", fac=250, max=500,
        access=1)
    g.p("抱闸输出OFF至电机不通电延时", "Brake engage delay", unit="ms", fac=150, min=50,
        max=1000, access=1)
    g.p("轴使能", "Axis enable", fac=1, max=1, modify=1, effect=2, access=2, values=ON_OFF)
    g.p("厂家密码", "Factory password", index=41, fac=0, max=65535, display=4, access=3,
        changeTracked=False, transferable=False,
        info="用于开放厂家参数,断电后失效。", infoEn="Opens the factory parameters until power-off.")
    groups.append(g)

    g = Group(0x05, "位置控制参数", "Position control parameters")
    g.p("位置指令来源", "Position command source", fac=0, max=1, modify=1, access=1,
        values=enum((0, "总线指令", "Bus command"), (1, "内部多段位置", "Internal segments")))
    g.p("电子齿轮比分子", "Gear ratio numerator", type="u32", fac=8388608, min=1,
        max=1073741824, modify=1, access=1)
    g.p("电子齿轮比分母", "Gear ratio denominator", type="u32", fac=10000, min=1,
        max=1073741824, modify=1, access=1)
    g.p("位置指令平滑时间", "Position smoothing time", unit="ms", dec=1, fac=0, max=65535,
        modify=1, access=1)
    g.p("定位完成幅值", "Positioning completed window", fac=734, min=1, max=65535, access=1)
    g.p("位置偏差过大阈值", "Excessive deviation threshold", type="u32", fac=3000000,
        max=1073741824, access=1)
    groups.append(g)

    g = Group(0x06, "速度控制参数", "Speed control parameters")
    top = g.p("最大转速限制", "Maximum speed limit", unit="rpm", fac=6000, max=6000, access=1)
    g.p("点动速度", "Jog speed", unit="rpm", fac=100, maxLink=top, access=0)
    g.p("加速时间", "Acceleration time", unit="ms", fac=0, max=65535, access=1)
    g.p("减速时间", "Deceleration time", unit="ms", fac=0, max=65535, access=1)
    g.p("零速输出信号阈值", "Zero speed threshold", unit="rpm", fac=10, min=1, max=6000,
        access=1)
    groups.append(g)

    g = Group(0x07, "转矩控制参数", "Torque control parameters")
    g.p("正内部转矩限制", "Positive torque limit", type="i16", fac=12288, min=0, max=16384,
        display=2, perUnitBase=1, access=1)
    g.p("负内部转矩限制", "Negative torque limit", type="i16", fac=12288, min=0, max=16384,
        display=2, perUnitBase=1, access=1)
    g.p("转矩指令滤波时间常数", "Torque command filter", unit="ms", dec=2, fac=79, max=3000,
        access=1)
    groups.append(g)

    g = Group(0x08, "增益类参数", "Gain parameters")
    g.p("速度环增益", "Speed loop gain", unit="Hz", dec=1, fac=250, min=1, max=20000, access=1)
    g.p("速度环积分时间常数", "Speed loop integral time", unit="ms", dec=2, fac=3183, min=15,
        max=51200, access=1)
    g.p("位置环增益", "Position loop gain", unit="Hz", dec=1, fac=400, max=20000, access=1)
    g.p("负载转动惯量比", "Load inertia ratio", unit="倍", dec=2, fac=100, max=12000, access=1)
    g.p("刚性等级选择", "Rigidity level", fac=14, max=31, access=1)
    groups.append(g)

    g = Group(0x0B, "监控参数", "Monitoring parameters")
    mon = dict(modify=2, changeTracked=False)
    g.p("实际电机转速", "Actual motor speed", type="i16", unit="rpm", **mon)
    g.p("速度指令", "Speed command", type="i16", unit="rpm", **mon)
    g.p("内部转矩指令", "Internal torque command", type="i16", unit="%", dec=1, **mon)
    g.p("轴状态字", "Axis status word", display=1, **mon,
        values=bits((0, "准备好", "Ready"), (1, "使能", "Enabled"), (2, "故障", "Fault"),
                    (3, "警告", "Warning"), (4, "定位完成", "In position")))
    g.p("位置偏差", "Position deviation", type="i32", unit="编码器单位", **mon)
    g.p("相电流有效值", "Phase current RMS", unit="A", dec=2, **mon)
    g.p("当前故障码", "Present fault code", display=1, **mon)
    groups.append(g)
    return groups


def build():
    axis = axis_groups()
    common = []
    g = Group(0x80, "公共参数", "Drive-wide parameters")
    g.p("站号", "Station number", fac=1, min=1, max=127, effect=2, access=1)
    g.p("总线类型", "Field bus", fac=0, max=1, modify=1, effect=2, access=2,
        values=enum((0, "总线型脉冲同步", "Synchronous bus"), (1, "Modbus", "Modbus")))
    g.p("波特率", "Baud rate", fac=2, max=3, access=1,
        values=enum((0, "9600", "9600"), (1, "19200", "19200"), (2, "57600", "57600"),
                    (3, "115200", "115200")))
    g.p("制动电阻选择", "Braking resistor", fac=0, max=2, modify=1, access=1,
        values=enum((0, "内置", "Built-in"), (1, "外接", "External"), (2, "不使用", "None")))
    g.p("风扇控制方式", "Fan control", fac=0, max=1, access=2,
        values=enum((0, "温度控制", "By temperature"), (1, "常开", "Always on")))
    g.p("密码输入", "Password input", fac=0, max=65535, display=4, changeTracked=False,
        transferable=False)
    g.p("厂家访问码", "Factory access code", fac=0, max=65535, display=4, access=3,
        changeTracked=False, transferable=False)
    g.p("临时访问权限", "Temporary authority", fac=0, max=65535, display=4, access=3,
        changeTracked=False, transferable=False)
    g.p("当前访问权限", "Present authority", fac=0, max=3, modify=2, changeTracked=False,
        values=enum((0, "巡视参数", "Inspection"), (1, "基础参数", "Basic"), (2, "专家参数", "Expert"),
                    (3, "厂家参数", "Factory")))
    g.p("参数初始化", "Parameter initialisation", fac=0, max=1, modify=1, access=2,
        changeTracked=False, values=enum((0, "无操作", "None"), (1, "恢复出厂", "Restore factory")))
    g.p("内部调试字", "Internal debug word", fac=0, max=65535, display=1, modify=3, access=3,
        changeTracked=False)
    common.append(g)

    g = Group(0x81, "公共监控", "Drive-wide monitoring")
    mon = dict(modify=2, changeTracked=False)
    g.p("母线电压", "DC bus voltage", unit="V", dec=1, **mon)
    g.p("模块温度", "Module temperature", unit="℃", **mon)
    g.p("控制电源电压", "Control supply voltage", unit="V", dec=1, **mon)
    g.p("总上电时间", "Total power-on time", type="u32", unit="s", **mon)
    common.append(g)

    g = Group(0x82, "功能版本信息", "Function version data", access=3, visible=False,
              fixed=True)
    fixed = dict(modify=2, fixed=True, changeTracked=False, access=3, display=1)
    for n in range(1, 10):
        g.p("控制功能字%d" % n, "Control function word %d" % n, type="u32", max=4294967295,
            **fixed)
    for t, e in (("功能版本", "Function version"), ("功能临时版本", "Function temporary version"),
                 ("性能版本", "Performance version"), ("性能临时版本", "Performance temporary version")):
        g.p(t, e, type="u32", max=4294967295, **fixed)
    common.append(g)

    names = ("轴1", "轴2", "轴3", "轴4")
    shared, version = common[0], common[2]
    doc = {
        "format": 1,
        "product": {
            "name": "ZD4-M 四轴伺服驱动器", "nameEn": "ZD4-M four-axis servo drive",
            "lineId": 11, "productId": 282, "subProductId": 0,
            "electronicLabel": "000B 011A 0000 0105 0000 0000 0000 0004 "
                               "5A44 344D 2D32 5238 0000 0000 0000 0000",
            "version": "V1.05.02", "kind": "multiAxisServo", "accessModel": 1,
            "axisCopyCount": 4},
        "valueInfos": {},
        "parameters": [p for grp in common for p in grp.params],
        "axisParameters": [p for grp in axis for p in grp.params],
        "groups": [grp.group_json() for grp in common],
        "axisGroups": [grp.group_json() for grp in axis],
        "axes": [{"name": names[i], "nameEn": "Axis %d" % (i + 1), "key": "A%d" % (i + 1),
                  "addressBase": "0x%04X" % (i * 0x2000)} for i in range(4)],
        "namedVariables": [
            {"name": "InputPassword", "code": shared.code_of("密码输入")},
            {"name": "Factory", "code": shared.code_of("厂家访问码")},
            {"name": "TempAuthority", "code": shared.code_of("临时访问权限")},
            {"name": "Authority", "code": shared.code_of("当前访问权限")}],
        "functions": [{"name": "ControlFunction%d" % n, "code": version.code_of("控制功能字%d" % n)}
                      for n in range(1, 10)] + [
            {"name": key, "code": version.code_of(name)} for key, name in (
                ("FunctionVersion", "功能版本"), ("FunctionTempVersion", "功能临时版本"),
                ("PerformanceVersion", "性能版本"), ("PerformanceTempVersion", "性能临时版本"))],
        "perUnitBases": [
            {"id": 1, "bases": [{"name": "轴1电机额定转矩", "nameEn": "Axis 1 motor rated torque",
                                 "code": axis[0].code_of("额定转矩")}]}],
    }
    del doc["valueInfos"]
    return doc
