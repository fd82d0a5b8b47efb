#include <windows.h>

#include <wincrypt.h>

#include <algorithm>

#include "platform/sha1.h"

namespace ovf {
namespace {

constexpr const wchar_t* provider_name = L"Microsoft Base Cryptographic Provider v1.0";

HCRYPTPROV acquire_provider() noexcept {
  // An account without a key container gets one; where that is denied, hashing needs none.
  for (const DWORD flags : {DWORD{0}, DWORD{CRYPT_NEWKEYSET}, DWORD{CRYPT_VERIFYCONTEXT}}) {
    HCRYPTPROV provider = 0;
    if (CryptAcquireContextW(&provider, nullptr, provider_name, PROV_RSA_FULL, flags) != 0) return provider;
  }
  return 0;
}

}  // namespace

struct sha1::state {
  HCRYPTPROV provider = 0;
  HCRYPTHASH hash = 0;

  state() : provider(acquire_provider()) {
    if (provider == 0) throw sha1_unavailable();
    if (CryptCreateHash(provider, CALG_SHA1, 0, 0, &hash) == 0) {
      CryptReleaseContext(provider, 0);
      throw sha1_failed();
    }
  }
  ~state() {
    CryptDestroyHash(hash);
    CryptReleaseContext(provider, 0);
  }
  state(const state&) = delete;
  state& operator=(const state&) = delete;
};

sha1::sha1() : state_(std::make_unique<state>()) {}

sha1::~sha1() = default;

void sha1::add(std::span<const std::byte> bytes) {
  constexpr std::size_t most = 1U << 30;
  while (!bytes.empty()) {
    const auto piece = bytes.first(std::min(bytes.size(), most));
    const auto* data = reinterpret_cast<const BYTE*>(piece.data());
    if (CryptHashData(state_->hash, data, static_cast<DWORD>(piece.size()), 0) == 0) throw sha1_failed();
    bytes = bytes.subspan(piece.size());
  }
}

sha1::digest sha1::finish() {
  digest result{};
  DWORD size = result.size();
  if (CryptGetHashParam(state_->hash, HP_HASHVAL, result.data(), &size, 0) == 0 || size != result.size()) {
    throw sha1_failed();
  }
  return result;
}

}  // namespace ovf
