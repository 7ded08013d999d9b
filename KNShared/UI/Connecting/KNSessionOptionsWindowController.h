#pragma once

#include "UI/Dialogs/KNWindowController.h"

#include <QVariantMap>

class KNFileField;
class QCheckBox;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QSpinBox;

/// Edits the session parameters of a connection. Ends with 1 if accepted, 0 otherwise.
class KNSHAREDUI_EXPORT KNSessionOptionsWindowController : public KNWindowController
{
    Q_OBJECT

public:
    KNSessionOptionsWindowController(const QVariantMap &parameters, QWidget *parent);

    /// The edited parameters. Parameters with default values are left out, those unknown to this dialog are
    /// kept.
    QVariantMap connectionSessionParameters() const;

private:
    void updateControls();
    QString explanation() const;

    const QVariantMap m_parameters;
    QComboBox *const m_encryption;
    QLabel *const m_explanation; ///< what the chosen encryption means
    QCheckBox *const m_trustsAnyone;
    KNFileField *const m_certificateFile;
    QCheckBox *const m_checksHostName;
    QSpinBox *const m_loginTimeout;
    QSpinBox *const m_queryTimeout;
    QComboBox *const m_intent;
    QPlainTextEdit *const m_statements;
};
