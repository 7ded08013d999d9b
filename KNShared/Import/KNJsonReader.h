#pragma once

#include "Import/KNImportFormat.h"
#include "Import/KNImportRowQueue.h"
#include "Import/KNJsonEscapeCheck.h"

#include <QHash>
#include <QList>

/// Reads a JSON array of objects, or objects one after the other as in JSON Lines. Every key is a column, and
/// a missing key is null. Numbers keep their digits, and nested objects and arrays become JSON text.
class KNJsonReader : public KNImportReader
{
    Q_DECLARE_TR_FUNCTIONS(KNJsonReader)

public:
    static std::unique_ptr<KNImportReader> open(const KNImportFile &file, KNError *error);

    ~KNJsonReader() override;
    QStringList columns() const override { return m_columns; }
    bool readRow(KNImportRow *row, KNError *error) override;
    double progress() const override { return m_lines.source.progress(); }

private:
    struct Parser;
    friend struct Parser;

    KNJsonReader();
    bool parse(QByteArrayView piece, KNError *error);
    bool finish(KNError *error);
    bool refuse(const QString &reason);
    bool beginRecord();
    bool endRecord();
    bool setKey(const QString &key);
    bool setValue(const QString &value);

    KNImportLines m_lines;
    KNJsonEscapeCheck m_escapes;
    const std::unique_ptr<Parser> m_parser;
    QStringList m_columns;
    QHash<QString, qsizetype> m_positions; ///< of the columns by name
    KNImportRowQueue m_rows;
    KNImportRow m_current;
    QList<bool> m_isSet;      ///< which values of the current record were given
    qsizetype m_key = -1;     ///< the column of the current key
    QString m_refusal;        ///< why the content is no list of records; null if it is
    qsizetype m_unparsed = 0; ///< bytes since the last token ended
    bool m_isBlank = true;    ///< no token so far
};
