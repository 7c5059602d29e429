#include "../state/fakepanelprovider.h"
#include "model/nativepath.h"
#include "state/appviewmodel.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/panelabel.h"
#include "ui/previewlistmodel.h"
#include "ui/previewpanelview.h"
#include "ui/previewrowview.h"
#include "uitesthelpers.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QHoverEvent>
#include <QListView>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

template<typename Widget>
Widget *child(const QObject *parent, const QString &name)
{
    auto *found = parent->findChild<Widget *>(name);
    if (!found)
        qFatal("no child named %s", qPrintable(name));
    return found;
}

/// Items for names that need not exist: the preview never touches the disk.
QList<NativePath> locations(const QStringList &names)
{
    QList<NativePath> paths;
    for (const QString &name : names)
        paths << NativePath::fromText(u"/nonexistent-quillfern-test/"_s + name);
    return paths;
}

RenameRule replace(const QString &find, const QString &with)
{
    RenameRule rule(RuleType::Replace);
    rule.findText = find;
    rule.replaceText = with;
    return rule;
}

/// Whether the image has clearly red pixels, as the minus mark of a changed row is drawn.
bool hasRedPixels(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color.red() - std::max(color.green(), color.blue()) > 40)
                return true;
        }
    }
    return false;
}

} // namespace

class TestPreviewPanelView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void footerCountsChanges_data();
    void footerCountsChanges();
    void emptyStatesDependOnFilesAndPreviews_data();
    void emptyStatesDependOnFilesAndPreviews();
    void headerShowsConflictsOrCheckMark_data();
    void headerShowsConflictsOrCheckMark();
    void rowsFollowPreviewsByPosition();
    void unchangedRowShowsOnlyTheEqualLine();
    void unchangedRowsKeepOneLine_data();
    void unchangedRowsKeepOneLine();
    void conflictTintWinsOverHover();
    void exportAsksForCsvLocation_data();
    void exportAsksForCsvLocation();
    void modelStaysConsistent();
    void screenshots();

private:
    [[nodiscard]] QListView *list() const { return child<QListView>(m_view.get(), u"previewList"_s); }
    [[nodiscard]] QImage grabRow(int row) const;
    void hover(int row);

    std::unique_ptr<AppViewModel> m_vm;
    std::unique_ptr<PreviewPanelView> m_view;
};

void TestPreviewPanelView::init()
{
    m_vm = std::make_unique<AppViewModel>();
    m_view = std::make_unique<PreviewPanelView>(m_vm.get());
    m_view->resize(360, 420);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
}

void TestPreviewPanelView::cleanup()
{
    m_view.reset();
    m_vm.reset();
}

QImage TestPreviewPanelView::grabRow(int row) const
{
    // The whole pane is grabbed, so the row shows on the pane's own background.
    const QRect rect = list()->visualRect(list()->model()->index(row, 0));
    const QPoint topLeft = list()->viewport()->mapTo(m_view.get(), rect.topLeft());
    return m_view->grab(QRect(topLeft, rect.size())).toImage();
}

void TestPreviewPanelView::hover(int row)
{
    const QPointF position = list()->visualRect(list()->model()->index(row, 0)).center();
    QHoverEvent event(QEvent::HoverMove, position, list()->viewport()->mapToGlobal(position), QPointF(-1, -1));
    QApplication::sendEvent(list()->viewport(), &event);
}

void TestPreviewPanelView::footerCountsChanges_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("footer");
    QTest::newRow("no file changes") << QStringList{u"b.txt"_s} << u"0 changes"_s;
    QTest::newRow("one renamed file still reads changes") << QStringList{u"a.txt"_s, u"b.txt"_s} << u"1 changes"_s;
    QTest::newRow("two renamed files") << QStringList{u"a1.txt"_s, u"a2.txt"_s, u"b.txt"_s} << u"2 changes"_s;
}

