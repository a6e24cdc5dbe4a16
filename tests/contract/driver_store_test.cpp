#include "platform/ports/driver_store.h"

#include <array>

#include "tests/contract/world.h"

namespace contract {

namespace {

namespace code = ports::code;

class DriverStore : public Contract {};

TEST_P(DriverStore, APublishedInfTellsWhereItStandsInTheStore) {
  const std::wstring inf = world().package_inf();
  std::array<wchar_t, 260> path{};
  std::uint32_t required = 0;
  const auto locate = [&](const wchar_t* name, std::size_t room) {
    required = 0;
    return code_of(system().drivers.inf_location(name, std::span(path).first(room), required));
  };
  expect_but_for_wine("the driver store", locate(inf.c_str(), path.size()) == code::success &&
                                              required == std::wstring(path.data()).size() + 1 &&
                                              std::wstring(path.data()).starts_with(L"C:\\"));
  const std::uint32_t wanted = required;
  expect_but_for_wine("the driver store", locate(inf.c_str(), wanted) == code::success && wanted > 0);
  expect_but_for_wine("the driver store", locate(inf.c_str(), 4) == code::insufficient_buffer && required == wanted);
  expect_but_for_wine("the driver store", locate(L"ky-absent.inf", path.size()) == code::file_not_found);
}

KY_CONTRACT(DriverStore);

}  // namespace

}  // namespace contract
