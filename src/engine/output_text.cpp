#include "engine/output_text.h"

#include <QStringDecoder>

namespace tavrelune {

std::optional<QString> decodeUtf8Chunk(const QByteArray& chunk)
{
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = decoder.decode(chunk);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

namespace {
bool isLineSeparator(QChar c)
{
    switch (c.unicode()) {
    case 0x000A: case 0x000B: case 0x000C: case 0x000D:
    case 0x0085: case 0x2028: case 0x2029:
        return true;
    default:
        return false;
    }
}
}  // namespace

QStringList splitOutputLines(const QString& chunk)
{
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= chunk.size(); ++i) {
        if (i == chunk.size() || isLineSeparator(chunk[i])) {
            if (i > start)
                lines << chunk.mid(start, i - start);
            start = i + 1;
        }
    }
    return lines;
}

}  // namespace tavrelune
