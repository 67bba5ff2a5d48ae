#include "platform/linux/storage/OpenSslSha256.h"

#include <cstdlib>
#include <openssl/evp.h>

namespace quorva {

Sha256Digest openSslSha256(std::string_view bytes) {
    Sha256Digest digest{};
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, EVP_sha256(), nullptr) != 1)
        std::abort();
    return digest;
}

} // namespace quorva
