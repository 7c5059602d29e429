#include "ui/commandfield.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QTextDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

constexpr int maximumLines = 4;

} // namespace

CommandField::CommandField(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTabChangesFocus(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void CommandField::setText(const QString &text)
{
    setPlainText(text);
    moveCursor(QTextCursor::End);
}

int CommandField::placeholderLines(int width) const
{
    // The text area is the field less its frame and the document's margin on each side.
    const int margins = 2 * frameWidth() + 2 * int(document()->documentMargin());
    const QRect area(0, 0, std::max(1, width - margins), QWIDGETSIZE_MAX);
    const int height = fontMetrics().boundingRect(area, Qt::TextWordWrap, placeholderText()).height();
    return std::clamp((height + fontMetrics().lineSpacing() - 1) / fontMetrics().lineSpacing(), 1, maximumLines);
}

int CommandField::heightForLines(int lines) const
{
    return lines * fontMetrics().lineSpacing() + 2 * frameWidth() + 2 * int(document()->documentMargin());
}

int CommandField::heightForWidth(int width) const
{
    return heightForLines(placeholderLines(width));
}

QSize CommandField::sizeHint() const
{
    return {QPlainTextEdit::sizeHint().width(), heightForWidth(width())};
}

QSize CommandField::minimumSizeHint() const
{
    return {QPlainTextEdit::minimumSizeHint().width(), heightForLines(1)};
}

void CommandField::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    // A new width may need another number of lines for the placeholder; the layout asks again.
    if (width() != m_measuredWidth) {
        m_measuredWidth = width();
        updateGeometry();
    }
}

void CommandField::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        Q_EMIT submitted();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

void CommandField::insertFromMimeData(const QMimeData *source)
{
    // A command is one line, however it was copied.
    QString text = source->text();
    text.replace(u"\r\n"_s, u" "_s).replace(u'\n', u' ').replace(u'\r', u' ');
    insertPlainText(text);
}

} // namespace quillfern
