#pragma once

#include "SSH/KNSSHTunnelModel.h"
#include "UI/Dialogs/KNWindowController.h"

class KNFileField;
class QCheckBox;
class QLineEdit;
class QSpinBox;

/// Edits through which SSH server a connection goes. Ends with 1 when the user accepts it, 0 otherwise.
class KNSHAREDUI_EXPORT KNSSHTunnelWindowController : public KNWindowController
{
    Q_OBJECT

public:
    KNSSHTunnelWindowController(const KNSSHTunnelModel &model, QWidget *parent);

    /// As it is edited; unused when the tunnel is switched off.
    KNSSHTunnelModel sshTunnelModel() const;

private:
    QCheckBox *const m_isUsed;
    QLineEdit *const m_host;
    QSpinBox *const m_port;
    QLineEdit *const m_username;
    KNFileField *const m_keyFile;
};
