#pragma once

#include "link/selection.h"

#include <string>

// What the link asks of the service: JSON in UTF-8, but for the first without white space and with sorted
// keys.
namespace tarnwick {

std::string CheckRequest();
std::string RegisterRequest();

// Asks for a material for the picked solid or shell. Bytes of its file's name that aren't UTF-8 are taken for
// ISO 8859-1.
std::string MaterialRequest(const Selection& selection);

// Where the service is: what Velquist_ws_URI in the environment says, or `usual` when it says nothing.
std::string ServiceUri(const char* usual);

} // namespace tarnwick
