#include "ui/filesandfoldersdialog.h"

#include <QAbstractItemView>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QProxyStyle>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

/// The application's style, except that a click never opens an item. The stock dialog enters a folder as soon
/// as it is opened, which on a desktop that opens items with one click (Plasma's default) leaves no way to
/// select a folder with the mouse: the click meant to select it enters it instead.
class ClickSelectsStyle final : public QProxyStyle
{
public:
    using QProxyStyle::QProxyStyle;

    int styleHint(StyleHint hint,
        const QStyleOption *option,
        const QWidget *widget,
        QStyleHintReturn *returnData) const override
    {
        if (hint == SH_ItemView_ActivateItemOnSingleClick)
            return 0;
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
};

} // namespace

FilesAndFoldersDialog::FilesAndFoldersDialog(QWidget *parent, const QString &title)
    : QFileDialog(parent, title)
{
    // Set before anything else, so the dialog builds its own widgets rather than asking the desktop.
    setOption(QFileDialog::DontUseNativeDialog);
    setFileMode(QFileDialog::ExistingFiles);
    setWindowModality(Qt::WindowModal);

    // Both views share one selection; each asks its own style whether a click opens an item.
    auto *style = new ClickSelectsStyle;
    style->setParent(this);
    for (const QString &name : {u"listView"_s, u"treeView"_s}) {
        if (auto *view = findChild<QAbstractItemView *>(name))
            view->setStyle(style);
    }

    // The name field lists what "Open" returns; the stock dialog leaves the folders out of it.
    auto *list = findChild<QAbstractItemView *>(u"listView"_s);
    auto *nameField = findChild<QLineEdit *>(u"fileNameEdit"_s);
    if (list && nameField) {
        connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [list, nameField] {
            const QModelIndexList rows = list->selectionModel()->selectedRows();
            // A field being typed in is the user's; the stock dialog leaves it alone as well.
            if (rows.isEmpty() || nameField->hasFocus())
                return;
            QStringList names;
            for (const QModelIndex &row : rows)
                names.append(row.data().toString());
            // Several names are quoted, as the dialog reads them back.
            if (names.size() > 1) {
                for (QString &name : names)
                    name = u'"' + name + u'"';
            }
            nameField->setText(names.join(u' '));
        });
    }
}

void FilesAndFoldersDialog::accept()
{
    // In the multiple-files mode the stock dialog would enter a selected folder instead of returning it.
    const QStringList chosen = selectedFiles();
    const bool allExist =
        std::all_of(chosen.cbegin(), chosen.cend(), [](const QString &path) { return QFileInfo::exists(path); });
    if (chosen.isEmpty() || !allExist) {
        // Let the stock dialog say what is wrong with a typed name.
        QFileDialog::accept();
        return;
    }
    QDialog::accept();
}

} // namespace quillfern
