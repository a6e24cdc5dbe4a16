#include "tools/ky/rehearse/noting_cng.h"

#include <algorithm>

namespace rehearsal {

std::vector<NotingCng::Wrapped> NotingCng::wrapped() const {
  const ports::Lock lock(mutex_);
  return wrapped_;
}

std::wstring NotingCng::algorithm() const {
  const ports::Lock lock(mutex_);
  return algorithm_;
}

ports::Status NotingCng::open_algorithm(const wchar_t* identifier, ports::CngAlgorithm& out) {
  const ports::Status status = inner_.open_algorithm(identifier, out);
  const std::wstring_view name = identifier;
  if (ports::status_ok(status) && name != L"RNG" && name != L"RSA") {
    const ports::Lock lock(mutex_);
    algorithm_ = name;
  }
  return status;
}

ports::Status NotingCng::encrypt(ports::CngKey key, std::span<const std::uint8_t> plain, std::span<std::uint8_t> iv,
                                 std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) {
  const ports::Status status = inner_.encrypt(key, plain, iv, into, size, padding);
  if (padding == ports::cng_padding::pkcs1 && !into.empty() && ports::status_ok(status)) {
    const auto cipher = into.first(std::min<std::size_t>(size, into.size()));
    const ports::Lock lock(mutex_);
    wrapped_.push_back({{cipher.begin(), cipher.end()}, {plain.begin(), plain.end()}});
  }
  return status;
}

}  // namespace rehearsal
