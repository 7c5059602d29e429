#include "ui/renameresultview.h"

#include "state/appviewmodel.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/prominentbutton.h"
#include "ui/renamefailurelistmodel.h"
#include "ui/renamefailurerowview.h"
#include "ui/sheetstyle.h"
#include "ui/symbolicons.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

constexpr int sheetWidth = 400;
constexpr int iconSize = 48;
/// The error list is as tall as its rows up to this height; beyond it the list scrolls.
constexpr int errorListMaximumHeight = 220;
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

} // namespace

RenameResultView::RenameResultView(AppViewModel *vm, QWidget *parent)
    : QDialog(parent)
    , m_vm(vm)
{
    setObjectName(u"renameResultView"_s);
    SheetStyle::apply(this);
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

    // A view over the failures, with a delegate drawing each row: a batch can fail by the ten thousand. Rows have
    // the height of their texts; a tree view scrolling by rows measures only the rows it shows (and the last
    // page), where a list view would measure every row before showing any. It is set up before it gets its rows,
    // as some settings lay out every row at once.
    auto *list = new QTreeView(box);
    list->setObjectName(u"errorList"_s);
    auto *rowView = new RenameFailureRowView(list);
    list->setItemDelegate(rowView);
    list->setHeaderHidden(true);
    list->setRootIsDecorated(false);
    list->setItemsExpandable(false);
    list->setIndentation(0);
    list->setUniformRowHeights(false);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    list->setSelectionMode(QAbstractItemView::NoSelection);
    list->setFrameShape(QFrame::NoFrame);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The rows lie on the box's own fill.
    list->viewport()->setAutoFillBackground(false);
    list->setFixedWidth(sheetWidth - 2 * AppSpacing::xl - 2 * AppSpacing::md);
    list->setModel(new RenameFailureListModel(m_vm->lastRenameResults(), list));
    // As tall as its rows, up to the limit; beyond it the list scrolls. Only the first rows are measured.
    QStyleOptionViewItem option;
    option.initFrom(list);
    option.widget = list;
    const QAbstractItemModel *failures = list->model();
    int rowsHeight = 0;
    for (int row = 0; row < failures->rowCount() && rowsHeight < errorListMaximumHeight; ++row)
        rowsHeight += rowView->sizeHint(option, failures->index(row, 0)).height();
    list->setFixedHeight(std::min(rowsHeight, errorListMaximumHeight) + 2 * list->frameWidth());

    auto *layout = new QVBoxLayout(box);
    layout->setContentsMargins(AppSpacing::md, AppSpacing::md, AppSpacing::md, AppSpacing::md);
    layout->setSpacing(AppSpacing::xs);
    layout->addWidget(title);
    layout->addWidget(list);
    return box;
}

} // namespace quillfern
