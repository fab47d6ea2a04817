// Localized texts: the language chosen from locale names, lookups with their fallbacks, and
// tables that give every key the plug-in uses in all three languages.
#include "kit/common/ZIQGlobalization.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QRegularExpression>
#include <QTest>

namespace {

const QStringList Languages { QStringLiteral("en"), QStringLiteral("zh-Hans"), QStringLiteral("zh-Hant") };

// Every key the plug-in and the kit look up in "VORCommonLocalizable".
const QStringList UsedKeys = QStringLiteral(R"(
ZIQGroupNote ZIQGroupNoteDeadline ZIQGroupNoteDeadlineMustBeLater ZIQGroupNoteDeadlineNotSet
ZIQGroupNoteDeadlineSettings ZIQGroupNoteDescriptionHint ZIQGroupNoteDisplayString ZIQGroupNoteExceedDeadline
ZIQGroupNoteExpand ZIQGroupNoteFillIn ZIQGroupNoteFormatExample ZIQGroupNoteFormatHint ZIQGroupNoteHasStopped
ZIQGroupNoteMessageTitle ZIQGroupNoteMessageTitleInfo ZIQGroupNoteMultipleSettings ZIQGroupNoteNotChanged
ZIQGroupNoteNotDatePickerAM ZIQGroupNoteNotDatePickerCancel ZIQGroupNoteNotDatePickerConfirm
ZIQGroupNoteNotDatePickerDay ZIQGroupNoteNotDatePickerDone ZIQGroupNoteNotDatePickerFRI
ZIQGroupNoteNotDatePickerHour ZIQGroupNoteNotDatePickerMON ZIQGroupNoteNotDatePickerMinute
ZIQGroupNoteNotDatePickerMonth ZIQGroupNoteNotDatePickerNow ZIQGroupNoteNotDatePickerPM
ZIQGroupNoteNotDatePickerSAT ZIQGroupNoteNotDatePickerSUN ZIQGroupNoteNotDatePickerSecond
ZIQGroupNoteNotDatePickerTHR ZIQGroupNoteNotDatePickerTUE ZIQGroupNoteNotDatePickerToday
ZIQGroupNoteNotDatePickerWED ZIQGroupNoteNotDatePickerYear ZIQGroupNoteNotifySettings ZIQGroupNoteNow
ZIQGroupNoteSend ZIQGroupNoteSendFail ZIQGroupNoteSendSucceed ZIQGroupNoteSettings ZIQGroupNoteSubmitExceedLimit
ZIQGroupNoteSubmitOnce ZIQGroupNoteTextFieldExceedLimit ZIQGroupNoteTipsMessagePrefix ZIQGroupNoteTitleHint
ZIQGroupNote_Send_Message_Fail_Desc ZIQGroupNote_Set_Message_Extension_Fail_Desc ZIQKitMoreGroupNote
ZIQPollDisplayString
)")
                                 .split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);

QJsonObject tableOf(const QString &language)
{
    // A lookup registers the kit's compiled-in tables.
    ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNote"));
    QFile file(QStringLiteral(":/translations/VORCommonLocalizable/%1.json").arg(language));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    return error.error == QJsonParseError::NoError ? document.object() : QJsonObject();
}

} // namespace

class ZIQGlobalizationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void languageFromLocaleName_data();
    void languageFromLocaleName();
    void followsTheSystemByDefault();
    void looksTextsUpInTheLanguage_data();
    void looksTextsUpInTheLanguage();
    void fallsBackToEnglishThenToTheKey();
    void everyKeyInEveryLanguage();
    void formatsTakeTheirValues_data();
    void formatsTakeTheirValues();
};

void ZIQGlobalizationTest::cleanup()
{
    ZIQGlobalization::setPreferredLanguage(QString());
}

void ZIQGlobalizationTest::languageFromLocaleName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("language");

    QTest::newRow("English") << QStringLiteral("en") << QStringLiteral("en");
    QTest::newRow("French") << QStringLiteral("fr_FR") << QStringLiteral("en");
    QTest::newRow("C locale") << QStringLiteral("C") << QStringLiteral("en");
    QTest::newRow("Simplified") << QStringLiteral("zh-Hans") << QStringLiteral("zh-Hans");
    QTest::newRow("mainland") << QStringLiteral("zh_CN") << QStringLiteral("zh-Hans");
    QTest::newRow("Traditional") << QStringLiteral("zh-Hant") << QStringLiteral("zh-Hant");
    QTest::newRow("Taiwan") << QStringLiteral("zh_TW") << QStringLiteral("zh-Hant");
    QTest::newRow("Simplified in Hong Kong") << QStringLiteral("zh-Hans-HK") << QStringLiteral("zh-Hans");
    QTest::newRow("Hong Kong") << QStringLiteral("zh-HK") << QStringLiteral("zh-Hant");
    QTest::newRow("Macao, upper case") << QStringLiteral("ZH-MO") << QStringLiteral("zh-Hant");
}

void ZIQGlobalizationTest::languageFromLocaleName()
{
    QFETCH(QString, name);
    QFETCH(QString, language);
    ZIQGlobalization::setPreferredLanguage(name);
    QCOMPARE(ZIQGlobalization::getPreferredLanguage(), language);
    QCOMPARE(ZIQGlobalization::tk_localizableLanguageKey(), language);
}

