// A fresh folder for one test, removed with everything in it when the test ends; and the
// pictures tests leave for a reviewer where PARMIRA_SCREENSHOT_DIR says.
#pragma once

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "parmira-XXXXXX").string();
        // Also made by benchmarks, which have no test to fail: a missing folder throws.
        if (::mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("no temporary folder under " + pattern);
        m_path = pattern;
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& Path() const { return m_path; }
    std::string operator/(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

// Leaves a picture of `window` as `name` when PARMIRA_SCREENSHOT_DIR is set.
inline void ShootIfAsked(CWnd* window, const char* name) {
    const char* dir = std::getenv("PARMIRA_SCREENSHOT_DIR");
    if (dir == nullptr || *dir == '\0')
        return;
    const std::string path = std::string(dir) + "/" + name;
    EXPECT_TRUE(AfxTestGrabWindow(window, path.c_str())) << path;
}
