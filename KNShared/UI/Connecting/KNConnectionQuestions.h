#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"
#include "UI/KNSharedUIExport.h"

#include <functional>

class KNSSHHostKey;
struct KNServerCertificate;
class QWidget;

/// The questions that a failed login may raise. On the UI thread.
namespace KNConnectionQuestions {

/// Whether the user wants to connect again, because the answer has removed the reason of the failure.
using Answered = std::function<void(bool connectsAgain)>;

/// Asks over `window` about the reason of a failed login, if the user can decide about it. Calls `answered`,
/// perhaps before it returns, but not after `window` is destroyed. May change the settings.
KNSHAREDUI_EXPORT void ask(QWidget *window, const KNError &error, const VantorDBCPtr &details,
                           const Answered &answered);

/// Asks whether this is the SSH server's key, and remembers it if the user accepts it.
KNSHAREDUI_EXPORT void askAboutHostKey(QWidget *window, const KNSSHHostKey &key, const Answered &answered);

/// Shows a certificate whose check failed for `reason` and asks whether to trust it; then the settings accept
/// it and no other one.
KNSHAREDUI_EXPORT void askAboutCertificate(QWidget *window, const KNServerCertificate &certificate,
                                           const QString &reason, const VantorDBCPtr &details,
                                           const Answered &answered);

/// Asks for the passphrase of an SSH key with ssh's own prompt; it is known until the program ends.
KNSHAREDUI_EXPORT void askForPassphrase(QWidget *window, const QString &prompt, const QString &reason,
                                        const Answered &answered);

} // namespace KNConnectionQuestions
