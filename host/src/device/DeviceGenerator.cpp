#include "zorhost/device/DeviceGenerator.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <random>
#include <vector>

namespace zorhost::device {

namespace {

QString Code(int group, int index) {
    char buf[16];
    std::snprintf(buf, sizeof buf, index < 100 ? "H%02X-%02d" : "H%02X-%03d", group, index);
    return QString::fromLatin1(buf);
}

QJsonObject Option(double value, const char* text, const char* textEn) {
    return {{"value", value}, {"text", QString::fromUtf8(text)}, {"textEn", textEn}};
}

QJsonObject ValueInfos() {
    QJsonObject infos;
    infos["Switch"] =
        QJsonObject{{"enum", QJsonArray{Option(0, "关闭", "Off"), Option(1, "打开", "On")}}};
    infos["Mode"] = QJsonObject{{"enum", QJsonArray{Option(0, "速度模式", "Speed mode"),
                                                    Option(1, "位置模式", "Position mode"),
                                                    Option(2, "转矩模式", "Torque mode")}}};
    QJsonArray bits;
    for (int b = 0; b < 8; ++b) {
        QString text = QString::fromUtf8("状态位%1").arg(b);
        bits.append(QJsonObject{{"bit", b}, {"text", text}, {"textEn", QString("Bit %1").arg(b)}});
    }
    infos["Bits"] = QJsonObject{{"bits", bits}};
    infos["Ranges"] = QJsonObject{
        {"bitRanges",
         QJsonArray{QJsonObject{{"text", QString::fromUtf8("低字节选择")},
                                {"first", 0},
                                {"width", 4},
                                {"options", QJsonArray{Option(0, "无效", "None"),
                                                       Option(1, "有效", "Active")}}},
                    QJsonObject{{"text", QString::fromUtf8("高字节选择")},
                                {"first", 4},
                                {"width", 4},
                                {"options", QJsonArray{Option(0, "无效", "None"),
                                                       Option(1, "有效", "Active")}}}}}};
    QJsonArray digits;
    for (int d = 0; d < 4; ++d)
        digits.append(QJsonObject{
            {"text", QString::fromUtf8("第%1位").arg(d)},
            {"digit", d},
            {"options", QJsonArray{Option(0, "禁止", "Off"), Option(1, "允许", "On")}}});
    infos["Digits"] = QJsonObject{{"digits", digits}};
    return infos;
}

// One parameter; the pattern cycles over types, formats, modes and value infos so that a
// generated device exercises what a real one has.
QJsonObject Parameter(int group, int index, int serial, std::mt19937& random) {
    QJsonObject p;
    p["code"] = Code(group, index);
    p["name"] = QString::fromUtf8("参数%1组第%2项").arg(group).arg(index);
    p["nameEn"] = QString("Parameter %1.%2").arg(group).arg(index);
    p["modify"] = serial % 3;
    p["effect"] = 1 + serial % 3;
    p["access"] = serial % 4;
    switch (serial % 8) {
    case 0:
        p["type"] = "u16";
        p["values"] = "Switch";
        p["max"] = 1;
        break;
    case 1:
        p["type"] = "u16";
        p["values"] = "Bits";
        p["display"] = 1;
        p["max"] = 255;
        break;
    case 2: // the one wide type; Width() gives it two addresses
        p["type"] = "i32";
        p["decimals"] = 1;
        p["unit"] = "rpm";
        p["min"] = -60000;
        p["max"] = 60000;
        p["factory"] = double(random() % 1000);
        break;
    case 3:
        p["type"] = "u16";
        p["values"] = "Ranges";
        p["display"] = 1;
        break;
    case 4:
        p["type"] = "u16";
        p["values"] = "Digits";
        p["max"] = 1111;
        break;
    case 5:
        p["type"] = "u16";
        p["values"] = "Mode";
        p["max"] = 2;
        break;
    case 6:
        p["type"] = "i16";
        p["unit"] = "%";
        p["display"] = 2;
        p["min"] = -4096;
        p["max"] = 4096;
        break;
    default:
        // Follows the previous parameter as its upper limit.
        p["type"] = "i16";
        p["unit"] = "%";
        p["min"] = -4096;
        p["maxLink"] = QString(); // set by the caller to the previous parameter
        break;
    }
    return p;
}

// Where one parameter sits: its group and its index in the group.
struct Slot {
    int group = 0;
    int index = 0;
};

// Addresses a generated parameter takes: the 32-bit ones hold their own and the next.
int Width(int serial) {
    return serial % 8 == 2 ? 2 : 1;
}

// Places count parameters in groups of `perGroup` addresses; a parameter never runs into
// the next group, whose first address is another parameter's.
std::vector<Slot> Layout(int count, int perGroup) {
    std::vector<Slot> places;
    places.reserve(std::size_t(count));
    Slot next;
    for (int serial = 0; serial < count; ++serial) {
        if (next.index + Width(serial) > perGroup)
            next = {next.group + 1, 0};
        places.push_back(next);
        next.index += Width(serial);
    }
    return places;
}

} // namespace

std::string GenerateDeviceJson(int parameterCount, const GeneratorOptions& options) {
    const int axes = options.axisCount < 0 ? 0 : options.axisCount;
    const int perAxis = axes > 0 ? (parameterCount + axes - 1) / axes : parameterCount;
    if (parameterCount < 1 || (axes > 0 && parameterCount % axes != 0) || axes > 8)
        return {};
    // Groups available to one scope: all 256 on a single axis, else the axis's address span.
    const int groupsPerScope = axes > 0 ? 256 / (axes <= 1   ? 1
                                                 : axes <= 2 ? 2
                                                 : axes <= 4 ? 4
                                                             : 8)
                                        : 256;
    int perGroup = options.parametersPerGroup < 8 ? 8 : options.parametersPerGroup;
    if (perGroup > 256)
        perGroup = 256;
    std::vector<Slot> places = Layout(perAxis, perGroup);
    while (perGroup < 256 && places.back().group >= groupsPerScope) {
        perGroup = perGroup < 100 ? 100 : 256;
        places = Layout(perAxis, perGroup);
    }
    if (places.back().group >= groupsPerScope)
        return {};

    std::mt19937 random(options.seed);
    QJsonArray params;
    QJsonArray groups;
    for (int serial = 0; serial < perAxis; ++serial) {
        const Slot at = places[std::size_t(serial)];
        const bool firstOfGroup = serial == 0 || places[std::size_t(serial) - 1].group != at.group;
        QJsonObject p = Parameter(at.group, at.index, serial, random);
        if (p.contains("maxLink")) {
            if (firstOfGroup) // no earlier parameter in this group
                p.remove("maxLink");
            else
                p["maxLink"] = Code(at.group, places[std::size_t(serial) - 1].index);
        }
        params.append(p);
        if (serial + 1 < perAxis && places[std::size_t(serial) + 1].group == at.group)
            continue;
        char name[16];
        std::snprintf(name, sizeof name, "H%02X", at.group);
        groups.append(QJsonObject{{"name", name},
                                  {"description", QString::fromUtf8("第%1组").arg(at.group)},
                                  {"descriptionEn", QString("Group %1").arg(at.group)},
                                  {"access", at.group == 0 ? 3 : 0},
                                  {"members", "*"}});
    }

    QJsonObject product{
        {"name", QString::fromUtf8("基准测试驱动器")},
        {"nameEn", "Benchmark drive"},
        {"lineId", double(options.lineId)},
        {"productId", double(options.productId)},
        {"electronicLabel", QString::asprintf("%04X %04X 0000 0000 0000 0000 "
                                              "0000 0001",
                                              options.lineId & 0xFFFF, options.productId & 0xFFFF)},
        {"version", "V0.00.01"},
        {"kind", axes > 1 ? "multiAxisServo" : "servo"},
        {"accessModel", 2},
        {"axisCopyCount", axes}};
    QJsonObject root{{"format", 1}, {"product", product}, {"valueInfos", ValueInfos()}};
    const QString first = Code(0, 0);
    if (axes > 0) {
        root["parameters"] = QJsonArray{};
        root["axisParameters"] = params;
        root["groups"] = QJsonArray{};
        root["axisGroups"] = groups;
        QJsonArray axisList;
        for (int a = 0; a < axes; ++a)
            axisList.append(QJsonObject{{"name", QString::fromUtf8("轴%1").arg(a + 1)},
                                        {"nameEn", QString("Axis %1").arg(a + 1)},
                                        {"key", QString("A%1").arg(a + 1)},
                                        {"addressBase", a * groupsPerScope * 256}});
        root["axes"] = axisList;
    } else {
        root["parameters"] = params;
        root["groups"] = groups;
    }
    root["namedVariables"] = QJsonArray{QJsonObject{{"name", "Authority"}, {"code", first}}};
    QJsonDocument doc(root);
    return doc.toJson(QJsonDocument::Compact).toStdString();
}

LoadResult GenerateDevice(int parameterCount, const GeneratorOptions& options) {
    std::string json = GenerateDeviceJson(parameterCount, options);
    if (json.empty()) {
        LoadResult result;
        result.error = {"<generated>", "",
                        "cannot lay out " + std::to_string(parameterCount) + " parameters"};
        return result;
    }
    return ParseDeviceJson(json, "<generated>");
}

} // namespace zorhost::device
