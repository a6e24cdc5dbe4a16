#include "platform/machine/file_rules.h"

#include <gtest/gtest.h>

#include "platform/ports/codes.h"
#include "tests/support/named_world.h"

namespace machine {
namespace {

namespace code = ports::code;
namespace access = ports::file_access;
namespace share = ports::file_share;
namespace attribute = ports::file_attribute;
using support::NamedWorld;

class Decisions : public testing::Test {
 protected:
  Decisions() {
    world.file(L"C:\\f\\plain")
        .file(L"C:\\f\\read", "x", attribute::read_only)
        .file(L"C:\\f\\hidden", "x", attribute::hidden)
        .file(L"C:\\f\\locked")
        .held(L"C:\\f\\locked", file_right::read_data, share::read)
        .file(L"C:\\f\\touched")
        .held(L"C:\\f\\touched", access::write_attributes, share::none)
        .file(L"C:\\f\\image.exe")
        .running(L"C:\\f\\image.exe")
        .file(L"C:\\f\\protected")
        .folder(L"C:\\empty")
        .folder(L"C:\\constant")
        .junction(L"C:\\way", L"C:\\f");
    world.node(L"C:\\f\\protected").protect = true;
    world.node(L"C:\\constant").attributes = attribute::read_only;
    add_volume(world.state.files, L"D:", 2);
  }

  [[nodiscard]] Found at(const wchar_t* path, LastLink last = LastLink::itself) {
    return look_up(world.state.files, parse_path(path, L"C:\\").path, last);
  }

