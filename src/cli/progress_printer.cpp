#include "cli/progress_printer.h"

#include <algorithm>
#include <cmath>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tavrelune::cli {

int percent(double fraction)
{
    if (!(fraction > 0))
        return 0;
    // A hair of tolerance so that 0.29999999 from (i + p) / n still reads 30.
    return std::min(100, static_cast<int>(std::floor(fraction * 100 + 1e-6)));
}

QString progressBar(double fraction, int cells)
{
    cells = std::max(cells, 0);
    const int done = std::clamp(static_cast<int>(std::floor(percent(fraction) * cells / 100.0)), 0, cells);
    return '[' + QString(done, '#') + QString(cells - done, '-') + ']';
}

QString terminalLine(const ProgressState& state, int columns)
{
    QString numbers = QStringLiteral(" %1%  overall %2%").arg(percent(state.item), 3).arg(percent(state.overall));
    if (!state.timeLeft.isEmpty())
        numbers += QStringLiteral("  ") + state.timeLeft;
    // Leave the last column free: writing into it makes some terminals wrap.
    const int room = std::max(columns - 1, 20);
    const int cells = std::clamp(room / 4, 10, 30);
    const int labelRoom = std::max(room - cells - 3 - static_cast<int>(numbers.size()), 1);
    QString label = state.label;
    if (label.size() > labelRoom)
        label = label.left(labelRoom - 1) + QChar(0x2026);
    return label + ' ' + progressBar(state.item, cells) + numbers;
}

QString plainLine(const ProgressState& state)
{
    return QStringLiteral("%1: %2% (overall %3%%4)")
        .arg(state.label)
        .arg(percent(state.item))
        .arg(percent(state.overall))
        .arg(state.timeLeft.isEmpty() ? QString() : QStringLiteral(", ") + state.timeLeft);
}

ProgressPrinter::ProgressPrinter(std::FILE* stream, Mode mode, int columns)
    : stream_(stream), mode_(mode), columns_(columns)
{
}

ProgressPrinter ProgressPrinter::forStandardError()
{
    if (!::isatty(STDERR_FILENO))
        return ProgressPrinter(stderr, Mode::plain);
    winsize size = {};
    const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return ProgressPrinter(stderr, Mode::terminal, known ? size.ws_col : 80);
}

void ProgressPrinter::status(const QString& text)
{
    printedStep_ = 0;
    if (mode_ == Mode::plain)
        write(text + '\n');
}

void ProgressPrinter::progress(const ProgressState& state)
{
    if (mode_ == Mode::plain) {
        const int step = percent(state.item) / 10;
        if (step > printedStep_) {
            printedStep_ = step;
            write(plainLine(state) + '\n');
        }
        return;
    }
    const QString line = terminalLine(state, columns_);
    if (line == drawn_)
        return;
    drawn_ = line;
    write(QStringLiteral("\r\x1b[K") + line);
}

void ProgressPrinter::message(const QString& line)
{
    clearBar();
    write(line + '\n');
}

void ProgressPrinter::clearBar()
{
    if (drawn_.isEmpty())
        return;
    write(QStringLiteral("\r\x1b[K"));
    drawn_.clear();
}

void ProgressPrinter::write(const QString& text)
{
    std::fputs(text.toUtf8().constData(), stream_);
    std::fflush(stream_);
}

}  // namespace tavrelune::cli
