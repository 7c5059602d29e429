#include "model/ruletype.h"

namespace quillfern {

QString systemImage(RuleType type)
{
    switch (type) {
    case RuleType::Replace:
        return QStringLiteral("arrow.left.arrow.right");
    case RuleType::Insert:
        return QStringLiteral("text.insert");
    case RuleType::Remove:
        return QStringLiteral("minus.circle");
    case RuleType::CaseConversion:
        return QStringLiteral("textformat");
    case RuleType::Numbering:
        return QStringLiteral("number");
    case RuleType::Cleanup:
        return QStringLiteral("sparkles");
    case RuleType::Trim:
        return QStringLiteral("scissors");
    case RuleType::DateStamp:
        return QStringLiteral("calendar");
    case RuleType::ExtensionChange:
        return QStringLiteral("doc.badge.arrow.up");
    case RuleType::Regex:
        return QStringLiteral("chevron.left.forwardslash.chevron.right");
    }
    Q_UNREACHABLE();
    return {};
}

} // namespace quillfern
