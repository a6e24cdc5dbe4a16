#include "platform/ports/files.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>

#include "tests/contract/world.h"

namespace contract {

namespace {

using ports::Disposition;
using ports::Handle;
namespace access = ports::file_access;
namespace attribute = ports::file_attribute;
namespace code = ports::code;
namespace share = ports::file_share;

class Files : public Contract {
 protected:
  ports::Files& files() { return system().files; }

  [[nodiscard]] std::wstring path(const std::wstring& name) { return folder_ + L"\\" + name; }

  Handle open(const std::wstring& name, std::uint32_t rights, std::uint32_t shared = share::all,
              Disposition how = Disposition::open_existing, std::uint32_t flags = 0) {
    return files().open(path(name).c_str(), rights, shared, how, flags);
  }

  /// Opens, closes, and tells the code.
  ports::ErrorCode try_open(const std::wstring& name, std::uint32_t rights, std::uint32_t shared = share::all,
                            Disposition how = Disposition::open_existing, std::uint32_t flags = 0) {
    const Handle file = open(name, rights, shared, how, flags);
    if (file == Handle::invalid) return last_error();
    EXPECT_TRUE(close(file));
    return 0;
  }

  bool close(Handle file) { return system().waits.close(file); }

  void make_file(const std::wstring& name, std::string_view bytes = "bytes") { Contract::make_file(path(name), bytes); }

  void make_folder(const std::wstring& name) { ASSERT_TRUE(files().create_folder(path(name).c_str())) << last_error(); }

  [[nodiscard]] bool there(const std::wstring& name) { return files().exists(path(name).c_str()); }

  /// The rows of a pattern below the scratch folder, by name.
  std::map<std::wstring, ports::FolderRow> listing(const std::wstring& pattern) {
    std::map<std::wstring, ports::FolderRow> rows;
    ports::FolderRow row;
    const Handle search = files().find_first(path(pattern).c_str(), row);
    if (search == Handle::invalid) return rows;
    do {
      rows.emplace(row.name, row);
    } while (files().find_next(search, row));
    EXPECT_EQ(last_error(), code::no_more_files);
    EXPECT_TRUE(files().find_close(search));
    return rows;
  }

