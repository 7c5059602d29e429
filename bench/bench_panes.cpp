// Measures the file list pane and the preview pane with 100,000 files: the time from addFiles to the first
// painted frame of both panes, and from a rule change to the repainted preview (plus a filter keystroke and a
// jump to the end of the list). Files are real, in 100 folders of 1,000 on /dev/shm, so the size and date
// columns read real attributes. Then the rename result sheet after a batch of 20,000 failed moves, each with a
// name and a reason of its own: the time from making the sheet to its first painted frame that shows rows, and
// to the end of its list. Usage: bench_panes [RUNS] (default 5; the median is reported).

#include "engine/filemover.h"
#include "model/nativepath.h"
#include "state/appviewmodel.h"
#include "ui/filelistview.h"
#include "ui/previewpanelview.h"
#include "ui/renameresultview.h"

#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>

#include <algorithm>
#include <fstream>
#include <functional>
#include <vector>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

constexpr int folderCount = 100;
constexpr int filesPerFolder = 1000;
constexpr int failureCount = 20'000;

/// Moves nothing: every move fails because its new name is taken, so each failure has a reason of its own.
class RefusingFileMover final : public FileMover
{
public:
    std::optional<MoveError> move(const NativePath &, const NativePath &to) override
    {
        return MoveError{MoveError::Kind::DestinationExists,
            u"A file named “%1” already exists."_s.arg(to.fileNameText())};
    }
    bool isSameItem(const NativePath &, const NativePath &) override { return false; }
    bool exists(const NativePath &) override { return true; }
    std::optional<ItemIdentity> identity(const NativePath &) override { return std::nullopt; }
};

QList<NativePath> makeFiles(const QString &root)
{
    QList<NativePath> files;
    files.reserve(folderCount * filesPerFolder);
    for (int folder = 0; folder < folderCount; ++folder) {
        const fs::path directory = NativePath::fromText(root).toStdPath() / ("Folder " + std::to_string(folder));
        fs::create_directory(directory);
        for (int file = 0; file < filesPerFolder; ++file) {
            files.append(directory / ("IMG_" + std::to_string(file) + " holiday photo.jpg"));
            std::ofstream(files.last().toStdPath()) << file;
        }
    }
    return files;
}

/// Counts paint events of a widget, to tell when a frame has been drawn; with a condition, only the frames drawn
/// while it holds.
class PaintCounter final : public QObject
{
public:
    explicit PaintCounter(QWidget *widget, std::function<bool()> condition = {})
        : m_condition(std::move(condition))
    {
        widget->installEventFilter(this);
    }
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && (!m_condition || m_condition()))
            ++count;
        return false;
    }

private:
    std::function<bool()> m_condition;
};

/// Runs the event loop until every counter has seen a paint since `before`.
void waitForPaint(const std::vector<PaintCounter *> &counters, const std::vector<int> &before)
{
    const auto allPainted = [&] {
        for (std::size_t index = 0; index < counters.size(); ++index) {
            if (counters[index]->count == before[index])
                return false;
        }
        return true;
    };
    while (!allPainted())
        QCoreApplication::processEvents(QEventLoop::AllEvents);
}

