#include "zorhost/files/MemoryStream.h"

#include <algorithm>

namespace zorhost::files {

void CMemoryStream::Reset(int position) {
    m_bytes.clear();
    m_position = size_t(std::max(position, 0));
    m_bytes.resize(m_position);
}

const BYTE* CMemoryStream::GetData() {
    return m_bytes.empty() ? nullptr : reinterpret_cast<const BYTE*>(m_bytes.data());
}

void CMemoryStream::Append(const std::string& bytes) {
    if (m_bytes.size() < m_position + bytes.size())
        m_bytes.resize(m_position + bytes.size());
    std::copy(bytes.begin(), bytes.end(), m_bytes.begin() + std::ptrdiff_t(m_position));
    m_position += bytes.size();
}

} // namespace zorhost::files
