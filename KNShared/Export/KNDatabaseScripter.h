#pragma once

#include "Database/KNRowStream.h"
#include "Export/KNScriptOptions.h"

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
    QString group = {};   ///< the title of the objects of this kind, such as "Tables"

    /// schema.name, for display and for file names.
    QString displayName() const { return schema.isEmpty() ? name : schema + QLatin1Char('.') + name; }
    friend bool operator==(const KNScriptObject &, const KNScriptObject &) = default;
};

/// Reports and cancels the making of a script, on the thread that makes it. Each function may be empty.
struct KNScriptControl
{
    KNRowStream::IsCancelled isCancelled = {};
    /// Receives an object that is about to be read, its index and the number of objects.
    std::function<void(const QString &title, qsizetype index, qsizetype count)> readsObject = {};
    /// Receives the number of rows written since the last call.
    std::function<void(qint64 rows)> wroteRows = {};

    bool wasCancelled() const { return isCancelled && isCancelled(); }
    void reportObject(const QString &title, qsizetype index, qsizetype count) const
    {
        if (readsObject)
            readsObject(title, index, count);
    }
    void reportRows(qint64 rows) const
    {
        if (wroteRows)
            wroteRows(rows);
    }
};

/// A part of a script, to run behind the parts before it.
struct KNScriptPart
{
    QString name;  ///< of its file, without ".sql"; parts of one object share it
    QString title; ///< for display while it is written
    /// Writes UTF-8. The caller checks whether the device took everything. Blocks on the server.
    std::function<KNError(QIODevice &device, const KNScriptControl &control)> write;
    bool isData = false; ///< no script: `name` has the extension, and the list of scripts leaves it out
};

/// Makes scripts of the objects of a database. Connectors subclass it. Blocks on the server: any thread
/// except the UI thread; used by one thread at a time.
class KNSHARED_EXPORT KNDatabaseScripter
{
public:
    virtual ~KNDatabaseScripter();

    /// The name of the server's language, such as "SQL".
    virtual QString languageName() const = 0;
    /// The objects that scripts can include, by kind and name. Empty with an error.
    virtual QList<KNScriptObject> objects(KNError *error) = 0;
    /// The parts of the script of these objects, in an order in which they can run. Empty with an error and
    /// after a cancellation.
    virtual QList<KNScriptPart> parts(const QList<KNScriptObject> &objects, const KNScriptOptions &options,
                                      const KNScriptControl &control, KNError *error) = 0;
};
