#include "platform/ports/signatures.h"

#include <functional>

#include "installer/utils/base/process/signer.h"
#include "platform/ports/modules.h"
#include "tests/contract/world.h"

namespace contract {

namespace {

using base::process::SignerInfo;
using ports::Disposition;
using ports::Handle;
namespace code = ports::code;
namespace file_access = ports::file_access;
namespace trust = ports::trust;

/// Signatures of whose checks something happens in the midst.
class WatchedSignatures final : public ports::Signatures {
 public:
  WatchedSignatures(ports::Signatures& inner, std::function<void()> on_verify)
      : inner_(inner), on_verify_(std::move(on_verify)) {}
  ports::Result verify(const wchar_t* path) override {
    on_verify_();
    return inner_.verify(path);
  }
  bool query(const wchar_t* path, ports::CertificateStore& store, ports::SignedMessage& message) override {
    return inner_.query(path, store, message);
  }
  void close(ports::CertificateStore store) override { inner_.close(store); }
  void close(ports::SignedMessage message) override { inner_.close(message); }
  bool signer_info(ports::SignedMessage message, std::uint8_t* into, std::uint32_t& size) override {
    return inner_.signer_info(message, into, size);
  }
  ports::Certificate find_certificate(ports::CertificateStore store, const std::uint8_t* signer_info) override {
    return inner_.find_certificate(store, signer_info);
  }
  void free(ports::Certificate certificate) override { inner_.free(certificate); }
  std::optional<std::vector<std::uint8_t>> serial_number(ports::Certificate certificate) override {
    return inner_.serial_number(certificate);
  }
  std::uint32_t name(ports::Certificate certificate, ports::NameOf which, std::span<wchar_t> into) override {
    return inner_.name(certificate, which, into);
  }

 private:
  ports::Signatures& inner_;
  const std::function<void()> on_verify_;
};

/// Modules before whose loading something happens.
class WatchedModules final : public ports::Modules {
 public:
  WatchedModules(ports::Modules& inner, std::function<void()> on_load) : inner_(inner), on_load_(std::move(on_load)) {}
  ports::Module main() override { return inner_.main(); }
  ports::Procedure procedure(ports::Module module, const char* name) override { return inner_.procedure(module, name); }
  ports::Module load(const wchar_t* path, std::uint32_t flags) override {
    on_load_();
    return inner_.load(path, flags);
  }
  bool free(ports::Module module) override { return inner_.free(module); }
  std::wstring file_name(ports::Module module) override { return inner_.file_name(module); }

 private:
  ports::Modules& inner_;
  const std::function<void()> on_load_;
};

class Signatures : public Contract {
 protected:
  Signatures() { ports::bind(system()); }
  ~Signatures() override { ports::unbind(); }

  static SignerInfo signed_under(const wchar_t* subject) {
    SignerInfo signer;
    signer.signing.subject = subject;
    return signer;
  }

  ports::ErrorCode try_write(const std::wstring& path) {
    const Handle file = system().files.open(path.c_str(), file_access::generic_write, ports::file_share::all,
                                            Disposition::open_existing, 0);
    if (file == Handle::invalid) return last_error();
    EXPECT_TRUE(system().waits.close(file));
    return code::success;
  }

