// What the progress display looks like on a terminal and in a log.
#include "cli/progress_printer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>

using namespace tavrelune::cli;

TEST(ProgressFormatting, PercentBarAndTerminalLine)
{
    EXPECT_EQ(percent(-0.5), 0);
    EXPECT_EQ(percent(0.999), 99) << "100 only when done";
    EXPECT_EQ(percent(0.3 / 3 * 3), 30) << "floating noise below a step still counts as the step";
    EXPECT_EQ(percent(1.7), 100);
    EXPECT_EQ(progressBar(0.05, 10), "[----------]");
    EXPECT_EQ(terminalLine({"A001.mov", 0.4, 0.133}, 80), "A001.mov [#######------------]  40%  overall 13%");
    EXPECT_EQ(terminalLine({"A001.mov", 0.4, 0.133, "about 4 min left"}, 80),
              "A001.mov [#######------------]  40%  overall 13%  about 4 min left");
    // A long name is shortened so that the line leaves the last column free.
    const QString line = terminalLine({QString(100, 'x') + ".mov", 1, 1}, 60);
    EXPECT_EQ(line.size(), 59);
    EXPECT_TRUE(line.endsWith("xx" + QString(QChar(0x2026)) + " [##############] 100%  overall 100%"))
        << line.toStdString();
}

namespace {

// Everything a printer in `mode` writes for `feed`.
QString printed(ProgressPrinter::Mode mode, const std::function<void(ProgressPrinter&)>& feed)
{
    char* buffer = nullptr;
    size_t size = 0;
    std::FILE* stream = open_memstream(&buffer, &size);
    ProgressPrinter printer(stream, mode, 40);
    feed(printer);
    std::fclose(stream);
    const QString text = QString::fromUtf8(buffer, static_cast<qsizetype>(size));
    std::free(buffer);
    return text;
}

}  // namespace

// A log gets a line per status and per ten percent; a terminal one redrawn
// line, cleared for messages.
TEST(ProgressPrinter, PlainAndTerminalOutput)
{
    EXPECT_EQ(printed(ProgressPrinter::Mode::plain,
                      [](ProgressPrinter& printer) {
                          printer.status("Converting a.mov…");
                          for (double p : {0.02, 0.05, 0.12, 0.19, 0.35, 1.0})
                              printer.progress({"a.mov", p, p / 2});
                          printer.status("Converting b.mov…");
                          printer.progress({"b.mov", 0.1, 0.55, "about 40 s left"});
                          printer.message("Done: converted 2 clips.");
                      }),
              "Converting a.mov…\na.mov: 12% (overall 6%)\na.mov: 35% (overall 17%)\n"
              "a.mov: 100% (overall 50%)\nConverting b.mov…\nb.mov: 10% (overall 55%, about 40 s left)\n"
              "Done: converted 2 clips.\n");
    EXPECT_EQ(printed(ProgressPrinter::Mode::terminal,
                      [](ProgressPrinter& printer) {
                          printer.status("Converting a.mov…");
                          printer.progress({"a.mov", 0.5, 0.25});
                          printer.progress({"a.mov", 0.501, 0.2501});  // same text: not redrawn
                          printer.message("Conversion stopped.");
                      }),
              "\r\x1b[Ka.mov [#####-----]  50%  overall 25%\r\x1b[KConversion stopped.\n");
}
