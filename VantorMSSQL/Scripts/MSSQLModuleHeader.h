#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// The position of a statement that creates, alters or drops an object in a text, and the name in it. Found
/// by tokens: words in comments, strings and quoted names are not mistaken for keywords.
struct MSSQLModuleHeader
{
    QString verb; ///< "CREATE", "ALTER" or "DROP"
    QString kind; ///< "PROCEDURE", "FUNCTION", "VIEW", "TRIGGER", "TABLE" or "TYPE"; PROC is spelled out
    qsizetype verbStart = 0; ///< all positions are in UTF-16 units
    qsizetype kindEnd = 0;
    qsizetype nameStart = 0;
    qsizetype nameEnd = 0;
    QStringList name; ///< the parts of the name without quotes; an omitted part is empty

    /// The last part of the name, and the part before it; empty if it is left out.
    QString objectName() const { return name.isEmpty() ? QString() : name.last(); }
    QString schema() const { return name.size() < 2 ? QString() : name[name.size() - 2]; }

    /// The header at the beginning of a stored definition, where only comments may precede it; nullopt for
    /// any other text.
    static std::optional<MSSQLModuleHeader> ofDefinition(const QString &definition);
    /// The first header at or after `from` in a script of several statements, at any position.
    static std::optional<MSSQLModuleHeader> firstIn(const QString &script, qsizetype from = 0);

    /// The definition with its header spelled "CREATE PROCEDURE": one blank, PROC written out, without OR
    /// ALTER. A header with this spelling, in any case, and a text without a header are unchanged.
    static QString withPlainHeader(const QString &definition);
    /// The definition with its header's verb replaced by ALTER and nothing else changed.
    static QString altering(const QString &definition);
};
