#include "model/renamerule.h"

#include "model/jsonobjectreader.h"
#include "model/randomuuid.h"

#include <QHashFunctions>

namespace quillfern {

using namespace Qt::StringLiterals;

RenameRule::RenameRule(RuleType ruleType)
    : id(randomUuid())
    , type(ruleType)
{
}

QString uuidText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

size_t qHash(const RenameRule &rule, size_t seed) noexcept
{
    return qHash(rule.id, seed);
}

QJsonObject RenameRule::toJson() const
{
    return QJsonObject{
        {u"id"_s, uuidText(id)},
        {u"type"_s, rawValue(type)},
        {u"isEnabled"_s, isEnabled},
        {u"findText"_s, findText},
        {u"replaceText"_s, replaceText},
        {u"isCaseSensitive"_s, isCaseSensitive},
        {u"useRegex"_s, useRegex},
        {u"insertText"_s, insertText},
        {u"insertPosition"_s, rawValue(insertPosition)},
        {u"insertIndex"_s, insertIndex},
        {u"insertAnchorText"_s, insertAnchorText},
        {u"removeTarget"_s, rawValue(removeTarget)},
        {u"removeText"_s, removeText},
        {u"removeCount"_s, removeCount},
        {u"removeFromIndex"_s, removeFromIndex},
        {u"removeToIndex"_s, removeToIndex},
        {u"removeBetweenStart"_s, removeBetweenStart},
        {u"removeBetweenEnd"_s, removeBetweenEnd},
        {u"caseType"_s, rawValue(caseType)},
        {u"numberingStart"_s, numberingStart},
        {u"numberingStep"_s, numberingStep},
        {u"numberingPadding"_s, numberingPadding},
        {u"numberingPosition"_s, rawValue(numberingPosition)},
        {u"numberingSeparator"_s, numberingSeparator},
        {u"numberingFormat"_s, numberingFormat},
        {u"dateFormat"_s, dateFormat},
        {u"datePosition"_s, rawValue(datePosition)},
        {u"newExtension"_s, newExtension},
        {u"replaceSpacesWithUnderscores"_s, replaceSpacesWithUnderscores},
        {u"removeSpecialChars"_s, removeSpecialChars},
        {u"removeDuplicateSpaces"_s, removeDuplicateSpaces},
        {u"trimWhitespace"_s, trimWhitespace},
    };
}

DecodeResult<RenameRule> RenameRule::fromJson(const QJsonValue &value)
{
    if (!value.isObject())
        return DecodeResult<RenameRule>::failure(u"A rule must be a JSON object."_s);
    const QJsonObject object = value.toObject();
    JsonObjectReader read(object);
    // Keys are read in declaration order, so the error names the first offending field.
    const QUuid id = read.uuid("id"_L1);
    RenameRule rule(read.enumeration<RuleType>("type"_L1));
    rule.id = id;
    rule.isEnabled = read.boolean("isEnabled"_L1);
    rule.findText = read.string("findText"_L1);
    rule.replaceText = read.string("replaceText"_L1);
    rule.isCaseSensitive = read.boolean("isCaseSensitive"_L1);
    rule.useRegex = read.boolean("useRegex"_L1);
    rule.insertText = read.string("insertText"_L1);
    rule.insertPosition = read.enumeration<InsertPosition>("insertPosition"_L1);
    rule.insertIndex = read.integer("insertIndex"_L1);
    rule.insertAnchorText = read.string("insertAnchorText"_L1);
    rule.removeTarget = read.enumeration<RemoveTarget>("removeTarget"_L1);
    rule.removeText = read.string("removeText"_L1);
    rule.removeCount = read.integer("removeCount"_L1);
    rule.removeFromIndex = read.integer("removeFromIndex"_L1);
    rule.removeToIndex = read.integer("removeToIndex"_L1);
    rule.removeBetweenStart = read.string("removeBetweenStart"_L1);
    rule.removeBetweenEnd = read.string("removeBetweenEnd"_L1);
    rule.caseType = read.enumeration<CaseConversionType>("caseType"_L1);
    rule.numberingStart = read.integer("numberingStart"_L1);
    rule.numberingStep = read.integer("numberingStep"_L1);
    rule.numberingPadding = read.integer("numberingPadding"_L1);
    rule.numberingPosition = read.enumeration<NumberingPosition>("numberingPosition"_L1);
    rule.numberingSeparator = read.string("numberingSeparator"_L1);
    rule.numberingFormat = read.string("numberingFormat"_L1);
    rule.dateFormat = read.string("dateFormat"_L1);
    rule.datePosition = read.enumeration<InsertPosition>("datePosition"_L1);
    rule.newExtension = read.string("newExtension"_L1);
    rule.replaceSpacesWithUnderscores = read.boolean("replaceSpacesWithUnderscores"_L1);
    rule.removeSpecialChars = read.boolean("removeSpecialChars"_L1);
    rule.removeDuplicateSpaces = read.boolean("removeDuplicateSpaces"_L1);
    rule.trimWhitespace = read.boolean("trimWhitespace"_L1);
    if (read.hasError())
        return DecodeResult<RenameRule>::failure(read.error());
    return DecodeResult<RenameRule>::success(std::move(rule));
}

} // namespace quillfern
