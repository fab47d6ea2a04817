#include "DemoWorld.h"

#include "DemoCast.h"

#include "platform/ManualClock.h"
#include "sdk/MessagingServer.h"

#include <QCoreApplication>
#include <algorithm>

namespace {

constexpr double MinuteMs = 60.0 * 1000.0;

struct Group
{
    const char *groupID;
    const char *name;
    QStringList members;
};

/// One line of the history: who said what where, and how many minutes ago.
struct Line
{
    const char *chat; // a group ID, or "ben>amy" for one user writing to another
    const char *sender;
    int minutesAgo;
    const char *text;
};

const QList<Group> &groups()
{
    static const QList<Group> all = {
        { "hike", "Weekend hike", { "amy", "ben", "chloe", "dan" } },
        { "books", "Book club", { "amy", "ben", "chloe", "emma" } },
        { "family", "Family", { "amy", "dan", "mum" } },
    };
    return all;
}

// Two hours, a day and three days back, so the list shows times of today and dates.
const Line History[] = {
    { "family", "mum", 4300, "Sunday lunch at ours? I'm making dumplings 🥟" },
    { "family", "amy", 4290, "Yes please! I'll bring dessert" },
    { "family", "dan", 4280, "Count me in" },
    { "family", "mum", 4270, "Wonderful. One o'clock" },
    { "books", "emma", 4200, "Next pick: The Left Hand of Darkness?" },
    { "books", "chloe", 4180, "Love it, I've wanted to read that for ages" },
    { "books", "ben", 4150, "Paperback or e-book, doesn't matter?" },
    { "books", "emma", 4140, "Whatever you like 📚" },
    { "family", "mum", 3000, "Did anyone see my reading glasses?" },
    { "family", "dan", 2990, "On the piano, as always 😄" },
    { "family", "mum", 2980, "Found them, thank you!" },
    { "books", "amy", 2900, "Halfway through, the ice crossing is incredible" },
    { "books", "chloe", 2890, "No spoilers!! 🙈" },
    { "books", "emma", 2880, "Meeting Thursday 7pm at the café?" },
    { "books", "amy", 2870, "Works for me" },
    { "hike", "ben", 1500, "Who's up for a hike on Saturday? ⛰️" },
    { "hike", "chloe", 1490, "Me! Where to?" },
    { "hike", "dan", 1480, "The ridge trail, if the weather holds" },
    { "hike", "amy", 1470, "I'm in. Start at 8?" },
    { "ben>amy", "ben", 1400, "Do you still have my headlamp?" },
    { "ben>amy", "amy", 1390, "Yes, I'll bring it Saturday" },
    { "ben>amy", "ben", 1385, "Perfect, thanks!" },
    { "family", "dan", 1300, "Photos from Sunday are in the shared album" },
    { "family", "amy", 1290, "Those dumplings were the best" },
    { "books", "ben", 1200, "I'll bring snacks on Thursday" },
    { "books", "chloe", 1100, "Finished it last night. Wow." },
    { "hike", "ben", 300, "Forecast says sunny, 18°C ☀️" },
    { "hike", "chloe", 250, "Bringing my new boots, wish me luck" },
    { "hike", "dan", 200, "I can drive, three seats free 🚗" },
    { "ben>amy", "ben", 150, "Coffee before we leave?" },
    { "ben>amy", "amy", 140, "Always ☕" },
    { "hike", "ben", 130, "Who brings the map?" },
    { "hike", "dan", 120, "I've got it on my phone, and a paper one" },
    { "ben>amy", "ben", 110, "See you at 7:30 then" },
    { "hike", "chloe", 90, "Snacks: I'll make trail mix" },
    { "hike", "ben", 80, "Meet at the station, 8 sharp!" },
};

ZIQChatConversation chatOf(const QString &chat, const QString &speaker)
{
    const int arrow = chat.indexOf(QLatin1Char('>'));
    if (arrow < 0)
        return { chat, {} };
    const QString from = chat.left(arrow);
    const QString to = chat.mid(arrow + 1);
    return { {}, speaker == from ? to : from };
}

QString faceOf(const QString &name)
{
    return QStringLiteral("qrc:/demo/avatars/%1.svg").arg(name);
}

} // namespace

QList<DemoWorld::Person> DemoWorld::people()
{
    static const QList<Person> all = {
        { "amy", "Amy Chen", faceOf("amy") },
        { "ben", "Ben Carter", faceOf("ben") },
        { "chloe", "Chloé Martin", faceOf("chloe") },
        { "dan", "Dan Wu", faceOf("dan") },
        { "emma", "Emma Li", faceOf("emma") },
        { "mum", "Mum", faceOf("mum") },
    };
    return all;
}

