#pragma once

// The fixed description of one drive product: its parameters, groups, axes and tables.
// Loaded once from a JSON file and shared read-only by every live module of that product;
// current values, set values and check marks belong to the host's variable objects.

#include <atomic>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorhost::device {

inline constexpr std::uint32_t kNoIndex = std::numeric_limits<std::uint32_t>::max();
inline constexpr int kCommonScope = -1; // parameters and groups that belong to no axis

// Codes of the value variant's type tag.
enum class DataType : std::uint8_t {
    Unknown = 0,
    Int16 = 2,
    Int32 = 3,
    Float = 4,
    Double = 5,
    Date = 7,
    String = 8,
    Bool = 11,
    Int8 = 16,
    UInt8 = 17,
    UInt16 = 18,
    UInt32 = 19,
};

enum class ModifyMode : std::uint8_t {
    Any = 0,          // 任意修改
    AtStandstill = 1, // 停机修改
    Never = 2,        // 不可修改
    NotListed = 3,    // left out of lists and transfers
};

enum class EffectMode : std::uint8_t {
    Immediate = 1,       // 立即生效
    AfterPowerCycle = 2, // 再次通电
    AtStandstill = 3,    // 停机生效
};

enum class DisplayFormat : std::uint8_t {
    Decimal = 0,
    Hexadecimal = 1,
    PerUnit = 2,
    Raw = 3,
    Hidden = 4, // password-like: the value is never shown
};

enum class ValueInfoKind : std::uint8_t {
    None = 0,
    Enumeration = 1,
    Bits = 2,
    BitRanges = 3,
    Digits = 4,
};

enum class ProductKind : std::uint8_t { Servo, MultiAxisServo, Inverter };

// Order of the 16-bit words of a multi-register value on the field bus. The drive's own
// memory and the host keep the low word first; a product may send the high word first.
enum class WordOrder : std::uint8_t { LowFirst = 0, HighFirst = 1 };

enum class ConnectorKind : std::uint8_t { None = 0, B = 1, K = 2, F = 3, KF = 4, BKF = 5 };

// Access models: 0 the level lives in the tool only; 1 and 2 the drive holds one too,
// and in model 2 the tool follows the drive's "Authority".
enum class AccessModel : std::uint8_t { ToolOnly = 0, DrivePassword = 1, DriveAuthority = 2 };

// Texts are stored once in the description's pool, each behind its length; a TextRef is
// the offset of that length. Offset 0 is the empty text.
struct TextRef {
    std::uint32_t offset = 0;
    bool empty() const { return offset == 0; }
};

struct ValueOption {
    double value = 0;
    TextRef text;
    TextRef textEn;
};

struct BitEntry {
    std::uint8_t bit = 0;
    TextRef text;
    TextRef textEn;
};

struct BitRange {
    TextRef text;
    TextRef textEn;
    std::uint8_t firstBit = 0;
    std::uint8_t width = 1;
    std::vector<ValueOption> options;
};

struct DigitField {
    TextRef text;
    TextRef textEn;
    std::uint8_t digit = 0; // 0 is the lowest decimal digit
    std::vector<ValueOption> options;
};

// Meaning of a value. Several parameters may share one (all DI terminals, for instance).
struct ValueInfo {
    ValueInfoKind kind = ValueInfoKind::None;
    std::vector<ValueOption> enumeration; // kind Enumeration
    std::vector<BitEntry> bits;           // kind Bits
    std::vector<BitRange> ranges;         // kind BitRanges
    std::vector<DigitField> digits;       // kind Digits
};

enum ParameterFlag : std::uint8_t {
    kHiddenForUser = 1 << 0,
    kTransferable = 1 << 1,
    kFixed = 1 << 2,
    kChangeTracked = 1 << 3,
};

