// The stored table of a module's device: its custom groups, written as a small JSON file
// and read back when a project opens.
#pragma once

#include "module/host/IVarDatabase.h"

#include <string>

namespace zorhost::model {

class CVarStore;

class CVarDatabase : public IVarDatabase {
public:
    explicit CVarDatabase(CVarStore& store) : m_store(store) {}

    // Writes the custom groups (root members, groups and their children) to `path`
    // through a temporary file, so a failed write leaves the old file as it was.
    BOOL SaveToFile(const CString& path) override;
    // Replaces the store's custom groups by those of `path`. On any error the groups stay
    // as they were and `error` says why.
    bool LoadFromFile(const CString& path, std::string* error = nullptr);
    // The same from the bytes of a store; `sourceName` only names it in `error`.
    bool LoadFromBytes(const std::string& bytes, const std::string& sourceName,
                       std::string* error = nullptr);

    CVarStore& Store() { return m_store; }

private:
    CVarStore& m_store;
};

} // namespace zorhost::model
