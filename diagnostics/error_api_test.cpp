#include "diagnostics/error_api.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/bare_machine.h"

namespace ky {
namespace {

class ErrorApi : public testing::Test {
 protected:
  ErrorApi() { ports::bind(desk.system); }
  ~ErrorApi() override { ports::unbind(); }

  void add(std::uint32_t code, const wchar_t* source, const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    errors.AddError(code, source, format, arguments);
    va_end(arguments);
  }
  /// Asks as hosts do: for the size, then for the text.
  std::wstring text() {
    std::uint64_t size = 0;
    EXPECT_EQ(errors.GetErrors(nullptr, &size), 122U);
    std::wstring all(size, L'?');
    EXPECT_EQ(errors.GetErrors(all.data(), &size), 0U);
    EXPECT_EQ(all.back(), L'\0');
    all.pop_back();
    EXPECT_EQ(size, all.size() + 1);
    return all;
  }

  support::BareMachine desk;
  CErrorApi errors;
};

TEST_F(ErrorApi, GathersLinesOfCodeSourceAndMessage) {
  add(0x8007000E, L"Source", L"%i of %s", 3, L"text");
  add(0, L"", L"");
  add(31, nullptr, L"line\n");
  EXPECT_EQ(text(), L"Error: 0x8007000E|Source|3 of text\nError: 0x0||\nError: 0x1F|(null)|line\n\n");
}

TEST_F(ErrorApi, ALineHas1022CharactersAtMost) {
  const std::wstring long_message(2000, L'm');
  const struct {
    std::size_t source;
    std::size_t message;  // what is left of it
  } rows[] = {{6, 1003}, {1008, 1}, {1009, 0}};
  std::wstring expected;
  for (const auto& row : rows) {
    const std::wstring source(row.source, L's');
    add(0x1F, source.c_str(), L"%s", long_message.c_str());
    expected += L"Error: 0x1F|" + source + L"|" + std::wstring(row.message, L'm') + L"\n";
    EXPECT_EQ(text(), expected) << row.source;
  }
}

TEST_F(ErrorApi, GrowsByWholePagesWithoutLosingText) {
  std::wstring expected;
  for (int n = 0; n < 500; ++n) {
    add(1, L"a source of some length", L"%i", n);
    expected += L"Error: 0x1|a source of some length|" + std::to_wstring(n) + L"\n";
  }
  EXPECT_EQ(text(), expected);
}

TEST_F(ErrorApi, TheSizeTestIsOneShort) {
  std::uint64_t size = 100;
  wchar_t buffer[100];
  EXPECT_EQ(errors.GetErrors(buffer, &size), 122U) << "no text, whatever is offered";
  EXPECT_EQ(size, 1U);
  add(1, L"s", L"m");
  const std::uint64_t length = text().size();
  for (const std::uint64_t offered : {std::uint64_t{0}, length - 2}) {
    size = offered;
    EXPECT_EQ(errors.GetErrors(buffer, &size), 122U);
    EXPECT_EQ(size, length + 1);
  }
  size = 100;
  EXPECT_EQ(errors.GetErrors(buffer, &size), 0U);
  EXPECT_EQ(size, 100U) << "left as it is";
}

using ErrorApiDeathTest = ErrorApi;

TEST_F(ErrorApiDeathTest, WhatDoesNotFitStopsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "fast");
  const auto stopped = testing::ExitedWithCode(1);
  for (const std::size_t source : {std::size_t{1010}, std::size_t{5000}}) {
    EXPECT_EXIT(add(0x1F, std::wstring(source, L's').c_str(), L"m"), stopped, "") << source;
  }
  add(1, L"s", L"m");
  wchar_t buffer[100];
  for (const std::uint64_t missing : {std::uint64_t{1}, std::uint64_t{2}}) {
    std::uint64_t size = text().size() + 1 - missing;
    EXPECT_EXIT(static_cast<void>(errors.GetErrors(buffer, &size)), stopped, "") << missing;
  }
}

}  // namespace
}  // namespace ky