struct ParameterDef {
    TextRef code; // "H02-41"
    TextRef name;
    TextRef nameEn;
    TextRef unit;
    // Raw values as the drive holds them: an integer parameter with 1 decimal stores 15.0 as 150.
    double factoryValue = 0;
    double minValue = 0;
    double maxValue = 0;
    std::uint32_t address = 0;          // communication address, axis base included
    std::uint32_t minLink = kNoIndex;   // parameter whose live value is the minimum
    std::uint32_t maxLink = kNoIndex;   // parameter whose live value is the maximum
    std::uint32_t valueInfo = kNoIndex; // index into DeviceDescription::valueInfos
    std::uint16_t perUnitBaseId = 0;    // 0: none
    std::int8_t axis = kCommonScope;
    std::int8_t decimals = 0;
    DataType dataType = DataType::Unknown;
    ModifyMode modifyMode = ModifyMode::Any;
    EffectMode effectMode = EffectMode::Immediate;
    DisplayFormat displayFormat = DisplayFormat::Decimal;
    std::uint8_t accessLevel = 0;
    std::uint8_t flags = kTransferable | kChangeTracked;

    bool IsMinLinked() const { return minLink != kNoIndex; }
    bool IsMaxLinked() const { return maxLink != kNoIndex; }
    bool IsHiddenForUser() const { return (flags & kHiddenForUser) != 0; }
    bool IsTransferable() const { return (flags & kTransferable) != 0; }
    bool IsFixed() const { return (flags & kFixed) != 0; }
    bool IsChangeTracked() const { return (flags & kChangeTracked) != 0; }
};

// The help text of a parameter; few have one, so they are kept apart (DeviceDescription::InfoOf).
struct ParameterInfo {
    std::uint32_t parameter = kNoIndex;
    TextRef text;
    TextRef textEn;
};

struct GroupDef {
    TextRef name; // "H02"
    TextRef description;
    TextRef descriptionEn;
    std::uint8_t accessLevel = 0;
    bool visible = true;
    bool fixed = false;
    std::int8_t axis = kCommonScope;
    std::vector<std::uint32_t> members;  // parameter indices, in the order listed
    std::vector<std::uint32_t> children; // indices into DeviceDescription::groups
};

// A category only names groups of its set; the groups stay where they are.
struct CategoryDef {
    TextRef name;
    TextRef description;
    TextRef descriptionEn;
    std::vector<std::uint32_t> groups; // indices into DeviceDescription::groups
};

struct GroupSet {
    std::vector<std::uint32_t> roots; // top-level groups in set order
    std::vector<CategoryDef> categories;
};

struct AxisDef {
    TextRef name;
    TextRef nameEn;
    TextRef key;
    std::uint32_t addressBase = 0;
    std::uint32_t firstParameter = 0; // the axis's parameters are one contiguous block
    std::uint32_t parameterCount = 0;
    GroupSet groupSet;
};

// A drive variable reached by a fixed name ("Authority", "ControlFunction3", ...).
struct NamedVariable {
    TextRef name;
    std::uint32_t address = 0;
    DataType dataType = DataType::Unknown;
    std::uint32_t parameter = kNoIndex; // the parameter at that address, if it is one
};

struct ConnectorGroupDef {
    ConnectorKind kind = ConnectorKind::None; // B, K or F
    TextRef name;
    TextRef groupKey;               // name of a group in the device's own group set
    std::uint32_t group = kNoIndex; // that group
    std::uint32_t base = 0;         // value of the group's first connector; spans 100 values
};

struct PerUnitBase {
    TextRef name;
    TextRef nameEn;
    std::uint32_t address = 0;
    std::uint32_t parameter = kNoIndex;
};

// Bases of one per-unit id; per-unit mode m (m >= 2) uses bases[m - 2].
struct PerUnitTable {
    std::uint16_t id = 0;
    std::vector<PerUnitBase> bases;
};

struct ProductInfo {
    TextRef name;
    TextRef nameEn;
    std::uint32_t lineId = 0;
    std::uint32_t productId = 0;
    std::uint32_t subProductId = 0;
    TextRef subName;                           // short model designation; may be empty
    std::vector<std::uint8_t> electronicLabel; // at most 32 bytes
    // The primary unit's label when the product is part of a composite device; else empty.
    std::vector<std::uint8_t> primaryElectronicLabel;
    TextRef versionText;
    ProductKind kind = ProductKind::Servo;
    AccessModel accessModel = AccessModel::ToolOnly;
    std::uint8_t axisCopyCount = 0; // axes that axis copy offers; 0 for a single-axis drive
    WordOrder wordOrder = WordOrder::LowFirst; // "wordOrder": "lowFirst" or "highFirst"
};

