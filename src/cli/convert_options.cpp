#include "cli/convert_options.h"

#include "cli/number_options.h"

#include "model/media_type.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <algorithm>
#include <cmath>

namespace tavrelune::cli {

namespace {

QString absolute(const QString& path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

}  // namespace

QString convertHelpText()
{
    return QStringLiteral(
        "Usage: tavrelune convert [OPTIONS] FILE...\n"
        "\n"
        "Grades and converts video clips to MP4 without opening the window. FILEs are\n"
        "added as if dropped on the window: videos become clips, a .cube file becomes\n"
        "the LUT for every clip, a PNG or SVG becomes the watermark.\n"
        "\n"
        "Options:\n"
        "  -o, --output DIR          Folder for the converted files\n"
        "                            (default: the Videos folder plus Tavrelune)\n"
        "  --codec h264|hevc         Video codec (default: hevc)\n"
        "  --quality high|balanced|small\n"
        "                            Quality preset (default: high)\n"
        "  --remove-audio            Leave the audio out\n"
        "  --combine                 Join all clips, in order, into one video\n"
        "  --filter-chain            Grade with ffmpeg's own filters instead of the\n"
        "                            preview's grade baked into one table (the default,\n"
        "                            which makes the files look exactly like the preview)\n"
        "  --match-preview           The default: the preview's grade, exactly\n"
        "  --exposure E              Exposure change in stops, -3 to 3, for every clip\n"
        "                            (default 0)\n"
        "  --contrast C              Contrast factor, 0.5 to 2, for every clip (default 1)\n"
        "  --saturation S            Saturation factor, 0 to 2, for every clip (default 1)\n"
        "  --temperature T           White-balance shift, -100 to 100, for every clip\n"
        "                            (default 0)\n"
        "  --tint T                  Tint, green (-100) to magenta (100), for every clip\n"
        "                            (default 0)\n"
        "  --watermark-x X           Watermark left edge, fraction of the frame width,\n"
        "                            0 to 1\n"
        "  --watermark-y Y           Watermark top edge, fraction of the frame height,\n"
        "                            0 to 1\n"
        "  --watermark-width W       Watermark width, fraction of the frame width,\n"
        "                            0.05 to 0.8\n"
        "  --watermark-opacity A     Watermark opacity, 0.05 to 1\n"
        "  --job FILE                JSON job file with settings and per-clip grade and\n"
        "                            trim; the options above override it (give it once)\n"
        "  --dry-run                 Print the ffmpeg commands instead of running them:\n"
        "                            one JSON array per line (program first), each\n"
        "                            followed by a line '# output: PATH'\n"
        "  -h, --help                Show this help\n"
        "\n"
        "Progress goes to standard error, the batch's final status last. Each file\n"
        "written is listed on standard output as soon as it is in place.\n"
        "\n"
        "Exit status: 0 every clip converted; 1 a clip or the joining failed;\n"
        "2 bad usage, job file or input file (nothing converted); 130 interrupted.\n");
}

ConvertOptions parseConvertOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption help({"h", "help"}, "");
    const QCommandLineOption output({"o", "output"}, "", "DIR");
    const QCommandLineOption codec("codec", "", "CODEC");
    const QCommandLineOption quality("quality", "", "QUALITY");
    const QCommandLineOption removeAudio("remove-audio", "");
    const QCommandLineOption combine("combine", "");
    const QCommandLineOption matchPreview("match-preview", "");
    const QCommandLineOption filterChain("filter-chain", "");
    const QCommandLineOption job("job", "", "FILE");
    const QCommandLineOption dryRun("dry-run", "");
    ConvertOptions options;
    std::vector<NumberOption<std::optional<double>>> numbers;
    for (std::size_t i = 0; i < gradeControls.size(); ++i)
        numbers.push_back({QCommandLineOption(gradeControls[i].option, "", "VALUE"),
                           &(options.grade.*GradeChoice::members[i]), gradeControls[i].range});
    numbers.insert(numbers.end(), {
        {QCommandLineOption("watermark-x", "", "X"), &options.watermark.x, watermarkPositionRange},
        {QCommandLineOption("watermark-y", "", "Y"), &options.watermark.y, watermarkPositionRange},
        {QCommandLineOption("watermark-width", "", "W"), &options.watermark.widthFraction, watermarkWidthRange},
        {QCommandLineOption("watermark-opacity", "", "A"), &options.watermark.opacity, watermarkOpacityRange},
    });
    parser.addOptions({help, output, codec, quality, removeAudio, combine, matchPreview, filterChain, job, dryRun});
    for (const auto& number : numbers)
        parser.addOption(number.option);
    if (!parser.parse(QStringList{"convert"} + arguments))
        throw UsageError{parser.errorText().chopped(parser.errorText().endsWith('.') ? 1 : 0)};

    options.help = parser.isSet(help);
    if (const auto error = readNumberOptions(parser, numbers))
        throw UsageError{*error};
    if (parser.isSet(codec)) {
        options.settings.codec = videoCodecFromCaseName(parser.value(codec));
        if (!options.settings.codec)
            throw UsageError{QStringLiteral("--codec: '%1' is not h264 or hevc").arg(parser.value(codec))};
    }
    if (parser.isSet(quality)) {
        options.settings.quality = qualityPresetFromCaseName(parser.value(quality));
        if (!options.settings.quality)
            throw UsageError{
                QStringLiteral("--quality: '%1' is not high, balanced or small").arg(parser.value(quality))};
    }
    if (parser.isSet(removeAudio))
        options.settings.removeAudio = true;
    if (parser.isSet(combine))
        options.settings.concatenateClips = true;
    if (parser.isSet(matchPreview) && parser.isSet(filterChain))
        throw UsageError{QStringLiteral("--filter-chain and --match-preview cannot be used together")};
    if (parser.isSet(matchPreview))
        options.settings.matchPreview = true;
    if (parser.isSet(filterChain))
        options.settings.matchPreview = false;
    if (parser.isSet(output)) {
        if (parser.value(output).isEmpty())
            throw UsageError{QStringLiteral("--output: the folder name is empty")};
        options.outputFolder = absolute(parser.value(output));
    }
    if (parser.values(job).size() > 1)
        throw UsageError{QStringLiteral("--job: given %1 times; one job file per run").arg(parser.values(job).size())};
    if (parser.isSet(job))
        options.jobPath = parser.value(job);
    options.dryRun = parser.isSet(dryRun);
    for (const QString& file : parser.positionalArguments())
        options.files << absolute(file);
    return options;
}

ConvertRequest mergeRequest(const ConvertJob& job, const ConvertOptions& options)
{
    ConvertRequest request;
    request.outputFolder = job.outputFolder;
    overrideWith(request.outputFolder, options.outputFolder);
    request.settings = job.settings;
    request.settings.overrideWith(options.settings);
    request.watermark = job.watermark;
    request.watermark.overrideWith(options.watermark);

    if (job.lut)
        request.files << *job.lut;
    if (job.watermark.url)
        request.files << *job.watermark.url;
    for (JobClip clip : job.clips) {
        request.files << clip.url;
        clip.grade.overrideWith(options.grade);
        request.clipEdits << clip;
    }
    for (const QString& file : options.files) {
        request.files << file;
        if (!MediaType::isVideo(file))
            continue;
        const bool edited = std::any_of(request.clipEdits.begin(), request.clipEdits.end(),
                                        [&file](const JobClip& clip) { return clip.url == file; });
        if (!edited)
            request.clipEdits << JobClip{file, options.grade, std::nullopt, std::nullopt};
    }
    return request;
}

}  // namespace tavrelune::cli
