// Decodes arbitrary bytes into a note message's extension list (entry keys of members and
// strangers, user IDs with underscores, keys without any, huge times and generations, settings,
// deletion markers, repeated keys and the keys the sequence path writes) and merges it into a
// note, member names included. The merged note must be one a card can show: numbered 1..n in
// time order, no deleted entry shown, authors counted once, names only for members, and the
// same after the redundant generations are cleaned up.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "FuzzSession.h"
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/model/ZIQGroupNoteInfo.h"

#include <QSet>

#include <array>
#include <cmath>

using Key = ZIQGroupNoteExtensionKey;

namespace {

QString userID(FuzzInput &in)
{
    static const std::array<const char *, 7> pool { "alice", "bob", "a_b", "carol", "", "x_1_2", "李雷" };
    const unsigned choice = in.pick(pool.size() + 1);
    return choice < pool.size() ? QString::fromUtf8(pool[choice]) : in.text();
}

QString timestamp(FuzzInput &in)
{
    switch (in.pick(4)) {
    case 0:
        return QString::number(1700000000000 + qint64(in.integer(2)));
    case 1:
        return QString::number(in.integer()); // beyond 2^63, where a read must clamp
    case 2:
        return QStringLiteral("-") + QString::number(in.integer(4));
    default:
        return in.text();
    }
}

QString generation(FuzzInput &in)
{
    const unsigned choice = in.pick(14);
    // 10 and above are misread from their last digit; the last choices are far beyond any count.
    if (choice < 12)
        return QString::number(choice);
    return choice == 12 ? QString::number(in.integer()) + QString::number(in.integer()) : in.text();
}

QString entryKey(FuzzInput &in)
{
    return userID(in) + u'_' + timestamp(in) + u'_' + generation(in);
}

QString value(FuzzInput &in)
{
    return in.pick(4) == 0 ? Key::deletedMarker : in.text();
}

QString configValue(FuzzInput &in)
{
    if (in.pick(2) == 0)
        return in.text();
    return QStringLiteral(R"({"multi_submit": %1, "notify": %2, "deadline": %3})")
        .arg(in.pick(2) ? u"true" : u"false", in.pick(2) ? u"true" : u"false", QString::number(in.integer()));
}

QString earlierKey(FuzzInput &in, const QList<V2VORMessageExtension> &list)
{
    return list.isEmpty() ? entryKey(in) : list[in.pick(unsigned(std::min<qsizetype>(list.size(), 256)))].extensionKey;
}

QList<V2VORMessageExtension> decode(FuzzInput &in)
{
    QList<V2VORMessageExtension> list;
    while (!in.atEnd()) {
        switch (in.pick(7)) {
        case 0:
        case 1:
            list.append({ entryKey(in), value(in) });
            break;
        case 2:
            list.append({ Key::configKey, configValue(in) });
            break;
        case 3: // anything at all, keys without underscores included
            list.append({ in.text(), in.text() });
            break;
        case 4: // the same key again
            list.append({ earlierKey(in, list), value(in) });
            break;
        case 5: // a modification or deletion through the sequence path
            list.append({ Key::nextGenerationKey(earlierKey(in, list)), value(in) });
            break;
        default: // an addition through the sequence path ("config" becomes "conf_0")
            list.append({ Key::firstGenerationKey(earlierKey(in, list)), value(in) });
            break;
        }
    }
    return list;
}

struct Merge
{
    ZIQGroupNoteInfoPtr note;
    ZIQGroupNoteSettingPtr initialSetting;
};

constexpr qint64 initialLastIndex = 77;

Merge merge(const QList<V2VORMessageExtension> &list)
{
    Merge result { std::make_shared<ZIQGroupNoteInfo>(), std::make_shared<ZIQGroupNoteSetting>(true, false, 5) };
    auto message = std::make_shared<V2VORMessage>();
    message->setGroupID(FuzzSession::groupID());
    result.note->setMessage(message);
    result.note->setSetting(result.initialSetting);
    result.note->setLastIndex(initialLastIndex);

    int calls = 0;
    result.note->updateWithExtensionList(list, [&calls](int code, const QString &desc) {
        FUZZ_CHECK(code == 0 && desc.isEmpty(), code << desc);
        ++calls;
    });
    FUZZ_CHECK(FuzzSession::drainUntil([&calls] { return calls > 0; }) && calls == 1, calls);
    return result;
}

bool isLiveEntry(const V2VORMessageExtension &extension, const QSet<QString> &redundant)
{
    return extension.extensionKey != Key::configKey && extension.extensionKey.contains(u'_')
        && extension.extensionValue != Key::deletedMarker && !redundant.contains(extension.extensionKey);
}

void checkRedundantKeys(const QList<V2VORMessageExtension> &list, const QStringList &redundant)
{
    // A key is superseded only by a newer generation of the same entry that is in the list.
    for (const QString &key : redundant) {
        FUZZ_CHECK(key != Key::configKey, redundant);
        const bool superseded = std::any_of(list.begin(), list.end(), [&key](const V2VORMessageExtension &other) {
            return other.extensionKey != Key::configKey
                && Key::generationBase(other.extensionKey) == Key::generationBase(key)
                && Key::generationOf(other.extensionKey) > Key::generationOf(key);
        });
        FUZZ_CHECK(superseded, key);
    }
}

void checkSetting(const Merge &merged, const QList<V2VORMessageExtension> &list)
{
    const auto config = std::find_if(list.rbegin(), list.rend(),
        [](const V2VORMessageExtension &extension) { return extension.extensionKey == Key::configKey; });
    const ZIQGroupNoteSettingPtr setting = merged.note->setting();
    if (config == list.rend()) {
        FUZZ_CHECK(setting == merged.initialSetting, "a list without settings replaced them");
        return;
    }
    const ZIQGroupNoteSettingPtr expected = ZIQGroupNoteSetting::settingWithConfigValue(config->extensionValue);
    FUZZ_CHECK(setting->allowMultiSubmit() == expected->allowMultiSubmit()
            && setting->allowNotify() == expected->allowNotify()
            && setting->deadlineTimestampInMS() == expected->deadlineTimestampInMS(),
        config->extensionValue);
}

void checkItems(const ZIQGroupNoteInfo &note, const QList<V2VORMessageExtension> &list, const QSet<QString> &redundant)
{
    const QList<ZIQGroupNoteItemPtr> &items = note.items();
    const auto live = std::count_if(list.begin(), list.end(),
        [&redundant](const V2VORMessageExtension &extension) { return isLiveEntry(extension, redundant); });
    FUZZ_CHECK(items.size() == live, items.size() << live);
    FUZZ_CHECK(note.previewItems() == items, "the card's rows are not the note's entries");
    FUZZ_CHECK(note.lastIndex() == (items.isEmpty() ? initialLastIndex : items.size()), note.lastIndex());

    const QHash<QString, QString> names = FuzzSession::memberNames();
    QSet<QString> authors;
    bool mine = false;
    for (qsizetype i = 0; i < items.size(); ++i) {
        const ZIQGroupNoteItem &item = *items[i];
        FUZZ_CHECK(item.index() == i + 1, item.index() << i);
        FUZZ_CHECK(item.content() != Key::deletedMarker, item.key());
        FUZZ_CHECK(std::isfinite(item.timestampInMS()), item.key());
        if (i > 0)
            FUZZ_CHECK(items[i - 1]->timestampInMS() <= item.timestampInMS(), "entries out of time order");
        FUZZ_CHECK(item.userName() == names.value(item.userID()), item.userID() << item.userName());
        authors.insert(item.userID());
        mine = mine || item.userID() == FuzzSession::currentUserID();
    }
    FUZZ_CHECK(note.paticipantCount() == quint64(authors.size()), note.paticipantCount() << authors.size());
    FUZZ_CHECK(note.isMyselfSubmitted() == mine, "own entry flag");
}

QStringList keysAndContents(const ZIQGroupNoteInfo &note)
{
    QStringList rows;
    for (const ZIQGroupNoteItemPtr &item : note.items())
        rows.append(item->key() + u'=' + item->content());
    rows.sort();
    return rows;
}

// The client deletes superseded generations after a fetch; what the note shows must not change.
void checkCleanUp(
    const ZIQGroupNoteInfo &note, const QList<V2VORMessageExtension> &list, const QSet<QString> &redundant)
{
    QList<V2VORMessageExtension> cleaned;
    for (const V2VORMessageExtension &extension : list) {
        if (!redundant.contains(extension.extensionKey))
            cleaned.append(extension);
    }
    const Merge again = merge(cleaned);
    FUZZ_CHECK(again.note->redundantKeysInExtensionList().isEmpty(), again.note->redundantKeysInExtensionList());
    FUZZ_CHECK(keysAndContents(*again.note) == keysAndContents(note), "cleaning up changed the entries");
}

// Deleting a live entry through the sequence path (its next generation holding the marker) hides
// every live key of that entry and nothing else.
void checkSequenceDeletion(
    const ZIQGroupNoteInfo &note, QList<V2VORMessageExtension> list, const QSet<QString> &redundant)
{
    const auto target = std::find_if(list.begin(), list.end(), [&redundant](const V2VORMessageExtension &extension) {
        return isLiveEntry(extension, redundant) && Key::generationOf(extension.extensionKey) < 9;
    });
    if (target == list.end())
        return;
    const QString base = Key::generationBase(target->extensionKey);
    const auto hidden = std::count_if(list.begin(), list.end(), [&](const V2VORMessageExtension &extension) {
        return isLiveEntry(extension, redundant) && Key::generationBase(extension.extensionKey) == base;
    });
    list.append({ Key::nextGenerationKey(target->extensionKey), Key::deletedMarker });
    const Merge deleted = merge(list);
    FUZZ_CHECK(deleted.note->items().size() == note.items().size() - hidden,
        deleted.note->items().size() << note.items().size() << hidden);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    FuzzSession::startGroup(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    FuzzInput in(bytes, size);
    const QList<V2VORMessageExtension> list = decode(in);
    const Merge merged = merge(list);
    const QStringList redundantKeys = merged.note->redundantKeysInExtensionList();
    const QSet<QString> redundant(redundantKeys.begin(), redundantKeys.end());

    checkRedundantKeys(list, redundantKeys);
    checkSetting(merged, list);
    checkItems(*merged.note, list, redundant);
    checkCleanUp(*merged.note, list, redundant);
    checkSequenceDeletion(*merged.note, list, redundant);
    return 0;
}
