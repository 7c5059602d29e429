#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/ruleeditorstyle_p.h"

#include <QApplication>
#include <QLabel>

namespace quillfern::RuleEditorStyle {

QColor primaryText()
{
    return QApplication::palette().color(QPalette::WindowText);
}

void makeSecondary(QLabel *label)
{
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, AppColors::secondary());
    label->setPalette(palette);
}

void makeCaption(QLabel *label)
{
    label->setFont(AppFonts::caption());
    label->setWordWrap(true);
    makeSecondary(label);
}

} // namespace quillfern::RuleEditorStyle
