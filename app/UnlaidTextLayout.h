#pragma once

#include <QAbstractTextDocumentLayout>

// A layout that places nothing: a document given it keeps its text and formats exactly, but no
// line of it is ever shaped or measured. For text nobody will see (the output log of a window
// that is never shown), where laying out every appended line is the dearest part of the work.
class UnlaidTextLayout : public QAbstractTextDocumentLayout
{
public:
    explicit UnlaidTextLayout(QTextDocument* document) : QAbstractTextDocumentLayout(document) {}

    void draw(QPainter*, const PaintContext&) override {}
    int hitTest(const QPointF&, Qt::HitTestAccuracy) const override { return -1; }
    int pageCount() const override { return 1; }
    QSizeF documentSize() const override { return QSizeF(); }
    QRectF frameBoundingRect(QTextFrame*) const override { return QRectF(); }
    QRectF blockBoundingRect(const QTextBlock&) const override { return QRectF(); }

protected:
    void documentChanged(int, int, int) override {}
};
