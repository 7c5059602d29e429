#include "model/ruletype.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/cardstyle.h"
#include "ui/symbolicons.h"
#include "uitesthelpers.h"

#include <QFontMetricsF>
#include <QGraphicsDropShadowEffect>
#include <QImage>
#include <QScopeGuard>
#include <QSvgRenderer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace quillfern;

namespace {

/// Every symbol name the views show.
const QStringList symbolNames{
    u"arrow.down.doc.fill"_s,
    u"arrow.left.arrow.right"_s,
    u"arrow.uturn.backward"_s,
    u"arrow.uturn.forward"_s,
    u"calendar"_s,
    u"checkmark.circle.fill"_s,
    u"chevron.down"_s,
    u"chevron.left.forwardslash.chevron.right"_s,
    u"chevron.up"_s,
    u"doc.badge.arrow.up"_s,
    u"ellipsis.circle"_s,
    u"equal"_s,
    u"exclamationmark.triangle.fill"_s,
    u"eye"_s,
    u"eye.slash"_s,
    u"folder"_s,
    u"list.bullet.rectangle"_s,
    u"magnifyingglass"_s,
    u"minus"_s,
    u"minus.circle"_s,
    u"number"_s,
    u"play.fill"_s,
    u"plus"_s,
    u"plus.circle"_s,
    u"scissors"_s,
    u"sparkles"_s,
    u"square.and.arrow.up"_s,
    u"text.insert"_s,
    u"textformat"_s,
    u"textformat.abc"_s,
    u"tray.and.arrow.down"_s,
    u"tray.and.arrow.up"_s,
    u"wand.and.stars"_s,
    u"xmark.circle.fill"_s,
};

/// How many pixels of the image are not fully transparent.
int paintedPixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 0;
    }
    return count;
}

/// Whether the characters of file names (letters narrow and wide, digits, punctuation, a space) all have one
/// advance in `font`, alone and in a run of ten.
bool hasEqualAdvances(const QFont &font)
{
    const QFontMetricsF metrics(font);
    const QString sample = u"iIl1jMWm0_.-,:|@ (~"_s;
    const qreal advance = metrics.horizontalAdvance(sample.at(0));
    if (advance <= 0)
        return false;
    for (const QChar character : sample) {
        if (!qFuzzyCompare(metrics.horizontalAdvance(character), advance)
            || !qFuzzyCompare(metrics.horizontalAdvance(QString(10, character)), 10 * advance))
            return false;
    }
    return true;
}

} // namespace

class TestTheme : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everySymbolHasADrawnIcon_data();
    void everySymbolHasADrawnIcon();
    void everyRuleKindHasABundledIcon();
    void tintedIconTakesTheColour();
    void bundledAssetsExist_data();
    void bundledAssetsExist();
    void colorsFollowTheAppearance_data();
    void colorsFollowTheAppearance();
    void accentIsLighterOnADarkWindow();
    void translucentColorsKeepTheirOpacity();
    void disabledTextComesFromThePalette_data();
    void disabledTextComesFromThePalette();
    void disabledSymbolsAreDrawnInTheDisabledColour();
    void spacingScale();
    void fontStyles();
    void cardStyleGivesFillCornersAndShadow();
};

void TestTheme::everySymbolHasADrawnIcon_data()
{
    QTest::addColumn<QString>("symbol");
    for (const QString &name : symbolNames)
        QTest::newRow(qPrintable(name)) << name;
}

void TestTheme::everySymbolHasADrawnIcon()
{
    QFETCH(QString, symbol);
    QVERIFY(SymbolIcons::hasBundledIcon(symbol));
    QSvgRenderer renderer(u":/assets/symbols/%1.svg"_s.arg(symbol));
    QVERIFY(renderer.isValid());
    QCOMPARE(renderer.viewBox(), QRect(0, 0, 24, 24));

    const QImage image = SymbolIcons::icon(symbol).pixmap(24, 24).toImage();
    QVERIFY2(paintedPixels(image) > 20, "the icon is blank");
}

void TestTheme::everyRuleKindHasABundledIcon()
{
    for (const RuleType type : allCases<RuleType>())
        QVERIFY2(SymbolIcons::hasBundledIcon(systemImage(type)), qPrintable(systemImage(type)));
}

