// Value text: what a parameter value looks like in a cell, how a typed text becomes a
// value again, and how limits are applied. Every list, dialog and file of the module goes
// through these operations.
//
// Values as the host holds them: a parameter of an integer type carries a raw figure, the
// value in its own unit times 10^GetDecimals (H00-04 with 2 decimals holding 40 means
// 0.40); float and double parameters carry the value itself. A figure typed by a user
// travels as a double in the unit shown in the cell.
//
// All operations are free of state. Host services are asked for through theApp on every
// use; a missing service or attribute gives an empty text, 0, or does nothing.
#pragma once

#include "module/host/VarAttrCodes.h"

#include "module/host/HostFwd.h"
#include "module/host/Variant.h"

#include <afx/CString.h>

#include <vector>

namespace VarText {

// Texts of their own meaning in a cell.
inline const char* const kNoValueText = "---";
inline const char* const kHiddenText = "******";
inline const char* const kNoUnitText = "-";
// The one error text of a refused value.
inline const char* const kOverLimitFormat = "Over the limit,value = %s,[min = %s,max = %s]";
// Shown when a direct write fails without a reason from the drive.
inline const char* const kDownloadFailedText = "参数下载失败.";
// Caption of the box of a failed direct write.
constexpr UINT IDS_WRITE_FAILED_CAPTION = 2037;

// ---- types and parsers
// Data type code of a spreadsheet's type text; 0 when unknown.
int DataTypeFromName(const CString& text);
// Hexadecimal text ("0x00ff", "00 FF") to decimal text; at most the first 8 digits count.
CString HexTextToDecimal(const CString& text);
// Binary text ("0b1010", "1 1") to decimal text; at most 16 digits; texts shorter than 3
// characters give an empty text.
CString BinaryTextToDecimal(const CString& text);
// The address column of a spreadsheet: decimal, or "0x" hexadecimal. 0 for a text that
// names no address, also for one too large for an address.
UINT ParseAddressText(const CString& text);

// ---- texts of values and limits
// `value` of the parameter `attr` by its display format: decimal, "0x%04X", or empty for
// the raw format.
CString RawValueText(IVarAttr* attr, const Variant& value);
// The raw figure `raw` of `attr` as its cell shows it, which is also the text an editor
// hands to the commit: the commit reads this form back to the same raw figure.
CString EditorValueText(IVarAttr* attr, double raw);
// RawValueText of the current value of `item`.
CString ItemValueText(IVarObjEx* item);
// A limit or factory value: as RawValueText, but every format other than hexadecimal
// shows the decimal figure.
CString LimitValueText(IVarAttr* attr, const Variant& value);
// The limit texts of a list row; per-unit parameters follow their per-unit mode.
CString FactoryValueText(IVarObjEx* item);
CString MinValueText(IVarObjEx* item);
CString MaxValueText(IVarObjEx* item);
// `value` of a per-unit parameter in the scale of its per-unit mode ("100.00%" ...);
// empty for another display format, no value, or a base that can't be had.
CString PerUnitValueText(IVarObjEx* item, const Variant& value);
// The value of the base of the per-unit mode of `item`, read from the drive once and then
// held by the module's per-unit table. 0 when there is none.
double PerUnitBase(IVarObjEx* item);
// Text of the column "显示方式".
CString DisplayFormatText(IVarObjEx* item);
// The unit, "%" in percent mode; may be empty.
CString UnitText(IVarObjEx* item);
// "任意修改", "停机修改", "不可修改"; empty for any other mode.
CString ModifyModeText(IVarAttr* attr);
// "立即生效", "再次通电", "停机生效"; empty for any other mode.
CString EffectModeText(IVarAttr* attr);

// ---- linked limits
// Nonzero when the minimum (`maximum` 0) or maximum of `attr` is another parameter's value.
BOOL IsLimitLinked(IVarAttr* attr, BOOL maximum);
// The function code a linked limit names; empty when the limit isn't linked.
CString LinkedLimitCode(IVarAttr* attr, BOOL maximum);
// The cell of a linked limit: "value[code]" with the live value text of the parameter the
// limit names, found in the module's variable list. `target` (may be null) receives that
// parameter so that the list can keep it refreshed; without one the value part is empty.
CString LinkedLimitText(IVarObjEx* item, BOOL maximum, IVarObjEx** target = nullptr);

// ---- connectors
BOOL IsConnectorVar(IVarAttr* attr);
BOOL IsConnectorName(const CString& text);
BOOL HasConnectorName(const CString& text);

// ---- limits
// Tests `source` against `minimum`..`maximum` (figures in the parameter's unit, ends
// included). Inside: `out` is the raw figure of the value under the tag of `source`, result
// 1. Outside: the over-limit text is appended to `errors`, result 0.
BOOL ApplyLimits(int decimals, int type, double maximum, double minimum, const Variant& source,
                 Variant& out, std::vector<CString>& errors);
// Tests `value` (a figure in the parameter's unit) against the limits of the parameter at
// `address` of module `moduleKey`, reading linked limits from the drive. Accepted: `out` is
// the raw figure in the parameter's own type, result 1.
BOOL CheckEditedValue(const CString& moduleKey, UINT address, int type, const Variant& value,
                      Variant& out, std::vector<CString>& errors);

// ---- the commit of an edited value cell
enum CommitResult {
    COMMIT_IGNORED,      // no variable, an empty or placeholder text, or a text that is no figure
    COMMIT_UNCHANGED,    // the live list: the figure equals the current value; nothing written
    COMMIT_WRITTEN,      // written to the drive
    COMMIT_WRITE_FAILED, // the drive refused or didn't answer; the reason was shown
    COMMIT_STAGED,       // stored as the set value, check mark set by the difference
    COMMIT_REFUSED,      // outside the limits, or no per-unit base to scale by
};
// The text `text` left in the value cell of `item`. `page` is 0 for the live list and 1
// for the staging list; `listStyle` the host's list style (0 writes at once, any other
// stages a set value).
CommitResult CommitCellText(IVarObjEx* item, const CString& text, int page, int listStyle);

// A text in the user's language; `text` itself without the translator or a translation.
CString Translate(const CString& text);

} // namespace VarText
