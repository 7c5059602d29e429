#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace quillfern {

/// Icons for the symbol names the views use ("plus.circle", "arrow.uturn.backward", ...): the desktop's
/// freedesktop icon theme where it has a matching icon, else the bundled SVG. Never a blank icon. A bundled
/// symbol on a disabled control is drawn in the palette's colour for disabled text.
class SymbolIcons final
{
public:
    SymbolIcons() = delete;

    /// The icon for a symbol name.
    static QIcon icon(const QString &symbolName);
    /// The bundled icon drawn in one colour (for symbols shown in green, orange, red or the accent colour).
    static QIcon icon(const QString &symbolName, const QColor &color);
    /// Whether the symbol has a bundled SVG (every symbol the views use must).
    static bool hasBundledIcon(const QString &symbolName);
};

} // namespace quillfern
