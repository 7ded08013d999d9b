#pragma once

#include "Database/VantorDatabaseClient.h"

#include <QWidget>

class QLabel;

/// A padlock with a few words about how the connection is protected. Hidden while that is not known.
class EncryptionMark : public QWidget
{
    Q_OBJECT

public:
    explicit EncryptionMark(QWidget *parent = nullptr);

    /// `tunnel` is the SSH server that the connection passes; empty for none.
    void setEncryption(VantorEncryption encryption, const QString &tunnel);
    QString text() const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void showIcon();

    QLabel *const m_icon;
    QLabel *const m_text;
    VantorEncryption m_encryption = VantorEncryption::Unknown;
};
