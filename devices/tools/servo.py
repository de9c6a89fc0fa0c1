"""ZD3-S single-axis servo drive, product line 13, access model 2."""

from common import Group, bits, enum, opt

DI_FUNCTIONS = enum(
    (0, "无定义", "Not assigned"), (1, "伺服使能", "Servo ON"),
    (2, "故障和警告复位", "Fault and warning reset"), (3, "增益切换", "Gain switching"),
    (4, "主辅运行指令切换", "Main/auxiliary command switch"),
    (5, "多段运行指令方向选择", "Multi-segment direction"),
    (6, "多段运行指令切换1", "Multi-segment select 1"),
    (7, "多段运行指令切换2", "Multi-segment select 2"),
    (8, "多段运行指令切换3", "Multi-segment select 3"),
    (9, "多段运行指令切换4", "Multi-segment select 4"), (10, "模式切换1", "Mode switch 1"),
    (11, "模式切换2", "Mode switch 2"), (12, "零位固定使能", "Zero clamp enable"),
    (13, "位置指令禁止", "Position command inhibit"),
    (14, "正向超程开关", "Positive overtravel"), (15, "反向超程开关", "Negative overtravel"),
    (16, "正外部转矩限制", "Positive external torque limit"),
    (17, "负外部转矩限制", "Negative external torque limit"), (18, "正向点动", "Jog forward"),
    (19, "反向点动", "Jog reverse"), (20, "位置步进量使能", "Step position enable"),
    (21, "手轮倍率信号1", "Handwheel ratio 1"), (22, "手轮倍率信号2", "Handwheel ratio 2"),
    (23, "手轮使能", "Handwheel enable"), (24, "电子齿轮选择", "Electronic gear select"),
    (25, "转矩指令方向设定", "Torque command direction"),
    (26, "速度指令方向设定", "Speed command direction"),
    (27, "位置指令方向设定", "Position command direction"),
    (28, "多段位置指令使能", "Multi-segment position enable"),
    (29, "中断定长状态解除", "Interrupt positioning release"), (30, "原点开关", "Home switch"),
    (31, "原点复归使能", "Homing start"), (32, "中断定长禁止", "Interrupt positioning inhibit"),
    (33, "紧急停机", "Emergency stop"), (34, "清除位置偏差", "Clear position deviation"))

DI_LOGIC = enum(
    (0, "低电平有效", "Active low"), (1, "高电平有效", "Active high"),
    (2, "上升沿有效", "Rising edge"), (3, "下降沿有效", "Falling edge"),
    (4, "上升沿和下降沿均有效", "Both edges"))

DO_FUNCTIONS = enum(
    (0, "无定义", "Not assigned"), (1, "伺服准备好", "Servo ready"),
    (2, "电机旋转输出", "Motor rotating"), (3, "零速信号", "Zero speed"),
    (4, "速度一致", "Speed coincidence"), (5, "定位完成", "Positioning completed"),
    (6, "定位接近", "Near positioning"), (7, "转矩限制中", "Torque limited"),
    (8, "速度受限中", "Speed limited"), (9, "抱闸输出", "Brake output"),
    (10, "警告输出", "Warning"), (11, "故障输出", "Fault"),
    (12, "故障码输出1", "Fault code bit 1"), (13, "故障码输出2", "Fault code bit 2"),
    (14, "故障码输出3", "Fault code bit 3"), (15, "原点复归完成", "Homing completed"),
    (16, "电气回零完成", "Electrical homing completed"), (17, "转矩到达", "Torque reached"),
    (18, "速度到达", "Speed reached"))

DO_LOGIC = enum((0, "有效时输出低电平", "Low when active"),
                (1, "有效时输出高电平", "High when active"))

ON_OFF = enum((0, "关闭", "Off"), (1, "开启", "On"))
ACC_SELECT = enum((0, "加减速时间1", "Ramp time 1"), (1, "加减速时间2", "Ramp time 2"),
                  (2, "加减速时间3", "Ramp time 3"), (3, "加减速时间4", "Ramp time 4"))


def connector_enum(marker_text, marker_en):
    # The drop-down offers "not connected"; its last entry opens the connector picker.
    return {"enum": [opt(0, "未连接", "Not connected"), opt(65535, marker_text, marker_en)]}


