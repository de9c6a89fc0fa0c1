#include "zorhost/files/ParamFileCodec.h"

#include "zorhost/files/ParamFile.h"
#include "zorhost/model/VarStore.h"

#include "module/host/IHostAxis.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"

#include <zlib.h>

#include <bit>
#include <cstring>

namespace zorhost::files {

namespace {

// Groups nest, and a crafted file must not be able to nest them deeper than the stack.
constexpr int kMaxDepth = 64;
constexpr std::uint32_t kMaxLabelBytes = 1024;

enum AttrFlag : std::uint8_t {
    kMinLinked = 1 << 0,
    kMaxLinked = 1 << 1,
    kHiddenForUser = 1 << 2,
    kTransferable = 1 << 3,
    kFixed = 1 << 4,
    kChangeTracked = 1 << 5,
};

class Writer {
public:
    std::string out;

    template <class T> void Raw(T value) {
        // Little-endian on every platform we build for; asserted below.
        char bytes[sizeof(T)];
        std::memcpy(bytes, &value, sizeof(T));
        out.append(bytes, sizeof(T));
    }
    void U8(std::uint8_t v) { Raw(v); }
    void U32(std::uint32_t v) { Raw(v); }
    void I32(std::int32_t v) { Raw(v); }
    void Bytes(const void* data, std::uint32_t size) {
        U32(size);
        out.append(static_cast<const char*>(data), size);
    }
    void Text(const CString& text) { Bytes(text.str().data(), std::uint32_t(text.str().size())); }
    void Value(const Variant& v) {
        Raw(std::uint16_t(v.vt));
        switch (v.vt) {
        case VT_I2:
        case VT_BOOL:
            Raw(v.iVal);
            break;
        case VT_I4:
            Raw(v.lVal);
            break;
        case VT_UI4:
            Raw(v.ulVal);
            break;
        case VT_R4:
            Raw(v.fltVal);
            break;
        case VT_R8:
        case VT_DATE:
            Raw(v.dblVal);
            break;
        case VT_I1:
            Raw(v.cVal);
            break;
        case VT_UI1:
            Raw(v.bVal);
            break;
        case VT_UI2:
            Raw(v.uiVal);
            break;
        case VT_BSTR:
            Text(v.bstrVal);
            break;
        default: // empty, null and tags we don't know carry nothing
            break;
        }
    }
};

static_assert(std::endian::native == std::endian::little, "the file form is little-endian");

void WriteGroup(Writer& w, IGroupNode& g) {
    CString text;
    g.GetName(text);
    w.Text(text);
    g.GetDescription(text);
    w.Text(text);
    w.I32(g.GetAccessLevel());
    w.U8(g.IsGroupVisible() ? 1 : 0);
    w.U8(g.IsGroupFixed() ? 1 : 0);
    const int members = g.GetMemberCount();
    w.U32(std::uint32_t(members));
    for (int i = 0; i < members; ++i) {
        g.GetMemberAt(i, text);
        w.Text(text);
    }
    const int children = g.GetChildCount();
    w.U32(std::uint32_t(children));
    for (int i = 0; i < children; ++i)
        WriteGroup(w, *g.GetChildAt(i));
}

void WriteSet(Writer& w, model::CGroupSet& set) {
    CString text;
    w.U32(std::uint32_t(set.GetMemberCount()));
    for (int i = 0; i < set.GetMemberCount(); ++i) {
        set.GetMemberAt(i, text);
        w.Text(text);
    }
    w.U32(std::uint32_t(set.GetCount()));
    for (int i = 0; i < set.GetCount(); ++i)
        WriteGroup(w, *set.Group(i));
    w.U32(std::uint32_t(set.GetCategoryCount()));
    for (int i = 0; i < set.GetCategoryCount(); ++i) {
        IGroupCategory* c = set.GetCategoryAt(i);
        c->GetName(text);
        w.Text(text);
        c->GetDescription(text);
        w.Text(text);
        w.U32(std::uint32_t(c->GetChildCount()));
        for (int k = 0; k < c->GetChildCount(); ++k) {
            c->GetChildAt(k)->GetName(text);
            w.Text(text);
        }
    }
    w.U32(std::uint32_t(set.AxisCount()));
    for (int i = 0; i < set.AxisCount(); ++i) {
        model::CHostAxis* axis = set.Axis(i);
        axis->GetName(text);
        w.Text(text);
        axis->GetKey(text);
        w.Text(text);
        w.U32(axis->GetAddressBase());
        WriteSet(w, axis->Groups());
    }
}

void WriteVar(Writer& w, IVarObjEx& var) {
    IVarAttr* attr = var.GetAttr();
    w.U8(attr ? 1 : 0);
    if (attr) {
        const AttrFields f = AttrFields::Of(*attr);
        w.Text(f.code);
        w.Text(f.name);
        w.Text(f.unit);
        w.Text(f.groupText);
        w.Text(f.infoText);
        w.U32(f.address);
        w.I32(f.dataType);
        w.I32(f.decimals);
        w.I32(f.valueLength);
        w.Value(f.factoryValue);
        w.Value(f.minValue);
        w.Value(f.maxValue);
        w.U8(std::uint8_t((f.minLinked ? kMinLinked : 0) | (f.maxLinked ? kMaxLinked : 0) |
                          (f.hiddenForUser ? kHiddenForUser : 0) |
                          (f.transferable ? kTransferable : 0) | (f.fixed ? kFixed : 0) |
                          (f.changeTracked ? kChangeTracked : 0)));
        w.I32(f.modifyMode);
        w.I32(f.effectMode);
        w.I32(f.displayFormat);
        w.I32(f.perUnitBaseId);
        w.I32(f.accessLevel);
    }
    CString key;
    var.GetInstanceGuid(key);
    w.Text(key);
    w.Value(var.GetValue());
    w.Value(var.GetSetValue());
    w.Value(var.GetLastReadValue());
    w.U8(var.IsChecked() ? 1 : 0);
    w.I32(var.GetPerUnitMode());
}

// Reads the payload; the first failure sticks and names the byte where it happened.
class Reader {
public:
    Reader(const char* data, size_t size, size_t base) : m_p(data), m_size(size), m_base(base) {}

