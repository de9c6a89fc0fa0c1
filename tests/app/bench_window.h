// The main window with the real plug-in loaded from beside the test program. The plug-in
// is loaded once per suite, as the program loads it once; so the host it talks to lives
// as long as the suite, and each test opens the demo project anew.
#pragma once

#include "MainWindow.h"

#include <zorhost/ReferenceHost.h>

#include <afx/afxtest.h>

#include <QTabWidget>

#include <gtest/gtest.h>

#include <functional>

struct Bench {
    zorhost::ReferenceHost host;
    zordrivebench::ProgramServices services{host};
    zordrivebench::ParmiraModule plugin;
};

class BenchWindowTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { bench = new Bench; }
    static void TearDownTestSuite() {
        bench->plugin.Unload();
        delete bench;
        bench = nullptr;
    }
    void SetUp() override {
        QString error;
        ASSERT_TRUE(window.OpenProject(QString(), &error)) << error.toStdString();
        tabs = window.findChild<QTabWidget*>();
        ASSERT_NE(tabs, nullptr);
        window.show();
    }
    bool WaitFor(const std::function<bool()>& condition) {
        return AfxPumpMessagesUntil(condition, 5000) != FALSE;
    }
    // Opens the module's panel and waits until it is up.
    bool Open(const char* key) {
        QString error;
        const bool ok = window.OpenModule(key, &error);
        EXPECT_TRUE(ok) << error.toStdString();
        return ok && WaitFor([&] { return window.IsPanelUp(); });
    }

    static inline Bench* bench = nullptr;
    zorhost::ReferenceHost& host = bench->host;
    zordrivebench::MainWindow window{bench->host, bench->services, bench->plugin};
    QTabWidget* tabs = nullptr;
};
