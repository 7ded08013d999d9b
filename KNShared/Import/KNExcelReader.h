#pragma once

#include "Import/KNExcelStrings.h"
#include "Import/KNExcelStyles.h"
#include "Import/KNImportFormat.h"
#include "Import/KNImportHeaderReader.h"
#include "Import/KNZipFile.h"

#include <QList>
#include <QXmlStreamReader>

/// Reads a sheet of an Excel workbook (.xlsx). Formulas give the results that Excel stored, dates are
/// recognised by the formats of their cells, empty rows are skipped.
class KNSHARED_EXPORT KNExcelReader : public KNImportHeaderReader
{
    Q_DECLARE_TR_FUNCTIONS(KNExcelReader)

public:
    static std::unique_ptr<KNImportReader> open(const KNImportFile &file, KNError *error);
    /// The names of a workbook's sheets in its order; empty, with an error, if it cannot be read. Blocks on
    /// the file.
    static QStringList sheets(const QString &path, KNError *error);

    bool readRow(KNImportRow *row, KNError *error) override;
    double progress() const override;

private:
    /// A sheet of the workbook.
    struct Sheet
    {
        QString name;
        QString relation; ///< leads to its part
    };
    struct Cell
    {
        QString type;
        QString style;
        QString value;
    };

    bool openWorkbook(const QString &path, KNError *error);
    bool openSheet(const QString &name, KNError *error);
    bool readShared(KNError *error);
    void readWorkbook(QIODevice *device);
    QString partOf(const Sheet &sheet) const;
    bool nextRow(KNImportRow *row, KNError *error) override;
    bool readCells(KNImportRow *row);
    bool readCell(KNImportRow *row);
    QString readText();
    void putValue(KNImportRow *row, qsizetype column, const Cell &cell);
    KNError damaged() const;

    QString m_path;
    std::unique_ptr<KNZipFile> m_zip;
    std::unique_ptr<KNZipPart> m_part; ///< the sheet
    QXmlStreamReader m_xml;            ///< over m_part
    QList<Sheet> m_sheets;
    bool m_isSince1904 = false;
    KNExcelStyles m_styles;
    KNExcelStrings m_strings;
    quint64 m_line = 0;
};
