#include "ui/renameresultview.h"

#include "model/nativepath.h"
#include "state/appviewmodel.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/prominentbutton.h"
#include "ui/symbolicons.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

constexpr int sheetWidth = 400;
constexpr int iconSize = 48;
constexpr int errorListMaximumHeight = 120;
constexpr int errorBoxCornerRadius = 8;

QLabel *makeLabel(const QString &text, const QFont &font, const QColor &color, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    return label;
}

QFont weighted(QFont font, QFont::Weight weight)
{
    font.setWeight(weight);
    return font;
}

/// A big number over its caption, such as 12 over "Renamed".
QWidget *
makeCounter(const QString &objectName, qsizetype count, const QString &caption, const QColor &color, QWidget *parent)
{
    auto *counter = new QWidget(parent);
    counter->setObjectName(objectName);
    auto *number = makeLabel(QString::number(count), weighted(AppFonts::title(), QFont::Bold), color, counter);
    number->setObjectName(objectName + u"Number"_s);
    auto *text = makeLabel(caption, AppFonts::body(), AppColors::secondary(), counter);
    auto *layout = new QVBoxLayout(counter);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(number, 0, Qt::AlignHCenter);
    layout->addWidget(text, 0, Qt::AlignHCenter);
    return counter;
}

/// `text` as it is when it fits in `width`, else cut with an ellipsis. (Eliding a text that just fits can still
/// cut it, as the two measurements round differently.)
QString fitted(const QFontMetrics &metrics, const QString &text, Qt::TextElideMode mode, int width)
{
    return metrics.horizontalAdvance(text) <= width ? text : metrics.elidedText(text, mode, width);
}

/// One failure: a red cross, the file's name and, pushed to the right, why it failed, each cut to fit one line.
QWidget *makeErrorRow(const RenameResult &result, int rowWidth, QWidget *parent)
{
    auto *row = new QWidget(parent);
    row->setObjectName(u"errorRow"_s);
    const QFont captionFont = AppFonts::caption();
    const int markSize = QFontMetrics(captionFont).height();
    auto *mark = new QLabel(row);
    mark->setPixmap(SymbolIcons::icon(u"xmark.circle.fill"_s, AppColors::danger()).pixmap(markSize, markSize));

    const QString name = result.originalURL.fileNameText();
    // A failure without words says so rather than leaving the row blank.
    const QString reason = result.error.value_or(QString()).isEmpty() ? u"Unknown error"_s : *result.error;
    const QFontMetrics nameMetrics(captionFont);
    const QFont reasonFont = AppFonts::caption2();
    const QFontMetrics reasonMetrics(reasonFont);
    // Both texts fit when they can; otherwise each gets at least half of the line and is cut in its own way.
    const int available = rowWidth - markSize - 3 * AppSpacing::sm;
    const int nameWidth = std::min(nameMetrics.horizontalAdvance(name),
        std::max(available / 2, available - reasonMetrics.horizontalAdvance(reason)));
    auto *nameLabel = makeLabel(fitted(nameMetrics, name, Qt::ElideMiddle, nameWidth),
        captionFont,
        row->palette().color(QPalette::WindowText),
        row);
    nameLabel->setObjectName(u"errorName"_s);
    nameLabel->setToolTip(name);
    auto *reasonLabel = makeLabel(fitted(reasonMetrics, reason, Qt::ElideRight, available - nameWidth),
        reasonFont,
        AppColors::secondary(),
        row);
    reasonLabel->setObjectName(u"errorReason"_s);
    reasonLabel->setToolTip(reason);

    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->setSpacing(AppSpacing::sm);
    layout->addWidget(mark);
    layout->addWidget(nameLabel);
    layout->addStretch();
    layout->addWidget(reasonLabel);
    return row;
}

} // namespace