void TestTheme::tintedIconTakesTheColour()
{
    const QColor green = AppColors::success();
    const QImage image = SymbolIcons::icon(u"checkmark.circle.fill"_s, green).pixmap(48, 48).toImage();
    const QColor centreLeft = image.pixelColor(6, 24);
    QCOMPARE(centreLeft.rgb(), green.rgb());
    QVERIFY(!SymbolIcons::hasBundledIcon(u"no.such.symbol"_s));
}

void TestTheme::bundledAssetsExist_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("the accent colour") << u":/assets/AccentColor.json"_s;
    QTest::newRow("the dark logo") << u":/assets/LogoDark.svg"_s;
    QTest::newRow("the light logo") << u":/assets/LogoLight.svg"_s;
}

void TestTheme::bundledAssetsExist()
{
    QFETCH(QString, path);
    QVERIFY(QFile::exists(path));
    if (path.endsWith(u".svg"_s)) {
        QVERIFY(QSvgRenderer(path).isValid());
        QVERIFY(paintedPixels(QIcon(path).pixmap(32, 32).toImage()) > 50);
    }
}

void TestTheme::colorsFollowTheAppearance_data()
{
    QTest::addColumn<bool>("isDark");
    QTest::newRow("light appearance") << false;
    QTest::newRow("dark appearance") << true;
}

void TestTheme::colorsFollowTheAppearance()
{
    QFETCH(bool, isDark);
    const QPalette original = QApplication::palette();
    const auto restore = qScopeGuard([&] { QApplication::setPalette(original); });
    QPalette light;
    light.setColor(QPalette::Window, QColor(0xF2, 0xF2, 0xF2));
    light.setColor(QPalette::WindowText, Qt::black);
    light.setColor(QPalette::Base, Qt::white);
    const QPalette palette = isDark ? uitest::darkPalette() : light;
    QApplication::setPalette(palette);

    QCOMPARE(AppColors::panelBackground(), palette.color(QPalette::Window));
    QCOMPARE(AppColors::sidebarBackground(), palette.color(QPalette::Base));
    QCOMPARE(AppColors::secondary().rgb(), palette.color(QPalette::WindowText).rgb());
    QVERIFY(AppColors::secondary().alphaF() < 1);
    QCOMPARE(AppColors::unchangedForeground(), AppColors::secondary());
    QCOMPARE(AppColors::changedForeground(), AppColors::accent());
    QCOMPARE(AppColors::conflictForeground(), AppColors::danger());
    QVERIFY(AppColors::success() != AppColors::warning());
    QVERIFY(AppColors::warning() != AppColors::danger());
}

void TestTheme::accentIsLighterOnADarkWindow()
{
    const QPalette original = QApplication::palette();
    const auto restore = qScopeGuard([&] { QApplication::setPalette(original); });
    QPalette light;
    light.setColor(QPalette::Window, QColor(0xF2, 0xF2, 0xF2));
    QApplication::setPalette(light);
    const QColor lightAccent = AppColors::accent();
    const QColor lightDanger = AppColors::danger();
    QApplication::setPalette(uitest::darkPalette());
    // The bundled accent and the status colours have a lighter variant so they keep their contrast.
    QVERIFY(AppColors::accent().lightness() > lightAccent.lightness());
    QVERIFY(AppColors::danger().lightness() > lightDanger.lightness());
}

void TestTheme::translucentColorsKeepTheirOpacity()
{
    QCOMPARE(AppColors::rowHover().rgb(), AppColors::accent().rgb());
    // Opacities are stored in 16 bits, so compare them in hundredths.
    const auto percent = [](const QColor &color) {
        return qRound(color.alphaF() * 100);
    };
    QCOMPARE(percent(AppColors::rowHover()), 8);
    QCOMPARE(percent(AppColors::rowSelected()), 15);
    QCOMPARE(AppColors::conflictBackground().rgb(), AppColors::danger().rgb());
    QCOMPARE(percent(AppColors::conflictBackground()), 10);
    QCOMPARE(percent(AppColors::withOpacity(Qt::red, 0.25)), 25);
}

void TestTheme::disabledTextComesFromThePalette_data()
{
    QTest::addColumn<bool>("hasDisabledColour");
    QTest::newRow("a palette's own colour for disabled text is used") << true;
    QTest::newRow("a palette without one gives the text colour faded") << false;
}