  /// Loads, and gives whether it did. Afterwards nothing holds the file.
  bool loads(const std::wstring& path, const SignerInfo& expected) {
    const ports::Module library = base::process::LoadLibraryFromSameSigner(path, expected);
    const bool loaded = library != ports::Module::null;
    if (loaded) {
      EXPECT_FALSE(system().files.remove(path.c_str())) << "a mapped library stays";
      EXPECT_TRUE(system().modules.free(library));
    }
    EXPECT_EQ(try_write(path), code::success);
    return loaded;
  }
};

TEST_P(Signatures, OnlyATrustedLibraryOfTheSameSignerIsLoaded) {
  const struct {
    Signing signing;
    ports::Result trusted;
    const wchar_t* subject;  // null: no signature
    bool loaded;
  } rows[] = {
      {Signing::own, trust::trusted, signer_name, true},
      {Signing::other, trust::trusted, other_signer_name, false},
      {Signing::none, trust::no_signature, nullptr, false},
      {Signing::tampered, trust::bad_digest, signer_name, false},
      {Signing::expired, trust::expired, signer_name, false},
      {Signing::stranger, trust::untrusted_root, signer_name, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(static_cast<int>(row.signing));
    const std::wstring path = world().library(row.signing);
    std::error_code error;
    EXPECT_EQ(base::process::IsFileTrusted(path, error), row.trusted == trust::trusted);
    EXPECT_EQ(error.value(), row.trusted);
    error.clear();
    const SignerInfo signer = base::process::ReadSignerInfo(path, error);
    EXPECT_EQ(static_cast<ports::ErrorCode>(error.value()), row.subject == nullptr ? code::no_match_when_query : 0);
    EXPECT_EQ(signer.signing.subject, row.subject == nullptr ? L"" : row.subject);
    EXPECT_EQ(loads(path, signed_under(signer_name)), row.loaded);
    EXPECT_TRUE(loads(path, SignerInfo{})) << "an unsigned program loads what it is told";
  }
}

TEST_P(Signatures, WhatIsNoLibraryIsNotLoaded) {
  const std::wstring text = world().folder() + L"\\text.dll";
  make_file(text, std::string(100, 'x'));
  const std::wstring missing = world().folder() + L"\\missing.dll";
  EXPECT_EQ(system().signatures.verify(text.c_str()), trust::subject_form_unknown);
  EXPECT_EQ(system().signatures.verify(missing.c_str()), static_cast<ports::Result>(code::file_not_found));
  for (const std::wstring& path : {text, missing}) {
    for (const wchar_t* const subject : {signer_name, L""}) {
      EXPECT_EQ(base::process::LoadLibraryFromSameSigner(path, signed_under(subject)), ports::Module::null);
    }
  }
}

TEST_P(Signatures, ASignatureTellsItsSigner) {
  std::error_code error;
  const SignerInfo signer = base::process::ReadSignerInfo(world().library(Signing::own), error);
  EXPECT_FALSE(error) << error.value();
  EXPECT_EQ(signer.signing.serialNumber, L"009a01");
  EXPECT_EQ(signer.signing.issuer, L"Ky Test Authority");
  EXPECT_EQ(signer.signing.subject, signer_name);

  ports::CertificateStore store = ports::CertificateStore::null;
  ports::SignedMessage message = ports::SignedMessage::null;
  ASSERT_TRUE(system().signatures.query(world().library(Signing::own).c_str(), store, message)) << last_error();
  std::uint32_t size = 0;
  EXPECT_TRUE(system().signatures.signer_info(message, nullptr, size));
  ASSERT_GT(size, 1U);
  std::vector<std::uint8_t> info(size--);
  EXPECT_EQ(code_of(system().signatures.signer_info(message, info.data(), size)), code::more_data);
  system().signatures.close(message);
  system().signatures.close(store);
}

TEST_P(Signatures, ALibraryIsNotReplacedBetweenItsCheckAndItsLoading) {
  const std::wstring path = world().library(Signing::own);
  const std::wstring evil = world().library(Signing::other);
  const std::wstring aside = path + L".old";
  int attacks = 0;
  const auto attack = [&] {
    ++attacks;
    EXPECT_EQ(try_write(path), code::sharing_violation);
    EXPECT_EQ(code_of(system().files.remove(path.c_str())), code::sharing_violation);
    EXPECT_EQ(code_of(system().files.move(path.c_str(), aside.c_str(), 0)), code::sharing_violation);
    EXPECT_FALSE(system().files.move(evil.c_str(), path.c_str(), ports::move_flag::replace_existing));
  };
  WatchedSignatures signatures(system().signatures, attack);
  WatchedModules modules(system().modules, attack);
  const ports::System watched = ports::with(system(), signatures, modules);
  ports::bind(watched);
  const ports::Module library = base::process::LoadLibraryFromSameSigner(path, signed_under(signer_name));
  EXPECT_EQ(attacks, 2) << "at the check and at the load";
  ASSERT_NE(library, ports::Module::null) << last_error();
  std::error_code error;
  EXPECT_EQ(base::process::ReadSignerInfo(path, error).signing.subject, signer_name);
  EXPECT_TRUE(system().modules.free(library));
  ports::unbind();
  EXPECT_TRUE(system().files.move(evil.c_str(), path.c_str(), ports::move_flag::replace_existing)) << last_error();
}

KY_CONTRACT(Signatures);

}  // namespace

}  // namespace contract
