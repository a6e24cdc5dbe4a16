#include "platform/machine/signatures.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/machine/file_lookup.h"
#include "platform/machine/file_rules.h"
#include "platform/machine/handles.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace code = ports::code;
using ports::Certificate;
using ports::CertificateStore;
using ports::SignedMessage;

namespace {

// A store, message or certificate, as the file was when it was asked for.
struct Signed final : Object {
  Signed(ObjectKind kind, Signature of) : Object(kind), signature(std::move(of)) {}
  const Signature signature;
};

// Whether the system knows how such a file is signed: a program or library.
[[nodiscard]] bool signable(const FileNode& node, std::wstring_view name) {
  if (!node.bytes.empty()) return node.bytes.size() >= 2 && node.bytes[0] == 'M' && node.bytes[1] == 'Z';
  constexpr std::array<std::wstring_view, 4> ends = {L".exe", L".dll", L".com", L".sys"};
  return node.size > 0 &&
         std::any_of(ends.begin(), ends.end(), [name](std::wstring_view end) { return name_ends_with(name, end); });
}

// What the logic carries about without looking into it: where it was put, and the signer's serial number.
struct SignerBlock {
  const std::uint8_t* place;
  std::uint64_t serial_size;
};

template <class Id>
[[nodiscard]] Id open(HandleTable& handles, ObjectKind kind, Signature signature) {
  return Id{static_cast<std::uintptr_t>(handles.open(std::make_shared<Signed>(kind, std::move(signature))))};
}

template <class Id>
[[nodiscard]] ports::Handle handle_of(Id id) {
  return ports::Handle{static_cast<std::uintptr_t>(id)};
}

template <class Id>
[[nodiscard]] std::shared_ptr<Signed> find(HandleTable& handles, ObjectKind kind, Id id) {
  auto found = handles.find_as<Signed>(handle_of(id));
  return found != nullptr && found->kind() == kind ? found : nullptr;
}

template <class Id>
void close_one(HandleTable& handles, ObjectKind kind, Id id) {
  if (find(handles, kind, id) != nullptr) handles.close(handle_of(id));
}

}  // namespace

bool Signatures::fail(ports::ErrorCode error) {
  errors_.set_last(error);
  return false;
}

Found Signatures::readable(const wchar_t* path) {
  const FileTree& tree = world_.state.files;
  const ParsedPath parsed = parse_path(path == nullptr ? L"" : path, world_.state.environment.current_folder);
  if (parsed.error != code::success) return {parsed.error, 0, {}};
  Found found = look_up(tree, parsed.path, LastLink::followed);
  const OpenRequest reading{ports::file_access::generic_read, ports::file_share::read | ports::file_share::erase};
  found.error = decide_open(tree, found, reading, parsed.path.folder_wanted).error;
  return found;
}

ports::Result Signatures::verify(const wchar_t* path) {
  const ports::Lock lock(world_.mutex);
  const Found found = readable(path);
  if (found.error != code::success) return static_cast<ports::Result>(found.error);
  const FileNode& node = world_.state.files.nodes.at(found.node);
  if (node.signature) return node.signature->trust;
  return signable(node, found.place.name) ? ports::trust::no_signature : ports::trust::subject_form_unknown;
}

bool Signatures::query(const wchar_t* path, CertificateStore& store, SignedMessage& message) {
  Signature signature;
  {
    const ports::Lock lock(world_.mutex);
    const Found found = readable(path);
    if (found.error != code::success) return fail(found.error);
    const FileNode& node = world_.state.files.nodes.at(found.node);
    if (!node.signature) return fail(code::no_match_when_query);
    signature = *node.signature;
  }
  store = open<CertificateStore>(handles_, ObjectKind::certificate_store, signature);
  message = open<SignedMessage>(handles_, ObjectKind::signed_message, std::move(signature));
  return true;
}

void Signatures::close(CertificateStore store) {
  close_one(handles_, ObjectKind::certificate_store, store);
}

void Signatures::close(SignedMessage message) {
  close_one(handles_, ObjectKind::signed_message, message);
}

bool Signatures::signer_info(SignedMessage message, std::uint8_t* into, std::uint32_t& size) {
  const auto of = find(handles_, ObjectKind::signed_message, message);
  if (of == nullptr) return fail(code::invalid_handle);
  const std::vector<std::uint8_t>& serial = of->signature.serial;
  const std::uint32_t room = std::exchange(size, static_cast<std::uint32_t>(sizeof(SignerBlock) + serial.size()));
  if (into == nullptr) return true;
  if (room < size) return fail(code::more_data);
  const SignerBlock block{into, serial.size()};
  std::memcpy(into, &block, sizeof(block));
  std::copy(serial.begin(), serial.end(), into + sizeof(block));
  return true;
}

Certificate Signatures::find_certificate(CertificateStore store, const std::uint8_t* signer_info) {
  const auto in = find(handles_, ObjectKind::certificate_store, store);
  SignerBlock block{};
  if (in != nullptr && signer_info != nullptr) std::memcpy(&block, signer_info, sizeof(block));
  const bool there = in != nullptr && in->signature.certificate && block.place != nullptr &&
                     block.place == signer_info &&
                     std::equal(in->signature.serial.begin(), in->signature.serial.end(), signer_info + sizeof(block),
                                signer_info + sizeof(block) + block.serial_size);
  if (there) return open<Certificate>(handles_, ObjectKind::certificate, in->signature);
  errors_.set_last(code::certificate_not_found);
  return Certificate::null;
}

void Signatures::free(Certificate certificate) {
  close_one(handles_, ObjectKind::certificate, certificate);
}

std::optional<std::vector<std::uint8_t>> Signatures::serial_number(Certificate certificate) {
  const auto of = find(handles_, ObjectKind::certificate, certificate);
  if (of == nullptr) return std::nullopt;
  return of->signature.serial;
}

std::uint32_t Signatures::name(Certificate certificate, ports::NameOf which, std::span<wchar_t> into) {
  const auto of = find(handles_, ObjectKind::certificate, certificate);
  std::wstring name;
  if (of != nullptr) name = which == ports::NameOf::issuer ? of->signature.issuer : of->signature.subject;
  if (!into.empty()) {
    name.resize(std::min(name.size(), into.size() - 1));
    *std::copy(name.begin(), name.end(), into.begin()) = 0;
  }
  return static_cast<std::uint32_t>(name.size() + 1);
}

}  // namespace machine
