#include "kit/common/ZIQGlobalization.h"

#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QLoggingCategory>

#include <algorithm>

// The tables are compiled into this static library and must be registered before the first
// read; the registration function lives outside any namespace.
static bool registerTables()
{
    Q_INIT_RESOURCE(VORCommonLocalizable);
    return true;
}

namespace {

Q_LOGGING_CATEGORY(lcGlobalization, "ziq.kit.globalization")

const QString English = QStringLiteral("en");
const QString SimplifiedChinese = QStringLiteral("zh-Hans");
const QString TraditionalChinese = QStringLiteral("zh-Hant");

using Table = QHash<QString, QString>;

// The script tag decides; without one, the regions that write Traditional Chinese do.
QString languageOfLocaleName(const QString &name)
{
    const QStringList parts = name.toLower().replace(QLatin1Char('_'), QLatin1Char('-')).split(QLatin1Char('-'));
    if (parts.value(0) != QLatin1String("zh"))
        return English;
    if (parts.contains(QLatin1String("hans")))
        return SimplifiedChinese;
    static const QStringList traditional { QStringLiteral("hant"), QStringLiteral("tw"), QStringLiteral("hk"),
        QStringLiteral("mo") };
    const bool isTraditional
        = std::any_of(parts.begin(), parts.end(), [](const QString &part) { return traditional.contains(part); });
    return isTraditional ? TraditionalChinese : SimplifiedChinese;
}

QString &chosenLanguage()
{
    static QString language;
    return language;
}

Table loadTable(const QString &bundle, const QString &language)
{
    static const bool registered = registerTables();
    Q_UNUSED(registered);
    QFile file(QStringLiteral(":/translations/%1/%2.json").arg(bundle, language));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    Table table;
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (it.value().isString())
            table.insert(it.key(), it.value().toString());
        else
            qCWarning(lcGlobalization) << "ignoring non-text entry" << it.key() << "of" << bundle << language;
    }
    return table;
}

// Tables are read once, on first use, and kept.
const Table &table(const QString &bundle, const QString &language)
{
    static QHash<QString, Table> tables;
    const QString id = bundle + QLatin1Char('/') + language;
    auto it = tables.find(id);
    if (it == tables.end())
        it = tables.insert(id, loadTable(bundle, language));
    return *it;
}

} // namespace

QString ZIQGlobalization::getLocalizedStringForKey(const QString &key, const QString &bundle)
{
    const QString language = getPreferredLanguage();
    auto found = table(bundle, language).constFind(key);
    if (found != table(bundle, language).constEnd())
        return *found;
    found = table(bundle, English).constFind(key);
    if (found != table(bundle, English).constEnd())
        return *found;
    return key;
}

QString ZIQGlobalization::getPreferredLanguage()
{
    if (!chosenLanguage().isEmpty())
        return chosenLanguage();
    return languageOfLocaleName(QLocale::system().uiLanguages().value(0));
}

void ZIQGlobalization::setPreferredLanguage(const QString &language)
{
    chosenLanguage() = language.isEmpty() ? QString() : languageOfLocaleName(language);
}

QString ZIQGlobalization::tk_localizableLanguageKey()
{
    return getPreferredLanguage();
}
