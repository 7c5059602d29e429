#include "engine/newnamecheck_p.h"
#include "model/nativepath.h"

#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;

/// Which new names an item can be given; a name is measured in the bytes it is written as.
class TestNewNameCheck final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void measuresNamesInTheBytesWritten_data();
    void measuresNamesInTheBytesWritten();
};

namespace {

QString tooLong(qsizetype bytes)
{
    return u"The new name is %1 bytes long; a file name can have at most 255."_s.arg(bytes);
}

} // namespace

void TestNewNameCheck::measuresNamesInTheBytesWritten_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("error");
    const QChar escapedByte(char16_t(0xDCE9));
    const QString skull = u"\U0001F480"_s;
    QTest::newRow("255 ASCII characters fit") << QString(255, u'a') << QString();
    QTest::newRow("256 ASCII characters are too long") << QString(256, u'a') << tooLong(256);
    QTest::newRow("a byte that is not UTF-8 counts as the one byte it is written as")
        << QString(254, u'a') + escapedByte << QString();
    QTest::newRow("a byte that is not UTF-8 past the limit counts one byte")
        << QString(255, u'a') + escapedByte << tooLong(256);
    QTest::newRow("a name of 255 such bytes fits") << QString(255, escapedByte) << QString();
    QTest::newRow("a name of 256 such bytes is too long") << QString(256, escapedByte) << tooLong(256);
    QTest::newRow("a valid U+FFFD counts three bytes") << QString(252, u'a') + QChar::ReplacementCharacter << QString();
    QTest::newRow("a valid U+FFFD past the limit counts three bytes")
        << QString(253, u'a') + QChar::ReplacementCharacter << tooLong(256);
    QTest::newRow("a character whose second UTF-16 unit lies among the escapes counts four bytes")
        << QString(251, u'a') + skull << QString();
    QTest::newRow("such a character past the limit counts four bytes") << QString(252, u'a') + skull << tooLong(256);
    QTest::newRow("another lone surrogate counts as the byte text writes for it")
        << QString(255, u'a') + QChar(char16_t(0xD800)) << tooLong(256);
}

void TestNewNameCheck::measuresNamesInTheBytesWritten()
{
    QFETCH(QString, name);
    QFETCH(QString, error);
    QCOMPARE(newnamecheck::whyInvalid(name), error);
#ifndef Q_OS_WIN
    // The count is that of the bytes a rename writes.
    QCOMPARE(NativePath::fromEscapedText(name).native().size() > 255, !error.isEmpty());
#endif
}

QTEST_APPLESS_MAIN(TestNewNameCheck)
#include "tst_newnamecheck.moc"
