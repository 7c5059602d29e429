#pragma once

#include <QMenu>

namespace quillfern {

/// A menu that draws destructive commands (such as "Clear List") in the danger colour, as desktop menus
/// mark commands that throw work away.
class ActionMenu final : public QMenu
{
    Q_OBJECT

public:
    explicit ActionMenu(QWidget *parent = nullptr);

    /// Adds a command drawn in the danger colour.
    QAction *addDestructiveAction(const QString &text);
    [[nodiscard]] static bool isDestructive(const QAction *action);

protected:
    void initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const override;
};

} // namespace quillfern
