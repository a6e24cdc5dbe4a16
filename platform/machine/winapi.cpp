#include "platform/machine/winapi.h"

#include <memory>
#include <mutex>
#include <new>

#include "platform/ports/clock.h"
#include "platform/ports/text.h"
#include "platform/ports/threads.h"

namespace machine {

namespace {

constexpr std::size_t section_size = 40;
using Section = std::recursive_mutex;
static_assert(sizeof(Section) <= section_size && alignof(Section) <= alignof(void*));

[[nodiscard]] Section& section_at(void* section) {
  return *std::launder(static_cast<Section*>(section));
}
[[nodiscard]] ports::Handle handle_of(void* handle) {
  return ports::Handle{reinterpret_cast<std::uintptr_t>(handle)};
}

}  // namespace

void* Winapi::Destroy(std::uint32_t /*flags*/) {
  return this;
}

void Winapi::InitializeCriticalSection(void* section) {
  ::new (section) Section;
}

void Winapi::DeleteCriticalSection(void* section) {
  std::destroy_at(&section_at(section));
}

void Winapi::EnterCriticalSection(void* section) {
  section_at(section).lock();
}

void Winapi::LeaveCriticalSection(void* section) {
  section_at(section).unlock();
}

void* Winapi::CreateEventW(void* /*security*/, std::int32_t manual_reset, std::int32_t initial_state,
                           const wchar_t* name) {
  const ports::Handle event = waits_.create_event(manual_reset != 0, initial_state != 0, name);
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(event));
}

std::int32_t Winapi::SetEvent(void* event) {
  return waits_.set(handle_of(event)) ? 1 : 0;
}

std::int32_t Winapi::CloseHandle(void* handle) {
  return waits_.close(handle_of(handle)) ? 1 : 0;
}

std::uint32_t Winapi::GetTickCount() {
  return clock_.ticks();
}

std::int32_t Winapi::MultiByteToWideChar(std::uint32_t code_page, std::uint32_t flags, const char* source,
                                         std::int32_t source_length, wchar_t* destination,
                                         std::int32_t destination_length) {
  return text_.to_wide(code_page, flags, source, source_length, destination, destination_length);
}

}  // namespace machine
