#pragma once

#include "platform/ports/xml_owner.h"

namespace host {

using ports::MapOwner;
using ports::NodeOwner;
using ports::XmlOwner;

}  // namespace host
