#pragma once

#include "platform/ports/codes.h"
#include "platform/ports/types.h"
#include "platform/ports/xml_owner.h"

namespace base::xml {

/// What a reader stands on: the running thread's entrance into COM, and the document. Made, used and destroyed on one
/// thread.
class document_holder {
 public:
  /// Enters COM. Failing is no error yet: the thread may be in it in another way.
  document_holder();
  /// Gives the document back, and then leaves COM if it was entered.
  ~document_holder();
  document_holder(const document_holder&) = delete;
  document_holder& operator=(const document_holder&) = delete;

  /// Makes the empty document; raises the status of a failure.
  void create();

  [[nodiscard]] ports::XmlNode* document() const { return document_.get(); }

 private:
  ports::Result com_status_ = ports::code::fail;
  ports::NodeOwner document_;
};

}  // namespace base::xml
