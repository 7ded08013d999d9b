#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// Where a statement that creates, alters or drops an object stands in a text, and what it names. Found by
/// tokens: words in comments, strings and quoted names are not taken for keywords.
struct MSSQLModuleHeader
{
    QString verb; ///< "CREATE", "ALTER" or "DROP"
    QString kind; ///< "PROCEDURE", "FUNCTION", "VIEW", "TRIGGER", "TABLE" or "TYPE"; PROC is spelled out
    qsizetype verbStart = 0; ///< UTF-16 units, as all places
    qsizetype kindEnd = 0;
    qsizetype nameStart = 0;
    qsizetype nameEnd = 0;
    QStringList name; ///< the parts of the name without quotes; an omitted part is empty

    /// The last part of the name, and the one before it; empty when it is left out.
    QString objectName() const { return name.isEmpty() ? QString() : name.last(); }
    QString schema() const { return name.size() < 2 ? QString() : name[name.size() - 2]; }

    /// The header at the beginning of a stored definition, where only comments may precede it; nothing when
    /// the text begins otherwise.
    static std::optional<MSSQLModuleHeader> ofDefinition(const QString &definition);
    /// The first header at or behind `from` in a script of several statements, wherever it stands.
    static std::optional<MSSQLModuleHeader> firstIn(const QString &script, qsizetype from = 0);

    /// The definition with the object's name as it is now: sp_rename and ALTER SCHEMA leave the stored text
    /// as it was. A text without a header stays as it is.
    static QString withCurrentName(const QString &definition, const QString &schema,
                                   const QString &objectName);
    /// The definition with its header spelled "CREATE PROCEDURE": one blank, PROC written out, without OR
    /// ALTER. A header that is spelled so in any case stays, as does a text without one.
    static QString withPlainHeader(const QString &definition);
    /// The definition with its header's verb replaced by ALTER and nothing else changed.
    static QString altering(const QString &definition);
};