class DeviceDescription {
public:
    std::string sourceFile;
    ProductInfo product;
    std::vector<ParameterDef> parameters; // common ones first, then each axis's block
    std::vector<ValueInfo> valueInfos;
    std::vector<GroupDef> groups; // every group of every set, children included
    GroupSet groupSet;            // the device's own (common) set
    std::vector<AxisDef> axes;
    std::vector<NamedVariable> namedVariables;
    std::vector<NamedVariable> functions;
    std::vector<ConnectorGroupDef> connectors;
    std::vector<PerUnitTable> perUnitTables;
    std::vector<ParameterInfo> parameterInfos; // in parameter order; none for most parameters

    std::string_view Text(TextRef ref) const { return TextAt(textPool, ref); }
    static std::string_view TextAt(std::string_view pool, TextRef ref);
    std::string_view Code(const ParameterDef& p) const { return Text(p.code); }

    bool IsMultiAxis() const { return !axes.empty(); }
    const ValueInfo* ValueInfoOf(const ParameterDef& p) const;
    ParameterInfo InfoOf(std::uint32_t parameter) const; // empty texts where there is none

    // Lookups, all by binary search over indexes built at load time.
    std::uint32_t FindByAddress(std::uint32_t address) const;
    // scope: kCommonScope for device-wide parameters, else an axis index.
    std::uint32_t FindByCode(std::string_view code, int scope = kCommonScope) const;
    std::uint32_t FindGroup(std::string_view name, int scope = kCommonScope) const;
    std::span<const ParameterDef> AxisParameters(int axis) const;
    const NamedVariable* FindNamedVariable(std::string_view name) const;
    const NamedVariable* FindFunction(std::string_view name) const;
    const PerUnitTable* FindPerUnitTable(std::uint16_t id) const;

    // Connector values: a group spans base .. base + 99, and the position in the group is
    // the parameter's address modulo 100. The two operations are inverse for one parameter.
    std::uint32_t ConnectorValueOf(std::uint32_t parameter, ConnectorKind kind) const;
    std::uint32_t FindByConnectorValue(std::uint32_t value) const;

    // Heap bytes held by this description (vectors, pool, indexes), for budgeting.
    std::size_t HeapBytes() const;

    // Filled by the loader. Parameters ordered by address and by (axis, code). Descriptions mostly
    // list them in that order already; an index is then left empty and the order is the parameters'
    // own.
    std::string textPool; // see TextRef
    std::vector<std::uint32_t> addressIndex;
    std::vector<std::uint32_t> codeIndex;
    std::uint32_t ByAddress(std::size_t i) const {
        return addressIndex.empty() ? std::uint32_t(i) : addressIndex[i];
    }
    std::uint32_t ByCode(std::size_t i) const {
        return codeIndex.empty() ? std::uint32_t(i) : codeIndex[i];
    }

private:
    // The position in address order after the last address found. Walks over groups ask
    // for addresses mostly in order, so that position is tried before a search. Only a hint,
    // checked before use; every thread that looks up shares it, and a copy starts afresh.
    struct SearchHint {
        std::atomic<std::uint32_t> next{0};
        SearchHint() = default;
        SearchHint(const SearchHint&) {}
        SearchHint& operator=(const SearchHint&) { return *this; }
    };
    mutable SearchHint m_addressHint;
};

const char* DataTypeName(DataType type); // "u16", "i32", ... as written in device files
int DataTypeBits(DataType type);         // 0 for date and string
// Register layout of the value types: 8- and 16-bit values and booleans take one register,
// 32-bit integers and floats two, doubles and dates four; the low word comes first.
// 0 for a type that has no register form (text).
int RegisterCount(DataType type);
// The registers an address takes up: a type without a register form still holds its own.
int RegisterSpan(DataType type);

} // namespace zorhost::device
