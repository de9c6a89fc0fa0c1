// The compressed export (.zxd): a fixed header with the drive's identity and the time, one
// 16-byte value record per row with its own checksum, an end mark, and behind it the rows
// once more as the zlib image of a parameter file.
#pragma once

#include "module/host/HostFwd.h"

#include <afx/CString.h>
#include <afx/afxtypes.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

class CWnd;

constexpr uint32_t ZXD_END_MARK = 0x55AA55AA;
constexpr size_t ZXD_HEADER_SIZE = 64;
constexpr size_t ZXD_RECORDS_OFFSET = 256;

using ZxdRecord = std::array<uint32_t, 4>;

// The bitwise complement of the byte sum of `size` bytes.
uint32_t ZxdChecksum(const BYTE* bytes, size_t size);
// The value word of a variant: integers as they stand (sign-extended), reals truncated
// toward 0, a bool as 0 or 1, anything else 0.
uint32_t ZxdValueWord(const Variant& value);
// The record of a variable (a clone): address, flags, value and checksum.
ZxdRecord BuildValueRecord(IVarObjEx* var);
// The record of the function `name` of the store, four zeros when it has none.
ZxdRecord BuildVersionRecord(IVarStore* store, IHostDeviceModule* module, const CString& name);
// The 64 header bytes for a 32-byte label block (as the module holds it), a time and the
// number of rows.
std::string BuildZxdHeader(const BYTE* label, UINT labelSize, const SYSTEMTIME& time,
                           uint32_t rowCount);

enum class ZxdResult { Written, OpenFailed, AppendFailed };

// Writes the export of `rows` for `module` to `path` (narrow, as the file system takes it),
// with the local time taken now, replacing the file in one step. The compressed image is left out
// when the host offers no parameter file or memory stream.
ZxdResult WriteZxdFile(const std::string& path, IHostDeviceModule* module,
                       const std::vector<IVarObjEx*>& rows);
// The parameter file of `rows` as the host serialises it; empty without the host's objects.
std::string SerializeRowsAsParamFile(IHostDeviceModule* module,
                                     const std::vector<IVarObjEx*>& rows);
