#include "ui/sheetstyle.h"

#include <QDialog>

namespace quillfern {

void SheetStyle::apply(QDialog *sheet)
{
    // A custom set of hints replaces the window manager's defaults, which give a resizable dialog a maximise
    // button.
    sheet->setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    sheet->setWindowModality(Qt::WindowModal);
}

} // namespace quillfern