void TestPreviewPanelView::footerCountsChanges()
{
    QFETCH(QStringList, names);
    QFETCH(QString, footer);
    m_vm->addFiles(locations(names));
    m_vm->addRule(replace(u"a"_s, u"z"_s));
    QCOMPARE(child<PaneLabel>(m_view.get(), u"changesLabel"_s)->text(), footer);
}

void TestPreviewPanelView::emptyStatesDependOnFilesAndPreviews_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("message");
    QTest::newRow("no files invites adding some")
        << QStringList() << QString() << u"emptyState"_s << u"Preview will appear here"_s;
    QTest::newRow("files without previews ask for rules")
        << QStringList{u"a.txt"_s} << u"nothing matches"_s << u"noRulesState"_s << u"Add rules to see preview"_s;
    QTest::newRow("previews show the list") << QStringList{u"a.txt"_s} << QString() << u"previewList"_s << QString();
}

void TestPreviewPanelView::emptyStatesDependOnFilesAndPreviews()
{
    QFETCH(QStringList, names);
    QFETCH(QString, filter);
    QFETCH(QString, shown);
    QFETCH(QString, message);
    m_vm->setFilterText(filter);
    m_vm->addFiles(locations(names));
    for (const QString &state : {u"emptyState"_s, u"noRulesState"_s, u"previewList"_s})
        QCOMPARE(child<QWidget>(m_view.get(), state)->isVisible(), state == shown);
    if (!message.isEmpty())
        QCOMPARE(child<PaneLabel>(m_view.get(), shown + u"Message"_s)->text(), message);
    if (shown == u"emptyState"_s)
        QCOMPARE(child<PaneLabel>(m_view.get(), u"emptyStateDetail"_s)->text(),
            u"Add files and rename rules to see results"_s);
}

void TestPreviewPanelView::headerShowsConflictsOrCheckMark_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("conflicts");
    QTest::addColumn<bool>("checkMark");
    QTest::newRow("nothing to preview shows neither") << QStringList() << QString() << false;
    QTest::newRow("previews without clashes show the check mark")
        << QStringList{u"a1.txt"_s, u"b1.txt"_s} << QString() << true;
    QTest::newRow("clashes show the bare count")
        << QStringList{u"a1.txt"_s, u"a2.txt"_s, u"a3.txt"_s} << u"2"_s << false;
}

void TestPreviewPanelView::headerShowsConflictsOrCheckMark()
{
    QFETCH(QStringList, names);
    QFETCH(QString, conflicts);
    QFETCH(bool, checkMark);
    RenameRule digits = replace(u"[0-9]"_s, {});
    digits.useRegex = true;
    m_vm->addRule(digits);
    m_vm->addFiles(locations(names));
    const auto *label = child<PaneLabel>(m_view.get(), u"previewConflictLabel"_s);
    QCOMPARE(label->isVisible(), !conflicts.isEmpty());
    if (!conflicts.isEmpty())
        QCOMPARE(label->text(), conflicts);
    QCOMPARE(child<PaneLabel>(m_view.get(), u"previewCheckMark"_s)->isVisible(), checkMark);
    QCOMPARE(child<PaneLabel>(m_view.get(), u"previewTitle"_s)->text(), u"Live Preview"_s);
}

void TestPreviewPanelView::rowsFollowPreviewsByPosition()
{
    // Two files of the same name in different folders: equal rows must both be shown.
    m_vm->addFiles(
        {NativePath::fromText(u"/nonexistent-1/same.txt"_s), NativePath::fromText(u"/nonexistent-2/same.txt"_s)});
    m_vm->addRule(replace(u"same"_s, u"new"_s));
    const QAbstractItemModel *model = list()->model();
    QCOMPARE(model->rowCount(), 2);
    for (int row = 0; row < 2; ++row) {
        QCOMPARE(model->index(row, 0).data(PreviewListModel::OriginalRole).toString(), u"same.txt"_s);
        QCOMPARE(model->index(row, 0).data(PreviewListModel::PreviewRole).toString(), u"new.txt"_s);
        QCOMPARE(model->index(row, 0).data(PreviewListModel::HasConflictRole).toBool(), row == 1);
    }
}

