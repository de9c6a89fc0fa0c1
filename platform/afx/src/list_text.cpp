// Cell text in the report list. Most cells fit: the text is laid out once and that layout
// is both the fit test and what is drawn, where eliding and then drawing in a rectangle
// shape the same text twice. The placement repeats what drawing in a rectangle does for a
// single line, so both ways give the same pixels; anything that could lay out differently
// (line breaks, tabs, trailing spaces, decorations, right-to-left text) takes the plain way.
// A list keeps the lines it laid out: the same texts come back on every screen and paint.
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

bool PainterTakesPlainWay(const QPainter* p, const QFontMetrics& fm) {
    const QFont& font = p->font();
    return p->layoutDirection() == Qt::RightToLeft || font.underline() || font.strikeOut() ||
           font.overline() || !(fm == p->fontMetrics());
}

bool TextTakesPlainWay(const QString& text) {
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

std::unique_ptr<QTextLayout> LayOutLine(const QPainter* p, const QString& text) {
    auto layout = std::make_unique<QTextLayout>(text, p->font());
    QTextOption option;
    option.setTextDirection(p->layoutDirection());
    option.setAlignment(Qt::AlignLeft);
    layout->setTextOption(option);
    // Keeps the shaped glyphs for the draw.
    layout->setCacheEnabled(true);
    layout->beginLayout();
    QTextLine line = layout->createLine();
    line.setLineWidth(0x01000000);
    line.setPosition(QPointF(0, 0));
    layout->endLayout();
    return layout;
}

} // namespace

bool CellTextCache::IsBoundTo(const QPainter* p) const {
    return p->layoutDirection() == m_direction && p->font() == m_font;
}

void CellTextCache::BindTo(const QPainter* p) {
    Clear();
    m_font = p->font();
    m_direction = p->layoutDirection();
}

CellTextCache::Line* CellTextCache::Find(const QPainter* p, const QString& text) {
    if (m_lines.empty())
        return nullptr;
    if (!IsBoundTo(p)) {
        Clear();
        return nullptr;
    }
    const auto it = m_lines.find(text);
    return it != m_lines.end() ? &it->second : nullptr;
}

CellTextCache::Line* CellTextCache::Keep(const QPainter* p, const QString& text,
                                         std::unique_ptr<QTextLayout> layout) {
    if (m_lines.empty() || m_lines.size() >= kMaxLines || !IsBoundTo(p))
        BindTo(p);
    Line& line = m_lines[text];
    line = Line{std::move(layout), -1, QString()};
    return &line;
}

void CellTextCache::Clear() {
    m_lines.clear();
}

void DrawCellTextPlain(QPainter* p, const QRect& rect, int align, const QString& text,
                       const QFontMetrics& fm) {
    p->drawText(rect, align | Qt::AlignVCenter, fm.elidedText(text, Qt::ElideRight, rect.width()));
}

namespace {

// `text` of a cell, known not to take the plain way for what it holds; `kept`: its line in
// `cache`, if kept. `elided`: `text` is what a longer text elided to, and draws as it is.
void DrawCellLine(QPainter* p, const QRect& rect, int align, const QString& text,
                  const QFontMetrics& fm, CellTextCache* cache, CellTextCache::Line* kept,
                  bool elided) {
    std::unique_ptr<QTextLayout> own;
    if (kept == nullptr) {
        own = LayOutLine(p, text);
        if (cache != nullptr)
            kept = cache->Keep(p, text, std::move(own));
    }
    const QTextLine line = (kept != nullptr ? kept->layout : own)->lineAt(0);
    const qreal width = line.naturalTextWidth();
    if (width > rect.width()) {
        if (elided) {
            p->drawText(rect, align | Qt::AlignVCenter, text);
        } else if (kept == nullptr) {
            DrawCellTextPlain(p, rect, align, text, fm);
        } else {
            if (kept->elidedWidth != rect.width()) {
                kept->elided = fm.elidedText(text, Qt::ElideRight, rect.width());
                kept->elidedWidth = rect.width();
            }
            // A copy: keeping the elided text's own line may start the cache over.
            const QString shortened = kept->elided;
            if (!shortened.isEmpty())
                DrawCellLine(p, rect, align, shortened, fm, cache, cache->Find(p, shortened), true);
        }
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

} // namespace

void DrawCellText(QPainter* p, const QRect& rect, int align, const QString& text,
                  const QFontMetrics& fm, CellTextCache* cache) {
    if (text.isEmpty() || p->pen().style() == Qt::NoPen)
        return;
    if (PainterTakesPlainWay(p, fm)) {
        DrawCellTextPlain(p, rect, align, text, fm);
        return;
    }
    // Only texts that passed the scan are kept, so a kept one needs no scan.
    CellTextCache::Line* kept = cache != nullptr ? cache->Find(p, text) : nullptr;
    if (kept == nullptr && TextTakesPlainWay(text)) {
        DrawCellTextPlain(p, rect, align, text, fm);
        return;
    }
    DrawCellLine(p, rect, align, text, fm, cache, kept, false);
}

} // namespace afxi
