// The kit's theme: colour and image lookups with their defaults, theme switches reaching bound
// widgets, the theme and image bundles compiled into the kit, and right-to-left strings.
#include "kit/common/ZIQConfig.h"
#include "kit/common/ZIQRTL.h"
#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPainter>
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
            { "bad", "broken.svg" }, { "count", 3 } };
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
        QTest::newRow("missing, default without #") << light << "nope" << TestModule << "666666" << QColor(0x666666);
        QTest::newRow("unreadable themed value") << light << "smudged" << TestModule << "#DDD" << QColor(0xDDDDDD);
        QTest::newRow("not text") << light << "count" << TestModule << "#000000" << QColor(Qt::black);
        QTest::newRow("unregistered module") << light << "title" << 4 << "#F9F9F9" << QColor(0xF9F9F9);
        QTest::newRow("bad default") << light << "nope" << TestModule << "#12345" << QColor(Qt::transparent);
        QTest::newRow("empty default") << light << "nope" << TestModule << "" << QColor(Qt::transparent);
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
        QVERIFY(!fallback.isNull());
        auto image = [&](const char *key) { return ZIQTheme::dynamicImage(QLatin1String(key), TestModule, fallback); };
        QCOMPARE(image("nope").cacheKey(), fallback.cacheKey());
        QCOMPARE(image("lost").cacheKey(), fallback.cacheKey());
        QCOMPARE(image("bad").cacheKey(), fallback.cacheKey());
        QCOMPARE(image("title").cacheKey(), fallback.cacheKey());
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
        QCOMPARE(ZIQTheme::d_systemBlueColor(), QColor(0x0A84FF));
        const int afterDark = runs;
        manager->applyTheme(ZIQThemeDark);
        QCOMPARE(runs, afterDark);

        manager->applyTheme(ZIQThemeLight);
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(0x112233));
        QCOMPARE(QApplication::palette().color(QPalette::Window), lightPalette.color(QPalette::Window));
        QCOMPARE(ZIQTheme::d_systemBlueColor(), QColor(0x007AFF));

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

    void groupNoteThemesHoldEveryKey()
    {
        // The keys the note's screens look up, with the colour each draws in without a theme.
        const QStringList expected = QStringLiteral(
            "body_bg F9F9F9 header_bg F2F7FF header_note 147AFF header_title 000000 cell_desc 666666 cell_index 000000 "
            "cell_text 000000 cell_seperator DDDDDD now_text 000000 now_border DDDDDD detail_send_text FFFFFF "
            "detail_send_bg 147AFF detail_info_text 666666 detail_title_text 000000 detail_desc_text 666666 "
            "create_bg FFFFFF create_textfield_text 000000 create_textfield_bg F9F9F9 create_title_border EEEEEE "
            "create_title_text 333333 create_desc_text 999999 create_switch_fill 147AFF create_deadline_bg F2F7FF "
            "create_deadline_text 000000 create_eg_placeholder_text 999999 create_eg_text 999999 "
            "create_tab_line 147AFF create_tab_bottom_line EEEEEE create_tab_highlight_text 000000 "
            "create_tab_text 666666 date_picker_bg FFFFFF date_picker_text 000000 date_picker_seperator DDDDDD")
                                         .split(QLatin1Char(' '));
        const QJsonObject light = themeFile(GroupNoteTheme + QStringLiteral("/light.json"));
        const QJsonObject dark = themeFile(GroupNoteTheme + QStringLiteral("/dark.json"));
        for (int i = 0; i < expected.size(); i += 2) {
            const QString key = QStringLiteral("group_note_%1_color").arg(expected.at(i));
            QCOMPARE(light.value(key).toString(), QLatin1Char('#') + expected.at(i + 1));
        }
        for (const char *image : { "icon", "add", "add_disable", "repeat" })
            QVERIFY(light.contains(QStringLiteral("group_note_%1_img").arg(QLatin1String(image))));
        QCOMPARE(light.size(), expected.size() / 2 + 4);
        QCOMPARE(dark.keys(), light.keys());

        // Every value is readable; the colours go on a sheet, a light and a dark swatch per key.
        QImage swatches(QSize(420, 20 * light.size()), QImage::Format_RGB32);
        swatches.fill(Qt::white);
        QPainter painter(&swatches);
        for (const QString &theme : { ZIQThemeLight, ZIQThemeDark }) {
            ZIQThemeManager::shareManager()->applyTheme(theme);
            const int x = theme == ZIQThemeLight ? 340 : 380;
            for (int row = 0; row < light.size(); ++row) {
                const QString key = light.keys().at(row);
                const QByteArray context = (theme + QLatin1Char(' ') + key).toUtf8();
                painter.drawText(4, row * 20 + 15, key);
                if (key.endsWith(QLatin1String("_img"))) {
                    const QIcon image = ZIQTheme::dynamicImage(key, GroupNoteModule, {});
                    QVERIFY2(drawsAt(image, QSize(20, 20)), context);
                    painter.fillRect(x, row * 20, 40, 20, theme == ZIQThemeLight ? Qt::white : Qt::black);
                    image.paint(&painter, x + 10, row * 20, 20, 20);
                    continue;
                }
                const QColor color = ZIQTheme::dynamicColor(key, GroupNoteModule, QStringLiteral("bad"));
                QVERIFY2(color.alpha(), context);
                painter.fillRect(x, row * 20, 40, 20, color);
            }
            QVERIFY(
                drawsAt(ZIQTheme::dynamicImage(QStringLiteral("service_more_group_note_img"), ZIQThemeModuleCommon, {}),
                    QSize(64, 64)));
        }
        painter.end();
        QVERIFY(
            swatches.save(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("theme-colours.png"))));
    }

    // Draws every bundle image at 3x, the dark theme's over a dark ground, into one sheet.
    void bundleImagesDraw()
    {
        struct Image
        {
            QString light;
            QString dark;
            QSize size;
        };
        const QString note = QStringLiteral(":/ZIQGroupNote.bundle/"), noteDark = GroupNoteTheme + "/dark/";
        const QString common = QStringLiteral(":/VORCommon.bundle/"), commonDark = ":/VORCommonTheme.bundle/dark/";
        const QList<Image> images { { note + "group_note_icon", GroupNoteTheme + "/light/group_note_icon", { 16, 16 } },
            { note + "group_note_add", noteDark + "group_note_add", { 34, 34 } },
            { note + "group_note_add_disable", noteDark + "group_note_add_disable", { 34, 34 } },
            { note + "group_note_repeat", noteDark + "group_note_repeat", { 20, 20 } },
            { common + "more_group_note", commonDark + "more_group_note", { 64, 64 } },
            { common + "default_avatar", common + "default_avatar", { 40, 40 } } };

        constexpr int Cell = 80;
        QImage sheet(QSize(Cell * images.size(), Cell * 2) * 3, QImage::Format_ARGB32);
        sheet.setDevicePixelRatio(3);
        sheet.fill(QColor(0xF2F2F7));
        QPainter painter(&sheet);
        painter.fillRect(QRect(0, Cell, Cell * images.size(), Cell), Qt::black);
        for (int row = 0; row < 2; ++row) {
            for (int column = 0; column < images.size(); ++column) {
                const Image &image = images.at(column);
                const QString path = row ? image.dark : image.light;
                const QIcon icon = ZIQTheme::imageWithContentsOfFile(path);
                QVERIFY2(drawsAt(icon, image.size), qPrintable(path));
                const QPoint corner(
                    column * Cell + (Cell - image.size.width()) / 2, row * Cell + (Cell - image.size.height()) / 2);
                icon.paint(&painter, QRect(corner, image.size));
            }
        }
        painter.end();
        QVERIFY(sheet.save(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("resources.png"))));
    }

    void rtlString_data()
    {
        QTest::addColumn<bool>("on");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const QString mark(QChar(0x200F));
        QTest::newRow("off") << false << "Alice, 3"
                             << "Alice, 3";
        QTest::newRow("on") << true << "Alice, 3" << mark + "Alice, 3" + mark;
        QTest::newRow("empty") << true << ""
                               << "";
        QTest::newRow("wrapped already") << true << mark + "x" + mark << mark + "x" + mark;
        QTest::newRow("one mark only") << true << mark + "x" << mark + mark + "x" + mark;
    }

    void rtlString()
    {
        QFETCH(bool, on);
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QVERIFY(!getRTLOption());
        setRTLOption(on);
        QCOMPARE(getRTLOption(), on);
        QCOMPARE(::rtlString(text), expected);
    }
};

QTEST_MAIN(KitThemeTest)
#include "tst_kittheme.moc"
