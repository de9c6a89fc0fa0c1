// Two parameter sets side by side, for the command line: each variable of the first set
// meets the first variable of the second set at its address, and the numbers decide whether
// they agree. The rows and their texts are the compare dialog's, so that a script sees what
// an engineer sees; the suite holds the two to the same table.
#pragma once

#include "module/host/HostFwd.h"
#include "module/host/Variant.h"

#include <afx/afxtypes.h>

#include <string>
#include <vector>

namespace zorhost {

// Where a compared value comes from.
enum class CompareSource { Current, Factory, File };

struct ComparedPair {
    IVarAttr* attr1 = nullptr;
    IVarAttr* attr2 = nullptr;
    Variant value1;
    Variant value2;
};

struct CompareResult {
    std::vector<ComparedPair> agree;
    std::vector<ComparedPair> differ;
};

// Pairs that may be compared: both transferable, the first not hidden, both values present.
CompareResult CompareParamSets(IHostVarUtil& util, const std::vector<IVarObjEx*>& set1,
                               CompareSource source1, const std::vector<IVarObjEx*>& set2,
                               CompareSource source2);

// The compare table: a time line, the header, one line per pair, each through the host's
// narrow text; nothing is quoted.
std::string CompareCsv(IHostVarUtil& util, const std::vector<ComparedPair>& rows,
                       const SYSTEMTIME& time);

// Copies of the variables of an opened parameter file, each with its own copy of its
// attribute, so that they (and pairs made from them) outlive the file object.
class DetachedFileVars {
public:
    explicit DetachedFileVars(IParamFile* file);
    ~DetachedFileVars();
    DetachedFileVars(const DetachedFileVars&) = delete;
    DetachedFileVars& operator=(const DetachedFileVars&) = delete;

    const std::vector<IVarObjEx*>& vars() const { return m_vars; }

private:
    std::vector<IVarObjEx*> m_vars;
};

} // namespace zorhost
