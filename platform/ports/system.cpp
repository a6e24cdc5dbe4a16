#include "platform/ports/system.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <utility>

#include "platform/ports/attached.h"
#include "platform/ports/mutex.h"

namespace ports {

namespace {

// Constant-initialised, so that it stands before any code of the process runs.
constinit const System* bound = nullptr;

struct Attachments {
  Mutex mutex;
  std::map<const void*, std::unique_ptr<Attachment>> all KY_GUARDED_BY(mutex);
};

Attachments& attachments() {
  static Attachments* const kept = new Attachments;  // never destroyed: threads may outlive the statics
  return *kept;
}

void drop_attachments() {
  std::map<const void*, std::unique_ptr<Attachment>> dropped;
  const Lock lock(attachments().mutex);
  dropped.swap(attachments().all);
}

}  // namespace

void bind(const System& system) {
  drop_attachments();
  bound = &system;
}

void unbind() {
  drop_attachments();
  bound = nullptr;
}

const System& system() {
  if (bound == nullptr) std::abort();
  return *bound;
}

Attachment& details::attached(const void* kind, const std::function<std::unique_ptr<Attachment>()>& make) {
  Attachments& here = attachments();
  const Lock lock(here.mutex);
  std::unique_ptr<Attachment>& place = here.all[kind];
  if (place == nullptr) place = make();
  return *place;
}

}  // namespace ports
