#include "state/caselesstext_p.h"

#include <QTest>

#include <optional>

using namespace quillfern;
using namespace Qt::StringLiterals;

class TestCaselessText final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equivalentTextsHaveOneForm_data();
    void equivalentTextsHaveOneForm();
    void asciiFormIsTheFormIcuGives_data();
    void asciiFormIsTheFormIcuGives();
    void asciiFormRefusesOtherText_data();
    void asciiFormRefusesOtherText();
};

void TestCaselessText::equivalentTextsHaveOneForm_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<bool>("isSame");
    QTest::newRow("composed and decomposed letters") << u"\u00e9t\u00e9"_s << u"e\u0301te\u0301"_s << true;
    QTest::newRow("composed capitals and decomposed small letters")
        << u"\u00c9T\u00c9"_s << u"e\u0301te\u0301"_s << true;
    QTest::newRow("decomposed capitals and composed small letters")
        << u"E\u0301TE\u0301"_s << u"\u00e9t\u00e9"_s << true;
    QTest::newRow("ASCII in two cases") << u"Photo.JPG"_s << u"photo.jpg"_s << true;
    QTest::newRow("sharp s folds to ss") << u"Stra\u00dfe"_s << u"STRASSE"_s << true;
    QTest::newRow("the angstrom sign is a capital a with a ring") << u"\u212b"_s << u"a\u030a"_s << true;
    QTest::newRow("a Hangul syllable and its letters") << u"\ud55c"_s << u"\u1112\u1161\u11ab"_s << true;
    QTest::newRow("j with a caron has no capital of its own") << u"J\u030c"_s << u"\u01f0"_s << true;
    QTest::newRow("an iota below folds to an iota") << u"\u1fb3"_s << u"\u0391\u0399"_s << true;
    QTest::newRow("an accent makes another letter") << u"e"_s << u"\u00e9"_s << false;
    QTest::newRow("a decomposed accent makes another letter too") << u"e"_s << u"e\u0301"_s << false;
    QTest::newRow("two accents in another order are another text") << u"a\u0301\u0302"_s << u"a\u0302\u0301"_s << false;
}

void TestCaselessText::equivalentTextsHaveOneForm()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(bool, isSame);
    QCOMPARE(caselesstext::caselessForm(left) == caselesstext::caselessForm(right), isSame);
}

void TestCaselessText::asciiFormIsTheFormIcuGives_data()
{
    QTest::addColumn<QString>("text");
    QString everyCharacter;
    for (char16_t unit = 0; unit < 0x80; ++unit)
        everyCharacter += QChar(unit);
    QTest::newRow("every ASCII character") << everyCharacter;
    QTest::newRow("a name in mixed case") << u"IMG_0042 Holiday Photo (1).JPG"_s;
    QTest::newRow("nothing") << QString();
}

void TestCaselessText::asciiFormIsTheFormIcuGives()
{
    QFETCH(QString, text);
    const std::optional<QString> form = caselesstext::caselessFormOfAscii(text);
    QVERIFY(form.has_value());
    QCOMPARE(*form, caselesstext::caselessFormByIcu(text));
    QCOMPARE(caselesstext::caselessForm(text), *form);
}

void TestCaselessText::asciiFormRefusesOtherText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("a letter with an accent") << u"\u00e9"_s;
    QTest::newRow("a combining accent alone") << u"\u0301"_s;
    QTest::newRow("ASCII but for the last character") << u"Photo.JP\u00c9"_s;
    QTest::newRow("a character outside the basic plane") << u"party \U0001f389"_s;
}

void TestCaselessText::asciiFormRefusesOtherText()
{
    QFETCH(QString, text);
    QCOMPARE(caselesstext::caselessFormOfAscii(text), std::nullopt);
}

QTEST_APPLESS_MAIN(TestCaselessText)
#include "tst_caselesstext.moc"
