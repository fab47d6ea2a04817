// The kit's JSON helpers on good and malformed input, and its toast through the platform.
#include "kit/common/ZIQTool.h"
#include "platform/ManualClock.h"
#include "platform/Toast.h"
#include "platform/ToastCenter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include <limits>

class ZIQToolTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsOnlyJsonObjects_data();
    void readsOnlyJsonObjects();
    void writesPrettyPrintedJsonThatReadsBack();
    void toastDuration_data();
    void toastDuration();
    void toastShownAndGoneAfterItsDuration();
};

void ZIQToolTest::readsOnlyJsonObjects_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QStringList>("keys");

    QTest::newRow("object") << QByteArray(R"({"title": "Lunch", "show_line_num": 3})")
                            << QStringList { QStringLiteral("show_line_num"), QStringLiteral("title") };
    QTest::newRow("empty object") << QByteArray("{}") << QStringList();
    QTest::newRow("empty data") << QByteArray() << QStringList();
    QTest::newRow("not JSON") << QByteArray("group_note") << QStringList();
    QTest::newRow("truncated") << QByteArray(R"({"title": "Lun)") << QStringList();
    QTest::newRow("trailing garbage") << QByteArray(R"({"a": 1} x)") << QStringList();
    QTest::newRow("array") << QByteArray(R"([{"a": 1}])") << QStringList();
    QTest::newRow("string") << QByteArray(R"("{\"a\": 1}")") << QStringList();
    QTest::newRow("null") << QByteArray("null") << QStringList();
    QTest::newRow("invalid UTF-8") << QByteArray("{\"a\": \"\xff\xfe\"}") << QStringList();
}

void ZIQToolTest::readsOnlyJsonObjects()
{
    QFETCH(QByteArray, data);
    QFETCH(QStringList, keys);
    QCOMPARE(ZIQTool::jsonData2Dictionary(data).keys(), keys);
}

void ZIQToolTest::writesPrettyPrintedJsonThatReadsBack()
{
    const QJsonObject note {
        { QStringLiteral("businessID"), QStringLiteral("group_note") },
        { QStringLiteral("title"), QStringLiteral("周五聚餐 🍜") },
        { QStringLiteral("content"), QJsonObject { { QStringLiteral("original_msg_seq"), 0 } } },
        { QStringLiteral("list"), QJsonArray { 1, 2 } },
    };
    const QByteArray data = ZIQTool::dictionary2JsonData(note);
    QVERIFY(data.contains("\n    \"businessID\": \"group_note\""));
    QCOMPARE(ZIQTool::jsonData2Dictionary(data), note);

    const QString text = ZIQTool::dictionary2JsonStr(note);
    QVERIFY(text.contains(QStringLiteral("周五聚餐 🍜")));
    QCOMPARE(text.toUtf8(), data);
    QCOMPARE(ZIQTool::dictionary2JsonStr({}).trimmed(), QStringLiteral("{\n}"));
}

void ZIQToolTest::toastDuration_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<int>("durationMs");

    QTest::newRow("fraction") << 1.5 << 1500;
    QTest::newRow("zero") << 0.0 << 3000;
    QTest::newRow("negative") << -2.0 << 3000;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 3000;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 3000;
}

void ZIQToolTest::toastDuration()
{
    QFETCH(double, seconds);
    QFETCH(int, durationMs);
    platform::ManualClock clock;
    QSignalSpy shown(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);
    ZIQTool::makeToast(QStringLiteral("hello"), seconds, ZIQToastPosition::Top);
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown.at(0).at(1).toInt(), durationMs);
    QCOMPARE(shown.at(0).at(2).toInt(), static_cast<int>(platform::ToastPosition::Top));
}

void ZIQToolTest::toastShownAndGoneAfterItsDuration()
{
    platform::ManualClock clock;
    QWidget window;
    window.show();
    QSignalSpy shown(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);

    ZIQTool::makeToast(QStringLiteral("Group note's content is not changed"));
    const QList<QVariant> expected { QStringLiteral("Group note's content is not changed"), 3000,
        static_cast<int>(platform::ToastPosition::Center) };
    QCOMPARE(shown.value(0), expected);
    QPointer<platform::Toast> toast = window.findChild<platform::Toast *>();
    QVERIFY(toast && toast->isVisible());
    clock.advance(3000);
    QTRY_VERIFY(toast.isNull());

    ZIQTool::makeToast(QString());
    QCOMPARE(shown.size(), 1);
}

QTEST_MAIN(ZIQToolTest)
#include "tst_ziqtool.moc"
