#pragma once

#include "Export/CsvOptions.h"
#include "Export/ResultRows.h"
#include "UI/Dialogs/KNWindowController.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;

/// Asks for the format of an export and the options of CSV files, beginning with those used last. On the UI
/// thread.
class KNSHAREDUI_EXPORT KNExportDialog : public KNWindowController
{
    Q_OBJECT

public:
    /// `hiddenColumns` is how many of the columns the grid hides.
    KNExportDialog(const ResultRows &rows, qsizetype hiddenColumns, QWidget *parent);

    /// Says what will be written: "1,234 rows and all 8 columns are written, also 2 hidden columns."
    QString summary() const;
    /// The chosen format's file extension.
    QString extension() const;
    CsvOptions csvOptions() const;
    /// Makes the choices the initial ones of the next dialog.
    void remember() const;

private:
    void addCsvOptions();
    void showCsvOptions(const CsvOptions &options);

    QLabel *m_summary;
    QComboBox *m_formats;
    QFormLayout *m_form; ///< the format, followed by the options of CSV files
    QComboBox *m_separators;
    QComboBox *m_encodings;
    QCheckBox *m_byteOrderMark;
    QCheckBox *m_header;
    QCheckBox *m_quotes;
    QLineEdit *m_nullText;
};
