#pragma once

#include "UI/Import/KNImportPage.h"

class KNFileField;
class KNImportTextModel;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QTableView;

/// Chooses the file and how it is read, and shows its first rows.
class KNSHAREDUI_EXPORT KNImportFilePage : public KNImportPage
{
    Q_OBJECT

public:
    KNImportFilePage(KNImportSession &session, const QString &path, QWidget *parent = nullptr);

    QString title() const override;
    bool isComplete() const override;

    KNFileField *file() const { return m_file; }
    QTableView *preview() const { return m_preview; }
    QString status() const;

private:
    void arrange();
    void addChoices();
    void chooseFormat();
    void readFile();
    void showAnalysis();
    void showSheets(const QStringList &sheets);
    KNImportFile chosenFile() const;

    KNFileField *const m_file;
    QComboBox *const m_format;
    QComboBox *const m_sheet;
    QComboBox *const m_encoding;
    QComboBox *const m_separator;
    QComboBox *const m_quote;
    QCheckBox *const m_header;
    QFormLayout *const m_form;
    KNImportTextModel *const m_rows;
    QTableView *const m_preview;
    QLabel *const m_status;
};
