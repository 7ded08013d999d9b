#pragma once

#include "QueryLoader/KNQueryLoader.h"

#include <QStringList>

/// The object of a script. Every caller of a generator uses script(), which parses the generated statements:
/// names that do not refer to this object are replaced by quoted ones, and a script that cannot be parsed is
/// commented out with a failure in its report.
struct MSSQLScriptSubject
{
    QString kind; ///< "TABLE", "VIEW", "PROCEDURE", "FUNCTION", "TRIGGER", "TYPE", "INDEX" or "COLUMN"
    QString schema;
    QString name;                                  ///< not quoted
    std::shared_ptr<const VantorDBC> details = {}; ///< not null for creation()
    QString table = {};                            ///< of an index or a column; not quoted

    /// Corrects the script of a generator so that it acts on this object, and adds remaining problems to its
    /// report. Statements that name the object correctly, also without its schema, are unchanged. Does not
    /// access the server.
    void review(QString *script, KNQueryReport *report) const;

    /// Reviews the script that creates this object, and appends what generators leave out: the triggers of a
    /// view and extended properties. Blocks on the server.
    void complete(QString *script, KNQueryReport *report) const;

    /// One sentence for each statement at the script's beginning that acts on another object: without the
    /// schema, or of another kind. Does not access the server.
    QStringList notices(const QString &script) const;

    /// Creates a loader of reviewed scripts of this object.
    template <typename Loader, typename... Arguments>
    std::shared_ptr<KNQueryLoader> script(Arguments &&...arguments) const
    {
        const auto loader = std::make_shared<Loader>(std::forward<Arguments>(arguments)...);
        loader->setReview(
            [subject = *this](QString *text, KNQueryReport *report) { subject.review(text, report); });
        return loader;
    }
    /// Likewise, with complete scripts that create this object.
    template <typename Loader, typename... Arguments>
    std::shared_ptr<KNQueryLoader> creation(Arguments &&...arguments) const
    {
        const auto loader = std::make_shared<Loader>(std::forward<Arguments>(arguments)...);
        loader->setReview(
            [subject = *this](QString *text, KNQueryReport *report) { subject.complete(text, report); });
        return loader;
    }
};
