// Reads arbitrary bytes as the value of a note's "config" extension. The settings read must be
// usable (a whole, non-negative deadline), must survive being written and read again, and must be
// what a merge of that extension installs on the note.
#include "FuzzCheck.h"
#include "FuzzSession.h"
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/model/ZIQGroupNoteInfo.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

bool sameSetting(const ZIQGroupNoteSetting &a, const ZIQGroupNoteSetting &b)
{
    return a.allowMultiSubmit() == b.allowMultiSubmit() && a.allowNotify() == b.allowNotify()
        && a.deadlineTimestampInMS() == b.deadlineTimestampInMS();
}

// Members the writer itself would produce are read exactly as written.
void checkAgainstDocument(const ZIQGroupNoteSetting &setting, const QByteArray &data)
{
    const QJsonObject config = QJsonDocument::fromJson(data).object();
    for (const auto &[key, flag] : { std::pair { QLatin1String("multi_submit"), setting.allowMultiSubmit() },
             std::pair { QLatin1String("notify"), setting.allowNotify() } }) {
        if (config.value(key).isBool())
            FUZZ_CHECK(flag == config.value(key).toBool(), key);
    }
    const QJsonValue deadline = config.value(QLatin1String("deadline"));
    // Below 2^53 every whole number of milliseconds is exact in a double.
    if (deadline.isDouble() && deadline.toDouble() >= 0 && deadline.toDouble() < 9007199254740992.0)
        FUZZ_CHECK(setting.deadlineTimestampInMS() == std::trunc(deadline.toDouble()),
            setting.deadlineTimestampInMS() << deadline);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    FuzzSession::startApplication(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const QByteArray data(reinterpret_cast<const char *>(bytes), qsizetype(size));
    const QString value = QString::fromUtf8(data);
    const ZIQGroupNoteSettingPtr setting = ZIQGroupNoteSetting::settingWithConfigValue(value);
    FUZZ_CHECK(setting, value);

    const double deadline = setting->deadlineTimestampInMS();
    FUZZ_CHECK(std::isfinite(deadline) && deadline >= 0 && deadline == std::trunc(deadline), deadline);
    checkAgainstDocument(*setting, value.toUtf8());

    const ZIQGroupNoteSettingPtr reread = ZIQGroupNoteSetting::settingWithConfigValue(setting->configValue());
    FUZZ_CHECK(sameSetting(*reread, *setting), setting->configValue());

    ZIQGroupNoteInfo note;
    note.mergeExtensionList({ { ZIQGroupNoteExtensionKey::configKey, value } });
    FUZZ_CHECK(sameSetting(*note.setting(), *setting), "the merge read the settings differently");
    FUZZ_CHECK(note.items().isEmpty(), "the settings were shown as an entry");
    return 0;
}
