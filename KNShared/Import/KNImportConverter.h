#pragma once

#include "Foundation/KNValue.h"
#include "Import/KNImportColumnType.h"
#include "KNSharedExport.h"

#include <QCoreApplication>

#include <optional>

/// How the values of a file are written.
struct KNImportValueFormat
{
    enum class Empty {
        AsWritten, ///< an empty value is NULL, and an empty one in quotes is empty text
        Null,      ///< both are NULL
        Text,      ///< both are empty text
    };

    Empty empty = Empty::AsWritten;
    QString dateFormat = {}; ///< of Qt, such as "d.M.yyyy"; null for ISO 8601
    QChar decimalPoint = QLatin1Char('.');
};

/// Turns texts of a file into values of one column. A value that the column would not hold unchanged is
/// refused: a server would round, cut or replace it. Pure; any thread.
class KNSHARED_EXPORT KNImportConverter
{
    Q_DECLARE_TR_FUNCTIONS(KNImportConverter)

public:
    KNImportConverter(KNImportColumnType type, bool allowsNulls, KNImportValueFormat format);

    /// Returns the value for a text, null for NULL; empty, with a sentence for the user in `reason`, if the
    /// column cannot hold it.
    std::optional<KNValue> convert(const QString &text, QString *reason) const;

private:
    std::optional<KNValue> valueOf(const QString &text, QString *reason) const;
    std::optional<KNValue> textValue(const QString &text, QString *reason) const;
    std::optional<KNValue> codePageValue(const QString &text, QString *reason) const;
    std::optional<KNValue> integerValue(const QString &text, QString *reason) const;
    std::optional<KNValue> decimalValue(const QString &text, QString *reason) const;
    std::optional<KNValue> realValue(const QString &text, QString *reason) const;
    std::optional<KNValue> booleanValue(const QString &text, QString *reason) const;
    std::optional<KNValue> dateValue(const QString &text, QString *reason) const;
    std::optional<KNValue> guidValue(const QString &text, QString *reason) const;
    std::optional<KNValue> binaryValue(const QString &text, QString *reason) const;
    QString dateProblem(const struct KNImportDateText &date) const;

    const KNImportColumnType m_type;
    const bool m_allowsNulls;
    const KNImportValueFormat m_format;
};
