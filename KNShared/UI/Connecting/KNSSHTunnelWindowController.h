#pragma once

#include "SSH/KNSSHTunnelModel.h"
#include "UI/Dialogs/KNWindowController.h"

class KNFileField;
class QCheckBox;
class QLineEdit;
class QSpinBox;

/// Edits the SSH server of a connection. Ends with 1 if accepted, 0 otherwise.
class KNSHAREDUI_EXPORT KNSSHTunnelWindowController : public KNWindowController
{
    Q_OBJECT

public:
    KNSSHTunnelWindowController(const KNSSHTunnelModel &model, QWidget *parent);

    /// The edited tunnel; unused if the tunnel is switched off.
    KNSSHTunnelModel sshTunnelModel() const;

private:
    QCheckBox *const m_isUsed;
    QLineEdit *const m_host;
    QSpinBox *const m_port;
    QLineEdit *const m_username;
    KNFileField *const m_keyFile;
};
