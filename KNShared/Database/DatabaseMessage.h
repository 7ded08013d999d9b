#pragma once

#include "Database/KNQueryDetails.h"
#include "KNSharedExport.h"

#include <QString>

#include <limits>

/// A message from the server or the client library.
struct KNSHARED_EXPORT DatabaseMessage
{
    enum Type : qint32 { ClientError = 0, ServerMessage = 1 };

    /// Client errors up to this severity concern a single value.
    static constexpr qint32 ValueSeverity = 4;
    /// The line number of messages without one.
    static constexpr quint64 NotFound = std::numeric_limits<qint64>::max();

    qint32 type = ClientError;
    qint32 msgno = 0;
    qint32 msgstate = 0; ///< 0 for client errors
    qint32 severity = 0;
    quint64 line = NotFound;          ///< within the batch, from 1; NotFound for client errors
    quint64 calculatedLineNumber = 0; ///< within the whole text that contains the batch
    QString msgtext;
    QString srvname;
    QString procname;  ///< empty when the message does not come from a procedure
    KNRange textRange; ///< the part of the whole text that the message is about; not found if not known

    /// True for all client errors, and for server messages of severity 16 and above.
    bool isError() const;
    /// Whether the message's statement failed: true for server messages of severity 11 and above, and for
    /// client errors except isValueWarning().
    bool isFailure() const;
    /// "Msg 208, Level 16, State 1." and the text, joined with CR LF.
    QString failureText() const;
    /// Whether this is a client error about a single value, such as a character that could not be converted.
    /// The statement continued; programs show these as warnings.
    bool isValueWarning() const;
    /// "Msg 208, Level 16, State 1, Line 2" and the text, joined with CR LF.
    QString description() const;

    friend bool operator==(const DatabaseMessage &, const DatabaseMessage &) = default;
};
