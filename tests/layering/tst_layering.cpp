#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// The core folders build toolkit-free libraries: none may include a Gui or Widgets header, and each may include
/// only the layers below it.
class TestLayering final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void coreIncludesOnlyAllowedHeaders_data();
    void coreIncludesOnlyAllowedHeaders();
};

void TestLayering::coreIncludesOnlyAllowedHeaders_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QStringList>("allowedLayers");
    QTest::newRow("model includes only itself") << u"model"_s << QStringList{u"model"_s};
    QTest::newRow("engine sits on model") << u"engine"_s << QStringList{u"engine"_s, u"model"_s};
    QTest::newRow("parser sits on model") << u"parser"_s << QStringList{u"parser"_s, u"model"_s};
    QTest::newRow("presets sit on model") << u"presets"_s << QStringList{u"presets"_s, u"model"_s};
    QTest::newRow("state sits on the core")
        << u"state"_s << QStringList{u"state"_s, u"engine"_s, u"parser"_s, u"presets"_s, u"model"_s};
    QTest::newRow("cli uses the core only")
        << u"cli"_s << QStringList{u"cli"_s, u"state"_s, u"engine"_s, u"parser"_s, u"presets"_s, u"model"_s};
}

void TestLayering::coreIncludesOnlyAllowedHeaders()
{
    QFETCH(QString, folder);
    QFETCH(QStringList, allowedLayers);
    static const QRegularExpression include(uR"(^\s*#\s*include\s*[<"]([^>"]+)[>"])"_s,
                                            QRegularExpression::MultilineOption);
    static const QRegularExpression toolkitHeader(
        uR"(^(QtGui/|QtWidgets/|QtSvg/)|^Q(Widget|Application|GuiApplication|Icon|Pixmap|Image|Color|Painter|Font|Action|Menu|Dialog|FileDialog|MessageBox|Palette)\b)"_s);
    static const QRegularExpression projectHeader(uR"(^(model|engine|parser|presets|state|ui|app|cli)/)"_s);

    QDirIterator it(QStringLiteral(QUILLFERN_SOURCE_DIR) + u'/' + folder,
                    {u"*.h"_s, u"*.cpp"_s},
                    QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QFile file(path);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(path));
        const QString text = QString::fromUtf8(file.readAll());
        for (auto match = include.globalMatch(text); match.hasNext();) {
            const QString header = match.next().captured(1);
            QVERIFY2(!toolkitHeader.match(header).hasMatch(),
                     qPrintable(path + u" includes the toolkit header "_s + header));
            const auto layer = projectHeader.match(header);
            if (layer.hasMatch())
                QVERIFY2(allowedLayers.contains(layer.captured(1)),
                         qPrintable(path + u" reaches up into "_s + header));
        }
    }
}

QTEST_APPLESS_MAIN(TestLayering)
#include "tst_layering.moc"
