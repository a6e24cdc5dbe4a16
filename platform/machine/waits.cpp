#include "platform/machine/waits.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/machine/handles.h"
#include "platform/machine/named_objects.h"
#include "platform/machine/scheduler/scheduler.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace {

constexpr std::size_t most_handles = 64;

std::shared_ptr<Object> make_event(bool manual_reset, bool initial_state, const std::wstring& name) {
  const WaitableKind kind = manual_reset ? WaitableKind::manual_event : WaitableKind::auto_event;
  auto waitable = std::make_shared<Waitable>(kind, L"event '" + name + L"'", initial_state);
  return std::make_shared<Object>(ObjectKind::event, std::move(waitable));
}

bool has_doubles(std::vector<std::shared_ptr<Waitable>> objects) {
  std::sort(objects.begin(), objects.end());
  return std::adjacent_find(objects.begin(), objects.end()) != objects.end();
}

std::shared_ptr<Waitable> find_event(const HandleTable& handles, ports::Handle handle) {
  const auto object = handles.find(handle);
  return object != nullptr && object->kind() == ObjectKind::event ? object->waitable() : nullptr;
}

}  // namespace

ports::Handle Waits::create_event(bool manual_reset, bool initial_state, const wchar_t* name) {
  const std::wstring wanted = name == nullptr ? L"" : name;
  if (wanted.empty()) {
    auto event = make_event(manual_reset, initial_state, wanted);
    const std::shared_ptr<Waitable> waitable = event->waitable();
    const ports::Handle handle = handles_.open(std::move(event));
    waitable->label = L"event of handle " + std::to_wstring(static_cast<std::uintptr_t>(handle));
    return handle;
  }
  NamedObjects::Entry entry =
      names_.find_or_add(wanted, [&] { return make_event(manual_reset, initial_state, wanted); });
  if (entry.object == nullptr || entry.object->kind() != ObjectKind::event) {
    errors_.set_last(entry.object == nullptr ? ports::code::path_not_found : ports::code::invalid_handle);
    return ports::Handle::null;
  }
  // Unlike most calls this one tells something on success, so it has to clear what was there.
  errors_.set_last(entry.existed ? ports::code::already_exists : ports::code::success);
  return handles_.open(std::move(entry.object));
}

bool Waits::set(ports::Handle event) {
  const auto found = find_event(handles_, event);
  if (found == nullptr) {
    errors_.set_last(ports::code::invalid_handle);
    return false;
  }
  scheduler_.signal(*found);
  return true;
}

bool Waits::reset(ports::Handle event) {
  const auto found = find_event(handles_, event);
  if (found == nullptr) {
    errors_.set_last(ports::code::invalid_handle);
    return false;
  }
  scheduler_.reset(*found);
  return true;
}

std::uint32_t Waits::wait(std::span<const ports::Handle> handles, bool all, std::uint32_t milliseconds) {
  const auto fail = [this](ports::ErrorCode code) {
    errors_.set_last(code);
    return ports::wait_result::failed;
  };
  if (handles.empty() || handles.size() > most_handles) return fail(ports::code::invalid_parameter);
  std::vector<std::shared_ptr<Waitable>> objects;
  objects.reserve(handles.size());
  for (const ports::Handle handle : handles) {
    const auto object = handles_.find(handle);
    if (object == nullptr || object->waitable() == nullptr) return fail(ports::code::invalid_handle);
    if (!object->may_wait()) return fail(ports::code::access_denied);
    objects.push_back(object->waitable());
  }
  if (all && has_doubles(objects)) return fail(ports::code::invalid_parameter);
  const std::uint32_t result = scheduler_.wait(objects, all, milliseconds);
  return result == ports::wait_result::failed ? fail(ports::code::gen_failure) : result;
}

namespace {

// Some have a close of their own.
[[nodiscard]] bool closable(ObjectKind kind) {
  return kind != ObjectKind::search && kind != ObjectKind::certificate_store && kind != ObjectKind::signed_message &&
         kind != ObjectKind::certificate;
}

}  // namespace

bool Waits::close(ports::Handle handle) {
  const auto object = handles_.find(handle);
  if (object == nullptr || !closable(object->kind()) || handles_.close(handle) == nullptr) {
    errors_.set_last(ports::code::invalid_handle);
    return false;
  }
  return true;
}

}  // namespace machine
