#include "ui/appcolors.h"

#include <QApplication>
#include <QPalette>

namespace quillfern::AppColors {

namespace {

QPalette palette()
{
    return QApplication::palette();
}

bool isDark()
{
    return palette().color(QPalette::Window).lightness() < 128;
}

/// One of two tones, for light and dark appearances, like the system colours of a desktop.
QColor tone(QRgb light, QRgb dark)
{
    return QColor::fromRgb(isDark() ? dark : light);
}

} // namespace

QColor withOpacity(QColor color, double opacity)
{
    color.setAlphaF(float(opacity));
    return color;
}

QColor accent()
{
    return tone(qRgb(0x2F, 0x6F, 0xDB), qRgb(0x5B, 0x9B, 0xFF));
}

QColor success()
{
    return tone(qRgb(0x28, 0xA7, 0x45), qRgb(0x32, 0xD7, 0x4B));
}

QColor warning()
{
    return tone(qRgb(0xE8, 0x7B, 0x00), qRgb(0xFF, 0x9F, 0x0A));
}

QColor danger()
{
    return tone(qRgb(0xD7, 0x26, 0x1E), qRgb(0xFF, 0x45, 0x3A));
}

QColor panelBackground()
{
    return palette().color(QPalette::Window);
}

QColor sidebarBackground()
{
    return palette().color(QPalette::Base);
}

QColor rowHover()
{
    return withOpacity(accent(), 0.08);
}

QColor rowSelected()
{
    return withOpacity(accent(), 0.15);
}

QColor conflictBackground()
{
    return withOpacity(danger(), 0.1);
}

QColor conflictForeground()
{
    return danger();
}

QColor changedForeground()
{
    return accent();
}

QColor unchangedForeground()
{
    return secondary();
}

QColor secondary()
{
    return withOpacity(palette().color(QPalette::WindowText), 0.62);
}

QColor tertiary()
{
    return withOpacity(palette().color(QPalette::WindowText), 0.4);
}

} // namespace quillfern::AppColors
