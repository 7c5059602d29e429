#include "ui/cardstyle.h"

#include "ui/appcolors.h"

#include <QGraphicsDropShadowEffect>
#include <QWidget>

namespace quillfern {

void CardStyle::apply(QWidget *widget)
{
    Q_ASSERT_X(!widget->objectName().isEmpty(), "CardStyle::apply", "the card's style sheet needs an object name");
    widget->setAttribute(Qt::WA_StyledBackground);
    widget->setStyleSheet(QStringLiteral("#%1 { background: %2; border-radius: 10px; }")
                              .arg(widget->objectName(), AppColors::sidebarBackground().name(QColor::HexArgb)));
    auto *shadow = new QGraphicsDropShadowEffect(widget);
    shadow->setColor(QColor(0, 0, 0, 15));
    shadow->setBlurRadius(3);
    shadow->setOffset(0, 1);
    widget->setGraphicsEffect(shadow);
}

} // namespace quillfern