void TestTheme::disabledTextComesFromThePalette()
{
    QFETCH(bool, hasDisabledColour);
    const QPalette original = QApplication::palette();
    const auto restore = qScopeGuard([&] { QApplication::setPalette(original); });
    QPalette palette = uitest::darkPalette();
    if (!hasDisabledColour)
        palette.setColor(QPalette::WindowText, QColor(0xEC, 0xEC, 0xEE));
    QApplication::setPalette(palette);

    const QColor text = AppColors::disabledText();
    if (hasDisabledColour) {
        QCOMPARE(text, palette.color(QPalette::Disabled, QPalette::WindowText));
    } else {
        QCOMPARE(text.rgb(), palette.color(QPalette::WindowText).rgb());
        QVERIFY(text.alphaF() < 0.5);
    }
    QVERIFY(AppColors::disabledFill().hslSaturationF() < 0.1);
}

void TestTheme::disabledSymbolsAreDrawnInTheDisabledColour()
{
    const QPalette original = QApplication::palette();
    const auto restore = qScopeGuard([&] { QApplication::setPalette(original); });
    QApplication::setPalette(uitest::darkPalette());
    for (const QIcon &icon :
        {SymbolIcons::icon(u"arrow.uturn.backward"_s), SymbolIcons::icon(u"play.fill"_s, Qt::white)}) {
        const QImage image = icon.pixmap(QSize(48, 48), QIcon::Disabled).toImage();
        QVERIFY(paintedPixels(image) > 20);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (qAlpha(image.pixel(x, y)) == 255)
                    QCOMPARE(image.pixelColor(x, y).rgb(), AppColors::disabledText().rgb());
            }
        }
    }
}

void TestTheme::spacingScale()
{
    QCOMPARE(AppSpacing::xs, 4);
    QCOMPARE(AppSpacing::sm, 8);
    QCOMPARE(AppSpacing::md, 12);
    QCOMPARE(AppSpacing::lg, 16);
    QCOMPARE(AppSpacing::xl, 24);
}

void TestTheme::fontStyles()
{
    // Whichever family the system gives its monospaced font (some are not marked as fixed pitch), names drawn in
    // it line up: every character is as wide as every other.
    QVERIFY(hasEqualAdvances(AppFonts::mono()));
    QVERIFY(hasEqualAdvances(AppFonts::monoSmall()));
    QVERIFY(!hasEqualAdvances(AppFonts::body()));
    QVERIFY(AppFonts::monoSmall().pointSizeF() < AppFonts::mono().pointSizeF());
    QCOMPARE(AppFonts::label().weight(), QFont::Medium);
    QVERIFY(AppFonts::label().pointSizeF() < AppFonts::body().pointSizeF());
    QCOMPARE(AppFonts::sectionHeader().weight(), QFont::DemiBold);
    QCOMPARE(AppFonts::sectionHeader().pointSizeF(), AppFonts::caption().pointSizeF());
    QCOMPARE(AppFonts::headline().weight(), QFont::DemiBold);
    QVERIFY(AppFonts::caption2().pointSizeF() < AppFonts::caption().pointSizeF());
    QVERIFY(AppFonts::title3().pointSizeF() < AppFonts::title2().pointSizeF());
    QVERIFY(AppFonts::title2().pointSizeF() < AppFonts::title().pointSizeF());
}

void TestTheme::cardStyleGivesFillCornersAndShadow()
{
    QWidget card;
    card.setObjectName(u"card"_s);
    CardStyle::apply(&card);
    QVERIFY(card.styleSheet().contains(AppColors::sidebarBackground().name(QColor::HexArgb)));
    QVERIFY(card.styleSheet().contains(u"border-radius: 10px"_s));
    auto *shadow = qobject_cast<QGraphicsDropShadowEffect *>(card.graphicsEffect());
    QVERIFY(shadow);
    QCOMPARE(shadow->blurRadius(), 3.0);
    QCOMPARE(shadow->offset(), QPointF(0, 1));
    QCOMPARE(shadow->color().rgb(), QColor(Qt::black).rgb());
    QCOMPARE(qRound(shadow->color().alphaF() * 100), 6);
}

QTEST_MAIN(TestTheme)
#include "tst_theme.moc"
