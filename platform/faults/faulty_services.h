#pragma once

#include <new>
#include <string>

#include "platform/faults/faulty.h"
#include "platform/ports/com.h"
#include "platform/ports/driver_store.h"
#include "platform/ports/task_scheduler.h"

namespace faults {

/// COM whose initialisation fails by plan.
class FaultyCom final : public Faulty<ports::Com> {
 public:
  using Faulty::Faulty;

  ports::Result initialize(ports::ComModel model) override {
    return answer(Operation::com_initialize, [&] { return inner_.initialize(model); });
  }
  void uninitialize() override { inner_.uninitialize(); }
  ports::Result initialize_security(std::uint32_t authentication_level, std::uint32_t impersonation_level) override {
    return answer(Operation::com_initialize_security,
                  [&] { return inner_.initialize_security(authentication_level, impersonation_level); });
  }
};

/// A task scheduler whose calls fail by plan. The code not_enough_memory, which is no result of COM, stands for a text
/// that there is no memory for.
class FaultyTaskScheduler final : public Faulty<ports::TaskScheduler> {
 public:
  using Faulty::Faulty;

  ports::Result create_service(ports::TaskService& out) override {
    return answer(Operation::tasks_create_service, [&] { return inner_.create_service(out); });
  }
  ports::Result connect(ports::TaskService service) override {
    return answer(Operation::tasks_connect, [&] { return inner_.connect(service); });
  }
  ports::Result folder(ports::TaskService service, const wchar_t* path, ports::TaskFolder& out) override {
    return answer_text(Operation::tasks_folder, [&] { return inner_.folder(service, path, out); });
  }
  ports::Result task(ports::TaskFolder folder, const wchar_t* name, ports::ScheduledTask& out) override {
    return answer_text(Operation::tasks_task, [&] { return inner_.task(folder, name, out); });
  }
  ports::Result name(ports::ScheduledTask task, std::wstring& out) override {
    return answer(Operation::tasks_name, [&] { return inner_.name(task, out); });
  }
  ports::Result remove(ports::TaskFolder folder, const wchar_t* name) override {
    return answer_text(Operation::tasks_remove, [&] { return inner_.remove(folder, name); });
  }
  void release(ports::TaskService service) override { inner_.release(service); }
  void release(ports::TaskFolder folder) override { inner_.release(folder); }
  void release(ports::ScheduledTask task) override { inner_.release(task); }

 private:
  template <class Call>
  ports::Result answer_text(Operation operation, Call call) {
    const ports::Result result = answer(operation, call);
    if (result == static_cast<ports::Result>(ports::code::not_enough_memory)) throw std::bad_alloc();
    return result;
  }
};

/// A driver store that does not know a package by plan.
class FaultyDriverStore final : public Faulty<ports::DriverStore> {
 public:
  using Faulty::Faulty;

  bool inf_location(const wchar_t* inf, std::span<wchar_t> into, std::uint32_t& required) override {
    return ask(Operation::drivers_inf_location, false, [&] { return inner_.inf_location(inf, into, required); });
  }
};

}  // namespace faults
