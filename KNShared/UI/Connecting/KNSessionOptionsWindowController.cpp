#include "UI/Connecting/KNSessionOptionsWindowController.h"

#include "Database/KNServerCertificate.h"
#include "Foundation/KNFormat.h"
#include "UI/Dialogs/KNFileField.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QStandardItemModel>

namespace {

const QString Encryption = QStringLiteral("encryption");
const QString TrustedCertificateFile = QStringLiteral("trustedCertificateFile");
const QString PinnedCertificate = QStringLiteral("pinnedCertificate");
const QString TrustServerCertificate = QStringLiteral("trustServerCertificate");
const QString CheckHostName = QStringLiteral("checkHostName");
const QString LoginTimeout = QStringLiteral("loginTimeout");
const QString QueryTimeout = QStringLiteral("queryTimeout");
const QString ApplicationIntent = QStringLiteral("applicationIntent");
const QString InitialStatements = QStringLiteral("initialStatements");
constexpr int DefaultLoginTimeout = 15;

QString off()
{
    return QStringLiteral("off");
}

QString request()
{
    return QStringLiteral("request");
}

QString required()
{
    return QStringLiteral("require");
}

/// Everything is encrypted, and one certificate is accepted.
QString pinned()
{
    return QStringLiteral("pinned");
}

void select(QComboBox *box, const QString &value)
{
    box->setCurrentIndex(std::max(0, box->findData(value)));
}

} // namespace

KNSessionOptionsWindowController::KNSessionOptionsWindowController(const QVariantMap &parameters,
                                                                   QWidget *parent)
    : KNWindowController(parent)
    , m_parameters(parameters)
    , m_encryption(new QComboBox)
    , m_explanation(new QLabel)
    , m_trustsAnyone(new QCheckBox(tr("&Trust any server certificate")))
    , m_certificateFile(new KNFileField(tr("Trusted certificate"),
                                        {tr("Certificates (*.pem *.crt *.cer)"), tr("All files (*)")}))
    , m_checksHostName(new QCheckBox(tr("Certificate must be for this &host")))
    , m_loginTimeout(new QSpinBox)
    , m_queryTimeout(new QSpinBox)
    , m_intent(new QComboBox)
    , m_statements(new QPlainTextEdit)
{
    setWindowTitle(tr("Connection Options"));
    const bool isPinned = parameters.contains(PinnedCertificate);
    m_encryption->addItem(tr("Encrypt the login if the server can"), request());
    m_encryption->addItem(tr("Encrypt everything"), required());
    if (isPinned)
        m_encryption->addItem(tr("Encrypt everything, trust one certificate"), pinned());
    m_encryption->addItem(tr("Do not encrypt"), off());
    select(m_encryption, isPinned ? pinned() : parameters.value(Encryption, request()).toString());
    m_encryption->setAccessibleName(tr("Encryption"));
    m_explanation->setWordWrap(true);
    m_explanation->setTextFormat(Qt::PlainText);
    m_explanation->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_explanation->setForegroundRole(QPalette::PlaceholderText);
    m_explanation->setMinimumHeight(fontMetrics().lineSpacing() * 3);
    m_explanation->setAlignment(Qt::AlignTop);
    m_trustsAnyone->setChecked(parameters.value(TrustServerCertificate).toBool());
    m_trustsAnyone->setToolTip(tr("Nobody can listen, but another server could pretend to be this one."));
    m_certificateFile->setPath(parameters.value(TrustedCertificateFile).toString());
    m_certificateFile->lineEdit()->setPlaceholderText(tr("The system's authorities"));
    m_certificateFile->setMinimumWidth(fontMetrics().averageCharWidth() * 55);
    m_checksHostName->setChecked(parameters.value(CheckHostName, true).toBool());
    m_loginTimeout->setRange(1, 3600);
    m_loginTimeout->setSuffix(tr(" s"));
    m_loginTimeout->setValue(parameters.value(LoginTimeout, DefaultLoginTimeout).toInt());
    m_queryTimeout->setRange(0, 86400);
    m_queryTimeout->setSuffix(tr(" s"));
    m_queryTimeout->setSpecialValueText(tr("None"));
    m_queryTimeout->setValue(parameters.value(QueryTimeout).toInt());
    m_intent->addItem(tr("Read and write"), QString());
    m_intent->addItem(tr("Read only"), QStringLiteral("readonly"));
    select(m_intent, parameters.value(ApplicationIntent).toString());
    m_statements->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_statements->setPlainText(parameters.value(InitialStatements).toString());
    m_statements->setPlaceholderText(QStringLiteral("SET LOCK_TIMEOUT 5000"));
    m_statements->setTabChangesFocus(true);
    m_statements->setMinimumHeight(m_statements->fontMetrics().lineSpacing() * 5);

    auto *const form = new QFormLayout;
    form->addRow(tr("&Encryption:"), m_encryption);
    form->addRow(QString(), m_explanation);
    form->addRow(tr("Trusted &certificate:"), m_certificateFile);
    form->addRow(QString(), m_checksHostName);
    form->addRow(QString(), m_trustsAnyone);
    form->addRow(tr("&Login time-out:"), m_loginTimeout);
    form->addRow(tr("&Query time-out:"), m_queryTimeout);
    form->addRow(tr("Application &intent:"), m_intent);
    form->addRow(tr("Initial &statements:"), m_statements);
    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(makeButtons(tr("OK")));

    connect(m_encryption, &QComboBox::currentIndexChanged, this,
            &KNSessionOptionsWindowController::updateControls);
    connect(m_certificateFile->lineEdit(), &QLineEdit::textChanged, this,
            &KNSessionOptionsWindowController::updateControls);
    connect(m_trustsAnyone, &QCheckBox::toggled, this, &KNSessionOptionsWindowController::updateControls);
    updateControls();
}

