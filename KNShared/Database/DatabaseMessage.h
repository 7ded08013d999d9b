#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <limits>

/// One message that the server sent or that the client library raised.
struct KNSHARED_EXPORT DatabaseMessage
{
    enum Type : qint32 { ClientError = 0, ServerMessage = 1 };

    /// Up to this severity a client error concerns a single value.
    static constexpr qint32 ValueSeverity = 4;
    /// The line of a message that has none.
    static constexpr quint64 NotFound = std::numeric_limits<qint64>::max();

    qint32 type = ClientError;
    qint32 msgno = 0;
    qint32 msgstate = 0; ///< 0 for client errors
    qint32 severity = 0;
    quint64 line = NotFound;          ///< within the batch, from 1; NotFound for client errors
    quint64 calculatedLineNumber = 0; ///< within the whole text that the batch was cut from
    QString msgtext;
    QString srvname;
    QString procname; ///< empty when the message does not come from a procedure

    /// Client errors always are; server messages from severity 16 on.
    bool isError() const;
    /// Whether the statement that the message belongs to failed: server messages from severity 11 on, and
    /// client errors other than isValueWarning().
    bool isFailure() const;
    /// "Msg 208, Level 16, State 1." and the text, joined with CR LF.
    QString failureText() const;
    /// Whether it is a client error that concerns a single value, such as a character that could not be
    /// converted: the statement went on. Programs show these as warnings.
    bool isValueWarning() const;
    /// "Msg 208, Level 16, State 1, Line 2" and the text, joined with CR LF.
    QString description() const;

    friend bool operator==(const DatabaseMessage &, const DatabaseMessage &) = default;
};
