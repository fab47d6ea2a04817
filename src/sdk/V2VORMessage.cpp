#include "sdk/V2VORMessage.h"

V2VORMessagePtr V2VORMessage::clone() const
{
    auto copy = std::make_shared<V2VORMessage>();
    copy->m_msgID = m_msgID;
    copy->m_seq = m_seq;
    copy->m_groupID = m_groupID;
    copy->m_userID = m_userID;
    copy->m_sender = m_sender;
    copy->m_nickName = m_nickName;
    copy->m_faceURL = m_faceURL;
    copy->m_timestamp = m_timestamp;
    copy->m_isSelf = m_isSelf;
    copy->m_status = m_status;
    copy->m_elemType = m_elemType;
    if (m_customElem)
        copy->m_customElem = std::make_unique<V2VORCustomElem>(*m_customElem);
    copy->m_text = m_text;
    copy->m_supportMessageExtension = m_supportMessageExtension;
    copy->m_messageVersion = m_messageVersion;
    return copy;
}
