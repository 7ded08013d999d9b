#pragma once

#include <QList>
#include <QString>

/// The batches of an object's creation script by what they make, so that a script of many objects can order
/// them. Pure; any thread.
class MSSQLScriptBatches
{
public:
    enum class Kind {
        Object,     ///< the object itself, and whatever is none of the others
        Index,      ///< of a table or view; constraints with indexes are none
        Check,      ///< a constraint; also the statement that switches it off
        ForeignKey, ///< also the statement that switches it off
        Trigger,
    };
    struct Batch
    {
        Kind kind;
        QString settings; ///< batches of SET statements before it, each with its GO; may be empty
        QString text;     ///< without GO
        QString name;     ///< of the index, constraint or trigger, without quotes; null if it is not known

        /// The batches as a script.
        QString script() const;
    };

    explicit MSSQLScriptBatches(const QString &script);

    const QList<Batch> &all() const { return m_batches; }

private:
    QList<Batch> m_batches;
};
