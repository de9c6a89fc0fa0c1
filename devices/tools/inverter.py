"""ZV5 general-purpose inverter, access model 0, groups sorted into categories."""

from common import Group, bits, enum, opt

ON_OFF = enum((0, "无效", "Off"), (1, "有效", "On"))

X_FUNCTIONS = enum(
    (0, "无功能", "None"), (1, "正转运行(FWD)", "Run forward"), (2, "反转运行(REV)", "Run reverse"),
    (3, "三线式运行控制", "Three-wire control"), (4, "正转点动(FJOG)", "Jog forward"),
    (5, "反转点动(RJOG)", "Jog reverse"), (6, "端子UP", "Terminal UP"), (7, "端子DOWN", "Terminal DOWN"),
    (8, "自由停车", "Coast to stop"), (9, "故障复位(RESET)", "Fault reset"),
    (10, "运行暂停", "Pause"), (11, "外部故障常开输入", "External fault, NO"),
    (12, "多段速端子1", "Multi-speed 1"), (13, "多段速端子2", "Multi-speed 2"),
    (14, "多段速端子3", "Multi-speed 3"), (15, "多段速端子4", "Multi-speed 4"),
    (16, "加减速时间选择端子1", "Ramp select 1"), (17, "加减速时间选择端子2", "Ramp select 2"),
    (18, "频率源切换", "Frequency source switch"), (19, "UP/DOWN设定清零", "UP/DOWN reset"),
    (20, "运行命令切换端子", "Command source switch"), (21, "加减速禁止", "Ramp hold"),
    (22, "PID暂停", "PID pause"), (23, "简易PLC状态复位", "PLC reset"),
    (24, "摆频暂停", "Wobble pause"), (25, "计数器输入", "Counter input"),
    (26, "计数器复位", "Counter reset"), (30, "脉冲频率输入", "Pulse input"))

Y_FUNCTIONS = enum(
    (0, "无输出", "None"), (1, "变频器运行中", "Running"), (2, "故障输出(故障停机)", "Fault"),
    (3, "频率水平检测FDT1输出", "FDT1"), (4, "频率到达", "Frequency reached"),
    (5, "零速运行中", "Zero speed"), (6, "电机过载预报警", "Motor overload warning"),
    (7, "变频器过载预报警", "Drive overload warning"), (8, "设定计数值到达", "Count reached"),
    (9, "设定运行时间到达", "Run time reached"), (10, "欠压状态输出", "Undervoltage"),
    (11, "运行准备就绪", "Ready"), (12, "上限频率到达", "Upper frequency reached"))


