// CVarCompare: sets two parameter sets side by side, variable by variable, and sorts each
// pair that both sides hold into agreeing or differing. It is plain code over the host
// contract, so the compare dialog and the host's command line give the same answer.
#pragma once

#include "module/TemplateList.h"
#include "module/host/HostFwd.h"
#include "module/host/Variant.h"

#include <afx/CString.h>

#include <functional>
#include <string>
#include <vector>

// Where a compared value comes from; kept as item data of the kind lists.
enum VarSource {
    VarSourceCurrent = 1, // GetValue of the variable
    VarSourceFactory = 2, // GetFactoryValue of its attribute
    VarSourceFile = 4,    // GetValue of the variable read from a parameter file
};

// One row of a result list: the two attributes and the two values that were compared.
// Its texts are made when the row is shown or saved, so that a compare of large sets spends
// its time matching and comparing, not formatting rows nobody may look at. The attributes
// must outlive the row: a module's belong to its drive, a file's to whoever keeps the
// variables CloneFileVars made.
class CVarCompareRst {
public:
    // The result list's columns after the row number.
    enum Column { Group1 = 1, Code1, Name1, Value1, Group2, Code2, Name2, Value2 };

    IVarAttr* m_pAttr1 = nullptr;
    IVarAttr* m_pAttr2 = nullptr;
    UINT m_nAddress = 0; // of the variable of set 2
    Variant m_value1;
    Variant m_value2;

    // The text of `column`; empty for a column it doesn't know.
    CString GetText(IHostVarUtil* util, int column) const;
};

// Owns its records once filled: clear it with DeleteAll.
using CVarCompareRstList = CTemplateList<CVarCompareRst*, CVarCompareRst*>;

class CVarCompare {
public:
    // Indexed looks set 2 up by address once; Linear walks set 2 from its start for every
    // variable of set 1. Both find the first variable of an address, so both give the same
    // rows; Linear is kept as the reference the index is measured and tested against.
    enum SearchMode { SearchIndexed, SearchLinear };

    // Two values agree when their numbers lie at most this far apart.
    static constexpr double kTolerance = 0.000001;

    explicit CVarCompare(IHostVarUtil* util) : m_pUtil(util) {}

    // Asked before each variable of set 1 and at each step of a search; true ends the run.
    void SetStopTest(std::function<bool()> stop) { m_stop = std::move(stop); }
    void SetHideReadOnly(BOOL hide) { m_bHideReadOnly = hide; }
    void SetSearchMode(SearchMode mode) { m_mode = mode; }

    // Appends a record for each variable of set 1 that set 2 holds at its address and that
    // may be compared. FALSE when the run was stopped (the lists keep what they got).
    BOOL Run(const std::vector<IVarObjEx*>& set1, int source1, const std::vector<IVarObjEx*>& set2,
             int source2, CVarCompareRstList& agree, CVarCompareRstList& differ);

    // The value that `source` takes from `var`; empty when there is none.
    static Variant SourceValue(IVarObjEx* var, int source);
    // The number part of a compared value, by display format.
    static CString CompareNumberText(IHostVarUtil* util, IVarAttr* attr, const Variant& value);
    // The number with the meaning of an enumerated value in square brackets.
    static CString CompareValueText(IHostVarUtil* util, IVarAttr* attr, const Variant& value);

    // The compare table: a time line, the header, one line per record. Each line passes
    // the host's narrow text; nothing is quoted.
    static std::string CsvText(IHostVarUtil* util, const CVarCompareRstList& rows,
                               const SYSTEMTIME& time);

    // Appends copies of the variables of an opened parameter file, each with a copy of
    // its attribute, so that they outlive the file object. Rows made from them need them
    // until the rows are gone.
    static void CloneFileVars(IParamFile* file, std::vector<IVarObjEx*>& vars);
    // Frees what CloneFileVars made: the attribute first, then the variable.
    static void FreeFileVars(std::vector<IVarObjEx*>& vars);

private:
    bool Stopped() const { return m_stop && m_stop(); }
    IVarObjEx* FindLinear(const std::vector<IVarObjEx*>& set2, UINT address, bool& stopped) const;
    void ComparePair(IVarObjEx* var1, int source1, IVarObjEx* var2, int source2,
                     CVarCompareRstList& agree, CVarCompareRstList& differ);

    IHostVarUtil* m_pUtil;
    std::function<bool()> m_stop;
    BOOL m_bHideReadOnly = FALSE;
    SearchMode m_mode = SearchIndexed;
};
