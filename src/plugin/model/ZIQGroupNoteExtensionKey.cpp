#include "plugin/model/ZIQGroupNoteExtensionKey.h"

#include "plugin/model/ZIQGroupNoteJsonValue.h"

#include <cstdio>

namespace {

// Keys print the time as C's "%.0f" does, which rounds a tie to even (…122.5 gives …122);
// QString::asprintf rounds ties away from zero and would name a different key.
QString wholeMilliseconds(double timestampInMS)
{
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, "%.0f", timestampInMS);
    return QString::fromLatin1(buffer);
}

} // namespace

QString ZIQGroupNoteExtensionKey::entryKey(const QString &userID, double timestampInMS, qint64 keySeq)
{
    return entryKeyWithoutSeq(userID, timestampInMS) + QLatin1Char('_') + QString::number(keySeq);
}

QString ZIQGroupNoteExtensionKey::entryKeyWithoutSeq(const QString &userID, double timestampInMS)
{
    return userID + QLatin1Char('_') + wholeMilliseconds(timestampInMS);
}

bool ZIQGroupNoteExtensionKey::parseEntryKey(const QString &key, EntryKeyParts *parts)
{
    EntryKeyView view;
    if (!parseEntryKey(QStringView(key), &view))
        return false;
    *parts = { view.userID.toString(), view.timestampInMS, view.keySeq };
    return true;
}

bool ZIQGroupNoteExtensionKey::parseEntryKey(QStringView key, EntryKeyView *parts)
{
    const qsizetype seqSeparator = key.lastIndexOf(QLatin1Char('_'));
    if (seqSeparator < 0)
        return false;
    const QStringView rest = key.left(seqSeparator);
    const qsizetype timeSeparator = rest.lastIndexOf(QLatin1Char('_'));
    parts->keySeq = ZIQGroupNoteJsonValue::leadingInteger(key.mid(seqSeparator + 1));
    parts->timestampInMS = static_cast<double>(ZIQGroupNoteJsonValue::leadingInteger(rest.mid(timeSeparator + 1)));
    parts->userID = timeSeparator < 0 ? QStringView() : rest.left(timeSeparator);
    return true;
}

QString ZIQGroupNoteExtensionKey::generationBase(const QString &key)
{
    return key.size() < 2 ? QString() : key.left(key.size() - 2);
}

qint64 ZIQGroupNoteExtensionKey::generationOf(const QString &key)
{
    if (key.isEmpty())
        return 0;
    const QChar last = key.back();
    return last >= QLatin1Char('0') && last <= QLatin1Char('9') ? last.unicode() - u'0' : 0;
}

QString ZIQGroupNoteExtensionKey::keyWithGeneration(const QString &key, qint64 generation)
{
    return generationBase(key) + QLatin1Char('_') + QString::number(generation);
}

QString ZIQGroupNoteExtensionKey::nextGenerationKey(const QString &key)
{
    return keyWithGeneration(key, generationOf(key) + 1);
}

QString ZIQGroupNoteExtensionKey::firstGenerationKey(const QString &key)
{
    return keyWithGeneration(key, 0);
}
