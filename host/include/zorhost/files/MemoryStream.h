// A growing block of memory (IMemoryStream) that a parameter file serialises into.
#pragma once

#include "module/host/IMemoryStream.h"

#include <string>

namespace zorhost::files {

class CMemoryStream : public IMemoryStream {
public:
    void Release() override { delete this; }
    void Reset(int position) override;
    void SetMode(int mode) override { m_mode = mode; }
    const BYTE* GetData() override;
    UINT GetSize() override { return UINT(m_bytes.size()); }

    // Writes `bytes` at the position and moves it past them.
    void Append(const std::string& bytes);
    int Mode() const { return m_mode; }

private:
    std::string m_bytes;
    size_t m_position = 0;
    int m_mode = 0;
};

} // namespace zorhost::files
