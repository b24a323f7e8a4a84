#include "link/server_requests.h"

#include "platform/environment.h"
#include "text/wide_text.h"

namespace tarnwick {

namespace {

void AppendEscaped(char c, std::string* out) {
    constexpr std::string_view kPlain = "\"\\\b\f\n\r\t";
    constexpr std::string_view kLetters = "\"\\bfnrt";
    const std::size_t place = kPlain.find(c);
    if (place != std::string_view::npos) {
        *out += '\\';
        *out += kLetters[place];
    } else if (static_cast<unsigned char>(c) < ' ') {
        constexpr const char* kDigits = "0123456789ABCDEF";
        *out += "\\u00";
        *out += kDigits[c >> 4];
        *out += kDigits[c & 15];
    } else {
        *out += c;
    }
}

std::string EnvironmentOr(const char* name, const char* otherwise) {
    const std::string value = EnvironmentText(name).value_or("");
    return !value.empty() ? value : otherwise;
}

// A name of any bytes as valid UTF-8: for other text the service would drop the connection.
std::string Utf8OfName(const std::string& name) {
    std::u32string wide = WideFromNarrow(name);
    for (char32_t& character : wide) {
        if (character >= 0xDC80 && character <= 0xDCFF) { character -= 0xDC00; }
    }
    return NarrowFromWide(wide);
}

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) { AppendEscaped(c, &quoted); }
    return quoted += '"';
}

} // namespace

std::string CheckRequest() {
    return R"({"Check": "Connexion"})";
}

std::string RegisterRequest() {
    // Read for requests to come: the service doesn't ask who the user is.
    static_cast<void>(WideFromNarrow(EnvironmentOr("Velquist_user", "user@localhost")));
    return R"({"action":"register","sender":"3d viewer"})";
}

std::string MaterialRequest(const Selection& selection) {
    const std::int32_t type = selection.selectedContainerType;
    std::string request = R"({"Id":)";
    request += std::to_string(selection.selectedExactContainerId);
    request += R"(,"Type":)";
    request += Quoted(type == 1 ? "Solid" : type == 2 ? "Shell" : "");
    request += R"(,"Url":)";
    request += Quoted(Utf8OfName(FileNameOf(selection)));
    return request += R"(,"action":"add_mat"})";
}

std::string ServiceUri(const char* usual) {
    return EnvironmentOr("Velquist_ws_URI", usual);
}

} // namespace tarnwick