def build():
    infos = {"XFunction": X_FUNCTIONS, "YFunction": Y_FUNCTIONS, "OnOff": ON_OFF}
    groups = []

    g = Group(0x00, "基本功能组", "Basic functions")
    g.p("负载类型", "Load type", fac=1, min=1, max=2, modify=2,
        values=enum((1, "重载(恒转矩负载)", "Heavy duty: constant torque"), (2, "轻载(风机水泵负载)", "Light duty: fan and pump")))
    g.p("电机控制方式", "Motor control mode", fac=2, max=2, modify=1,
        values=enum((0, "无速度传感器矢量控制", "Sensorless vector"),
                    (1, "有速度传感器矢量控制", "Closed-loop vector"), (2, "V/F控制", "V/F")))
    g.p("命令源选择", "Command source", fac=0, max=2,
        values=enum((0, "操作面板命令通道", "Keypad"), (1, "端子命令通道", "Terminals"),
                    (2, "通讯命令通道", "Communication")))
    g.p("主频率给定源", "Main frequency source", fac=0, max=9, modify=1,
        values=enum((0, "数字设定(预置频率,掉电不记忆)", "Digital, not kept"),
                    (1, "数字设定(预置频率,掉电记忆)", "Digital, kept"), (2, "AI1", "AI1"),
                    (3, "AI2", "AI2"), (4, "面板电位器", "Keypad potentiometer"),
                    (5, "高速脉冲", "Pulse input"), (6, "多段指令", "Multi-speed"),
                    (7, "简易PLC", "Simple PLC"), (8, "PID", "PID"), (9, "通讯给定", "Communication")))
    # Frequencies are bounded by each other: lower <= upper <= maximum.
    fmax = g.p("最大频率", "Maximum frequency", unit="Hz", dec=2, fac=5000, min=5000,
               max=50000, modify=1)
    upper = g.p("上限频率", "Upper frequency limit", unit="Hz", dec=2, fac=5000, maxLink=fmax)
    lower = g.p("下限频率", "Lower frequency limit", unit="Hz", dec=2, fac=0, min=0,
                maxLink=upper)
    g.set(upper, minLink=lower)
    g.p("预置频率", "Preset frequency", unit="Hz", dec=2, fac=5000, min=0, maxLink=upper)
    g.p("载波频率", "Carrier frequency", unit="kHz", dec=1, fac=60, min=5, max=160)
    g.p("加速时间1", "Acceleration time 1", unit="s", dec=1, fac=200, max=65000)
    g.p("减速时间1", "Deceleration time 1", unit="s", dec=1, fac=200, max=65000)
    g.p("运行方向", "Run direction", fac=0, max=1,
        values=enum((0, "方向一致", "As commanded"), (1, "方向相反", "Reversed")))
    groups.append(g)

    g = Group(0x01, "电机参数", "Motor parameters")
    g.p("电机类型选择", "Motor type", fac=0, max=2, modify=1,
        values=enum((0, "普通异步电机", "Induction motor"), (1, "变频异步电机", "Inverter-duty motor"),
                    (2, "永磁同步电机", "PM synchronous motor")))
    g.p("电机额定功率", "Motor rated power", unit="kW", dec=1, fac=75, min=1, max=10000,
        modify=1)
    g.p("电机额定电压", "Motor rated voltage", unit="V", fac=380, min=1, max=2000, modify=1)
    g.p("电机额定电流", "Motor rated current", unit="A", dec=2, fac=1500, min=1, max=65535,
        modify=1)
    rated_freq = g.p("电机额定频率", "Motor rated frequency", unit="Hz", dec=2, fac=5000, min=1,
        maxLink=fmax, modify=1)
    g.p("电机额定转速", "Motor rated speed", unit="rpm", fac=1460, min=1, max=65535, modify=1)
    g.p("异步电机定子电阻", "Stator resistance", unit="Ω", dec=3, fac=850, max=65535, modify=1,
        access=3)
    g.p("异步电机转子电阻", "Rotor resistance", unit="Ω", dec=3, fac=760, max=65535, modify=1,
        access=3)
    g.p("异步电机漏感抗", "Leakage inductance", unit="mH", dec=2, fac=620, max=65535,
        modify=1, access=3)
    g.p("异步电机互感抗", "Mutual inductance", unit="mH", dec=1, fac=1550, max=65535,
        modify=1, access=3)
    g.p("异步电机空载电流", "No-load current", unit="A", dec=2, fac=520, max=65535, modify=1,
        access=3)
    g.p("调谐选择", "Auto-tuning", fac=0, max=2, modify=1, changeTracked=False,
        values=enum((0, "无操作", "None"), (1, "异步机静止调谐", "Static"), (2, "异步机动态完整调谐", "Rotating")))
    groups.append(g)

    g = Group(0x02, "矢量控制参数", "Vector control")
    g.p("速度环比例增益1", "Speed loop P gain 1", fac=30, min=1, max=100)
    g.p("速度环积分时间1", "Speed loop integral time 1", unit="s", dec=2, fac=50, min=1,
        max=1000)
    switch1 = g.p("切换频率1", "Switch frequency 1", unit="Hz", dec=2, fac=500)
    g.p("速度环比例增益2", "Speed loop P gain 2", fac=20, min=1, max=100)
    g.p("速度环积分时间2", "Speed loop integral time 2", unit="s", dec=2, fac=100, min=1,
        max=1000)
    switch2 = g.p("切换频率2", "Switch frequency 2", unit="Hz", dec=2, fac=1000, minLink=switch1,
        maxLink=fmax)
    g.set(switch1, maxLink=switch2)
    g.p("矢量控制转差增益", "Slip compensation gain", unit="%", fac=100, min=50, max=200)
    g.p("速度环滤波时间常数", "Speed loop filter", unit="s", dec=3, fac=0, max=100)
    g.p("速度控制方式下转矩上限源", "Torque limit source", fac=0, max=3,
        values=enum((0, "功能码设定", "Parameter"), (1, "AI1", "AI1"), (2, "AI2", "AI2"),
                    (3, "通讯给定", "Communication")))
    g.p("速度控制方式下转矩上限数字设定", "Torque limit setting", unit="%", dec=1, fac=1500,
        max=2000)
    groups.append(g)

    g = Group(0x03, "V/F控制参数", "V/F control")
    g.p("VF曲线设定", "V/F curve", fac=0, max=4, modify=1,
        values=enum((0, "直线V/F", "Linear"), (1, "多点V/F", "Multi-point"), (2, "平方V/F", "Square"),
                    (3, "1.2次方V/F", "Power 1.2"), (4, "1.4次方V/F", "Power 1.4")))
    g.p("转矩提升", "Torque boost", unit="%", dec=1, fac=0, max=300)
    g.p("转矩提升截止频率", "Boost cut-off", unit="Hz", dec=2, fac=5000, maxLink=fmax)
    for n in range(1, 4):
        g.p("自定义V/F频率点%d" % n, "Custom V/F frequency %d" % n, unit="Hz", dec=2, fac=0,
            maxLink=rated_freq)
        g.p("自定义V/F电压点%d" % n, "Custom V/F voltage %d" % n, unit="%", dec=1, fac=0, max=1000)
    g.p("VF转差补偿增益", "V/F slip compensation", unit="%", dec=1, fac=0, max=2000)
    g.p("过励磁抑制增益", "Overexcitation gain", fac=64, max=200)
    g.p("振荡抑制增益", "Oscillation suppression gain", fac=40, max=100)
    groups.append(g)

    g = Group(0x04, "输入端子", "Input terminals")
    for n in range(1, 9):
        g.p("X%d端子功能选择" % n, "X%d function" % n, fac=[1, 2, 9, 12, 13, 0, 0, 0][n - 1],
            max=30, modify=1, values="XFunction")
    g.p("X端子滤波时间", "X filter time", unit="s", dec=3, fac=10, max=1000)
    g.p("端子命令方式", "Terminal command mode", fac=0, max=3, modify=1,
        values=enum((0, "两线式1", "Two-wire 1"), (1, "两线式2", "Two-wire 2"), (2, "三线式1", "Three-wire 1"),
                    (3, "三线式2", "Three-wire 2")))
    g.p("X端子有效模式选择", "X active level", fac=0, max=255, display=1,
        values=bits(*[(b, "X%d低电平有效" % (b + 1), "X%d active low" % (b + 1)) for b in range(8)]))
    for n in (1, 2):
        g.p("AI%d最小输入" % n, "AI%d minimum input" % n, unit="V", dec=2, fac=0, max=1000)
        g.p("AI%d最小输入对应设定" % n, "AI%d setting at minimum" % n, type="i16", unit="%",
            dec=1, fac=0, min=-1000, max=1000)
        g.p("AI%d最大输入" % n, "AI%d maximum input" % n, unit="V", dec=2, fac=1000, max=1000)
        g.p("AI%d最大输入对应设定" % n, "AI%d setting at maximum" % n, type="i16", unit="%",
            dec=1, fac=1000, min=-1000, max=1000)
        g.p("AI%d滤波时间" % n, "AI%d filter time" % n, unit="s", dec=2, fac=10, max=1000)
    groups.append(g)

    g = Group(0x05, "输出端子", "Output terminals")
    g.p("高速输出端子模式", "Fast output mode", fac=0, max=1,
        values=enum((0, "脉冲输出", "Pulse"), (1, "开关量输出", "Switch")))
    g.p("继电器输出功能", "Relay function", fac=2, max=12, values="YFunction")
    g.p("Y1输出功能选择", "Y1 function", fac=1, max=12, values="YFunction")
    g.p("Y2输出功能选择", "Y2 function", fac=0, max=12, values="YFunction")
    g.p("AO1输出功能选择", "AO1 function", fac=0, max=7,
        values=enum((0, "运行频率", "Output frequency"), (1, "设定频率", "Set frequency"),
                    (2, "输出电流", "Output current"), (3, "输出转矩", "Output torque"),
                    (4, "输出功率", "Output power"), (5, "输出电压", "Output voltage"),
                    (6, "AI1", "AI1"), (7, "AI2", "AI2")))
    g.p("AO1零偏系数", "AO1 offset", type="i16", unit="%", dec=1, fac=0, min=-1000, max=1000)
    g.p("AO1增益", "AO1 gain", type="i16", dec=2, fac=100, min=-1000, max=1000)
    g.p("输出端子有效状态选择", "Output active level", fac=0, max=7, display=1,
        values=bits((0, "Y1反逻辑", "Y1 inverted"), (1, "Y2反逻辑", "Y2 inverted"),
                    (2, "继电器反逻辑", "Relay inverted")))
    groups.append(g)

    g = Group(0x06, "启停控制", "Start and stop")
    g.p("启动方式", "Start mode", fac=0, max=2,
        values=enum((0, "直接启动", "Direct"), (1, "速度跟踪再启动", "Flying start"),
                    (2, "预励磁启动", "Pre-excitation")))
    g.p("启动频率", "Start frequency", unit="Hz", dec=2, fac=0, max=1000)
    g.p("启动频率保持时间", "Start frequency hold", unit="s", dec=1, fac=0, max=1000,
        modify=1)
    g.p("启动直流制动电流", "Start DC braking current", unit="%", fac=0, max=100, modify=1)
    g.p("启动直流制动时间", "Start DC braking time", unit="s", dec=1, fac=0, max=1000,
        modify=1)
    g.p("加减速方式", "Ramp shape", fac=0, max=2, modify=1,
        values=enum((0, "直线加减速", "Linear"), (1, "S曲线加减速A", "S-curve A"),
                    (2, "S曲线加减速B", "S-curve B")))
    g.p("停机方式", "Stop mode", fac=0, max=1,
        values=enum((0, "减速停车", "Ramp to stop"), (1, "自由停车", "Coast")))
    g.p("停机直流制动起始频率", "Stop DC braking frequency", unit="Hz", dec=2, fac=0,
        maxLink=fmax)
    g.p("停机直流制动电流", "Stop DC braking current", unit="%", fac=0, max=100)
    g.p("停机直流制动时间", "Stop DC braking time", unit="s", dec=1, fac=0, max=1000)
    groups.append(g)

    g = Group(0x07, "键盘与显示", "Keypad and display")
    g.p("STOP/RESET键功能", "STOP/RESET key", fac=1, max=1,
        values=enum((0, "只在键盘操作方式下有效", "Keypad mode only"), (1, "在任何操作方式下均有效", "Always")))
    g.p("运行状态显示项目", "Running display 1", fac=31, max=65535, display=1,
        values=bits((0, "运行频率", "Output frequency"), (1, "设定频率", "Set frequency"),
                    (2, "母线电压", "DC bus voltage"), (3, "输出电压", "Output voltage"),
                    (4, "输出电流", "Output current"), (5, "输出功率", "Output power"),
                    (6, "输出转矩", "Output torque"), (7, "X输入状态", "X inputs")))
    g.p("停机状态显示项目", "Stopped display", fac=51, max=65535, display=1,
        values=bits((0, "设定频率", "Set frequency"), (1, "母线电压", "DC bus voltage"),
                    (2, "X输入状态", "X inputs"), (3, "输出状态", "Outputs"), (4, "AI1电压", "AI1"),
                    (5, "AI2电压", "AI2")))
    g.p("负载速度显示系数", "Load speed factor", dec=4, fac=10000, min=1, max=65000)
    g.p("散热器温度", "Heat sink temperature", unit="℃", dec=1, modify=2,
        changeTracked=False)
    g.p("累计运行时间", "Total running time", unit="h", modify=2, changeTracked=False)
    g.p("产品号", "Product number", modify=2, display=1, access=3)
    g.p("软件版本号", "Software version", dec=2, modify=2)
    user_pw = g.p("用户密码", "User password", fac=0, max=65535, display=4, changeTracked=False)
    groups.append(g)

    g = Group(0x08, "辅助功能", "Auxiliary functions")
    g.p("点动运行频率", "Jog frequency", unit="Hz", dec=2, fac=200, maxLink=fmax)
    g.p("点动加速时间", "Jog acceleration", unit="s", dec=1, fac=200, max=65000)
    g.p("点动减速时间", "Jog deceleration", unit="s", dec=1, fac=200, max=65000)
    for n in (2, 3, 4):
        g.p("加速时间%d" % n, "Acceleration time %d" % n, unit="s", dec=1, fac=200, max=65000)
        g.p("减速时间%d" % n, "Deceleration time %d" % n, unit="s", dec=1, fac=200, max=65000)
    g.p("跳跃频率1", "Skip frequency 1", unit="Hz", dec=2, fac=0, maxLink=fmax)
    g.p("跳跃频率2", "Skip frequency 2", unit="Hz", dec=2, fac=0, maxLink=fmax)
    g.p("跳跃频率幅度", "Skip band", unit="Hz", dec=2, fac=0, maxLink=fmax)
    g.p("正反转死区时间", "Forward/reverse dead time", unit="s", dec=1, fac=0, max=30000)
    g.p("反转控制使能", "Reverse enable", fac=0, max=1,
        values=enum((0, "允许", "Allowed"), (1, "禁止", "Forbidden")))
    g.p("冷却风扇控制", "Cooling fan", fac=0, max=1,
        values=enum((0, "运行时风扇运转", "While running"), (1, "风扇一直运转", "Always")))
    g.p("设定运行时间", "Run time setting", unit="h", fac=0, max=65000)
    groups.append(g)

    g = Group(0x09, "故障与保护", "Faults and protection")
    g.p("电机过载保护选择", "Motor overload protection", fac=1, max=1, values="OnOff")
    g.p("电机过载保护增益", "Motor overload gain", dec=2, fac=100, min=20, max=1000)
    g.p("电机过载预警系数", "Motor overload warning", unit="%", fac=80, min=50, max=100)
    g.p("过压失速增益", "Overvoltage stall gain", fac=0, max=100)
    g.p("过压失速保护电压", "Overvoltage stall voltage", unit="%", fac=130, min=120, max=150)
    g.p("过流失速增益", "Overcurrent stall gain", fac=20, max=100)
    g.p("过流失速保护电流", "Overcurrent stall current", unit="%", fac=150, min=100, max=200)
    g.p("上电对地短路保护选择", "Ground short check at power-up", fac=1, max=1, values="OnOff")
    g.p("故障自动复位次数", "Automatic resets", fac=0, max=20)
    g.p("故障自动复位间隔时间", "Reset interval", unit="s", dec=1, fac=10, min=1, max=1000)
    g.p("输入缺相保护选择", "Input phase loss protection", fac=1, max=1, values="OnOff")
    g.p("输出缺相保护选择", "Output phase loss protection", fac=1, max=1, values="OnOff")
    g.p("第一次故障类型", "First fault", modify=2, changeTracked=False)
    g.p("第二次故障类型", "Second fault", modify=2, changeTracked=False)
    g.p("第三次(最近一次)故障类型", "Latest fault", modify=2, changeTracked=False)
    g.p("故障保护动作选择", "Fault reactions", fac=0, max=22222,
        values={"digits": [
            {"text": "电机过载", "textEn": "Motor overload", "digit": 0,
             "options": [opt(0, "自由停车", "Coast"), opt(1, "按停机方式停机", "Stop by stop mode"),
                         opt(2, "继续运行", "Keep running")]},
            {"text": "输入缺相", "textEn": "Input phase loss", "digit": 1,
             "options": [opt(0, "自由停车", "Coast"), opt(1, "按停机方式停机", "Stop by stop mode"),
                         opt(2, "继续运行", "Keep running")]},
            {"text": "输出缺相", "textEn": "Output phase loss", "digit": 2,
             "options": [opt(0, "自由停车", "Coast"), opt(1, "按停机方式停机", "Stop by stop mode"),
                         opt(2, "继续运行", "Keep running")]},
            {"text": "外部故障", "textEn": "External fault", "digit": 3,
             "options": [opt(0, "自由停车", "Coast"), opt(1, "按停机方式停机", "Stop by stop mode"),
                         opt(2, "继续运行", "Keep running")]},
            {"text": "通讯异常", "textEn": "Communication fault", "digit": 4,
             "options": [opt(0, "自由停车", "Coast"), opt(1, "按停机方式停机", "Stop by stop mode"),
                         opt(2, "继续运行", "Keep running")]}]})
    groups.append(g)

    g = Group(0x0A, "PID功能", "PID control")
    g.p("PID给定源", "PID reference source", fac=0, max=5,
        values=enum((0, "数字给定", "Digital"), (1, "AI1", "AI1"), (2, "AI2", "AI2"),
                    (3, "面板电位器", "Keypad potentiometer"), (4, "脉冲设定", "Pulse"),
                    (5, "通讯给定", "Communication")))
    g.p("PID数值给定", "PID digital reference", unit="%", dec=1, fac=500, max=1000)
    g.p("PID反馈源", "PID feedback source", fac=0, max=4,
        values=enum((0, "AI1", "AI1"), (1, "AI2", "AI2"), (2, "AI1-AI2", "AI1-AI2"),
                    (3, "脉冲设定", "Pulse"), (4, "通讯给定", "Communication")))
    g.p("PID作用方向", "PID direction", fac=0, max=1,
        values=enum((0, "正作用", "Direct"), (1, "反作用", "Reverse")))
    g.p("PID给定反馈量程", "PID range", fac=1000, max=65535)
    g.p("比例增益Kp1", "Proportional gain Kp1", dec=1, fac=200, max=1000)
    g.p("积分时间Ti1", "Integral time Ti1", unit="s", dec=2, fac=200, min=1, max=1000)
    g.p("微分时间Td1", "Derivative time Td1", unit="s", dec=3, fac=0, max=10000)
    g.p("PID偏差极限", "PID deviation limit", unit="%", dec=1, fac=0, max=1000)
    g.p("PID反馈滤波时间", "PID feedback filter", unit="s", dec=2, fac=0, max=6000)
    groups.append(g)

    g = Group(0x0C, "多段指令与简易PLC", "Multi-speed and simple PLC")
    for n in range(16):
        g.p("多段指令%d" % n, "Multi-speed %d" % n, type="i16", unit="%", dec=1,
            fac=0, min=-1000, max=1000)
    g.p("简易PLC运行方式", "PLC run mode", fac=0, max=2,
        values=enum((0, "单次运行结束停机", "Single run, stop"), (1, "单次运行结束保持终值", "Single run, hold"),
                    (2, "一直循环", "Cycle")))
    g.p("简易PLC掉电记忆选择", "PLC memory at power loss", fac=0, max=11,
        values={"digits": [
            {"text": "掉电记忆", "textEn": "Keep at power loss", "digit": 0,
             "options": [opt(0, "不记忆", "No"), opt(1, "记忆", "Yes")]},
            {"text": "停机记忆", "textEn": "Keep at stop", "digit": 1,
             "options": [opt(0, "不记忆", "No"), opt(1, "记忆", "Yes")]}]})
    groups.append(g)

    g = Group(0x0D, "通讯参数", "Communication")
    g.p("波特率", "Baud rate", fac=5, max=7,
        values=enum((0, "300BPS", "300"), (1, "600BPS", "600"), (2, "1200BPS", "1200"),
                    (3, "2400BPS", "2400"), (4, "4800BPS", "4800"), (5, "9600BPS", "9600"),
                    (6, "19200BPS", "19200"), (7, "38400BPS", "38400")))
    g.p("数据格式", "Data format", fac=0, max=3,
        values=enum((0, "无校验(8-N-2)", "8-N-2"), (1, "偶检验(8-E-1)", "8-E-1"),
                    (2, "奇校验(8-O-1)", "8-O-1"), (3, "无校验(8-N-1)", "8-N-1")))
    g.p("本机地址", "Station address", fac=1, min=1, max=247)
    g.p("应答延迟", "Response delay", unit="ms", fac=2, max=20)
    g.p("通讯超时时间", "Communication timeout", unit="s", dec=1, fac=0, max=600)
    g.p("通讯读取电流分辨率", "Current resolution over the bus", fac=0, max=1,
        values=enum((0, "0.01A", "0.01 A"), (1, "0.1A", "0.1 A")))
    groups.append(g)

    g = Group(0x0F, "厂家参数", "Factory parameters", access=3)
    factory_pw = g.p("厂家密码", "Factory password", fac=0, max=65535, display=4, access=3,
        changeTracked=False, transferable=False)
    g.p("电流检测校正系数", "Current sensing correction", dec=3, fac=1000, min=500, max=1500,
        modify=1, effect=2, access=3)
    g.p("电压检测校正系数", "Voltage sensing correction", dec=3, fac=1000, min=500, max=1500,
        modify=1, effect=2, access=3)
    g.p("死区时间", "Dead time", unit="us", dec=1, fac=32, min=10, max=100, modify=1,
        effect=2, access=3)
    g.p("内部调试字", "Internal debug word", fac=0, max=65535, display=1, modify=3, access=3,
        changeTracked=False)
    groups.append(g)

    g = Group(0x10, "运行状态监视", "Run monitor")
    mon = dict(modify=2, changeTracked=False)
    g.p("运行频率", "Output frequency", unit="Hz", dec=2, **mon)
    g.p("设定频率", "Set frequency", unit="Hz", dec=2, **mon)
    g.p("母线电压", "DC bus voltage", unit="V", dec=1, **mon)
    g.p("输出电压", "Output voltage", unit="V", **mon)
    g.p("输出电流", "Output current", unit="A", dec=2, **mon)
    g.p("输出功率", "Output power", unit="kW", dec=1, **mon)
    g.p("输出转矩", "Output torque", type="i16", unit="%", dec=1, **mon)
    g.p("X输入状态", "X input state", display=1, **mon,
        values=bits(*[(b, "X%d" % (b + 1), "X%d" % (b + 1)) for b in range(8)]))
    g.p("输出状态", "Output state", display=1, **mon,
        values=bits((0, "Y1", "Y1"), (1, "Y2", "Y2"), (2, "继电器", "Relay")))
    g.p("AI1电压", "AI1 voltage", unit="V", dec=2, **mon)
    g.p("AI2电压", "AI2 voltage", unit="V", dec=2, **mon)
    g.p("PID设定", "PID reference", **mon)
    g.p("PID反馈", "PID feedback", **mon)
    g.p("计数值", "Count value", **mon)
    g.p("电机转速", "Motor speed", unit="rpm", **mon)
    groups.append(g)

    categories = [
        {"name": "基本参数", "description": "常用设定", "descriptionEn": "Common settings",
         "groups": ["H00", "H06", "H08"]},
        {"name": "电机与控制", "description": "电机参数与控制算法", "descriptionEn": "Motor and control",
         "groups": ["H01", "H02", "H03"]},
        {"name": "输入输出", "description": "端子与模拟量", "descriptionEn": "Terminals and analog I/O",
         "groups": ["H04", "H05"]},
        {"name": "应用功能", "description": "工艺功能", "descriptionEn": "Application functions",
         "groups": ["H0A", "H0C"]},
        {"name": "通讯与显示", "description": "", "descriptionEn": "",
         "groups": ["H07", "H0D"]}]

    doc = {
        "format": 1,
        "product": {
            "name": "ZV5 通用变频器", "nameEn": "ZV5 general-purpose inverter",
            "lineId": 7, "productId": 64, "subProductId": 2,
            "electronicLabel": "0007 0040 0002 0110 0000 0000 0000 0001 "
                               "5A56 3554 3735 0000 0000 0000 0000 0000",
            "version": "V1.10.00", "kind": "inverter", "accessModel": 0, "axisCopyCount": 0},
        "valueInfos": infos,
        "parameters": [p for grp in groups for p in grp.params],
        "groups": [grp.group_json() for grp in groups],
        "categories": categories,
        "namedVariables": [
            {"name": "InputPassword", "code": user_pw},
            {"name": "Factory", "code": factory_pw}],
    }
    return doc
