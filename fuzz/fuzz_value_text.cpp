// Texts a user types or a spreadsheet holds: hexadecimal, binary, address and type name
// texts, and a typed cell figure under every value tag. The first byte picks the parser.
#include "FuzzSupport.h"

#include "values/ValueText.h"
#include "zorhost/services/HostVarUtil.h"

#include <cctype>

namespace {

bool AllDigits(const CString& text) {
    for (char c : text.str())
        if (!std::isdigit(static_cast<unsigned char>(c)))
            return false;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static zorhost::CHostVarUtil util;
    if (size == 0)
        return 0;
    const CString text(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    const std::uint8_t tags[] = {VT_EMPTY, VT_NULL, VT_I2, VT_I4,  VT_R4,  VT_R8, VT_DATE,
                                 VT_BSTR,  VT_BOOL, VT_I1, VT_UI1, VT_UI2, VT_UI4};
    switch (data[0] % 5) {
    case 0:
        // A decimal text of at most eight hexadecimal digits.
        if (const CString d = VarText::HexTextToDecimal(text);
            d.IsEmpty() || !AllDigits(d) || d.GetLength() > 10)
            __builtin_trap();
        break;
    case 1:
        if (const CString d = VarText::BinaryTextToDecimal(text);
            !d.IsEmpty() && (!AllDigits(d) || d.GetLength() > 5))
            __builtin_trap();
        break;
    case 2:
        VarText::ParseAddressText(text);
        break;
    case 3:
        VarText::DataTypeFromName(text);
        break;
    default: {
        Variant value;
        const VARTYPE tag = tags[(data[0] / 5) % sizeof tags];
        if (util.ParseVariant(value, text, tag) && value.vt != tag)
            __builtin_trap();
        break;
    }
    }
    return 0;
}