void ZIQGlobalizationTest::followsTheSystemByDefault()
{
    if (QLocale::system().uiLanguages().value(0).startsWith(QLatin1String("zh")))
        QSKIP("runs under a non-Chinese system locale (ctest sets LANG=C.UTF-8)");
    ZIQGlobalization::setPreferredLanguage(QStringLiteral("zh-Hant"));
    ZIQGlobalization::setPreferredLanguage(QString());
    QCOMPARE(ZIQGlobalization::getPreferredLanguage(), QStringLiteral("en"));
}

void ZIQGlobalizationTest::looksTextsUpInTheLanguage_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");

    const QString notChanged = QStringLiteral("ZIQGroupNoteNotChanged");
    QTest::newRow("en") << QStringLiteral("en") << notChanged << QStringLiteral("Group note's content is not changed");
    QTest::newRow("zh-Hans") << QStringLiteral("zh-Hans") << QStringLiteral("ZIQGroupNoteSend")
                             << QStringLiteral("发送");
    QTest::newRow("zh-Hant") << QStringLiteral("zh-Hant") << QStringLiteral("ZIQGroupNoteSend")
                             << QStringLiteral("發送");
    QTest::newRow("Thursday is THR") << QStringLiteral("en") << QStringLiteral("ZIQGroupNoteNotDatePickerTHR")
                                     << QStringLiteral("Thu");
}

void ZIQGlobalizationTest::looksTextsUpInTheLanguage()
{
    QFETCH(QString, language);
    QFETCH(QString, key);
    QFETCH(QString, text);
    ZIQGlobalization::setPreferredLanguage(language);
    QCOMPARE(ZIQGlobalization::getLocalizedStringForKey(key), text);
    QCOMPARE(ZIQGlobalization::getLocalizedStringForKey(key, VORCommonLocalizable), text);
}

void ZIQGlobalizationTest::fallsBackToEnglishThenToTheKey()
{
    // The test's own table "Fallback" has a Simplified Chinese file lacking some English keys.
    const QString fallback = QStringLiteral("Fallback");
    ZIQGlobalization::setPreferredLanguage(QStringLiteral("zh-Hans"));
    QCOMPARE(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("Greeting"), fallback), QStringLiteral("你好"));
    QCOMPARE(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("OnlyInEnglish"), fallback),
        QStringLiteral("English only"));
    // A value that is not text counts as missing.
    QCOMPARE(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("NotText"), fallback), QStringLiteral("fine"));
    // No file for the language at all.
    ZIQGlobalization::setPreferredLanguage(QStringLiteral("zh-Hant"));
    QCOMPARE(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("Greeting"), fallback), QStringLiteral("Hello"));

    QCOMPARE(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("NoSuchKey")), QStringLiteral("NoSuchKey"));
    QCOMPARE(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteSend"), QStringLiteral("NoTable")),
        QStringLiteral("ZIQGroupNoteSend"));
    QCOMPARE(ZIQGlobalization::getLocalizedStringForKey(QString()), QString());
}

void ZIQGlobalizationTest::everyKeyInEveryLanguage()
{
    const QStringList englishKeys = tableOf(QStringLiteral("en")).keys();
    for (const QString &language : Languages) {
        const QJsonObject table = tableOf(language);
        QVERIFY2(!table.isEmpty(), qPrintable(language));
        QCOMPARE(table.keys(), englishKeys);
        for (const QString &key : UsedKeys) {
            const QString text = table.value(key).toString();
            QVERIFY2(!text.trimmed().isEmpty(), qPrintable(language + QLatin1Char(' ') + key));
            QVERIFY2(text != key, qPrintable(language + QLatin1Char(' ') + key));
        }
    }
}

void ZIQGlobalizationTest::formatsTakeTheirValues_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("placeholders");

    QTest::newRow("creator and count") << QStringLiteral("ZIQGroupNoteMessageTitleInfo") << 2;
    QTest::newRow("tips sender") << QStringLiteral("ZIQGroupNoteTipsMessagePrefix") << 1;
    QTest::newRow("deadline") << QStringLiteral("ZIQGroupNoteDeadline") << 1;
    QTest::newRow("plain text") << QStringLiteral("ZIQGroupNoteSend") << 0;
}

void ZIQGlobalizationTest::formatsTakeTheirValues()
{
    QFETCH(QString, key);
    QFETCH(int, placeholders);
    for (const QString &language : Languages) {
        ZIQGlobalization::setPreferredLanguage(language);
        const QString format = ZIQGlobalization::getLocalizedStringForKey(key);
        for (int n = 1; n <= 2; ++n) {
            const bool has = format.contains(QLatin1Char('%') + QString::number(n));
            QVERIFY2(has == (n <= placeholders), qPrintable(language + QLatin1Char(' ') + format));
        }
        QVERIFY2(!format.contains(QLatin1String("%@")) && !format.contains(QLatin1String("%d")), qPrintable(format));
    }
}

QTEST_GUILESS_MAIN(ZIQGlobalizationTest)
#include "tst_ziqglobalization.moc"