void KNSessionOptionsWindowController::updateControls()
{
    const bool isEncrypted = m_encryption->currentData() != off() && m_encryption->currentData() != pinned();
    const bool isVerified = isEncrypted && !m_trustsAnyone->isChecked();
    m_trustsAnyone->setEnabled(isEncrypted);
    m_certificateFile->setEnabled(isVerified);
    m_checksHostName->setEnabled(isVerified);
    // A specified certificate must be verified; the mode "request" could skip that.
    const bool namesCertificate = isVerified && !m_certificateFile->path().isEmpty();
    if (auto *const modes = qobject_cast<QStandardItemModel *>(m_encryption->model()))
        modes->item(m_encryption->findData(request()))->setEnabled(!namesCertificate);
    if (namesCertificate && m_encryption->currentData() == request())
        select(m_encryption, required());
    m_explanation->setText(explanation());
}

QString KNSessionOptionsWindowController::explanation() const
{
    const QVariant mode = m_encryption->currentData();
    if (mode == off())
        return tr("Everything is sent as plain text, also the password.");
    if (mode == request())
        return tr(
            "Statements and results are sent as plain text, unless the server requires encryption. Nothing "
            "proves that it is the right server.");
    if (mode == pinned())
        return KNFormat(
            tr("Only the certificate with this SHA-256 fingerprint is accepted:\n%@"),
            KNServerCertificate::fingerprintOf(m_parameters.value(PinnedCertificate).toByteArray()));
    if (m_trustsAnyone->isChecked())
        return tr("Nobody can listen, but another server could pretend to be this one.");
    return tr("The server must prove with a valid certificate that it is the right one.");
}

QVariantMap KNSessionOptionsWindowController::connectionSessionParameters() const
{
    QVariantMap parameters = m_parameters;
    const auto set = [&](const QString &key, const QVariant &value, const QVariant &defaultValue) {
        if (value == defaultValue)
            parameters.remove(key);
        else
            parameters.insert(key, value);
    };
    const bool isVerified = m_checksHostName->isEnabled();
    const bool isPinned = m_encryption->currentData() == pinned();
    if (!isPinned)
        parameters.remove(PinnedCertificate);
    set(Encryption, isPinned ? required() : m_encryption->currentData(), request());
    set(TrustServerCertificate, m_trustsAnyone->isEnabled() && m_trustsAnyone->isChecked(), false);
    set(TrustedCertificateFile, isVerified ? m_certificateFile->path() : QString(), QString());
    set(CheckHostName, !isVerified || m_checksHostName->isChecked(), true);
    set(LoginTimeout, m_loginTimeout->value(), DefaultLoginTimeout);
    set(QueryTimeout, m_queryTimeout->value(), 0);
    set(ApplicationIntent, m_intent->currentData(), QString());
    set(InitialStatements, m_statements->toPlainText().trimmed(), QString());
    return parameters;
}
