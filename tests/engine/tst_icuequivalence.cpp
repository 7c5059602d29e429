#include "engine/casemapper_p.h"
#include "engine/renameengine.h"

#include <QRandomGenerator>
#include <QScopeGuard>
#include <QTest>

#include <unicode/locid.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

using namespace quillfern;
using namespace Qt::StringLiterals;

/// The engine's shortcuts for common text (plain ASCII title case, parsed replacement templates) give exactly
/// what ICU itself gives.
class TestIcuEquivalence final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void titleCaseMatchesIcu();
    void casingAroundEveryAsciiCharacterMatchesIcu_data();
    void casingAroundEveryAsciiCharacterMatchesIcu();
    void templatesExpandAsIcuDoes_data();
    void templatesExpandAsIcuDoes();
};

namespace {

icu::UnicodeString toIcu(const QString &text)
{
    return icu::UnicodeString(reinterpret_cast<const char16_t *>(text.utf16()), int32_t(text.size()));
}

QString fromIcu(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

QString icuTitle(const QString &text)
{
    icu::UnicodeString mapped = toIcu(text);
    return fromIcu(mapped.toTitle(nullptr, icu::Locale::getRoot()));
}

RenameRule caseRule(CaseConversionType type)
{
    RenameRule rule(RuleType::CaseConversion);
    rule.caseType = type;
    return rule;
}

/// The name cased by the engine with ICU alone, without the plain ASCII title-case shortcut.
QString casedByIcuAlone(CaseConversionType type, const QString &name)
{
    CaseMapper::setPlainAsciiTitleShortcut(false);
    const auto restore = qScopeGuard([] { CaseMapper::setPlainAsciiTitleShortcut(true); });
    return RenameEngine::applyRules({caseRule(type)}, name, 0, QString());
}

/// ICU's own replaceAll, or the text itself when ICU fails, as the engine promises.
QString icuReplaceAll(const QString &pattern, const QString &replacement, const QString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher matcher(toIcu(pattern), 0, status);
    if (U_FAILURE(status))
        return text;
    const icu::UnicodeString input = toIcu(text);
    matcher.reset(input);
    const icu::UnicodeString result = matcher.replaceAll(toIcu(replacement), status);
    return U_FAILURE(status) ? text : fromIcu(result);
}

} // namespace

void TestIcuEquivalence::titleCaseMatchesIcu()
{
    const RenameRule title = caseRule(CaseConversionType::TitleCase);
    // Letters, digits, the word joiners and other punctuation, in random short names.
    const QString alphabet = u"aAbZz09_ -()!#$+~.':,;\"@\tqQxX"_s;
    QRandomGenerator random(20261122);
    for (int sample = 0; sample < 20000; ++sample) {
        QString name;
        const int length = random.bounded(1, 12);
        for (int i = 0; i < length; ++i)
            name += alphabet[random.bounded(int(alphabet.size()))];
        QCOMPARE(RenameEngine::applyRules({title}, name, 0, QString()), icuTitle(name));
    }
}

void TestIcuEquivalence::casingAroundEveryAsciiCharacterMatchesIcu_data()
{
    QTest::addColumn<QChar>("character");
    for (char16_t unit = 0x01; unit < 0x80; ++unit) {
        const QChar character(unit);
        const QByteArray shown = character.isPrint() ? u"“%1”"_s.arg(character).toUtf8()
                                                     : u"U+%1"_s.arg(uint(unit), 4, 16, QChar(u'0')).toUpper().toUtf8();
        QTest::addRow("names with %s between words, at either end and doubled are cased as ICU cases them",
            shown.constData())
            << character;
    }
}

void TestIcuEquivalence::casingAroundEveryAsciiCharacterMatchesIcu()
{
    QFETCH(QChar, character);
    // "•" stands for the character.
    static const QStringList shapes{u"user•example report"_s,
        u"•leading"_s,
        u"trailing•"_s,
        u"••doubled first"_s,
        u"doubled last••"_s,
        u"two••words"_s,
        u"hELLO•wORLD"_s,
        u"2nd•3RD"_s,
        u"a1•b2"_s,
        u"x•7"_s,
        u"7•x"_s,
        u"_•a"_s,
        u"a•_"_s,
        u"•"_s,
        u"••"_s,
        u"mIxEd•CaSe•WoRdS"_s,
        u"• spaced • out •"_s,
        u"it•s O•NEIL"_s};
    for (const QString &shape : shapes) {
        const QString name = QString(shape).replace(u'•', character);
        const QString title = RenameEngine::applyRules({caseRule(CaseConversionType::TitleCase)}, name, 0, QString());
        QCOMPARE(title, icuTitle(name));
        QCOMPARE(title, casedByIcuAlone(CaseConversionType::TitleCase, name));
        const QString camel = RenameEngine::applyRules({caseRule(CaseConversionType::CamelCase)}, name, 0, QString());
        QCOMPARE(camel, casedByIcuAlone(CaseConversionType::CamelCase, name));
    }
}

void TestIcuEquivalence::templatesExpandAsIcuDoes_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<QString>("text");
    QTest::newRow("a group reference") << u"(\\d+)"_s << u"#$1"_s << u"a12b3"_s;
    QTest::newRow("the whole match") << u"b+"_s << u"[$0]"_s << u"abbc"_s;
    QTest::newRow("digits after a reference that would name a missing group stay text")
        << u"(a)"_s << u"$12"_s << u"xay"_s;
    QTest::newRow("two-digit group numbers when that many groups exist")
        << u"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)(k)"_s << u"$11$10$1"_s << u"abcdefghijk!"_s;
    QTest::newRow("a reference to a missing group fails") << u"(a)"_s << u"$2"_s << u"xay"_s;
    QTest::newRow("a lone dollar fails") << u"a"_s << u"$"_s << u"xay"_s;
    QTest::newRow("a dollar before a letter fails") << u"a"_s << u"$x"_s << u"xay"_s;
    QTest::newRow("an escaped dollar") << u"(a)"_s << u"\\$1"_s << u"xay"_s;
    QTest::newRow("an escaped backslash") << u"a"_s << u"\\\\"_s << u"xay"_s;
    QTest::newRow("a trailing backslash") << u"a"_s << u"b\\"_s << u"xay"_s;
    QTest::newRow("a unicode escape") << u"a"_s << u"\\u00e9"_s << u"xay"_s;
    QTest::newRow("a named group") << u"(?<n>a)"_s << u"<${n}>"_s << u"xay"_s;
    QTest::newRow("an unknown named group fails") << u"(?<n>a)"_s << u"${m}"_s << u"xay"_s;
    QTest::newRow("a group that took no part inserts nothing") << u"(a)|(b)"_s << u"[$2]"_s << u"ab"_s;
    QTest::newRow("empty matches everywhere") << u"x*"_s << u"-"_s << u"abc"_s;
    QTest::newRow("no match keeps the text, even with a bad template") << u"z"_s << u"$"_s << u"abc"_s;
    QTest::newRow("an emoji in the template") << u"a"_s << u"🎉$0"_s << u"xay"_s;
    QTest::newRow("a non-ASCII digit after the dollar") << u"(a)"_s << u"$\u0661"_s << u"xay"_s;
}

void TestIcuEquivalence::templatesExpandAsIcuDoes()
{
    QFETCH(QString, pattern);
    QFETCH(QString, replacement);
    QFETCH(QString, text);
    RenameRule regex(RuleType::Regex);
    regex.findText = pattern;
    regex.replaceText = replacement;
    QCOMPARE(RenameEngine::applyRules({regex}, text, 0, QString()), icuReplaceAll(pattern, replacement, text));
}

QTEST_APPLESS_MAIN(TestIcuEquivalence)
#include "tst_icuequivalence.moc"
