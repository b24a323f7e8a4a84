#pragma once

#include <QString>

#include <string_view>

namespace tarnwick {

// Text of a file or of the log for display: decoded as UTF-8 where it is valid UTF-8, else as Latin-1.
QString EyeText(std::string_view bytes);

} // namespace tarnwick
