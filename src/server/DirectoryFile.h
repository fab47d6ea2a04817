// A directory to seed a server with at start, read from a JSON file:
//
//   {
//     "users":   [ {"userID": "amy", "nickName": "Amy Chen", "faceURL": "..."} ],
//     "groups":  [ {"groupID": "family", "groupName": "Family", "faceURL": "...",
//                   "members": ["amy", "ben"], "nameCards": {"ben": "Benny"}} ],
//     "remarks": [ {"viewerID": "amy", "targetID": "ben", "remark": "brother"} ]
//   }
//
// Only "userID" and "groupID" are required; every list may be left out. It is applied through
// the backend's directory operations, so it seeds any store alike.
#pragma once

#include "sdk/MessagingBackend.h"

#include <QJsonObject>
#include <memory>
#include <optional>

class DirectoryFile
{
public:
    /// Null with `error` naming the file and the member at fault when it cannot be read.
    static std::optional<DirectoryFile> read(const QString &path, QString *error);
    static std::optional<DirectoryFile> fromJson(const QByteArray &json, QString *error);

    int userCount() const;
    int groupCount() const;

    /// Adds the users, then the groups, their members' name cards and the remarks, acting for
    /// `operatorSession`; `done` hears the first failure, or success once all is in.
    void apply(MessagingBackend *backend, MessagingSession *operatorSession,
        const std::function<void(const CallError &)> &done) const;

private:
    using Step = std::function<void(MessagingBackend::Done)>;
    QList<Step> steps(MessagingBackend *backend, MessagingSession *session) const;

    struct Run
    {
        QList<Step> steps;
        std::function<void(const CallError &)> done;
        static void next(const std::shared_ptr<Run> &run);
    };

    QJsonObject m_json;
};
