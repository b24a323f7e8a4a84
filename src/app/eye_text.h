#pragma once

#include <QString>

#include <string_view>

namespace tarnwick {

// Text of a file or of the log for the eye: UTF-8 where it is valid UTF-8, else Latin-1.
QString EyeText(std::string_view bytes);

} // namespace tarnwick
