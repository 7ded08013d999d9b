#include "TlsWireClient.h"

#include <algorithm>
#include <gnutls/gnutls.h>
#include <stdexcept>

namespace {

constexpr std::uint8_t PreloginMessage = 18;

void check(ssize_t result)
{
    if (result < 0)
        throw std::runtime_error(gnutls_strerror(static_cast<int>(result)));
}

} // namespace

TlsWireClient::TlsWireClient(std::uint16_t port)
    : WireClient(port)
{
}

TlsWireClient::~TlsWireClient() = default;

std::uint8_t TlsWireClient::askForEncryption(std::uint8_t wish)
{
    sendMessage(PreloginMessage, LoginBytes::prelogin(wish));
    const Bytes answer = readMessage();
    // The second option, whose offset stands at 6 and 7 with the most significant byte first.
    if (answer.size() < 8 || answer.at(5) != 1)
        throw std::runtime_error("the prelogin says nothing of encryption");
    return answer.at(static_cast<std::size_t>(answer[6] << 8 | answer[7]));
}

void TlsWireClient::startTls(std::size_t packetSize)
{
    gnutls_certificate_credentials_t credentials = nullptr;
    check(gnutls_certificate_allocate_credentials(&credentials));
    m_credentials.reset(credentials, gnutls_certificate_free_credentials);
    gnutls_session_t session = nullptr;
    check(gnutls_init(&session, GNUTLS_CLIENT));
    m_session.reset(session, gnutls_deinit);
    check(gnutls_set_default_priority(session));
    check(gnutls_credentials_set(session, GNUTLS_CRD_CERTIFICATE, credentials));
    gnutls_transport_set_ptr(session, this);
    gnutls_transport_set_pull_function(session, pull);
    gnutls_transport_set_push_function(session, push);
    m_packetSize = packetSize;
    m_isShakingHands = true;
    int result = 0;
    do {
        result = gnutls_handshake(session);
    } while (result < 0 && !gnutls_error_is_fatal(result));
    check(result);
    flushHandshake();
    m_isShakingHands = false;
}

std::string TlsWireClient::version() const
{
    return gnutls_protocol_get_name(gnutls_protocol_get_version(m_session.get()));
}

void TlsWireClient::flushHandshake()
{
    if (m_outgoing.empty())
        return;
    const std::shared_ptr<gnutls_session_int> session = std::move(m_session);
    sendMessage(PreloginMessage, m_outgoing, 0, m_packetSize); // in clear, packet by packet
    m_session = session;
    m_outgoing.clear();
}

ssize_t TlsWireClient::pull(void *self, void *data, std::size_t size)
{
    auto &client = *static_cast<TlsWireClient *>(self);
    try {
        if (!client.m_isShakingHands) {
            client.WireClient::readExactly(static_cast<std::uint8_t *>(data), size);
            return static_cast<ssize_t>(size);
        }
        client.flushHandshake();
        if (client.m_incoming.empty()) {
            Bytes header(8);
            client.WireClient::readExactly(header.data(), header.size());
            if (header[0] != PreloginMessage)
                return -1;
            client.m_incoming.resize(static_cast<std::size_t>(header[2] << 8 | header[3]) - header.size());
            client.WireClient::readExactly(client.m_incoming.data(), client.m_incoming.size());
        }
        const auto count = static_cast<std::ptrdiff_t>(std::min(size, client.m_incoming.size()));
        std::copy_n(client.m_incoming.begin(), count, static_cast<std::uint8_t *>(data));
        client.m_incoming.erase(client.m_incoming.begin(), client.m_incoming.begin() + count);
        return count;
    } catch (const std::runtime_error &) {
        return -1;
    }
}

ssize_t TlsWireClient::push(void *self, const void *data, std::size_t size)
{
    auto &client = *static_cast<TlsWireClient *>(self);
    const auto *bytes = static_cast<const std::uint8_t *>(data);
    client.m_outgoing.insert(client.m_outgoing.end(), bytes, bytes + size);
    return static_cast<ssize_t>(size);
}

TlsWireClient::Bytes TlsWireClient::encrypted(const Bytes &bytes)
{
    for (std::size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = gnutls_record_send(m_session.get(), bytes.data() + sent, bytes.size() - sent);
        check(count);
        sent += static_cast<std::size_t>(count);
    }
    return std::exchange(m_outgoing, {});
}

void TlsWireClient::send(const Bytes &bytes)
{
    WireClient::send(m_session ? encrypted(bytes) : bytes);
}

void TlsWireClient::readExactly(std::uint8_t *bytes, std::size_t count)
{
    if (!m_session)
        return WireClient::readExactly(bytes, count);
    while (count > 0) {
        const ssize_t got = gnutls_record_recv(m_session.get(), bytes, count);
        check(got);
        if (got == 0)
            throw std::runtime_error("the server has closed");
        bytes += got;
        count -= static_cast<std::size_t>(got);
    }
}
