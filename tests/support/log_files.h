#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "platform/ports/cng.h"
#include "platform/ports/files.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"
#include "tests/support/development_key.h"
#include "tests/support/thread_body.h"

namespace support {

using Bytes = std::vector<std::uint8_t>;

/// A file of the system's, up to so many bytes; empty where there is none.
[[nodiscard]] inline Bytes read_begin(const ports::System& system, const std::wstring& path, std::size_t most) {
  const ports::Handle file = system.files.open(path.c_str(), ports::file_access::generic_read, ports::file_share::all,
                                               ports::Disposition::open_existing, 0);
  if (file == ports::Handle::invalid) return {};
  Bytes all;
  Bytes piece(1 << 16);
  std::uint32_t got = 0;
  while (all.size() < most && system.files.read(file, piece, got) && got != 0) {
    all.insert(all.end(), piece.begin(), piece.begin() + got);
  }
  system.waits.close(file);
  if (all.size() > most) all.resize(most);
  return all;
}
[[nodiscard]] inline Bytes read_whole(const ports::System& system, const std::wstring& path) {
  return read_begin(system, path, std::size_t(-1));
}

/// A sealed log taken apart by nothing but the port: an independent look at its bytes.
struct SealedLog {
  Bytes wrapped;
  Bytes blob;  // the session key's
  std::vector<Bytes> ciphers;
  std::vector<std::wstring> lines;
};
[[nodiscard]] inline SealedLog take_apart(ports::Cng& cng, std::span<const std::uint8_t> file) {
  SealedLog log;
  const auto take = [&] {
    std::uint32_t length = 0;
    std::memcpy(&length, file.data(), sizeof length);
    const Bytes taken(file.begin() + 4, file.begin() + 4 + length);
    file = file.subspan(4 + length);
    return taken;
  };
  const auto decrypted = [&](ports::CngKey key, Bytes cipher, std::uint32_t padding) {
    Bytes iv(16);
    std::uint32_t size = 0;
    EXPECT_EQ(cng.decrypt(key, cipher, iv, cipher, size, padding), 0);
    cipher.resize(size);
    return cipher;
  };
  ports::CngAlgorithm rsa = ports::CngAlgorithm::null;
  ports::CngAlgorithm aes = ports::CngAlgorithm::null;
  ports::CngKey pair = ports::CngKey::null;
  ports::CngKey session = ports::CngKey::null;
  EXPECT_EQ(cng.open_algorithm(L"RSA", rsa), 0);
  EXPECT_EQ(cng.open_algorithm(L"AES", aes), 0);
  EXPECT_EQ(cng.import_private_key(rsa, log_private_key(), pair), 0);
  log.wrapped = take();
  log.blob = decrypted(pair, log.wrapped, ports::cng_padding::pkcs1);
  EXPECT_EQ(cng.generate_key(aes, std::span(log.blob).subspan(12), session), 0);
  while (!file.empty()) {
    log.ciphers.push_back(take());
    const Bytes plain = decrypted(session, log.ciphers.back(), ports::cng_padding::block);
    std::wstring& line = log.lines.emplace_back();
    for (std::size_t i = 0; i + 1 < plain.size(); i += 2) {
      line.push_back(static_cast<wchar_t>(plain[i] | plain[i + 1] << 8));
    }
  }
  cng.destroy_key(session);
  cng.destroy_key(pair);
  cng.close_algorithm(aes);
  cng.close_algorithm(rsa);
  return log;
}

/// Runs `work` on a thread of the system's and waits for its end; gives the thread's id.
inline std::uint32_t run_on_thread(const ports::System& system, std::function<void()> work) {
  std::uint32_t id = 0;
  const ports::Handle thread = system.threads.start(std::make_unique<Body>(std::move(work)), id);
  EXPECT_EQ(system.waits.wait({&thread, 1}, true, ports::infinite), ports::wait_result::object_0);
  system.waits.close(thread);
  return id;
}

}  // namespace support
