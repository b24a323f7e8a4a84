#include "app/eye_text.h"

#include <QStringDecoder>

namespace tarnwick {

QString EyeText(std::string_view bytes) {
    const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(view);
    return decoder.hasError() ? QString::fromLatin1(view) : text;
}

} // namespace tarnwick
