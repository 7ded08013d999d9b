#pragma once

#include "Foundation/KNError.h"
#include "Scripts/MSSQLScriptQueryLoader.h"

/// The ALTER script of a view; its indexes follow, for altering drops them. Names are not escaped.
class MSSQLScriptAlterViewQueryLoader : public MSSQLScriptQueryLoader
{
public:
    MSSQLScriptAlterViewQueryLoader(const QString &view, const QString &inSchema)
        : m_targetView(view)
        , m_targetSchema(inSchema)
    {
    }

    const QString &targetView() const { return m_targetView; }
    const QString &targetSchema() const { return m_targetSchema; }

    /// The script; what fails stands in it as a comment. Blocks on the server.
    static QString alterQueryForView(const QString &view, const QString &inSchema,
                                     const VantorDBC &withConnectionDetails);

    /// The view's settings and its definition, altering. An error is reported, too.
    static QString loadQueryForDatabaseConnection(const VantorDBC &details, const QString &targetView,
                                                  const QString &targetSchema, KNError *error);
    /// The statements that make the view's indexes, which is looked up by its bare name; empty without any.
    static QString loadIndexesForDatabaseConnection(const VantorDBC &details, const QString &targetView,
                                                    const QString &targetSchema, KNError *error);

protected:
    QString script(const VantorDBC &details) const override;

private:
    QString m_targetView;
    QString m_targetSchema;
};