  NamedWorld world;
};

TEST_F(Decisions, WhatMayBeOpened) {
  using enum ports::Disposition;
  const std::uint32_t backup = ports::open_flag::backup_semantics;
  const struct {
    const wchar_t* path;
    OpenRequest request;
    ports::ErrorCode error;
    OpenAct act;
  } rows[] = {
      {L"C:\\f\\plain", {access::generic_read, 0, open_existing, 0}, code::success, OpenAct::open},
      {L"C:\\f\\plain", {access::generic_read, 0, create_new, 0}, code::file_exists, OpenAct::open},
      {L"C:\\f\\plain", {access::generic_write, 0, create_always, 0}, code::success, OpenAct::empty},
      {L"C:\\f\\plain", {access::generic_read, 0, truncate_existing, 0}, code::invalid_parameter, OpenAct::open},
      {L"C:\\f\\absent", {access::generic_read, 0, open_existing, 0}, code::file_not_found, OpenAct::open},
      {L"C:\\f\\absent", {access::generic_read, 0, open_always, 0}, code::success, OpenAct::create},
      {L"C:\\absent\\x", {access::generic_read, 0, create_always, 0}, code::path_not_found, OpenAct::open},
      {L"C:\\f\\plain\\x", {access::generic_read, 0, create_always, 0}, code::path_not_found, OpenAct::open},
      {L"C:\\f\\read", {access::generic_write, 0, open_existing, 0}, code::access_denied, OpenAct::open},
      {L"C:\\f\\read", {access::erase, 0, open_existing, 0}, code::success, OpenAct::open},
      {L"C:\\f\\hidden", {access::generic_write, 0, create_always, 0}, code::access_denied, OpenAct::open},
      {L"C:\\f\\locked", {access::generic_write, share::all, open_existing, 0}, code::sharing_violation, OpenAct::open},
      {L"C:\\f\\locked", {access::read_attributes, 0, open_existing, 0}, code::success, OpenAct::open},
      {L"C:\\f\\touched", {access::generic_write, 0, open_existing, 0}, code::success, OpenAct::open},
      {L"C:\\f\\image.exe", {access::generic_write, 7, open_existing, 0}, code::sharing_violation, OpenAct::open},
      {L"C:\\f\\image.exe", {access::erase, 7, open_existing, 0}, code::success, OpenAct::open},
      {L"C:\\f\\protected", {access::erase, 7, open_existing, 0}, code::access_denied, OpenAct::open},
      {L"C:\\f\\protected", {access::generic_read, 7, open_existing, 0}, code::success, OpenAct::open},
      {L"C:\\f", {access::generic_read, 7, open_existing, 0}, code::access_denied, OpenAct::open},
      {L"C:\\f\\", {access::generic_read, 7, open_existing, 0}, code::path_not_found, OpenAct::open},
      {L"C:\\f\\", {access::generic_read, 7, open_existing, backup}, code::success, OpenAct::open},
      {L"C:\\f\\plain\\", {access::generic_read, 7, open_existing, backup}, code::invalid_name, OpenAct::open},
  };
  for (const auto& row : rows) {
    const Path path = parse_path(row.path, L"C:\\").path;
    const Found found = look_up(world.state.files, path, LastLink::followed);
    const OpenDecision decision = decide_open(world.state.files, found, row.request, path.folder_wanted);
    EXPECT_EQ(decision.error, row.error) << &row - rows;
    if (row.error == code::success) {
      EXPECT_EQ(decision.act, row.act) << &row - rows;
    }
  }
}

TEST_F(Decisions, WhatMayBeDeleted) {
  const struct {
    const wchar_t* path;
    bool folder;
    ports::ErrorCode error;
  } rows[] = {
      {L"C:\\f\\plain", false, code::success},
      {L"C:\\f\\read", false, code::access_denied},
      {L"C:\\f\\locked", false, code::sharing_violation},
      {L"C:\\f\\image.exe", false, code::access_denied},
      {L"C:\\f\\protected", false, code::access_denied},
      {L"C:\\f\\absent", false, code::file_not_found},
      {L"C:\\f", false, code::access_denied},
      {L"C:\\way", false, code::access_denied},
      {L"C:\\f\\plain", true, code::directory_name_invalid},
      {L"C:\\f", true, code::directory_not_empty},
      {L"C:\\way", true, code::success},
      {L"C:\\way\\plain", false, code::success},
      {L"C:\\empty", true, code::success},
      {L"C:\\constant", true, code::access_denied},
      {L"C:\\", true, code::access_denied},
      {L"Q:\\x", false, code::path_not_found},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(decide_removal(world.state.files, at(row.path), row.folder), row.error) << &row - rows;
  }
}

TEST_F(Decisions, WhatMayBeMoved) {
  const std::uint32_t replace = ports::move_flag::replace_existing;
  const struct {
    const wchar_t* from;
    const wchar_t* to;
    std::uint32_t flags;
    ports::ErrorCode error;
  } rows[] = {
      {L"C:\\f\\plain", L"C:\\new", 0, code::success},
      {L"C:\\f\\plain", L"C:\\f\\PLAIN", 0, code::success},
      {L"C:\\f\\image.exe", L"C:\\f\\old.exe", 0, code::success},
      {L"C:\\f\\read", L"C:\\new", 0, code::success},
      {L"C:\\f\\locked", L"C:\\new", 0, code::sharing_violation},
      {L"C:\\f\\absent", L"C:\\new", 0, code::file_not_found},
      {L"C:\\f\\plain", L"C:\\absent\\new", 0, code::path_not_found},
      {L"C:\\f\\plain", L"C:\\f\\hidden", 0, code::already_exists},
      {L"C:\\f\\plain", L"C:\\f\\hidden", replace, code::success},
      {L"C:\\f\\plain", L"C:\\f\\read", replace, code::access_denied},
      {L"C:\\f\\plain", L"C:\\f\\image.exe", replace, code::access_denied},
      {L"C:\\f\\plain", L"C:\\f\\locked", replace, code::access_denied},
      {L"C:\\f\\plain", L"C:\\empty", replace, code::access_denied},
      {L"C:\\f", L"C:\\g", 0, code::access_denied},  // something in it is open
      {L"C:\\empty", L"C:\\empty\\in", 0, code::sharing_violation},
      {L"C:\\f\\plain", L"D:\\plain", 0, code::not_same_device},
      {L"C:\\f\\plain", L"D:\\plain", ports::move_flag::copy_allowed, code::success},
      {L"C:\\empty", L"D:\\empty", ports::move_flag::copy_allowed, code::not_same_device},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(decide_move(world.state.files, at(row.from), at(row.to), row.flags).error, row.error) << &row - rows;
  }
}

TEST_F(Decisions, LinksLeadOnAndEndlessOnesAreRefused) {
  world.junction(L"C:\\a", L"C:\\b").junction(L"C:\\b", L"C:\\a").junction(L"C:\\lost", L"C:\\nowhere");
  EXPECT_EQ(at(L"C:\\a\\x").error, code::cannot_resolve_filename);
  EXPECT_EQ(at(L"C:\\lost\\x").error, code::path_not_found);
  EXPECT_EQ(at(L"C:\\lost", LastLink::followed).error, code::file_not_found);
  EXPECT_EQ(at(L"C:\\way", LastLink::followed).node, at(L"C:\\f").node);
  EXPECT_NE(at(L"C:\\way").node, at(L"C:\\f").node);
}

}  // namespace
}  // namespace machine