void TestPreviewPanelView::unchangedRowShowsOnlyTheEqualLine()
{
    m_vm->addFiles(locations({u"a.txt"_s, u"b.txt"_s}));
    m_vm->addRule(replace(u"a"_s, u"z"_s));
    const QAbstractItemModel *model = list()->model();
    QCOMPARE(model->index(0, 0).data(PreviewListModel::IsChangedRole).toBool(), true);
    QCOMPARE(model->index(1, 0).data(PreviewListModel::IsChangedRole).toBool(), false);
    // The changed row draws its red minus mark; the unchanged row draws nothing red (no struck-through line).
    QVERIFY(hasRedPixels(grabRow(0)));
    QVERIFY(!hasRedPixels(grabRow(1)));
}

void TestPreviewPanelView::unchangedRowsKeepOneLine_data()
{
    QTest::addColumn<QString>("find");
    QTest::addColumn<QList<int>>("lines");
    QTest::newRow("unchanged names take one line each") << u"x"_s << QList<int>{1, 1, 1};
    QTest::newRow("a changed name takes two lines, the unchanged ones keep one") << u"a"_s << QList<int>{2, 1, 1};
    QTest::newRow("every name changed takes two lines each") << u"[abc]"_s << QList<int>{2, 2, 2};
}

void TestPreviewPanelView::unchangedRowsKeepOneLine()
{
    QFETCH(QString, find);
    QFETCH(QList<int>, lines);
    const int lineHeight = QFontMetrics(AppFonts::monoSmall()).height();
    const auto rowHeight = [this](int row) {
        return list()->visualRect(list()->model()->index(row, 0)).height();
    };
    // The list is first shown without changes, so a height measured then must not stick.
    m_vm->addFiles(locations({u"a.txt"_s, u"b.txt"_s, u"c.txt"_s}));
    QVERIFY(rowHeight(0) < 2 * lineHeight);
    RenameRule rule = replace(find, u"z"_s);
    rule.useRegex = true;
    m_vm->addRule(rule);
    for (int row = 0; row < lines.size(); ++row) {
        QCOMPARE(list()->model()->index(row, 0).data(PreviewListModel::LineCountRole).toInt(), lines.at(row));
        QVERIFY(rowHeight(row) >= lines.at(row) * lineHeight);
        QVERIFY(rowHeight(row) < (lines.at(row) + 1) * lineHeight);
        if (row > 0) {
            const QRect above = list()->visualRect(list()->model()->index(row - 1, 0));
            QCOMPARE(list()->visualRect(list()->model()->index(row, 0)).top(), above.bottom() + 1);
        }
    }
    // Rows of one kind share one height.
    for (int row = 1; row < lines.size(); ++row) {
        if (lines.at(row) == lines.at(0))
            QCOMPARE(rowHeight(row), rowHeight(0));
    }
}

void TestPreviewPanelView::conflictTintWinsOverHover()
{
    // Rows: "a1.txt" becomes "a.txt", "a2.txt" becomes "a.txt" too (a conflict), "b.txt" stays.
    RenameRule digits = replace(u"[0-9]"_s, {});
    digits.useRegex = true;
    m_vm->addFiles(locations({u"a1.txt"_s, u"a2.txt"_s, u"b.txt"_s}));
    m_vm->addRule(digits);
    QVERIFY(list()->model()->index(1, 0).data(PreviewListModel::HasConflictRole).toBool());
    const QPoint padding(2, 2);

    const QColor conflictPlain = grabRow(1).pixelColor(padding);
    const QColor normalPlain = grabRow(2).pixelColor(padding);
    QVERIFY(conflictPlain.red() > conflictPlain.blue());
    QVERIFY(conflictPlain != normalPlain);

    hover(1);
    QCOMPARE(grabRow(1).pixelColor(padding), conflictPlain);
    hover(2);
    const QColor normalHovered = grabRow(2).pixelColor(padding);
    QVERIFY2(normalHovered != normalPlain, "a hovered row is tinted");
    QCOMPARE(grabRow(1).pixelColor(padding), conflictPlain);
}

