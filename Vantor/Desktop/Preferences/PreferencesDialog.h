#pragma once

#include "UI/KNPreferences.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QFontComboBox;
class QSpinBox;

/// The user's preferences. They are saved when the dialog is accepted.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    explicit PreferencesDialog(QWidget *parent = nullptr);

    void accept() override;

private:
    KNPreferences edited() const;
    void fill(const KNPreferences &preferences);
    QWidget *makeEditorGroup();
    QWidget *makeResultsGroup();
    QWidget *makeProgramGroup();

    QFontComboBox *const m_font;
    QSpinBox *const m_fontSize;
    QSpinBox *const m_tabWidth;
    QSpinBox *const m_rowLimit;
    QLineEdit *const m_nullText;
    QComboBox *const m_dateFormat;
    QComboBox *const m_theme;
    QCheckBox *const m_reopensTabs;
    QCheckBox *const m_tracesProtocol;
};
