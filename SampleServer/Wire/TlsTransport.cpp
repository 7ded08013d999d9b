#include "Wire/TlsTransport.h"

#include "Types/ResultSink.h"
#include "Wire/Countdown.h"
#include "Wire/ProtocolError.h"

#include <gnutls/gnutls.h>

namespace SampleServer {

namespace {

constexpr std::size_t LargestRecord = 16384; ///< payload bytes

void check(int result)
{
    if (result < 0)
        throw std::runtime_error(gnutls_strerror(result));
}

bool mustWait(ssize_t result)
{
    return result == GNUTLS_E_AGAIN || result == GNUTLS_E_INTERRUPTED;
}

} // namespace

void TlsTransport::SessionEnd::operator()(gnutls_session_int *session) const
{
    gnutls_deinit(session);
}

TlsTransport::TlsTransport(Transport &clear)
    : m_clear(clear)
{
}

TlsTransport::~TlsTransport() = default;

void TlsTransport::start(const TlsCertificate &certificate, Clock::time_point deadline)
{
    gnutls_session_t session = nullptr;
    check(gnutls_init(&session, GNUTLS_SERVER | GNUTLS_NO_TICKETS));
    m_session.reset(session);
    check(gnutls_priority_set_direct(session, "NORMAL:-VERS-ALL:+VERS-TLS1.2", nullptr));
    check(gnutls_credentials_set(session, GNUTLS_CRD_CERTIFICATE, certificate.credentials()));
    gnutls_transport_set_ptr(session, this);
    gnutls_transport_set_pull_function(session, pull);
    gnutls_transport_set_push_function(session, push);

    m_record.resize(LargestRecord);
    m_handshake.emplace(m_clear);
    shakeHands(deadline);
    m_handshake.reset();
}

void TlsTransport::shakeHands(Clock::time_point deadline)
{
    for (;;) {
        const int result = gnutls_handshake(m_session.get());
        if (result < 0 && gnutls_error_is_fatal(result)) {
            gnutls_alert_send_appropriate(m_session.get(), result);
            if (!m_failure)
                m_handshake->flush();
            fail(result);
        }
        m_handshake->flush();
        if (result == GNUTLS_E_SUCCESS)
            return;
        if (mustWait(result) && !m_handshake->waitReadable(Countdown(deadline).left()))
            throw ProtocolError("The client took too long to shake hands.");
    }
}

void TlsTransport::stop()
{
    m_session.reset();
    m_begin = m_end = 0;
}

Transport &TlsTransport::below()
{
    return m_handshake ? static_cast<Transport &>(*m_handshake) : m_clear;
}

/// Passes received bytes to GnuTLS. It must not wait: a client may stop in the middle of a record.
ssize_t TlsTransport::pull(void *self, void *data, std::size_t size)
{
    auto &tls = *static_cast<TlsTransport *>(self);
    try {
        Transport &below = tls.below();
        if (below.waitReadable(std::chrono::milliseconds::zero()))
            return static_cast<ssize_t>(below.read({static_cast<std::uint8_t *>(data), size}));
        gnutls_transport_set_errno(tls.m_session.get(), EAGAIN);
    } catch (...) {
        tls.m_failure = std::current_exception();
        gnutls_transport_set_errno(tls.m_session.get(), EIO);
    }
    return -1;
}

ssize_t TlsTransport::push(void *self, const void *data, std::size_t size)
{
    auto &tls = *static_cast<TlsTransport *>(self);
    try {
        tls.below().write({static_cast<const std::uint8_t *>(data), size});
        return static_cast<ssize_t>(size);
    } catch (...) {
        tls.m_failure = std::current_exception();
        gnutls_transport_set_errno(tls.m_session.get(), EIO);
        return -1;
    }
}

void TlsTransport::fail(int result)
{
    if (m_failure)
        std::rethrow_exception(m_failure);
    if (result == GNUTLS_E_PREMATURE_TERMINATION)
        throw ConnectionLost();
    throw ProtocolError(gnutls_strerror(result));
}

/// Decrypts the next record if none is left; false while it is incomplete.
bool TlsTransport::decrypt()
{
    const ssize_t count = gnutls_record_recv(m_session.get(), m_record.data(), m_record.size());
    if (count == 0)
        throw ConnectionLost();
    if (mustWait(count))
        return false;
    if (count < 0)
        fail(static_cast<int>(count));
    m_begin = 0;
    m_end = static_cast<std::size_t>(count);
    return true;
}

bool TlsTransport::waitReadable(std::chrono::milliseconds timeout)
{
    if (!m_session)
        return m_clear.waitReadable(timeout);
    const Countdown countdown(timeout);
    while (m_begin == m_end) {
        if (!decrypt() && !m_clear.waitReadable(countdown.left()))
            return false;
    }
    return true;
}

std::size_t TlsTransport::read(std::span<std::uint8_t> buffer)
{
    if (!m_session)
        return m_clear.read(buffer);
    waitReadable(Forever);
    const std::size_t count = std::min(buffer.size(), m_end - m_begin);
    std::copy_n(m_record.begin() + static_cast<std::ptrdiff_t>(m_begin), count, buffer.begin());
    m_begin += count;
    return count;
}

void TlsTransport::write(std::span<const std::uint8_t> bytes)
{
    if (!m_session)
        return m_clear.write(bytes);
    while (!bytes.empty()) {
        const ssize_t count = gnutls_record_send(m_session.get(), bytes.data(), bytes.size());
        if (count >= 0)
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        else if (!mustWait(count))
            fail(static_cast<int>(count));
    }
}

} // namespace SampleServer
