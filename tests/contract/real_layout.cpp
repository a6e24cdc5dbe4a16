#include "tests/contract/real_layout.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <taskschd.h>

#include "platform/win32/com.h"

namespace contract {

namespace {

/// A privilege for a scope; the token is as before afterwards.
class SwitchedOn {
 public:
  explicit SwitchedOn(const wchar_t* name) {
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token_));
    TOKEN_PRIVILEGES wanted{1, {}};
    EXPECT_TRUE(LookupPrivilegeValueW(nullptr, name, &wanted.Privileges[0].Luid));
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    DWORD size = sizeof before_;
    EXPECT_TRUE(AdjustTokenPrivileges(token_, FALSE, &wanted, size, &before_, &size));
  }
  ~SwitchedOn() {
    AdjustTokenPrivileges(token_, FALSE, &before_, 0, nullptr, nullptr);
    CloseHandle(token_);
  }
  SwitchedOn(const SwitchedOn&) = delete;
  SwitchedOn& operator=(const SwitchedOn&) = delete;

 private:
  HANDLE token_ = nullptr;
  TOKEN_PRIVILEGES before_{};
};

/// The root folder of the scheduler, for a scope that need not have COM.
class RootFolder {
 public:
  RootFolder() {
    win32::ComOwner<ITaskService> service;
    EXPECT_EQ(
        CoCreateInstance(CLSID_TaskScheduler, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskService, service.receive_any()),
        S_OK);
    const VARIANT empty{};
    EXPECT_EQ(service->Connect(empty, empty, empty, empty), S_OK);
    EXPECT_EQ(service->GetFolder(win32::Bstr(L"\\").get(), folder_.receive()), S_OK);
  }
  ITaskFolder* operator->() const { return folder_.get(); }

 private:
  struct ComScope {
    ComScope() : result(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
    ~ComScope() {
      if (SUCCEEDED(result)) CoUninitialize();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
    const HRESULT result;
  };

  ComScope com_;  // outlives the folder
  win32::ComOwner<ITaskFolder> folder_;
};

}  // namespace

void save_hive(const std::wstring& file, const std::wstring& scratch, const std::wstring& keys) {
  HKEY made = nullptr;
  ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, (scratch + L"\\" + keys).c_str(), 0, nullptr, 0, KEY_READ, nullptr,
                            &made, nullptr),
            ERROR_SUCCESS);
  RegCloseKey(made);
  HKEY root = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, scratch.c_str(), 0, KEY_READ, &root), ERROR_SUCCESS);
  {
    const SwitchedOn privilege(L"SeBackupPrivilege");
    EXPECT_EQ(RegSaveKeyW(root, file.c_str(), nullptr), ERROR_SUCCESS);
  }
  RegCloseKey(root);
  EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, scratch.c_str()), ERROR_SUCCESS);
}

OwnHives::OwnHives() : mutex_(CreateMutexW(nullptr, FALSE, L"ky-test-own-hives")) {
  EXPECT_NE(WaitForSingleObject(mutex_, 120000), static_cast<DWORD>(WAIT_TIMEOUT));
}

OwnHives::~OwnHives() {
  ReleaseMutex(mutex_);
  CloseHandle(mutex_);
}

RegisteredTasks::~RegisteredTasks() {
  if (paths_.empty()) return;
  const RootFolder root;
  for (const std::wstring& path : paths_) {
    root->DeleteTask(win32::Bstr(path).get(), 0);
    const std::size_t folder = path.rfind(L'\\');
    if (folder != 0) root->DeleteFolder(win32::Bstr(path.substr(0, folder)).get(), 0);
  }
}

void RegisteredTasks::add(const std::wstring& path) {
  constexpr wchar_t task[] =
      L"<?xml version=\"1.0\"?><Task xmlns=\"http://schemas.microsoft.com/windows/2004/02/mit/task\">"
      L"<Actions><Exec><Command>none.exe</Command></Exec></Actions></Task>";
  const VARIANT empty{};
  paths_.push_back(path);
  const RootFolder root;
  win32::ComOwner<IRegisteredTask> made;
  EXPECT_EQ(root->RegisterTask(win32::Bstr(path).get(), win32::Bstr(task).get(), TASK_CREATE_OR_UPDATE, empty, empty,
                               TASK_LOGON_NONE, empty, made.receive()),
            S_OK);
}

bool has_task(const std::wstring& path) {
  const RootFolder root;
  win32::ComOwner<IRegisteredTask> task;
  return SUCCEEDED(root->GetTask(win32::Bstr(path).get(), task.receive()));
}

}  // namespace contract
