#pragma once

#include "QueryLoader/KNQueryLoader.h"

#include <QStringList>

/// The object that a script is asked for. Some generators write statements that reach another object: without
/// the schema, without quotes, or of another kind. This reports it beside the script.
struct MSSQLScriptSubject
{
    QString kind; ///< "TABLE", "VIEW", "PROCEDURE", "FUNCTION", "TRIGGER" or "TYPE"
    QString schema;
    QString name;                             ///< not quoted
    std::shared_ptr<const VantorDBC> details; ///< whose default schema counts, when it is known already

    /// A sentence for each statement at the script's beginning that acts on another object. Asks no server.
    QStringList notices(const QString &script) const;

    /// A loader of scripts of this object, which reports the notices.
    template <typename Loader, typename... Arguments>
    std::shared_ptr<KNQueryLoader> script(Arguments &&...arguments) const
    {
        const auto loader = std::make_shared<Loader>(std::forward<Arguments>(arguments)...);
        loader->setReview([subject = *this](const QString &text) { return subject.notices(text); });
        return loader;
    }
};
