#include "platform/ports/registry.h"

#include <algorithm>

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

TEST_P(Registry, ARightThatWasNotAskedForIsRefused) {
  RegistryKey reader = RegistryKey::null;
  ASSERT_EQ(registry().open(root(), L"", 0, access::read, reader), 0U);
  EXPECT_EQ(registry().set(reader, L"v", {RegistryType::none, {}}), code::access_denied);
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
  const RegistryKey link = make(L"link", option::create_link);
  const std::wstring path = L"\\Registry\\Machine\\" + world().key() + L"\\target";
  ASSERT_EQ(registry().set(link, L"SymbolicLinkValue", {RegistryType::link, stored(path, false)}), 0U);
  EXPECT_EQ(registry().close(link), 0U);
  EXPECT_EQ(try_open(L"link\\below"), 0U);

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

KY_CONTRACT(Registry);

}  // namespace

}  // namespace contract
