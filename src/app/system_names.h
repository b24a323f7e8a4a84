#pragma once

#include <QString>

#include <string>

namespace tarnwick {

// A path of the toolkit as our own functions take it.
std::string PathBytes(const QString& path);

// The path of an installed program, by its name; empty when there is none.
std::string FindApplication(const std::string& name);

} // namespace tarnwick
