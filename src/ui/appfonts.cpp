#include "ui/appfonts.h"

#include <QApplication>
#include <QFontDatabase>

namespace quillfern::AppFonts {

namespace {

/// The application font scaled relative to body size, with a weight.
QFont scaled(double factor, QFont::Weight weight = QFont::Normal, QFont base = QApplication::font())
{
    const double size = base.pointSizeF() > 0 ? base.pointSizeF() : 10.0;
    base.setPointSizeF(size * factor);
    base.setWeight(weight);
    return base;
}

QFont fixed()
{
    return QFontDatabase::systemFont(QFontDatabase::FixedFont);
}

// Relative sizes of the text styles, body being 1.
constexpr double calloutSize = 0.92;
constexpr double captionSize = 0.85;
constexpr double caption2Size = 0.8;
constexpr double title3Size = 1.15;
constexpr double title2Size = 1.3;
constexpr double titleSize = 1.6;

} // namespace

QFont mono()
{
    return scaled(1.0, QFont::Normal, fixed());
}

QFont monoSmall()
{
    return scaled(captionSize + 0.05, QFont::Normal, fixed());
}

QFont label()
{
    return scaled(calloutSize, QFont::Medium);
}

QFont sectionHeader()
{
    return scaled(captionSize, QFont::DemiBold);
}

QFont body()
{
    return scaled(1.0);
}

QFont callout()
{
    return scaled(calloutSize);
}

QFont caption()
{
    return scaled(captionSize);
}

QFont caption2()
{
    return scaled(caption2Size);
}

QFont headline()
{
    return scaled(1.0, QFont::DemiBold);
}

QFont title()
{
    return scaled(titleSize);
}

QFont title2()
{
    return scaled(title2Size);
}

QFont title3()
{
    return scaled(title3Size);
}

} // namespace quillfern::AppFonts
