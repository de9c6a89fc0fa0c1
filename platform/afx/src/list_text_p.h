// Internal: painting one line of cell text, elided at the right when it does not fit.
#pragma once

#include <QFont>
#include <QFontMetrics>
#include <QRect>
#include <QString>
#include <QTextLayout>

#include <memory>
#include <unordered_map>

class QPainter;

namespace afxi {

// Lines laid out in one font, so a text that shows again (a unit, an attribute, a limit,
// or the same screen painted anew) is not shaped again, nor elided again for the same
// width. Bound to the font and direction of the painter that filled it, and to a resolution
// its owner sets: another one empties it. Bounded: when full it starts over, which costs no
// more than painting without it.
class CellTextCache {
public:
    static constexpr size_t kMaxLines = 1024;

    struct Line {
        std::unique_ptr<QTextLayout> layout;
        // What the text elides to at the width it last did not fit; -1: none yet.
        int elidedWidth = -1;
        QString elided;
    };

    // The line of `text` laid out as `p` would lay it out; null when it is not kept.
    Line* Find(const QPainter* p, const QString& text);
    // Keeps `layout`, laid out by `p`, as the line of `text`. The line stays valid until
    // the next Keep or Clear.
    Line* Keep(const QPainter* p, const QString& text, std::unique_ptr<QTextLayout> layout);
    // The resolution of the device painted on, told before a paint: the device's own
    // query costs more than the lookup.
    void SetResolution(int dpi) {
        if (dpi != m_dpi)
            Clear();
        m_dpi = dpi;
    }
    void Clear();
    size_t Size() const { return m_lines.size(); }

private:
    bool IsBoundTo(const QPainter* p) const;
    void BindTo(const QPainter* p);

    QFont m_font;
    int m_dpi = 0;
    Qt::LayoutDirection m_direction = Qt::LeftToRight;
    std::unordered_map<QString, Line> m_lines;
};

// Paints `text` as drawText(rect, align | AlignVCenter, fm.elidedText(text, ElideRight,
// rect.width())) paints it, pixel for pixel. A text that fits is shaped once, not twice,
// and with a cache not again while the cache keeps it; an elided one is elided once a width.
void DrawCellText(QPainter* p, const QRect& rect, int align, const QString& text,
                  const QFontMetrics& fm, CellTextCache* cache = nullptr);

// The plain way, for what the fast way does not take and to compare against.
void DrawCellTextPlain(QPainter* p, const QRect& rect, int align, const QString& text,
                       const QFontMetrics& fm);

} // namespace afxi
