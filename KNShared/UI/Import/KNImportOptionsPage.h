#pragma once

#include "UI/Import/KNImportPage.h"

class KNCautionBar;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;
class QSpinBox;

/// Chooses how values are read, and how rows are written.
class KNSHAREDUI_EXPORT KNImportOptionsPage : public KNImportPage
{
    Q_OBJECT

public:
    explicit KNImportOptionsPage(KNImportSession &session, QWidget *parent = nullptr);

    QString title() const override;
    bool isComplete() const override;
    void apply() override;

private:
    void arrange();
    void chooseFaultFile();

    QComboBox *const m_empty;
    QComboBox *const m_dateFormat;
    QComboBox *const m_decimalPoint;
    QCheckBox *const m_identity;
    QCheckBox *const m_truncate;
    QSpinBox *const m_batchRows;
    QCheckBox *const m_skipsFaults;
    QLineEdit *const m_faultFile;
    QPushButton *const m_chooseFaultFile;
    KNCautionBar *const m_caution;
};
