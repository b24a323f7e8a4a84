#pragma once

#include <QString>

#include <string>

namespace tarnwick {

// A path of the toolkit as the bytes that our own calls take.
std::string PathBytes(const QString& path);

// The path of a program that a user has, by its name; empty where there is none.
std::string FindApplication(const std::string& name);

} // namespace tarnwick
