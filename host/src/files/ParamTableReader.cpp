#include "zorhost/files/ParamTableReader.h"

#include "zorhost/files/ParamFile.h"
#include "zorhost/model/VarStore.h"
#include "zorhost/services/HostVarUtil.h"

#include "module/host/IHostDeviceModule.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string_view>

namespace zorhost::files {

namespace {

using Fields = std::vector<std::string>;

CHostVarUtil& Util() {
    static CHostVarUtil util; // numbers and type names only: stateless
    return util;
}

Fields Split(std::string_view line) {
    Fields out;
    size_t start = 0;
    for (;;) {
        const size_t comma = line.find(',', start);
        out.emplace_back(line.substr(start, comma - start));
        if (comma == std::string_view::npos)
            return out;
        start = comma + 1;
    }
}

std::string Join(const Fields& f, size_t first, size_t last) {
    std::string s;
    for (size_t i = first; i < last; ++i) {
        if (i > first)
            s += ',';
        s += f[i];
    }
    return s;
}

bool ParseNumber(const std::string& text, double& number) {
    Variant v;
    if (!Util().ParseVariant(v, CString(text), VT_R8))
        return false;
    number = v.dblVal;
    return true;
}

// Decimal places written after the point; the writer gives every figure of a parameter the
// same number.
int PlacesOf(const std::string& text) {
    const size_t dot = text.find('.');
    return dot == std::string::npos ? 0 : int(text.size() - dot - 1);
}

bool IsIntegerType(int type) {
    switch (type) {
    case VT_I1:
    case VT_UI1:
    case VT_I2:
    case VT_UI2:
    case VT_I4:
    case VT_UI4:
    case VT_BOOL:
        return true;
    default:
        return false;
    }
}

// The cell text of a value back to the variant of `type`, undoing FormatVariant: integer
// types hold raw figures, so "12.34" with two places is 1234.
bool ValueOf(const std::string& text, int type, int decimals, Variant& value) {
    value = Variant();
    if (text.empty())
        return true;
    if (type == VT_BSTR) {
        value = Variant::Str(CString(text));
        return true;
    }
    double number = 0;
    if (!ParseNumber(text, number))
        return false;
    if (type == 0) {
        value = Variant::R8(number);
        return true;
    }
    if (type == VT_BOOL) {
        value = Variant::Bool(number != 0);
        return true;
    }
    if (IsIntegerType(type)) {
        number = std::nearbyint(number * std::pow(10.0, std::clamp(decimals, 0, 15)));
        // A figure the type can't hold is a broken cell, not one to clamp.
        double lo = 0, hi = 0;
        switch (type) {
        case VT_I1:
            lo = -128, hi = 127;
            break;
        case VT_UI1:
            hi = 255;
            break;
        case VT_I2:
            lo = -32768, hi = 32767;
            break;
        case VT_UI2:
            hi = 65535;
            break;
        case VT_I4:
            lo = -2147483648.0, hi = 2147483647.0;
            break;
        default:
            hi = 4294967295.0;
            break;
        }
        if (number < lo || number > hi)
            return false;
    }
    value = Variant::OfType(VARTYPE(type));
    return Util().DoubleToVariant(number, value) != 0;
}

int TypeOf(const std::string& name, bool& known) {
    known = true;
    if (name.empty())
        return 0;
    static const int types[] = {VT_I2,   VT_I4, VT_R4,  VT_R8,  VT_DATE, VT_BSTR,
                                VT_BOOL, VT_I1, VT_UI1, VT_UI2, VT_UI4};
    for (int t : types) {
        CString text;
        Util().DataTypeName(text, t);
        if (text.str() == name)
            return t;
    }
    known = false;
    return 0;
}

int ModifyModeOf(const std::string& text) {
    if (text == "任意修改" || text == "Any time")
        return 0;
    if (text == "停机修改" || text == "At standstill")
        return 1;
    if (text == "不可修改" || text == "Read only")
        return 2;
    return 3;
}

// The row's fields in column order; a comma inside the name or the unit gives the row
// more fields than columns, and those go back into the name, or the unit, so that the
// values on either side still read as numbers.
bool Columns(const Fields& raw, size_t columns, Fields& out) {
    if (raw.size() == columns) {
        out = raw;
        return true;
    }
    const size_t extra = raw.size() - columns;
    for (size_t inName = extra + 1; inName-- > 0;) {
        const size_t inUnit = extra - inName;
        Fields f;
        f.push_back(raw[0]);
        f.push_back(Join(raw, 1, 2 + inName));
        size_t i = 2 + inName;
        f.push_back(raw[i++]); // current
        f.push_back(raw[i++]); // factory
        f.push_back(Join(raw, i, i + 1 + inUnit));
        i += 1 + inUnit;
        for (; i < raw.size(); ++i)
            f.push_back(raw[i]);
        double number = 0;
        const bool current = f[2].empty() || ParseNumber(f[2], number);
        const bool factory = f[3].empty() || ParseNumber(f[3], number);
        if (current && factory) {
            out = std::move(f);
            return true;
        }
    }
    return false;
}

class TableReader {
public:
    TableReader(CParamFile& file, IHostDeviceModule* module) : m_file(file), m_module(module) {}