bool DemoWorld::hasPerson(const QString &userID)
{
    const QList<Person> all = people();
    return std::any_of(all.cbegin(), all.cend(), [&](const Person &person) { return person.userID == userID; });
}

QString DemoWorld::nickNameOf(const QString &userID)
{
    for (const Person &person : people()) {
        if (person.userID == userID)
            return person.nickName;
    }
    return {};
}

QString DemoWorld::defaultUserID()
{
    return QStringLiteral("amy");
}

void DemoWorld::createDirectory(MessagingServer &server)
{
    for (const Person &person : people())
        server.addUser(person.userID, person.nickName, person.faceURL);
    for (const Group &group : groups()) {
        const QString groupID = QString::fromLatin1(group.groupID);
        server.createGroup(groupID, group.members);
        server.setGroupInfo(groupID, QString::fromUtf8(group.name), faceOf(QStringLiteral("group_") + groupID));
    }
}

void DemoWorld::playHistory(DemoCast &cast, double nowMs)
{
    // The service stamps each message with the clock's "now" as it takes it; the answers and
    // events arrive through the event loop, whichever clock is installed.
    platform::ManualClock clock(nowMs - History[0].minutesAgo * MinuteMs - MinuteMs);
    for (const Person &person : people())
        cast.addMember(person.userID);
    QCoreApplication::processEvents();
    for (const Line &line : History) {
        clock.setNow(nowMs - line.minutesAgo * MinuteMs);
        const QString sender = QString::fromLatin1(line.sender);
        cast.post(sender, chatOf(QString::fromLatin1(line.chat), sender), QString::fromUtf8(line.text));
    }
    QCoreApplication::processEvents();
}

bool DemoWorld::playNote(DemoCast &cast, const DemoNoteScene::Script &script, double startMs)
{
    // The scene's pauses pass in steps; the service's answers arrive between them.
    constexpr int StepMs = 500;
    constexpr int MaxSteps = 200;
    platform::ManualClock clock(startMs);
    DemoNoteScene scene(&cast, script);
    bool finished = false;
    QObject::connect(&scene, &DemoNoteScene::finished, &scene, [&finished] { finished = true; });
    scene.start();
    for (int step = 0; step < MaxSteps && !finished; ++step) {
        QCoreApplication::processEvents();
        clock.advance(StepMs);
    }
    QCoreApplication::processEvents();
    return finished;
}

void DemoWorld::castOthers(DemoCast &cast, const QString &userID)
{
    // Lines each chat's people say now and then while the demo runs.
    const QHash<QString, QStringList> lines = {
        { "hike", { "Anyone got spare sunscreen?", "Weather looks great 🌤️", "I'll bring a thermos of tea",
                      "Do we need poles for the ridge?", "Can't wait! 🥾", "Group photo at the top?" } },
        { "books", { "Chapter 12 got me 😮", "Who picks next month's book?", "I'll bring cookies 🍪",
                       "Has anyone read her short stories?", "Running a bit late, save me a seat" } },
        { "family", { "Call me when you're free ❤️", "The cat says hi 🐱", "Dinner on Friday?",
                        "Don't forget grandma's birthday!", "I made too much soup again" } },
        { "ben>amy", { "Still on for coffee?", "Sent you the trail map", "😂", "Thanks for yesterday!" } },
    };
    for (const Person &person : people()) {
        if (person.userID == userID)
            continue;
        cast.addMember(person.userID);
        for (const Group &group : groups()) {
            if (group.members.contains(person.userID) && group.members.contains(userID))
                cast.addChat(person.userID, { QString::fromLatin1(group.groupID), {} }, lines.value(group.groupID));
        }
        const QString pair = QStringLiteral("ben>amy");
        if ((person.userID == "ben" && userID == "amy") || (person.userID == "amy" && userID == "ben"))
            cast.addChat(person.userID, chatOf(pair, person.userID), lines.value(pair));
    }
}

DemoNoteScene::Script DemoWorld::noteScript(const QString &userID)
{
    const Group &hike = groups().constFirst();
    if (!hike.members.contains(userID))
        return {};
    QStringList others = hike.members;
    others.removeAll(userID);
    DemoNoteScene::Script script;
    script.groupID = QString::fromLatin1(hike.groupID);
    script.author = others.takeFirst();
    script.title = QStringLiteral("Saturday ridge hike: who's coming?");
    script.description = QStringLiteral("Put your name down and what you bring");
    script.joiners = others;
    const QStringList brings = { QStringLiteral("first aid kit"), QStringLiteral("trail mix"),
        QStringLiteral("a thermos of tea"), QStringLiteral("the map") };
    const QStringList writers = QStringList { script.author } + others;
    for (qsizetype i = 0; i < writers.size(); ++i)
        script.entries.append(nickNameOf(writers.at(i)) + QStringLiteral(", ") + brings.value(i % brings.size()));
    return script;
}
