#pragma once

#include "Database/KNQueryDetails.h"
#include "KNSharedExport.h"

#include <QList>
#include <QString>

/// How a function or procedure is called, as a text, and where its parameters stand in the text.
struct KNSHARED_EXPORT KNSignature
{
    QString text;    ///< "DATEADD(datepart, number, date)"
    QString details; ///< one line about it; null if there is none
    QList<KNRange> parameters;

    /// Finds the parameters in the parentheses of a text. Brackets around optional ones do not belong to
    /// them.
    static KNSignature from(const QString &text, const QString &details);

    /// The name, without schema, before the parentheses.
    QString name() const;
    /// The number of the parameter for an argument, both from 0: arguments beyond "..." belong to that.
    /// -1 if there is none.
    qsizetype parameterOf(qsizetype argument) const;
    /// The same for an argument that is passed by name.
    qsizetype parameterNamed(const QString &name) const;
};
