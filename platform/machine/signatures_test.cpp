#include "platform/machine/signatures.h"

#include <gtest/gtest.h>

#include <array>

#include "platform/machine/file_rules.h"
#include "platform/ports/codes.h"
#include "tests/support/named_world.h"

namespace machine {
namespace {

namespace code = ports::code;
namespace trust = ports::trust;
using support::NamedWorld;

class MachineSignatures : public testing::Test {
 protected:
  MachineSignatures() {
    world.file(L"C:\\plain.dll", "MZ").file(L"C:\\read.me", "text");
    for (const wchar_t* path : {L"C:\\ours.dll", L"C:\\late.dll", L"C:\\held.dll", L"C:\\bare.dll"}) {
      world.file(path, "MZ").node(path).signature =
          Signature{L"Tavrine", L"Authority", {1, 0xAB}, trust::trusted, true};
    }
    world.node(L"C:\\late.dll").signature->trust = trust::expired;
    world.node(L"C:\\bare.dll").signature->certificate = false;
    world.held(L"C:\\held.dll", file_right::write_data, 0);
    machine = world.make();
  }

  [[nodiscard]] Signatures& signatures() { return machine->signatures(); }
  void write(const wchar_t* path, ports::Disposition disposition, std::vector<std::uint8_t> bytes) {
    const ports::Handle file = machine->files().open(path, ports::file_access::generic_write, 0, disposition, 0);
    std::uint32_t written = 0;
    EXPECT_TRUE(machine->files().write(file, bytes, written));
    EXPECT_TRUE(machine->waits().close(file));
  }

  NamedWorld world;
  std::unique_ptr<Machine> machine;
};

TEST_F(MachineSignatures, AFileIsTrustedAsItStands) {
  const auto expect = [this](const wchar_t* path, ports::Result result) {
    EXPECT_EQ(signatures().verify(path), result) << std::wstring(path).c_str();
  };
  expect(L"C:\\ours.dll", trust::trusted);
  expect(L"C:\\late.dll", trust::expired);
  expect(L"C:\\plain.dll", trust::no_signature);
  expect(L"C:\\read.me", trust::subject_form_unknown);
  expect(L"C:\\absent.dll", static_cast<ports::Result>(code::file_not_found));
  expect(L"C:\\held.dll", static_cast<ports::Result>(code::sharing_violation));
  write(L"C:\\late.dll", ports::Disposition::open_existing, {'M', 'Z', 1});
  expect(L"C:\\late.dll", trust::bad_digest);
  EXPECT_TRUE(machine->files().move(L"C:\\ours.dll", L"C:\\new.dll", 0));
  EXPECT_TRUE(machine->files().move(L"C:\\plain.dll", L"C:\\ours.dll", 0));
  expect(L"C:\\new.dll", trust::trusted);
  expect(L"C:\\ours.dll", trust::no_signature);
  write(L"C:\\new.dll", ports::Disposition::create_always, {'M', 'Z'});
  expect(L"C:\\new.dll", trust::no_signature);
}

TEST_F(MachineSignatures, TheSignersCertificateIsReadAndGivenBack) {
  ports::CertificateStore store{};
  ports::SignedMessage message{};
  ASSERT_TRUE(signatures().query(L"C:\\ours.dll", store, message));
  std::uint32_t size = 0;
  ASSERT_TRUE(signatures().signer_info(message, nullptr, size));
  std::vector<std::uint8_t> info(size);
  ASSERT_TRUE(signatures().signer_info(message, info.data(), size));
  const std::vector<std::uint8_t> moved = info;
  EXPECT_EQ(signatures().find_certificate(store, moved.data()), ports::Certificate::null) << "good where it lies alone";
  const ports::Certificate certificate = signatures().find_certificate(store, info.data());
  ASSERT_NE(certificate, ports::Certificate::null);
  EXPECT_EQ(signatures().name(certificate, ports::NameOf::issuer, {}), 10U);
  using Open = std::map<ObjectKind, std::size_t>;
  EXPECT_EQ(machine->handles().open_by_kind(),
            (Open{{ObjectKind::certificate_store, 1}, {ObjectKind::signed_message, 1}, {ObjectKind::certificate, 1}}));
  EXPECT_FALSE(machine->waits().close(static_cast<ports::Handle>(certificate)));
  signatures().free(certificate);
  signatures().close(message);
  signatures().close(store);
  EXPECT_TRUE(machine->handles().open_by_kind().empty());
}

TEST_F(MachineSignatures, WhatCannotBeReadSaysWhy) {
  ports::CertificateStore store{};
  ports::SignedMessage message{};
  EXPECT_FALSE(signatures().query(L"C:\\absent.dll", store, message));
  EXPECT_EQ(machine->errors().last(), code::file_not_found);
  ASSERT_TRUE(signatures().query(L"C:\\bare.dll", store, message));
  std::uint32_t size = 64;
  std::array<std::uint8_t, 64> info{};
  ASSERT_TRUE(signatures().signer_info(message, info.data(), size));
  EXPECT_EQ(signatures().find_certificate(store, info.data()), ports::Certificate::null);
  EXPECT_EQ(machine->errors().last(), code::certificate_not_found);
  signatures().close(message);
  signatures().close(store);
}

}  // namespace
}  // namespace machine
