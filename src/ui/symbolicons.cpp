#include "ui/symbolicons.h"

#include "ui/appcolors.h"

#include <QApplication>
#include <QFile>
#include <QHash>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

namespace quillfern {

namespace {

QString bundledPath(const QString &symbolName)
{
    return QStringLiteral(":/assets/symbols/%1.svg").arg(symbolName);
}

/// The freedesktop icon-theme name that shows the same thing as a symbol, where there is a close one.
QString themeName(const QString &symbolName)
{
    static const QHash<QString, QString> names{
        {QStringLiteral("plus"), QStringLiteral("list-add")},
        {QStringLiteral("plus.circle"), QStringLiteral("list-add")},
        {QStringLiteral("arrow.uturn.backward"), QStringLiteral("edit-undo")},
        {QStringLiteral("arrow.uturn.forward"), QStringLiteral("edit-redo")},
        {QStringLiteral("magnifyingglass"), QStringLiteral("edit-find")},
        {QStringLiteral("folder"), QStringLiteral("folder")},
        {QStringLiteral("square.and.arrow.up"), QStringLiteral("document-export")},
        {QStringLiteral("tray.and.arrow.down"), QStringLiteral("document-open")},
        {QStringLiteral("tray.and.arrow.up"), QStringLiteral("document-save")},
        {QStringLiteral("calendar"), QStringLiteral("x-office-calendar")},
    };
    return names.value(symbolName);
}

/// The symbol's pixmaps in `color` added to `icon` for `mode`.
void addPixmaps(QIcon &icon, const QByteArray &svg, const QColor &color, QIcon::Mode mode)
{
    // The bundled symbols draw with "currentColor"; replacing it recolours the whole symbol.
    QSvgRenderer renderer(QByteArray(svg).replace("currentColor", color.name(QColor::HexRgb).toLatin1()));
    for (int size : {16, 24, 32, 48, 64, 96}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setOpacity(color.alphaF());
        renderer.render(&painter);
        painter.end();
        icon.addPixmap(pixmap, mode);
    }
}

QIcon tinted(const QString &path, const QColor &color)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray svg = file.readAll();
    QIcon icon;
    addPixmaps(icon, svg, color, QIcon::Normal);
    // Drawn in the colour of disabled text rather than left to the style, whose faded copy of a light symbol
    // still reads as enabled on a dark window.
    addPixmaps(icon, svg, AppColors::disabledText(), QIcon::Disabled);
    return icon;
}

} // namespace

bool SymbolIcons::hasBundledIcon(const QString &symbolName)
{
    return QFile::exists(bundledPath(symbolName));
}

QIcon SymbolIcons::icon(const QString &symbolName)
{
    const QString name = themeName(symbolName);
    if (!name.isEmpty() && QIcon::hasThemeIcon(name))
        return QIcon::fromTheme(name);
    // Drawn in the palette's text colour so the symbol reads in light and dark appearances alike.
    return tinted(bundledPath(symbolName), QApplication::palette().color(QPalette::WindowText));
}

QIcon SymbolIcons::icon(const QString &symbolName, const QColor &color)
{
    return tinted(bundledPath(symbolName), color);
}

} // namespace quillfern
