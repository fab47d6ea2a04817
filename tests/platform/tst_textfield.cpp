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

    void returnReportsThenResigns()
    {
        QWidget window;
        auto *field = new TextField(&window);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QVERIFY(field->becomeFirstResponder());
        QVERIFY(field->isFirstResponder());
        bool focusedWhenReported = false;
        connect(field, &TextField::returnPressed, this, [&] { focusedWhenReported = field->hasFocus(); });
        QTest::keyClick(field, Qt::Key_Return);
        QVERIFY(focusedWhenReported);
        QVERIFY(!field->isFirstResponder());
        field->setEnabled(false);
        QVERIFY(!field->becomeFirstResponder());
    }

    // The padding views push the text and the placeholder in by their widths, on the side the
    // alignment puts them; without views the text starts at the edge (glyph bearings aside).
    void paddingAndPlaceholder_data()
    {
        QTest::addColumn<bool>("sameViewBothSides");
        QTest::addColumn<Qt::Alignment>("alignment");
        QTest::addColumn<int>("shift"); // expected move of the text, rightwards
        QTest::newRow("left to right") << false << Qt::Alignment(Qt::AlignLeft) << 16;
        QTest::newRow("right to left") << false << Qt::Alignment(Qt::AlignRight) << -36;
        QTest::newRow("one view in both slots") << true << Qt::Alignment(Qt::AlignRight) << -16;
    }

    void paddingAndPlaceholder()
    {
        QFETCH(bool, sameViewBothSides);
        QFETCH(Qt::Alignment, alignment);
        QFETCH(int, shift);
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
        const bool leftAligned = alignment & Qt::AlignLeft;
        auto edge = [&](const QList<int> &columns) { return leftAligned ? columns.first() : columns.last(); };
        const auto plain = makeField(false);
        const auto padded = makeField(true);
        QCOMPARE(padded->leftView() == padded->rightView(), sameViewBothSides);

        const QList<int> plainPlaceholder = columnsOf(plain->grab().toImage(), Qt::red);
        const QList<int> placeholder = columnsOf(padded->grab().toImage(), Qt::red);
        QVERIFY(!placeholder.isEmpty() && !plainPlaceholder.isEmpty());
        QCOMPARE(edge(placeholder) - edge(plainPlaceholder), shift);

        plain->setText(QStringLiteral("Milk"));
        padded->setText(QStringLiteral("Milk"));
        const QImage filled = padded->grab().toImage();
        QVERIFY(columnsOf(filled, Qt::red).isEmpty());
        const QList<int> text = columnsOf(filled, Qt::blue);
        const QList<int> plainText = columnsOf(plain->grab().toImage(), Qt::blue);
        QVERIFY(!text.isEmpty() && !plainText.isEmpty());
        QVERIFY(qAbs(edge(text) - edge(plainText) - shift) <= 1);
        if (leftAligned)
            QVERIFY2(plainText.first() <= 2, qPrintable(QString::number(plainText.first())));
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
