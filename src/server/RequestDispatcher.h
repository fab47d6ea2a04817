// Runs a client's request on the messaging backend for the connection's session and turns the
// backend's answer into the reply's code and "result". Every backend answer reaches `answer`
// exactly once; the dispatcher keeps no state of its own, so an answer may arrive after it is gone.
#pragma once

#include "server/RequestArgs.h"

#include <functional>

class MessagingBackend;
class MessagingSession;

class RequestDispatcher
{
public:
    using Answer = std::function<void(const CallError &error, const QJsonObject &result)>;

    RequestDispatcher(MessagingBackend *backend, MessagingSession *session);

    /// Hello and ping are the connection's own business; every other operation goes here.
    void dispatch(const RequestArgs::Args &args, const Answer &answer);

private:
    void run(const RequestArgs::Hello &, const Answer &answer);
    void run(const RequestArgs::Ping &, const Answer &answer);
    void run(const RequestArgs::SendMessage &args, const Answer &answer);
    void run(const RequestArgs::History &args, const Answer &answer);
    void run(const RequestArgs::DirectHistory &args, const Answer &answer);
    void run(const RequestArgs::ModifyMessage &args, const Answer &answer);
    void run(const RequestArgs::MessageAt &args, const Answer &answer);
    void run(const RequestArgs::GetExtensions &args, const Answer &answer);
    void run(const RequestArgs::SetExtensions &args, const Answer &answer);
    void run(const RequestArgs::DeleteExtensions &args, const Answer &answer);
    void run(const RequestArgs::ConversationList &, const Answer &answer);
    void run(const RequestArgs::GroupsInfo &args, const Answer &answer);
    void run(const RequestArgs::MarkGroupRead &args, const Answer &answer);
    void run(const RequestArgs::MarkDirectRead &args, const Answer &answer);
    void run(const RequestArgs::Members &args, const Answer &answer);
    void run(const RequestArgs::UsersInfo &args, const Answer &answer);
    void run(const RequestArgs::AddUser &args, const Answer &answer);
    void run(const RequestArgs::CreateGroup &args, const Answer &answer);
    void run(const RequestArgs::SetGroupInfo &args, const Answer &answer);
    void run(const RequestArgs::AddGroupMember &args, const Answer &answer);
    void run(const RequestArgs::SetNameCard &args, const Answer &answer);
    void run(const RequestArgs::SetFriendRemark &args, const Answer &answer);

    MessagingBackend *m_backend;
    MessagingSession *m_session;
};
