// Cell text in the report list. Most cells fit: the text is laid out once and that layout
// is both the fit test and what is drawn, where eliding and then drawing in a rectangle
// shape the same text twice. The placement repeats what drawing in a rectangle does for a
// single line, so both ways give the same pixels; anything that could lay out differently
// (line breaks, tabs, trailing spaces, decorations, right-to-left text) takes the plain way.
#include "list_text_p.h"

#include <QPainter>
#include <QTextLayout>

namespace afxi {
namespace {

// Scripts written right to left, and surrogates, which the scan below does not classify.
bool MayRunRightToLeft(char16_t u) {
    return (u >= 0x0590 && u <= 0x08ff) || (u >= 0xd800 && u <= 0xdfff) ||
           (u >= 0xfb1d && u <= 0xfdff) || (u >= 0xfe70 && u <= 0xfeff) || u == 0x200f ||
           (u >= 0x202a && u <= 0x202e) || (u >= 0x2066 && u <= 0x2069);
}

bool TakesPlainWay(const QPainter* p, const QString& text, const QFontMetrics& fm) {
    const QFont& font = p->font();
    if (p->layoutDirection() == Qt::RightToLeft || font.underline() || font.strikeOut() ||
        font.overline() || !(fm == p->fontMetrics()))
        return true;
    // A trailing space counts for the elision but not for the width of a laid-out line.
    if (text.back().isSpace())
        return true;
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (u < 0x20 || u == 0x9c || u == QChar::LineSeparator || u == QChar::ParagraphSeparator ||
            MayRunRightToLeft(u))
            return true;
    }
    return false;
}

} // namespace

void DrawCellTextPlain(QPainter* p, const QRect& rect, int align, const QString& text,
                       const QFontMetrics& fm) {
    p->drawText(rect, align | Qt::AlignVCenter, fm.elidedText(text, Qt::ElideRight, rect.width()));
}

void DrawCellText(QPainter* p, const QRect& rect, int align, const QString& text,
                  const QFontMetrics& fm) {
    if (text.isEmpty() || p->pen().style() == Qt::NoPen)
        return;
    if (TakesPlainWay(p, text, fm)) {
        DrawCellTextPlain(p, rect, align, text, fm);
        return;
    }
    QTextLayout layout(text, p->font());
    QTextOption option;
    option.setTextDirection(p->layoutDirection());
    option.setAlignment(Qt::AlignLeft);
    layout.setTextOption(option);
    // Keeps the shaped glyphs for the draw.
    layout.setCacheEnabled(true);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(0x01000000);
    line.setPosition(QPointF(0, 0));
    layout.endLayout();
    const qreal width = line.naturalTextWidth();
    if (width > rect.width()) {
        DrawCellTextPlain(p, rect, align, text, fm);
        return;
    }
    // Unrounded, as a rectangle draw centres it: QTextLine::height() rounds up.
    const qreal height = line.ascent() + line.descent();
    // Centred vertically without rounding: the glyphs snap to the pixel grid as they are drawn.
    const qreal yoff = (rect.height() - height) / 2;
    qreal boundsX = 0;
    qreal xoff = 0;
    if (align & Qt::AlignRight) {
        boundsX = rect.width() - width;
        xoff = rect.width() - line.horizontalAdvance();
    } else if (align & Qt::AlignHCenter) {
        boundsX = (rect.width() - width) / 2;
        xoff = (rect.width() - line.horizontalAdvance()) / 2;
    }
    const QRectF r(rect);
    const bool clip = !r.contains(QRectF(r.x() + boundsX, r.y() + yoff, width, height));
    if (clip) {
        p->save();
        p->setClipRect(r, Qt::IntersectClip);
    }
    line.draw(p, QPointF(r.x() + xoff, r.y() + yoff));
    if (clip)
        p->restore();
}

} // namespace afxi