RenameResultView::RenameResultView(AppViewModel *vm, QWidget *parent)
    : QDialog(parent)
    , m_vm(vm)
{
    setObjectName(u"renameResultView"_s);
    setWindowModality(Qt::WindowModal);
    setFixedWidth(sheetWidth);

    const QList<RenameResult> &results = m_vm->lastRenameResults();
    const auto successCount =
        std::count_if(results.cbegin(), results.cend(), [](const RenameResult &result) { return result.success; });
    const auto failCount = results.size() - successCount;
    const bool hasFailures = failCount > 0;

    auto *icon = new QLabel(this);
    icon->setObjectName(u"resultIcon"_s);
    icon->setPixmap(SymbolIcons::icon(hasFailures ? u"exclamationmark.triangle.fill"_s : u"checkmark.circle.fill"_s,
        hasFailures ? AppColors::warning() : AppColors::success())
                        .pixmap(iconSize, iconSize));
    const QString headingText = hasFailures ? u"Rename Completed with Errors"_s : u"Rename Complete"_s;
    auto *heading = makeLabel(headingText,
        weighted(AppFonts::title2(), QFont::DemiBold),
        palette().color(QPalette::WindowText),
        this);
    heading->setObjectName(u"resultHeading"_s);
    setWindowTitle(headingText);

    auto *header = new QVBoxLayout;
    header->setSpacing(AppSpacing::sm);
    header->addWidget(icon, 0, Qt::AlignHCenter);
    header->addWidget(heading, 0, Qt::AlignHCenter);

    auto *done = new ProminentButton(u"Done"_s, this);
    done->setObjectName(u"doneButton"_s);
    done->setFont(weighted(AppFonts::body(), QFont::DemiBold));
    done->setDefault(true);
    connect(done, &QPushButton::clicked, this, &QDialog::accept);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(AppSpacing::xl, AppSpacing::xl, AppSpacing::xl, AppSpacing::xl);
    layout->setSpacing(AppSpacing::xl);
    layout->addLayout(header);
    layout->addWidget(makeCounters(successCount, failCount), 0, Qt::AlignHCenter);
    if (hasFailures)
        layout->addWidget(makeErrorBox());
    layout->addWidget(done, 0, Qt::AlignHCenter);

    // Done, Escape and the window's close button all end the sheet; the flag follows.
    connect(this, &QDialog::finished, m_vm, [this] { m_vm->setShowRenameResult(false); });
    connect(m_vm, &AppViewModel::showRenameResultChanged, this, [this] {
        if (!m_vm->showRenameResult())
            accept();
    });
}

QWidget *RenameResultView::makeCounters(qsizetype successCount, qsizetype failCount)
{
    auto *counters = new QWidget(this);
    counters->setObjectName(u"resultCounters"_s);
    auto *layout = new QHBoxLayout(counters);
    layout->setContentsMargins({});
    layout->setSpacing(AppSpacing::xl);
    layout->addWidget(makeCounter(u"renamedCounter"_s, successCount, u"Renamed"_s, AppColors::success(), counters));
    if (failCount > 0)
        layout->addWidget(makeCounter(u"failedCounter"_s, failCount, u"Failed"_s, AppColors::warning(), counters));
    return counters;
}

QWidget *RenameResultView::makeErrorBox()
{
    auto *box = new QWidget(this);
    box->setObjectName(u"errorBox"_s);
    box->setAttribute(Qt::WA_StyledBackground);
    box->setStyleSheet(u"#errorBox { background: %1; border-radius: %2px; }"_s.arg(
        AppColors::sidebarBackground().name(QColor::HexArgb),
        QString::number(errorBoxCornerRadius)));

    auto *title = new QLabel(u"Errors:"_s, box);
    title->setFont(AppFonts::label());

    auto *rows = new QWidget;
    rows->setObjectName(u"errorRows"_s);
    auto *rowsLayout = new QVBoxLayout(rows);
    rowsLayout->setContentsMargins({});
    rowsLayout->setSpacing(AppSpacing::xs);
    const int rowWidth =
        sheetWidth - 2 * AppSpacing::xl - 2 * AppSpacing::md - style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    for (const RenameResult &result : m_vm->lastRenameResults()) {
        if (!result.success)
            rowsLayout->addWidget(makeErrorRow(result, rowWidth, rows));
    }

    auto *scroll = new QScrollArea(box);
    scroll->setObjectName(u"errorList"_s);
    scroll->setWidget(rows);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // As tall as its rows, up to the limit; beyond it the list scrolls.
    scroll->setFixedHeight(std::min(rows->sizeHint().height(), errorListMaximumHeight));
    // The rows lie on the box's own fill.
    scroll->viewport()->setAutoFillBackground(false);
    rows->setAutoFillBackground(false);

    auto *layout = new QVBoxLayout(box);
    layout->setContentsMargins(AppSpacing::md, AppSpacing::md, AppSpacing::md, AppSpacing::md);
    layout->setSpacing(AppSpacing::xs);
    layout->addWidget(title);
    layout->addWidget(scroll);
    return box;
}

} // namespace quillfern
