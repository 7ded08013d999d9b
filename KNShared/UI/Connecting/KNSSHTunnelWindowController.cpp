#include "UI/Connecting/KNSSHTunnelWindowController.h"

#include "UI/Dialogs/KNFileField.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

KNSSHTunnelWindowController::KNSSHTunnelWindowController(const KNSSHTunnelModel &model, QWidget *parent)
    : KNWindowController(parent)
    , m_isUsed(new QCheckBox(tr("&Connect through an SSH server")))
    , m_host(new QLineEdit(model.host))
    , m_port(new QSpinBox)
    , m_username(new QLineEdit(model.username))
    , m_keyFile(new KNFileField(tr("Private key")))
{
    setWindowTitle(tr("SSH Tunnel"));
    m_isUsed->setChecked(model.isUsed());
    m_port->setRange(0, 65535);
    m_port->setSpecialValueText(tr("Default"));
    m_port->setValue(model.port);
    m_username->setPlaceholderText(tr("From your SSH configuration"));
    m_keyFile->setPath(model.keyFile);
    m_keyFile->lineEdit()->setPlaceholderText(tr("SSH agent and usual keys"));
    m_keyFile->setMinimumWidth(fontMetrics().averageCharWidth() * 55);
    auto *const note = new QLabel(
        tr("The system's ssh makes the tunnel, with your SSH configuration. The passphrase of a key that "
           "the SSH agent does not hold is asked for. The SSH server looks up the database server's name."));
    note->setWordWrap(true);

    auto *const form = new QFormLayout;
    form->addRow(tr("SSH &server:"), m_host);
    form->addRow(tr("&Port:"), m_port);
    form->addRow(tr("&User name:"), m_username);
    form->addRow(tr("Private &key:"), m_keyFile);
    QDialogButtonBox *const buttons = makeButtons(tr("OK"));
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_isUsed);
    layout->addLayout(form);
    layout->addWidget(note);
    layout->addStretch();
    layout->addWidget(buttons);

    const auto update = [this, accept = acceptButton(*buttons)] {
        const bool isUsed = m_isUsed->isChecked();
        for (QWidget *const widget : {static_cast<QWidget *>(m_host), static_cast<QWidget *>(m_port),
                                      static_cast<QWidget *>(m_username), static_cast<QWidget *>(m_keyFile)})
            widget->setEnabled(isUsed);
        accept->setEnabled(!isUsed || !m_host->text().trimmed().isEmpty());
    };
    connect(m_isUsed, &QCheckBox::toggled, this, [this, update] {
        update();
        if (m_isUsed->isChecked())
            m_host->setFocus();
    });
    connect(m_host, &QLineEdit::textChanged, this, update);
    update();
    m_isUsed->setFocus();
}

KNSSHTunnelModel KNSSHTunnelWindowController::sshTunnelModel() const
{
    if (!m_isUsed->isChecked())
        return {};
    return {m_host->text().trimmed(), static_cast<quint16>(m_port->value()), m_username->text().trimmed(),
            m_keyFile->path()};
}
