#include "Wire/NtlmHashes.h"

#include "Types/Text.h"

#include <algorithm>
#include <nettle/des.h>
#include <nettle/hmac.h>
#include <nettle/md4.h>
#include <nettle/md5.h>

namespace SampleServer::Ntlm {

namespace {

const std::uint8_t *bytesOf(std::u16string_view text)
{
    return reinterpret_cast<const std::uint8_t *>(text.data());
}

/// Encrypts the challenge with a key of seven bytes, spread over the eight that DES takes.
void encryptWithPart(std::span<const std::uint8_t, 7> key, const Challenge &challenge, std::uint8_t *out)
{
    std::uint64_t bits = 0;
    for (const std::uint8_t byte : key)
        bits = bits << 8 | byte;
    std::array<std::uint8_t, DES_KEY_SIZE> spread;
    for (std::size_t index = 0; index < spread.size(); ++index)
        spread[index] = static_cast<std::uint8_t>(bits >> (49 - 7 * index) << 1); // the parity bit stays 0
    des_ctx context;
    des_set_key(&context, spread.data());
    des_encrypt(&context, challenge.size(), out, challenge.data());
}

} // namespace

Hash passwordHash(std::u16string_view password)
{
    Hash hash;
    md4_ctx context;
    md4_init(&context);
    md4_update(&context, password.size() * 2, bytesOf(password));
    md4_digest(&context, hash.size(), hash.data());
    return hash;
}

Hash accountHash(std::u16string_view password, std::u16string_view user, std::u16string_view domain)
{
    const Hash key = passwordHash(password);
    const std::u16string account = toUtf16(toUpper(toUtf8(user))).append(domain);
    Hash hash;
    hmac_md5_ctx context;
    hmac_md5_set_key(&context, key.size(), key.data());
    hmac_md5_update(&context, account.size() * 2, bytesOf(account));
    hmac_md5_digest(&context, hash.size(), hash.data());
    return hash;
}

Response response(const Hash &passwordHash, const Challenge &challenge)
{
    std::array<std::uint8_t, 21> key{};
    std::copy(passwordHash.begin(), passwordHash.end(), key.begin());
    Response out;
    for (std::size_t part = 0; part < 3; ++part)
        encryptWithPart(std::span(key).subspan(7 * part).first<7>(), challenge, out.data() + 8 * part);
    return out;
}

Challenge sessionChallenge(const Challenge &server, const Challenge &client)
{
    Hash hash;
    md5_ctx context;
    md5_init(&context);
    md5_update(&context, server.size(), server.data());
    md5_update(&context, client.size(), client.data());
    md5_digest(&context, hash.size(), hash.data());
    Challenge challenge;
    std::copy_n(hash.begin(), challenge.size(), challenge.begin());
    return challenge;
}

Hash proof(const Hash &accountHash, const Challenge &server, std::span<const std::uint8_t> blob)
{
    Hash hash;
    hmac_md5_ctx context;
    hmac_md5_set_key(&context, accountHash.size(), accountHash.data());
    hmac_md5_update(&context, server.size(), server.data());
    hmac_md5_update(&context, blob.size(), blob.data());
    hmac_md5_digest(&context, hash.size(), hash.data());
    return hash;
}

} // namespace SampleServer::Ntlm