void TestPreviewPanelView::exportAsksForCsvLocation_data()
{
    QTest::addColumn<bool>("confirmed");
    QTest::newRow("a cancelled panel writes nothing") << false;
    QTest::newRow("a chosen location receives the CSV text") << true;
}

void TestPreviewPanelView::exportAsksForCsvLocation()
{
    QFETCH(bool, confirmed);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString target = dir.filePath(u"rename_preview.csv"_s);
    FakePanelProvider panels;
    if (confirmed)
        panels.saveAnswer = NativePath::fromText(target);
    m_vm->setPanelProvider(&panels);
    m_vm->addFiles(locations({u"a.txt"_s}));
    m_vm->addRule(replace(u"a"_s, u"z"_s));

    auto *button = child<QToolButton>(m_view.get(), u"exportButton"_s);
    QCOMPARE(button->toolTip(), u"Export CSV"_s);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(panels.proposedNames, QStringList{u"rename_preview.csv"_s});
    QCOMPARE(panels.nameFilters, QStringList{u"CSV files (*.csv)"_s});
    if (confirmed) {
        QFile written(target);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(written.readAll()), m_vm->exportCSV());
    } else {
        QCOMPARE(QDir(dir.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden), QStringList());
    }
    m_vm->setPanelProvider(nullptr);
}

void TestPreviewPanelView::modelStaysConsistent()
{
    QAbstractItemModelTester tester(list()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    m_vm->addFiles(locations({u"a.txt"_s, u"b.txt"_s, u"c.txt"_s}));
    m_vm->addRule(replace(u"a"_s, u"b"_s));
    m_vm->setFilterText(u"c"_s);
    m_vm->updatePreviews();
    QCOMPARE(list()->model()->rowCount(), 1);
    m_vm->clearFiles();
    QCOMPARE(list()->model()->rowCount(), 0);
}

void TestPreviewPanelView::screenshots()
{
    const QString folder = qEnvironmentVariable("QUILLFERN_SCREENSHOTS");
    if (folder.isEmpty())
        QSKIP("set QUILLFERN_SCREENSHOTS to a folder to save screenshots");
    QDir().mkpath(folder);
    const QPalette light = QApplication::palette();
    const QPalette dark = uitest::darkPalette();

    for (const auto &[appearance, palette] : {std::pair{u"light"_s, light}, {u"dark"_s, dark}}) {
        QApplication::setPalette(palette);
        cleanup();
        init();
        auto save = [&](const QString &name) {
            QVERIFY(m_view->grab().save(folder + u"/preview-"_s + name + u'-' + appearance + u".png"_s));
        };
        save(u"empty"_s);
        m_vm->addFiles(locations({u"IMG 0001.jpeg"_s,
            u"IMG 0002.jpeg"_s,
            u"IMG-0002.jpeg"_s,
            u"notes.txt"_s,
            u"holiday IMG 0003 with a very long name that will not fit.jpeg"_s}));
        m_vm->setFilterText(u"nothing"_s);
        m_vm->updatePreviews();
        save(u"no-rules"_s);
        m_vm->setFilterText({});
        RenameRule rule = replace(u"IMG[ -]"_s, u"Photo_"_s);
        rule.useRegex = true;
        m_vm->addRule(rule);
        hover(3);
        save(u"rows"_s);
        m_vm->clearFiles();
        m_view->resize(240, m_view->height());
        save(u"empty-narrow"_s);
    }
    QApplication::setPalette(light);
}

QTEST_MAIN(TestPreviewPanelView)
#include "tst_previewpanelview.moc"
