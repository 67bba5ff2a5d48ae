// SHA-256 by OpenSSL.
#pragma once

#include "platform/Sha256.h"

namespace quorva {

/// The digest of `bytes`. Aborts if OpenSSL fails: a wrong digest could match another text's.
/// Callable from any thread.
[[nodiscard]] Sha256Digest openSslSha256(std::string_view bytes);

} // namespace quorva
