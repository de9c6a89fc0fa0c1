// Internal: painting one line of cell text, elided at the right when it does not fit.
#pragma once

#include <QFontMetrics>
#include <QRect>
#include <QString>

class QPainter;

namespace afxi {

// Paints `text` as drawText(rect, align | AlignVCenter, fm.elidedText(text, ElideRight,
// rect.width())) paints it, pixel for pixel. A text that fits is shaped once, not twice.
void DrawCellText(QPainter* p, const QRect& rect, int align, const QString& text,
                  const QFontMetrics& fm);

// The plain way, for what the fast way does not take and to compare against.
void DrawCellTextPlain(QPainter* p, const QRect& rect, int align, const QString& text,
                       const QFontMetrics& fm);

} // namespace afxi
