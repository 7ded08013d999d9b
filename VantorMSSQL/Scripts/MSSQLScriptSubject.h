#pragma once

#include "QueryLoader/KNQueryLoader.h"

#include <QStringList>

/// The object that a script is asked for. Every caller of a generator goes through script(), which reads the
/// generated statements back: where they do not name this object, the names are replaced by quoted ones, and
/// a script that cannot be read is commented out with a failure in its report.
struct MSSQLScriptSubject
{
    QString kind; ///< "TABLE", "VIEW", "PROCEDURE", "FUNCTION", "TRIGGER", "TYPE", "INDEX" or "COLUMN"
    QString schema;
    QString name;                                  ///< not quoted
    std::shared_ptr<const VantorDBC> details = {}; ///< whose default schema counts, when it is known already
    QString table = {};                            ///< of an index or a column; not quoted

    /// Mends the script of a generator so that it acts on this object, and adds to its report what remains to
    /// be said. Statements that name the object rightly keep their text, also without its schema. Asks no
    /// server.
    void review(QString *script, KNQueryReport *report) const;

    /// A sentence for each statement at the script's beginning that acts on another object: without the
    /// schema, or of another kind. Asks no server.
    QStringList notices(const QString &script) const;

    /// A loader of scripts of this object, reviewed.
    template <typename Loader, typename... Arguments>
    std::shared_ptr<KNQueryLoader> script(Arguments &&...arguments) const
    {
        const auto loader = std::make_shared<Loader>(std::forward<Arguments>(arguments)...);
        loader->setReview(
            [subject = *this](QString *text, KNQueryReport *report) { subject.review(text, report); });
        return loader;
    }
};
