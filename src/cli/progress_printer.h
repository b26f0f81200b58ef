// Batch progress on standard error: a redrawn bar on a terminal, plain lines
// when the output goes to a file or a pipe (logs stay readable).
//
// Main thread only. The formatting functions are pure.
#pragma once

#include <QString>
#include <cstdio>

namespace tavrelune::cli {

struct ProgressState {
    QString label;       // the clip being converted, or what the batch is doing
    double item = 0;     // fraction of that step, 0 to 1
    double overall = 0;  // fraction of the batch, 0 to 1
    QString timeLeft;    // "about 4 min left", or empty while unknown

    bool operator==(const ProgressState&) const = default;
};

// Whole percent, rounded down and limited to 0..100 (100 only when done).
int percent(double fraction);

// "[####------]": `cells` cells between the brackets, '#' for the done part.
QString progressBar(double fraction, int cells);

// The bar line for a terminal `columns` wide: label, bar, percent, overall
// percent, time left. The label is shortened (ending in "…") when the line would not fit.
QString terminalLine(const ProgressState& state, int columns);

// One line of the plain form: "A001.mov: 40% (overall 13%, about 4 min left)".
QString plainLine(const ProgressState& state);

class ProgressPrinter {
public:
    enum class Mode { terminal, plain };

    ProgressPrinter(std::FILE* stream, Mode mode, int columns = 80);
    // For standard error: a bar when it is a terminal, its width from the terminal.
    static ProgressPrinter forStandardError();

    // A new step began (plain mode prints the status; percent steps restart).
    void status(const QString& text);
    // Plain mode prints a line per 10% step of the item; terminal mode redraws.
    void progress(const ProgressState& state);
    // A line of its own, after clearing the bar.
    void message(const QString& line);

private:
    void write(const QString& text);
    void clearBar();

    std::FILE* stream_;
    Mode mode_;
    int columns_;
    int printedStep_ = 0;  // plain: last 10% step printed for the current item
    QString drawn_;        // terminal: the bar line on screen, empty when none
};

}  // namespace tavrelune::cli
