// `tavrelune grade INPUT -o OUTPUT [options]`: the still preview's grade
// applied to an image file, written as PNG.
#include "cli/commands.h"
#include "cli/number_options.h"
#include "grading/lut_parse_error.h"
#include "grading/pixel_image.h"
#include "grading/preview_grader.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QImageWriter>
#include <QLocale>
#include <QSaveFile>
#include <QTextStream>
#include <cmath>

namespace tavrelune::cli {

namespace {

const QString prefix = QStringLiteral("tavrelune grade: ");


bool samePath(const QString& a, const QString& b)
{
    const QFileInfo first(a);
    const QFileInfo second(b);
    if (first.exists() && second.exists())
        return first.canonicalFilePath() == second.canonicalFilePath();
    return first.absoluteFilePath() == second.absoluteFilePath();
}

// Replaces `path` in one step, so a failed write leaves no half file.
bool writePng(const QImage& image, const QString& path, QString& reason)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        reason = file.errorString();
        return false;
    }
    QImageWriter writer(&file, "png");
    if (!writer.write(image)) {
        reason = writer.errorString();
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        reason = file.errorString();
        return false;
    }
    return true;
}

}  // namespace

int runGrade(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Apply the preview grade (exposure, LUT, white balance and tint, contrast, saturation) to a PNG or "
        "JPEG image and write the result as PNG.");
    parser.addHelpOption();
    parser.addPositionalArgument("INPUT", "Image to grade (PNG or JPEG).");
    const QCommandLineOption output({"o", "output"}, "PNG file to write (replaced if it exists).", "OUTPUT");
    const QCommandLineOption lut("lut", "3D LUT in .cube format, applied after exposure.", "FILE");
    GradeValues grade;
    const std::vector<NumberOption<double>> numbers{
        {QCommandLineOption("exposure", "Exposure change in stops, -3 to 3 (default 0).", "E"), &grade.exposure,
         exposureRange},
        {QCommandLineOption("contrast", "Contrast factor around mid-grey, 0.5 to 2 (default 1).", "C"),
         &grade.contrast, contrastRange},
        {QCommandLineOption("saturation", "Saturation factor, 0 to 2 (default 1).", "S"), &grade.saturation,
         saturationRange},
        {QCommandLineOption("temperature", "White-balance shift, -100 to 100 (default 0).", "T"),
         &grade.temperature, temperatureRange},
        {QCommandLineOption("tint", "Tint, green (-100) to magenta (100) (default 0).", "T"), &grade.tint,
         tintRange},
    };
    parser.addOption(output);
    parser.addOption(lut);
    for (const auto& number : numbers)
        parser.addOption(number.option);
    const QStringList commandLine = QStringList{"tavrelune grade"} + arguments;
    if (parser.parse(commandLine) && parser.isSet(QStringLiteral("help"))) {
        QTextStream(stdout) << commandHelpText(parser, QStringLiteral("grade"));
        return 0;
    }
    parser.process(commandLine);  // --help-all, and bad options (status 1)

    QTextStream err(stderr);
    const QStringList inputs = parser.positionalArguments();
    if (inputs.size() != 1) {
        err << prefix << (inputs.isEmpty() ? "no INPUT given\n" : "give exactly one INPUT\n")
            << commandHelpText(parser, QStringLiteral("grade"));
        return 2;
    }
    if (!parser.isSet(output) || parser.value(output).isEmpty()) {
        err << prefix << "no OUTPUT given (-o OUTPUT)\n" << commandHelpText(parser, QStringLiteral("grade"));
        return 2;
    }
    if (const auto error = readNumberOptions(parser, numbers)) {
        err << prefix << *error << "\n";
        return 2;
    }
    const QString inputPath = inputs.constFirst();
    const QString outputPath = parser.value(output);
    if (QFileInfo(outputPath).suffix().compare("png", Qt::CaseInsensitive) != 0) {
        err << prefix << outputPath << ": OUTPUT must be a .png file\n";
        return 2;
    }
    if (samePath(inputPath, outputPath)) {
        err << prefix << "OUTPUT is the INPUT file; choose another name\n";
        return 2;
    }

    const std::optional<PixelImage> image = PixelImage::load(inputPath);
    if (!image) {
        err << prefix << inputPath << ": could not read the image\n";
        return 1;
    }
    PreviewGrader grader;
    grader.setSourceImage(image->filter);
    if (parser.isSet(lut)) {
        try {
            grader.setLUT(CubeLUT::load(parser.value(lut)));
        } catch (const LUTParseError& error) {
            err << prefix << parser.value(lut) << ": " << error.description() << "\n";
            return 1;
        }
    }
    // No graded image means the grade leaves this image as it is (a neutral
    // grade without LUT, or a frame one pixel across), as in the preview.
    const QImage result = grader.render(grade).value_or(image->display);
    QString reason;
    if (!writePng(result, outputPath, reason)) {
        err << prefix << outputPath << ": " << reason << "\n";
        return 1;
    }
    return 0;
}

}  // namespace tavrelune::cli
