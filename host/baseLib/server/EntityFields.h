#pragma once
// Names the support server uses on the wire: entity types and attribute names of tickets and messages.
// Shared by the simulated server, the request handlers and the news fetcher so both ends agree.

#include <QString>

namespace EntityFields {

inline const QString kTicketType = QStringLiteral("SM_MINICRM_TICKET");
inline const QString kCommunicationType = QStringLiteral("SM_MINICRM_COMMUNICATION");
inline const QString kNewsType = QStringLiteral("SM_NEWS_ENTRY");

// Ticket attributes.
inline const QString kThreadId = QStringLiteral("CHAT_DEFAULT_THREAD_ID");
inline const QString kState = QStringLiteral("STATE");
inline const QString kSubject = QStringLiteral("SUBJECT");
inline const QString kFirstMessage = QStringLiteral("FIRST_MESSAGE");
inline const QString kFirstMessageAttachments = QStringLiteral("FIRST_MESSAGE_ATTACHMENTS");
inline const QString kCreatedBy = QStringLiteral("CREATED_BY");
inline const QString kComposerState = QStringLiteral("COMPOSER_STATE");
inline const QString kLastActivity = QStringLiteral("LAST_ACTIVITY");

// Message attributes.
inline const QString kMessageThreadId = QStringLiteral("THREAD_ID");
inline const QString kText = QStringLiteral("TEXT");
inline const QString kSenderId = QStringLiteral("SENDER_ID");
inline const QString kFromSupport = QStringLiteral("FROM_SUPPORT");
inline const QString kTime = QStringLiteral("TIME");
inline const QString kDeleted = QStringLiteral("DELETED");
inline const QString kEditVersion = QStringLiteral("EDIT_VERSION");
inline const QString kVersionKey = QStringLiteral("VERSION_KEY");
inline const QString kIsDraft = QStringLiteral("IS_DRAFT");
inline const QString kAttachments = QStringLiteral("ATTACHMENTS");

// Keys of one attachment inside kAttachments / kFirstMessageAttachments.
inline const QString kAttachmentId = QStringLiteral("id");
inline const QString kAttachmentName = QStringLiteral("fileName");
inline const QString kAttachmentSize = QStringLiteral("size");
inline const QString kAttachmentMime = QStringLiteral("mimeType");

// Schema properties of a ticket state.
inline const QString kDisplayName = QStringLiteral("DISPLAY_NAME");

} // namespace EntityFields
