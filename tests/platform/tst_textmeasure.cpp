// Sizes measured without a view equal the sizes labels lay out, for Latin, Chinese, emoji and
// mixed text, so a cell measured ahead of time is exactly as tall as it draws.
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"

#include <QApplication>
#include <QGlyphRun>
#include <QLabel>
#include <QRawFont>
#include <QTest>
#include <QTextLayout>

#include <cmath>

using platform::SystemFont;
using platform::TextMeasure;

namespace {

const QString Latin = QStringLiteral("Bring a dish to share: salad, bread, dessert or drinks for the evening");
const QString Chinese = QStringLiteral("周六晚上聚餐，请大家写下自己带的菜和人数，谢谢配合");
const QString Emoji = QStringLiteral("🍕🍣🥗🍰🍷🎉🍕🍣🥗🍰🍷🎉🍕🍣🥗🍰🍷🎉");
const QString Mixed = QStringLiteral("Zhang 张三 brings 🍰 cake 和水果 for 12 people 🎉");

int labelHeight(const QString &text, const QFont &font, int width)
{
    QLabel label(text);
    label.setFont(font);
    label.setWordWrap(true);
    return label.heightForWidth(width);
}

} // namespace

class TextMeasureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equalsAWrappingLabel_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("pointSize");
        QTest::addColumn<int>("width");
        QTest::newRow("latin") << Latin << 14 << 214;
        QTest::newRow("chinese") << Chinese << 14 << 120;
        QTest::newRow("emoji") << Emoji << 14 << 214;
        QTest::newRow("mixed") << Mixed << 18 << 120;
    }

    void equalsAWrappingLabel()
    {
        QFETCH(QString, text);
        QFETCH(int, pointSize);
        QFETCH(int, width);
        for (const QFont &font : { SystemFont::regular(pointSize), SystemFont::bold(pointSize) }) {
            const QSizeF measured = TextMeasure::size(text, font, QSizeF(width, TextMeasure::Unbounded));
            QVERIFY(measured.width() <= width);
            QVERIFY2(measured.height() > 2 * QFontMetricsF(font).height(), "the text wraps");
            QCOMPARE(int(std::ceil(measured.height())), labelHeight(text, font, width));
        }
    }

    // The system font's fallbacks really draw Chinese and emoji: were a character without a
    // glyph, it would measure as a narrow box and every size above would be wrong.
    void fallbacksCoverChineseAndEmoji_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("family");
        QTest::newRow("latin") << QStringLiteral("Note") << QStringLiteral("Inter");
        QTest::newRow("chinese") << QStringLiteral("接龙") << QStringLiteral("Noto Sans CJK SC");
        QTest::newRow("emoji") << QStringLiteral("🎉") << QStringLiteral("Noto Color Emoji");
    }

    void fallbacksCoverChineseAndEmoji()
    {
        QFETCH(QString, text);
        QFETCH(QString, family);
        QTextLayout layout(text, SystemFont::regular(14));
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        const QList<QGlyphRun> runs = layout.glyphRuns();
        QCOMPARE(runs.size(), 1);
        QCOMPARE(runs.first().rawFont().familyName(), family);
        QVERIFY(!runs.first().glyphIndexes().contains(0)); // glyph 0 is the "missing" box
        QVERIFY(TextMeasure::singleLineSize(text, SystemFont::regular(14)).width() >= 14 * 0.5 * text.size());
    }

    void limitsAndLines()
    {
        const QFont font = SystemFont::regular(14);
        const qreal lineHeight = TextMeasure::singleLineSize(QStringLiteral("x"), font).height();
        QCOMPARE(TextMeasure::size(QString(), font, QSizeF(100, 100)), QSizeF(0, 0));

        // Without line fragments nothing wraps; only line breaks start a new line.
        const QSizeF oneLine = TextMeasure::size(Latin, font, QSizeF(100, TextMeasure::Unbounded), {});
        QVERIFY(oneLine.width() > 400);
        QCOMPARE(oneLine.height(), lineHeight);
        const QSizeF twoLines = TextMeasure::singleLineSize(QStringLiteral("first\r\nsecond"), font);
        QCOMPARE(twoLines.height(), 2 * lineHeight);
        QCOMPARE(twoLines.width(), TextMeasure::singleLineSize(QStringLiteral("second"), font).width());

        // A height limit keeps only the lines that fit, but never less than the first.
        const QSizeF wrapped = TextMeasure::size(Latin, font, QSizeF(120, TextMeasure::Unbounded));
        QVERIFY(wrapped.height() >= 4 * lineHeight);
        QCOMPARE(TextMeasure::size(Latin, font, QSizeF(120, 2.5 * lineHeight)).height(), 2 * lineHeight);
        QCOMPARE(TextMeasure::size(Latin, font, QSizeF(120, 3)).height(), lineHeight);

        // Remembered results are told apart by font, size and options.
        const QSizeF regular = TextMeasure::singleLineSize(Latin, font);
        QVERIFY(TextMeasure::singleLineSize(Latin, SystemFont::bold(14)).width() > regular.width());
        QVERIFY(TextMeasure::singleLineSize(Latin, SystemFont::regular(18)).width() > regular.width());
        QVERIFY(TextMeasure::size(Latin, font, QSizeF(100, TextMeasure::Unbounded)).height() > oneLine.height());
    }
};

QTEST_MAIN(TextMeasureTest)
#include "tst_textmeasure.moc"
