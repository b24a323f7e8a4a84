#pragma once

#include "link/selection.h"

#include <string>

// What the link asks of the service: JSON in UTF-8, as the library writes it that the link has on Linux,
// without white space and with the keys in their order.
namespace tarnwick {

std::string RegisterRequest();

// A material for the solid or shell that is picked. Bytes of its file's name that are no UTF-8 are taken as
// ISO 8859-1.
std::string MaterialRequest(const Selection& selection);

} // namespace tarnwick
