#pragma once

#include "SQL/Format/KNSQLFormatStyle.h"

#include <QGroupBox>

class QCheckBox;
class QComboBox;
class QSpinBox;

/// The part of the preferences that decides how "Format" lays out a text.
class FormatPreferences : public QGroupBox
{
    Q_OBJECT

public:
    explicit FormatPreferences(QWidget *parent = nullptr);

    void setFormatStyle(const KNSQLFormatStyle &style);
    KNSQLFormatStyle formatStyle() const;

private:
    QComboBox *const m_keywordCase;
    QCheckBox *const m_leadingCommas;
    QSpinBox *const m_indent;
    QSpinBox *const m_width;
};
