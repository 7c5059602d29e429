#pragma once

#include <QLabel>

namespace quillfern {

/// A one-line label that shows as much of its text as fits, cut with "…" at the end, and the whole text in its
/// tooltip. It asks for the width of its whole text but can be as narrow as the ellipsis; text() stays whole.
class ElidingLabel final : public QLabel
{
    Q_OBJECT

public:
    explicit ElidingLabel(const QString &text, QWidget *parent = nullptr);

    /// Whether the text is cut at the label's present width.
    [[nodiscard]] bool isElided() const;

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace quillfern
