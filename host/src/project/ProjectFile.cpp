#include "zorhost/project/ProjectFile.h"

#include "zorhost/files/BoundedRead.h"

#include <afx/afxfile.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>

#include <cmath>
#include <map>
#include <set>

namespace zorhost::project {

namespace {

// Thrown inside the parser only; ParseProjectJson turns it into a ProjectError.
struct Refusal {
    std::string place;
    std::string message;
};

std::string Utf8(const QString& s) {
    const QByteArray b = s.toUtf8();
    return std::string(b.constData(), size_t(b.size()));
}

QString Qs(const std::string& s) {
    return QString::fromUtf8(s.data(), qsizetype(s.size()));
}

std::string Quoted(const std::string& s) {
    return "\"" + s + "\"";
}

// Line and column (both from 1, the column in characters) of a byte offset.
std::string PlaceOfOffset(std::string_view json, int offset) {
    if (offset < 0)
        offset = 0;
    if (size_t(offset) > json.size())
        offset = int(json.size());
    int line = 1, column = 1;
    for (int i = 0; i < offset; ++i) {
        const unsigned char c = static_cast<unsigned char>(json[size_t(i)]);
        if (c == '\n') {
            ++line;
            column = 1;
        } else if ((c & 0xC0) != 0x80) {
            ++column; // continuation bytes belong to the character before
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + " (offset " +
           std::to_string(offset) + ")";
}

const char* TypeName(const QJsonValue& v) {
    switch (v.type()) {
    case QJsonValue::Null:
        return "null";
    case QJsonValue::Bool:
        return "a boolean";
    case QJsonValue::Double:
        return "a number";
    case QJsonValue::String:
        return "a text";
    case QJsonValue::Array:
        return "an array";
    case QJsonValue::Object:
        return "an object";
    default:
        return "nothing";
    }
}

std::string Join(const std::string& place, const char* key) {
    return place.empty() ? std::string(key) : place + "." + key;
}

void OnlyKeys(const QJsonObject& o, const std::string& place, const std::set<QString>& allowed) {
    for (auto it = o.begin(); it != o.end(); ++it)
        if (allowed.count(it.key()) == 0)
            throw Refusal{Join(place, Utf8(it.key()).c_str()), "unknown key"};
}

std::string Text(const QJsonObject& o, const char* key, const std::string& place, bool required,
                 bool nonEmpty) {
    const QJsonValue v = o.value(QLatin1String(key));
    if (v.isUndefined()) {
        if (required)
            throw Refusal{place.empty() ? std::string("top level") : place,
                          std::string("missing \"") + key + "\""};
        return {};
    }
    if (!v.isString())
        throw Refusal{Join(place, key), std::string("must be a text, not ") + TypeName(v)};
    std::string s = Utf8(v.toString());
    if (nonEmpty && s.empty())
        throw Refusal{Join(place, key), "must not be empty"};
    return s;
}

int Integer(const QJsonObject& o, const char* key, const std::string& place, int fallback, int lo,
            int hi) {
    const QJsonValue v = o.value(QLatin1String(key));
    if (v.isUndefined())
        return fallback;
    if (!v.isDouble())
        throw Refusal{Join(place, key), std::string("must be a number, not ") + TypeName(v)};
    const double d = v.toDouble();
    if (d != std::floor(d) || d < lo || d > hi)
        throw Refusal{Join(place, key), "must be a whole number from " + std::to_string(lo) +
                                            " to " + std::to_string(hi)};
    return int(d);
}

bool Flag(const QJsonObject& o, const char* key, const std::string& place, bool fallback) {
    const QJsonValue v = o.value(QLatin1String(key));
    if (v.isUndefined())
        return fallback;
    if (!v.isBool())
        throw Refusal{Join(place, key), std::string("must be true or false, not ") + TypeName(v)};
    return v.toBool();
}

link::LinkSettings ParseLink(const QJsonObject& module, const std::string& modulePlace) {
    link::LinkSettings l;
    const QJsonValue v = module.value(QLatin1String("link"));
    if (v.isUndefined())
        return l;
    const std::string place = modulePlace + ".link";
    if (!v.isObject())
        throw Refusal{place, std::string("must be an object, not ") + TypeName(v)};
    const QJsonObject o = v.toObject();
    const std::string type = Text(o, "type", place, true, true);
    const QString common[] = {QStringLiteral("type"), QStringLiteral("unit"),
                              QStringLiteral("timeout")};
    if (type == link::LinkKindName(link::LinkKind::Simulated)) {
        OnlyKeys(o, place, {QStringLiteral("type")});
        return l;
    }
    if (type == link::LinkKindName(link::LinkKind::ModbusTcp)) {
        OnlyKeys(o, place,
                 {common[0], common[1], common[2], QStringLiteral("host"), QStringLiteral("port")});
        l.kind = link::LinkKind::ModbusTcp;
        l.host = Text(o, "host", place, true, true);
        l.port = Integer(o, "port", place, 502, 1, 65535);
    } else if (type == link::LinkKindName(link::LinkKind::ModbusRtu)) {
        OnlyKeys(o, place,
                 {common[0], common[1], common[2], QStringLiteral("device"), QStringLiteral("baud"),
                  QStringLiteral("parity")});
        l.kind = link::LinkKind::ModbusRtu;
        l.device = Text(o, "device", place, true, true);
        l.baud = Integer(o, "baud", place, 115200, 1200, 921600);
        const std::string parity = Text(o, "parity", place, false, false);
        if (!parity.empty() && parity != "N" && parity != "E" && parity != "O")
            throw Refusal{place + ".parity", Quoted(parity) + " is none of \"N\", \"E\", \"O\""};
        l.parity = parity.empty() ? 'E' : parity[0];
    } else {
        throw Refusal{place + ".type", Quoted(type) + " is none of \"simulated\", \"modbus-tcp\", "
                                                      "\"modbus-rtu\""};
    }
    l.unit = Integer(o, "unit", place, 1, 1, 247);
    l.timeout_ms = Integer(o, "timeout", place, 500, 10, 60000);
    return l;
}

QJsonObject LinkJson(const link::LinkSettings& l) {
    QJsonObject o;
    o[QStringLiteral("type")] = QLatin1String(link::LinkKindName(l.kind));
    if (l.kind == link::LinkKind::ModbusTcp) {
        o[QStringLiteral("host")] = Qs(l.host);
        o[QStringLiteral("port")] = l.port;
    } else if (l.kind == link::LinkKind::ModbusRtu) {
        o[QStringLiteral("device")] = Qs(l.device);
        o[QStringLiteral("baud")] = l.baud;
        o[QStringLiteral("parity")] = QString(QChar(l.parity));
    }
    if (l.kind != link::LinkKind::Simulated) {
        o[QStringLiteral("unit")] = l.unit;
        o[QStringLiteral("timeout")] = l.timeout_ms;
    }
    return o;
}

ProjectFile Parse(const QJsonObject& root) {
    OnlyKeys(root, "",
             {QStringLiteral("format"), QStringLiteral("version"), QStringLiteral("name"),
              QStringLiteral("directory"), QStringLiteral("listStyle"), QStringLiteral("modules")});
    if (Text(root, "format", "", true, true) != kProjectFormat)
        throw Refusal{"format",
                      std::string("is not \"") + kProjectFormat + "\": this is no project file"};
    if (!root.contains(QLatin1String("version")))
        throw Refusal{"top level", "missing \"version\""};
    const int version = Integer(root, "version", "", 0, 0, 1000000);
    if (version != kProjectVersion)
        throw Refusal{"version", "version " + std::to_string(version) +
                                     " is not supported (this program reads version " +
                                     std::to_string(kProjectVersion) + ")"};

    ProjectFile project;
    project.name = Text(root, "name", "", false, false);
    project.directory = Text(root, "directory", "", false, false);
    const std::string style = Text(root, "listStyle", "", false, false);
    if (style.empty() || style == ListStyleName(ListStyle::Live))
        project.listStyle = ListStyle::Live;
    else if (style == ListStyleName(ListStyle::Staging))
        project.listStyle = ListStyle::Staging;
    else
        throw Refusal{"listStyle", Quoted(style) + " is neither \"live\" nor \"staging\""};

    const QJsonValue modules = root.value(QLatin1String("modules"));
    if (modules.isUndefined())
        throw Refusal{"top level", "missing \"modules\""};
    if (!modules.isArray())
        throw Refusal{"modules", std::string("must be an array, not ") + TypeName(modules)};
    const QJsonArray list = modules.toArray();
    if (list.isEmpty())
        throw Refusal{"modules", "a project needs at least one module"};

    std::map<std::string, std::string> keys; // key -> where it stood first
    std::map<int, std::string> numbers;      // station number -> where it stood first
    for (qsizetype i = 0; i < list.size(); ++i) {
        const std::string place = "modules[" + std::to_string(i) + "]";
        if (!list[i].isObject())
            throw Refusal{place, std::string("must be an object, not ") + TypeName(list[i])};
        const QJsonObject o = list[i].toObject();
        OnlyKeys(o, place,
                 {QStringLiteral("key"), QStringLiteral("deviceFile"),
                  QStringLiteral("displayName"), QStringLiteral("number"), QStringLiteral("online"),
                  QStringLiteral("link")});
        ModuleEntry m;
        m.key = Text(o, "key", place, true, true);
        m.deviceFile = Text(o, "deviceFile", place, true, true);
        m.displayName = Text(o, "displayName", place, false, false);
        m.number = Integer(o, "number", place, 0, 0, 65535);
        m.online = Flag(o, "online", place, true);
        m.link = ParseLink(o, place);

        if (auto [it, fresh] = keys.emplace(m.key, place); !fresh)
            throw Refusal{place + ".key", "key " + Quoted(m.key) + " is taken by " + it->second};
        // A module without a number gets its position, which counts as taken as well.
        const int number = m.number != 0 ? m.number : int(i) + 1;
        if (auto [it, fresh] = numbers.emplace(number, place); !fresh)
            throw Refusal{place + (m.number != 0 ? ".number" : ""),
                          "station number " + std::to_string(number) + " is taken by " +
                              it->second};
        project.modules.push_back(std::move(m));
    }
    return project;
}

} // namespace

std::string ProjectError::ToString() const {
    std::string s;
    for (const std::string* part : {&file, &place, &message}) {
        if (part->empty())
            continue;
        if (!s.empty())
            s += ": ";
        s += *part;
    }
    return s;
}

const char* ListStyleName(ListStyle style) {
    return style == ListStyle::Staging ? "staging" : "live";
}

bool ParseProjectJson(std::string_view json, const std::string& sourceName, ProjectFile& project,
                      ProjectError* error) {
    auto fail = [&](std::string place, std::string message) {
        if (error != nullptr)
            *error = ProjectError{sourceName, std::move(place), std::move(message)};
        return false;
    };
    QJsonParseError parseError;
    const QJsonDocument doc = QJsonDocument::fromJson(
        QByteArray::fromRawData(json.data(), qsizetype(json.size())), &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return fail(PlaceOfOffset(json, parseError.offset), Utf8(parseError.errorString()));
    if (!doc.isObject())
        return fail("top level", "must be an object");
    try {
        project = Parse(doc.object());
    } catch (const Refusal& r) {
        return fail(r.place, r.message);
    }
    return true;
}

bool LoadProjectFile(const std::string& path, ProjectFile& project, ProjectError* error) {
    std::string bytes, why;
    switch (files::ReadFileBounded(path, files::kMaxProjectFileBytes, bytes, &why)) {
    case files::ReadOutcome::Ok:
        return ParseProjectJson(bytes, path, project, error);
    case files::ReadOutcome::TooLarge:
        why += "; not a project file";
        break;
    case files::ReadOutcome::CannotRead:
        why = "cannot be read: " + why;
        break;
    }
    if (error != nullptr)
        *error = ProjectError{path, "", why};
    return false;
}

std::string ProjectToJson(const ProjectFile& project) {
    QJsonObject root;
    root[QStringLiteral("format")] = QLatin1String(kProjectFormat);
    root[QStringLiteral("version")] = kProjectVersion;
    root[QStringLiteral("name")] = Qs(project.name);
    root[QStringLiteral("directory")] = Qs(project.directory);
    root[QStringLiteral("listStyle")] = QLatin1String(ListStyleName(project.listStyle));
    QJsonArray modules;
    for (const ModuleEntry& m : project.modules) {
        QJsonObject o;
        o[QStringLiteral("key")] = Qs(m.key);
        o[QStringLiteral("deviceFile")] = Qs(m.deviceFile);
        o[QStringLiteral("displayName")] = Qs(m.displayName);
        o[QStringLiteral("number")] = m.number;
        o[QStringLiteral("online")] = m.online;
        if (m.link.kind != link::LinkKind::Simulated)
            o[QStringLiteral("link")] = LinkJson(m.link);
        modules.append(o);
    }
    root[QStringLiteral("modules")] = modules;
    const QByteArray bytes = QJsonDocument(root).toJson(QJsonDocument::Indented);
    return std::string(bytes.constData(), size_t(bytes.size()));
}

bool SaveProjectFile(const std::string& path, const ProjectFile& project, std::string* error) {
    std::string why;
    if (!AfxReplaceFile(path, ProjectToJson(project), &why)) {
        if (error != nullptr)
            *error = path + ": cannot be written: " + why;
        return false;
    }
    return true;
}

std::string ResolvePath(const std::string& baseDir, const std::string& path) {
    if (path.empty())
        return {};
    const QString p = Qs(path);
    if (QFileInfo(p).isAbsolute())
        return Utf8(QDir::cleanPath(p));
    return Utf8(QDir::cleanPath(QDir(Qs(baseDir)).absoluteFilePath(p)));
}

std::string ResolveDeviceFile(const std::string& baseDir, const std::string& devicesDir,
                              const std::string& deviceFile) {
    std::string local = ResolvePath(baseDir, deviceFile);
    const bool bare =
        deviceFile.find('/') == std::string::npos && deviceFile.find('\\') == std::string::npos;
    if (bare && !QFileInfo::exists(Qs(local)) && !devicesDir.empty()) {
        std::string shipped = ResolvePath(devicesDir, deviceFile);
        if (QFileInfo::exists(Qs(shipped)))
            return shipped;
    }
    return local;
}

} // namespace zorhost::project
