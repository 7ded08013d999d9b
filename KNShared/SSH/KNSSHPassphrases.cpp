#include "SSH/KNSSHPassphrases.h"

#include "Foundation/KNLogHelper.h"

#include <mutex>

namespace {

const QString PromptKey = QStringLiteral("com.quorvex.vantor.ssh.passphrasePrompt");

struct Passphrases
{
    std::mutex mutex;
    QMap<QString, QString> byPrompt; ///< guarded by mutex
};

Passphrases &passphrases()
{
    static auto *const instance = new Passphrases; // never destroyed: tunnels may open while the program ends
    return *instance;
}

} // namespace

void KNSSHPassphrases::set(const QString &prompt, const QString &passphrase)
{
    KNLogHelper::sharedInstance()->registerSecret(passphrase);
    const std::lock_guard lock(passphrases().mutex);
    passphrases().byPrompt.insert(prompt, passphrase);
}

void KNSSHPassphrases::forget(const QString &prompt)
{
    const std::lock_guard lock(passphrases().mutex);
    passphrases().byPrompt.remove(prompt);
}

QMap<QString, QString> KNSSHPassphrases::all()
{
    const std::lock_guard lock(passphrases().mutex);
    return passphrases().byPrompt;
}

QString KNSSHPassphrases::promptIn(const KNError &error)
{
    return error.userInfo().value(PromptKey).toString();
}

QVariantMap KNSSHPassphrases::errorInfo(const QString &prompt)
{
    return {{PromptKey, prompt}};
}
