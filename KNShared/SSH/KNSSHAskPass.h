#pragma once

#include "KNSharedExport.h"

#include <QStringList>
#include <QTemporaryDir>

/// The program that one run of `ssh` asks for passphrases (SSH_ASKPASS): a script in a private folder. It
/// answers each prompt once with what KNSSHPassphrases holds, which it reads from pipes: a passphrase is
/// never in a file, in an argument or in the environment. It records other prompts and answers nothing.
class KNSHARED_EXPORT KNSSHAskPass
{
public:
    KNSSHAskPass();
    ~KNSSHAskPass();
    KNSSHAskPass(const KNSSHAskPass &) = delete;
    KNSSHAskPass &operator=(const KNSSHAskPass &) = delete;

    /// The variables for ssh, as NAME=value; empty if the script could not be written.
    QStringList environment() const;
    /// A prompt that was not answered; null if there was none.
    QString unansweredPrompt() const;
    /// The prompts that were answered.
    QStringList answeredPrompts() const;

private:
    bool writeAnswer(const QString &prompt, const QString &passphrase);

    const QTemporaryDir m_folder;
    bool m_isReady = false;
    QStringList m_prompts; ///< with an answer, by number
    QList<int> m_pipes;
};
