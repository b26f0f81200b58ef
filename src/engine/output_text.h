// Decoding and line splitting of a child's output, one chunk at a time.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace tavrelune {

// The chunk as UTF-8 text, or nothing when it is not valid UTF-8 (the whole
// chunk is then dropped; no partial character is carried to the next chunk).
std::optional<QString> decodeUtf8Chunk(const QByteArray& chunk);

// Splits one chunk at every line separator (LF, VT, FF, CR, CR LF, NEL, LS,
// PS) and drops empty pieces. A line cut by the chunk's end is returned as is.
QStringList splitOutputLines(const QString& chunk);

}  // namespace tavrelune
