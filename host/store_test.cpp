#include "host/store.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "host/current_store.h"
#include "ky/keys.h"
#include "tests/support/bare_machine.h"

namespace {

/// Notes when it goes, and puts a key on its way out if it has one.
class Noted final : public ky::Destroyable<Noted, ky::CSelfFree> {
 public:
  Noted(std::string name, std::vector<std::string>& gone, host::Store* writes_to = nullptr)
      : name_(std::move(name)), gone_(gone), store_(writes_to) {}
  ~Noted() {
    gone_.push_back(name_);
    if (store_ != nullptr) store_->put("SelfFree_Late", ky::ToStored(new Noted("late", gone_)));
  }

 private:
  std::string name_;
  std::vector<std::string>& gone_;
  host::Store* store_;
};

TEST(Store, AnAbsentKeyAndAZeroLookTheSame) {
  host::Store store;
  EXPECT_EQ(store.get("int_A"), 0U);
  store.put("int_A", 5);
  store.put("int_a", 6);
  EXPECT_EQ(store.get("int_A"), 5U);
  store.put("int_A", 0);
  EXPECT_EQ(store.get("int_A"), 0U);
  EXPECT_EQ(store.times_put("int_A"), 2U);
  EXPECT_EQ(store.times_put("int_B"), 0U);
  EXPECT_EQ(store.keys(), (std::vector<host::StoredKey>{{"int_A", 0}, {"int_a", 6}}));
}

TEST(Store, TheCurrentStoreStandsBehindTheProcessesTwoFunctions) {
  host::put_current("int_A", 1);
  EXPECT_EQ(host::get_current("int_A"), 0U) << "without a store nothing is kept";
  host::Store store;
  const host::CurrentStore current(store);
  host::put_current("int_A", ky::ToStored(-1));
  host::put_current(nullptr, 1);
  EXPECT_EQ(ky::FromStored<std::int32_t>(host::get_current("int_A")), -1);
  EXPECT_EQ(host::get_current(nullptr), 0U);
}

TEST(Store, ReleasesInReverseOrderWithTheLogAndTheDecrypterLast) {
  const support::BareMachine world;
  std::vector<std::string> gone;
  host::Store store;
  const auto put = [&](const char* key, const char* name, host::Store* writes_to = nullptr) {
    store.put(key, ky::ToStored(new Noted(name, gone, writes_to)));
  };
  put("SelfFree_Decrypter", "decrypter");
  put("String_A", "first");
  put("SelfFree_LoggerApi", "log");
  put("SelfFree_B", "second", &store);
  put("MessageBox", "not the store's");
  put("String_C", "third");
  ky::Release(ky::FromStored<ky::CSelfFree*>(store.get("String_A")));
  put("String_A", "first again");
  gone.clear();

  const ports::Handle event = world.system.waits.create_event(true, false, nullptr);
  store.put("HANDLE_Event", static_cast<std::uint64_t>(event));
  store.put("HMODULE_Program", static_cast<std::uint64_t>(world.system.modules.main()));
  store.put("int_Number", 7);
  store.release_all(world.system.waits, world.system.modules);

  EXPECT_EQ(gone, (std::vector<std::string>{"third", "second", "first again", "late", "log", "decrypter"}));
  EXPECT_FALSE(world.system.waits.set(event)) << "a handle is closed";
  EXPECT_EQ(store.get("int_Number"), 7U);
  EXPECT_EQ(store.get("SelfFree_Late"), 0U);
  ky::Release(ky::FromStored<ky::CSelfFree*>(store.get("MessageBox")));
}

TEST(Store, ManyThreadsReadAndWriteAtOnce) {
  host::Store store;
  std::vector<std::thread> threads;
  for (std::uint64_t number = 0; number < 4; ++number) {
    threads.emplace_back([&store, number] {
      const std::string own = "int_" + std::to_string(number);
      for (std::uint64_t i = 1; i <= 500; ++i) {
        store.put(own, i);
        store.put("int_Shared", i);
        store.put(own + '_' + std::to_string(i), i);
        EXPECT_EQ(store.get(own), i);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(store.times_put("int_Shared"), 2000U);
  EXPECT_EQ(store.keys().size(), 4 * 501 + 1U);
}

}  // namespace
