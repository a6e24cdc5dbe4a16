#include "installer/utils/base/process/signer.h"

#include <cstdint>
#include <string>

#include "installer/extern/base/include/winapi/win_error_category.h"
#include "platform/ports/files.h"
#include "platform/ports/modules.h"
#include "platform/ports/signatures.h"
#include "tests/support/bound_world.h"

namespace base::process {
namespace {

namespace code = ports::code;
namespace trust = ports::trust;
using machine::Signature;

constexpr wchar_t library[] = L"C:\\Tools\\part.dll";

/// Loads what it is asked to and keeps its name; meanwhile somebody tries to write the file.
class FakeModules final : public ports::Modules {
 public:
  std::wstring loaded;
  bool writer_got_in = false;

  ports::Module main() override { return ports::Module{1}; }
  ports::Procedure procedure(ports::Module, const char*) override { return nullptr; }
  ports::Module load(const wchar_t* path, std::uint32_t flags) override {
    EXPECT_EQ(flags, 0u);
    loaded = path;
    const ports::System& system = ports::system();
    const ports::Handle writer = system.files.open(path, ports::file_access::generic_write, ports::file_share::all,
                                                   ports::Disposition::open_existing, 0);
    writer_got_in = writer != ports::Handle::invalid && system.waits.close(writer);
    return ports::Module{2};
  }
  bool free(ports::Module) override { return true; }
  std::wstring file_name(ports::Module) override { return {}; }
};

class Signer : public support::BoundWorld {
 protected:
  Signer() { world.file(library, "MZ"); }

  void sign(const wchar_t* path, const Signature& signature) { world.node(path).signature = signature; }
  static Signature signature_of(const wchar_t* subject, ports::Result result = trust::trusted) {
    return {subject, L"Tavrine Test Authority", {0x01, 0xAB, 0x00, 0x7F}, result, true};
  }
  /// What is read of the library while `operation`'s call fails.
  std::error_code error_of_reading(Operation operation, std::uint64_t call, ports::ErrorCode fault) {
    start();
    faulty->fail(operation, call, false, fault);
    std::error_code error;
    const SignerInfo signer = ReadSignerInfo(library, error);
    EXPECT_EQ(signer.signing.subject + signer.signing.issuer + signer.signing.serialNumber, L"");
    return error;
  }

  FakeModules modules;
};

TEST_F(Signer, WhatItsUserDoesNotTrustIsNoError) {
  sign(library, signature_of(L"Tavrine", trust::subject_not_trusted));
  start();
  std::error_code error;
  EXPECT_FALSE(IsFileTrusted(library, error));
  EXPECT_FALSE(error);
}

TEST_F(Signer, TheSignerIsReadAsPeopleWriteIt) {
  sign(library, signature_of(L"Tavrine Software \xD83D\xDE00", trust::bad_digest));
  start();
  std::error_code error;
  const SignerInfo signer = ReadSignerInfo(library, error);
  EXPECT_FALSE(error);
  EXPECT_EQ(signer.signing.serialNumber, L"7f00ab01");
  EXPECT_EQ(signer.signing.issuer, L"Tavrine Test Authority");
  EXPECT_EQ(signer.signing.subject, L"Tavrine Software \xD83D\xDE00");
  EXPECT_EQ(signer.countersigning.subject, L"");
}

TEST_F(Signer, WithoutASignerTheReasonIsTold) {
  sign(library, signature_of(L"Tavrine"));
  const auto find = Operation::signatures_find_certificate, info = Operation::signatures_signer_info;
  const struct {
    Operation fails;
    std::uint64_t call;
    ports::ErrorCode fault, expected;
  } rows[] = {
      {Operation::signatures_query, 1, code::no_match_when_query, code::no_match_when_query},
      {info, 1, code::invalid_handle, code::invalid_handle},
      {info, 2, code::more_data, code::more_data},
      {find, 1, code::not_enough_memory, code::not_enough_memory},
      {find, 1, code::certificate_not_found, code::invalid_data},
      {find, 1, 0, code::invalid_data},
      {Operation::signatures_serial_number, 1, code::gen_failure, code::invalid_data},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(error_of_reading(row.fails, row.call, row.fault), winapi::error_of(row.expected)) << &row - rows;
  }
  world.node(library).signature->certificate = false;
  start();
  std::error_code error;
  (void)ReadSignerInfo(library, error);
  EXPECT_EQ(error, winapi::error_of(code::invalid_data));
}

TEST_F(Signer, TheOwnSignerIsReadOnceForEachSystem) {
  sign(support::NamedWorld::setup, signature_of(L"Tavrine"));
  start();
  EXPECT_EQ(GetOwnSignerInfo().signing.subject, L"Tavrine");
  EXPECT_EQ(GetOwnSignerInfo().signing.subject, L"Tavrine");
  EXPECT_EQ(faulty->calls(Operation::signatures_query), 1u);
  world.node(support::NamedWorld::setup).signature.reset();
  start();
  EXPECT_EQ(GetOwnSignerInfo().signing.subject, L"");
}

TEST_F(Signer, ALibraryIsLoadedOnlyOfTheSameTrustedSigner) {
  const Signature ours = signature_of(L"Tavrine");
  Signature other_certificate = ours;
  other_certificate.serial = {9};
  other_certificate.issuer = L"Another Authority";
  Signature without_certificate = ours;
  without_certificate.certificate = false;
  const struct {
    const wchar_t* what;
    Signature signature;
    bool loads;
  } rows[] = {
      {L"ours", ours, true},
      {L"ours by another certificate", other_certificate, true},
      {L"of somebody else", signature_of(L"Tavrine2"), false},
      {L"in other case", signature_of(L"tavrine"), false},
      {L"not trusted", signature_of(L"Tavrine", trust::subject_not_trusted), false},
      {L"without certificate", without_certificate, false},
  };
  for (const auto& row : rows) {
    world.node(library).signature = row.signature;
    start(modules);
    modules.loaded.clear();
    SignerInfo expected;
    expected.signing.subject = L"Tavrine";
    const ports::Module module = LoadLibraryFromSameSigner(library, expected);
    EXPECT_EQ(module != ports::Module::null, row.loads) << row.what;
    EXPECT_EQ(modules.loaded, row.loads ? library : L"") << row.what;
    EXPECT_FALSE(modules.writer_got_in) << row.what;
  }
}

TEST_F(Signer, AFileThatCannotBeHeldIsCheckedAndLoadedAllTheSame) {
  sign(library, signature_of(L"Tavrine"));
  SignerInfo expected;
  expected.signing.subject = L"Tavrine";
  start(modules);
  faulty->fail(Operation::files_open, 1, false, code::sharing_violation);
  EXPECT_EQ(LoadLibraryFromSameSigner(library, expected), ports::Module{2});
  EXPECT_TRUE(modules.writer_got_in);
  for (const Operation operation : {Operation::signatures_verify, Operation::signatures_query}) {
    start(modules);
    faulty->fail(operation, 1, false, code::invalid_function);
    EXPECT_EQ(LoadLibraryFromSameSigner(library, expected), ports::Module::null);
  }
}

}  // namespace
}  // namespace base::process
