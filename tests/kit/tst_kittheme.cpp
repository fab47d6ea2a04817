// The kit's theme: colour and image lookups with their defaults, theme switches reaching bound
// widgets, the theme and image bundles compiled into the kit, and right-to-left strings.
#include "kit/common/ZIQConfig.h"
#include "kit/common/ZIQRTL.h"
#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"

#include <QApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int TestModule = 1 << 20;
constexpr int GroupNoteModule = 131072;
const QString GroupNoteTheme = QStringLiteral(":/ZIQGroupNoteTheme.bundle");

void writeFile(const QString &path, const QByteArray &data)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(data);
}

// Whether `icon` draws something at `size` points on a 3x screen.
bool drawsAt(const QIcon &icon, const QSize &size)
{
    const QImage image = icon.pixmap(size, 3.0).toImage();
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) > 0)
                return true;
    return false;
}

QJsonObject themeFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

} // namespace

class KitThemeTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private Q_SLOTS:
    void initTestCase()
    {
        // A module with a theme folder on disk; its dark theme lacks "only_light".
        const QJsonObject light { { "title", "#112233" }, { "bare", "445566" }, { "glass", "#80FF0000" },
            { "smudged", "blue-ish" }, { "only_light", "#010203" }, { "icon", "light_icon" }, { "lost", "missing.svg" },
            { "bad", "broken.svg" }};
        const QJsonObject dark { { "title", "#EEEEEE" }, { "icon", "dark_icon.png" } };
        writeFile(m_dir.filePath(QStringLiteral("light.json")), QJsonDocument(light).toJson());
        writeFile(m_dir.filePath(QStringLiteral("dark.json")), QJsonDocument(dark).toJson());
        writeFile(m_dir.filePath(QStringLiteral("broken.svg")), "<svg");
        QFile::copy(QStringLiteral(":/ZIQGroupNote.bundle/group_note_add.svg"), m_dir.filePath("light_icon.svg"));
        QImage png(10, 10, QImage::Format_ARGB32);
        png.fill(Qt::red);
        QVERIFY(png.save(m_dir.filePath(QStringLiteral("dark_icon.png"))));
        QVERIFY(png.scaled(30, 30).save(m_dir.filePath(QStringLiteral("dark_icon@3x.png"))));
        ZIQThemeManager::shareManager()->registerThemeResourcePath(m_dir.path(), TestModule);
        ZIQThemeManager::shareManager()->registerThemeResourcePath(GroupNoteTheme, GroupNoteModule);
    }

    void cleanup()
    {
        ZIQThemeManager::shareManager()->applyTheme(ZIQThemeLight);
        setRTLOption(false);
    }

    void colorLookup_data()
    {
        QTest::addColumn<QString>("theme");
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("module");
        QTest::addColumn<QString>("defaultColor");
        QTest::addColumn<QColor>("expected");
        const QString light = ZIQThemeLight, dark = ZIQThemeDark;
        QTest::newRow("themed") << light << "title" << TestModule << "#FFFFFF" << QColor(0x112233);
        QTest::newRow("themed without #") << light << "bare" << TestModule << "#FFFFFF" << QColor(0x445566);
        QTest::newRow("themed with alpha") << light << "glass" << TestModule << "#FFFFFF" << QColor(255, 0, 0, 128);
        QTest::newRow("dark") << dark << "title" << TestModule << "#FFFFFF" << QColor(0xEEEEEE);
        QTest::newRow("missing from dark") << dark << "only_light" << TestModule << "#147AFF" << QColor(0x147AFF);
        QTest::newRow("unreadable themed value") << light << "smudged" << TestModule << "#DDD" << QColor(0xDDDDDD);
        QTest::newRow("unregistered module") << light << "title" << 4 << "#F9F9F9" << QColor(0xF9F9F9);
        QTest::newRow("bad default") << light << "nope" << TestModule << "#12345" << QColor(Qt::transparent);
    }

    void colorLookup()
    {
        QFETCH(QString, theme);
        QFETCH(QString, key);
        QFETCH(int, module);
        QFETCH(QString, defaultColor);
        QFETCH(QColor, expected);
        ZIQThemeManager::shareManager()->applyTheme(theme);
        QCOMPARE(ZIQTheme::dynamicColor(key, module, defaultColor).rgba(), expected.rgba());
    }

    void imageLookup()
    {
        const QIcon fallback = ZIQConfig::defaultConfig().defaultAvatarImage();
        QVERIFY(drawsAt(fallback, QSize(40, 40)));
        auto image = [&](const char *key) { return ZIQTheme::dynamicImage(QLatin1String(key), TestModule, fallback); };
        QCOMPARE(image("nope").cacheKey(), fallback.cacheKey());
        QCOMPARE(image("lost").cacheKey(), fallback.cacheKey());
        QCOMPARE(image("bad").cacheKey(), fallback.cacheKey());
        QVERIFY(image("icon").cacheKey() != fallback.cacheKey());
        QCOMPARE(image("icon").pixmap(QSize(34, 34), 3.0).toImage().pixelColor(51, 51), QColor(Qt::white));

        // The dark icon is a PNG at 1x and 3x; a 3x screen draws the sharp one.
        ZIQThemeManager::shareManager()->applyTheme(ZIQThemeDark);
        const QPixmap dark = image("icon").pixmap(QSize(10, 10), 3.0);
        QCOMPARE(dark.size(), QSize(30, 30));
        QCOMPARE(dark.toImage().pixelColor(15, 15), QColor(Qt::red));
        QVERIFY(ZIQTheme::imageWithContentsOfFile(m_dir.filePath(QStringLiteral("broken"))).isNull());
    }

    void themeSwitchRecoloursBoundWidgets()
    {
        ZIQThemeManager *manager = ZIQThemeManager::shareManager();
        QPalette lightPalette = QApplication::palette();
        auto label = std::make_unique<QLabel>();
        int runs = 0;
        ZIQTheme::bind(
            label.get(),
            [&] {
                ++runs;
                QPalette palette = label->palette();
                palette.setColor(QPalette::WindowText, ZIQTheme::dynamicColor(QStringLiteral("title"), TestModule, {}));
                label->setPalette(palette);
            },
            ZIQTheme::Rebind::OnThemeAndPaletteChange);
        QCOMPARE(runs, 1);
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(0x112233));

        manager->applyTheme(ZIQThemeDark);
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(0xEEEEEE));
        QVERIFY(QApplication::palette().color(QPalette::Window).lightnessF() < 0.2);
        const int afterDark = runs;
        manager->applyTheme(ZIQThemeDark);
        QCOMPARE(runs, afterDark);

        manager->applyTheme(ZIQThemeLight);
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(0x112233));
        QCOMPARE(QApplication::palette().color(QPalette::Window), lightPalette.color(QPalette::Window));

        // A palette change from elsewhere re-applies the theme's colour over it.
        QPalette foreign = label->palette();
        foreign.setColor(QPalette::WindowText, Qt::green);
        label->setPalette(foreign);
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(0x112233));

        label.reset();
        const int beforeGone = runs;
        manager->applyTheme(ZIQThemeDark);
        QCOMPARE(runs, beforeGone);
    }

    // Both themes of the note's bundle hold the same keys, and every key resolves: colours to
    // a readable colour, images to something that draws on a 3x screen.
    void groupNoteThemesResolveEveryKey()
    {
        const QJsonObject light = themeFile(GroupNoteTheme + QStringLiteral("/light.json"));
        QVERIFY(light.size() > 30);
        QCOMPARE(themeFile(GroupNoteTheme + QStringLiteral("/dark.json")).keys(), light.keys());
        for (const QString &theme : { ZIQThemeLight, ZIQThemeDark }) {
            ZIQThemeManager::shareManager()->applyTheme(theme);
            for (const QString &key : light.keys()) {
                const QByteArray context = (theme + QLatin1Char(' ') + key).toUtf8();
                if (key.endsWith(QLatin1String("_img")))
                    QVERIFY2(drawsAt(ZIQTheme::dynamicImage(key, GroupNoteModule, {}), QSize(20, 20)), context);
                else
                    QVERIFY2(ZIQTheme::dynamicColor(key, GroupNoteModule, QStringLiteral("bad")).alpha(), context);
            }
            const QString more = QStringLiteral("service_more_group_note_img");
            QVERIFY(drawsAt(ZIQTheme::dynamicImage(more, ZIQThemeModuleCommon, {}), QSize(64, 64)));
        }
    }

    void rtlString_data()
    {
        QTest::addColumn<bool>("on");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const QString mark(QChar(0x200F));
        QTest::newRow("off") << false << "Alice, 3" << "Alice, 3";
        QTest::newRow("on") << true << "Alice, 3" << mark + "Alice, 3" + mark;
        QTest::newRow("wrapped already") << true << mark + "x" + mark << mark + "x" + mark;
        QTest::newRow("one mark only") << true << mark + "x" << mark + mark + "x" + mark;
    }

    void rtlString()
    {
        QFETCH(bool, on);
        QFETCH(QString, text);
        QFETCH(QString, expected);
        setRTLOption(on);
        QCOMPARE(::rtlString(text), expected);
    }
};

QTEST_MAIN(KitThemeTest)
#include "tst_kittheme.moc"
