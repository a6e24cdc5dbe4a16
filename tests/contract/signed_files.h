#pragma once

#include <string>

namespace contract {

/// A file that sign-libraries.sh made for this test run.
[[nodiscard]] std::wstring signed_file(const std::wstring& name);

/// Has the test prefix trust the test run's authority. Nothing but Wine is made to trust it: a failure elsewhere.
void trust_test_authority();

}  // namespace contract
