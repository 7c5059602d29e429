#pragma once

#include "model/caseconversiontype.h"
#include "model/decoderesult.h"
#include "model/insertposition.h"
#include "model/numberingposition.h"
#include "model/removetarget.h"
#include "model/ruletype.h"

#include <QJsonObject>
#include <QString>
#include <QUuid>

namespace quillfern {

/// One step of the rename pipeline. One record holds the parameters of every kind of rule; `type` selects which
/// fields matter. Identity is `id`; two rules are equal only when every field is equal.
struct RenameRule
{
    /// A rule of the given kind with a fresh id and every other field at its default.
    explicit RenameRule(RuleType ruleType);

    QUuid id;
    RuleType type;
    bool isEnabled = true;
    QString findText;
    QString replaceText;
    bool isCaseSensitive = false;
    bool useRegex = false;
    QString insertText;
    InsertPosition insertPosition = InsertPosition::Beginning;
    qint64 insertIndex = 0;
    QString insertAnchorText;
    RemoveTarget removeTarget = RemoveTarget::Text;
    QString removeText;
    qint64 removeCount = 1;
    qint64 removeFromIndex = 0;
    qint64 removeToIndex = 0;
    QString removeBetweenStart;
    QString removeBetweenEnd;
    CaseConversionType caseType = CaseConversionType::TitleCase;
    qint64 numberingStart = 1;
    qint64 numberingStep = 1;
    qint64 numberingPadding = 3;
    NumberingPosition numberingPosition = NumberingPosition::Suffix;
    QString numberingSeparator = QStringLiteral("_");
    QString numberingFormat = QStringLiteral("%03d");
    QString dateFormat = QStringLiteral("yyyy-MM-dd");
    InsertPosition datePosition = InsertPosition::End;
    QString newExtension;
    bool replaceSpacesWithUnderscores = false;
    bool removeSpecialChars = false;
    bool removeDuplicateSpaces = true;
    bool trimWhitespace = true;

    friend bool operator==(const RenameRule &, const RenameRule &) = default;

    /// The rule as a JSON object with exactly its 32 field names as keys.
    [[nodiscard]] QJsonObject toJson() const;
    /// Decodes a rule strictly: every key is required, with its exact JSON type and enumeration text.
    [[nodiscard]] static DecodeResult<RenameRule> fromJson(const QJsonValue &value);
};

/// The canonical upper-case 36-character text of a UUID, as written in JSON.
QString uuidText(const QUuid &id);

/// Rules hash by their id only.
size_t qHash(const RenameRule &rule, size_t seed = 0) noexcept;

} // namespace quillfern
