#include "model/bytecount.h"

#include <QLocale>

#include <array>

namespace quillfern {

QString formatByteCount(qint64 bytes)
{
    if (bytes == 0)
        return QStringLiteral("Zero KB");
    if (bytes == 1 || bytes == -1)
        return QStringLiteral("%1 byte").arg(bytes);
    if (bytes > -1000 && bytes < 1000)
        return QStringLiteral("%1 bytes").arg(bytes);

    struct Unit
    {
        const char *name;
        int decimals;
    };
    static constexpr std::array<Unit, 6> units{{{"KB", 0}, {"MB", 1}, {"GB", 2}, {"TB", 2}, {"PB", 2}, {"EB", 2}}};
    double value = double(bytes) / 1000.0;
    std::size_t unit = 0;
    while ((value >= 1000.0 || value <= -1000.0) && unit + 1 < units.size()) {
        value /= 1000.0;
        ++unit;
    }
    QLocale locale;
    locale.setNumberOptions(QLocale::DefaultNumberOptions);
    QString number = locale.toString(value, 'f', units[unit].decimals);
    // Trailing zeros of the fraction are not shown: 1.50 MB reads "1.5 MB", 2.00 GB reads "2 GB".
    const QString decimalPoint = locale.decimalPoint();
    if (units[unit].decimals > 0 && number.contains(decimalPoint)) {
        while (number.endsWith(u'0'))
            number.chop(1);
        if (number.endsWith(decimalPoint))
            number.chop(decimalPoint.size());
    }
    return number + u' ' + QLatin1StringView(units[unit].name);
}

} // namespace quillfern
