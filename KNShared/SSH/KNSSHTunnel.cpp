#include "SSH/KNSSHTunnel.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "SSH/KNSSHAskPass.h"
#include "SSH/KNSSHCommand.h"
#include "SSH/KNSSHHostKey.h"
#include "SSH/KNSSHPassphrases.h"
#include "SSH/KNSSHProcess.h"

#include <arpa/inet.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

/// The tunnels of the process.
struct Tunnels
{
    std::mutex mutex;
    std::vector<std::weak_ptr<KNSSHTunnel>> all; ///< guarded by mutex
};

Tunnels &tunnels()
{
    // Never destroyed: connections may still be opened while the program ends.
    static auto *const instance = new Tunnels;
    return *instance;
}

/// Returns a loopback port that is currently not in use; 0 if there is none.
quint16 freePort()
{
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    const bool found = bind(descriptor, generic, size) == 0 && getsockname(descriptor, generic, &size) == 0;
    close(descriptor);
    return found ? ntohs(address.sin_port) : 0;
}

} // namespace

std::shared_ptr<KNSSHTunnel> KNSSHTunnel::open(const KNSSHTunnelModel &model, const QString &host,
                                               quint16 port, std::chrono::seconds timeout, KNError *error)
{
    std::shared_ptr<KNSSHTunnel> tunnel;
    {
        const std::lock_guard lock(tunnels().mutex);
        std::erase_if(tunnels().all, [](const std::weak_ptr<KNSSHTunnel> &one) { return one.expired(); });
        for (const std::weak_ptr<KNSSHTunnel> &one : tunnels().all) {
            const auto other = one.lock();
            if (other && other->leadsTo(model, host, port) && other->isAlive())
                tunnel = other;
        }
        if (!tunnel) {
            tunnel = std::make_shared<KNSSHTunnel>(Private(), model, host, port, timeout);
            tunnels().all.push_back(tunnel);
        }
    }
    return tunnel->waitUntilOpen(error) ? tunnel : nullptr;
}

KNSSHTunnel::KNSSHTunnel(Private, const KNSSHTunnelModel &model, const QString &host, quint16 port,
                         std::chrono::seconds timeout)
    : m_model(model)
    , m_host(host)
    , m_port(port)
    , m_timeout(timeout)
    , m_stop(eventfd(0, EFD_CLOEXEC))
    , m_keeper([this] { keep(); })
{
}

KNSSHTunnel::~KNSSHTunnel()
{
    eventfd_write(m_stop, 1);
    m_keeper.join();
    close(m_stop);
}

bool KNSSHTunnel::isAlive() const
{
    const std::lock_guard lock(m_mutex);
    return m_state != State::Ended;
}

bool KNSSHTunnel::couldNotReachHost(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, timeout, [this] { return m_couldNotReachHost || m_state == State::Ended; });
    return m_couldNotReachHost;
}

bool KNSSHTunnel::leadsTo(const KNSSHTunnelModel &model, const QString &host, quint16 port) const
{
    return m_model == model && m_host == host && m_port == port;
}

bool KNSSHTunnel::waitUntilOpen(KNError *error)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_state != State::Opening; });
    *error = m_error;
    return m_state == State::Open;
}

void KNSSHTunnel::keep()
{
    // Another process may bind the free port before ssh does.
    constexpr int Attempts = 3;
    for (int attempt = 1; attempt <= Attempts; ++attempt) {
        if (serve(attempt == Attempts))
            return;
    }
}

/// Runs one attempt until it ends. Returns true if the tunnel was open or another attempt would not help.
bool KNSSHTunnel::serve(bool isLastAttempt)
{
    const QDeadlineTimer deadline(m_timeout);
    m_localPort = freePort();
    const KNSSHAskPass askPass;
    KNSSHProcess process(
        KNSSHCommand::toForward(m_model, m_localPort, m_host, m_port, static_cast<int>(m_timeout.count())),
        askPass.environment());
    KNSSHProcess::Event event = KNSSHProcess::Event::Complaint;
    while (event == KNSSHProcess::Event::Complaint)
        event = process.wait(m_stop, deadline);
    if (event != KNSSHProcess::Event::Output) {
        const QString complaints = process.complaints();
        if (complaints.contains(QLatin1String("cannot listen to port")) && !isLastAttempt)
            return false;
        change(State::Ended,
               event == KNSSHProcess::Event::TimedOut
                   ? KNError(KNSSHCommand::ErrorDomain, KNSSHCommand::Failed,
                             KNFormat("The SSH server %@ did not answer in time.", m_model.host))
                   : explained(complaints, askPass));
        return true;
    }
    change(State::Open);
    while (event == KNSSHProcess::Event::Output || event == KNSSHProcess::Event::Complaint) {
        if (process.complaints().contains(QLatin1String("open failed:")))
            noteUnreachableHost();
        event = process.wait(m_stop, QDeadlineTimer::Forever);
    }
    KNLogHelper::sharedInstance()->logMessage("The SSH tunnel through %@ has ended. %@", m_model.host,
                                              process.complaints());
    change(State::Ended);
    return true;
}

void KNSSHTunnel::change(State state, const KNError &error)
{
    const std::lock_guard lock(m_mutex);
    m_state = state;
    m_error = error;
    m_changed.notify_all();
}

void KNSSHTunnel::noteUnreachableHost()
{
    const std::lock_guard lock(m_mutex);
    m_couldNotReachHost = true;
    m_changed.notify_all();
}

KNError KNSSHTunnel::explained(const QString &complaints, const KNSSHAskPass &askPass) const
{
    const KNError error = KNSSHCommand::errorFor(m_model, complaints);
    if (error.code() == KNSSHCommand::NotLetIn)
        return missingPassphrase(error, askPass);
    if (error.code() != KNSSHCommand::UnknownHost)
        return error;
    const auto key = KNSSHHostKey::ask(m_model, QDeadlineTimer(m_timeout));
    return key ? key->unknownHostError() : error;
}

/// The error that asks for a passphrase, if ssh has asked for one that is unknown or may be wrong.
KNError KNSSHTunnel::missingPassphrase(const KNError &error, const KNSSHAskPass &askPass) const
{
    const auto needs = [&](const QString &prompt, const char *why) {
        return KNError(KNSSHCommand::ErrorDomain, KNSSHCommand::NeedsPassphrase,
                       KNFormat("The SSH server %@ %@ (%@)", m_model.host, why, prompt.trimmed()),
                       KNSSHPassphrases::errorInfo(prompt));
    };
    if (const QString prompt = askPass.unansweredPrompt(); !prompt.isEmpty())
        return needs(prompt,
                     "needs a key whose passphrase is not known, and which the SSH agent does not hold.");
    const QStringList answered = askPass.answeredPrompts();
    for (const QString &prompt : answered)
        KNSSHPassphrases::forget(prompt);
    return answered.isEmpty() ? error
                              : needs(answered.last(), "did not accept the key, or its passphrase is wrong.");
}
