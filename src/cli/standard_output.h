// Writing the commands' results to standard output, where a failed write
// must be noticed rather than lose the results silently.
//
// Main thread; plain functions.
#pragma once

#include <QByteArray>
#include <QString>

namespace tavrelune::cli {

// A path as one line of output: as it is, or as a JSON string when it holds
// a control character (a line feed would split it over two lines) or begins
// with a double quote (it would read as a quoted one).
QString printablePath(const QString& path);

// Opens /dev/null on each of descriptors 0, 1 and 2 that is closed, so the
// first file the program opens later cannot become its standard output (or
// input, or error) by taking the lowest free number. Call first in main.
void reopenClosedStandardStreams();

// Writes all of `bytes` to standard output, unbuffered. 0 on success, else
// the errno of the failed write (EPIPE when the reader went away).
int writeStandardOutput(const QByteArray& bytes);

}  // namespace tavrelune::cli
