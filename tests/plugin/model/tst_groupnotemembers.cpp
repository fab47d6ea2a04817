// What the note knows of the people behind it: the current user's flags and the authors' names
// from the group member look-up.
#include "plugin/model/ZIQGroupNoteInfo.h"
#include "support/GroupFixture.h"

#include <QTest>

namespace {

V2VORMessagePtr noteMessage(const QString &groupID, const QByteArray &body = "{}")
{
    auto message = std::make_shared<V2VORMessage>();
    message->setGroupID(groupID);
    message->setElemType(V2VOR_ELEM_TYPE_CUSTOM);
    message->setCustomElem(std::make_unique<V2VORCustomElem>(V2VORCustomElem { body, {}, {} }));
    return message;
}

QList<V2VORMessageExtension> entriesBy(const QStringList &userIDs)
{
    QList<V2VORMessageExtension> list;
    for (qsizetype i = 0; i < userIDs.size(); ++i)
        list.append({ QStringLiteral("%1_%2_0").arg(userIDs[i]).arg(1700000000000 + i), userIDs[i] + "'s" });
    return list;
}

QStringList userNames(const QList<ZIQGroupNoteItemPtr> &items)
{
    QStringList names;
    for (const ZIQGroupNoteItemPtr &item : items)
        names.append(item->userName());
    return names;
}

} // namespace

class TestGroupNoteMembers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void currentUserFlags()
    {
        GroupFixture group;
        QVERIFY(group.isReady());
        group.actAs(QStringLiteral("alice"));
        const auto mine
            = ZIQGroupNoteInfo::initWithMessage(noteMessage(group.groupID(), R"({"content": {"creator": "alice"}})"));
        const auto bobs
            = ZIQGroupNoteInfo::initWithMessage(noteMessage(group.groupID(), R"({"content": {"creator": "bob"}})"));
        QVERIFY(mine->isCreatedByMyself());
        QVERIFY(!bobs->isCreatedByMyself());

        bobs->setSetting(std::make_shared<ZIQGroupNoteSetting>(false, true, 0));
        bobs->mergeExtensionList(entriesBy({ "bob", "carol" }));
        QVERIFY(!bobs->isMyselfSubmitted());
        QVERIFY(bobs->canSubmit());
        bobs->mergeExtensionList(entriesBy({ "bob", "alice" }));
        QVERIFY(bobs->isMyselfSubmitted());
        QVERIFY(!bobs->canSubmit());
        QVERIFY(bobs->didSubmitOnce());
    }

    void namesFromMemberLookUp()
    {
        GroupFixture group;
        QVERIFY(group.isReady());
        group.addOutsider(QStringLiteral("dave"));
        group.server()->setNameCard(group.groupID(), QStringLiteral("alice"), QStringLiteral("Ali"));
        group.server()->setFriendRemark(QStringLiteral("carol"), QStringLiteral("bob"), QStringLiteral("Bobby"));
        group.actAs(QStringLiteral("carol"));
        auto info = ZIQGroupNoteInfo::initWithMessage(noteMessage(group.groupID()));
        int completions = 0;
        info->updateWithExtensionList(
            entriesBy({ "alice", "bob", "carol", "dave", "alice" }), [&completions](int code, const QString &desc) {
                QCOMPARE(code, 0);
                QCOMPARE(desc, QString());
                ++completions;
            });
        QTRY_COMPARE(completions, 1);
        QCOMPARE(userNames(info->items()), (QStringList { "Ali", "Bobby", "Carol", "", "Ali" }));
    }

    void failedLookUpStillCompletes()
    {
        GroupFixture group;
        QVERIFY(group.isReady());
        group.actAs(QStringLiteral("alice"));
        group.server()->failNextCall(QStringLiteral("getGroupMembersInfo"), 10007, QStringLiteral("denied"));
        auto info = ZIQGroupNoteInfo::initWithMessage(noteMessage(group.groupID()));
        QList<std::pair<int, QString>> calls;
        info->updateWithExtensionList(entriesBy({ "bob" }), [&calls](int code, const QString &desc) {
            calls.append({ code, desc });
        });
        QTRY_COMPARE(calls.size(), 1);
        QCOMPARE(calls.first(), std::make_pair(0, QString()));
        QCOMPARE(userNames(info->items()), QStringList { QString() });
        QCOMPARE(group.server()->callCount(QStringLiteral("getGroupMembersInfo")), 1);
    }

    void noteGoneBeforeTheAnswer()
    {
        GroupFixture group;
        QVERIFY(group.isReady());
        group.actAs(QStringLiteral("alice"));
        auto info = ZIQGroupNoteInfo::initWithMessage(noteMessage(group.groupID()));
        bool completed = false;
        info->updateWithExtensionList(entriesBy({ "bob" }), [&completed](int, const QString &) { completed = true; });
        const ZIQGroupNoteItemPtr entry = info->items().first();
        info.reset();
        QTRY_VERIFY(completed);
        QCOMPARE(entry->userName(), QStringLiteral("Bob"));
    }
};

QTEST_GUILESS_MAIN(TestGroupNoteMembers)
#include "tst_groupnotemembers.moc"
