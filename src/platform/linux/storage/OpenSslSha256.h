// SHA-256 by OpenSSL.
#pragma once

#include "platform/Sha256.h"

namespace quorva {

/// The digest of `bytes`. Ends the program if the library is damaged: a made-up digest would be
/// taken for another's.
[[nodiscard]] Sha256Digest openSslSha256(std::string_view bytes);

} // namespace quorva