    bool Read(const std::string& bytes) {
        std::vector<std::string_view> lines;
        std::string_view all(bytes);
        if (all.substr(0, 3) == "\xEF\xBB\xBF")
            all.remove_prefix(3);
        size_t start = 0;
        while (start < all.size()) {
            size_t end = all.find('\n', start);
            if (end == std::string_view::npos)
                end = all.size();
            std::string_view line = all.substr(start, end - start);
            if (!line.empty() && line.back() == '\r')
                line.remove_suffix(1);
            lines.push_back(line);
            start = end + 1;
        }
        if (lines.size() < 7)
            return Fail(lines.size() + 1, "the table ends before its column titles");
        if (lines[0] != "Sign,Time")
            return Fail(1, "not a parameter table (it should start with \"Sign,Time\")");
        if (lines[1].find(',') == std::string_view::npos)
            return Fail(2, "no time of writing");
        if (!lines[2].empty())
            return Fail(3, "should be empty");
        if (lines[3] != "DriveName,BusID,Version,ElecData")
            return Fail(4, "should be \"DriveName,BusID,Version,ElecData\"");
        if (!ReadIdentity(lines[4]))
            return false;
        if (!lines[5].empty())
            return Fail(6, "should be empty");
        const size_t columns = Split(lines[6]).size();
        if (columns != 10 && columns != 11)
            return Fail(7, std::to_string(columns) + " column titles; a table has 10 or 11");
        for (size_t i = 7; i < lines.size(); ++i) {
            if (lines[i].empty())
                continue;
            if (!ReadRow(i + 1, lines[i], columns))
                return false;
        }
        return true;
    }

    const std::string& Error() const { return m_error; }

private:
    bool Fail(size_t line, const std::string& what) {
        m_error = "line " + std::to_string(line) + ": " + what;
        return false;
    }

    bool ReadIdentity(std::string_view line) {
        const Fields f = Split(line);
        if (f.size() < 4)
            return Fail(5, "the drive's identity needs four fields");
        // The name may hold a comma; the three fields behind it can't.
        const std::string& hex = f[f.size() - 1];
        const std::string& version = f[f.size() - 2];
        const std::string& bus = f[f.size() - 3];
        double number = 0;
        if (!ParseNumber(bus, number))
            return Fail(5, "the bus id \"" + bus + "\" is no number");
        if (hex.size() % 2 != 0 || hex.size() > 2 * 1024)
            return Fail(5, "the electronic label \"" + hex + "\" is no row of hexadecimal bytes");
        std::vector<BYTE> label;
        for (size_t i = 0; i < hex.size(); i += 2) {
            const QByteArray pair = QByteArray::fromStdString(hex.substr(i, 2));
            bool ok = false;
            const int b = pair.toInt(&ok, 16);
            if (!ok || !std::isxdigit(static_cast<unsigned char>(hex[i])) ||
                !std::isxdigit(static_cast<unsigned char>(hex[i + 1])))
                return Fail(5,
                            "the electronic label \"" + hex + "\" is no row of hexadecimal bytes");
            label.push_back(BYTE(b));
        }
        m_file.SetElecLabel(label.data(), UINT(label.size()));
        m_file.SetVersionText(CString(version));
        m_file.GetVarList()->SetVersionText(CString(version));
        return true;
    }

