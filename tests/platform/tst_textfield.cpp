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
        QCOMPARE(changed.count(), 3);
        QCOMPARE(changed.at(0).at(0).toString(), QStringLiteral("a"));
        QCOMPARE(changed.at(1).at(0).toString(), QStringLiteral("ab"));
        QCOMPARE(changed.at(2).at(0).toString(), QStringLiteral("a"));
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
        QTest::addColumn<bool>("sameViewBothSides");
        QTest::newRow("left") << TextField::Alignment::Left << "Milk" << false << false << false;
        QTest::newRow("right, arabic") << TextField::Alignment::Right << arabic << true << true << false;
        QTest::newRow("natural, arabic") << TextField::Alignment::Natural << arabic << true << false << false;
        QTest::newRow("one view in both slots") << TextField::Alignment::Right << "Milk" << true << true << true;
    }

    void paddingAndAlignment()
    {
        QFETCH(TextField::Alignment, alignment);
        QFETCH(QString, text);
        QFETCH(bool, textOnRight);
        QFETCH(bool, placeholderOnRight);
        QFETCH(bool, sameViewBothSides);
        auto makeField = [&](bool padded) {
            auto field = std::make_unique<TextField>();
            field->resize(200, 46);
            if (padded) {
                QWidget *leftView = paddingView(16);
                field->setLeftView(leftView);
                field->setRightView(sameViewBothSides ? leftView : paddingView(36));
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
        auto shift = [&](bool right) { return right ? (sameViewBothSides ? -16 : -36) : 16; };
        const auto plain = makeField(false);
        const auto padded = makeField(true);
        QCOMPARE(padded->leftView() == padded->rightView(), sameViewBothSides);

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

    void roundedTranslucentBackground()
    {
        TextField field;
        field.resize(100, 46);
        field.setBackgroundColor(QColor(0xF9, 0xF9, 0xF9, 230));
        field.setCornerRadius(8);
        QImage image(field.size(), QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        field.render(&image, QPoint(), QRegion(), QWidget::DrawChildren); // no window background
        QCOMPARE(image.pixelColor(50, 23).alpha(), 230);
        QCOMPARE(image.pixelColor(50, 23).red(), 0xF9);
        QCOMPARE(image.pixelColor(0, 0).alpha(), 0); // outside the rounded corner
    }
};

QTEST_MAIN(TextFieldTest)
#include "tst_textfield.moc"
