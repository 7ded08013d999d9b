#pragma once

#include "Foundation/KNError.h"
#include "Scripts/MSSQLScriptQueryLoader.h"

/// The ALTER script of a view, followed by its indexes, because ALTER VIEW drops them. Names are not escaped.
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

    /// The script; failures are written into it as comments, and into `report`, which may be null. Blocks on
    /// the server.
    static QString alterQueryForView(const QString &view, const QString &inSchema,
                                     const VantorDBC &withConnectionDetails, KNQueryReport *report = nullptr);

    /// The view's settings and its definition as an ALTER statement. A failed query is also shown to the
    /// user; `report`, which may be null, also receives a definition that cannot be read.
    static QString loadQueryForDatabaseConnection(const VantorDBC &details, const QString &targetView,
                                                  const QString &targetSchema, KNError *error,
                                                  KNQueryReport *report = nullptr);
    /// The statements that create the view's indexes; empty if there are none. A view outside the login's
    /// default schema is looked up with its schema.
    static QString loadIndexesForDatabaseConnection(const VantorDBC &details, const QString &targetView,
                                                    const QString &targetSchema, KNError *error);

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_targetView;
    QString m_targetSchema;
};
