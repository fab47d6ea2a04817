#include "BackToBackWriter.h"

#include <algorithm>

BackToBackWriter::BackToBackWriter(V2VORManager *client, const QString &groupID, const V2VORMessagePtr &note)
    : m_client(client)
    , m_groupID(groupID)
    , m_note(note)
{
}

void BackToBackWriter::start()
{
    m_stopped = false;
    next();
}

QList<int> BackToBackWriter::acknowledged() const
{
    QList<int> writes;
    for (const Answer &answer : m_answers) {
        if (answer.code == 0)
            writes.append(answer.write);
    }
    std::sort(writes.begin(), writes.end());
    return writes;
}

int BackToBackWriter::acknowledgedFrom(int write) const
{
    const QList<int> writes = acknowledged();
    return int(std::count_if(writes.begin(), writes.end(), [write](int w) { return w >= write; }));
}

void BackToBackWriter::next()
{
    if (m_stopped || !m_client)
        return;
    const int write = m_issued++;
    const auto alive = m_alive;
    const auto fail = [this, alive, write](int code, const QString &) {
        if (*alive)
            answer(write, code);
    };
    if (m_note) {
        m_client->setMessageExtensions(
            m_note, { { keyOf(write), textOf(write) } },
            [this, alive, write](const QList<V2VORMessageExtensionResult> &results) {
                if (*alive)
                    answer(write, results.size() == 1 ? results.first().resultCode : -1);
            },
            fail);
        return;
    }
    m_client->sendMessage(m_client->createTextMessage(textOf(write)), {}, m_groupID, V2VOR_PRIORITY_DEFAULT, false,
        std::nullopt, {}, [this, alive, write] {
            if (*alive)
                answer(write, 0);
        },
        fail);
}

void BackToBackWriter::answer(int write, int code)
{
    m_answers.append({ write, code });
    // Only the first answer of a write moves the writer on; a second one is the fault to find.
    if (m_answered.contains(write))
        return;
    m_answered.insert(write, code);
    next();
}
