#include "ui/appcolors.h"

#include "model/jsonobjectreader.h"

#include <QApplication>
#include <QFile>
#include <QJsonDocument>
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

/// The two variants of the bundled "AccentColor" asset, read once.
struct AccentVariants
{
    QColor light;
    QColor dark;
};

AccentVariants readAccentAsset()
{
    QFile file(QStringLiteral(":/assets/AccentColor.json"));
    [[maybe_unused]] const bool isOpen = file.open(QIODevice::ReadOnly);
    Q_ASSERT_X(isOpen, "AppColors", "the AccentColor asset is bundled with the application");
    JsonObjectReader reader(QJsonDocument::fromJson(file.readAll()).object());
    AccentVariants variants{QColor::fromString(reader.string(QLatin1StringView("light"))),
        QColor::fromString(reader.string(QLatin1StringView("dark")))};
    Q_ASSERT_X(!reader.hasError() && variants.light.isValid() && variants.dark.isValid(),
        "AppColors",
        "the AccentColor asset holds a light and a dark colour");
    return variants;
}

} // namespace

QColor withOpacity(QColor color, double opacity)
{
    color.setAlphaF(float(opacity));
    return color;
}

QColor accent()
{
    static const AccentVariants variants = readAccentAsset();
    return isDark() ? variants.dark : variants.light;
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

QColor separator()
{
    return withOpacity(palette().color(QPalette::WindowText), 0.15);
}

QColor disabledText()
{
    const QPalette current = palette();
    const QColor active = current.color(QPalette::Active, QPalette::WindowText);
    const QColor disabled = current.color(QPalette::Disabled, QPalette::WindowText);
    // A palette made by setting each role once has the active colour for disabled text as well.
    return disabled.rgba() != active.rgba() ? disabled : withOpacity(active, 0.35);
}

QColor disabledFill()
{
    return withOpacity(palette().color(QPalette::WindowText), 0.1);
}

} // namespace quillfern::AppColors