 private:
  std::wstring folder_ = world().folder();
};

TEST_P(Files, AFolderIsListedThroughItsHandleWhileItIsHeld) {
  make_folder(L"held");
  make_folder(L"held\\inner");
  const Handle folder =
      files().open(path(L"held").c_str(), access::list_directory | access::read_attributes | access::erase,
                   share::read | share::write, ports::Disposition::open_existing, ports::open_flag::backup_semantics);
  ASSERT_NE(folder, Handle::invalid) << last_error();
  std::set<std::wstring> names;
  std::uint64_t index = 0;
  std::vector<ports::FolderRow> rows;
  for (bool more = files().list(folder, true, rows); more; more = files().list(folder, false, rows)) {
    for (const ports::FolderRow& row : rows) {
      names.insert(row.name);
      if (row.name == L"inner") index = row.index;
    }
  }
  EXPECT_EQ(last_error(), code::no_more_files);
  EXPECT_EQ(names, (std::set<std::wstring>{L".", L"..", L"inner"}));
  const Handle inner = files().open(path(L"held\\inner").c_str(), access::read_attributes, share::all,
                                    ports::Disposition::open_existing, ports::open_flag::backup_semantics);
  ports::FileInformation information;
  EXPECT_TRUE(files().information(inner, information));
  EXPECT_EQ(index, information.index);
  EXPECT_TRUE(system().waits.close(inner));
  EXPECT_FALSE(files().mark_deleted(folder));
  EXPECT_EQ(last_error(), code::directory_not_empty);
  EXPECT_TRUE(system().waits.close(folder));
}

TEST_P(Files, AMissingFileIsToldApartFromAMissingFolder) {
  const std::map<std::string, std::function<bool(const wchar_t*)>> operations = {
      {"attributes", [&](const wchar_t* p) { return files().attributes(p) != attribute::invalid; }},
      {"set_attributes", [&](const wchar_t* p) { return files().set_attributes(p, attribute::normal); }},
      {"exists", [&](const wchar_t* p) { return files().exists(p); }},
      {"remove", [&](const wchar_t* p) { return files().remove(p); }},
      {"remove_folder", [&](const wchar_t* p) { return files().remove_folder(p); }},
      {"move", [&](const wchar_t* p) { return files().move(p, path(L"to").c_str(), 0); }},
      {"open", [&](const wchar_t* p) {
         return files().open(p, access::generic_read, share::all, Disposition::open_existing, 0) != Handle::invalid;
       }}};
  for (const auto& [name, operation] : operations) {
    EXPECT_EQ(code_of(operation(path(L"missing").c_str())), code::file_not_found) << name;
    EXPECT_EQ(code_of(operation(path(L"missing\\file").c_str())), code::path_not_found) << name;
  }
  EXPECT_EQ(code_of(files().create_folder(path(L"missing\\folder").c_str())), code::path_not_found);
}

TEST_P(Files, BytesWrittenAreReadBack) {
  make_file(L"a.bin", "0123456789");
  const Handle file = open(L"a.bin", access::generic_read);
  ports::FileInformation about;
  ASSERT_TRUE(files().information(file, about));
  EXPECT_EQ(about.size, 10U);
  EXPECT_EQ(about.links, 1U);
  std::uint8_t buffer[8];
  std::string read;
  for (std::uint32_t got = 1; got != 0;) {
    ASSERT_TRUE(files().read(file, buffer, got));
    read.append(buffer, buffer + got);
  }
  EXPECT_EQ(read, "0123456789");
  std::uint32_t written = 0;
  EXPECT_EQ(code_of(files().write(file, buffer, written)), code::access_denied);
  EXPECT_EQ(code_of(files().flush(file)), code::access_denied);
  EXPECT_TRUE(close(file));
  EXPECT_EQ(code_of(files().read(file, buffer, written)), code::invalid_handle);
}

TEST_P(Files, TheDispositionDecidesWhatOpeningMakes) {
  EXPECT_EQ(try_open(L"new", access::generic_write, share::all, Disposition::truncate_existing), code::file_not_found);
  EXPECT_EQ(try_open(L"new", access::generic_write, share::all, Disposition::create_new), 0U);
  EXPECT_EQ(try_open(L"new", access::generic_write, share::all, Disposition::create_new), code::file_exists);
  make_file(L"old", "content");
  for (const auto& [how, size] : {std::pair{Disposition::open_always, 7U}, {Disposition::create_always, 0U}}) {
    const Handle file = open(L"old", access::generic_read | access::generic_write, share::all, how);
    EXPECT_EQ(last_error(), code::already_exists);
    ports::FileInformation about;
    EXPECT_TRUE(files().information(file, about));
    EXPECT_EQ(about.size, size);
    EXPECT_TRUE(close(file));
  }
}

TEST_P(Files, WhatOneHandleForbidsAnotherDoesNotGet) {
  constexpr std::uint32_t r = access::generic_read, w = access::generic_write;
  struct Row {
    std::uint32_t first, first_share, second, second_share;
    ports::ErrorCode result;
  };
  const Row rows[] = {
      {r, share::none, r, share::all, code::sharing_violation},
      {r, share::read, r, share::read, 0},
      {r, share::read, w, share::all, code::sharing_violation},
      {w, share::all, r, share::read, code::sharing_violation},
      {w, share::all, r, share::read | share::write, 0},
      {r, share::read | share::write, access::erase, share::all, code::sharing_violation},
      {r, share::all, access::erase, share::all, 0},
      {r, share::none, access::read_attributes, share::none, 0},
  };
  make_file(L"shared");
  for (const Row& row : rows) {
    const Handle first = open(L"shared", row.first, row.first_share);
    EXPECT_EQ(try_open(L"shared", row.second, row.second_share), row.result) << &row - rows;
    EXPECT_TRUE(close(first));
  }
  const Handle reader = open(L"shared", r, share::read);
  EXPECT_EQ(code_of(files().remove(path(L"shared").c_str())), code::sharing_violation);
  EXPECT_EQ(code_of(files().move(path(L"shared").c_str(), path(L"b").c_str(), 0)), code::sharing_violation);
  EXPECT_TRUE(close(reader));
  EXPECT_TRUE(files().remove(path(L"shared").c_str()));
  EXPECT_FALSE(there(L"shared"));
}

TEST_P(Files, AReadOnlyFileIsNeitherDeletedNorOpenedForWriting) {
  make_file(L"fixed");
  ASSERT_TRUE(files().set_attributes(path(L"fixed").c_str(), attribute::read_only | attribute::hidden));
  EXPECT_EQ(files().attributes(path(L"fixed").c_str()) & 0x7, attribute::read_only | attribute::hidden);
  EXPECT_EQ(code_of(files().remove(path(L"fixed").c_str())), code::access_denied);
  if (!world().wine()) {  // There it hangs on the Unix user: root may write.
    EXPECT_EQ(try_open(L"fixed", access::generic_write), code::access_denied);
  }
  const Handle eraser = open(L"fixed", access::erase | access::write_attributes | access::read_attributes);
  EXPECT_EQ(code_of(files().mark_deleted(eraser)), code::access_denied);
  EXPECT_TRUE(files().set_attributes_of(eraser, attribute::normal));
  EXPECT_TRUE(files().mark_deleted(eraser));
  EXPECT_TRUE(close(eraser));
  EXPECT_FALSE(there(L"fixed"));
}

TEST_P(Files, FoldersAndFilesAreNotTakenForEachOther) {
  make_folder(L"d");
  make_file(L"d\\f");
  EXPECT_EQ(code_of(files().create_folder(path(L"d").c_str())), code::already_exists);
  EXPECT_EQ(code_of(files().create_folder(path(L"d\\f").c_str())), code::already_exists);
  EXPECT_EQ(code_of(files().remove_folder(path(L"d").c_str())), code::directory_not_empty);
  EXPECT_EQ(code_of(files().remove_folder(path(L"d\\f").c_str())), code::directory_name_invalid);
  EXPECT_EQ(code_of(files().remove(path(L"d").c_str())), code::access_denied);
  EXPECT_EQ(try_open(L"d", access::generic_read), code::access_denied);
  EXPECT_EQ(try_open(L"d", access::list_directory, share::all, Disposition::open_existing,
                     ports::open_flag::backup_semantics),
            0U);
  EXPECT_EQ(files().attributes(path(L"d").c_str()) & attribute::directory, attribute::directory);
  EXPECT_EQ(files().attributes(path(L"d\\f").c_str()) & attribute::directory, 0U);
  EXPECT_TRUE(files().exists(path(L"D/F").c_str())) << "case and the kind of slash do not matter";
  EXPECT_TRUE(files().remove(path(L"d\\f").c_str()));
  EXPECT_TRUE(files().remove_folder(path(L"d").c_str()));
}

TEST_P(Files, AMarkedFileGoesWithItsLastHandle) {
  make_file(L"going");
  const Handle reader = open(L"going", access::generic_read);
  EXPECT_EQ(code_of(files().mark_deleted(reader)), code::access_denied) << "not opened for that";
  const Handle eraser = open(L"going", access::erase);
  EXPECT_TRUE(files().mark_deleted(eraser));
  EXPECT_TRUE(close(eraser));
  expect_but_for_wine("a file on its way out", try_open(L"going", access::generic_read) == code::access_denied &&
                                                   code_of(there(L"going")) == code::access_denied);
  EXPECT_TRUE(close(reader));
  EXPECT_EQ(try_open(L"going", access::generic_read), code::file_not_found);

  make_folder(L"full");
  make_file(L"full\\f");
  const Handle folder =
      open(L"full", access::erase, share::all, Disposition::open_existing, ports::open_flag::backup_semantics);
  EXPECT_EQ(code_of(files().mark_deleted(folder)), code::directory_not_empty);
  EXPECT_TRUE(close(folder));
}

TEST_P(Files, WhatIsOpenGetsAnotherNameInPlaceOfAFile) {
  for (const wchar_t* name : {L"read", L"from", L"taken"}) make_file(name);
  make_folder(L"folder");
  const auto opened = [&](const wchar_t* name, std::uint32_t wanted) {
    return files().open(path(name).c_str(), wanted, share::all, ports::Disposition::open_existing,
                        ports::open_flag::open_reparse_point);
  };
  const Handle reader = opened(L"read", access::read_attributes);
  expect_but_for_wine("another name without the right to it",
                      code_of(files().rename(reader, path(L"to").c_str())) == code::access_denied);
  const Handle file = opened(L"from", access::read_attributes | access::erase);
  EXPECT_EQ(code_of(files().rename(file, path(L"no\\where").c_str())), code::path_not_found);
  EXPECT_EQ(code_of(files().rename(file, path(L"folder").c_str())), code::access_denied);
  EXPECT_TRUE(files().rename(file, path(L"taken").c_str())) << last_error();
  EXPECT_FALSE(files().exists(path(L"from").c_str()));
  EXPECT_TRUE(system().waits.close(reader));
  EXPECT_TRUE(system().waits.close(file));
  EXPECT_TRUE(files().remove(path(L"taken").c_str()));
  EXPECT_TRUE(files().remove_folder(path(L"folder").c_str()));
}

TEST_P(Files, MovesSayWhatStandsInTheWay) {
  make_file(L"from", "new");
  make_file(L"taken", "old");
  make_folder(L"folder");
  const auto move = [&](const wchar_t* from, const wchar_t* to, std::uint32_t flags) {
    return code_of(files().move(path(from).c_str(), to == nullptr ? nullptr : path(to).c_str(), flags));
  };
  EXPECT_EQ(move(L"from", L"taken", 0), code::already_exists);
  EXPECT_EQ(move(L"from", L"folder", ports::move_flag::replace_existing), code::access_denied);
  EXPECT_EQ(move(L"from", L"no\\where", 0), code::path_not_found);
  make_file(L"unmoved");
  expect_but_for_wine("a move to nowhere", move(L"unmoved", nullptr, 0) == code::invalid_parameter);
  EXPECT_EQ(move(L"from", L"taken", ports::move_flag::replace_existing), 0U);
  EXPECT_FALSE(there(L"from"));
  EXPECT_EQ(listing(L"taken").at(L"taken").size, 3U);
  EXPECT_EQ(move(L"folder", L"renamed", 0), 0U);
  EXPECT_TRUE(there(L"renamed"));
  for (const wchar_t* name : {L"taken", L"never was"}) {
    EXPECT_EQ(move(name, nullptr, ports::move_flag::delay_until_reboot), 0U);
  }
  EXPECT_TRUE(there(L"taken")) << "it is only booked";
}

TEST_P(Files, ASearchGivesEveryRowOfItsPattern) {
  make_folder(L"Sub");
  make_file(L"one.txt", "1");
  make_file(L"Two.TXT", "22");
  make_file(L"three.log");
  const auto all = listing(L"*");
  EXPECT_EQ(all.size(), 6U) << "with . and ..";
  EXPECT_NE(all.at(L"Sub").attributes & attribute::directory, 0U);
  EXPECT_NE(all.at(L"..").attributes & attribute::directory, 0U);
  const auto texts = listing(L"*.txt");
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_EQ(texts.at(L"Two.TXT").size, 2U);
  EXPECT_EQ(listing(L"t?o.*").size(), 1U);
  ports::FolderRow row;
  EXPECT_EQ(code_of(files().find_first(path(L"*.none").c_str(), row) != Handle::invalid), code::file_not_found);
  EXPECT_EQ(code_of(files().find_first(path(L"none\\*").c_str(), row) != Handle::invalid), code::path_not_found);
}

TEST_P(Files, AnIdentityTellsOneFileFromAnother) {
  make_file(L"a");
  make_file(L"b");
  struct Told {
    ports::FileIdentity identity;
    ports::FileInformation information;
  };
  const auto told = [&](const wchar_t* name) {
    Told out;
    const Handle file = open(name, access::read_attributes);
    EXPECT_TRUE(files().identity(file, out.identity));
    EXPECT_TRUE(files().information(file, out.information));
    EXPECT_TRUE(close(file));
    return out;
  };
  const Told a = told(L"a"), again = told(L"A"), b = told(L"b");
  EXPECT_EQ(a.identity, again.identity);
  EXPECT_NE(a.identity.id, b.identity.id);
  EXPECT_EQ(a.identity.volume, b.identity.volume);
  // What a volume without identities is asked for instead.
  EXPECT_EQ(a.information.index, again.information.index);
  EXPECT_NE(a.information.index, b.information.index);
  EXPECT_EQ(a.information.volume, b.information.volume);
  EXPECT_NE(a.information.volume, 0U);
  EXPECT_EQ(a.information.links, 1U);
}

TEST_P(Files, AFolderSaysWhetherItTellsNamesApartByCase) {
  const Handle folder =
      open(L".", access::read_attributes, share::none, Disposition::open_always, ports::open_flag::backup_semantics);
  ASSERT_NE(folder, Handle::invalid) << last_error();
  std::uint32_t flags = 0;
  const ports::Status status = files().case_sensitivity(folder, flags);
  EXPECT_EQ(flags, 0U);
  expect_but_for_wine("case-sensitive folders", status == ports::status::success);
  EXPECT_TRUE(ports::status_ok(status) || status == ports::status::invalid_info_class) << status;
  EXPECT_TRUE(close(folder));
  expect_but_for_wine("case-sensitive folders",
                      files().case_sensitivity(Handle::null, flags) == ports::status::invalid_handle);
}

TEST_P(Files, AStatusHasItsCode) {
  const std::pair<ports::Status, ports::ErrorCode> rows[] = {
      {ports::status::success, code::success},
      {ports::status::invalid_handle, code::invalid_handle},
      {ports::status::access_denied, code::access_denied},
      {ports::status::invalid_info_class, code::invalid_parameter},
      {ports::status::not_found, code::not_found},
      {ports::status::entry_point_not_found, code::procedure_not_found},
      {static_cast<ports::Status>(0xC0FF1234), code::mr_mid_not_found},
  };
  for (const auto& [status, expected] : rows) EXPECT_EQ(system().errors.of_status(status), expected) << status;
}

TEST_P(Files, ATemporaryFileIsMadeInItsFolder) {
  wchar_t temp[300] = {};
  const std::uint32_t length = files().temp_folder(temp);
  ASSERT_EQ(length, std::wstring(temp).size());
  EXPECT_EQ(temp[length - 1], L'\\');
  wchar_t small[4];
  EXPECT_EQ(files().temp_folder(small), length + 1);

  wchar_t name[260] = {};
  const std::uint32_t number = files().temp_file(path(L"").c_str(), L"ky_long", 0, name);
  ASSERT_NE(number, 0U);
  EXPECT_TRUE(files().exists(name));
  EXPECT_EQ(std::wstring(name).rfind(path(L"ky_"), 0), 0U) << "three characters of the prefix";
  EXPECT_EQ(files().temp_file(path(L"").c_str(), L"x", 0x1A2B, name), 0x1A2BU);
  EXPECT_FALSE(files().exists(name)) << "a given number makes no file";
  std::wstring tail = name;
  tail = tail.substr(tail.rfind(L'\\') + 1);
  std::transform(tail.begin(), tail.end(), tail.begin(), [](wchar_t c) { return c >= L'a' && c <= L'z' ? c - 32 : c; });
  EXPECT_EQ(tail, L"X1A2B.TMP");
  EXPECT_EQ(code_of(files().temp_file(path(L"none").c_str(), L"ky", 0, name) != 0), code::directory_name_invalid);
}

TEST_P(Files, ALinkGoesItselfAndLeavesItsTarget) {
  make_folder(L"target");
  make_file(L"target\\kept");
  const bool made = files().create_link(path(L"link").c_str(), path(L"target").c_str(), true);
  expect_but_for_wine("symbolic links", made && there(L"link"));
  if (!there(L"link")) return;
  EXPECT_NE(files().attributes(path(L"link").c_str()) & attribute::reparse_point, 0U);
  EXPECT_TRUE(there(L"link\\kept"));
  const Handle link = open(L"link", access::erase | access::read_attributes, share::all, Disposition::open_existing,
                           ports::open_flag::backup_semantics | ports::open_flag::open_reparse_point);
  ports::FileInformation about;
  EXPECT_TRUE(files().information(link, about));
  EXPECT_NE(about.attributes & attribute::reparse_point, 0U);
  EXPECT_TRUE(files().mark_deleted(link));
  EXPECT_TRUE(close(link));
  EXPECT_FALSE(there(L"link"));
  EXPECT_TRUE(there(L"target\\kept"));
}

KY_CONTRACT(Files);

}  // namespace

}  // namespace contract
