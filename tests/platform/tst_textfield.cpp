// The text field: what it reports while the user edits, where its text stands between the
// padding views, and how its placeholder and background are drawn.
#include "platform/SystemFont.h"
#include "platform/TextField.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using platform::TextField;

namespace {

// Columns of `image` holding a pixel close to `color`.
QList<int> columnsOf(const QImage &image, const QColor &color)
{
    QList<int> columns;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            const QColor pixel = image.pixelColor(x, y);
            if (qAbs(pixel.red() - color.red()) < 40 && qAbs(pixel.green() - color.green()) < 40
                && qAbs(pixel.blue() - color.blue()) < 40 && pixel.alpha() > 200) {
                columns.append(x);
                break;
            }
        }
    }
    return columns;
}

QWidget *paddingView(int width)
{
    auto *view = new QWidget;
    view->resize(width, 20);
    return view;
}

} // namespace

class TextFieldTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsEditsByTheUserOnly()
    {
        TextField field;
        QSignalSpy changed(&field, &TextField::editingChanged);
        field.setText(QStringLiteral("set by the program"));
        QCOMPARE(changed.count(), 0);
        field.clear();
        QTest::keyClicks(&field, QStringLiteral("ab"));
        QTest::keyClick(&field, Qt::Key_Backspace);
        QCOMPARE(changed,
            (QList<QVariantList> { { QStringLiteral("a") }, { QStringLiteral("ab") }, { QStringLiteral("a") } }));
    }

    // The padding views push the text and the placeholder in by their widths, on the side the
    // alignment puts each of them; without views the text starts at the edge (glyph bearings
    // aside).
    void paddingAndAlignment_data()
    {
        const QString arabic = QStringLiteral("سلام عليكم");
        QTest::addColumn<TextField::Alignment>("alignment");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("textOnRight");
        QTest::addColumn<bool>("placeholderOnRight");
        QTest::addColumn<int>("rightPadding"); // 0: the left view serves on the right too
        QTest::newRow("left") << TextField::Alignment::Left << "Milk" << false << false << 36;
        QTest::newRow("right, arabic") << TextField::Alignment::Right << arabic << true << true << 36;
        QTest::newRow("natural, arabic") << TextField::Alignment::Natural << arabic << true << false << 36;
        QTest::newRow("one view in both slots") << TextField::Alignment::Right << "Milk" << true << true << 0;
    }

    void paddingAndAlignment()
    {
        QFETCH(TextField::Alignment, alignment);
        QFETCH(QString, text);
        QFETCH(bool, textOnRight);
        QFETCH(bool, placeholderOnRight);
        QFETCH(int, rightPadding);
        auto makeField = [&](bool padded) {
            auto field = std::make_unique<TextField>();
            field->resize(200, 46);
            if (padded) {
                QWidget *left = paddingView(16);
                field->setLeftView(left);
                field->setRightView(rightPadding ? paddingView(rightPadding) : left);
            }
            field->setTextAlignment(alignment);
            field->setPlaceholderText(QStringLiteral("Fill in"));
            field->setPlaceholderColor(Qt::red);
            field->setPlaceholderFont(platform::SystemFont::bold(14));
            field->setTextColor(Qt::blue);
            return field;
        };
        // Where the drawing in `color` starts (left) or ends (right), and how far padding moves it.
        auto edge = [](QWidget &field, const QColor &color, bool right) {
            const QList<int> columns = columnsOf(field.grab().toImage(), color);
            return columns.isEmpty() ? -1 : right ? columns.last() : columns.first();
        };
        auto shift = [&](bool right) { return right ? -(rightPadding ? rightPadding : 16) : 16; };
        const auto plain = makeField(false);
        const auto padded = makeField(true);

        const int placeholder = edge(*padded, Qt::red, placeholderOnRight);
        QVERIFY(placeholder >= 0);
        QCOMPARE(placeholder - edge(*plain, Qt::red, placeholderOnRight), shift(placeholderOnRight));
        QCOMPARE(placeholder < 100, !placeholderOnRight);

        plain->setText(text);
        padded->setText(text);
        QCOMPARE(edge(*padded, Qt::red, false), -1);
        const int shown = edge(*padded, Qt::blue, textOnRight);
        const int unpadded = edge(*plain, Qt::blue, textOnRight);
        QVERIFY(shown >= 0);
        QVERIFY(qAbs(shown - unpadded - shift(textOnRight)) <= 1);
        QCOMPARE(shown < 100, !textOnRight);
        if (!textOnRight)
            QVERIFY2(unpadded <= 2, qPrintable(QString::number(unpadded)));
    }
};

QTEST_MAIN(TextFieldTest)
#include "tst_textfield.moc"
