#include "platform/ports/registry.h"

#include <algorithm>
#include <span>

#include "tests/contract/world.h"

namespace contract {

namespace {

using ports::RegistryKey;
using ports::RegistryType;
using ports::RegistryValue;
namespace access = ports::registry_access;
namespace code = ports::code;
namespace option = ports::registry_option;

constexpr std::uint32_t full = access::read | access::write | access::erase | access::create_link;

/// A text as the registry keeps it.
std::vector<std::uint8_t> stored(std::wstring_view text, bool terminated = true) {
  std::vector<std::uint8_t> bytes;
  for (const wchar_t unit : text) {
    bytes.push_back(static_cast<std::uint8_t>(unit));
    bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(unit) >> 8));
  }
  if (terminated) bytes.insert(bytes.end(), {0, 0});
  return bytes;
}

class Registry : public Contract {
 protected:
  void SetUp() override {
    bool created = false;
    ASSERT_EQ(registry().create(RegistryKey::local_machine, world().key().c_str(), 0, full, root_, created), 0U);
    ASSERT_TRUE(created);
  }
  void TearDown() override { EXPECT_EQ(registry().close(root_), 0U); }

  ports::Registry& registry() { return system().registry; }
  [[nodiscard]] RegistryKey root() const { return root_; }

  RegistryKey make(const wchar_t* name, std::uint32_t options = 0, RegistryKey parent = RegistryKey::null) {
    RegistryKey key = RegistryKey::null;
    bool created = false;
    EXPECT_EQ(registry().create(parent == RegistryKey::null ? root_ : parent, name, options, full, key, created), 0U);
    return key;
  }

  /// Both below the root.
  void make_link(const wchar_t* name, const wchar_t* target) {
    const RegistryKey link = make(name, option::create_link);
    const std::wstring path = L"\\Registry\\Machine\\" + world().key() + L"\\" + target;
    EXPECT_EQ(registry().set(link, L"SymbolicLinkValue", {RegistryType::link, stored(path, false)}), 0U);
    EXPECT_EQ(registry().close(link), 0U);
  }

  /// Opens, closes, and tells the code.
  ports::ErrorCode try_open(const wchar_t* name, std::uint32_t options = 0) {
    RegistryKey key = RegistryKey::null;
    const ports::ErrorCode result = registry().open(root_, name, options, access::read, key);
    if (result == 0) {
      EXPECT_EQ(registry().close(key), 0U);
    }
    return result;
  }

 private:
  RegistryKey root_ = RegistryKey::null;
};

TEST_P(Registry, KeysAreMadeWithAllThatIsMissingOnTheWay) {
  RegistryKey key = RegistryKey::null;
  bool created = false;
  EXPECT_EQ(try_open(L"a\\b"), code::file_not_found);
  ASSERT_EQ(registry().create(root(), L"a\\b", 0, full, key, created), 0U);
  EXPECT_TRUE(created);
  EXPECT_EQ(registry().close(key), 0U);
  ASSERT_EQ(registry().create(root(), L"A\\B", 0, full, key, created), 0U) << "names ignore case";
  EXPECT_FALSE(created);
  EXPECT_EQ(registry().close(key), 0U);
  EXPECT_EQ(try_open(L"a"), 0U);
  EXPECT_EQ(try_open(L""), 0U);
  RegistryValue value;
  EXPECT_EQ(registry().query(key, L"x", value), code::invalid_handle) << "it is closed";
}

TEST_P(Registry, ValuesComeBackByteForByte) {
  const RegistryValue values[] = {{RegistryType::text, stored(L"text")},
                                  {RegistryType::text, stored(L"open end", false)},
                                  {RegistryType::expandable, stored(L"%windir%")},
                                  {RegistryType::number, {1, 2, 3, 4}},
                                  {RegistryType::number64, {1, 2, 3, 4, 5, 6, 7, 8}},
                                  {RegistryType::none, {}},
                                  {RegistryType::binary, std::vector<std::uint8_t>(5000, 0xA5)}};
  for (const wchar_t* name : {L"", L"named"}) {
    for (const RegistryValue& value : values) {
      ASSERT_EQ(registry().set(root(), name, value), 0U);
      RegistryValue read;
      ASSERT_EQ(registry().query(root(), name, read), 0U);
      EXPECT_EQ(read, value) << &value - values;
    }
    EXPECT_EQ(registry().remove_value(root(), name), 0U);
    EXPECT_EQ(registry().remove_value(root(), name), code::file_not_found);
    RegistryValue read;
    EXPECT_EQ(registry().query(root(), name, read), code::file_not_found);
  }
}

