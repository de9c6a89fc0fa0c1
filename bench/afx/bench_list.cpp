// Cost of painting one screen of an owner-data list: 40 rows by 13 columns.
#include <afx/afxcmn.h>
#include <afx/afxqt.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QWidget>

#include <benchmark/benchmark.h>

namespace {

class ConstantList : public CListCtrl {
public:
    long cells = 0;
    CString OnGetCellText(int, int) override {
        ++cells;
        return m_text;
    }

private:
    const CString m_text = CString("1000.00");
};

class FormattedList : public CListCtrl {
public:
    long cells = 0;
    CString OnGetCellText(int row, int col) override {
        ++cells;
        CString s;
        s.Format("H%02d-%02d", row % 100, col);
        return s;
    }
    BOOL OnGetCellColors(int row, int, COLORREF& text, COLORREF& back) override {
        if (row % 3)
            return FALSE;
        text = RGB(0, 0, 255);
        back = RGB(255, 255, 255);
        return TRUE;
    }
};

// Sizes the list so that exactly `rows` rows fit one page.
void FitRows(CListCtrl& list, int rows) {
    CRect r;
    list.GetClientRect(&r);
    for (int h = 200; h < 3000; ++h) {
        list.MoveWindow(0, 0, r.Width(), h);
        if (list.GetCountPerPage() == rows)
            return;
    }
}

template <class List> void PaintScreen(benchmark::State& state) {
    CWnd host;
    host.Create(nullptr, "bench", WS_POPUP | WS_VISIBLE, CRect(0, 0, 13 * 80 + 30, 1200), nullptr,
                0);
    List list;
    list.Create(WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_OWNERDATA, CRect(0, 0, 13 * 80 + 24, 600),
                &host, 1);
    list.SetExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES);
    for (int c = 0; c < 13; ++c)
        list.InsertColumn(c, "列", LVCFMT_LEFT, 80);
    list.SetItemCount(1000000);
    list.EnsureVisible(500000, FALSE);
    FitRows(list, 40);
    QWidget* w = AfxWidgetFromHandle(list.GetSafeHwnd());
    QImage image(w->size(), QImage::Format_ARGB32_Premultiplied);
    list.cells = 0;
    for (auto _ : state) {
        QPainter p(&image);
        w->render(&p);
    }
    state.counters["cells_per_paint"] = double(list.cells) / double(state.iterations());
    state.counters["rows_per_page"] = list.GetCountPerPage();
}

void BM_PaintOwnerDataScreen_ConstantText(benchmark::State& s) {
    PaintScreen<ConstantList>(s);
}
void BM_PaintOwnerDataScreen_FormattedText(benchmark::State& s) {
    PaintScreen<FormattedList>(s);
}
BENCHMARK(BM_PaintOwnerDataScreen_ConstantText)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PaintOwnerDataScreen_FormattedText)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    if (qgetenv("QT_QPA_PLATFORM").isEmpty())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
