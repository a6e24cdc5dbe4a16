#pragma once

#include "platform/faults/faulty.h"
#include "platform/ports/cng.h"
#include "platform/ports/crashes.h"
#include "platform/ports/log_streams.h"

namespace faults {

/// Cryptography whose calls answer with a planned status.
class FaultyCng final : public Faulty<ports::Cng> {
 public:
  using Faulty::Faulty;

  ports::Status open_algorithm(const wchar_t* identifier, ports::CngAlgorithm& out) override {
    return answer(Operation::cng_open_algorithm, [&] { return inner_.open_algorithm(identifier, out); });
  }
  void close_algorithm(ports::CngAlgorithm algorithm) override { inner_.close_algorithm(algorithm); }
  ports::Status random(ports::CngAlgorithm rng, std::span<std::uint8_t> into) override {
    return answer(Operation::cng_random, [&] { return inner_.random(rng, into); });
  }
  ports::Status generate_key(ports::CngAlgorithm algorithm, std::span<const std::uint8_t> secret,
                             ports::CngKey& out) override {
    return answer(Operation::cng_generate_key, [&] { return inner_.generate_key(algorithm, secret, out); });
  }
  ports::Status import_public_key(ports::CngAlgorithm rsa, std::span<const std::uint8_t> blob,
                                  ports::CngKey& out) override {
    return answer(Operation::cng_import_public_key, [&] { return inner_.import_public_key(rsa, blob, out); });
  }
  ports::Status import_private_key(ports::CngAlgorithm rsa, std::span<const std::uint8_t> blob,
                                   ports::CngKey& out) override {
    return answer(Operation::cng_import_private_key, [&] { return inner_.import_private_key(rsa, blob, out); });
  }
  void destroy_key(ports::CngKey key) override { inner_.destroy_key(key); }
  ports::Status block_length(ports::CngKey key, std::uint32_t& out) override {
    return answer(Operation::cng_block_length, [&] { return inner_.block_length(key, out); });
  }
  ports::Status export_key(ports::CngKey key, std::span<std::uint8_t> into, std::uint32_t& size) override {
    return answer(Operation::cng_export_key, [&] { return inner_.export_key(key, into, size); });
  }
  ports::Status encrypt(ports::CngKey key, std::span<const std::uint8_t> plain, std::span<std::uint8_t> iv,
                        std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) override {
    return answer(Operation::cng_encrypt, [&] { return inner_.encrypt(key, plain, iv, into, size, padding); });
  }
  ports::Status decrypt(ports::CngKey key, std::span<const std::uint8_t> cipher, std::span<std::uint8_t> iv,
                        std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) override {
    return answer(Operation::cng_decrypt, [&] { return inner_.decrypt(key, cipher, iv, into, size, padding); });
  }
  ports::ErrorCode error_of(ports::Status status) override { return inner_.error_of(status); }
};

/// Log streams that fail by plan.
class FaultyLogStreams final : public Faulty<ports::LogStreams> {
 public:
  using Faulty::Faulty;

  ports::LogStream open(const wchar_t* path, ports::LogMode mode) override {
    return ask(Operation::log_streams_open, ports::LogStream::null, [&] { return inner_.open(path, mode); });
  }
  std::uint64_t length(ports::LogStream stream) override { return inner_.length(stream); }
  std::size_t write(ports::LogStream stream, std::span<const std::uint8_t> bytes) override {
    return ask(Operation::log_streams_write, std::size_t{0}, [&] { return inner_.write(stream, bytes); });
  }
  bool flush(ports::LogStream stream) override {
    return ask(Operation::log_streams_flush, false, [&] { return inner_.flush(stream); });
  }
  std::size_t read(ports::LogStream stream, std::span<std::uint8_t> into) override {
    return ask(Operation::log_streams_read, std::size_t{0}, [&] { return inner_.read(stream, into); });
  }
  bool skip(ports::LogStream stream, std::uint32_t bytes) override {
    return ask(Operation::log_streams_skip, false, [&] { return inner_.skip(stream, bytes); });
  }
  void close(ports::LogStream stream) override { inner_.close(stream); }
};

/// Dumps that fail by plan.
class FaultyCrashes final : public Faulty<ports::Crashes> {
 public:
  using Faulty::Faulty;

  bool set_filter(ports::CrashFilter& filter) override { return inner_.set_filter(filter); }
  bool set_invalid_parameter_handler() override { return inner_.set_invalid_parameter_handler(); }
  bool write_dump(ports::Handle file, ports::DumpKind kind, ports::ExceptionPointers* exception) override {
    return ask(Operation::crashes_write_dump, false, [&] { return inner_.write_dump(file, kind, exception); });
  }
};

}  // namespace faults
