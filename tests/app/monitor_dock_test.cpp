// The monitor view: the watched parameters of the host's lists, once each in the order
// they came, with live values and a trend of the numeric ones.
#include "MonitorDock.h"

#include "module/host/IHostDeviceModule.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"

#include <zorhost/ReferenceHost.h>
#include <zorhost/services/HostAccessService.h>

#include <QTableWidget>

#include <gtest/gtest.h>

namespace {

TEST(MonitorDockTest, ListsWatchedOnceAndTrendsTheRunningDrive) {
    zorhost::ReferenceHost host;
    std::string error;
    ASSERT_TRUE(host.LoadDemo(&error)) << error;
    IVarStore* store = host.Module("ZD3S")->GetVarList();
    auto address = [&](const char* code) { return store->FindByCode(code)->GetInstanceAddress(); };
    zordrivebench::MonitorDock dock(host);
    host.Access().AddWatchVars("ZD3S", {address("H0B-00"), address("H0B-03")});
    host.Access().AddWatchVars("ZD3S", {address("H0B-03"), address("H0B-01")});
    host.Drive("ZD3S")->SetRunning(true);
    for (int i = 0; i < 12; ++i) {
        dock.Sample();
        host.Tick(250);
    }
    dock.Sample();
    ASSERT_EQ(dock.RowCount(), 3);
    auto* table = dock.findChild<QTableWidget*>();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->item(0, 1)->text(), "H0B-00");
    EXPECT_EQ(table->item(1, 1)->text(), "H0B-03");
    EXPECT_EQ(table->item(2, 1)->text(), "H0B-01");
    EXPECT_NE(table->item(0, 3)->text(), "---");
    // The speed moves while the drive runs; the bit monitor is shown but not plotted.
    const std::vector<double> speed = dock.TrendOf(0);
    ASSERT_GE(speed.size(), 10u);
    EXPECT_NE(*std::min_element(speed.begin(), speed.end()),
              *std::max_element(speed.begin(), speed.end()));
    EXPECT_TRUE(dock.TrendOf(1).empty());
}

} // namespace