std::vector<int> counts(const std::vector<PaintCounter *> &counters)
{
    std::vector<int> values;
    for (const PaintCounter *counter : counters)
        values.push_back(counter->count);
    return values;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double milliseconds(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int runs = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 5;
    QTextStream out(stdout);

    QTemporaryDir root(u"/dev/shm/quillfern-bench-panes-XXXXXX"_s);
    if (!root.isValid())
        qFatal("cannot create a folder on /dev/shm");
    const QList<NativePath> files = makeFiles(root.path());
    out << "files: " << files.size() << " real files in " << folderCount << " folders on /dev/shm, " << runs
        << " runs, median\n";

    // The state object's own share, without any view: what the panes cannot make faster.
    std::vector<double> stateAdd;
    std::vector<double> stateFiltered;
    std::vector<double> stateRule;
    for (int run = 0; run < runs; ++run) {
        AppViewModel vm;
        RenameRule rule(RuleType::Replace);
        rule.findText = u"holiday"_s;
        rule.replaceText = u"trip"_s;
        vm.addRule(rule);
        QElapsedTimer timer;
        timer.start();
        // The previews are computed when first read, as the preview pane does at once.
        vm.addFiles(files);
        (void)vm.previews();
        stateAdd.push_back(milliseconds(timer));
        timer.restart();
        (void)vm.filteredFiles();
        stateFiltered.push_back(milliseconds(timer));
        rule.replaceText = u"journey"_s;
        timer.restart();
        vm.updateRule(rule);
        (void)vm.previews();
        stateRule.push_back(milliseconds(timer));
    }

    std::vector<double> addToPaint;
    std::vector<double> addCall;
    std::vector<double> ruleToPaint;
    std::vector<double> ruleCall;
    std::vector<double> keystrokeToPaint;
    std::vector<double> jumpToEnd;
    for (int run = 0; run < runs; ++run) {
        AppViewModel vm;
        QWidget window;
        auto *layout = new QHBoxLayout(&window);
        auto *fileList = new FileListView(&vm, &window);
        auto *preview = new PreviewPanelView(&vm, &window);
        layout->addWidget(fileList, 3);
        layout->addWidget(preview, 2);
        window.resize(1280, 800);
        window.show();
        if (!QTest::qWaitForWindowExposed(&window))
            qFatal("the window is not exposed");
        auto *table = fileList->findChild<QTableView *>(u"fileTable"_s);
        auto *previewList = preview->findChild<QListView *>(u"previewList"_s);
        PaintCounter tablePaints(table->viewport());
        PaintCounter previewPaints(previewList->viewport());
        const std::vector<PaintCounter *> both{&tablePaints, &previewPaints};

        RenameRule rule(RuleType::Replace);
        rule.findText = u"holiday"_s;
        rule.replaceText = u"trip"_s;
        vm.addRule(rule);

        QElapsedTimer timer;
        timer.start();
        auto before = counts(both);
        vm.addFiles(files);
        addCall.push_back(milliseconds(timer));
        waitForPaint(both, before);
        addToPaint.push_back(milliseconds(timer));

        rule.replaceText = u"journey"_s;
        before = counts({&previewPaints});
        timer.restart();
        vm.updateRule(rule);
        ruleCall.push_back(milliseconds(timer));
        waitForPaint({&previewPaints}, before);
        ruleToPaint.push_back(milliseconds(timer));

        before = counts(both);
        timer.restart();
        QTest::keyClick(fileList->findChild<QLineEdit *>(u"filterField"_s), Qt::Key_7);
        waitForPaint(both, before);
        keystrokeToPaint.push_back(milliseconds(timer));

        before = counts({&tablePaints});
        timer.restart();
        table->verticalScrollBar()->setValue(table->verticalScrollBar()->maximum());
        waitForPaint({&tablePaints}, before);
        jumpToEnd.push_back(milliseconds(timer));
    }

    // The result sheet of a batch whose 20,000 moves failed, shown over a window as the application shows it.
    // Every failure has a name and a reason of its own, the most the sheet can have to measure.
    std::vector<double> sheetToPaint;
    std::vector<double> sheetToEnd;
    QList<NativePath> failing;
    for (int index = 0; index < failureCount; ++index)
        failing.append(NativePath::fromText(root.path() + u"/Failing/IMG_%1 holiday photo.jpg"_s.arg(index)));
    for (int run = 0; run < runs; ++run) {
        AppViewModel vm;
        vm.setFileMover(std::make_shared<RefusingFileMover>());
        vm.addFiles(failing);
        RenameRule rule(RuleType::Replace);
        rule.findText = u"holiday"_s;
        rule.replaceText = u"trip"_s;
        vm.addRule(rule);
        vm.performRename();
        while (vm.isRenaming())
            QCoreApplication::processEvents(QEventLoop::AllEvents);
        QWidget window;
        window.resize(1200, 760);
        window.show();
        if (!QTest::qWaitForWindowExposed(&window))
            qFatal("the window is not exposed");

        QElapsedTimer timer;
        timer.start();
        auto *sheet = new RenameResultView(&vm, &window);
        auto *rows = sheet->findChild<QAbstractItemView *>(u"errorList"_s);
        const QModelIndex first = rows->model()->index(0, 0);
        {
            // Only a frame that shows rows counts.
            PaintCounter rowPaints(rows->viewport(), [&] { return rows->visualRect(first).isValid(); });
            sheet->open();
            waitForPaint({&rowPaints}, {0});
            sheetToPaint.push_back(milliseconds(timer));
        }

        PaintCounter listPaints(rows->viewport());
        timer.restart();
        rows->verticalScrollBar()->setValue(rows->verticalScrollBar()->maximum());
        waitForPaint({&listPaints}, {0});
        sheetToEnd.push_back(milliseconds(timer));
        delete sheet;
    }

    out << "state object alone (previews read): addFiles " << median(stateAdd) << " ms, filteredFiles "
        << median(stateFiltered) << " ms, updateRule " << median(stateRule) << " ms\n";
    out << "addFiles to first painted frame of both panes: " << median(addToPaint) << " ms (addFiles call itself "
        << median(addCall) << " ms)\n";
    out << "rule change to repainted preview: " << median(ruleToPaint) << " ms (updateRule call itself "
        << median(ruleCall) << " ms)\n";
    out << "filter keystroke to repainted panes: " << median(keystrokeToPaint) << " ms\n";
    out << "jump to the end of the table: " << median(jumpToEnd) << " ms\n";
    out << "result sheet with " << failureCount << " failures, made to first painted frame: " << median(sheetToPaint)
        << " ms; jump to the end of its list: " << median(sheetToEnd) << " ms\n";
    return 0;
}
