#pragma once

#include <QList>
#include <QString>

#include <variant>

namespace quillfern {

/// A replacement template of ICU regular expressions parsed once: literal text and $n group references, where a
/// backslash makes the next character literal. Templates with \u escapes, named groups or a trailing backslash
/// are left to ICU itself (isParsed() is false).
class ReplacementTemplate final
{
public:
    /// One part of the replacement: literal text, or the number of a capture group.
    using Piece = std::variant<QString, int>;

    /// Parses the template for a pattern with `groupCount` capture groups.
    ReplacementTemplate(const QString &text, int groupCount);

    [[nodiscard]] const QString &text() const { return m_text; }
    /// Whether pieces() describes the template; otherwise ICU must expand it.
    [[nodiscard]] bool isParsed() const { return m_isParsed; }
    /// Whether every match fails to expand (a $ without a valid group number after it).
    [[nodiscard]] bool isInvalid() const { return m_isInvalid; }
    [[nodiscard]] const QList<Piece> &pieces() const { return m_pieces; }

private:
    void parse(int groupCount);
    void appendLiteral(QChar character);

    QString m_text;
    bool m_isParsed = false;
    bool m_isInvalid = false;
    QList<Piece> m_pieces;
};

} // namespace quillfern
