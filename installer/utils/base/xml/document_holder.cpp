#include "installer/utils/base/xml/document_holder.h"

#include "installer/utils/base/xml/xml_error.h"
#include "platform/ports/com.h"
#include "platform/ports/system.h"

namespace base::xml {

document_holder::document_holder()
    : com_status_(ports::system().com.initialize(ports::ComModel::apartment_threaded)),
      document_(ports::system().xml) {}

document_holder::~document_holder() {
  document_.reset();
  if (!ports::succeeded(com_status_)) return;
  ports::system().com.uninitialize();
  com_status_ = ports::code::fail;
}

void document_holder::create() {
  const ports::Result status = ports::system().xml.create_document(document_.receive());
  if (!ports::succeeded(status)) raise(status, "::CreateInstance has failed!");
}

}  // namespace base::xml