TEST_P(Registry, AnEnumerationGivesEachNameOnceAndThenEnds) {
  for (const wchar_t* name : {L"one", L"Two"}) {
    EXPECT_EQ(registry().close(make(name)), 0U);
    ASSERT_EQ(registry().set(root(), name, {RegistryType::number, {0, 0, 0, 0}}), 0U);
  }
  const auto names = [&](auto operation) {
    std::vector<std::wstring> all;
    std::wstring name;
    ports::ErrorCode result = 0;
    while ((result = (registry().*operation)(root(), static_cast<std::uint32_t>(all.size()), name)) == 0) {
      all.push_back(name);
    }
    EXPECT_EQ(result, code::no_more_items);
    std::sort(all.begin(), all.end());
    return all;
  };
  const std::vector<std::wstring> both = {L"Two", L"one"};
  EXPECT_EQ(names(&ports::Registry::subkey), both);
  EXPECT_EQ(names(&ports::Registry::value_name), both);
}

TEST_P(Registry, AKeyTellsHowMuchIsInItAndHowLongNamesAre) {
  ports::KeyInformation told{9, 9, 9};
  EXPECT_EQ(registry().information(root(), told), 0U);
  EXPECT_EQ(told.subkeys + told.longest_subkey + told.values, 0U);
  for (const wchar_t* name : {L"one", L"three\\longest"}) EXPECT_EQ(registry().close(make(name)), 0U);
  ASSERT_EQ(registry().set(root(), L"long name", {RegistryType::none, {}}), 0U);
  EXPECT_EQ(registry().information(root(), told), 0U);
  EXPECT_EQ(told.subkeys, 2U);
  EXPECT_EQ(told.longest_subkey, 5U);
  EXPECT_EQ(told.values, 1U);

  std::wstring name = L"as before";
  for (const std::uint32_t room : {0U, 1U, 3U}) {
    EXPECT_EQ(registry().subkey_within(root(), 0, room, name), code::more_data) << room;
  }
  EXPECT_EQ(name, L"as before");
  EXPECT_EQ(registry().subkey_within(root(), 0, 4, name), 0U);
  EXPECT_EQ(name, L"one");
  EXPECT_EQ(registry().subkey_within(root(), 1, 4, name), code::more_data);
  EXPECT_EQ(registry().subkey_within(root(), 1, told.longest_subkey + 1, name), 0U);
  EXPECT_EQ(name, L"three");
  EXPECT_EQ(registry().subkey_within(root(), 2, 1, name), code::no_more_items);
}

TEST_P(Registry, ATextIsExpandedEndedAndMeasuredInBytes) {
  ASSERT_EQ(registry().set(root(), L"plain", {RegistryType::text, stored(L"%windir%")}), 0U);
  ASSERT_EQ(registry().set(root(), L"open", {RegistryType::text, stored(L"abc", false)}), 0U);
  ASSERT_EQ(registry().set(root(), L"", {RegistryType::expandable, stored(L"%SystemDrive%\\x")}), 0U);
  const struct {
    const wchar_t* name;
    std::wstring text;
  } rows[] = {{L"plain", L"%windir%"}, {L"open", L"abc"}, {L"", L"C:\\x"}};
  const std::wstring key = world().key();
  for (const auto& row : rows) {
    const auto get = [&](std::span<wchar_t> into, std::uint32_t& size) {
      return registry().get_text(RegistryKey::local_machine, key.c_str(), row.name, into, size);
    };
    const std::uint32_t wanted = static_cast<std::uint32_t>(row.text.size() + 1) * 2;
    std::uint32_t size = 0;
    EXPECT_EQ(get({}, size), 0U);
    EXPECT_EQ(size, wanted);
    std::wstring text(40, L'#');
    EXPECT_EQ(get(std::span(text).first(row.text.size()), size), code::more_data) << "no room for the end";
    EXPECT_EQ(get(text, size), 0U);
    EXPECT_EQ(size, wanted);
    EXPECT_EQ(text.c_str(), row.text);
  }
  std::uint32_t size = 0;
  EXPECT_EQ(registry().get_text(root(), L"", L"absent", {}, size), code::file_not_found);
  EXPECT_EQ(registry().get_text(root(), L"absent", L"plain", {}, size), code::file_not_found);
  ASSERT_EQ(registry().set(root(), L"number", {RegistryType::number, {1, 0, 0, 0}}), 0U);
  EXPECT_EQ(registry().get_text(root(), L"", L"number", {}, size), code::unsupported_type);
}

TEST_P(Registry, ATreeGoesWholeOrIsEmptied) {
  EXPECT_EQ(registry().close(make(L"tree\\a\\b")), 0U);
  EXPECT_EQ(registry().remove_tree(root(), L"tree\\a"), 0U);
  EXPECT_EQ(try_open(L"tree\\a"), code::file_not_found);
  EXPECT_EQ(registry().remove_tree(root(), L"tree\\a"), code::file_not_found);

  const RegistryKey tree = make(L"tree\\c");
  ASSERT_EQ(registry().set(tree, L"value", {RegistryType::none, {}}), 0U);
  EXPECT_EQ(registry().close(make(L"below", 0, tree)), 0U);
  RegistryKey reader = RegistryKey::null;
  ASSERT_EQ(registry().open(tree, L"", 0, access::read, reader), 0U);
  EXPECT_EQ(registry().remove_tree(reader, L""), code::access_denied) << "values want the right to write";
  EXPECT_EQ(registry().close(reader), 0U);
  EXPECT_EQ(registry().remove_tree(tree, L""), 0U);
  ports::KeyInformation left{9, 9, 9};
  EXPECT_EQ(registry().information(tree, left), 0U) << "the key stays";
  EXPECT_EQ(left.subkeys + left.values, 0U);
  EXPECT_EQ(registry().remove_tree(root(), L"tree"), 0U);
  EXPECT_EQ(registry().information(tree, left), code::key_deleted);
  EXPECT_EQ(registry().close(tree), 0U);
}

