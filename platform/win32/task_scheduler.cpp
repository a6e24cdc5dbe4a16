#include "platform/win32/task_scheduler.h"

#include <windows.h>

#include <taskschd.h>

#include <new>

#include "platform/win32/com.h"

namespace win32 {

namespace {

ITaskService* native(ports::TaskService service) {
  return reinterpret_cast<ITaskService*>(service);
}

ITaskFolder* native(ports::TaskFolder folder) {
  return reinterpret_cast<ITaskFolder*>(folder);
}

IRegisteredTask* native(ports::ScheduledTask task) {
  return reinterpret_cast<IRegisteredTask*>(task);
}

/// Hands over what the call got, if it got it.
template <class Port, class Object>
ports::Result given(HRESULT result, ComOwner<Object>& got, Port& out) {
  if (SUCCEEDED(result)) out = static_cast<Port>(reinterpret_cast<std::uintptr_t>(got.detach()));
  return result;
}

/// A text for a call. Null would be another question there.
struct Text : Bstr {
  explicit Text(const wchar_t* text) : Bstr(text) {
    if (text != nullptr && get() == nullptr) throw std::bad_alloc();
  }
};

template <class Object>
void release_object(Object* object) {
  if (object != nullptr) object->Release();
}

}  // namespace

ports::Result TaskScheduler::create_service(ports::TaskService& out) {
  ComOwner<ITaskService> service;
  const HRESULT result =
      CoCreateInstance(CLSID_TaskScheduler, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskService, service.receive_any());
  return given(result, service, out);
}

ports::Result TaskScheduler::connect(ports::TaskService service) {
  if (service == ports::TaskService::null) return E_POINTER;
  const VARIANT empty{};
  return native(service)->Connect(empty, empty, empty, empty);
}

ports::Result TaskScheduler::folder(ports::TaskService service, const wchar_t* path, ports::TaskFolder& out) {
  if (service == ports::TaskService::null) return E_POINTER;
  ComOwner<ITaskFolder> folder;
  return given(native(service)->GetFolder(Text(path).get(), folder.receive()), folder, out);
}

ports::Result TaskScheduler::task(ports::TaskFolder folder, const wchar_t* name, ports::ScheduledTask& out) {
  if (folder == ports::TaskFolder::null) return E_POINTER;
  ComOwner<IRegisteredTask> task;
  return given(native(folder)->GetTask(Text(name).get(), task.receive()), task, out);
}

ports::Result TaskScheduler::name(ports::ScheduledTask task, std::wstring& out) {
  if (task == ports::ScheduledTask::null) return E_POINTER;
  Bstr name;
  const HRESULT result = native(task)->get_Name(name.receive());
  if (SUCCEEDED(result)) out = name.text();
  return result;
}

ports::Result TaskScheduler::remove(ports::TaskFolder folder, const wchar_t* name) {
  if (folder == ports::TaskFolder::null) return E_POINTER;
  return native(folder)->DeleteTask(Text(name).get(), 0);
}

void TaskScheduler::release(ports::TaskService service) {
  release_object(native(service));
}

void TaskScheduler::release(ports::TaskFolder folder) {
  release_object(native(folder));
}

void TaskScheduler::release(ports::ScheduledTask task) {
  release_object(native(task));
}

}  // namespace win32