    bool ReadRow(size_t lineNo, std::string_view line, size_t columns) {
        const Fields raw = Split(line);
        if (raw.size() < columns)
            return Fail(lineNo, std::to_string(raw.size()) + " fields; the table has " +
                                    std::to_string(columns) + " columns");
        Fields f;
        if (!Columns(raw, columns, f))
            return Fail(lineNo, "the values are not numbers");
        const std::string& code = f[0];
        if (code.empty())
            return Fail(lineNo, "no parameter code");
        double number = 0;
        if (!ParseNumber(f[8], number) || number < 0 || number > 4294967295.0 ||
            number != std::floor(number))
            return Fail(lineNo, "the address \"" + f[8] + "\" is no whole number");
        const UINT address = UINT(number);
        bool known = false;
        const int type = TypeOf(f[9], known);
        if (!known)
            return Fail(lineNo, "unknown data type \"" + f[9] + "\"");
        const std::string key = columns == 11 ? f[10] : std::string();

        // A parameter the bound module knows takes the module's attributes.
        if (IVarObjEx* own = ModuleVar(code, address, key)) {
            IVarAttr* attr = own->GetAttr();
            Variant value;
            if (!ValueOf(f[2], attr->GetDataType(), attr->GetDecimals(), value))
                return Fail(lineNo, "the value \"" + f[2] + "\" doesn't fit " + code);
            IVarObjEx* copy = own->Clone();
            copy->SetValue(value);
            if (!m_file.GetVarList()->AddVar(copy)) {
                delete copy;
                return Fail(lineNo, code + " appears twice");
            }
            return true;
        }

        AttrFields a;
        a.code = CString(code);
        a.name = CString(f[1]);
        a.unit = CString(f[4]);
        a.address = address;
        a.dataType = type;
        a.decimals = PlacesOf(f[2].empty() ? f[3] : f[2]);
        a.modifyMode = ModifyModeOf(f[7]);
        Variant value;
        if (!ValueOf(f[2], type, a.decimals, value))
            return Fail(lineNo, "the value \"" + f[2] + "\" is no " + f[9]);
        if (!ValueOf(f[3], type, a.decimals, a.factoryValue))
            return Fail(lineNo, "the factory value \"" + f[3] + "\" is no " + f[9]);
        // A limit that names another parameter is kept as that code.
        if (!ValueOf(f[5], type, a.decimals, a.minValue)) {
            a.minValue = Variant::Str(CString(f[5]));
            a.minLinked = 1;
        }
        if (!ValueOf(f[6], type, a.decimals, a.maxValue)) {
            a.maxValue = Variant::Str(CString(f[6]));
            a.maxLinked = 1;
        }
        auto attr = std::make_unique<CFileVarAttr>(std::move(a), nullptr);
        auto var = std::make_unique<model::CVarObj>(attr.get(), nullptr);
        if (!key.empty() && key != code)
            var->SetInstanceKey(CString(key));
        var->SetValue(value);
        CParamFileTable& table = static_cast<CParamFileTable&>(*m_file.GetVarList());
        if (!table.Adopt(std::move(var), std::move(attr)))
            return Fail(lineNo, (key.empty() ? code : key) + " appears twice");
        return true;
    }

    IVarObjEx* ModuleVar(const std::string& code, UINT address, const std::string& key) {
        IVarStore* store = m_module ? m_module->GetVarList() : nullptr;
        if (store == nullptr)
            return nullptr;
        IVarObjEx* var = store->FindByCode(CString(key.empty() ? code : key));
        if (var == nullptr || var->GetInstanceAddress() != address)
            var = store->FindByAddress(address);
        if (var == nullptr || var->GetAttr() == nullptr)
            return nullptr;
        CString own;
        var->GetAttr()->GetCode(own);
        return own.str() == code ? var : nullptr;
    }

    CParamFile& m_file;
    IHostDeviceModule* m_module;
    std::string m_error;
};

} // namespace

bool ReadParamTable(const CString& path, CParamFile& file, IHostDeviceModule* module,
                    std::string* error) {
    std::string bytes, why;
    if (!ReadWholeFile(path, CParamFile::kMaxFileBytes, bytes, &why)) {
        if (error)
            *error = path.str() + ": " + why;
        return false;
    }
    // Texts come back as the host wrote them: UTF-8, or Latin-1 when they aren't UTF-8.
    const QByteArray raw = QByteArray::fromStdString(bytes);
    if (QString::fromUtf8(raw).toUtf8() != raw)
        bytes = QString::fromLatin1(raw).toStdString();

    CParamFile fresh;
    fresh.LoadContext(module);
    TableReader reader(fresh, module);
    if (!reader.Read(bytes)) {
        if (error)
            *error = path.str() + ", " + reader.Error();
        return false;
    }
    file.Swap(fresh);
    return true;
}

} // namespace zorhost::files