    bool Ok() const { return m_error.empty(); }
    const std::string& Error() const { return m_error; }
    size_t Left() const { return m_size - m_pos; }
    void Fail(const std::string& what) {
        if (m_error.empty())
            m_error = what + " at byte " + std::to_string(m_base + m_pos);
    }

    template <class T> T Raw() {
        T value{};
        if (!Ok())
            return value;
        if (Left() < sizeof(T)) {
            Fail("the file ends early");
            return value;
        }
        std::memcpy(&value, m_p + m_pos, sizeof(T));
        m_pos += sizeof(T);
        return value;
    }
    std::uint8_t U8() { return Raw<std::uint8_t>(); }
    std::uint32_t U32() { return Raw<std::uint32_t>(); }
    std::int32_t I32() { return Raw<std::int32_t>(); }
    // A count of entries that take at least `minBytes` each: more than the bytes left can
    // hold is damage, not a reason to allocate.
    std::uint32_t Count(size_t minBytes) {
        const std::uint32_t n = U32();
        if (Ok() && n > Left() / minBytes) {
            m_pos -= 4;
            Fail("a count of " + std::to_string(n) + " beyond the end of the file");
            return 0;
        }
        return n;
    }
    std::string Bytes() {
        const std::uint32_t n = U32();
        if (!Ok())
            return {};
        if (n > Left()) {
            m_pos -= 4;
            Fail("a text of " + std::to_string(n) + " bytes beyond the end of the file");
            return {};
        }
        std::string s(m_p + m_pos, n);
        m_pos += n;
        return s;
    }
    CString Text() { return CString(Bytes()); }
    Variant Value() {
        Variant v;
        const auto tag = Raw<std::uint16_t>();
        v.vt = tag;
        switch (tag) {
        case VT_EMPTY:
        case VT_NULL:
            break;
        case VT_I2:
        case VT_BOOL:
            v.iVal = Raw<std::int16_t>();
            break;
        case VT_I4:
            v.lVal = Raw<std::int32_t>();
            break;
        case VT_UI4:
            v.ulVal = Raw<std::uint32_t>();
            break;
        case VT_R4:
            v.fltVal = Raw<float>();
            break;
        case VT_R8:
        case VT_DATE:
            v.dblVal = Raw<double>();
            break;
        case VT_I1:
            v.cVal = Raw<std::int8_t>();
            break;
        case VT_UI1:
            v.bVal = Raw<std::uint8_t>();
            break;
        case VT_UI2:
            v.uiVal = Raw<std::uint16_t>();
            break;
        case VT_BSTR:
            v.bstrVal = Text();
            break;
        default:
            m_pos -= 2;
            Fail("an unknown value type " + std::to_string(tag));
            return Variant();
        }
        return v;
    }

private:
    const char* m_p;
    size_t m_size;
    size_t m_base;
    size_t m_pos = 0;
    std::string m_error;
};

std::unique_ptr<model::CGroupNode> ReadGroup(Reader& r, int depth) {
    if (depth > kMaxDepth) {
        r.Fail("groups nested deeper than " + std::to_string(kMaxDepth));
        return nullptr;
    }
    auto g = std::make_unique<model::CGroupNode>(r.Text());
    CString description = r.Text();
    g->SetDescription(description);
    g->SetAccessLevel(r.I32());
    const bool visible = r.U8() != 0;
    const bool fixed = r.U8() != 0;
    g->SetFlags(visible, fixed);
    const std::uint32_t members = r.Count(4);
    for (std::uint32_t i = 0; i < members && r.Ok(); ++i)
        g->AddMember(r.Text());
    const std::uint32_t children = r.Count(4);
    for (std::uint32_t i = 0; i < children && r.Ok(); ++i) {
        std::unique_ptr<model::CGroupNode> child = ReadGroup(r, depth + 1);
        if (child && g->AddChild(child.get()))
            (void)child.release(); // the parent owns it now
    }
    return r.Ok() ? std::move(g) : nullptr;
}

void ReadSet(Reader& r, model::CGroupSet& set, int depth) {
    if (depth > 1) { // a set inside an axis inside a set: axes don't nest
        r.Fail("axes nested inside axes");
        return;
    }
    const std::uint32_t members = r.Count(4);
    for (std::uint32_t i = 0; i < members && r.Ok(); ++i)
        set.AddMember(r.Text());
    const std::uint32_t groups = r.Count(4);
    for (std::uint32_t i = 0; i < groups && r.Ok(); ++i) {
        std::unique_ptr<model::CGroupNode> g = ReadGroup(r, 0);
        if (g && set.AddGroup(g.get()))
            (void)g.release(); // the set owns it now
    }
    const std::uint32_t categories = r.Count(12);
    for (std::uint32_t i = 0; i < categories && r.Ok(); ++i) {
        CString name = r.Text();
        CString description = r.Text();
        auto c = std::make_unique<model::CGroupCategory>(name, description);
        const std::uint32_t children = r.Count(4);
        for (std::uint32_t k = 0; k < children && r.Ok(); ++k)
            c->AddChildName(r.Text());
        set.AddCategory(std::move(c));
    }
    const std::uint32_t axes = r.Count(12);
    for (std::uint32_t i = 0; i < axes && r.Ok(); ++i) {
        auto* axis = static_cast<model::CHostAxis*>(set.AddAxis());
        axis->SetName(r.Text());
        axis->SetKey(r.Text());
        axis->SetAddressBase(r.U32());
        ReadSet(r, axis->Groups(), depth + 1);
    }
}

// The bound module's attribute for the parameter, as the meaning of its value.
IVarAttr* ContextAttr(IHostDeviceModule* module, const CString& key, const AttrFields& f) {
    IVarCatalog* catalog = module ? module->GetVarCatalog() : nullptr;
    IVarAttr* attr = catalog ? catalog->FindAttrByCode(key) : nullptr;
    if (attr == nullptr && catalog != nullptr)
        attr = catalog->FindAttrByCode(f.code);
    if (attr == nullptr || attr->GetAddress() != f.address)
        return nullptr;
    return attr->Clone();
}

bool ReadVar(Reader& r, CParamFile& file) {
    std::unique_ptr<CFileVarAttr> attr;
    const std::uint8_t hasAttr = r.U8();
    AttrFields f;
    if (hasAttr > 1) {
        r.Fail("a broken variable record");
        return false;
    }
    if (hasAttr) {
        f.code = r.Text();
        f.name = r.Text();
        f.unit = r.Text();
        f.groupText = r.Text();
        f.infoText = r.Text();
        f.address = r.U32();
        f.dataType = r.I32();
        f.decimals = r.I32();
        f.valueLength = r.I32();
        f.factoryValue = r.Value();
        f.minValue = r.Value();
        f.maxValue = r.Value();
        const std::uint8_t flags = r.U8();
        f.minLinked = (flags & kMinLinked) ? 1 : 0;
        f.maxLinked = (flags & kMaxLinked) ? 1 : 0;
        f.hiddenForUser = (flags & kHiddenForUser) ? 1 : 0;
        f.transferable = (flags & kTransferable) ? 1 : 0;
        f.fixed = (flags & kFixed) ? 1 : 0;
        f.changeTracked = (flags & kChangeTracked) ? 1 : 0;
        f.modifyMode = r.I32();
        f.effectMode = r.I32();
        f.displayFormat = r.I32();
        f.perUnitBaseId = r.I32();
        f.accessLevel = r.I32();
    }
    const CString key = r.Text();
    const Variant value = r.Value();
    const Variant setValue = r.Value();
    const Variant lastRead = r.Value();
    const bool checked = r.U8() != 0;
    const int perUnitMode = r.I32();
    if (!r.Ok())
        return false;
    if (hasAttr)
        attr = std::make_unique<CFileVarAttr>(std::move(f), nullptr);
    if (attr) {
        if (IVarAttr* context = ContextAttr(file.Context(), key, attr->Fields()))
            attr = std::make_unique<CFileVarAttr>(attr->Fields(), context);
    }
    auto var = std::make_unique<model::CVarObj>(attr.get(), nullptr);
    CString code;
    var->GetInstanceCode(code);
    if (key != code)
        var->SetInstanceKey(key);
    var->StoreRead(lastRead);
    var->SetValue(value);
    var->SetSetValue(setValue);
    var->SetChecked(checked ? 1 : 0);
    var->SetPerUnitMode(perUnitMode);
    if (!file.Table().Adopt(std::move(var), std::move(attr))) {
        r.Fail("a second variable with the key \"" + key.str() + "\"");
        return false;
    }
    return true;
}

} // namespace

std::string EncodeParamFile(CParamFile& file) {
    Writer w;
    CParamFileTable& table = file.Table();
    w.Text(file.VersionText());
    const BYTE* label = file.GetElecLabel();
    w.Bytes(label, label ? file.GetElecLabelSize() : 0);
    w.I32(file.AccessLevel());
    CString tableVersion;
    table.GetVersionText(tableVersion);
    w.Text(tableVersion);
    w.U32(std::uint32_t(table.GetCount()));
    for (int i = 0; i < table.GetCount(); ++i)
        WriteVar(w, *table.GetAt(i));
    WriteSet(w, table.Fixed());
    WriteSet(w, table.Custom());

    std::string bytes(kZorparamMagic, sizeof kZorparamMagic);
    Writer head;
    head.Raw(kZorparamVersion);
    head.Raw(std::uint16_t(0));
    head.U32(std::uint32_t(w.out.size()));
    head.U32(
        std::uint32_t(crc32(0L, reinterpret_cast<const Bytef*>(w.out.data()), uInt(w.out.size()))));
    bytes += head.out;
    bytes += w.out;
    return bytes;
}

bool DecodeParamFile(const std::string& bytes, CParamFile& file, std::string& error) {
    if (bytes.size() < sizeof kZorparamMagic ||
        std::memcmp(bytes.data(), kZorparamMagic, sizeof kZorparamMagic) != 0) {
        error = "not a parameter file (no .zorparam signature)";
        return false;
    }
    if (bytes.size() < kZorparamHeaderBytes) {
        error =
            "the file ends early, within its header (" + std::to_string(bytes.size()) + " bytes)";
        return false;
    }
    Reader head(bytes.data() + 8, kZorparamHeaderBytes - 8, 8);
    const auto version = head.Raw<std::uint16_t>();
    head.Raw<std::uint16_t>();
    const std::uint32_t length = head.U32();
    const std::uint32_t checksum = head.U32();
    if (version != kZorparamVersion) {
        error = "format version " + std::to_string(version) + ", this program reads version " +
                std::to_string(kZorparamVersion);
        return false;
    }
    const size_t have = bytes.size() - kZorparamHeaderBytes;
    if (have < length) {
        error = "the file ends early: " + std::to_string(have) + " of " + std::to_string(length) +
                " bytes of contents";
        return false;
    }
    if (have > length) {
        error = std::to_string(have - length) + " stray bytes after the contents";
        return false;
    }
    const char* payload = bytes.data() + kZorparamHeaderBytes;
    if (crc32(0L, reinterpret_cast<const Bytef*>(payload), uInt(length)) != checksum) {
        error = "the checksum does not match: the file is damaged";
        return false;
    }

    Reader r(payload, length, kZorparamHeaderBytes);
    file.SetVersionText(r.Text());
    const std::string label = r.Bytes();
    if (label.size() > kMaxLabelBytes)
        r.Fail("an electronic label of " + std::to_string(label.size()) + " bytes");
    file.SetElecLabel(reinterpret_cast<const BYTE*>(label.data()), UINT(label.size()));
    file.SetAccessLevel(r.I32());
    file.Table().SetVersionText(r.Text());
    // The smallest variable: no attribute, empty key, three empty values, mark, mode.
    const std::uint32_t count = r.Count(1 + 4 + 3 * 2 + 1 + 4);
    for (std::uint32_t i = 0; i < count && r.Ok(); ++i)
        ReadVar(r, file);
    ReadSet(r, file.Table().Fixed(), 0);
    ReadSet(r, file.Table().Custom(), 0);
    file.Table().BindSets();
    if (r.Ok() && r.Left() != 0)
        r.Fail("contents that don't belong to the file");
    if (!r.Ok()) {
        error = r.Error();
        return false;
    }
    return true;
}

} // namespace zorhost::files
