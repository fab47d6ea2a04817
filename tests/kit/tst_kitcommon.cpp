// The kit's common basics: login with its success notification, JSON helpers on good and
// malformed input, toasts, and localized texts with their fallbacks in all three languages.
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQLogin.h"
#include "kit/common/ZIQTool.h"
#include "platform/NotificationCenter.h"
#include "platform/ToastCenter.h"
#include "sdk/MessagingServer.h"
#include "sdk/V2VORManager.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

namespace {

// Logs in as alice on `client` and returns what was heard, in order.
QStringList loginAsAlice(MessagingServer &server, V2VORManager *client)
{
    server.addUser(QStringLiteral("alice"), QStringLiteral("Alice"), QStringLiteral("file:///nonexistent/faces/alice.png"));
    V2VORManager::setSharedInstance(client);
    QObject observer;
    QStringList heard;
    platform::NotificationCenter::defaultCenter().addObserver(&observer, ZIQLoginSuccessNotification,
        [&](const platform::Notification &) { heard << QStringLiteral("notified as ") + ZIQLogin::getNickName(); });
    ZIQLogin::login(
        QStringLiteral("alice"), [&] { heard << QStringLiteral("succeeded"); },
        [&](int code, const QString &desc) { heard << QStringLiteral("failed %1 %2").arg(code).arg(desc); });
    if (!heard.isEmpty())
        return { QStringLiteral("answered inside the call") };
    [[maybe_unused]] const bool answered
        = QTest::qWaitFor([&] { return !heard.isEmpty() && !heard.last().startsWith(QLatin1String("notified")); });
    V2VORManager::setSharedInstance(nullptr);
    return heard;
}

// Every key the plug-in and the kit look up in "VORCommonLocalizable".
QStringList usedKeys()
{
    QStringList keys { QStringLiteral("ZIQKitMoreGroupNote"), QStringLiteral("ZIQPollDisplayString") };
    const QString note = QStringLiteral(
        " Deadline DeadlineMustBeLater DeadlineNotSet DeadlineSettings DescriptionHint DisplayString ExceedDeadline "
        "Expand FillIn FormatExample FormatHint HasStopped MessageTitle MessageTitleInfo MultipleSettings NotChanged "
        "NotifySettings Now Send SendFail SendSucceed Settings SubmitExceedLimit SubmitOnce TextFieldExceedLimit "
        "TipsMessagePrefix TitleHint _Send_Message_Fail_Desc _Set_Message_Extension_Fail_Desc");
    const QString picker = QStringLiteral("AM Cancel Confirm Day Done FRI Hour MON Minute Month Now PM SAT SUN Second "
                                          "THR TUE Today WED Year");
    for (const QString &suffix : note.split(QLatin1Char(' ')))
        keys << QStringLiteral("ZIQGroupNote") + suffix;
    for (const QString &suffix : picker.split(QLatin1Char(' ')))
        keys << QStringLiteral("ZIQGroupNoteNotDatePicker") + suffix;
    return keys;
}

} // namespace

class KitCommonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { ZIQGlobalization::setPreferredLanguage(QString()); }

    void loginNotifiesThenSucceedsOrFails()
    {
        MessagingServer server;
        V2VORManager client(&server);
        server.failNextCall(QStringLiteral("login"), 6206, QStringLiteral("sig expired"));
        QCOMPARE(loginAsAlice(server, &client), QStringList { QStringLiteral("failed 6206 sig expired") });
        QCOMPARE(loginAsAlice(server, &client),
            (QStringList { QStringLiteral("notified as Alice"), QStringLiteral("succeeded") }));
        // Without a messaging client there is nobody to log in with.
        QCOMPARE(loginAsAlice(server, nullptr), QStringList { QStringLiteral("failed -1 no messaging client") });
    }

    void jsonHelpers()
    {
        for (const QByteArray &bad : { QByteArray(), QByteArray("{\"title\": \"Lun"), QByteArray("[{}]") })
            QVERIFY2(ZIQTool::jsonData2Dictionary(bad).isEmpty(), bad.constData());
        const QJsonObject note { { QStringLiteral("title"), QStringLiteral("周五聚餐 🍜") },
            { QStringLiteral("content"), QJsonObject { { QStringLiteral("original_msg_seq"), 0 } } } };
        const QByteArray data = ZIQTool::dictionary2JsonData(note);
        QVERIFY(data.contains("\n    \"title\": \"周五聚餐 🍜\""));
        QCOMPARE(ZIQTool::jsonData2Dictionary(data), note);
    }

    void toastsShowForTheirDuration()
    {
        QSignalSpy shown(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);
        ZIQTool::makeToast(QStringLiteral("a"), 1.5, ZIQToastPosition::Top);
        ZIQTool::makeToast(QString());
        ZIQTool::makeToast(QStringLiteral("b"), std::numeric_limits<double>::quiet_NaN());
        QCOMPARE(shown.size(), 2);
        QCOMPARE(shown.at(0), (QVariantList { QStringLiteral("a"), 1500, int(platform::ToastPosition::Top) }));
        QCOMPARE(shown.at(1), (QVariantList { QStringLiteral("b"), 3000, int(platform::ToastPosition::Center) }));
    }

    void fallsBackToEnglishThenToTheKey()
    {
        // The test's own table "Fallback": Simplified Chinese lacks some English keys and has a
        // value that is not text; there is no Traditional Chinese file.
        auto text = [](const char *key) {
            return ZIQGlobalization::getLocalizedStringForKey(QLatin1String(key), QStringLiteral("Fallback"));
        };
        // The script tag decides over the region.
        ZIQGlobalization::setPreferredLanguage(QStringLiteral("zh-Hans-HK"));
        QCOMPARE(text("Greeting"), QStringLiteral("你好"));
        QCOMPARE(text("OnlyInEnglish"), QStringLiteral("English only"));
        QCOMPARE(text("NotText"), QStringLiteral("fine"));
        ZIQGlobalization::setPreferredLanguage(QStringLiteral("ZH-MO"));
        QCOMPARE(ZIQGlobalization::tk_localizableLanguageKey(), QStringLiteral("zh-Hant"));
        QCOMPARE(text("Greeting"), QStringLiteral("Hello"));
        QCOMPARE(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("NoSuchKey")), QStringLiteral("NoSuchKey"));
    }

    void everyKeyInEveryLanguage()
    {
        // Texts that take values, with the number of values each takes.
        const QHash<QString, int> formats { { QStringLiteral("ZIQGroupNoteMessageTitleInfo"), 2 },
            { QStringLiteral("ZIQGroupNoteTipsMessagePrefix"), 1 }, { QStringLiteral("ZIQGroupNoteDeadline"), 1 } };
        const QRegularExpression chinese(QStringLiteral("[\\x{4e00}-\\x{9fff}]"));
        for (const QString &language : { QStringLiteral("fr_FR"), QStringLiteral("zh_CN"), QStringLiteral("zh_TW") }) {
            ZIQGlobalization::setPreferredLanguage(language);
            for (const QString &key : usedKeys()) {
                const QString text = ZIQGlobalization::getLocalizedStringForKey(key);
                const QByteArray context = (language + QLatin1Char(' ') + key + QLatin1Char(' ') + text).toUtf8();
                QVERIFY2(text != key && !text.trimmed().isEmpty(), context);
                // A key a translation lacks would answer in English.
                QVERIFY2(text.contains(chinese) == language.startsWith(QLatin1String("zh")), context);
                for (int n = 1; n <= 2; ++n)
                    QVERIFY2(
                        text.contains(QLatin1Char('%') + QString::number(n)) == (n <= formats.value(key)), context);
            }
        }
    }
};

QTEST_GUILESS_MAIN(KitCommonTest)
#include "tst_kitcommon.moc"