def build():
    infos = {"DiFunction": DI_FUNCTIONS, "DiLogic": DI_LOGIC, "DoFunction": DO_FUNCTIONS,
             "DoLogic": DO_LOGIC, "OnOff": ON_OFF, "RampSelect": ACC_SELECT}
    groups = []

    # --- H00 motor: written at the factory, seen at level 3 only.
    g = Group(0x00, "伺服电机参数", "Servo motor parameters", access=3)
    g.p("电机编号", "Motor code", fac=2107, max=65535, effect=2, access=3,
        info="更换电机后须重新设定并再次通电。", infoEn="Set again after a motor change, then cycle power.")
    g.p("用户电机编号", "User motor code", fac=0, max=65535, modify=2, access=3)
    g.p("编码器版本号", "Encoder version", dec=1, fac=0, max=65535, modify=2, access=3)
    g.p("额定电压", "Rated voltage", unit="V", fac=220, max=380, modify=1, effect=2, access=3,
        values=enum((220, "220V", "220 V"), (380, "380V", "380 V")))
    g.p("额定功率", "Rated power", unit="kW", dec=2, fac=40, min=1, max=65535, modify=1,
        effect=2, access=3)
    g.p("额定电流", "Rated current", unit="A", dec=2, fac=280, min=1, max=65535, modify=1,
        effect=2, access=3)
    # The per-unit bases: a base is taken as its raw figure, so it carries no places and
    # is held in mN·m.
    g.p("额定转矩", "Rated torque", unit="mN·m", fac=1270, min=100, max=65535, modify=1,
        effect=2, access=3)
    g.p("最大转矩", "Maximum torque", unit="mN·m", fac=3820, min=100, max=65535, modify=1,
        effect=2, access=3)
    g.p("额定转速", "Rated speed", unit="rpm", fac=3000, min=100, max=6000, modify=1, effect=2,
        access=3)
    g.p("最大转速", "Maximum speed", unit="rpm", fac=6000, min=100, max=9000, modify=1, effect=2,
        access=3)
    g.p("转动惯量", "Rotor inertia", unit="kg·cm²", dec=2, fac=26, min=1, max=65535, modify=1,
        effect=2, access=3)
    g.p("永磁同步电机极对数", "Pole pairs", unit="对", fac=5, min=2, max=360, modify=1,
        effect=2, access=3)
    g.p("定子电阻", "Stator resistance", unit="Ω", dec=3, fac=1160, max=65535, modify=1,
        effect=2, access=3)
    g.p("定子电感Lq", "Stator inductance Lq", unit="mH", dec=2, fac=415, max=65535, modify=1,
        effect=2, access=3)
    g.p("定子电感Ld", "Stator inductance Ld", unit="mH", dec=2, fac=392, max=65535, modify=1,
        effect=2, access=3)
    g.p("线反电势系数", "Back-EMF constant", unit="mV/rpm", dec=2, fac=2860, max=65535,
        modify=1, effect=2, access=3)
    g.p("转矩系数Kt", "Torque constant Kt", unit="N·m/Arms", dec=2, fac=46, max=65535, modify=1,
        effect=2, access=3)
    g.p("电气常数Te", "Electrical time constant", unit="ms", dec=2, fac=358, max=65535,
        modify=1, effect=2, access=3)
    g.p("机械常数Tm", "Mechanical time constant", unit="ms", dec=2, fac=62, max=65535,
        modify=1, effect=2, access=3)
    g.p("绝对式编码器类型", "Absolute encoder type", fac=1, max=2, modify=1, effect=2, access=3,
        values=enum((0, "增量式编码器", "Incremental"), (1, "单圈绝对值", "Single-turn absolute"),
                    (2, "多圈绝对值", "Multi-turn absolute")))
    g.p("编码器分辨率", "Encoder resolution", type="u32", unit="P/r", fac=8388608, min=1,
        max=1073741824, modify=2, access=3)
    g.p("初始角度", "Initial angle", unit="°", dec=1, fac=0, max=3600, modify=1, effect=2,
        access=3)
    groups.append(g)

    # --- H01 drive: factory data, some of it withheld from ordinary users.
    g = Group(0x01, "驱动器参数", "Drive parameters", access=3)
    g.p("MCU软件版本号", "MCU software version", dec=1, fac=9012, max=65535, modify=2, access=3)
    g.p("FPGA软件版本号", "FPGA software version", dec=1, fac=9004, max=65535, modify=2, access=3)
    g.p("伺服驱动器机型编号", "Drive model code", fac=5, max=65535, modify=1, effect=2, access=3,
        values=enum((2, "S1R6 单相220V", "S1R6 1-phase 220 V"), (3, "S2R8 单相220V",
                                                               "S2R8 1-phase 220 V"),
                    (5, "S5R5 三相220V", "S5R5 3-phase 220 V"), (6, "S7R6 三相220V",
                                                               "S7R6 3-phase 220 V"),
                    (10, "T3R5 三相380V", "T3R5 3-phase 380 V"), (11, "T5R4 三相380V",
                                                                "T5R4 3-phase 380 V")))
    g.p("驱动器电压等级", "Drive voltage class", unit="V", fac=220, max=65535, modify=2, access=3)
    g.p("驱动器额定功率", "Drive rated power", unit="kW", dec=2, fac=75, max=65535, modify=2,
        access=3)
    g.p("驱动器最大输出功率", "Drive maximum output power", unit="kW", dec=2, fac=75,
        max=65535, modify=2, access=3)
    g.p("驱动器额定输出电流", "Drive rated output current", unit="A", dec=2, fac=550,
        max=65535, modify=2, access=3)
    g.p("驱动器最大输出电流", "Drive maximum output current", unit="A", dec=2, fac=1690,
        max=65535, modify=2, access=3)
    g.p("载波频率", "Carrier frequency", unit="Hz", fac=8000, min=4000, max=16000, modify=1,
        effect=2, access=3, hiddenForUser=True)
    g.p("死区补偿时间", "Dead-time compensation", unit="ns", fac=1500, max=5000, modify=1,
        effect=2, access=3, hiddenForUser=True)
    g.p("直流母线过压保护点", "DC bus overvoltage threshold", unit="V", fac=420, min=300,
        max=900, modify=1, effect=2, access=3, hiddenForUser=True)
    g.p("直流母线泄放阈值", "DC bus braking threshold", unit="V", fac=380, min=300, max=900,
        modify=1, effect=2, access=3, hiddenForUser=True)
    g.p("直流母线欠压点", "DC bus undervoltage threshold", unit="V", fac=200, min=50, max=900,
        modify=1, effect=2, access=3, hiddenForUser=True)
    g.p("驱动器过温保护点", "Drive overheat threshold", unit="℃", fac=95, min=60, max=175,
        modify=1, effect=2, access=3)
    g.p("电流环带宽", "Current loop bandwidth", unit="Hz", fac=1800, min=100, max=8000,
        modify=1, effect=1, access=3)
    g.p("U相电流采样零漂", "Phase U current offset", type="i16", fac=0, min=-1000, max=1000,
        modify=2, access=3, changeTracked=False)
    g.p("V相电流采样零漂", "Phase V current offset", type="i16", fac=0, min=-1000, max=1000,
        modify=2, access=3, changeTracked=False)
    g.p("出厂序列号", "Factory serial number", type="u32", display=1, fac=0, max=4294967295,
        modify=2, access=3)
    groups.append(g)

    # --- H02 basic control, with both passwords.
    g = Group(0x02, "基本控制参数", "Basic control parameters")
    g.p("控制模式选择", "Control mode", fac=1, max=6, modify=1, access=1,
        values=enum((0, "速度模式", "Speed mode"), (1, "位置模式", "Position mode"),
                    (2, "转矩模式", "Torque mode"), (3, "转矩模式↔速度模式", "Torque/speed"),
                    (4, "速度模式↔位置模式", "Speed/position"),
                    (5, "转矩模式↔位置模式", "Torque/position"),
                    (6, "转矩↔速度↔位置混合模式", "Torque/speed/position")))
    g.p("绝对值系统选择", "Absolute system", fac=0, max=2, modify=1, effect=2, access=1,
        values=enum((0, "增量位置模式", "Incremental"), (1, "绝对位置线性模式", "Absolute linear"),
                    (2, "绝对位置旋转模式", "Absolute rotary")))
    g.p("旋转方向选择", "Rotation direction", fac=0, max=1, modify=1, effect=2, access=1,
        values=enum((0, "以CCW方向为正转方向", "CCW is forward"),
                    (1, "以CW方向为正转方向", "CW is forward")))
    g.p("输出脉冲相位", "Output pulse phase", fac=0, max=1, modify=1, effect=2, access=1,
        values=enum((0, "正转时A超前B", "A leads B forward"), (1, "正转时A滞后B", "A lags B forward")))
    g.p("伺服使能OFF停机方式", "Stop mode at servo OFF", type="i16", fac=0, min=-3, max=1,
        modify=1, access=1,
        values=enum((-3, "零速停机,保持DB状态", "Zero-speed stop, keep DB"),
                    (-2, "斜坡停机,保持DB状态", "Ramp stop, keep DB"),
                    (-1, "DB停机,保持DB状态", "DB stop, keep DB"),
                    (0, "自由停机,保持自由运行状态", "Coast, stay free"),
                    (1, "DB停机,保持自由运行状态", "DB stop, then free")))
    g.p("故障NO.2停机方式", "Stop mode at fault No.2", type="i16", fac=0, min=-5, max=1,
        modify=1, access=1,
        values=enum((-5, "零速停机,保持DB", "Zero-speed stop, keep DB"),
                    (-4, "急停转矩停机,保持DB", "Emergency torque stop, keep DB"),
                    (-3, "斜坡停机,保持DB", "Ramp stop, keep DB"),
                    (-2, "自由停机,保持DB", "Coast, keep DB"), (-1, "DB停机,保持DB", "DB stop, keep DB"),
                    (0, "自由停机,保持自由运行", "Coast, stay free"),
                    (1, "DB停机,保持自由运行", "DB stop, then free")))
    g.p("超程停机方式", "Overtravel stop mode", fac=1, max=2, modify=1, access=1,
        values=enum((0, "自由停机,保持自由运行", "Coast"), (1, "零速停机,保持位置锁定", "Zero-speed, lock"),
                    (2, "零速停机,保持自由运行", "Zero-speed, free")))
    g.p("故障NO.1停机方式", "Stop mode at fault No.1", fac=2, max=2, modify=1, access=1,
        values=enum((0, "自由停机", "Coast"), (1, "DB停机,保持自由运行", "DB stop, then free"),
                    (2, "DB停机,保持DB状态", "DB stop, keep DB")))
    g.p("抱闸输出ON至指令接收延时", "Brake release to command delay", unit="ms", fac=250,
        min=0, max=500, access=1)
    g.p("静止状态抱闸输出OFF至电机不通电延时", "Brake engage to power-off delay at rest",
        unit="ms", fac=150, min=50, max=1000, access=1)
    g.p("旋转状态抱闸输出OFF时转速阈值", "Brake engage speed in motion", unit="rpm", fac=30,
        min=20, max=3000, access=1)
    g.p("旋转状态伺服使能OFF至抱闸输出OFF延时", "Servo OFF to brake engage delay in motion",
        unit="ms", fac=500, min=1, max=1000, access=1)
    g.p("LED警告显示选择", "LED warning display", fac=0, max=1, access=1,
        values=enum((0, "立即输出LED警告显示", "Show warnings at once"),
                    (1, "不输出LED警告显示", "Hide warnings")))
    g.p("电阻制动能量吸收选择", "Braking resistor selection", fac=0, max=3, modify=1,
        access=1,
        values=enum((0, "使用内置制动电阻", "Built-in resistor"),
                    (1, "使用外接制动电阻,自然冷却", "External, natural cooling"),
                    (2, "使用外接制动电阻,强制风冷", "External, forced cooling"),
                    (3, "不用制动电阻,全靠电容吸收", "None, capacitors only")))
    g.p("外接制动电阻功率", "External resistor power", unit="W", fac=40, min=1, max=65535,
        access=1)
    g.p("外接制动电阻阻值", "External resistor value", unit="Ω", fac=50, min=1, max=1000,
        access=1)
    g.p("电阻散热系数", "Resistor heat coefficient", unit="%", fac=30, min=10, max=100,
        access=2)
    g.p("内置制动电阻功率", "Built-in resistor power", unit="W", fac=40, max=65535, modify=2,
        access=2)
    g.p("内置制动电阻阻值", "Built-in resistor value", unit="Ω", fac=50, max=1000, modify=2,
        access=2)
    g.p("用户密码", "User password", fac=0, max=65535, display=4, access=0,
        changeTracked=False,
        info="设定后,再次进入参数时须先输入该密码。", infoEn="Once set, it is asked for before parameters can be edited.")
    g.p("系统参数初始化", "Parameter initialisation", fac=0, max=2, modify=1, access=2,
        changeTracked=False,
        values=enum((0, "无操作", "None"), (1, "恢复出厂设定值", "Restore factory values"),
                    (2, "清除故障记录", "Clear fault log")))
    g.p("面板默认监视内容", "Default panel monitor", fac=50, max=99, access=0,
        hiddenForUser=True,
        info="指定上电后面板显示的H0B组参数序号。", infoEn="Index of the H0B item shown after power-up.")
    g.p("面板显示选择", "Panel display options", fac=110, max=1111, access=1,
        values={"digits": [
            {"text": "状态显示", "textEn": "Status display", "digit": 0,
             "options": [opt(0, "显示运行状态", "Run state"), opt(1, "显示监视值", "Monitor value")]},
            {"text": "小数点闪烁", "textEn": "Decimal point blink", "digit": 1,
             "options": [opt(0, "不闪烁", "Steady"), opt(1, "闪烁", "Blink")]},
            {"text": "故障时显示", "textEn": "Display on fault", "digit": 2,
             "options": [opt(0, "故障码", "Fault code"), opt(1, "故障码与监视值交替", "Alternate")]},
            {"text": "按键锁定", "textEn": "Key lock", "digit": 3,
             "options": [opt(0, "不锁定", "Unlocked"), opt(1, "锁定", "Locked")]}]})
    g.p("厂家密码", "Factory password", index=41, fac=0, max=65535, display=4, access=3,
        changeTracked=False, transferable=False,
        info="用于开放厂家参数,断电后失效。", infoEn="Opens the factory parameters until power-off.")
    groups.append(g)

    # --- H03 terminal inputs.
    g = Group(0x03, "端子输入参数", "Input terminal parameters")
    g.p("上电即生效的输入功能1", "DI functions active at power-up 1", fac=0, max=65535,
        display=1, effect=2, access=2,
        values=bits(*[(b, "输入功能%d" % (b + 1), "Input function %d" % (b + 1)) for b in range(16)]))
    g.p("上电即生效的输入功能2", "DI functions active at power-up 2", fac=0, max=65535,
        display=1, effect=2, access=2,
        values=bits(*[(b, "输入功能%d" % (b + 17), "Input function %d" % (b + 17)) for b in range(16)]))
    for n in range(1, 10):
        g.p("DI%d端子功能选择" % n, "DI%d function" % n, fac=[1, 2, 14, 15, 3, 0,
                                                                       31, 30, 0][n - 1],
            max=34, effect=3, access=1, values="DiFunction")
        g.p("DI%d端子逻辑选择" % n, "DI%d logic" % n, fac=0, max=4, effect=3,
            access=1, values="DiLogic")
    for n, code in ((1, "AI1"), (2, "AI2")):
        g.p("%s偏置" % code, "%s offset" % code, type="i16", unit="mV", fac=0, min=-5000,
            max=5000, access=1)
        g.p("%s输入滤波时间常数" % code, "%s filter time" % code, unit="ms", dec=2, fac=200,
            max=65535, access=1)
        g.p("%s死区" % code, "%s dead band" % code, unit="mV", dec=1, fac=100, max=10000,
            access=1)
        g.p("%s零漂" % code, "%s zero drift" % code, type="i16", unit="mV", dec=1, fac=0,
            min=-5000, max=5000, access=1)
    g.p("模拟量10V对应速度值", "Speed at 10 V", unit="rpm", fac=3000, max=6000, access=1)
    g.p("模拟量10V对应转矩值", "Torque at 10 V", unit="倍额定转矩", dec=2, fac=100, max=800,
        access=1)
    groups.append(g)

    # --- H04 terminal outputs.
    g = Group(0x04, "端子输出参数", "Output terminal parameters")
    for n in range(1, 6):
        g.p("DO%d端子功能选择" % n, "DO%d function" % n, fac=[1, 5, 3, 11, 9][n - 1], max=18,
            effect=3, access=1, values="DoFunction")
        g.p("DO%d端子逻辑电平选择" % n, "DO%d logic" % n, fac=0, max=1, effect=3, access=1,
            values="DoLogic")
    g.p("DO来源选择", "DO source", fac=0, max=31, display=1, access=2,
        values=bits(*[(b, "DO%d来源为通讯" % (b + 1), "DO%d from communication" % (b + 1))
                      for b in range(5)]))
    for n in (1, 2):
        g.p("AO%d信号选择" % n, "AO%d signal" % n, fac=n - 1, max=9, access=1,
            values=enum((0, "电机转速", "Motor speed"), (1, "速度指令", "Speed command"),
                        (2, "转矩指令", "Torque command"), (3, "位置偏差", "Position deviation"),
                        (4, "位置放大器偏差", "Amplified deviation"), (5, "位置指令速度", "Command speed"),
                        (6, "定位完成指令", "Positioning done"), (7, "速度前馈", "Speed feed-forward"),
                        (8, "AI1电压", "AI1 voltage"), (9, "AI2电压", "AI2 voltage")))
        g.p("AO%d偏移电压" % n, "AO%d offset" % n, type="i16", unit="mV", fac=0, min=-10000,
            max=10000, access=1)
        g.p("AO%d倍率" % n, "AO%d multiplier" % n, type="i16", unit="倍", dec=2, fac=100,
            min=-9999, max=9999, access=1)
    groups.append(g)

    # --- H05 position control.
    g = Group(0x05, "位置控制参数", "Position control parameters")
    g.p("主位置指令来源", "Main position command source", fac=0, max=2, modify=1, access=1,
        values=enum((0, "脉冲指令", "Pulse input"), (1, "步进量", "Step amount"),
                    (2, "多段位置指令", "Multi-segment position")))
    g.p("步进量", "Step amount", type="i16", unit="指令单位", fac=50, min=-9999, max=9999,
        access=1)
    g.p("电机每旋转1圈的位置指令数", "Position commands per revolution", type="u32",
        unit="P/r", fac=0, max=1073741824, modify=1, effect=2, access=1)
    g.p("一阶低通滤波时间常数", "First-order smoothing time", unit="ms", dec=1, fac=0,
        max=65535, modify=1, access=1)
    g.p("平均值滤波时间常数", "Moving-average time", unit="ms", dec=1, fac=0, max=1280,
        modify=1, access=1)
    g.p("电子齿轮比1(分子)", "Gear ratio 1 numerator", type="u32", fac=8388608, min=1,
        max=1073741824, modify=1, access=1)
    g.p("电子齿轮比1(分母)", "Gear ratio 1 denominator", type="u32", fac=10000, min=1,
        max=1073741824, modify=1, access=1)
    g.p("电子齿轮比2(分子)", "Gear ratio 2 numerator", type="u32", fac=8388608, min=1,
        max=1073741824, modify=1, access=1)
    g.p("电子齿轮比2(分母)", "Gear ratio 2 denominator", type="u32", fac=10000, min=1,
        max=1073741824, modify=1, access=1)
    g.p("脉冲指令形态", "Pulse input form", fac=0, max=255, display=1, modify=1, effect=2,
        access=1,
        values={"bitRanges": [
            {"text": "脉冲形式", "textEn": "Pulse form", "first": 0, "width": 2,
             "options": [opt(0, "脉冲+方向,正逻辑", "Pulse and direction, positive"),
                         opt(1, "脉冲+方向,负逻辑", "Pulse and direction, negative"),
                         opt(2, "A相+B相正交脉冲,4倍频", "A/B quadrature x4"),
                         opt(3, "CW+CCW", "CW and CCW")]},
            {"text": "输入端口", "textEn": "Input port", "first": 2, "width": 1,
             "options": [opt(0, "低速脉冲口", "Low-speed port"), opt(1, "高速脉冲口", "High-speed port")]},
            {"text": "输入滤波", "textEn": "Input filter", "first": 4, "width": 3,
             "options": [opt(0, "无滤波", "None"), opt(1, "0.1us", "0.1 us"), opt(2, "0.2us", "0.2 us"),
                         opt(3, "0.4us", "0.4 us"), opt(4, "0.8us", "0.8 us")]}]})
    g.p("清除动作选择", "Deviation clear", fac=0, max=2, access=1,
        values=enum((0, "伺服使能OFF及发生故障时清除", "At servo OFF and fault"),
                    (1, "伺服使能OFF及发生故障和警告时清除", "At servo OFF, fault, warning"),
                    (2, "通过DI功能清除", "By DI function")))
    g.p("编码器分频脉冲数", "Encoder divider output", type="u32", unit="P/r", fac=2500,
        min=35, max=32767, modify=1, effect=2, access=1)
    g.p("速度前馈控制选择", "Speed feed-forward source", fac=1, max=3, access=1,
        values=enum((0, "无速度前馈", "None"), (1, "内部速度前馈", "Internal"),
                    (2, "将AI1用作速度前馈输入", "AI1"), (3, "将AI2用作速度前馈输入", "AI2")))
    g.p("定位完成输出条件", "Positioning completed condition", fac=0, max=3, access=1,
        values=enum((0, "位置偏差绝对值小于阈值时输出", "Deviation below threshold"),
                    (1, "位置偏差绝对值小于阈值且滤波后指令为0时输出",
                     "Deviation below threshold and command 0"),
                    (2, "位置偏差绝对值小于阈值且滤波前指令为0时输出",
                     "Deviation below threshold, raw command 0"),
                    (3, "上述条件并保持定位完成窗口时间", "And held for the window time")))
    g.p("定位完成幅值", "Positioning completed window", unit="编码器单位", fac=734, min=1,
        max=65535, access=1)
    win = g.p("定位接近幅值", "Near positioning window", unit="编码器单位", fac=65535, min=1,
              max=65535, access=1)
    g.p("中断定长使能", "Interrupt positioning enable", fac=0, max=1, modify=1, access=1,
        values="OnOff")
    g.p("中断定长位移", "Interrupt positioning displacement", type="u32", unit="指令单位",
        fac=10000, max=1073741824, access=1)
    g.p("中断定长恒速运行速度", "Interrupt positioning speed", unit="rpm", fac=200, max=6000,
        access=1)
    g.p("中断定长加减速时间", "Interrupt positioning ramp", unit="ms", fac=10, max=1000,
        access=1)
    g.p("中断定长完成后锁定", "Lock after interrupt positioning", fac=1, max=1, access=1,
        values="OnOff")
    g.p("原点复归使能控制", "Homing control", fac=0, max=6, access=1,
        values=enum((0, "关闭原点复归功能", "Off"), (1, "通过DI输入原点复归使能", "Start by DI"),
                    (2, "通过DI输入电气回原点", "Electrical homing by DI"),
                    (3, "上电后立即启动原点复归", "At power-up"), (4, "立即进行原点复归", "Now"),
                    (5, "启动电气回原点命令", "Electrical homing now"),
                    (6, "以当前位置为原点", "Current position is home")))
    g.p("原点复归模式", "Homing method", fac=0, max=9, access=1,
        values=enum(*[(v, t, e) for v, t, e in (
            (0, "正向回零,减速点、原点为原点开关", "Forward to home switch"),
            (1, "反向回零,减速点、原点为原点开关", "Reverse to home switch"),
            (2, "正向回零,减速点、原点为电机Z信号", "Forward to Z pulse"),
            (3, "反向回零,减速点、原点为电机Z信号", "Reverse to Z pulse"),
            (4, "正向回零,减速点为原点开关、原点为Z信号", "Forward, switch then Z"),
            (5, "反向回零,减速点为原点开关、原点为Z信号", "Reverse, switch then Z"),
            (6, "正向回零,减速点、原点为正向超程开关", "Forward to overtravel"),
            (7, "反向回零,减速点、原点为反向超程开关", "Reverse to overtravel"),
            (8, "正向回零,减速点为正向超程、原点为Z信号", "Forward overtravel then Z"),
            (9, "反向回零,减速点为反向超程、原点为Z信号", "Reverse overtravel then Z"))]))
    g.p("高速搜索原点开关信号的速度", "Homing high speed", unit="rpm", fac=100, min=0,
        max=3000, access=1)
    g.p("低速搜索原点开关信号的速度", "Homing low speed", unit="rpm", fac=10, min=0, max=1000,
        access=1)
    g.p("搜索原点开关信号时的加减速时间", "Homing ramp time", unit="ms", fac=1000, min=0,
        max=1000, access=1)
    g.p("限定查找原点的时间", "Homing time limit", unit="ms", fac=10000, min=0, max=65535,
        access=1)
    g.p("机械原点偏移量", "Home offset", type="i32", unit="指令单位", fac=0,
        min=-1073741824, max=1073741824, access=1)
    g.p("位置偏差过大阈值", "Excessive position deviation", type="u32", unit="编码器单位",
        fac=3000000, max=1073741824, access=1, minLink=win,
        info="下限跟随定位接近幅值。", infoEn="Never below the near-positioning window.")
    groups.append(g)

    # --- H06 speed control, with limits that follow each other.
    g = Group(0x06, "速度控制参数", "Speed control parameters")
    g.p("主速度指令A来源", "Main speed command A source", fac=0, max=2, modify=1, access=1,
        values=enum((0, "键盘数字给定", "Keypad setting"), (1, "AI1", "AI1"), (2, "AI2", "AI2")))
    g.p("辅助速度指令B来源", "Auxiliary speed command B source", fac=1, max=5, modify=1,
        access=1,
        values=enum((0, "键盘数字给定", "Keypad setting"), (1, "AI1", "AI1"), (2, "AI2", "AI2"),
                    (3, "零", "Zero"), (4, "无作用", "None"), (5, "多段速度指令", "Multi-segment speed")))
    # The speed settings below may not exceed this threshold.
    maxspd = g.p("最大转速阈值", "Maximum speed threshold", unit="rpm", fac=6000, min=0,
                 max=6000, access=1)
    g.p("速度指令选择", "Speed command selection", fac=0, max=4, modify=1, access=1,
        values=enum((0, "主速度指令A来源", "Source A"), (1, "辅助速度指令B来源", "Source B"),
                    (2, "A+B", "A+B"), (3, "A/B切换", "A/B switch"), (4, "通讯给定", "Communication")))
    g.p("速度指令键盘设定值", "Keypad speed setting", type="i16", unit="rpm", fac=200,
        min=-6000, maxLink=maxspd)
    g.p("点动速度设定值", "Jog speed", unit="rpm", fac=100, min=0, maxLink=maxspd, access=0)
    g.p("速度指令加速斜坡时间常数", "Speed acceleration time", unit="ms", fac=0, max=65535,
        access=1)
    g.p("速度指令减速斜坡时间常数", "Speed deceleration time", unit="ms", fac=0, max=65535,
        access=1)
    g.p("正向速度阈值", "Forward speed limit", unit="rpm", fac=6000, min=0, maxLink=maxspd,
        access=1)
    g.p("反向速度阈值", "Reverse speed limit", unit="rpm", fac=6000, min=0, maxLink=maxspd,
        access=1)
    g.p("转矩前馈控制选择", "Torque feed-forward", fac=1, max=1, access=1, values="OnOff")
    g.p("零位固定转速阈值", "Zero clamp speed", unit="rpm", fac=10, max=6000, access=1)
    g.p("电机旋转速度阈值", "Rotation detection speed", unit="rpm", fac=20, max=1000, access=1)
    g.p("速度一致信号阈值", "Speed coincidence window", unit="rpm", fac=10, max=100, access=1)
    g.p("速度到达信号阈值", "Speed reached threshold", unit="rpm", fac=1000, min=10, max=6000,
        access=1)
    g.p("零速输出信号阈值", "Zero speed threshold", unit="rpm", fac=10, min=1, max=6000,
        access=1)
    groups.append(g)

    # --- H07 torque control: per-unit values against the motor's rated torque.
    g = Group(0x07, "转矩控制参数", "Torque control parameters")
    g.p("主转矩指令A来源", "Main torque command A source", fac=0, max=2, modify=1, access=1,
        values=enum((0, "键盘数字给定", "Keypad setting"), (1, "AI1", "AI1"), (2, "AI2", "AI2")))
    g.p("辅助转矩指令B来源", "Auxiliary torque command B source", fac=1, max=2, modify=1,
        access=1,
        values=enum((0, "键盘数字给定", "Keypad setting"), (1, "AI1", "AI1"), (2, "AI2", "AI2")))
    g.p("转矩指令选择", "Torque command selection", fac=0, max=4, modify=1, access=1,
        values=enum((0, "主转矩指令A来源", "Source A"), (1, "辅助转矩指令B来源", "Source B"),
                    (2, "A+B", "A+B"), (3, "A/B切换", "A/B switch"), (4, "通讯给定", "Communication")))
    g.p("转矩指令键盘设定值", "Keypad torque setting", type="i16", fac=0, min=-12288,
        max=12288, display=2, perUnitBase=1, access=1)
    g.p("转矩指令滤波时间常数", "Torque command filter", unit="ms", dec=2, fac=79, max=3000,
        access=1)
    g.p("第2转矩指令滤波时间常数", "Second torque command filter", unit="ms", dec=2, fac=79,
        max=3000, access=1)
    g.p("转矩限制来源", "Torque limit source", fac=0, max=4, access=1,
        values=enum((0, "正负内部转矩限制", "Internal"), (1, "正负外部转矩限制", "External by DI"),
                    (2, "模拟量转矩限制", "Analog torque limit"),
                    (3, "外部限制与模拟量限制取小", "Smaller of external and analog"),
                    (4, "内部限制与模拟量限制切换", "Internal or analog")))
    g.p("转矩限制模拟量通道", "Torque limit analog input", fac=2, min=1, max=2, access=1,
        values=enum((1, "AI1", "AI1"), (2, "AI2", "AI2")))
    pos_limit = g.p("正内部转矩限制", "Positive internal torque limit", type="i16", fac=12288,
                    min=0, max=16384, display=2, perUnitBase=1, access=1)
    neg_limit = g.p("负内部转矩限制", "Negative internal torque limit", type="i16", fac=12288,
                    min=0, max=16384, display=2, perUnitBase=1, access=1)
    g.p("正外部转矩限制", "Positive external torque limit", type="i16", fac=4096, min=0,
        maxLink=pos_limit, display=2, perUnitBase=1, access=1)
    g.p("负外部转矩限制", "Negative external torque limit", type="i16", fac=4096, min=0,
        maxLink=neg_limit, display=2, perUnitBase=1, access=1)
    g.p("紧急停机转矩", "Emergency stop torque", type="i16", fac=4096, min=0, maxLink=pos_limit,
        display=2, perUnitBase=1, access=1)
    g.p("转矩控制时速度限制来源", "Speed limit source in torque mode", fac=0, max=2, access=1,
        values=enum((0, "内部速度限制", "Internal"), (1, "模拟量速度限制", "Analog speed limit"),
                    (2, "通过DI选择第1或第2速度限制", "By DI")))
    g.p("速度限制模拟量通道", "Speed limit analog input", fac=1, min=1, max=2, access=1,
        values=enum((1, "AI1", "AI1"), (2, "AI2", "AI2")))
    g.p("转矩控制正向速度限制值", "Forward speed limit in torque mode", unit="rpm", fac=3000,
        max=6000, access=1)
    g.p("转矩控制反向速度限制值", "Reverse speed limit in torque mode", unit="rpm", fac=3000,
        max=6000, access=1)
    g.p("转矩到达基准值", "Torque reached reference", type="i16", fac=0, min=0, max=12288,
        display=2, perUnitBase=1, access=1)
    g.p("转矩到达有效值", "Torque reached on", type="i16", fac=820, min=0, max=12288,
        display=2, perUnitBase=1, access=1)
    g.p("转矩到达无效值", "Torque reached off", type="i16", fac=410, min=0, max=12288,
        display=2, perUnitBase=1, access=1)
    g.p("转矩指令(32位定标)", "Torque command, 32-bit scale", type="i32", fac=0,
        min=-805306368, max=805306368, display=2, perUnitBase=1, access=2,
        changeTracked=False)
    groups.append(g)

    # --- H08 gains.
    g = Group(0x08, "增益类参数", "Gain parameters")
    for n, suffix, en in ((0, "", ""), (3, "第2", "2nd ")):
        g.p("%s速度环增益" % suffix, "%sSpeed loop gain" % en, unit="Hz", dec=1,
            fac=250, min=1, max=20000, access=1)
        g.p("%s速度环积分时间常数" % suffix, "%sSpeed loop integral time" % en,
            unit="ms", dec=2, fac=3183, min=15, max=51200, access=1)
        g.p("%s位置环增益" % suffix, "%sPosition loop gain" % en, unit="Hz",
            dec=1, fac=400, min=0, max=20000, access=1)
    g.p("第二增益模式设置", "Second gain mode", fac=1, max=1, access=2,
        values=enum((0, "第一增益固定,用外部DI切换P/PI", "Fixed first gain, P/PI by DI"),
                    (1, "按增益切换条件自动切换", "Switch by condition")))
    g.p("增益切换条件选择", "Gain switching condition", fac=0, max=10, access=2,
        values=enum(*[(i, t, e) for i, (t, e) in enumerate((
            ("第一增益固定", "First gain"), ("使用外部DI切换", "External DI"),
            ("转矩指令大", "Large torque command"), ("速度指令变化大", "Speed command changes"),
            ("速度指令高速", "High speed command"), ("位置偏差大", "Large deviation"),
            ("有位置指令", "Position command present"), ("定位未完成", "Positioning not done"),
            ("实际速度大", "High actual speed"), ("有位置指令+实际速度", "Command and speed"),
            ("通讯切换", "Communication")))]))
    g.p("增益切换延迟时间", "Gain switching delay", unit="ms", dec=1, fac=50, max=10000,
        access=2)
    g.p("增益切换等级", "Gain switching level", fac=50, max=20000, access=2)
    g.p("增益切换时滞", "Gain switching hysteresis", fac=30, max=20000, access=2)
    g.p("位置增益切换时间", "Position gain switching time", unit="ms", dec=1, fac=30,
        max=10000, access=2)
    g.p("负载转动惯量比", "Load inertia ratio", unit="倍", dec=2, fac=100, max=12000, access=1)
    g.p("速度前馈滤波时间常数", "Speed feed-forward filter", unit="ms", dec=2, fac=50,
        max=6400, access=2)
    g.p("速度前馈增益", "Speed feed-forward gain", unit="%", dec=1, fac=0, max=1000, access=2)
    g.p("转矩前馈滤波时间常数", "Torque feed-forward filter", unit="ms", dec=2, fac=50,
        max=6400, access=2)
    g.p("转矩前馈增益", "Torque feed-forward gain", unit="%", dec=1, fac=0, max=2000, access=2)
    g.p("速度反馈滤波选项", "Speed feedback filter", fac=0, max=4, access=2,
        values=enum((0, "禁止速度反馈平均滤波", "Off"), (1, "2次平均", "Average of 2"),
                    (2, "4次平均", "Average of 4"), (3, "8次平均", "Average of 8"),
                    (4, "16次平均", "Average of 16")))
    g.p("速度反馈低通滤波截止频率", "Speed feedback low-pass cut-off", unit="Hz", fac=8000,
        min=100, max=8000, access=2)
    g.p("伪微分前馈控制系数", "Pseudo-derivative feed-forward", unit="%", dec=1, fac=1000,
        max=1000, access=2)
    groups.append(g)

    # --- H09 auto-tuning and notches.
    g = Group(0x09, "自调整参数", "Auto-tuning parameters")
    g.p("自调整模式选择", "Auto-tuning mode", fac=0, max=6, access=1,
        values=enum((0, "参数自调整无效,手动调节增益", "Manual gains"),
                    (1, "标准刚性表模式", "Standard rigidity table"),
                    (2, "定位模式", "Positioning"), (3, "交互式模式", "Interactive"),
                    (4, "普通模式+惯量动态辨识", "Normal with inertia estimation"),
                    (6, "快速调整模式", "Quick tuning")))
    g.p("刚性等级选择", "Rigidity level", fac=12, max=31, access=1)
    g.p("自适应陷波器模式选择", "Adaptive notch mode", fac=0, max=4, access=1,
        values=enum((0, "参数不再自动更新", "Frozen"), (1, "1个自适应陷波器有效", "One notch"),
                    (2, "2个自适应陷波器有效", "Two notches"), (3, "只检测共振频率", "Detect only"),
                    (4, "清除陷波器,恢复出厂", "Clear")))
    g.p("在线惯量辨识模式", "Online inertia estimation", fac=0, max=3, access=1,
        values=enum((0, "关闭", "Off"), (1, "开启,缓慢变化", "Slow"), (2, "开启,一般变化", "Normal"),
                    (3, "开启,快速变化", "Fast")))
    g.p("低频共振抑制模式", "Low-frequency vibration suppression", fac=0, max=1, access=1,
        values="OnOff")
    g.p("离线惯量辨识模式选择", "Offline inertia estimation mode", fac=1, max=1, access=1,
        values=enum((0, "正反三角波模式", "Triangle wave"), (1, "JOG点动模式", "Jog")))
    g.p("惯量辨识最大速度", "Inertia estimation top speed", unit="rpm", fac=800, min=100,
        max=1000, access=1)
    g.p("惯量辨识时加速至最大速度时间常数", "Inertia estimation ramp", unit="ms", fac=125,
        min=20, max=800, access=1)
    g.p("单次惯量辨识完成后等待时间", "Inertia estimation pause", unit="ms", fac=800, min=50,
        max=10000, access=1)
    g.p("完成单次惯量辨识电机转动圈数", "Revolutions per estimation", unit="r", dec=2, fac=109,
        modify=2, max=65535, access=1)
    for n in range(1, 5):
        g.p("第%d组陷波器频率" % n, "Notch %d frequency" % n, unit="Hz",
            fac=4000, min=50, max=4000, access=1)
        g.p("第%d组陷波器宽度等级" % n, "Notch %d width" % n, fac=2, max=20, access=1)
        g.p("第%d组陷波器衰减等级" % n, "Notch %d depth" % n, unit="dB", fac=0, max=99,
            access=1)
    g.p("辨识得到的共振频率", "Detected resonance frequency", unit="Hz", fac=0, max=5000,
        modify=2, changeTracked=False)
    g.p("转矩扰动补偿增益", "Disturbance compensation gain", unit="%", dec=1, fac=0, max=1000,
        access=2)
    g.p("转矩扰动观测器滤波时间常数", "Disturbance observer filter", unit="ms", dec=2, fac=50,
        max=2500, access=2)
    g.p("低频共振频率", "Low-frequency resonance", unit="Hz", dec=1, fac=1000, min=10,
        max=1000, access=1)
    g.p("低频共振频率滤波设定", "Low-frequency resonance filter", fac=2, max=10, access=1)
    groups.append(g)

    # --- H0A faults and protection.
    g = Group(0x0A, "故障与保护参数", "Fault and protection parameters")
    g.p("电源输入缺相保护选择", "Input phase loss protection", fac=0, max=2, access=1,
        values=enum((0, "使能故障禁止警告", "Fault, no warning"), (1, "使能故障和警告", "Fault and warning"),
                    (2, "禁止故障和警告", "Neither")))
    g.p("绝对位置限制设定", "Absolute position limit", fac=0, max=2, access=1,
        values=enum((0, "关闭", "Off"), (1, "开启", "On"), (2, "原点复归后开启", "On after homing")))
    g.p("掉电保存功能使能", "Save on power loss", fac=0, max=1, access=1, values="OnOff")
    g.p("电机过载保护增益", "Motor overload gain", unit="%", fac=100, min=50, max=300,
        access=2)
    g.p("过速故障阈值", "Overspeed threshold", unit="rpm", fac=0, max=10000, access=2,
        info="为0时按最大转速的1.2倍判断。", infoEn="0 means 1.2 times the maximum speed.")
    g.p("最大位置脉冲频率", "Maximum pulse frequency", unit="kHz", fac=4000, min=100,
        max=4000, access=2)
    g.p("位置偏差过大故障阈值", "Following error threshold", type="u32", unit="编码器单位",
        fac=3000000, max=1073741824, access=1)
    g.p("飞车保护功能使能", "Runaway protection", fac=1, max=1, access=2, values="OnOff")
    g.p("故障与警告屏蔽字", "Fault and warning mask", fac=0, max=65535, display=1, access=3,
        effect=2,
        values=bits((0, "屏蔽欠压警告", "Mask undervoltage warning"),
                    (1, "屏蔽风扇故障", "Mask fan fault"),
                    (2, "屏蔽编码器电池警告", "Mask encoder battery warning"),
                    (3, "屏蔽制动电阻过载警告", "Mask braking resistor warning"),
                    (4, "屏蔽输出缺相检测", "Mask output phase loss"),
                    (5, "屏蔽超程警告", "Mask overtravel warning"),
                    (8, "屏蔽堵转过温保护", "Mask stall overheat"),
                    (15, "屏蔽全部警告", "Mask all warnings")))
    g.p("堵转过温保护时间窗口", "Stall overheat window", unit="ms", fac=200, min=10, max=65535,
        access=2)
    g.p("堵转过温保护使能", "Stall overheat protection", fac=1, max=1, access=2,
        values="OnOff")
    g.p("编码器多圈溢出故障选择", "Multi-turn overflow fault", fac=0, max=1, access=2,
        values=enum((0, "不屏蔽", "Report"), (1, "屏蔽", "Mask")))
    g.p("电机温度保护阈值", "Motor temperature threshold", unit="℃", fac=140, min=50,
        max=180, access=2)
    g.p("驱动器过载警告值", "Drive overload warning level", unit="%", fac=80, min=50,
        max=100, access=2)
    g.p("电机过载警告值", "Motor overload warning level", unit="%", fac=80, min=50, max=100,
        access=2)
    groups.append(g)

    # --- H0B monitoring: read-only, never tracked as modified, never transferred back.
    g = Group(0x0B, "监控参数", "Monitoring parameters")
    mon = dict(modify=2, changeTracked=False)
    g.p("实际电机转速", "Actual motor speed", type="i16", unit="rpm", **mon)
    g.p("速度指令", "Speed command", type="i16", unit="rpm", **mon)
    g.p("内部转矩指令", "Internal torque command", type="i16", unit="%", dec=1, **mon)
    g.p("输入信号监视", "Input signal monitor", display=1, **mon,
        values=bits(*[(b, "DI%d" % (b + 1), "DI%d" % (b + 1)) for b in range(9)]))
    g.p("输出信号监视", "Output signal monitor", display=1, **mon,
        values=bits(*[(b, "DO%d" % (b + 1), "DO%d" % (b + 1)) for b in range(5)]))
    g.p("绝对位置计数器", "Absolute position counter", type="i32", unit="指令单位", **mon)
    g.p("机械角度", "Mechanical angle", unit="°", dec=1, **mon)
    g.p("电气角度", "Electrical angle", unit="°", dec=1, **mon)
    g.p("输入位置指令对应速度", "Speed of position command", type="i16", unit="rpm", **mon)
    g.p("平均负载率", "Average load ratio", unit="%", dec=1, **mon)
    g.p("输入指令脉冲计数器", "Command pulse counter", type="i32", unit="指令单位", **mon)
    g.p("编码器位置偏差计数器", "Encoder deviation counter", type="i32", unit="编码器单位", **mon)
    g.p("反馈脉冲计数器", "Feedback pulse counter", type="i32", unit="编码器单位", **mon)
    g.p("总上电时间", "Total power-on time", type="u32", unit="s", dec=1, **mon)
    g.p("AI1采样电压", "AI1 voltage", type="i16", unit="V", dec=2, **mon)
    g.p("AI2采样电压", "AI2 voltage", type="i16", unit="V", dec=2, **mon)
    g.p("相电流有效值", "Phase current RMS", unit="A", dec=2, **mon)
    g.p("母线电压值", "DC bus voltage", unit="V", dec=1, **mon)
    g.p("模块温度值", "Power module temperature", unit="℃", **mon)
    g.p("已记录的故障次数", "Recorded faults", **mon)
    g.p("所选故障码", "Selected fault code", display=1, **mon)
    g.p("所选故障时间戳", "Selected fault time stamp", type="u32", unit="s", dec=1, **mon)
    g.p("所选故障时电机转速", "Speed at selected fault", type="i16", unit="rpm", **mon)
    g.p("位置偏差计数器", "Position deviation counter", type="i32", unit="指令单位", **mon)
    g.p("实际电机转速(0.1rpm)", "Actual speed (0.1 rpm)", type="i32", unit="rpm", dec=1,
        **mon)
    g.p("机械绝对位置(低32位)", "Mechanical absolute position, low word", type="i32",
        unit="编码器单位", **mon)
    g.p("机械绝对位置(高32位)", "Mechanical absolute position, high word", type="i32",
        unit="编码器单位", **mon)
    g.p("绝对值编码器旋转圈数", "Absolute encoder turns", unit="r", **mon)
    g.p("绝对值编码器单圈位置", "Absolute encoder single-turn position", type="u32",
        unit="编码器单位", **mon)
    g.p("当前访问权限", "Present access authority", fac=0, max=3, **mon,
        values=enum((0, "巡视参数", "Inspection"), (1, "基础参数", "Basic"), (2, "专家参数", "Expert"),
                    (3, "厂家参数", "Factory")))
    groups.append(g)

    # --- H0C communication.
    g = Group(0x0C, "通讯参数", "Communication parameters")
    g.p("伺服轴地址", "Servo axis address", fac=1, min=1, max=247, access=1)
    g.p("串口波特率设置", "Serial baud rate", fac=5, max=7, access=1, effect=1,
        values=enum((0, "2400", "2400"), (1, "4800", "4800"), (2, "9600", "9600"),
                    (3, "19200", "19200"), (4, "38400", "38400"), (5, "57600", "57600"),
                    (6, "115200", "115200"), (7, "230400", "230400")))
    g.p("Modbus数据格式", "Modbus data format", fac=0, max=255, display=1, access=1,
        values={"bitRanges": [
            {"text": "校验方式", "textEn": "Parity", "first": 0, "width": 2,
             "options": [opt(0, "无校验", "None"), opt(1, "偶校验", "Even"), opt(2, "奇校验", "Odd")]},
            {"text": "停止位", "textEn": "Stop bits", "first": 2, "width": 1,
             "options": [opt(0, "1个停止位", "1"), opt(1, "2个停止位", "2")]},
            {"text": "字节顺序", "textEn": "Word order", "first": 4, "width": 1,
             "options": [opt(0, "高位在前", "High word first"), opt(1, "低位在前", "Low word first")]}]})
    g.p("通讯VDI使能", "Communication VDI", fac=0, max=1, modify=1, access=1, values="OnOff")
    g.p("上电后VDI默认值", "VDI default at power-up", fac=0, max=65535, display=1, access=1,
        values=bits(*[(b, "VDI%d" % (b + 1), "VDI%d" % (b + 1)) for b in range(16)]))
    g.p("通讯VDO使能", "Communication VDO", fac=0, max=1, access=1, values="OnOff")
    g.p("VDO功能选择为0时默认电平", "VDO level when unassigned", fac=0, max=65535, display=1,
        access=1)
    g.p("通讯写入功能码值是否更新到EEPROM", "Store communication writes in EEPROM", fac=1,
        max=2, access=1,
        values=enum((0, "不更新EEPROM", "No"), (1, "除H0B、H0D外更新EEPROM", "All but H0B and H0D"),
                    (2, "全部更新", "All")))
    g.p("Modbus指令应答延时", "Modbus response delay", unit="ms", fac=1, max=20, access=1)
    g.p("Modbus通讯超时时间", "Modbus timeout", unit="ms", fac=0, max=600, access=1)
    g.p("Modbus通讯数据高低位顺序", "Modbus 32-bit word order", fac=1, max=1, access=1,
        values=enum((0, "高16位在前", "High word first"), (1, "低16位在前", "Low word first")))
    g.p("Modbus错误帧格式选择", "Modbus error frame format", fac=1, max=1, access=2,
        values=enum((0, "旧协议", "Old protocol"), (1, "新协议(标准协议)", "Standard")))
    groups.append(g)

    # --- H0D auxiliary functions: commands, some at standstill only.
    g = Group(0x0D, "辅助功能参数", "Auxiliary functions")
    cmd = dict(changeTracked=False, transferable=False)
    g.p("软件复位", "Software reset", fac=0, max=1, modify=1, effect=1, access=1, **cmd,
        values=enum((0, "无操作", "None"), (1, "使能", "Reset")))
    g.p("故障复位", "Fault reset", fac=0, max=1, access=1, **cmd,
        values=enum((0, "无操作", "None"), (1, "使能", "Reset")))
    g.p("离线惯量辨识功能", "Offline inertia estimation", fac=0, max=1, modify=1, access=1,
        **cmd, values="OnOff")
    g.p("编码器角度辨识", "Encoder angle identification", fac=0, max=1, modify=1, access=3,
        **cmd, values="OnOff")
    g.p("紧急停机", "Emergency stop", fac=0, max=1, access=1, **cmd,
        values=enum((0, "无操作", "None"), (1, "使能紧急停机", "Stop now")))
    g.p("模拟量通道自动调整", "Analog input auto adjust", fac=0, max=2, modify=1, access=2,
        **cmd, values=enum((0, "无操作", "None"), (1, "AI1调整", "Adjust AI1"),
                           (2, "AI2调整", "Adjust AI2")))
    g.p("UV相电流平衡校正", "U/V current balance", fac=0, max=1, modify=1, access=3, **cmd,
        values="OnOff")
    g.p("强制DI/DO使能", "Forced DI/DO", fac=0, max=3, access=2, **cmd,
        values=enum((0, "无操作", "None"), (1, "强制DI使能", "Force DI"),
                    (2, "强制DO使能", "Force DO"), (3, "强制DI和DO使能", "Force both")))
    g.p("DI强制输入给定", "Forced DI value", fac=511, max=511, display=1, access=2, **cmd,
        values=bits(*[(b, "DI%d" % (b + 1), "DI%d" % (b + 1)) for b in range(9)]))
    g.p("DO强制输出给定", "Forced DO value", fac=0, max=31, display=1, access=2, **cmd,
        values=bits(*[(b, "DO%d" % (b + 1), "DO%d" % (b + 1)) for b in range(5)]))
    g.p("绝对值编码器复位使能", "Absolute encoder reset", fac=0, max=2, modify=1, access=2,
        **cmd, values=enum((0, "无操作", "None"), (1, "复位故障", "Reset fault"),
                           (2, "复位故障和多圈数据", "Reset fault and turns")))
    g.p("内部调试字1", "Internal debug word 1", fac=0, max=65535, display=1, modify=3,
        access=3, **cmd)
    g.p("内部调试字2", "Internal debug word 2", fac=0, max=65535, display=3, modify=3,
        access=3, **cmd)
    g.p("临时访问权限", "Temporary access authority", fac=0, max=65535, display=4, access=0,
        **cmd)
    groups.append(g)

    # --- H0E version and function words: fixed, invisible, read with every file.
    g = Group(0x0E, "功能版本信息", "Function version data", access=3, visible=False,
              fixed=True)
    fixed = dict(modify=2, fixed=True, changeTracked=False, access=3, display=1)
    for n in range(1, 10):
        g.p("控制功能字%d" % n, "Control function word %d" % n, type="u32", max=4294967295,
            **fixed)
    g.p("功能版本", "Function version", type="u32", max=4294967295, **fixed)
    g.p("功能临时版本", "Function temporary version", type="u32", max=4294967295, **fixed)
    g.p("性能版本", "Performance version", type="u32", max=4294967295, **fixed)
    g.p("性能临时版本", "Performance temporary version", type="u32", max=4294967295, **fixed)
    groups.append(g)

    # --- H11 multi-segment position.
    g = Group(0x11, "多段位置功能参数", "Multi-segment position")
    g.p("多段位置运行方式", "Multi-segment run mode", fac=1, max=5, modify=1, access=1,
        values=enum((0, "单次运行结束停机", "Single run"), (1, "循环运行", "Cycle"),
                    (2, "DI切换运行", "Switch by DI"), (3, "顺序运行", "Sequential"),
                    (5, "通讯给定", "Communication")))
    g.p("位移指令终点段数选择", "Last segment", fac=1, min=1, max=12, access=1)
    g.p("余量处理方式", "Remaining distance handling", fac=0, max=1, access=1,
        values=enum((0, "继续运行没走完的段", "Continue"), (1, "重新从第1段开始运行", "Restart")))
    g.p("等待时间单位", "Wait time unit", fac=0, max=1, access=1,
        values=enum((0, "ms", "ms"), (1, "s", "s")))
    g.p("位移指令类型选择", "Displacement type", fac=0, max=1, modify=1, access=1,
        values=enum((0, "相对位移指令", "Relative"), (1, "绝对位移指令", "Absolute")))
    g.p("顺序运行起始段选择", "Sequential start segment", fac=0, max=12, access=1)
    for n in range(1, 13):
        g.p("第%d段移动位移" % n, "Segment %d displacement" % n, type="i32",
            unit="指令单位", fac=10000, min=-1073741824, max=1073741824, access=1)
        g.p("第%d段位移最大运行速度" % n, "Segment %d top speed" % n,
            unit="rpm", fac=200, min=1, max=6000, access=1)
        g.p("第%d段位移加减速时间" % n, "Segment %d ramp time" % n,
            unit="ms", fac=10, max=65535, access=1)
        g.p("第%d段位移完成后等待时间" % n, "Segment %d wait time" % n,
            fac=10, max=10000, access=1)
    groups.append(g)

    # --- H12 multi-segment speed.
    g = Group(0x12, "多段速度参数", "Multi-segment speed")
    g.p("多段速度指令运行方式", "Multi-segment speed mode", fac=1, max=2, modify=1, access=1,
        values=enum((0, "单次运行结束停机", "Single run"), (1, "循环运行", "Cycle"),
                    (2, "通过外部DI切换", "Switch by DI")))
    g.p("速度指令终点段数选择", "Last speed segment", fac=16, min=1, max=16, access=1)
    g.p("运行时间单位选择", "Run time unit", fac=0, max=2, access=1,
        values=enum((0, "s", "s"), (1, "min", "min"), (2, "ms", "ms")))
    for n in range(1, 5):
        g.p("加速时间%d" % n, "Acceleration time %d" % n, unit="ms", fac=10 * n, max=65535,
            access=1)
        g.p("减速时间%d" % n, "Deceleration time %d" % n, unit="ms", fac=10 * n, max=65535,
            access=1)
    for n in range(1, 17):
        g.p("第%d段速度指令" % n, "Segment %d speed" % n, type="i16", unit="rpm",
            fac=100 * ((n - 1) % 8 + 1) * (1 if n <= 8 else -1), min=-6000, max=6000,
            access=1)
        g.p("第%d段指令运行时间" % n, "Segment %d run time" % n, unit="s", dec=1, fac=50,
            max=65535, access=1)
        g.p("第%d段升降速时间" % n, "Segment %d ramp select" % n, fac=0, max=3, access=1,
            values="RampSelect")
    groups.append(g)

    # --- H17 virtual DI/DO.
    g = Group(0x17, "虚拟DIDO设置参数", "Virtual DI/DO")
    for n in range(1, 17):
        g.p("VDI%d端子功能选择" % n, "VDI%d function" % n, fac=0, max=34, effect=3,
            access=2, values="DiFunction")
        g.p("VDI%d端子逻辑选择" % n, "VDI%d logic" % n, fac=0, max=1, effect=3, access=2,
            values=enum((0, "写入1有效", "Active on 1"), (1, "由0变1时有效", "Active on rising")))
    g.p("VDO虚拟电平", "VDO level", modify=2, display=1, changeTracked=False,
        values=bits(*[(b, "VDO%d" % (b + 1), "VDO%d" % (b + 1)) for b in range(16)]))
    for n in range(1, 5):
        g.p("VDO%d端子功能选择" % n, "VDO%d function" % n, fac=0, max=18, effect=3, access=2,
            values="DoFunction")
        g.p("VDO%d端子逻辑电平选择" % n, "VDO%d logic" % n, fac=0, max=1, effect=3, access=2,
            values="DoLogic")
    groups.append(g)

    # --- H18 connector wiring: each input names the signal it is wired to.
    g = Group(0x18, "连接器配置参数", "Connector wiring")
    wiring = (
        ("伺服使能信号源", "Servo ON source", "B连接器", "B connector"),
        ("故障复位信号源", "Fault reset source", "B连接器", "B connector"),
        ("正向超程信号源", "Positive overtravel source", "B连接器", "B connector"),
        ("反向超程信号源", "Negative overtravel source", "B连接器", "B connector"),
        ("速度指令信号源", "Speed command source", "F连接器", "F connector"),
        ("转矩限制信号源", "Torque limit source", "F连接器", "F connector"),
        ("AO1输出信号源", "AO1 signal source", "KF连接器", "KF connector"),
        ("AO2输出信号源", "AO2 signal source", "KF连接器", "KF connector"),
        ("状态字输出信号源", "Status word source", "K连接器", "K connector"),
        ("示波器通道1信号源", "Scope channel 1 source", "BKF连接器", "BKF connector"),
        ("示波器通道2信号源", "Scope channel 2 source", "BKF连接器", "BKF connector"))
    for name, en, marker, marker_en in wiring:
        g.p(name, en, fac=0, max=65535, access=2, values=connector_enum(marker, marker_en))
    groups.append(g)

    # --- Connector sources: read-only signals whose values others are wired to.
    g = Group(0x30, "B连接器信号", "B connector signals")
    for t, e in (("伺服准备好", "Servo ready"), ("伺服运行中", "Servo running"),
                 ("零速", "Zero speed"), ("速度到达", "Speed reached"),
                 ("定位完成", "Positioning done"), ("转矩限制中", "Torque limited"),
                 ("故障", "Fault"), ("警告", "Warning"), ("DI1状态", "DI1 state"),
                 ("DI2状态", "DI2 state"), ("DI3状态", "DI3 state"), ("DI4状态", "DI4 state")):
        g.p(t, e, type="bool", modify=2, changeTracked=False, max=1, access=2)
    groups.append(g)
    g = Group(0x31, "K连接器信号", "K connector signals")
    for t, e in (("状态字", "Status word"), ("故障码", "Fault code"), ("控制字", "Control word"),
                 ("DI状态字", "DI word"), ("DO状态字", "DO word"), ("运行模式", "Operating mode")):
        g.p(t, e, modify=2, changeTracked=False, display=1, access=2)
    groups.append(g)
    g = Group(0x32, "F连接器信号", "F connector signals")
    for t, e, u in (("电机转速", "Motor speed", "rpm"), ("速度指令", "Speed command", "rpm"),
                    ("转矩指令", "Torque command", "%"), ("实际转矩", "Actual torque", "%"),
                    ("母线电压", "DC bus voltage", "V"), ("相电流", "Phase current", "A"),
                    ("AI1电压", "AI1 voltage", "V"), ("AI2电压", "AI2 voltage", "V")):
        g.p(t, e, type="f32", unit=u, modify=2, changeTracked=False, min=-100000,
            max=100000, access=2)
    groups.append(g)

    params = [p for grp in groups for p in grp.params]
    by_name = {grp.name: grp for grp in groups}
    motor, basic, monitor = by_name["H00"], by_name["H02"], by_name["H0B"]
    aux, version = by_name["H0D"], by_name["H0E"]

    # Two user-facing sub-groups make the tree deeper than one level.
    group_json = []
    for grp in groups:
        if grp.name == "H0B":
            children = [
                {"name": "H0B-S", "description": "速度与转矩监视", "descriptionEn": "Speed and torque",
                 "members": [monitor.code_of(n) for n in (
                     "实际电机转速", "速度指令", "内部转矩指令", "实际电机转速(0.1rpm)")]},
                {"name": "H0B-F", "description": "故障记录", "descriptionEn": "Fault log",
                 "access": 1, "members": [monitor.code_of(n) for n in (
                     "已记录的故障次数", "所选故障码", "所选故障时间戳", "所选故障时电机转速")]}]
            group_json.append(grp.group_json(children))
        else:
            group_json.append(grp.group_json())

    doc = {
        "format": 1,
        "product": {
            "name": "ZD3-S 单轴伺服驱动器", "nameEn": "ZD3-S single-axis servo drive",
            "lineId": 13, "productId": 33, "subProductId": 0,
            "electronicLabel": "000D 0021 0000 0302 0000 0000 0000 0001 "
                               "5A44 3353 2D35 5235 0000 0000 0000 0000",
            "version": "V3.02.07", "kind": "servo", "accessModel": 2, "axisCopyCount": 0},
        "valueInfos": infos,
        "parameters": params,
        "groups": group_json,
        "namedVariables": [
            {"name": "Authority", "code": monitor.code_of("当前访问权限")},
            {"name": "InputPassword", "code": basic.code_of("用户密码")},
            {"name": "Factory", "code": basic.code_of("厂家密码")},
            {"name": "TempAuthority", "code": aux.code_of("临时访问权限")}],
        "functions": [{"name": "ControlFunction%d" % n, "code": version.code_of("控制功能字%d" % n)}
                      for n in range(1, 10)] + [
            {"name": key, "code": version.code_of(name)} for key, name in (
                ("FunctionVersion", "功能版本"), ("FunctionTempVersion", "功能临时版本"),
                ("PerformanceVersion", "性能版本"), ("PerformanceTempVersion", "性能临时版本"))],
        "connectors": [
            {"kind": "B", "name": "B连接器信号", "group": "H30", "base": 3000},
            {"kind": "K", "name": "K连接器信号", "group": "H31", "base": 3100},
            {"kind": "F", "name": "F连接器信号", "group": "H32", "base": 3200}],
        "perUnitBases": [
            {"id": 1, "bases": [
                {"name": "电机额定转矩", "nameEn": "Motor rated torque", "code": motor.code_of("额定转矩")},
                {"name": "电机最大转矩", "nameEn": "Motor maximum torque", "code": motor.code_of("最大转矩")}]}],
    }
    return doc