TEST_P(Registry, ARightThatWasNotAskedForIsRefused) {
  RegistryKey reader = RegistryKey::null;
  ASSERT_EQ(registry().open(root(), L"", 0, access::read, reader), 0U);
  EXPECT_EQ(registry().set(reader, L"v", {RegistryType::none, {}}), code::access_denied);
  EXPECT_EQ(registry().remove_value(reader, L"v"), code::access_denied);
  EXPECT_EQ(registry().remove(reader), code::access_denied);
  EXPECT_EQ(registry().close(reader), 0U);
  RegistryKey writer = RegistryKey::null;
  ASSERT_EQ(registry().open(root(), L"", 0, access::set_value, writer), 0U);
  RegistryValue value;
  std::wstring name;
  EXPECT_EQ(registry().query(writer, L"v", value), code::access_denied);
  EXPECT_EQ(registry().subkey(writer, 0, name), code::access_denied);
  EXPECT_EQ(registry().close(writer), 0U);
}

TEST_P(Registry, ARemovedKeyIsDeadToItsHandles) {
  const RegistryKey parent = make(L"parent");
  const RegistryKey child = make(L"parent\\child");
  EXPECT_EQ(registry().remove(parent), code::access_denied) << "it has a subkey";
  EXPECT_EQ(registry().remove(child), 0U);
  RegistryValue value;
  EXPECT_EQ(registry().query(child, L"v", value), code::key_deleted);
  EXPECT_EQ(registry().close(child), 0U);
  EXPECT_EQ(registry().remove(parent), 0U);
  EXPECT_EQ(registry().close(parent), 0U);
  EXPECT_EQ(try_open(L"parent"), code::file_not_found);
}

TEST_P(Registry, BelowAVolatileKeyAllIsVolatile) {
  const RegistryKey parent = make(L"passing", option::is_volatile);
  RegistryKey child = RegistryKey::null;
  bool created = false;
  EXPECT_EQ(registry().create(parent, L"lasting", 0, full, child, created), code::child_must_be_volatile);
  EXPECT_EQ(registry().close(make(L"passing too", option::is_volatile, parent)), 0U);
  EXPECT_EQ(registry().close(parent), 0U);
}

TEST_P(Registry, ALinkIsFollowedUnlessItIsOpenedItself) {
  EXPECT_EQ(registry().close(make(L"target\\below")), 0U);
  make_link(L"link", L"target");
  EXPECT_EQ(try_open(L"link\\below"), 0U);
  RegistryKey target = RegistryKey::null;
  std::wstring name;
  ASSERT_EQ(registry().open(root(), L"link", 0, access::read, target), 0U);
  EXPECT_EQ(registry().subkey(target, 0, name), 0U);
  EXPECT_EQ(name, L"below");
  EXPECT_EQ(registry().close(target), 0U);

  RegistryKey itself = RegistryKey::null;
  ASSERT_EQ(registry().open(root(), L"link", option::open_link, full, itself), 0U);
  RegistryValue value;
  EXPECT_EQ(registry().query(itself, L"SymbolicLinkValue", value), 0U);
  EXPECT_EQ(value.type, RegistryType::link);
  EXPECT_EQ(registry().remove(itself), 0U);
  EXPECT_EQ(registry().close(itself), 0U);
  EXPECT_EQ(try_open(L"link"), code::file_not_found);
  EXPECT_EQ(try_open(L"target\\below"), 0U);
}

TEST_P(Registry, WhatALinkInATreeLeadsToGoesAndTheLinkStays) {
  for (const wchar_t* name : {L"target\\below", L"tree\\a", L"tree\\z"}) EXPECT_EQ(registry().close(make(name)), 0U);
  make_link(L"tree\\link", L"target");
  EXPECT_EQ(registry().remove_tree(root(), L"tree"), code::file_not_found);
  EXPECT_EQ(try_open(L"target"), code::file_not_found);
  EXPECT_EQ(try_open(L"tree\\link", option::open_link), 0U);
  EXPECT_EQ(try_open(L"tree\\a"), code::file_not_found);
  EXPECT_EQ(try_open(L"tree\\z"), 0U) << "nobody came so far";

  EXPECT_EQ(registry().close(make(L"target\\below")), 0U);
  EXPECT_EQ(registry().remove_tree(root(), L"tree\\link"), 0U);
  EXPECT_EQ(try_open(L"target"), code::file_not_found);
  EXPECT_EQ(try_open(L"tree\\link", option::open_link), 0U);
}

KY_CONTRACT(Registry);

}  // namespace

}  // namespace contract
