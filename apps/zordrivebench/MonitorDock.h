// The monitor view of ZorDriveBench: the parameters that a panel handed over with "添加到
// 监控列表", with live values, and a trend of the numeric ones so that an engineer tuning a
// drive can watch a value move. The dock asks the host's refresh for the watched
// variables itself, so they stay live whatever the panels show.
#pragma once

#include <afx/afx.h>

#include <QDockWidget>

#include <map>
#include <string>
#include <vector>

class QTableWidget;
class QTimer;
class QChartView;
class QChart;
class QLineSeries;
class QValueAxis;

namespace zorhost {
class ReferenceHost;
}

namespace zordrivebench {

class MonitorDock : public QDockWidget {
public:
    MonitorDock(zorhost::ReferenceHost& host, QWidget* parent = nullptr);
    ~MonitorDock() override;

    // One step: asks for the next read of every watched variable, then takes the values
    // the last read stored into the table and the trend. The dock's timer calls it.
    void Sample();
    // Seconds of trend kept on screen.
    static constexpr double kWindow_s = 30.0;
    int RowCount() const;
    // The trend's points of the row, oldest first.
    std::vector<double> TrendOf(int row) const;
    QChartView* ChartView() const { return m_chartView; }

private:
    struct Watched {
        CString key;
        unsigned address = 0;
        QLineSeries* series = nullptr; // null for values that are not numbers
    };
    void SyncRows();
    void RequestReads();

    zorhost::ReferenceHost& m_host;
    QTableWidget* m_table = nullptr;
    QChartView* m_chartView = nullptr;
    QChart* m_chart = nullptr;
    QValueAxis* m_timeAxis = nullptr;
    QValueAxis* m_valueAxis = nullptr;
    QTimer* m_timer = nullptr;
    std::vector<Watched> m_rows;
    double m_time_s = 0;
};

} // namespace zordrivebench
