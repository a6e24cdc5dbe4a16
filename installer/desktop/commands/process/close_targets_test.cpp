#include "installer/desktop/commands/process/close_targets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace ky {
namespace {

using base::process::ProcessEntry;

TEST(CloseTargets, KeepTheOrderOfTheirFirstAppearance) {
  CloseTargets targets;
  for (const wchar_t* key : {L"z.exe", L"a.exe", L"Z.exe", L"z.exe", L"m.exe"}) {
    targets.Add(key, {false, std::to_wstring(targets.Rows().size()), L"C:\\"});
  }
  std::wstring seen;
  for (const CloseTargets::Row& row : targets.Rows()) {
    seen += row.key + L':';
    for (const CloseTarget& target : row.targets) seen += target.cmd;
    seen += L' ';
  }
  EXPECT_EQ(seen, L"z.exe:03 a.exe:1 Z.exe:2 m.exe:3 ");
  EXPECT_EQ(targets.Find(L"A.EXE"), nullptr);
  EXPECT_EQ(targets.Find(L"m.exe"), &targets.Rows().back().targets);
}

TEST(CloseTargets, KeepTheRowsThatSomeKeyNamesCaseAside) {
  std::mt19937 random(5);
  const auto below = [&](std::uint32_t end) { return static_cast<std::uint32_t>(random() % end); };
  const auto name = [&] {
    std::wstring text;
    for (std::uint32_t length = below(3); length > 0; --length) text += L"abcABC\u00C4\u00E4"[below(8)];
    return text;
  };
  for (int round = 0; round < 200; ++round) {
    CloseTargets targets;
    for (std::uint32_t count = below(8); count > 0; --count) targets.Add(name(), {});
    std::vector<ProcessEntry> rows(20), expected;
    for (ProcessEntry& row : rows) row = {name(), below(5), below(5)};
    for (const ProcessEntry& row : rows) {
      const bool named = std::any_of(targets.Rows().begin(), targets.Rows().end(), [&](const CloseTargets::Row& each) {
        return each.key == row.name || LowerCased(each.key) == LowerCased(row.name);
      });
      if (named && row.pid != 0) expected.push_back(row);
    }
    FilterByTargets(targets, rows);
    EXPECT_EQ(rows, expected);
  }
}

TEST(CloseTargets, AreFoundByTheNameAsItStandsAndThenInLowerCase) {
  CloseTargets targets;
  targets.Add(L"Agent.exe", {false, L"exact", L"C:\\Cased\\"});
  targets.Add(L"agent.exe", {false, L"first", L"C:\\One\\"});
  targets.Add(L"agent.exe", {false, L"second", L"C:\\Two\\"});
  const auto found = [&](const std::wstring& name, const std::wstring& path, const SameFileTest& same) {
    const auto result = FindCloseTarget(targets, name, path, same);
    return result ? result->target->cmd + L' ' + result->file : std::wstring();
  };
  const SameFileTest equal = [](const wchar_t* a, const wchar_t* b) { return std::wstring(a) == b; };
  const SameFileTest any = [](const wchar_t*, const wchar_t*) { return true; };
  EXPECT_EQ(found(L"agent.exe", L"C:\\Two\\agent.exe", equal), L"second C:\\Two\\agent.exe");
  EXPECT_EQ(found(L"AGENT.EXE", L"C:\\Two\\agent.exe", equal), L"second C:\\Two\\agent.exe");
  EXPECT_EQ(found(L"Agent.exe", L"C:\\Cased\\Agent.exe", equal), L"exact C:\\Cased\\Agent.exe");
  EXPECT_EQ(found(L"agent.exe", L"C:\\Cased\\Agent.exe", equal), L"") << "a key with capitals asks for just these";
  EXPECT_EQ(found(L"Agent.exe", L"x", any), L"exact C:\\Cased\\Agent.exe");
  EXPECT_EQ(found(L"AGENT.exe", L"x", any), L"first C:\\One\\agent.exe");
  EXPECT_EQ(found(L"other.exe", L"x", any), L"");
  EXPECT_EQ(found(L"agent.exe", L"x", [](const wchar_t*, const wchar_t*) -> bool { throw std::runtime_error("x"); }),
            L"");
}

}  // namespace
}  // namespace ky
