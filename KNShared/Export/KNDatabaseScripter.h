#pragma once

#include "Database/KNRowStream.h"

#include <QIODevice>
#include <QList>
#include <QString>

#include <functional>

/// An object of a database that a script can include. A value type of any thread.
struct KNScriptObject
{
    QString kind; ///< as the server names it, such as USER_TABLE
    QString schema;
    QString name;
    bool hasRows = false; ///< a table

    /// schema.name, for display and for file names.
    QString displayName() const { return schema.isEmpty() ? name : schema + QLatin1Char('.') + name; }
    friend bool operator==(const KNScriptObject &, const KNScriptObject &) = default;
};

/// The content of the scripts of a database.
struct KNScriptOptions
{
    enum class Language {
        Server, ///< that of the server
        MySQL,
    };

    bool schema = true; ///< statements that create the objects
    bool data = false;  ///< statements that insert the rows of tables
    bool drops = false; ///< drops existing objects first
    bool ifNotExists = false;
    bool indexes = true;
    bool constraints = true; ///< foreign keys
    bool triggers = true;
    Language language = Language::Server;
};

/// A part of a script, to run behind the parts before it.
struct KNScriptPart
{
    QString name;  ///< of its file, without extension; parts of one object share it
    QString title; ///< for display while it is written
    /// Writes UTF-8. The caller checks whether the device took everything. Blocks on the server.
    std::function<KNError(QIODevice &device, const KNRowStream::IsCancelled &isCancelled)> write;
};

/// Makes scripts of the objects of a database. Connectors subclass it. Blocks on the server: any thread
/// except the UI thread; used by one thread at a time.
class KNSHARED_EXPORT KNDatabaseScripter
{
public:
    virtual ~KNDatabaseScripter();

    /// The objects that scripts can include, by kind and name. Empty with an error.
    virtual QList<KNScriptObject> objects(KNError *error) = 0;
    /// The parts of the script of these objects, in an order in which they can run. Empty with an error.
    virtual QList<KNScriptPart> parts(const QList<KNScriptObject> &objects, const KNScriptOptions &options,
                                      KNError *error) = 0;
};
