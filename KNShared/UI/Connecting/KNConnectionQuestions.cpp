#include "UI/Connecting/KNConnectionQuestions.h"

#include "Database/KNServerCertificate.h"
#include "Foundation/KNFormat.h"
#include "SSH/KNSSHHostKey.h"
#include "SSH/KNSSHPassphrases.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Connecting/KNPasswordWindowController.h"

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>

namespace {

struct KNConnectionQuestionTexts
{
    Q_DECLARE_TR_FUNCTIONS(KNConnectionQuestions)
};

} // namespace

void KNConnectionQuestions::ask(QWidget *window, const KNError &error, const VantorDBCPtr &details,
                                const Answered &answered)
{
    if (const auto key = KNSSHHostKey::fromError(error))
        askAboutHostKey(window, *key, answered);
    else if (const auto certificate = KNServerCertificate::fromError(error))
        askAboutCertificate(window, *certificate, error.localizedDescription(), details, answered);
    else if (const QString prompt = KNSSHPassphrases::promptIn(error); !prompt.isEmpty())
        // The text ends with the prompt in parentheses.
        askForPassphrase(window, prompt, error.localizedDescription().section(QStringLiteral(" ("), 0, 0),
                         answered);
    else
        answered(false);
}

void KNConnectionQuestions::askAboutHostKey(QWidget *window, const KNSSHHostKey &key,
                                            const Answered &answered)
{
    KNAlerts::Question question;
    question.title = KNConnectionQuestionTexts::tr("Is this the right SSH server?");
    question.text = KNFormat(KNConnectionQuestionTexts::tr(
                                 "%@ is not known yet. Its %@ key has the fingerprint\n\n%@\n\nCompare it "
                                 "with the one from the server's administrator. If they differ, someone "
                                 "may be pretending to be the server."),
                             key.host(), key.type(), key.fingerprint());
    question.buttons = QStringList{KNConnectionQuestionTexts::tr("Cancel"),
                                   KNConnectionQuestionTexts::tr("Accept Key and Connect")};
    KNAlerts::shared().ask(window, question, [window = QPointer(window), key, answered](int button) {
        if (!window)
            return;
        KNError problem;
        const bool isAccepted = button == 1 && key.accept(&problem);
        if (problem)
            KNAlerts::shared().showError(window, problem);
        answered(isAccepted);
    });
}

void KNConnectionQuestions::askAboutCertificate(QWidget *window, const KNServerCertificate &certificate,
                                                const QString &reason, const VantorDBCPtr &details,
                                                const Answered &answered)
{
    const auto date = [](const QDateTime &time) { return time.toString(QStringLiteral("yyyy-MM-dd")); };
    KNAlerts::Question question;
    question.title = KNConnectionQuestionTexts::tr("Trust this certificate?");
    question.text = KNFormat(
        KNConnectionQuestionTexts::tr(
            "%@\n\nServer: %@\nIssued to: %@\nIssued by: %@\nValid: %@ to %@\nSHA-256 fingerprint:\n%@\n\n"
            "Compare the fingerprint with the one from the server's administrator. If they differ, someone "
            "may "
            "be pretending to be the server. If you trust the certificate, this connection accepts it and no "
            "other one."),
        reason, details->host(), certificate.subject, certificate.issuer, date(certificate.validFrom),
        date(certificate.validUntil), certificate.fingerprint());
    question.buttons = QStringList{KNConnectionQuestionTexts::tr("Cancel"),
                                   KNConnectionQuestionTexts::tr("Trust This Certificate")};
    KNAlerts::shared().ask(window, question,
                           [window = QPointer(window), certificate, details, answered](int button) {
                               if (!window)
                                   return;
                               if (button == 1)
                                   certificate.pinTo(*details);
                               answered(button == 1);
                           });
}

void KNConnectionQuestions::askForPassphrase(QWidget *window, const QString &prompt, const QString &reason,
                                             const Answered &answered)
{
    auto *const sheet =
        new KNPasswordWindowController({KNConnectionQuestionTexts::tr("Passphrase of the SSH Key"),
                                        prompt.trimmed().replace(u'&', QStringLiteral("&&")),
                                        KNConnectionQuestionTexts::tr("Connect"), reason},
                                       window);
    sheet->beginSheet([sheet, prompt, answered](int code) {
        if (code == 1)
            KNSSHPassphrases::set(prompt, sheet->password());
        answered(code == 1);
    });
}
