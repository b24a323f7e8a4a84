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
    const std::string uri = EnvironmentText("Velquist_ws_URI").value_or("");
    return !uri.empty() ? uri : usual;
}

} // namespace tarnwick
