// The SHA-256 digest (FIPS 180-4), from the system's cryptography library.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace quorva {

using Sha256Digest = std::array<std::uint8_t, 32>;

/// Returns the digest of `bytes`. Callable from any thread; does not fail.
using Sha256 = Sha256Digest (*)(std::string_view bytes);

} // namespace quorva
