#include "MonitorDock.h"

#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostRefreshItem.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"

#include <zorhost/ReferenceHost.h>
#include <zorhost/services/HostAccessService.h>
#include <zorhost/services/HostRefreshService.h>
#include <zorhost/services/HostUiService.h>
#include <zorhost/services/HostVarUtil.h>

#include <afx/afxqt.h>

#include <QChart>
#include <QChartView>
#include <QHeaderView>
#include <QLineSeries>
#include <QSplitter>
#include <QTableWidget>
#include <QTimer>
#include <QValueAxis>

#include <algorithm>
#include <cmath>
#include <memory>

namespace zordrivebench {

namespace {

constexpr int kPeriod_ms = 250;

IVarObjEx* FindVar(zorhost::ReferenceHost& host, const CString& key, unsigned address) {
    IHostDeviceModule* module = host.Module(key);
    IVarStore* store = module != nullptr ? module->GetVarList() : nullptr;
    return store != nullptr ? store->FindByAddress(address) : nullptr;
}

bool IsNumber(const Variant& v) {
    switch (v.vt) {
    case VT_I2:
    case VT_I4:
    case VT_R4:
    case VT_R8:
    case VT_I1:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_BOOL:
        return true;
    default:
        return false;
    }
}

} // namespace

MonitorDock::MonitorDock(zorhost::ReferenceHost& host, QWidget* parent)
    : QDockWidget(parent), m_host(host) {
    setObjectName("monitor");
    setWindowTitle(QString::fromUtf8("监控"));
    auto* splitter = new QSplitter(Qt::Vertical);
    m_table = new QTableWidget(0, 4);
    m_table->setHorizontalHeaderLabels({"Module", "Code", "Name", "Value"});
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->verticalHeader()->setVisible(false);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    splitter->addWidget(m_table);
    m_chart = new QChart;
    m_chart->legend()->setAlignment(Qt::AlignBottom);
    m_timeAxis = new QValueAxis;
    m_timeAxis->setTitleText("s");
    m_timeAxis->setLabelFormat("%.0f");
    m_valueAxis = new QValueAxis;
    m_chart->addAxis(m_timeAxis, Qt::AlignBottom);
    m_chart->addAxis(m_valueAxis, Qt::AlignLeft);
    m_chartView = new QChartView(m_chart);
    m_chartView->setRenderHint(QPainter::Antialiasing);
    m_chartView->setMinimumHeight(240);
    splitter->addWidget(m_chartView);
    splitter->setStretchFactor(1, 2);
    setWidget(splitter);
    m_timer = new QTimer(this);
    connect(m_timer, &QTimer::timeout, this, [this] { Sample(); });
    m_timer->start(kPeriod_ms);
}

MonitorDock::~MonitorDock() = default;

int MonitorDock::RowCount() const {
    return int(m_rows.size());
}

std::vector<double> MonitorDock::TrendOf(int row) const {
    std::vector<double> values;
    if (row < 0 || row >= RowCount() || m_rows[size_t(row)].series == nullptr)
        return values;
    for (const QPointF& p : m_rows[size_t(row)].series->points())
        values.push_back(p.y());
    return values;
}

void MonitorDock::SyncRows() {
    // New entries of the host's monitor lists come in at the end, in their order.
    for (const CString& key : m_host.ModuleKeys()) {
        for (unsigned address : m_host.Access().WatchList(key)) {
            const bool known = std::any_of(m_rows.begin(), m_rows.end(), [&](const Watched& w) {
                return w.key == key && w.address == address;
            });
            IVarObjEx* var = known ? nullptr : FindVar(m_host, key, address);
            IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
            if (attr == nullptr)
                continue;
            Watched row{key, address, nullptr};
            CString code;
            CString name;
            attr->GetCode(code);
            attr->GetName(name);
            CString shownName;
            m_host.Ui().TranslateText(shownName, name);
            const int at = m_table->rowCount();
            m_table->insertRow(at);
            m_table->setItem(at, 0, new QTableWidgetItem(AfxToQString(key)));
            m_table->setItem(at, 1, new QTableWidgetItem(AfxToQString(code)));
            m_table->setItem(at, 2, new QTableWidgetItem(AfxToQString(shownName)));
            m_table->setItem(at, 3, new QTableWidgetItem("---"));
            // Packed values (bits, options) are shown, not plotted.
            if (attr->GetValueInfo() == nullptr) {
                row.series = new QLineSeries;
                row.series->setName(AfxToQString(key + " " + code));
                m_chart->addSeries(row.series);
                row.series->attachAxis(m_timeAxis);
                row.series->attachAxis(m_valueAxis);
            }
            m_rows.push_back(row);
            // The dock waits out of the way until there is something to watch.
            if (parentWidget() != nullptr && isHidden())
                show();
        }
    }
}

void MonitorDock::RequestReads() {
    std::map<CString, std::vector<const Watched*>> byModule;
    for (const Watched& row : m_rows)
        byModule[row.key].push_back(&row);
    for (const auto& [key, rows] : byModule) {
        IHostDeviceModule* module = m_host.Module(key);
        if (module == nullptr || !module->IsOnline())
            continue;
        std::unique_ptr<IHostRefreshQuery> query(m_host.Refresh().NewQuery());
        if (query == nullptr)
            continue;
        query->SetKind(1);
        query->SetModuleKey(key);
        for (const Watched* row : rows) {
            IVarObjEx* var = FindVar(m_host, key, row->address);
            IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
            IHostRefreshItem* item = attr != nullptr ? query->NewItem() : nullptr;
            if (item == nullptr)
                continue;
            item->SetAddress(attr->GetAddress());
            item->SetDataType(attr->GetDataType());
            item->SetLength(attr->GetValueLength());
            if (!query->AddItem(item))
                delete item;
        }
        m_host.Refresh().SubmitQuery(query.get());
    }
}

void MonitorDock::Sample() {
    SyncRows();
    m_time_s += kPeriod_ms / 1000.0;
    double low = 0;
    double high = 0;
    bool any = false;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        Watched& row = m_rows[i];
        IVarObjEx* var = FindVar(m_host, row.key, row.address);
        IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
        if (attr == nullptr)
            continue;
        const Variant value = var->GetValue();
        CString text;
        m_host.VarUtil().FormatVariant(text, value, attr->GetDecimals(), 0);
        if (QTableWidgetItem* cell = m_table->item(int(i), 3))
            cell->setText(text.IsEmpty() ? QString("---") : AfxToQString(text));
        if (row.series == nullptr || !IsNumber(value))
            continue;
        // The trend shows the value as the user reads it: scaled by its decimals.
        const double shown =
            m_host.VarUtil().VariantToDouble(value, attr->GetDataType(), attr->GetDecimals());
        row.series->append(m_time_s, shown);
        while (row.series->count() > 0 && row.series->at(0).x() < m_time_s - kWindow_s)
            row.series->remove(0);
        for (const QPointF& p : row.series->points()) {
            low = any ? std::min(low, p.y()) : p.y();
            high = any ? std::max(high, p.y()) : p.y();
            any = true;
        }
    }
    m_timeAxis->setRange(std::max(0.0, m_time_s - kWindow_s), std::max(m_time_s, 1.0));
    if (any) {
        const double margin = std::max(1.0, (high - low) * 0.1);
        m_valueAxis->setRange(low - margin, high + margin);
    }
    RequestReads();
}

} // namespace zordrivebench
